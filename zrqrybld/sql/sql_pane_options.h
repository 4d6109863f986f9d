// SqlPaneOptions: what a form stores of a SQL pane, with what a new pane has; it belongs to the query.
#pragma once

#include <string>

#include "zrqrybld/sql/sql_syntax.h"

namespace zrqrybld {

struct SqlPaneOptions {
  SQLSyntaxEnum syntax = SQLSyntaxGeneric;
  bool locked = false;
  std::string likeOperator = "LIKE";
  friend bool operator==(const SqlPaneOptions&, const SqlPaneOptions&) = default;
};

}  // namespace zrqrybld
