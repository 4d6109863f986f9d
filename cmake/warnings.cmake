# One set of warnings for all our own code. They are errors where ZRQRYBLD_WERROR is on, as in CI.
add_library(zrqrybld_warnings INTERFACE)
target_compile_options(zrqrybld_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Wnon-virtual-dtor -Wsuggest-override)
if(ZRQRYBLD_WERROR)
  target_compile_options(zrqrybld_warnings INTERFACE -Werror)
endif()
