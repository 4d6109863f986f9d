// Qt's line edit and a list window as the core's in-place editors. Caret, selection, clipboard and input methods are
// Qt's own.
#pragma once

#include <QLineEdit>
#include <QListView>
#include <QPointer>
#include <QWidget>
#include <functional>
#include <memory>

#include "zrqrybld/adapters/qt/event_boundary.h"
#include "zrqrybld/adapters/qt/qt_metrics.h"
#include "zrqrybld/platform/editors.h"

namespace zrqrybld {

/// The window of a control, as its editors see it. All of it lives as long as `viewport` does.
struct EditorWindow {
  QPointer<QWidget> viewport;
  const QtMetrics* metrics;
  const EventBoundary* boundary;
  std::function<QString()> name = {};  ///< what assistive technology calls an editor that opens now

  /// A place on the control's surface as one of the viewport.
  QRect Place(const PixelRect& onSurface) const;
};

/// A line edit inside a control's window. The window may go away first.
class QtTextEditor final : public TextEditor {
 public:
  explicit QtTextEditor(const EditorWindow& window);
  ~QtTextEditor() override;

  void SetBounds(const PixelRect& bounds) override;
  void SetVisible(bool visible) override;
  void SetFont(const Font& font) override;
  void SetMaxLength(std::int32_t characters) override;
  std::string Text() const override;
  void SetText(std::string_view text) override;
  std::int32_t SelStart() const override;
  std::int32_t SelLength() const override;
  void Select(std::int32_t start, std::int32_t length) override;
  std::string SelText() const override;
  void SetSelText(std::string_view text) override;
  void SetFocus() override;
  bool HasFocus() const override;

 private:
  class Line;
  EditorWindow window_;
  QPointer<Line> line_;
};

/// A list in a small window of its own, which takes no focus, below a part of a control's window.
class QtPopupList final : public PopupList {
 public:
  explicit QtPopupList(const EditorWindow& window);
  ~QtPopupList() override;

  void Open(const PixelRect& owner, std::vector<ListEntry> entries, std::int32_t highlighted) override;
  void Close() override;
  bool IsOpen() const override;
  std::int32_t Highlighted() const override;
  void Highlight(std::int32_t index) override;

 private:
  void Place(const PixelRect& owner);

  EditorWindow window_;
  QPointer<QListView> view_;
};

}  // namespace zrqrybld
