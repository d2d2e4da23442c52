# vx_add_test(<name> SOURCES <file>... [LIBRARIES <lib>...])
#
# One Qt Test program, run by CTest on the offscreen platform. String-based connections fail only at
# run time, with nothing but a warning, so that any such warning fails the test.
function(vx_add_test name)
  cmake_parse_arguments(arg "" "" "SOURCES;LIBRARIES" ${ARGN})
  add_executable(${name} ${arg_SOURCES})
  set_target_properties(${name} PROPERTIES AUTOMOC ON)
  target_link_libraries(${name} PRIVATE ${arg_LIBRARIES} VxTestSupport Qt5::Test VxStrictness)
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES
    TIMEOUT 120
    ENVIRONMENT "QT_QPA_PLATFORM=offscreen;LC_ALL=C.UTF-8;LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/support/lsan.supp:print_suppressions=0;UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1;TSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/support/tsan.supp"
    FAIL_REGULAR_EXPRESSION
      "QObject::connect;No such signal;No such slot;connectSlotsByName;runtime error:")
endfunction()
