#include "zrqrybld/adapters/qt/qt_text_area.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QFontDatabase>
#include <QKeyEvent>
#include <QMenu>
#include <QPaintEvent>
#include <QPainter>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QTextBlock>
#include <algorithm>
#include <memory>
#include <utility>

#include "zrqrybld/adapters/qt/announcer.h"
#include "zrqrybld/adapters/qt/find_bar.h"
#include "zrqrybld/adapters/qt/qt_input.h"
#include "zrqrybld/adapters/qt/qt_text.h"
#include "zrqrybld/adapters/qt/remark_line.h"
#include "zrqrybld/adapters/qt/say.h"
#include "zrqrybld/adapters/qt/text_colors.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_qt.h"
#include "zrqrybld/platform/input.h"

namespace zrqrybld {
namespace {

constexpr int kTabCharacters = 4;
constexpr int kMarginPadding = 8;
constexpr int kFewestDigits = 2;  // the margin of a short text does not jump at line 10

QString FixedFamily() {
  const QString preferred = QStringLiteral("DejaVu Sans Mono");
  return QFontDatabase::hasFamily(preferred) ? preferred : QFontDatabase::systemFont(QFontDatabase::FixedFont).family();
}

// The text as the document holds it: lines end in LF only.
QString ToDocumentText(std::string_view text) {
  QString lines = ToQString(text);
  lines.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
  lines.replace(QLatin1Char('\r'), QLatin1Char('\n'));
  return lines;
}

// The menu key is turned into a wish for the menu by the platform; Shift+F10 is on Windows only.
bool OpensMenu([[maybe_unused]] const QKeyEvent& event) {
#ifdef Q_OS_WIN
  return false;
#else
  return event.key() == Qt::Key_F10 && ToShift(event.modifiers()) == ShiftShift;
#endif
}

}  // namespace

// The line numbers at the left.
class QtTextArea::Margin final : public QWidget {
 public:
  explicit Margin(QtTextArea& area) : QWidget(&area), area_(area) {}

 protected:
  void paintEvent(QPaintEvent* event) override { area_.PaintMargin(*event); }
  void wheelEvent(QWheelEvent* event) override { area_.wheelEvent(event); }

 private:
  QtTextArea& area_;
};

QtTextArea::QtTextArea(QWidget* parent) : QPlainTextEdit(parent), theme_(palette()) {
  setLineWrapMode(NoWrap);
  setLayoutDirection(Qt::LeftToRight);  // SQL is written from left to right everywhere
  setFrameShape(NoFrame);
  announcer_ = new Announcer(this);
  margin_ = new Margin(*this);
  remarks_ = new RemarkLine(*this, theme_, boundary_);
  find_ = new FindBar(*this, [this] {
    PlaceMargins();
    MarkText();
  });
  // What is said about the text is not in the text's fixed font.
  QFont plain = QApplication::font();
  plain.setFamilies(plain.families());  // otherwise the text's family would be handed down
  plain.setStyleHint(QFont::AnyStyle);
  remarks_->setFont(plain);
  find_->setFont(plain);
  UpdateFont();
  connect(document(), &QTextDocument::contentsChanged, this, &QtTextArea::OnContentsChanged);
  connect(this, &QPlainTextEdit::blockCountChanged, this, &QtTextArea::PlaceMargins);
  connect(this, &QPlainTextEdit::updateRequest, this, [this](const QRect& area, int dy) {
    if (dy != 0) {
      margin_->scroll(0, dy);
    } else {
      margin_->update(0, area.y(), margin_->width(), area.height());
    }
  });
  connect(this, &QPlainTextEdit::cursorPositionChanged, this, [this] {
    MarkText();
    margin_->update();
  });
}

// --- The text ---

std::string QtTextArea::Text() const {
  // Not `toPlainText`: that turns no-break spaces, which a literal may hold, into blanks.
  QString text = document()->toRawText();
  text.replace(QChar::ParagraphSeparator, QStringLiteral("\r\n"));
  text.replace(QChar::LineSeparator, QStringLiteral("\r\n"));
  return ToUtf8(text);
}

void QtTextArea::SetText(std::string_view text) {
  const QString wanted = ToDocumentText(text);
  QString current = document()->toRawText();
  current.replace(QChar::ParagraphSeparator, QLatin1Char('\n'));
  if (current == wanted) return;

  const int line = textCursor().blockNumber();
  const int column = textCursor().positionInBlock();
  const int horizontal = horizontalScrollBar()->value();
  const int vertical = verticalScrollBar()->value();
  {
    const QScopedValueRollback guard(settingText_, true);
    setPlainText(wanted);
  }
  const QTextBlock block = document()->findBlockByNumber(std::min(line, blockCount() - 1));
  QTextCursor caret(block);
  caret.setPosition(block.position() + std::min(column, block.length() - 1));
  setTextCursor(caret);
  horizontalScrollBar()->setValue(horizontal);
  verticalScrollBar()->setValue(vertical);
}

void QtTextArea::SetReadOnly(bool readOnly) {
  setReadOnly(readOnly);
  // A caret shows where the keyboard would copy from, and lets the arrow keys walk.
  if (readOnly) setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  MarkText();
}

void QtTextArea::SetFault(std::size_t offset, std::size_t length) {
  if (fault_.start == offset && fault_.length == length) return;
  fault_ = {offset, length, ColorRole::Error, false};
  Highlight();
  if (length == 0) return;
  QTextCursor place(document());
  place.setPosition(PositionOf(offset));
  const QTextCursor caret = textCursor();
  setTextCursor(place);
  ensureCursorVisible();
  if (caret.hasSelection()) setTextCursor(caret);
}

void QtTextArea::SetPart(std::size_t offset, std::size_t length) {
  if (part_.start == offset && part_.length == length) return;
  part_ = {offset, length, ColorRole::RowHover, false};
  MarkText();
}

void QtTextArea::SetCommands(std::vector<TextCommand> commands) {
  remarks_->SetCommands(std::move(commands));
  PlaceMargins();
}

void QtTextArea::OnContentsChanged() {
  fault_ = {};
  part_ = {};
  Highlight();
  find_->Refresh();
  if (!settingText_) boundary_.Run([this] { Edited.Raise(); });
}

// --- Colours ---

void QtTextArea::SetHighlighter(Highlighter highlighter) {
  highlighter_ = std::move(highlighter);
  Highlight();
}

// The whole text is looked at anew, because one character can open or close a comment over many lines.
void QtTextArea::Highlight() {
  std::vector<TextSpan> spans;
  if (highlighter_) {
    boundary_.Run([&] {
      const std::string text = Text();
      spans = highlighter_(text);
    });
  }
  if (fault_.length != 0) spans.push_back(fault_);
  ColorText(*document(), std::move(spans), theme_);
}

void QtTextArea::MarkText() {
  QList<QTextEdit::ExtraSelection> marks;
  if (hasFocus() && !isReadOnly()) {
    QTextEdit::ExtraSelection line;
    line.format.setBackground(theme_.Of(ColorRole::RowAlternate));
    line.format.setProperty(QTextFormat::FullWidthSelection, true);
    line.cursor = textCursor();
    line.cursor.clearSelection();
    marks.push_back(line);
  }
  if (part_.length != 0) {
    QTextEdit::ExtraSelection part;
    part.format.setBackground(theme_.Of(part_.role));
    part.cursor = QTextCursor(document());
    part.cursor.setPosition(PositionOf(part_.start));
    part.cursor.setPosition(PositionOf(part_.start + part_.length), QTextCursor::KeepAnchor);
    marks.push_back(part);
  }
  marks += find_->Marks(theme_);
  if (bracketFinder_ && hasFocus()) boundary_.Run([&] { MarkBrackets(marks); });
  setExtraSelections(marks);
}

// --- Brackets ---

void QtTextArea::SetBracketFinder(BracketFinder finder) {
  bracketFinder_ = std::move(finder);
  MarkText();
}

void QtTextArea::MarkBrackets(QList<QTextEdit::ExtraSelection>& marks) const {
  const int caret = textCursor().position();
  for (const int position : {caret, caret - 1}) {
    const QChar sign = position < 0 ? QChar() : document()->characterAt(position);
    if (sign.isNull() || !QStringView(u"(){}").contains(sign)) continue;
    const auto pair = bracketFinder_(Text(), OffsetOf(position));
    if (!pair) continue;
    for (const int place : {position, PositionOf(pair->second)}) {
      QTextEdit::ExtraSelection mark;
      mark.cursor = QTextCursor(document());
      mark.cursor.setPosition(place);
      mark.cursor.setPosition(place + 1, QTextCursor::KeepAnchor);
      mark.format.setBackground(theme_.Of(ColorRole::RowHover));
      mark.format.setForeground(theme_.Of(ColorRole::Keyword));
      mark.format.setUnderlineStyle(QTextCharFormat::SingleUnderline);
      marks.push_back(mark);
    }
    return;
  }
}

// --- Keys ---

// Whether the text may have the key.
bool QtTextArea::OfferKey(const QKeyEvent& event) {
  const KeyEvent key = ToKeyEvent(event);
  std::int32_t keyCode = key.keyCode;
  if (keyCode == 0) return true;
  boundary_.Run([&] { KeyDown.Raise(keyCode, key.shift); });
  return keyCode != 0;
}

bool QtTextArea::Find(const QKeyEvent& event) {
  if (event.matches(QKeySequence::Find)) {
    find_->Open();
  } else if (event.matches(QKeySequence::FindNext) || event.matches(QKeySequence::FindPrevious)) {
    find_->Go(event.matches(QKeySequence::FindNext));
  } else {
    return false;
  }
  return true;
}

// Undo is the text's own as long as there is typing to undo; after that it is the window's.
bool QtTextArea::event(QEvent* event) {
  if (event->type() == QEvent::ShortcutOverride) {
    const auto& key = static_cast<const QKeyEvent&>(*event);
    const bool isUndo = IsUndoKey(key);
    if (isUndo || IsRedoKey(key)) {
      const bool own = !isReadOnly() && (isUndo ? document()->isUndoAvailable() : document()->isRedoAvailable());
      event->setAccepted(own);
      return true;
    }
  }
  return QPlainTextEdit::event(event);
}

void QtTextArea::keyPressEvent(QKeyEvent* event) {
  if (!OfferKey(*event) || Find(*event)) {
    event->accept();
    return;
  }
  if (IsRedoKey(*event)) {
    redo();
    event->accept();
    return;
  }
  if (OpensMenu(*event)) {
    QContextMenuEvent wanted(QContextMenuEvent::Keyboard, cursorRect().bottomLeft(),
                             viewport()->mapToGlobal(cursorRect().bottomLeft()));
    contextMenuEvent(&wanted);
    event->accept();
    return;
  }
  const std::string typed = ToKeyEvent(*event).text;
  std::string text;
  for (std::size_t at = 0; at < typed.size();) {
    char32_t character = DecodeUtf8(typed, at);
    boundary_.Run([&] { KeyPress.Raise(character); });
    if (character != 0) AppendUtf8(text, character);
  }
  if (text == typed) {
    QPlainTextEdit::keyPressEvent(event);
    return;
  }
  event->accept();
  if (!text.empty() && !isReadOnly()) insertPlainText(ToQString(text));
}

void QtTextArea::keyReleaseEvent(QKeyEvent* event) {
  const KeyEvent key = ToKeyEvent(*event);
  std::int32_t keyCode = key.keyCode;
  if (keyCode != 0 && !event->isAutoRepeat()) boundary_.Run([&] { KeyUp.Raise(keyCode, key.shift); });
  QPlainTextEdit::keyReleaseEvent(event);
}

void QtTextArea::SetTexts(std::shared_ptr<const TextSource> texts) {
  texts_ = std::move(texts);
  find_->SetTexts(Texts());
  remarks_->SetTexts(Texts());
}

void QtTextArea::contextMenuEvent(QContextMenuEvent* event) {
  const std::unique_ptr<QMenu> menu(createStandardContextMenu());
  menu->addSeparator();
  menu->addAction(Say(Texts(), text::FindEllipsis), QKeySequence::Find, find_, [this] { find_->Open(); });
  menu->exec(event->globalPos());
}

// --- Font and colours ---

void QtTextArea::UpdateFont() {
  if (updatingFont_) return;
  const QScopedValueRollback guard(updatingFont_, true);
  QFont fixed = font();
  fixed.setFamilies({FixedFamily()});
  fixed.setStyleHint(QFont::Monospace);
  setFont(fixed);
  setTabStopDistance(kTabCharacters * QFontMetricsF(fixed).horizontalAdvance(QLatin1Char(' ')));
  PlaceMargins();
}

void QtTextArea::changeEvent(QEvent* event) {
  QPlainTextEdit::changeEvent(event);
  if (!find_) return;  // still being made
  switch (event->type()) {
    case QEvent::FontChange:
      UpdateFont();
      break;
    case QEvent::PaletteChange:
    case QEvent::StyleChange:
      theme_ = Theme(palette());
      ForgetColors(*document());
      Highlight();
      MarkText();
      margin_->update();
      break;
    default:
      break;
  }
}

void QtTextArea::focusInEvent(QFocusEvent* event) {
  QPlainTextEdit::focusInEvent(event);
  MarkText();
}

// A menu, another window or a dialog is not another part of the window.
void QtTextArea::focusOutEvent(QFocusEvent* event) {
  QPlainTextEdit::focusOutEvent(event);
  MarkText();
  const Qt::FocusReason reason = event->reason();
  if (reason == Qt::PopupFocusReason || reason == Qt::ActiveWindowFocusReason || reason == Qt::MenuBarFocusReason)
    return;
  const QWidget* next = QApplication::focusWidget();
  if (next && isAncestorOf(next)) return;  // the bar for finding words
  boundary_.Run([this] { Left.Raise(); });
}

// --- The margin ---

void QtTextArea::SetLineNumbers(bool shown) {
  lineNumbers_ = shown;
  margin_->setVisible(shown);
  PlaceMargins();
}

int QtTextArea::MarginWidth() const {
  if (!lineNumbers_) return 0;
  const auto digits = std::max<qsizetype>(QString::number(blockCount()).size(), kFewestDigits);
  return 2 * kMarginPadding + static_cast<int>(digits) * fontMetrics().horizontalAdvance(QLatin1Char('9'));
}

void QtTextArea::PlaceMargins() {
  const int width = MarginWidth();
  const int remarks = remarks_->Height();
  const int find = find_->isHidden() ? 0 : find_->sizeHint().height();
  const int below = remarks + find;
  setViewportMargins(width, 0, 0, below);
  const QRect inside = contentsRect();
  margin_->setGeometry(inside.left(), inside.top(), width, viewport()->height());
  // The scroll bars stand outside of the margins.
  const int bottom = viewport()->geometry().bottom() + 1;
  const int across = viewport()->geometry().right() + 1 - inside.left();
  find_->setGeometry(inside.left(), bottom, across, find);
  remarks_->setGeometry(inside.left(), bottom + find, across, remarks);
}

void QtTextArea::SetRemarks(const std::vector<std::string>& remarks) {
  remarks_->SetRemarks(remarks);
  PlaceMargins();
  const QString said = remarks_->accessibleName();
  if (said == accessibleDescription()) return;
  setAccessibleDescription(said);  // errors belong to the text, wherever they stand
  if (hasFocus() && !remarks.empty()) announcer_->Say(ToQString(remarks.front()));
}

void QtTextArea::resizeEvent(QResizeEvent* event) {
  QPlainTextEdit::resizeEvent(event);
  PlaceMargins();
}

void QtTextArea::PaintMargin(QPaintEvent& event) {
  QPainter painter(margin_);
  painter.fillRect(event.rect(), theme_.Of(ColorRole::Surface));
  painter.setFont(font());
  const int current = hasFocus() ? textCursor().blockNumber() : -1;
  QTextBlock block = firstVisibleBlock();
  qreal top = blockBoundingGeometry(block).translated(contentOffset()).top();
  while (block.isValid() && top <= event.rect().bottom()) {
    painter.setPen(theme_.Of(block.blockNumber() == current ? ColorRole::Text : ColorRole::QuietText));
    painter.drawText(QRectF(0, top, margin_->width() - kMarginPadding, fontMetrics().height()),
                     Qt::AlignRight | Qt::AlignTop, QString::number(block.blockNumber() + 1));
    top += blockBoundingRect(block).height();
    block = block.next();
  }
}

}  // namespace zrqrybld
