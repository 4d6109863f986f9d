// TablePlan: which tables of the diagram a statement's tables become, and what the binder asks about them.
#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "zrqrybld/diagram/table_picker.h"
#include "zrqrybld/host/designer_values.h"
#include "zrqrybld/sql/join_orders.h"
#include "zrqrybld/sql/name_scope.h"
#include "zrqrybld/sql/select_statement.h"

namespace zrqrybld {

class qbEntities;
class qbQueryBuilder;
class qbRelationship;

/// The columns of a query that can be named like a table; none where the name means a table of the source.
using QueryLookup = std::function<std::optional<std::vector<QueryColumn>>(const std::string& name)>;

// A table of the statement and what it becomes.
struct PlannedTable {
  WrittenTable written;
  std::vector<Identifier> plainName;  // as the dialect reads it, if it stands without quotes
  std::string name;                   // as the source is asked for it
  std::string caption;                // what it is called in the query
  Ref<qbEntity> entity;               // of the diagram; nothing when it is still to be added
  std::vector<Identifier> drawnName;  // the entity's
  std::int32_t position = std::numeric_limits<std::int32_t>::max();  // of the entity in the diagram
  bool isQuery = false;                                              // one of the statement's queries
  std::vector<SourceColumn> columns;                                 // of a query, and of one that is to be added
  std::unordered_map<std::string, std::size_t> byFoldedName;         // of its columns, the first of each
};

class TablePlan final : public QuerySource {
 public:
  /// Of tables as they are written, in the order in which the binder asks for them. Nothing is changed yet. The hub,
  /// the statement and the rules must outlive the plan. Without `takesDrawn` no table becomes one that the diagram has.
  TablePlan(qbQueryBuilder& hub, const std::vector<const FromItem*>& tables, const NameRules& rules,
            QueryLookup queries, bool takesDrawn);

  std::vector<PlannedTable>& Tables() { return tables_; }
  const std::vector<PlannedTable>& Tables() const { return tables_; }

  /// What the diagram holds of them now; the joins by their places in `drawnJoins`.
  DrawnDiagram Drawn(std::vector<Ref<qbRelationship>>& drawnJoins) const;

  // --- What the binder asks ---

  std::optional<SnapshotTable> AddTable(const WrittenTable& table) override;
  bool KnowsColumns(std::size_t table) const override;
  std::optional<std::string> FindColumn(std::size_t table, const std::string& name) const override;
  std::vector<std::string> Columns(std::size_t table) const override;
  SnapshotType TypeOf(std::size_t table, const std::string& column) const override;
  std::optional<std::vector<std::string>> ColumnsOf(const WrittenTable& table) const override;
  void OfferTables(NearestName& nearest) const override;

 private:
  void Claim(const qbEntities& entities);
  std::optional<std::vector<SourceColumn>> FindInSource(PlannedTable& table) const;
  void TakeQuery(PlannedTable& table) const;
  static void TakeColumns(PlannedTable& table, std::vector<SourceColumn> columns);
  bool IsCalled(const qbEntity& entity, const PlannedTable& table) const;

  qbQueryBuilder& hub_;
  const NameRules& rules_;
  const QueryLookup queries_;
  std::vector<PlannedTable> tables_;
  std::size_t added_ = 0;
  // Of tables in queries within the query, by name.
  mutable std::unordered_map<std::string, std::optional<std::vector<std::string>>> innerColumns_;
};

}  // namespace zrqrybld
