# Which Qt the library is built with. Everything else names it as ${VX_QT}, as in ${VX_QT}::Core. What
# is installed has other names with Qt 6, so that both can be installed side by side: VX_PACKAGE is
# that of the CMake package, the pkg-config file and the folder of headers.
set(SOFTWAREUPDATECLIENT_QT 5 CACHE STRING "The Qt to build with, 5 or 6")
set_property(CACHE SOFTWAREUPDATECLIENT_QT PROPERTY STRINGS 5 6)

if(SOFTWAREUPDATECLIENT_QT STREQUAL "5")
  set(VX_QT_VERSION 5.15)
  set(VX_QT_COMPAT "")
  set(VX_PACKAGE SoftwareUpdateClient)
  set(VX_OTHER_PACKAGE SoftwareUpdateClientQt6)
  set(VX_LIBRARY_SUFFIX "")
  set(VX_OTHER_QT Qt6)
elseif(SOFTWAREUPDATECLIENT_QT STREQUAL "6")
  set(VX_QT_VERSION 6.4)
  # QRegExp and QTextCodec, which are in Qt 5 itself.
  set(VX_QT_EXTRA_COMPONENTS Core5Compat)
  set(VX_QT_COMPAT Qt6::Core5Compat)
  set(VX_PACKAGE SoftwareUpdateClientQt6)
  set(VX_OTHER_PACKAGE SoftwareUpdateClient)
  set(VX_LIBRARY_SUFFIX -qt6)
  set(VX_OTHER_QT Qt5)
else()
  message(FATAL_ERROR "SOFTWAREUPDATECLIENT_QT is ${SOFTWAREUPDATECLIENT_QT}, but must be 5 or 6.")
endif()
set(VX_QT "Qt${SOFTWAREUPDATECLIENT_QT}")

# Both in one program crash sooner or later, so that a surrounding project must not mix them.
if(TARGET ${VX_OTHER_QT}::Core AND NOT TARGET ${VX_QT}::Core)
  message(FATAL_ERROR "SoftwareUpdateClient is to be built with ${VX_QT}, but this project has found "
    "${VX_OTHER_QT}: set SOFTWAREUPDATECLIENT_QT to the number of that.")
endif()
