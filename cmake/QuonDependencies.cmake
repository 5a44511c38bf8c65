# The libraries of host and tests, as targets that are the same everywhere: quon_cli11, quon_json and
# quon_googletest. With MSVC they are CMake packages, which vcpkg installs from the manifest vcpkg.json. Elsewhere they are
# Debian's packages: headers for the build machine and sources, of which only what is named here may be used when
# compiling for Windows.

# quon_find_headers(<target> HEADER <folder/file> PACKAGE <package> IMPORTED <target of the package>)
function(quon_find_headers target)
  cmake_parse_arguments(arg "" "HEADER;PACKAGE;IMPORTED" "" ${ARGN})
  add_library(${target} INTERFACE)
  if(MSVC)
    find_package(${arg_PACKAGE} CONFIG REQUIRED GLOBAL)
    target_link_libraries(${target} INTERFACE ${arg_IMPORTED})
    return()
  endif()
  find_path(${target}_dir ${arg_HEADER} PATHS /usr/include NO_CMAKE_FIND_ROOT_PATH
    DOC "Folder with the headers of ${arg_PACKAGE}")
  if(NOT ${target}_dir)
    message(FATAL_ERROR "${arg_PACKAGE} is missing: run scripts/setup.sh, or configure with -DQUON_BUILD_HOST=OFF")
  endif()
  get_filename_component(folder ${arg_HEADER} DIRECTORY)
  file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/headers/${target})
  file(CREATE_LINK ${${target}_dir}/${folder} ${CMAKE_BINARY_DIR}/headers/${target}/${folder} SYMBOLIC)
  target_include_directories(${target} SYSTEM INTERFACE ${CMAKE_BINARY_DIR}/headers/${target})
endfunction()

# GoogleTest from Debian's sources, cross-compiled by this build.
function(quon_build_googletest)
  set(QUON_GOOGLETEST_DIR /usr/src/googletest CACHE PATH "Sources of GoogleTest")
  if(NOT EXISTS ${QUON_GOOGLETEST_DIR}/CMakeLists.txt)
    message(FATAL_ERROR
      "No GoogleTest sources in ${QUON_GOOGLETEST_DIR}: run scripts/setup.sh or set QUON_GOOGLETEST_DIR")
  endif()
  set(BUILD_GMOCK ON)
  set(INSTALL_GTEST OFF)
  add_subdirectory(${QUON_GOOGLETEST_DIR} ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
  # Nobody debugs the test framework; without its debug information every test program links in half the time.
  foreach(library gtest gmock gtest_main)
    target_compile_options(${library} PRIVATE -g0)
  endforeach()
endfunction()

if(QUON_BUILD_HOST)
  quon_find_headers(quon_cli11 HEADER CLI/CLI.hpp PACKAGE CLI11 IMPORTED CLI11::CLI11)
  quon_find_headers(quon_json HEADER nlohmann/json.hpp PACKAGE nlohmann_json IMPORTED nlohmann_json::nlohmann_json)
endif()
if(BUILD_TESTING)
  add_library(quon_googletest INTERFACE)
  if(MSVC)
    find_package(GTest CONFIG REQUIRED GLOBAL)
    target_link_libraries(quon_googletest INTERFACE GTest::gmock GTest::gtest GTest::gtest_main)
  else()
    quon_build_googletest()
    target_link_libraries(quon_googletest INTERFACE gmock gtest gtest_main)
  endif()
endif()
