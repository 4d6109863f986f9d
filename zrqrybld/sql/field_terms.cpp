#include "zrqrybld/sql/field_terms.h"

#include <unordered_set>

#include "zrqrybld/base/text.h"
#include "zrqrybld/sql/lexer.h"
#include "zrqrybld/sql/statement_parser.h"
#include "zrqrybld/sql/syntax_error.h"

namespace zrqrybld {
namespace {

constexpr std::string_view kField = "@field";
constexpr std::int32_t kGroupingChoice = 1;  // of a function's flags

// Whether the expression, as a part of a larger one, holds more than one operand; counts up to two.
void FindOperands(const Expression& e, const Expression*& operand, int& count) {
  if (e.kind == ExpressionKind::Column || e.kind == ExpressionKind::Star) {
    operand = &e;
    ++count;
    return;
  }
  if (e.kind == ExpressionKind::Subquery || e.kind == ExpressionKind::Opaque) count += 2;
  for (const Expression* child = e.first; child && count < 2; child = child->next) FindOperands(*child, operand, count);
}

// A number, with its sign or without, or a truth value.
bool IsPlainLiteral(const Expression& e) {
  const Expression* value = &e;
  if (e.kind == ExpressionKind::Chain && e.first->kind == ExpressionKind::Sign && !e.first->next->next) {
    value = e.first->next;
  }
  if (value->kind != ExpressionKind::Literal) return false;
  return IsDigit(value->text.front()) || value->text.front() == '.' || EqualsNoCase(e.text, "TRUE") ||
         EqualsNoCase(e.text, "FALSE");
}

// What stands on the right side of comparisons, and in their lists.
void FindComparedLiterals(const Expression& e, std::unordered_set<const Expression*>& found) {
  if (e.kind == ExpressionKind::Opaque) return;
  const bool compares =
      e.kind == ExpressionKind::Comparison || e.kind == ExpressionKind::Between || e.kind == ExpressionKind::In;
  for (const Expression* child = e.first; child; child = child->next) {
    const bool isValue = (compares && child != e.first) || e.kind == ExpressionKind::Row;
    if (isValue && IsPlainLiteral(*child)) found.insert(child);
    FindComparedLiterals(*child, found);
  }
}

// A text in double quotes, as texts are usually written; false for one that may hold escapes, and for all else.
bool AppendDoubleQuoted(const Expression& e, std::string& text) {
  const bool isText = e.kind == ExpressionKind::Literal && e.text.front() == '"';
  if (!isText || e.text.find('\\') != std::string_view::npos) return false;
  const std::string inside = ReplaceAll(e.text.substr(1, e.text.size() - 2), "\"\"", "\"");
  text += "'" + ReplaceAll(inside, "'", "''") + "'";
  return true;
}

// An aggregate's text with "@field" for its operand, alike for all ways to write it.
std::string KeyOf(const Expression& expression, const Expression* operand) {
  const Substitution substitution = [operand](const Expression& e, std::string& text) {
    if (StripParentheses(&e) != operand) return false;
    text += kField;
    return true;
  };
  return UpperAscii(PrintExpression(expression, substitution));
}

}  // namespace

bool CallsAggregate(std::string_view expression, const qbDBFunctions& functions) {
  WordSet names;
  for (const Ref<qbDBFunction>& function : functions) {
    const std::string syntax = function->Syntax();
    const bool isChoice = (function->Flags() & kGroupingChoice) != 0 && FindNoCase(syntax, kField) != std::string::npos;
    if (isChoice) names.emplace(Trim(std::string_view(syntax).substr(0, syntax.find('('))));
  }
  const std::vector<Token> tokens = Tokenize(expression);
  for (std::size_t i = 0; i + 1 < tokens.size(); ++i) {
    const bool isCall = tokens[i].kind == TokenKind::Word && expression.substr(tokens[i + 1].offset, 1) == "(";
    if (isCall && names.contains(expression.substr(tokens[i].offset, tokens[i].length))) return true;
  }
  return false;
}

FieldTerms::FieldTerms(const NameScope& scope, const NameRules& rules, const qbDBFunctions& functions)
    : scope_(scope), rules_(rules), functions_(functions) {
  columns_ = [this](const Expression& e, std::string& text) {
    if (AppendDoubleQuoted(e, text)) return true;
    const Expression* column = StripParentheses(&e);
    if (column->kind != ExpressionKind::Column) return false;
    const std::optional<BoundColumn> found = scope_.TryFind(*column);
    if (!found) return false;
    text += ColumnTerm(found->table, found->column);
    return true;
  };
}

const FieldTerms::Aggregates& FieldTerms::KnownAggregates() const {
  if (aggregates_) return *aggregates_;
  aggregates_.emplace();
  for (const Ref<qbDBFunction>& function : functions_) {
    if ((function->Flags() & kGroupingChoice) == 0 || FindNoCase(function->Syntax(), kField) == std::string::npos)
      continue;
    try {
      SyntaxArena arena(512);
      const Expression* syntax = ParseExpressionText(function->Syntax(), arena);
      aggregates_->try_emplace(KeyOf(*syntax, OnlyOperand(*syntax)),
                               RowGrouping(function->DisplayText(), function->Syntax()));
    } catch (const SyntaxError&) {
      // A function of the application's that is no SQL as we know it is recognised in no statement.
    }
  }
  return *aggregates_;
}

std::string FieldTerms::ColumnTerm(std::size_t table, const std::string& column) const {
  return FieldTerm(scope_.Tables()[table], column, rules_);
}

// The one column or "*" that the expression is about.
const Expression* FieldTerms::OnlyOperand(const Expression& expression) const {
  const Expression* operand = nullptr;
  int count = 0;
  FindOperands(expression, operand, count);
  return count == 1 ? operand : nullptr;
}

std::optional<RowField> FieldTerms::ColumnOf(const Expression& expression) const {
  const Expression* column = StripParentheses(&expression);
  if (column->kind != ExpressionKind::Column || column->optional) return std::nullopt;
  std::optional<BoundColumn> found = scope_.Find(*column);
  if (!found) return std::nullopt;
  return RowField{found->table, std::move(found->column), {}};
}

std::optional<RowField> FieldTerms::AggregateOf(const Expression& expression) const {
  if (expression.kind != ExpressionKind::Call && expression.kind != ExpressionKind::Chain) return std::nullopt;
  const Expression* operand = OnlyOperand(expression);
  if (!operand || (operand->kind == ExpressionKind::Star && operand->text != "*")) return std::nullopt;
  const auto found = KnownAggregates().find(KeyOf(expression, operand));
  if (found == KnownAggregates().end() || scope_.Tables().empty()) return std::nullopt;
  RowField field{0, "*", found->second};
  if (operand->kind == ExpressionKind::Star) return field;
  std::optional<BoundColumn> column = scope_.Find(*operand);
  if (!column) return std::nullopt;
  field.table = column->table;
  field.column = std::move(column->column);
  return field;
}

std::string FieldTerms::TermOf(const RowField& field) const {
  if (!field.table) return field.column;
  if (!field.grouping.HasSyntax()) return ColumnTerm(*field.table, field.column);
  return ReplaceNoCase(field.grouping.syntax, kField,
                       field.column == "*" ? "*" : ColumnTerm(*field.table, field.column));
}

std::string FieldTerms::Normalized(const Expression& expression) const { return PrintExpression(expression, columns_); }

// Columns and aggregates as the generator writes them.
bool FieldTerms::AppendField(const Expression& e, std::string& text) const {
  if (columns_(e, text)) return true;
  if (e.kind != ExpressionKind::Call) return false;
  const std::optional<RowField> field = AggregateOf(e);
  if (!field) return false;
  text += TermOf(*field);
  return true;
}

std::string FieldTerms::NormalizedFields(const Expression& expression) const {
  return PrintExpression(expression, [this](const Expression& e, std::string& text) { return AppendField(e, text); });
}

std::string FieldTerms::WithLiteralsApart(const Expression& expression) const {
  std::unordered_set<const Expression*> apart;
  FindComparedLiterals(expression, apart);
  return PrintExpression(expression, [&](const Expression& e, std::string& text) {
    if (apart.erase(&e) == 0) return AppendField(e, text);
    text += "(" + NormalizedFields(e) + ")";
    return true;
  });
}

std::string FieldTerms::Written(const Expression& expression) const {
  if (!scope_.HasUnified()) return OnOneLine(expression.text);
  return PrintExpression(expression, [this](const Expression& e, std::string& text) {
    return e.kind == ExpressionKind::Column && scope_.FindUnified(PlainName(e.text)) && columns_(e, text);
  });
}

}  // namespace zrqrybld
