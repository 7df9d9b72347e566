# The sources that exist once per instruction set: the exported string functions with everything
# they are made of. Each instance is an object library of its own, with its own flags and namespace.
set(ZELCHMX_INSTANCE_SOURCES
    core/block.cpp
    string/case.cpp
    string/compare.cpp
    string/edit.cpp
    string/hash.cpp
    string/search.cpp
    string/trim.cpp
    string/utf_convert.cpp
    string/kernels/api.cpp)

set(ZELCHMX_FLAGS_sse2 "")
set(ZELCHMX_FLAGS_avx2 -mavx2 -mbmi -mbmi2 -mlzcnt -mpopcnt)
set(ZELCHMX_FLAGS_avx512 ${ZELCHMX_FLAGS_avx2}
    -mavx512f -mavx512bw -mavx512vl -mavx512dq -mavx512vbmi -mavx512vbmi2
    -mgfni -mpclmul -mvpclmulqdq -mprefer-vector-width=512)

# The narrowest first: where several objects carry a copy of the same inline function, the linker
# keeps the first.
foreach(isa sse2 avx2 avx512)
    add_library(zelchmx_${isa} OBJECT ${ZELCHMX_INSTANCE_SOURCES})
    string(TOUPPER ${isa} upper)
    target_compile_definitions(zelchmx_${isa} PRIVATE ZEL_ISA=${isa} ZEL_ISA_${upper}=1)
    target_compile_options(zelchmx_${isa} PRIVATE ${ZELCHMX_FLAGS_${isa}})
    set_target_properties(zelchmx_${isa} PROPERTIES POSITION_INDEPENDENT_CODE ON)
    target_include_directories(zelchmx_${isa}
        PRIVATE ${PROJECT_SOURCE_DIR}/include ${CMAKE_CURRENT_SOURCE_DIR})
    target_link_libraries(zelchmx_${isa} PRIVATE zelchmx_warnings zelchmx_runtime)
    list(APPEND ZELCHMX_OBJECTS $<TARGET_OBJECTS:zelchmx_${isa}>)
endforeach()
