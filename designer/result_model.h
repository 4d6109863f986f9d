// ResultModel: the rows that a statement has given so far, for a table view: filtered and sorted here, without asking
// the source again. Further rows are asked for while the view scrolls to its end.
#pragma once

#include <QAbstractTableModel>
#include <QColor>
#include <QString>
#include <cstdint>
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
  /// What is said of a column's head.
  void SetHeaderTip(const QString& tip) { headerTip_ = tip; }

  /// Begins anew: these columns and no rows, neither sorted nor filtered.
  void Begin(const std::vector<std::string>& columns);
  /// Appends rows; with `more` there may be further ones. Those that the filter lets pass are shown, at the end until
  /// `SortAnew`.
  void Append(std::vector<ResultRow> rows, bool more);
  /// There are no further rows to be had.
  void End() { more_ = false; }

  /// Shows only rows of which a value holds the text, in any case; all with an empty one.
  void SetFilter(const QString& text);
  const QString& Filter() const { return filter_; }
  /// Sorts what is shown; a column below 0 is the order of the source. NULL comes first, then numbers, then texts in
  /// any case.
  void sort(int column, Qt::SortOrder order) override;
  /// Puts rows that came since into their places.
  void SortAnew() { sort(sortedBy_, sortOrder_); }
  /// The column that sorts the rows; -1 for none.
  int SortedBy() const { return sortedBy_; }

  std::size_t RowsHeld() const { return rows_.size(); }
  /// Whether there may be rows that are not held yet.
  bool HasMore() const { return more_; }
  /// Whether no further rows are taken, because of their number or size.
  bool IsFull() const { return rows_.size() >= kMostRows || bytes_ >= kMostBytes; }

  const QString& NameOf(int column) const { return names_[static_cast<std::size_t>(column)]; }
  /// A value that is shown.
  const ResultValue& ValueAt(int row, int column) const {
    return rows_[shown_[static_cast<std::size_t>(row)]][static_cast<std::size_t>(column)];
  }
  /// Whether the column holds numbers, as far as its first rows tell.
  bool IsNumeric(int column) const;

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  bool canFetchMore(const QModelIndex& parent) const override;
  void fetchMore(const QModelIndex& parent) override;

 private:
  void FindNumbers(const std::vector<ResultRow>& rows);
  bool Passes(const ResultRow& row) const;
  void SortShown();
  void ShowAnew(const std::function<void()>& change);

  std::vector<QString> names_;
  std::vector<bool> numbers_;  // by column, from the first rows
  std::vector<ResultRow> rows_;
  std::vector<std::uint32_t> shown_;  // places in `rows_`
  QString filter_;
  int sortedBy_ = -1;
  Qt::SortOrder sortOrder_ = Qt::AscendingOrder;
  std::size_t bytes_ = 0;
  bool more_ = false;
  bool asked_ = false;  // further rows are on their way
  std::function<void()> want_;
  QColor quiet_;
  QString headerTip_;
};

}  // namespace zrqrybld
