// DiagramEdits: what the user does to a diagram, by mouse, key or menu alike; each is a step.
//
// Listeners are told on the way and may remove what is being edited.
#pragma once

#include <cstddef>
#include <vector>

#include "zrqrybld/base/units.h"
#include "zrqrybld/diagram/diagram_scene.h"
#include "zrqrybld/sql/join_kind.h"

namespace zrqrybld {

class DiagramSelection;
class DiagramSite;
class qbEntities;
struct StepName;

class DiagramEdits {
 public:
  DiagramEdits(DiagramSite& site, qbEntities& entities, const DiagramScene& scene, DiagramSelection& selection)
      : site_(site), entities_(entities), scene_(scene), selection_(selection) {}

  // --- Tables ---

  /// Removes all tables that are there now; what listeners add meanwhile stays.
  void Clear();
  /// Asks the designer for the table picker. Returns whether there is a source to pick from.
  bool RequestTables();
  /// Removes all that is selected but what a listener keeps. Returns whether anything was selected.
  bool DeleteSelected();
  /// Lets the user give the entity another caption. Nothing happens while the pane is not linked.
  void AskForAlias(const Ref<qbEntity>& entity);
  /// Ticks or unticks the columns, or only those of the primary key.
  void TickColumns(const Ref<qbEntity>& entity, bool tick, bool onlyKeys);

  // --- Joins ---

  /// Draws a join between two rows, unless it is to be `onlyOnce` and there is one. One more between the same tables
  /// becomes a part of their join and takes its kind.
  void AddJoin(const Ref<qbEntity>& source, std::size_t sourceRow, const Ref<qbEntity>& target, std::size_t targetRow,
               bool onlyOnce);
  /// The whole join begins at the other end from now on. It returns the same rows; each end keeps its mark and its
  /// picture. Nothing happens to one that cannot be said so.
  void ReverseJoin(const Ref<qbRelationship>& join);
  /// The kind of the whole join, as this relationship of it sees it.
  void SetKind(const Ref<qbRelationship>& join, JoinKind kind);
  /// Takes one pair of columns out of its join.
  void RemovePair(const Ref<qbRelationship>& join);
  /// Adds the table of one of the join's ends once more, with an alias of its own, and joins it to the other end as the
  /// join says.
  void JoinAgain(const Ref<qbRelationship>& join, const Ref<qbEntity>& end);

  // --- Places and sizes ---

  void Minimize(qbEntityList& box, bool minimized);
  /// The box is as large as it is at first.
  void FitBox(const Ref<qbEntityList>& box);
  /// All rows are visible then; the box stays where it is.
  void FitToRows(const Ref<qbEntityList>& box);
  /// Moves all boxes that are selected, but not off the surface. Returns whether any is.
  bool Nudge(TwipsPoint by);
  /// Makes the selected box larger or smaller, but not so small that nothing of it can be read. Returns whether there
  /// is one.
  bool Stretch(PixelPoint by, PixelSize smallest);
  /// Boxes that a gesture has moved or sized by and by: what it did is one step.
  void RecordPlaces(const StepName& name, const std::vector<BoxPlace>& before);

 private:
  static Ref<qbRelationship> Repeat(const qbRelationship& join, const Ref<qbEntity>& source,
                                    const Ref<qbEntity>& target, bool reversed);

  DiagramSite& site_;
  qbEntities& entities_;
  const DiagramScene& scene_;
  DiagramSelection& selection_;
};

}  // namespace zrqrybld
