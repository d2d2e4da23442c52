# vx_compile_catalogues(<variable> <folder> <file>.ts...)
#
# Compiles translation catalogues of the current folder into <folder> and stores the paths of the
# compiled ones in <variable>. Every entry is kept, also one whose translation equals its source:
# the lookup goes by context, and a missing entry shows.
function(vx_compile_catalogues variable folder)
  file(MAKE_DIRECTORY "${folder}")
  foreach(source IN LISTS ARGN)
    get_filename_component(name "${source}" NAME_WE)
    add_custom_command(
      OUTPUT "${folder}/${name}.qm"
      COMMAND ${VX_QT}::lrelease -silent "${CMAKE_CURRENT_SOURCE_DIR}/${source}" -qm "${folder}/${name}.qm"
      DEPENDS "${source}"
      COMMENT "Compiling ${source}"
      VERBATIM)
    list(APPEND compiled "${folder}/${name}.qm")
  endforeach()
  set(${variable} ${compiled} PARENT_SCOPE)
endfunction()
