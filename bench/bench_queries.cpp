// Queries within queries: showing one, and reading and writing many.
#include <benchmark/benchmark.h>

#include <cstddef>
#include <string>

#include "bench/designer.h"
#include "bench/made_up_source.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/hub/queries.h"
#include "zrqrybld/sql/sql_pane.h"

namespace zrqrybld::bench {
namespace {

constexpr int kColumns = 20;

// To a query in FROM of so many tables, and back.
void OpenInnerQuery(benchmark::State& state) {
  const Ref<qbQueryBuilder> hub = MakeDesigner(kColumns);
  const Ref<qbQuery> main = hub->Queries()->Current();
  const Ref<qbQuery> inner = hub->Queries()->Add(QueryDerivedTable, "Inner");
  inner->Open();
  AddTables(*hub, static_cast<int>(state.range(0)));
  main->Open();
  for (auto _ : state) {
    inner->Open();
    main->Open();
  }
}
BENCHMARK(OpenInnerQuery)->Arg(5)->Arg(50)->Arg(500)->Unit(benchmark::kMillisecond);

void Read(benchmark::State& state, const std::string& statement) {
  const Ref<qbQueryBuilder> hub = MakeDesigner(kColumns);
  hub->SQLPane()->SetSQLSyntax(SQLSyntaxPostgreSQL);
  for (auto _ : state) hub->SQLPane()->ParseSQLStatement(statement);
  state.counters["written"] = static_cast<double>(hub->SQLPane()->SQLStatement().size());
}

std::string SelectOne() { return "SELECT " + ColumnName(0) + " FROM " + TableName(0); }

void ReadMembers(benchmark::State& state) {
  std::string statement = SelectOne();
  for (std::int64_t i = 1; i < state.range(0); ++i) statement += " UNION ALL " + SelectOne();
  Read(state, statement);
}
BENCHMARK(ReadMembers)->Arg(10)->Arg(100)->Arg(1000)->Unit(benchmark::kMillisecond);

void ReadNested(benchmark::State& state) {
  std::string statement = SelectOne();
  for (std::int64_t i = 1; i < state.range(0); ++i) {
    statement = "SELECT " + ColumnName(0) + " FROM (" + statement + ") AS q" + std::to_string(i);
  }
  Read(state, statement);
}
BENCHMARK(ReadNested)->Arg(10)->Arg(30)->Arg(99)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace zrqrybld::bench
