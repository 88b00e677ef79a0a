# Fails where the LIBRARIES export other names than those of the list EXPORTS: what a release has exported stays.

include(${CMAKE_CURRENT_LIST_DIR}/dynamic_symbols.cmake)

file(STRINGS ${EXPORTS} listed)
list(TRANSFORM listed REPLACE " .*" "")
foreach(library IN LISTS LIBRARIES)
  dynamic_symbols(${library} --defined-only exported)
  set(lost ${listed})
  list(REMOVE_ITEM lost ${exported})
  set(new ${exported})
  list(REMOVE_ITEM new ${listed})
  if(lost OR new)
    message(FATAL_ERROR "${library}: lost: ${lost}; not in ${EXPORTS}: ${new}")
  endif()
  list(LENGTH exported count)
  message("${library}: all of ${count} exports, and no others")
endforeach()
