// DiagramSelection: what is selected in a diagram: a join, or one or several tables.
//
// One of them is the selected object; listeners hear of that one, and may remove it or select another when they do.
#pragma once

#include <cstdint>
#include <vector>

#include "zrqrybld/base/object.h"

namespace zrqrybld {

class DiagramScene;
class DiagramSite;
class qbEntities;
class qbEntity;
class qbRelationship;

class DiagramSelection {
 public:
  DiagramSelection(DiagramSite& site, DiagramScene& scene) : site_(site), scene_(scene) {}

  /// The selected object, or nothing.
  const Ref<Object>& Selected() const { return selected_; }
  /// The same as what it is; nothing when it is something else.
  Ref<qbEntity> Entity() const;
  Ref<qbRelationship> Join() const;
  /// All tables that are selected, the selected object first.
  std::vector<Ref<qbEntity>> Entities() const;
  /// Those besides the selected object.
  const std::vector<Ref<qbEntity>>& Others() const { return others_; }
  bool Contains(const Ref<Object>& object) const;

  /// Makes an entity or relationship of this diagram the selected object; nothing, or what was removed, drops the
  /// selection. Error 5 for what is in another diagram.
  void Select(const Ref<Object>& object);
  /// Leaves nothing selected.
  void Drop();
  /// The first becomes the selected object.
  void SelectGroup(std::vector<Ref<qbEntity>> group);
  /// The table becomes the selected object; the others stay selected.
  void SelectAlso(const Ref<qbEntity>& entity);
  /// The table is selected besides the others, or not any more.
  void Toggle(const Ref<qbEntity>& entity);
  /// The selected object stays when it is one of them, otherwise the first becomes it.
  void SelectAll(const qbEntities& entities);

  /// Another number after each time that another object was selected.
  std::uint64_t Revision() const { return revision_; }

  // --- While the diagram changes ---

  /// Tables may have been removed.
  void ForgetRemoved();
  /// Takes the selected object away without a word, until `PutBack`.
  Ref<Object> PutAside();
  /// It is selected as before, or its listeners are told of the end when it is gone.
  void PutBack(const Ref<Object>& object);

 private:
  void ShowSelectedLine();

  DiagramSite& site_;
  DiagramScene& scene_;
  Ref<Object> selected_;
  std::vector<Ref<qbEntity>> others_;  // besides `selected_`, which is an entity then
  Ref<Object> leaving_;                // the object whose listeners are being told that it is not selected any more
  std::uint64_t revision_ = 0;
};

}  // namespace zrqrybld
