// Many small changes in one step, and what takes them back: each is to cost what it changes, however large the design.
#include <benchmark/benchmark.h>

#include <functional>

#include "bench/designer.h"
#include "bench/made_up_source.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/relationships.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/host/step_context.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/sql/sql_pane.h"

namespace zrqrybld::bench {
namespace {

constexpr const char* kTable = "T";

// One table with so many columns, all of them in the grid.
Ref<qbQueryBuilder> WideTable(int columns) {
  const Ref<qbQueryBuilder> hub = MakeDesigner(0);
  const StepScope step(hub, "Fill");
  const Ref<qbEntity> table = hub->Entities()->Add(kTable);
  for (int i = 0; i < columns; ++i) table->Items()->Add(ColumnName(i), ColumnName(i))->SetChecked(true);
  return hub;
}

// So many tables, each joined to the one before.
Ref<qbQueryBuilder> Chain(int tables) {
  const Ref<qbQueryBuilder> hub = MakeDesigner(0);
  const StepScope step(hub, "Chain");
  Ref<qbEntity> before;
  for (int i = 0; i < tables; ++i) {
    const Ref<qbEntity> table = hub->Entities()->Add(TableName(i));
    table->Items()->Add("id", "id");
    if (before) {
      const Ref<qbRelationship> join = before->Relationships()->Add(table);
      join->SetSourceItemIndex(1);
      join->SetTargetItemIndex(1);
    }
    before = table;
  }
  return hub;
}

Ref<qbQueryBuilder> TwoTables(int columns) {
  const Ref<qbQueryBuilder> hub = WideTable(columns);
  hub->Entities()->Add("U")->Items()->Add("id");
  return hub;
}

// Removes first rows until the initial ones are left.
void RemoveRows(qbQueryBuilder& hub, bool atFront) {
  zrGridRows& rows = *hub.GridPane()->Grid()->Rows();
  while (rows.Count() > 7) rows.Remove(atFront ? 1 : rows.Count());
}

struct Case {
  const char* name;
  Ref<qbQueryBuilder> (*make)(int count);
  std::function<void(qbQueryBuilder& hub, int count)> change;
};

const Case kCases[] = {
    {"Clear and undo, columns", WideTable, [](auto& hub, int) { hub.DiagramPane()->Clear(), hub.Undo(); }},
    {"Clear and undo, chain", Chain, [](auto& hub, int) { hub.DiagramPane()->Clear(), hub.Undo(); }},
    {"remove the tables of a chain", Chain,
     [](auto& hub, int count) {
       for (int i = 0; i < count; ++i) hub.Entities()->Remove(1);
     }},
    {"remove them in a step, and undo", Chain,
     [](auto& hub, int count) {
       {
         const StepScope step(hub.Hub(), "Remove");
         for (int i = 0; i < count; ++i) hub.Entities()->Remove(TableName(i));
       }
       hub.Undo();
     }},
    {"untick the columns", WideTable,
     [](auto& hub, int count) {
       const Ref<qbEntityItems> items = hub.Entities()->Item(1)->Items();
       for (int i = 1; i <= count; ++i) items->Item(i)->SetChecked(false);
     }},
    {"Items.Remove(1)", WideTable,
     [](auto& hub, int count) {
       const Ref<qbEntityItems> items = hub.Entities()->Item(1)->Items();
       for (int i = 0; i < count; ++i) items->Remove(1);
     }},
    {"Rows.Move", WideTable,
     [](auto& hub, int count) {
       zrGridRows& rows = *hub.GridPane()->Grid()->Rows();
       for (int i = 0; i < count; ++i) rows.Move(1, count);
     }},
    {"Rows.Remove(1)", WideTable, [](auto& hub, int) { RemoveRows(hub, true); }},
    {"joins of one pair of columns", TwoTables,
     [](auto& hub, int count) {
       const Ref<qbEntity> source = hub.Entities()->Item(1);
       const Ref<qbEntity> target = hub.Entities()->Item(2);
       for (int i = 0; i < count; ++i) {
         const Ref<qbRelationship> join = source->Relationships()->Add(target);
         join->SetSourceItemIndex(1);
         join->SetTargetItemIndex(1);
       }
     }},
};

// All of it in one step; the statement is left out, as while a long operation goes on.
void Growth(benchmark::State& state) {
  const Case& one = kCases[state.range(0)];
  const auto count = static_cast<int>(state.range(1));
  state.SetLabel(one.name);
  const bool travels = std::string_view(one.name).find("undo") != std::string_view::npos;
  for (auto _ : state) {
    state.PauseTiming();
    const Ref<qbQueryBuilder> hub = one.make(count);
    if (travels) hub->SetSQLPane(nullptr);  // a step is undone while nothing else goes on
    hub->ClearHistory();
    state.ResumeTiming();
    if (travels) {
      one.change(*hub, count);
      continue;
    }
    const StateScope quiet(*hub, InfoLoadingQuery);
    const StepScope step(hub, one.name);
    one.change(*hub, count);
  }
}
BENCHMARK(Growth)
    ->ArgsProduct({benchmark::CreateDenseRange(0, static_cast<int>(std::size(kCases)) - 1, 1), {1000, 4000, 16000}})
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace zrqrybld::bench
