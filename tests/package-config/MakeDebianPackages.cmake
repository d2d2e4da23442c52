# Makes the Debian packages of BUILD in OUTPUT, and looks for what each must hold.
file(REMOVE_RECURSE ${OUTPUT})
execute_process(COMMAND ${CPACK} -B ${OUTPUT} WORKING_DIRECTORY ${BUILD}
  COMMAND_ERROR_IS_FATAL ANY)

function(read_package package)
  file(GLOB archive ${OUTPUT}/${package}_*.deb)
  execute_process(COMMAND dpkg-deb --contents ${archive} OUTPUT_VARIABLE contents
    COMMAND_ERROR_IS_FATAL ANY)
  execute_process(COMMAND dpkg-deb --info ${archive} OUTPUT_VARIABLE control
    COMMAND_ERROR_IS_FATAL ANY)
  set(contents "${contents}" PARENT_SCOPE)
  set(control "${control}" PARENT_SCOPE)
endfunction()

function(require_contents package)
  read_package(${package})
  foreach(path IN ITEMS ${ARGN} /doc/${package}/copyright /doc/${package}/changelog.gz)
    string(FIND "${contents}" "${path}" place)
    if(place LESS 0)
      message(FATAL_ERROR "${package} does not hold ${path}:\n${contents}")
    endif()
  endforeach()
endfunction()

function(refuse_contents package)
  read_package(${package})
  foreach(path IN LISTS ARGN)
    string(FIND "${contents}" "${path}" place)
    if(NOT place LESS 0)
      message(FATAL_ERROR "${package} holds ${path}:\n${contents}")
    endif()
  endforeach()
endfunction()

function(require_control package text)
  read_package(${package})
  string(FIND "${control}" "${text}" place)
  if(place LESS 0)
    message(FATAL_ERROR "${package} says nothing of ${text}:\n${control}")
  endif()
endfunction()

require_contents(${RUNTIME}
  libSoftwareUpdateClient${SUFFIX}.so.1 libVxCore${SUFFIX}.so.1 libVxNodeDB${SUFFIX}.so.1)
require_control(${RUNTIME} shlibs)
require_contents(${DEVELOPMENT}
  include/${PACKAGE}/client/SoftwareUpdateClient.h include/${PACKAGE}/host/NodeDB/NodeDB.h
  include/${PACKAGE}/SoftwareUpdateClientExport.h ${PACKAGE}Config.cmake ${PACKAGE}.pc
  libSoftwareUpdateClient${SUFFIX}.so)
refuse_contents(${DEVELOPMENT} /internal/ /base/ /bin/)
require_contents(update-catalogue
  /usr/bin/update-catalogue /man1/update-catalogue.1.gz /man1/update-catalogue-lint.1.gz
  /bash-completion/completions/update-catalogue /doc/update-catalogue/catalogue-guide.md)
require_control(update-catalogue "${RUNTIME} (= ")
refuse_contents(update-catalogue /include/)
read_package(update-catalogue)
if(control MATCHES "-dev")
  message(FATAL_ERROR "update-catalogue needs development files:\n${control}")
endif()

# What Debian's own judge calls an error. The libraries of a sanitizer are not our matter.
file(GLOB archives ${OUTPUT}/*.deb)
execute_process(COMMAND lintian --allow-root --fail-on error ${archives}
  OUTPUT_VARIABLE findings RESULT_VARIABLE result)
message("${findings}")
if(NOT result EQUAL 0)
  message(FATAL_ERROR "lintian finds errors")
endif()
