# What `cmake --install` puts where, by component: runtime (the C library), dev (headers, libraries and what finds them),
# command (zrqb), designer, widget (the C library with the designer for programs that have Qt). Without --component all of it.
include(CMakePackageConfigHelpers)
set(config ${CMAKE_INSTALL_LIBDIR}/cmake/zrQryBld)

# Usage: install_library(COMPONENT TARGET...)
function(install_library component)
  install(TARGETS ${ARGN} EXPORT zrQryBld-${component}
    RUNTIME COMPONENT runtime
    LIBRARY COMPONENT runtime NAMELINK_COMPONENT dev
    ARCHIVE COMPONENT dev)
  install(EXPORT zrQryBld-${component} NAMESPACE zrQryBld:: DESTINATION ${config} COMPONENT dev)
endfunction()

install_library(core zrqrybld zrqrybld_files zrqrybld_run)
install_library(c zrqrybld_shared)
if(TARGET zrqrybld_shared_qt)
  # For Python programs with windows. A component of its own, so that the C library's package needs no Qt.
  install(TARGETS zrqrybld_shared_qt
    RUNTIME COMPONENT widget LIBRARY COMPONENT widget NAMELINK_COMPONENT dev ARCHIVE COMPONENT dev)
endif()
set(left_out "")
set(c_stands_on core)
foreach(adapter IN ITEMS sqlite odbc qt)
  if(TARGET zrqrybld_${adapter})
    install_library(${adapter} zrqrybld_${adapter})
    if(NOT adapter STREQUAL "qt")
      list(APPEND c_stands_on ${adapter})
    endif()
  else()
    list(APPEND left_out zrqrybld/adapters/${adapter}/)
  endif()
endforeach()
if(BUILD_SHARED_LIBS)
  list(JOIN c_stands_on " " c_stands_on)
else()
  set(c_stands_on "")
endif()

# The list is held against the headers by tools/check_api.
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${CMAKE_CURRENT_LIST_DIR}/public_api.txt)
file(STRINGS ${CMAKE_CURRENT_LIST_DIR}/public_api.txt rows REGEX "^header ")
foreach(row IN LISTS rows)
  string(REGEX REPLACE "^header ([^ ]+).*" "\\1" header ${row})
  cmake_path(GET header PARENT_PATH folder)
  if(NOT "${folder}/" IN_LIST left_out)
    install(FILES ${PROJECT_SOURCE_DIR}/${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${folder} COMPONENT dev)
  endif()
endforeach()

configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/zrQryBldConfig.cmake.in
  ${PROJECT_BINARY_DIR}/zrQryBldConfig.cmake INSTALL_DESTINATION ${config})
# C++ programs are built anew for each minor version, as the libraries' own names say.
write_basic_package_version_file(${PROJECT_BINARY_DIR}/zrQryBldConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/zrQryBldConfig.cmake ${PROJECT_BINARY_DIR}/zrQryBldConfigVersion.cmake
  DESTINATION ${config} COMPONENT dev)

set(pkgconfig ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH from_pkgconfig /${pkgconfig} /)
string(REGEX REPLACE "/$" "" from_pkgconfig ${from_pkgconfig})
configure_file(${CMAKE_CURRENT_LIST_DIR}/zrqrybld.pc.in ${PROJECT_BINARY_DIR}/zrqrybld.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/zrqrybld.pc DESTINATION ${pkgconfig} COMPONENT dev)

install(FILES ${PROJECT_SOURCE_DIR}/LICENSE ${PROJECT_SOURCE_DIR}/packaging/THIRD_PARTY.txt
  DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT dev)

# Usage: install_page(FILE COMPONENT). A manual page, compressed where that can be done.
find_program(GZIP gzip)
function(install_page page component)
  set(file ${PROJECT_SOURCE_DIR}/packaging/${page})
  if(GZIP)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${file})
    execute_process(COMMAND ${GZIP} -9nc ${file} OUTPUT_FILE ${PROJECT_BINARY_DIR}/${page}.gz COMMAND_ERROR_IS_FATAL ANY)
    set(file ${PROJECT_BINARY_DIR}/${page}.gz)
  endif()
  install(FILES ${file} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT ${component})
endfunction()

if(TARGET zrqb)
  install(TARGETS zrqb RUNTIME COMPONENT command)
  install_page(zrqb.1 command)
endif()
if(TARGET zrqrybld-designer)
  install(TARGETS zrqrybld-designer RUNTIME COMPONENT designer)
  set(from ${PROJECT_SOURCE_DIR}/packaging)
  set(share ${CMAKE_INSTALL_DATADIR})
  install_page(zrqrybld-designer.1 designer)
  install(FILES ${from}/zrqrybld-designer.desktop DESTINATION ${share}/applications COMPONENT designer)
  install(FILES ${from}/zrqrybld-designer.svg DESTINATION ${share}/icons/hicolor/scalable/apps COMPONENT designer)
  install(FILES ${from}/zrqrybld.xml DESTINATION ${share}/mime/packages COMPONENT designer)
  install(FILES ${from}/zrqrybld-designer.metainfo.xml DESTINATION ${share}/metainfo COMPONENT designer)
  install(FILES ${PROJECT_SOURCE_DIR}/samples/languages/german.txt
    DESTINATION ${share}/zrqrybld/languages COMPONENT designer)
  if(TARGET zrqrybld_sample_db)
    # What the start page offers to try; the designer looks for it beside its own folder.
    install(FILES ${PROJECT_BINARY_DIR}/samples/store.db DESTINATION ${share}/zrqrybld COMPONENT designer)
  endif()
endif()

if(PROJECT_IS_TOP_LEVEL)
  include(cmake/package.cmake)
endif()
