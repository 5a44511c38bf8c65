# GoogleTest from Debian's sources, and the tests of the project.
set(QUON_GOOGLETEST_DIR /usr/src/googletest CACHE PATH "Sources of GoogleTest")
if(NOT EXISTS ${QUON_GOOGLETEST_DIR}/CMakeLists.txt)
  message(FATAL_ERROR "No GoogleTest sources in ${QUON_GOOGLETEST_DIR}: run scripts/setup.sh or set QUON_GOOGLETEST_DIR")
endif()
set(BUILD_GMOCK ON)
set(INSTALL_GTEST OFF)
add_subdirectory(${QUON_GOOGLETEST_DIR} ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
if(NOT MSVC)
  # Nobody debugs the test framework; without its debug information every test program links in half the time.
  foreach(library gtest gmock gtest_main)
    target_compile_options(${library} PRIVATE -g0)
  endforeach()
endif()

# Compiled once for all test programs: the test framework's headers are most of what a test source includes.
file(CONFIGURE OUTPUT ${CMAKE_BINARY_DIR}/test-headers.cpp CONTENT "")
add_library(quon_test_headers OBJECT ${CMAKE_BINARY_DIR}/test-headers.cpp)
target_link_libraries(quon_test_headers PRIVATE quon_compile_options gmock gtest)
target_precompile_headers(quon_test_headers PRIVATE <gmock/gmock.h> <gtest/gtest.h>)

# Every test that starts a Windows program needs the prefix, made and warm.
add_test(NAME wine-prefix COMMAND ${CMAKE_SOURCE_DIR}/scripts/wine-prefix.sh)
set_tests_properties(wine-prefix PROPERTIES FIXTURES_SETUP wine-prefix)

# What a thorough run puts in the place of the library's allocator.
add_library(quon_guard_pages OBJECT ${CMAKE_SOURCE_DIR}/tests/helpers/GuardPages.cpp)
target_link_libraries(quon_guard_pages PRIVATE quon_compile_options)
target_include_directories(quon_guard_pages PRIVATE ${CMAKE_SOURCE_DIR}/tests)

# quon_test(<name> SOURCES ... [LIBRARIES ...] [SERIAL] [TIMEOUT seconds] [FRAMEWORK target])
# One test program. SERIAL: it uses the registry, the locale or the clock of the whole prefix. FRAMEWORK: another build of
# the framework than the usual one. TIMEOUT: for what may take longer than the preset grants, which only ends what hangs.
function(quon_test name)
  cmake_parse_arguments(arg "SERIAL" "TIMEOUT;FRAMEWORK" "SOURCES;LIBRARIES" ${ARGN})
  if(NOT arg_FRAMEWORK)
    set(arg_FRAMEWORK Quon::Framework)
  endif()
  add_executable(${name} ${arg_SOURCES})
  target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests)
  target_link_libraries(${name} PRIVATE quon_compile_options ${arg_FRAMEWORK} ${arg_LIBRARIES} quon_guard_pages gmock gtest
    gtest_main)
  target_precompile_headers(${name} REUSE_FROM quon_test_headers)
  add_test(NAME ${name} COMMAND ${CMAKE_SOURCE_DIR}/scripts/run-test.sh $<TARGET_FILE:${name}>)
  set_tests_properties(${name} PROPERTIES FIXTURES_REQUIRED wine-prefix)
  if(arg_TIMEOUT)
    set_tests_properties(${name} PROPERTIES TIMEOUT ${arg_TIMEOUT})
  endif()
  if(arg_SERIAL)
    set_tests_properties(${name} PROPERTIES RUN_SERIAL TRUE)
  endif()
endfunction()
