#include "zrqrybld/diagram/diagram_camera.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "zrqrybld/diagram/diagram_site.h"

namespace zrqrybld {
namespace {

constexpr double kSmallestZoom = 0.25;  // unless even more is needed to see all boxes
constexpr double kSmallestFitting = 0.01;
constexpr double kLargestZoom = 4;
constexpr int kScrollStep = 24;
constexpr int kAutoScrollStep = 16;
constexpr Pixels kLineReach = 6_px;  // how far beside a line it is hit, at any zoom

}  // namespace

// --- Places ---

PixelPoint DiagramCamera::Origin() const {
  const PixelPoint offset = scroller_.Offset();
  return {kSurfaceMargin * zoom_ - offset.x, kSurfaceMargin * zoom_ - offset.y};
}

PixelPoint DiagramCamera::ToSurface(PixelPoint onPane) const {
  const PixelPoint moved = onPane - Origin();
  return {moved.x / zoom_, moved.y / zoom_};
}

PixelRect DiagramCamera::ToPane(const PixelRect& onSurface) const {
  const PixelPoint origin = Origin();
  return {origin.x + onSurface.left * zoom_, origin.y + onSurface.top * zoom_, onSurface.width * zoom_,
          onSurface.height * zoom_};
}

PixelRect DiagramCamera::PlaceOf(const qbEntityList& box) const {
  return ToPane(site_.GetSurface().Scale().ToPixels(box.Bounds()));
}

DiagramHit DiagramCamera::HitTest(PixelPoint onPane) const {
  DiagramHit hit = scene_.HitTest(ToSurface(onPane), kLineReach / zoom_);
  if (hit.box && NamesOnly()) hit.part = {BoxPart::Caption};
  return hit;
}

PixelSize DiagramCamera::Extent() const {
  const std::optional<TwipsPoint> reach = scene_.Reach();
  if (!reach) return {};
  const ScreenScale scale = site_.GetSurface().Scale();
  const auto withMargin = [](Pixels edge) { return std::max(edge + kSurfaceMargin * 2, 0_px); };
  return {withMargin(scale.PixelsX(reach->x)), withMargin(scale.PixelsY(reach->y))};
}

PixelRect DiagramCamera::Visible() const {
  const PixelPoint corner = ToSurface({});
  const PixelSize view = site_.GetSurface().ViewSize();
  return {corner.x, corner.y, view.width / zoom_, view.height / zoom_};
}

Pixels DiagramCamera::VisibleWidth() const { return site_.GetSurface().ViewSize().width / zoom_ - kSurfaceMargin * 2; }

Pixels DiagramCamera::ReachableHeight() const {
  const ScrollState& bar = Bar(Orientation::Vertical);
  return Pixels(bar.maximum + bar.page) / zoom_;
}

// --- Scrolling ---

void DiagramCamera::UpdateScrollBars() {
  Surface& surface = site_.GetSurface();
  const PixelSize view = surface.ViewSize();
  const PixelSize extent = Extent();
  scroller_.SetRange(surface, Orientation::Horizontal, view.width, extent.width * zoom_, kScrollStep);
  scroller_.SetRange(surface, Orientation::Vertical, view.height, extent.height * zoom_, kScrollStep);
}

void DiagramCamera::ScrollTo(Orientation orientation, int value) {
  scroller_.ScrollTo(orientation, value);
  site_.Refresh();
}

void DiagramCamera::ScrollBy(Orientation orientation, int delta) {
  ScrollTo(orientation, Bar(orientation).value + delta);
  scroller_.Show(site_.GetSurface(), orientation);
}

void DiagramCamera::CenterOn(PixelPoint onSurface) {
  const PixelRect place = ToPane({onSurface.x, onSurface.y, {}, {}});
  const PixelSize view = site_.GetSurface().ViewSize();
  ScrollBy(Orientation::Horizontal, static_cast<int>(std::round((place.left - view.width / 2).Value())));
  ScrollBy(Orientation::Vertical, static_cast<int>(std::round((place.top - view.height / 2).Value())));
}

void DiagramCamera::ScrollIntoView(const PixelRect& onSurface) {
  const PixelRect place = ToPane(onSurface);
  const PixelSize view = site_.GetSurface().ViewSize();
  const auto shift = [](Pixels begin, Pixels end, Pixels size) {
    if (begin < 0_px || end - begin > size) return static_cast<int>(std::floor(begin.Value()));
    return end > size ? static_cast<int>(std::ceil((end - size).Value())) : 0;
  };
  if (const int x = shift(place.left, place.Right(), view.width)) ScrollBy(Orientation::Horizontal, x);
  if (const int y = shift(place.top, place.Bottom(), view.height)) ScrollBy(Orientation::Vertical, y);
}

void DiagramCamera::ScrollIntoView(const qbEntityList& box) {
  ScrollIntoView(site_.GetSurface().Scale().ToPixels(box.Bounds()));
}

void DiagramCamera::ScrollNearEdges(PixelPoint onPane) {
  Surface& surface = site_.GetSurface();
  const PixelSize view = surface.ViewSize();
  const auto towards = [&](Orientation orientation, Pixels at, Pixels size) {
    if (at >= kAutoScrollZone && at <= size - kAutoScrollZone) return;
    scroller_.ScrollTowards(orientation, at, kAutoScrollZone, size - kAutoScrollZone, kAutoScrollStep);
    scroller_.Show(surface, orientation);
    site_.Refresh();
  };
  towards(Orientation::Horizontal, onPane.x, view.width);
  towards(Orientation::Vertical, onPane.y, view.height);
}

// --- Zoom ---

void DiagramCamera::SetZoom(double zoom, PixelPoint about) {
  const double smallest = std::min(kSmallestZoom, FittingZoom());
  if (!(zoom >= smallest)) zoom = smallest;
  zoom = std::min(zoom, kLargestZoom);
  if (zoom == zoom_) return;
  const PixelPoint held = ToSurface(about);
  zoom_ = zoom;
  UpdateScrollBars();
  const PixelRect now = ToPane({held.x, held.y, {}, {}});
  ScrollBy(Orientation::Horizontal, static_cast<int>(std::round((now.left - about.x).Value())));
  ScrollBy(Orientation::Vertical, static_cast<int>(std::round((now.top - about.y).Value())));
  site_.Refresh();
}

void DiagramCamera::ZoomInto(const qbEntityList& box) {
  SetZoom(1, {});
  const PixelRect place = site_.GetSurface().Scale().ToPixels(box.Bounds());
  CenterOn({place.CenterX(), place.CenterY()});
}

double DiagramCamera::FittingZoom() const {
  const PixelSize extent = Extent();
  const PixelSize view = site_.GetSurface().ViewSize();
  if (extent.width <= 0_px || extent.height <= 0_px) return 1;
  return std::clamp(std::min(view.width / extent.width, view.height / extent.height), kSmallestFitting, 1.0);
}

void DiagramCamera::ZoomToFit() {
  if (!scene_.Reach()) return;
  SetZoom(FittingZoom(), {});
  ScrollTo(Orientation::Horizontal, 0);
  ScrollTo(Orientation::Vertical, 0);
  UpdateScrollBars();
}

}  // namespace zrqrybld
