# For the preset "wasm": emscripten, whose output a browser and Node run.
find_program(EMXX em++ REQUIRED)
get_filename_component(emscripten ${EMXX} REALPATH)
get_filename_component(emscripten ${emscripten} DIRECTORY)
include(${emscripten}/cmake/Modules/Platform/Emscripten.cmake)
# Its own exceptions are small and fast; those by way of JavaScript double the size.
set(CMAKE_CXX_FLAGS_INIT "-fwasm-exceptions -include ${CMAKE_CURRENT_LIST_DIR}/libcxx_gaps.h")
set(CMAKE_EXE_LINKER_FLAGS_INIT -fwasm-exceptions)
