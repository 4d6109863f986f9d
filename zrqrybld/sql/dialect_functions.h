// The functions of the databases whose own language we write, as rows of the catalog of functions.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "zrqrybld/sql/sql_syntax.h"

namespace zrqrybld {

enum class FunctionGroup : std::uint8_t {
  Text,
  Number,
  DateAndTime,
  Conversion,
  Condition,
  Aggregate,
  Window,
  Json,
  System,
};

/// A function beside those of the default catalog, whose names it never repeats.
struct DialectFunction {
  std::string_view name;              ///< of each name a dialect has one
  std::string_view syntax;            ///< what is inserted; operands are words that begin with "@"
  std::string_view shortDescription;  ///< what a choice is called in the grid's group-by column; "" for its name
  std::string_view description;
  FunctionGroup group;
  std::int32_t flags;     ///< as in the catalog: 1 for a choice of the grid's group-by column, otherwise 0
  std::uint8_t dialects;  ///< which know it in this form: bit 0 stands for dialect 5, and so on
};

/// The functions of a dialect, by group and name; none for those that write the language of several databases.
std::vector<DialectFunction> DialectFunctions(SQLSyntaxEnum syntax);

}  // namespace zrqrybld
