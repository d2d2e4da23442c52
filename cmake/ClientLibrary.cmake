# The library itself. Each folder adds its own sources to this target.
add_library(SoftwareUpdateClient SHARED)
add_library(SoftwareUpdateClient::SoftwareUpdateClient ALIAS SoftwareUpdateClient)
set_target_properties(SoftwareUpdateClient PROPERTIES
  AUTOMOC ON VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR}
  OUTPUT_NAME "SoftwareUpdateClient${VX_LIBRARY_SUFFIX}")
generate_export_header(SoftwareUpdateClient BASE_NAME SOFTWAREUPDATECLIENT
  EXPORT_FILE_NAME "${PROJECT_BINARY_DIR}/generated/SoftwareUpdateClientExport.h")
target_include_directories(SoftwareUpdateClient PUBLIC
  "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>"
  "$<BUILD_INTERFACE:${PROJECT_BINARY_DIR}/generated>"
  "$<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/${VX_PACKAGE}>")
target_compile_features(SoftwareUpdateClient PUBLIC cxx_std_17)
target_link_libraries(SoftwareUpdateClient
  PUBLIC ${VX_QT}::Core ${VX_QT}::Gui ${VX_QT}::Widgets ${VX_QT}::Network ${VX_QT}::Xml Boost::headers
         VxCore VxCoreQt VxFileFormatsPreferences VxFileFormatsXml VxFileFormatsZip
         VxFileFormatsVeldrix VxGUIBaseUtils VxIO VxNetworkHttp VxNodeDB
  PRIVATE $<BUILD_INTERFACE:VxStrictness>)
vx_add_internals(SoftwareUpdateClient)
set_property(GLOBAL APPEND PROPERTY VX_INSTALLED_TARGETS SoftwareUpdateClient)
# Most of what compiling a source takes is parsing Qt's headers.
target_precompile_headers(SoftwareUpdateClient PRIVATE
  <QApplication> <QDateTime> <QDialog> <QDir> <QDomDocument> <QNetworkReply> <QSettings> <QTimer>)
