# What `cmake --install` puts in place: the headers, the object of every level where the dynamic loader looks for it,
# the CMake package (find_package(kels) gives kels::kels) and kels.pc. Nothing in them names the prefix, so that an
# installed tree may be moved, or installed elsewhere by `cmake --install --prefix`.
include(CMakePackageConfigHelpers)

set(KELS_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/kels)
set(KELS_PKGCONFIG_DIR ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

install(DIRECTORY include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h")
if(KELS_CPP)
  install(DIRECTORY include/ ${KELS_MADE}/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.hpp")
endif()

# Programs link the object in the library directory itself; the further levels need no link name.
install(TARGETS kels EXPORT kelsTargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
foreach(level IN LISTS KELS_LEVELS)
  if(TARGET kels-${level})
    install(TARGETS kels-${level}
      LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/glibc-hwcaps/x86-64-${level} NAMELINK_SKIP)
  endif()
endforeach()

install(EXPORT kelsTargets NAMESPACE kels:: DESTINATION ${KELS_CMAKE_DIR})
configure_package_config_file(cmake/kelsConfig.cmake.in ${PROJECT_BINARY_DIR}/kelsConfig.cmake
  INSTALL_DESTINATION ${KELS_CMAKE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/kelsConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/kelsConfig.cmake ${PROJECT_BINARY_DIR}/kelsConfigVersion.cmake
  DESTINATION ${KELS_CMAKE_DIR})

# From the directory of kels.pc up to the prefix.
file(RELATIVE_PATH KELS_PKGCONFIG_TO_PREFIX /${KELS_PKGCONFIG_DIR} /)
string(REGEX REPLACE "/$" "" KELS_PKGCONFIG_TO_PREFIX ${KELS_PKGCONFIG_TO_PREFIX})
configure_file(cmake/kels.pc.in ${PROJECT_BINARY_DIR}/kels.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/kels.pc DESTINATION ${KELS_PKGCONFIG_DIR})
