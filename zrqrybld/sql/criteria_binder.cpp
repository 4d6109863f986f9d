#include "zrqrybld/sql/criteria_binder.h"

#include <algorithm>

#include "zrqrybld/base/text.h"
#include "zrqrybld/sql/criteria_formatter.h"
#include "zrqrybld/sql/from_binder.h"
#include "zrqrybld/sql/statement_parser.h"

namespace zrqrybld {
namespace {

constexpr std::string_view kTrue = "= True";

CriteriaTerms ChildrenOf(const Expression& e) {
  CriteriaTerms children;
  for (const Expression* child = e.first; child; child = child->next) children.push_back(child);
  return children;
}

// The terms of one alternative, without the parentheses around them all.
CriteriaTerms TermsOf(const Expression& alternative) {
  const Expression* group = &alternative;
  if (group->kind == ExpressionKind::Parentheses &&
      (group->first->kind == ExpressionKind::And || group->first->kind == ExpressionKind::Parentheses)) {
    group = group->first;
  }
  if (group->kind == ExpressionKind::And) return ChildrenOf(*group);
  return {group};
}

// The operator with its operands exchanged; "" when that is not the same.
std::string_view Mirrored(std::string_view sign) {
  if (sign == "=" || sign == "<>" || sign == "!=") return sign;
  if (sign == "<") return ">";
  if (sign == ">") return "<";
  if (sign == "<=") return ">=";
  if (sign == ">=") return "<=";
  return {};
}

bool IsCondition(ExpressionKind kind) {
  return kind == ExpressionKind::Comparison || kind == ExpressionKind::Between || kind == ExpressionKind::In ||
         kind == ExpressionKind::IsNull;
}

bool IsConstant(const Expression& operand) { return StripParentheses(&operand)->kind == ExpressionKind::Literal; }

}  // namespace

std::vector<CriteriaTerms> CriteriaBinder::AlternativesOf(const Expression& condition, bool inParentheses) {
  const Expression* whole = &condition;
  const bool isWrapped = whole->kind == ExpressionKind::Parentheses;
  if (isWrapped && (inParentheses || whole->first->kind == ExpressionKind::Or)) whole = whole->first;
  std::vector<CriteriaTerms> alternatives;
  if (whole->kind == ExpressionKind::Or) {
    for (const Expression* e = whole->first; e; e = e->next) alternatives.push_back(TermsOf(*e));
  } else {
    alternatives.push_back(TermsOf(*whole));
  }
  return alternatives;
}

std::vector<CriteriaTerms> CriteriaBinder::Fitting(std::vector<CriteriaTerms> alternatives, const Expression& whole,
                                                   bool groups) const {
  if (alternatives.size() <= options_.usualColumns) return alternatives;
  const auto stands = [&](const CriteriaTerms& terms) {
    return std::ranges::all_of(terms, [&](const Expression* term) { return StandsInCells(*term, groups); });
  };
  const bool spreads = alternatives.size() <= options_.columns && !CellFor(*StripParentheses(&whole), groups) &&
                       std::ranges::all_of(alternatives, stands);
  if (spreads) return alternatives;
  return {{&whole}};
}

bool CriteriaBinder::StandsInCells(const Expression& term, bool groups) const {
  const Expression& condition = *StripParentheses(&term);
  const bool isOpen = &condition == &term && condition.kind == ExpressionKind::And;
  if (!isOpen && CellFor(condition, groups)) return true;
  if (condition.kind != ExpressionKind::And) return false;
  return std::ranges::all_of(ChildrenOf(condition),
                             [&](const Expression* part) { return StandsInCells(*part, groups); });
}

void CriteriaBinder::Place(const std::vector<CriteriaTerms>& alternatives, bool groups) {
  for (std::size_t column = 0; column < alternatives.size(); ++column) {
    for (const Expression* term : alternatives[column]) PlaceTerm(*term, column, groups);
  }
}

// Conditions on one field in parentheses are one cell, also when they are joined by AND.
void CriteriaBinder::PlaceTerm(const Expression& term, std::size_t column, bool groups) {
  const Expression& condition = *StripParentheses(&term);
  const bool isOpen = &condition == &term && condition.kind == ExpressionKind::And;
  if (!isOpen && PlaceCell(condition, column, groups)) return;
  if (condition.kind == ExpressionKind::And) {
    for (const Expression* part = condition.first; part; part = part->next) PlaceTerm(*part, column, groups);
    return;
  }
  const std::string text = fields_.Written(condition);
  PlaceExpression(condition.kind == ExpressionKind::Or ? "(" + text + ")" : text, column, groups);
}

bool CriteriaBinder::PlaceCell(const Expression& condition, std::size_t column, bool groups) {
  std::optional<Cell> cell = CellFor(condition, groups);
  if (!cell) return false;
  std::vector<std::string>& criteria = rows_[RowFor(cell->field, column, groups)].criteria;
  if (criteria.size() <= column) criteria.resize(column + 1);
  criteria[column] = std::move(cell->text);
  return true;
}

// The row's field, and the cell that says the condition there.
std::optional<CriteriaBinder::Cell> CriteriaBinder::CellFor(const Expression& condition, bool groups) const {
  const Expression* read = &condition;
  Expression mirrored, left, right;
  std::optional<RowField> field = FieldOf(condition, groups);
  if (StandsRight(condition, field, groups)) {
    field = OperandField(*condition.first->next, groups);
    left = *condition.first->next;
    right = *condition.first;
    left.next = &right;
    right.next = nullptr;
    mirrored = condition;
    mirrored.name = Mirrored(condition.name);
    mirrored.first = &left;
    read = &mirrored;
  }
  if (!field) return std::nullopt;
  std::optional<std::string> cell = CellOf(*read, *field);
  if (!cell) return std::nullopt;
  return Cell{std::move(*field), std::move(*cell)};
}

// Whether a comparison is about what stands on its right side: a column there, or an expression beside a constant.
bool CriteriaBinder::StandsRight(const Expression& condition, const std::optional<RowField>& left, bool groups) const {
  if ((left && left->table) || condition.kind != ExpressionKind::Comparison || condition.negated) return false;
  const Expression& right = *condition.first->next;
  if (Mirrored(condition.name).empty() || IsConstant(right)) return false;
  return !left || OperandField(right, groups).table;
}

void CriteriaBinder::PlaceExpression(const std::string& text, std::size_t column, bool groups) {
  const std::size_t row = rows_.Add({std::nullopt, text, {}});
  if (options_.groupByMode) rows_[row].grouping = groups ? GroupingKind::Expression : GroupingKind::Where;
  rows_[row].criteria.resize(column + 1);
  rows_[row].criteria[column] = kTrue;
}

// The field, or the expression, that stands at the left end of a condition; none for a constant.
std::optional<RowField> CriteriaBinder::FieldOf(const Expression& condition, bool groups) const {
  const Expression* e = &condition;
  while (e->kind == ExpressionKind::And || e->kind == ExpressionKind::Or || e->kind == ExpressionKind::Not ||
         e->kind == ExpressionKind::Parentheses) {
    e = e->first;
  }
  if (!IsCondition(e->kind) || IsConstant(*e->first)) return std::nullopt;
  return OperandField(*e->first, groups);
}

RowField CriteriaBinder::OperandField(const Expression& operand, bool groups) const {
  const Expression& e = *StripParentheses(&operand);
  if (groups) {
    if (std::optional<RowField> aggregate = fields_.AggregateOf(e)) return *aggregate;
  }
  if (e.kind == ExpressionKind::Column) {
    if (std::optional<RowField> column = fields_.ColumnOf(e)) return *column;
    const bool isText = e.text.starts_with('"');
    const bool isName = !isText && !NameScope::IsPseudoColumn(e.name) && !isAlias(PlainName(e.text));
    if (isName && !scope_.MeansOuter(e)) scope_.Require(e);
  }
  return {std::nullopt, fields_.Written(operand), {}};
}

// The cell that says the condition. A number, and a truth value, that the column's type would make another value of
// stands in parentheses.
std::optional<std::string> CriteriaBinder::CellOf(const Expression& condition, const RowField& field) const {
  try {
    const FieldTexts texts = TextsOf(field);
    if (std::optional<std::string> cell = CellSaying(fields_.NormalizedFields(condition), texts, field)) return cell;
    return CellSaying(fields_.WithLiteralsApart(condition), texts, field);
  } catch (const Error&) {
    return std::nullopt;
  }
}

// How the generator writes a field, and how it stands in a condition where names are written alike.
CriteriaBinder::FieldTexts CriteriaBinder::TextsOf(const RowField& field) const {
  FieldTexts texts{fields_.TermOf(field), {}};
  if (field.table) {
    texts.normalized = texts.term;
  } else {
    SyntaxArena arena(texts.term.size() * 8 + 256);
    texts.normalized = fields_.NormalizedFields(*ParseExpressionText(texts.term, arena));
  }
  return texts;
}

// None when the formatter would make another condition of it.
std::optional<std::string> CriteriaBinder::CellSaying(const std::string& written, const FieldTexts& texts,
                                                      const RowField& field) const {
  std::optional<std::string> cell = CriterionOf(
      written, [&texts](std::string_view left) { return left == texts.normalized; }, options_.context.likeOperator);
  if (!cell || cell->empty()) return std::nullopt;
  // On an expression these words ask whether it is true.
  if (!field.table && (UpperAscii(*cell).ends_with("TRUE") || UpperAscii(*cell).ends_with("FALSE")))
    return std::nullopt;
  CriteriaContext context = options_.context;
  if (field.table) {
    const SnapshotType type = scope_.Source().TypeOf(*field.table, field.column);
    context.dataType = type.code;
    context.isLong = type.isLong;
    context.prefix = type.prefix;
    context.suffix = type.suffix;
  }
  context.aggregate = field.grouping.syntax;
  try {
    const std::string made = FormatCondition(texts.term, *cell, context);
    SyntaxArena arena(made.size() * 8 + 256);
    if (fields_.NormalizedFields(*ParseExpressionText(made, arena)) == written) return cell;
  } catch (const Error&) {
    // No criterion of this column says it.
  }
  return std::nullopt;
}

std::size_t CriteriaBinder::RowFor(const RowField& field, std::size_t column, bool groups) {
  const auto suits = [&](const SnapshotRow& row) {
    return !options_.groupByMode || row.grouping.ChoosesGroups() == groups;
  };
  if (const std::optional<std::size_t> row = rows_.FindForCriterion(field, column, groups, suits)) return *row;
  const std::size_t row = rows_.Add(field);
  if (options_.groupByMode && !field.grouping.HasSyntax())
    rows_[row].grouping = groups ? GroupingKind::Expression : GroupingKind::Where;
  return row;
}

}  // namespace zrqrybld
