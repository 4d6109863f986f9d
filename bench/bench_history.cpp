// Undo and redo on a large design.
#include <benchmark/benchmark.h>

#include <functional>

#include "bench/designer.h"
#include "bench/made_up_source.h"
#include "bench/memory_in_use.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/host/step_context.h"
#include "zrqrybld/hub/history.h"
#include "zrqrybld/hub/hub.h"

namespace zrqrybld::bench {
namespace {

constexpr int kColumns = 50;
constexpr int kTickedOfATable = 3;

// So many joined tables with three query columns each.
Ref<qbQueryBuilder> LargeDesign(int tables) {
  const Ref<qbQueryBuilder> hub = MakeDesigner(kColumns);
  AddTables(*hub, tables);
  const StepScope step(hub, "Tick");
  for (int i = 1; i <= tables; ++i) {
    for (int j = 0; j < kTickedOfATable; ++j) hub->Entities()->Item(i)->Items()->Item(ColumnName(j))->SetChecked(true);
  }
  return hub;
}

using Change = std::function<void(qbQueryBuilder&)>;

const std::pair<const char*, Change> kChanges[] = {
    {"tick", [](qbQueryBuilder& hub) { hub.Entities()->Item(2)->Items()->Item(ColumnName(9))->SetChecked(true); }},
    {"arrange", [](qbQueryBuilder& hub) { hub.DiagramPane()->Arrange(); }},
    {"remove a table", [](qbQueryBuilder& hub) { hub.Entities()->Remove(2); }},
    {"group", [](qbQueryBuilder& hub) { hub.GridPane()->SetShowGroupBy(true); }},
    {"clear", [](qbQueryBuilder& hub) { hub.DiagramPane()->Clear(); }},
};

// The step is undone and redone; half of the time is an undo.
void UndoAndRedo(benchmark::State& state) {
  const Ref<qbQueryBuilder> hub = LargeDesign(static_cast<int>(state.range(0)));
  const auto& [name, change] = kChanges[state.range(1)];
  change(*hub);
  state.SetLabel(name);
  for (auto _ : state) {
    hub->Undo();
    hub->Redo();
  }
  if (!hub->CanUndo()) state.SkipWithError("nothing to undo");
  state.counters["bytes"] = static_cast<double>(hub->Steps().Last()->bytes);
}
BENCHMARK(UndoAndRedo)->ArgsProduct({{10, 100, 1000}, {0, 1, 2, 3, 4}})->Unit(benchmark::kMillisecond);

// What remembering costs: a tick of a column that no statement is written for.
void RecordTick(benchmark::State& state) {
  const Ref<qbQueryBuilder> hub = LargeDesign(static_cast<int>(state.range(0)));
  const StateScope quiet(*hub, InfoLoadingQuery);
  const Ref<qbEntityItem> item = hub->Entities()->Item(2)->Items()->Item(ColumnName(9));
  for (auto _ : state) item->SetChecked(!item->Checked());
}
BENCHMARK(RecordTick)->Arg(10)->Arg(100)->Arg(1000)->Unit(benchmark::kMicrosecond);

// So many steps, one after the other: ticks, or all grouped and not, which are large. "steps" of them and "mb" of
// memory are kept; "grown_mb" is by how much the process has grown meanwhile.
void ManySteps(benchmark::State& state) {
  constexpr int kSteps = 10'000;
  const bool large = state.range(0) != 0;
  const Ref<qbQueryBuilder> hub = LargeDesign(large ? 100 : 10);
  const Ref<qbEntityItem> item = hub->Entities()->Item(2)->Items()->Item(ColumnName(9));
  const double before = MemoryInUse();
  for (auto _ : state) {
    for (int i = 0; i < kSteps; ++i) {
      if (large) {
        hub->GridPane()->SetShowGroupBy(!hub->GridPane()->ShowGroupBy());
      } else {
        item->SetChecked(!item->Checked());
      }
    }
  }
  state.counters["steps"] = static_cast<double>(hub->Steps().Count());
  state.counters["mb"] = static_cast<double>(hub->Steps().Bytes()) / 1e6;
  state.counters["grown_mb"] = MemoryInUse() - before;
}
BENCHMARK(ManySteps)->Arg(0)->Arg(1)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace zrqrybld::bench
