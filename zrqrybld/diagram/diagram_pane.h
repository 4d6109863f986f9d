// qbDiagramPane: the pane that shows the tables of a query as boxes and their joins as lines.
//
// It owns the diagram's model (`Entities`) and the parts that draw it, select in it and change it; what it is asked it
// passes on to them. The hub links it to the other panes; it also works alone.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "zrqrybld/base/event.h"
#include "zrqrybld/base/export.h"
#include "zrqrybld/base/object.h"
#include "zrqrybld/diagram/diagram_site.h"
#include "zrqrybld/diagram/diagram_state.h"

namespace zrqrybld {

class Canvas;
class ImageList;
class PropertyStore;
class qbEntities;
class qbQueryBuilder;
class qbWholeJoins;
struct DiagramParts;

class ZRQRYBLD_API qbDiagramPane final : public DiagramSite {
 public:
  /// An empty pane, linked to no hub and shown in no window.
  static Ref<qbDiagramPane> Create();
  ~qbDiagramPane() override;
  std::string_view TypeName() const override { return "qbDiagramPane"; }

  // --- Properties and methods, in interface order ---

  /// Shows what this control is.
  void AboutBox();

  /// Removes every entity; the grid is emptied and the statement written anew.
  void Clear();

  /// The tables of the diagram.
  const Ref<qbEntities>& Entities() const;

  /// The pictures that the items' `SmallIcon` values name; nothing at first.
  const Ref<ImageList>& ItemsImageList() const;
  void SetItemsImageList(Ref<ImageList> images);

  /// The selected entity or relationship, or nothing.
  Ref<Object> SelectedObject() const;

  /// The hub that the pane is linked to, or nothing.
  Ref<qbQueryBuilder> QueryBuilder() const;

  /// The font of the rows; an empty one is that of the surroundings.
  const Font& EntityFont() const;
  void SetEntityFont(const Font& font);
  /// The colour of the rows' text.
  Color EntityForeColor() const;
  void SetEntityForeColor(Color color);
  /// The colour behind the rows.
  Color EntityBackColor() const;
  void SetEntityBackColor(Color color);
  /// The colour of the surface; the default, system colour 12, follows the theme.
  Color BackColor() const;
  void SetBackColor(Color color);
  /// The font of the caption bars.
  const Font& EntityCaptionFont() const;
  void SetEntityCaptionFont(const Font& font);
  /// The colour of the boxes' frames.
  Color EntityFrameColor() const;
  void SetEntityFrameColor(Color color);
  /// Whether entities that are added from now on show a minimise button.
  bool EntityMinimizeButton() const;
  void SetEntityMinimizeButton(bool show);

  /// Whether texts may be dropped on the surface.
  OLEDropModeEnum OLEDropMode() const;
  void SetOLEDropMode(OLEDropModeEnum mode);

  // --- Beyond these ---

  /// The joins as a person takes them: all relationships between the same two entities are one.
  const Ref<qbWholeJoins>& WholeJoins() const;

  // --- Options that are not stored ---

  /// Whether boxes that are added go beside those they are joined to, once the step is complete that adds them and with
  /// them their joins: with room for the sign of the join's kind, and no line under a box. What was placed by `Left`
  /// and `Top`, by the user or by a file stays. False at first: each box then takes the first free place, row by row. A
  /// pane without a designer has no steps and places so, too.
  bool PlacesByJoins() const;
  void SetPlacesByJoins(bool places);
  /// Whether a small picture of the whole diagram stands in the corner of a diagram that is larger than the window;
  /// False at first. A press in it goes there.
  bool ShowMinimap() const;
  void SetShowMinimap(bool show);

  // --- Stored properties ---

  /// A property was set: its key. The container marks it as changed.
  Event<std::string_view> PropertyChanged;
  /// Takes the properties from a stored form; a missing key has its default, and a value of the wrong kind counts as
  /// missing.
  void ReadProperties(const PropertyStore& store);
  /// Stores the properties; those with the value of a new pane are left out.
  void WriteProperties(PropertyStore& store) const;

  // --- The view ---

  /// How much the diagram is enlarged: 1 at first, at most 4, at least 0.25 or, where that is less, so much that all
  /// boxes are visible. Places and sizes of boxes do not depend on it.
  double Zoom() const;
  /// Enlarges about a point of the pane, which stays where it is; values beyond the limits count as the limit.
  void SetZoom(double zoom, PixelPoint about);
  /// Zooms out until all boxes are visible; never beyond 100 %.
  void ZoomToFit();
  /// Lays the boxes out along their joins in about the window's shape, and shows all of them.
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
  void DropSelection();
  /// Selects all entities; the `SelectedObject` stays when it is one of them, otherwise the first becomes it.
  void SelectAll();

  /// Opens the context menu of what is selected, as its key does.
  void OpenMenu();
  /// All entities that are selected, the `SelectedObject` first: the user moves and deletes them together. None while a
  /// relationship is selected.
  std::vector<Ref<qbEntity>> SelectedEntities() const;

  /// Begins a join at the current column of the selected entity, by keyboard: the user goes to a column of another box
  /// and presses Enter. Returns whether there is a column where a join may begin.
  bool BeginKeyJoin();
  /// Lets the user look for a table or column by a part of its name: by `FindWanted` or, where nobody takes that, by a
  /// dialog; the next one behind the current one is selected. Nothing happens while the pane is not linked.
  void AskAndFind();
  /// Selects the table or column that holds `part` in its name, in any letter case: the next one from the current one
  /// on, the next or the last one besides it; after the last one the first. Nothing is selected where there is none.
  FoundNames FindName(const std::string& part, FindFrom from);
  /// Lets the user give the entity another caption. Nothing happens while the pane is not linked.
  void AskForAlias(const Ref<qbEntity>& entity);

  // --- For the hub ---

  /// The step in which boxes were added is complete; see `PlacesByJoins`.
  void PlaceAdded();
  /// Boxes that were added have their places.
  void KeepAdded();

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
  qbDiagramPane();
  template <auto Field, class T>
  void Store(const T& value);
  void ApplyAppearance();

  std::unique_ptr<DiagramParts> parts_;
};

}  // namespace zrqrybld
