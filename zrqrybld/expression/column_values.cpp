#include "zrqrybld/expression/column_values.h"

#include <algorithm>
#include <optional>
#include <tuple>
#include <utility>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/platform/schema_fields.h"
#include "zrqrybld/sql/criteria_formatter.h"
#include "zrqrybld/sql/literals.h"

namespace zrqrybld {
namespace {

constexpr std::size_t kLongest = 200;  // bytes: longer ones are nothing to choose from a list

bool IsPlain(std::string_view text) {
  return std::ranges::none_of(text, [](char c) { return static_cast<unsigned char>(c) < ' ' || c == '\x7f'; });
}

}  // namespace

std::string CriterionLiteral(const ColumnValue& value, const CriteriaContext& rules) {
  if (value.text.size() > kLongest || !IsPlain(value.text) || !IsUtf8(value.text)) return {};
  const ValueKind kind = ValueKindOf(rules.dataType);
  if (kind == ValueKind::Binary) return {};
  const bool isNumber = kind == ValueKind::Number || (kind == ValueKind::Unknown && value.isNumber);
  if (isNumber && !ParseNumber(value.text)) return {};
  std::string literal = isNumber ? value.text : TextLiteral(value.text, rules);
  try {
    FormatCriterion("= " + literal, rules);
  } catch (const Error&) {
    return {};
  }
  return literal;
}

ColumnValues::ColumnValues(CriteriaContext rules, std::shared_ptr<ValueSource> source, MakeQuestion question)
    : rules_(std::move(rules)), source_(std::move(source)), question_(std::move(question)) {
  if (ValueKindOf(rules_.dataType) != ValueKind::Boolean) return;
  for (const char* truth : {"True", "False"}) AddText(truth, truth, {});
}

void ColumnValues::AddText(std::string insert, const std::string& label, const std::string& detail) {
  entries_.push_back({{SuggestionKind::Text, label, std::move(insert), detail}, FoldCase(label), FoldCase(detail)});
}

void ColumnValues::Add(const ColumnValue& value) {
  std::string literal = CriterionLiteral(value, rules_);
  if (!literal.empty()) AddText(std::move(literal), value.text, IsPlain(value.detail) ? value.detail : std::string());
}

void ColumnValues::Want() {
  if (std::exchange(asked_, true) || !source_) return;
  const std::optional<ValueQuestion> question = question_();
  if (!question) return;
  limit_ = question->limit;
  waiting_ = true;
  source_->Ask(*question, [weak = weak_from_this()](std::vector<ColumnValue> values) {
    if (const auto self = weak.lock()) self->Take(std::move(values));
  });
}

// Only the first answer counts.
void ColumnValues::Take(std::vector<ColumnValue> values) {
  if (!std::exchange(waiting_, false)) return;
  if (values.size() > limit_) values.resize(limit_);
  for (const ColumnValue& value : values) Add(value);
  // Numbers as numbers, names as people look for them.
  const auto key = [](const Entry& entry) {
    const std::optional<double> number = ParseNumber(entry.folded);
    return std::tuple(entry.foldedDetail, !number, number.value_or(0), entry.folded);
  };
  std::ranges::sort(entries_, [&key](const Entry& a, const Entry& b) { return key(a) < key(b); });
  Arrived.Raise();
}

std::vector<Suggestion> ColumnValues::Fitting(const ValuePlace& place) const {
  const std::string typed = FoldCase(place.typed);
  std::vector<Suggestion> fitting;
  if (source_ && source_->CanChooseDates() && ValueKindOf(rules_.dataType) == ValueKind::Date && !IsTimeOfDay(rules_)) {
    fitting.push_back({SuggestionKind::Text, {}, place.typed, {}, true});
  }
  const auto take = [&](const auto& fits) {
    for (const Entry& entry : entries_) {
      if (fits(entry)) fitting.push_back(entry.shown);
    }
  };
  const auto begins = [&typed](const Entry& entry) {
    return entry.folded.starts_with(typed) || (!typed.empty() && entry.foldedDetail.starts_with(typed));
  };
  take(begins);
  if (typed.empty()) return fitting;
  take([&](const Entry& entry) {
    const bool holds =
        entry.folded.find(typed) != std::string::npos || entry.foldedDetail.find(typed) != std::string::npos;
    return holds && !begins(entry);
  });
  return fitting;
}

void ColumnValues::ChooseDate(const std::string& now, const std::function<void(const std::string&)>& taken) const {
  if (!source_) return;
  source_->ChooseDate(now, [weak = weak_from_this(), taken](const std::string& date) {
    const auto self = weak.lock();
    const std::string literal = self ? CriterionLiteral({date}, self->rules_) : std::string();
    if (!literal.empty()) taken(literal);
  });
}

}  // namespace zrqrybld
