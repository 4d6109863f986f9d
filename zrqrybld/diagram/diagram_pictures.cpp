#include "zrqrybld/diagram/diagram_pictures.h"

#include <algorithm>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/file.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_diagram.h"
#include "zrqrybld/diagram/diagram_camera.h"
#include "zrqrybld/diagram/diagram_painter.h"
#include "zrqrybld/diagram/diagram_properties.h"
#include "zrqrybld/diagram/diagram_site.h"
#include "zrqrybld/host/context_link.h"
#include "zrqrybld/host/source_context.h"
#include "zrqrybld/platform/dialogs.h"
#include "zrqrybld/platform/svg_canvas.h"
#include "zrqrybld/platform/toolkit.h"
#include "zrqrybld/platform/while_alive.h"

namespace zrqrybld {

PixelSize DiagramPictures::Size() const {
  const PixelSize extent = camera_.Extent();
  constexpr Pixels kSmallest = 64_px;
  return {std::max(extent.width, kSmallest), std::max(extent.height, kSmallest)};
}

void DiagramPictures::Paint(Canvas& canvas) const {
  const PixelSize size = Size();
  canvas.FillRect({{}, {}, size.width, size.height}, properties_.SurfaceInk());
  const ViewScope view(canvas, {kSurfaceMargin, kSurfaceMargin}, 1);
  PaintDiagram(canvas, site_, scene_, {-kSurfaceMargin, -kSurfaceMargin, size.width, size.height}, nullptr);
}

std::string DiagramPictures::Svg() const {
  SvgCanvas canvas(Size());
  Paint(canvas);
  return canvas.Picture();
}

Picture DiagramPictures::ToDraw() const {
  return {Size(), [this](Canvas& canvas) { Paint(canvas); }};
}

void DiagramPictures::Save(const std::string& path) const {
  if (!FoldCase(path).ends_with(".svg")) {
    site_.GetSurface().SavePng(ToDraw(), path);
    return;
  }
  const Ref<QueryContext> context = site_.Context();
  if (context) {
    WriteWholeFile(path, Svg(), context->source.GetToolkit().Files());
  } else {
    WriteWholeFile(path, Svg());
  }
}

void DiagramPictures::AskToSave() const {
  const Ref<QueryContext> context = site_.Context();
  if (!context) return;
  context->source.GetToolkit().GetDialogs().AskSaveFile(
      {context->source.Say(text::SavePictureCaption),
       context->source.Say(text::PictureFileName),
       {{context->source.Say(text::PngPictures), "png"}, {context->source.Say(text::SvgPictures), "svg"}}},
      WhileAlive(site_.weak_from_this(), [this](const std::string& path) { SaveOrTell(path); }));
}

void DiagramPictures::SaveOrTell(const std::string& path) const {
  const Ref<QueryContext> context = site_.Context();
  if (!context) return;  // unlinked while the window was open
  try {
    Save(path);
  } catch (const Error& error) {
    context->source.GetToolkit().GetDialogs().ShowMessage(context->source.Say(error), MessageIcon::Critical);
  }
}

bool DiagramPictures::Copy() const { return site_.GetSurface().CopyPicture(ToDraw()); }

}  // namespace zrqrybld
