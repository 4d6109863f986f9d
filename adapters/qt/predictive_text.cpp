#include "adapters/qt/predictive_text.h"

#include <QKeyEvent>
#include <QPainter>
#include <QScopedValueRollback>
#include <QScreen>
#include <QScrollBar>
#include <QStandardItemModel>
#include <QStyledItemDelegate>
#include <algorithm>
#include <utility>

#include "adapters/qt/qt_input.h"
#include "adapters/qt/qt_text.h"

namespace zrqrybld {
namespace {

constexpr int kMostRows = 10;
constexpr int kPadding = 4;
constexpr int kGap = 24;  // between an entry and what is said about it
constexpr int kWidest = 560;
constexpr int kNarrowest = 160;
constexpr int kDetailRole = Qt::UserRole + 1;
constexpr int kKindRole = Qt::UserRole + 2;

ColorRole RoleOf(SuggestionKind kind) {
  switch (kind) {
    case SuggestionKind::Keyword:
    case SuggestionKind::Operator:
    case SuggestionKind::Function:
      return ColorRole::Keyword;
    case SuggestionKind::Parameter:
      return ColorRole::Literal;
    case SuggestionKind::Table:
    case SuggestionKind::View:
      return ColorRole::Identifier;
    default:
      return ColorRole::Text;
  }
}

// A small sign for the kind of an entry, so that it is told without colour too.
void PaintKind(QPainter& painter, const QRectF& place, SuggestionKind kind) {
  const QRectF box = place.adjusted(0.5, 0.5, -0.5, -0.5);
  switch (kind) {
    case SuggestionKind::Table:
    case SuggestionKind::View:  // a frame with a head, and lines
      painter.drawRect(box);
      painter.drawLine(QPointF(box.left(), box.top() + 3), QPointF(box.right(), box.top() + 3));
      if (kind == SuggestionKind::Table) {
        painter.drawLine(QPointF(box.center().x(), box.top() + 3), QPointF(box.center().x(), box.bottom()));
      }
      break;
    case SuggestionKind::Column:  // one column of a table
      painter.drawRect(box.adjusted(3, 0, -3, 0));
      break;
    case SuggestionKind::ColumnPair:  // two, joined
      painter.drawRect(QRectF(box.left(), box.top() + 2, 3, box.height() - 4));
      painter.drawRect(QRectF(box.right() - 3, box.top() + 2, 3, box.height() - 4));
      painter.drawLine(QPointF(box.left() + 3, box.center().y()), QPointF(box.right() - 3, box.center().y()));
      break;
    case SuggestionKind::Function:
      painter.drawText(place.adjusted(-2, -3, 2, 3), Qt::AlignCenter, QStringLiteral("ƒ"));
      break;
    case SuggestionKind::Operator:
      painter.drawText(place.adjusted(-2, -3, 2, 3), Qt::AlignCenter, QStringLiteral("±"));
      break;
    case SuggestionKind::Parameter:
      painter.drawText(place.adjusted(-2, -3, 2, 3), Qt::AlignCenter, QStringLiteral("?"));
      break;
    case SuggestionKind::Keyword:
      break;
  }
}

class EntryDelegate final : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
    const QFontMetrics metrics(option.font);
    const QString detail = index.data(kDetailRole).toString();
    const int width = IconSpace(metrics) + metrics.horizontalAdvance(index.data().toString()) + 2 * kPadding +
                      (detail.isEmpty() ? 0 : kGap + metrics.horizontalAdvance(detail));
    return {width, metrics.height() + kPadding};
  }

  void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override {
    const Theme theme(option.palette);
    const bool selected = (option.state & QStyle::State_Selected) != 0;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing, false);
    if (selected) painter->fillRect(option.rect, option.palette.color(QPalette::Highlight));
    const auto kind = static_cast<SuggestionKind>(index.data(kKindRole).toInt());
    const auto color = [&](ColorRole role) {
      return selected ? option.palette.color(QPalette::HighlightedText) : theme.Of(role);
    };
    const QFontMetrics metrics(option.font);
    const int side = std::max(9, metrics.ascent() - 2);
    const QRect inside = option.rect.adjusted(kPadding, 0, -kPadding, 0);
    painter->setFont(option.font);
    painter->setPen(color(RoleOf(kind)));
    PaintKind(*painter, QRectF(inside.left(), option.rect.center().y() - side / 2, side, side), kind);
    const QRect rest = inside.adjusted(IconSpace(metrics), 0, 0, 0);
    const QString text = index.data().toString();
    painter->setPen(color(kind == SuggestionKind::Keyword ? ColorRole::Keyword : ColorRole::Text));
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

 private:
  static int IconSpace(const QFontMetrics& metrics) { return std::max(9, metrics.ascent() - 2) + 2 * kPadding; }
};

// A place in a text area, between Qt's units and the bytes of its text, whose lines end in CR LF.
std::size_t BytesAt(const QtTextArea& area, int position) {
  QString before = area.document()->toRawText().left(position);
  before.replace(QChar::ParagraphSeparator, QStringLiteral("\r\n"));
  before.replace(QChar::LineSeparator, QStringLiteral("\r\n"));
  return ToUtf8(before).size();
}

int PositionAt(const std::string& text, std::size_t bytes) {
  const QString before = ToQString(std::string_view(text).substr(0, bytes));
  return static_cast<int>(before.size() - before.count(QLatin1Char('\r')));
}

}  // namespace

// --- The list ---

SuggestionPopup::SuggestionPopup(QWidget* editor) : QListView(editor), model_(new QStandardItemModel(this)) {
  setWindowFlags(Qt::ToolTip | Qt::FramelessWindowHint);
  setAttribute(Qt::WA_ShowWithoutActivating);
  setFocusPolicy(Qt::NoFocus);
  setFrameShape(QFrame::StyledPanel);
  setUniformItemSizes(true);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setEditTriggers(NoEditTriggers);
  setItemDelegate(new EntryDelegate(this));
  setAccessibleName(tr("Suggestions"));
  setModel(model_);
  hide();
}

void SuggestionPopup::ShowAt(const QRect& caret, const std::vector<Suggestion>& items, std::ptrdiff_t selected) {
  model_->clear();
  QStyleOptionViewItem option;
  option.initFrom(this);
  option.font = font();
  int width = kNarrowest;
  for (const Suggestion& item : items) {
    auto* entry = new QStandardItem(ToQString(item.label));
    entry->setData(ToQString(item.detail), kDetailRole);
    entry->setData(static_cast<int>(item.kind), kKindRole);
    model_->appendRow(entry);
    width = std::max(width, itemDelegate()->sizeHint(option, entry->index()).width());
  }
  const int rows = std::min(static_cast<int>(items.size()), kMostRows);
  const bool scrolls = static_cast<int>(items.size()) > rows;
  const QSize size(
      std::min(width, kWidest) + 2 * frameWidth() + (scrolls ? verticalScrollBar()->sizeHint().width() : 0),
      rows * itemDelegate()->sizeHint(option, model_->index(0, 0)).height() + 2 * frameWidth());
  QRect place(caret.bottomLeft() + QPoint(0, 1), size);
  if (const QScreen* screen = parentWidget()->screen()) {
    const QRect room = screen->availableGeometry();
    if (place.bottom() > room.bottom()) place.moveBottom(caret.top() - 1);
    place.moveLeft(std::clamp(place.left(), room.left(), std::max(room.left(), room.right() - place.width() + 1)));
  }
  setGeometry(place);
  setCurrentIndex(selected < 0 ? QModelIndex() : model_->index(static_cast<int>(selected), 0));
  show();
}

// --- The text area ---

PredictiveText::PredictiveText(QtTextArea& area, Ref<qbIntelliList> list)
    : QObject(&area), area_(area), list_(std::move(list)), popup_(new SuggestionPopup(&area)) {
  area.installEventFilter(this);
  connect(area.document(), &QTextDocument::contentsChange, this, [this](int, int removed, int added) {
    removed_ = removed;
    added_ = added;
  });
  connect(&area, &QPlainTextEdit::cursorPositionChanged, this, &PredictiveText::OnCaretMoved);
  connect(popup_, &QListView::clicked, this, [this](const QModelIndex& index) { list_->Accept(index.row()); });
  links_.push_back(area.Edited.Connect([this] { OnEdited(); }));
  links_.push_back(list_->Changed.Connect([this] { ShowList(); }));
  links_.push_back(list_->Accepted.Connect([this](const TextReplacement& taken) { Write(taken); }));
}

PredictiveText::~PredictiveText() = default;

void PredictiveText::OnEdited() {
  if (writing_ || area_.isReadOnly()) return;
  caret_ = area_.textCursor().position();
  const std::string text = area_.Text();
  // A paste is nothing that one is about to complete.
  list_->OnTyped(text, BytesAt(area_, caret_), added_ - removed_ == 1 || (added_ == 1 && removed_ > 0));
}

void PredictiveText::OnCaretMoved() {
  const int position = area_.textCursor().position();
  if (list_->IsOpen() && !writing_ && position != caret_) list_->Close();
  if (fields_.empty() || writing_) return;
  const bool inside = position >= fields_.front().selectionStart() && position <= fields_.back().position();
  if (!inside) EndFields();
}

void PredictiveText::ShowList() {
  if (!list_->IsOpen()) {
    popup_->hide();
    return;
  }
  QTextCursor start = area_.textCursor();
  start.setPosition(PositionAt(area_.Text(), list_->From()));
  const QRect caret = area_.cursorRect(start);
  popup_->ShowAt(QRect(area_.viewport()->mapToGlobal(caret.topLeft()), caret.size()), list_->Items(),
                 list_->Selected());
}

std::pair<std::size_t, std::size_t> PredictiveText::Selection() const {
  const QTextCursor caret = area_.textCursor();
  return {BytesAt(area_, caret.selectionStart()), BytesAt(area_, caret.selectionEnd())};
}

// One step of the editor's own undo.
void PredictiveText::Write(const TextReplacement& replacement) {
  const QScopedValueRollback guard(writing_, true);
  const std::string text = area_.Text();
  QTextCursor caret = area_.textCursor();
  const int start = PositionAt(text, replacement.from);
  caret.setPosition(start);
  caret.setPosition(PositionAt(text, replacement.to), QTextCursor::KeepAnchor);
  caret.insertText(ToQString(replacement.text.text));
  area_.setTextCursor(caret);
  if (replacement.text.fields.empty()) return;
  EndFields();
  for (const TextRange& range : replacement.text.fields) {
    QTextCursor field(area_.document());
    field.setPosition(start + PositionAt(replacement.text.text, range.start));
    field.setPosition(start + PositionAt(replacement.text.text, range.start + range.length), QTextCursor::KeepAnchor);
    fields_.push_back(field);
  }
  fields_.push_back(caret);
  field_ = 0;
  area_.setTextCursor(fields_.front());
}

// Behind the last field stands the end of the whole; from there Tab is a tab again.
bool PredictiveText::StepToField(int direction) {
  if (fields_.empty() || (direction < 0 && field_ == 0)) return false;
  field_ = direction > 0 ? field_ + 1 : field_ - 1;
  const QScopedValueRollback guard(writing_, true);
  area_.setTextCursor(fields_[field_]);
  if (field_ + 1 == fields_.size()) EndFields();
  return true;
}

bool PredictiveText::OnKey(QKeyEvent& event) {
  const KeyEvent key = ToKeyEvent(event);
  if (event.key() == Qt::Key_Space && event.modifiers() == Qt::ControlModifier) {
    if (area_.isReadOnly()) return false;
    caret_ = area_.textCursor().position();
    list_->Prepare();
    list_->Open(area_.Text(), BytesAt(area_, caret_));
    return true;
  }
  if (list_->OnKeyDown(key)) return true;
  if (event.key() == Qt::Key_Tab) return StepToField(1);
  if (event.key() == Qt::Key_Backtab) return StepToField(-1);
  if (event.key() == Qt::Key_Escape && !fields_.empty()) {
    EndFields();
    return true;
  }
  return false;
}

bool PredictiveText::eventFilter(QObject* watched, QEvent* event) {
  switch (event->type()) {
    case QEvent::ShortcutOverride:  // a dialog would close by Esc, and the designer has keys of its own
      if (static_cast<QKeyEvent&>(*event).key() == Qt::Key_Escape && (list_->IsOpen() || !fields_.empty())) {
        event->accept();
        return true;
      }
      break;
    case QEvent::KeyPress:
      if (OnKey(static_cast<QKeyEvent&>(*event))) return true;
      break;
    case QEvent::FocusIn:
      list_->Prepare();
      break;
    case QEvent::FocusOut:
    case QEvent::Hide:
    case QEvent::Move:
    case QEvent::Resize:
      list_->Close();
      break;
    default:
      break;
  }
  return QObject::eventFilter(watched, event);
}

}  // namespace zrqrybld
