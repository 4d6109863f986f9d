#include "designer/window_memory.h"

#include <QMainWindow>
#include <QSettings>
#include <cmath>
#include <vector>

#include "designer/pane_layout.h"
#include "zrqrybld/adapters/qt/qt_text.h"
#include "zrqrybld/adapters/qt/query_designer_widget.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/grid/grid_pane.h"

namespace zrqrybld {
namespace {

constexpr auto kGeometryKey = "window/geometry";
constexpr auto kDocksKey = "window/docks";
constexpr auto kRowsInTabKey = "window/rowsInTab";
constexpr auto kDesignerKey = "window/designer";
constexpr auto kZoomKey = "diagram/zoom";
constexpr auto kColumnsGroup = "gridColumns";
constexpr float kNarrowest = 150;  // twips; a column that cannot be seen is of no use
constexpr float kWidest = 30000;

void ForEachColumn(const QueryDesignerWidget& designer, const auto& work) {
  const zrGrid& grid = *designer.QueryBuilder().GridPane()->Grid();
  for (std::int32_t i = 1; i <= grid.Columns()->Count(); ++i) work(*grid.Columns()->Item(i));
}

}  // namespace

void StoreLayout(const RememberedWindow& remembered) {
  QSettings settings;
  settings.setValue(kGeometryKey, remembered.window.saveGeometry());
  settings.setValue(kDocksKey, remembered.window.saveState());
  settings.setValue(kRowsInTabKey, remembered.panes.RowsInTab());
  settings.setValue(kDesignerKey, remembered.panes.State());
  settings.setValue(kZoomKey, remembered.designer.QueryBuilder().DiagramPane()->Zoom());
  settings.beginGroup(kColumnsGroup);
  ForEachColumn(remembered.designer, [&](const zrGridColumn& column) {
    if (!column.Hidden()) settings.setValue(ToQString(column.Key()), column.Width());
  });
}

void RestoreLayout(const RememberedWindow& remembered) {
  QSettings settings;
  remembered.window.restoreGeometry(settings.value(kGeometryKey).toByteArray());
  remembered.window.restoreState(settings.value(kDocksKey).toByteArray());
  remembered.panes.SetRowsInTab(settings.value(kRowsInTabKey, true).toBool());
  remembered.panes.SetState(settings.value(kDesignerKey).toByteArray());
  const double zoom = settings.value(kZoomKey, 1.0).toDouble();
  if (std::isfinite(zoom) && zoom > 0) remembered.designer.QueryBuilder().DiagramPane()->SetZoom(zoom, {});
  settings.beginGroup(kColumnsGroup);
  ForEachColumn(remembered.designer, [&](zrGridColumn& column) {
    const float width = settings.value(ToQString(column.Key())).toFloat();
    if (!column.Hidden() && width >= kNarrowest && width <= kWidest) column.SetWidth(width);
  });
}

void CopyLayout(QueryDesignerWidget& from, PaneLayout& fromPanes, QueryDesignerWidget& to, PaneLayout& toPanes) {
  toPanes.SetRowsInTab(fromPanes.RowsInTab());
  toPanes.SetState(fromPanes.State());
  std::vector<float> widths;
  ForEachColumn(from, [&](const zrGridColumn& column) { widths.push_back(column.Width()); });
  std::size_t at = 0;
  ForEachColumn(to, [&](zrGridColumn& column) {
    const float width = at < widths.size() ? widths[at++] : 0;  // each query has its own OR columns
    if (!column.Hidden() && width > 0) column.SetWidth(width);
  });
}

}  // namespace zrqrybld
