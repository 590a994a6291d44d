# Installs a build twice: into PREFIX, and as a copy of that into MOVED.
file(REMOVE_RECURSE ${PREFIX} ${MOVED})
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD} --prefix ${PREFIX}
    COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND cp -a ${PREFIX} ${MOVED} COMMAND_ERROR_IS_FATAL ANY)
