// ResultTable: the view of a statement's rows: sorting by heads, copying, values as a whole, and the menu with all that
// can be done with them.
#pragma once

#include <QTableView>

#include "designer/result_model.h"
#include "zrqrybld/base/phrase.h"

class QMenu;

namespace zrqrybld {

class ResultTable : public QTableView {
  Q_OBJECT

 public:
  /// Both must outlive it.
  ResultTable(ResultModel& model, const TextSource& texts);

  /// The first rows are there: columns as wide as they need, within bounds, and a place for the keyboard to begin.
  void BeginRows();
  /// The rows stand as the source gives them again.
  void ForgetOrder();

  /// Copies the selected values, columns separated by tabs.
  void Copy(bool withNames) const;
  /// Shows the current value as a whole.
  void ShowValue();

 Q_SIGNALS:
  /// The user wants all rows, to write them to a file, to filter them, or no more of them.
  void AllWanted();
  void ExportWanted();
  void FilterWanted();
  void StopWanted();

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;

 private:
  bool TakeKey(const QKeyEvent& key);
  void AddCopyEntries(QMenu& menu);
  void AddSortEntries(QMenu& menu);
  void AddRowEntries(QMenu& menu);

  const ResultModel& model_;
  const TextSource& texts_;
};

}  // namespace zrqrybld
