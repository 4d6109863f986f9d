#include "zrqrybld/sql/outer_queries.h"

#include <algorithm>
#include <functional>
#include <utility>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/sql/criteria_formatter.h"
#include "zrqrybld/sql/names.h"
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

const SnapshotTable* OuterQueries::FindTable(std::string_view caption) const {
  for (const SnapshotTable& table : Tables()) {
    if (EqualsNoCase(table.caption.Name(), caption)) return &table;
  }
  return around_ ? around_->FindTable(caption) : nullptr;
}

namespace {

// Reads the expressions of a query and tells of each name of a column around, with the caption of its table there.
class OuterNames {
 public:
  using Tell = std::function<void(const Expression& column, const std::string& table)>;

  // Of its tables only the first `count` lend their columns to names.
  OuterNames(const QuerySnapshot& query, std::size_t count)
      : query_(query), source_(query.columns), scope_({}, source_, &query.outer->Scope()) {
    for (std::size_t table = 0; table < count; ++table) scope_.AddKnown(query.tables[table]);
  }

  void Each(Tell tell) {
    tell_ = std::move(tell);
    for (const SnapshotJoin& join : query_.joins) {
      if (!join.condition.empty()) Take(join.condition);
    }
    for (const SnapshotRow& row : query_.rows) {
      if (!row.table) Take(row.column);
      for (const std::string& cell : row.criteria) {
        if (!cell.empty()) TakeCriterion(cell, row);
      }
    }
  }

 private:
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
  void Walk(const Expression& root) {
    std::vector<const Expression*> pending{&root};
    while (!pending.empty()) {
      const Expression* e = pending.back();
      pending.pop_back();
      if (e->kind == ExpressionKind::Column) {
        const std::string table = scope_.OuterTableOf(*e);
        if (!table.empty()) tell_(*e, table);
      }
      for (const Expression* child = e->first; child; child = child->next) pending.push_back(child);
    }
  }

  const QuerySnapshot& query_;
  DesignSource source_;
  NameScope scope_;
  Tell tell_;
};

}  // namespace

std::vector<std::string> OuterTablesNamed(const QuerySnapshot& query) {
  std::vector<std::string> found;
  if (!query.outer) return found;
  OuterNames(query, query.tables.size()).Each([&](const Expression&, const std::string& table) {
    if (std::ranges::find(found, table) == found.end()) found.push_back(table);
  });
  return found;
}

std::unordered_map<std::string, SqlText, HashNoCase, EqualNoCase> NamesTakenByLastTable(const QuerySnapshot& query) {
  std::unordered_map<std::string, SqlText, HashNoCase, EqualNoCase> taken;
  if (!query.outer || !query.columns || query.tables.empty()) return taken;
  const std::size_t last = query.tables.size() - 1;
  OuterNames(query, last).Each([&](const Expression& column, const std::string& table) {
    const std::string name = PlainName(column.name);
    if (!column.Qualifier().empty() || !query.columns->FindColumn(last, name)) return;
    const auto isHere = [&](const SnapshotTable& own) { return EqualsNoCase(own.caption.Name(), table); };
    if (std::ranges::any_of(query.tables, isHere)) return;
    const SnapshotTable* around = query.outer->FindTable(table);
    taken.try_emplace(name, !around || around->aliased ? QuoteWhenNeeded(Identifier(table), query.names)
                                                       : RenderQualified(around->name, query.names));
  });
  return taken;
}

}  // namespace zrqrybld
