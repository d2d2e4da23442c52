# vx_add_host_library(<Name> [INTERNALS] SOURCES <file>... [PUBLIC <lib>...] [PRIVATE <lib>...]
#                     [PRECOMPILED <header>...])
#
# Builds the reference implementation of one host library as the shared library Vx<Name>, with
# hidden visibility and the export header host/<Name>/<Name>Export.h (macro VX_<NAME>_EXPORT).
# A project that brings its own defines a target Vx<Name> before it adds this one: then nothing is
# built here and everything links to that target. PRECOMPILED takes the place of the headers of Qt's
# core that all others share if they use Qt. INTERNALS adds Vx<Name>Internals, see Internals.cmake.
function(vx_add_host_library name)
  cmake_parse_arguments(arg "INTERNALS" "" "SOURCES;PUBLIC;PRIVATE;PRECOMPILED" ${ARGN})
  set(target "Vx${name}")
  if(TARGET ${target})
    return()
  endif()
  string(TOUPPER "${name}" upper)
  add_library(${target} SHARED ${arg_SOURCES})
  add_library(SoftwareUpdateClient::${target} ALIAS ${target})
  set_target_properties(${target} PROPERTIES
    AUTOMOC ON VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR}
    OUTPUT_NAME "${target}${VX_LIBRARY_SUFFIX}")
  generate_export_header(${target} BASE_NAME VX_${upper}
    EXPORT_FILE_NAME "${PROJECT_BINARY_DIR}/generated/host/${name}/${name}Export.h")
  target_include_directories(${target} PUBLIC
    "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>"
    "$<BUILD_INTERFACE:${PROJECT_BINARY_DIR}/generated>"
    "$<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/${VX_PACKAGE}>")
  target_compile_features(${target} PUBLIC cxx_std_17)
  target_link_libraries(${target} PUBLIC ${arg_PUBLIC}
    PRIVATE ${arg_PRIVATE} $<BUILD_INTERFACE:VxStrictness>)
  if("${VX_QT}::Core" IN_LIST arg_PUBLIC AND NOT arg_PRECOMPILED)
    vx_precompile_qt_core(${target})
  else()
    vx_optimise_in_debug_builds(${target})
  endif()
  if(arg_PRECOMPILED)
    target_precompile_headers(${target} PRIVATE ${arg_PRECOMPILED})
  endif()
  if(arg_INTERNALS)
    vx_add_internals(${target})
  endif()
  set_property(GLOBAL APPEND PROPERTY VX_INSTALLED_TARGETS ${target})
endfunction()
