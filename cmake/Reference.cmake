# The reference, made from the public header: HTML, and manual pages with a link for each function.
# A public name without documentation, or any other warning, fails the build.
find_package(Doxygen 1.9.4)
find_program(AWK NAMES awk mawk gawk)
if(NOT DOXYGEN_FOUND OR NOT AWK)
    message(STATUS "The reference needs Doxygen; it is not built")
    return()
endif()

set(reference_dir ${PROJECT_BINARY_DIR}/reference)
set(filter ${PROJECT_SOURCE_DIR}/docs/header_for_doxygen.awk)
file(GLOB reference_examples CONFIGURE_DEPENDS examples/families/*.c)
set(reference_sources
    ${PROJECT_SOURCE_DIR}/include/zelchmx.h ${filter} ${PROJECT_SOURCE_DIR}/docs/man_page.awk
    ${reference_examples})

# Doxygen runs once for each format, since each wants the header prepared in its own way.
set(REFERENCE_DIR ${reference_dir})
foreach(REFERENCE_FORMAT HTML MAN)
    configure_file(Doxyfile.in ${reference_dir}/Doxyfile.${REFERENCE_FORMAT} @ONLY)
endforeach()

add_custom_command(OUTPUT ${reference_dir}/html/index.html
    COMMAND ${CMAKE_COMMAND} -E rm -rf ${reference_dir}/html
    COMMAND Doxygen::doxygen ${reference_dir}/Doxyfile.HTML
    DEPENDS ${reference_sources} ${reference_dir}/Doxyfile.HTML
    COMMENT "Making the HTML reference" VERBATIM)
add_custom_command(OUTPUT ${reference_dir}/man/man3/zelchmx_search.3
    COMMAND ${CMAKE_COMMAND} -E rm -rf ${reference_dir}/man
    COMMAND Doxygen::doxygen ${reference_dir}/Doxyfile.MAN
    COMMAND sh -c "cd '${reference_dir}/man/man3' && for page in zelchmx_*.3; do ${AWK} -f '${PROJECT_SOURCE_DIR}/docs/man_page.awk' $page > finished && mv finished $page || exit 1; done"
    DEPENDS ${reference_sources} ${reference_dir}/Doxyfile.MAN
    COMMENT "Making the manual pages" VERBATIM)
add_custom_target(reference ALL
    DEPENDS ${reference_dir}/html/index.html ${reference_dir}/man/man3/zelchmx_search.3)

install(DIRECTORY ${reference_dir}/html
    DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT development
    PATTERN "*.md5" EXCLUDE PATTERN "*.map" EXCLUDE)
# Doxygen also writes links for fields and enumerators; only functions and types deserve one.
install(DIRECTORY ${reference_dir}/man/man3
    DESTINATION ${CMAKE_INSTALL_MANDIR} COMPONENT development
    FILES_MATCHING PATTERN "zelchmx_*.3" PATTERN "zels[A-Z]*.3" PATTERN "zelch[A-Z]*.3" PATTERN "Zel*.3"
    PATTERN "zelStatus*.3" EXCLUDE)
