# vxfileio_group_sources(FOLDER): lets each target of a source folder and of its subfolders compile several of its sources
# as one, which takes half the time. scripts/source_groups.py chooses the groups each time CMake runs. After giving a
# source a private name that another one of its group has, run CMake again. Generated sources, and those with the
# property SKIP_UNITY_BUILD_INCLUSION, remain alone.
function(vxfileio_group_sources folder)
  set(list ${PROJECT_BINARY_DIR}/groups/targets.txt)
  file(WRITE ${list} "")
  vxfileio_list_sources(${folder} ${list})
  # Started for each target, Python would take longer than all the rest of CMake.
  execute_process(COMMAND /usr/bin/python3 ${PROJECT_SOURCE_DIR}/scripts/source_groups.py INPUT_FILE ${list}
                  OUTPUT_VARIABLE lines OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  string(REPLACE "\n" ";" lines "${lines}")
  foreach(line IN LISTS lines)
    string(REPLACE "|" ";" members "${line}")
    list(POP_FRONT members target number)
    vxfileio_add_group(${target} ${number} "${members}")
  endforeach()
endfunction()

# Writes each target of a source folder and of its subfolders to a file, one per line, with those of its sources that can
# be compiled as one, and takes these from the target.
function(vxfileio_list_sources folder file)
  get_property(targets DIRECTORY ${folder} PROPERTY BUILDSYSTEM_TARGETS)
  foreach(target IN LISTS targets)
    get_target_property(type ${target} TYPE)
    if(NOT type MATCHES "UTILITY|INTERFACE_LIBRARY")
      vxfileio_list_sources_of(${target} ${folder} ${file})
    endif()
  endforeach()
  get_property(subfolders DIRECTORY ${folder} PROPERTY SUBDIRECTORIES)
  foreach(subfolder IN LISTS subfolders)
    cmake_path(IS_PREFIX PROJECT_SOURCE_DIR ${subfolder} is_ours)
    if(is_ours)
      vxfileio_list_sources(${subfolder} ${file})
    endif()
  endforeach()
endfunction()

function(vxfileio_list_sources_of target folder file)
  get_target_property(rest ${target} SOURCES)
  set(line ${target})
  foreach(source IN LISTS rest)
    cmake_path(ABSOLUTE_PATH source BASE_DIRECTORY ${folder} NORMALIZE OUTPUT_VARIABLE path)
    get_source_file_property(is_alone ${path} TARGET_DIRECTORY ${target} SKIP_UNITY_BUILD_INCLUSION)
    cmake_path(IS_PREFIX PROJECT_BINARY_DIR "${path}" is_generated)
    if(path MATCHES "\\.cpp$" AND EXISTS ${path} AND NOT is_generated AND NOT is_alone)
      list(REMOVE_ITEM rest ${source})
      string(APPEND line "|${path}")
    endif()
  endforeach()
  if(NOT line STREQUAL target)
    file(APPEND ${file} "${line}\n")
    set_property(TARGET ${target} PROPERTY SOURCES ${rest})
  endif()
  # GCC warns of private classes in included sources as if these were headers.
  target_compile_options(${target} PRIVATE $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-Wno-subobject-linkage>)
endfunction()

# vxfileio_add_group(TARGET NUMBER SOURCES): adds a generated source that includes these, or the only one of them, to a target.
function(vxfileio_add_group target number members)
  list(LENGTH members count)
  if(count GREATER 1)
    list(JOIN members "\"\n#include \"" content)
    set(members ${PROJECT_BINARY_DIR}/groups/${target}_${number}.cpp)
    file(CONFIGURE OUTPUT ${members} CONTENT "#include \"${content}\"\n" @ONLY)
  endif()
  set_property(TARGET ${target} APPEND PROPERTY SOURCES ${members})
endfunction()
