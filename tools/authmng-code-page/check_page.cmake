# Fails when the page TOOL writes (into OUT) differs from the checked-in PAGE.
execute_process(COMMAND ${TOOL} ${OUT} RESULT_VARIABLE rc)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "${TOOL} failed")
endif()
execute_process(COMMAND ${CMAKE_COMMAND} -E compare_files ${OUT} ${PAGE} RESULT_VARIABLE differs)
if(differs)
  message(FATAL_ERROR "${PAGE} is out of date: run authmng-code-page with it as argument")
endif()
