#include "zrqrybld/hub/read_statement.h"

#include <algorithm>
#include <utility>

#include "zrqrybld/base/texts_sql.h"
#include "zrqrybld/base/texts_values.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/source_lexer.h"
#include "zrqrybld/sql/source_rules.h"
#include "zrqrybld/sql/statement_parser.h"
#include "zrqrybld/sql/syntax_error.h"

namespace zrqrybld {
namespace {

BindOptions OptionsOf(const qbQueryBuilder& hub) {
  BindOptions options;
  options.dialect = &hub.CurrentDialect();
  options.functions = hub.DBFunctions().get();
  options.names = CurrentNameRules(hub);
  options.criteria = hub.CriteriaRules();
  return options;
}

}  // namespace

// The text with what only its source reads written for everybody, every character where it stood.
std::string ReadableStatement(const qbQueryBuilder& hub, std::string_view typed) {
  const CriteriaContext criteria = hub.CriteriaRules();
  if (!criteria.reading) return std::string(typed);
  std::string sql = WithDoubledQuotes(WithoutHashComments(typed, *criteria.reading), *criteria.reading);
  if (const std::optional<std::size_t> otherwise = FirstReadOtherwise(sql, *criteria.reading)) {
    throw SyntaxError(sql, *otherwise, text::ReadsOtherwise);
  }
  if (const std::optional<std::size_t> comment = FirstCommentReadOtherwise(sql, *criteria.reading)) {
    throw SyntaxError(sql, *comment, text::CommentReadsOtherwise);
  }
  return sql;
}

ReadStatement::ReadStatement(qbQueryBuilder& hub, std::string text)
    : options_(OptionsOf(hub)),
      text_(std::move(text)),
      tree_(ParseSelect(text_, {.openParenthesesInFrom = options_.dialect->leavesParenthesesOpen,
                                .pipesMayBeOr = options_.dialect->pipesMayBeOr})) {}

void ReadStatement::Bind(qbQueryBuilder& hub, QueryLookup queries, bool takesDrawn, bool beginsCompound) {
  options_.beginsCompound = beginsCompound;
  plan_.emplace(hub, tree_, options_.names, std::move(queries), takesDrawn);
  options_.drawn = plan_->Drawn(drawnJoins_);
  bound_ = BindStatement(tree_, *plan_, options_);
}

QuerySnapshot ReadStatement::Design() const {
  const JoinArrangement& arrangement = bound_.arrangement;
  QuerySnapshot query = bound_.query;
  std::vector<std::size_t> places(query.tables.size());
  for (std::size_t place = 0; place < places.size(); ++place) {
    places[arrangement.order[place]] = place;
    query.tables[place] = bound_.query.tables[arrangement.order[place]];
  }
  query.joins = arrangement.joins;
  for (SnapshotJoin& join : query.joins) {
    join.source = places[join.source];
    join.target = places[join.target];
  }
  std::ranges::stable_sort(query.joins, {}, &SnapshotJoin::source);
  for (SnapshotRow& row : query.rows) {
    if (row.table) row.table = places[*row.table];
  }
  return query;
}

}  // namespace zrqrybld
