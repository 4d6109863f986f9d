#include "zrqrybld/grid/pane_rows.h"

#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/host/query_context.h"

namespace zrqrybld {

Ref<qbEntities> PaneRows::Entities() const {
  const Ref<QueryContext> context = Context();
  return context ? context->design.Entities() : nullptr;
}

const qbDBFunctions* PaneRows::Functions() const {
  const Ref<QueryContext> context = Context();
  return context ? context->source.DBFunctions().get() : nullptr;
}

void PaneRows::ReportChange() const {
  if (const Ref<QueryContext> context = Context()) context->steps.QueryChanged();
}

std::int16_t PaneRows::AliasMaxLen() const {
  const Ref<QueryContext> context = Context();
  return context ? context->design.AliasMaxLen() : std::int16_t{0};
}

void PaneRows::AddEmpty() const { RowWriter(*grid_->Rows()->Add()).SetAliasMaxLen(AliasMaxLen()); }

void PaneRows::EnsureEmptyLast() const {
  if (Count() == 0 || !RowReader(At(Count())).IsEmpty()) AddEmpty();
}

}  // namespace zrqrybld
