// JoinPairs: the list in the join window of the columns that are compared: a row for each pair, with a choice for each
// column and one for the comparison.
#pragma once

#include <QStringListModel>
#include <QWidget>
#include <vector>

#include "zrqrybld/base/phrase.h"
#include "zrqrybld/platform/dialogs.h"

class QComboBox;
class QGridLayout;
class QLabel;
class QPushButton;
class QScrollArea;
class QToolButton;

namespace zrqrybld {

class JoinPairs : public QWidget {
  Q_OBJECT

 public:
  /// The language must outlive the list.
  JoinPairs(const JoinDialog& dialog, const TextSource& texts);

  /// What is chosen now.
  std::vector<JoinDialog::Pair> Pairs() const;

 signals:
  void Changed();

 private:
  struct Row {
    QComboBox* column1;
    QComboBox* comparison;
    QComboBox* column2;
    QToolButton* remove;
    JoinDialog::Pair pair;
  };

  void Append(const JoinDialog::Pair& pair);
  void RemoveAt(std::size_t row);
  QComboBox* MakeColumn(QStringListModel& columns, std::size_t chosen);
  // Rows have numbers in their names; the last one cannot go while nothing else holds the join together. Very many
  // are scrolled.
  void Renumber();
  std::vector<QWidget*> PartsOf(const Row& row) const;

  const TextSource& texts_;
  const QString table1_;
  const QString table2_;
  const QStringList comparisons_;
  const bool mayBeEmpty_;
  QStringListModel columns1_;
  QStringListModel columns2_;
  QStringListModel qualified1_;  // for rows in which the tables have changed their sides
  QStringListModel qualified2_;
  QScrollArea* area_ = nullptr;
  QWidget* list_ = nullptr;
  QGridLayout* grid_ = nullptr;
  QLabel* label_ = nullptr;
  QPushButton* add_ = nullptr;
  std::vector<Row> rows_;
};

}  // namespace zrqrybld
