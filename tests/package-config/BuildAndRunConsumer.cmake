# Configures, builds and runs one consumer project from nothing. A project that builds no program
# named "consumer" has shown all it can by then.
file(REMOVE_RECURSE "${BUILD}")
set(ENV{PKG_CONFIG_PATH} "${PREFIX}/${LIBDIR}/pkgconfig")
execute_process(COMMAND ${CMAKE_COMMAND} -S "${SOURCE}" -B "${BUILD}" -G "${GENERATOR}"
  "-DCMAKE_BUILD_TYPE=${BUILD_TYPE}" "-DCMAKE_CXX_COMPILER=${CXX_COMPILER}"
  "-DCMAKE_CXX_FLAGS=${CXX_FLAGS}" "-DCMAKE_PREFIX_PATH=${PREFIX}"
  "-DSOFTWARE_UPDATE_CLIENT_PACKAGE=${PACKAGE}" "-DSOFTWAREUPDATECLIENT_QT=${QT}"
  "-DSCRATCH_PREFIX=${PREFIX}" "-DSOFTWARE_UPDATE_CLIENT_ROOT=${ROOT}"
  COMMAND_ERROR_IS_FATAL ANY)
if(EXISTS "${SOURCE}/main.cpp")
  execute_process(COMMAND ${CMAKE_COMMAND} --build "${BUILD}" COMMAND_ERROR_IS_FATAL ANY)
  execute_process(COMMAND "${BUILD}/consumer" COMMAND_ERROR_IS_FATAL ANY)
endif()
