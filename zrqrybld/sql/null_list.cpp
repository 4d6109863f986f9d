#include "zrqrybld/sql/null_list.h"

#include <algorithm>
#include <memory>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/sql/join_move.h"
#include "zrqrybld/sql/lexer.h"
#include "zrqrybld/sql/name_scope.h"
#include "zrqrybld/sql/question_reader.h"
#include "zrqrybld/sql/statement_parser.h"

namespace zrqrybld {
namespace {

bool MayHoldList(std::string_view text) {
  constexpr std::string_view kWords[] = {"NOT", "IN", "SELECT"};
  return std::ranges::all_of(kWords, [&](std::string_view word) { return FindNoCase(text, word) < text.size(); });
}

bool IsSameColumn(const Expression& e, const Expression& column, bool byName) {
  const Expression& bare = *StripParentheses(&e);
  if (bare.kind != ExpressionKind::Column) return false;
  return byName ? EqualsNoCase(PlainName(bare.name), PlainName(column.name)) : EqualsNoCase(bare.text, column.text);
}

// Whether a row whose column is Null never fulfils the condition.
bool RefusesNull(const Expression& condition, const Expression& column, bool byName) {
  const Expression& bare = *StripParentheses(&condition);
  const auto is = [&](const Expression* e) { return IsSameColumn(*e, column, byName); };
  switch (bare.kind) {
    case ExpressionKind::And:
      for (const Expression* term = bare.first; term; term = term->next) {
        if (RefusesNull(*term, column, byName)) return true;
      }
      return false;
    case ExpressionKind::IsNull:
      return bare.negated && is(bare.first);
    case ExpressionKind::Between:
    case ExpressionKind::In:
      return is(bare.first);
    case ExpressionKind::Comparison:
      return !StartsWithNoCase(bare.name, "IS") && bare.name != "<=>" && (is(bare.first) || is(bare.first->next));
    default:
      return false;
  }
}

bool MayBeNull(const FromItem& item, const Expression& column, const KnownColumns& columns) {
  const std::string_view qualifier = column.Qualifier();
  const std::vector<Identifier> parts = NameParts(item.table);
  const std::string called = !item.alias.empty() ? PlainName(item.alias)
                             : parts.empty()     ? std::string()
                                                 : parts.back().Name();
  const bool isMeant = qualifier.empty() || EqualsNoCase(NameParts(qualifier).back().Name(), called);
  if (isMeant && item.query.empty() && !parts.empty() && columns.MayBeNull(parts, PlainName(column.name))) return true;
  for (const JoinStep* step = item.joins; step; step = step->next) {
    if (MayBeNull(*step->right, column, columns)) return true;
  }
  return false;
}

// The query with one condition more. Without WHERE it ends with FROM, or what stands behind would have to be parted.
std::string WithoutNullsOf(const SelectStatement& query, std::string_view column) {
  if (!query.top.empty() || !query.skip.empty()) return {};
  const std::string condition = std::string(column) + " IS NOT NULL";
  if (query.where) {
    const std::string_view where = query.where->text;
    const auto begin = static_cast<std::size_t>(where.data() - query.text.data());
    const bool isChoice = query.where->kind == ExpressionKind::Or;
    return std::string(query.text.substr(0, begin)) + (isChoice ? "(" : "") + std::string(where) +
           (isChoice ? ") AND " : " AND ") + condition + std::string(query.text.substr(begin + where.size()));
  }
  Token last;
  Lexer lexer(query.text);
  for (Token token; lexer.Next(token);) last = token;
  if (query.groupBy || query.having || query.orderBy || last.kind == TokenKind::Comment) return {};
  return std::string(query.text.substr(0, last.offset + last.length)) + " WHERE " + condition;
}

std::optional<NullList> ListOf(const Expression& inner, const KnownColumns& columns) {
  const std::unique_ptr<SelectStatement> query = ReadInner(inner, {});
  const SelectItem* item = query ? query->items : nullptr;
  if (!item || item->next || item->expression->kind != ExpressionKind::Column || !query->from) return std::nullopt;
  const Expression& column = *item->expression;
  const bool isSingle = !query->from->next && !query->from->joins;
  if (query->where && RefusesNull(*query->where, column, isSingle)) return std::nullopt;
  for (const FromItem* from = query->from; from; from = from->next) {
    if (!MayBeNull(*from, column, columns)) continue;
    return NullList{std::string(column.text), std::string(query->text), WithoutNullsOf(*query, column.text)};
  }
  return std::nullopt;
}

std::optional<NullList> Find(const Expression& condition, bool isNegated, const KnownColumns& columns) {
  switch (condition.kind) {
    case ExpressionKind::In: {
      const Expression& list = *StripParentheses(condition.first->next);
      if (condition.negated == isNegated || list.kind != ExpressionKind::Subquery) return std::nullopt;
      return ListOf(list, columns);
    }
    case ExpressionKind::And:
    case ExpressionKind::Or:
    case ExpressionKind::Parentheses:
    case ExpressionKind::Not:
      for (const Expression* term = condition.first; term; term = term->next) {
        const bool turns = condition.kind == ExpressionKind::Not;
        if (std::optional<NullList> found = Find(*term, isNegated != turns, columns)) return found;
      }
      return std::nullopt;
    default:
      return std::nullopt;
  }
}

}  // namespace

std::optional<NullList> FindNullList(std::string_view condition, const KnownColumns& columns) {
  if (!MayHoldList(condition)) return std::nullopt;
  std::string statement;
  const std::unique_ptr<SelectStatement> read = ReadAsWhere(condition, statement);
  return read ? Find(*read->where, false, columns) : std::nullopt;
}

std::optional<NullList> FindNullListIn(const QuerySnapshot& query, const SnapshotRow& row,
                                       const std::string& criterion) {
  if (!query.columns || !MayHoldList(criterion)) return std::nullopt;
  try {
    return FindNullList(ConditionOf(query, row, criterion), *query.columns);
  } catch (const Error&) {
    return std::nullopt;  // it cannot be read
  }
}

std::optional<std::string> WithoutNulls(const std::string& text, const NullList& list) {
  const std::size_t at = list.withoutNulls.empty() ? std::string::npos : text.find(list.query);
  if (at == std::string::npos) return std::nullopt;
  return std::string(text).replace(at, list.query.size(), list.withoutNulls);
}

}  // namespace zrqrybld
