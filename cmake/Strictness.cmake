# One interface target carries the warnings, so that every target of ours is held to the same.
add_library(VxStrictness INTERFACE)
target_compile_options(VxStrictness INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion
  -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-align -Wformat=2 -Wimplicit-fallthrough)
# A size is an int in Qt 5 and a qsizetype in Qt 6. The build with Qt 5 checks every conversion; the
# same source would need a cast at each size for the one with Qt 6 to do so.
if(SOFTWAREUPDATECLIENT_QT STREQUAL "6")
  target_compile_options(VxStrictness INTERFACE -Wno-conversion)
endif()
# Qt's logging macros are variadic and are called without variadic arguments. Clang warns of that in
# the code that uses them.
target_compile_options(VxStrictness INTERFACE
  $<$<CXX_COMPILER_ID:Clang>:-Wno-gnu-zero-variadic-macro-arguments>)
if(SOFTWAREUPDATECLIENT_WARNINGS_AS_ERRORS)
  target_compile_options(VxStrictness INTERFACE -Werror)
endif()
target_compile_definitions(VxStrictness INTERFACE
  QT_NO_CAST_FROM_BYTEARRAY QT_NO_URL_CAST_FROM_STRING)
