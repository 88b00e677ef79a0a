# The C++ face: the part of it that follows from the C headers is made here, when the tree is configured. It needs
# Python's standard library; without Python there is the library, and no kels.hpp.

find_program(KELS_GENERATOR_PYTHON NAMES python3 DOC "Python that makes the C++ face")

if(NOT KELS_GENERATOR_PYTHON)
  message(STATUS "No python3: kels.hpp, the C++ face, is left out")
  return()
endif()

set(KELS_CPP ON)
set(KELS_FACES ${PROJECT_SOURCE_DIR}/faces)
set(KELS_MADE ${PROJECT_BINARY_DIR}/include)

file(GLOB inputs ${PROJECT_SOURCE_DIR}/include/kels/*.h ${KELS_FACES}/*.py)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${inputs})
execute_process(
  COMMAND ${KELS_GENERATOR_PYTHON} -B ${KELS_FACES}/generate.py cpp ${PROJECT_SOURCE_DIR}/include/kels ${KELS_MADE}/kels/cpp
  COMMAND_ERROR_IS_FATAL ANY)
target_include_directories(kels INTERFACE $<BUILD_INTERFACE:${KELS_MADE}>)

# Debian's Python is the one that has Debian's NumPy.
if(KELS_PYTHON)
  if(EXISTS /usr/bin/python3)
    set(Python_EXECUTABLE /usr/bin/python3 CACHE FILEPATH "Python that the module is for")
  endif()
  add_subdirectory(python)
endif()
