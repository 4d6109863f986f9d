// QueryList: the queries that the statement is made of, each below the one that it belongs to, the shown one in bold.
//
// It is hidden while there is only one query. Common tables can be dragged onto the diagram.
#pragma once

#include <QTreeWidget>
#include <cstdint>
#include <functional>
#include <vector>

#include "zrqrybld/adapters/qt/event_boundary.h"
#include "zrqrybld/base/event.h"
#include "zrqrybld/hub/hub.h"

namespace zrqrybld {

class QueryList final : public QTreeWidget {
  Q_OBJECT

 public:
  /// A drag carries data of this kind, and nothing else: what is dragged is the current item.
  explicit QueryList(QString dragFormat);

  /// Shows the queries of another designer, which must live until another one is followed.
  void Follow(qbQueryBuilder& hub);
  /// Adds a box for the query of the current item; false for one that the shown query cannot name.
  bool AddCurrent();

  /// What goes wrong goes here.
  void SetErrorHandler(ErrorHandler handler) { boundary_.SetHandler(std::move(handler)); }

 protected:
  QSize sizeHint() const override;
  QStringList mimeTypes() const override { return {dragFormat_}; }
  QMimeData* mimeData(const QList<QTreeWidgetItem*>& items) const override;
  void contextMenuEvent(QContextMenuEvent* event) override;

 private:
  void Fill();
  QTreeWidgetItem* ItemOf(const StoredQuery& query, QTreeWidgetItem* parent);
  static std::int32_t IdOf(const QTreeWidgetItem& item);

  const QString dragFormat_;
  EventBoundary boundary_;
  qbQueryBuilder* hub_ = nullptr;
  std::vector<EventConnection> links_;
};

}  // namespace zrqrybld
