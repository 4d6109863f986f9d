// A source of very many tables: what it costs to list them, and what a key costs while all of them, or all of their
// columns, are known. "mb" is the memory that they take.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <ctime>

#include "bench/designer.h"
#include "bench/made_up_source.h"
#include "bench/memory_in_use.h"
#include "zrqrybld/diagram/table_picker.h"
#include "zrqrybld/expression/schema_cache.h"
#include "zrqrybld/expression/suggestions.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/sql/source_rules.h"

namespace zrqrybld::bench {
namespace {

constexpr int kColumns = 20;

// What the window "Add Tables" shows.
void ListTables(benchmark::State& state) {
  const auto tables = static_cast<int>(state.range(0));
  const Ref<qbQueryBuilder> hub = MakeDesigner(kColumns, tables);
  for (auto _ : state) {
    if (TablePicker(hub).ReadTables().size() != static_cast<std::size_t>(tables)) state.SkipWithError("not all");
  }
}
BENCHMARK(ListTables)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

// A key with predictive text; the columns of every table have been asked for when `state.range(1)` says so.
void KeyInALargeSource(benchmark::State& state) {
  const auto tables = static_cast<int>(state.range(0));
  const Ref<qbQueryBuilder> hub = MakeDesigner(kColumns, tables);
  const double before = MemoryInUse();
  SchemaCache facts(*hub);
  const std::clock_t began = std::clock();
  facts.Refresh();
  for (int t = 0; state.range(1) != 0 && t < tables; ++t) facts.Find({TableName(t)});
  state.counters["load_s"] = static_cast<double>(std::clock() - began) / CLOCKS_PER_SEC;
  state.counters["mb"] = MemoryInUse() - before;
  std::vector<double> milliseconds;
  for (auto _ : state) {
    for (const std::string text :
         {"SELECT c", "SELECT * FROM ", "SELECT * FROM t9", "SELECT T5.", "SELECT T5.c1", "SELECT zz"}) {
      const std::clock_t start = std::clock();
      facts.Refresh();
      const Vocabulary words = ReadVocabulary(*hub);
      const NameRules names = CurrentNameRules(*hub);
      benchmark::DoNotOptimize(Suggest({text, text.size(), EditedText::Statement, facts, words, names}));
      milliseconds.push_back(1000.0 * static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC);
    }
  }
  state.counters["max_ms"] = std::ranges::max(milliseconds);
}
BENCHMARK(KeyInALargeSource)
    ->ArgsProduct({{1000, 10000, 100000}, {0, 1}})
    ->Iterations(20)
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace zrqrybld::bench
