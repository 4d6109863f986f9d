// ValueSource: who knows the values of a column, so that a criterion can offer them.
//
// An application that may read data gives one to the grid pane (`SetValueSource`); without one nothing is ever asked.
// The designer's sends the question's statement by what runs its previews.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "zrqrybld/base/export.h"

namespace zrqrybld {

struct Dialect;

/// A value of a column.
struct ColumnValue {
  std::string text;         ///< UTF-8, as the source writes it; whole, or not at all
  bool isNumber = false;    ///< what the source calls a number
  std::string detail = {};  ///< what the row is called that the value refers to; "" for nothing
};

/// A column, and one SELECT that reads its values: each once, no more than `limit`. Its first column is the value, a
/// second one, where there is one, the detail.
struct ValueQuestion {
  std::string table;   ///< its caption in the query
  std::string column;  ///< as the source spells it
  std::string sql;
  const Dialect* dialect = nullptr;  ///< that the statement is written in; never nothing
  std::size_t limit = 0;
};

class ZRQRYBLD_API ValueSource {
 public:
  /// What takes the values, on the thread that has asked. It may be called at once, late, more than once (the first
  /// call counts) or never: who asked does not wait.
  using Answer = std::function<void(std::vector<ColumnValue>)>;
  /// What takes a date, as ISO 8601 writes it; not called when nothing is chosen.
  using DateAnswer = std::function<void(const std::string&)>;

  ValueSource() = default;
  ValueSource(const ValueSource&) = delete;
  ValueSource& operator=(const ValueSource&) = delete;
  virtual ~ValueSource() = default;

  /// Asks; returns at once. An answer without values says that there is nothing to offer, whatever the reason.
  virtual void Ask(const ValueQuestion& question, Answer answer) = 0;
  /// Lets a person choose a date, beginning at the one that is written already (ISO 8601, or ""). False where it
  /// cannot: none is offered then.
  virtual bool CanChooseDates() const { return false; }
  virtual void ChooseDate(const std::string& /*now*/, const DateAnswer& /*answer*/) {}
};

}  // namespace zrqrybld
