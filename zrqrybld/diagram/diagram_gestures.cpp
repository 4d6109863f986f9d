#include "zrqrybld/diagram/diagram_gestures.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

#include "zrqrybld/diagram/diagram_camera.h"
#include "zrqrybld/diagram/diagram_edits.h"
#include "zrqrybld/diagram/diagram_properties.h"
#include "zrqrybld/diagram/diagram_selection.h"
#include "zrqrybld/diagram/diagram_site.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/host/step_names.h"
#include "zrqrybld/platform/input.h"

namespace zrqrybld {
namespace {

constexpr Pixels kDragDistance = 4_px;

bool IsFar(PixelPoint a, PixelPoint b) {
  return std::hypot((a.x - b.x).Value(), (a.y - b.y).Value()) >= kDragDistance.Value();
}

bool IsAllColumns(const qbEntityList& box, std::size_t row) {
  const Ref<BoxRow> hit = box.Rows().At(row);
  return !hit || hit->Text() == "*";
}

}  // namespace

// --- Beginning ---

void DiagramGestures::Begin(Gesture gesture, std::int32_t button) {
  gesture_ = std::move(gesture);
  button_ = button;
  site_.GetSurface().SetCapture(true);
}

void DiagramGestures::BeginPanning(const MouseEvent& event) {
  Begin(Panning{event.position, camera_.Bar(Orientation::Horizontal).value, camera_.Bar(Orientation::Vertical).value},
        event.button);
}

void DiagramGestures::BeginMoving(const Ref<qbEntityList>& box, const MouseEvent& event) {
  const PixelRect place = site_.GetSurface().Scale().ToPixels(box->Bounds());
  MovingBox gesture{box,
                    camera_.ToSurface(event.position) - PixelPoint{place.left, place.top},
                    event.position,
                    box->Bounds(),
                    {},
                    event.position,
                    false};
  for (const Ref<qbEntity>& entity : selection_.Entities()) {
    const Ref<qbEntityList>& other = entity->EntityBox();
    if (other != box) gesture.others.emplace_back(other, other->Bounds());
  }
  Begin(std::move(gesture), event.button);
}

void DiagramGestures::BeginResizing(const DiagramHit& hit, const MouseEvent& event) {
  Begin(ResizingBox{hit.box, hit.part.edges, camera_.ToSurface(event.position), hit.box->Bounds()}, event.button);
}

void DiagramGestures::BeginScrollingList(const Ref<qbEntityList>& box, const MouseEvent& event) {
  const Twips y = site_.GetSurface().Scale().TwipsY(camera_.ToSurface(event.position).y);
  Begin(ScrollingList{box, y - box->ScrollMarkTop()}, event.button);
}

void DiagramGestures::BeginDraggingRow(const Ref<qbEntityList>& box, const Ref<BoxRow>& row, const MouseEvent& event) {
  Begin(DraggingRow{box, row, event.position, event.position, false, nullptr, nullptr}, event.button);
}

void DiagramGestures::BeginFraming(const MouseEvent& event) {
  gesture_ = Framing{camera_.ToSurface(event.position), event.position};
  button_ = event.button;
}

// --- Ending ---

void DiagramGestures::End() {
  if (!UnderWay()) return;
  gesture_ = NoGesture{};
  Surface& surface = site_.GetSurface();
  surface.SetTicking(false);
  surface.SetCapture(false);
  surface.SetCursor(Cursor::Arrow);
  site_.Refresh();
}

bool DiagramGestures::Cancel() {
  if (!UnderWay()) return false;
  if (const auto* moving = std::get_if<MovingBox>(&gesture_)) {
    const MovingBox taken = *moving;
    taken.box->SetBounds(taken.before);
    for (const auto& [box, before] : taken.others) box->SetBounds(before);
  }
  if (const auto* resizing = std::get_if<ResizingBox>(&gesture_)) resizing->box->SetBounds(resizing->before);
  End();
  return true;
}

// --- Dragging ---

void DiagramGestures::Move(const MouseEvent& event) {
  std::visit([&](auto& gesture) { Drag(gesture, event); }, gesture_);
}

void DiagramGestures::Drag(MovingBox& gesture, const MouseEvent& event) {
  if (!gesture.moving && !IsFar(event.position, gesture.start)) return;
  gesture.moving = true;
  gesture.pointer = event.position;
  Surface& surface = site_.GetSurface();
  surface.SetTicking(true);
  surface.SetCursor(CursorWhileMoving(gesture, event.position));
  const TwipsPoint corner = surface.Scale().ToTwips(camera_.ToSurface(event.position) - gesture.grip);
  TwipsPoint by = corner - TwipsPoint{gesture.before.left, gesture.before.top};
  // The group keeps its shape and stays on the surface.
  by = {std::max(by.x, -gesture.before.left), std::max(by.y, -gesture.before.top)};
  for (const auto& [box, before] : gesture.others) by = {std::max(by.x, -before.left), std::max(by.y, -before.top)};
  std::vector<BoxPlace> boxes = gesture.others;
  boxes.emplace_back(gesture.box, gesture.before);
  for (const auto& [box, before] : boxes) {
    const TwipsRect now = box->Bounds();
    box->SetBounds({before.left + by.x, before.top + by.y, now.width, now.height});
  }
}

// Over another box the drop would draw a join, where there is a row for it to end at. A group is only moved.
Cursor DiagramGestures::CursorWhileMoving(const MovingBox& gesture, PixelPoint pointer) const {
  if (gesture.box->SelectedRow() == 0 || !gesture.others.empty()) return Cursor::Move;
  const TwipsPoint at = site_.GetSurface().Scale().ToTwips(camera_.ToSurface(pointer));
  const Ref<qbEntityList> under = scene_.BoxAt(at, *gesture.box);
  if (!under) return Cursor::Move;
  return under->HitTest(at).row != 0 ? Cursor::Join : Cursor::NoDrop;
}

void DiagramGestures::Drag(ResizingBox& gesture, const MouseEvent& event) {
  const ScreenScale scale = site_.GetSurface().Scale();
  const PixelPoint moved = camera_.ToSurface(event.position) - gesture.start;
  PixelRect place = scale.ToPixels(gesture.before);
  const auto [narrowest, lowest] = properties_.SmallestBoxOn(site_.GetSurface());
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

void DiagramGestures::Drag(DraggingRow& gesture, const MouseEvent& event) {
  gesture.pointer = event.position;
  if (!gesture.dragging) {
    if (!IsFar(event.position, gesture.start)) return;
    gesture.dragging = true;
    site_.GetSurface().SetTicking(true);
  }
  const PixelSize view = site_.GetSurface().ViewSize();
  const PixelRect inside{-kAutoScrollZone, -kAutoScrollZone, view.width + kAutoScrollZone * 2,
                         view.height + kAutoScrollZone * 2};
  if (!inside.Contains(event.position)) {
    // The row leaves the diagram: from here on it is a text for whoever takes it.
    const bool isThere = gesture.box->PositionOf(gesture.row) != 0;
    const std::string text = gesture.box->Caption() + "." + gesture.row->Text();
    End();
    if (isThere) site_.GetSurface().DragText(text);
    return;
  }
  AimAt(gesture, event.position);
}

void DiagramGestures::AimAt(DraggingRow& gesture, PixelPoint point) {
  const DiagramHit hit = camera_.HitTest(point);
  const bool illegal = IsAllColumns(*gesture.box, gesture.box->PositionOf(gesture.row)) ||
                       (hit.box && (hit.box == gesture.box || IsAllColumns(*hit.box, hit.part.row)));
  const bool legal = !illegal && hit.box && hit.part.row != 0;
  gesture.target = legal ? hit.box : nullptr;
  gesture.targetRow = legal ? hit.box->Rows().At(hit.part.row) : nullptr;
  // The no-drop sign only over what can be no target, not on the way there.
  site_.GetSurface().SetCursor(legal ? Cursor::Join : hit.box && illegal ? Cursor::NoDrop : Cursor::Arrow);
  site_.Refresh();
}

void DiagramGestures::Drag(ScrollingList& gesture, const MouseEvent& event) {
  const Ref<qbEntityList> box = gesture.box;
  const Twips y = site_.GetSurface().Scale().TwipsY(camera_.ToSurface(event.position).y);
  box->ScrollTo(box->FirstRowAt(y - gesture.grip));
}

void DiagramGestures::Drag(Panning& gesture, const MouseEvent& event) {
  site_.GetSurface().SetCursor(Cursor::Move);
  const PixelPoint moved = event.position - gesture.start;
  camera_.ScrollTo(Orientation::Horizontal, gesture.horizontal - static_cast<int>(moved.x.Value()));
  camera_.ScrollTo(Orientation::Vertical, gesture.vertical - static_cast<int>(moved.y.Value()));
  camera_.UpdateScrollBars();
}

// The frame selects the boxes that it touches; where it began is a place of the surface, whatever is scrolled
// meanwhile.
void DiagramGestures::Drag(Framing& gesture, const MouseEvent& event) {
  if ((event.button & button_) == 0) return End();  // its release went elsewhere
  gesture.pointer = event.position;
  const PixelPoint start = camera_.ToPane({gesture.start.x, gesture.start.y, {}, {}}).TopLeft();
  if (!gesture.framing && IsFar(event.position, start)) {
    gesture.framing = true;
    site_.GetSurface().SetCapture(true);
    site_.GetSurface().SetTicking(true);
  }
  if (gesture.framing) site_.Refresh();
}

// --- While time passes ---

void DiagramGestures::Tick() {
  if (auto* moving = std::get_if<MovingBox>(&gesture_); moving && moving->moving) {
    const PixelPoint at = moving->pointer;
    camera_.ScrollNearEdges(at);
    Drag(*moving, {button_, ShiftNone, at});  // the box stays under the pointer
    return;
  }
  if (const auto* frame = std::get_if<Framing>(&gesture_)) {
    camera_.ScrollNearEdges(frame->pointer);
    return;
  }
  auto* row = std::get_if<DraggingRow>(&gesture_);
  if (!row || !row->dragging) return;
  const PixelPoint at = row->pointer;
  camera_.ScrollNearEdges(at);
  const DiagramHit hit = camera_.HitTest(at);
  if (hit.box && hit.box != row->box) ScrollListNearEdges(*hit.box, at);
  AimAt(*row, at);
}

void DiagramGestures::ScrollListNearEdges(qbEntityList& box, PixelPoint at) {
  const PixelRect place = camera_.PlaceOf(box);
  const std::size_t first = box.FirstVisibleRow();
  const Pixels listTop = place.top + properties_.MetricsOn(site_.GetSurface()).captionHeight * camera_.Zoom();
  const Pixels zone = std::min(kAutoScrollZone, (place.Bottom() - listTop) / 3);  // they never meet
  if (at.y > place.Bottom() - zone) box.ScrollTo(first + 1);
  if (at.y > listTop && at.y < listTop + zone && first > 1) box.ScrollTo(first - 1);
}

// --- Dropping ---

void DiagramGestures::Release(const MouseEvent& event) {
  if (auto* row = std::get_if<DraggingRow>(&gesture_); row && row->dragging) AimAt(*row, event.position);
  const Gesture gesture = gesture_;
  End();
  if (const auto* moving = std::get_if<MovingBox>(&gesture)) Drop(*moving, event);
  if (const auto* resizing = std::get_if<ResizingBox>(&gesture)) {
    edits_.RecordPlaces(kStepResizeTable, {{resizing->box, resizing->before}});
  }
  if (const auto* row = std::get_if<DraggingRow>(&gesture)) Drop(*row);
  if (const auto* frame = std::get_if<Framing>(&gesture)) Drop(*frame);
}

// A box that is dropped on a row of another box draws a join from its own current row, and goes back to where it was.
void DiagramGestures::Drop(const MovingBox& gesture, const MouseEvent& event) {
  if (!gesture.moving && (event.shift & ShiftCtrl) == 0) {
    selection_.Select(gesture.box->Entity());  // a click: this one alone
  }
  if (!gesture.moving || DropOnRow(gesture, event)) return;
  std::vector<BoxPlace> before = gesture.others;
  before.insert(before.begin(), {gesture.box, gesture.before});
  edits_.RecordPlaces(kStepMoveTables, before);
}

// Whether that was the row of another box.
bool DiagramGestures::DropOnRow(const MovingBox& gesture, const MouseEvent& event) {
  if (!gesture.others.empty()) return false;
  const TwipsPoint at = site_.GetSurface().Scale().ToTwips(camera_.ToSurface(event.position));
  const Ref<qbEntity> source = EntityOf(*gesture.box);
  const std::size_t sourceRow = gesture.box->SelectedRow();
  if (!source || IsAllColumns(*gesture.box, sourceRow)) return false;
  const Ref<qbEntityList> other = scene_.BoxAt(at, *gesture.box);
  if (!other) return false;
  const std::size_t row = other->HitTest(at).row;
  if (IsAllColumns(*other, row)) return false;
  gesture.box->SetBounds(gesture.before);
  if (const Ref<qbEntity> target = EntityOf(*other)) edits_.AddJoin(source, sourceRow, target, row, false);
  return true;
}

void DiagramGestures::Drop(const DraggingRow& gesture) {
  const std::size_t row = gesture.box->PositionOf(gesture.row);
  const std::size_t targetRow = gesture.target ? gesture.target->PositionOf(gesture.targetRow) : 0;
  if (!gesture.dragging || row == 0 || targetRow == 0) return;
  const Ref<qbEntity> source = EntityOf(*gesture.box);
  const Ref<qbEntity> target = EntityOf(*gesture.target);
  if (source && target) edits_.AddJoin(source, row, target, targetRow, true);
}

void DiagramGestures::Drop(const Framing& gesture) {
  if (!gesture.framing) return;
  const TwipsRect frame = site_.GetSurface().Scale().ToTwips(FrameOf(gesture));
  std::vector<Ref<qbEntity>> group = selection_.Entities();
  for (const Ref<qbEntity>& entity : entities_) {
    if (entity->EntityBox()->Bounds().Overlaps(frame) && !selection_.Contains(entity)) group.push_back(entity);
  }
  selection_.SelectGroup(std::move(group));
}

// --- What is painted of it ---

const DiagramGestures::DraggingRow* DiagramGestures::RowDrag() const {
  const auto* row = std::get_if<DraggingRow>(&gesture_);
  return row && row->dragging ? row : nullptr;
}

std::optional<PixelRect> DiagramGestures::Frame() const {
  const auto* framing = std::get_if<Framing>(&gesture_);
  return framing && framing->framing ? std::optional(FrameOf(*framing)) : std::nullopt;
}

PixelRect DiagramGestures::FrameOf(const Framing& gesture) const {
  const PixelPoint corner = camera_.ToSurface(gesture.pointer);
  const auto [left, right] = std::minmax(gesture.start.x, corner.x);
  const auto [top, bottom] = std::minmax(gesture.start.y, corner.y);
  return {left, top, right - left, bottom - top};
}

}  // namespace zrqrybld
