// The pane's model side: boxes and lines come and go, selection, appearance, scrolling.
#include "diagram/diagram_pane.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <set>
#include <utility>

#include "base/error.h"
#include "base/scoped_value.h"
#include "base/text.h"
#include "base/texts_diagram.h"
#include "platform/stored_values.h"

namespace zrqrybld {
namespace {

constexpr Pixels kGap = 16_px;
constexpr Pixels kRowStep = 2_px;
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
  const Ref<Object> alive = shared_from_this();  // a listener may let go of it
  const Ref<QueryContext> context = Context();
  const StepScope step(context, kStepClear);
  // What listeners add meanwhile stays: waiting for an empty diagram could take forever.
  std::vector<Ref<qbEntity>> all;
  for (std::int32_t i = entities_->Count(); i >= 1; --i) all.push_back(entities_->Item(i));
  WholeOrNothing(context, [&] {
    for (const Ref<qbEntity>& entity : all) {
      if (entity->EntityBox()) entities_->Remove(entity->Index());
    }
    if (context) context->DiagramCleared();
  });
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
  box->SetImages(itemsImageList_);
  TwipsRect bounds = box->Bounds();
  const TwipsPoint place = places_.FindPlace({bounds.width, bounds.height}, RulesOfPlacement());
  bounds.left = place.x;
  bounds.top = place.y;
  box->SetBounds(bounds);

  qbEntityList* const self = box.get();
  std::vector<EventConnection> links;
  links.push_back(box->Move.Connect([this, self] { BoxMoved(*self); }));
  links.push_back(box->Changed.Connect([this] {
    rowMarksStale_ = true;
    Refresh();
  }));
  links.push_back(box->ItemChecked.Connect([this, self](const Ref<BoxRow>& row) { BoxRowChecked(*self, row); }));
  links.push_back(box->RelationshipAdd.Connect([this](const Ref<Object>&) { Refresh(); }));
  links.push_back(box->RelationshipChange.Connect([this](const Ref<Object>& join) { JoinChanged(join); }));
  links.push_back(box->RelationshipRemove.Connect([this](const Ref<Object>&) { JoinRemoved(); }));
  ReportTicks(box);
  LoadedBox& kept = boxes_[self];
  try {
    kept.place = places_.Add(box->Bounds());
  } catch (...) {
    boxes_.erase(self);
    throw;
  }
  kept.links = std::move(links);
  return box;
}

void qbDiagramPane::ShowBox(const Ref<qbEntityList>& box) {
  boxes_[box.get()].shown = stacking_.Append(box);
  UpdateScrollBars();
  Refresh();
}

void qbDiagramPane::UnloadBox(const Ref<qbEntityList>& box) {
  // A gesture may hold this box as its own or as its target.
  EndGesture();
  if (hover_.box == box) hover_ = {};
  if (keyJoin_ && keyJoin_->box == box) keyJoin_.reset();
  std::erase_if(alsoSelected_, [](const Ref<qbEntity>& entity) { return !entity->EntityBox(); });
  rowMarksStale_ = true;
  if (const auto loaded = boxes_.find(box.get()); loaded != boxes_.end()) {
    places_.Remove(loaded->second.place);
    if (loaded->second.shown) stacking_.RemoveAt(stacking_.PositionOf(loaded->second.shown));
    boxes_.erase(loaded);
  }
  UpdateScrollBars();
  Refresh();
}

Ref<qbLine> qbDiagramPane::LoadLine(const Ref<qbRelationship>& relationship, const Ref<qbEntityList>& source,
                                    const Ref<qbEntityList>& target) {
  rowMarksStale_ = true;
  // Lines between the same two boxes run side by side: each takes the first lane that is free.
  const Ends boxes = EndsOf({source.get(), {}}, {target.get(), {}});
  const int lane = lanes_[boxes].Take();
  Ref<qbLine> line;
  try {
    line = std::make_shared<qbLine>(relationship, source, target, lane);
    LoadedLine& loaded = loadedLines_[line.get()];
    loaded.boxes = boxes;
    loaded.inAll = lines_.Append(line);
    loaded.atSource = boxes_[source.get()].lines.Append(line);
    if (target != source) loaded.atTarget = boxes_[target.get()].lines.Append(line);
  } catch (...) {
    if (line && loadedLines_.contains(line.get())) {
      UnloadLine(line);
    } else {
      GiveBack(lanes_, boxes, lane);
    }
    throw;
  }
  return line;
}

// It needs no memory, so that what could not be drawn whole can be taken away.
void qbDiagramPane::UnloadLine(const Ref<qbLine>& line) {
  if (hover_.line == line) hover_ = {};
  rowMarksStale_ = true;
  const auto loaded = loadedLines_.find(line.get());
  if (loaded == loadedLines_.end()) return;
  const auto takeOut = [](OrderedList<Ref<qbLine>>& lines, LineMark mark) {
    if (mark) lines.RemoveAt(lines.PositionOf(mark));
  };
  GiveBack(lanes_, loaded->second.boxes, line->Lane());
  if (loaded->second.rows) GiveBack(twins_, *loaded->second.rows, line->Twin());
  if (const auto box = boxes_.find(line->SourceBox().get()); box != boxes_.end()) {
    takeOut(box->second.lines, loaded->second.atSource);
  }
  if (const auto box = boxes_.find(line->TargetBox().get()); box != boxes_.end()) {
    takeOut(box->second.lines, loaded->second.atTarget);
  }
  takeOut(lines_, loaded->second.inAll);
  loadedLines_.erase(loaded);
  Refresh();
}

std::vector<Ref<qbLine>> qbDiagramPane::LinesAt(const qbEntityList& box) const {
  const auto loaded = boxes_.find(&box);
  if (loaded == boxes_.end()) return {};
  return {loaded->second.lines.begin(), loaded->second.lines.end()};
}

void qbDiagramPane::FitBox(const Ref<qbEntityList>& box) {
  const TwipsSize size = box->FittingSize(GetSurface().Metrics(), kMostFittedRows);
  TwipsRect bounds = box->Bounds();
  bounds.width = size.width;
  bounds.height = size.height;
  box->SetBounds(bounds);
  const auto loaded = boxes_.find(box.get());
  if (loaded == boxes_.end() || !places_.IsCovered(loaded->second.place)) return;
  const TwipsPoint place = places_.FindPlace(size, RulesOfPlacement(), loaded->second.place);
  bounds.left = place.x;
  bounds.top = place.y;
  box->SetBounds(bounds);
}

// All rows are visible then; the box stays where it is.
void qbDiagramPane::FitToRows(const Ref<qbEntityList>& box) {
  const StepScope step(Context(), kStepResizeTable, box->Caption());
  box->SetMinimized(false);
  const TwipsRect bounds = box->Bounds();
  const TwipsSize size = box->FittingSize(GetSurface().Metrics(), box->Rows().Count());
  box->SetBounds({bounds.left, bounds.top, size.width, size.height});
}

PlacementRules qbDiagramPane::RulesOfPlacement() const {
  const ScreenScale scale = GetSurface().Scale();
  return {scale.TwipsX(GetSurface().ViewSize().width / zoom_ - kSurfaceMargin * 2),
          scale.TwipsY(Pixels(vertical_.maximum + vertical_.page) / zoom_), scale.TwipsX(kGap), scale.TwipsY(kRowStep)};
}

void qbDiagramPane::BoxMoved(const qbEntityList& box) {
  LoadedBox& loaded = boxes_[&box];
  places_.Move(loaded.place, box.Bounds());
  UpdateScrollBars();
  Refresh();
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
  const bool checked = row->Checked();
  bool begun = false;
  try {
    const StepScope step(context, checked ? kStepTick : kStepUntick, box.Caption() + "." + row->Text());
    begun = true;
    WholeOrNothing(context, [&] {
      EntityItemCheck.Raise(entity, item);
      // A listener may have renamed or removed the entity; one that ticked the row again has reported that already.
      if (!context || !entity->EntityBox() || row->Checked() != checked) return;
      context->ItemChecked(entity->Caption(), row->Text(), checked);
    });
  } catch (const std::bad_alloc&) {
    if (!begun) row->TakeTickBack();
    throw;
  }
}

// Ticked columns that go, or are called otherwise, take the query along.
void qbDiagramPane::ReportTicks(const Ref<qbEntityList>& box) {
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
    report([&](QueryContext& context, const std::string& table) { context.ItemChecked(table, text, false); });
  };
  rows.onRenamed = [report](const std::string& before, const std::string& after) {
    report([&](QueryContext& context, const std::string& table) { context.ItemRenamed(table, before, after); });
  };
}

void qbDiagramPane::JoinChanged(const Ref<Object>& relationship) {
  if (const auto join = std::dynamic_pointer_cast<qbRelationship>(relationship); join && join->Line()) {
    KeepApart(*join->Line());
    join->Line()->Invalidate();
  }
  rowMarksStale_ = true;
  Refresh();
  if (const Ref<QueryContext> context = Context()) context->QueryChanged();
}

qbDiagramPane::Ends qbDiagramPane::EndsOf(End one, End other) {
  if (other < one) std::swap(one, other);
  return {std::move(one), std::move(other)};
}

std::optional<qbDiagramPane::Ends> qbDiagramPane::RowsOf(const qbLine& line) {
  const Ref<qbRelationship> join = line.Relationship();
  const Ref<qbEntityItem> source = join ? join->SourceItem() : nullptr;
  const Ref<qbEntityItem> target = join ? join->TargetItem() : nullptr;
  if (!source || !target) return std::nullopt;
  return EndsOf({line.SourceBox().get(), source->Text()}, {line.TargetBox().get(), target->Text()});
}

void qbDiagramPane::GiveBack(std::map<Ends, FreeNumbers>& numbers, const Ends& ends, int number) {
  const auto found = numbers.find(ends);
  found->second.GiveBack(number);
  if (found->second.AllFree()) numbers.erase(found);
}

// Lines of the same two rows lie beside one another: each takes the first place that is free.
void qbDiagramPane::KeepApart(qbLine& line) {
  const auto loaded = loadedLines_.find(&line);
  if (loaded == loadedLines_.end()) return;
  std::optional<Ends>& before = loaded->second.rows;
  std::optional<Ends> rows = RowsOf(line);
  if (rows == before) return;
  const int twin = rows ? twins_[*rows].Take() : 0;
  if (before) GiveBack(twins_, *before, line.Twin());
  before = std::move(rows);
  line.SetTwin(twin);
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

// In the diagram of another pane.
bool qbDiagramPane::IsForeign(const Ref<Object>& object) const {
  if (!IsInDiagram(object)) return false;
  const auto join = std::dynamic_pointer_cast<qbRelationship>(object);
  const Ref<qbEntity> entity = join ? join->Source() : std::dynamic_pointer_cast<qbEntity>(object);
  return entity && !HasBox(*entity->EntityBox());
}

void qbDiagramPane::SelectObject(const Ref<Object>& object) {
  const Ref<Object> alive = shared_from_this();  // a listener may let go of it
  if (IsForeign(object)) throw Error(ErrorInvalidCall, text::OtherDiagram);
  if (object == selected_) {
    if (!std::exchange(alsoSelected_, {}).empty()) Refresh();
    return;
  }
  DropSelection();
  // A listener has selected another object meanwhile, or removed this one.
  if ((selected_ && selected_ != leaving_) || !IsInDiagram(object)) return;
  selected_ = object;
  typedAhead_.clear();
  rowMarksStale_ = true;
  if (const auto join = std::dynamic_pointer_cast<qbRelationship>(object)) {
    if (join->Line()) join->Line()->SetSelected(true);
  }
  Refresh();
  ObjectActivate.Raise(object);
}

// A listener that is told of the end may itself end it, by removing the object or by selecting another.
void qbDiagramPane::DropSelection() {
  if (!selected_ || selected_ == leaving_) return;
  const Ref<Object> alive = shared_from_this();  // a listener may let go of the pane
  alsoSelected_.clear();
  const Ref<Object> object = selected_;
  const ScopedValue leaving(leaving_, object);
  rowMarksStale_ = true;
  if (const auto join = std::dynamic_pointer_cast<qbRelationship>(object)) {
    if (join->Line()) join->Line()->SetSelected(false);
  }
  Refresh();
  ObjectDeactivate.Raise(object);
  if (selected_ == object) selected_ = nullptr;
}

bool qbDiagramPane::IsSelected(const Ref<Object>& object) const {
  return object && (object == selected_ || std::ranges::find(alsoSelected_, object) != alsoSelected_.end());
}

std::vector<Ref<qbEntity>> qbDiagramPane::SelectedEntities() const {
  std::vector<Ref<qbEntity>> entities;
  if (const Ref<qbEntity> first = SelectedEntity()) entities.push_back(first);
  entities.insert(entities.end(), alsoSelected_.begin(), alsoSelected_.end());
  return entities;
}

// The first of the group becomes the selected object; listeners hear of that one.
void qbDiagramPane::SelectGroup(std::vector<Ref<qbEntity>> group) {
  if (group.empty()) return DropSelection();
  const Ref<qbEntity> first = group.front();
  SelectObject(first);
  if (selected_ != first) return;  // a listener has decided otherwise
  group.erase(group.begin());
  std::erase_if(group, [](const Ref<qbEntity>& entity) { return !entity->EntityBox(); });
  alsoSelected_ = std::move(group);
  Refresh();
}

void qbDiagramPane::SelectAlso(const Ref<qbEntity>& entity) {
  std::vector<Ref<qbEntity>> group = SelectedEntities();
  std::erase(group, entity);
  group.insert(group.begin(), entity);
  SelectGroup(std::move(group));
}

void qbDiagramPane::ToggleSelected(const Ref<qbEntity>& entity) {
  if (!IsSelected(entity)) return SelectAlso(entity);
  std::vector<Ref<qbEntity>> group = SelectedEntities();
  std::erase(group, entity);
  SelectGroup(std::move(group));
}

void qbDiagramPane::SelectAll() {
  std::vector<Ref<qbEntity>> group = {SelectedEntity()};
  for (std::int32_t i = 1; i <= entities_->Count(); ++i) group.push_back(entities_->Item(i));
  if (!group.front()) {
    group.erase(group.begin());
  } else {
    group.erase(std::find(group.begin() + 1, group.end(), group.front()));
  }
  SelectGroup(std::move(group));
}

void qbDiagramPane::RaiseToTop(const Ref<qbEntityList>& box) {
  const auto loaded = boxes_.find(box.get());
  if (loaded == boxes_.end() || !loaded->second.shown) return;
  stacking_.Move(stacking_.PositionOf(loaded->second.shown), stacking_.Count());
}

// --- Appearance ---

void qbDiagramPane::AboutBox() {
  if (const Ref<QueryContext> context = Context()) {
    context->GetToolkit().GetDialogs().ShowMessage("zrQryBld\r\n" + context->Say(text::AboutDiagram),
                                                   MessageIcon::Information);
  }
}

void qbDiagramPane::ApplyAppearance() {
  const BoxMetrics metrics = CurrentBoxMetrics();
  for (const Ref<qbEntityList>& box : stacking_) {
    box->SetColors({entityForeColor_, entityFrameColor_});
    box->SetBackColor(entityBackColor_);
    box->SetMetrics(metrics);
  }
  Refresh();
}

void qbDiagramPane::SetItemsImageList(Ref<ImageList> images) {
  itemsImageList_ = std::move(images);
  for (const Ref<qbEntityList>& box : stacking_) box->SetImages(itemsImageList_);
  Refresh();
}

void qbDiagramPane::SetEntityFont(const Font& font) {
  Store(entityFont_, font, "EntityFont");
  ApplyAppearance();
}

void qbDiagramPane::SetEntityForeColor(Color color) {
  Store(entityForeColor_, color, "EntityForeColor");
  ApplyAppearance();
}

void qbDiagramPane::SetEntityBackColor(Color color) {
  Store(entityBackColor_, color, "EntityBackColor");
  ApplyAppearance();
}

void qbDiagramPane::SetBackColor(Color color) {
  Store(backColor_, color, "BackColor");
  Refresh();
}

void qbDiagramPane::SetEntityCaptionFont(const Font& font) {
  Store(entityCaptionFont_, font, "EntityCaptionFont");
  ApplyAppearance();
}

void qbDiagramPane::SetEntityFrameColor(Color color) {
  Store(entityFrameColor_, color, "EntityFrameColor");
  ApplyAppearance();
}

void qbDiagramPane::SetMinimized(const qbEntity& entity, bool minimized) {
  if (entity.EntityBox()) Minimize(*entity.EntityBox(), minimized);
}

void qbDiagramPane::Minimize(qbEntityList& box, bool minimized) {
  const StepScope step(Context(), minimized ? kStepMinimizeTable : kStepRestoreTable, box.Caption());
  box.SetMinimized(minimized);
}

// --- What undo restores ---

void qbDiagramPane::Restore(const DiagramState& now, const DiagramState& then) {
  CancelGesture();
  EndKeyJoin();
  // Nobody is told of the selection's end while the diagram is half-way.
  const Ref<Object> selected = std::exchange(selected_, nullptr);
  entities_->Restore(now, then);
  rowMarksStale_ = true;
  Refresh();
  if (IsInDiagram(selected)) {
    selected_ = selected;
  } else if (selected) {
    alsoSelected_.clear();
    ObjectDeactivate.Raise(selected);
  }
}

// Boxes that a gesture has moved or sized by and by: what it did is one step.
void qbDiagramPane::RecordPlaces(const StepName& name, const std::vector<BoxPlace>& before) {
  std::vector<BoxPlace> now;
  for (const auto& [box, bounds] : before) {
    now.emplace_back(box, box->Bounds());
    box->SetBounds(bounds);
  }
  const StepScope step(Context(), name, before.front().first->Caption());
  for (const auto& [box, bounds] : now) box->SetBounds(bounds);
}

void qbDiagramPane::OnSurfaceChanged() { ApplyAppearance(); }

// --- Stored properties ---

namespace {

// A colour is stored as its 32 bits; the largest do not fit a signed 32-bit number.
Variant ToVariant(Color color) { return static_cast<std::int64_t>(color.value); }

Color ReadColor(const PropertyStore& store, std::string_view key, Color defaultColor) {
  const std::optional<double> number = store.Read(key, ToVariant(defaultColor)).Number();
  if (!number || !(*number >= -2147483648.0 && *number <= 4294967295.0)) return defaultColor;
  return {static_cast<std::uint32_t>(static_cast<std::int64_t>(*number))};
}

}  // namespace

void qbDiagramPane::ReadProperties(const PropertyStore& store) {
  entityMinimizeButton_ = ReadBoolean(store, "EntityMinimizeButton", true);
  const std::optional<double> drop = store.Read("OLEDropMode", 0).Number();
  oleDropMode_ = drop && *drop == 1 ? OLEDropManual : OLEDropNone;
  entityBackColor_ = ReadColor(store, "EntityBackColor", Color::System(5));
  entityForeColor_ = ReadColor(store, "EntityForeColor", Color::System(8));
  entityFrameColor_ = ReadColor(store, "EntityFrameColor", Color::System(15));
  backColor_ = ReadColor(store, "BackColor", Color::System(12));
  entityFont_ = ReadFont(store, "EntityFont");
  entityCaptionFont_ = ReadFont(store, "EntityCaptionFont");
  ApplyAppearance();
}

void qbDiagramPane::WriteProperties(PropertyStore& store) const {
  store.Write("EntityMinimizeButton", entityMinimizeButton_, true);
  store.Write("EntityBackColor", ToVariant(entityBackColor_));
  store.Write("EntityForeColor", ToVariant(entityForeColor_));
  store.Write("EntityFrameColor", ToVariant(entityFrameColor_));
  store.Write("BackColor", ToVariant(backColor_));
  store.Write("OLEDropMode", static_cast<std::int32_t>(oleDropMode_), 0);
  store.Write("EntityFont", ToVariant(entityFont_));
  store.Write("EntityCaptionFont", ToVariant(entityCaptionFont_));
}

}  // namespace zrqrybld
