# `cpack` makes three Debian packages: the libraries, what is needed to build against them, and the
# catalogue workbench. Those of a build with Qt 6 have names of their own.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_VENDOR "The SoftwareUpdateClient developers")
set(CPACK_PACKAGE_CONTACT "The SoftwareUpdateClient developers <maintainers@example.com>")
# Each package describes itself.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_RESOURCE_FILE_LICENSE "${PROJECT_SOURCE_DIR}/LICENSE")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

set(CPACK_COMPONENTS_ALL Runtime Development Workbench)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS Runtime)
set(CPACK_COMPONENT_WORKBENCH_DEPENDS Runtime)

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${vx_runtime_package})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA "${PROJECT_SOURCE_DIR}/cmake/debian/triggers")
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "${PROJECT_DESCRIPTION}
The library for applications of ${VX_QT}, and the reference host libraries.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME ${vx_development_package})
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${vx_qt_development_packages}, libboost-dev")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "${PROJECT_DESCRIPTION} (development)
Headers, CMake package and pkg-config file for applications of ${VX_QT}.")

set(CPACK_DEBIAN_WORKBENCH_PACKAGE_NAME ${vx_workbench_package})
set(CPACK_DEBIAN_WORKBENCH_PACKAGE_SECTION devel)
set(CPACK_DEBIAN_WORKBENCH_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_WORKBENCH_DESCRIPTION "Tells what an update catalogue does before it is published
The workbench of release managers: checks a catalogue, shows who is offered
what and why, serves and signs it.")

# What Debian wants to find beside each package's files.
file(READ "${PROJECT_SOURCE_DIR}/LICENSE" license)
string(REGEX REPLACE "^.*Copyright \\(c\\) ([^\n]+)\n\n" "" license "${license}")
set(copyright "${CMAKE_MATCH_1}")
string(STRIP "${license}" license)
string(REPLACE "\n\n" "\n.\n" license "${license}")
string(REPLACE "\n" "\n " license "${license}")
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
foreach(component runtime development workbench)
  set(package "${vx_${component}_package}")
  set(folder "${PROJECT_BINARY_DIR}/debian/${package}")
  configure_file("${PROJECT_SOURCE_DIR}/cmake/debian/copyright.in" "${folder}/copyright" @ONLY)
  configure_file("${PROJECT_SOURCE_DIR}/cmake/debian/changelog.in" "${folder}/changelog" @ONLY)
  execute_process(COMMAND gzip -9nf "${folder}/changelog" COMMAND_ERROR_IS_FATAL ANY)
  string(SUBSTRING ${component} 0 1 initial)
  string(SUBSTRING ${component} 1 -1 rest)
  string(TOUPPER ${initial} initial)
  install(FILES "${folder}/copyright" "${folder}/changelog.gz"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/${package}" COMPONENT ${initial}${rest})
endforeach()

# What lintian finds and is meant so. Qt's headers refuse to be compiled without -fPIC, whatever a
# pkg-config file should hold; and the smallest libraries call nothing of the C library.
function(vx_override package component finding)
  set(overrides "${PROJECT_BINARY_DIR}/debian/${package}.overrides")
  file(WRITE "${overrides}" "${package}: ${finding} *\n")
  install(FILES "${overrides}" RENAME ${package}
    DESTINATION "${CMAKE_INSTALL_DATADIR}/lintian/overrides" COMPONENT ${component})
endfunction()
vx_override(${vx_development_package} Development "pkg-config-bad-directive -fPIC")
vx_override(${vx_runtime_package} Runtime library-not-linked-against-libc)

# Where the libraries lie that the workbench, which is in another package, needs.
get_property(installed_targets GLOBAL PROPERTY VX_INSTALLED_TARGETS)
foreach(target IN LISTS installed_targets)
  get_target_property(folder ${target} BINARY_DIR)
  list(APPEND CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${folder}")
endforeach()

include(CPack)
