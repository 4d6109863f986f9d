// The command line in UTF-8, on every system.
#pragma once

#include <string>
#include <vector>

namespace zrqrybld {

/// The arguments behind the program's name. `main`'s own are in the system's code page on Windows, which lacks most
/// characters; there they are read anew, and what is written to a terminal is shown as UTF-8.
std::vector<std::string> Arguments(int count, const char* const* values);

}  // namespace zrqrybld
