// The context menus of a diagram. A host application may change each before it is shown.
#pragma once

#include <cstddef>

#include "zrqrybld/base/object.h"
#include "zrqrybld/base/units.h"

namespace zrqrybld {

class DiagramCamera;
class DiagramEdits;
class DiagramLayout;
class DiagramMinimap;
class DiagramPictures;
class DiagramScene;
class DiagramSelection;
class DiagramSite;
class KeyJoin;
struct DiagramProperties;
class qbEntities;

/// What the entries of the menus act on.
struct DiagramMenuTargets {
  DiagramSite& site;
  const DiagramProperties& properties;
  qbEntities& entities;
  const DiagramScene& scene;
  DiagramSelection& selection;
  DiagramCamera& camera;
  KeyJoin& keyJoin;
  DiagramEdits& edits;
  DiagramLayout& layout;
  DiagramMinimap& minimap;
  const DiagramPictures& pictures;
};

/// Shows the menu of an entity, a relationship or, for nothing, of the surface, which becomes the selection. `row` is
/// the entity's row that is meant, from 1, and 0 for the whole box.
void ShowContextMenu(const DiagramMenuTargets& targets, const Ref<Object>& object, std::size_t row, PixelPoint at);

/// Where a menu for the selection opens by key: below the box's caption, on the line's middle, as far as they can be
/// seen.
PixelPoint MenuPlaceOfSelection(const DiagramMenuTargets& targets);

}  // namespace zrqrybld
