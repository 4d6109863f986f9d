// What a user does in the grid while it holds many query columns.
#include <benchmark/benchmark.h>

#include "bench/counting_canvas.h"
#include "bench/designer.h"
#include "bench/made_up_source.h"
#include "bench/memory_in_use.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/host/step_context.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/platform/input.h"
#include "zrqrybld/sql/criteria_formatter.h"

namespace zrqrybld::bench {
namespace {

constexpr int kColumns = 100;

// A designer whose grid outputs so many columns; the statement is not written meanwhile.
Ref<qbQueryBuilder> WithRows(int rows) {
  const Ref<qbQueryBuilder> hub = MakeDesigner(kColumns);
  AddTables(*hub, rows / kColumns + 2);
  const StepScope step(hub, "Tick");
  for (int i = 0; i < rows; ++i) {
    hub->Entities()->Item(i / kColumns + 1)->Items()->Item(ColumnName(i % kColumns))->SetChecked(true);
  }
  return hub;
}

// The statement is left out: `state` keeps it back, as a long operation does.
class Quiet {
 public:
  explicit Quiet(qbQueryBuilder& hub) : scope_(hub, InfoLoadingQuery) {}

 private:
  StateScope scope_;
};

// A field comes and goes: found by a look-up, put into the first empty row.
void SetFieldOutput(benchmark::State& state) {
  const Ref<qbQueryBuilder> hub = WithRows(static_cast<int>(state.range(0)));
  const Quiet quiet(*hub);
  const std::string table = hub->Entities()->Item(hub->Entities()->Count())->Caption();
  for (auto _ : state) {
    hub->GridPane()->SetFieldOutput(ColumnName(7), true, table);
    hub->GridPane()->SetFieldOutput(ColumnName(7), false, table);
  }
}
BENCHMARK(SetFieldOutput)->Arg(100)->Arg(1000)->Arg(10000);

// "Ascending" is chosen in the last row and taken back, so many others being sorted.
void SortEdit(benchmark::State& state) {
  const auto rows = static_cast<std::int32_t>(state.range(0));
  const auto sorted = static_cast<std::int32_t>(state.range(1));
  const Ref<qbQueryBuilder> hub = WithRows(rows);
  const Quiet quiet(*hub);
  zrGrid& grid = *hub->GridPane()->Grid();
  for (std::int32_t i = 1; i <= sorted; ++i) {
    grid.Rows()->Item(i)->SetValue("sort_type", "Ascending");
    grid.Rows()->Item(i)->SetValue("sort_order", std::to_string(i));
  }
  grid.GotoRowCol(rows, "sort_type");
  const auto choose = [&](const char* type) {
    grid.Rows()->Item(rows)->SetValue("sort_type", type);
    hub->GridPane()->FinishEdit();
  };
  for (auto _ : state) {
    choose("Ascending");
    choose("Unsorted");
  }
  if (hub->GridPane()->NextSortOrder() != sorted + 1) state.SkipWithError("not sorted");
}
BENCHMARK(SortEdit)->Args({100, 9})->Args({1000, 9})->Args({10000, 9})->Unit(benchmark::kMicrosecond);
BENCHMARK(SortEdit)->Args({1000, 99})->Args({1000, 999})->Args({10000, 9999})->Unit(benchmark::kMicrosecond);

// A letter is typed into a cell and taken back.
void EditCell(benchmark::State& state) {
  const Ref<qbQueryBuilder> hub = WithRows(static_cast<int>(state.range(0)));
  const Quiet quiet(*hub);
  zrGrid& grid = *hub->GridPane()->Grid();
  grid.GotoRowCol(50, "alias");
  for (auto _ : state) {
    grid.OnKeyDown({'A', ShiftNone, "a"});
    grid.CommitEdit();
    grid.OnKeyDown({KeyCodeBack, ShiftNone});
    grid.CommitEdit();
  }
}
BENCHMARK(EditCell)->Arg(100)->Arg(1000)->Arg(10000);

// All rows of half of the tables go at once.
void RefreshTables(benchmark::State& state) {
  const auto rows = static_cast<int>(state.range(0));
  for (auto _ : state) {
    state.PauseTiming();
    const Ref<qbQueryBuilder> hub = WithRows(rows);
    const Quiet quiet(*hub);
    zrGridRows& all = *hub->GridPane()->Grid()->Rows();
    const Ref<qbEntities> none = hub->Entities();
    hub->GridPane()->SetContext(nullptr);
    for (std::int32_t i = 1; i <= all.Count(); i += 2) all.Item(i)->SetValue("table", "gone");
    hub->GridPane()->SetContext(hub);
    state.ResumeTiming();
    hub->GridPane()->RefreshTables();
    if (all.Count() > rows) state.SkipWithError("rows are still there");
  }
}
BENCHMARK(RefreshTables)->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);

// A grid of 200 columns and so many rows, scrolled by a row and painted; "calls" are those of the canvas.
void ScrollAndPaint(benchmark::State& state) {
  constexpr std::int32_t kGridColumns = 200;
  const auto rows = static_cast<std::int32_t>(state.range(0));
  const Ref<zrGrid> grid = zrGrid::Create();
  grid->SetAutoRedraw(false);
  for (std::int32_t i = 0; i < kGridColumns; ++i) grid->Columns()->Add()->SetWidth(1200);
  for (std::int32_t row = 1; row <= rows; ++row) {
    const Ref<zrGridRow> added = grid->Rows()->Add();
    for (std::int32_t column = 1; column <= kGridColumns; ++column) added->SetValue(column, "text");
  }
  grid->SetAutoRedraw(true);
  CountingCanvas canvas;
  const PixelSize size = grid->GetSurface().ViewSize();
  double direction = 1;
  for (auto _ : state) {
    grid->OnWheel({ShiftNone, {}, 0, direction});
    direction = -direction;
    grid->Paint(canvas, {{}, {}, size.width, size.height});
  }
  state.counters["calls"] = benchmark::Counter(static_cast<double>(canvas.Calls()), benchmark::Counter::kAvgIterations);
}
BENCHMARK(ScrollAndPaint)->Arg(100)->Arg(1000)->Arg(10000);

// A row in the middle of a million cells comes, is filled, is gone to and painted, and goes; "mb" is the memory that
// the cells take.
void MillionCells(benchmark::State& state) {
  constexpr std::int32_t kGridColumns = 10;
  constexpr std::int32_t kGridRows = 100'000;
  const double before = MemoryInUse();
  const Ref<zrGrid> grid = zrGrid::Create();
  grid->SetAutoRedraw(false);
  for (std::int32_t i = 0; i < kGridColumns; ++i) grid->Columns()->Add()->SetWidth(1200);
  const auto fill = [](zrGridRow& row) {
    for (std::int32_t column = 1; column <= kGridColumns; ++column) row.SetValue(column, "text");
  };
  for (std::int32_t row = 1; row <= kGridRows; ++row) fill(*grid->Rows()->Add());
  grid->SetAutoRedraw(true);
  state.counters["mb"] = MemoryInUse() - before;
  CountingCanvas canvas;
  const PixelSize size = grid->GetSurface().ViewSize();
  for (auto _ : state) {
    fill(*grid->Rows()->Add({}, kGridRows / 2));
    grid->GotoRowCol(kGridRows / 2, 1);
    grid->Paint(canvas, {{}, {}, size.width, size.height});
    grid->Rows()->Remove(kGridRows / 2);
  }
}
BENCHMARK(MillionCells)->Iterations(1000)->Unit(benchmark::kMillisecond);

// Criteria of one condition, and of so many joined by OR.
void FormatCriteria(benchmark::State& state) {
  CriteriaContext number;
  number.dataType = 3;
  std::string text = "> 5";
  for (std::int64_t i = 1; i < state.range(0); ++i) text += " or between " + std::to_string(i) + " and 99";
  for (auto _ : state) benchmark::DoNotOptimize(FormatCriterion(text, number));
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(FormatCriteria)->Arg(1)->Arg(100)->Arg(10000);

}  // namespace
}  // namespace zrqrybld::bench
