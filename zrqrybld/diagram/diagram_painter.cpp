#include "zrqrybld/diagram/diagram_painter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <string_view>
#include <vector>

#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_diagram.h"
#include "zrqrybld/diagram/diagram_camera.h"
#include "zrqrybld/diagram/diagram_minimap.h"
#include "zrqrybld/diagram/diagram_properties.h"
#include "zrqrybld/diagram/diagram_selection.h"
#include "zrqrybld/diagram/diagram_site.h"
#include "zrqrybld/diagram/entity.h"
#include "zrqrybld/diagram/join_line.h"
#include "zrqrybld/diagram/key_join.h"
#include "zrqrybld/diagram/source_names.h"
#include "zrqrybld/host/source_context.h"
#include "zrqrybld/platform/commands.h"

namespace zrqrybld {
namespace {

constexpr Pixels kLineReach = 32_px;  // how far a line's ends and bends reach beyond its points

BoxLook LookOf(const Ref<qbEntityList>& box, const DiagramSite& site, const DiagramScene& scene, const PixelRect& place,
               const DiagramMarks* marks) {
  BoxLook look;
  look.joined = &scene.JoinedRows();
  look.asked = scene.IsAsked(*box);
  look.text = &site.GetSurface().Metrics();
  if (const Ref<qbEntity> entity = EntityOf(*box)) {
    look.schemaBytes = SchemaBytesOf(*entity);
    look.table = AliasedTable(*entity);
  }
  if (!marks) return look;
  const Ref<Object> entity = box->Entity();
  look.active = marks->selection.Contains(entity) || (marks->frame && marks->frame->Overlaps(place));
  look.focused = site.HasFocus() && entity == marks->selection.Selected();
  if (box == marks->hover.box) look.hover = marks->hover.part;
  if (marks->drag && marks->drag->target == box) look.dropRow = box->PositionOf(marks->drag->targetRow);
  look.marked = &scene.MarkedRows();
  look.nameOnly = marks->namesOnly;
  return look;
}

// From the edge of the row that is dragged to the pointer, or to the row where the join would end.
void PaintRubberLine(Canvas& canvas, const ScreenScale& scale, const DiagramGestures::DraggingRow& drag,
                     PixelPoint pointer) {
  const PixelRect box = scale.ToPixels(drag.box->Bounds());
  const bool toRight = pointer.x >= box.CenterX();
  const std::array<PixelPoint, 2> line{
      PixelPoint{toRight ? box.Right() : box.left, drag.box->LineY(drag.box->PositionOf(drag.row))}, pointer};
  const ColorRole color = drag.target ? ColorRole::JoinSelected : ColorRole::Join;
  canvas.DrawPolyline(line, color, 2_px);
  canvas.FillRect({pointer.x - 3_px, pointer.y - 3_px, 6_px, 6_px}, color, 3_px);
}

// From the row where the join begins to the current row of the selected box, while that may be its end.
void PaintKeyJoin(Canvas& canvas, const ScreenScale& scale, const KeyJoin& join, const DiagramSelection& selection) {
  const KeyJoin::Start& start = *join.Drawn();
  const PixelRect from = scale.ToPixels(start.box->Bounds());
  const Pixels y = start.box->LineY(start.box->PositionOf(start.row));
  canvas.StrokeRect(from.Inset(-3_px), ColorRole::JoinSelected, 1_px, 6_px);
  if (!join.HasTarget()) return;
  const qbEntityList& target = *selection.Entity()->EntityBox();
  const PixelRect to = scale.ToPixels(target.Bounds());
  const bool toRight = to.CenterX() >= from.CenterX();
  const std::array<PixelPoint, 2> line{PixelPoint{toRight ? from.Right() : from.left, y},
                                       PixelPoint{toRight ? to.left : to.Right(), target.LineY(target.SelectedRow())}};
  canvas.DrawPolyline(line, ColorRole::JoinSelected, 2_px);
}

// A line of text at the lower edge that says what the keys do now.
void PaintHint(Canvas& canvas, const Surface& surface, const std::string& text) {
  const PixelSize view = surface.ViewSize();
  const TextMetrics& metrics = surface.Metrics();
  const PixelSize size{metrics.TextWidth(text, {}) + 24_px, metrics.LineHeight({}) + 12_px};
  const PixelRect place{12_px, view.height - size.height - 12_px, std::min(size.width, view.width - 24_px),
                        size.height};
  canvas.FillRect(place, ColorRole::Box, 4_px);
  canvas.StrokeRect(place, ColorRole::BoxFrame, 1_px, 4_px);
  canvas.DrawText(place.Inset(12_px, 0_px), text, {ColorRole::Text});
}

// How many bytes of the text fit the width, whole characters and at least one.
std::size_t FittingBytes(std::string_view name, Pixels width, const TextMetrics& metrics, const Font& font) {
  std::size_t bytes = 0;
  for (std::size_t count = 1; bytes < name.size(); ++count) {
    const std::size_t more = FirstCharacters(name, count).size();
    if (bytes != 0 && metrics.TextWidth(name.substr(0, more), font) > width) break;
    bytes = more;
  }
  return bytes;
}

// The name in lines that fit the width, broken where its parts begin or, when `anywhere`, where it must; the last one
// holds the rest.
std::vector<std::string_view> LinesOfName(std::string_view name, Pixels width, std::size_t most,
                                          const TextMetrics& text, const Font& font, bool anywhere) {
  const auto partEnds = [&](std::size_t at) {
    const auto is = [&](std::size_t place, char from, char to) { return name[place] >= from && name[place] <= to; };
    return std::string_view(" _.-").find(name[at]) != std::string_view::npos ||
           (is(at, 'a', 'z') && is(at + 1, 'A', 'Z'));
  };
  std::vector<std::string_view> lines;
  while (lines.size() + 1 < most && text.TextWidth(name, font) > width) {
    std::size_t taken = 0;
    for (std::size_t at = 0; at + 1 < name.size(); ++at) {
      if (!partEnds(at)) continue;
      if (taken != 0 && text.TextWidth(name.substr(0, at + 1), font) > width) break;
      taken = at + 1;
    }
    const bool tooWide = taken == 0 || text.TextWidth(name.substr(0, taken), font) > width;
    if (anywhere && tooWide) taken = FittingBytes(name, width, text, font);
    if (taken == 0) break;
    lines.push_back(name.substr(0, taken));
    name.remove_prefix(taken);
  }
  lines.push_back(name);
  return lines;
}

// The names of the boxes, as large as they are at 100 %, or smaller where that shows more of them.
void PaintNames(Canvas& canvas, const Surface& surface, const Font& captionFont, const DiagramScene& scene,
                const DiagramCamera& camera, const DiagramMarks& marks, const PixelRect& dirty) {
  constexpr Pixels kNarrowest = 20_px;
  constexpr Pixels kPadding = 2_px;
  constexpr double kSmallPoints = 7;
  const TextMetrics& metrics = surface.Metrics();
  Font small = captionFont;
  small.points = kSmallPoints;
  for (const Ref<qbEntityList>& box : scene.Boxes()) {
    const PixelRect place = camera.PlaceOf(*box).Inset(kPadding, 0_px);
    if (place.width < kNarrowest || !place.Overlaps(dirty)) continue;
    const auto linesIn = [&](const Font& font) {
      const double most = std::floor(place.height / metrics.LineHeight(font));
      return LinesOfName(box->Caption(), place.width, static_cast<std::size_t>(std::max(1.0, most)), metrics, font,
                         font == small);
    };
    std::vector<std::string_view> lines = linesIn(captionFont);
    const bool fits = std::ranges::all_of(
        lines, [&](std::string_view line) { return metrics.TextWidth(line, captionFont) <= place.width; });
    const Font& font = fits ? captionFont : small;
    if (!fits) lines = linesIn(small);
    const Pixels height = metrics.LineHeight(font);
    const bool active = marks.selection.Contains(box->Entity());
    Pixels top = place.CenterY() - height * static_cast<double>(lines.size()) / 2;
    for (const std::string_view line : lines) {
      canvas.DrawText(
          {place.left, top, place.width, height}, line,
          {active ? ColorRole::CaptionActiveText : ColorRole::CaptionInactiveText, font, TextAlignment::Center});
      top += height;
    }
  }
}

// Without a selected object nothing else says where the keys go.
void PaintFocus(Canvas& canvas, const DiagramSite& site, const DiagramSelection& selection, const PixelSize& view) {
  if (!site.HasFocus() || selection.Selected()) return;
  canvas.StrokeRect({1_px, 1_px, view.width - 2_px, view.height - 2_px}, ColorRole::Focus, 2_px);
}

}  // namespace

void PaintDiagram(Canvas& canvas, const DiagramSite& site, const DiagramScene& scene, const PixelRect& visible,
                  const DiagramMarks* marks) {
  const ScreenScale scale = site.GetSurface().Scale();
  const Ref<qbWholeJoin> selected = marks ? scene.SelectedWhole() : nullptr;
  const Ref<qbWholeJoin> hovered = marks && marks->hover.line ? marks->hover.line->Whole() : nullptr;
  const auto paintLine = [&](const qbLine& line) {
    if (!line.Area(scale).Inset(-kLineReach).Overlaps(visible)) return;
    line.Paint(canvas, scale, site.GetSurface().Metrics(), line.Whole() == selected, line.Whole() == hovered);
  };
  // Lines run under the boxes, those of the selected join on top of everything.
  for (const Ref<qbLine>& line : scene.Lines()) {
    if (line->Whole() != selected) paintLine(*line);
  }
  for (const Ref<qbEntityList>& box : scene.Boxes()) {
    const PixelRect place = scale.ToPixels(box->Bounds());
    if (place.Overlaps(visible)) box->Paint(canvas, place, LookOf(box, site, scene, place, marks));
  }
  if (!marks) return;
  if (selected) {
    for (const WeakRef<qbRelationship>& link : selected->Drawn()) {
      const Ref<qbRelationship> join = link.lock();
      if (join && join->Line()) paintLine(*join->Line());
    }
  }
  if (marks->frame) canvas.StrokeRect(*marks->frame, ColorRole::Focus, 1_px);
}

void PaintPane(Canvas& canvas, const DiagramSite& site, const DiagramProperties& properties, const DiagramScene& scene,
               const DiagramCamera& camera, const DiagramMinimap& minimap, const DiagramMarks& marks,
               const PixelRect& dirty) {
  const Surface& surface = site.GetSurface();
  const PixelSize view = surface.ViewSize();
  canvas.FillRect({{}, {}, view.width, view.height}, properties.SurfaceInk());
  if (scene.Boxes().Empty()) {
    canvas.DrawText({{}, {}, view.width, view.height},
                    Say(site.Context(), {text::DiagramHint, KeyTextOf(Command::AddTables)}),
                    {ColorRole::SurfaceText, {}, TextAlignment::Center});
    return PaintFocus(canvas, site, marks.selection, view);
  }
  const std::optional<KeyJoin::Start>& keyJoin = marks.keyJoin.Drawn();
  {
    const PixelPoint corner = camera.ToSurface({dirty.left, dirty.top});
    const double zoom = camera.Zoom();
    const ViewScope scope(canvas, camera.Origin(), zoom);
    PaintDiagram(canvas, site, scene, {corner.x, corner.y, dirty.width / zoom, dirty.height / zoom}, &marks);
    if (marks.drag) PaintRubberLine(canvas, surface.Scale(), *marks.drag, camera.ToSurface(marks.drag->pointer));
    if (keyJoin) PaintKeyJoin(canvas, surface.Scale(), marks.keyJoin, marks.selection);
  }
  if (marks.namesOnly) PaintNames(canvas, surface, properties.entityCaptionFont, scene, camera, marks, dirty);
  minimap.Paint(canvas, marks.selection);
  PaintFocus(canvas, site, marks.selection, view);
  if (keyJoin) {
    PaintHint(canvas, surface,
              Say(site.Context(), {text::JoinHint, keyJoin->box->Caption() + "." + keyJoin->row->Text()}));
  }
}

}  // namespace zrqrybld
