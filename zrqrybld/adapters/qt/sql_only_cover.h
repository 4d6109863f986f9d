// SqlOnlyCover: lies over a pane whose query is not the one that the SQL text stands for.
#pragma once

#include <QWidget>

#include "zrqrybld/base/event.h"
#include "zrqrybld/base/object.h"

namespace zrqrybld {

class qbQueryBuilder;

class SqlOnlyCover final : public QWidget {
 public:
  /// Greys `pane`, which owns it, and takes it out of the way of mouse and keys for as long as `IsSqlOnly` of the hub's
  /// SQL pane says so; with `saysWhy` in words. The hub has its SQL pane already and outlives the cover.
  SqlOnlyCover(QWidget& pane, qbQueryBuilder& hub, bool saysWhy);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  void Follow();

  QWidget& pane_;
  qbQueryBuilder& hub_;
  bool saysWhy_;
  EventConnection link_;
};

}  // namespace zrqrybld
