# The C++ face: the part of it that follows from the C headers is made here, when the tree is configured. It needs
# Python's standard library; without Python there is the library, and no kels.hpp.

find_program(KELS_GENERATOR_PYTHON NAMES python3 DOC "Python that makes the C++ face")
set(KELS_CPP ${KELS_GENERATOR_PYTHON})

if(NOT KELS_GENERATOR_PYTHON)
  message(STATUS "No python3: kels.hpp, the C++ face, is left out")
  return()
endif()

set(KELS_FACES ${PROJECT_SOURCE_DIR}/faces)
set(KELS_MADE ${PROJECT_BINARY_DIR}/include)

# kels_generate(<task> <destination>)
function(kels_generate task destination)
  execute_process(
    COMMAND ${KELS_GENERATOR_PYTHON} -B ${KELS_FACES}/generate.py ${task} ${PROJECT_SOURCE_DIR}/include/kels ${destination}
    COMMAND_ERROR_IS_FATAL ANY)
endfunction()

file(GLOB inputs ${PROJECT_SOURCE_DIR}/include/kels/*.h ${KELS_FACES}/*.py)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${inputs})
kels_generate(cpp ${KELS_MADE}/kels/cpp)
target_include_directories(kels INTERFACE $<BUILD_INTERFACE:${KELS_MADE}>)

# The Python face: a module that calls the library on NumPy arrays, beside Python's own files.
if(NOT KELS_PYTHON)
  return()
endif()

# Debian's Python is the one that has Debian's NumPy.
if(EXISTS /usr/bin/python3 AND NOT DEFINED SKBUILD)
  set(Python_EXECUTABLE /usr/bin/python3 CACHE FILEPATH "Python that the module is for")
endif()
find_package(Python 3.9 REQUIRED COMPONENTS Interpreter Development.Module)
find_package(pybind11 REQUIRED)

set(KELS_PACKAGE ${PROJECT_BINARY_DIR}/python)
kels_generate(python ${KELS_PACKAGE})
file(GLOB modules ${PROJECT_SOURCE_DIR}/python/kels/*.py)
foreach(module IN LISTS modules)
  get_filename_component(name ${module} NAME)
  configure_file(${module} ${KELS_PACKAGE}/kels/${name} COPYONLY)
endforeach()

pybind11_add_module(kels-python MODULE NO_EXTRAS ${PROJECT_SOURCE_DIR}/python/core.cpp)
target_link_libraries(kels-python PRIVATE kels::kels)
target_include_directories(kels-python PRIVATE ${KELS_PACKAGE})
target_compile_options(kels-python PRIVATE -O1 -Wall -Wextra) # most of it is a table
set_target_properties(kels-python PROPERTIES OUTPUT_NAME _core LIBRARY_OUTPUT_DIRECTORY ${KELS_PACKAGE}/kels)
