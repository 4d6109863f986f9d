// NameFindBar: looks for tables and columns of a diagram, below the pane that shows it.
//
// Owned by the pane's widget, which gives it its place.
#pragma once

#include "zrqrybld/adapters/qt/find_frame.h"
#include "zrqrybld/base/object.h"
#include "zrqrybld/diagram/diagram_site.h"

namespace zrqrybld {

class ControlWidget;
class qbDiagramPane;

class NameFindBar final : public FindFrame {
 public:
  /// A hidden bar.
  NameFindBar(ControlWidget& view, const Ref<qbDiagramPane>& pane);

  /// Speaks this language, which must outlive the bar or the next call.
  void SetTexts(const TextSource& texts);
  /// Shows the bar with what was looked for last, and takes the keyboard.
  void Open();
  void Close() override;
  void Go(bool forward) override { Look(forward ? FindFrom::Next : FindFrom::Previous); }

 private:
  void Look(FindFrom from);

  ControlWidget& view_;
  WeakRef<qbDiagramPane> pane_;
};

}  // namespace zrqrybld
