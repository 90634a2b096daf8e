# An empty folder SCRATCH, and a call that ends the test when a command fails. What the command prints is in `output`.

file(REMOVE_RECURSE "${SCRATCH}")
file(MAKE_DIRECTORY "${SCRATCH}")

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT status EQUAL 0)
    string(JOIN " " command ${ARGN})
    message(FATAL_ERROR "failed (${status}): ${command}\n${output}")
  endif()
  set(output "${output}" PARENT_SCOPE)
endfunction()
