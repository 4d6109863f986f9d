// MemberTable: the columns that the members of a UNION output, side by side, with what does not fit marked.
//
// It is hidden while the shown query belongs to no UNION. Activating a cell shows the member.
#pragma once

#include <QTableWidget>
#include <vector>

#include "zrqrybld/adapters/qt/event_boundary.h"
#include "zrqrybld/base/event.h"
#include "zrqrybld/hub/hub.h"

namespace zrqrybld {

class MemberTable final : public QTableWidget {
  Q_OBJECT

 public:
  MemberTable();

  /// Shows the members of another designer, which must live until another one is followed.
  void Follow(qbQueryBuilder& hub);

  /// What goes wrong goes here.
  void SetErrorHandler(ErrorHandler handler) { boundary_.SetHandler(std::move(handler)); }

 protected:
  QSize sizeHint() const override;

 private:
  void Fill();
  QTableWidgetItem* ItemFor(const QString& text, const QString& fault) const;

  EventBoundary boundary_;
  qbQueryBuilder* hub_ = nullptr;
  std::vector<EventConnection> links_;
};

}  // namespace zrqrybld
