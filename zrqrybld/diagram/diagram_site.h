// DiagramSite: the control that shows a diagram, as the diagram's parts see it.
//
// Through it they reach the surface, the events that the control raises and what the designer shares. It knows none of
// them; the pane derives from it and owns them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "zrqrybld/base/event.h"
#include "zrqrybld/base/object.h"
#include "zrqrybld/platform/control.h"

namespace zrqrybld {

class qbEntity;
class qbEntityItem;
struct QueryContext;

/// The surface begins this far inside the pane, so that no box sticks to the edge of the window.
inline constexpr Pixels kSurfaceMargin = 12_px;

/// Whether a pane takes drops from outside.
enum OLEDropModeEnum : std::int32_t { OLEDropNone = 0, OLEDropManual = 1 };

/// Where a search for a name begins: with the current table or column, behind it or before it.
enum class FindFrom : std::uint8_t { Here, Next, Previous };

/// What a search for a name has found.
struct FoundNames {
  std::size_t count = 0;  ///< names that hold the text
  std::size_t place = 0;  ///< of the one that is selected now, from 1; 0 for none
};

class DiagramSite : public Control {
 public:
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
  /// The user wants to look for a table or column; the argument set to true says that something is shown for it, and
  /// no dialog is.
  Event<bool&> FindWanted;
  /// A context menu is about to be shown for an entity, one of its items (the entity is then the `SelectedObject`), a
  /// relationship or, with nothing, the surface. A handler may add and remove entries; an empty menu is not shown.
  Event<const Ref<Object>&, Menu&> BeforeContextMenu;

  // --- What the parts use ---

  /// Repaints the pane.
  void Refresh() { GetSurface().InvalidateAll(); }

  /// Links the pane to what the designer shares, or to nothing.
  void SetContext(const Ref<QueryContext>& context) { context_ = context; }
  /// What the designer shares; nothing while the pane stands alone.
  Ref<QueryContext> Context() const { return context_.lock(); }

  /// Whether the pane has the keyboard.
  bool HasFocus() const { return hasFocus_; }

 protected:
  void SetHasFocus(bool hasFocus) { hasFocus_ = hasFocus; }

 private:
  WeakRef<QueryContext> context_;
  bool hasFocus_ = false;
};

}  // namespace zrqrybld
