# `cpack` in the folder of the preset "package": .deb packages by component, and a .tar.gz that unpacks anywhere.
set(CPACK_GENERATOR DEB TGZ)
set(CPACK_PACKAGE_VENDOR "The zrQryBld authors")
set(CPACK_PACKAGE_CONTACT "The zrQryBld authors <zrqrybld@packages.example.org>")
set(CPACK_PACKAGE_NAME zrqrybld)
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_PACKAGE_CHECKSUM SHA256)
set(CPACK_STRIP_FILES ON)
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/strip_archives.cmake)
set(CPACK_COMPONENTS_ALL runtime widget dev command designer)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PROJECT_CONFIG_FILE ${CMAKE_CURRENT_LIST_DIR}/package_options.cmake)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SOURCE zrqrybld)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

# Usage: deb(COMPONENT NAME SECTION DEPENDS TEXT)
function(deb component name section depends text)
  string(TOUPPER ${component} key)
  set(CPACK_DEBIAN_${key}_PACKAGE_NAME ${name} PARENT_SCOPE)
  set(CPACK_DEBIAN_${key}_PACKAGE_SECTION ${section} PARENT_SCOPE)
  set(CPACK_DEBIAN_${key}_PACKAGE_DEPENDS "${depends}" PARENT_SCOPE)
  set(CPACK_DEBIAN_${key}_DESCRIPTION "${about}${text}" PARENT_SCOPE)
  # What Debian wants to find in each package.
  set(folder ${CMAKE_INSTALL_DATADIR}/doc/${name})
  install(FILES ${PROJECT_SOURCE_DIR}/packaging/copyright DESTINATION ${folder} COMPONENT ${component} EXCLUDE_FROM_ALL)
  install(FILES ${changelog} DESTINATION ${folder} COMPONENT ${component} EXCLUDE_FROM_ALL)
endfunction()

set(changelog ${PROJECT_BINARY_DIR}/changelog.Debian)
string(TIMESTAMP now "%a, %d %b %Y %H:%M:%S +0000" UTC)
file(WRITE ${changelog} "zrqrybld (${PROJECT_VERSION}-1) unstable; urgency=medium

  * Release ${PROJECT_VERSION}.

 -- ${CPACK_PACKAGE_CONTACT}  ${now}
")
if(GZIP)
  execute_process(COMMAND ${GZIP} -9nf ${changelog})
  set(changelog ${changelog}.gz)
endif()

set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "visual SQL query designer")
set(about "A designer shows tables on a diagram, joins and columns in a grid, and the
SELECT statement that both make, in the SQL of eleven dialects.\n")
deb(runtime libzrqrybld1 libs ""
  "This is the library behind its interface for C and other languages.")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/packaging/triggers)
deb(widget libzrqrybldqt1 libs ""
  "This is the same library with the designer as a widget, for programs in\nPython and C that have Qt.")
set(CPACK_DEBIAN_WIDGET_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/packaging/triggers)
set(same_version "(= ${PROJECT_VERSION}-1)")
deb(dev libzrqrybld-dev libdevel
  "libzrqrybld1 ${same_version}, libzrqrybldqt1 ${same_version}, libsqlite3-dev, unixodbc-dev"
  "These are the headers, the static libraries for C++, and what finds them\nfor CMake and pkg-config.")
set(CPACK_DEBIAN_DEV_PACKAGE_SUGGESTS qt6-base-dev)
deb(command zrqb database ""
  "This is a command for pipelines: it translates statements, checks query\nfiles and draws them.")
deb(designer zrqrybld-designer database ""
  "This is the designer itself, for SQLite files and ODBC data sources.")

include(CPack)
