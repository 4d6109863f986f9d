#include "zrqrybld/hub/read_statement.h"

#include <algorithm>
#include <utility>

#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_sql.h"
#include "zrqrybld/base/texts_values.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/from_binder.h"
#include "zrqrybld/sql/question_reader.h"
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

// What the diagram holds of the first tables; their joins are brought to the front.
DrawnDiagram OnlyTables(DrawnDiagram& drawn, std::vector<Ref<qbRelationship>>& joins, std::size_t tables) {
  DrawnDiagram own;
  std::vector<DrawnJoin> others;
  std::vector<Ref<qbRelationship>> ownJoins, otherJoins;
  for (const std::size_t table : drawn.order) {
    if (table < tables) own.order.push_back(table);
  }
  for (std::size_t i = 0; i < joins.size(); ++i) {
    const bool isOwn = std::max(drawn.joins[i].source, drawn.joins[i].target) < tables;
    (isOwn ? own.joins : others).push_back(drawn.joins[i]);
    (isOwn ? ownJoins : otherJoins).push_back(joins[i]);
  }
  drawn.joins = own.joins;
  drawn.joins.insert(drawn.joins.end(), others.begin(), others.end());
  joins = std::move(ownJoins);
  joins.insert(joins.end(), otherJoins.begin(), otherJoins.end());
  return own;
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

ReadStatement::ReadStatement(qbQueryBuilder& hub, std::string text, std::shared_ptr<const OuterQueries> outer)
    : options_(OptionsOf(hub)), text_(std::move(text)), tree_(Parse()) {
  options_.outer = std::move(outer);
}

// Names in double quotes are written where the source has them; elsewhere such words are what they are to the source.
ParseOptions ReadStatement::ReadBy() const {
  ParseOptions options = OptionsFor(*options_.dialect);
  const std::optional<TextReading>& reading = options_.criteria.reading;
  options.doubleQuotesAreTexts = options_.dialect->doubleQuotesAreTexts && options_.names.quotePrefix != "\"" &&
                                 (!reading || reading->doubleQuotesAreTexts);
  return options;
}

// Of a statement without tables that names a column, FROM was forgotten: that is what is said of it.
void ReadStatement::RequireFrom() const {
  ParseOptions options = ReadBy();
  options.needsTables = true;
  options.mayEndAtFrom = false;
  ParseSelect(text_, options);
}

SelectStatement ReadStatement::Parse() const { return ParseSelect(text_, ReadBy()); }

void ReadStatement::Bind(qbQueryBuilder& hub, const QueryLookup& queries, bool takesDrawn, bool beginsCompound) {
  options_.beginsCompound = beginsCompound;
  try {
    if (!BindWithQuestions(hub, queries, takesDrawn)) BindPlain(hub, queries, takesDrawn);
  } catch (const SyntaxError&) {
    if (!tree_.from) RequireFrom();
    throw;
  }
}

// The diagram's joins of all planned tables, and in the options those of the statement's own, which come first.
DrawnDiagram ReadStatement::TakeDrawn(std::size_t tables) {
  drawnJoins_.clear();
  DrawnDiagram drawn = plan_->Drawn(drawnJoins_);
  options_.drawn = OnlyTables(drawn, drawnJoins_, tables);
  return drawn;
}

void ReadStatement::BindPlain(qbQueryBuilder& hub, const QueryLookup& queries, bool takesDrawn) {
  const std::vector<const FromItem*> tables = TablesOf(tree_);
  plan_.emplace(hub, tables, options_.names, queries, takesDrawn);
  TakeDrawn(tables.size());
  bound_ = BindStatement(tree_, *plan_, options_);
}

// With EXISTS (...) as joins that ask, as far as joins can; false when none can.
bool ReadStatement::BindWithQuestions(qbQueryBuilder& hub, const QueryLookup& queries, bool takesDrawn) {
  if (FindNoCase(text_, "EXISTS") == std::string::npos) return false;
  constexpr int kMostTries = 8;
  std::vector<std::string_view> left;  // what stays a condition
  for (int i = 0; i < kMostTries; ++i) {
    SelectStatement statement = Parse();  // the questions are taken out of it
    const std::vector<ReadQuestion> questions = TakeQuestions(statement, ReadBy(), left);
    if (questions.empty()) return false;
    try {
      const ReadQuestion* unsaid = BindQuestioning(hub, queries, takesDrawn, statement, questions);
      if (!unsaid) return true;
      left.push_back(unsaid->place);
    } catch (const SyntaxError&) {
      return false;  // told where the whole is read
    }
  }
  return false;
}

// A question that no joins ask; nothing when all is bound.
const ReadQuestion* ReadStatement::BindQuestioning(qbQueryBuilder& hub, const QueryLookup& queries, bool takesDrawn,
                                                   const SelectStatement& statement,
                                                   const std::vector<ReadQuestion>& questions) {
  std::vector<const FromItem*> tables = TablesOf(statement);
  const std::size_t own = tables.size();
  const std::vector<const FromItem*> asked = TablesOf(questions);
  tables.insert(tables.end(), asked.begin(), asked.end());
  plan_.emplace(hub, tables, options_.names, queries, takesDrawn);
  const DrawnDiagram drawn = TakeDrawn(own);
  bound_ = BindStatement(statement, *plan_, options_);
  return BindQuestions(bound_, questions, *plan_, options_, drawn);
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
