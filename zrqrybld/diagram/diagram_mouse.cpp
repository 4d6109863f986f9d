#include "zrqrybld/diagram/diagram_mouse.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "zrqrybld/base/texts_diagram.h"
#include "zrqrybld/base/texts_queries.h"
#include "zrqrybld/diagram/diagram_camera.h"
#include "zrqrybld/diagram/diagram_edits.h"
#include "zrqrybld/diagram/diagram_gestures.h"
#include "zrqrybld/diagram/diagram_minimap.h"
#include "zrqrybld/diagram/diagram_selection.h"
#include "zrqrybld/diagram/diagram_site.h"
#include "zrqrybld/diagram/entity.h"
#include "zrqrybld/diagram/join_line.h"
#include "zrqrybld/diagram/join_properties.h"
#include "zrqrybld/diagram/key_join.h"
#include "zrqrybld/diagram/source_names.h"
#include "zrqrybld/host/context_link.h"
#include "zrqrybld/host/design_reports.h"
#include "zrqrybld/host/source_context.h"
#include "zrqrybld/platform/input.h"

namespace zrqrybld {
namespace {

float X(const MouseEvent& event) { return static_cast<float>(event.position.x.Value()); }
float Y(const MouseEvent& event) { return static_cast<float>(event.position.y.Value()); }

Cursor CursorFor(const DiagramHit& hit) {
  if (!hit.box) return Cursor::Arrow;
  if (hit.part.part == BoxPart::Caption) return Cursor::Move;
  switch (hit.part.edges) {
    case 0:
      return Cursor::Arrow;
    case EdgeLeft:
    case EdgeRight:
      return Cursor::SizeHorizontal;
    case EdgeTop:
    case EdgeBottom:
      return Cursor::SizeVertical;
    case EdgeLeft | EdgeTop:
    case EdgeRight | EdgeBottom:
      return Cursor::SizeDiagonalDown;
    default:
      return Cursor::SizeDiagonalUp;
  }
}

std::string TextOfCaption(const qbEntityList& box) {
  const Ref<qbEntity> entity = EntityOf(box);
  const std::string table = entity ? AliasedTable(*entity) : std::string();
  return table.empty() ? box.Caption() : box.Caption() + " · " + table;
}

}  // namespace

// --- Pressing ---

void DiagramMouse::Down(const MouseEvent& event) {
  site_.GetSurface().SetFocus();
  if (gestures_.UnderWay()) {
    if (event.button != gestures_.Button()) return;
    gestures_.End();  // its release went elsewhere
  }
  keyJoin_.End();
  if (event.button == ButtonMiddle || (event.button == ButtonLeft && spaceHeld_)) {
    spaceWasUsed_ = true;
    gestures_.BeginPanning(event);
    return;
  }
  if (targets_.minimap.Contains(event.position)) {
    inMinimap_ = event.button == ButtonLeft;
    if (!inMinimap_) return;
    site_.GetSurface().SetCapture(true);
    targets_.minimap.GoTo(event.position);
    return;
  }
  const DiagramHit hit = camera_.HitTest(event.position);
  if (hit.box) {
    PressBox(hit, event);
  } else if (hit.line) {
    selection_.Select(hit.line->Relationship());
  } else {
    PressSurface(event);
  }
}

void DiagramMouse::PressSurface(const MouseEvent& event) {
  if ((event.shift & ShiftCtrl) == 0) selection_.Drop();
  site_.MouseDown.Raise(event.button, event.shift, X(event), Y(event));
  if (event.button != ButtonLeft) return;
  gestures_.BeginFraming(event);
  site_.Click.Raise();
}

void DiagramMouse::PressBox(const DiagramHit& hit, const MouseEvent& event) {
  const Ref<qbEntity> entity = EntityOf(*hit.box);
  if (!entity) return;
  const bool toggles = event.button == ButtonLeft && (event.shift & ShiftCtrl) != 0;
  scene_.RaiseToTop(hit.box);
  if (toggles) {
    selection_.Toggle(entity);
  } else if (selection_.Contains(entity)) {
    selection_.SelectAlso(entity);  // the others stay, so that all of them can be moved
  } else {
    selection_.Select(entity);
  }
  site_.ObjectMouseDown.Raise(event.button, event.shift, X(event), Y(event), entity);
  if (!hit.box->Entity()) return;  // a handler has removed it
  site_.EntityClick.Raise(entity);
  if (!hit.box->Entity() || event.button != ButtonLeft || toggles) return;
  switch (hit.part.part) {
    case BoxPart::Caption:
      gestures_.BeginMoving(hit.box, event);
      return;
    case BoxPart::Edge:
      gestures_.BeginResizing(hit, event);
      return;
    case BoxPart::MinimizeButton:
      edits_.Minimize(*hit.box, !hit.box->Minimized());
      return;
    case BoxPart::ScrollBar:
      gestures_.BeginScrollingList(hit.box, event);
      return;
    case BoxPart::CheckBox:
    case BoxPart::Row:
      PressRow(hit, event, entity);
      return;
    case BoxPart::Nothing:
      return;
  }
}

void DiagramMouse::PressRow(const DiagramHit& hit, const MouseEvent& event, const Ref<qbEntity>& entity) {
  const Ref<BoxRow> row = hit.box->Rows().At(hit.part.row);
  if (!row) return;
  hit.box->SetSelectedRow(hit.part.row);
  site_.EntityItemClick.Raise(entity, entity->Items()->Item(static_cast<std::int32_t>(hit.part.row)));
  if (!hit.box->Entity()) return;
  if (hit.part.part == BoxPart::CheckBox) {
    row->SetChecked(!row->Checked());
  } else {
    gestures_.BeginDraggingRow(hit.box, row, event);
  }
}

void DiagramMouse::HoldSpace() {
  if (!spaceHeld_) spaceWasUsed_ = gestures_.UnderWay();
  spaceHeld_ = true;
}

bool DiagramMouse::ReleaseSpace() { return std::exchange(spaceHeld_, false) && !spaceWasUsed_; }

// --- Moving and letting go ---

void DiagramMouse::Move(const MouseEvent& event) {
  if (inMinimap_) {
    targets_.minimap.GoTo(event.position);
    return;
  }
  if (!gestures_.UnderWay() && targets_.minimap.Contains(event.position)) {
    SetHover({});
    return;
  }
  if (gestures_.UnderWay()) {
    gestures_.Move(event);
  } else {
    SetHover(camera_.HitTest(event.position));
  }
  const DiagramHit hit = camera_.HitTest(event.position);
  if (hit.box) {
    if (const Ref<qbEntity> entity = EntityOf(*hit.box)) {
      site_.ObjectMouseMove.Raise(event.button, event.shift, X(event), Y(event), entity);
    }
  } else if (!hit.line) {
    site_.MouseMove.Raise(event.button, event.shift, X(event), Y(event));
  }
}

void DiagramMouse::Up(const MouseEvent& event) {
  if (inMinimap_ && event.button == ButtonLeft) {
    inMinimap_ = false;
    site_.GetSurface().SetCapture(false);
  }
  if (!gestures_.UnderWay() && targets_.minimap.Contains(event.position)) return;
  if (gestures_.UnderWay() && event.button != gestures_.Button()) return;
  gestures_.Release(event);
  const DiagramHit hit = camera_.HitTest(event.position);
  const Ref<Object> object = hit.box ? hit.box->Entity() : hit.line ? Ref<Object>(hit.line->Relationship()) : nullptr;
  if (hit.box) {
    if (object) site_.ObjectMouseUp.Raise(event.button, event.shift, X(event), Y(event), object);
  } else if (!hit.line) {
    site_.MouseUp.Raise(event.button, event.shift, X(event), Y(event));
  }
  if (event.button == ButtonRight) ShowContextMenu(targets_, object, hit.part.row, event.position);
}

void DiagramMouse::DoubleClick(const MouseEvent& event) {
  if (event.button != ButtonLeft || spaceHeld_ || targets_.minimap.Contains(event.position)) {
    Down(event);  // two quick presses that pan or open menus are two presses
    return;
  }
  const DiagramHit hit = camera_.HitTest(event.position);
  if (hit.box) {
    DoubleClickBox(hit, event);
    return;
  }
  if (!hit.line) {
    site_.DblClick.Raise();
    return;
  }
  const Ref<qbRelationship> join = hit.line->Relationship();
  selection_.Select(join);
  site_.DblClick.Raise();
  const Ref<QueryContext> context = site_.Context();
  if (context && join && selection_.Selected() == join) context->reports.RelationshipActivated(join);
}

void DiagramMouse::DoubleClickBox(const DiagramHit& hit, const MouseEvent& event) {
  const Ref<qbEntity> entity = EntityOf(*hit.box);
  if (!entity) return;
  site_.EntityDblClick.Raise(entity);
  if (!hit.box->Entity()) return;
  // The second click of two on a check box is a click of its own.
  if (hit.part.part == BoxPart::CheckBox || hit.part.part == BoxPart::MinimizeButton) PressBox(hit, event);
  if (camera_.NamesOnly()) {
    gestures_.End();
    camera_.ZoomInto(*hit.box);
  } else if (hit.part.part == BoxPart::Caption && hit.box->IsQuery()) {
    gestures_.End();
    if (const Ref<QueryContext> context = site_.Context()) context->reports.OpenQuery(entity->TagVariant().Text());
  } else if (hit.part.part == BoxPart::Caption || hit.part.part == BoxPart::Edge) {
    gestures_.End();
    edits_.FitToRows(hit.box);
  } else if (hit.part.part == BoxPart::Row) {
    OutputRow(*hit.box, hit.part.row);
  }
}

// The first time it is ticked, then it is put out once more.
void DiagramMouse::OutputRow(const qbEntityList& box, std::size_t position) {
  const Ref<BoxRow> row = box.Rows().At(position);
  if (!row) return;
  const Ref<QueryContext> context = site_.Context();
  if (!row->Checked()) {
    row->SetChecked(true);
  } else if (context && row->Text() != "*") {
    context->reports.OutputColumnAgain(box.Caption(), row->Text());
  }
}

// --- Pointing ---

void DiagramMouse::SetHover(const DiagramHit& hit) {
  site_.GetSurface().SetCursor(CursorFor(hit));
  if (hit == hover_) return;
  hover_ = hit;
  site_.Refresh();
}

void DiagramMouse::Forget(const Ref<qbEntityList>& box) {
  if (hover_.box == box) hover_ = {};
}

void DiagramMouse::Forget(const Ref<qbLine>& line) {
  if (hover_.line == line) hover_ = {};
}

void DiagramMouse::Wheel(const WheelEvent& event) {
  if ((event.shift & ShiftCtrl) != 0) {
    constexpr double kZoomStep = 1.1;
    camera_.SetZoom(camera_.Zoom() * std::pow(kZoomStep, -event.linesY / 3), event.position);
    return;
  }
  const DiagramHit hit = camera_.HitTest(event.position);
  // A list that is longer than its box scrolls itself; otherwise the surface does.
  if (hit.box && event.shift == ShiftNone && hit.box->LastFirstRow() > 1) {
    const double first = static_cast<double>(hit.box->FirstVisibleRow()) + std::round(event.linesY);
    hit.box->ScrollTo(static_cast<std::size_t>(std::max(1.0, first)));
    return;
  }
  const bool sideways = (event.shift & ShiftShift) != 0;
  const double x = sideways ? event.linesX + event.linesY : event.linesX;
  const double y = sideways ? 0 : event.linesY;
  const auto scroll = [this](Orientation orientation, double lines) {
    if (lines != 0) camera_.ScrollBy(orientation, static_cast<int>(lines * camera_.Bar(orientation).step));
  };
  scroll(Orientation::Horizontal, x);
  scroll(Orientation::Vertical, y);
}

std::string DiagramMouse::ToolTipAt(PixelPoint point) const {
  const DiagramHit hit = camera_.HitTest(point);
  if (hit.line) {
    const Ref<qbRelationship> join = hit.line->Relationship();
    if (!join) return {};
    const qbWholeJoin& whole = *hit.line->Whole();
    return whole.Text() + "\n" +
           Say(site_.Context(),
               DescribeJoin(join->Source()->Caption(), join->Target()->Caption(), whole.KindFor(*join))) +
           (hit.line->JoinsDifferentTypes() ? "\n" + Say(site_.Context(), text::DifferentTypes) : "");
  }
  if (!hit.box) return {};
  if (hit.part.part == BoxPart::Caption) {
    const std::string kind = hit.box->IsQuery() ? "\n" + Say(site_.Context(), text::IsQuery) : std::string();
    return TextOfCaption(*hit.box) + kind;
  }
  const Ref<BoxRow> row = hit.box->Rows().At(hit.part.row);
  if (!row) return {};
  return row->ToolTipText().empty() ? row->Text() : row->ToolTipText();
}

}  // namespace zrqrybld
