// QuerySnapshot: a designed query as plain data, taken from the diagram, the grid and the options.
//
// The generator is a function of it. It knows no control, so a design can be written down in a test
// and two designs can be compared.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "zrqrybld/sql/criteria_context.h"
#include "zrqrybld/sql/join_comparison.h"
#include "zrqrybld/sql/join_kind.h"
#include "zrqrybld/sql/names.h"
#include "zrqrybld/sql/query_row.h"
#include "zrqrybld/sql/sql_text.h"

namespace zrqrybld {

/// One table of the diagram.
struct SnapshotTable {
  /// What the table is called in this query.
  Identifier caption;
  /// Its name in the data source, schema first.
  std::vector<Identifier> name;
  /// Whether the caption is another than the name, so that the statement needs an alias.
  bool aliased = false;
  /// The text of the query that stands in FROM instead of the name; "" for a table.
  std::string query = {};
  /// What its columns are called here, as they are written behind its name; "" for their own names.
  std::string columnNames = {};
  friend bool operator==(const SnapshotTable&, const SnapshotTable&) = default;
};

/// One join of the diagram. `source` and `target` are positions in `QuerySnapshot::tables`, from 0.
struct SnapshotJoin {
  std::size_t source = 0;
  std::size_t target = 0;
  /// The joined columns; none when the join is not complete.
  std::optional<Identifier> sourceColumn;
  std::optional<Identifier> targetColumn;
  JoinKind kind = {};
  /// From the source's column to the target's.
  JoinComparisonEnum comparison = JoinEqual;
  /// What else it asks, as SQL; "" for nothing.
  std::string condition = {};
  /// In how many groups of tables that are joined first it stands.
  std::int32_t groupLevel = 0;

  bool HasPair() const { return sourceColumn && targetColumn; }
  friend bool operator==(const SnapshotJoin&, const SnapshotJoin&) = default;
};

/// Whether the join joins two boxes and says which two columns are compared, or a condition; one that does not stands
/// in no statement.
bool IsUsable(const SnapshotJoin& join);

/// What the data source says of a column's type.
struct SnapshotType {
  /// The access layer's code; 0 when it is not known, as for expressions.
  std::int32_t code = 0;
  bool isLong = false;
  /// What stands before and after a literal.
  std::string prefix;
  std::string suffix;
  friend bool operator==(const SnapshotType&, const SnapshotType&) = default;
};

/// One row of the grid.
struct SnapshotRow : RowTerms {
  Identifier alias;
  /// What was asked for, where the alias had to be cut; "" otherwise.
  std::string uncutAlias;
  /// The position in `QuerySnapshot::tables`, from 0; none for an expression.
  std::optional<std::size_t> table;
  /// How literals of the column are written; known only where there are criteria.
  SnapshotType type;

  friend bool operator==(const SnapshotRow&, const SnapshotRow&) = default;
};

/// What is known of the columns of a query's tables, by their positions from 0.
class KnownColumns {
 public:
  KnownColumns() = default;
  KnownColumns(const KnownColumns&) = delete;
  KnownColumns& operator=(const KnownColumns&) = delete;
  virtual ~KnownColumns() = default;

  /// Whether the columns of the table are known; otherwise any name may be one.
  virtual bool KnowsColumns(std::size_t table) const = 0;
  /// The column as the source spells it; none when there is none. Exactly equal before equal without regard to case.
  virtual std::optional<std::string> FindColumn(std::size_t table, const std::string& name) const = 0;
  /// The columns in their order.
  virtual std::vector<std::string> Columns(std::size_t table) const = 0;
  /// Whether the source says that a column may be Null. The table is any of the source, by its name, schema first.
  virtual bool MayBeNull(const std::vector<Identifier>& /*table*/, const std::string& /*column*/) const {
    return false;
  }
};

class OuterQueries;

struct QuerySnapshot {
  std::vector<SnapshotTable> tables;
  /// In the order of their source tables.
  std::vector<SnapshotJoin> joins;
  std::vector<SnapshotRow> rows;
  bool groupByMode = false;
  bool distinct = false;
  /// "", a number or a number followed by "%".
  std::string top;
  /// How many rows are passed over before the first that is wanted.
  std::int32_t skip = 0;
  /// Whether it is put together with others by UNION and its like: what it sorts and limits by stands behind the last.
  bool beginsCompound = false;
  /// Whether its text stands among those of other queries: every parenthesis is closed then.
  bool isAmongOthers = false;
  NameRules names;
  /// How criteria are read and values written; what depends on the column comes from its row.
  CriteriaContext criteria;
  /// The columns of the tables while the design is as it was; nothing where nobody knows them.
  std::shared_ptr<const KnownColumns> columns;
  /// The queries around, whose columns may be named as well; nothing for a query that stands alone.
  std::shared_ptr<const OuterQueries> outer;
};

/// Sets what the context says of the column whose criterion is read.
void DescribeColumn(CriteriaContext& context, const SnapshotRow& row);

/// What stands before "." and a column of the table: its caption when it has one of its own, otherwise its name.
SqlText TableTerm(const SnapshotTable& table, const NameRules& rules);

/// A column of the table by its qualified name.
std::string FieldTerm(const SnapshotTable& table, const std::string& column, const NameRules& rules);

/// Whether the row's term stands for several columns, "*" or an expression that ends so.
bool IsAllColumns(const SnapshotRow& row);

/// The rows that are sorted by, in their order. Of several with one sort number the last one counts; a sort number that
/// is no number, or rounds to none from 1, does not.
std::vector<const SnapshotRow*> SortedRows(const QuerySnapshot& query);

}  // namespace zrqrybld
