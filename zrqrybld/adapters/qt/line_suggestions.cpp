#include "zrqrybld/adapters/qt/line_suggestions.h"

#include <QApplication>
#include <QKeyEvent>
#include <utility>

#include "zrqrybld/adapters/qt/qt_geometry.h"
#include "zrqrybld/adapters/qt/qt_input.h"
#include "zrqrybld/adapters/qt/qt_text.h"

namespace zrqrybld {
namespace {

// A line edit counts UTF-16 units, predictive text bytes.
int UnitsOf(const QString& text, std::size_t bytes) {
  return static_cast<int>(QString::fromUtf8(text.toUtf8().left(static_cast<qsizetype>(bytes))).size());
}
std::size_t BytesOf(const QString& text, int units) {
  return static_cast<std::size_t>(text.left(units).toUtf8().size());
}

}  // namespace

// The list is offered the keys before whoever else filters them.
LineSuggestions::LineSuggestions(QLineEdit& line, Ref<qbIntelliList> list)
    : QObject(&line),
      line_(line),
      metrics_(QApplication::font()),
      popup_({&line, &metrics_, &boundary_}),
      typing_(*this, std::move(list)) {
  QMetaObject::invokeMethod(
      this, [this] { line_.installEventFilter(this); }, Qt::QueuedConnection);
  typing_.List()->Prepare();
  connect(&line, &QLineEdit::textEdited, this,
          [this] { boundary_.Run([this] { typing_.OnEdited(std::exchange(typed_, false)); }); });
  connect(&line, &QLineEdit::cursorPositionChanged, this,
          [this] { boundary_.Run([this] { typing_.OnCaretMoved(); }); });
  links_.push_back(popup_.Chosen.Connect([this](std::int32_t index) { typing_.List()->Accept(index); }));
}

LineSuggestions::~LineSuggestions() = default;

std::string LineSuggestions::Text() const { return ToUtf8(line_.text()); }

TextRange LineSuggestions::Selection() const {
  const QString text = line_.text();
  if (!line_.hasSelectedText()) return {BytesOf(text, line_.cursorPosition()), 0};
  const std::size_t start = BytesOf(text, line_.selectionStart());
  return {start, BytesOf(text, line_.selectionEnd()) - start};
}

void LineSuggestions::Select(TextRange part) {
  const QString text = line_.text();
  const int start = UnitsOf(text, part.start);
  line_.setSelection(start, UnitsOf(text, part.start + part.length) - start);
}

void LineSuggestions::Replace(TextRange part, const std::string& text) {
  Select(part);
  line_.insert(ToQString(text));
}

void LineSuggestions::ShowList(const qbIntelliList& list) {
  if (!list.IsOpen()) return popup_.Close();
  const QString before = line_.text().left(UnitsOf(line_.text(), list.From()));
  QRect place = line_.rect();
  place.setLeft(std::min(place.left() + line_.fontMetrics().horizontalAdvance(before), place.right()));
  popup_.Open(ToPixelRect(place), list.Entries(), static_cast<std::int32_t>(list.Selected()));
}

bool LineSuggestions::eventFilter(QObject* watched, QEvent* event) {
  bool used = false;
  switch (event->type()) {
    case QEvent::ShortcutOverride:
      if (static_cast<QKeyEvent&>(*event).key() == Qt::Key_Escape && typing_.WantsEscape()) {
        event->accept();
        return true;
      }
      break;
    case QEvent::KeyPress: {
      const KeyEvent key = ToKeyEvent(static_cast<QKeyEvent&>(*event));
      boundary_.Run([&] { used = typing_.OnKeyDown(key); });
      typed_ = !used && !key.text.empty();
      break;
    }
    case QEvent::FocusOut:
    case QEvent::Hide:
      typing_.List()->Close();
      break;
    default:
      break;
  }
  return used || QObject::eventFilter(watched, event);
}

}  // namespace zrqrybld
