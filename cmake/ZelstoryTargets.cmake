# Settings that the project's targets share. None of them leaks into a project that adds this one.

if(ZELSTORY_HARDENING)
  include(CheckCXXCompilerFlag)
  include(CheckLinkerFlag)
  check_cxx_compiler_flag(-fstack-protector-strong ZELSTORY_HAS_STACK_PROTECTOR)
  check_cxx_compiler_flag(-fcf-protection ZELSTORY_HAS_CF_PROTECTION)
  check_linker_flag(CXX "LINKER:-z,relro,-z,now" ZELSTORY_HAS_RELRO)
endif()

# Where the loader finds the shared libraries, the same in the build folder and in an installed copy. If
# CMake replaced the path on installation, it would pad it with empty entries, and an empty entry means the
# current folder. Programs that are never installed name the build folder.
set(ZELSTORY_LIBRARY_DIR ${PROJECT_BINARY_DIR}/lib)
set(ZELSTORY_TOOL_DIR ${PROJECT_BINARY_DIR}/bin)
if(APPLE)
  set(ZELSTORY_ORIGIN "@loader_path")
else()
  set(ZELSTORY_ORIGIN "\$ORIGIN")
endif()
if(PROJECT_IS_TOP_LEVEL OR ZELSTORY_INSTALL) # otherwise the host decides where its binaries are and how they are found
  if(NOT DEFINED CMAKE_LIBRARY_OUTPUT_DIRECTORY)
    set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY ${ZELSTORY_LIBRARY_DIR})
    set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${ZELSTORY_LIBRARY_DIR})
  endif()
  set(CMAKE_BUILD_WITH_INSTALL_RPATH ON)
  set(CMAKE_INSTALL_RPATH ${ZELSTORY_LIBRARY_DIR})
  set(CMAKE_INSTALL_RPATH_USE_LINK_PATH ON) # dependencies outside the system's folders
endif()

# Hardens a target. Debian's compilers make position-independent programs by default.
function(zelstory_harden target)
  if(ZELSTORY_HAS_STACK_PROTECTOR)
    target_compile_options(${target} PRIVATE -fstack-protector-strong)
  endif()
  if(ZELSTORY_HAS_CF_PROTECTION)
    target_compile_options(${target} PRIVATE -fcf-protection)
  endif()
  if(NOT MSVC) # requires optimisation
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
    # GCC 12 reports false overlaps in "text" + std::string (GCC bug 105651).
    if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
      target_compile_options(${target} PRIVATE -Wno-restrict)
      if(ZELSTORY_SANITIZE) # and false warnings in instrumented std::regex (GCC bug 105562)
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

# Precompiles the headers of other projects once per target, because they take longer to compile than the
# project's sources. Every source still includes what it needs: the presets clang, asan and tsan compile
# without precompiled headers.
function(zelstory_precompile target)
  if(NOT ZELSTORY_PRECOMPILE)
    return()
  endif()
  target_precompile_headers(${target} PRIVATE ${ARGN})
  # GCC 12 also warns about the standard library's inlined code if it comes from a precompiled header.
  if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    target_compile_options(${target} PRIVATE -Wno-stringop-overflow)
  endif()
endfunction()

# Sets up a library that exports only what is marked. `prefix` is the prefix of its macros; STATIC after it
# marks it as static even if the others are shared.
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

# Adds the static library that is installed beside a shared one, under the same name. It is compiled
# separately: symbols in an archive must not be marked as exported, or every program and plug-in that links
# it would export them again.
function(zelstory_static_twin target prefix)
  add_library(${target}_static STATIC ${ARGN})
  zelstory_library(${target}_static ${prefix} STATIC)
  set_target_properties(${target}_static PROPERTIES EXPORT_NAME ${target})
  if(NOT WIN32) # on Windows, the import library has that name
    set_target_properties(${target}_static PROPERTIES OUTPUT_NAME ${target})
  endif()
endfunction()

# Compiles tests without optimisation, which takes a third less time; the libraries they link are optimised.
function(zelstory_not_optimised target)
  if(NOT MSVC)
    target_compile_options(${target} PRIVATE $<$<CONFIG:Release>:-O0 -U_FORTIFY_SOURCE>)
  endif()
endfunction()

# Precompiles the headers of the test library once for all test programs.
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

# Adds a test, an example or a benchmark. Its file is NAME. Its target is zelstory_NAME, which cannot clash
# with a host's targets; `target` is set to it.
macro(zelstory_add_program name)
  string(REGEX REPLACE "^zelstory_" "" target ${name})
  set(target zelstory_${target})
  add_executable(${target} ${ARGN})
  set_target_properties(${target} PROPERTIES OUTPUT_NAME ${name})
  zelstory_options(${target})
endmacro()

# Adds a test program whose cases ctest runs one by one. Tests may include the headers of every folder.
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
  list(FILTER ARG_SOURCES EXCLUDE REGEX "Test\\.cpp$") # sources that need none of these headers
  set_source_files_properties(${ARG_SOURCES} PROPERTIES SKIP_PRECOMPILE_HEADERS ON)
  gtest_discover_tests(${target} DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 300)
endfunction()
