// What one action in a diagram costs while the diagram grows: so many boxes of twenty columns, as many joins.
//
// A program of its own unless bench/CMakeLists.txt collects bench_*.cpp:
//   find_package(benchmark REQUIRED)
//   add_executable(bench_diagram_scale bench_diagram_scale.cpp)
//   target_link_libraries(bench_diagram_scale PRIVATE zrQryBld::core benchmark::benchmark_main)
#include <benchmark/benchmark.h>

#include <cmath>
#include <random>
#include <string>
#include <vector>

#include "diagram/diagram_pane.h"
#include "diagram/relationships.h"
#include "platform/headless.h"

namespace zrqrybld {
namespace {

// Counts what it is asked to draw.
class ScaleCanvas final : public Canvas {
 public:
  std::size_t boxes = 0;
  std::size_t calls = 0;
  void FillRect(const PixelRect&, const Ink&, Pixels) override { ++calls; }
  void StrokeRect(const PixelRect&, const Ink&, Pixels, Pixels) override { ++calls; }
  void DrawPolyline(std::span<const PixelPoint>, const Ink&, Pixels, Pixels) override { ++calls; }
  void FillPolygon(std::span<const PixelPoint>, const Ink&) override { ++calls; }
  void DrawText(const PixelRect&, std::string_view, const TextStyle&) override { ++calls; }
  void DrawImage(const PixelRect&, const Image&) override { ++calls; }
  void DrawPart(ThemedPart, const PixelRect&, const PartState&) override { ++calls; }

 protected:
  void PushClip(const PixelRect&) override { ++boxes; }  // one for each box's list
  void PopClip() override {}
  void PushView(PixelPoint, double) override {}
  void PopView() override {}
};

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

void PointAtSomething(benchmark::State& state) {
  const Ref<qbDiagramPane> pane = MakeDiagram(static_cast<int>(state.range(0)));
  std::mt19937 random(2);
  const auto upTo = [&random](unsigned n) { return Pixels(static_cast<double>(random() % n)); };
  for (auto _ : state) pane->OnMouseMove({ButtonNone, ShiftNone, {upTo(1600), upTo(1050)}});
}

void PaintTheWindow(benchmark::State& state) {
  const Ref<qbDiagramPane> pane = MakeDiagram(static_cast<int>(state.range(0)));
  ScaleCanvas canvas;
  for (auto _ : state) pane->Paint(canvas, {{}, {}, 1600_px, 1050_px});
  state.counters["boxes"] = benchmark::Counter(static_cast<double>(canvas.boxes), benchmark::Counter::kAvgIterations);
  state.counters["calls"] = benchmark::Counter(static_cast<double>(canvas.calls), benchmark::Counter::kAvgIterations);
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

BENCHMARK(AddAndRemoveABox)->Arg(10)->Arg(100)->Arg(1000)->Unit(benchmark::kMicrosecond);
BENCHMARK(DrawAndRemoveAJoin)->Arg(10)->Arg(100)->Arg(1000)->Unit(benchmark::kMicrosecond);
BENCHMARK(MoveABox)->Arg(10)->Arg(100)->Arg(1000)->Unit(benchmark::kMicrosecond);
BENCHMARK(MoveTheLastBox)->Arg(10)->Arg(100)->Arg(1000)->Unit(benchmark::kMicrosecond);
BENCHMARK(SelectABox)->Arg(10)->Arg(100)->Arg(1000)->Unit(benchmark::kMicrosecond);
BENCHMARK(PointAtSomething)->Arg(10)->Arg(100)->Arg(1000)->Unit(benchmark::kMicrosecond);
BENCHMARK(PaintTheWindow)->Arg(10)->Arg(100)->Arg(1000)->Unit(benchmark::kMicrosecond);
BENCHMARK(ArrangeTheDiagram)->Arg(10)->Arg(100)->Arg(1000)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace zrqrybld
