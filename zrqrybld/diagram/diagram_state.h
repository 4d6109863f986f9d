// What the diagram holds at a moment, as values: what undo remembers.
//
// A state is a list of tables in their order. Moments share what did not change between them, so that comparing two
// states is comparing pointers. An identity stands for a table, or a join, across its removal and return.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "zrqrybld/base/object.h"
#include "zrqrybld/base/units.h"
#include "zrqrybld/base/variant.h"
#include "zrqrybld/diagram/box_rows.h"
#include "zrqrybld/diagram/box_shape.h"
#include "zrqrybld/diagram/join_facts.h"
#include "zrqrybld/host/properties.h"
#include "zrqrybld/platform/image.h"

namespace zrqrybld {

class qbEntity;

/// A table of the diagram, also while it is not there.
struct EntityIdentity {
  WeakRef<qbEntity> live;               ///< nothing while it is removed
  std::uint64_t rowsSeen = UINT64_MAX;  ///< the revision of the box's rows that the last state shows
};

/// A column of a box, without its tick. Its bag of properties is the caller's and comes back as it is.
struct ItemState {
  std::string text;
  std::string key;
  bool bold = false;
  zrqrybld::Color color;
  Variant smallIcon;
  TypeKind kind = TypeKind::None;
  std::string toolTip;
  Ref<qbProperties> properties;
  friend bool operator==(const ItemState&, const ItemState&) = default;
};

struct JoinState {
  std::shared_ptr<JoinIdentity> identity;
  std::shared_ptr<EntityIdentity> target;
  JoinFacts facts;
  friend bool operator==(const JoinState&, const JoinState&) = default;
};

/// How a table looks and what it is, besides its columns and joins.
struct EntityFacts {
  std::string caption;
  Variant tag;
  BoxShape shape;
  bool isView = false;
  bool isQuery = false;
  Ref<Image> captionIcon;
  Color iconMaskColor;
  bool useIconMaskColor = false;
  Color backColor;
  bool showMinimizeButton = true;
  Ref<qbProperties> properties;
  friend bool operator==(const EntityFacts&, const EntityFacts&) = default;
};

struct EntityState {
  std::shared_ptr<EntityIdentity> identity;
  EntityFacts facts;
  std::shared_ptr<const std::vector<ItemState>> items;
  std::vector<bool> ticks;
  std::vector<JoinState> joins;
};

/// The tables in their order.
using DiagramState = std::vector<std::shared_ptr<const EntityState>>;

/// How much memory the state takes that `other`, which may be nothing, does not share; roughly, in bytes.
std::size_t SizeOf(const EntityState& state, const EntityState* other);

}  // namespace zrqrybld
