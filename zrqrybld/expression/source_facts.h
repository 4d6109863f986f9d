// What is known of the data source and of the query's tables, as the expression tools look at it.
//
// Plain data behind one narrow interface: whoever implements it reads a table's columns when they are asked for the
// first time, and remembers them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zrqrybld {

struct ColumnFacts {
  std::string name;
  std::string folded;      ///< case-folded: what typed text is compared with
  std::string type;        ///< for a person; "" when it is not known
  bool mayBeNull = false;  ///< as the source says; not where it was not asked
};

/// A foreign key of a table: the table that it refers to, and the pairs of columns.
struct ForeignKeyFacts {
  struct Pair {
    std::string column;
    std::string parentColumn;
  };
  std::string parentSchema;  ///< "" where there are no schemas
  std::string parentTable;
  std::vector<Pair> pairs;
};

struct TableFacts {
  std::string schema;  ///< "" where there are no schemas
  std::string name;
  std::string folded;  ///< the name, case-folded
  bool isView = false;
  std::vector<ColumnFacts> columns;  ///< empty until they were read
  std::string foldedColumns;  ///< of a table of the source: their folded names, so that one look tells what none holds
  std::vector<ForeignKeyFacts> foreignKeys;
};

/// A table of the query under the name that it has there.
struct QueryTableFacts {
  std::string caption;
  std::string qualifier;  ///< as SQL text: what its columns are qualified with
  const TableFacts* facts = nullptr;
  bool outer = false;  ///< of a query around the designed one
};

/// What is known. The tables that it returns stay where they are; their columns until `Find` is asked for that table.
class SourceFacts {
 public:
  SourceFacts() = default;
  SourceFacts(const SourceFacts&) = delete;
  SourceFacts& operator=(const SourceFacts&) = delete;
  virtual ~SourceFacts() = default;

  /// All tables and views of the source; of those that were never used the columns are not known.
  virtual const std::vector<const TableFacts*>& Tables() const = 0;

  /// The tables of the designed query, with their columns; behind them those of the queries around it.
  virtual const std::vector<QueryTableFacts>& QueryTables() const = 0;

  /// A table with its columns by the parts of its name, found without regard to case; nothing when there is none. Of
  /// the parts the last is the table's name, the one before it its schema.
  virtual const TableFacts* Find(const std::vector<std::string>& parts) = 0;
};

/// Whether the foreign key refers to the table.
bool RefersTo(const ForeignKeyFacts& key, const TableFacts& table);

}  // namespace zrqrybld
