#include "zrqrybld/adapters/qt/list_entries.h"

#include <QPainter>
#include <algorithm>
#include <utility>

#include "zrqrybld/adapters/qt/qt_text.h"
#include "zrqrybld/adapters/qt/theme.h"

namespace zrqrybld {
namespace {

constexpr int kPadding = 4;
constexpr int kGap = 24;  // between an entry and what is said about it
constexpr int kDetailRole = Qt::UserRole + 1;
constexpr int kKindRole = Qt::UserRole + 2;
constexpr int kSignsRole = Qt::UserRole + 3;  // whether any entry has a sign: all texts begin behind it then

ColorRole RoleOf(EntryKind kind) {
  switch (kind) {
    case EntryKind::Keyword:
    case EntryKind::Operator:
    case EntryKind::Function:
      return ColorRole::Keyword;
    case EntryKind::Parameter:
      return ColorRole::Literal;
    case EntryKind::Table:
    case EntryKind::View:
      return ColorRole::Identifier;
    default:
      return ColorRole::Text;
  }
}

// A small sign for the kind of an entry, so that it is told without colour too.
void PaintKind(QPainter& painter, const QRectF& place, EntryKind kind) {
  const QRectF box = place.adjusted(0.5, 0.5, -0.5, -0.5);
  switch (kind) {
    case EntryKind::Table:
    case EntryKind::View:  // a frame with a head, and lines
      painter.drawRect(box);
      painter.drawLine(QPointF(box.left(), box.top() + 3), QPointF(box.right(), box.top() + 3));
      if (kind == EntryKind::Table) {
        painter.drawLine(QPointF(box.center().x(), box.top() + 3), QPointF(box.center().x(), box.bottom()));
      }
      break;
    case EntryKind::Column:  // one column of a table
      painter.drawRect(box.adjusted(3, 0, -3, 0));
      break;
    case EntryKind::ColumnPair:  // two, joined
      painter.drawRect(QRectF(box.left(), box.top() + 2, 3, box.height() - 4));
      painter.drawRect(QRectF(box.right() - 3, box.top() + 2, 3, box.height() - 4));
      painter.drawLine(QPointF(box.left() + 3, box.center().y()), QPointF(box.right() - 3, box.center().y()));
      break;
    case EntryKind::Function:
      painter.drawText(place.adjusted(-2, -3, 2, 3), Qt::AlignCenter, QStringLiteral("ƒ"));
      break;
    case EntryKind::Operator:
      painter.drawText(place.adjusted(-2, -3, 2, 3), Qt::AlignCenter, QStringLiteral("±"));
      break;
    case EntryKind::Parameter:
      painter.drawText(place.adjusted(-2, -3, 2, 3), Qt::AlignCenter, QStringLiteral("?"));
      break;
    case EntryKind::Keyword:
    case EntryKind::Text:
      break;
  }
}

EntryKind KindOf(const QModelIndex& index) { return static_cast<EntryKind>(index.data(kKindRole).toInt()); }

int SignSize(const QFontMetrics& metrics) { return std::max(9, metrics.ascent() - 2); }

int SignSpace(const QFontMetrics& metrics, const QModelIndex& index) {
  return index.data(kSignsRole).toBool() ? SignSize(metrics) + 2 * kPadding : 0;
}

}  // namespace

// --- The entries ---

void EntryModel::SetEntries(std::vector<ListEntry> entries) {
  beginResetModel();
  entries_ = std::move(entries);
  hasSigns_ = std::ranges::any_of(entries_, [](const ListEntry& entry) { return entry.kind != EntryKind::Text; });
  endResetModel();
}

int EntryModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(entries_.size());
}

QVariant EntryModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || index.row() >= rowCount()) return {};
  const ListEntry& entry = entries_[static_cast<std::size_t>(index.row())];
  switch (role) {
    case Qt::DisplayRole:
      return ToQString(entry.text);
    case Qt::AccessibleTextRole:
      return ToQString(entry.detail.empty() ? entry.text : entry.text + ", " + entry.detail);
    case kDetailRole:
      return ToQString(entry.detail);
    case kSignsRole:
      return hasSigns_;
    case kKindRole:
      return static_cast<int>(entry.kind);
    default:
      return {};
  }
}

// --- Painting ---

QSize EntryDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
  const QFontMetrics metrics(option.font);
  const QString detail = index.data(kDetailRole).toString();
  const int width = SignSpace(metrics, index) + metrics.horizontalAdvance(index.data().toString()) + 2 * kPadding +
                    (detail.isEmpty() ? 0 : kGap + metrics.horizontalAdvance(detail));
  return {width, metrics.height() + kPadding};
}

void EntryDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const {
  const Theme theme(option.palette);
  const bool selected = (option.state & QStyle::State_Selected) != 0;
  painter->save();
  painter->setRenderHint(QPainter::Antialiasing, false);
  if (selected) painter->fillRect(option.rect, option.palette.color(QPalette::Highlight));
  const EntryKind kind = KindOf(index);
  const auto color = [&](ColorRole role) {
    return selected ? option.palette.color(QPalette::HighlightedText) : theme.Of(role);
  };
  const QFontMetrics metrics(option.font);
  const int side = SignSize(metrics);
  const QRect inside = option.rect.adjusted(kPadding, 0, -kPadding, 0);
  painter->setFont(option.font);
  painter->setPen(color(RoleOf(kind)));
  PaintKind(*painter, QRectF(inside.left(), option.rect.center().y() - side / 2, side, side), kind);
  const QRect rest = inside.adjusted(SignSpace(metrics, index), 0, 0, 0);
  const QString text = index.data().toString();
  painter->setPen(color(kind == EntryKind::Keyword ? ColorRole::Keyword : ColorRole::Text));
  painter->drawText(rest, Qt::AlignVCenter | Qt::AlignLeft, metrics.elidedText(text, Qt::ElideRight, rest.width()));
  const int left = metrics.horizontalAdvance(text) + kGap;
  if (left < rest.width()) {
    const QString detail = index.data(kDetailRole).toString();
    painter->setPen(color(ColorRole::QuietText));
    painter->drawText(rest.adjusted(left, 0, 0, 0), Qt::AlignVCenter | Qt::AlignRight,
                      metrics.elidedText(detail, Qt::ElideRight, rest.width() - left));
  }
  painter->restore();
}

}  // namespace zrqrybld
