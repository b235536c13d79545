# Copies the files DLLS to FOLDER. Programs in the same folder may be built at the same time, and two copies of
# a file at the same time can fail, so each one holds LOCK.
file(LOCK "${LOCK}" GUARD PROCESS)
execute_process(COMMAND "${CMAKE_COMMAND}" -E copy_if_different ${DLLS} "${FOLDER}" COMMAND_ERROR_IS_FATAL ANY)
