# vx_set_test_surroundings(<test>)
#
# What every test runs in: the offscreen platform, a fixed locale, and sanitizers that stop at their
# first finding. String-based connections fail only at run time, with nothing but a warning, so that
# any such warning fails the test.
function(vx_set_test_surroundings test)
  set(support "${PROJECT_SOURCE_DIR}/tests/support")
  set_tests_properties(${test} PROPERTIES
    TIMEOUT 300
    ENVIRONMENT "QT_QPA_PLATFORM=offscreen;LC_ALL=C.UTF-8;LSAN_OPTIONS=suppressions=${support}/lsan.supp:print_suppressions=0;UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1;TSAN_OPTIONS=suppressions=${support}/tsan.supp"
    FAIL_REGULAR_EXPRESSION
      "QObject::connect:;No such signal;No such slot;connectSlotsByName;runtime error:")
endfunction()

# vx_add_test(<name> SOURCES <file>... [LIBRARIES <lib>...])
#
# One Qt Test program, run by CTest. The file of its name holds its class and ends with including
# <name>.moc, which a rule makes: AUTOMOC would take two more processes for each program. The rule
# names no folders of headers, since what moc writes about a class depends on none of them, and to
# read all of Qt's takes it ten times as long.
function(vx_add_test name)
  cmake_parse_arguments(arg "" "" "SOURCES;LIBRARIES" ${ARGN})
  add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE ${arg_LIBRARIES} VxTestSupport ${VX_QT}::Test VxStrictness)
  target_precompile_headers(${name} REUSE_FROM VxTestSupport)
  set(class ${arg_SOURCES})
  list(FILTER class INCLUDE REGEX "(^|/)${name}\\.cpp$")
  set(folder "${CMAKE_CURRENT_BINARY_DIR}/${name}_moc")
  file(MAKE_DIRECTORY "${folder}")
  cmake_language(CALL qt${SOFTWAREUPDATECLIENT_QT}_generate_moc
    ${class} "${folder}/${name}.moc")
  target_sources(${name} PRIVATE "${folder}/${name}.moc")
  target_include_directories(${name} PRIVATE "${folder}")
  add_test(NAME ${name} COMMAND ${name})
  vx_set_test_surroundings(${name})
endfunction()

# vx_start_early(<test>...)
#
# Of what takes longest, nothing is to be left running alone at the end.
function(vx_start_early)
  set_tests_properties(${ARGN} PROPERTIES COST 60)
endfunction()

# vx_host_compile_flags(<variable> <folder>...)
#
# What a host's compiler is given to find the headers in these folders, and those of Qt.
function(vx_host_compile_flags variable)
  set(folders ${ARGN})
  foreach(module Widgets Network Gui Xml Core ${VX_QT_EXTRA_COMPONENTS})
    list(APPEND folders "$<TARGET_PROPERTY:${VX_QT}::${module},INTERFACE_INCLUDE_DIRECTORIES>")
  endforeach()
  set(${variable} "-I$<JOIN:$<REMOVE_DUPLICATES:${folders}>, -I>" PARENT_SCOPE)
endfunction()
