# What all libraries of the project have in common.

# Usage: zrqrybld_library(TARGET NAME HEADERS...). Others link TARGET as zrQryBld::NAME, here and when it is installed.
# HEADERS are those that must compile alone; which are installed says cmake/public_api.txt.
function(zrqrybld_library target name)
  add_library(zrQryBld::${name} ALIAS ${target})
  # What C++ programs link changes with each minor version; they are built anew for it.
  set_target_properties(${target} PROPERTIES
    EXPORT_NAME ${name} OUTPUT_NAME zrqrybld_${name} DEFINE_SYMBOL ""
    VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
  target_compile_features(${target} PUBLIC cxx_std_20)
  target_include_directories(${target} PUBLIC
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
  target_link_libraries(${target} PRIVATE $<BUILD_INTERFACE:zrqrybld_warnings>)
  if(BUILD_SHARED_LIBS AND UNIX AND NOT APPLE)
    target_link_options(${target} PRIVATE LINKER:--no-undefined)  # what lacks ZRQRYBLD_API is found here
  endif()
  zrqrybld_check_headers(${target} ${ARGN})
endfunction()

# Usage: zrqrybld_check_headers(TARGET HEADERS...). A target of its own, because a library that has headers in a set must
# install them all.
function(zrqrybld_check_headers target)
  add_library(${target}_headers INTERFACE)
  target_sources(${target}_headers INTERFACE FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR} FILES ${ARGN})
  target_link_libraries(${target}_headers INTERFACE ${target})
endfunction()

# Usage: zrqrybld_adapter(NAME PACKAGE [ARGUMENTS]...). What the adapter NAME needs is found here. ZRQRYBLD_NAME is ON, OFF,
# or AUTO; behind this it is ON or OFF.
macro(zrqrybld_adapter name package)
  if(ZRQRYBLD_${name})
    find_package(${package} ${ARGN} QUIET GLOBAL)  # global: who links the adapter must know its library, too
    if(NOT ${package}_FOUND)
      string(JOIN " " wanted ${package} ${ARGN})
      if(NOT ZRQRYBLD_${name} STREQUAL "AUTO")
        message(FATAL_ERROR "zrQryBld: not found: ${wanted}. Install it, or say -DZRQRYBLD_${name}=OFF to do without.")
      endif()
      message(STATUS "zrQryBld: ${wanted} was not found, so that adapter is left out (ZRQRYBLD_${name})")
      set(ZRQRYBLD_${name} OFF)
    endif()
  endif()
endmacro()
