// DiagramScene: the boxes and lines of a diagram, where they lie and which lies on which.
//
// The stage puts them in and takes them out as the model asks; the other parts look at them. Places are those of the
// surface, in twips or in pixels at 100 %.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "zrqrybld/base/event.h"
#include "zrqrybld/base/ordered_list.h"
#include "zrqrybld/diagram/entity_box.h"
#include "zrqrybld/diagram/line_numbers.h"
#include "zrqrybld/diagram/placement.h"
#include "zrqrybld/diagram/whole_join.h"

namespace zrqrybld {

class DiagramSite;
class qbEntity;
class qbLine;
class qbRelationship;

/// What lies under a point.
struct DiagramHit {
  Ref<qbEntityList> box;
  BoxHit part;
  Ref<qbLine> line;
  friend bool operator==(const DiagramHit&, const DiagramHit&) = default;
};

/// A box with the place that it had.
using BoxPlace = std::pair<Ref<qbEntityList>, TwipsRect>;

/// The entity that a box shows; nothing once it was removed.
Ref<qbEntity> EntityOf(const qbEntityList& box);

class DiagramScene {
 public:
  using RowSet = std::unordered_set<const BoxRow*>;

  explicit DiagramScene(DiagramSite& site) : site_(site) {}

  // --- Boxes ---

  /// Takes a box in, not visible yet; the connections last as long as it is here. Nothing has changed when memory runs
  /// out.
  void AddBox(const Ref<qbEntityList>& box, std::vector<EventConnection> links);
  bool HasBox(const qbEntityList& box) const { return boxes_.contains(&box); }
  /// The box becomes visible, on top of all.
  void ShowBox(const Ref<qbEntityList>& box);
  void RemoveBox(const Ref<qbEntityList>& box);
  /// The box has another place or size.
  void BoxMoved(const qbEntityList& box);
  void RaiseToTop(const Ref<qbEntityList>& box);
  /// The visible ones, from the bottom to the top.
  const OrderedList<Ref<qbEntityList>>& Boxes() const { return stacking_; }

  /// How far all boxes reach to the right and down; nothing without boxes.
  std::optional<TwipsPoint> Reach() const { return places_.Reach(); }
  /// A free place for a box of this size that is not here yet.
  TwipsPoint FindPlace(TwipsSize size, const PlacementRules& rules) { return places_.FindPlace(size, rules); }
  /// A free place for a box that another one lies on; nothing when none does.
  std::optional<TwipsPoint> FindPlaceIfCovered(const qbEntityList& box, TwipsSize size, const PlacementRules& rules);

  // --- Lines ---

  /// Draws the line of a join. Nothing has changed when memory runs out.
  Ref<qbLine> AddLine(const Ref<qbRelationship>& relationship, const Ref<qbEntityList>& source,
                      const Ref<qbEntityList>& target);
  /// It needs no memory, so that what could not be drawn whole can be taken away.
  void RemoveLine(const Ref<qbLine>& line);
  /// In the order of drawing.
  const OrderedList<Ref<qbLine>>& Lines() const { return lines_; }
  /// The line's position among them, from 1.
  std::size_t PositionOf(const qbLine& line) const { return lines_.PositionOf(loadedLines_.at(&line).inAll); }
  /// The joins that lines between the same two boxes make together, in the order of their first lines.
  const OrderedList<Ref<qbWholeJoin>>& Wholes() const { return wholes_; }
  bool HasWhole(const qbWholeJoin& whole) const { return loadedWholes_.contains(&whole); }
  /// The whole's position among them, from 1.
  std::size_t PositionOf(const qbWholeJoin& whole) const { return wholes_.PositionOf(loadedWholes_.at(&whole).inAll); }
  /// The whole between two boxes, whichever way round; nothing when there is none.
  Ref<qbWholeJoin> WholeBetween(const qbEntityList* one, const qbEntityList* other) const;
  /// Those that start or end at the box.
  std::vector<Ref<qbLine>> LinesAt(const qbEntityList& box) const;
  /// The line joins other columns now.
  void LineChanged(qbLine& line);
  /// The line is the selected object, or with nothing none is.
  void SelectLine(const Ref<qbLine>& line);
  /// The join whose line is the selected object; nothing when none is.
  Ref<qbWholeJoin> SelectedWhole() const;

  // --- Looking ---

  /// What lies under a point of the surface; a line also when it is not further away than `reach`.
  DiagramHit HitTest(PixelPoint point, Pixels reach) const;
  /// The topmost box under the point, but not `besides`; nothing when there is none.
  Ref<qbEntityList> BoxAt(TwipsPoint point, const qbEntityList& besides) const;

  /// Rows with a join, and those of the selected one.
  const RowSet& JoinedRows() const;
  const RowSet& MarkedRows() const;
  /// Whether the box's table is only asked about, by a join or behind one that is.
  bool IsAsked(const qbEntityList& box) const;
  /// These rows and boxes may be others now.
  void JoinsChanged() { rowMarksStale_ = true; }

 private:
  using LineMark = OrderedList<Ref<qbLine>>::Mark;
  struct LoadedBox {
    std::vector<EventConnection> links;
    OrderedList<Ref<qbLine>> lines;
    PlacedBoxes::Id place = 0;
    OrderedList<Ref<qbEntityList>>::Mark shown = nullptr;  // among `stacking_`, once the box is shown
  };
  struct LoadedLine {
    LineMark inAll = nullptr;
    LineMark atSource = nullptr;
    LineMark atTarget = nullptr;  // nothing where both ends are at one box
    qbWholeJoin::Members::Mark inWhole = nullptr;
    std::optional<LineEnds> rows;  // once the join has both columns
  };
  using BoxPair = std::pair<const qbEntityList*, const qbEntityList*>;
  struct LoadedWhole {
    OrderedList<Ref<qbWholeJoin>>::Mark inAll = nullptr;
    BoxPair boxes;
  };

  static BoxPair PairOf(const qbEntityList* one, const qbEntityList* other);
  Ref<qbWholeJoin> TakeWhole(const BoxPair& boxes);
  void LeaveWhole(const Ref<qbWholeJoin>& whole, qbWholeJoin::Members::Mark mark);
  void UpdateRowMarks() const;
  void UpdateAskedBoxes() const;

  DiagramSite& site_;
  std::unordered_map<const qbEntityList*, LoadedBox> boxes_;
  PlacedBoxes places_;
  OrderedList<Ref<qbEntityList>> stacking_;
  OrderedList<Ref<qbLine>> lines_;
  std::unordered_map<const qbLine*, LoadedLine> loadedLines_;
  OrderedList<Ref<qbWholeJoin>> wholes_;
  std::map<BoxPair, Ref<qbWholeJoin>> wholeOf_;
  std::unordered_map<const qbWholeJoin*, LoadedWhole> loadedWholes_;
  WeakRef<qbLine> selectedLine_;
  LineNumbers twins_;  // of the lines between two rows
  // Made anew when the joins have changed.
  mutable RowSet joinedRows_;
  mutable RowSet markedRows_;
  mutable std::unordered_set<const qbEntityList*> askedBoxes_;
  mutable bool rowMarksStale_ = true;
};

}  // namespace zrqrybld
