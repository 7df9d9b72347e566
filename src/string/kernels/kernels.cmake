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

# What a level asks for beyond its name comes with every processor that has it. Functions start on
# cache lines, because in a call of ten cycles the place of its instructions shows.
set(ZELCHMX_FLAGS_sse2 -falign-functions=64)
set(ZELCHMX_FLAGS_avx2 ${ZELCHMX_FLAGS_sse2} -mavx2 -mbmi -mbmi2 -mlzcnt -mpopcnt)
set(ZELCHMX_FLAGS_avx512 ${ZELCHMX_FLAGS_avx2}
    -mavx512f -mavx512bw -mavx512vl -mavx512dq -mavx512cd -mavx512vbmi -mavx512vbmi2
    -mgfni -mpclmul -mvpclmulqdq -mprefer-vector-width=512)

# GCC 12 takes the undefined operand inside some of its own intrinsics for a mistake of ours.
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
    list(APPEND ZELCHMX_FLAGS_avx512 -Wno-maybe-uninitialized -Wno-uninitialized)
endif()

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
