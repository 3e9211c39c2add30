# What `cmake --install` installs: libraries, headers, the CMake package, pkg-config files, and the
# tool with its manual page and completion. Components: runtime (the core), announce, desktop,
# development, tool.

include(CMakePackageConfigHelpers)

set(MARLUNE_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/marlune)

# marlune_install_library(target export-set component): installs a library and its CMake targets.
# The targets have their own file, so that apps without the desktop do not have to find its
# dependencies.
function(marlune_install_library target export component)
  if(BUILD_SHARED_LIBS)
    set_target_properties(${target} PROPERTIES INSTALL_RPATH "$ORIGIN")
  endif()
  install(TARGETS ${target} EXPORT ${export}
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT ${component} NAMELINK_COMPONENT development
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development
    INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
  install(EXPORT ${export} NAMESPACE marlune::
    DESTINATION ${MARLUNE_CMAKE_DIR} COMPONENT development)
endfunction()

# The public headers of a library, in their folders.
function(marlune_install_headers library)
  get_property(headers GLOBAL PROPERTY MARLUNE_PUBLIC_HEADERS_OF_${library})
  foreach(header IN LISTS headers)
    file(RELATIVE_PATH path ${PROJECT_SOURCE_DIR} ${header})
    get_filename_component(folder ${path} DIRECTORY)
    install(FILES ${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${folder}
      COMPONENT development)
  endforeach()
endfunction()

# Relative to the file's own folder, so that the installation can be moved or installed to another
# prefix than the configured one. Absolute folders stay absolute.
if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
  set(MARLUNE_PC_PREFIX "${CMAKE_INSTALL_PREFIX}")
else()
  file(RELATIVE_PATH up "/prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig" /prefix)
  string(REGEX REPLACE "/$" "" up "${up}")
  set(MARLUNE_PC_PREFIX "\${pcfiledir}/${up}")
endif()
foreach(folder IN ITEMS LIBDIR INCLUDEDIR)
  set(MARLUNE_PC_${folder} "${CMAKE_INSTALL_${folder}}")
  if(NOT IS_ABSOLUTE "${CMAKE_INSTALL_${folder}}")
    string(PREPEND MARLUNE_PC_${folder} "\${prefix}/")
  endif()
endforeach()

function(marlune_install_pkgconfig file)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/${file}.in ${PROJECT_BINARY_DIR}/${file} @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${file}
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
endfunction()

marlune_install_library(marlune marluneTargets runtime)
marlune_install_headers(core)
marlune_install_pkgconfig(marlune.pc)

marlune_install_library(marlune_announce marluneAnnounceTargets announce)
marlune_install_headers(announce)
marlune_install_pkgconfig(marlune-announce.pc)

# Static, and for tests only.
marlune_install_library(marlune_testing marluneTestingTargets development)
marlune_install_headers(testing)

if(MARLUNE_DESKTOP)
  marlune_install_library(marlune_desktop marluneDesktopTargets desktop)
  marlune_install_headers(desktop)
  marlune_install_pkgconfig(marlune-desktop.pc)
endif()

if(TARGET marlune_tool)
  # Set it for shared builds only: CMake's RPATH padding makes the loader search the current folder.
  if(BUILD_SHARED_LIBS)
    file(RELATIVE_PATH libraries ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
    set_target_properties(marlune_tool PROPERTIES INSTALL_RPATH "$ORIGIN/${libraries}")
  endif()
  install(TARGETS marlune_tool RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tool)
  install(FILES ${PROJECT_SOURCE_DIR}/docs/marlune.1
    DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tool)
  install(FILES ${PROJECT_SOURCE_DIR}/tools/marlune/completion/marlune.bash
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
    RENAME marlune COMPONENT tool)
endif()

configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/marluneConfig.cmake.in
  ${PROJECT_BINARY_DIR}/marluneConfig.cmake INSTALL_DESTINATION ${MARLUNE_CMAKE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/marluneConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/marluneConfig.cmake
  ${PROJECT_BINARY_DIR}/marluneConfigVersion.cmake
  DESTINATION ${MARLUNE_CMAKE_DIR} COMPONENT development)
