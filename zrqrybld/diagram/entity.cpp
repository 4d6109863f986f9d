#include "zrqrybld/diagram/entity.h"

#include "zrqrybld/base/error.h"

namespace zrqrybld {

qbEntity::qbEntity(Ref<qbEntityList> box, std::weak_ptr<EntityOwner> owner, Ref<qbRelationships> relationships)
    : box_(std::move(box)), owner_(std::move(owner)), relationships_(std::move(relationships)) {
  items_->SetRows(&box_->Rows());
}

qbEntityList& qbEntity::Box() const {
  if (!box_) ThrowObjectRemoved();
  return *box_;
}

void qbEntity::Detach() {
  items_->DetachRows();
  box_->SetEntity(nullptr);
  box_->onTouched = nullptr;
  box_ = nullptr;
  owner_.reset();
}

EntityFacts qbEntity::Facts() const {
  const qbEntityList& box = Box();
  return {box.Caption(),
          tagVariant_,
          box.Shape(),
          box.IsView(),
          box.IsQuery(),
          box.CaptionIcon(),
          box.CaptionIconMaskColor(),
          box.UseCaptionIconMaskColor(),
          box.BackColor(),
          box.ShowMinimizeButton(),
          properties_};
}

const std::shared_ptr<EntityIdentity>& qbEntity::Identity() {
  if (!identity_) {
    identity_ = std::make_shared<EntityIdentity>();
    identity_->live = RefTo(*this);
  }
  return identity_;
}

// All but the caption, which is a key of the collection.
void qbEntity::Restore(const EntityFacts& facts) {
  qbEntityList& box = Box();
  SetTagVariant(facts.tag);
  properties_ = facts.properties;
  box.SetIsView(facts.isView);
  box.SetIsQuery(facts.isQuery);
  box.SetCaptionIcon(facts.captionIcon);
  box.SetCaptionIconMaskColor(facts.iconMaskColor);
  box.SetUseCaptionIconMaskColor(facts.useIconMaskColor);
  box.SetBackColor(facts.backColor);
  box.SetShowMinimizeButton(facts.showMinimizeButton);
  box.SetShape(facts.shape);
}

void qbEntity::SetTagVariant(Variant value) {
  tagVariant_ = std::move(value);
  if (box_) box_->Touch();
}

void qbEntity::NoteAsking(const Ref<qbRelationship>& join) const {
  if (const auto owner = owner_.lock()) owner->NoteAsking(join);
}

void qbEntity::SetCaption(const std::string& caption) {
  qbEntityList& box = Box();
  const auto owner = owner_.lock();
  if (owner && owner->PositionOf(*this) != 0) {
    owner->Rename(*this, caption);
  } else {
    box.SetCaption(caption);
  }
}

void qbEntity::SetHeight(float twips) {
  TwipsRect bounds = Box().Bounds();
  bounds.height = Twips(static_cast<double>(twips));
  Box().SetBounds(bounds);
}

void qbEntity::SetLeft(float twips) {
  TwipsRect bounds = Box().Bounds();
  bounds.left = Twips(static_cast<double>(twips));
  Box().SetBounds(bounds);
}

void qbEntity::SetTop(float twips) {
  TwipsRect bounds = Box().Bounds();
  bounds.top = Twips(static_cast<double>(twips));
  Box().SetBounds(bounds);
}

void qbEntity::SetWidth(float twips) {
  TwipsRect bounds = Box().Bounds();
  bounds.width = Twips(static_cast<double>(twips));
  Box().SetBounds(bounds);
}

std::int32_t qbEntity::Index() const {
  const auto owner = owner_.lock();
  if (!owner) ThrowObjectRemoved();
  return static_cast<std::int32_t>(owner->PositionOf(*this));
}

Ref<qbEntityItem> qbEntity::SelectedItem() const {
  return items_->Item(static_cast<std::int32_t>(Box().SelectedRow()));
}

}  // namespace zrqrybld
