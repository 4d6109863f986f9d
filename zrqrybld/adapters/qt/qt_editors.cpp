#include "zrqrybld/adapters/qt/qt_editors.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QScreen>
#include <QScrollBar>
#include <algorithm>
#include <utility>

#include "zrqrybld/adapters/qt/list_entries.h"
#include "zrqrybld/adapters/qt/qt_geometry.h"
#include "zrqrybld/adapters/qt/qt_input.h"
#include "zrqrybld/adapters/qt/qt_text.h"
#include "zrqrybld/grid/grid_layout.h"
#include "zrqrybld/platform/commands.h"
#include "zrqrybld/platform/input.h"

namespace zrqrybld {
namespace {

constexpr int kMostRowsShown = 10;
constexpr int kNoMaxLength = 32767;  // Qt's own

}  // namespace

QRect EditorWindow::Place(const PixelRect& onSurface) const { return ToViewport(*viewport, onSurface).toAlignedRect(); }

// The line edit tells its owner what happens; an owner that was destroyed is told nothing.
class QtTextEditor::Line final : public QLineEdit {
 public:
  Line(QtTextEditor& owner, const EditorWindow& window) : QLineEdit(window.viewport), editor_(&owner), window_(window) {
    setFrame(false);
    // SQL is read from left to right everywhere; the text stands where the cell's stands.
    if (window.viewport->isRightToLeft()) setAlignment(Qt::AlignRight | Qt::AlignAbsolute | Qt::AlignVCenter);
    setLayoutDirection(Qt::LeftToRight);
    setObjectName(QStringLiteral("inPlaceEditor"));
    connect(this, &QLineEdit::textChanged, this,
            [this] { Tell([](QtTextEditor& editor) { editor.Changed.Raise(); }); });
  }

  void Forget() { editor_ = nullptr; }

 protected:
  // Qt moves the focus with Tab before the line edit sees the key.
  bool event(QEvent* event) override {
    const bool isTab =
        event->type() == QEvent::KeyPress && ToKeyCode(static_cast<const QKeyEvent&>(*event).key()) == KeyCodeTab;
    if (isTab && Offer(static_cast<QKeyEvent&>(*event))) return true;
    // The line edit's own commands (undo, copy, ...) and what the grid does with keys go before the window's shortcuts.
    if (event->type() == QEvent::ShortcutOverride) {
      const auto& key = static_cast<const QKeyEvent&>(*event);
      if (Asks(ToKeyEvent(key), Command::OpenList) || IsUndoKey(key) || IsRedoKey(key)) {
        event->accept();
        return true;
      }
    }
    return QLineEdit::event(event);
  }
  void keyPressEvent(QKeyEvent* event) override {
    if (ToKeyCode(event->key()) != KeyCodeTab && Offer(*event)) return;
    if (IsRedoKey(*event)) {
      redo();
      return;
    }
    QLineEdit::keyPressEvent(event);
  }
  void keyReleaseEvent(QKeyEvent* event) override {
    QLineEdit::keyReleaseEvent(event);
    if (event->isAutoRepeat()) return;
    const KeyEvent key = ToKeyEvent(*event);
    Tell([&](QtTextEditor& editor) { editor.KeyUp.Raise(key); });
  }
  void focusOutEvent(QFocusEvent* event) override {
    QLineEdit::focusOutEvent(event);
    if (event->reason() == Qt::PopupFocusReason) return;  // its own context menu
    Tell([](QtTextEditor& editor) { editor.FocusLost.Raise(); });
  }
  void mouseDoubleClickEvent(QMouseEvent* event) override {
    QLineEdit::mouseDoubleClickEvent(event);
    Tell([](QtTextEditor& editor) { editor.DblClick.Raise(); });
  }
  void mousePressEvent(QMouseEvent* event) override {
    const MouseEvent mouse = ToMouseEvent(*event);
    QLineEdit::mousePressEvent(event);
    Tell([&](QtTextEditor& editor) { editor.MouseDown.Raise(mouse); });
  }
  void mouseMoveEvent(QMouseEvent* event) override {
    const MouseEvent mouse = ToMouseEvent(*event);
    QLineEdit::mouseMoveEvent(event);
    Tell([&](QtTextEditor& editor) { editor.MouseMove.Raise(mouse); });
  }
  void mouseReleaseEvent(QMouseEvent* event) override {
    const MouseEvent mouse = ToMouseEvent(*event);
    QLineEdit::mouseReleaseEvent(event);
    Tell([&](QtTextEditor& editor) { editor.MouseUp.Raise(mouse); });
  }

 private:
  template <class Call>
  void Tell(Call&& call) {
    if (editor_ && window_.viewport) window_.boundary->Run([&] { call(*editor_); });
  }
  bool Offer(QKeyEvent& event) {
    const KeyEvent key = ToKeyEvent(event);
    bool kept = false;
    Tell([&](QtTextEditor& editor) { editor.KeyDown.Raise(key, kept); });
    if (kept) event.accept();
    return kept;
  }

  QtTextEditor* editor_;
  EditorWindow window_;
};

QtTextEditor::QtTextEditor(const EditorWindow& window) : window_(window), line_(new Line(*this, window)) {}

// Not deleted at once: this may be called from one of its own events.
QtTextEditor::~QtTextEditor() {
  if (!line_) return;
  line_->Forget();
  line_->hide();
  line_->deleteLater();
}

void QtTextEditor::SetBounds(const PixelRect& bounds) {
  if (line_ && window_.viewport) line_->setGeometry(window_.Place(bounds));
}

void QtTextEditor::SetVisible(bool visible) {
  if (!line_) return;
  if (visible && window_.viewport && window_.name) line_->setAccessibleName(window_.name());
  line_->setVisible(visible);
}

void QtTextEditor::SetFont(const Font& font) {
  if (!line_ || !window_.viewport) return;
  line_->setFont(window_.metrics->ToQFont(font));
  // Qt leaves two pixels beside the text: it is to stand where the cell's text stands.
  constexpr int kCellInset = 2 + 2;
  const int padding = static_cast<int>(kGridTextPadding.Value()) - kCellInset;
  line_->setTextMargins(padding, 0, padding, 0);
}

void QtTextEditor::SetMaxLength(std::int32_t characters) {
  if (line_) line_->setMaxLength(characters > 0 ? characters : kNoMaxLength);
}

std::string QtTextEditor::Text() const { return line_ ? ToUtf8(line_->text()) : std::string(); }

void QtTextEditor::SetText(std::string_view text) {
  if (line_) line_->setText(ToQString(text));
}

std::int32_t QtTextEditor::SelStart() const {
  if (!line_) return 0;
  return line_->hasSelectedText() ? line_->selectionStart() : line_->cursorPosition();
}

std::int32_t QtTextEditor::SelLength() const { return line_ ? line_->selectionLength() : 0; }

void QtTextEditor::Select(std::int32_t start, std::int32_t length) {
  if (!line_) return;
  const auto count = static_cast<std::int32_t>(line_->text().size());
  const std::int32_t from = std::clamp(start, 0, count);
  const std::int32_t to = from + std::clamp(length, 0, count - from);
  // The caret stands before a text that is selected whole, so that its beginning is seen where it does not fit.
  const bool whole = from == 0 && to == count && count > 0;
  line_->setCursorPosition(whole ? to : from);
  line_->setSelection(whole ? to : from, whole ? -to : to - from);
}

std::string QtTextEditor::SelText() const { return line_ ? ToUtf8(line_->selectedText()) : std::string(); }

void QtTextEditor::SetSelText(std::string_view text) {
  if (!line_) return;
  if (text.empty()) {
    if (line_->hasSelectedText()) line_->del();
  } else {
    line_->insert(ToQString(text));
  }
}

void QtTextEditor::SetFocus() {
  if (line_) line_->setFocus(Qt::OtherFocusReason);
}

bool QtTextEditor::HasFocus() const { return line_ && line_->hasFocus(); }

// --- The list ---

// A tool tip's window takes neither the focus nor the activation, so the text box goes on taking the keys.
QtPopupList::QtPopupList(const EditorWindow& window) : window_(window), view_(new QListView(window.viewport)) {
  view_->setObjectName(QStringLiteral("popupList"));
  view_->setWindowFlags(Qt::ToolTip | Qt::WindowDoesNotAcceptFocus);
  view_->setAttribute(Qt::WA_ShowWithoutActivating);
  view_->setFocusPolicy(Qt::NoFocus);
  view_->setUniformItemSizes(true);
  view_->setEditTriggers(QAbstractItemView::NoEditTriggers);
  view_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  view_->setMouseTracking(true);
  view_->setModel(new EntryModel(view_));
  view_->setItemDelegate(new EntryDelegate(view_));
  QObject::connect(view_, &QListView::entered, view_, [this](const QModelIndex& index) { Highlight(index.row()); });
  QObject::connect(view_, &QListView::clicked, view_, [this](const QModelIndex& index) {
    if (window_.viewport) window_.boundary->Run([&] { Chosen.Raise(index.row()); });
  });
}

QtPopupList::~QtPopupList() {
  if (!view_) return;
  view_->disconnect();
  view_->hide();
  view_->deleteLater();
}

void QtPopupList::Open(const PixelRect& owner, std::vector<ListEntry> entries, std::int32_t highlighted) {
  if (!view_ || !window_.viewport) return;
  static_cast<EntryModel*>(view_->model())->SetEntries(std::move(entries));
  view_->setFont(window_.metrics->ToQFont({}));
  Place(owner);
  view_->show();
  view_->raise();
  Highlight(highlighted);
}

// As wide as its texts need, at least as wide as its owner, and on the screen.
void QtPopupList::Place(const PixelRect& owner) {
  const QRect place = window_.Place(owner);
  const int rows = std::min(view_->model()->rowCount(), kMostRowsShown);
  const int frame = 2 * view_->frameWidth();
  const int height = rows * std::max(view_->sizeHintForRow(0), 1) + frame;
  // Only the first texts are measured: a list may hold tens of thousands.
  constexpr int kMeasured = 200;
  int width = 0;
  for (int row = 0; row < std::min(view_->model()->rowCount(), kMeasured); ++row) {
    width = std::max(width, view_->sizeHintForIndex(view_->model()->index(row, 0)).width());
  }
  constexpr int kWidest = 560;
  const bool scrolls = view_->model()->rowCount() > kMostRowsShown;
  width += frame + (scrolls ? view_->verticalScrollBar()->sizeHint().width() : 0);
  const QSize size(std::max(place.width(), std::min(width, kWidest)), height);
  const QScreen* screen = window_.viewport->screen();
  const QRect room = screen ? screen->availableGeometry() : QRect(QPoint(), size);
  QPoint corner = window_.viewport->mapToGlobal(place.bottomLeft() + QPoint(0, 1));
  if (window_.viewport->isRightToLeft()) corner.rx() += place.width() - size.width();
  if (corner.y() + size.height() > room.bottom() + 1) {
    const int above = window_.viewport->mapToGlobal(place.topLeft()).y() - size.height();
    if (above >= room.top()) corner.setY(above);
  }
  corner.setX(std::max(room.left(), std::min(corner.x(), room.right() + 1 - size.width())));
  view_->setGeometry(QRect(corner, size));
}

void QtPopupList::Close() {
  if (view_) view_->hide();
}

bool QtPopupList::IsOpen() const { return view_ && view_->isVisible(); }

std::int32_t QtPopupList::Highlighted() const { return view_ ? view_->currentIndex().row() : -1; }

void QtPopupList::Highlight(std::int32_t index) {
  if (!view_) return;
  const QModelIndex place = index < 0 ? QModelIndex() : view_->model()->index(index, 0);
  view_->setCurrentIndex(place);
  if (place.isValid()) view_->scrollTo(place);
}

}  // namespace zrqrybld
