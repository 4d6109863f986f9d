// A diagram pane on its headless surface, with what tests of it need again and again.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "diagram/diagram_pane.h"
#include "diagram/relationships.h"
#include "platform/headless.h"
#include "tests/error_of.h"

namespace zrqrybld::test {

class DiagramTest : public testing::Test {
 protected:
  /// An entity with the item "*" and these columns, its box as large as its rows need.
  Ref<qbEntity> Add(const std::string& caption, const std::vector<std::string>& columns = {"id", "name"}) {
    const Ref<qbEntity> entity = pane->Entities()->Add(caption);
    entity->Items()->Add("*", "*");
    for (const std::string& column : columns) entity->Items()->Add(column, column);
    pane->Entities()->Fit(*entity);
    return entity;
  }
  static Ref<qbRelationship> Join(const Ref<qbEntity>& source, std::int32_t sourceItem, const Ref<qbEntity>& target,
                                  std::int32_t targetItem) {
    const Ref<qbRelationship> join = source->Relationships()->Add(target);
    join->SetSourceItemIndex(sourceItem);
    join->SetTargetItemIndex(targetItem);
    return join;
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
  /// A place of the unscrolled pane; the surface begins 12 pixels inside it.
  static PixelPoint OnPane(TwipsPoint place) { return ScreenScale{}.ToPixels(place) + PixelPoint{12_px, 12_px}; }
  static PixelPoint OnCaption(const qbEntity& entity) {
    const TwipsRect box = entity.EntityBox()->Bounds();
    return OnPane({box.left, box.top}) + PixelPoint{20_px, 8_px};
  }
  static PixelPoint OnRow(const qbEntity& entity, std::size_t row) {
    const TwipsRect place = entity.EntityBox()->ItemBounds(row);
    return OnPane({place.CenterX(), place.CenterY()});
  }
  static PixelPoint OnCheckBox(const qbEntity& entity, std::size_t row) {
    const TwipsRect place = entity.EntityBox()->ItemBounds(row);
    return OnPane({place.left, place.CenterY()}) + PixelPoint{15_px, 0_px};
  }
  void Click(PixelPoint at, std::int32_t button = ButtonLeft) {
    pane->OnMouseDown({button, ShiftNone, at});
    pane->OnMouseUp({button, ShiftNone, at});
  }
  // A key that goes down and up again; whether the pane used it.
  bool Press(std::int32_t key, std::int32_t shift = ShiftNone) {
    const bool used = pane->OnKeyDown({key, shift});
    pane->OnKeyUp({key, shift});
    return used;
  }

  Ref<qbDiagramPane> pane = qbDiagramPane::Create();
};

}  // namespace zrqrybld::test
