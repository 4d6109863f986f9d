// The pane's view: scrolling, zoom, arranging, pictures.
#include <algorithm>
#include <cmath>
#include <string>
#include <unordered_map>

#include "base/error.h"
#include "base/file.h"
#include "base/text.h"
#include "base/texts_diagram.h"
#include "diagram/arrange.h"
#include "diagram/diagram_pane.h"
#include "diagram/relationships.h"
#include "platform/svg_canvas.h"

namespace zrqrybld {
namespace {

constexpr double kSmallestZoom = 0.25;
constexpr double kLargestZoom = 4;
constexpr int kScrollStep = 24;
constexpr Pixels kArrangeColumnGap = 56_px;
constexpr Pixels kArrangeRowGap = 24_px;

}  // namespace

// --- Places ---

PixelPoint qbDiagramPane::Origin() const {
  return {kSurfaceMargin * zoom_ - Pixels(horizontal_.value), kSurfaceMargin * zoom_ - Pixels(vertical_.value)};
}

PixelPoint qbDiagramPane::ToSurface(PixelPoint point) const {
  const PixelPoint moved = point - Origin();
  return {moved.x / zoom_, moved.y / zoom_};
}

PixelRect qbDiagramPane::ToPane(const PixelRect& onSurface) const {
  const PixelPoint origin = Origin();
  return {origin.x + onSurface.left * zoom_, origin.y + onSurface.top * zoom_, onSurface.width * zoom_,
          onSurface.height * zoom_};
}

PixelRect qbDiagramPane::PlaceOf(const qbEntityList& box) const {
  return ToPane(GetSurface().Scale().ToPixels(box.Bounds()));
}

PixelSize qbDiagramPane::ExtentOfBoxes() const {
  const std::optional<TwipsPoint> reach = places_.Reach();
  if (!reach) return {};
  const ScreenScale scale = GetSurface().Scale();
  const auto withMargin = [](Pixels edge) { return std::max(edge + kSurfaceMargin * 2, 0_px); };
  return {withMargin(scale.PixelsX(reach->x)), withMargin(scale.PixelsY(reach->y))};
}

// --- Scrolling ---

void qbDiagramPane::UpdateScrollBars() {
  const PixelSize view = GetSurface().ViewSize();
  const PixelSize extent = ExtentOfBoxes();
  const auto update = [&](Orientation orientation, ScrollState& bar, Pixels visible, Pixels whole) {
    bar.page = static_cast<int>(visible.Value());
    bar.step = kScrollStep;
    bar.maximum = std::max(0, static_cast<int>(std::ceil((whole * zoom_ - visible).Value())));
    bar.value = std::clamp(bar.value, 0, bar.maximum);
    GetSurface().SetScrollBar(orientation, bar);
  };
  update(Orientation::Horizontal, horizontal_, view.width, extent.width);
  update(Orientation::Vertical, vertical_, view.height, extent.height);
}

void qbDiagramPane::OnResize() {
  UpdateScrollBars();
  Refresh();
}

void qbDiagramPane::OnScroll(Orientation orientation, int value) {
  ScrollState& bar = orientation == Orientation::Horizontal ? horizontal_ : vertical_;
  bar.value = std::clamp(value, 0, bar.maximum);
  Refresh();
}

void qbDiagramPane::ScrollBy(Orientation orientation, int delta) {
  ScrollState& bar = orientation == Orientation::Horizontal ? horizontal_ : vertical_;
  OnScroll(orientation, bar.value + delta);
  GetSurface().SetScrollBar(orientation, bar);
}

void qbDiagramPane::ScrollIntoView(const PixelRect& onSurface) {
  const PixelRect place = ToPane(onSurface);
  const PixelSize view = GetSurface().ViewSize();
  const auto shift = [](Pixels begin, Pixels end, Pixels size) {
    if (begin < 0_px || end - begin > size) return static_cast<int>(std::floor(begin.Value()));
    return end > size ? static_cast<int>(std::ceil((end - size).Value())) : 0;
  };
  if (const int x = shift(place.left, place.Right(), view.width)) ScrollBy(Orientation::Horizontal, x);
  if (const int y = shift(place.top, place.Bottom(), view.height)) ScrollBy(Orientation::Vertical, y);
}

// --- Zoom ---

void qbDiagramPane::SetZoom(double zoom, PixelPoint about) {
  if (!(zoom >= kSmallestZoom)) zoom = kSmallestZoom;
  zoom = std::min(zoom, kLargestZoom);
  if (zoom == zoom_) return;
  const PixelPoint held = ToSurface(about);
  zoom_ = zoom;
  UpdateScrollBars();
  const PixelRect now = ToPane({held.x, held.y, {}, {}});
  ScrollBy(Orientation::Horizontal, static_cast<int>(std::round((now.left - about.x).Value())));
  ScrollBy(Orientation::Vertical, static_cast<int>(std::round((now.top - about.y).Value())));
  Refresh();
}

void qbDiagramPane::ZoomToFit() {
  const PixelSize extent = ExtentOfBoxes();
  const PixelSize view = GetSurface().ViewSize();
  if (extent.width <= 0_px || extent.height <= 0_px) return;
  SetZoom(std::min({1.0, view.width / extent.width, view.height / extent.height}), {});
  OnScroll(Orientation::Horizontal, 0);
  OnScroll(Orientation::Vertical, 0);
  UpdateScrollBars();
}

// --- Arranging ---

void qbDiagramPane::Arrange() {
  const StepScope step(Context(), kStepArrange);
  std::unordered_map<const qbEntityList*, std::size_t> positions;
  std::vector<Ref<qbEntityList>> boxes;
  std::vector<TwipsSize> sizes;
  for (std::int32_t i = 1; i <= entities_->Count(); ++i) {
    const Ref<qbEntityList>& box = boxes.emplace_back(entities_->Item(i)->EntityBox());
    positions.emplace(box.get(), sizes.size());
    sizes.push_back({box->Bounds().width, box->Bounds().height});
  }
  std::vector<BoxLink> links;
  for (std::int32_t i = 1; i <= entities_->Count(); ++i) {
    const Ref<qbEntity> entity = entities_->Item(i);
    for (std::int32_t j = 1; j <= entity->Relationships()->Count(); ++j) {
      const Ref<qbEntity> target = entity->Relationships()->Item(j)->Target();
      if (target) links.push_back({positions.at(entity->EntityBox().get()), positions.at(target->EntityBox().get())});
    }
  }
  const ScreenScale scale = GetSurface().Scale();
  const ArrangeRules rules{scale.TwipsX(kArrangeColumnGap), scale.TwipsY(kArrangeRowGap),
                           scale.TwipsX(GetSurface().ViewSize().width / zoom_ - kSurfaceMargin * 2)};
  const std::vector<TwipsPoint> places = ArrangeBoxes(sizes, links, rules);
  WholeOrNothing(Context(), [&] {
    for (std::size_t i = 0; i < boxes.size(); ++i) {
      boxes[i]->SetBounds({places[i].x, places[i].y, sizes[i].width, sizes[i].height});
    }
  });
}

// --- Pictures ---

PixelSize qbDiagramPane::PictureSize() const {
  const PixelSize extent = ExtentOfBoxes();
  constexpr Pixels kSmallest = 64_px;
  return {std::max(extent.width, kSmallest), std::max(extent.height, kSmallest)};
}

void qbDiagramPane::PaintPicture(Canvas& canvas) const {
  const PixelSize size = PictureSize();
  canvas.FillRect({{}, {}, size.width, size.height},
                  backColor_ == Color::System(12) ? Ink(ColorRole::Surface) : Ink(backColor_));
  const ViewScope view(canvas, {kSurfaceMargin, kSurfaceMargin}, 1);
  PaintDiagram(canvas, {-kSurfaceMargin, -kSurfaceMargin, size.width, size.height}, false);
}

std::string qbDiagramPane::PictureSvg() const {
  SvgCanvas canvas(PictureSize());
  PaintPicture(canvas);
  return canvas.Picture();
}

void qbDiagramPane::SavePicture(const std::string& path) const {
  if (!FoldCase(path).ends_with(".svg")) {
    GetSurface().SavePng({PictureSize(), [this](Canvas& canvas) { PaintPicture(canvas); }}, path);
    return;
  }
  const Ref<QueryContext> context = Context();
  if (context) {
    WriteWholeFile(path, PictureSvg(), context->GetToolkit().Files());
  } else {
    WriteWholeFile(path, PictureSvg());
  }
}

void qbDiagramPane::AskToSavePicture() {
  const Ref<QueryContext> context = Context();
  if (!context) return;
  Dialogs& dialogs = context->GetToolkit().GetDialogs();
  const std::string path =
      dialogs.ShowSaveFile({context->Say(text::SavePictureCaption),
                            context->Say(text::PictureFileName),
                            {{context->Say(text::PngPictures), "png"}, {context->Say(text::SvgPictures), "svg"}}});
  if (path.empty()) return;
  try {
    SavePicture(path);
  } catch (const Error& error) {
    dialogs.ShowMessage(context->Say(error), MessageIcon::Critical);
  }
}

bool qbDiagramPane::CopyPicture() const {
  return GetSurface().CopyPicture({PictureSize(), [this](Canvas& canvas) { PaintPicture(canvas); }});
}

}  // namespace zrqrybld
