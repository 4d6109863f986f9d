// The command's work: each function does one verb.
#pragma once

#include <ostream>

#include "command/options.h"

namespace zrqrybld {

/// Does what the options say. Results go to `out` or to the file that the options name, messages to `errors`.
int RunCommand(const CommandOptions& options, std::ostream& out, std::ostream& errors);

}  // namespace zrqrybld
