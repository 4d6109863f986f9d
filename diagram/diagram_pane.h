// qbDiagramPane: the pane that shows the tables of a query as boxes and their joins as lines.
//
// It owns the diagram's model (`Entities`) and makes and disposes of the boxes and lines that the
// model asks for. The hub links it to the other panes; it also works alone.
#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <variant>
#include <vector>

#include "base/event.h"
#include "base/free_numbers.h"
#include "base/object.h"
#include "base/ordered_list.h"
#include "diagram/diagram_view.h"
#include "diagram/entities.h"
#include "diagram/entity_box.h"
#include "diagram/join_line.h"
#include "diagram/placement.h"
#include "host/query_context.h"
#include "platform/control.h"
#include "platform/image.h"
#include "platform/property_store.h"

namespace zrqrybld {

/// The surface begins this far inside the pane, so that no box sticks to the edge of the window.
inline constexpr Pixels kSurfaceMargin = 12_px;

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
  /// A button is released on the empty surface: `MouseButton`, `ShiftMask` bits, place in pixels.
  Event<std::int32_t, std::int32_t, float, float> MouseUp;
  /// A button is pressed on the empty surface; as `MouseUp`.
  Event<std::int32_t, std::int32_t, float, float> MouseDown;
  /// The mouse moves over the empty surface; as `MouseUp`.
  Event<std::int32_t, std::int32_t, float, float> MouseMove;
  /// The mouse moves over an entity's box: `MouseButton`, `ShiftMask` bits, place in pixels, and the entity.
  Event<std::int32_t, std::int32_t, float, float, const Ref<Object>&> ObjectMouseMove;
  /// A button is pressed over an entity's box; as `ObjectMouseMove`.
  Event<std::int32_t, std::int32_t, float, float, const Ref<Object>&> ObjectMouseDown;
  /// A button is released over an entity's box; as `ObjectMouseMove`.
  Event<std::int32_t, std::int32_t, float, float, const Ref<Object>&> ObjectMouseUp;
  /// A row of a box is clicked.
  Event<const Ref<qbEntity>&, const Ref<qbEntityItem>&> EntityItemClick;
  /// A column is ticked or unticked, by the user or by program.
  Event<const Ref<qbEntity>&, const Ref<qbEntityItem>&> EntityItemCheck;
  /// A box is clicked.
  Event<const Ref<qbEntity>&> EntityClick;
  /// A box is double-clicked.
  Event<const Ref<qbEntity>&> EntityDblClick;
  /// The Delete key is about to remove the selected object; the second argument set to true keeps it.
  Event<const Ref<Object>&, bool&> BeforeDeleteObject;
  /// A key on the pane, before the pane acts on it: `KeyCode` (0 makes the pane ignore it), `ShiftMask` bits.
  Event<std::int32_t&, std::int32_t> KeyDown;
  /// A key is released on the pane: `KeyCode`, `ShiftMask` bits.
  Event<std::int32_t&, std::int32_t> KeyUp;

  /// A key that types something on the pane: its Unicode character, which a handler may change.
  Event<char32_t&> KeyPress;
  /// Texts are dragged over the surface while `OLEDropMode` is Manual: the text, the effect (which a
  /// handler may set to 0 to refuse), `MouseButton` and `ShiftMask` bits, the place in pixels, a `DragOverStateEnum`.
  Event<const std::string&, std::int32_t&, std::int32_t, std::int32_t, float, float, std::int32_t> OLEDragOver;
  /// Texts are dropped on the surface while `OLEDropMode` is Manual; as `OLEDragOver`, without the state.
  Event<const std::string&, std::int32_t&, std::int32_t, std::int32_t, float, float> OLEDragDrop;
  /// A context menu is about to be shown for an entity, one of its items (the entity is then the `SelectedObject`), a
  /// relationship or, with nothing, the surface. A handler may add and remove entries; an empty menu is not shown.
  Event<const Ref<Object>&, Menu&> BeforeContextMenu;

  // --- Properties and methods, in interface order ---

  /// Shows what this control is.
  void AboutBox();

  /// Removes every entity; the grid is emptied and the statement written anew.
  void Clear();

  /// The tables of the diagram.
  const Ref<qbEntities>& Entities() const { return entities_; }

  /// The pictures that the items' `SmallIcon` values name; nothing at first.
  const Ref<ImageList>& ItemsImageList() const { return itemsImageList_; }
  void SetItemsImageList(Ref<ImageList> images);

  /// Repaints the pane.
  void Refresh() { GetSurface().InvalidateAll(); }

  /// The selected entity or relationship, or nothing.
  Ref<Object> SelectedObject() const override { return selected_; }

  /// The hub that the pane is linked to, or nothing.
  Ref<qbQueryBuilder> QueryBuilder() const;

  /// The font of the rows; an empty one is that of the surroundings.
  const Font& EntityFont() const { return entityFont_; }
  void SetEntityFont(const Font& font);
  /// The colour of the rows' text.
  Color EntityForeColor() const { return entityForeColor_; }
  void SetEntityForeColor(Color color);
  /// The colour behind the rows.
  Color EntityBackColor() const { return entityBackColor_; }
  void SetEntityBackColor(Color color);
  /// The colour of the surface; the default, system colour 12, follows the theme.
  Color BackColor() const { return backColor_; }
  void SetBackColor(Color color);
  /// The font of the caption bars.
  const Font& EntityCaptionFont() const { return entityCaptionFont_; }
  void SetEntityCaptionFont(const Font& font);
  /// The colour of the boxes' frames.
  Color EntityFrameColor() const { return entityFrameColor_; }
  void SetEntityFrameColor(Color color);
  /// Whether entities that are added from now on show a minimise button.
  bool EntityMinimizeButton() const override { return entityMinimizeButton_; }
  void SetEntityMinimizeButton(bool show) { Store(entityMinimizeButton_, show, "EntityMinimizeButton"); }

  /// Whether texts may be dropped on the surface.
  OLEDropModeEnum OLEDropMode() const { return oleDropMode_; }
  void SetOLEDropMode(OLEDropModeEnum mode) { Store(oleDropMode_, mode, "OLEDropMode"); }

  // --- Stored properties ---

  /// A property was set: its key. The container marks it as changed.
  Event<std::string_view> PropertyChanged;
  /// Takes the properties from a stored form; a missing key has its default, and a value of the wrong kind counts as
  /// missing.
  void ReadProperties(const PropertyStore& store);
  /// Stores the properties; those with the value of a new pane are left out.
  void WriteProperties(PropertyStore& store) const;

  // --- The view ---

  /// How much the diagram is enlarged: 0.25 to 4, 1 at first. Places and sizes of boxes do not depend on it.
  double Zoom() const { return zoom_; }
  /// Enlarges about a point of the pane, which stays where it is; values beyond the limits count as the limit.
  void SetZoom(double zoom, PixelPoint about);
  /// Zooms out, at most to the smallest size, until all boxes are visible; never beyond 100 %.
  void ZoomToFit();
  /// Lays the boxes out along their joins.
  void Arrange();
  /// The whole diagram as an SVG picture, without any window.
  std::string PictureSvg() const;
  /// The size of the whole diagram in pixels at 100 %, its margin included.
  PixelSize PictureSize() const;
  /// Draws the whole diagram at 100 % with its top left corner at (0, 0).
  void PaintPicture(Canvas& canvas) const;
  /// Writes the whole diagram as a picture: as SVG when the path (in UTF-8) ends with ".svg" in any letter case,
  /// without any window; otherwise as PNG. Error 75 when it cannot be written.
  void SavePicture(const std::string& path) const;
  /// Lets the user choose where to save the picture; a failure is a message. Nothing happens while the pane is not
  /// linked.
  void AskToSavePicture();
  /// Puts a picture of the whole diagram on the clipboard. Returns whether there is one.
  bool CopyPicture() const;

  /// Minimises or restores an entity's box.
  void SetMinimized(const qbEntity& entity, bool minimized);

  /// Makes an entity or relationship of this pane the selected object; nothing, or what was removed from the
  /// diagram, drops the selection. Error 5 for what is in another diagram.
  void SelectObject(const Ref<Object>& object);
  /// Leaves nothing selected.
  void DropSelection() override;
  /// Selects all entities; the `SelectedObject` stays when it is one of them, otherwise the first becomes it.
  void SelectAll();
  /// All entities that are selected, the `SelectedObject` first: the user moves and deletes them together. None while a
  /// relationship is selected.
  std::vector<Ref<qbEntity>> SelectedEntities() const;

  /// Begins a join at the current column of the selected entity, by keyboard: the user goes to a column of another box
  /// and presses Enter. Returns whether there is a column where a join may begin.
  bool BeginKeyJoin();
  /// Lets the user look for a table or column by a part of its name; the next one behind the current one is selected.
  /// Nothing happens while the pane is not linked.
  void AskAndFind();
  /// Lets the user give the entity another caption. Nothing happens while the pane is not linked.
  void AskForAlias(const Ref<qbEntity>& entity);

  // --- For the hub ---

  /// Links the pane to what the designer shares, or to nothing.
  void SetContext(const Ref<QueryContext>& context) { context_ = context; }
  Ref<QueryContext> Context() const override { return context_.lock(); }
  /// Makes the diagram, which is as `now` says, what `then` says. The selection stays where its object does;
  /// `ObjectDeactivate` is raised at the end where it went.
  void Restore(const DiagramState& now, const DiagramState& then);

  // --- Window events ---

  void Paint(Canvas& canvas, const PixelRect& dirty) const override;
  void OnResize() override;
  void OnMouseDown(const MouseEvent& event) override;
  void OnMouseMove(const MouseEvent& event) override;
  void OnMouseUp(const MouseEvent& event) override;
  void OnDoubleClick(const MouseEvent& event) override;
  void OnMouseLeave() override;
  bool OnDragOver(const std::string& text, const MouseEvent& event) override;
  void OnDragLeave() override;
  void OnDrop(const std::string& text, const MouseEvent& event) override;
  void OnTick() override;
  void OnWheel(const WheelEvent& event) override;
  void OnScroll(Orientation orientation, int value) override;
  bool OnKeyDown(const KeyEvent& event) override;
  void OnKeyUp(const KeyEvent& event) override;
  void OnFocusChanged(bool focused) override;
  std::string ToolTipAt(PixelPoint point) const override;
  AccessibleTree* Accessible() override;

 protected:
  void OnSurfaceChanged() override;

 private:
  friend class DiagramAccess;

  // A box with the place that it had.
  using BoxPlace = std::pair<Ref<qbEntityList>, TwipsRect>;

  // What the pointer is doing while a button is held.
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
  struct DraggingRow {
    Ref<qbEntityList> box;
    Ref<BoxRow> row;  // the row itself: others may come and go meanwhile
    PixelPoint start;
    PixelPoint pointer;
    bool dragging = false;
    Ref<qbEntityList> target;  // the box under the pointer with a row where the join may end
    Ref<BoxRow> targetRow;
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

  // Where a join begins that is drawn by keyboard.
  struct KeyJoin {
    Ref<qbEntityList> box;
    Ref<BoxRow> row;
  };

  // What the pane keeps for each box while it is loaded.
  struct LoadedBox {
    std::vector<EventConnection> links;
    OrderedList<Ref<qbLine>> lines;
    PlacedBoxes::Id place = 0;
    OrderedList<Ref<qbEntityList>>::Mark shown = nullptr;  // among `stacking_`, once the box is shown
  };
  // The two ends of a line, of which one is the first whichever way round the line is drawn. The columns are named,
  // because a column that comes back is another object.
  using End = std::pair<const qbEntityList*, std::string>;
  using Ends = std::pair<End, End>;
  using LineMark = OrderedList<Ref<qbLine>>::Mark;
  // What the pane keeps for each line.
  struct LoadedLine {
    LineMark inAll = nullptr;
    LineMark atSource = nullptr;
    LineMark atTarget = nullptr;  // nothing where both ends are at one box
    Ends boxes;
    std::optional<Ends> rows;  // once the join has both columns
  };

  // What lies under a point of the pane.
  struct PaneHit {
    Ref<qbEntityList> box;
    BoxHit part;
    Ref<qbLine> line;
  };

  qbDiagramPane() = default;

  Ref<qbEntityList> LoadBox() override;
  bool HasBox(const qbEntityList& box) const override { return boxes_.contains(&box); }
  void ShowBox(const Ref<qbEntityList>& box) override;
  void UnloadBox(const Ref<qbEntityList>& box) override;
  Ref<qbLine> LoadLine(const Ref<qbRelationship>& relationship, const Ref<qbEntityList>& source,
                       const Ref<qbEntityList>& target) override;
  void UnloadLine(const Ref<qbLine>& line) override;
  std::vector<Ref<qbLine>> LinesAt(const qbEntityList& box) const override;
  void FitBox(const Ref<qbEntityList>& box) override;

  BoxMetrics CurrentBoxMetrics() const;
  void ApplyAppearance();
  PlacementRules RulesOfPlacement() const;
  template <class T>
  void Store(T& property, const T& value, std::string_view key) {
    property = value;
    PropertyChanged.Raise(key);
  }
  void BoxMoved(const qbEntityList& box);
  void BoxRowChecked(const qbEntityList& box, const Ref<BoxRow>& row);
  void ReportTicks(const Ref<qbEntityList>& box);
  void JoinChanged(const Ref<Object>& relationship);
  void JoinRemoved();
  static Ends EndsOf(End one, End other);
  static std::optional<Ends> RowsOf(const qbLine& line);
  static void GiveBack(std::map<Ends, FreeNumbers>& numbers, const Ends& ends, int number);
  void KeepApart(qbLine& line);

  // The view: a point of the surface, in pixels at 100 %, stands at `Origin() + point * zoom` of the pane.
  PixelPoint Origin() const;
  PixelPoint ToSurface(PixelPoint point) const;
  PixelRect ToPane(const PixelRect& onSurface) const;
  PixelRect PlaceOf(const qbEntityList& box) const;
  PixelSize ExtentOfBoxes() const;
  void UpdateScrollBars();
  void ScrollBy(Orientation orientation, int delta);
  void ScrollIntoView(const PixelRect& onSurface);
  PaneHit HitTest(PixelPoint point) const;
  static Ref<qbEntity> EntityOf(const qbEntityList& box);
  static bool IsInDiagram(const Ref<Object>& object);
  bool IsForeign(const Ref<Object>& object) const;
  void RaiseToTop(const Ref<qbEntityList>& box);
  void Minimize(qbEntityList& box, bool minimized);
  void FitToRows(const Ref<qbEntityList>& box);
  void RecordPlaces(const StepName& name, const std::vector<BoxPlace>& before);

  void PaintDiagram(Canvas& canvas, const PixelRect& visible, bool withState) const;
  void PaintRubberLine(Canvas& canvas) const;
  void PaintKeyJoin(Canvas& canvas) const;
  void PaintHint(Canvas& canvas, const std::string& text) const;
  void UpdateRowMarks() const;

  void PressBox(const PaneHit& hit, const MouseEvent& event);
  void PressRow(const PaneHit& hit, const MouseEvent& event, const Ref<qbEntity>& entity);
  void PressCaption(const PaneHit& hit, const MouseEvent& event);
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
  Cursor CursorWhileMoving(const MovingBox& gesture, PixelPoint at) const;
  static PixelRect Frame(const Framing& gesture, PixelPoint corner);
  PixelSize SmallestBox() const;
  void BeginGesture(Gesture gesture, std::int32_t button);
  void EndGesture();
  bool CancelGesture();
  void ScrollNearEdges(PixelPoint point);
  void AimAt(DraggingRow& gesture, PixelPoint point);
  void AddJoin(const Ref<qbEntity>& source, std::size_t sourceRow, const Ref<qbEntity>& target, std::size_t targetRow,
               bool onlyOnce);
  void SetHover(const PaneHit& hit);
  Cursor CursorFor(const PaneHit& hit) const;

  bool OnCharacters(std::int32_t keyCode, const KeyEvent& event);
  bool OnPlainKey(std::int32_t keyCode);
  bool OnControlKey(std::int32_t keyCode, const KeyEvent& event);
  bool MoveSelectedBox(std::int32_t keyCode);
  bool ResizeSelectedBox(std::int32_t keyCode);
  bool GoToRow(std::size_t row);
  bool MoveCurrentRow(int delta);
  bool ToggleCurrentRow();
  bool SelectNext(int direction);
  bool EnterSelected();
  bool EndKeyJoin();
  bool IsKeyJoinTarget() const;
  bool RequestTables();
  bool TypeAhead(std::string_view text);
  // A table and one of its rows; row 0 is its caption.
  struct FoundPlace {
    Ref<qbEntity> entity;
    std::size_t row = 0;
  };
  FoundPlace FindName(const std::string& part) const;
  bool DeleteSelected();
  bool IsSelected(const Ref<Object>& object) const;
  void SelectAlso(const Ref<qbEntity>& entity);
  void ToggleSelected(const Ref<qbEntity>& entity);
  void SelectGroup(std::vector<Ref<qbEntity>> group);
  Ref<qbEntity> SelectedEntity() const { return std::dynamic_pointer_cast<qbEntity>(selected_); }
  Ref<qbRelationship> SelectedJoin() const { return std::dynamic_pointer_cast<qbRelationship>(selected_); }

  void ShowContextMenu(const Ref<Object>& object, std::size_t row, PixelPoint at);
  PixelPoint MenuPlaceOfSelection() const;
  Menu MenuForSurface();
  Menu MenuForBox(const Ref<qbEntity>& entity);
  Menu MenuForJoin(const Ref<qbRelationship>& join);
  Menu MenuForColumn(const Ref<qbEntity>& entity, const Ref<qbEntityItem>& item);
  MenuEntry RelatedTo(const Ref<qbEntity>& entity);
  MenuEntry KindsOf(const Ref<qbRelationship>& join);
  void CheckAll(const Ref<qbEntity>& entity, bool checked, bool onlyKeys);
  void ReverseJoin(const Ref<qbRelationship>& join);

  WeakRef<QueryContext> context_;
  Ref<qbEntities> entities_;
  std::unordered_map<const qbEntityList*, LoadedBox> boxes_;
  PlacedBoxes places_;
  OrderedList<Ref<qbEntityList>> stacking_;  // from the bottom to the top
  OrderedList<Ref<qbLine>> lines_;
  std::unordered_map<const qbLine*, LoadedLine> loadedLines_;
  std::map<Ends, FreeNumbers> lanes_;  // of the lines between two boxes, whose columns are left out
  std::map<Ends, FreeNumbers> twins_;  // of the lines between two rows
  Ref<Object> selected_;
  std::vector<Ref<qbEntity>> alsoSelected_;  // besides `selected_`, which is an entity then
  std::optional<KeyJoin> keyJoin_;
  std::optional<std::string> draggedOver_;  // the text of a drag from outside that is over the pane
  PixelPoint dragPlace_{};
  Ref<Object> leaving_;  // the object whose listeners are being told that it is not selected any more
  Gesture gesture_;
  std::int32_t gestureButton_ = ButtonNone;  // the button that holds it; others neither end nor replace it
  PaneHit hover_;
  bool focused_ = false;
  ScrollState horizontal_;
  ScrollState vertical_;
  double zoom_ = 1;
  bool spaceHeld_ = false;  // Space pans while it is held, and ticks when it is let go
  bool spaceWasUsed_ = false;
  int resizeStep_ = 0;  // grows while the key is held
  std::string typedAhead_;
  std::string sought_;  // by name, last
  std::chrono::steady_clock::time_point typedAheadAt_;
  // Rows with a join, and those of the selected join; made anew when the joins have changed.
  mutable std::unordered_set<const BoxRow*> joinedRows_;
  mutable std::unordered_set<const BoxRow*> markedRows_;
  mutable bool rowMarksStale_ = true;
  std::unique_ptr<AccessibleTree> access_;  // made when it is asked for

  bool entityMinimizeButton_ = true;
  OLEDropModeEnum oleDropMode_ = OLEDropNone;
  Color entityBackColor_ = Color::System(5);
  Color entityForeColor_ = Color::System(8);
  Color entityFrameColor_ = Color::System(15);
  Color backColor_ = Color::System(12);
  Font entityFont_;
  Font entityCaptionFont_;
  Ref<ImageList> itemsImageList_;
};

}  // namespace zrqrybld
