// The pane's mouse and keyboard.
#include <algorithm>
#include <cmath>

#include "diagram/diagram_pane.h"
#include "diagram/relationships.h"

namespace zrqrybld {
namespace {

constexpr Pixels kDragDistance = 4_px;

float X(const MouseEvent& event) { return static_cast<float>(event.position.x.Value()); }
float Y(const MouseEvent& event) { return static_cast<float>(event.position.y.Value()); }

}  // namespace

qbDiagramPane::PaneHit qbDiagramPane::HitTest(PixelPoint point) const {
  const ScreenScale scale = GetSurface().Scale();
  const PixelPoint onSurface = ToSurface(point);
  const TwipsPoint twips = scale.ToTwips(onSurface);
  for (auto box = stacking_.rbegin(); box != stacking_.rend(); ++box) {
    if ((*box)->Bounds().Contains(twips)) return {*box, (*box)->HitTest(twips), nullptr};
  }
  for (auto line = lines_.rbegin(); line != lines_.rend(); ++line) {
    if ((*line)->HitTest(onSurface, scale)) return {nullptr, {}, *line};
  }
  return {};
}

void qbDiagramPane::OnMouseDown(const MouseEvent& event) {
  GetSurface().SetFocus();
  const PaneHit hit = HitTest(event.position);
  if (hit.box) {
    PressBox(hit, event);
  } else if (hit.line) {
    SelectObject(hit.line->Relationship());
  } else {
    DropSelection();
    MouseDown.Raise(event.button, event.shift, X(event), Y(event));
    if (event.button == ButtonLeft) Click.Raise();
  }
}

void qbDiagramPane::PressBox(const PaneHit& hit, const MouseEvent& event) {
  const Ref<qbEntity> entity = EntityOf(*hit.box);
  if (!entity) return;
  RaiseToTop(hit.box);
  SelectObject(entity);
  ObjectMouseDown.Raise(event.button, event.shift, X(event), Y(event), entity);
  if (!hit.box->Entity()) return;  // a handler has removed it
  EntityClick.Raise(entity);
  if (!hit.box->Entity() || event.button != ButtonLeft) return;
  if (hit.part.part == BoxPart::Caption) {
    const PixelRect place = PlaceOf(*hit.box);
    gesture_ = MovingBox{hit.box, event.position - PixelPoint{place.left, place.top}, hit.box->Bounds(), false,
                         event.position};
    GetSurface().SetCapture(true);
    return;
  }
  const Ref<BoxRow> row = hit.box->Rows().At(hit.part.row);
  if (!row) return;
  hit.box->SetSelectedRow(hit.part.row);
  EntityItemClick.Raise(entity, entity->Items()->Item(static_cast<std::int32_t>(hit.part.row)));
  if (hit.part.part == BoxPart::CheckBox) row->SetChecked(!row->Checked());
}

void qbDiagramPane::OnMouseMove(const MouseEvent& event) {
  if (auto* moving = std::get_if<MovingBox>(&gesture_)) {
    DragBox(*moving, event);
    return;
  }
  const PaneHit hit = HitTest(event.position);
  SetHover(hit);
  if (hit.box) {
    if (const Ref<qbEntity> entity = EntityOf(*hit.box)) {
      ObjectMouseMove.Raise(event.button, event.shift, X(event), Y(event), entity);
    }
  } else {
    MouseMove.Raise(event.button, event.shift, X(event), Y(event));
  }
}

void qbDiagramPane::DragBox(MovingBox& gesture, const MouseEvent& event) {
  const PixelPoint moved = event.position - gesture.start;
  if (!gesture.moving && std::hypot(moved.x.Value(), moved.y.Value()) < kDragDistance.Value()) return;
  gesture.moving = true;
  const PixelPoint corner = ToSurface(event.position - gesture.grip);
  const TwipsPoint place = GetSurface().Scale().ToTwips(PixelPoint{std::max(corner.x, 0_px), std::max(corner.y, 0_px)});
  TwipsRect bounds = gesture.box->Bounds();
  bounds.left = place.x;
  bounds.top = place.y;
  gesture.box->SetBounds(bounds);
}

void qbDiagramPane::OnMouseUp(const MouseEvent& event) {
  if (std::holds_alternative<MovingBox>(gesture_)) {
    gesture_ = NoGesture{};
    GetSurface().SetCapture(false);
  }
  const PaneHit hit = HitTest(event.position);
  if (hit.box) {
    if (const Ref<qbEntity> entity = EntityOf(*hit.box)) {
      ObjectMouseUp.Raise(event.button, event.shift, X(event), Y(event), entity);
    }
  } else if (!hit.line) {
    MouseUp.Raise(event.button, event.shift, X(event), Y(event));
  }
}

void qbDiagramPane::OnDoubleClick(const MouseEvent& event) {
  const PaneHit hit = HitTest(event.position);
  if (hit.box) {
    const Ref<qbEntity> entity = EntityOf(*hit.box);
    if (entity) EntityDblClick.Raise(entity);
    // The second click of two on a check box is a click of its own.
    if (entity && hit.part.part == BoxPart::CheckBox) PressBox(hit, event);
    return;
  }
  if (!hit.line) {
    DblClick.Raise();
    return;
  }
  const Ref<qbRelationship> join = hit.line->Relationship();
  SelectObject(join);
  DblClick.Raise();
  const Ref<QueryContext> context = Context();
  if (context && join && selected_ == join) context->RelationshipActivated(join);
}

void qbDiagramPane::OnMouseLeave() { SetHover({}); }

void qbDiagramPane::SetHover(const PaneHit& hit) {
  GetSurface().SetCursor(hit.box && hit.part.part == BoxPart::Caption ? Cursor::Move : Cursor::Arrow);
  if (hit.box == hover_.box && hit.line == hover_.line && hit.part.row == hover_.part.row) return;
  hover_ = hit;
  Refresh();
}

void qbDiagramPane::OnWheel(const WheelEvent& event) {
  const PaneHit hit = HitTest(event.position);
  // A list that is longer than its box scrolls itself; otherwise the surface does.
  if (hit.box && event.shift == ShiftNone && hit.box->Rows().Count() > hit.box->VisibleRowCount()) {
    const double first = static_cast<double>(hit.box->FirstVisibleRow()) + std::round(event.linesY);
    hit.box->ScrollTo(static_cast<std::size_t>(std::max(1.0, first)));
    return;
  }
  const bool sideways = (event.shift & ShiftShift) != 0;
  const double x = sideways ? event.linesX + event.linesY : event.linesX;
  const double y = sideways ? 0 : event.linesY;
  if (x != 0) ScrollBy(Orientation::Horizontal, static_cast<int>(x * horizontal_.step));
  if (y != 0) ScrollBy(Orientation::Vertical, static_cast<int>(y * vertical_.step));
}

bool qbDiagramPane::OnKeyDown(const KeyEvent& event) {
  std::int32_t keyCode = event.keyCode;
  KeyDown.Raise(keyCode, event.shift);
  const bool isArrow = keyCode >= KeyCodeLeft && keyCode <= KeyCodeDown;
  const int sign = keyCode == KeyCodeLeft || keyCode == KeyCodeUp ? -1 : 1;
  if (isArrow && event.shift == (ShiftShift | ShiftAlt)) {
    const bool vertical = keyCode == KeyCodeUp || keyCode == KeyCodeDown;
    ScrollBy(vertical ? Orientation::Vertical : Orientation::Horizontal,
             sign * (vertical ? vertical_.step : horizontal_.step));
    return true;
  }
  if (isArrow && event.shift == ShiftAlt) return MoveSelectedBox(keyCode);
  if (event.shift != ShiftNone) return false;
  switch (keyCode) {
    case KeyCodeUp:
      return MoveCurrentRow(-1);
    case KeyCodeDown:
      return MoveCurrentRow(1);
    case KeyCodeSpace:
      return ToggleCurrentRow();
    case KeyCodeDelete:
      return DeleteSelected();
    default:
      return false;
  }
}

void qbDiagramPane::OnKeyUp(const KeyEvent& event) {
  std::int32_t keyCode = event.keyCode;
  KeyUp.Raise(keyCode, event.shift);
}

void qbDiagramPane::OnFocusChanged(bool focused) {
  focused_ = focused;
  Refresh();
}

// One step of the scroll bar in that direction; the box stays on the surface.
bool qbDiagramPane::MoveSelectedBox(std::int32_t keyCode) {
  const auto entity = std::dynamic_pointer_cast<qbEntity>(selected_);
  if (!entity) return false;
  const ScreenScale scale = GetSurface().Scale();
  TwipsRect bounds = entity->EntityBox()->Bounds();
  const Twips stepX = scale.TwipsX(Pixels(horizontal_.step));
  const Twips stepY = scale.TwipsY(Pixels(vertical_.step));
  if (keyCode == KeyCodeLeft) bounds.left = std::max(bounds.left - stepX, Twips{});
  if (keyCode == KeyCodeRight) bounds.left += stepX;
  if (keyCode == KeyCodeUp) bounds.top = std::max(bounds.top - stepY, Twips{});
  if (keyCode == KeyCodeDown) bounds.top += stepY;
  entity->EntityBox()->SetBounds(bounds);
  return true;
}

bool qbDiagramPane::MoveCurrentRow(int delta) {
  const auto entity = std::dynamic_pointer_cast<qbEntity>(selected_);
  if (!entity) return false;
  qbEntityList& box = *entity->EntityBox();
  const auto count = static_cast<std::int64_t>(box.Rows().Count());
  if (count == 0) return false;
  const auto row = static_cast<std::size_t>(
      std::clamp<std::int64_t>(static_cast<std::int64_t>(box.SelectedRow()) + delta, 1, count));
  box.SetSelectedRow(row);
  if (row < box.FirstVisibleRow()) box.ScrollTo(row);
  const std::size_t visible = std::max<std::size_t>(box.VisibleRowCount(), 1);
  if (row >= box.FirstVisibleRow() + visible) box.ScrollTo(row - visible + 1);
  return true;
}

bool qbDiagramPane::ToggleCurrentRow() {
  const auto entity = std::dynamic_pointer_cast<qbEntity>(selected_);
  const Ref<qbEntityItem> item = entity ? entity->SelectedItem() : nullptr;
  if (!item) return false;
  item->SetChecked(!item->Checked());
  return true;
}

bool qbDiagramPane::DeleteSelected() {
  const Ref<Object> object = selected_;
  if (!object) return false;
  bool cancel = false;
  BeforeDeleteObject.Raise(object, cancel);
  if (cancel) return true;
  DropSelection();
  if (const auto entity = std::dynamic_pointer_cast<qbEntity>(object)) {
    if (entity->EntityBox()) entities_->Remove(entity->Index());
  } else if (const auto join = std::dynamic_pointer_cast<qbRelationship>(object)) {
    if (const Ref<qbEntity> source = join->Source()) source->Relationships()->Remove(join->Index());
  }
  return true;
}

std::string qbDiagramPane::ToolTipAt(PixelPoint point) const {
  const PaneHit hit = HitTest(point);
  if (!hit.box) return {};
  if (hit.part.part == BoxPart::Caption) return hit.box->Caption();
  const Ref<BoxRow> row = hit.box->Rows().At(hit.part.row);
  if (!row) return {};
  return row->ToolTipText().empty() ? row->Text() : row->ToolTipText();
}

}  // namespace zrqrybld
