// qbWholeJoin: the relationships between the same two entities: what a person takes for one join.
//
// The diagram makes one with the first relationship between two entities, whichever way that runs, and lets go of it
// with the last. A relationship stays one pair of columns; the kind of the first one is that of the whole.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "zrqrybld/base/collection.h"
#include "zrqrybld/base/export.h"
#include "zrqrybld/base/object.h"
#include "zrqrybld/base/ordered_list.h"
#include "zrqrybld/diagram/relationship.h"
#include "zrqrybld/sql/join_kind.h"

namespace zrqrybld {

class DiagramSite;
class qbEntity;

/// Once its last relationship was removed it has none any more, and its source and target are nothing.
class ZRQRYBLD_API qbWholeJoin final : public Object {
 public:
  std::string_view TypeName() const override { return "qbWholeJoin"; }

  /// The entity where the first relationship starts.
  Ref<qbEntity> Source() const;
  /// The entity where it ends.
  Ref<qbEntity> Target() const;

  /// The kind of join in the direction of the first relationship, `JoinKindFlag` bits. Setting it sets the kind and the
  /// signs of all relationships, each in its own direction, and writes the statement, as one step; other bits are
  /// ignored.
  std::int32_t ItemData() const { return Kind().Bits(); }
  void SetItemData(std::int32_t kind);

  /// Which table is only asked about, in the direction of the first relationship. Setting it is one step, as above.
  JoinExistenceEnum Existence() const { return Kind().existence; }
  void SetExistence(JoinExistenceEnum existence);

  /// How many relationships there are.
  std::int32_t Count() const { return static_cast<std::int32_t>(drawn_.Count()); }
  /// The relationship at a position from 1: those that start at the entity that stands later in the diagram come first,
  /// as conditions do in the statement. Error 9 when there is none.
  Ref<qbRelationship> Item(const Variant& index) const;
  /// Walks them in that order, for a range-based loop.
  CollectionIterator<qbWholeJoin> begin() const { return CollectionIterator(*this); }
  std::default_sentinel_t end() const { return {}; }

  /// All pairs of columns with their comparisons, and what is asked besides, in words.
  std::string Text() const;

  /// Removes all relationships, as one step.
  void Remove();

  // --- For the model and the pane ---

  explicit qbWholeJoin(WeakRef<DiagramSite> site) : site_(std::move(site)) {}

  /// All of them in their order, and the first; none once they were removed.
  std::vector<Ref<qbRelationship>> Relationships() const;
  Ref<qbRelationship> First() const;

  /// What `ItemData` says.
  JoinKind Kind() const;
  /// The same kind as the relationship, one of these, sees it. Setting it, as one does that starts at `source`, is no
  /// step and writes nothing.
  JoinKind KindFor(const qbRelationship& join) const;
  void SetKindFrom(const Ref<qbEntity>& source, JoinKind kind);
  /// The same in the direction of the first relationship, as a step that writes the statement.
  void ChangeKind(JoinKind kind);

  /// Whether it can be said from the other end: LIKE has a side for the pattern.
  bool CanReverse() const;

  /// The relationships in the order of drawing, which the scene keeps.
  using Members = OrderedList<WeakRef<qbRelationship>>;
  const Members& Drawn() const { return drawn_; }
  Members::Mark Append(const Ref<qbRelationship>& join) { return drawn_.Append(join); }
  void Leave(Members::Mark mark) { drawn_.RemoveAt(drawn_.PositionOf(mark)); }

 private:
  WeakRef<DiagramSite> site_;
  Members drawn_;
};

}  // namespace zrqrybld
