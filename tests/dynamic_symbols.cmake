# dynamic_symbols(<file> <option of nm> <variable>): the names of a shared object or a program.
function(dynamic_symbols file option names)
  execute_process(COMMAND ${NM} -D ${option} ${file} OUTPUT_VARIABLE lines COMMAND_ERROR_IS_FATAL ANY)
  string(REGEX MATCHALL " [A-Za-z] [A-Za-z][A-Za-z0-9_]*" found "${lines}")
  list(TRANSFORM found REPLACE "^ . " "")
  set(${names} ${found} PARENT_SCOPE)
endfunction()
