# Static libraries are packed without debug information.
file(GLOB_RECURSE archives ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/*.a)
if(archives)
  execute_process(COMMAND strip --strip-debug --enable-deterministic-archives ${archives}
                  COMMAND_ERROR_IS_FATAL ANY)
endif()
