// What a control tells assistive technology about itself: a tree of objects with roles, names, states and actions.
//
// A control that consists of more than one thing gives an `AccessibleTree`. Nothing is made before it is asked for; an
// adapter turns what it asks for into objects of its platform. Places are pixels of the control's surface.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "zrqrybld/base/export.h"
#include "zrqrybld/base/object.h"
#include "zrqrybld/base/units.h"

namespace zrqrybld {

enum class AccessibleRole : std::uint8_t {
  Pane,
  List,       ///< a table box; its children are its rows
  CheckItem,  ///< a row of a list, which can be ticked
  Join,       ///< a line between rows of two lists
  Minimap,    ///< a small picture of all that there is
  Table,
  ColumnHeader,
  RowHeader,
  Cell,
};

/// What can be done with an object without a pointer.
enum class AccessibleAction : std::uint8_t {
  Focus,     ///< makes it the current one
  Press,     ///< what Enter or a double click does; may open a window
  Toggle,    ///< ticks or unticks it
  ShowMenu,  ///< opens its context menu
};

struct AccessibleState {
  bool focused = false;  ///< the current object of its control, whether or not that has the keyboard
  bool selectable = false;
  bool selected = false;
  bool checkable = false;
  bool checked = false;
  bool mixed = false;  ///< partly checked
  bool expandable = false;
  bool expanded = false;
  bool editable = false;
  bool invalid = false;    ///< holds something that is wrong; the description says what
  bool offscreen = false;  ///< cannot be seen at present
  friend bool operator==(const AccessibleState&, const AccessibleState&) = default;
};

/// Everything there is to say about an object.
struct AccessibleInfo {
  AccessibleRole role = AccessibleRole::Pane;
  std::string name;
  std::string description;  ///< what to know besides the name; "" for nothing
  AccessibleState state;
  std::vector<AccessibleAction> actions;
  PixelRect bounds;  ///< on the control's surface, also when it is scrolled away
};

/// Names an object of a control for as long as it lives: a thing that the control shows, or a part of one. Without any
/// it is the control itself.
struct AccessibleId {
  Ref<Object> object;
  Ref<Object> part;  ///< a row of a box, or a column where `object` is a row
  bool IsControl() const { return !object; }
  friend bool operator==(const AccessibleId&, const AccessibleId&) = default;
};

/// Positions count from 0. An id that the control does not contain any more has no children and no place.
class ZRQRYBLD_API AccessibleTree {
 public:
  AccessibleTree() = default;
  AccessibleTree(const AccessibleTree&) = delete;
  AccessibleTree& operator=(const AccessibleTree&) = delete;
  virtual ~AccessibleTree() = default;

  /// Whether the control has the object now. True for the control itself.
  virtual bool Contains(const AccessibleId& id) const = 0;
  /// What stands below an object, in the order in which the keyboard goes through it.
  virtual std::size_t ChildCount(const AccessibleId& id) const = 0;
  /// A child by its position; the control itself when there is none.
  virtual AccessibleId ChildAt(const AccessibleId& id, std::size_t index) const = 0;
  virtual AccessibleId ParentOf(const AccessibleId& id) const = 0;
  /// The position among the parent's children; nothing for what is not there any more and for the control.
  virtual std::optional<std::size_t> IndexOf(const AccessibleId& id) const = 0;
  /// For an object that the control contains.
  virtual AccessibleInfo Describe(const AccessibleId& id) const = 0;
  /// The innermost object at a point of the surface.
  virtual AccessibleId ObjectAt(PixelPoint point) const = 0;
  /// The object that is current, whether or not the control has the keyboard.
  virtual AccessibleId Current() const = 0;
  /// Does what the user would do. False when the object is gone or has no such action.
  virtual bool Perform(const AccessibleId& id, AccessibleAction action) = 0;

  /// How many cells a control in the role of a table has; headers do not count.
  struct TableSize {
    std::size_t rows = 0;
    std::size_t columns = 0;
  };
  virtual TableSize CellCounts() const { return {}; }
  /// A cell, or the control itself where there is none.
  virtual AccessibleId CellAt(std::size_t /*row*/, std::size_t /*column*/) const { return {}; }
  virtual AccessibleId ColumnHeader(std::size_t /*column*/) const { return {}; }
  virtual AccessibleId RowHeader(std::size_t /*row*/) const { return {}; }
  /// The row and column of a cell; nothing for what is no cell.
  struct CellPlace {
    std::size_t row = 0;
    std::size_t column = 0;
  };
  virtual std::optional<CellPlace> PlaceOf(const AccessibleId& /*id*/) const { return std::nullopt; }
};

}  // namespace zrqrybld
