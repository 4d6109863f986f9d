#include "zrqrybld/adapters/qt/qt_text_area.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QFontDatabase>
#include <QKeyEvent>
#include <QMenu>
#include <QPaintEvent>
#include <QPainter>
#include <QPolygonF>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextLayout>
#include <algorithm>
#include <memory>
#include <utility>

#include "zrqrybld/adapters/qt/announcer.h"
#include "zrqrybld/adapters/qt/find_bar.h"
#include "zrqrybld/adapters/qt/plain_tip.h"
#include "zrqrybld/adapters/qt/qt_input.h"
#include "zrqrybld/adapters/qt/qt_text.h"
#include "zrqrybld/adapters/qt/say.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_qt.h"
#include "zrqrybld/platform/input.h"

namespace zrqrybld {
namespace {

constexpr int kTabCharacters = 4;
constexpr std::size_t kLineEnd = 2;  // CR LF in `Text()`
constexpr int kMarginPadding = 8;
constexpr int kRemarkPadding = 3;
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

// Moves `position` behind the next character of the line and returns its size in `Text()`: a lone half of a surrogate
// pair is written as U+FFFD, and a line separator, which Shift+Enter makes, as CR LF.
std::size_t NextSize(QStringView line, qsizetype& position) {
  const QChar c = line[position++];
  if (c.isHighSurrogate() && position < line.size() && line[position].isLowSurrogate()) {
    ++position;
    return 4;
  }
  if (c == QChar::LineSeparator) return 2;
  return c.unicode() < 0x80 ? 1 : c.unicode() < 0x800 ? 2 : 3;
}

std::size_t SizeOf(QStringView line) {
  std::size_t bytes = 0;
  for (qsizetype position = 0; position < line.size();) bytes += NextSize(line, position);
  return bytes;
}

// A place in a line, in bytes of `Text()` and in units of Qt. It only moves on, so that a long line is walked once.
struct LinePlace {
  std::size_t bytes = 0;
  qsizetype units = 0;

  // Moves to `target`; a byte inside a character counts all of it.
  void MoveTo(QStringView line, std::size_t target) {
    while (bytes < target && units < line.size()) bytes += NextSize(line, units);
  }
};

// The menu key is turned into a wish for the menu by the platform; Shift+F10 is on Windows only.
bool OpensMenu([[maybe_unused]] const QKeyEvent& event) {
#ifdef Q_OS_WIN
  return false;
#else
  return event.key() == Qt::Key_F10 && ToShift(event.modifiers()) == ShiftShift;
#endif
}

QTextCharFormat ToFormat(const TextSpan& span, const Theme& theme) {
  QTextCharFormat format;
  format.setForeground(theme.Of(span.role));
  if (span.bold) format.setFontWeight(QFont::Bold);
  if (span.role == ColorRole::Error) {
    format.setUnderlineStyle(QTextCharFormat::WaveUnderline);
    format.setUnderlineColor(theme.Of(ColorRole::Error));
  }
  return format;
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

// One line below the text for what there is to say about it; hidden while there is nothing.
class QtTextArea::RemarkLine final : public QWidget {
 public:
  explicit RemarkLine(QtTextArea& area) : QWidget(&area), area_(area) { hide(); }

  void SetRemarks(const std::vector<std::string>& remarks) {
    remarks_.clear();
    for (const std::string& remark : remarks) remarks_.push_back(ToQString(remark));
    setToolTip(PlainTip(remarks_.join(QLatin1Char('\n'))));
    setAccessibleName(remarks_.join(QLatin1Char(' ')));
    setVisible(!remarks_.isEmpty());
    update();
  }
  void SetCommands(std::vector<TextCommand> commands) {
    for (QPushButton* button : buttons_) button->deleteLater();  // it may be the one that is pressed
    buttons_.clear();
    for (TextCommand& command : commands) {
      auto* button = new QPushButton(ToQString(command.caption), this);
      button->setFocusPolicy(Qt::NoFocus);  // pressing it does not leave the text
      button->setFont(area_.parentWidget() ? area_.parentWidget()->font() : QApplication::font());
      connect(button, &QPushButton::clicked, this,
              [this, run = std::move(command.run)] { area_.boundary_.Run([&run] { run(); }); });
      button->show();
      buttons_.push_back(button);
    }
    PlaceButtons();
  }
  int Height() const {
    int height = remarks_.isEmpty() ? 0 : fontMetrics().height() + 2 * kRemarkPadding;
    for (const QPushButton* button : buttons_) height = std::max(height, button->sizeHint().height());
    return height;
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    const Theme& theme = area_.GetTheme();
    QPainter painter(this);
    painter.fillRect(rect(), theme.Of(ColorRole::Surface));
    const int size = fontMetrics().ascent();
    const QRectF sign(kMarginPadding, (height() - size) / 2.0, size, size);
    PaintSign(painter, sign, theme);
    const int left = static_cast<int>(sign.right()) + kMarginPadding;
    QString more;
    if (remarks_.size() > 1) more = Say(area_.Texts(), text::MoreRemarks, remarks_.size() - 1);
    const int room = buttonsLeft_ - left - kMarginPadding - fontMetrics().horizontalAdvance(more);
    painter.setPen(theme.Of(ColorRole::QuietText));
    painter.drawText(QRect(left, 0, width() - left, height()), Qt::AlignVCenter | Qt::TextSingleLine,
                     fontMetrics().elidedText(remarks_.value(0), Qt::ElideRight, room) + more);
  }
  void resizeEvent(QResizeEvent*) override { PlaceButtons(); }

 private:
  void PlaceButtons() {
    buttonsLeft_ = width();
    for (auto button = buttons_.rbegin(); button != buttons_.rend(); ++button) {
      buttonsLeft_ -= (*button)->sizeHint().width();
      (*button)->setGeometry(buttonsLeft_, 0, (*button)->sizeHint().width(), height());
    }
  }

  // A triangle with an exclamation mark.
  static void PaintSign(QPainter& painter, const QRectF& place, const Theme& theme) {
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(theme.Of(ColorRole::Warning), 1.4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPolygon(QPolygonF{QPointF(place.center().x(), place.top()), place.bottomRight(), place.bottomLeft()});
    const qreal x = place.center().x();
    painter.drawLine(QPointF(x, place.top() + place.height() * 0.40), QPointF(x, place.top() + place.height() * 0.65));
    painter.drawPoint(QPointF(x, place.top() + place.height() * 0.84));
  }

  QtTextArea& area_;
  QStringList remarks_;
  std::vector<QPushButton*> buttons_;
  int buttonsLeft_ = 0;
};

QtTextArea::QtTextArea(QWidget* parent) : QPlainTextEdit(parent), theme_(palette()) {
  setLineWrapMode(NoWrap);
  setLayoutDirection(Qt::LeftToRight);  // SQL is written from left to right everywhere
  setFrameShape(NoFrame);
  announcer_ = new Announcer(this);
  margin_ = new Margin(*this);
  remarks_ = new RemarkLine(*this);
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

void QtTextArea::SetCommands(std::vector<TextCommand> commands) {
  remarks_->SetCommands(std::move(commands));
  PlaceMargins();
}

void QtTextArea::OnContentsChanged() {
  fault_ = {};
  Highlight();
  find_->Refresh();
  if (!settingText_) boundary_.Run([this] { Edited.Raise(); });
}

// --- Colours ---

void QtTextArea::SetHighlighter(Highlighter highlighter) {
  highlighter_ = std::move(highlighter);
  Highlight();
}

// The whole text is looked at anew, because one character can open or close a comment over many lines; but only lines
// whose looks change are laid out again.
void QtTextArea::Highlight() {
  std::vector<TextSpan> spans;
  if (highlighter_) {
    boundary_.Run([&] {
      const std::string text = Text();
      spans = highlighter_(text);
    });
  }
  if (fault_.length != 0) spans.push_back(fault_);
  std::ranges::stable_sort(spans, {}, &TextSpan::start);

  std::size_t lineStart = 0;
  std::size_t first = 0;  // spans before this one end before the line
  for (QTextBlock block = document()->begin(); block.isValid(); block = block.next()) {
    const QString line = block.text();
    const std::size_t lineEnd = lineStart + SizeOf(line);
    QList<QTextLayout::FormatRange> formats;
    LinePlace place;
    while (first < spans.size() && spans[first].start + spans[first].length <= lineStart) ++first;
    for (std::size_t i = first; i < spans.size() && spans[i].start < lineEnd; ++i) {
      const std::size_t from = std::max(spans[i].start, lineStart) - lineStart;
      const std::size_t to = std::min(spans[i].start + spans[i].length, lineEnd) - lineStart;
      if (spans[i].start + spans[i].length <= lineStart || from >= to) continue;
      place.MoveTo(line, from);
      LinePlace end = place;
      end.MoveTo(line, to);
      formats.push_back(
          {static_cast<int>(place.units), static_cast<int>(end.units - place.units), ToFormat(spans[i], theme_)});
    }
    QTextLayout& layout = *block.layout();
    // While an input method composes, the line holds its marks; the text is coloured when it is done.
    if (layout.preeditAreaText().isEmpty() && layout.formats() != formats) {
      layout.setFormats(formats);
      document()->markContentsDirty(block.position(), block.length());
    }
    lineStart = lineEnd + kLineEnd;
  }
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

std::size_t QtTextArea::OffsetOf(int position) const {
  std::size_t offset = 0;
  const QTextBlock last = document()->findBlock(position);
  for (QTextBlock block = document()->begin(); block != last; block = block.next()) {
    offset += SizeOf(block.text()) + kLineEnd;
  }
  const QString line = last.text();
  return offset + SizeOf(QStringView(line).left(position - last.position()));
}

int QtTextArea::PositionOf(std::size_t offset) const {
  for (QTextBlock block = document()->begin(); block.isValid(); block = block.next()) {
    const QString line = block.text();
    const std::size_t size = SizeOf(line) + kLineEnd;
    if (offset < size) {
      LinePlace place;
      place.MoveTo(line, offset);
      return block.position() + static_cast<int>(place.units);
    }
    offset -= size;
  }
  return document()->characterCount() - 1;
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
