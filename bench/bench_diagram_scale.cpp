// What one action in a diagram costs while the diagram grows: so many boxes of twenty columns, as many joins.
#include <benchmark/benchmark.h>

#include <cmath>
#include <random>
#include <string>
#include <vector>

#include "bench/counting_canvas.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/relationships.h"
#include "zrqrybld/platform/headless.h"
#include "zrqrybld/platform/input.h"

namespace zrqrybld::bench {
namespace {

constexpr int kColumns = 20;
constexpr PixelPoint kDistance{170_px, 350_px};  // from one box to the next

Ref<qbEntity> AddBox(qbDiagramPane& pane, const std::string& caption) {
  const Ref<qbEntity> entity = pane.Entities()->Add(caption);
  entity->Items()->Add("*", "*");
  for (int i = 0; i < kColumns; ++i) entity->Items()->Add("column" + std::to_string(i), "c" + std::to_string(i));
  pane.Entities()->Fit(*entity);
  return entity;
}

// Boxes in a square, each joined to another at random. The window shows about fifty of them.
Ref<qbDiagramPane> MakeDiagram(int count) {
  const Ref<qbDiagramPane> pane = qbDiagramPane::Create();
  static_cast<HeadlessSurface&>(pane->GetSurface()).SetViewSize({1600_px, 1050_px});
  pane->OnResize();
  pane->SetZoom(0.75, {});
  const int width = std::max(1, static_cast<int>(std::sqrt(count * 2.0)));
  std::mt19937 random(1);
  for (int i = 0; i < count; ++i) {
    const Ref<qbEntity> entity = AddBox(*pane, "t" + std::to_string(i));
    entity->SetLeft(static_cast<float>(kDistance.x.Value() * 15 * (i % width)));
    entity->SetTop(static_cast<float>(kDistance.y.Value() * 15 * (i / width)));
    const int other = static_cast<int>(random() % static_cast<unsigned>(i + 1));
    const Ref<qbRelationship> join = entity->Relationships()->Add(pane->Entities()->Item(other + 1));
    join->SetSourceItemIndex(2 + i % kColumns);
    join->SetTargetItemIndex(2);
  }
  return pane;
}

void AddAndRemoveABox(benchmark::State& state) {
  const Ref<qbDiagramPane> pane = MakeDiagram(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    const Ref<qbEntity> box = AddBox(*pane, "new");
    pane->Entities()->Remove("new");
  }
}

void DrawAndRemoveAJoin(benchmark::State& state) {
  const Ref<qbDiagramPane> pane = MakeDiagram(static_cast<int>(state.range(0)));
  const Ref<qbEntity> source = pane->Entities()->Item(1);
  for (auto _ : state) {
    const Ref<qbRelationship> join = source->Relationships()->Add(pane->Entities()->Item(2));
    join->SetSourceItemIndex(3);
    join->SetTargetItemIndex(3);
    source->Relationships()->Remove(join->Index());
  }
}

void MoveABox(benchmark::State& state) {
  const Ref<qbDiagramPane> pane = MakeDiagram(static_cast<int>(state.range(0)));
  const Ref<qbEntity> box = pane->Entities()->Item(static_cast<std::int32_t>(state.range(0)) / 2);
  float left = box->Left();
  for (auto _ : state) box->SetLeft(left = left > 15 ? left - 15 : 1500);
}

// The lowest and rightmost box: every step changes how far the diagram reaches.
void MoveTheLastBox(benchmark::State& state) {
  const Ref<qbDiagramPane> pane = MakeDiagram(static_cast<int>(state.range(0)));
  const Ref<qbEntity> box = pane->Entities()->Item(pane->Entities()->Count());
  const float far = 15 * 170 * 60;
  int step = 0;
  for (auto _ : state) box->SetLeft(far + static_cast<float>(15 * (++step % 2)));
}

void SelectABox(benchmark::State& state) {
  const Ref<qbDiagramPane> pane = MakeDiagram(static_cast<int>(state.range(0)));
  std::int32_t next = 0;
  for (auto _ : state) pane->SelectObject(pane->Entities()->Item(1 + ++next % pane->Entities()->Count()));
}

// The box with the most joins goes and comes back with them.
void DeleteABoxWithItsJoins(benchmark::State& state) {
  const auto count = static_cast<int>(state.range(0));
  const Ref<qbDiagramPane> pane = MakeDiagram(count);
  for (auto _ : state) {
    const Ref<qbEntity> box = AddBox(*pane, "new");
    for (int i = 0; i < 10; ++i) {
      const Ref<qbRelationship> join = pane->Entities()->Item(1 + i * count / 10)->Relationships()->Add(box);
      join->SetSourceItemIndex(2);
      join->SetTargetItemIndex(3 + i);
    }
    pane->SelectObject(box);
    pane->OnKeyDown({KeyCodeDelete});
  }
}

void PointAtSomething(benchmark::State& state) {
  const Ref<qbDiagramPane> pane = MakeDiagram(static_cast<int>(state.range(0)));
  std::mt19937 random(2);
  const auto upTo = [&random](unsigned n) { return Pixels(static_cast<double>(random() % n)); };
  for (auto _ : state) pane->OnMouseMove({ButtonNone, ShiftNone, {upTo(1600), upTo(1050)}});
}

void PaintTheWindow(benchmark::State& state) {
  const Ref<qbDiagramPane> pane = MakeDiagram(static_cast<int>(state.range(0)));
  CountingCanvas canvas;
  for (auto _ : state) pane->Paint(canvas, {{}, {}, 1600_px, 1050_px});
  state.counters["calls"] = benchmark::Counter(static_cast<double>(canvas.Calls()), benchmark::Counter::kAvgIterations);
}

// Everything moves: here the whole diagram counts.
void ArrangeTheDiagram(benchmark::State& state) {
  const Ref<qbDiagramPane> pane = MakeDiagram(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    pane->Arrange();
    state.PauseTiming();
    for (std::int32_t i = 1; i <= pane->Entities()->Count(); ++i) pane->Entities()->Item(i)->SetTop(0);
    state.ResumeTiming();
  }
}

BENCHMARK(AddAndRemoveABox)->Arg(10)->Arg(50)->Arg(200)->Arg(1000)->Unit(benchmark::kMicrosecond);
BENCHMARK(DrawAndRemoveAJoin)->Arg(10)->Arg(50)->Arg(200)->Arg(1000)->Unit(benchmark::kMicrosecond);
BENCHMARK(MoveABox)->Arg(10)->Arg(50)->Arg(200)->Arg(1000)->Unit(benchmark::kMicrosecond);
BENCHMARK(MoveTheLastBox)->Arg(10)->Arg(50)->Arg(200)->Arg(1000)->Unit(benchmark::kMicrosecond);
BENCHMARK(SelectABox)->Arg(10)->Arg(50)->Arg(200)->Arg(1000)->Unit(benchmark::kMicrosecond);
BENCHMARK(DeleteABoxWithItsJoins)->Arg(10)->Arg(50)->Arg(200)->Arg(1000)->Unit(benchmark::kMicrosecond);
BENCHMARK(PointAtSomething)->Arg(10)->Arg(50)->Arg(200)->Arg(1000)->Unit(benchmark::kMicrosecond);
BENCHMARK(PaintTheWindow)->Arg(10)->Arg(50)->Arg(200)->Arg(1000)->Unit(benchmark::kMicrosecond);
BENCHMARK(ArrangeTheDiagram)->Arg(10)->Arg(50)->Arg(200)->Arg(1000)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace zrqrybld::bench
