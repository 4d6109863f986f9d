// A diagram pane on its headless surface, with what tests of it need again and again.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/error_of.h"
#include "tests/fakes/recording_canvas.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/join_line.h"
#include "zrqrybld/diagram/relationships.h"
#include "zrqrybld/platform/headless.h"
#include "zrqrybld/platform/input.h"

namespace zrqrybld::test {

struct DiagramHands {
  /// An entity with the item "*" and these columns, its box as large as its rows need.
  Ref<qbEntity> Add(const std::string& caption, const std::vector<std::string>& columns = {"id", "name"}) {
    const Ref<qbEntity> entity = pane->Entities()->Add(caption);
    entity->Items()->Add("*", "*");
    for (const std::string& column : columns) entity->Items()->Add(column, column);
    pane->Entities()->Fit(*entity);
    return entity;
  }
  /// The names c1, c2, ... of so many columns.
  static std::vector<std::string> Columns(int count) {
    std::vector<std::string> names;
    for (int i = 1; i <= count; ++i) names.push_back("c" + std::to_string(i));
    return names;
  }
  static Ref<qbRelationship> Join(const Ref<qbEntity>& source, std::int32_t sourceItem, const Ref<qbEntity>& target,
                                  std::int32_t targetItem) {
    const Ref<qbRelationship> join = source->Relationships()->Add(target);
    join->SetSourceItemIndex(sourceItem);
    join->SetTargetItemIndex(targetItem);
    return join;
  }
  PixelPoint OnMinimizeButton(const qbEntity& entity) const {
    return OnPane({Place(entity).Right() - 16_px, Place(entity).top + 14_px});
  }
  /// The captions in order, "," between them.
  std::string Captions() const {
    std::string text;
    for (std::int32_t i = 1; i <= pane->Entities()->Count(); ++i) {
      text += (i > 1 ? "," : "") + pane->Entities()->Item(i)->Caption();
    }
    return text;
  }
  /// What the pane draws, one line a call, boxes outside the window included.
  std::vector<std::string> Drawn() const {
    RecordingCanvas canvas;
    pane->Paint(canvas, {-100'000_px, -100'000_px, 200'000_px, 200'000_px});
    return canvas.Lines();
  }
  /// Where a place of the surface, in pixels at 100 %, is seen now: the surface begins 12 pixels inside the pane.
  PixelPoint OnPane(PixelPoint surface) const {
    const auto seen = [&](Pixels at, Orientation orientation) {
      return (at + 12_px) * pane->Zoom() - Pixels(Surface().ScrollBar(orientation).value);
    };
    return {seen(surface.x, Orientation::Horizontal), seen(surface.y, Orientation::Vertical)};
  }
  /// The box on the surface, in pixels at 100 %.
  static PixelRect Place(const qbEntity& entity) { return ScreenScale{}.ToPixels(entity.EntityBox()->Bounds()); }
  static PixelRect PlaceOfRow(const qbEntity& entity, std::size_t row) {
    return ScreenScale{}.ToPixels(entity.EntityBox()->ItemBounds(row));
  }
  PixelPoint OnCaption(const qbEntity& entity) const {
    return OnPane({Place(entity).left + 20_px, Place(entity).top + 8_px});
  }
  PixelPoint OnRow(const qbEntity& entity, std::size_t row) const {
    return OnPane({PlaceOfRow(entity, row).CenterX(), PlaceOfRow(entity, row).CenterY()});
  }
  PixelPoint OnCheckBox(const qbEntity& entity, std::size_t row) const {
    return OnPane({PlaceOfRow(entity, row).left + 15_px, PlaceOfRow(entity, row).CenterY()});
  }
  /// The middle of a join's line.
  PixelPoint OnLine(const qbRelationship& join) const {
    const std::vector<PixelPoint>& points = join.Line()->Points(ScreenScale{});
    return OnPane({(points[1].x + points[2].x) / 2, (points[1].y + points[2].y) / 2});
  }
  const HeadlessSurface& Surface() const { return static_cast<const HeadlessSurface&>(pane->GetSurface()); }

  /// Moves a scroll bar as a user does: the window shows it there, and tells the pane.
  void Scroll(Orientation orientation, int value) {
    ScrollState bar = Surface().ScrollBar(orientation);
    bar.value = std::clamp(value, 0, bar.maximum);
    pane->GetSurface().SetScrollBar(orientation, bar);
    pane->OnScroll(orientation, bar.value);
  }
  void Down(PixelPoint at, std::int32_t button = ButtonLeft) { pane->OnMouseDown({button, ShiftNone, at}); }
  void Move(PixelPoint at, std::int32_t button = ButtonLeft) { pane->OnMouseMove({button, ShiftNone, at}); }
  void Up(PixelPoint at, std::int32_t button = ButtonLeft) { pane->OnMouseUp({button, ShiftNone, at}); }
  void Drag(PixelPoint from, PixelPoint to, std::int32_t button = ButtonLeft) {
    Down(from, button);
    Move(to, button);
    Up(to, button);
  }
  void Click(PixelPoint at, std::int32_t button = ButtonLeft) {
    Down(at, button);
    Up(at, button);
  }
  // A key that goes down and up again; whether the pane used it.
  bool Press(std::int32_t key, std::int32_t shift = ShiftNone) {
    const bool used = pane->OnKeyDown({key, shift});
    pane->OnKeyUp({key, shift});
    return used;
  }

  Ref<qbDiagramPane> pane = qbDiagramPane::Create();
};

class DiagramTest : public testing::Test, protected DiagramHands {};

}  // namespace zrqrybld::test
