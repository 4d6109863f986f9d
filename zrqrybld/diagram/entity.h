// qbEntity: one table or view in the diagram, a thin face over its box.
//
// Owned by its `qbEntities`. It owns its columns, the joins that start at it and its properties.
#pragma once

#include <cstdint>
#include <string>

#include "zrqrybld/base/export.h"
#include "zrqrybld/base/object.h"
#include "zrqrybld/base/units.h"
#include "zrqrybld/base/variant.h"
#include "zrqrybld/diagram/diagram_state.h"
#include "zrqrybld/diagram/entity_box.h"
#include "zrqrybld/diagram/entity_items.h"
#include "zrqrybld/host/properties.h"

namespace zrqrybld {

class qbEntity;
class qbRelationships;

/// What an entity asks of the collection that holds it.
class EntityOwner {
 public:
  EntityOwner() = default;
  EntityOwner(const EntityOwner&) = delete;
  EntityOwner& operator=(const EntityOwner&) = delete;
  virtual ~EntityOwner() = default;

  /// The entity's position, from 1; 0 before it is added.
  virtual std::size_t PositionOf(const qbEntity& entity) const = 0;
  /// Gives the entity another key and caption, in place. Error 457 when another entity has it, 5 for an empty one.
  virtual void Rename(qbEntity& entity, const std::string& caption) = 0;
  /// A join of one of its entities begins to ask a condition.
  virtual void NoteAsking(const Ref<qbRelationship>& join) = 0;
};

/// Once the entity was removed, `TagVariant` and `Properties` stay readable, `Items` and
/// `Relationships` are empty; what lived in its box is error 91.
class ZRQRYBLD_API qbEntity final : public Object {
 public:
  std::string_view TypeName() const override { return "qbEntity"; }

  /// What the table is called in this query; the entity's key.
  const std::string& Caption() const { return Box().Caption(); }
  /// Renames the entity. Error 457 when another entity has the caption, in any letter case; its own is
  /// never a duplicate. Error 5 for an empty one.
  void SetCaption(const std::string& caption);

  /// The picture in the caption bar; nothing shows the usual one.
  const Ref<Image>& CaptionIcon() const { return Box().CaptionIcon(); }
  void SetCaptionIcon(Ref<Image> icon) { Box().SetCaptionIcon(std::move(icon)); }

  /// The height of the box, in twips.
  float Height() const { return static_cast<float>(Box().Bounds().height.Value()); }
  void SetHeight(float twips);
  /// The left edge of the box on the surface, in twips.
  float Left() const { return static_cast<float>(Box().Bounds().left.Value()); }
  void SetLeft(float twips);
  /// The top edge of the box on the surface, in twips.
  float Top() const { return static_cast<float>(Box().Bounds().top.Value()); }
  void SetTop(float twips);
  /// The width of the box, in twips.
  float Width() const { return static_cast<float>(Box().Bounds().width.Value()); }
  void SetWidth(float twips);

  /// The position in the collection, from 1.
  std::int32_t Index() const;

  /// The columns.
  const Ref<qbEntityItems>& Items() const { return items_; }
  /// Free facts; the table picker leaves the source's facts about the table here.
  const Ref<qbProperties>& Properties() const { return properties_; }
  /// The joins that start here.
  const Ref<qbRelationships>& Relationships() const { return relationships_; }

  /// The column whose row is current in the box, or nothing.
  Ref<qbEntityItem> SelectedItem() const;
  /// Accepted and ignored: the current row is the user's.
  void SetSelectedItem(const Ref<qbEntityItem>&) {}

  /// A value of the caller's; the table's name in the data source when the table picker made the entity.
  const Variant& TagVariant() const { return tagVariant_; }
  void SetTagVariant(Variant value);

  /// The colour behind the rows; the pane's `EntityBackColor` at first.
  Color BackColor() const { return Box().BackColor(); }
  void SetBackColor(Color color) { Box().SetBackColor(color); }
  /// The colour that is to be transparent in `CaptionIcon`, when `UseCaptionIconMaskColor` says so. Only kept:
  /// pictures bring their own transparency.
  Color CaptionIconMaskColor() const { return Box().CaptionIconMaskColor(); }
  void SetCaptionIconMaskColor(Color color) { Box().SetCaptionIconMaskColor(color); }
  /// Whether `CaptionIconMaskColor` counts; False at first. Only kept, as the colour.
  bool UseCaptionIconMaskColor() const { return Box().UseCaptionIconMaskColor(); }
  void SetUseCaptionIconMaskColor(bool use) { Box().SetUseCaptionIconMaskColor(use); }
  /// Whether the caption bar offers to minimise the box; the pane's `EntityMinimizeButton` at first.
  bool ShowMinimizeButton() const { return Box().ShowMinimizeButton(); }
  void SetShowMinimizeButton(bool show) { Box().SetShowMinimizeButton(show); }

  // --- For the model and the pane ---

  /// A join that starts here begins to ask a condition.
  void NoteAsking(const Ref<qbRelationship>& join) const;

  /// How it looks and what it is, besides its columns and joins.
  EntityFacts Facts() const;
  /// What stands for the table also when it was removed; never nothing.
  const std::shared_ptr<EntityIdentity>& Identity();

  /// The box; nothing once the entity was removed.
  const Ref<qbEntityList>& EntityBox() const { return box_; }

 private:
  friend class qbEntities;
  qbEntity(Ref<qbEntityList> box, std::weak_ptr<EntityOwner> owner, Ref<qbRelationships> relationships);
  qbEntityList& Box() const;
  void Restore(const EntityFacts& facts);
  void Detach();

  Ref<qbEntityList> box_;
  std::weak_ptr<EntityOwner> owner_;
  Ref<qbEntityItems> items_ = std::make_shared<qbEntityItems>();
  Ref<qbRelationships> relationships_;
  Ref<qbProperties> properties_ = std::make_shared<qbProperties>();
  Variant tagVariant_;
  std::shared_ptr<EntityIdentity> identity_;
};

}  // namespace zrqrybld
