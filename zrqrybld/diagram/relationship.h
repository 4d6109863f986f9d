// qbRelationship: one join between a column of one entity and a column of another.
//
// Held by the `Relationships` of its source; it owns the line that draws it.
#pragma once

#include <cstdint>
#include <memory>

#include "zrqrybld/base/export.h"
#include "zrqrybld/base/keyed_list.h"
#include "zrqrybld/base/object.h"
#include "zrqrybld/base/variant.h"
#include "zrqrybld/diagram/join_facts.h"
#include "zrqrybld/platform/image.h"
#include "zrqrybld/sql/join_kind.h"
#include "zrqrybld/sql/join_limits.h"

namespace zrqrybld {

class qbEntity;
class qbEntityItem;
class qbLine;
class qbRelationship;

/// What a relationship asks of the collection that holds it.
class RelationshipOwner {
 public:
  RelationshipOwner() = default;
  RelationshipOwner(const RelationshipOwner&) = delete;
  RelationshipOwner& operator=(const RelationshipOwner&) = delete;
  virtual ~RelationshipOwner() = default;

  /// The relationship's position, from 1.
  virtual std::size_t PositionOf(const qbRelationship& relationship) const = 0;
};

/// Once the relationship was removed, `ItemData` and the item indexes stay readable, `Source` and
/// `Target` are nothing, and `Index` is error 91.
class ZRQRYBLD_API qbRelationship final : public Object {
 public:
  std::string_view TypeName() const override { return "qbRelationship"; }

  /// The position in the source's `Relationships`, from 1.
  std::int32_t Index() const;

  /// The kind of join: `JoinKindFlag` bits; Empty counts as 0.
  const Variant& ItemData() const { return facts_.itemData; }
  void SetItemData(Variant value);

  /// A picture for the source's end, shown while `LeftIndicator` is `IndicatorImage`. Without one the line draws its
  /// own marks, from the kind of join.
  const Ref<Image>& LeftPicture() const { return facts_.leftPicture; }
  void SetLeftPicture(Ref<Image> picture) { Changing().leftPicture = std::move(picture); }

  /// The entity where the join starts.
  Ref<qbEntity> Source() const { return source_.lock(); }
  /// The joined column of `Source`: its position from 1, or its key. Empty until set.
  const Variant& SourceItemIndex() const { return facts_.sourceItemIndex; }
  void SetSourceItemIndex(Variant index);

  /// The entity where the join ends.
  Ref<qbEntity> Target() const { return target_.lock(); }
  /// The joined column of `Target`: its position from 1, or its key. Empty until set.
  const Variant& TargetItemIndex() const { return facts_.targetItemIndex; }
  void SetTargetItemIndex(Variant index);

  /// Whether the source's end bears a mark; none at first. Setting it redraws the line.
  RelationshipIndicatorStyle LeftIndicator() const { return facts_.leftIndicator; }
  void SetLeftIndicator(RelationshipIndicatorStyle style);
  /// Whether the target's end bears a mark; none at first. Setting it redraws the line.
  RelationshipIndicatorStyle RightIndicator() const { return facts_.rightIndicator; }
  void SetRightIndicator(RelationshipIndicatorStyle style);

  /// A picture for the target's end, as above.
  const Ref<Image>& RightPicture() const { return facts_.rightPicture; }
  void SetRightPicture(Ref<Image> picture) { Changing().rightPicture = std::move(picture); }

  /// How the two columns are compared, the source's first; equality at first. A number that is none counts as equality.
  JoinComparisonEnum Comparison() const { return facts_.comparison; }
  void SetComparison(JoinComparisonEnum comparison);

  /// What the join asks besides the comparison of its columns: a condition over the two tables and those joined before
  /// them, as it stands in ON; "" for nothing. It is kept on one line, without comments, and alternatives in
  /// parentheses. Error 40002 with the place for a text that is no condition.
  const std::string& Condition() const { return facts_.condition; }
  void SetCondition(std::string_view typed);

  /// The largest group level.
  static constexpr std::int32_t kDeepestGroup = kDeepestJoinGroup;

  /// In how many groups the join stands; 0 at first. Tables that joins of level 1 and more hold together are joined
  /// first, in parentheses, and what is joined to one of them is joined to all: so they are there or missing together.
  /// Negative numbers count as 0, larger ones than `kDeepestGroup` as that.
  std::int32_t GroupLevel() const { return facts_.groupLevel; }
  void SetGroupLevel(std::int32_t level);

  /// Whether one of the two tables is only asked about: it returns no rows and no columns, but decides which rows of
  /// the other come back, those for which it has a row that fits or those for which it has none. Then `ItemData` says
  /// nothing. Both return rows at first, and for a number that names nothing.
  JoinExistenceEnum Existence() const { return facts_.existence; }
  void SetExistence(JoinExistenceEnum existence);

  // --- For the model and the pane ---

  /// The joined columns; nothing when the index is not set or names none.
  Ref<qbEntityItem> SourceItem() const;
  Ref<qbEntityItem> TargetItem() const;

  /// What `Existence` says, otherwise `ItemData`; matching rows only when that holds no number.
  JoinKind Kind() const;

  /// What the join says, besides its ends.
  const JoinFacts& Facts() const { return facts_; }
  /// What stands for the join also when it was removed; never nothing.
  const std::shared_ptr<JoinIdentity>& Identity();

  /// The line that draws the join; nothing once it was removed.
  const Ref<qbLine>& Line() const { return line_; }

 private:
  friend class qbRelationships;
  qbRelationship(const Ref<qbEntity>& source, const Ref<qbEntity>& target, std::weak_ptr<RelationshipOwner> owner)
      : source_(source), target_(target), owner_(std::move(owner)) {}
  void Detach();
  JoinFacts& Changing();
  void NotifyWhenComplete();
  void NoteAsking(bool will);
  void Restore(const JoinFacts& facts);
  void NotifyEnd(const Ref<qbEntity>& end);
  void RedrawEnds();

  WeakRef<qbEntity> source_;
  WeakRef<qbEntity> target_;
  std::weak_ptr<RelationshipOwner> owner_;
  KeyedList<Ref<qbRelationship>>::Mark mark_ = nullptr;  // among the joins of `owner_`
  Ref<qbLine> line_;
  JoinFacts facts_;
  std::shared_ptr<JoinIdentity> identity_;
};

}  // namespace zrqrybld
