// DiagramGestures: what the pointer does while a button is held: moving and sizing boxes, drawing joins, scrolling,
// panning, framing.
//
// The mouse begins a gesture and passes on what happens; one goes on at a time.
#pragma once

#include <cstdint>
#include <optional>
#include <variant>
#include <vector>

#include "zrqrybld/base/units.h"
#include "zrqrybld/diagram/diagram_scene.h"
#include "zrqrybld/platform/surface.h"

namespace zrqrybld {

class DiagramCamera;
class DiagramEdits;
class DiagramSelection;
class DiagramSite;
class qbEntities;
struct DiagramProperties;
struct MouseEvent;

class DiagramGestures {
 public:
  /// A row on its way to another box, where it draws a join, or out of the pane, where it is a text.
  struct DraggingRow {
    Ref<qbEntityList> box;
    Ref<BoxRow> row;  ///< the row itself: others may come and go meanwhile
    PixelPoint start;
    PixelPoint pointer;
    bool dragging = false;
    Ref<qbEntityList> target;  ///< the box under the pointer with a row where the join may end
    Ref<BoxRow> targetRow;
  };

  DiagramGestures(DiagramSite& site, const DiagramProperties& properties, qbEntities& entities, DiagramScene& scene,
                  DiagramSelection& selection, DiagramCamera& camera, DiagramEdits& edits)
      : site_(site),
        properties_(properties),
        entities_(entities),
        scene_(scene),
        selection_(selection),
        camera_(camera),
        edits_(edits) {}

  // --- Beginning, at a press of the button ---

  void BeginPanning(const MouseEvent& event);
  /// With the box under the pointer, all others that are selected.
  void BeginMoving(const Ref<qbEntityList>& box, const MouseEvent& event);
  void BeginResizing(const DiagramHit& hit, const MouseEvent& event);
  void BeginScrollingList(const Ref<qbEntityList>& box, const MouseEvent& event);
  void BeginDraggingRow(const Ref<qbEntityList>& box, const Ref<BoxRow>& row, const MouseEvent& event);
  /// The mouse is captured only when it has moved: a listener may have opened a window.
  void BeginFraming(const MouseEvent& event);

  // --- Going on ---

  bool UnderWay() const { return !std::holds_alternative<NoGesture>(gesture_); }
  /// The button that holds it; others neither end nor replace it.
  std::int32_t Button() const { return button_; }
  void Move(const MouseEvent& event);
  /// Time has passed: near the edges of the pane the surface scrolls by itself, and near those of a box its list does.
  void Tick();
  /// The button is let go: does what the gesture was for.
  void Release(const MouseEvent& event);
  /// It ends where it is.
  void End();
  /// What it has changed so far is taken back. Returns whether there was one.
  bool Cancel();

  // --- What is painted of it ---

  /// The row that is dragged; nothing while there is none.
  const DraggingRow* RowDrag() const;
  /// The frame on the surface; nothing while there is none.
  std::optional<PixelRect> Frame() const;

 private:
  struct NoGesture {};
  struct MovingBox {
    Ref<qbEntityList> box;
    PixelPoint grip;   // from the box's corner to the pointer, on the surface
    PixelPoint start;  // the pointer at first
    TwipsRect before;
    std::vector<BoxPlace> others;  // which move along, and where they stood
    PixelPoint pointer;
    bool moving = false;
  };
  struct ResizingBox {
    Ref<qbEntityList> box;
    std::uint8_t edges;
    PixelPoint start;  // on the surface
    TwipsRect before;
  };
  struct ScrollingList {
    Ref<qbEntityList> box;
    Twips grip;  // from the scroll mark's top to the pointer
  };
  struct Panning {
    PixelPoint start;
    int horizontal;
    int vertical;
  };
  struct Framing {
    PixelPoint start;  // on the surface
    PixelPoint pointer;
    bool framing = false;
  };
  using Gesture = std::variant<NoGesture, MovingBox, ResizingBox, DraggingRow, ScrollingList, Panning, Framing>;

  void Begin(Gesture gesture, std::int32_t button);
  void Drag(MovingBox& gesture, const MouseEvent& event);
  void Drag(ResizingBox& gesture, const MouseEvent& event);
  void Drag(DraggingRow& gesture, const MouseEvent& event);
  void Drag(ScrollingList& gesture, const MouseEvent& event);
  void Drag(Panning& gesture, const MouseEvent& event);
  void Drag(Framing& gesture, const MouseEvent& event);
  void Drag(NoGesture&, const MouseEvent&) {}
  void Drop(const MovingBox& gesture, const MouseEvent& event);
  bool DropOnRow(const MovingBox& gesture, const MouseEvent& event);
  void Drop(const DraggingRow& gesture);
  void Drop(const Framing& gesture);
  void AimAt(DraggingRow& gesture, PixelPoint point);
  void ScrollListNearEdges(qbEntityList& box, PixelPoint point);
  Cursor CursorWhileMoving(const MovingBox& gesture, PixelPoint at) const;
  PixelRect FrameOf(const Framing& gesture) const;

  DiagramSite& site_;
  const DiagramProperties& properties_;
  qbEntities& entities_;
  DiagramScene& scene_;
  DiagramSelection& selection_;
  DiagramCamera& camera_;
  DiagramEdits& edits_;
  Gesture gesture_;
  std::int32_t button_ = 0;  // that the gesture began with; 0 for none
};

}  // namespace zrqrybld
