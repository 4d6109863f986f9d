#include "zrqrybld/diagram/diagram_access.h"

#include "zrqrybld/base/texts_diagram.h"
#include "zrqrybld/base/texts_queries.h"
#include "zrqrybld/diagram/diagram_camera.h"
#include "zrqrybld/diagram/diagram_minimap.h"
#include "zrqrybld/diagram/diagram_selection.h"
#include "zrqrybld/diagram/diagram_site.h"
#include "zrqrybld/diagram/diagram_walk.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/join_line.h"
#include "zrqrybld/diagram/join_properties.h"
#include "zrqrybld/diagram/relationships.h"
#include "zrqrybld/diagram/source_names.h"
#include "zrqrybld/host/source_context.h"
#include "zrqrybld/platform/commands.h"

namespace zrqrybld {
namespace {

Ref<qbEntity> EntityIn(const AccessibleId& id) { return std::dynamic_pointer_cast<qbEntity>(id.object); }
Ref<qbWholeJoin> JoinIn(const AccessibleId& id) { return std::dynamic_pointer_cast<qbWholeJoin>(id.object); }
Ref<BoxRow> RowIn(const AccessibleId& id) { return std::static_pointer_cast<BoxRow>(id.part); }

Phrase KindText(TypeKind kind) {
  switch (kind) {
    case TypeKind::Number:
      return text::KindNumber;
    case TypeKind::Text:
      return text::KindText;
    case TypeKind::Date:
      return text::KindDate;
    case TypeKind::YesNo:
      return text::KindYesNo;
    case TypeKind::Binary:
      return text::KindBinary;
    case TypeKind::None:
    case TypeKind::Other:
      break;
  }
  return {};
}

// The type's name. Of a row that was loaded or brought back only its tool tip may name it ("Freight: REAL"), else there
// is the kind of type that its icon shows.
Phrase TypeText(const BoxRow& row) {
  if (!row.DataTypeName().empty()) return row.DataTypeName();
  const std::string& tip = row.ToolTipText();
  const std::string prefix = row.Text() + ": ";
  return tip.starts_with(prefix) ? tip.substr(prefix.size()) : KindText(row.Kind());
}

}  // namespace

std::string DiagramAccess::Say(const Phrase& phrase) const { return zrqrybld::Say(site_.Context(), phrase); }

// --- The tree ---

bool DiagramAccess::Contains(const AccessibleId& id) const {
  if (id.IsControl()) return true;
  if (IsMinimap(id)) return targets_.minimap.Place().has_value();
  if (const Ref<qbEntity> entity = EntityIn(id)) {
    const Ref<qbEntityList>& box = entity->EntityBox();
    return box && scene_.HasBox(*box) && (!id.part || box->PositionOf(RowIn(id)) != 0);
  }
  const Ref<qbWholeJoin> join = JoinIn(id);
  return join && scene_.HasWhole(*join);
}

std::size_t DiagramAccess::ChildCount(const AccessibleId& id) const {
  const std::size_t maps = targets_.minimap.Place() ? 1 : 0;
  if (id.IsControl()) return static_cast<std::size_t>(entities_.Count()) + scene_.Wholes().Count() + maps;
  const Ref<qbEntity> entity = EntityIn(id);
  return entity && !id.part && Contains(id) ? entity->EntityBox()->Rows().Count() : 0;
}

AccessibleId DiagramAccess::ChildAt(const AccessibleId& id, std::size_t index) const {
  if (index >= ChildCount(id)) return {};
  if (!id.IsControl()) return {id.object, EntityIn(id)->EntityBox()->Rows().At(index + 1)};
  const auto boxes = static_cast<std::size_t>(entities_.Count());
  if (index < boxes) return {entities_.Item(static_cast<std::int32_t>(index) + 1), nullptr};
  if (index - boxes == scene_.Wholes().Count()) return {targets_.minimap.Identity(), nullptr};
  return {scene_.Wholes().At(index - boxes + 1), nullptr};
}

AccessibleId DiagramAccess::ParentOf(const AccessibleId& id) const {
  return id.part ? AccessibleId{id.object, nullptr} : AccessibleId{};
}

std::optional<std::size_t> DiagramAccess::IndexOf(const AccessibleId& id) const {
  if (id.IsControl() || !Contains(id)) return std::nullopt;
  if (IsMinimap(id)) return ChildCount({}) - 1;
  if (id.part) return RowIn(id)->Index() - 1;
  if (const Ref<qbEntity> entity = EntityIn(id)) return static_cast<std::size_t>(entity->Index()) - 1;
  return static_cast<std::size_t>(entities_.Count()) + scene_.PositionOf(*JoinIn(id)) - 1;
}

AccessibleId DiagramAccess::Current() const {
  const Ref<qbEntity> entity = selection_.Entity();
  if (const Ref<qbRelationship> join = selection_.Join()) return {WholeOf(*join), nullptr};
  if (!entity || !entity->EntityBox()) return {selection_.Selected(), nullptr};
  return {entity, entity->EntityBox()->Rows().At(entity->EntityBox()->SelectedRow())};
}

AccessibleId DiagramAccess::ObjectAt(PixelPoint point) const {
  if (targets_.minimap.Contains(point)) return {targets_.minimap.Identity(), nullptr};
  const DiagramHit hit = camera_.HitTest(point);
  if (hit.line) return {hit.line->Whole(), nullptr};
  if (!hit.box) return {};
  return {hit.box->Entity(), hit.box->Rows().At(hit.part.row)};
}

// --- What there is to say ---

AccessibleInfo DiagramAccess::Describe(const AccessibleId& id) const {
  if (!Contains(id) || id.IsControl()) return DescribePane();
  if (IsMinimap(id)) return DescribeMinimap();
  const Ref<qbEntity> entity = EntityIn(id);
  AccessibleInfo info = !entity   ? DescribeJoin(JoinIn(id))
                        : id.part ? DescribeRow(*entity->EntityBox(), RowIn(id))
                                  : DescribeBox(entity);
  info.state.focused = id == Current();
  info.state.offscreen = info.state.offscreen || !IsSeen(info.bounds);
  return info;
}

bool DiagramAccess::IsSeen(const PixelRect& onPane) const {
  const PixelSize view = site_.GetSurface().ViewSize();
  return onPane.Overlaps({{}, {}, view.width, view.height});
}

AccessibleInfo DiagramAccess::DescribePane() const {
  const PixelSize view = site_.GetSurface().ViewSize();
  AccessibleInfo info{AccessibleRole::Pane, Say(text::DiagramName), {}, {}, {AccessibleAction::ShowMenu}, {}};
  if (entities_.Count() == 0) info.description = Say({text::DiagramEmpty, KeyTextOf(Command::AddTables)});
  info.bounds = {{}, {}, view.width, view.height};
  return info;
}

bool DiagramAccess::IsMinimap(const AccessibleId& id) const { return id.object == targets_.minimap.Identity(); }

AccessibleInfo DiagramAccess::DescribeMinimap() const {
  AccessibleInfo info{AccessibleRole::Minimap, Say(text::MinimapName), {}, {}, {}, {}};
  info.bounds = targets_.minimap.Place().value_or(PixelRect{});
  return info;
}

AccessibleInfo DiagramAccess::DescribeBox(const Ref<qbEntity>& entity) const {
  const qbEntityList& box = *entity->EntityBox();
  AccessibleInfo info{AccessibleRole::List,
                      box.Caption(),
                      Say(box.IsQuery()  ? text::IsQuery
                          : box.IsView() ? text::IsView
                                         : text::IsTable),
                      {},
                      {},
                      {}};
  if (const std::string table = AliasedTable(*entity); !table.empty()) info.description += " " + table;
  info.state.selectable = true;
  info.state.selected = selection_.Contains(entity);
  info.state.expandable = true;
  info.state.expanded = !box.Minimized();
  info.actions = {AccessibleAction::Focus, AccessibleAction::Press, AccessibleAction::ShowMenu};
  info.bounds = camera_.PlaceOf(box);
  return info;
}

// What the row's pictures show: key, type, join, and what the query does with the column.
std::string DiagramAccess::FactsOf(const BoxRow& row) const {
  std::string facts;
  const auto add = [&facts](const std::string& fact) {
    if (!fact.empty()) facts += (facts.empty() ? "" : ", ") + fact;
  };
  if (row.Bold()) add(Say(text::PrimaryKey));
  add(Say(TypeText(row)));
  if (scene_.JoinedRows().contains(&row)) add(Say(text::Joined));
  const ColumnNote& note = row.Note();
  add(note.aggregate);
  if (note.sort != 0) {
    const std::string order = note.order.empty() ? "" : " " + note.order;
    add(Say(note.sort > 0 ? text::SortedAscending : text::SortedDescending) + order);
  }
  if (note.filtered) add(Say(text::HasCriteria));
  return facts;
}

AccessibleInfo DiagramAccess::DescribeRow(const qbEntityList& box, const Ref<BoxRow>& row) const {
  AccessibleInfo info{
      AccessibleRole::CheckItem, row->Text() == "*" ? Say(text::AllColumns) : row->Text(), FactsOf(*row), {}, {}, {}};
  info.state.selectable = true;
  info.state.selected = selection_.Contains(box.Entity()) && box.SelectedRow() == row->Index();
  info.state.checkable = true;
  info.state.checked = row->Checked();
  info.state.offscreen = box.Minimized() || !box.IsRowVisible(row->Index());
  info.actions = {AccessibleAction::Focus, AccessibleAction::Toggle, AccessibleAction::ShowMenu};
  info.bounds = camera_.ToPane(site_.GetSurface().Scale().ToPixels(box.ItemBounds(row->Index())));
  return info;
}

AccessibleInfo DiagramAccess::DescribeJoin(const Ref<qbWholeJoin>& join) const {
  const std::vector<Ref<qbRelationship>> pairs = join->Relationships();
  AccessibleInfo info{AccessibleRole::Join, Say({text::JoinNamed, DescribePairs(pairs)}), {}, {}, {}, {}};
  const Ref<qbEntity> source = join->Source();
  const Ref<qbEntity> target = join->Target();
  if (source && target) {
    info.description = Say(zrqrybld::DescribeJoin(source->Caption(), target->Caption(), join->Kind()));
  }
  PixelRect area;
  bool differs = false;
  for (const Ref<qbRelationship>& pair : pairs) {
    differs = differs || pair->Line()->JoinsDifferentTypes();
    for (const PixelPoint& point : pair->Line()->Points(site_.GetSurface().Scale())) {
      area = area.Union({point.x, point.y, 1_px, 1_px});
    }
  }
  if (differs) info.description += " " + Say(text::DifferentTypes);
  info.state.selectable = true;
  info.state.selected = join == scene_.SelectedWhole();
  info.actions = {AccessibleAction::Focus, AccessibleAction::Press, AccessibleAction::ShowMenu};
  info.bounds = camera_.ToPane(area);
  return info;
}

// --- What can be done ---

bool DiagramAccess::Perform(const AccessibleId& id, AccessibleAction action) {
  if (!Contains(id) || IsMinimap(id)) return false;
  const Ref<qbEntity> entity = EntityIn(id);
  if (action == AccessibleAction::Toggle) {
    if (!id.part) return false;
    RowIn(id)->SetChecked(!RowIn(id)->Checked());
    return true;
  }
  if (action == AccessibleAction::Press && id.IsControl()) return false;
  if (action == AccessibleAction::Press && id.part) return Perform(id, AccessibleAction::Toggle);
  const Ref<qbWholeJoin> join = JoinIn(id);
  const Ref<Object> object = join && join != scene_.SelectedWhole() ? Ref<Object>(join->First())
                             : join                                 ? selection_.Selected()
                                                                    : id.object;
  selection_.Select(object);
  if (entity) {
    if (!selection_.Contains(entity)) return false;  // a listener has decided otherwise
    GoTo(*entity, id.part ? RowIn(id)->Index() : 0);
  }
  if (action == AccessibleAction::Focus) {
    site_.GetSurface().SetFocus();
  } else if (action == AccessibleAction::ShowMenu) {
    const std::size_t row = id.part ? RowIn(id)->Index() : 0;
    ShowContextMenu(targets_, object, row, MenuPlaceOfSelection(targets_));
  } else if (entity && !id.part && entity->EntityBox()->IsQuery()) {
    return walk_.Enter();
  } else if (entity) {
    entity->EntityBox()->SetMinimized(!entity->EntityBox()->Minimized());
  } else {
    return walk_.Enter();
  }
  return true;
}

void DiagramAccess::GoTo(const qbEntity& entity, std::size_t row) {
  qbEntityList& box = *entity.EntityBox();
  if (row == 0) {
    box.SetSelectedRow(0);
    camera_.ScrollIntoView(box);
  } else {
    walk_.GoToRow(row);
  }
  scene_.RaiseToTop(entity.EntityBox());
}

}  // namespace zrqrybld
