// The pane's picture: surface, lines, boxes, the line of a join that is being drawn.
#include <array>

#include "base/texts_diagram.h"
#include "diagram/diagram_pane.h"
#include "diagram/source_names.h"
#include "platform/commands.h"

namespace zrqrybld {
namespace {

constexpr Pixels kLineReach = 16_px;  // how far a line's ends and bends reach beyond its points

}  // namespace

void qbDiagramPane::Paint(Canvas& canvas, const PixelRect& dirty) const {
  const PixelSize view = GetSurface().ViewSize();
  canvas.FillRect({{}, {}, view.width, view.height},
                  backColor_ == Color::System(12) ? Ink(ColorRole::Surface) : Ink(backColor_));
  if (stacking_.Empty()) {
    canvas.DrawText({{}, {}, view.width, view.height},
                    Say(Context(), {text::DiagramHint, KeyTextOf(Command::AddTables)}),
                    {ColorRole::SurfaceText, {}, TextAlignment::Center});
    return;
  }
  const PixelPoint corner = ToSurface({dirty.left, dirty.top});
  {
    const ViewScope scope(canvas, Origin(), zoom_);
    PaintDiagram(canvas, {corner.x, corner.y, dirty.width / zoom_, dirty.height / zoom_}, true);
    PaintRubberLine(canvas);
    PaintKeyJoin(canvas);
  }
  // Without a selected object nothing else says where the keys go.
  if (focused_ && !selected_) {
    canvas.StrokeRect({1_px, 1_px, view.width - 2_px, view.height - 2_px}, ColorRole::Focus, 2_px);
  }
  if (keyJoin_) {
    PaintHint(canvas, Say(Context(), {text::JoinHint, keyJoin_->box->Caption() + "." + keyJoin_->row->Text()}));
  }
}

// Everything that touches `visible`, a part of the surface; with what is selected and pointed at, or without.
void qbDiagramPane::PaintDiagram(Canvas& canvas, const PixelRect& visible, bool withState) const {
  const ScreenScale scale = GetSurface().Scale();
  UpdateRowMarks();
  const auto paintLine = [&](const Ref<qbLine>& line) {
    if (!line->Area(scale).Inset(-kLineReach).Overlaps(visible)) return;
    line->Paint(canvas, scale, withState && line->Selected(), withState && line == hover_.line);
  };
  // Lines run under the boxes, the selected one on top of everything.
  for (const Ref<qbLine>& line : lines_) {
    if (!withState || !line->Selected()) paintLine(line);
  }
  const auto* drag = std::get_if<DraggingRow>(&gesture_);
  const auto* framing = std::get_if<Framing>(&gesture_);
  if (framing && !framing->framing) framing = nullptr;
  const PixelRect frame = framing ? Frame(*framing, ToSurface(framing->pointer)) : PixelRect{};
  for (const Ref<qbEntityList>& box : stacking_) {
    const PixelRect place = scale.ToPixels(box->Bounds());
    if (!place.Overlaps(visible)) continue;
    BoxLook look;
    look.joined = &joinedRows_;
    look.text = &GetSurface().Metrics();
    if (const Ref<qbEntity> entity = EntityOf(*box)) look.schemaBytes = SchemaBytesOf(*entity);
    if (withState) {
      const Ref<Object> entity = box->Entity();
      look.active = IsSelected(entity) || (framing && frame.Overlaps(place));
      look.focused = focused_ && entity == selected_;
      if (box == hover_.box) look.hover = hover_.part;
      if (drag && drag->dragging && drag->target == box) look.dropRow = box->PositionOf(drag->targetRow);
      look.marked = &markedRows_;
    }
    box->Paint(canvas, place, look);
  }
  for (const Ref<qbLine>& line : lines_) {
    if (withState && line->Selected()) paintLine(line);
  }
  if (withState && framing) canvas.StrokeRect(frame, ColorRole::Focus, 1_px);
}

// From the edge of the row that is dragged to the pointer, or to the row where the join would end.
void qbDiagramPane::PaintRubberLine(Canvas& canvas) const {
  const auto* drag = std::get_if<DraggingRow>(&gesture_);
  if (!drag || !drag->dragging) return;
  const ScreenScale scale = GetSurface().Scale();
  const PixelRect box = scale.ToPixels(drag->box->Bounds());
  const PixelPoint pointer = ToSurface(drag->pointer);
  const bool toRight = pointer.x >= box.CenterX();
  const std::array<PixelPoint, 2> line{
      PixelPoint{toRight ? box.Right() : box.left, drag->box->LineY(drag->box->PositionOf(drag->row))}, pointer};
  canvas.DrawPolyline(line, drag->target ? ColorRole::JoinSelected : ColorRole::Join, 2_px);
  canvas.FillRect({pointer.x - 3_px, pointer.y - 3_px, 6_px, 6_px},
                  drag->target ? ColorRole::JoinSelected : ColorRole::Join, 3_px);
}

// From the row where the join begins to the current row of the selected box, while that may be its end.
void qbDiagramPane::PaintKeyJoin(Canvas& canvas) const {
  if (!keyJoin_) return;
  const ScreenScale scale = GetSurface().Scale();
  const PixelRect from = scale.ToPixels(keyJoin_->box->Bounds());
  const Pixels y = keyJoin_->box->LineY(keyJoin_->box->PositionOf(keyJoin_->row));
  canvas.StrokeRect(from.Inset(-3_px), ColorRole::JoinSelected, 1_px, 6_px);
  if (!IsKeyJoinTarget()) return;
  const qbEntityList& target = *SelectedEntity()->EntityBox();
  const PixelRect to = scale.ToPixels(target.Bounds());
  const bool toRight = to.CenterX() >= from.CenterX();
  const std::array<PixelPoint, 2> line{PixelPoint{toRight ? from.Right() : from.left, y},
                                       PixelPoint{toRight ? to.left : to.Right(), target.LineY(target.SelectedRow())}};
  canvas.DrawPolyline(line, ColorRole::JoinSelected, 2_px);
}

// A line of text at the lower edge that says what the keys do now.
void qbDiagramPane::PaintHint(Canvas& canvas, const std::string& text) const {
  const PixelSize view = GetSurface().ViewSize();
  const TextMetrics& metrics = GetSurface().Metrics();
  const PixelSize size{metrics.TextWidth(text, {}) + 24_px, metrics.LineHeight({}) + 12_px};
  const PixelRect place{12_px, view.height - size.height - 12_px, std::min(size.width, view.width - 24_px),
                        size.height};
  canvas.FillRect(place, ColorRole::Box, 4_px);
  canvas.StrokeRect(place, ColorRole::BoxFrame, 1_px, 4_px);
  canvas.DrawText(place.Inset(12_px, 0_px), text, {ColorRole::Text});
}

void qbDiagramPane::UpdateRowMarks() const {
  if (!rowMarksStale_) return;
  rowMarksStale_ = false;
  joinedRows_.clear();
  markedRows_.clear();
  for (const Ref<qbLine>& line : lines_) {
    const Ref<qbRelationship> join = line->Relationship();
    if (!join) continue;
    for (const auto& [entity, item] :
         {std::pair{join->Source(), join->SourceItem()}, {join->Target(), join->TargetItem()}}) {
      if (!entity || !item || !entity->EntityBox()) continue;
      const BoxRow* row = entity->EntityBox()->Rows().At(static_cast<std::size_t>(item->Index())).get();
      joinedRows_.insert(row);
      if (line->Selected()) markedRows_.insert(row);
    }
  }
}

}  // namespace zrqrybld
