#include "zrqrybld/sql/outer_queries.h"

#include <algorithm>
#include <utility>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/sql/criteria_formatter.h"
#include "zrqrybld/sql/statement_parser.h"
#include "zrqrybld/sql/syntax_error.h"

namespace zrqrybld {

OuterQueries::OuterQueries(const QuerySnapshot& query)
    : around_(query.outer), source_(query.columns), scope_({}, source_, around_ ? &around_->Scope() : nullptr) {
  for (const SnapshotTable& table : query.tables) scope_.AddKnown(table);
}

bool OuterQueries::HasColumn(const std::vector<std::string>& parts) const {
  if (parts.empty()) return false;
  const auto has = [&](std::size_t table) {
    if (parts.size() > 1 && !EqualsNoCase(Tables()[table].caption.Name(), parts[parts.size() - 2])) return false;
    return source_.KnowsColumns(table) ? source_.FindColumn(table, parts.back()).has_value() : parts.size() > 1;
  };
  for (std::size_t table = 0; table < Tables().size(); ++table) {
    if (has(table)) return true;
  }
  return around_ && around_->HasColumn(parts);
}

namespace {

// Collects the tables around that expressions name.
class OuterNames {
 public:
  explicit OuterNames(const QuerySnapshot& query)
      : query_(query), source_(query.columns), scope_({}, source_, &query.outer->Scope()) {
    for (const SnapshotTable& table : query.tables) scope_.AddKnown(table);
  }

  void Take(std::string_view expression) {
    SyntaxArena arena(expression.size() * 8 + 256);
    try {
      const Expression* tree = ParseExpressionText(expression, arena);
      scope_.SetText(expression);
      Walk(*tree);
    } catch (const SyntaxError&) {
      // What cannot be read names nothing.
    }
  }
  void TakeCriterion(std::string_view cell, const SnapshotRow& row) {
    CriteriaContext context = query_.criteria;
    DescribeColumn(context, row);
    context.quotePrefix = query_.names.quotePrefix;
    try {
      Take(FormatCondition("0", cell, context));
    } catch (const Error&) {
      // As above.
    }
  }
  std::vector<std::string> Found() && { return std::move(found_); }

 private:
  void Walk(const Expression& root) {
    std::vector<const Expression*> pending{&root};
    while (!pending.empty()) {
      const Expression* e = pending.back();
      pending.pop_back();
      if (e->kind == ExpressionKind::Column) {
        const std::string table = scope_.OuterTableOf(*e);
        if (!table.empty() && std::ranges::find(found_, table) == found_.end()) found_.push_back(table);
      }
      for (const Expression* child = e->first; child; child = child->next) pending.push_back(child);
    }
  }

  const QuerySnapshot& query_;
  DesignSource source_;
  NameScope scope_;
  std::vector<std::string> found_;
};

}  // namespace

std::vector<std::string> OuterTablesNamed(const QuerySnapshot& query) {
  if (!query.outer) return {};
  OuterNames names(query);
  for (const SnapshotJoin& join : query.joins) {
    if (!join.condition.empty()) names.Take(join.condition);
  }
  for (const SnapshotRow& row : query.rows) {
    if (!row.table) names.Take(row.column);
    for (const std::string& cell : row.criteria) {
      if (!cell.empty()) names.TakeCriterion(cell, row);
    }
  }
  return std::move(names).Found();
}

}  // namespace zrqrybld
