// NameList: a list of names with some air, which says why it is empty. The windows that let the user
// pick by name put a filter in front of it.
#pragma once

#include <QListView>
#include <QString>

namespace zrqrybld {

class NameList : public QListView {
  Q_OBJECT

 public:
  /// `emptyText` says that there are no names at all.
  /// `filteredText` that none fits the filter.
  NameList(QString emptyText, QString filteredText, QWidget* parent = nullptr);

  /// An event of the filter's line edit: the keys that walk a list walk this one. Returns whether it was one.
  bool WalkFromFilter(QEvent& event);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QString emptyText_;
  QString filteredText_;
};

}  // namespace zrqrybld
