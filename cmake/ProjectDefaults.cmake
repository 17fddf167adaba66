# What holds for every target of the project: language, kind of build, folders, warnings.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)

if(PROJECT_IS_TOP_LEVEL)
  get_property(has_many_configurations GLOBAL PROPERTY GENERATOR_IS_MULTI_CONFIG)
  if(NOT has_many_configurations AND NOT CMAKE_BUILD_TYPE)
    set(CMAKE_BUILD_TYPE Release CACHE STRING "Kind of build" FORCE)
  endif()
  # Programs and, on Windows, the DLL that they need lie side by side.
  set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
endif()

# vxfileio_warnings(TARGET): the warnings that every target of the project builds under.
function(vxfileio_warnings target)
  if(MSVC)
    target_compile_options(${target} PRIVATE /W4 /permissive- /utf-8 $<$<BOOL:${VXFILEIO_WERROR}>:/WX>)
  else()
    target_compile_options(
      ${target} PRIVATE -Wall -Wextra -Wpedantic -Wconversion -Wshadow $<$<BOOL:${VXFILEIO_WERROR}>:-Werror>)
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
      # GCC 12 sees overlapping copies inside its own std::string, which are none (its bug 105651).
      target_compile_options(${target} PRIVATE -Wno-restrict)
    endif()
  endif()
endfunction()
