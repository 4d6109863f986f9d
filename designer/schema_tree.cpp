#include "designer/schema_tree.h"

#include <QDragEnterEvent>
#include <QDropEvent>
#include <QHeaderView>
#include <QInputDialog>
#include <QMimeData>
#include <QShortcut>
#include <QTimer>
#include <QVBoxLayout>
#include <map>

#include "designer/member_table.h"
#include "designer/query_list.h"
#include "designer/tool_icons.h"
#include "zrqrybld/adapters/qt/say.h"
#include "zrqrybld/adapters/qt/shortcuts.h"
#include "zrqrybld/adapters/qt/telling_order.h"
#include "zrqrybld/base/texts_designer.h"
#include "zrqrybld/diagram/join_paths.h"
#include "zrqrybld/diagram/source_names.h"
#include "zrqrybld/sql/source_rules.h"

namespace zrqrybld {
namespace {

constexpr int kTreeWidth = 212;  // of a screen of 1,024 pixels so much that the grid beside it shows its criteria

constexpr auto kDragFormat = "application/x-zrqrybld-schema";
constexpr int kTableRole = Qt::UserRole;       // of a table: its place in the list
constexpr int kColumnRole = Qt::UserRole + 1;  // of a column: its name
constexpr int kLoadedRole = Qt::UserRole + 2;  // of a table: whether its columns were read

QString PathText(const JoinPath& path) {
  QString text = ToQString(path.from);
  for (const std::string& table : path.tables) text += QStringLiteral(" → ") + ToQString(table);
  return text;
}

}  // namespace

// A drag carries nothing but its kind: what is dragged is the current item.
class SchemaTree::Tree final : public QTreeWidget {
 protected:
  QSize sizeHint() const override { return {kTreeWidth, QTreeWidget::sizeHint().height()}; }
  QStringList mimeTypes() const override { return {kDragFormat}; }
  QMimeData* mimeData(const QList<QTreeWidgetItem*>&) const override {
    auto* dragged = new QMimeData;
    dragged->setData(kDragFormat, "1");
    return dragged;
  }
};

SchemaTree::SchemaTree(QueryDesignerWidget& designer, QWidget* parent)
    : QDockWidget(parent),
      designer_(&designer),
      texts_(designer.QueryBuilder().Texts()),
      filter_(new QLineEdit),
      queries_(new QueryList(kDragFormat)),
      members_(new MemberTable),
      tree_(new Tree) {
  setObjectName(QStringLiteral("schemaTree"));
  setWindowTitle(Say(*texts_, text::SchemaTreeName));
  setAllowedAreas(Qt::LeftDockWidgetArea | Qt::RightDockWidgetArea);
  filter_->setPlaceholderText(Say(*texts_, text::SchemaFilter));
  filter_->setAccessibleName(Say(*texts_, text::SchemaFilter));
  filter_->setClearButtonEnabled(true);
  filter_->installEventFilter(this);
  tree_->setAccessibleName(Say(*texts_, text::SchemaTreeName));
  tree_->setColumnCount(2);
  tree_->setHeaderHidden(true);
  tree_->header()->setStretchLastSection(false);
  tree_->header()->setSectionResizeMode(0, QHeaderView::Stretch);
  tree_->header()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
  tree_->setUniformRowHeights(true);
  tree_->setDragEnabled(true);
  tree_->setDragDropMode(QAbstractItemView::DragOnly);
  tree_->setFrameShape(QFrame::NoFrame);
  tree_->setExpandsOnDoubleClick(false);
  auto* inside = new QWidget;
  auto* layout = new QVBoxLayout(inside);
  layout->setContentsMargins(4, 4, 4, 0);
  layout->setSpacing(4);
  layout->addWidget(filter_);
  layout->addWidget(tree_, 1);
  layout->addWidget(queries_);
  layout->addWidget(members_);
  setWidget(inside);
  TellInOrder({findChild<QWidget*>(QStringLiteral("qt_dockwidget_floatbutton")),
               findChild<QWidget*>(QStringLiteral("qt_dockwidget_closebutton")), inside});
  setFocusProxy(filter_);

  for (const auto& [command, direction] : {std::pair(Command::NextPane, 1), {Command::PreviousPane, -1}}) {
    auto* leave = new QShortcut(ShortcutOf(command), this);
    leave->setContext(Qt::WidgetWithChildrenShortcut);
    connect(leave, &QShortcut::activated, this, [this, step = direction] { Q_EMIT LeaveWanted(step); });
  }
  connect(filter_, &QLineEdit::textChanged, this, &SchemaTree::Filter);
  connect(tree_, &QTreeWidget::itemExpanded, this, [this](QTreeWidgetItem* item) { FillColumns(*item); });
  connect(tree_, &QTreeWidget::itemActivated, this, [this](const QTreeWidgetItem* item) { Add(*item); });
  designer_->DiagramView().viewport()->installEventFilter(this);
  queries_->SetErrorHandler([this](const std::exception& error) { Q_EMIT Failed(Say(*texts_, error)); });
  members_->SetErrorHandler([this](const std::exception& error) { Q_EMIT Failed(Say(*texts_, error)); });
  queries_->Follow(designer_->QueryBuilder());
  members_->Follow(designer_->QueryBuilder());
}

void SchemaTree::Follow(QueryDesignerWidget& designer) {
  if (designer_) designer_->DiagramView().viewport()->removeEventFilter(this);
  designer_ = &designer;
  designer_->DiagramView().viewport()->installEventFilter(this);
  queries_->Follow(designer_->QueryBuilder());
  members_->Follow(designer_->QueryBuilder());
  SourceChanged();
}

void SchemaTree::SourceChanged() {
  filled_ = false;
  tree_->clear();
  tables_.clear();
  if (isVisible()) Fill();
}

void SchemaTree::TakeFocus() {
  filter_->setFocus(Qt::ShortcutFocusReason);
  filter_->selectAll();
}

void SchemaTree::showEvent(QShowEvent* event) {
  QDockWidget::showEvent(event);
  if (!filled_) Fill();
}

void SchemaTree::closeEvent(QCloseEvent* event) {
  QDockWidget::closeEvent(event);
  Q_EMIT CloseWanted();
}

void SchemaTree::Run(const std::function<void()>& work) {
  try {
    work();
  } catch (const std::exception& error) {
    Q_EMIT Failed(Say(*texts_, error));
  }
}

// --- What is there ---

void SchemaTree::Fill() {
  qbQueryBuilder& hub = designer_->QueryBuilder();
  if (!hub.IsConnected()) return;
  filled_ = true;
  Run([&] {
    const BusyPointer busy(hub.GetToolkit());
    tables_ = TablePicker(hub.Hub()).ReadTables();
  });
  std::ranges::sort(tables_, {}, [](const ListedTable& table) { return FoldCase(table.text); });
  std::map<std::string, QTreeWidgetItem*> schemas;
  for (const ListedTable& table : tables_) schemas.emplace(table.name.schema, nullptr);
  QList<QTreeWidgetItem*> top;
  if (schemas.size() > 1) {
    for (auto& [schema, item] : schemas) {
      item = new QTreeWidgetItem({ToQString(schema)});
      top.push_back(item);
    }
  }
  for (std::size_t i = 0; i < tables_.size(); ++i) {
    const ListedTable& table = tables_[i];
    QTreeWidgetItem* schema = schemas[table.name.schema];
    auto* item = new QTreeWidgetItem({ToQString(schema ? table.name.table : table.text)});
    item->setIcon(0, IconOf(table.isView ? Glyph::View : Glyph::Table));
    item->setData(0, kTableRole, static_cast<qulonglong>(i));
    item->setChildIndicatorPolicy(QTreeWidgetItem::ShowIndicator);
    if (schema) {
      schema->addChild(item);
    } else {
      top.push_back(item);
    }
  }
  tree_->addTopLevelItems(top);
  if (schemas.size() > 1) {
    for (QTreeWidgetItem* schema : top) schema->setExpanded(true);
  }
  Filter();
}

void SchemaTree::FillColumns(QTreeWidgetItem& table) {
  const ListedTable* listed = TableOf(table);
  if (!listed || table.data(0, kLoadedRole).toBool()) return;
  table.setData(0, kLoadedRole, true);
  Run([&] {
    qbQueryBuilder& hub = designer_->QueryBuilder();
    const BusyPointer busy(hub.GetToolkit());
    const auto columns = TablePicker(hub.Hub()).ReadColumnsAndKeys(listed->text);
    for (const SourceColumn& column : columns ? *columns : std::vector<SourceColumn>()) {
      const Ref<qbDataType> type = hub.DataTypes()->FindByIndicatorLong(column.type, column.isLong);
      auto* item = new QTreeWidgetItem(&table, {ToQString(column.name), type ? ToQString(type->Name) : QString()});
      item->setData(0, kColumnRole, ToQString(column.name));
      item->setForeground(1, palette().brush(QPalette::Disabled, QPalette::Text));
      if (column.isKey) {
        item->setIcon(0, IconOf(Glyph::Key));
        QFont font = tree_->font();
        font.setBold(true);
        item->setFont(0, font);
      }
    }
  });
  Filter();
}

// Shows the tables that hold the text in their names, or in those of columns that were read.
void SchemaTree::Filter() {
  const QString wanted = filter_->text();
  const auto holds = [&](const QTreeWidgetItem& item) { return item.text(0).contains(wanted, Qt::CaseInsensitive); };
  const auto filterTable = [&](QTreeWidgetItem& table) {
    const bool whole = holds(table);
    bool any = false;
    for (int i = 0; i < table.childCount(); ++i) {
      const bool shown = whole || holds(*table.child(i));
      table.child(i)->setHidden(!shown);
      any |= shown;
    }
    table.setHidden(!whole && !any);
    return whole || any;
  };
  for (int i = 0; i < tree_->topLevelItemCount(); ++i) {
    QTreeWidgetItem& item = *tree_->topLevelItem(i);
    if (TableOf(item)) {
      filterTable(item);
      continue;
    }
    bool any = false;
    for (int j = 0; j < item.childCount(); ++j) any |= filterTable(*item.child(j));
    item.setHidden(!any);
  }
}

const ListedTable* SchemaTree::TableOf(const QTreeWidgetItem& item) const {
  const QVariant place = item.data(0, kTableRole);
  return place.isValid() ? &tables_.at(place.toULongLong()) : nullptr;
}

// --- What is taken ---

void SchemaTree::Add(const QTreeWidgetItem& item) {
  const QString column = item.data(0, kColumnRole).toString();
  const ListedTable* table = TableOf(column.isEmpty() ? item : *item.parent());
  if (!table) return;
  // A copy: what is added may bring a message, in which the source is closed.
  Run([this, table = *table, column = ToUtf8(column)] {
    if (column.empty()) {
      TablePicker(designer_->QueryBuilder().Hub()).AddTables({table.text});
    } else {
      AddColumn(table, column);
    }
  });
}

Ref<qbEntity> SchemaTree::EntityOf(const ListedTable& table) const {
  const qbQueryBuilder& hub = designer_->QueryBuilder();
  const NameRules rules = CurrentNameRules(hub);
  for (const Ref<qbEntity>& entity : *hub.Entities()) {
    if (FoldedName(TableInSource(*entity, rules)) == FoldedName(table.name)) return entity;
  }
  return nullptr;
}

void SchemaTree::AddColumn(const ListedTable& table, const std::string& column) {
  const StepScope step(designer_->QueryBuilder().Hub(), kStepTick, table.name.table + "." + column);
  if (!EntityOf(table) && !AddWithPath(table)) return;
  const Ref<qbEntity> entity = EntityOf(table);
  const Ref<qbEntityItem> item = entity ? entity->Items()->Item(column) : nullptr;
  if (item) item->SetChecked(true);
}

// Adds the table and those that link it to the diagram. False when the user has not said which way.
bool SchemaTree::AddWithPath(const ListedTable& table) {
  qbQueryBuilder& hub = designer_->QueryBuilder();
  const std::vector<JoinPath> paths = PathsTo(hub, table.name);
  std::vector<std::string> tables{table.text};
  if (!paths.empty()) tables = paths.front().tables;
  if (paths.size() > 1) {
    QStringList ways;
    for (const JoinPath& path : paths) ways += PathText(path);
    bool chosen = false;
    const QString way = QInputDialog::getItem(window(), Say(*texts_, text::WhichWayCaption),
                                              Say(*texts_, text::WhichWay, table.text), ways, 0, false, &chosen);
    if (!chosen) return false;
    tables = paths[static_cast<std::size_t>(ways.indexOf(way))].tables;
  }
  TablePicker(hub.Hub()).AddTables(tables);
  return true;
}

bool SchemaTree::eventFilter(QObject* watched, QEvent* event) {
  if (watched == filter_) {
    // From the filter down into what it has found.
    if (event->type() == QEvent::KeyPress && static_cast<const QKeyEvent*>(event)->key() == Qt::Key_Down) {
      tree_->setFocus();
      if (!tree_->currentItem()) tree_->setCurrentItem(tree_->itemAt(0, 0));
      return true;
    }
    return QDockWidget::eventFilter(watched, event);
  }
  const auto type = event->type();
  if (type != QEvent::DragEnter && type != QEvent::DragMove && type != QEvent::Drop) return false;
  auto* drop = static_cast<QDropEvent*>(event);
  const bool isQuery = drop->source() == queries_;
  if (!drop->mimeData()->hasFormat(kDragFormat) || (drop->source() != tree_ && !isQuery)) return false;
  drop->setDropAction(Qt::CopyAction);
  drop->accept();
  // Behind the drop: the question which way to take must not hold up whoever drags.
  if (type == QEvent::Drop) {
    QTimer::singleShot(0, tree_, [this, isQuery] {
      if (isQuery) {
        queries_->AddCurrent();
      } else if (tree_->currentItem())
        Add(*tree_->currentItem());
    });
  }
  return true;
}

}  // namespace zrqrybld
