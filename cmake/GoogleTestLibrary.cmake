# Provides GTest::gtest_main: from the installed package or, in a cross build, from the sources in Debian's package.

if(NOT CMAKE_CROSSCOMPILING)
  find_package(GTest REQUIRED)
  return()
endif()

set(VXFILEIO_GTEST_SOURCES /usr/src/googletest CACHE PATH "Sources of GoogleTest")
set(BUILD_GMOCK OFF)
set(INSTALL_GTEST OFF)
add_subdirectory(${VXFILEIO_GTEST_SOURCES} ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
