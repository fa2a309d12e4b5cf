# Makes a source that holds the files of headings/languages, so that the library needs none of them at run
# time; `source` is set to it.
function(zelstory_embed_languages source)
  file(GLOB files CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/headings/languages/*.headings)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${files})
  foreach(file IN LISTS files)
    get_filename_component(name ${file} NAME_WE)
    file(READ ${file} text)
    string(APPEND ZELSTORY_LANGUAGES "      {\"${name}\", R\"headings(${text})headings\"},\n")
  endforeach()
  set(output ${PROJECT_BINARY_DIR}/headings/Languages.cpp)
  configure_file(${PROJECT_SOURCE_DIR}/headings/Languages.cpp.in ${output} @ONLY)
  set(${source} ${output} PARENT_SCOPE)
endfunction()
