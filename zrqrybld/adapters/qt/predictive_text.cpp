#include "zrqrybld/adapters/qt/predictive_text.h"

#include <QApplication>
#include <QKeyEvent>
#include <utility>

#include "zrqrybld/adapters/qt/qt_geometry.h"
#include "zrqrybld/adapters/qt/qt_input.h"
#include "zrqrybld/adapters/qt/qt_text.h"

namespace zrqrybld {

PredictiveText::PredictiveText(QtTextArea& area, Ref<qbIntelliList> list)
    : QObject(&area),
      area_(area),
      metrics_(QApplication::font()),
      popup_({area.viewport(), &metrics_, &area.Boundary()}),
      typing_(*this, std::move(list)) {
  area.installEventFilter(this);
  connect(area.document(), &QTextDocument::contentsChange, this, [this](int, int removed, int added) {
    removed_ = removed;
    added_ = added;
  });
  connect(&area, &QPlainTextEdit::cursorPositionChanged, this, [this] { typing_.OnCaretMoved(); });
  links_.push_back(popup_.Chosen.Connect([this](std::int32_t index) { typing_.List()->Accept(index); }));
  links_.push_back(area.Edited.Connect([this] {
    if (!area_.isReadOnly()) typing_.OnEdited(added_ - removed_ == 1 || (added_ == 1 && removed_ > 0));
  }));
}

PredictiveText::~PredictiveText() = default;

TextRange PredictiveText::Selection() const {
  const QTextCursor caret = area_.textCursor();
  const std::size_t start = area_.OffsetOf(caret.selectionStart());
  return {start, area_.OffsetOf(caret.selectionEnd()) - start};
}

QTextCursor PredictiveText::CursorOn(TextRange part) const {
  QTextCursor cursor = area_.textCursor();
  cursor.setPosition(area_.PositionOf(part.start));
  cursor.setPosition(area_.PositionOf(part.start + part.length), QTextCursor::KeepAnchor);
  return cursor;
}

void PredictiveText::Select(TextRange part) { area_.setTextCursor(CursorOn(part)); }

void PredictiveText::Replace(TextRange part, const std::string& text) {
  QTextCursor cursor = CursorOn(part);
  cursor.insertText(ToQString(text));
  area_.setTextCursor(cursor);
}

void PredictiveText::ShowList(const qbIntelliList& list) {
  if (!list.IsOpen()) {
    popup_.Close();
    return;
  }
  const QRect caret = area_.cursorRect(CursorOn({list.From(), 0}));
  popup_.Open(ToPixelRect(caret), list.Entries(), static_cast<std::int32_t>(list.Selected()));
}

bool PredictiveText::eventFilter(QObject* watched, QEvent* event) {
  switch (event->type()) {
    case QEvent::ShortcutOverride:  // a dialog would close by Esc, and the designer has keys of its own
      if (static_cast<QKeyEvent&>(*event).key() == Qt::Key_Escape && typing_.WantsEscape()) {
        event->accept();
        return true;
      }
      break;
    case QEvent::KeyPress:
      if (!area_.isReadOnly() && typing_.OnKeyDown(ToKeyEvent(static_cast<QKeyEvent&>(*event)))) return true;
      break;
    case QEvent::FocusIn:
      typing_.List()->Prepare();
      break;
    case QEvent::FocusOut:
    case QEvent::Hide:
    case QEvent::Move:
    case QEvent::Resize:
      typing_.List()->Close();
      break;
    default:
      break;
  }
  return QObject::eventFilter(watched, event);
}

}  // namespace zrqrybld
