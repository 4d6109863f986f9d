#include "diagram/diagram_access.h"

#include <algorithm>

#include "base/texts_diagram.h"
#include "diagram/join_properties.h"
#include "diagram/relationships.h"
#include "platform/commands.h"

namespace zrqrybld {
namespace {

Ref<qbEntity> EntityIn(const AccessibleId& id) { return std::dynamic_pointer_cast<qbEntity>(id.object); }
Ref<qbRelationship> JoinIn(const AccessibleId& id) { return std::dynamic_pointer_cast<qbRelationship>(id.object); }
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

// The type as the row's tool tip names it ("Freight: REAL"), else the kind of type that its icon shows.
Phrase TypeText(const BoxRow& row) {
  const std::string& tip = row.ToolTipText();
  const std::string prefix = row.Text() + ": ";
  return tip.starts_with(prefix) ? tip.substr(prefix.size()) : KindText(row.Kind());
}

}  // namespace

// --- The tree ---

bool DiagramAccess::Contains(const AccessibleId& id) const {
  if (id.IsControl()) return true;
  if (const Ref<qbEntity> entity = EntityIn(id)) {
    const Ref<qbEntityList>& box = entity->EntityBox();
    return box && pane_.boxes_.contains(box.get()) && (!id.part || box->PositionOf(RowIn(id)) != 0);
  }
  const Ref<qbRelationship> join = JoinIn(id);
  return join && join->Line() && pane_.boxes_.contains(join->Line()->SourceBox().get());
}

std::size_t DiagramAccess::ChildCount(const AccessibleId& id) const {
  if (id.IsControl()) return static_cast<std::size_t>(pane_.entities_->Count()) + pane_.lines_.Count();
  const Ref<qbEntity> entity = EntityIn(id);
  return entity && !id.part && Contains(id) ? entity->EntityBox()->Rows().Count() : 0;
}

AccessibleId DiagramAccess::ChildAt(const AccessibleId& id, std::size_t index) const {
  if (index >= ChildCount(id)) return {};
  if (!id.IsControl()) return {id.object, EntityIn(id)->EntityBox()->Rows().At(index + 1)};
  const auto boxes = static_cast<std::size_t>(pane_.entities_->Count());
  if (index < boxes) return {pane_.entities_->Item(static_cast<std::int32_t>(index) + 1), nullptr};
  return {pane_.lines_.At(index - boxes + 1)->Relationship(), nullptr};
}

AccessibleId DiagramAccess::ParentOf(const AccessibleId& id) const {
  return id.part ? AccessibleId{id.object, nullptr} : AccessibleId{};
}

std::optional<std::size_t> DiagramAccess::IndexOf(const AccessibleId& id) const {
  if (id.IsControl() || !Contains(id)) return std::nullopt;
  if (id.part) return RowIn(id)->Index() - 1;
  if (const Ref<qbEntity> entity = EntityIn(id)) return static_cast<std::size_t>(entity->Index()) - 1;
  const qbDiagramPane::LineMark line = pane_.loadedLines_.at(JoinIn(id)->Line().get()).inAll;
  return static_cast<std::size_t>(pane_.entities_->Count()) + pane_.lines_.PositionOf(line) - 1;
}

AccessibleId DiagramAccess::Current() const {
  const Ref<qbEntity> entity = pane_.SelectedEntity();
  if (!entity || !entity->EntityBox()) return {pane_.selected_, nullptr};
  return {entity, entity->EntityBox()->Rows().At(entity->EntityBox()->SelectedRow())};
}

AccessibleId DiagramAccess::ObjectAt(PixelPoint point) const {
  const qbDiagramPane::PaneHit hit = pane_.HitTest(point);
  if (hit.line) return {hit.line->Relationship(), nullptr};
  if (!hit.box) return {};
  return {hit.box->Entity(), hit.box->Rows().At(hit.part.row)};
}

// --- What there is to say ---

AccessibleInfo DiagramAccess::Describe(const AccessibleId& id) const {
  if (!Contains(id) || id.IsControl()) return DescribePane();
  const Ref<qbEntity> entity = EntityIn(id);
  AccessibleInfo info = !entity   ? DescribeJoin(JoinIn(id))
                        : id.part ? DescribeRow(*entity->EntityBox(), RowIn(id))
                                  : DescribeBox(entity);
  info.state.focused = id == Current();
  info.state.offscreen = info.state.offscreen || !IsSeen(info.bounds);
  return info;
}

std::string DiagramAccess::Say(const Phrase& phrase) const { return zrqrybld::Say(pane_.Context(), phrase); }

bool DiagramAccess::IsSeen(const PixelRect& onPane) const {
  const PixelSize view = pane_.GetSurface().ViewSize();
  return onPane.Overlaps({{}, {}, view.width, view.height});
}

AccessibleInfo DiagramAccess::DescribePane() const {
  const PixelSize view = pane_.GetSurface().ViewSize();
  AccessibleInfo info{AccessibleRole::Pane, Say(text::DiagramName), {}, {}, {AccessibleAction::ShowMenu}, {}};
  if (pane_.entities_->Count() == 0) info.description = Say({text::DiagramEmpty, KeyTextOf(Command::AddTables)});
  info.bounds = {{}, {}, view.width, view.height};
  return info;
}

AccessibleInfo DiagramAccess::DescribeBox(const Ref<qbEntity>& entity) const {
  const qbEntityList& box = *entity->EntityBox();
  AccessibleInfo info{
      AccessibleRole::List, box.Caption(), Say(box.IsView() ? text::IsView : text::IsTable), {}, {}, {}};
  info.state.selectable = true;
  info.state.selected = pane_.IsSelected(entity);
  info.state.expandable = true;
  info.state.expanded = !box.Minimized();
  info.actions = {AccessibleAction::Focus, AccessibleAction::Press, AccessibleAction::ShowMenu};
  info.bounds = pane_.PlaceOf(box);
  return info;
}

// What the row's pictures show: key, type, join, and what the query does with the column.
std::string DiagramAccess::FactsOf(const BoxRow& row) const {
  pane_.UpdateRowMarks();
  std::string facts;
  const auto add = [&facts](const std::string& fact) {
    if (!fact.empty()) facts += (facts.empty() ? "" : ", ") + fact;
  };
  if (row.Bold()) add(Say(text::PrimaryKey));
  add(Say(TypeText(row)));
  if (pane_.joinedRows_.contains(&row)) add(Say(text::Joined));
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
  info.state.selected = pane_.IsSelected(box.Entity()) && box.SelectedRow() == row->Index();
  info.state.checkable = true;
  info.state.checked = row->Checked();
  info.state.offscreen = box.Minimized() || !box.IsRowVisible(row->Index());
  info.actions = {AccessibleAction::Focus, AccessibleAction::Toggle, AccessibleAction::ShowMenu};
  info.bounds = pane_.ToPane(pane_.GetSurface().Scale().ToPixels(box.ItemBounds(row->Index())));
  return info;
}

AccessibleInfo DiagramAccess::DescribeJoin(const Ref<qbRelationship>& join) const {
  AccessibleInfo info{AccessibleRole::Join, Say({text::JoinNamed, DescribeEnds(*join)}), {}, {}, {}, {}};
  const Ref<qbEntity> source = join->Source();
  const Ref<qbEntity> target = join->Target();
  if (source && target) {
    info.description = Say(zrqrybld::DescribeJoin(source->Caption(), target->Caption(), join->Kind()));
  }
  if (join->Line()->JoinsDifferentTypes()) info.description += " " + Say(text::DifferentTypes);
  info.state.selectable = true;
  info.state.selected = pane_.IsSelected(join);
  info.actions = {AccessibleAction::Focus, AccessibleAction::Press, AccessibleAction::ShowMenu};
  PixelRect area;
  for (const PixelPoint& point : join->Line()->Points(pane_.GetSurface().Scale())) {
    area = area.Union({point.x, point.y, 1_px, 1_px});
  }
  info.bounds = pane_.ToPane(area);
  return info;
}

// --- What can be done ---

bool DiagramAccess::Perform(const AccessibleId& id, AccessibleAction action) {
  if (!Contains(id)) return false;
  const Ref<qbEntity> entity = EntityIn(id);
  if (action == AccessibleAction::Toggle) {
    if (!id.part) return false;
    RowIn(id)->SetChecked(!RowIn(id)->Checked());
    return true;
  }
  if (action == AccessibleAction::Press && id.IsControl()) return false;
  if (action == AccessibleAction::Press && id.part) return Perform(id, AccessibleAction::Toggle);
  pane_.SelectObject(id.object);
  if (entity) {
    if (!pane_.IsSelected(entity)) return false;  // a listener has decided otherwise
    const std::size_t row = id.part ? RowIn(id)->Index() : 0;
    if (row == 0) {
      entity->EntityBox()->SetSelectedRow(0);
      pane_.ScrollIntoView(pane_.GetSurface().Scale().ToPixels(entity->EntityBox()->Bounds()));
    } else {
      pane_.GoToRow(row);
    }
    pane_.RaiseToTop(entity->EntityBox());
  }
  if (action == AccessibleAction::Focus) {
    pane_.GetSurface().SetFocus();
  } else if (action == AccessibleAction::ShowMenu) {
    const std::size_t row = id.part ? RowIn(id)->Index() : 0;
    pane_.ShowContextMenu(id.object, row, pane_.MenuPlaceOfSelection());
  } else if (entity) {
    entity->EntityBox()->SetMinimized(!entity->EntityBox()->Minimized());
  } else {
    return pane_.EnterSelected();
  }
  return true;
}

// --- The pane ---

AccessibleTree* qbDiagramPane::Accessible() {
  if (!access_) access_ = std::make_unique<DiagramAccess>(*this);
  return access_.get();
}

}  // namespace zrqrybld
