# Makes the two Debian packages of BUILD in OUTPUT, and looks for what each must hold.
file(REMOVE_RECURSE ${OUTPUT})
execute_process(COMMAND ${CPACK} -B ${OUTPUT} WORKING_DIRECTORY ${BUILD}
  COMMAND_ERROR_IS_FATAL ANY)

function(require_contents package)
  file(GLOB archive ${OUTPUT}/${package}_*.deb)
  execute_process(COMMAND dpkg-deb --contents ${archive} OUTPUT_VARIABLE contents
    COMMAND_ERROR_IS_FATAL ANY)
  foreach(path IN LISTS ARGN)
    string(FIND "${contents}" "${path}" place)
    if(place LESS 0)
      message(FATAL_ERROR "${package} does not hold ${path}:\n${contents}")
    endif()
  endforeach()
endfunction()

require_contents(libsoftwareupdateclient1
  libSoftwareUpdateClient.so.1 libVxCore.so.1 libVxNodeDB.so.1)
require_contents(libsoftwareupdateclient-dev
  /usr/bin/update-catalogue /client/SoftwareUpdateClient.h /host/NodeDB/NodeDB.h
  /SoftwareUpdateClientExport.h SoftwareUpdateClientConfig.cmake SoftwareUpdateClient.pc
  libSoftwareUpdateClient.so)
