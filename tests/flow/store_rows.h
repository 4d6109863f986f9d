// The rows of the sample database in memory, and a join of them that is written without any SQL: what the statements
// of the designer are measured against.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <variant>
#include <vector>

struct sqlite3;

namespace zrqrybld::test {

/// A cell: Null, a whole number, a number, or a text (UTF-8).
using Cell = std::variant<std::monostate, std::int64_t, double, std::string>;
using Row = std::vector<Cell>;

std::string ToText(const Row& row);

/// Tells bags of rows apart: how many there are, and the sum of a hash of each.
class Digest {
 public:
  void Add(const Row& row);
  std::string Text() const;

 private:
  std::uint64_t count_ = 0;
  std::uint64_t sum_ = 0;
};

/// A table or view as it stands in the file.
struct StoredTable {
  std::vector<std::string> columns;
  std::vector<Row> rows;
  std::size_t ColumnAt(const std::string& name) const;
};

/// The sample database, opened for reading.
class Store {
 public:
  Store();
  Store(const Store&) = delete;
  Store& operator=(const Store&) = delete;
  ~Store();

  /// Runs a statement. An error of SQLite is an exception that holds the statement.
  std::vector<Row> Run(const std::string& sql) const;
  /// The same, as a digest of the rows that does not depend on their order.
  std::string RunToDigest(const std::string& sql) const;
  /// The table's rows, read once.
  const StoredTable& Table(const std::string& name);
  /// The positions of the table's rows by their values in some columns; rows with a Null among these are left out.
  const std::map<Row, std::vector<std::size_t>>& Index(const std::string& name,
                                                       const std::vector<std::size_t>& columns);

 private:
  template <class Use>
  void ForEachRow(const std::string& sql, Use&& use) const;

  sqlite3* database_ = nullptr;
  std::map<std::string, StoredTable> tables_;
  std::map<std::pair<std::string, std::vector<std::size_t>>, std::map<Row, std::vector<std::size_t>>> indexes_;
};

/// A foreign key column of the sample database.
struct ForeignKeyColumn {
  const char* childTable;
  const char* childColumn;
  const char* parentTable;
  const char* parentColumn;
};
const std::vector<ForeignKeyColumn>& StoreForeignKeys();

/// A condition on a column, as it is typed and as a function that knows no SQL; none for "unknown".
struct Criterion {
  std::string text;
  std::function<std::optional<bool>(const Cell&)> holds;
};

/// A query, said in positions from 0.
struct Design {
  struct Table {
    std::string caption;
    std::string name;
  };
  /// `left` is the end that the join is drawn from; bit 1 of `kind` keeps all rows of `right`, bit 2 those of `left`.
  struct Join {
    std::size_t left;
    std::string leftColumn;
    std::size_t right;
    std::string rightColumn;
    int kind = 0;
    /// From `left` to `right`: equal, other, less, at most, more or at least.
    int comparison = 0;
    /// What the join asks besides: that a number of one of its tables is larger.
    struct Condition {
      std::size_t table;
      std::string column;
      std::int64_t over;
    };
    std::optional<Condition> condition = {};
    /// Whether the join only asks: for a row of `right` (1) or none (2), for a row of `left` (3) or none (4).
    int question = 0;
    std::size_t Asked() const { return question <= 2 ? right : left; }
  };
  struct Field {
    std::size_t table;
    std::string column;  ///< "*" stands for all columns
    bool output = true;
    std::string group = {};  ///< "", "Group By", "Where", "Count", "Sum", "Min" or "Max"
    int sort = 0;            ///< the place in the sort order, negative when it descends; 0 for none
    /// By the position of the criteria column.
    std::map<std::size_t, Criterion> criteria = {};
  };
  std::vector<Table> tables;
  std::vector<Join> joins;
  std::vector<Field> fields;
  bool distinct = false;
};

/// Tables with the captions that they get in a diagram: a number follows the name of a later copy.
std::vector<Design::Table> WithCaptions(const std::vector<std::string>& names);

/// The joins that foreign keys make: from a table to every copy of the table it refers to; within one table from each
/// copy to the copies after it.
std::vector<Design::Join> JoinsByForeignKeys(const std::vector<Design::Table>& tables);

/// Whether every table hangs together with the first.
bool IsConnected(const Design& design);

/// The tables that hang together with one by joins that do not ask.
std::set<std::size_t> TogetherWith(const Design& design, std::size_t table);

/// Whether every table is joined to those before it by joins of one kind, so that one statement can say it.
bool HasOneKindATable(const Design& design);

/// Below zero, zero or above as `a` stands before `b`, is equal or stands behind. Neither is Null.
int Compare(const Cell& a, const Cell& b);

/// The rows of the design, sorted as it says (Null first); nothing when there are more than `most`, also on the way.
std::optional<std::vector<Row>> Evaluate(Store& store, const Design& design, std::size_t most = 200000);

}  // namespace zrqrybld::test
