// DesignQueries: what a pane asks about the design as a whole, which the hub answers from all panes.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "zrqrybld/base/export.h"
#include "zrqrybld/base/object.h"
#include "zrqrybld/host/designer_values.h"
#include "zrqrybld/platform/menu.h"

namespace zrqrybld {

class OuterQueries;
class SchemaCache;
class qbEntities;
class qbQueryBuilder;
class qbRelationship;
struct CriteriaContext;
struct Dialect;
struct ExtraConditions;
struct GeneratedQuery;
struct QuerySnapshot;

class ZRQRYBLD_API DesignQueries {
 public:
  DesignQueries() = default;
  DesignQueries(const DesignQueries&) = delete;
  DesignQueries& operator=(const DesignQueries&) = delete;
  virtual ~DesignQueries() = default;

  /// The hub itself, for a pane's `QueryBuilder`.
  virtual Ref<qbQueryBuilder> Hub() = 0;

  /// The longest alias in characters; 0 means no limit.
  virtual std::int16_t AliasMaxLen() const = 0;
  virtual FieldOrderEnum RetrieveFieldOrder() const = 0;

  /// The diagram's tables; nothing when no diagram is linked.
  virtual Ref<qbEntities> Entities() const = 0;

  /// The dialect in use; the generic one when no SQL pane is linked.
  virtual const Dialect& CurrentDialect() const = 0;
  /// Whether it can say "all rows of both tables". Without an SQL pane nothing speaks against that.
  virtual bool HasFullJoin() const = 0;

  /// The grid's date format; the default one when no grid is linked.
  virtual std::string DateFormat() const = 0;

  /// How criteria are read and values written; what depends on a column is left open.
  virtual CriteriaContext CriteriaRules() const = 0;

  /// The query that the panes show, as it is now.
  virtual QuerySnapshot Snapshot() const = 0;
  /// The whole statement, where it is made of several queries; none for a single one. `extra` is added to the query
  /// that the panes show.
  virtual std::optional<GeneratedQuery> WholeStatement(const ExtraConditions& extra) const = 0;
  /// The columns of a query that the one shown can name like a table; none when there is none with this name.
  virtual std::optional<std::vector<QueryColumn>> ColumnsOfQuery(const std::string& name) const = 0;

  /// What can be done with such a query; empty when there is none with this name. The entries outlive the designer.
  virtual Menu MenuOfQuery(const std::string& name) = 0;
  /// What can be done with the queries in a cell of the grid; empty where there are none and none can be.
  virtual Menu MenuOfCell(std::int32_t row, std::int32_t column) = 0;
  /// The same for the condition of a join.
  virtual Menu MenuOfJoin(const Ref<qbRelationship>& join) = 0;
  /// What the shown query may name of those around it; nothing for one that stands alone.
  virtual std::shared_ptr<const OuterQueries> Outer() const = 0;
  /// What makes new queries of the statement, and leaves the one shown.
  virtual Menu MenuOfNewQueries() = 0;

  /// What the grid says about a column; empty texts when it has no row there, nothing when no grid is linked.
  virtual std::optional<ColumnUse> UseOfColumn(const std::string& entityCaption, const std::string& column) const = 0;

  /// Whether the properties of a join may be shown.
  virtual bool CanEditJoins() const = 0;

  /// What the expression tools know of the source; never nothing.
  virtual std::shared_ptr<SchemaCache> Schema() = 0;
};

}  // namespace zrqrybld
