#include "zrqrybld/diagram/diagram_stage.h"

#include <functional>
#include <new>
#include <string>
#include <utility>

#include "zrqrybld/diagram/diagram_camera.h"
#include "zrqrybld/diagram/diagram_gestures.h"
#include "zrqrybld/diagram/diagram_layout.h"
#include "zrqrybld/diagram/diagram_mouse.h"
#include "zrqrybld/diagram/diagram_properties.h"
#include "zrqrybld/diagram/diagram_selection.h"
#include "zrqrybld/diagram/diagram_site.h"
#include "zrqrybld/diagram/entity.h"
#include "zrqrybld/diagram/join_line.h"
#include "zrqrybld/diagram/key_join.h"
#include "zrqrybld/host/context_link.h"
#include "zrqrybld/host/design_reports.h"
#include "zrqrybld/host/step_context.h"

namespace zrqrybld {
namespace {

constexpr Pixels kGap = 16_px;
constexpr Pixels kRowStep = 2_px;
constexpr std::size_t kMostFittedRows = 14;

}  // namespace

// --- Boxes ---

Ref<qbEntityList> DiagramStage::LoadBox() {
  const auto box = std::make_shared<qbEntityList>(properties_.MetricsOn(site_.GetSurface()));
  properties_.Colour(*box);
  box->SetImages(properties_.itemsImageList);
  TwipsRect bounds = box->Bounds();
  const TwipsPoint place = scene_.FindPlace({bounds.width, bounds.height}, RulesOfPlacement());
  bounds.left = place.x;
  bounds.top = place.y;
  box->SetBounds(bounds);
  std::vector<EventConnection> links = Follow(*box);
  ReportTicks(box);
  scene_.AddBox(box, std::move(links));
  return box;
}

void DiagramStage::ShowBox(const Ref<qbEntityList>& box) {
  scene_.ShowBox(box);
  layout_.Added(box);
  camera_.UpdateScrollBars();
  site_.Refresh();
}

void DiagramStage::UnloadBox(const Ref<qbEntityList>& box) {
  gestures_.End();  // it may hold this box as its own or as its target
  mouse_.Forget(box);
  keyJoin_.Forget(box);
  selection_.ForgetRemoved();
  scene_.RemoveBox(box);
  camera_.UpdateScrollBars();
  site_.Refresh();
}

void DiagramStage::FitBox(const Ref<qbEntityList>& box) {
  const TwipsSize size = box->FittingSize(site_.GetSurface().Metrics(), kMostFittedRows);
  TwipsRect bounds = box->Bounds();
  bounds.width = size.width;
  bounds.height = size.height;
  box->SetBounds(bounds);
  const std::optional<TwipsPoint> place = scene_.FindPlaceIfCovered(*box, size, RulesOfPlacement());
  if (!place) return;
  bounds.left = place->x;
  bounds.top = place->y;
  box->SetBounds(bounds);
  layout_.Moved(*box);
}

PlacementRules DiagramStage::RulesOfPlacement() const {
  const ScreenScale scale = site_.GetSurface().Scale();
  return {scale.TwipsX(camera_.VisibleWidth()), scale.TwipsY(camera_.ReachableHeight()), scale.TwipsX(kGap),
          scale.TwipsY(kRowStep)};
}

std::vector<EventConnection> DiagramStage::Follow(qbEntityList& box) {
  std::vector<EventConnection> links;
  links.push_back(box.Move.Connect([this, &box] {
    scene_.BoxMoved(box);
    camera_.UpdateScrollBars();
    site_.Refresh();
  }));
  links.push_back(box.Changed.Connect([this] {
    scene_.JoinsChanged();
    site_.Refresh();
  }));
  links.push_back(box.ItemChecked.Connect([this, &box](const Ref<BoxRow>& row) { RowChecked(box, row); }));
  links.push_back(box.RelationshipAdd.Connect([this](const Ref<Object>&) { site_.Refresh(); }));
  links.push_back(box.RelationshipChange.Connect([this](const Ref<Object>& join) { JoinChanged(join); }));
  links.push_back(box.RelationshipRemove.Connect([this](const Ref<Object>&) { JoinRemoved(); }));
  return links;
}

// --- Ticks ---

void DiagramStage::RowChecked(const qbEntityList& box, const Ref<BoxRow>& row) {
  const Ref<qbEntity> entity = EntityOf(box);
  if (!entity) return;
  const Ref<qbEntityItem> item = entity->Items()->Item(static_cast<std::int32_t>(row->Index()));
  if (!item) return;
  const Ref<QueryContext> context = Context();
  const bool checked = row->Checked();
  bool begun = false;
  try {
    const StepScope step(context, checked ? kStepTick : kStepUntick, box.Caption() + "." + row->Text());
    begun = true;
    WholeOrNothing(context, [&] {
      site_.EntityItemCheck.Raise(entity, item);
      // A listener may have renamed or removed the entity; one that ticked the row again has reported that already.
      if (!context || !entity->EntityBox() || row->Checked() != checked) return;
      context->reports.ItemChecked(entity->Caption(), row->Text(), checked);
    });
  } catch (const std::bad_alloc&) {
    if (!begun) row->TakeTickBack();
    throw;
  }
}

// Ticked columns that go, or are called otherwise, take the query along.
void DiagramStage::ReportTicks(const Ref<qbEntityList>& box) {
  BoxRows& rows = box->Rows();
  rows.inStep = [this](const std::function<void()>& work) {
    const StepScope step(Context(), kStepChange);
    work();
  };
  const WeakRef<qbEntityList> link = box;
  const auto report = [this, link](const auto& tell) {
    const Ref<qbEntityList> from = link.lock();
    const Ref<QueryContext> context = Context();
    if (from && from->Entity() && context) tell(*context, from->Caption());
  };
  rows.onTickLost = [report](const std::string& text) {
    report([&](QueryContext& context, const std::string& table) { context.reports.ItemChecked(table, text, false); });
  };
  rows.onRenamed = [report](const std::string& before, const std::string& after) {
    report([&](QueryContext& context, const std::string& table) { context.reports.ItemRenamed(table, before, after); });
  };
}

// --- Lines ---

Ref<qbLine> DiagramStage::LoadLine(const Ref<qbRelationship>& relationship, const Ref<qbEntityList>& source,
                                   const Ref<qbEntityList>& target) {
  return scene_.AddLine(relationship, source, target);
}

void DiagramStage::UnloadLine(const Ref<qbLine>& line) {
  mouse_.Forget(line);
  scene_.RemoveLine(line);
}

void DiagramStage::JoinChanged(const Ref<Object>& relationship) {
  if (const auto join = std::dynamic_pointer_cast<qbRelationship>(relationship); join && join->Line()) {
    scene_.LineChanged(*join->Line());
    join->Line()->Invalidate();
  }
  scene_.JoinsChanged();
  site_.Refresh();
  if (const Ref<QueryContext> context = Context()) context->steps.QueryChanged();
}

void DiagramStage::JoinRemoved() {
  site_.Refresh();
  if (const Ref<QueryContext> context = Context()) context->steps.QueryChanged();
}

// --- What the model asks besides ---

Ref<Object> DiagramStage::SelectedObject() const { return selection_.Selected(); }

void DiagramStage::DropSelection() { selection_.Drop(); }

bool DiagramStage::EntityMinimizeButton() const { return properties_.entityMinimizeButton; }

Ref<QueryContext> DiagramStage::Context() const { return site_.Context(); }

}  // namespace zrqrybld
