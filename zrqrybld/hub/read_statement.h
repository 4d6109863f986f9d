// ReadStatement: one typed SELECT with every name resolved; nothing is changed by it.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "zrqrybld/hub/table_plan.h"
#include "zrqrybld/sql/query_snapshot.h"
#include "zrqrybld/sql/select_statement.h"
#include "zrqrybld/sql/statement_binder.h"
#include "zrqrybld/sql/statement_parser.h"

namespace zrqrybld {

class OuterQueries;
class qbQueryBuilder;
struct ReadQuestion;

class ReadStatement {
 public:
  /// Parses the text, which may name columns of the queries around, too. SyntaxError when it cannot be read.
  ReadStatement(qbQueryBuilder& hub, std::string text, std::shared_ptr<const OuterQueries> outer);
  ReadStatement(const ReadStatement&) = delete;
  ReadStatement& operator=(const ReadStatement&) = delete;

  /// The text as it was given; the tree's parts are views into it.
  const std::string& Text() const { return text_; }
  const SelectStatement& Tree() const { return tree_; }

  /// Resolves every name; `beginsCompound` says that members of UNION and its like follow. SyntaxError for what is not
  /// there or cannot be shown.
  void Bind(qbQueryBuilder& hub, const QueryLookup& queries, bool takesDrawn, bool beginsCompound);

  // --- When that is done ---

  std::vector<PlannedTable>& Tables() { return plan_->Tables(); }
  const BoundStatement& Bound() const { return bound_; }
  const TablePlan& Plan() const { return *plan_; }
  const std::vector<Ref<qbRelationship>>& DrawnJoins() const { return drawnJoins_; }
  /// The query as the diagram and the grid would hold it.
  QuerySnapshot Design() const;

 private:
  ParseOptions ReadBy() const;
  void RequireFrom() const;
  SelectStatement Parse() const;
  DrawnDiagram TakeDrawn(std::size_t tables);
  void BindPlain(qbQueryBuilder& hub, const QueryLookup& queries, bool takesDrawn);
  bool BindWithQuestions(qbQueryBuilder& hub, const QueryLookup& queries, bool takesDrawn);
  const ReadQuestion* BindQuestioning(qbQueryBuilder& hub, const QueryLookup& queries, bool takesDrawn,
                                      const SelectStatement& statement, const std::vector<ReadQuestion>& questions);

  BindOptions options_;
  const std::string text_;
  SelectStatement tree_;
  std::optional<TablePlan> plan_;
  std::vector<Ref<qbRelationship>> drawnJoins_;
  BoundStatement bound_;
};

/// The text with what only its source reads written for everybody, every character where it stood. SyntaxError for what
/// the source would read in another way.
std::string ReadableStatement(const qbQueryBuilder& hub, std::string_view typed);

}  // namespace zrqrybld
