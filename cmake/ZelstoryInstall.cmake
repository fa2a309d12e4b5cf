# The install rules, and the package that find_package finds.
include(CMakePackageConfigHelpers)

set(ZELSTORY_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/zelstoryparser)
set(ZELSTORY_ZSH_DIR ${CMAKE_INSTALL_DATADIR}/zsh/site-functions
    CACHE STRING "The folder for zsh completions")

# Components: libraries (what programs need to run), development, tool. Consumers see the shared and the
# static libraries under the same target names, so each form has its own file.
if(BUILD_SHARED_LIBS)
  set(ZELSTORY_FORM Shared)
else()
  set(ZELSTORY_FORM Static)
endif()
set(ZELSTORY_LIBRARIES zelstoryparser zelplatform)
if(ZELSTORY_HOST)
  list(APPEND ZELSTORY_LIBRARIES zelstoryhost)
  install(
    DIRECTORY include/zelstoryhost
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
    COMPONENT development)
endif()
install(
  TARGETS ${ZELSTORY_LIBRARIES}
  EXPORT zelstoryparser${ZELSTORY_FORM}Targets
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT libraries
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT libraries NAMELINK_COMPONENT development
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
set(ZELSTORY_FORMS ${ZELSTORY_FORM})
if(TARGET zelstoryparser_static)
  list(TRANSFORM ZELSTORY_LIBRARIES APPEND _static OUTPUT_VARIABLE twins)
  install(
    TARGETS ${twins}
    EXPORT zelstoryparserStaticTargets
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
  list(APPEND ZELSTORY_FORMS Static)
endif()
foreach(form IN LISTS ZELSTORY_FORMS)
  install(
    EXPORT zelstoryparser${form}Targets
    NAMESPACE zelstoryparser::
    DESTINATION ${ZELSTORY_PACKAGE_DIR}
    COMPONENT development)
endforeach()

# An installed copy runs from anywhere and may be moved; in /usr the system's loader finds the libraries.
if(BUILD_SHARED_LIBS AND CMAKE_INSTALL_PREFIX STREQUAL "/usr")
  set_target_properties(${ZELSTORY_LIBRARIES} PROPERTIES INSTALL_RPATH "")
  if(ZELSTORY_TOOL)
    set_target_properties(zelstory PROPERTIES INSTALL_RPATH "")
  endif()
elseif(BUILD_SHARED_LIBS AND ZELSTORY_TOOL)
  file(RELATIVE_PATH libraries "${CMAKE_INSTALL_FULL_BINDIR}" "${CMAKE_INSTALL_FULL_LIBDIR}")
  set_property(TARGET zelstory APPEND PROPERTY INSTALL_RPATH "${ZELSTORY_ORIGIN}/${libraries}")
endif()

install(
  DIRECTORY include/zelstoryparser ${PROJECT_BINARY_DIR}/include/zelstoryparser
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
  COMPONENT development
  FILES_MATCHING
  PATTERN "*.h")
# The words of headings, to copy and change; the library holds them as well.
install(
  DIRECTORY headings/languages/
  DESTINATION ${CMAKE_INSTALL_DATADIR}/zelstory/headings
  COMPONENT libraries
  FILES_MATCHING
  PATTERN "*.headings")
# The platform's public headers; all others are internal.
foreach(
  header
  zelcore/CommonSequence.h
  zelcore/Export.h
  zelcore/RefCountedObject.h
  zelcore/SmallBlocks.h
  zelcore/String.h
  zelcore/config/Localizer.h
  zelcore/filesupport/Dir.h
  zelcore/filesupport/File.h
  zelcore/xml/AbstractParseHandler.h
  zelcore/xml/Position.h
  zelcore/xml/Reader.h
  zelmetadata/Path.h
  xmptoolkit/PacketPatch.h
  xmptoolkit/XMP.h
  xmptoolkit/XMPTree.h
  xmptoolkit/XMPTypes.h)
  get_filename_component(folder ${header} DIRECTORY)
  install(FILES platform/${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${folder}
          COMPONENT development)
endforeach()

configure_package_config_file(
  cmake/zelstoryparserConfig.cmake.in ${PROJECT_BINARY_DIR}/zelstoryparserConfig.cmake
  INSTALL_DESTINATION ${ZELSTORY_PACKAGE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/zelstoryparserConfigVersion.cmake
                                 COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/zelstoryparserConfig.cmake
              ${PROJECT_BINARY_DIR}/zelstoryparserConfigVersion.cmake
        DESTINATION ${ZELSTORY_PACKAGE_DIR} COMPONENT development)

# The pkg-config file. The needs of the static libraries are in the fields for --static, or, if only
# static libraries are installed, in the normal fields.
foreach(folder LIBDIR INCLUDEDIR)
  if(IS_ABSOLUTE "${CMAKE_INSTALL_${folder}}")
    set(ZELSTORY_PC_${folder} "${CMAKE_INSTALL_${folder}}")
  else()
    set(ZELSTORY_PC_${folder} "\${prefix}/${CMAKE_INSTALL_${folder}}")
  endif()
endforeach()
if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
  set(ZELSTORY_PC_PREFIX "${CMAKE_INSTALL_PREFIX}")
else() # relative to the file, so that an installed copy may be moved
  file(RELATIVE_PATH up "/p/${CMAKE_INSTALL_LIBDIR}/pkgconfig" /p)
  set(ZELSTORY_PC_PREFIX "\${pcfiledir}/${up}")
endif()
if(BUILD_SHARED_LIBS)
  set(private _PRIVATE)
  set(ZELSTORY_PC_WHEN_STATIC .private)
endif()
set(ZELSTORY_PC_CFLAGS${private} "-DZELSTORYPARSER_STATIC -DZELPLATFORM_STATIC")
set(ZELSTORY_PC_LIBS${private} "-lpthread")
set(ZELSTORY_PC_HOST_CFLAGS${private} "-DZELSTORYHOST_STATIC")
set(ZELSTORY_PC_HOST_LIBS${private} "-lcsv")
set(ZELSTORY_PC_HOST_REQUIRES${private} "libutf8proc")
if(ZELSTORY_ACL_FOUND)
  string(APPEND ZELSTORY_PC_HOST_REQUIRES${private} " libacl libattr")
endif()
if(ZELSTORY_LIBRARY_MIMALLOC)
  string(APPEND ZELSTORY_PC_LIBS${private} " -lmimalloc")
endif()
set(ZELSTORY_PC_FILES zelstoryparser.pc)
if(ZELSTORY_HOST)
  list(APPEND ZELSTORY_PC_FILES zelstoryhost.pc)
endif()
foreach(file IN LISTS ZELSTORY_PC_FILES)
  configure_file(cmake/${file}.in ${PROJECT_BINARY_DIR}/${file} @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${file}
          DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
endforeach()

if(NOT ZELSTORY_TOOL)
  return()
endif()
install(TARGETS zelstory RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tool)
set(manual ${PROJECT_SOURCE_DIR}/tools/zelstory/zelstory.1)
find_program(ZELSTORY_GZIP gzip)
if(ZELSTORY_GZIP) # manual pages are installed compressed
  add_custom_command(
    OUTPUT ${PROJECT_BINARY_DIR}/zelstory.1.gz
    COMMAND ${ZELSTORY_GZIP} -9nc ${manual} > ${PROJECT_BINARY_DIR}/zelstory.1.gz
    DEPENDS ${manual}
    VERBATIM)
  add_custom_target(zelstory_manual ALL DEPENDS ${PROJECT_BINARY_DIR}/zelstory.1.gz)
  set(manual ${PROJECT_BINARY_DIR}/zelstory.1.gz)
endif()
install(FILES ${manual} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tool)
set(completions tools/zelstory/completions)
install(FILES ${completions}/zelstory.bash RENAME zelstory COMPONENT tool
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
install(FILES ${completions}/_zelstory DESTINATION ${ZELSTORY_ZSH_DIR} COMPONENT tool)
install(FILES ${completions}/zelstory.fish COMPONENT tool
        DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
