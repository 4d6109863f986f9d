// ColumnValues: the values that a column's criterion may be compared with, as one edit of it offers them.
//
// They are asked for once, when a person wants the list; the answer may come when the list is long gone.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "zrqrybld/base/event.h"
#include "zrqrybld/expression/suggestions.h"
#include "zrqrybld/expression/value_place.h"
#include "zrqrybld/host/value_source.h"
#include "zrqrybld/sql/criteria_context.h"

namespace zrqrybld {

class ColumnValues : public std::enable_shared_from_this<ColumnValues> {
 public:
  /// What the source is asked; none for nothing.
  using MakeQuestion = std::function<std::optional<ValueQuestion>()>;
  /// `rules` says how values of the column are written. `source` may be nothing; `question` is made when it is needed.
  ColumnValues(CriteriaContext rules, std::shared_ptr<ValueSource> source, MakeQuestion question);

  /// The values have come.
  Event<> Arrived;

  /// Asks, unless it was asked already.
  void Want();
  /// Whether an answer may still come.
  bool IsWaiting() const { return waiting_; }
  /// What fits into the place: what begins with the typed text before what holds it.
  std::vector<Suggestion> Fitting(const ValuePlace& place) const;
  /// Lets a person choose a date in its place; `taken` gets it as a literal.
  void ChooseDate(const std::string& now, const std::function<void(const std::string& literal)>& taken) const;

 private:
  struct Entry {
    Suggestion shown;
    std::string folded;
    std::string foldedDetail;
  };
  void Take(std::vector<ColumnValue> values);
  void Add(const ColumnValue& value);
  void AddText(std::string insert, const std::string& label, const std::string& detail);

  CriteriaContext rules_;
  std::shared_ptr<ValueSource> source_;
  MakeQuestion question_;
  std::size_t limit_ = 0;
  bool asked_ = false;
  bool waiting_ = false;
  std::vector<Entry> entries_;
};

/// The value as a literal in a criterion of the column; "" for one that cannot be written there.
std::string CriterionLiteral(const ColumnValue& value, const CriteriaContext& rules);

}  // namespace zrqrybld
