// A statement's syntax tree as text again, for what compares what was read: tests, fuzzing and benchmarks.
#pragma once

#include <string>

#include "zrqrybld/sql/select_statement.h"

namespace zrqrybld::test {

/// The statement on one line. Tables that are joined first stand in parentheses; a row limit stands behind SELECT.
std::string PrintStatement(const SelectStatement& statement);

}  // namespace zrqrybld::test
