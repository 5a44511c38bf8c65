# The CSV parser of the host, a single header without a package of its own: FastCppCsvParser::FastCppCsvParser gives its
# users <libfccp/csv.h>, as Debian installs it. vcpkg puts the header into its include folder by itself.
find_path(FastCppCsvParser_INCLUDE_DIR csv.h PATH_SUFFIXES libfccp fast-cpp-csv-parser
  PATHS /usr/include NO_CMAKE_FIND_ROOT_PATH DOC "Folder with csv.h of fast-cpp-csv-parser")
mark_as_advanced(FastCppCsvParser_INCLUDE_DIR)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(FastCppCsvParser REQUIRED_VARS FastCppCsvParser_INCLUDE_DIR)

if(FastCppCsvParser_FOUND AND NOT TARGET FastCppCsvParser::FastCppCsvParser)
  file(CONFIGURE OUTPUT ${CMAKE_BINARY_DIR}/headers/csv/libfccp/csv.h
    CONTENT "#pragma once\n#include \"${FastCppCsvParser_INCLUDE_DIR}/csv.h\"\n")
  add_library(FastCppCsvParser::FastCppCsvParser INTERFACE IMPORTED GLOBAL)
  target_include_directories(FastCppCsvParser::FastCppCsvParser SYSTEM INTERFACE ${CMAKE_BINARY_DIR}/headers/csv)
endif()
