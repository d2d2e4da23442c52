# `cpack` makes two Debian packages: the libraries, and what is needed to build against them.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_VENDOR "The SoftwareUpdateClient developers")
set(CPACK_PACKAGE_CONTACT "The SoftwareUpdateClient developers <maintainers@example.com>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_RESOURCE_FILE_LICENSE "${PROJECT_SOURCE_DIR}/LICENSE")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)

set(CPACK_COMPONENTS_ALL Runtime Development)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS Runtime)

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME "libsoftwareupdateclient${PROJECT_VERSION_MAJOR}")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "${PROJECT_DESCRIPTION}
 The shared library SoftwareUpdateClient and the reference host libraries.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libsoftwareupdateclient-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "qtbase5-dev, libboost-dev")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "${PROJECT_DESCRIPTION} (development files)
 Headers, CMake package, pkg-config file and the catalogue workbench.")

# Where the libraries lie that the workbench, which is in the other package, needs.
get_property(installed_targets GLOBAL PROPERTY VX_INSTALLED_TARGETS)
foreach(target IN LISTS installed_targets)
  get_target_property(folder ${target} BINARY_DIR)
  list(APPEND CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${folder}")
endforeach()

include(CPack)
