#include "zrqrybld/sql/join_condition.h"

#include <algorithm>
#include <optional>

#include "zrqrybld/base/text.h"
#include "zrqrybld/sql/name_scope.h"
#include "zrqrybld/sql/statement_parser.h"
#include "zrqrybld/sql/statement_printer.h"

namespace zrqrybld {

std::string JoinConditionText(std::string_view typed) {
  if (TrimWhite(typed).empty()) return {};
  SyntaxArena arena(typed.size() * 8 + 1024);
  const Expression* condition = ParseExpressionText(typed, arena);
  std::string text = OnOneLine(condition->text);
  return condition->kind == ExpressionKind::Or ? "(" + text + ")" : text;
}

namespace {

// The table whose columns bear the qualifier: its caption, or for a table without one of its own its name.
std::optional<std::size_t> TableOf(const std::vector<Identifier>& qualifier, const std::vector<SnapshotTable>& tables) {
  for (std::size_t table = 0; table < tables.size(); ++table) {
    const SnapshotTable& one = tables[table];
    const bool byCaption = qualifier.size() == 1 && EqualsNoCase(qualifier.front().Name(), one.caption.Name());
    const bool byName =
        !one.aliased && !one.name.empty() && EqualsNoCase(qualifier.back().Name(), one.name.back().Name());
    if (byCaption || byName) return table;
  }
  return std::nullopt;
}

void CollectTables(const Expression& expression, const std::vector<SnapshotTable>& tables, NamedTables& named) {
  if (expression.kind == ExpressionKind::Subquery || expression.kind == ExpressionKind::Opaque) named.areAll = false;
  if (expression.kind == ExpressionKind::Column) {
    const std::vector<Identifier> qualifier = NameParts(expression.Qualifier());
    const std::optional<std::size_t> table = expression.Qualifier().empty() ? std::nullopt : TableOf(qualifier, tables);
    if (!table) named.areAll = false;
    if (table && std::ranges::find(named.tables, *table) == named.tables.end()) named.tables.push_back(*table);
  }
  for (const Expression* child = expression.first; child; child = child->next) CollectTables(*child, tables, named);
}

}  // namespace

NamedTables TablesNamed(std::string_view condition, const std::vector<SnapshotTable>& tables) {
  NamedTables named;
  if (condition.empty()) return named;
  SyntaxArena arena(condition.size() * 8 + 1024);
  CollectTables(*ParseExpressionText(condition, arena), tables, named);
  return named;
}

}  // namespace zrqrybld
