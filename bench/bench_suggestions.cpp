// Predictive text: what a key costs while 1,000 tables of 20 columns are known.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <ctime>

#include "bench/designer.h"
#include "bench/made_up_source.h"
#include "zrqrybld/expression/schema_cache.h"
#include "zrqrybld/expression/suggestions.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/sql/source_rules.h"

namespace zrqrybld::bench {
namespace {

constexpr int kTables = 1000;
constexpr int kColumns = 20;

// One text after the other, each as if it had just been typed; the slowest hundredth is what one feels.
void Suggestions(benchmark::State& state, const std::vector<std::string>& texts) {
  const Ref<qbQueryBuilder> hub = MakeDesigner(kColumns, kTables);
  SchemaCache facts(*hub);
  facts.Refresh();
  for (int t = 0; t < kTables; ++t) facts.Find({TableName(t)});  // every table's columns are known
  std::vector<double> milliseconds;
  for (auto _ : state) {
    for (const std::string& text : texts) {
      const std::clock_t start = std::clock();  // processor time: others work on the machine too
      facts.Refresh();
      const Vocabulary words = ReadVocabulary(*hub);
      const NameRules names = CurrentNameRules(*hub);
      const SuggestionList list = Suggest({text, text.size(), EditedText::Statement, facts, words, names});
      milliseconds.push_back(1000.0 * static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC);
      if (list.items.empty()) state.SkipWithError("nothing is offered");
    }
  }
  std::ranges::sort(milliseconds);
  state.counters["p99_ms"] = milliseconds[milliseconds.size() * 99 / 100];
  state.counters["max_ms"] = milliseconds.back();
}

// A statement over so many tables, and its end as somebody types it.
std::vector<std::string> JoinedTables(int count) {
  std::string text = "SELECT * FROM T0";
  for (int t = 1; t < count; ++t) text += " JOIN T" + std::to_string(t) + " ON ";
  return {text, text + "c", text + "T19.C1 = T18.C0 WHERE T", text + "T19.C1 = T18.C0 JOIN "};
}

BENCHMARK_CAPTURE(Suggestions, NoTableYet, {"SELECT c", "SELECT t", "SELECT c1", "SELECT T5.", "SELECT "});
BENCHMARK_CAPTURE(Suggestions, Tables, {"SELECT * FROM ", "SELECT * FROM t", "SELECT * FROM T0 JOIN "});
BENCHMARK_CAPTURE(Suggestions, Joins, JoinedTables(20));
BENCHMARK_CAPTURE(Suggestions, AllJoined, JoinedTables(kTables));

}  // namespace
}  // namespace zrqrybld::bench
