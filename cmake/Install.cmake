# What an installation consists of, in two components: `runtime`, the shared libraries, and
# `development`, everything that a programmer needs. All of it can be moved to another prefix.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/zelchmx)
set(ZELCHMX_GENERATED ${PROJECT_BINARY_DIR}/package)

set_target_properties(zelcore PROPERTIES EXPORT_NAME core)
install(TARGETS zelchmx zelcore EXPORT zelchmxTargets
    LIBRARY
        DESTINATION ${CMAKE_INSTALL_LIBDIR}
        COMPONENT runtime
        NAMELINK_COMPONENT development)
install(FILES include/zelchmx.h support/include/zelcore.h
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
    COMPONENT development)

# find_package(zelchmx 6.1 CONFIG) accepts this version and no other: 6.1 is the interface.
install(EXPORT zelchmxTargets NAMESPACE zelchmx:: FILE zelchmxTargets.cmake
    DESTINATION ${package_dir} COMPONENT development)
configure_package_config_file(cmake/package/zelchmxConfig.cmake.in
    ${ZELCHMX_GENERATED}/zelchmxConfig.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${ZELCHMX_GENERATED}/zelchmxConfigVersion.cmake
    COMPATIBILITY SameMinorVersion)
install(FILES
    ${ZELCHMX_GENERATED}/zelchmxConfig.cmake ${ZELCHMX_GENERATED}/zelchmxConfigVersion.cmake
    DESTINATION ${package_dir} COMPONENT development)

# The pkg-config file finds its prefix from where it lies.
cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX
    BASE_DIRECTORY ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig OUTPUT_VARIABLE prefix_from_pc)
configure_file(cmake/package/zelchmx.pc.in ${ZELCHMX_GENERATED}/zelchmx.pc @ONLY)
install(FILES ${ZELCHMX_GENERATED}/zelchmx.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

install(FILES README.md CHANGELOG.md LICENSE
    DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT development)
install(DIRECTORY docs/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs COMPONENT development
    FILES_MATCHING PATTERN "*.md" PATTERN "*.svg" PATTERN "*.png")
