# The tests of the project.

if(NOT MSVC)
  # Compiled once for all test programs: the test framework's headers are most of what a test source includes. MSVC takes
  # such headers only from targets with the same definitions.
  file(CONFIGURE OUTPUT ${CMAKE_BINARY_DIR}/test-headers.cpp CONTENT "")
  add_library(quon_test_headers OBJECT ${CMAKE_BINARY_DIR}/test-headers.cpp)
  target_link_libraries(quon_test_headers PRIVATE quon_compile_options Quon::Framework quon_googletest)
  # The framework comes first: it refuses to come after the platform.
  target_precompile_headers(quon_test_headers PRIVATE <afx.h> <gmock/gmock.h> <gtest/gtest.h>)
endif()

# QUON_RUN_TEST starts a test program: on Windows it starts by itself, elsewhere in Wine.
if(CMAKE_HOST_WIN32)
  set(QUON_RUN_TEST "")
else()
  set(QUON_RUN_TEST ${CMAKE_SOURCE_DIR}/scripts/run-test.sh)
  # Every test that starts a Windows program needs the prefix, made and warm.
  add_test(NAME wine-prefix COMMAND ${CMAKE_SOURCE_DIR}/scripts/wine-prefix.sh)
  set_tests_properties(wine-prefix PROPERTIES FIXTURES_SETUP wine-prefix)
endif()

# What a thorough run puts in the place of the library's allocator.
add_library(quon_guard_pages OBJECT ${CMAKE_SOURCE_DIR}/tests/helpers/GuardPages.cpp)
target_link_libraries(quon_guard_pages PRIVATE quon_compile_options Quon::Framework)
target_include_directories(quon_guard_pages PRIVATE ${CMAKE_SOURCE_DIR}/tests)

# quon_add_test_run(<name> <command> ...): starts a Windows program.
function(quon_add_test_run name)
  add_test(NAME ${name} COMMAND ${QUON_RUN_TEST} ${ARGN})
  set_tests_properties(${name} PROPERTIES FIXTURES_REQUIRED wine-prefix)
endfunction()

# quon_test(<name> SOURCES ... [LIBRARIES ...] [SERIAL] [TIMEOUT seconds] [FRAMEWORK target ...] [SHORT_MEMORY filter])
# One test program. SERIAL: it uses the registry, the locale or the clock of the whole prefix. FRAMEWORK: another build of
# the framework than the usual one. SHORT_MEMORY: its tests that make memory run out, which then run twice: operator new
# throws the framework's CMemoryException*, and in the second run std::bad_alloc. TIMEOUT: for what may take longer than
# the preset grants, which only ends what hangs.
function(quon_test name)
  cmake_parse_arguments(arg "SERIAL" "TIMEOUT;SHORT_MEMORY" "SOURCES;LIBRARIES;FRAMEWORK" ${ARGN})
  if(NOT arg_FRAMEWORK)
    set(arg_FRAMEWORK Quon::Framework)
  endif()
  add_executable(${name} ${arg_SOURCES})
  target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests)
  target_link_libraries(${name} PRIVATE quon_compile_options ${arg_FRAMEWORK} ${arg_LIBRARIES} quon_guard_pages
    quon_googletest)
  if(NOT MSVC)
    target_precompile_headers(${name} REUSE_FROM quon_test_headers)
  endif()
  quon_add_test_run(${name} $<TARGET_FILE:${name}>)
  if(arg_SHORT_MEMORY)
    quon_add_test_run(${name}.bad_alloc $<TARGET_FILE:${name}> --gtest_filter=${arg_SHORT_MEMORY})
    set_tests_properties(${name}.bad_alloc PROPERTIES
      ENVIRONMENT QUON_SHORT_MEMORY=standard FAIL_REGULAR_EXPRESSION "PASSED  . 0 tests")
  endif()
  if(arg_TIMEOUT)
    set_tests_properties(${name} PROPERTIES TIMEOUT ${arg_TIMEOUT})
  endif()
  if(arg_SERIAL)
    set_tests_properties(${name} PROPERTIES RUN_SERIAL TRUE)
  endif()
endfunction()
