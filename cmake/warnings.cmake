# One set of warnings for all our own code. They are errors where ZRQRYBLD_WERROR is on, as in CI.
add_library(zrqrybld_warnings INTERFACE)
if(MSVC)
  # The sources are UTF-8, and /permissive- reads C++ as the other compilers do.
  target_compile_options(zrqrybld_warnings INTERFACE /utf-8 /permissive- /W4 $<$<BOOL:${ZRQRYBLD_WERROR}>:/WX>)
  return()
endif()
target_compile_options(zrqrybld_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Wnon-virtual-dtor -Wsuggest-override)
# g++ 12 reports overlapping copies in its own std::string where a literal is joined to a temporary.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  target_compile_options(zrqrybld_warnings INTERFACE -Wno-restrict)
endif()
if(ZRQRYBLD_WERROR)
  target_compile_options(zrqrybld_warnings INTERFACE -Werror)
endif()
