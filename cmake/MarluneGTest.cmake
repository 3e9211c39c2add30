# GoogleTest: what the system has installed or, where the tests are compiled for another machine,
# the sources that the system has, compiled for that one.

set(MARLUNE_GTEST_SOURCE /usr/src/googletest CACHE PATH
  "GoogleTest's sources, compiled with the tests of a build for another machine")

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
