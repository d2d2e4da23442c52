# vx_precompile_qt_core(<target>)
#
# Most of what compiling a small source takes is parsing Qt's headers. Those of its core are parsed
# once for all targets that ask for it here. Compilers take such headers over only where they would
# optimise alike, so that what is tested is optimised in debug builds, too: a document or an archive
# at its limit has a million nodes or entries, which takes minutes under the sanitizers without.
# scripts/lint goes without precompiled headers, so that each source has to include what it uses.
function(vx_precompile_qt_core target)
  if(NOT TARGET VxQtCoreHeaders)
    # Only a target that compiles something has precompiled headers.
    set(source "${PROJECT_BINARY_DIR}/generated/VxQtCoreHeaders.cpp")
    file(GENERATE OUTPUT "${source}" CONTENT "")
    add_library(VxQtCoreHeaders OBJECT EXCLUDE_FROM_ALL "${source}")
    target_link_libraries(VxQtCoreHeaders PRIVATE ${VX_QT}::Core VxStrictness)
    vx_optimise_in_debug_builds(VxQtCoreHeaders)
    target_precompile_headers(VxQtCoreHeaders PRIVATE
      <QCoreApplication> <QDateTime> <QDebug> <QDir> <QFile> <QHash> <QPointer> <QRegularExpression>
      <QSet> <QSettings> <QTimer> <QUrl> <QVector> <QXmlStreamReader>)
  endif()
  vx_optimise_in_debug_builds(${target})
  target_precompile_headers(${target} REUSE_FROM VxQtCoreHeaders)
endfunction()

function(vx_optimise_in_debug_builds target)
  target_compile_options(${target} PRIVATE $<$<CONFIG:Debug>:-Og>)
endfunction()
