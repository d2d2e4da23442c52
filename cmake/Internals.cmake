# vx_add_internals(<target>)
#
# Adds <target>Internals, a static library of the very objects of the shared library <target>, for
# programs of this project that use what <target> does not export: they link to it in place of
# <target>. A program that linked to both would hold two copies of every static object, so that a
# library whose users may want either must not link to one of them publicly.
function(vx_add_internals target)
  add_library(${target}Internals STATIC EXCLUDE_FROM_ALL $<TARGET_OBJECTS:${target}>)
  set_target_properties(${target}Internals PROPERTIES LINKER_LANGUAGE CXX)
  target_include_directories(${target}Internals
    PUBLIC $<TARGET_PROPERTY:${target},INCLUDE_DIRECTORIES>)
  target_link_libraries(${target}Internals
    PUBLIC $<TARGET_GENEX_EVAL:${target},$<TARGET_PROPERTY:${target},LINK_LIBRARIES>>)
endfunction()
