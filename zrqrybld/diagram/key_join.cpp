#include "zrqrybld/diagram/key_join.h"

#include "zrqrybld/diagram/diagram_selection.h"
#include "zrqrybld/diagram/diagram_site.h"
#include "zrqrybld/diagram/entity.h"

namespace zrqrybld {
namespace {

// A join has one column at each end; "*" is none.
bool MayEndAt(const Ref<BoxRow>& row) { return row && row->Text() != "*"; }

Ref<BoxRow> CurrentRow(const qbEntityList& box) { return box.Rows().At(box.SelectedRow()); }

}  // namespace

bool KeyJoin::Begin() {
  const Ref<qbEntity> entity = selection_.Entity();
  const Ref<BoxRow> row = entity ? CurrentRow(*entity->EntityBox()) : nullptr;
  if (!MayEndAt(row)) return false;
  start_ = Start{entity->EntityBox(), row};
  site_.Refresh();
  return true;
}

bool KeyJoin::End() {
  if (!start_) return false;
  start_.reset();
  site_.Refresh();
  return true;
}

bool KeyJoin::HasTarget() const {
  const Ref<qbEntity> target = selection_.Entity();
  return target && target->EntityBox() != start_->box && MayEndAt(CurrentRow(*target->EntityBox()));
}

void KeyJoin::Forget(const Ref<qbEntityList>& box) {
  if (start_ && start_->box == box) start_.reset();
}

}  // namespace zrqrybld
