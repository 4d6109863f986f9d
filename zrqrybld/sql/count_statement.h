// The statement that counts the rows of a designed query. Pure.
#pragma once

#include <string>

#include "zrqrybld/sql/query_snapshot.h"

namespace zrqrybld {

struct Dialect;

/// "" where there is none: the dialect cannot say what the query asks, or somebody has to be asked for values first.
std::string CountStatement(QuerySnapshot query, const Dialect& dialect);

}  // namespace zrqrybld
