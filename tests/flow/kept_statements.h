// The statements of tests/data/kept.txt.
#pragma once

#include <string>
#include <vector>

namespace zrqrybld::test {

/// Each FROM with each WHERE, and the whole statements.
std::vector<std::string> KeptStatements();

}  // namespace zrqrybld::test
