# Compresses a text at configure time, reproducibly: without name and time stamp.
find_program(QUILLON_GZIP gzip REQUIRED)
function(quillon_compressed file result)
  execute_process(COMMAND ${QUILLON_GZIP} -9n INPUT_FILE ${file} OUTPUT_FILE ${result} COMMAND_ERROR_IS_FATAL ANY)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${file})
endfunction()
