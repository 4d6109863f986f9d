#include "tests/link_panes.h"

#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/sql/sql_pane.h"

namespace zrqrybld::test {

void LinkPanes(qbQueryBuilder& hub) {
  hub.SetDiagramPane(qbDiagramPane::Create());
  hub.SetGridPane(qbGridPane::Create());
  hub.SetSQLPane(qbSQLPane::Create());
}

}  // namespace zrqrybld::test
