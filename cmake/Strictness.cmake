# One interface target carries the warnings, so that every target of ours is held to the same.
add_library(VxStrictness INTERFACE)
target_compile_options(VxStrictness INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion
  -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-align -Wformat=2 -Wimplicit-fallthrough)
# Qt's logging macros are such ones, and Clang blames whoever uses them.
target_compile_options(VxStrictness INTERFACE
  $<$<CXX_COMPILER_ID:Clang>:-Wno-gnu-zero-variadic-macro-arguments>)
if(SOFTWAREUPDATECLIENT_WARNINGS_AS_ERRORS)
  target_compile_options(VxStrictness INTERFACE -Werror)
endif()
target_compile_definitions(VxStrictness INTERFACE
  QT_NO_CAST_FROM_BYTEARRAY QT_NO_URL_CAST_FROM_STRING)
