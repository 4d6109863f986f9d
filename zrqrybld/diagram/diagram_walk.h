// DiagramWalk: going about a diagram without the mouse: from table to table, row to row, and into them.
#pragma once

#include <cstddef>

#include "zrqrybld/base/object.h"

namespace zrqrybld {

class DiagramCamera;
class DiagramEdits;
class DiagramScene;
class DiagramSelection;
class DiagramSite;
class KeyJoin;
class qbEntities;
class qbEntity;

class DiagramWalk {
 public:
  DiagramWalk(DiagramSite& site, qbEntities& entities, DiagramScene& scene, DiagramSelection& selection,
              DiagramCamera& camera, KeyJoin& keyJoin, DiagramEdits& edits)
      : site_(site),
        entities_(entities),
        scene_(scene),
        selection_(selection),
        camera_(camera),
        keyJoin_(keyJoin),
        edits_(edits) {}

  /// Makes a row of the selected entity, from 1, the current one and shows it. Returns whether there is any.
  bool GoToRow(std::size_t row);
  /// The same so many rows further down.
  bool MoveCurrentRow(int delta);
  /// Ticks or unticks the current column. Returns whether there is one.
  bool ToggleCurrentRow();
  /// The next object in this direction (1 or -1): the boxes in their order, then the joins. Returns false behind the
  /// last one, where nothing is selected any more and the key goes on to the window.
  bool SelectNext(int direction);
  /// Into a box: its first row becomes current, or it is enlarged where it shows its name only. A join shows its
  /// properties; one that is drawn ends. Returns whether there was anything to enter.
  bool Enter();
  /// Raises the entity's box above the others and scrolls it into view.
  void Show(const qbEntity& entity);

 private:
  bool EndKeyJoin();

  DiagramSite& site_;
  qbEntities& entities_;
  DiagramScene& scene_;
  DiagramSelection& selection_;
  DiagramCamera& camera_;
  KeyJoin& keyJoin_;
  DiagramEdits& edits_;
};

}  // namespace zrqrybld
