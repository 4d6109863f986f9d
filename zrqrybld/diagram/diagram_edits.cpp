#include "zrqrybld/diagram/diagram_edits.h"

#include <algorithm>
#include <new>
#include <utility>

#include "zrqrybld/base/texts_diagram.h"
#include "zrqrybld/diagram/diagram_scene.h"
#include "zrqrybld/diagram/diagram_selection.h"
#include "zrqrybld/diagram/diagram_site.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/join_line.h"
#include "zrqrybld/diagram/join_properties.h"
#include "zrqrybld/diagram/relationships.h"
#include "zrqrybld/diagram/table_picker.h"
#include "zrqrybld/host/query_context.h"
#include "zrqrybld/platform/dialogs.h"
#include "zrqrybld/platform/toolkit.h"
#include "zrqrybld/platform/while_alive.h"
#include "zrqrybld/sql/rename.h"
#include "zrqrybld/sql/source_rules.h"

namespace zrqrybld {

// --- Tables ---

void DiagramEdits::Clear() {
  const Ref<QueryContext> context = site_.Context();
  const StepScope step(context, kStepClear);
  // Waiting for an empty diagram could take forever.
  std::vector<Ref<qbEntity>> all;
  for (std::int32_t i = entities_.Count(); i >= 1; --i) all.push_back(entities_.Item(i));
  WholeOrNothing(context, [&] {
    for (const Ref<qbEntity>& entity : all) entities_.Drop(entity);
    if (context) context->reports.DiagramCleared();
  });
}

bool DiagramEdits::RequestTables() {
  const Ref<QueryContext> context = site_.Context();
  if (!context || !context->source.IsConnected()) return false;
  context->reports.RequestTables();
  return true;
}

// A join is deleted whole. Listeners are asked about each relationship and each table; what they keep stays selected
// when it is the selected object.
bool DiagramEdits::DeleteSelected() {
  if (!selection_.Selected()) return false;
  std::vector<Ref<Object>> objects{selection_.Selected()};
  objects.insert(objects.end(), selection_.Others().begin(), selection_.Others().end());
  if (const Ref<qbRelationship> join = selection_.Join()) {
    for (const Ref<qbRelationship>& one : WholeOf(*join)->Relationships()) {
      if (one != join) objects.push_back(one);
    }
  }
  std::erase_if(objects, [this](const Ref<Object>& object) {
    bool cancel = false;
    site_.BeforeDeleteObject.Raise(object, cancel);
    return cancel;
  });
  const Ref<qbEntity> one = selection_.Entity();
  const StepScope step(site_.Context(),
                       !one                          ? kStepDeleteJoin
                       : selection_.Others().empty() ? kStepRemoveTable
                                                     : kStepRemoveTables,
                       one && one->EntityBox() ? one->Caption() : std::string());
  for (const Ref<Object>& object : objects) {
    if (object == selection_.Selected()) selection_.Drop();
    if (const auto entity = std::dynamic_pointer_cast<qbEntity>(object)) {
      if (entity->EntityBox()) entities_.Remove(entity->Index());
    } else if (const auto join = std::dynamic_pointer_cast<qbRelationship>(object)) {
      if (const Ref<qbEntity> source = join->Source()) source->Relationships()->Remove(join->Index());
    }
  }
  return true;
}

void DiagramEdits::AskForAlias(const Ref<qbEntity>& entity) {
  const Ref<QueryContext> context = site_.Context();
  if (!context || !entity->EntityBox()) return;
  TextDialog dialog{context->source.Say(text::AliasCaption), context->source.Say(text::AliasLabel), entity->Caption()};
  dialog.problem = WhileAlive(site_.weak_from_this(), [this, entity](const std::string& text) -> std::string {
    if (text.find_first_not_of(' ') == std::string::npos) return Say(site_.Context(), text::AliasNeeded);
    const Ref<qbEntity> other = entities_.Item(text);
    return other && other != entity ? Say(site_.Context(), text::AliasTaken) : "";
  });
  const auto rename = [entity, problem = dialog.problem](const std::string& name) {
    if (entity->EntityBox() && problem(name).empty()) entity->SetCaption(name);
  };
  context->source.GetToolkit().GetDialogs().AskText(std::move(dialog), WhileAlive(site_.weak_from_this(), rename));
}

void DiagramEdits::TickColumns(const Ref<qbEntity>& entity, bool tick, bool onlyKeys) {
  if (!entity->EntityBox()) return;  // a listener of the menu has removed it
  const StepScope step(site_.Context(), tick ? kStepTickColumns : kStepUntickColumns, entity->Caption());
  for (const Ref<qbEntityItem>& item : *entity->Items()) {
    if (item->Text() == "*" && tick) continue;  // all columns are ticked one by one
    if (!onlyKeys || item->Bold()) item->SetChecked(tick);
  }
}

// --- Joins ---

void DiagramEdits::AddJoin(const Ref<qbEntity>& source, std::size_t sourceRow, const Ref<qbEntity>& target,
                           std::size_t targetRow, bool onlyOnce) {
  const auto from = static_cast<std::int32_t>(sourceRow);
  const auto to = static_cast<std::int32_t>(targetRow);
  if (onlyOnce && source->Relationships()->Exists(source, target, from, to)) return;
  const Ref<QueryContext> context = site_.Context();
  const StepScope step(context, kStepAddJoin);
  const Ref<qbWholeJoin> whole = scene_.WholeBetween(source->EntityBox().get(), target->EntityBox().get());
  const Ref<qbRelationship> first = whole ? whole->First() : nullptr;
  const Ref<qbRelationship> join = source->Relationships()->Add(target);
  if (first) {
    const JoinKind kind = first->Source() == source ? first->Kind() : first->Kind().Reversed();
    if (kind != JoinKind()) SetJoinKind(*join, kind);
    join->SetGroupLevel(first->GroupLevel());
  }
  join->SetSourceItemIndex(from);
  join->SetTargetItemIndex(to);
  selection_.Select(join);
  if (context) context->steps.RaiseInfo(InfoRelationshipAdded, Ref<Object>(join));
}

// Nothing when a listener has removed one of the ends.
Ref<qbRelationship> DiagramEdits::Repeat(const qbRelationship& join, const Ref<qbEntity>& source,
                                         const Ref<qbEntity>& target, bool reversed) {
  if (!source || !target || !source->EntityBox() || !target->EntityBox()) return nullptr;
  const Ref<qbRelationship> repeated = source->Relationships()->Add(target);
  repeated->SetLeftPicture(reversed ? join.RightPicture() : join.LeftPicture());
  repeated->SetRightPicture(reversed ? join.LeftPicture() : join.RightPicture());
  repeated->SetComparison(reversed ? Mirrored(join.Comparison()).value_or(join.Comparison()) : join.Comparison());
  repeated->SetGroupLevel(join.GroupLevel());
  SetJoinKind(*repeated, reversed ? join.Kind().Reversed() : join.Kind());
  return repeated;
}

void DiagramEdits::ReverseJoin(const Ref<qbRelationship>& join) {
  const Ref<qbWholeJoin> whole = WholeOf(*join);
  if (!whole || !whole->CanReverse()) return;
  const StepScope step(site_.Context(), kStepReverseJoin);
  Ref<qbRelationship> selected;
  for (const Ref<qbRelationship>& one : whole->Relationships()) {
    const Ref<qbEntity> source = one->Source();
    const Ref<qbEntity> target = one->Target();
    if (!source || !target) continue;
    source->Relationships()->Remove(one->Index());
    const Ref<qbRelationship> reversed = Repeat(*one, target, source, true);
    if (!reversed) continue;
    reversed->SetCondition(one->Condition());
    reversed->SetSourceItemIndex(one->TargetItemIndex());
    reversed->SetTargetItemIndex(one->SourceItemIndex());
    if (one == join) selected = reversed;
  }
  if (selected) selection_.Select(selected);
}

void DiagramEdits::SetKind(const Ref<qbRelationship>& join, JoinKind kind) {
  const Ref<QueryContext> context = site_.Context();
  const Ref<qbWholeJoin> whole = WholeOf(*join);
  if (!whole) return;
  const StepScope step(context, kStepEditJoin);
  whole->SetKindFrom(join->Source(), kind);
  if (context) context->steps.QueryChanged();
}

void DiagramEdits::RemovePair(const Ref<qbRelationship>& join) {
  const Ref<qbWholeJoin> whole = WholeOf(*join);
  const Ref<qbEntity> source = join->Source();
  if (!whole || !source) return;
  const StepScope step(site_.Context(), kStepEditJoin);
  source->Relationships()->Remove(join->Index());
  if (!selection_.Selected()) selection_.Select(whole->First());
}

// A condition names its tables, so the one that is there again gives way to the new one in it.
void DiagramEdits::JoinAgain(const Ref<qbRelationship>& join, const Ref<qbEntity>& end) {
  const Ref<QueryContext> context = site_.Context();
  const Ref<qbWholeJoin> whole = WholeOf(*join);
  if (!context || !whole || !end->EntityBox()) return;
  const std::vector<Ref<qbRelationship>> pairs = whole->Relationships();
  const StepScope step(context, kStepAddTable, end->Caption());
  const Ref<qbEntity> again = TablePicker(context).AddTable(end->TagVariant().Text());
  if (!again) return;
  const NameRules rules = CurrentNameRules(*context);
  const SqlText alias = QuoteWhenNeeded(Identifier(again->Caption()), rules);
  for (const Ref<qbRelationship>& one : pairs) {
    const bool atSource = one->Source() == end;
    const Ref<qbRelationship> repeated =
        Repeat(*one, atSource ? again : one->Source(), atSource ? one->Target() : again, false);
    if (!repeated) return;
    repeated->SetCondition(RenameQualifier(one->Condition(), end->Caption(), alias, rules));
    repeated->SetSourceItemIndex(one->SourceItemIndex());
    repeated->SetTargetItemIndex(one->TargetItemIndex());
    context->steps.RaiseInfo(InfoRelationshipAdded, Ref<Object>(repeated));
  }
  selection_.Select(again);
}

// --- Places and sizes ---

void DiagramEdits::Minimize(qbEntityList& box, bool minimized) {
  const StepScope step(site_.Context(), minimized ? kStepMinimizeTable : kStepRestoreTable, box.Caption());
  box.SetMinimized(minimized);
}

void DiagramEdits::FitBox(const Ref<qbEntityList>& box) {
  const StepScope step(site_.Context(), kStepResizeTable, box->Caption());
  if (const Ref<qbEntity> entity = EntityOf(*box)) entities_.Fit(*entity);
}

void DiagramEdits::FitToRows(const Ref<qbEntityList>& box) {
  const StepScope step(site_.Context(), kStepResizeTable, box->Caption());
  box->SetMinimized(false);
  const TwipsRect bounds = box->Bounds();
  const TwipsSize size = box->FittingSize(site_.GetSurface().Metrics(), box->Rows().Count());
  box->SetBounds({bounds.left, bounds.top, size.width, size.height});
}

bool DiagramEdits::Nudge(TwipsPoint by) {
  const std::vector<Ref<qbEntity>> group = selection_.Entities();
  if (!selection_.Entity()) return false;
  const StepScope step(site_.Context(), kStepNudgeTables);
  for (const Ref<qbEntity>& one : group) {
    const TwipsRect& bounds = one->EntityBox()->Bounds();
    by = {std::max(by.x, std::min(-bounds.left, Twips{})), std::max(by.y, std::min(-bounds.top, Twips{}))};
  }
  for (const Ref<qbEntity>& one : group) {
    const TwipsRect& bounds = one->EntityBox()->Bounds();
    one->EntityBox()->SetBounds(bounds.Moved(by.x, by.y));
  }
  return true;
}

bool DiagramEdits::Stretch(PixelPoint by, PixelSize smallest) {
  const Ref<qbEntity> entity = selection_.Entity();
  if (!entity) return false;
  const StepScope step(site_.Context(), kStepStretchTable, entity->Caption());
  const ScreenScale scale = site_.GetSurface().Scale();
  const Ref<qbEntityList> box = entity->EntityBox();
  PixelRect place = scale.ToPixels(box->Bounds());
  // One that is smaller already becomes no larger by being made smaller.
  const auto stretch = [](Pixels& length, Pixels more, Pixels least) {
    length = more < 0_px ? std::min(length, std::max(length + more, least)) : length + more;
  };
  stretch(place.width, by.x, smallest.width);
  if (!box->Minimized()) stretch(place.height, by.y, smallest.height);
  box->SetBounds(scale.ToTwips(place));
  return true;
}

void DiagramEdits::RecordPlaces(const StepName& name, const std::vector<BoxPlace>& before) {
  std::vector<BoxPlace> now;
  for (const auto& [box, bounds] : before) {
    now.emplace_back(box, box->Bounds());
    box->SetBounds(bounds);
  }
  const StepScope step(site_.Context(), name, before.front().first->Caption());
  for (const auto& [box, bounds] : now) box->SetBounds(bounds);
}

}  // namespace zrqrybld
