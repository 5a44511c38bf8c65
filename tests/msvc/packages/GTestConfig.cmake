foreach(name gtest gmock gtest_main)
  add_library(GTest::${name} INTERFACE IMPORTED)
endforeach()
