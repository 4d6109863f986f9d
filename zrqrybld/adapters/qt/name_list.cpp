#include "zrqrybld/adapters/qt/name_list.h"

#include <QCoreApplication>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QPainter>
#include <QSortFilterProxyModel>
#include <QStyledItemDelegate>

#include "zrqrybld/adapters/qt/theme.h"

namespace zrqrybld {
namespace {

// Rows with some air. A chosen one is legible in every palette, whatever its highlight colours.
class RowDelegate final : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;
  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
    constexpr int kAir = 8;
    return QStyledItemDelegate::sizeHint(option, index) + QSize(0, kAir);
  }

 protected:
  void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
    QStyledItemDelegate::initStyleOption(option, index);
    const Theme theme(option->palette);
    for (const QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive}) {
      option->palette.setColor(group, QPalette::Highlight, theme.Of(ColorRole::RowSelected));
      option->palette.setColor(group, QPalette::HighlightedText, theme.Of(ColorRole::RowSelectedText));
    }
  }
};

}  // namespace

NameList::NameList(QString emptyText, QString filteredText, QWidget* parent)
    : QListView(parent), emptyText_(std::move(emptyText)), filteredText_(std::move(filteredText)) {
  setSelectionMode(ExtendedSelection);
  setEditTriggers(NoEditTriggers);
  setUniformItemSizes(true);  // ten thousand names are not measured one by one
  setTextElideMode(Qt::ElideMiddle);
  setItemDelegate(new RowDelegate(this));
}

bool NameList::WalkFromFilter(QEvent& event) {
  if (event.type() != QEvent::KeyPress) return false;
  const int key = static_cast<QKeyEvent&>(event).key();
  if (key != Qt::Key_Down && key != Qt::Key_Up && key != Qt::Key_PageDown && key != Qt::Key_PageUp) return false;
  setFocus();
  if (!selectionModel()->hasSelection() && model()->rowCount() > 0) {
    setCurrentIndex(model()->index(0, 0));
  } else {
    QCoreApplication::sendEvent(this, &event);
  }
  return true;
}

void NameList::paintEvent(QPaintEvent* event) {
  QListView::paintEvent(event);
  if (model() && model()->rowCount() > 0) return;
  const auto* filtered = qobject_cast<const QSortFilterProxyModel*>(model());
  const bool filteredOut = filtered && filtered->sourceModel() && filtered->sourceModel()->rowCount() > 0;
  QPainter painter(viewport());
  painter.setPen(Theme(palette()).Of(ColorRole::QuietText));
  painter.drawText(viewport()->rect().adjusted(16, 16, -16, -16), Qt::AlignCenter | Qt::TextWordWrap,
                   filteredOut ? filteredText_ : emptyText_);
}

}  // namespace zrqrybld
