// PaneLayout: how the panes of one query share the window: diagram, grid, and the statement with the rows beside it in
// a tab or below it. Each can be hidden by its splitter, and made as large as all together.
#pragma once

#include <QSplitter>
#include <QTabWidget>

#include "designer/preview_pane.h"
#include "zrqrybld/adapters/qt/query_designer_widget.h"

namespace zrqrybld {

class PaneLayout : public QObject {
  Q_OBJECT

 public:
  /// Both must outlive it; the rows stand within the designer from then on.
  PaneLayout(QueryDesignerWidget& designer, PreviewPane& rows, const TextSource& texts);

  /// Whether statement and rows are tabs; they stand one below the other otherwise.
  bool RowsInTab() const { return tabs_->indexOf(&rows_) >= 0; }
  void SetRowsInTab(bool inTab);

  /// Brings the rows to where they are seen, or away from there.
  void ShowRows(bool shown);
  bool RowsShown() const { return rows_.isVisibleTo(&designer_); }
  /// Brings the statement to where it is seen.
  void ShowStatement() { Reveal(tabs_, &designer_.SqlView()); }

  /// Makes the pane with the keyboard as large as all, or gives the others their places back.
  void ToggleMaximized();
  bool IsMaximized() const { return maximized_ != nullptr; }
  /// Hides the pane with the keyboard, which goes on to the next one; F6 brings the pane back.
  void CollapseFocused();

  /// How the height is shared. A state that is damaged changes nothing.
  QByteArray State();
  void SetState(const QByteArray& state);

 Q_SIGNALS:
  /// The rows are seen now, or no longer; a pane is maximised now, or no longer.
  void Changed();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QWidget* PartOf(const QWidget* pane) const;
  QWidget* FocusedPart() const;
  void Reveal(QWidget* part, QWidget* pane);
  void Expand(QWidget* part);
  void ToggleCollapsed(QWidget* part);
  void Maximize(QWidget* part);
  void WatchHandles();

  QueryDesignerWidget& designer_;
  PreviewPane& rows_;
  QString rowsName_;
  QTabWidget* tabs_;
  QWidget* maximized_ = nullptr;
  bool rowsWanted_ = false;  // below the statement
};

}  // namespace zrqrybld
