# Settings for every target of the project: language, build type, platform, folders, warnings.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)

if(PROJECT_IS_TOP_LEVEL)
  get_property(has_many_configurations GLOBAL PROPERTY GENERATOR_IS_MULTI_CONFIG)
  if(NOT has_many_configurations AND NOT CMAKE_BUILD_TYPE)
    set(CMAKE_BUILD_TYPE Release CACHE STRING "Build type" FORCE)
  endif()
  # On Windows, programs need their DLL in the same folder.
  set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
endif()

# The part of the names of those sources that only one platform compiles.
if(WIN32)
  set(VXFILEIO_PLATFORM Windows)
elseif(UNIX)
  set(VXFILEIO_PLATFORM Posix)
else()
  message(FATAL_ERROR "${CMAKE_SYSTEM_NAME} isn't supported; see \"Adding a platform\" in CONTRIBUTING.md")
endif()

# vxfileio_warnings(TARGET): switches on the warnings that every target of the project is built with.
function(vxfileio_warnings target)
  if(MSVC)
    target_compile_options(${target} PRIVATE /W4 /permissive- /utf-8 $<$<BOOL:${VXFILEIO_WERROR}>:/WX>)
  else()
    target_compile_options(
      ${target} PRIVATE -Wall -Wextra -Wpedantic -Wconversion -Wshadow $<$<BOOL:${VXFILEIO_WERROR}>:-Werror>)
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
      # GCC 12 wrongly reports overlapping copies inside its own std::string (GCC bug 105651).
      target_compile_options(${target} PRIVATE -Wno-restrict)
    endif()
  endif()
endfunction()
