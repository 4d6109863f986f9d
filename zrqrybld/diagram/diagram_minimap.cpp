#include "zrqrybld/diagram/diagram_minimap.h"

#include <algorithm>

#include "zrqrybld/diagram/diagram_camera.h"
#include "zrqrybld/diagram/diagram_scene.h"
#include "zrqrybld/diagram/diagram_selection.h"
#include "zrqrybld/diagram/diagram_site.h"
#include "zrqrybld/platform/canvas.h"

namespace zrqrybld {
namespace {

constexpr Pixels kFromCorner = 12_px;
constexpr Pixels kWidest = 200_px;
constexpr Pixels kHighest = 140_px;
constexpr Pixels kLeastView = 200_px;
constexpr double kShareOfView = 3;  // no more than a third of the pane
constexpr Pixels kSmallestBox = 2_px;

}  // namespace

void DiagramMinimap::Show(bool shown) {
  shown_ = shown;
  site_.Refresh();
}

std::optional<PixelRect> DiagramMinimap::Place() const {
  const PixelSize view = site_.GetSurface().ViewSize();
  const PixelSize extent = camera_.Extent();
  const double zoom = camera_.Zoom();
  const bool allSeen = extent.width * zoom <= view.width && extent.height * zoom <= view.height;
  if (!shown_ || allSeen || view.width < kLeastView || view.height < kLeastView) return std::nullopt;
  const PixelSize room{std::min(kWidest, view.width / kShareOfView), std::min(kHighest, view.height / kShareOfView)};
  const double scale = std::min(room.width / extent.width, room.height / extent.height);
  const PixelSize size{std::max(extent.width * scale, kFromCorner), std::max(extent.height * scale, kFromCorner)};
  return PixelRect{view.width - size.width - kFromCorner, view.height - size.height - kFromCorner, size.width,
                   size.height};
}

bool DiagramMinimap::Contains(PixelPoint onPane) const {
  const std::optional<PixelRect> place = Place();
  return place && place->Contains(onPane);
}

void DiagramMinimap::GoTo(PixelPoint onPane) {
  const std::optional<PixelRect> place = Place();
  if (!place) return;
  const PixelSize extent = camera_.Extent();
  camera_.CenterOn({extent.width * ((onPane.x - place->left) / place->width) - kSurfaceMargin,
                    extent.height * ((onPane.y - place->top) / place->height) - kSurfaceMargin});
}

void DiagramMinimap::Paint(Canvas& canvas, const DiagramSelection& selection) const {
  const std::optional<PixelRect> place = Place();
  if (!place) return;
  canvas.FillRect(place->Inset(-2_px), ColorRole::Box, 3_px);
  canvas.StrokeRect(place->Inset(-2_px), ColorRole::BoxFrame, 1_px, 3_px);
  const ClipScope clip(canvas, *place);
  const double scale = place->width / camera_.Extent().width;
  const auto toMap = [&](const PixelRect& area) {
    return PixelRect{place->left + (area.left + kSurfaceMargin) * scale,
                     place->top + (area.top + kSurfaceMargin) * scale, std::max(area.width * scale, kSmallestBox),
                     std::max(area.height * scale, kSmallestBox)};
  };
  const ScreenScale screen = site_.GetSurface().Scale();
  for (const Ref<qbEntityList>& box : scene_.Boxes()) {
    const bool selected = selection.Contains(box->Entity());
    canvas.FillRect(toMap(screen.ToPixels(box->Bounds())), selected ? ColorRole::JoinSelected : ColorRole::Join);
  }
  const PixelRect seen = toMap(camera_.Visible());
  const Pixels left = std::max(seen.left, place->left);
  const Pixels top = std::max(seen.top, place->top);
  canvas.StrokeRect(
      {left, top, std::min(seen.Right(), place->Right()) - left, std::min(seen.Bottom(), place->Bottom()) - top},
      ColorRole::Focus, 2_px);
}

}  // namespace zrqrybld
