# What `cmake --install` puts where, and the package that find_package finds.
include(CMakePackageConfigHelpers)

set(ZELSTORY_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/zelstoryparser)

install(
  TARGETS zelstoryparser zelplatform
  EXPORT zelstoryparserTargets
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(
  DIRECTORY include/zelstoryparser ${PROJECT_BINARY_DIR}/include/zelstoryparser
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
  FILES_MATCHING
  PATTERN "*.h")
# The platform's public headers; those that are missing here are its own affair.
foreach(
  header
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
  xmptoolkit/XMP.h
  xmptoolkit/XMPTree.h)
  get_filename_component(folder ${header} DIRECTORY)
  install(FILES platform/${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${folder})
endforeach()
install(EXPORT zelstoryparserTargets NAMESPACE zelstoryparser:: DESTINATION ${ZELSTORY_PACKAGE_DIR})

configure_package_config_file(
  cmake/zelstoryparserConfig.cmake.in ${PROJECT_BINARY_DIR}/zelstoryparserConfig.cmake
  INSTALL_DESTINATION ${ZELSTORY_PACKAGE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/zelstoryparserConfigVersion.cmake
                                 COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/zelstoryparserConfig.cmake
              ${PROJECT_BINARY_DIR}/zelstoryparserConfigVersion.cmake
        DESTINATION ${ZELSTORY_PACKAGE_DIR})

# For pkg-config. Static libraries carry their own dependencies on.
foreach(folder LIBDIR INCLUDEDIR)
  if(IS_ABSOLUTE "${CMAKE_INSTALL_${folder}}")
    set(ZELSTORY_PC_${folder} "${CMAKE_INSTALL_${folder}}")
  else()
    set(ZELSTORY_PC_${folder} "\${prefix}/${CMAKE_INSTALL_${folder}}")
  endif()
endforeach()
if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
  set(ZELSTORY_PC_PREFIX "${CMAKE_INSTALL_PREFIX}")
else() # found from where the file stands, so that an installed copy may be moved
  file(RELATIVE_PATH up "/p/${CMAKE_INSTALL_LIBDIR}/pkgconfig" /p)
  set(ZELSTORY_PC_PREFIX "\${pcfiledir}/${up}")
endif()
if(NOT BUILD_SHARED_LIBS)
  set(ZELSTORY_PC_DEPENDENCIES "Requires: libxml-2.0")
  set(ZELSTORY_PC_LIBS "-lpthread")
  set(ZELSTORY_PC_CFLAGS "-DZELSTORYPARSER_STATIC -DZELPLATFORM_STATIC")
  if(ZELSTORY_MIMALLOC)
    string(APPEND ZELSTORY_PC_LIBS " -lmimalloc")
  endif()
endif()
configure_file(cmake/zelstoryparser.pc.in ${PROJECT_BINARY_DIR}/zelstoryparser.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/zelstoryparser.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

if(ZELSTORY_TOOL)
  install(TARGETS zelstory RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()
