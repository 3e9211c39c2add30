# Compile options for all targets of this project, and functions that define the common kinds of
# target.

find_program(MARLUNE_CCACHE ccache)
if(MARLUNE_CCACHE AND PROJECT_IS_TOP_LEVEL)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${MARLUNE_CCACHE})
endif()

# Major and minor version, because ABI compatibility is not promised across minor versions.
set(MARLUNE_SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})

# Warnings, sanitizers and the include root.
function(marlune_target_defaults target)
  target_include_directories(${target} PUBLIC
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>
    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wconversion -Werror=switch)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    # When optimising, g++ 12 reports false positives: overlapping copies in "text" + std::string,
    # and reads of an inactive pointer when a variant is destroyed.
    target_compile_options(${target} PRIVATE -Wno-restrict -Wno-maybe-uninitialized)
  endif()
  target_compile_features(${target} PUBLIC cxx_std_20)
  if(MARLUNE_SANITIZE)
    target_compile_options(${target} PUBLIC
      -fsanitize=${MARLUNE_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer -g)
    target_link_options(${target} PUBLIC -fsanitize=${MARLUNE_SANITIZE})
  endif()
endfunction()

# Limits what a shared library exports to the project's namespace. Of that, only what is marked in
# the headers is visible.
function(marlune_limit_exports target)
  get_target_property(type ${target} TYPE)
  if(NOT type STREQUAL "SHARED_LIBRARY")
    return()
  endif()
  set(map ${PROJECT_SOURCE_DIR}/cmake/marlune.map)
  target_link_options(${target} PRIVATE -Wl,--version-script=${map}
    $<$<CONFIG:Release>:-Wl,-Bsymbolic-functions,--gc-sections>)
  if(NOT MARLUNE_SANITIZE)
    target_link_options(${target} PRIVATE -Wl,--no-undefined)
  endif()
  set_target_properties(${target} PROPERTIES LINK_DEPENDS ${map})
endfunction()

# In a release build the core is compiled for size, except the sources that process every phrase. Of
# these, `hot` ones are fully optimised, and the `warm` ones that drive them somewhat less.
function(marlune_shrink_release target)
  cmake_parse_arguments(SHRINK "" "" "HOT;WARM" ${ARGN})
  if(NOT CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
    return()
  endif()
  target_compile_options(${target} PRIVATE
    "$<$<CONFIG:Release>:-Os;-ffunction-sections;-fdata-sections>")
  set_property(SOURCE ${SHRINK_HOT} APPEND PROPERTY
    COMPILE_OPTIONS "$<$<CONFIG:Release>:-O3>")
  set_property(SOURCE ${SHRINK_WARM} APPEND PROPERTY
    COMPILE_OPTIONS "$<$<CONFIG:Release>:-O2>")
endfunction()

# Adds headers of the current folder to those that are installed with `library`: core or desktop.
function(marlune_public_headers library)
  foreach(header IN LISTS ARGN)
    get_filename_component(path ${header} ABSOLUTE)
    set_property(GLOBAL APPEND PROPERTY MARLUNE_PUBLIC_HEADERS_OF_${library} ${path})
  endforeach()
endfunction()

# A room of the core: an object library of its own, so that a test can link the rooms it needs.
# marlune_room(NAME SOURCES ... HOT ... WARM ... PUBLIC ... ROOMS next below...); HOT and WARM
# name some of the sources, see marlune_shrink_release, and PUBLIC the headers to be installed.
#
# If tests are built, each room is also linked alone with the rooms below it and no undefined
# symbols, so that an upward call fails to link.
function(marlune_room name)
  cmake_parse_arguments(ROOM "" "" "SOURCES;HOT;WARM;PUBLIC;ROOMS" ${ARGN})
  add_library(marlune_${name} OBJECT ${ROOM_SOURCES})
  marlune_target_defaults(marlune_${name})
  marlune_shrink_release(marlune_${name} HOT ${ROOM_HOT} WARM ${ROOM_WARM})
  marlune_public_headers(core ${ROOM_PUBLIC})
  if(NOT MARLUNE_RTTI)
    target_compile_options(marlune_${name} PRIVATE -fno-rtti)
  endif()
  marlune_rooms_below(below ${ROOM_ROOMS})
  target_link_libraries(marlune_${name} PUBLIC ${below})
  set_property(GLOBAL PROPERTY MARLUNE_ROOMS_FROM_${name} marlune_${name} ${below})
  set_property(GLOBAL APPEND PROPERTY MARLUNE_ROOMS marlune_${name})
  if(MARLUNE_TESTS AND NOT MARLUNE_SANITIZE)  # a sanitizer leaves its own symbols undefined
    add_library(marlune_${name}_alone MODULE)
    set_target_properties(marlune_${name}_alone PROPERTIES LINKER_LANGUAGE CXX)
    target_link_libraries(marlune_${name}_alone PRIVATE marlune_${name} ${below})
    target_link_options(marlune_${name}_alone PRIVATE -Wl,--no-undefined)
  endif()
endfunction()

# Sets `result` to the object libraries of the given rooms and of all rooms below them.
function(marlune_rooms_below result)
  set(all)
  foreach(room IN LISTS ARGN)
    get_property(rooms GLOBAL PROPERTY MARLUNE_ROOMS_FROM_${room})
    list(APPEND all ${rooms})
  endforeach()
  list(REMOVE_DUPLICATES all)
  set(${result} ${all} PARENT_SCOPE)
endfunction()

# A test program: marlune_test(NAME SOURCES ... ROOMS rooms... LINK libraries...). ROOMS names rooms
# of the core without a prefix and brings those below them too; LINK takes other targets.
function(marlune_test name)
  cmake_parse_arguments(TEST "" "" "SOURCES;ROOMS;LINK" ${ARGN})
  marlune_rooms_below(rooms ${TEST_ROOMS})
  add_executable(${name} ${TEST_SOURCES})
  marlune_target_defaults(${name})
  if(NOT MARLUNE_RTTI)
    # Classes derived from one compiled without RTTI must be compiled without it, too.
    target_compile_options(${name} PRIVATE -fno-rtti)
  endif()
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  target_link_libraries(${name} PRIVATE ${rooms} ${TEST_LINK} GTest::gtest GTest::gmock GTest::gtest_main)
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 300)
endfunction()

# A benchmark program: marlune_bench(NAME SOURCES ... ROOMS rooms... LINK libraries...).
function(marlune_bench name)
  cmake_parse_arguments(BENCH "" "" "SOURCES;ROOMS;LINK" ${ARGN})
  marlune_rooms_below(rooms ${BENCH_ROOMS})
  add_executable(${name} ${BENCH_SOURCES})
  marlune_target_defaults(${name})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests ${PROJECT_SOURCE_DIR}/bench)
  target_link_libraries(${name} PRIVATE
    ${rooms} ${BENCH_LINK} benchmark::benchmark benchmark::benchmark_main)
endfunction()
