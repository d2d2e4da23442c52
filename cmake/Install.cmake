# What `cmake --install` and CPack lay down: headers under include/SoftwareUpdateClient, the libraries
# with their sonames, the package config for find_package, and a pkg-config file.
include(CMakePackageConfigHelpers)

get_property(installed_targets GLOBAL PROPERTY VX_INSTALLED_TARGETS)
# Host libraries lie beside the library, wherever the prefix is moved to.
set_target_properties(${installed_targets} PROPERTIES INSTALL_RPATH "$ORIGIN")

install(TARGETS ${installed_targets} EXPORT ${VX_PACKAGE}Targets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    COMPONENT Runtime NAMELINK_COMPONENT Development
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT Runtime)

set(header_root "${CMAKE_INSTALL_INCLUDEDIR}/${VX_PACKAGE}")
# The top of a room shows what a host may use; what lies in internal/ stays here, as base/ does.
foreach(room client package download dialogs trust host)
  install(DIRECTORY "${PROJECT_SOURCE_DIR}/${room}" DESTINATION "${header_root}"
    COMPONENT Development
    FILES_MATCHING PATTERN "*.h" PATTERN "internal" EXCLUDE
      PATTERN "Translations" EXCLUDE)
endforeach()
install(DIRECTORY "${PROJECT_BINARY_DIR}/generated/" DESTINATION "${header_root}"
  COMPONENT Development FILES_MATCHING PATTERN "*Export.h")

set(package_folder "${CMAKE_INSTALL_LIBDIR}/cmake/${VX_PACKAGE}")
install(EXPORT ${VX_PACKAGE}Targets NAMESPACE SoftwareUpdateClient::
  DESTINATION "${package_folder}" COMPONENT Development)
configure_package_config_file(
  "${PROJECT_SOURCE_DIR}/cmake/SoftwareUpdateClientConfig.cmake.in"
  "${PROJECT_BINARY_DIR}/${VX_PACKAGE}Config.cmake"
  INSTALL_DESTINATION "${package_folder}")
write_basic_package_version_file(
  "${PROJECT_BINARY_DIR}/${VX_PACKAGE}ConfigVersion.cmake"
  COMPATIBILITY SameMajorVersion)
install(FILES
  "${PROJECT_BINARY_DIR}/${VX_PACKAGE}Config.cmake"
  "${PROJECT_BINARY_DIR}/${VX_PACKAGE}ConfigVersion.cmake"
  DESTINATION "${package_folder}" COMPONENT Development)

# Relative to the file itself, so that an installed tree can be moved.
file(RELATIVE_PATH pkgconfig_to_prefix "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
foreach(target IN LISTS installed_targets)
  get_target_property(name ${target} OUTPUT_NAME)
  string(PREPEND pkgconfig_libraries " -l${name}")
endforeach()
set(pkgconfig_qt "${VX_QT}Core >= ${VX_QT_VERSION}")
foreach(module Gui Widgets Network Xml ${VX_QT_EXTRA_COMPONENTS})
  string(APPEND pkgconfig_qt " ${VX_QT}${module}")
endforeach()
configure_file("${PROJECT_SOURCE_DIR}/cmake/SoftwareUpdateClient.pc.in"
  "${PROJECT_BINARY_DIR}/${VX_PACKAGE}.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/${VX_PACKAGE}.pc"
  DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT Development)
