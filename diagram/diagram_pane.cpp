// The pane's model side: boxes and lines come and go, selection, appearance, scrolling.
#include "diagram/diagram_pane.h"

#include <algorithm>
#include <cmath>

#include "base/scoped_value.h"
#include "diagram/placement.h"

namespace zrqrybld {
namespace {

constexpr Pixels kGap = 16_px;
constexpr Pixels kRowStep = 2_px;
constexpr Pixels kMargin = 12_px;  // around the surface, so that no box sticks to the edge of the window
constexpr int kScrollStep = 24;
constexpr std::size_t kMostFittedRows = 14;

}  // namespace

Ref<qbDiagramPane> qbDiagramPane::Create() {
  const Ref<qbDiagramPane> pane(new qbDiagramPane());
  pane->entities_ = std::make_shared<qbEntities>(static_cast<DiagramView*>(pane.get()));
  pane->UpdateScrollBars();
  return pane;
}

qbDiagramPane::~qbDiagramPane() { entities_->Detach(); }

Ref<qbQueryBuilder> qbDiagramPane::QueryBuilder() const {
  const Ref<QueryContext> context = Context();
  return context ? context->Hub() : nullptr;
}

void qbDiagramPane::Clear() {
  const Ref<QueryContext> context = Context();
  const StepScope step(context, "Clear");
  // What listeners add meanwhile stays: waiting for an empty diagram could take forever.
  std::vector<Ref<qbEntity>> all;
  for (std::int32_t i = entities_->Count(); i >= 1; --i) all.push_back(entities_->Item(i));
  for (const Ref<qbEntity>& entity : all) {
    if (entity->EntityBox()) entities_->Remove(entity->Index());
  }
  if (context) context->DiagramCleared();
}

// --- Boxes and lines ---

BoxMetrics qbDiagramPane::CurrentBoxMetrics() const {
  const TextMetrics& text = GetSurface().Metrics();
  BoxMetrics metrics;
  metrics.font = entityFont_;
  metrics.captionFont = entityCaptionFont_;
  metrics.rowHeight = Pixels(std::ceil((text.LineHeight(entityFont_) + 5_px).Value()));
  metrics.captionHeight = Pixels(std::ceil((text.LineHeight(entityCaptionFont_) + 10_px).Value()));
  metrics.scale = GetSurface().Scale();
  return metrics;
}

Ref<qbEntityList> qbDiagramPane::LoadBox() {
  const auto box = std::make_shared<qbEntityList>(CurrentBoxMetrics());
  box->SetColors({entityForeColor_, entityFrameColor_});
  box->SetBackColor(entityBackColor_);
  TwipsRect bounds = box->Bounds();
  const TwipsPoint place = PlaceFor(*box);
  bounds.left = place.x;
  bounds.top = place.y;
  box->SetBounds(bounds);

  qbEntityList* const self = box.get();
  LoadedBox loaded{box, {}};
  loaded.links.push_back(box->Move.Connect([this, self] { BoxMoved(*self); }));
  loaded.links.push_back(box->Changed.Connect([this] { Refresh(); }));
  loaded.links.push_back(box->ItemChecked.Connect([this, self](const Ref<BoxRow>& row) { BoxRowChecked(*self, row); }));
  loaded.links.push_back(box->RelationshipAdd.Connect([this](const Ref<Object>&) { Refresh(); }));
  loaded.links.push_back(box->RelationshipChange.Connect([this](const Ref<Object>& join) { JoinChanged(join); }));
  loaded.links.push_back(box->RelationshipRemove.Connect([this](const Ref<Object>&) { JoinRemoved(); }));
  boxes_.push_back(std::move(loaded));
  return box;
}

void qbDiagramPane::ShowBox(const Ref<qbEntityList>& box) {
  stacking_.push_back(box);
  UpdateScrollBars();
  Refresh();
}

void qbDiagramPane::UnloadBox(const Ref<qbEntityList>& box) {
  if (const auto* moving = std::get_if<MovingBox>(&gesture_); moving && moving->box == box) {
    gesture_ = NoGesture{};
    GetSurface().SetCapture(false);
  }
  if (hover_.box == box) hover_ = {};
  std::erase_if(boxes_, [&](const LoadedBox& loaded) { return loaded.box == box; });
  std::erase(stacking_, box);
  UpdateScrollBars();
  Refresh();
}

Ref<qbLine> qbDiagramPane::LoadLine(const Ref<qbRelationship>& relationship, const Ref<qbEntityList>& source,
                                    const Ref<qbEntityList>& target) {
  return lines_.emplace_back(std::make_shared<qbLine>(relationship, source, target));
}

void qbDiagramPane::UnloadLine(const Ref<qbLine>& line) {
  if (hover_.line == line) hover_ = {};
  std::erase(lines_, line);
  Refresh();
}

void qbDiagramPane::FitBox(const Ref<qbEntityList>& box) {
  const TwipsSize size = box->FittingSize(GetSurface().Metrics(), kMostFittedRows);
  TwipsRect bounds = box->Bounds();
  bounds.width = size.width;
  bounds.height = size.height;
  box->SetBounds(bounds);
  if (!CoversAnother(*box)) return;
  const TwipsPoint place = PlaceFor(*box);
  bounds.left = place.x;
  bounds.top = place.y;
  box->SetBounds(bounds);
}

bool qbDiagramPane::CoversAnother(const qbEntityList& box) const {
  return std::ranges::any_of(boxes_, [&](const LoadedBox& other) {
    return other.box.get() != &box && other.box->Bounds().Overlaps(box.Bounds());
  });
}

TwipsPoint qbDiagramPane::PlaceFor(const qbEntityList& box) const {
  std::vector<TwipsRect> others;
  others.reserve(boxes_.size());
  for (const LoadedBox& loaded : boxes_) {
    if (loaded.box.get() != &box) others.push_back(loaded.box->Bounds());
  }
  const ScreenScale scale = GetSurface().Scale();
  const PlacementRules rules{scale.TwipsX(GetSurface().ViewSize().width - kMargin * 2),
                             scale.TwipsY(Pixels(vertical_.maximum + vertical_.page)), scale.TwipsX(kGap),
                             scale.TwipsY(kRowStep)};
  return FindPlace({box.Bounds().width, box.Bounds().height}, others, rules);
}

void qbDiagramPane::BoxMoved(const qbEntityList& box) {
  RouteLinesAt(box);
  UpdateScrollBars();
  Refresh();
}

void qbDiagramPane::RouteLinesAt(const qbEntityList& box) {
  for (const Ref<qbLine>& line : lines_) {
    if (line->EndsAt(box)) line->Invalidate();
  }
}

Ref<qbEntity> qbDiagramPane::EntityOf(const qbEntityList& box) {
  return std::static_pointer_cast<qbEntity>(box.Entity());
}

void qbDiagramPane::BoxRowChecked(const qbEntityList& box, const Ref<BoxRow>& row) {
  const Ref<qbEntity> entity = EntityOf(box);
  if (!entity) return;
  const Ref<qbEntityItem> item = entity->Items()->Item(static_cast<std::int32_t>(row->Index()));
  if (!item) return;
  const Ref<QueryContext> context = Context();
  const StepScope step(context, row->Checked() ? "Tick column" : "Untick column");
  const bool checked = row->Checked();
  EntityItemCheck.Raise(entity, item);
  // A listener may have renamed or removed the entity; one that ticked the row again has reported that already.
  if (!context || !entity->EntityBox() || row->Checked() != checked) return;
  context->ItemChecked(entity->Caption(), row->Text(), checked);
}

void qbDiagramPane::JoinChanged(const Ref<Object>& relationship) {
  if (const auto join = std::dynamic_pointer_cast<qbRelationship>(relationship); join && join->Line()) {
    join->Line()->Invalidate();
  }
  Refresh();
  if (const Ref<QueryContext> context = Context()) context->QueryChanged();
}

void qbDiagramPane::JoinRemoved() {
  Refresh();
  if (const Ref<QueryContext> context = Context()) context->QueryChanged();
}

// --- Selection ---

bool qbDiagramPane::IsInDiagram(const Ref<Object>& object) {
  if (const auto entity = std::dynamic_pointer_cast<qbEntity>(object)) return entity->EntityBox() != nullptr;
  const auto join = std::dynamic_pointer_cast<qbRelationship>(object);
  return join && join->Line();
}

void qbDiagramPane::SelectObject(const Ref<Object>& object) {
  if (object == selected_) return;
  DropSelection();
  // A listener has selected another object meanwhile, or removed this one.
  if ((selected_ && selected_ != leaving_) || !IsInDiagram(object)) return;
  selected_ = object;
  if (const auto join = std::dynamic_pointer_cast<qbRelationship>(object)) {
    if (join->Line()) join->Line()->SetSelected(true);
  }
  Refresh();
  ObjectActivate.Raise(object);
}

// A listener that is told of the end may itself end it, by removing the object or by selecting another.
void qbDiagramPane::DropSelection() {
  if (!selected_ || selected_ == leaving_) return;
  const Ref<Object> object = selected_;
  const ScopedValue leaving(leaving_, object);
  if (const auto join = std::dynamic_pointer_cast<qbRelationship>(object)) {
    if (join->Line()) join->Line()->SetSelected(false);
  }
  Refresh();
  ObjectDeactivate.Raise(object);
  if (selected_ == object) selected_ = nullptr;
}

void qbDiagramPane::RaiseToTop(const Ref<qbEntityList>& box) {
  const auto at = std::ranges::find(stacking_, box);
  if (at != stacking_.end()) std::rotate(at, at + 1, stacking_.end());
}

// --- Appearance ---

void qbDiagramPane::ApplyAppearance() {
  const BoxMetrics metrics = CurrentBoxMetrics();
  for (const LoadedBox& loaded : boxes_) {
    loaded.box->SetColors({entityForeColor_, entityFrameColor_});
    loaded.box->SetBackColor(entityBackColor_);
    loaded.box->SetMetrics(metrics);
  }
  Refresh();
}

void qbDiagramPane::SetEntityFont(const Font& font) {
  entityFont_ = font;
  ApplyAppearance();
}

void qbDiagramPane::SetEntityForeColor(Color color) {
  entityForeColor_ = color;
  ApplyAppearance();
}

void qbDiagramPane::SetEntityBackColor(Color color) {
  entityBackColor_ = color;
  ApplyAppearance();
}

void qbDiagramPane::SetBackColor(Color color) {
  backColor_ = color;
  Refresh();
}

void qbDiagramPane::SetEntityCaptionFont(const Font& font) {
  entityCaptionFont_ = font;
  ApplyAppearance();
}

void qbDiagramPane::SetEntityFrameColor(Color color) {
  entityFrameColor_ = color;
  ApplyAppearance();
}

void qbDiagramPane::OnSurfaceChanged() { ApplyAppearance(); }

// --- Scrolling ---

PixelPoint qbDiagramPane::ScrollOffset() const {
  return {Pixels(horizontal_.value) - kMargin, Pixels(vertical_.value) - kMargin};
}

PixelRect qbDiagramPane::PlaceOf(const qbEntityList& box) const {
  const PixelPoint offset = ScrollOffset();
  return GetSurface().Scale().ToPixels(box.Bounds()).Moved(-offset.x, -offset.y);
}

PixelSize qbDiagramPane::ExtentOfBoxes() const {
  PixelSize extent{};
  for (const LoadedBox& loaded : boxes_) {
    const PixelRect place = GetSurface().Scale().ToPixels(loaded.box->Bounds());
    extent.width = std::max(extent.width, place.Right() + kMargin * 2);
    extent.height = std::max(extent.height, place.Bottom() + kMargin * 2);
  }
  return extent;
}

void qbDiagramPane::UpdateScrollBars() {
  const PixelSize view = GetSurface().ViewSize();
  const PixelSize extent = ExtentOfBoxes();
  const auto update = [&](Orientation orientation, ScrollState& bar, Pixels visible, Pixels whole) {
    bar.page = static_cast<int>(visible.Value());
    bar.step = kScrollStep;
    bar.maximum = std::max(0, static_cast<int>(std::ceil((whole - visible).Value())));
    bar.value = std::clamp(bar.value, 0, bar.maximum);
    GetSurface().SetScrollBar(orientation, bar);
  };
  update(Orientation::Horizontal, horizontal_, view.width, extent.width);
  update(Orientation::Vertical, vertical_, view.height, extent.height);
}

void qbDiagramPane::OnResize() {
  UpdateScrollBars();
  Refresh();
}

void qbDiagramPane::OnScroll(Orientation orientation, int value) {
  ScrollState& bar = orientation == Orientation::Horizontal ? horizontal_ : vertical_;
  bar.value = std::clamp(value, 0, bar.maximum);
  Refresh();
}

void qbDiagramPane::ScrollBy(Orientation orientation, int delta) {
  ScrollState& bar = orientation == Orientation::Horizontal ? horizontal_ : vertical_;
  OnScroll(orientation, bar.value + delta);
  GetSurface().SetScrollBar(orientation, bar);
}

}  // namespace zrqrybld
