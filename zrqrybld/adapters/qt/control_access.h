// What assistive technology sees of a control's window: the control's accessible tree in Qt's terms.
//
// An object gets its interface when it is asked for and keeps it, with its id, until it leaves the control.
#pragma once

#include <QAccessibleWidget>
#include <QRect>
#include <cstddef>
#include <functional>
#include <unordered_map>

#include "zrqrybld/base/export.h"
#include "zrqrybld/platform/accessible.h"

namespace zrqrybld {

/// What the window of a control does for its accessible objects. A widget that is one gets a `ControlAccess`.
class ZRQRYBLD_API AccessHost {
 public:
  AccessHost() = default;
  AccessHost(const AccessHost&) = delete;
  AccessHost& operator=(const AccessHost&) = delete;
  virtual ~AccessHost() = default;

  /// The tree of the control that lives here, or nothing.
  virtual AccessibleTree* AccessTree() const = 0;
  /// Where a part of the control's surface stands on the screen, and which point of the surface a place on it is.
  virtual QRect ToScreen(const PixelRect& onSurface) const = 0;
  virtual PixelPoint FromScreen(const QPoint& onScreen) const = 0;
  /// Does what an object offers; what opens a window is done when the caller has gone on.
  virtual void PerformAccess(const AccessibleId& id, AccessibleAction action) = 0;
  /// The window of the editors in place.
  virtual QWidget* EditorParent() const = 0;
};

class ZRQRYBLD_API ControlAccess final : public QAccessibleWidget, public QAccessibleTableInterface {
 public:
  /// `host` must be an `AccessHost`.
  explicit ControlAccess(QWidget& host);
  ~ControlAccess() override;

  /// Makes widgets that are an `AccessHost` accessible from now on.
  static void Install();
  /// Tells assistive technology what has changed for the widget's user since the last call: the current object, what is
  /// said about it, objects that have left. Only to be called while somebody listens.
  static void Update(QWidget& host);

  AccessHost& Host() const { return host_; }
  /// The control's tree; nothing while there is no control.
  AccessibleTree* Tree() const { return host_.AccessTree(); }
  /// The interface of an object, made on first use; this one for the control itself.
  QAccessibleInterface* InterfaceOf(const AccessibleId& id) const;
  /// How many objects have been asked for and are still there.
  std::size_t KnownObjects() const { return known_.size(); }

  void* interface_cast(QAccessible::InterfaceType type) override;
  int childCount() const override;
  QAccessibleInterface* child(int index) const override;
  int indexOfChild(const QAccessibleInterface* child) const override;
  QAccessibleInterface* childAt(int x, int y) const override;
  QAccessibleInterface* focusChild() const override;
  QString text(QAccessible::Text kind) const override;
  QAccessible::Role role() const override;
  QStringList actionNames() const override;
  void doAction(const QString& name) override;

  QAccessibleInterface* caption() const override { return nullptr; }
  QAccessibleInterface* summary() const override { return nullptr; }
  QAccessibleInterface* cellAt(int row, int column) const override;
  int selectedCellCount() const override { return static_cast<int>(selectedCells().size()); }
  QList<QAccessibleInterface*> selectedCells() const override;
  QString columnDescription(int column) const override;
  QString rowDescription(int row) const override;
  int selectedColumnCount() const override { return 0; }
  int selectedRowCount() const override { return static_cast<int>(selectedRows().size()); }
  int columnCount() const override;
  int rowCount() const override;
  QList<int> selectedColumns() const override { return {}; }
  QList<int> selectedRows() const override;
  bool isColumnSelected(int) const override { return false; }
  bool isRowSelected(int row) const override;
  bool selectRow(int row) override;
  bool selectColumn(int) override { return false; }
  bool unselectRow(int) override { return false; }
  bool unselectColumn(int) override { return false; }
  void modelChange(QAccessibleTableModelChangeEvent*) override {}

 private:
  struct Key {
    const Object* object;
    const Object* part;
    friend bool operator==(const Key&, const Key&) = default;
  };
  struct KeyHash {
    std::size_t operator()(const Key& key) const {
      constexpr std::size_t kFactor = 0x9e3779b97f4a7c15;
      return std::hash<const Object*>()(key.object) * kFactor ^ std::hash<const Object*>()(key.part);
    }
  };

  void Update();
  void ForgetGone();
  bool HasEditor() const;

  AccessHost& host_;
  mutable std::unordered_map<Key, QAccessible::Id, KeyHash> known_;
  QAccessible::Id current_ = 0;  // as told last; 0 for the control itself
  AccessibleInfo currentInfo_;
};

}  // namespace zrqrybld
