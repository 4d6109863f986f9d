// A designer without a window over a made-up source.
#pragma once

#include <memory>

#include "bench/made_up_source.h"
#include "zrqrybld/hub/query_builder.h"

namespace zrqrybld::bench {

inline Ref<qbQueryBuilder> MakeDesigner(int columnsOfATable, int listedTables = 0) {
  const Ref<qbQueryBuilder> hub = qbQueryBuilder::Create();
  hub->SetDiagramPane(qbDiagramPane::Create());
  hub->SetGridPane(qbGridPane::Create());
  hub->SetSQLPane(qbSQLPane::Create());
  hub->GridPane()->SetShowGroupBy(false);
  hub->SetConnection(std::make_shared<MadeUpSource>(columnsOfATable, listedTables));
  return hub;
}

/// Adds T0, T1, ... and their joins in one step, as the designer does.
inline void AddTables(qbQueryBuilder& hub, int count) {
  const StepScope step(hub.Hub(), "Add tables");
  for (int i = 0; i < count; ++i) hub.AddTable(TableName(i));
  hub.RefreshAutoJoins();
}

}  // namespace zrqrybld::bench
