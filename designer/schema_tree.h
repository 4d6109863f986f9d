// SchemaTree: the pane at the left with what the source holds: schemas, tables, views and their columns.
//
// Below them stand the queries of the statement, where it is made of several.
//
// The source is asked for its tables once, when the pane is first seen, and for a table's columns when it is opened.
#pragma once

#include <QDockWidget>
#include <QLineEdit>
#include <QPointer>
#include <QTreeWidget>
#include <vector>

#include "zrqrybld/adapters/qt/query_designer_widget.h"
#include "zrqrybld/diagram/table_picker.h"

namespace zrqrybld {

class MemberTable;
class QueryList;

class SchemaTree : public QDockWidget {
  Q_OBJECT

 public:
  /// The designer must live until another one is followed. Tables and columns can be dragged onto its diagram.
  SchemaTree(QueryDesignerWidget& designer, QWidget* parent);

  /// Shows the source of another designer and adds to its query from now on.
  void Follow(QueryDesignerWidget& designer);

  /// Another source is in use, or none.
  void SourceChanged();
  /// Gives the keyboard to the filter.
  void TakeFocus();

 Q_SIGNALS:
  /// What was wanted cannot be had.
  void Failed(const QString& message);
  /// The user does not want to see it.
  void CloseWanted();
  /// The keyboard is to go to the next pane (1) or to the one before (-1).
  void LeaveWanted(int direction);

 protected:
  void showEvent(QShowEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  class Tree;

  void Fill();
  void FillColumns(QTreeWidgetItem& table);
  void Filter();
  void Add(const QTreeWidgetItem& item);
  void AddColumn(const ListedTable& table, const std::string& column);
  bool AddWithPath(const ListedTable& table);
  Ref<qbEntity> EntityOf(const ListedTable& table) const;
  const ListedTable* TableOf(const QTreeWidgetItem& item) const;
  void Run(const std::function<void()>& work);

  QPointer<QueryDesignerWidget> designer_;
  std::shared_ptr<const TextSource> texts_;
  QLineEdit* filter_;
  QueryList* queries_;
  MemberTable* members_;
  QTreeWidget* tree_;
  std::vector<ListedTable> tables_;
  bool filled_ = false;
};

}  // namespace zrqrybld
