// What of the libraries is seen from outside where they are shared ones (BUILD_SHARED_LIBS).
//
// Everything else is hidden. Windows has nothing to mark, because the C++ libraries are static there.
#pragma once

#if defined(__GNUC__) && !defined(_WIN32)
/// Stands before the name of a class, and before a function, that other libraries and applications use.
#define ZRQRYBLD_API __attribute__((visibility("default")))
#else
#define ZRQRYBLD_API
#endif
