// KeyJoin: a join that is drawn by keyboard: from a column of one box to the current column of another.
#pragma once

#include <optional>
#include <string>

#include "zrqrybld/base/object.h"

namespace zrqrybld {

class BoxRow;
class DiagramSelection;
class DiagramSite;
class qbEntityList;

class KeyJoin {
 public:
  /// Where it begins. The row itself is kept: others may come and go meanwhile.
  struct Start {
    Ref<qbEntityList> box;
    Ref<BoxRow> row;
  };

  KeyJoin(DiagramSite& site, const DiagramSelection& selection) : site_(site), selection_(selection) {}

  /// Begins at the current column of the selected entity. Returns whether a join may begin there.
  bool Begin();
  /// Returns whether there was one.
  bool End();
  /// Nothing while no join is drawn.
  const std::optional<Start>& Drawn() const { return start_; }
  /// Whether the join that is drawn may end at the current column of the selected entity.
  bool HasTarget() const;
  /// The box goes away, and with it a join that begins there.
  void Forget(const Ref<qbEntityList>& box);

 private:
  DiagramSite& site_;
  const DiagramSelection& selection_;
  std::optional<Start> start_;
};

}  // namespace zrqrybld
