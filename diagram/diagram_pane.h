// qbDiagramPane: the pane that shows the tables of a query as boxes and their joins as lines.
//
// It owns the diagram's model (`Entities`) and makes and disposes of the boxes and lines that the
// model asks for. The hub links it to the other panes; it also works alone.
#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "base/event.h"
#include "base/object.h"
#include "diagram/diagram_view.h"
#include "diagram/entities.h"
#include "diagram/entity_box.h"
#include "diagram/join_line.h"
#include "host/query_context.h"
#include "platform/control.h"
#include "platform/property_store.h"

namespace zrqrybld {

/// Whether a pane takes drops from outside.
enum OLEDropModeEnum : std::int32_t { OLEDropNone = 0, OLEDropManual = 1 };

class qbDiagramPane final : public Control, private DiagramView {
 public:
  /// An empty pane, linked to no hub and shown in no window.
  static Ref<qbDiagramPane> Create();
  ~qbDiagramPane() override;
  std::string_view TypeName() const override { return "qbDiagramPane"; }

  // --- Events, in interface order ---

  /// An entity or relationship becomes the selected object.
  Event<const Ref<Object>&> ObjectActivate;
  /// The selected object stops being selected.
  Event<const Ref<Object>&> ObjectDeactivate;
  /// Double click on the empty surface, or on a join (which is then the `SelectedObject`).
  Event<> DblClick;
  /// Click on the empty surface.
  Event<> Click;
  /// The mouse on the empty surface: `MouseButton`, `ShiftMask` bits, place in pixels.
  Event<std::int32_t, std::int32_t, float, float> MouseUp;
  Event<std::int32_t, std::int32_t, float, float> MouseDown;
  Event<std::int32_t, std::int32_t, float, float> MouseMove;
  /// The mouse over an entity's box: as above, and the entity.
  Event<std::int32_t, std::int32_t, float, float, const Ref<Object>&> ObjectMouseMove;
  Event<std::int32_t, std::int32_t, float, float, const Ref<Object>&> ObjectMouseDown;
  Event<std::int32_t, std::int32_t, float, float, const Ref<Object>&> ObjectMouseUp;
  /// A row of a box is clicked.
  Event<const Ref<qbEntity>&, const Ref<qbEntityItem>&> EntityItemClick;
  /// A column is ticked or unticked, by the user or by program.
  Event<const Ref<qbEntity>&, const Ref<qbEntityItem>&> EntityItemCheck;
  Event<const Ref<qbEntity>&> EntityClick;
  Event<const Ref<qbEntity>&> EntityDblClick;
  /// The Delete key is about to remove the selected object; the second argument set to true keeps it.
  Event<const Ref<Object>&, bool&> BeforeDeleteObject;
  /// A key on the pane, before the pane acts on it: `KeyCode` (0 makes the pane ignore it), `ShiftMask` bits.
  Event<std::int32_t&, std::int32_t> KeyDown;
  Event<std::int32_t&, std::int32_t> KeyUp;

  // --- Properties and methods, in interface order ---

  /// Removes every entity; the grid is emptied and the statement written anew.
  void Clear();

  /// The tables of the diagram.
  const Ref<qbEntities>& Entities() const { return entities_; }

  /// Repaints the pane.
  void Refresh() { GetSurface().InvalidateAll(); }

  /// The selected entity or relationship, or nothing.
  Ref<Object> SelectedObject() const override { return selected_; }

  /// The hub that the pane is linked to, or nothing.
  Ref<qbQueryBuilder> QueryBuilder() const;

  /// The font of the rows; an empty one is that of the surroundings.
  const Font& EntityFont() const { return entityFont_; }
  void SetEntityFont(const Font& font);
  Color EntityForeColor() const { return entityForeColor_; }
  void SetEntityForeColor(Color color);
  Color EntityBackColor() const { return entityBackColor_; }
  void SetEntityBackColor(Color color);
  /// The colour of the surface; the default, system colour 12, follows the theme.
  Color BackColor() const { return backColor_; }
  void SetBackColor(Color color);
  /// The font of the caption bars.
  const Font& EntityCaptionFont() const { return entityCaptionFont_; }
  void SetEntityCaptionFont(const Font& font);
  Color EntityFrameColor() const { return entityFrameColor_; }
  void SetEntityFrameColor(Color color);
  /// Whether entities that are added from now on show a minimise button.
  bool EntityMinimizeButton() const override { return entityMinimizeButton_; }
  void SetEntityMinimizeButton(bool show) { entityMinimizeButton_ = show; }

  /// Makes an entity or relationship of this pane the selected object; nothing, or what was removed from the
  /// diagram, drops the selection.
  void SelectObject(const Ref<Object>& object);
  void DropSelection() override;

  // --- For the hub ---

  /// Links the pane to what the designer shares, or to nothing.
  void SetContext(const Ref<QueryContext>& context) { context_ = context; }
  Ref<QueryContext> Context() const override { return context_.lock(); }

  // --- Window events ---

  void Paint(Canvas& canvas, const PixelRect& dirty) const override;
  void OnResize() override;
  void OnMouseDown(const MouseEvent& event) override;
  void OnMouseMove(const MouseEvent& event) override;
  void OnMouseUp(const MouseEvent& event) override;
  void OnDoubleClick(const MouseEvent& event) override;
  void OnMouseLeave() override;
  void OnWheel(const WheelEvent& event) override;
  void OnScroll(Orientation orientation, int value) override;
  bool OnKeyDown(const KeyEvent& event) override;
  void OnKeyUp(const KeyEvent& event) override;
  void OnFocusChanged(bool focused) override;
  std::string ToolTipAt(PixelPoint point) const override;

 protected:
  void OnSurfaceChanged() override;

 private:
  // What the pointer is doing while a button is held.
  struct NoGesture {};
  struct MovingBox {
    Ref<qbEntityList> box;
    PixelPoint grip;  // from the box's corner to the pointer
    TwipsRect before;
    bool moving = false;
    PixelPoint start;
  };
  using Gesture = std::variant<NoGesture, MovingBox>;

  // What the pane keeps for each box: its links live as long as the box is loaded.
  struct LoadedBox {
    Ref<qbEntityList> box;
    std::vector<EventConnection> links;
  };

  // What lies under a point of the pane.
  struct PaneHit {
    Ref<qbEntityList> box;
    BoxHit part;
    Ref<qbLine> line;
  };

  qbDiagramPane() = default;

  Ref<qbEntityList> LoadBox() override;
  void ShowBox(const Ref<qbEntityList>& box) override;
  void UnloadBox(const Ref<qbEntityList>& box) override;
  Ref<qbLine> LoadLine(const Ref<qbRelationship>& relationship, const Ref<qbEntityList>& source,
                       const Ref<qbEntityList>& target) override;
  void UnloadLine(const Ref<qbLine>& line) override;
  void FitBox(const Ref<qbEntityList>& box) override;

  BoxMetrics CurrentBoxMetrics() const;
  void ApplyAppearance();
  TwipsPoint PlaceFor(const qbEntityList& box) const;
  bool CoversAnother(const qbEntityList& box) const;
  void BoxMoved(const qbEntityList& box);
  void RouteLinesAt(const qbEntityList& box);
  void BoxRowChecked(const qbEntityList& box, const Ref<BoxRow>& row);
  void JoinChanged(const Ref<Object>& relationship);
  void JoinRemoved();

  PixelPoint ScrollOffset() const;
  PixelPoint ToSurface(PixelPoint point) const { return point + ScrollOffset(); }
  PixelRect PlaceOf(const qbEntityList& box) const;
  PixelSize ExtentOfBoxes() const;
  void UpdateScrollBars();
  void ScrollBy(Orientation orientation, int delta);
  PaneHit HitTest(PixelPoint point) const;
  static Ref<qbEntity> EntityOf(const qbEntityList& box);
  static bool IsInDiagram(const Ref<Object>& object);
  void RaiseToTop(const Ref<qbEntityList>& box);

  void PressBox(const PaneHit& hit, const MouseEvent& event);
  void DragBox(MovingBox& gesture, const MouseEvent& event);
  void SetHover(const PaneHit& hit);
  bool MoveSelectedBox(std::int32_t keyCode);
  bool MoveCurrentRow(int delta);
  bool ToggleCurrentRow();
  bool DeleteSelected();

  WeakRef<QueryContext> context_;
  Ref<qbEntities> entities_;
  std::vector<LoadedBox> boxes_;             // in order of loading: placement depends on it
  std::vector<Ref<qbEntityList>> stacking_;  // from the bottom to the top
  std::vector<Ref<qbLine>> lines_;
  Ref<Object> selected_;
  Ref<Object> leaving_;  // the object whose listeners are being told that it is not selected any more
  Gesture gesture_;
  PaneHit hover_;
  bool focused_ = false;
  ScrollState horizontal_;
  ScrollState vertical_;

  bool entityMinimizeButton_ = true;
  Color entityBackColor_ = Color::System(5);
  Color entityForeColor_ = Color::System(8);
  Color entityFrameColor_ = Color::System(15);
  Color backColor_ = Color::System(12);
  Font entityFont_;
  Font entityCaptionFont_;
};

}  // namespace zrqrybld
