# Fails on an export of the LIBRARIES that the program TESTS does not use. What it stands in for it uses as well.

include(${CMAKE_CURRENT_LIST_DIR}/dynamic_symbols.cmake)

dynamic_symbols(${TESTS} --undefined-only used)
dynamic_symbols(${TESTS} --defined-only interposed)
foreach(library IN LISTS LIBRARIES)
  dynamic_symbols(${library} --defined-only exported)
  list(LENGTH exported count)
  if(count EQUAL 0)
    message(FATAL_ERROR "${library} exports nothing")
  endif()
  list(REMOVE_ITEM exported ${used} ${interposed})
  if(exported)
    list(JOIN exported " " names)
    message(FATAL_ERROR "${library}: no test calls ${names}")
  endif()
  message("${library}: each of ${count} exports is called")
endforeach()
