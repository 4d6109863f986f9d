#include "zrqrybld/adapters/qt/conditions_view.h"

#include <QApplication>
#include <QComboBox>
#include <QCompleter>
#include <QDropEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QStyledItemDelegate>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "zrqrybld/adapters/qt/line_suggestions.h"
#include "zrqrybld/adapters/qt/qt_input.h"
#include "zrqrybld/adapters/qt/qt_text.h"
#include "zrqrybld/adapters/qt/say.h"
#include "zrqrybld/base/texts_grid.h"
#include "zrqrybld/expression/intelli_list.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/platform/commands.h"
#include "zrqrybld/sql/sql_pane.h"

namespace zrqrybld {
namespace {

using Kind = ConditionNode::Kind;
constexpr int kField = 0;
constexpr int kCriterion = 1;
constexpr int kPathRole = Qt::UserRole;

QVariant ToVariant(const ConditionPath& path) {
  QVariantList list;
  for (const std::size_t place : path) list += static_cast<qulonglong>(place);
  return list;
}

ConditionPath PathOf(const QModelIndex& index) {
  ConditionPath path;
  for (const QVariant& place : index.siblingAtColumn(kField).data(kPathRole).toList())
    path.push_back(place.toULongLong());
  return path;
}

ConditionPath ParentOf(const ConditionPath& path) { return {path.begin(), path.end() - 1}; }

ConditionPath With(ConditionPath path, std::size_t place) {
  path.push_back(place);
  return path;
}

// A condition that is not written yet.
ConditionNode Blank() { return {Kind::Single}; }

}  // namespace

// --- The tree's items ---

// Items move by dragging within the tree: the view is told where to, and fills them anew.
class ConditionsView::Items final : public QTreeWidget {
 public:
  explicit Items(ConditionsView& view) : QTreeWidget(&view), view_(view) {
    setDragDropMode(QAbstractItemView::InternalMove);
    setDefaultDropAction(Qt::MoveAction);
  }

  bool IsEditing() const { return state() == EditingState; }

 protected:
  void dropEvent(QDropEvent* event) override {
    const QModelIndex target = indexAt(event->position().toPoint());
    const DropIndicatorPosition where = dropIndicatorPosition();
    const ConditionPath from = view_.Current();
    const ConditionPath to = PathOf(target);
    event->setDropAction(Qt::IgnoreAction);
    event->accept();
    if (!target.isValid() || to.empty()) return;
    view_.boundary_.Run([&] {
      const ConditionNode* node = NodeAt(view_.shown_, to);
      if (where == OnItem && node && node->IsGroup()) {
        view_.MoveTo(from, to, node->parts.size());
      } else if (to.size() > 1) {
        view_.MoveTo(from, ParentOf(to), to.back() + (where == AboveItem ? 0 : 1));
      } else if (node && node->IsGroup()) {
        view_.MoveTo(from, to, 0);
      }
    });
  }

 private:
  ConditionsView& view_;
};

// Edits a field with the columns to choose from, and a criterion with suggestions.
class ConditionsView::Delegate final : public QStyledItemDelegate {
 public:
  explicit Delegate(ConditionsView& view) : QStyledItemDelegate(&view), view_(view) {}

  QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem&, const QModelIndex& index) const override {
    const ConditionNode* node = NodeAt(view_.shown_, PathOf(index));
    if (!node || node->IsGroup()) return nullptr;
    if (index.column() == kCriterion) {
      auto* line = new QLineEdit(parent);
      line->setFrame(false);
      line->setAccessibleName(Say(*view_.texts_, text::ConditionCriterion));
      if (const Ref<qbIntelliList> list = view_.conditions_.SuggestionsFor(node->field, view_.values_))
        new LineSuggestions(*line, list);
      return line;
    }
    auto* combo = new QComboBox(parent);
    combo->setEditable(true);
    combo->setInsertPolicy(QComboBox::NoInsert);
    combo->setFrame(false);
    combo->setAccessibleName(Say(*view_.texts_, text::ConditionField));
    for (const std::string& field : view_.conditions_.Fields()) combo->addItem(ToQString(field));
    combo->completer()->setCompletionMode(QCompleter::PopupCompletion);
    combo->completer()->setFilterMode(Qt::MatchContains);
    return combo;
  }

  void setEditorData(QWidget* editor, const QModelIndex& index) const override {
    const ConditionNode* node = NodeAt(view_.shown_, PathOf(index));
    if (!node) return;
    if (auto* combo = qobject_cast<QComboBox*>(editor)) {
      combo->setEditText(ToQString(QueryConditions::TextOf(node->field)));
      combo->lineEdit()->selectAll();
    } else if (auto* line = qobject_cast<QLineEdit*>(editor)) {
      line->setText(ToQString(node->criterion));
      line->selectAll();
    }
  }

  void setModelData(QWidget* editor, QAbstractItemModel*, const QModelIndex& index) const override {
    const auto* combo = qobject_cast<QComboBox*>(editor);
    const QString text = combo ? combo->currentText() : qobject_cast<QLineEdit*>(editor)->text();
    // The tree is filled anew, which the editor must not see.
    QMetaObject::invokeMethod(
        &view_,
        [view = &view_, path = PathOf(index), column = index.column(), text] { view->Commit(path, column, text); },
        Qt::QueuedConnection);
  }

  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
    constexpr int kAir = 6;
    QSize size = QStyledItemDelegate::sizeHint(option, index);
    size.setHeight(option.fontMetrics.height() + kAir);
    return size;
  }

 private:
  ConditionsView& view_;
};

// --- The view ---

ConditionsView::ConditionsView(const Ref<qbQueryBuilder>& hub, std::shared_ptr<ValueSource> values, QWidget* parent)
    : QWidget(parent),
      conditions_(hub),
      values_(std::move(values)),
      texts_(hub->Texts()),
      tree_(new Items(*this)),
      message_(new QLabel(this)) {
  auto* delegate = new Delegate(*this);
  tree_->setItemDelegate(delegate);
  // Behind what the editor has to say.
  connect(delegate, &QAbstractItemDelegate::closeEditor, this, &ConditionsView::EndEdit, Qt::QueuedConnection);
  tree_->setHeaderLabels({Say(*texts_, text::ConditionField), Say(*texts_, text::ConditionCriterion)});
  tree_->header()->setSectionResizeMode(kField, QHeaderView::ResizeToContents);
  tree_->header()->setStretchLastSection(true);
  tree_->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed);
  tree_->setContextMenuPolicy(Qt::CustomContextMenu);
  tree_->setAllColumnsShowFocus(true);
  tree_->setFrameShape(QFrame::NoFrame);
  tree_->setAccessibleName(Say(*texts_, text::ConditionsName));
  tree_->installEventFilter(this);
  message_->setTextFormat(Qt::PlainText);
  message_->setWordWrap(true);
  message_->setMargin(4);
  message_->hide();
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->addWidget(tree_);
  layout->addWidget(message_);
  setFocusProxy(tree_);
  connect(tree_, &QWidget::customContextMenuRequested, this,
          [this](QPoint at) { boundary_.Run([&] { ShowMenu(at); }); });
  if (const Ref<qbSQLPane> statement = hub->SQLPane()) {
    statement_ = statement->SQLChanged.Connect([this] {
      if (isVisible()) Refresh();
    });
  }
  shown_ = Rooted(conditions_.Tree());
  Fill();
}

ConditionsView::~ConditionsView() = default;

void ConditionsView::changeEvent(QEvent* event) {
  if (event->type() == QEvent::LanguageChange) Fill();
  QWidget::changeEvent(event);
}

void ConditionsView::showEvent(QShowEvent* event) {
  boundary_.Run([this] { Refresh(); });
  QWidget::showEvent(event);
}

// A condition that is being written stays while the others are what they were.
void ConditionsView::Refresh() {
  ConditionTree now = conditions_.Tree();
  const bool same = Plain(shown_.where) == now.where && Plain(shown_.having) == now.having;
  if (same && tree_->topLevelItemCount() == (conditions_.Groups() ? 2 : 1)) return;
  const ConditionPath current = Current();
  shown_ = Rooted(std::move(now));
  Fill();
  Select(current);
}

// --- Items ---

void ConditionsView::Fill() {
  tree_->clear();
  const auto add = [this](TextId caption, const ConditionNode& node, std::size_t part) {
    auto* item = new QTreeWidgetItem(tree_);
    FillItem(*item, node, {part});
    item->setText(kField, Say(*texts_, caption) + QStringLiteral(" ") + GroupText(node));
    item->setFlags(item->flags() & ~Qt::ItemIsDragEnabled);
  };
  add(text::ConditionsOnRows, shown_.where, 0);
  if (conditions_.Groups()) add(text::ConditionsOnGroups, shown_.having, 1);
  tree_->expandAll();
}

QString ConditionsView::GroupText(const ConditionNode& node) const {
  const bool all = node.kind == Kind::All;
  const TextId id =
      node.negated ? (all ? text::NotAllOfThese : text::NoneOfThese) : (all ? text::AllOfThese : text::AnyOfThese);
  return Say(*texts_, id);
}

void ConditionsView::FillItem(QTreeWidgetItem& item, const ConditionNode& node, const ConditionPath& path) {
  item.setData(kField, kPathRole, ToVariant(path));
  item.setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled |
                (node.IsGroup() ? Qt::ItemIsDropEnabled : Qt::ItemIsEditable));
  if (node.IsGroup()) {
    QFont font = tree_->font();
    font.setBold(true);
    item.setFont(kField, font);
    item.setText(kField, GroupText(node));
    item.setFirstColumnSpanned(true);
    for (std::size_t i = 0; i < node.parts.size(); ++i)
      FillItem(*new QTreeWidgetItem(&item), node.parts[i], With(path, i));
    return;
  }
  const QString field = ToQString(QueryConditions::TextOf(node.field));
  item.setText(kField, node.negated ? Say(*texts_, text::NotThis, field) : field);
  item.setText(kCriterion, ToQString(node.criterion));
  item.setToolTip(kField, item.text(kField));
  item.setToolTip(kCriterion, item.text(kCriterion));
}

ConditionPath ConditionsView::Current() const { return PathOf(tree_->currentIndex()); }

QTreeWidgetItem* ConditionsView::ItemAt(const ConditionPath& path) const {
  if (path.empty()) return nullptr;
  QTreeWidgetItem* item = tree_->topLevelItem(static_cast<int>(path[0]));
  for (std::size_t i = 1; item && i < path.size(); ++i) {
    QTreeWidgetItem* part = item->child(std::min(static_cast<int>(path[i]), item->childCount() - 1));
    if (!part) break;  // the nearest that is there
    item = part;
  }
  return item;
}

void ConditionsView::Select(const ConditionPath& path) {
  QTreeWidgetItem* item = ItemAt(path);
  tree_->setCurrentItem(item ? item : tree_->topLevelItem(0));
}

// --- Changes ---

void ConditionsView::Apply(std::optional<ConditionTree> next, const ConditionPath& current) {
  if (!next) return;
  message_->hide();
  const ConditionTree before = conditions_.Tree();
  shown_ = Rooted(std::move(*next));
  const ConditionTree plain{Plain(shown_.where), Plain(shown_.having)};
  Fill();
  if (plain != before) {
    conditions_.Set(plain);
    Refresh();  // a column that is shown keeps its place, and so does what is asked of it
  }
  Select(current);
}

void ConditionsView::Begin(std::optional<ConditionTree> next, const ConditionPath& path) {
  if (!next) return;
  shown_ = Rooted(std::move(*next));
  Fill();
  Edit(path, kField);
}

void ConditionsView::Edit(const ConditionPath& path, int column) {
  QTreeWidgetItem* item = ItemAt(path);
  if (!item) return;
  tree_->setCurrentItem(item, column);
  tree_->setFocus();
  tree_->editItem(item, column);
}

// What was typed into a field or a criterion; a field alone goes on with its criterion.
void ConditionsView::Commit(const ConditionPath& path, int column, const QString& typed) {
  boundary_.Run([&] {
    ConditionTree next = shown_;
    ConditionNode* node = NodeAt(next, path);
    if (!node || node->IsGroup()) return;
    const std::string text = ToUtf8(typed.trimmed());
    if (column == kField) {
      if (text.empty()) return Apply(Without(std::move(next), path), path);
      node->field = conditions_.FieldIn(text, path[0] == 1);
      const bool wantsCriterion = !node->field.table.empty() && node->criterion.empty();
      Apply(std::move(next), path);
      if (wantsCriterion) Edit(path, kCriterion);
      return;
    }
    try {
      node->criterion = conditions_.Formatted(node->field, text);
    } catch (const std::exception& error) {
      message_->setText(Say(*texts_, error));
      message_->show();
      return;
    }
    Apply(std::move(next), path);
  });
}

// A condition that was not finished is none.
void ConditionsView::EndEdit() {
  const ConditionPath path = Current();
  const ConditionNode* node = NodeAt(shown_, path);
  if (!node || node->IsGroup() || static_cast<Items*>(tree_)->IsEditing()) return;
  if (Plain(*node) == ConditionNode()) boundary_.Run([&] { Apply(Without(shown_, path), path); });
}

void ConditionsView::Add() {
  const ConditionPath path = Current().empty() ? ConditionPath{0} : Current();
  const ConditionNode* node = NodeAt(shown_, path);
  if (!node) return;
  const ConditionPath group = node->IsGroup() ? path : ParentOf(path);
  const std::size_t place = node->IsGroup() ? node->parts.size() : path.back() + 1;
  Begin(WithPart(shown_, group, place, Blank()), With(group, place));
}

void ConditionsView::AddBeside() {
  const ConditionPath path = Current();
  if (path.size() < 2 || !NodeAt(shown_, path)) return;
  const ConditionNode* outer = NodeAt(shown_, ParentOf(path));
  const Kind kind = outer->kind == Kind::All ? Kind::Any : Kind::All;
  Begin(WithGroup(shown_, path, kind, Blank()), With(path, 1));
}

void ConditionsView::Remove() {
  const ConditionPath path = Current();
  Apply(Without(shown_, path), path);
}

void ConditionsView::Negate() {
  ConditionTree next = shown_;
  ConditionNode* node = NodeAt(next, Current());
  if (!node) return;
  node->negated = !node->negated;
  Apply(std::move(next), Current());
}

void ConditionsView::ChangeKind() {
  ConditionTree next = shown_;
  ConditionNode* node = NodeAt(next, Current());
  if (!node || !node->IsGroup()) return;
  node->kind = node->kind == Kind::All ? Kind::Any : Kind::All;
  Apply(std::move(next), Current());
}

void ConditionsView::TakeOut() {
  const ConditionPath path = Current();
  if (path.size() >= 2) Apply(WithoutGroup(shown_, path), ParentOf(path));
}

void ConditionsView::Move(int direction) {
  ConditionPath path = Current();
  if (path.size() < 2 || (direction < 0 && path.back() == 0)) return;
  const ConditionNode* group = NodeAt(shown_, ParentOf(path));
  if (direction > 0 && path.back() + 1 >= group->parts.size()) return;
  std::optional<ConditionTree> next =
      WithMoved(shown_, path, ParentOf(path), direction < 0 ? path.back() - 1 : path.back() + 2);
  path.back() += direction < 0 ? std::size_t(-1) : 1;
  Apply(std::move(next), path);
}

void ConditionsView::MoveTo(const ConditionPath& from, const ConditionPath& group, std::size_t before) {
  Apply(WithMoved(shown_, from, group, before), With(group, before));
}

// --- Menu and keys ---

void ConditionsView::ShowMenu(QPoint at) {
  const ConditionPath path = Current();
  const ConditionNode* node = NodeAt(shown_, path);
  const bool inner = node && path.size() > 1;
  QMenu menu(this);
  const auto add = [&](TextId id, void (ConditionsView::*act)(), bool enabled) {
    QAction* action = menu.addAction(Say(*texts_, id));
    action->setEnabled(enabled);
    connect(action, &QAction::triggered, this, [this, act] { boundary_.Run([&] { (this->*act)(); }); });
  };
  const ConditionNode* outer = inner ? NodeAt(shown_, ParentOf(path)) : nullptr;
  add(text::MenuAddCondition, &ConditionsView::Add, true);
  add(outer && outer->kind == Kind::Any ? text::MenuAndCondition : text::MenuOrCondition, &ConditionsView::AddBeside,
      inner);
  menu.addSeparator();
  add(node && node->kind == Kind::Any ? text::MenuAskAll : text::MenuAskAny, &ConditionsView::ChangeKind,
      node && node->IsGroup());
  add(text::MenuNegateCondition, &ConditionsView::Negate, inner);
  add(text::MenuTakeOutCondition, &ConditionsView::TakeOut, inner && WithoutGroup(shown_, path));
  menu.addSeparator();
  add(text::MenuRemoveCondition, &ConditionsView::Remove, inner);
  menu.exec(tree_->viewport()->mapToGlobal(at));
}

// What an open editor leaves to the tree is not meant for it.
bool ConditionsView::Press(const QKeyEvent& key) {
  if (static_cast<Items*>(tree_)->IsEditing()) return false;
  const KeyEvent event = ToKeyEvent(key);
  if (Asks(event, Command::InsertRows)) return Add(), true;
  if (Asks(event, Command::DeleteRows)) return Remove(), true;
  if (Asks(event, Command::MoveRowsUp)) return Move(-1), true;
  if (Asks(event, Command::MoveRowsDown)) return Move(1), true;
  if (event.keyCode != KeyCodeEnter || event.shift != 0) return false;
  const ConditionNode* node = NodeAt(shown_, Current());
  if (!node || node->IsGroup()) return false;
  Edit(Current(), node->criterion.empty() ? kField : kCriterion);
  return true;
}

bool ConditionsView::eventFilter(QObject* watched, QEvent* event) {
  bool used = false;
  if (watched == tree_ && event->type() == QEvent::KeyPress) {
    boundary_.Run([&] { used = Press(static_cast<QKeyEvent&>(*event)); });
  }
  return used || QWidget::eventFilter(watched, event);
}

}  // namespace zrqrybld
