# Packages: five for Debian, a sixth with the Python package if that is built, or an archive for Windows. scripts/package
# makes and tries them.

set(CPACK_PACKAGE_NAME vxfileio)
set(CPACK_PACKAGE_CONTACT "VX-FileIO <vx-fileio@invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY ${PROJECT_DESCRIPTION})
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_STRIP_FILES ON)
set(CMAKE_SKIP_INSTALL_ALL_DEPENDENCY ON) # packaging doesn't need to build tests and examples
set(CPACK_COMPONENTS_ALL library development c_library c_development tool)
if(VXFILEIO_BUILD_PYTHON)
  list(APPEND CPACK_COMPONENTS_ALL python)
endif()

if(WIN32)
  set(CPACK_GENERATOR ZIP)
  set(CPACK_COMPONENTS_GROUPING ALL_COMPONENTS_IN_ONE)
  install(FILES LICENSE DESTINATION . COMPONENT library)
else()
  set(CPACK_GENERATOR DEB)
  set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
  set(CPACK_COMPONENTS_GROUPING IGNORE)
  set(CPACK_DEB_COMPONENT_INSTALL ON)
  set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_CURRENT_BINARY_DIR}/vxfileio)
  set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME libvxfileio${PROJECT_VERSION_MAJOR})
  set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
  set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_BINARY_DIR}/triggers)
  set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libvxfileio-dev)
  set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
  set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
      "${CPACK_DEBIAN_LIBRARY_PACKAGE_NAME} (= ${PROJECT_VERSION})")
  set(CPACK_DEBIAN_C_LIBRARY_PACKAGE_NAME libvxfileio-c${PROJECT_VERSION_MAJOR})
  set(CPACK_DEBIAN_C_LIBRARY_PACKAGE_SECTION libs)
  set(CPACK_DEBIAN_C_LIBRARY_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_BINARY_DIR}/triggers)
  set(CPACK_DEBIAN_C_DEVELOPMENT_PACKAGE_NAME libvxfileio-c-dev)
  set(CPACK_DEBIAN_C_DEVELOPMENT_PACKAGE_SECTION libdevel)
  set(CPACK_DEBIAN_C_DEVELOPMENT_PACKAGE_DEPENDS
      "${CPACK_DEBIAN_C_LIBRARY_PACKAGE_NAME} (= ${PROJECT_VERSION})")
  set(CPACK_DEBIAN_TOOL_PACKAGE_NAME vxfile)
  set(CPACK_DEBIAN_TOOL_PACKAGE_SECTION science)
  set(CPACK_COMPONENT_LIBRARY_DESCRIPTION "The shared library.")
  set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "Headers, the static library, and files for CMake and pkg-config.")
  set(CPACK_COMPONENT_C_LIBRARY_DESCRIPTION "The shared library with the C interface, for every other language.")
  set(CPACK_COMPONENT_C_DEVELOPMENT_DESCRIPTION
      "The header of the C interface, its declarations for C#, Java and Python, and a file for pkg-config.")
  set(CPACK_COMPONENT_TOOL_DESCRIPTION "The program vxfile, which inspects, checks, compares and recovers the files.")
  set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-vxfileio)
  set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
  set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS "python3 (>= 3.11), python3 (<< 3.12), python3-numpy")
  set(CPACK_DEBIAN_PYTHON_PACKAGE_RECOMMENDS python3-pandas)
  set(CPACK_DEBIAN_PYTHON_PACKAGE_SUGGESTS "python3-matplotlib, python3-xarray")
  set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_BINARY_DIR}/python-deb/postinst
                                                ${CMAKE_CURRENT_BINARY_DIR}/python-deb/prerm)
  set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_STRICT_PERMISSION TRUE)
  set(CPACK_COMPONENT_PYTHON_DESCRIPTION "The Python package vxfileio, which reads and writes the files.")
  # Installing and removing the library updates the loader's cache.
  file(WRITE ${CMAKE_CURRENT_BINARY_DIR}/triggers "activate-noawait ldconfig\n")
  # Those of the Python package compile its modules and remove what was compiled.
  foreach(step IN ITEMS "postinst;py3compile" "prerm;py3clean")
    list(GET step 0 script)
    list(GET step 1 program)
    file(CONFIGURE OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/python-deb/${script}
         CONTENT "#!/bin/sh\nset -e\nif command -v ${program} >/dev/null; then ${program} -p python3-vxfileio; fi\n" @ONLY)
    file(CHMOD ${CMAKE_CURRENT_BINARY_DIR}/python-deb/${script}
         PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
  endforeach()
  foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    string(TOUPPER ${component} name)
    install(FILES LICENSE RENAME copyright COMPONENT ${component}
            DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/${CPACK_DEBIAN_${name}_PACKAGE_NAME})
  endforeach()
endif()

include(CPack)
