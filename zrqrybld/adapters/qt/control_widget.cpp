#include "zrqrybld/adapters/qt/control_widget.h"

#include <QBuffer>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QDrag>
#include <QGuiApplication>
#include <QHelpEvent>
#include <QImageWriter>
#include <QMenu>
#include <QMimeData>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>
#include <QTimer>
#include <QToolTip>

#include "zrqrybld/adapters/files/system_files.h"
#include "zrqrybld/adapters/qt/access_events.h"
#include "zrqrybld/adapters/qt/plain_tip.h"
#include "zrqrybld/adapters/qt/qt_canvas.h"
#include "zrqrybld/adapters/qt/qt_editors.h"
#include "zrqrybld/adapters/qt/qt_geometry.h"
#include "zrqrybld/adapters/qt/qt_input.h"
#include "zrqrybld/adapters/qt/qt_menu.h"
#include "zrqrybld/adapters/qt/qt_picture.h"
#include "zrqrybld/adapters/qt/qt_text.h"
#include "zrqrybld/base/error.h"
#include "zrqrybld/base/texts_qt.h"
#include "zrqrybld/platform/mirrored_canvas.h"

namespace zrqrybld {
namespace {

bool IsTab(int key) { return key == Qt::Key_Tab || key == Qt::Key_Backtab; }

// What an editor edits: the current cell by its headers, otherwise the current object by its name.
std::string NameOfEdit(const AccessibleTree& tree) {
  const AccessibleId current = tree.Current();
  const auto cell = tree.PlaceOf(current);
  if (!cell) return tree.Describe(current).name;
  return tree.Describe(tree.ColumnHeader(cell->column)).name + ", " + tree.Describe(tree.RowHeader(cell->row)).name;
}

}  // namespace

ControlWidget::ControlWidget(Ref<Control> control, QWidget* parent)
    : QAbstractScrollArea(parent), theme_(palette()), metrics_(font()) {
  ControlAccess::Install();
  setFrameShape(QFrame::NoFrame);
  setFocusPolicy(Qt::TabFocus);  // on a click the control asks for the focus where it wants it
  setAcceptDrops(true);
  viewport()->setMouseTracking(true);
  viewport()->setAutoFillBackground(false);
  connect(verticalScrollBar(), &QScrollBar::valueChanged, this,
          [this](int value) { Scrolled(Orientation::Vertical, value); });
  connect(horizontalScrollBar(), &QScrollBar::valueChanged, this,
          [this](int value) { Scrolled(Orientation::Horizontal, value); });
  SetControl(std::move(control));
}

ControlWidget::~ControlWidget() { SetControl(nullptr); }

void ControlWidget::SetControl(Ref<Control> control) {
  if (control == control_) return;
  if (const Ref<Control> old = std::exchange(control_, nullptr)) {
    SetCapture(false);
    // Another widget may have taken the control over in the meantime.
    if (&old->GetSurface() == this) boundary_.Run([&] { old->AttachSurface(nullptr); });
    scrollStates_ = {};
    ApplyScrollBars();
    viewport()->unsetCursor();
  }
  control_ = std::move(control);
  Tell([this](Control& current) { current.AttachSurface(this); });
  viewport()->update();
}

// Calls the control, which a call may also take out of this widget: it stays alive until the call is over.
template <class Call>
void ControlWidget::Tell(Call&& call) {
  const Ref<Control> control = control_;
  if (control) boundary_.Run([&] { call(*control); });
}

void ControlWidget::SetBar(QWidget* bar) {
  if (bar_) bar_->hide();
  bar_ = bar;
  setViewportMargins(0, 0, 0, bar ? bar->sizeHint().height() : 0);
  PlaceBar();
  if (bar) bar->show();
}

// Below the viewport, and below a scroll bar there.
void ControlWidget::PlaceBar() {
  if (!bar_) return;
  const int height = bar_->sizeHint().height();
  bar_->setGeometry(0, viewport()->geometry().bottom() + 1, viewport()->width(), height);
}

// --- The surface ---

// A widget that no layout has placed yet has a size that means nothing; tables added before the window is shown
// would be piled up in it.
PixelSize ControlWidget::ViewSize() const {
  constexpr PixelSize kBeforeLayout{800_px, 600_px};
  if (!wasShown_) return kBeforeLayout;
  return {Pixels(viewport()->width()), Pixels(viewport()->height())};
}

void ControlWidget::Invalidate(const PixelRect& area) {
  // One pixel more: an antialiased edge may reach into its neighbour.
  viewport()->update(ToViewport(*viewport(), area).toAlignedRect().adjusted(-1, -1, 1, 1));
  UpdateAccessSoon();
}

void ControlWidget::SetScrollBar(Orientation orientation, const ScrollState& state) {
  scrollStates_[static_cast<std::size_t>(orientation)] = state;
  ApplyScrollBars();
}

// A bar that appears or goes changes the visible size, the control hears of that and may set the bars anew while this
// runs: the newest wish is then applied in another round.
void ControlWidget::ApplyScrollBars() {
  if (applyingScrollBars_) return;
  applyingScrollBars_ = true;
  constexpr int kMostRounds = 8;  // a control that never comes to rest must not hang the application
  std::array<ScrollState, 2> applied;
  int round = 0;
  do {
    applied = scrollStates_;
    for (const Orientation orientation : {Orientation::Horizontal, Orientation::Vertical}) {
      const ScrollState& state = applied[static_cast<std::size_t>(orientation)];
      QScrollBar& bar = orientation == Orientation::Vertical ? *verticalScrollBar() : *horizontalScrollBar();
      bar.setPageStep(state.page);
      bar.setSingleStep(state.step);
      bar.setRange(0, state.maximum);
      bar.setValue(state.value);
    }
  } while (applied != scrollStates_ && ++round < kMostRounds);
  applyingScrollBars_ = false;
}

void ControlWidget::Scrolled(Orientation orientation, int value) {
  if (applyingScrollBars_) return;
  scrollStates_[static_cast<std::size_t>(orientation)].value = value;
  Tell([=](Control& control) { control.OnScroll(orientation, value); });
}

void ControlWidget::SetCursor(Cursor cursor) {
  if (isRightToLeft() && cursor == Cursor::SizeDiagonalDown) {
    cursor = Cursor::SizeDiagonalUp;
  } else if (isRightToLeft() && cursor == Cursor::SizeDiagonalUp) {
    cursor = Cursor::SizeDiagonalDown;
  }
  viewport()->setCursor(ToCursorShape(cursor));
}

void ControlWidget::SetCapture(bool captured) {
  const bool has = QWidget::mouseGrabber() == viewport();
  if (captured && !has && isVisible()) viewport()->grabMouse();
  if (!captured && has) viewport()->releaseMouse();
}

void ControlWidget::SetFocus() { setFocus(Qt::OtherFocusReason); }

void ControlWidget::ShowMenu(const Menu& menu, PixelPoint at) {
  QMenu window(this);
  FillMenu(window, menu, boundary_);
  window.exec(viewport()->mapToGlobal(ToQPointF(ToSurface(*viewport(), at)).toPoint()));
}

void ControlWidget::SetTicking(bool ticking) {
  constexpr int kTickMilliseconds = 50;
  if (!ticks_) {
    if (!ticking) return;
    ticks_ = new QTimer(this);
    connect(ticks_, &QTimer::timeout, this, [this] { Tell([](Control& control) { control.OnTick(); }); });
  }
  if (ticking) {
    if (!ticks_->isActive()) ticks_->start(kTickMilliseconds);
  } else {
    ticks_->stop();
  }
}

void ControlWidget::DragText(std::string_view text) {
  const QString dragged = ToQString(text);
  if (dragHandler_) {
    dragHandler_(dragged);
    return;
  }
  SetCapture(false);             // the drag needs the mouse for itself
  auto* drag = new QDrag(this);  // Qt deletes it after the drag
  auto* mime = new QMimeData;
  mime->setText(dragged);
  drag->setMimeData(mime);
  drag->exec(Qt::CopyAction);
}

bool ControlWidget::CopyPicture(const Picture& picture) {
  QImage image = DrawToImage(picture, theme_, metrics_, this);
  if (image.isNull()) return false;
  image.setDevicePixelRatio(1);  // programs that paste it count its own pixels
  QGuiApplication::clipboard()->setImage(image);
  return true;
}

void ControlWidget::SavePng(const Picture& picture, const std::string& path) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  QImageWriter writer(&buffer, "PNG");
  if (!writer.write(DrawToImage(picture, theme_, metrics_, this))) {
    throw Error(ErrorFileAccess, Phrase(text::CannotBeWritten, path, ToUtf8(writer.errorString())));
  }
  WriteWholeFile(path, {bytes.constData(), static_cast<std::size_t>(bytes.size())}, *SystemFiles());
}

std::shared_ptr<TextEditor> ControlWidget::MakeTextEditor() {
  return std::make_shared<QtTextEditor>(EditorWindow{viewport(), &metrics_, &boundary_, [this] {
                                                       const AccessibleTree* tree = AccessTree();
                                                       return tree ? ToQString(NameOfEdit(*tree)) : QString();
                                                     }});
}

std::shared_ptr<PopupList> ControlWidget::MakePopupList() {
  return std::make_shared<QtPopupList>(EditorWindow{viewport(), &metrics_, &boundary_});
}

std::string ControlWidget::ClipboardText() const { return ToUtf8(QGuiApplication::clipboard()->text()); }

void ControlWidget::SetClipboardText(std::string_view text) { QGuiApplication::clipboard()->setText(ToQString(text)); }

std::uintptr_t ControlWidget::WindowHandle() const { return static_cast<std::uintptr_t>(effectiveWinId()); }

void ControlWidget::scrollContentsBy(int, int) {}  // the control moves its contents itself

// --- Assistive technology ---

QRect ControlWidget::ToScreen(const PixelRect& onSurface) const {
  const QRect place = ToViewport(*viewport(), onSurface).toAlignedRect();
  return {viewport()->mapToGlobal(place.topLeft()), place.size()};
}

PixelPoint ControlWidget::FromScreen(const QPoint& onScreen) const {
  return ToSurface(*viewport(), ToPixelPoint(viewport()->mapFromGlobal(onScreen)));
}

void ControlWidget::PerformAccess(const AccessibleId& id, AccessibleAction action) {
  const auto perform = [this, id, action] {
    Tell([&](Control& control) {
      if (AccessibleTree* tree = control.Accessible()) tree->Perform(id, action);
    });
  };
  const bool mayWait = action == AccessibleAction::Press || action == AccessibleAction::ShowMenu;
  if (mayWait) {
    QTimer::singleShot(0, this, perform);
  } else {
    perform();
  }
}

// Whatever changes what is said is seen, too, and has been announced by `Invalidate`.
void ControlWidget::UpdateAccessSoon() {
  if (updatingAccess_ || !AccessIsHeard()) return;
  updatingAccess_ = true;
  QTimer::singleShot(0, this, [this] {
    updatingAccess_ = false;
    ControlAccess::Update(*this);
  });
}

// --- Painting ---

void ControlWidget::paintEvent(QPaintEvent* event) {
  QPainter painter(viewport());
  const QRect dirty = event->rect();
  painter.fillRect(dirty, theme_.Of(ColorRole::Surface));
  QtCanvas canvas(painter, theme_, metrics_, this);
  const Pixels width(viewport()->width());
  MirroredCanvas mirrored(canvas, width);
  Tell([&](const Control& control) {
    if (isRightToLeft()) {
      control.Paint(mirrored, MirroredAt(width, ToPixelRect(dirty)));
    } else {
      control.Paint(canvas, ToPixelRect(dirty));
    }
  });
}

void ControlWidget::resizeEvent(QResizeEvent*) {
  PlaceBar();
  Tell([](Control& control) { control.OnResize(); });
}

void ControlWidget::changeEvent(QEvent* event) {
  QAbstractScrollArea::changeEvent(event);
  switch (event->type()) {
    case QEvent::PaletteChange:  // colours are asked for when painting: an open editor stays open
      theme_ = Theme(palette());
      viewport()->update();
      break;
    case QEvent::StyleChange:
    case QEvent::FontChange:
    case QEvent::LayoutDirectionChange:
      theme_ = Theme(palette());
      metrics_.SetBaseFont(font());
      Tell([this](Control& control) {
        if (&control.GetSurface() == this) control.AttachSurface(this);  // fonts are others now
      });
      viewport()->update();
      break;
    default:
      break;
  }
}

// --- Mouse ---

MouseEvent ControlWidget::OnSurface(MouseEvent mouse) const {
  mouse.position = ToSurface(*viewport(), mouse.position);
  return mouse;
}

void ControlWidget::mousePressEvent(QMouseEvent* event) {
  const MouseEvent mouse = OnSurface(ToMouseEvent(*event));
  if (mouse.button != ButtonNone) Tell([&](Control& control) { control.OnMouseDown(mouse); });
}

void ControlWidget::mouseMoveEvent(QMouseEvent* event) {
  const MouseEvent mouse = OnSurface(ToMouseEvent(*event));
  Tell([&](Control& control) { control.OnMouseMove(mouse); });
}

void ControlWidget::mouseReleaseEvent(QMouseEvent* event) {
  const MouseEvent mouse = OnSurface(ToMouseEvent(*event));
  if (mouse.button != ButtonNone) Tell([&](Control& control) { control.OnMouseUp(mouse); });
}

void ControlWidget::mouseDoubleClickEvent(QMouseEvent* event) {
  const MouseEvent mouse = OnSurface(ToMouseEvent(*event));
  if (mouse.button != ButtonNone) Tell([&](Control& control) { control.OnDoubleClick(mouse); });
}

void ControlWidget::wheelEvent(QWheelEvent* event) {
  WheelEvent wheel = ToWheelEvent(*event, metrics_.LineHeight({}).Value());
  wheel.position = ToSurface(*viewport(), wheel.position);
  if (isRightToLeft()) wheel.linesX = -wheel.linesX;
  event->accept();
  Tell([&](Control& control) { control.OnWheel(wheel); });
}

// The scroll area would swallow it; it belongs to the application, which shows the menu.
void ControlWidget::contextMenuEvent(QContextMenuEvent* event) { event->ignore(); }

bool ControlWidget::viewportEvent(QEvent* event) {
  switch (event->type()) {
    case QEvent::ToolTip: {
      const auto& help = static_cast<const QHelpEvent&>(*event);
      ShowToolTip(help.pos(), help.globalPos());
      return true;
    }
    case QEvent::Leave:
      Tell([](Control& control) { control.OnMouseLeave(); });
      break;
    default:
      break;
  }
  return QAbstractScrollArea::viewportEvent(event);
}

void ControlWidget::ShowToolTip(const QPoint& position, const QPoint& globalPosition) {
  QString text;
  Tell([&](const Control& control) {
    text = ToQString(control.ToolTipAt(ToSurface(*viewport(), ToPixelPoint(position))));
  });
  if (text.isEmpty()) {
    QToolTip::hideText();
    return;
  }
  QToolTip::showText(globalPosition, PlainTip(text), viewport());
}

// --- Keyboard and focus ---

// In a mirror the arrows to the left and right change places, too.
KeyEvent ControlWidget::OnSurface(KeyEvent key) const {
  if (!isRightToLeft()) return key;
  if (key.keyCode == KeyCodeLeft) {
    key.keyCode = KeyCodeRight;
  } else if (key.keyCode == KeyCodeRight) {
    key.keyCode = KeyCodeLeft;
  }
  return key;
}

bool ControlWidget::OfferKey(QKeyEvent& event) {
  const KeyEvent key = OnSurface(ToKeyEvent(event));
  bool used = false;
  Tell([&](Control& control) { used = control.OnKeyDown(key); });
  event.setAccepted(used);
  return used;
}

// Qt moves the focus with Tab before it asks for the key: the control is asked first.
bool ControlWidget::event(QEvent* event) {
  if (event->type() == QEvent::KeyPress) {
    auto& key = static_cast<QKeyEvent&>(*event);
    if (IsTab(key.key())) {
      if (OfferKey(key)) return true;
      key.accept();  // an ignored key would move the focus once more in the parent
    }
  }
  return QAbstractScrollArea::event(event);
}

// Not the base: it would scroll with the arrow keys that the control did not want.
// A drag is a mouse without a button that went down here.
static MouseEvent ToMouseEvent(const QDropEvent& event) {
  return {ButtonLeft, ToShift(event.modifiers()), {Pixels(event.position().x()), Pixels(event.position().y())}};
}

void ControlWidget::dragEnterEvent(QDragEnterEvent* event) { dragMoveEvent(event); }

void ControlWidget::dragMoveEvent(QDragMoveEvent* event) {
  bool allowed = false;
  if (event->mimeData()->hasText()) {
    const std::string text = ToUtf8(event->mimeData()->text());
    Tell([&](Control& control) { allowed = control.OnDragOver(text, OnSurface(ToMouseEvent(*event))); });
  }
  // Entering is always accepted: a place further inside may take what the edge does not.
  if (allowed || event->type() == QEvent::DragEnter) {
    event->acceptProposedAction();
  } else {
    event->ignore();
  }
}

void ControlWidget::dragLeaveEvent(QDragLeaveEvent* event) {
  event->accept();
  Tell([](Control& control) { control.OnDragLeave(); });
}

void ControlWidget::dropEvent(QDropEvent* event) {
  const std::string text = ToUtf8(event->mimeData()->text());
  Tell([&](Control& control) { control.OnDrop(text, OnSurface(ToMouseEvent(*event))); });
  event->acceptProposedAction();
}

void ControlWidget::keyPressEvent(QKeyEvent* event) {
  if (IsTab(event->key())) {
    event->ignore();  // was offered in `event`
  } else {
    OfferKey(*event);
  }
}

void ControlWidget::keyReleaseEvent(QKeyEvent* event) {
  event->ignore();
  if (event->isAutoRepeat()) return;  // the key is still held
  const KeyEvent key = OnSurface(ToKeyEvent(*event));
  Tell([&](Control& control) { control.OnKeyUp(key); });
}

void ControlWidget::focusInEvent(QFocusEvent* event) {
  if (event->reason() == Qt::PopupFocusReason) return;
  Tell([](Control& control) { control.OnFocusChanged(true); });
  UpdateAccessSoon();
}

// A menu over the control borrows the keyboard; the control stays the one that works.
void ControlWidget::focusOutEvent(QFocusEvent* event) {
  if (event->reason() == Qt::PopupFocusReason) return;
  Tell([](Control& control) { control.OnFocusChanged(false); });
}

void ControlWidget::showEvent(QShowEvent* event) {
  QAbstractScrollArea::showEvent(event);
  if (wasShown_) return;
  wasShown_ = true;
  Tell([](Control& control) { control.OnResize(); });
}

void ControlWidget::hideEvent(QHideEvent* event) {
  SetCapture(false);
  QAbstractScrollArea::hideEvent(event);
}

}  // namespace zrqrybld
