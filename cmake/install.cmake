# Install rules: the two libraries, the public headers, the tool, a CMake package exporting
# vrdppo::vrdppo (shared) and vrdppo::vrdppo_static, and a pkg-config file.
include(CMakePackageConfigHelpers)

set(VRDPPO_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/vrdppo)

install(TARGETS vrdppo_shared vrdppo_static EXPORT vrdppoTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/vrdppo DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
if(TARGET vrdppo_cli)
  install(TARGETS vrdppo_cli RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()

install(EXPORT vrdppoTargets NAMESPACE vrdppo:: DESTINATION ${VRDPPO_CMAKE_DIR})
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/vrdppoConfig.cmake.in
                              ${PROJECT_BINARY_DIR}/vrdppoConfig.cmake
                              INSTALL_DESTINATION ${VRDPPO_CMAKE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/vrdppoConfigVersion.cmake
                                 COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/vrdppoConfig.cmake
              ${PROJECT_BINARY_DIR}/vrdppoConfigVersion.cmake
        DESTINATION ${VRDPPO_CMAKE_DIR})

# The .pc file finds its prefix from where it lies, so an installed tree can be moved.
# RELATIVE_PATH answers "../../" for an ancestor; without the slash the template's own "/" makes
# no "//" in the libdir that users pass to -rpath.
file(RELATIVE_PATH VRDPPO_PC_TO_PREFIX /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
string(REGEX REPLACE "/+$" "" VRDPPO_PC_TO_PREFIX "${VRDPPO_PC_TO_PREFIX}")
configure_file(${CMAKE_CURRENT_LIST_DIR}/vrdppo.pc.in ${PROJECT_BINARY_DIR}/vrdppo.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/vrdppo.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
