# Debian packages: libzelchmx6.1 with the libraries, libzelchmx-dev with the rest.
# Make them with `cmake --workflow --preset package`; they land in build/package.
find_program(GZIP NAMES gzip)
if(NOT GZIP)
    return()
endif()

set(CPACK_PACKAGE_NAME zelchmx)
set(CPACK_PACKAGE_VENDOR "The zelchmx authors")
set(CPACK_PACKAGE_CONTACT "The zelchmx authors <zelchmx@example.org>")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL runtime development)

set(CPACK_GENERATOR DEB)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libzelchmx6.1)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(description
"Search, comparison, case conversion, editing, trimming, hashing and UTF
conversion of 8-bit and 16-bit strings, and a backtracking regular-expression
engine with Unicode properties that works in memory its caller provides and
under a step budget its caller sets.")
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "${description}

This package holds the shared libraries.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libzelchmx-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SHLIBDEPS OFF)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
    "libzelchmx6.1 (= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "${description}

This package holds the headers, the development links, the CMake package, the
pkg-config file, the manual pages and the guides.")

# What Debian wants in every package, and only there.
string(TIMESTAMP debian_date "%a, %d %b %Y %H:%M:%S +0000" UTC)
configure_file(cmake/package/changelog.in ${ZELCHMX_GENERATED}/changelog @ONLY)
execute_process(COMMAND ${GZIP} -9nc ${ZELCHMX_GENERATED}/changelog
    OUTPUT_FILE ${ZELCHMX_GENERATED}/changelog.Debian.gz COMMAND_ERROR_IS_FATAL ANY)
configure_file(cmake/package/copyright.in ${ZELCHMX_GENERATED}/copyright @ONLY)
configure_file(cmake/package/PackageTree.cmake.in ${ZELCHMX_GENERATED}/PackageTree.cmake @ONLY)
set(CPACK_PRE_BUILD_SCRIPTS ${ZELCHMX_GENERATED}/PackageTree.cmake)
file(WRITE ${ZELCHMX_GENERATED}/triggers "activate-noawait ldconfig\n")
file(WRITE ${ZELCHMX_GENERATED}/shlibs "libzelchmx 6.1 libzelchmx6.1\n")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA
    ${ZELCHMX_GENERATED}/triggers ${ZELCHMX_GENERATED}/shlibs)

include(CPack)
