// ControlWidget: the window of one core control.
//
// It keeps the control alive, hands it what the user does, paints it and is its surface. It only
// translates; every rule is the control's. A control that is destroyed or taken out leaves an empty
// widget; a widget that is destroyed leaves the control on its headless surface. In a layout from right to left the
// control is seen in a mirror and knows nothing of it.
#pragma once

#include <QAbstractScrollArea>
#include <QPointer>
#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "zrqrybld/adapters/qt/control_access.h"
#include "zrqrybld/adapters/qt/event_boundary.h"
#include "zrqrybld/adapters/qt/qt_metrics.h"
#include "zrqrybld/adapters/qt/theme.h"
#include "zrqrybld/base/export.h"
#include "zrqrybld/platform/control.h"
#include "zrqrybld/platform/input.h"
#include "zrqrybld/platform/surface.h"

class QTimer;

namespace zrqrybld {

class ZRQRYBLD_API ControlWidget : public QAbstractScrollArea, public Surface, public AccessHost {
  Q_OBJECT

 public:
  /// Offers a text to be dropped elsewhere and returns when the drag has ended.
  using DragHandler = std::function<void(const QString& text)>;

  explicit ControlWidget(Ref<Control> control = nullptr, QWidget* parent = nullptr);
  ~ControlWidget() override;

  /// Puts another control here, or none. The one before moves to its headless surface.
  void SetControl(Ref<Control> control);

  /// The colours in use; they follow the widget's palette.
  const Theme& GetTheme() const { return theme_; }

  /// Failures of the control go here instead of into a warning.
  void SetErrorHandler(ErrorHandler handler) { boundary_.SetHandler(std::move(handler)); }

  /// Replaces the real drag and drop, for tests and for applications with their own.
  void SetDragHandler(DragHandler handler) { dragHandler_ = std::move(handler); }

  /// Shows a bar, a child of this widget, below what the control shows; nothing shows none. The one before is hidden.
  void SetBar(QWidget* bar);

  /// The surface, as the control sees it.
  PixelSize ViewSize() const override;
  /// 96 logical pixels make an inch on every screen; Qt scales them itself.
  ScreenScale Scale() const override { return {}; }
  const TextMetrics& Metrics() const override { return metrics_; }
  void Invalidate(const PixelRect& area) override;
  void SetScrollBar(Orientation orientation, const ScrollState& state) override;
  void SetCursor(Cursor cursor) override;
  void SetCapture(bool captured) override;
  void SetFocus() override;
  void ShowMenu(const Menu& menu, PixelPoint at) override;
  void SetTicking(bool ticking) override;
  void DragText(std::string_view text) override;
  bool CopyPicture(const Picture& picture) override;
  void SavePng(const Picture& picture, const std::string& path) override;
  std::shared_ptr<TextEditor> MakeTextEditor() override;
  std::shared_ptr<PopupList> MakePopupList() override;
  std::string ClipboardText() const override;
  void SetClipboardText(std::string_view text) override;
  std::uintptr_t WindowHandle() const override;

  /// What assistive technology asks for.
  AccessibleTree* AccessTree() const override { return control_ ? control_->Accessible() : nullptr; }
  QRect ToScreen(const PixelRect& onSurface) const override;
  PixelPoint FromScreen(const QPoint& onScreen) const override;
  void PerformAccess(const AccessibleId& id, AccessibleAction action) override;
  QWidget* EditorParent() const override { return viewport(); }

 protected:
  bool event(QEvent* event) override;
  bool viewportEvent(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dragMoveEvent(QDragMoveEvent* event) override;
  void dragLeaveEvent(QDragLeaveEvent* event) override;
  void dropEvent(QDropEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void keyReleaseEvent(QKeyEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  void changeEvent(QEvent* event) override;
  void scrollContentsBy(int dx, int dy) override;

 private:
  template <class Call>
  void Tell(Call&& call);
  MouseEvent OnSurface(MouseEvent mouse) const;
  KeyEvent OnSurface(KeyEvent key) const;
  bool OfferKey(QKeyEvent& event);
  void PlaceBar();
  void ShowToolTip(const QPoint& position, const QPoint& globalPosition);
  void ApplyScrollBars();
  void Scrolled(Orientation orientation, int value);
  void UpdateAccessSoon();

  Ref<Control> control_;
  Theme theme_;
  QtMetrics metrics_;
  EventBoundary boundary_;
  DragHandler dragHandler_;
  QPointer<QWidget> bar_;
  QTimer* ticks_ = nullptr;                  // made on first use
  std::array<ScrollState, 2> scrollStates_;  // as the control wants them, by orientation
  bool applyingScrollBars_ = false;
  bool wasShown_ = false;
  bool updatingAccess_ = false;  // will be told soon
};

}  // namespace zrqrybld
