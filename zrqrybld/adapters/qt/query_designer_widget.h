// QueryDesignerWidget: a whole query designer in one widget.
//
// It makes a hub with its three panes, links them and lays them out with splitters: the diagram
// above, the grid below it, the statement at the bottom. Applications that want another layout put
// the panes into ControlWidgets and a QtTextArea themselves.
#pragma once

#include <QPointer>
#include <QSplitter>
#include <memory>
#include <vector>

#include "zrqrybld/adapters/qt/control_widget.h"
#include "zrqrybld/adapters/qt/qt_text_area.h"
#include "zrqrybld/adapters/qt/qt_toolkit.h"
#include "zrqrybld/base/export.h"
#include "zrqrybld/hub/query_builder.h"

namespace zrqrybld {

class ChangeAnnouncer;
class NameFindBar;

class ZRQRYBLD_API QueryDesignerWidget : public QSplitter {
  Q_OBJECT

 public:
  explicit QueryDesignerWidget(QWidget* parent = nullptr);
  ~QueryDesignerWidget() override;

  /// The hub: options, connection, tables. Register the data source providers at its toolkit first.
  qbQueryBuilder& QueryBuilder() const { return *hub_; }

  /// Gives the keyboard to the next pane (1) or the one before (-1): diagram, grid, statement, those that were added,
  /// and round again; one that is hidden is passed over. F6 and Shift+F6 do this.
  void FocusPane(int direction);

  /// Adds a pane of the application to that round, wherever it stands; it gets the keyboard by its focus proxy, if it
  /// has one.
  void AddPane(QWidget* pane);

  /// The panes' windows.
  ControlWidget& DiagramView() const { return *diagram_; }
  ControlWidget& GridView() const { return *grid_; }
  QtTextArea& SqlView() const { return *sql_; }

 Q_SIGNALS:
  /// The pane is to get the keyboard now: who has hidden it may show it.
  void PaneWanted(QWidget* pane);

 private:
  void ApplyTexts();
  void FitColumns();

  std::shared_ptr<QtToolkit> toolkit_;
  Ref<qbQueryBuilder> hub_;
  ControlWidget* diagram_;
  ControlWidget* grid_;
  QtTextArea* sql_;
  NameFindBar* find_;
  std::vector<QPointer<QWidget>> panes_;  // in the order of the round
  ChangeAnnouncer* announcer_;
  EventConnection wanted_;
  EventConnection texts_;
};

}  // namespace zrqrybld
