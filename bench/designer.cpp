#include "bench/designer.h"

#include "bench/made_up_source.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/host/step_context.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/sql/sql_pane.h"

namespace zrqrybld::bench {

Ref<qbQueryBuilder> MakeDesigner(int columnsOfATable, int listedTables) {
  const Ref<qbQueryBuilder> hub = qbQueryBuilder::Create();
  hub->SetDiagramPane(qbDiagramPane::Create());
  hub->SetGridPane(qbGridPane::Create());
  hub->SetSQLPane(qbSQLPane::Create());
  hub->GridPane()->SetShowGroupBy(false);
  hub->SetConnection(std::make_shared<MadeUpSource>(columnsOfATable, listedTables));
  return hub;
}

void AddTables(qbQueryBuilder& hub, int count) {
  const StepScope step(hub.Hub(), "Add tables");
  for (int i = 0; i < count; ++i) hub.AddTable(TableName(i));
  hub.RefreshAutoJoins();
}

}  // namespace zrqrybld::bench
