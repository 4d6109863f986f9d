# For the preset "wasm": emscripten, whose output a browser and Node run.
find_program(EMXX em++ REQUIRED)
get_filename_component(emscripten ${EMXX} REALPATH)
get_filename_component(emscripten ${emscripten} DIRECTORY)
include(${emscripten}/cmake/Modules/Platform/Emscripten.cmake)
# Its own exceptions are small and fast; those by way of JavaScript double the size. All is one file, so that the linker
# may see all of it at once. Functions as values come without what tells their types: nobody asks.
# Where small size is asked for, this compiler puts no function into another; with the smallest it is as small and twice
# as fast.
set(CMAKE_CXX_FLAGS_INIT "-fwasm-exceptions -flto -finline-functions -D_LIBCPP_ABI_OPTIMIZED_FUNCTION -include ${CMAKE_CURRENT_LIST_DIR}/libcxx_gaps.h")
set(CMAKE_EXE_LINKER_FLAGS_INIT "-fwasm-exceptions -flto")
