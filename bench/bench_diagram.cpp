// What a user does in the diagram: add tables, tick a column, look at it.
#include <benchmark/benchmark.h>

#include "bench/counting_canvas.h"
#include "bench/designer.h"
#include "bench/made_up_source.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/relationships.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/host/step_context.h"
#include "zrqrybld/hub/hub.h"

namespace zrqrybld::bench {
namespace {

// One table of so many columns into an empty diagram.
void AddTable(benchmark::State& state) {
  const Ref<qbQueryBuilder> hub = MakeDesigner(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    benchmark::DoNotOptimize(hub->AddTable("T0"));
    state.PauseTiming();
    hub->Entities()->Remove(1);
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(AddTable)->Arg(50)->Arg(500)->Arg(5000);

// So many tables of ten columns one after another, and their joins. That the design goes away again is not counted.
void AddManyTables(benchmark::State& state) {
  const auto count = static_cast<int>(state.range(0));
  for (auto _ : state) {
    Ref<qbQueryBuilder> hub = MakeDesigner(10);
    AddTables(*hub, count);
    state.PauseTiming();
    if (hub->Entities()->Item(count)->Relationships()->Count() != 1) state.SkipWithError("no join");
    hub = nullptr;
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * count);
}
BENCHMARK(AddManyTables)->Arg(10)->Arg(100)->Arg(1000)->Unit(benchmark::kMillisecond);

// A column ticked and unticked again while so many are ticked; each of the two writes the statement anew.
void Tick(benchmark::State& state) {
  constexpr int kColumns = 100;
  const auto ticked = static_cast<int>(state.range(0));
  const Ref<qbQueryBuilder> hub = MakeDesigner(kColumns);
  AddTables(*hub, ticked / kColumns + 2);
  {
    const StepScope step(hub, "Tick");
    for (int i = 0; i < ticked; ++i) {
      hub->Entities()->Item(i / kColumns + 1)->Items()->Item(ColumnName(i % kColumns))->SetChecked(true);
    }
  }
  const Ref<qbEntityItem> item = hub->Entities()->Item(hub->Entities()->Count())->Items()->Item(ColumnName(7));
  for (auto _ : state) {
    item->SetChecked(true);
    item->SetChecked(false);
  }
  if (hub->GridPane()->RowCount() < ticked) state.SkipWithError("the columns are not in the grid");
}
BENCHMARK(Tick)->Arg(0)->Arg(30)->Arg(300)->Arg(3000);

// Everything that can be seen of so many boxes with joins; "calls" are those of the canvas.
void Paint(benchmark::State& state) {
  const Ref<qbQueryBuilder> hub = MakeDesigner(12);
  AddTables(*hub, static_cast<int>(state.range(0)));
  CountingCanvas canvas;
  const PixelSize size = hub->DiagramPane()->GetSurface().ViewSize();
  for (auto _ : state) hub->DiagramPane()->Paint(canvas, {{}, {}, size.width, size.height});
  state.counters["calls"] = benchmark::Counter(static_cast<double>(canvas.Calls()), benchmark::Counter::kAvgIterations);
}
BENCHMARK(Paint)->Arg(5)->Arg(50)->Arg(500);

// So many tables, each joined to the one before it by its foreign key and by a second pair of columns.
Ref<qbQueryBuilder> MakePairs(int tables) {
  Ref<qbQueryBuilder> hub = MakeDesigner(12);
  AddTables(*hub, tables);
  const StepScope step(hub, "Join");
  for (int i = 2; i <= tables; ++i) {
    const Ref<qbRelationship> join = hub->Entities()->Item(i)->Relationships()->Add(hub->Entities()->Item(i - 1));
    join->SetSourceItemIndex(5);
    join->SetTargetItemIndex(5);
  }
  return hub;
}

// From a tick to the text, among twice as many joins as tables.
void TickAmongPairs(benchmark::State& state) {
  const Ref<qbQueryBuilder> hub = MakePairs(static_cast<int>(state.range(0)));
  const Ref<qbEntityItem> item = hub->Entities()->Item(1)->Items()->Item(ColumnName(7));
  for (auto _ : state) item->SetChecked(!item->Checked());
}
BENCHMARK(TickAmongPairs)->Arg(10)->Arg(100)->Arg(1000)->Unit(benchmark::kMicrosecond);

void PaintPairs(benchmark::State& state) {
  const Ref<qbQueryBuilder> hub = MakePairs(static_cast<int>(state.range(0)));
  CountingCanvas canvas;
  const PixelSize size = hub->DiagramPane()->GetSurface().ViewSize();
  for (auto _ : state) hub->DiagramPane()->Paint(canvas, {{}, {}, size.width, size.height});
}
BENCHMARK(PaintPairs)->Arg(10)->Arg(100)->Arg(1000)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace zrqrybld::bench
