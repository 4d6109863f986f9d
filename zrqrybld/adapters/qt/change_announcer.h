// ChangeAnnouncer: tells assistive technology what has come into a query and what has left it: "table Orders added",
// "query column Orders.Freight removed".
//
// It does nothing, and costs nothing, while nobody listens.
#pragma once

#include <QAccessible>
#include <vector>

#include "zrqrybld/adapters/qt/announcer.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/sql/query_snapshot.h"

namespace zrqrybld {

class ChangeAnnouncer final : public Announcer, private QAccessible::ActivationObserver {
  Q_OBJECT

 public:
  /// `window` owns this; whoever makes it deletes it before `hub` goes. The hub must have its SQL pane.
  ChangeAnnouncer(qbQueryBuilder& hub, QWidget* window);
  ~ChangeAnnouncer() override;

 private:
  void accessibilityActiveChanged(bool active) override;
  void CompareSoon();
  void Compare();

  qbQueryBuilder& hub_;
  QuerySnapshot before_;
  std::int32_t shown_ = 0;  // the query that it is of
  bool waiting_ = false;
  std::vector<EventConnection> links_;
};

}  // namespace zrqrybld
