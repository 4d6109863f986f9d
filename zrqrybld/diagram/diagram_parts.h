// DiagramParts: what a diagram pane is made of, each part knowing only those before it; the stage
// knows all of them.
//
// Owned by the pane.
#pragma once

#include "zrqrybld/diagram/diagram_access.h"
#include "zrqrybld/diagram/diagram_camera.h"
#include "zrqrybld/diagram/diagram_edits.h"
#include "zrqrybld/diagram/diagram_finder.h"
#include "zrqrybld/diagram/diagram_gestures.h"
#include "zrqrybld/diagram/diagram_keys.h"
#include "zrqrybld/diagram/diagram_layout.h"
#include "zrqrybld/diagram/diagram_menus.h"
#include "zrqrybld/diagram/diagram_minimap.h"
#include "zrqrybld/diagram/diagram_mouse.h"
#include "zrqrybld/diagram/diagram_pictures.h"
#include "zrqrybld/diagram/diagram_properties.h"
#include "zrqrybld/diagram/diagram_scene.h"
#include "zrqrybld/diagram/diagram_selection.h"
#include "zrqrybld/diagram/diagram_site.h"
#include "zrqrybld/diagram/diagram_stage.h"
#include "zrqrybld/diagram/diagram_walk.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/key_join.h"
#include "zrqrybld/diagram/whole_joins.h"
#include "zrqrybld/platform/text_drop.h"

namespace zrqrybld {

struct DiagramParts {
  explicit DiagramParts(DiagramSite& site)
      : stage(site, properties, scene, selection, camera, layout, keyJoin, gestures, mouse),
        entities(std::make_shared<qbEntities>(&stage)),
        scene(site),
        selection(site, scene),
        camera(site, scene),
        layout(site, *entities, camera),
        minimap(site, scene, camera),
        keyJoin(site, selection),
        edits(site, *entities, scene, selection),
        pictures(site, properties, scene, camera),
        menus{site, properties, *entities, scene, selection, camera, keyJoin, edits, layout, minimap, pictures},
        walk(site, *entities, scene, selection, camera, keyJoin, edits),
        finder(site, *entities, selection, walk),
        gestures(site, properties, *entities, scene, selection, camera, edits),
        mouse(scene, gestures, menus),
        keys(walk, finder, gestures, mouse, menus),
        drop(site.OLEDragOver, site.OLEDragDrop),
        access(scene, walk, menus) {}
  DiagramParts(const DiagramParts&) = delete;
  DiagramParts& operator=(const DiagramParts&) = delete;
  /// Handles may outlive the pane: the tables let go of the stage.
  ~DiagramParts() { entities->Detach(); }

  DiagramStage stage;  // which the model knows, and which uses the others only when the model asks
  const Ref<qbEntities> entities;
  DiagramProperties properties;
  DiagramScene scene;
  DiagramSelection selection;
  DiagramCamera camera;
  DiagramLayout layout;
  DiagramMinimap minimap;
  KeyJoin keyJoin;
  DiagramEdits edits;
  DiagramPictures pictures;
  const DiagramMenuTargets menus;
  DiagramWalk walk;
  DiagramFinder finder;
  DiagramGestures gestures;
  DiagramMouse mouse;
  DiagramKeys keys;
  TextDrop drop;
  DiagramAccess access;
  Ref<qbWholeJoins> wholeJoins;  // made with the pane, which they link to
};

}  // namespace zrqrybld
