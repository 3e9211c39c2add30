# Debian packages, one per install component: `cpack -G DEB`, or scripts/package.
#
# The libraries have separate packages, named after their SONAMEs as is usual in Debian. Users
# of the core then depend only on the C++ library, and incompatible versions can be installed side
# by side.

set(MARLUNE_MAINTAINER "The Marlune authors <marlune@example.org>" CACHE STRING
  "Who answers for the Debian packages, with the address")
set(MARLUNE_DEBIAN_REVISION 1 CACHE STRING "Which packages of this version these are")

set(CPACK_GENERATOR DEB)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL runtime announce desktop development tool)
set(CPACK_PACKAGE_CONTACT "${MARLUNE_MAINTAINER}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # each package has its own
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_RELEASE ${MARLUNE_DEBIAN_REVISION})
set(CPACK_DEBIAN_PACKAGE_SOURCE marlune)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# Lets dpkg-shlibdeps find the packages that each package's own libraries need, and record the
# libraries this package provides. Dependencies between our packages are listed explicitly, because
# it does not know them yet.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS
  ${PROJECT_BINARY_DIR}/marlune ${PROJECT_BINARY_DIR}/marlune/announce
  ${PROJECT_BINARY_DIR}/marlune/desktop)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")

set(exactly "(= ${PROJECT_VERSION}-${MARLUNE_DEBIAN_REVISION})")
get_target_property(soversion marlune SOVERSION)
set(core libmarlune${soversion})
set(announce libmarlune-announce${soversion})
set(desktop libmarlune-desktop${soversion})

# marlune_package(component package SECTION ... DEPENDS "..." RECOMMENDS "..." DESCRIPTION "...")
# The first line of DESCRIPTION is the short description.
macro(marlune_package component package)
  cmake_parse_arguments(PACKAGE "" "SECTION;DEPENDS;RECOMMENDS;DESCRIPTION" "" ${ARGN})
  string(TOUPPER ${component} name)
  set(CPACK_DEBIAN_${name}_PACKAGE_NAME ${package})
  set(CPACK_DEBIAN_${name}_PACKAGE_SECTION ${PACKAGE_SECTION})
  set(CPACK_DEBIAN_${name}_PACKAGE_DEPENDS "${PACKAGE_DEPENDS}")
  set(CPACK_DEBIAN_${name}_PACKAGE_RECOMMENDS "${PACKAGE_RECOMMENDS}")
  set(CPACK_DEBIAN_${name}_DESCRIPTION "${PACKAGE_DESCRIPTION}")
  install(FILES ${PROJECT_BINARY_DIR}/copyright ${PROJECT_BINARY_DIR}/changelog.gz
    ${PROJECT_BINARY_DIR}/changelog.Debian.gz
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package} COMPONENT ${component})
endmacro()

marlune_package(runtime ${core} SECTION libs DESCRIPTION
"speaks phrases from recordings, the core library
A grammar rewrites a phrase into words that were recorded, a decomposer finds
the fewest recordings that say it, and a player plays them without gaps.

This package contains the core. It needs only the C++ library: the program
that uses it, or the desktop library, provides the services it needs from the
system.")

marlune_package(announce ${announce} SECTION libs DEPENDS "${core} ${exactly}" DESCRIPTION
"speaks phrases from recordings, the announcements library
Says phrases in the order of their urgency and within their deadlines, lets one
take over from another, and reports what became of each.")

# Other libraries are loaded on demand, so nothing links them. The sound device's are only
# recommended: rendering to files works without them.
marlune_package(desktop ${desktop} SECTION libs
  DEPENDS "${core} ${exactly}, libexpat1, libutf8proc2, libsndfile1, libsoxr0"
  RECOMMENDS "libpulse0, libsdl2-2.0-0" DESCRIPTION
"speaks phrases from recordings, the desktop library
Binds the core library to a Linux desktop: property lists, preferences, a run
loop, recordings read from files, sound on a device or rendered into a file.")

marlune_package(development libmarlune-dev SECTION libdevel
  DEPENDS "${core} ${exactly}, ${announce} ${exactly}, ${desktop} ${exactly}" DESCRIPTION
"speaks phrases from recordings, headers
For compiling programs that speak phrases from recordings: the headers of the
libraries, their CMake package and pkg-config files, and a library that tests
announcements without sound.")

marlune_package(tool marlune SECTION sound DEPENDS "${core} ${exactly}, ${desktop} ${exactly}"
  DESCRIPTION
"speaks phrases from recordings, the tool
For authors of voices and of grammars: shows how a grammar rewrites a phrase
and why, which recordings say it, and plays it or renders it into a file.")

# A trigger updates the loader's cache once, after all packages. By default CPack adds scripts that
# do it for each package; naming scripts that do not exist suppresses them.
foreach(name IN ITEMS RUNTIME ANNOUNCE DESKTOP)
  set(CPACK_DEBIAN_${name}_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/cmake/packages/triggers
    ${PROJECT_BINARY_DIR}/none/postinst ${PROJECT_BINARY_DIR}/none/postrm)
endforeach()

configure_file(LICENSE ${PROJECT_BINARY_DIR}/copyright COPYONLY)

file(READ cmake/packages/changelog changelog)
if(NOT changelog MATCHES "^marlune \\(${PROJECT_VERSION}-${MARLUNE_DEBIAN_REVISION}\\) ")
  message(FATAL_ERROR "cmake/packages/changelog does not begin with ${PROJECT_VERSION}-"
    "${MARLUNE_DEBIAN_REVISION}, which is what is packaged.")
endif()

# Without name and time, so that the output is reproducible.
function(marlune_compress source target)
  execute_process(COMMAND gzip -9nc ${source} OUTPUT_FILE ${target} COMMAND_ERROR_IS_FATAL ANY)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${source})
endfunction()
marlune_compress(${PROJECT_SOURCE_DIR}/CHANGELOG.md ${PROJECT_BINARY_DIR}/changelog.gz)
marlune_compress(${PROJECT_SOURCE_DIR}/cmake/packages/changelog
  ${PROJECT_BINARY_DIR}/changelog.Debian.gz)
install(CODE "execute_process(COMMAND gzip -9nf
  \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_MANDIR}/man1/marlune.1\"
  COMMAND_ERROR_IS_FATAL ANY)" COMPONENT tool)

include(CPack)
