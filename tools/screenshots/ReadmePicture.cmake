# Makes README's picture: what an installation of the demo would see, drawn by PROGRAM in FOLDER and
# stored as PICTURE. To be run at the root.
execute_process(
  COMMAND "${PROGRAM}" preview examples/camera_manager/catalogue.xml --application CameraManager
          --version 5.2.1 --camera Dome-24=4.1.9 --camera Mini-12=3.5 --out "${FOLDER}"
  COMMAND_ERROR_IS_FATAL ANY)
configure_file("${FOLDER}/update-available-en-selected.png" "${PICTURE}" COPYONLY)
