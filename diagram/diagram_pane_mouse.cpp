// The pane's mouse: pressing, dragging, dropping, pointing.
#include <algorithm>
#include <cmath>

#include "base/texts_diagram.h"
#include "diagram/diagram_pane.h"
#include "diagram/join_properties.h"
#include "diagram/relationships.h"

namespace zrqrybld {
namespace {

constexpr Pixels kDragDistance = 4_px;
constexpr Pixels kAutoScrollZone = 20_px;
constexpr int kAutoScrollStep = 16;
constexpr Pixels kNarrowestBox = 96_px;
constexpr Pixels kLineReach = 6_px;  // how far beside a line it is hit, at any zoom

float X(const MouseEvent& event) { return static_cast<float>(event.position.x.Value()); }
float Y(const MouseEvent& event) { return static_cast<float>(event.position.y.Value()); }

bool IsFar(PixelPoint a, PixelPoint b) {
  return std::hypot((a.x - b.x).Value(), (a.y - b.y).Value()) >= kDragDistance.Value();
}

bool IsAllColumns(const qbEntityList& box, std::size_t row) {
  const Ref<BoxRow> hit = box.Rows().At(row);
  return !hit || hit->Text() == "*";
}

}  // namespace

qbDiagramPane::PaneHit qbDiagramPane::HitTest(PixelPoint point) const {
  const ScreenScale scale = GetSurface().Scale();
  const PixelPoint onSurface = ToSurface(point);
  const TwipsPoint twips = scale.ToTwips(onSurface);
  PaneHit edge;
  for (auto box = stacking_.rbegin(); box != stacking_.rend(); ++box) {
    const BoxHit part = (*box)->HitTest(twips);
    if ((*box)->Bounds().Contains(twips)) return {*box, part, nullptr};
    // The outer half of an edge counts only where no box lies under it.
    if (part.part == BoxPart::Edge && !edge.box) edge = {*box, part, nullptr};
  }
  Ref<qbLine> nearest;
  Pixels reach = kLineReach / zoom_;
  for (const Ref<qbLine>& line : lines_) {
    if (!line->Area(scale).Inset(-reach).Contains(onSurface)) continue;
    const Pixels distance = line->DistanceTo(onSurface, scale);
    if (distance > reach) continue;
    reach = distance;  // of two that are as near, the upper one
    nearest = line;
  }
  return nearest ? PaneHit{nullptr, {}, nearest} : edge;
}

// --- Pressing ---

void qbDiagramPane::OnMouseDown(const MouseEvent& event) {
  GetSurface().SetFocus();
  if (!std::holds_alternative<NoGesture>(gesture_)) {
    if (event.button != gestureButton_) return;
    EndGesture();  // its release went elsewhere
  }
  EndKeyJoin();
  if (event.button == ButtonMiddle || (event.button == ButtonLeft && spaceHeld_)) {
    spaceWasUsed_ = true;
    BeginGesture(Panning{event.position, horizontal_.value, vertical_.value}, event.button);
    return;
  }
  const PaneHit hit = HitTest(event.position);
  if (hit.box) {
    PressBox(hit, event);
  } else if (hit.line) {
    SelectObject(hit.line->Relationship());
  } else {
    if ((event.shift & ShiftCtrl) == 0) DropSelection();
    MouseDown.Raise(event.button, event.shift, X(event), Y(event));
    if (event.button != ButtonLeft) return;
    // The mouse is captured only when it has moved: a listener may have opened a window.
    gesture_ = Framing{ToSurface(event.position), event.position};
    gestureButton_ = event.button;
    Click.Raise();
  }
}

void qbDiagramPane::PressBox(const PaneHit& hit, const MouseEvent& event) {
  const Ref<qbEntity> entity = EntityOf(*hit.box);
  if (!entity) return;
  const bool toggles = event.button == ButtonLeft && (event.shift & ShiftCtrl) != 0;
  RaiseToTop(hit.box);
  if (toggles) {
    ToggleSelected(entity);
  } else if (IsSelected(entity)) {
    SelectAlso(entity);  // the others stay, so that all of them can be moved
  } else {
    SelectObject(entity);
  }
  ObjectMouseDown.Raise(event.button, event.shift, X(event), Y(event), entity);
  if (!hit.box->Entity()) return;  // a handler has removed it
  EntityClick.Raise(entity);
  if (!hit.box->Entity() || event.button != ButtonLeft || toggles) return;
  const PixelPoint onSurface = ToSurface(event.position);
  const ScreenScale scale = GetSurface().Scale();
  switch (hit.part.part) {
    case BoxPart::Caption:
      PressCaption(hit, event);
      return;
    case BoxPart::Edge:
      BeginGesture(ResizingBox{hit.box, hit.part.edges, onSurface, hit.box->Bounds()}, event.button);
      return;
    case BoxPart::MinimizeButton:
      Minimize(*hit.box, !hit.box->Minimized());
      return;
    case BoxPart::ScrollBar:
      BeginGesture(ScrollingList{hit.box, scale.TwipsY(onSurface.y) - hit.box->ScrollMarkTop()}, event.button);
      return;
    case BoxPart::CheckBox:
    case BoxPart::Row:
      PressRow(hit, event, entity);
      return;
    case BoxPart::Nothing:
      return;
  }
}

void qbDiagramPane::PressCaption(const PaneHit& hit, const MouseEvent& event) {
  const PixelRect place = GetSurface().Scale().ToPixels(hit.box->Bounds());
  MovingBox gesture{hit.box,
                    ToSurface(event.position) - PixelPoint{place.left, place.top},
                    event.position,
                    hit.box->Bounds(),
                    {},
                    event.position,
                    false};
  for (const Ref<qbEntity>& entity : SelectedEntities()) {
    const Ref<qbEntityList>& box = entity->EntityBox();
    if (box != hit.box) gesture.others.emplace_back(box, box->Bounds());
  }
  BeginGesture(std::move(gesture), event.button);
}

void qbDiagramPane::PressRow(const PaneHit& hit, const MouseEvent& event, const Ref<qbEntity>& entity) {
  const Ref<BoxRow> row = hit.box->Rows().At(hit.part.row);
  if (!row) return;
  hit.box->SetSelectedRow(hit.part.row);
  EntityItemClick.Raise(entity, entity->Items()->Item(static_cast<std::int32_t>(hit.part.row)));
  if (!hit.box->Entity()) return;
  if (hit.part.part == BoxPart::CheckBox) {
    row->SetChecked(!row->Checked());
  } else {
    BeginGesture(DraggingRow{hit.box, row, event.position, event.position, false, nullptr, nullptr}, event.button);
  }
}

void qbDiagramPane::BeginGesture(Gesture gesture, std::int32_t button) {
  gesture_ = std::move(gesture);
  gestureButton_ = button;
  GetSurface().SetCapture(true);
}

void qbDiagramPane::EndGesture() {
  if (std::holds_alternative<NoGesture>(gesture_)) return;
  gesture_ = NoGesture{};
  GetSurface().SetTicking(false);
  GetSurface().SetCapture(false);
  GetSurface().SetCursor(Cursor::Arrow);
  Refresh();
}

// What the gesture has changed so far is taken back. Returns whether there was one.
bool qbDiagramPane::CancelGesture() {
  if (std::holds_alternative<NoGesture>(gesture_)) return false;
  if (const auto* moving = std::get_if<MovingBox>(&gesture_)) {
    const MovingBox taken = *moving;
    taken.box->SetBounds(taken.before);
    for (const auto& [box, before] : taken.others) box->SetBounds(before);
  }
  if (const auto* resizing = std::get_if<ResizingBox>(&gesture_)) resizing->box->SetBounds(resizing->before);
  EndGesture();
  return true;
}

// --- Dragging ---

void qbDiagramPane::OnMouseMove(const MouseEvent& event) {
  if (!std::holds_alternative<NoGesture>(gesture_)) {
    std::visit([&](auto& gesture) { Drag(gesture, event); }, gesture_);
  } else {
    SetHover(HitTest(event.position));
  }
  const PaneHit hit = HitTest(event.position);
  if (hit.box) {
    if (const Ref<qbEntity> entity = EntityOf(*hit.box)) {
      ObjectMouseMove.Raise(event.button, event.shift, X(event), Y(event), entity);
    }
  } else if (!hit.line) {
    MouseMove.Raise(event.button, event.shift, X(event), Y(event));
  }
}

void qbDiagramPane::Drag(MovingBox& gesture, const MouseEvent& event) {
  if (!gesture.moving && !IsFar(event.position, gesture.start)) return;
  gesture.moving = true;
  gesture.pointer = event.position;
  GetSurface().SetTicking(true);
  GetSurface().SetCursor(CursorWhileMoving(gesture, event.position));
  const TwipsPoint corner = GetSurface().Scale().ToTwips(ToSurface(event.position) - gesture.grip);
  TwipsPoint by = corner - TwipsPoint{gesture.before.left, gesture.before.top};
  // The group keeps its shape and stays on the surface.
  by = {std::max(by.x, -gesture.before.left), std::max(by.y, -gesture.before.top)};
  for (const auto& [box, before] : gesture.others) by = {std::max(by.x, -before.left), std::max(by.y, -before.top)};
  std::vector<std::pair<Ref<qbEntityList>, TwipsRect>> boxes = gesture.others;
  boxes.emplace_back(gesture.box, gesture.before);
  for (const auto& [box, before] : boxes) {
    const TwipsRect now = box->Bounds();
    box->SetBounds({before.left + by.x, before.top + by.y, now.width, now.height});
  }
}

// Over another box the drop would draw a join, where there is a row for it to end at. A group is only moved.
Cursor qbDiagramPane::CursorWhileMoving(const MovingBox& gesture, PixelPoint pointer) const {
  if (gesture.box->SelectedRow() == 0 || !gesture.others.empty()) return Cursor::Move;
  const TwipsPoint at = GetSurface().Scale().ToTwips(ToSurface(pointer));
  const auto under = std::ranges::find_if(stacking_.rbegin(), stacking_.rend(), [&](const auto& other) {
    return other != gesture.box && other->Bounds().Contains(at);
  });
  if (under == stacking_.rend()) return Cursor::Move;
  return (*under)->HitTest(at).row != 0 ? Cursor::Join : Cursor::NoDrop;
}

// What a user can make of a box: its caption can be read, and one row be seen.
PixelSize qbDiagramPane::SmallestBox() const {
  const BoxMetrics metrics = CurrentBoxMetrics();
  return {kNarrowestBox, metrics.captionHeight + metrics.rowHeight};
}

void qbDiagramPane::Drag(ResizingBox& gesture, const MouseEvent& event) {
  const ScreenScale scale = GetSurface().Scale();
  const PixelPoint moved = ToSurface(event.position) - gesture.start;
  PixelRect place = scale.ToPixels(gesture.before);
  const auto [narrowest, lowest] = SmallestBox();
  if ((gesture.edges & EdgeRight) != 0) place.width = std::max(place.width + moved.x, narrowest);
  if ((gesture.edges & EdgeBottom) != 0) place.height = std::max(place.height + moved.y, lowest);
  if ((gesture.edges & EdgeLeft) != 0) {
    const Pixels right = place.Right();
    place.left = std::clamp(place.left + moved.x, 0_px, std::max(right - narrowest, 0_px));
    place.width = right - place.left;
  }
  if ((gesture.edges & EdgeTop) != 0) {
    const Pixels bottom = place.Bottom();
    place.top = std::clamp(place.top + moved.y, 0_px, std::max(bottom - lowest, 0_px));
    place.height = bottom - place.top;
  }
  TwipsRect bounds = scale.ToTwips(place);
  if ((gesture.edges & (EdgeTop | EdgeBottom)) == 0) bounds.height = gesture.before.height;  // to the last bit
  const Ref<qbEntityList> box = gesture.box;
  box->SetBounds(bounds);
}

void qbDiagramPane::Drag(DraggingRow& gesture, const MouseEvent& event) {
  gesture.pointer = event.position;
  if (!gesture.dragging) {
    if (!IsFar(event.position, gesture.start)) return;
    gesture.dragging = true;
    GetSurface().SetTicking(true);
  }
  const PixelSize view = GetSurface().ViewSize();
  const PixelRect inside{-kAutoScrollZone, -kAutoScrollZone, view.width + kAutoScrollZone * 2,
                         view.height + kAutoScrollZone * 2};
  if (!inside.Contains(event.position)) {
    // The row leaves the diagram: from here on it is a text for whoever takes it.
    const bool isThere = gesture.box->PositionOf(gesture.row) != 0;
    const std::string text = gesture.box->Caption() + "." + gesture.row->Text();
    EndGesture();
    if (isThere) GetSurface().DragText(text);
    return;
  }
  AimAt(gesture, event.position);
}

void qbDiagramPane::AimAt(DraggingRow& gesture, PixelPoint point) {
  const PaneHit hit = HitTest(point);
  const bool illegal = IsAllColumns(*gesture.box, gesture.box->PositionOf(gesture.row)) ||
                       (hit.box && (hit.box == gesture.box || IsAllColumns(*hit.box, hit.part.row)));
  const bool legal = !illegal && hit.box && hit.part.row != 0;
  gesture.target = legal ? hit.box : nullptr;
  gesture.targetRow = legal ? hit.box->Rows().At(hit.part.row) : nullptr;
  // The no-drop sign only over what can be no target, not on the way there.
  GetSurface().SetCursor(legal ? Cursor::Join : hit.box && illegal ? Cursor::NoDrop : Cursor::Arrow);
  Refresh();
}

void qbDiagramPane::Drag(ScrollingList& gesture, const MouseEvent& event) {
  const Ref<qbEntityList> box = gesture.box;
  box->ScrollTo(box->FirstRowAt(GetSurface().Scale().TwipsY(ToSurface(event.position).y) - gesture.grip));
}

void qbDiagramPane::Drag(Panning& gesture, const MouseEvent& event) {
  GetSurface().SetCursor(Cursor::Move);
  const PixelPoint moved = event.position - gesture.start;
  OnScroll(Orientation::Horizontal, gesture.horizontal - static_cast<int>(moved.x.Value()));
  OnScroll(Orientation::Vertical, gesture.vertical - static_cast<int>(moved.y.Value()));
  UpdateScrollBars();
}

// The frame selects the boxes that it touches; where it began is a place of the surface, whatever is scrolled
// meanwhile.
void qbDiagramPane::Drag(Framing& gesture, const MouseEvent& event) {
  if ((event.button & gestureButton_) == 0) return EndGesture();  // its release went elsewhere
  gesture.pointer = event.position;
  if (!gesture.framing && IsFar(event.position, ToPane({gesture.start.x, gesture.start.y, {}, {}}).TopLeft())) {
    gesture.framing = true;
    GetSurface().SetCapture(true);
    GetSurface().SetTicking(true);
  }
  if (gesture.framing) Refresh();
}

PixelRect qbDiagramPane::Frame(const Framing& gesture, PixelPoint corner) {
  const auto [left, right] = std::minmax(gesture.start.x, corner.x);
  const auto [top, bottom] = std::minmax(gesture.start.y, corner.y);
  return {left, top, right - left, bottom - top};
}

void qbDiagramPane::Drop(const Framing& gesture) {
  if (!gesture.framing) return;
  const TwipsRect frame = GetSurface().Scale().ToTwips(Frame(gesture, ToSurface(gesture.pointer)));
  std::vector<Ref<qbEntity>> group = SelectedEntities();
  for (std::int32_t i = 1; i <= entities_->Count(); ++i) {
    const Ref<qbEntity> entity = entities_->Item(i);
    if (entity->EntityBox()->Bounds().Overlaps(frame) && !IsSelected(entity)) group.push_back(entity);
  }
  SelectGroup(std::move(group));
}

void qbDiagramPane::ScrollNearEdges(PixelPoint at) {
  const PixelSize view = GetSurface().ViewSize();
  if (at.x < kAutoScrollZone) ScrollBy(Orientation::Horizontal, -kAutoScrollStep);
  if (at.x > view.width - kAutoScrollZone) ScrollBy(Orientation::Horizontal, kAutoScrollStep);
  if (at.y < kAutoScrollZone) ScrollBy(Orientation::Vertical, -kAutoScrollStep);
  if (at.y > view.height - kAutoScrollZone) ScrollBy(Orientation::Vertical, kAutoScrollStep);
}

// Near the edges of the pane the surface scrolls by itself, and near those of a box its list does.
void qbDiagramPane::OnTick() {
  if (auto* moving = std::get_if<MovingBox>(&gesture_); moving && moving->moving) {
    const PixelPoint at = moving->pointer;
    ScrollNearEdges(at);
    Drag(*moving, {gestureButton_, ShiftNone, at});  // the box stays under the pointer
    return;
  }
  if (const auto* frame = std::get_if<Framing>(&gesture_)) {
    ScrollNearEdges(frame->pointer);
    return;
  }
  auto* row = std::get_if<DraggingRow>(&gesture_);
  if (!row || !row->dragging) return;
  const PixelPoint at = row->pointer;
  ScrollNearEdges(at);
  const PaneHit hit = HitTest(at);
  if (hit.box && hit.box != row->box) {
    const PixelRect place = PlaceOf(*hit.box);
    const std::size_t first = hit.box->FirstVisibleRow();
    const Pixels listTop = place.top + CurrentBoxMetrics().captionHeight * zoom_;
    const Pixels zone = std::min(kAutoScrollZone, (place.Bottom() - listTop) / 3);  // they never meet
    if (at.y > place.Bottom() - zone) hit.box->ScrollTo(first + 1);
    if (at.y > listTop && at.y < listTop + zone && first > 1) hit.box->ScrollTo(first - 1);
  }
  AimAt(*row, at);
}

// --- Dropping ---

void qbDiagramPane::OnMouseUp(const MouseEvent& event) {
  if (!std::holds_alternative<NoGesture>(gesture_) && event.button != gestureButton_) return;
  if (auto* row = std::get_if<DraggingRow>(&gesture_); row && row->dragging) AimAt(*row, event.position);
  const Gesture gesture = gesture_;
  EndGesture();
  if (const auto* moving = std::get_if<MovingBox>(&gesture)) Drop(*moving, event);
  if (const auto* resizing = std::get_if<ResizingBox>(&gesture)) {
    RecordPlaces(kStepResizeTable, {{resizing->box, resizing->before}});
  }
  if (const auto* row = std::get_if<DraggingRow>(&gesture)) Drop(*row);
  if (const auto* frame = std::get_if<Framing>(&gesture)) Drop(*frame);
  const PaneHit hit = HitTest(event.position);
  const Ref<Object> object = hit.box ? hit.box->Entity() : hit.line ? Ref<Object>(hit.line->Relationship()) : nullptr;
  if (hit.box) {
    if (object) ObjectMouseUp.Raise(event.button, event.shift, X(event), Y(event), object);
  } else if (!hit.line) {
    MouseUp.Raise(event.button, event.shift, X(event), Y(event));
  }
  if (event.button == ButtonRight) ShowContextMenu(object, hit.part.row, event.position);
}

// A box that is dropped on a row of another box draws a join from its own current row, and goes back to where it was.
void qbDiagramPane::Drop(const MovingBox& gesture, const MouseEvent& event) {
  if (!gesture.moving && (event.shift & ShiftCtrl) == 0)
    SelectObject(gesture.box->Entity());  // a click: this one alone
  if (!gesture.moving || DropOnRow(gesture, event)) return;
  std::vector<BoxPlace> before = gesture.others;
  before.insert(before.begin(), {gesture.box, gesture.before});
  RecordPlaces(kStepMoveTables, before);
}

// Whether that was the row of another box.
bool qbDiagramPane::DropOnRow(const MovingBox& gesture, const MouseEvent& event) {
  if (!gesture.others.empty()) return false;
  const TwipsPoint at = GetSurface().Scale().ToTwips(ToSurface(event.position));
  const Ref<qbEntity> source = EntityOf(*gesture.box);
  const std::size_t sourceRow = gesture.box->SelectedRow();
  if (!source || IsAllColumns(*gesture.box, sourceRow)) return false;
  const auto under = std::ranges::find_if(stacking_.rbegin(), stacking_.rend(), [&](const auto& other) {
    return other != gesture.box && other->Bounds().Contains(at);
  });
  if (under == stacking_.rend()) return false;
  const Ref<qbEntityList> other = *under;
  const std::size_t row = other->HitTest(at).row;
  if (IsAllColumns(*other, row)) return false;
  gesture.box->SetBounds(gesture.before);
  if (const Ref<qbEntity> target = EntityOf(*other)) AddJoin(source, sourceRow, target, row, false);
  return true;
}

void qbDiagramPane::Drop(const DraggingRow& gesture) {
  const std::size_t row = gesture.box->PositionOf(gesture.row);
  const std::size_t targetRow = gesture.target ? gesture.target->PositionOf(gesture.targetRow) : 0;
  if (!gesture.dragging || row == 0 || targetRow == 0) return;
  const Ref<qbEntity> source = EntityOf(*gesture.box);
  const Ref<qbEntity> target = EntityOf(*gesture.target);
  if (source && target) AddJoin(source, row, target, targetRow, true);
}

void qbDiagramPane::AddJoin(const Ref<qbEntity>& source, std::size_t sourceRow, const Ref<qbEntity>& target,
                            std::size_t targetRow, bool onlyOnce) {
  const auto from = static_cast<std::int32_t>(sourceRow);
  const auto to = static_cast<std::int32_t>(targetRow);
  if (onlyOnce && source->Relationships()->Exists(source, target, from, to)) return;
  const Ref<QueryContext> context = Context();
  const StepScope step(context, kStepAddJoin);
  const Ref<qbRelationship> join = source->Relationships()->Add(target);
  join->SetSourceItemIndex(from);
  join->SetTargetItemIndex(to);
  SelectObject(join);
  if (context) context->RaiseInfo(InfoRelationshipAdded, Ref<Object>(join));
}

bool qbDiagramPane::OnDragOver(const std::string& text, const MouseEvent& event) {
  if (oleDropMode_ != OLEDropManual) return false;
  std::int32_t effect = 1;
  const DragOverStateEnum state = draggedOver_ ? DragOver : DragEnter;
  draggedOver_ = text;
  dragPlace_ = event.position;
  OLEDragOver.Raise(text, effect, event.button, event.shift, X(event), Y(event), state);
  return effect != 0;
}

void qbDiagramPane::OnDragLeave() {
  const std::optional<std::string> text = std::exchange(draggedOver_, std::nullopt);
  if (!text || oleDropMode_ != OLEDropManual) return;
  std::int32_t effect = 0;
  const MouseEvent event{ButtonNone, ShiftNone, dragPlace_};
  OLEDragOver.Raise(*text, effect, event.button, event.shift, X(event), Y(event), DragLeave);
}

void qbDiagramPane::OnDrop(const std::string& text, const MouseEvent& event) {
  draggedOver_.reset();
  std::int32_t effect = 1;
  if (oleDropMode_ == OLEDropManual) OLEDragDrop.Raise(text, effect, event.button, event.shift, X(event), Y(event));
}

// --- Double click, pointing, wheel ---

void qbDiagramPane::OnDoubleClick(const MouseEvent& event) {
  if (event.button != ButtonLeft || spaceHeld_) {
    OnMouseDown(event);  // two quick presses that pan or open menus are two presses
    return;
  }
  const PaneHit hit = HitTest(event.position);
  if (hit.box) {
    const Ref<qbEntity> entity = EntityOf(*hit.box);
    if (!entity) return;
    EntityDblClick.Raise(entity);
    if (!hit.box->Entity()) return;
    // The second click of two on a check box is a click of its own.
    if (hit.part.part == BoxPart::CheckBox || hit.part.part == BoxPart::MinimizeButton) PressBox(hit, event);
    if (hit.part.part == BoxPart::Caption || hit.part.part == BoxPart::Edge) {
      EndGesture();
      FitToRows(hit.box);
    }
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

Cursor qbDiagramPane::CursorFor(const PaneHit& hit) const {
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

void qbDiagramPane::SetHover(const PaneHit& hit) {
  GetSurface().SetCursor(CursorFor(hit));
  if (hit.box == hover_.box && hit.line == hover_.line && hit.part == hover_.part) return;
  hover_ = hit;
  Refresh();
}

void qbDiagramPane::OnWheel(const WheelEvent& event) {
  if ((event.shift & ShiftCtrl) != 0) {
    constexpr double kZoomStep = 1.1;
    SetZoom(zoom_ * std::pow(kZoomStep, -event.linesY / 3), event.position);
    return;
  }
  const PaneHit hit = HitTest(event.position);
  // A list that is longer than its box scrolls itself; otherwise the surface does.
  if (hit.box && event.shift == ShiftNone && hit.box->LastFirstRow() > 1) {
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

std::string qbDiagramPane::ToolTipAt(PixelPoint point) const {
  const PaneHit hit = HitTest(point);
  if (hit.line) {
    const Ref<qbRelationship> join = hit.line->Relationship();
    if (!join) return {};
    return DescribeEnds(*join) + "\n" +
           Say(Context(), DescribeJoin(join->Source()->Caption(), join->Target()->Caption(), join->Kind())) +
           (hit.line->JoinsDifferentTypes() ? "\n" + Say(Context(), text::DifferentTypes) : "");
  }
  if (!hit.box) return {};
  if (hit.part.part == BoxPart::Caption) return hit.box->Caption();
  const Ref<BoxRow> row = hit.box->Rows().At(hit.part.row);
  if (!row) return {};
  return row->ToolTipText().empty() ? row->Text() : row->ToolTipText();
}

}  // namespace zrqrybld
