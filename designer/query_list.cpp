#include "designer/query_list.h"

#include <QContextMenuEvent>
#include <QHeaderView>
#include <QMenu>
#include <QMimeData>
#include <algorithm>
#include <unordered_map>
#include <utility>

#include "designer/tool_icons.h"
#include "zrqrybld/adapters/qt/qt_menu.h"
#include "zrqrybld/adapters/qt/say.h"
#include "zrqrybld/base/texts_queries.h"
#include "zrqrybld/diagram/table_picker.h"
#include "zrqrybld/hub/query_menus.h"
#include "zrqrybld/hub/query_set.h"
#include "zrqrybld/hub/query_titles.h"

namespace zrqrybld {
namespace {

constexpr int kMostRows = 8;  // without scrolling
constexpr int kIdRole = Qt::UserRole;

// Where the query stands, in SQL.
QString PlaceOf(const StoredQuery& query) {
  switch (query.kind) {
    case QueryMain:
      return {};
    case QueryDerivedTable:
      return QStringLiteral("FROM");
    case QueryCommonTable:
      return QStringLiteral("WITH");
    case QueryInCell:
      return QStringLiteral("(…)");
    case QueryMember:
      return ToQString(std::string(NameOf(query.combined)));
  }
  return {};
}

}  // namespace

QueryList::QueryList(QString dragFormat) : dragFormat_(std::move(dragFormat)) {
  setColumnCount(2);
  header()->setStretchLastSection(false);
  header()->setSectionResizeMode(0, QHeaderView::Stretch);
  header()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
  setUniformRowHeights(true);
  setDragEnabled(true);
  setDragDropMode(QAbstractItemView::DragOnly);
  setFrameShape(QFrame::NoFrame);
  setExpandsOnDoubleClick(false);
  setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Maximum);
  connect(this, &QTreeWidget::itemActivated, this,
          [this](const QTreeWidgetItem* item) { boundary_.Run([&] { hub_->ShowQuery(IdOf(*item)); }); });
}

void QueryList::Follow(qbQueryBuilder& hub) {
  hub_ = &hub;
  const QString name = Say(*hub.Texts(), text::QueryTreeName);
  setHeaderLabels({name, {}});
  setAccessibleName(name);
  links_.clear();
  links_.push_back(hub.QueriesChanged.Connect([this] { Fill(); }));
  Fill();
}

std::int32_t QueryList::IdOf(const QTreeWidgetItem& item) { return item.data(0, kIdRole).toInt(); }

QTreeWidgetItem* QueryList::ItemOf(const StoredQuery& query, QTreeWidgetItem* parent) {
  const QString title = ToQString(TitleOf(hub_->QueriesNow(), query.id).In(*hub_->Texts()));
  auto* item = new QTreeWidgetItem({title, PlaceOf(query)});
  item->setData(0, kIdRole, query.id);
  item->setToolTip(0, title.toHtmlEscaped());
  item->setIcon(0, IconOf(Glyph::Query));
  if (query.kind != QueryCommonTable) item->setFlags(item->flags() & ~Qt::ItemIsDragEnabled);
  if (parent) parent->addChild(item);
  return item;
}

// The queries come behind those that they belong to.
void QueryList::Fill() {
  const QuerySet& set = hub_->QueriesNow();
  clear();
  setVisible(!set.IsSingle());
  if (set.IsSingle()) return;
  std::unordered_map<std::int32_t, QTreeWidgetItem*> items;
  for (const StoredQuery& query : set.queries) {
    QTreeWidgetItem* parent = query.kind == QueryMain ? nullptr : items[query.parent];
    QTreeWidgetItem* item = ItemOf(query, parent);
    items[query.id] = item;
  }
  addTopLevelItem(items[set.queries.front().id]);
  expandAll();
  QTreeWidgetItem* shown = items[set.shown];
  QFont bold = font();
  bold.setBold(true);
  shown->setFont(0, bold);
  setCurrentItem(shown);
  updateGeometry();
}

QSize QueryList::sizeHint() const {
  const int rows = hub_ ? std::min(static_cast<int>(hub_->QueriesNow().queries.size()), kMostRows) : 1;
  const int row = std::max(sizeHintForRow(0), fontMetrics().height() + 4);
  return {QTreeWidget::sizeHint().width(), header()->sizeHint().height() + rows * row + 2 * frameWidth() + 2};
}

QMimeData* QueryList::mimeData(const QList<QTreeWidgetItem*>&) const {
  auto* dragged = new QMimeData;
  dragged->setData(dragFormat_, "1");
  return dragged;
}

bool QueryList::AddCurrent() {
  const StoredQuery* query = currentItem() ? hub_->QueriesNow().Find(IdOf(*currentItem())) : nullptr;
  if (!query || query->kind != QueryCommonTable) return false;
  const std::string name = query->name;
  if (hub_->QueriesNow().FindNamed(hub_->QueriesNow().shown, name) != query) return false;
  return boundary_.Run([&] { TablePicker(hub_->Hub()).AddTables({name}); });
}

void QueryList::contextMenuEvent(QContextMenuEvent* event) {
  const bool byKey = event->reason() == QContextMenuEvent::Keyboard;
  const QTreeWidgetItem* item = byKey ? currentItem() : itemAt(viewport()->mapFrom(this, event->pos()));
  if (!item) return;
  auto* menu = new QMenu(this);
  menu->setAttribute(Qt::WA_DeleteOnClose);
  FillMenu(*menu, MenuOfQuery(*hub_, IdOf(*item)), boundary_);
  menu->popup(byKey ? viewport()->mapToGlobal(visualItemRect(item).bottomLeft()) : event->globalPos());
}

}  // namespace zrqrybld
