// QueryBar: which of the statement's queries the panes show, and the way to the others: the path from the main query as
// buttons, the members of a UNION as tabs, and what the query names of those around it.
//
// It stands above the diagram, and is hidden while there is only one query.
#pragma once

#include <QLabel>
#include <QTabBar>
#include <QToolButton>
#include <QWidget>
#include <cstdint>
#include <utility>
#include <vector>

#include "zrqrybld/adapters/qt/event_boundary.h"
#include "zrqrybld/base/event.h"
#include "zrqrybld/base/export.h"

namespace zrqrybld {

class qbQueryBuilder;

class ZRQRYBLD_API QueryBar final : public QWidget {
  Q_OBJECT

 public:
  /// The hub must outlive the bar.
  explicit QueryBar(qbQueryBuilder& hub, QWidget* parent = nullptr);

  /// What goes wrong when a query is to be shown or changed goes here instead of into a warning.
  void SetErrorHandler(ErrorHandler handler) { boundary_.SetHandler(std::move(handler)); }

  /// The members of the UNION that the shown query belongs to; hidden without one.
  QTabBar& Members() const { return *members_; }

 private:
  // What the bar says, so that it is made anew only when that changes.
  struct Stop {
    std::int32_t id = 0;
    QString title;
    friend bool operator==(const Stop&, const Stop&) = default;
  };
  struct Content {
    std::vector<Stop> path;     // from the main query to the one shown, or to the first of its UNION
    std::vector<Stop> members;  // of that UNION; empty without one
    std::int32_t shown = 0;
    int combined = -1;           // how the shown member is put together with those before it; -1 for the first
    std::vector<int> operators;  // that can be chosen for it
    QString uses;                // what the shown query names of those around it
    friend bool operator==(const Content&, const Content&) = default;
  };

  Content ContentNow() const;
  void Follow();
  void ShowPath();
  void ShowStop(std::size_t at, const Stop& stop);
  void ShowLeftOut(std::size_t at, std::size_t first, std::size_t last);
  QToolButton& ButtonAt(std::size_t at);
  void ShowMembers();
  void ShowOperator();
  void ShowMenu(const QPoint& at);
  void Open(std::int32_t id);

  qbQueryBuilder& hub_;
  EventBoundary boundary_;
  Content content_;
  QWidget* path_;
  std::vector<QToolButton*> stops_;
  QTabBar* members_;
  QToolButton* operator_;
  QToolButton* add_;
  QLabel* uses_;
  std::vector<EventConnection> links_;
};

}  // namespace zrqrybld
