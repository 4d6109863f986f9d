#include "zrqrybld/diagram/diagram_layout.h"

#include <algorithm>
#include <utility>

#include "zrqrybld/diagram/diagram_camera.h"
#include "zrqrybld/diagram/diagram_site.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/relationships.h"
#include "zrqrybld/host/query_context.h"

namespace zrqrybld {
namespace {

constexpr Pixels kColumnGap = 56_px;
constexpr Pixels kRowGap = 24_px;

// The size stays as it is, to the last digit.
void MoveTo(qbEntityList& box, TwipsPoint place) {
  box.SetBounds({place.x, place.y, box.Bounds().width, box.Bounds().height});
}

}  // namespace

void DiagramLayout::SetPlacesByJoins(bool places) {
  placesByJoins_ = places;
  added_.clear();
}

void DiagramLayout::Added(const Ref<qbEntityList>& box) {
  if (placesByJoins_) added_[box.get()] = {box, box->Bounds().TopLeft()};
}

void DiagramLayout::Moved(const qbEntityList& box) {
  const auto known = added_.find(&box);
  if (known != added_.end()) known->second.second = box.Bounds().TopLeft();
}

bool DiagramLayout::IsNew(const qbEntityList& box) const {
  const auto known = added_.find(&box);
  return known != added_.end() && known->second.second == box.Bounds().TopLeft() && known->second.first.lock();
}

// At 100 %, however the diagram is shown at present.
BesideRules DiagramLayout::Rules() const {
  const PixelSize view = site_.GetSurface().ViewSize();
  return {kColumnGap, kRowGap, {view.width - kSurfaceMargin * 2, view.height - kSurfaceMargin * 2}};
}

// In the order of the diagram; the new ones behind the others, when that is wanted.
DiagramLayout::Boxes DiagramLayout::AllBoxes(bool newOnesLast) const {
  Boxes boxes;
  for (const Ref<qbEntity>& entity : entities_) boxes.all.push_back(entity->EntityBox());
  const auto isOld = [this](const Ref<qbEntityList>& box) { return !IsNew(*box); };
  if (newOnesLast) {
    const auto news = std::stable_partition(boxes.all.begin(), boxes.all.end(), isOld);
    boxes.firstNew = static_cast<std::size_t>(news - boxes.all.begin());
  }
  const ScreenScale scale = site_.GetSurface().Scale();
  std::unordered_map<const qbEntityList*, std::size_t> positions;
  for (const Ref<qbEntityList>& box : boxes.all) {
    positions.emplace(box.get(), boxes.places.size());
    boxes.places.push_back(scale.ToPixels(box->Bounds()));
  }
  const auto height = [](const qbEntityList& box, const Ref<qbEntityItem>& item, const PixelRect& place) {
    return box.LineY(item ? static_cast<std::size_t>(item->Index()) : 0) - place.top;
  };
  for (const Ref<qbEntity>& entity : entities_) {
    const std::size_t from = positions.at(entity->EntityBox().get());
    for (const Ref<qbRelationship>& join : *entity->Relationships()) {
      const Ref<qbEntity> target = join->Target();
      if (!target) continue;
      const std::size_t to = positions.at(target->EntityBox().get());
      boxes.joins.push_back({from, to, height(*boxes.all[from], join->SourceItem(), boxes.places[from]),
                             height(*boxes.all[to], join->TargetItem(), boxes.places[to])});
    }
  }
  return boxes;
}

void DiagramLayout::Arrange() {
  const StepScope step(site_.Context(), kStepArrange);
  Boxes boxes = AllBoxes(false);
  PlaceBeside(boxes.places, 0, boxes.joins, Rules());
  added_.clear();
  const ScreenScale scale = site_.GetSurface().Scale();
  WholeOrNothing(site_.Context(), [&] {
    for (std::size_t i = 0; i < boxes.all.size(); ++i) {
      MoveTo(*boxes.all[i], scale.ToTwips(boxes.places[i].TopLeft()));
    }
  });
  camera_.ZoomToFit();
}

// They are taken out first: a listener may add more.
void DiagramLayout::PlaceAdded() {
  if (added_.empty()) return;
  Boxes boxes = AllBoxes(true);
  added_.clear();
  if (boxes.firstNew == boxes.all.size()) return;
  PlaceBeside(boxes.places, boxes.firstNew, boxes.joins, Rules());
  PixelRect news;
  const ScreenScale scale = site_.GetSurface().Scale();
  for (std::size_t i = boxes.firstNew; i < boxes.all.size(); ++i) {
    MoveTo(*boxes.all[i], scale.ToTwips(boxes.places[i].TopLeft()));
    news = news.Union(boxes.places[i]);
  }
  camera_.ScrollIntoView(news);
}

}  // namespace zrqrybld
