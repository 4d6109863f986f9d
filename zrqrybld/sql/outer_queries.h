// OuterQueries: what a query in an expression or a criterion may name of the queries around it.
//
// Plain data, taken when it is asked for; the nearest query around counts first.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "zrqrybld/base/export.h"
#include "zrqrybld/sql/name_scope.h"
#include "zrqrybld/sql/query_snapshot.h"
#include "zrqrybld/sql/sql_text.h"

namespace zrqrybld {

/// The tables of a designed query as a `QuerySource`: what their columns are, and nothing of the data source.
class DesignSource final : public QuerySource {
 public:
  /// Without columns any name may be one of any table.
  explicit DesignSource(std::shared_ptr<const KnownColumns> columns) : columns_(std::move(columns)) {}
  std::optional<SnapshotTable> AddTable(const WrittenTable&) override { return std::nullopt; }
  bool KnowsColumns(std::size_t table) const override { return columns_ && columns_->KnowsColumns(table); }
  std::optional<std::string> FindColumn(std::size_t table, const std::string& name) const override {
    return columns_ ? columns_->FindColumn(table, name) : std::nullopt;
  }
  std::vector<std::string> Columns(std::size_t table) const override {
    return columns_ ? columns_->Columns(table) : std::vector<std::string>();
  }
  SnapshotType TypeOf(std::size_t, const std::string&) const override { return {}; }
  void OfferTables(NearestName&) const override {}

 private:
  const std::shared_ptr<const KnownColumns> columns_;
};

class ZRQRYBLD_API OuterQueries {
 public:
  /// The query around, with what stands around it.
  explicit OuterQueries(const QuerySnapshot& query);
  OuterQueries(const OuterQueries&) = delete;
  OuterQueries& operator=(const OuterQueries&) = delete;

  /// Its tables, and then those of the queries around it.
  const NameScope& Scope() const { return scope_; }
  const std::vector<SnapshotTable>& Tables() const { return scope_.Tables(); }
  std::vector<std::string> ColumnsOf(std::size_t table) const { return source_.Columns(table); }
  /// What stands around the query; nothing for the outermost.
  const OuterQueries* Around() const { return around_.get(); }

  /// Whether the name, given by its parts, is a column of any of them; of a table whose columns nobody knows, any is.
  bool HasColumn(const std::vector<std::string>& parts) const;
  /// The table with this caption, the nearest of several; nullptr when there is none.
  const SnapshotTable* FindTable(std::string_view caption) const;

 private:
  const std::shared_ptr<const OuterQueries> around_;
  DesignSource source_;
  NameScope scope_;
};

/// The captions of the tables of queries around that the query names in its rows, each once; empty for a query that
/// could stand alone.
ZRQRYBLD_API std::vector<std::string> OuterTablesNamed(const QuerySnapshot& query);

/// The names without a table by which the query means columns of queries around and which would mean columns of its own
/// last table, which is new: each with its table around, as SQL. Names that no table around lends its name to are left
/// out, such as one of a table that is called like one here.
std::unordered_map<std::string, SqlText, HashNoCase, EqualNoCase> NamesTakenByLastTable(const QuerySnapshot& query);

}  // namespace zrqrybld
