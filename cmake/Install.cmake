# What `cmake --install` and CPack lay down: headers under include/SoftwareUpdateClient, the libraries
# with their sonames, the package config for find_package, and a pkg-config file.
include(CMakePackageConfigHelpers)

get_property(installed_targets GLOBAL PROPERTY VX_INSTALLED_TARGETS)
# Host libraries lie beside the library, wherever the prefix is moved to.
set_target_properties(${installed_targets} PROPERTIES INSTALL_RPATH "$ORIGIN")

install(TARGETS ${installed_targets} EXPORT SoftwareUpdateClientTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    COMPONENT Runtime NAMELINK_COMPONENT Development
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT Runtime)

set(header_root "${CMAKE_INSTALL_INCLUDEDIR}/SoftwareUpdateClient")
foreach(folder client package download dialogs host)
  install(DIRECTORY "${PROJECT_SOURCE_DIR}/${folder}" DESTINATION "${header_root}"
    COMPONENT Development
    FILES_MATCHING PATTERN "*.h" PATTERN "internal" EXCLUDE)
endforeach()
install(DIRECTORY "${PROJECT_BINARY_DIR}/generated/" DESTINATION "${header_root}"
  COMPONENT Development FILES_MATCHING PATTERN "*Export.h")

set(package_folder "${CMAKE_INSTALL_LIBDIR}/cmake/SoftwareUpdateClient")
install(EXPORT SoftwareUpdateClientTargets NAMESPACE SoftwareUpdateClient::
  DESTINATION "${package_folder}" COMPONENT Development)
configure_package_config_file(
  "${PROJECT_SOURCE_DIR}/cmake/SoftwareUpdateClientConfig.cmake.in"
  "${PROJECT_BINARY_DIR}/SoftwareUpdateClientConfig.cmake"
  INSTALL_DESTINATION "${package_folder}")
write_basic_package_version_file(
  "${PROJECT_BINARY_DIR}/SoftwareUpdateClientConfigVersion.cmake"
  COMPATIBILITY SameMajorVersion)
install(FILES
  "${PROJECT_BINARY_DIR}/SoftwareUpdateClientConfig.cmake"
  "${PROJECT_BINARY_DIR}/SoftwareUpdateClientConfigVersion.cmake"
  DESTINATION "${package_folder}" COMPONENT Development)

# Relative to the file itself, so that an installed tree can be moved.
file(RELATIVE_PATH pkgconfig_to_prefix "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
configure_file("${PROJECT_SOURCE_DIR}/cmake/SoftwareUpdateClient.pc.in"
  "${PROJECT_BINARY_DIR}/SoftwareUpdateClient.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/SoftwareUpdateClient.pc"
  DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT Development)
