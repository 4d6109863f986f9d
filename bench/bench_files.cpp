// Query files: a designed query as text and back.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <string>

#include "bench/designer.h"
#include "bench/made_up_source.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/hub/hub.h"

namespace zrqrybld::bench {
namespace {

constexpr int kColumns = 20;
constexpr std::int32_t kCells = 10'000;

// Tables with their joins and columns, and rows of five cells.
Ref<qbQueryBuilder> MakeDesign(int tables) {
  const Ref<qbQueryBuilder> hub = MakeDesigner(kColumns);
  hub->SetSaveLoadEntityItems(true);
  AddTables(*hub, tables);
  std::vector<qbGridPane::LoadedCell> cells;
  const zrGridColumns& columns = *hub->GridPane()->Grid()->Columns();
  for (std::int32_t row = 1; row <= kCells / 5; ++row) {
    const int table = row % tables;
    const auto add = [&](const char* column, std::string text) {
      cells.push_back({row, columns.PositionOf(column), std::move(text)});
    };
    add("column", ColumnName(row / tables % kColumns));
    add("table", TableName(table));
    add("alias", "A" + std::to_string(row));
    add("output", "True");
    add("criteria", "> " + std::to_string(row));
  }
  hub->GridPane()->LoadRows(cells);
  return hub;
}

std::string Saved(qbQueryBuilder& hub) { return hub.SaveQueryToText(); }

void CountLines(benchmark::State& state, const std::string& text) {
  const auto lines = static_cast<double>(std::count(text.begin(), text.end(), '\n'));
  state.counters["lines"] = lines;
  state.counters["a_line"] =
      benchmark::Counter(lines, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void SaveQuery(benchmark::State& state) {
  const Ref<qbQueryBuilder> hub = MakeDesign(static_cast<int>(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(Saved(*hub).data());
  CountLines(state, Saved(*hub));
}
BENCHMARK(SaveQuery)->Arg(10)->Arg(100)->Arg(1000)->Unit(benchmark::kMillisecond);

void LoadQuery(benchmark::State& state) {
  const std::string text = Saved(*MakeDesign(static_cast<int>(state.range(0))));
  for (auto _ : state) {
    state.PauseTiming();
    Ref<qbQueryBuilder> hub = MakeDesigner(kColumns);
    hub->SetSaveLoadEntityItems(true);
    state.ResumeTiming();
    hub->LoadQuery(text, true);
    state.PauseTiming();
    hub.reset();
    state.ResumeTiming();
  }
  CountLines(state, text);
}
BENCHMARK(LoadQuery)->Arg(10)->Arg(100)->Arg(1000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace zrqrybld::bench
