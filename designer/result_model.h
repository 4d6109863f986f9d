// ResultModel: the rows that a statement has given so far, for a table view. Further rows are asked for while the view
// scrolls to its end.
#pragma once

#include <QAbstractTableModel>
#include <QColor>
#include <QItemSelection>
#include <QString>
#include <functional>
#include <string>
#include <vector>

#include "zrqrybld/adapters/run/query_runner.h"

namespace zrqrybld {

class ResultModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  /// No more rows are held than this, and no more memory than about this many bytes (the rows read last may go beyond).
  static constexpr std::size_t kMostRows = QueryRunner::kMostRows;
  static constexpr std::size_t kMostBytes = std::size_t{64} << 20;

  explicit ResultModel(QObject* parent = nullptr);

  /// Called when the view wants further rows.
  void SetWant(std::function<void()> want) { want_ = std::move(want); }
  /// The colour of NULL and of binary data.
  void SetQuietColor(const QColor& color) { quiet_ = color; }

  /// Begins anew: these columns and no rows.
  void Begin(const std::vector<std::string>& columns);
  /// Appends rows; with `more` there may be further ones.
  void Append(std::vector<ResultRow> rows, bool more);
  /// There are no further rows to be had.
  void End() { more_ = false; }

  std::size_t RowsHeld() const { return rows_.size(); }
  /// Whether there may be rows that are not shown yet.
  bool HasMore() const { return more_; }
  /// Whether no further rows are taken, because of their number or size.
  bool IsFull() const { return rows_.size() >= kMostRows || bytes_ >= kMostBytes; }

  /// The selected values, columns separated by tabs, rows by line feeds; NULL is empty. A value with a tab, a line
  /// break or a quote stands in quotes. What lies between several selected pieces is empty. With `formulasAsText` a
  /// text that a spreadsheet would take for a formula gets an apostrophe in front.
  QString SelectedText(const QItemSelection& selection, bool withNames, bool formulasAsText) const;

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  bool canFetchMore(const QModelIndex& parent) const override;
  void fetchMore(const QModelIndex& parent) override;

 private:
  void FindNumbers(const std::vector<ResultRow>& rows);

  std::vector<QString> names_;
  std::vector<bool> numbers_;  // by column, from the first rows
  std::vector<ResultRow> rows_;
  std::size_t bytes_ = 0;
  bool more_ = false;
  bool asked_ = false;  // further rows are on their way
  std::function<void()> want_;
  QColor quiet_;
};

}  // namespace zrqrybld
