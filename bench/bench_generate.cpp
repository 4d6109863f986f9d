// Writing the statement: from plain data, and with the data taken out of the diagram and the grid.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <ctime>

#include "bench/designer.h"
#include "bench/made_up_source.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/host/step_context.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/sql/diagnostics.h"
#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/generator.h"
#include "zrqrybld/sql/query_snapshot.h"
#include "zrqrybld/sql/sql_pane.h"
#include "zrqrybld/sql/sql_syntax.h"

namespace zrqrybld::bench {
namespace {

// A chain of tables, and the rows spread over them; one row in ten is sorted, one in five has a criterion.
QuerySnapshot MakeSnapshot(int tables, int rows) {
  QuerySnapshot query;
  query.names.quotePrefix = query.names.quoteSuffix = "\"";
  query.names.quotedIdentifiers = {" ", "-"};
  for (int t = 0; t < tables; ++t) {
    query.tables.push_back({Identifier(TableName(t)), {Identifier(TableName(t))}, false});
    if (t == 0) continue;
    const auto index = static_cast<std::size_t>(t);
    query.joins.push_back({index, index - 1, Identifier(ColumnName(1)), Identifier(ColumnName(0)), {}});
  }
  for (int r = 0; r < rows; ++r) {
    SnapshotRow row;
    row.column = ColumnName(r / tables);
    row.table = static_cast<std::size_t>(r % tables);
    row.output = true;
    if (r % 10 == 0) {
      row.sort = {SortDirection::Ascending, r / 10 + 1};
    }
    if (r % 5 == 0) row.criteria = {"> " + std::to_string(r), r % 3 == 0 ? "Is Null" : ""};
    query.rows.push_back(row);
  }
  return query;
}

void Generate(benchmark::State& state, SQLSyntaxEnum syntax) {
  const QuerySnapshot query = MakeSnapshot(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
  std::size_t length = 0;
  for (auto _ : state) {
    const GeneratedSql sql = GenerateSelect(query, DialectFor(syntax));
    length = sql.text.size();
    benchmark::DoNotOptimize(sql.text.data());
  }
  state.SetItemsProcessed(state.iterations() * state.range(1));
  state.counters["characters"] = static_cast<double>(length);
}
BENCHMARK_CAPTURE(Generate, MSSQL, SQLSyntaxMSSQL)->Args({10, 30})->Args({100, 300})->Args({1000, 10000});
BENCHMARK_CAPTURE(Generate, Oracle, SQLSyntaxOracle)->Args({10, 30})->Args({100, 300})->Args({1000, 10000});

// How the time grows with the size: the slope of its logarithm over that of the number of tables, by least squares over
// 10, 100, 1,000 and 10,000 tables with three columns each. 1 is linear.
void Growth(benchmark::State& state, SQLSyntaxEnum syntax) {
  double exponent = 0;
  for (auto _ : state) {
    double n = 0, sumX = 0, sumY = 0, sumXX = 0, sumXY = 0;
    for (const int tables : {10, 100, 1000, 10000}) {
      const QuerySnapshot query = MakeSnapshot(tables, tables * 3);
      const int repeats = 10'000 / tables + 1;
      double best = 1e9;  // of several batches, in processor time, for the machine may have other work
      for (int batch = 0; batch < 5; ++batch) {
        const std::clock_t start = std::clock();
        for (int i = 0; i < repeats; ++i) {
          benchmark::DoNotOptimize(GenerateSelect(query, DialectFor(syntax)).text.data());
        }
        best = std::min(best, static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC / repeats);
      }
      const double x = std::log(tables);
      const double y = std::log(best);
      n += 1, sumX += x, sumY += y, sumXX += x * x, sumXY += x * y;
      state.counters["us_" + std::to_string(tables)] = best * 1e6;
    }
    exponent = (n * sumXY - sumX * sumY) / (n * sumXX - sumX * sumX);
  }
  state.counters["exponent"] = exponent;
}
BENCHMARK_CAPTURE(Growth, MSSQL, SQLSyntaxMSSQL)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Growth, Oracle, SQLSyntaxOracle)->Iterations(1)->Unit(benchmark::kMillisecond);

// What there is to say about a statement.
void FindDiagnostics(benchmark::State& state) {
  const QuerySnapshot query = MakeSnapshot(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
  const GeneratedSql sql = GenerateSelect(query, DialectFor(SQLSyntaxMSSQL));
  for (auto _ : state) benchmark::DoNotOptimize(Diagnose(query, DialectFor(SQLSyntaxMSSQL), sql).size());
}
BENCHMARK(FindDiagnostics)->Args({10, 30})->Args({100, 300})->Args({1000, 10000});

// What each change in the designer costs: the data is taken anew from the panes.
void Refresh(benchmark::State& state) {
  const auto tables = static_cast<int>(state.range(0));
  const auto rows = static_cast<int>(state.range(1));
  const Ref<qbQueryBuilder> hub = MakeDesigner(rows / tables + 1);
  AddTables(*hub, tables);
  {
    const StepScope step(hub, "Tick");  // one statement at the end, not one for each tick
    for (int r = 0; r < rows; ++r) {
      hub->Entities()->Item(r % tables + 1)->Items()->Item(ColumnName(r / tables))->SetChecked(true);
    }
  }
  for (auto _ : state) hub->SQLPane()->Refresh();
  state.SetItemsProcessed(state.iterations() * rows);
  if (hub->SQLPane()->SQLStatement().size() < static_cast<std::size_t>(rows) * 5) state.SkipWithError("no statement");
}
BENCHMARK(Refresh)->Args({10, 30})->Args({100, 300})->Args({1000, 10000});

}  // namespace
}  // namespace zrqrybld::bench
