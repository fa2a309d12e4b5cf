# CPack settings for the Debian packages of the libraries, the development files and the tool.
# scripts/package makes and checks them.

# The address is in a reserved domain. Set your own when you publish packages.
set(ZELSTORY_MAINTAINER "The zelstoryparser authors <zelstoryparser@example.org>"
    CACHE STRING "The maintainer of the packages: Name <address>")

# The library's package is named after its soname, so that versions with different interfaces can be
# installed side by side.
get_target_property(soversion zelstoryparser SOVERSION)
set(CPACK_DEBIAN_LIBRARIES_PACKAGE_NAME libzelstoryparser${soversion})
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libzelstoryparser-dev)
set(CPACK_DEBIAN_TOOL_PACKAGE_NAME zelstory)

set(CPACK_GENERATOR DEB)
set(CPACK_COMPONENTS_ALL libraries development)
if(ZELSTORY_TOOL)
  list(APPEND CPACK_COMPONENTS_ALL tool)
endif()
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SOURCE zelstoryparser)
set(CPACK_DEBIAN_PACKAGE_RELEASE 0.1) # usual for packages that are not from Debian
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "${ZELSTORY_MAINTAINER}")
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_STRIP_FILES ON)

# The trigger updates the loader's cache. The missing files keep CPack from generating its own ldconfig
# scripts.
file(WRITE ${PROJECT_BINARY_DIR}/triggers "activate-noawait ldconfig\n")
set(CPACK_DEBIAN_LIBRARIES_PACKAGE_CONTROL_EXTRA
    ${PROJECT_BINARY_DIR}/triggers ${PROJECT_BINARY_DIR}/none/postinst ${PROJECT_BINARY_DIR}/none/postrm)

# Dependencies: the libraries that the binaries link, the other packages, and what the headers and
# archives need.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${ZELSTORY_LIBRARY_DIR})
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS libraries)
set(CPACK_COMPONENT_TOOL_DEPENDS libraries)
# libxml2-dev does not depend on the libraries that pkg-config --static links for it.
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
    "libboost-dev (>= 1.74), libxml2-dev, zlib1g-dev, liblzma-dev, libutf8proc-dev")
if(ZELSTORY_HOST)
  string(APPEND CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS ", libcsv-dev")
endif()
if(ZELSTORY_ACL_FOUND)
  string(APPEND CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS ", libacl1-dev, libattr1-dev")
endif()
if(ZELSTORY_LIBRARY_MIMALLOC)
  string(APPEND CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS ", libmimalloc-dev")
endif()

set(CPACK_DEBIAN_LIBRARIES_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_TOOL_PACKAGE_SECTION video)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # would be prefixed to each of these
function(zelstory_describe component form content)
  set(CPACK_DEBIAN_${component}_DESCRIPTION
      "screenplays in the XMP metadata of clips (${form})
zelstoryparser reads story documents, validates their structure, and writes
what a scene says into the XMP metadata of clips: its setting, location and
time of day, its action and its dialogue.
.
${content}"
      PARENT_SCOPE)
endfunction()
zelstory_describe(LIBRARIES "libraries"
                  "This package contains the shared libraries, which programs need to run.")
zelstory_describe(
  DEVELOPMENT "development files"
  "This package contains the headers, the static libraries, and the CMake and\npkg-config files.")
zelstory_describe(
  TOOL "command-line tool"
  "This package contains the command-line tool, its manual page, and completions\nfor bash, zsh and fish.")

# Files that Debian requires in every package; cmake --install does not install them.
string(TIMESTAMP ZELSTORY_PACKAGE_DATE "%a, %d %b %Y %H:%M:%S +0000" UTC)
configure_file(packaging/changelog.in ${PROJECT_BINARY_DIR}/changelog.Debian @ONLY)
find_program(ZELSTORY_GZIP gzip)
if(ZELSTORY_GZIP)
  execute_process(COMMAND ${ZELSTORY_GZIP} -9nkf ${PROJECT_BINARY_DIR}/changelog.Debian)
endif()
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  string(TOUPPER ${component} name)
  set(name ${CPACK_DEBIAN_${name}_PACKAGE_NAME})
  install(
    FILES packaging/copyright ${PROJECT_BINARY_DIR}/changelog.Debian.gz
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${name}
    COMPONENT ${component}
    EXCLUDE_FROM_ALL)
endforeach()
include(CPack)
