// How the entries of a list look: their texts, a sign for what they stand for, and what there is to say about them.
#pragma once

#include <QAbstractListModel>
#include <QStyledItemDelegate>
#include <vector>

#include "zrqrybld/platform/list_entry.h"

namespace zrqrybld {

/// The entries for Qt's views.
class EntryModel : public QAbstractListModel {
  Q_OBJECT

 public:
  using QAbstractListModel::QAbstractListModel;
  void SetEntries(std::vector<ListEntry> entries);

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;

 private:
  std::vector<ListEntry> entries_;
  bool hasSigns_ = false;
};

/// Paints an entry. The sign is told apart without colour, too; a list of plain texts has none.
class EntryDelegate : public QStyledItemDelegate {
  Q_OBJECT

 public:
  using QStyledItemDelegate::QStyledItemDelegate;

  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
  void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
};

}  // namespace zrqrybld
