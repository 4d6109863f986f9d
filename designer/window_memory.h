// What the window remembers of itself from one start to the next: its place, how the panes share it, the widths of the
// grid's columns and the zoom. It is kept in the application's settings.
#pragma once

class QMainWindow;

namespace zrqrybld {

class PaneLayout;
class QueryDesignerWidget;

/// The parts that are remembered.
struct RememberedWindow {
  QMainWindow& window;
  QueryDesignerWidget& designer;
  PaneLayout& panes;  ///< the designer's
};

/// Keeps the layout as it is now.
void StoreLayout(const RememberedWindow& remembered);

/// Gives a further query's panes the layout of those that were opened before.
void CopyLayout(QueryDesignerWidget& from, PaneLayout& fromPanes, QueryDesignerWidget& to, PaneLayout& toPanes);

/// Takes the layout kept last. What is missing or damaged stays as it is; a place that is on no screen any more is
/// moved onto one.
void RestoreLayout(const RememberedWindow& remembered);

}  // namespace zrqrybld
