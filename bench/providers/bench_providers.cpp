// A catalogue of 1,000 tables with 20 columns each: what connecting, listing and adding cost, by provider.
//
// The tables are made through ODBC. PostgreSQL and MariaDB take part when tests/providers/servers.sh has started them.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "bench/made_up_source.h"
#include "tests/providers/odbc_executor.h"
#include "zrqrybld/adapters/odbc/odbc_provider.h"
#include "zrqrybld/adapters/sqlite/sqlite_provider.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/table_picker.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/platform/toolkit.h"

namespace zrqrybld {
namespace {

constexpr int kTables = 1000;
constexpr int kColumns = 20;

std::string TableName(int number) { return "scale_" + std::to_string(number); }

// Each table references the one before it.
std::string CreateTable(int number) {
  std::string sql = "CREATE TABLE " + TableName(number) + " (c1 INTEGER PRIMARY KEY";
  for (int column = 2; column <= kColumns; ++column) sql += ", c" + std::to_string(column) + " VARCHAR(40)";
  if (number > 1) sql += ", parent INTEGER REFERENCES " + TableName(number - 1) + " (c1)";
  return sql + ")";
}

void MakeTables(const std::string& connectionString) {
  test::OdbcExecutor executor(connectionString);
  for (int number = 1; number <= kTables; ++number) executor.Execute(CreateTable(number));
}

Ref<qbQueryBuilder> NewHub() {
  const Ref<qbQueryBuilder> hub = qbQueryBuilder::Create();
  hub->GetToolkit().Providers()->Register(std::make_shared<SqliteProvider>());
  hub->GetToolkit().Providers()->Register(std::make_shared<OdbcProvider>());
  hub->SetDiagramPane(qbDiagramPane::Create());
  return hub;
}

void Connect(benchmark::State& state, const std::string& connectionString, bool withTables) {
  for (auto _ : state) {
    const Ref<qbQueryBuilder> hub = NewHub();
    hub->SetGetTablesOnConnect(withTables);
    hub->Connect(connectionString);
    if (hub->LastError()) state.SkipWithError(hub->LastError()->Description().c_str());
    if (withTables && hub->SourceTables().size() < kTables) state.SkipWithError("tables are missing");
  }
}

void ListTables(benchmark::State& state, const std::string& connectionString) {
  const Ref<qbQueryBuilder> hub = NewHub();
  hub->Connect(connectionString);
  for (auto _ : state) {
    if (TablePicker(hub).ListTables().tables.size() < kTables) state.SkipWithError("tables are missing");
  }
}

void AddTable(benchmark::State& state, const std::string& connectionString) {
  const Ref<qbQueryBuilder> hub = NewHub();
  hub->Connect(connectionString);
  for (auto _ : state) {
    const Ref<qbEntity> entity = hub->AddTable(TableName(kTables / 2));
    if (!entity || entity->Items()->Count() < kColumns) state.SkipWithError("columns are missing");
    state.PauseTiming();
    hub->DiagramPane()->Clear();
    state.ResumeTiming();
  }
}

void AutoJoins(benchmark::State& state, const std::string& connectionString) {
  const Ref<qbQueryBuilder> hub = NewHub();
  hub->Connect(connectionString);
  for (int number = 1; number <= 10; ++number) hub->AddTable(TableName(number));
  for (auto _ : state) hub->RefreshAutoJoins();
}

void Register(const std::string& name, const std::string& connectionString) {
  const auto add = [&](const std::string& what, auto run) {
    benchmark::RegisterBenchmark((name + "/" + what).c_str(), run)->Unit(benchmark::kMillisecond);
  };
  add("connect", [=](benchmark::State& state) { Connect(state, connectionString, false); });
  add("connect_with_all_tables", [=](benchmark::State& state) { Connect(state, connectionString, true); });
  add("list_tables", [=](benchmark::State& state) { ListTables(state, connectionString); });
  add("add_one_table", [=](benchmark::State& state) { AddTable(state, connectionString); });
  add("joins_of_ten_tables", [=](benchmark::State& state) { AutoJoins(state, connectionString); });
}

}  // namespace
}  // namespace zrqrybld

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  const std::filesystem::path file = std::filesystem::temp_directory_path() / "zrqrybld_scale.db";
  std::filesystem::remove(file);  // an earlier run may have been stopped before its end
  const std::string sqliteByOdbc = "Driver=SQLite3;Database=" + file.string();
  zrqrybld::MakeTables(sqliteByOdbc);
  zrqrybld::Register("sqlite", "Provider=SQLite;Data Source=" + file.string());
  zrqrybld::Register("sqlite_by_odbc", sqliteByOdbc);
  for (const auto& [name, variable] :
       {std::pair{"postgresql", "ZRQRYBLD_TEST_POSTGRESQL"}, std::pair{"mariadb", "ZRQRYBLD_TEST_MARIADB"}}) {
    if (const char* connectionString = std::getenv(variable)) {
      zrqrybld::MakeTables(connectionString);
      zrqrybld::Register(name, connectionString);
    }
  }
  benchmark::RunSpecifiedBenchmarks();
  std::filesystem::remove(file);
}
