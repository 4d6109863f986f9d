// NameScope: the tables of a statement and what the names in it mean.
//
// Pure: what the tables are and which columns they have is asked of a `QuerySource`.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "zrqrybld/base/phrase.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/query_snapshot.h"
#include "zrqrybld/sql/select_statement.h"

namespace zrqrybld {

class NearestName;

/// A table as a statement names it.
struct WrittenTable {
  std::vector<Identifier> parts;  ///< its name, schema first, without quotes
  Identifier alias;               ///< empty when it has none
  bool isQuery = false;           ///< a query stands in FROM, and bears the name
};

/// An item of FROM by its place, from 0: a query without a name gets one.
WrittenTable WrittenTableOf(const FromItem& item, std::size_t place);

/// Where the tables of a statement come from.
class QuerySource : public KnownColumns {
 public:
  /// The next table of FROM as it is to stand in the query; none when there is no such table. Tables are numbered from
  /// 0 in the order of these calls.
  virtual std::optional<SnapshotTable> AddTable(const WrittenTable& table) = 0;
  virtual SnapshotType TypeOf(std::size_t table, const std::string& column) const = 0;
  /// The columns of any table, for a query within the query: none when there is no such table, an empty list when
  /// nobody knows them.
  virtual std::optional<std::vector<std::string>> ColumnsOf(const WrittenTable&) const {
    return std::vector<std::string>();
  }
  /// Offers the names of all tables there are, for one that was not found.
  virtual void OfferTables(NearestName& nearest) const = 0;
};

/// A column of a table of the query.
struct BoundColumn {
  std::size_t table = 0;
  std::string column;
  friend bool operator==(const BoundColumn&, const BoundColumn&) = default;
};

/// The name without its quotes; doubled closing quotes become one.
std::string PlainName(std::string_view written);

/// A name as a server reads it that makes all letters alike.
std::string InLetters(std::string_view name, Dialect::PlainNames plain);

/// The parts with "." between, as one name.
std::string WholeName(const std::vector<Identifier>& parts);

/// The parts of a name with dots, without quotes.
std::vector<Identifier> NameParts(std::string_view written, Dialect::PlainNames plain = Dialect::PlainNames::AsWritten);

class NameScope {
 public:
  /// `text` is the statement, for the places of errors. What a query within the query does not name itself is looked
  /// up in the scope `outer`, around it. All must outlive the scope.
  NameScope(std::string_view text, QuerySource& source, const NameScope* outer = nullptr)
      : text_(text), source_(source), outer_(outer) {}

  /// Adds a table of FROM. SyntaxError when the source has no such table, or another has the same name.
  std::size_t AddTable(const FromItem& item);
  /// Adds the next table of a designed query.
  void AddKnown(const SnapshotTable& table);

  const std::vector<SnapshotTable>& Tables() const { return tables_; }
  QuerySource& Source() const { return source_; }

  /// The table that a qualifier names. SyntaxError at `place` when there is none or more than one.
  std::size_t RequireTable(std::string_view qualifier, std::string_view place) const;

  /// The column of a table that a name means. None when the name is not qualified and no table has it, and for one of a
  /// query around; SyntaxError when its table is unknown or has no such column, and when several tables have it.
  std::optional<BoundColumn> Find(const Expression& column) const;

  /// As `Find`; none instead of an error.
  std::optional<BoundColumn> TryFind(const Expression& column) const;

  /// As `Find`; SyntaxError when no table has the column.
  BoundColumn Require(const Expression& column) const;

  /// Whether the name may mean something, here or around: a column or one of several, a column of a table whose columns
  /// nobody knows, a whole row.
  bool Means(const Expression& column) const;
  /// Whether it means nothing here, but something around.
  bool MeansOuter(const Expression& column) const { return outer_ && !MeansHere(column) && outer_->Means(column); }
  /// The caption of the table around that a column belongs to; "" for a name that means something here, or nothing.
  std::string OuterTableOf(const Expression& column) const;

  /// SyntaxError when a name inside an expression means nothing, or one of several columns. What only tables have whose
  /// columns nobody knows is passed.
  void Check(const Expression& column) const;

  std::string_view Text() const { return text_; }
  /// The text that is looked at from now on.
  void SetText(std::string_view text) { text_ = text; }

  /// From now on the name without a qualifier means this column: that of USING and NATURAL.
  void Unify(const std::string& name, const BoundColumn& column);
  bool HasUnified() const { return !unified_.empty(); }
  /// The column that USING or NATURAL makes of columns with this name; nullptr when there is none.
  const BoundColumn* FindUnified(std::string_view name) const;

  /// Whether the word means something by itself in SQL: SYSDATE, ROWNUM.
  static bool IsPseudoColumn(std::string_view name);
  /// Whether it does so wherever it stands, so that no column is called so without quotes.
  static bool IsServerValue(std::string_view name);

  /// The offset of a part of the statement's text; 0 for a part of another one.
  std::size_t OffsetOf(std::string_view part) const;
  [[noreturn]] void Refuse(std::string_view part, Phrase message) const;

 private:
  void OfferColumns(std::size_t table, NearestName& nearest) const;
  template <class T>
  using ByName = std::unordered_map<std::string, T, HashNoCase, EqualNoCase>;
  static constexpr std::size_t kAmbiguous = static_cast<std::size_t>(-1);
  std::optional<std::size_t> FindTable(std::string_view qualifier) const;
  std::vector<std::size_t> TablesWith(const std::string& name) const;
  // Of a column that no source knows: as it is spelled where it is named first.
  const std::string& FirstSpelling(std::size_t table, const std::string& name) const;

  void CheckOuter(const Expression& column) const;
  bool MeansHere(const Expression& column) const;
  bool KnowsAny() const;

  std::string_view text_;
  QuerySource& source_;
  const NameScope* outer_;
  std::vector<SnapshotTable> tables_;
  ByName<std::size_t> byCaption_;
  ByName<std::size_t> byLastPart_;  // of tables without alias; `kAmbiguous` for several
  ByName<BoundColumn> unified_;
  mutable std::vector<ByName<std::string>> spellings_;  // by table
};

}  // namespace zrqrybld
