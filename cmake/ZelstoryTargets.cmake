# What our own targets share. Nothing here leaks into a project that adds this one.

if(ZELSTORY_HARDENING)
  include(CheckCXXCompilerFlag)
  include(CheckLinkerFlag)
  check_cxx_compiler_flag(-fstack-protector-strong ZELSTORY_HAS_STACK_PROTECTOR)
  check_cxx_compiler_flag(-fcf-protection ZELSTORY_HAS_CF_PROTECTION)
  check_linker_flag(CXX "LINKER:-z,relro,-z,now" ZELSTORY_HAS_RELRO)
endif()

# Where the loader finds the shared libraries, alike in the build folder and in an installed copy: a path
# that CMake exchanges while installing is padded with empty entries, and an empty entry is the current
# folder. Programs that are never installed name the build folder.
set(ZELSTORY_LIBRARY_DIR ${PROJECT_BINARY_DIR}/lib)
set(ZELSTORY_TOOL_DIR ${PROJECT_BINARY_DIR}/bin)
if(APPLE)
  set(ZELSTORY_ORIGIN "@loader_path")
else()
  set(ZELSTORY_ORIGIN "\$ORIGIN")
endif()
if(PROJECT_IS_TOP_LEVEL OR ZELSTORY_INSTALL) # else a host decides where its binaries are, and how they are found
  if(NOT DEFINED CMAKE_LIBRARY_OUTPUT_DIRECTORY)
    set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY ${ZELSTORY_LIBRARY_DIR})
    set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${ZELSTORY_LIBRARY_DIR})
  endif()
  set(CMAKE_BUILD_WITH_INSTALL_RPATH ON)
  set(CMAKE_INSTALL_RPATH ${ZELSTORY_LIBRARY_DIR})
  set(CMAKE_INSTALL_RPATH_USE_LINK_PATH ON) # dependencies outside the system's folders
endif()

# What the platform offers against faults that are left. Debian's compilers make position-independent
# programs by themselves.
function(zelstory_harden target)
  if(ZELSTORY_HAS_STACK_PROTECTOR)
    target_compile_options(${target} PRIVATE -fstack-protector-strong)
  endif()
  if(ZELSTORY_HAS_CF_PROTECTION)
    target_compile_options(${target} PRIVATE -fcf-protection)
  endif()
  if(NOT MSVC) # needs an optimising compiler
    target_compile_options(${target} PRIVATE $<$<CONFIG:Release,RelWithDebInfo>:-U_FORTIFY_SOURCE
                                             -D_FORTIFY_SOURCE=2>)
  endif()
  if(ZELSTORY_HAS_RELRO)
    target_link_options(${target} PRIVATE LINKER:-z,relro,-z,now)
  endif()
endfunction()

function(zelstory_options target)
  target_compile_features(${target} PUBLIC cxx_std_20)
  set_target_properties(${target} PROPERTIES CXX_EXTENSIONS OFF)
  if(ZELSTORY_WARNINGS AND NOT MSVC)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wconversion)
    # GCC 12 sees overlaps in "text" + std::string where there are none (its bug 105651).
    if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
      target_compile_options(${target} PRIVATE -Wno-restrict)
      if(ZELSTORY_SANITIZE) # nor can it see through std::regex when that is instrumented (105562)
        target_compile_options(${target} PRIVATE -Wno-maybe-uninitialized)
      endif()
    endif()
    if(ZELSTORY_WERROR)
      target_compile_options(${target} PRIVATE -Werror)
    endif()
  endif()
  if(ZELSTORY_HARDENING AND NOT ZELSTORY_SANITIZE)
    zelstory_harden(${target})
  endif()
  if(ZELSTORY_SANITIZE)
    target_compile_options(${target} PRIVATE -fsanitize=${ZELSTORY_SANITIZE} -fno-omit-frame-pointer
                                             -fno-sanitize-recover=all)
    target_link_options(${target} PRIVATE -fsanitize=${ZELSTORY_SANITIZE})
  endif()
endfunction()

# Compiles the headers of other projects once per target, since they take longer than our own sources. Every
# source still includes what it needs: the presets clang, asan and tsan compile without.
function(zelstory_precompile target)
  if(NOT ZELSTORY_PRECOMPILE)
    return()
  endif()
  target_precompile_headers(${target} PRIVATE ${ARGN})
  # GCC 12 also warns of the standard library's own inlined code when it comes from such a header.
  if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    target_compile_options(${target} PRIVATE -Wno-stringop-overflow)
  endif()
endfunction()

# A library of ours: exports only what is marked. `prefix` begins its macros; STATIC behind it makes
# it static also where the others are shared.
function(zelstory_library target prefix)
  zelstory_options(${target})
  zelstory_precompile(${target} <algorithm> <functional> <map> <memory> <string> <vector>)
  set_target_properties(
    ${target}
    PROPERTIES CXX_VISIBILITY_PRESET hidden
               VISIBILITY_INLINES_HIDDEN ON
               POSITION_INDEPENDENT_CODE ON
               INSTALL_RPATH ${ZELSTORY_ORIGIN}
               VERSION ${PROJECT_VERSION}
               SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
  target_compile_definitions(${target} PRIVATE ${prefix}_BUILDING)
  if(NOT BUILD_SHARED_LIBS OR "STATIC" IN_LIST ARGN)
    target_compile_definitions(${target} PUBLIC ${prefix}_STATIC)
  endif()
endfunction()

# The static library that is installed beside a shared one, in one name with it. Compiled by itself:
# what goes into an archive may not be marked as exported, or every program and plug-in that takes it
# in would export it again.
function(zelstory_static_twin target prefix)
  add_library(${target}_static STATIC ${ARGN})
  zelstory_library(${target}_static ${prefix} STATIC)
  set_target_properties(${target}_static PROPERTIES EXPORT_NAME ${target})
  if(NOT WIN32) # where the import library has that name
    set_target_properties(${target}_static PROPERTIES OUTPUT_NAME ${target})
  endif()
endfunction()

# Tests are compiled without optimisation, which takes a third less time; what they link has it.
function(zelstory_not_optimised target)
  if(NOT MSVC)
    target_compile_options(${target} PRIVATE $<$<CONFIG:Release>:-O0 -U_FORTIFY_SOURCE>)
  endif()
endfunction()

# The headers of the test library are compiled once, for all test programs.
function(zelstory_precompile_tests target)
  if(NOT ZELSTORY_PRECOMPILE)
    return()
  endif()
  if(NOT TARGET zelstory_test_headers)
    file(GENERATE OUTPUT ${PROJECT_BINARY_DIR}/tests/TestHeaders.cpp CONTENT "")
    add_library(zelstory_test_headers OBJECT ${PROJECT_BINARY_DIR}/tests/TestHeaders.cpp)
    target_link_libraries(zelstory_test_headers PRIVATE GTest::gmock)
    zelstory_options(zelstory_test_headers)
    zelstory_not_optimised(zelstory_test_headers)
    set(headers <gmock/gmock.h> <gtest/gtest.h> <filesystem>)
    if(ZELSTORY_TOOL)
      target_link_libraries(zelstory_test_headers PRIVATE nlohmann_json::nlohmann_json)
      list(APPEND headers <nlohmann/json.hpp>)
    endif()
    target_precompile_headers(zelstory_test_headers PRIVATE ${headers})
  endif()
  target_precompile_headers(${target} REUSE_FROM zelstory_test_headers)
endfunction()

# A program beside the library: a test, an example, a benchmark. Its file is NAME and its target, which
# `target` becomes, zelstory_NAME, so that it clashes with none of a host's.
macro(zelstory_add_program name)
  string(REGEX REPLACE "^zelstory_" "" target ${name})
  set(target zelstory_${target})
  add_executable(${target} ${ARGN})
  set_target_properties(${target} PROPERTIES OUTPUT_NAME ${name})
  zelstory_options(${target})
endmacro()

# A test program whose cases ctest runs one by one. Tests may include the headers of every folder.
function(zelstory_add_tests name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBRARIES" ${ARGN})
  zelstory_add_program(${name} ${ARG_SOURCES})
  target_link_libraries(${target} PRIVATE ${ARG_LIBRARIES} GTest::gmock_main)
  target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/tests)
  target_compile_definitions(${target}
                             PRIVATE ZELSTORY_EXAMPLES_DIR="${PROJECT_SOURCE_DIR}/examples")
  set_target_properties(${target} PROPERTIES RUNTIME_OUTPUT_DIRECTORY
                                             ${PROJECT_BINARY_DIR}/tests)
  zelstory_not_optimised(${target})
  zelstory_precompile_tests(${target})
  list(FILTER ARG_SOURCES EXCLUDE REGEX "Test\\.cpp$") # what needs none of these headers
  set_source_files_properties(${ARG_SOURCES} PROPERTIES SKIP_PRECOMPILE_HEADERS ON)
  gtest_discover_tests(${target} DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 300)
endfunction()
