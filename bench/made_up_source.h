// A data source in memory: tables T0, T1, ... of as many columns as wanted, each with a foreign key to the table
// before. It answers at once, so that the figures are those of the library.
#pragma once

#include <string>
#include <vector>

#include "zrqrybld/platform/database.h"

namespace zrqrybld::bench {

class MadeUpSource final : public Connection {
 public:
  /// It answers for any table, and lists the first `tables`.
  explicit MadeUpSource(int columns, int tables = 0) : columns_(columns), tables_(tables) {}

  std::string ConnectionString() const override { return "Provider=MadeUp"; }
  void SetConnectionString(std::string) override {}
  void SetProperty(std::string_view, const Variant&) override {}
  void Open(std::string_view, std::string_view) override {}
  void Close() override {}
  ConnectionStateEnum State() const override { return ConnectionOpened; }
  std::unique_ptr<RowSet> OpenSchema(SchemaKind kind, const SchemaRestrictions& restrictions) override;

 private:
  int columns_;
  int tables_;
};

/// The name of the column at a position from 0: C0 is the primary key, C1 refers to the table before.
std::string ColumnName(int position);
std::string TableName(int position);

}  // namespace zrqrybld::bench
