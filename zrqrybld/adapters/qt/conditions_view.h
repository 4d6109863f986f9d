// ConditionsView: the conditions of a query as a tree of groups that is edited in place.
//
// It shows what the grid's criteria say, and writes what is changed there; both have one history. A condition has its
// field and what is asked of it, with suggestions; conditions and groups are moved by dragging and by keys, put into
// groups and taken out of them.
#pragma once

#include <QLabel>
#include <QTreeWidget>
#include <memory>
#include <optional>
#include <string>

#include "zrqrybld/adapters/qt/event_boundary.h"
#include "zrqrybld/base/event.h"
#include "zrqrybld/base/export.h"
#include "zrqrybld/base/phrase.h"
#include "zrqrybld/hub/query_conditions.h"
#include "zrqrybld/sql/condition_edits.h"

namespace zrqrybld {

class qbQueryBuilder;
class ValueSource;

class ZRQRYBLD_API ConditionsView : public QWidget {
  Q_OBJECT

 public:
  /// Shows the conditions of the hub's grid, and follows its statement. `values` is asked for what a column holds; it
  /// may be nothing.
  explicit ConditionsView(const Ref<qbQueryBuilder>& hub, std::shared_ptr<ValueSource> values = nullptr,
                          QWidget* parent = nullptr);
  ~ConditionsView() override;

  /// The tree, with a field and a criterion for each condition.
  QTreeWidget& Tree() const { return *tree_; }
  /// Reads the conditions again, when they are others than those that are shown.
  void Refresh();

  // --- What its menu and keys do to the current condition or group ---

  /// Begins a new condition in the current group, or behind the current condition.
  void Add();
  /// Begins a new condition that is an alternative to the current one, or asked besides where alternatives stand.
  void AddBeside();
  /// Takes the current one away.
  void Remove();
  /// Asks for the contrary, or no longer.
  void Negate();
  /// "All of these" becomes "any of these", and the other way round.
  void ChangeKind();
  /// Takes a condition out of its group, or gives a group's conditions to the group around it.
  void TakeOut();
  /// Moves it among its siblings, up (-1) or down (1).
  void Move(int direction);
  /// Moves a node into a group, before the part at a place.
  void MoveTo(const ConditionPath& from, const ConditionPath& group, std::size_t before);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void changeEvent(QEvent* event) override;
  void showEvent(QShowEvent* event) override;

 private:
  class Delegate;
  class Items;
  friend class Delegate;

  void Fill();
  void FillItem(QTreeWidgetItem& item, const ConditionNode& node, const ConditionPath& path);
  QString GroupText(const ConditionNode& node) const;
  ConditionPath Current() const;
  QTreeWidgetItem* ItemAt(const ConditionPath& path) const;
  void Select(const ConditionPath& path);
  void Apply(std::optional<ConditionTree> next, const ConditionPath& current);
  void Begin(std::optional<ConditionTree> next, const ConditionPath& path);
  void Commit(const ConditionPath& path, int column, const QString& text);
  void Edit(const ConditionPath& path, int column);
  void EndEdit();
  void ShowMenu(QPoint at);
  bool Press(const QKeyEvent& key);

  QueryConditions conditions_;
  std::shared_ptr<ValueSource> values_;
  std::shared_ptr<const TextSource> texts_;
  EventBoundary boundary_;
  QTreeWidget* tree_;
  QLabel* message_;
  ConditionTree shown_;
  EventConnection statement_;
};

}  // namespace zrqrybld
