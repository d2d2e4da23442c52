# cmake -D SAMPLE=<folder of the bundle> -D OUTPUT=<folder> -P MakePackages.cmake
#
# Makes the packages that the demonstration's server offers: a ZIP archive of the installer bundle,
# filled up to a size that takes a moment to download, and archives that stand for firmware.
cmake_minimum_required(VERSION 3.20)

function(write_payload file size)
  # Letters from a fixed seed: no archiver makes much less of them, and each build gives the same.
  string(RANDOM LENGTH ${size} RANDOM_SEED 53 payload)
  file(WRITE "${file}" "${payload}")
endfunction()

function(make_zip name folder)
  execute_process(
    COMMAND "${CMAKE_COMMAND}" -E tar cf "${OUTPUT}/${name}" --format=zip ${ARGN}
    WORKING_DIRECTORY "${folder}" COMMAND_ERROR_IS_FATAL ANY)
endfunction()

set(work "${OUTPUT}/work")
file(REMOVE_RECURSE "${OUTPUT}")
file(COPY "${SAMPLE}" DESTINATION "${work}")
write_payload("${work}/CameraManager-5.3.mpkg/Contents/Archive.bin" 2000000)
make_zip(CameraManager-5.3.mpkg.zip "${work}" CameraManager-5.3.mpkg)
foreach(firmware IN ITEMS Dome-24-4.2 Dome-24-4.2-fr Mini-12-3.6)
  write_payload("${work}/${firmware}.bin" 900000)
  make_zip(${firmware}.zip "${work}" ${firmware}.bin)
endforeach()
file(REMOVE_RECURSE "${work}")
