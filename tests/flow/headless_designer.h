// A designer without a window, open on the sample database, and its statements made ready for SQLite.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "zrqrybld/base/object.h"
#include "zrqrybld/sql/sql_syntax.h"

namespace zrqrybld {

class qbEntities;
class qbQueryBuilder;
class qbRelationship;

namespace test {

class HeadlessDesigner {
 public:
  HeadlessDesigner();

  qbQueryBuilder& Hub() const { return *hub_; }
  qbEntities& Entities() const;

  /// Adds the tables and draws their joins.
  void AddTables(const std::vector<std::string>& names);
  /// Checks the column's item, as a click in its box does.
  void Tick(const std::string& caption, const std::string& column) { SetTick(caption, column, true); }
  void SetTick(const std::string& caption, const std::string& column, bool ticked);
  /// Draws a join from a column to a column.
  Ref<qbRelationship> Join(const std::string& source, const std::string& sourceColumn, const std::string& target,
                           const std::string& targetColumn);
  /// The grid row of a column. An exception when there is none.
  std::int32_t RowOf(const std::string& caption, const std::string& column) const;
  /// Sorts by a column that is ticked.
  void Sort(const std::string& caption, const std::string& column, const std::string& type, int order);
  /// The statement in a dialect, with line feeds.
  std::string Statement(SQLSyntaxEnum syntax);

 private:
  Ref<qbQueryBuilder> hub_;
};

/// The statement as SQLite takes it: a row limit becomes LIMIT, and the columns of a list without commas get commas.
/// Joins stay as they were written.
std::string ForSqlite(const std::string& statement, SQLSyntaxEnum syntax);

}  // namespace test
}  // namespace zrqrybld
