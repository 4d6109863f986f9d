#include "zrqrybld/diagram/diagram_walk.h"

#include <algorithm>
#include <cstdint>
#include <vector>

#include "zrqrybld/diagram/diagram_camera.h"
#include "zrqrybld/diagram/diagram_edits.h"
#include "zrqrybld/diagram/diagram_selection.h"
#include "zrqrybld/diagram/diagram_site.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/join_line.h"
#include "zrqrybld/diagram/key_join.h"
#include "zrqrybld/host/context_link.h"
#include "zrqrybld/host/design_reports.h"

namespace zrqrybld {

bool DiagramWalk::GoToRow(std::size_t row) {
  const Ref<qbEntity> entity = selection_.Entity();
  if (!entity || entity->EntityBox()->Rows().Count() == 0) return false;
  qbEntityList& box = *entity->EntityBox();
  row = std::clamp<std::size_t>(row, 1, box.Rows().Count());
  box.SetSelectedRow(row);
  if (row < box.FirstVisibleRow()) box.ScrollTo(row);
  const std::size_t visible = std::max<std::size_t>(box.VisibleRowCount(), 1);
  if (row >= box.FirstVisibleRow() + visible) box.ScrollTo(row - visible + 1);
  if (box.IsRowVisible(row)) camera_.ScrollIntoView(site_.GetSurface().Scale().ToPixels(box.ItemBounds(row)));
  return true;
}

bool DiagramWalk::MoveCurrentRow(int delta) {
  const Ref<qbEntity> entity = selection_.Entity();
  if (!entity) return false;
  const auto row = static_cast<std::int64_t>(entity->EntityBox()->SelectedRow()) + delta;
  return GoToRow(static_cast<std::size_t>(std::max<std::int64_t>(row, 1)));
}

bool DiagramWalk::ToggleCurrentRow() {
  const Ref<qbEntity> entity = selection_.Entity();
  const Ref<qbEntityItem> item = entity ? entity->SelectedItem() : nullptr;
  if (!item) return false;
  item->SetChecked(!item->Checked());
  return true;
}

bool DiagramWalk::SelectNext(int direction) {
  std::vector<Ref<Object>> objects;
  for (const Ref<qbEntity>& entity : entities_) objects.push_back(entity);
  for (const Ref<qbWholeJoin>& whole : scene_.Wholes()) objects.push_back(whole);
  const Ref<qbRelationship> selected = selection_.Join();
  const auto at = std::ranges::find(objects, selected ? Ref<Object>(WholeOf(*selected)) : selection_.Selected());
  std::ptrdiff_t next = 0;
  if (at != objects.end()) {
    next = at - objects.begin() + direction;
  } else if (direction < 0) {
    next = static_cast<std::ptrdiff_t>(objects.size()) - 1;
  }
  if (next < 0 || next >= static_cast<std::ptrdiff_t>(objects.size())) {
    selection_.Drop();
    return false;
  }
  const Ref<Object>& object = objects[static_cast<std::size_t>(next)];
  const auto whole = std::dynamic_pointer_cast<qbWholeJoin>(object);
  selection_.Select(whole ? Ref<Object>(whole->First()) : object);
  if (const Ref<qbEntity> entity = selection_.Entity()) Show(*entity);
  return true;
}

void DiagramWalk::Show(const qbEntity& entity) {
  scene_.RaiseToTop(entity.EntityBox());
  camera_.ScrollIntoView(*entity.EntityBox());
}

bool DiagramWalk::Enter() {
  if (EndKeyJoin()) return true;
  if (const Ref<qbRelationship> join = selection_.Join()) {
    const Ref<QueryContext> context = site_.Context();
    if (context) context->reports.RelationshipActivated(join);
    return true;
  }
  const Ref<qbEntity> entity = selection_.Entity();
  if (entity && camera_.NamesOnly()) {
    camera_.ZoomInto(*entity->EntityBox());
    return true;
  }
  if (entity && entity->EntityBox()->IsQuery()) {
    const Ref<QueryContext> context = site_.Context();
    return context && context->reports.OpenQuery(entity->TagVariant().Text());
  }
  return entity && entity->EntityBox()->SelectedRow() == 0 && GoToRow(1);
}

// At the current column, where the join may end there. Returns whether one is drawn.
bool DiagramWalk::EndKeyJoin() {
  if (!keyJoin_.Drawn()) return false;
  if (!keyJoin_.HasTarget()) return true;
  const KeyJoin::Start start = *keyJoin_.Drawn();
  const Ref<qbEntity> source = EntityOf(*start.box);
  const std::size_t row = start.box->PositionOf(start.row);
  keyJoin_.End();
  const Ref<qbEntity> target = selection_.Entity();
  if (source && row != 0) edits_.AddJoin(source, row, target, target->EntityBox()->SelectedRow(), true);
  return true;
}

}  // namespace zrqrybld
