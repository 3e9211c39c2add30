# GoogleTest: the installed one or, when cross-compiling, built from the system's copy of the
# sources.

set(MARLUNE_GTEST_SOURCE /usr/src/googletest CACHE PATH
  "GoogleTest's sources, used when cross-compiling the tests")

if(CMAKE_CROSSCOMPILING)
  set(INSTALL_GTEST OFF)
  add_subdirectory(${MARLUNE_GTEST_SOURCE} ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
  foreach(library IN ITEMS gtest gmock gtest_main)
    if(NOT TARGET GTest::${library})
      add_library(GTest::${library} ALIAS ${library})
    endif()
  endforeach()
else()
  find_package(GTest REQUIRED)
endif()
include(GoogleTest)
