// Found by cmake/FindFastCppCsvParser.cmake; nothing is compiled against it.
