# Run by cpack before it packs: CPACK_STRIP_FILES passes over static libraries.
find_program(STRIP strip)
file(GLOB_RECURSE archives ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/*.a)
if(STRIP AND archives)
  execute_process(COMMAND ${STRIP} --strip-debug --enable-deterministic-archives
                          --remove-section=.comment --remove-section=.note ${archives} COMMAND_ERROR_IS_FATAL ANY)
endif()
