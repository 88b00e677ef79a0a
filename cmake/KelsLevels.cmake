# One shared object per x86-64 level, from the same sources. The baseline lies in lib/, the others below
# lib/glibc-hwcaps/, where the dynamic loader looks for the best one that the processor can run.

if(CMAKE_SIZEOF_VOID_P EQUAL 8 AND PROJECT_IS_TOP_LEVEL)
  set(KELS_LEVELS "base;v3;v4" CACHE STRING "Levels to build: base, v3, v4")
elseif(CMAKE_SIZEOF_VOID_P EQUAL 8)
  # Another build's own flags say what it is for.
  set(KELS_LEVELS "base" CACHE STRING "Levels to build: base, v3, v4")
else()
  set(KELS_LEVELS "base" CACHE STRING "Levels to build: 32-bit x86 has one")
endif()
list(GET KELS_LEVELS 0 KELS_FIRST_LEVEL) # the one in lib/

set(KELS_FLAGS_base "")
set(KELS_FLAGS_v3 -march=x86-64-v3)
# Without the preference the compilers stop at 256 bits for this level.
set(KELS_FLAGS_v4 -march=x86-64-v4 -mprefer-vector-width=512)

# What every object of the library is compiled with, whatever its level.
set(KELS_COMPILE_OPTIONS
  -fno-math-errno -fno-trapping-math -ffp-contract=off
  -fno-exceptions -fno-rtti
  -Wall -Wextra -Wshadow -Werror=missing-declarations
  -Wno-psabi) # wide vectors are passed between inlined functions only

# The names that the objects export, each with the release that brought it: what is listed stays.
set(KELS_EXPORTS ${CMAKE_CURRENT_LIST_DIR}/../src/exports.txt)
set(KELS_VERSION_SCRIPT ${PROJECT_BINARY_DIR}/exports.map)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${KELS_EXPORTS})
file(READ ${KELS_EXPORTS} exports)
string(REGEX REPLACE " [^\n]*\n" ";\n" exports "${exports}")
file(CONFIGURE OUTPUT ${KELS_VERSION_SCRIPT} CONTENT "{\nglobal:\n${exports}local: *;\n};\n" @ONLY)

# kels_add_level(<target> <level> <output directory> <sources...>)
function(kels_add_level target level directory)
  add_library(${target} SHARED ${ARGN})
  target_compile_options(${target} PRIVATE ${KELS_COMPILE_OPTIONS} ${KELS_FLAGS_${level}})
  target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR}/src)
  target_include_directories(${target} PUBLIC
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
  if(NOT KELS_SANITIZE)
    # Nothing of the C++ library is called: programs in C load this one object.
    target_link_options(${target} PRIVATE -Wl,-z,defs -Wl,--as-needed -static-libgcc
      -Wl,--version-script=${KELS_VERSION_SCRIPT})
    set_target_properties(${target} PROPERTIES LINK_DEPENDS ${KELS_VERSION_SCRIPT})
  endif()
  set_target_properties(${target} PROPERTIES
    OUTPUT_NAME kels VERSION 2 SOVERSION 2
    CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON
    LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/${directory})
endfunction()

# The library tells the date of its build. Where one is given, for the sake of builds that give the same bytes, it is that
# one: g++ knows how, but clang has not learnt it before version 16.
function(kels_date_build source)
  if(DEFINED ENV{SOURCE_DATE_EPOCH})
    string(TIMESTAMP date "%b %d %Y" UTC)
    string(REPLACE " 0" "  " date "${date}")
    set_source_files_properties(${source} PROPERTIES
      COMPILE_OPTIONS "-Wno-builtin-macro-redefined;-D__DATE__=\"${date}\"")
  endif()
endfunction()

# kels_add_library(<sources...>): target `kels`, which programs link, and one more target for each further level.
function(kels_add_library)
  kels_add_level(kels ${KELS_FIRST_LEVEL} lib ${ARGN})
  add_library(kels::kels ALIAS kels)
  foreach(level IN LISTS KELS_LEVELS)
    if(NOT level STREQUAL KELS_FIRST_LEVEL)
      kels_add_level(kels-${level} ${level} lib/glibc-hwcaps/x86-64-${level} ${ARGN})
      add_dependencies(kels kels-${level})
    endif()
  endforeach()
  kels_date_build(frame/version.cpp)
endfunction()
