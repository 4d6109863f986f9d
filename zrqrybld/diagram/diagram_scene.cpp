#include "zrqrybld/diagram/diagram_scene.h"

#include <algorithm>
#include <utility>

#include "zrqrybld/diagram/diagram_site.h"
#include "zrqrybld/diagram/entity.h"
#include "zrqrybld/diagram/join_line.h"

namespace zrqrybld {

namespace {

// A join without columns is drawn while it is alone.
void RouteFirstAnew(const qbWholeJoin& whole) {
  const Ref<qbRelationship> first = whole.Drawn().At(1).lock();
  if (first && first->Line()) first->Line()->Invalidate();
}

}  // namespace

Ref<qbEntity> EntityOf(const qbEntityList& box) { return std::static_pointer_cast<qbEntity>(box.Entity()); }

// --- Boxes ---

void DiagramScene::AddBox(const Ref<qbEntityList>& box, std::vector<EventConnection> links) {
  LoadedBox& kept = boxes_[box.get()];
  try {
    kept.place = places_.Add(box->Bounds());
  } catch (...) {
    boxes_.erase(box.get());
    throw;
  }
  kept.links = std::move(links);
}

void DiagramScene::ShowBox(const Ref<qbEntityList>& box) { boxes_[box.get()].shown = stacking_.Append(box); }

void DiagramScene::RemoveBox(const Ref<qbEntityList>& box) {
  JoinsChanged();
  const auto loaded = boxes_.find(box.get());
  if (loaded == boxes_.end()) return;
  places_.Remove(loaded->second.place);
  if (loaded->second.shown) stacking_.RemoveAt(stacking_.PositionOf(loaded->second.shown));
  boxes_.erase(loaded);
}

void DiagramScene::BoxMoved(const qbEntityList& box) { places_.Move(boxes_[&box].place, box.Bounds()); }

void DiagramScene::RaiseToTop(const Ref<qbEntityList>& box) {
  const auto loaded = boxes_.find(box.get());
  if (loaded == boxes_.end() || !loaded->second.shown) return;
  stacking_.Move(stacking_.PositionOf(loaded->second.shown), stacking_.Count());
}

std::optional<TwipsPoint> DiagramScene::FindPlaceIfCovered(const qbEntityList& box, TwipsSize size,
                                                           const PlacementRules& rules) {
  const auto loaded = boxes_.find(&box);
  if (loaded == boxes_.end() || !places_.IsCovered(loaded->second.place)) return std::nullopt;
  return places_.FindPlace(size, rules, loaded->second.place);
}

// --- Lines ---

DiagramScene::BoxPair DiagramScene::PairOf(const qbEntityList* one, const qbEntityList* other) {
  return std::less<>()(other, one) ? BoxPair(other, one) : BoxPair(one, other);
}

Ref<qbWholeJoin> DiagramScene::WholeBetween(const qbEntityList* one, const qbEntityList* other) const {
  const auto found = wholeOf_.find(PairOf(one, other));
  return found == wholeOf_.end() ? nullptr : found->second;
}

// The whole between two boxes, or a new one.
Ref<qbWholeJoin> DiagramScene::TakeWhole(const BoxPair& boxes) {
  Ref<qbWholeJoin>& whole = wholeOf_[boxes];
  if (whole) return whole;
  try {
    whole = std::make_shared<qbWholeJoin>(RefTo(site_));
    LoadedWhole& loaded = loadedWholes_[whole.get()];
    loaded.boxes = boxes;
    loaded.inAll = wholes_.Append(whole);
  } catch (...) {
    loadedWholes_.erase(whole.get());
    wholeOf_.erase(boxes);
    throw;
  }
  return whole;
}

// A line leaves it, unless it has not come in yet; the last one takes it away.
void DiagramScene::LeaveWhole(const Ref<qbWholeJoin>& whole, qbWholeJoin::Members::Mark mark) {
  if (mark) whole->Leave(mark);
  if (whole->Count() == 1) RouteFirstAnew(*whole);
  if (whole->Count() > 0) return;
  const auto loaded = loadedWholes_.find(whole.get());
  wholeOf_.erase(loaded->second.boxes);
  wholes_.RemoveAt(wholes_.PositionOf(loaded->second.inAll));
  loadedWholes_.erase(loaded);
}

Ref<qbLine> DiagramScene::AddLine(const Ref<qbRelationship>& relationship, const Ref<qbEntityList>& source,
                                  const Ref<qbEntityList>& target) {
  JoinsChanged();
  const Ref<qbWholeJoin> whole = TakeWhole(PairOf(source.get(), target.get()));
  Ref<qbLine> line;
  try {
    line = std::make_shared<qbLine>(relationship, source, target, whole);
    LoadedLine& loaded = loadedLines_[line.get()];
    loaded.inWhole = whole->Append(relationship);
    if (whole->Count() == 2) RouteFirstAnew(*whole);
    loaded.inAll = lines_.Append(line);
    loaded.atSource = boxes_[source.get()].lines.Append(line);
    if (target != source) loaded.atTarget = boxes_[target.get()].lines.Append(line);
  } catch (...) {
    if (line && loadedLines_.contains(line.get())) {
      RemoveLine(line);
    } else {
      LeaveWhole(whole, nullptr);
    }
    throw;
  }
  return line;
}

void DiagramScene::RemoveLine(const Ref<qbLine>& line) {
  JoinsChanged();
  const auto loaded = loadedLines_.find(line.get());
  if (loaded == loadedLines_.end()) return;
  const auto takeOut = [](OrderedList<Ref<qbLine>>& lines, LineMark mark) {
    if (mark) lines.RemoveAt(lines.PositionOf(mark));
  };
  LeaveWhole(line->Whole(), loaded->second.inWhole);
  if (loaded->second.rows) twins_.GiveBack(*loaded->second.rows, line->Twin());
  if (const auto box = boxes_.find(line->SourceBox().get()); box != boxes_.end()) {
    takeOut(box->second.lines, loaded->second.atSource);
  }
  if (const auto box = boxes_.find(line->TargetBox().get()); box != boxes_.end()) {
    takeOut(box->second.lines, loaded->second.atTarget);
  }
  takeOut(lines_, loaded->second.inAll);
  loadedLines_.erase(loaded);
  site_.Refresh();
}

std::vector<Ref<qbLine>> DiagramScene::LinesAt(const qbEntityList& box) const {
  const auto loaded = boxes_.find(&box);
  if (loaded == boxes_.end()) return {};
  return {loaded->second.lines.begin(), loaded->second.lines.end()};
}

// Lines of the same two rows lie beside one another: each takes the first place that is free.
void DiagramScene::LineChanged(qbLine& line) {
  const auto loaded = loadedLines_.find(&line);
  if (loaded == loadedLines_.end()) return;
  std::optional<LineEnds>& before = loaded->second.rows;
  std::optional<LineEnds> rows = RowsOf(line);
  if (rows == before) return;
  const int twin = rows ? twins_.Take(*rows) : 0;
  if (before) twins_.GiveBack(*before, line.Twin());
  before = std::move(rows);
  line.SetTwin(twin);
}

void DiagramScene::SelectLine(const Ref<qbLine>& line) {
  selectedLine_ = line;
  JoinsChanged();
}

Ref<qbWholeJoin> DiagramScene::SelectedWhole() const {
  const Ref<qbLine> line = selectedLine_.lock();
  return line && loadedLines_.contains(line.get()) ? line->Whole() : nullptr;
}

// --- Looking ---

DiagramHit DiagramScene::HitTest(PixelPoint point, Pixels reach) const {
  const ScreenScale scale = site_.GetSurface().Scale();
  const TwipsPoint twips = scale.ToTwips(point);
  DiagramHit edge;
  for (auto box = stacking_.rbegin(); box != stacking_.rend(); ++box) {
    const BoxHit part = (*box)->HitTest(twips);
    if ((*box)->Bounds().Contains(twips)) return {*box, part, nullptr};
    // The outer half of an edge counts only where no box lies under it.
    if (part.part == BoxPart::Edge && !edge.box) edge = {*box, part, nullptr};
  }
  Ref<qbLine> nearest;
  for (const Ref<qbLine>& line : lines_) {
    if (!line->Area(scale).Inset(-reach).Contains(point)) continue;
    const Pixels distance = line->DistanceTo(point, scale);
    if (distance > reach) continue;
    reach = distance;  // of two that are as near, the upper one
    nearest = line;
  }
  return nearest ? DiagramHit{nullptr, {}, nearest} : edge;
}

Ref<qbEntityList> DiagramScene::BoxAt(TwipsPoint point, const qbEntityList& besides) const {
  const auto under = std::ranges::find_if(stacking_.rbegin(), stacking_.rend(), [&](const auto& other) {
    return other.get() != &besides && other->Bounds().Contains(point);
  });
  return under == stacking_.rend() ? nullptr : *under;
}

const DiagramScene::RowSet& DiagramScene::JoinedRows() const {
  UpdateRowMarks();
  return joinedRows_;
}

const DiagramScene::RowSet& DiagramScene::MarkedRows() const {
  UpdateRowMarks();
  return markedRows_;
}

bool DiagramScene::IsAsked(const qbEntityList& box) const {
  UpdateRowMarks();
  return askedBoxes_.contains(&box);
}

// From each box that a join asks about along the joins that do not ask.
void DiagramScene::UpdateAskedBoxes() const {
  askedBoxes_.clear();
  std::vector<const qbEntityList*> next;
  const auto add = [&](const Ref<qbEntityList>& box) {
    if (box && askedBoxes_.insert(box.get()).second) next.push_back(box.get());
  };
  for (const Ref<qbLine>& line : lines_) {
    const Ref<qbRelationship> join = line->Relationship();
    if (!join || !join->Kind().Asks()) continue;
    add(join->Kind().AsksTarget() ? line->TargetBox() : line->SourceBox());
  }
  while (!next.empty()) {
    const auto loaded = boxes_.find(next.back());
    next.pop_back();
    if (loaded == boxes_.end()) continue;
    for (const Ref<qbLine>& line : loaded->second.lines) {
      const Ref<qbRelationship> join = line->Relationship();
      if (!join || join->Kind().Asks()) continue;
      add(line->SourceBox());
      add(line->TargetBox());
    }
  }
}

void DiagramScene::UpdateRowMarks() const {
  if (!rowMarksStale_) return;
  rowMarksStale_ = false;
  UpdateAskedBoxes();
  joinedRows_.clear();
  markedRows_.clear();
  const Ref<qbWholeJoin> selected = SelectedWhole();
  for (const Ref<qbLine>& line : lines_) {
    const Ref<qbRelationship> join = line->Relationship();
    if (!join) continue;
    for (const auto& [entity, item] :
         {std::pair{join->Source(), join->SourceItem()}, {join->Target(), join->TargetItem()}}) {
      if (!entity || !item || !entity->EntityBox()) continue;
      const BoxRow* row = entity->EntityBox()->Rows().At(static_cast<std::size_t>(item->Index())).get();
      joinedRows_.insert(row);
      if (line->Whole() == selected) markedRows_.insert(row);
    }
  }
}

}  // namespace zrqrybld
