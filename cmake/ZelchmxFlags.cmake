# Compiler and linker settings. `zelchmx_warnings` is for every target; `zelchmx_runtime` is for the
# two libraries themselves, which use no exceptions, no RTTI and no C++ runtime library.

add_library(zelchmx_warnings INTERFACE)
target_compile_options(zelchmx_warnings INTERFACE -Wall -Wextra -Wshadow
    $<$<COMPILE_LANGUAGE:CXX>:-Wconversion>)

add_library(zelchmx_runtime INTERFACE)
target_compile_options(zelchmx_runtime INTERFACE
    $<$<COMPILE_LANGUAGE:CXX>:-fno-exceptions -fno-rtti -fno-threadsafe-statics>
    -fvisibility=hidden -fvisibility-inlines-hidden -fno-plt -ffunction-sections -fdata-sections)
target_link_options(zelchmx_runtime INTERFACE
    -Wl,-z,relro,-z,now -Wl,-z,noexecstack -Wl,-z,text -Wl,--gc-sections -Wl,--as-needed)

if(ZELCHMX_SANITIZE)
    add_compile_options(-fsanitize=${ZELCHMX_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    add_link_options(-fsanitize=${ZELCHMX_SANITIZE})
else()
    target_link_options(zelchmx_runtime INTERFACE -Wl,--no-undefined)
endif()

if(ZELCHMX_COVERAGE)
    add_compile_options(--coverage -fprofile-update=atomic)
    add_compile_definitions(ZEL_INLINE=inline)
    add_link_options(--coverage)
endif()
