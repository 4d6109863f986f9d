// DiagramCamera: which part of the diagram's surface the pane shows, and how large.
//
// A point of the surface, in pixels at 100 %, stands at `Origin() + point * Zoom()` of the pane.
#pragma once

#include "zrqrybld/base/units.h"
#include "zrqrybld/diagram/diagram_scene.h"
#include "zrqrybld/diagram/diagram_site.h"
#include "zrqrybld/platform/scroller.h"

namespace zrqrybld {

/// So near the pane's edges, or those of a list, a drag scrolls.
inline constexpr Pixels kAutoScrollZone = 20_px;

class DiagramCamera {
 public:
  DiagramCamera(DiagramSite& site, const DiagramScene& scene) : site_(site), scene_(scene) {}

  // --- Places ---

  /// Where the surface's top left corner stands on the pane.
  PixelPoint Origin() const;
  PixelPoint ToSurface(PixelPoint onPane) const;
  PixelRect ToPane(const PixelRect& onSurface) const;
  /// Where a box stands on the pane.
  PixelRect PlaceOf(const qbEntityList& box) const;
  /// What lies under a point of the pane. A box that shows its name only is a caption all over.
  DiagramHit HitTest(PixelPoint onPane) const;

  /// How far the boxes reach, margins included, at 100 %; nothing without boxes.
  PixelSize Extent() const;
  /// The part of the surface that is seen.
  PixelRect Visible() const;
  /// The width of the surface that the pane has room for, without margins.
  Pixels VisibleWidth() const;
  /// How far down the surface can be scrolled into view.
  Pixels ReachableHeight() const;

  // --- Scrolling ---

  const ScrollState& Bar(Orientation orientation) const { return scroller_.Bar(orientation); }
  /// The pane or what it shows has another size.
  void UpdateScrollBars();
  /// The user has moved a bar.
  void ScrollTo(Orientation orientation, int value);
  void ScrollBy(Orientation orientation, int delta);
  /// So that the point of the surface stands in the middle of the pane, as far as it goes.
  void CenterOn(PixelPoint onSurface);
  /// As far as needed, so that the area is seen; its top left corner where it is too large.
  void ScrollIntoView(const PixelRect& onSurface);
  void ScrollIntoView(const qbEntityList& box);
  /// A little, when a drag comes near an edge of the pane.
  void ScrollNearEdges(PixelPoint onPane);

  // --- Zoom ---

  /// 1 at first.
  double Zoom() const { return zoom_; }
  /// Enlarges about a point of the pane, which stays where it is; values beyond the limits count as the limit.
  void SetZoom(double zoom, PixelPoint about);
  /// Whether boxes are so small that only their names are shown.
  bool NamesOnly() const { return zoom_ < kNamesOnly; }
  /// To 100 %, with the box in the middle of the pane.
  void ZoomInto(const qbEntityList& box);
  /// So that all boxes are visible; never beyond 100 %.
  void ZoomToFit();

 private:
  static constexpr double kNamesOnly = 0.5;

  double FittingZoom() const;

  DiagramSite& site_;
  const DiagramScene& scene_;
  Scroller scroller_;
  double zoom_ = 1;
};

}  // namespace zrqrybld
