#include "zrqrybld/diagram/entity_item.h"

#include "zrqrybld/base/error.h"

namespace zrqrybld {

BoxRow& qbEntityItem::Row() const {
  if (!row_) ThrowObjectRemoved();
  return *row_;
}

ItemState qbEntityItem::State() const {
  const BoxRow& row = Row();
  return {row.Text(),      row.Key(),  row.Bold(),        row.ForeColor(),
          row.SmallIcon(), row.Kind(), row.ToolTipText(), properties_};
}

// Text and key are those it was made with.
void qbEntityItem::Restore(const ItemState& state) {
  if (state.bold) SetBold(true);
  if (state.color != Row().ForeColor()) SetColor(state.color);
  if (!state.smallIcon.IsEmpty()) SetSmallIcon(state.smallIcon);
  if (state.kind != TypeKind::None) SetKind(state.kind);
  SetToolTipText(state.toolTip);
  properties_ = state.properties;
}

void qbEntityItem::SetKey(std::string key) {
  BoxRow& row = Row();
  list_->Rekey(row.Index(), key);
  row.SetKey(std::move(key));
}

}  // namespace zrqrybld
