# Provides GTest::gtest_main: the installed package, or the sources that Debian's package brings along when the build
# is for another system than this one.

if(NOT CMAKE_CROSSCOMPILING)
  find_package(GTest REQUIRED)
  return()
endif()

set(VXFILEIO_GTEST_SOURCES /usr/src/googletest CACHE PATH "Sources of GoogleTest")
set(BUILD_GMOCK OFF)
set(INSTALL_GTEST OFF)
add_subdirectory(${VXFILEIO_GTEST_SOURCES} ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
