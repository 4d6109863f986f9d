#include "diagram/entity_box.h"

#include <algorithm>
#include <cmath>

#include "diagram/icons.h"

namespace zrqrybld {
namespace {

constexpr Pixels kDefaultWidth = 176_px;
constexpr Pixels kDefaultHeight = 216_px;
constexpr Pixels kNarrowest = 136_px;
constexpr Pixels kWidest = 272_px;
constexpr Pixels kFrame = 1_px;
constexpr Pixels kRadius = 4_px;
constexpr Pixels kPadding = 8_px;
constexpr Pixels kIcon = 14_px;
constexpr Pixels kIconGap = 6_px;
constexpr Pixels kCheckBox = 15_px;
constexpr Pixels kScrollMark = 4_px;

// A row's text begins here, from the box's left edge.
constexpr Pixels kTextLeft = kPadding + kCheckBox + kIconGap;

}  // namespace

qbEntityList::qbEntityList(const BoxMetrics& metrics) : metrics_(metrics) {
  bounds_.width = metrics.scale.TwipsX(kDefaultWidth);
  bounds_.height = metrics.scale.TwipsY(kDefaultHeight);
  rows_.onChanged = [this] { Changed.Raise(); };
  rows_.onRemoved = [this] {
    ScrollTo(firstRow_);  // a list that became shorter must not stay scrolled past its end
    Move.Raise();
  };
  rows_.onChecked = [this](const Ref<BoxRow>& row) { ItemChecked.Raise(row); };
}

void qbEntityList::SetCaption(std::string caption) {
  caption_ = std::move(caption);
  Changed.Raise();
}

void qbEntityList::SetCaptionIcon(Ref<Image> icon) {
  captionIcon_ = std::move(icon);
  Changed.Raise();
}

void qbEntityList::SetCaptionIconMaskColor(Color color) {
  captionIconMaskColor_ = color;
  Changed.Raise();
}

void qbEntityList::SetUseCaptionIconMaskColor(bool use) {
  useCaptionIconMaskColor_ = use;
  Changed.Raise();
}

void qbEntityList::SetBackColor(Color color) {
  backColor_ = color;
  Changed.Raise();
}

void qbEntityList::SetShowMinimizeButton(bool show) {
  showMinimizeButton_ = show;
  Changed.Raise();
}

void qbEntityList::SetBounds(const TwipsRect& bounds) {
  const TwipsRect before = bounds_;
  bounds_ = bounds;
  bounds_.height = std::max(bounds.height, metrics_.scale.TwipsY(metrics_.captionHeight + kFrame * 2));
  bounds_.width = std::max(bounds.width, metrics_.scale.TwipsX(metrics_.captionHeight * 2));
  if (bounds_ == before) return;
  ScrollTo(firstRow_);
  Move.Raise();
}

void qbEntityList::SetMetrics(const BoxMetrics& metrics) {
  metrics_ = metrics;
  ScrollTo(firstRow_);
  Move.Raise();
}

void qbEntityList::SetSelectedRow(std::size_t row) {
  selectedRow_ = row <= rows_.Count() ? row : 0;
  Changed.Raise();
}

std::size_t qbEntityList::VisibleRowCount() const {
  const Pixels room = metrics_.scale.PixelsY(bounds_.height) - metrics_.captionHeight - kFrame * 2;
  return static_cast<std::size_t>(std::max(0.0, std::floor(room / metrics_.rowHeight)));
}

void qbEntityList::ScrollTo(std::size_t row) {
  const std::size_t visible = VisibleRowCount();
  const std::size_t last = rows_.Count() > visible ? rows_.Count() - visible + 1 : 1;
  const std::size_t first = std::clamp<std::size_t>(row, 1, last);
  if (first == firstRow_) return;
  firstRow_ = first;
  Move.Raise();
}

PixelRect qbEntityList::RowRect(const PixelRect& place, std::size_t row) const {
  const double offset = static_cast<double>(row) - static_cast<double>(firstRow_);
  return {place.left + kFrame, place.top + kFrame + metrics_.captionHeight + metrics_.rowHeight * offset,
          place.width - kFrame * 2, metrics_.rowHeight};
}

PixelRect qbEntityList::CheckBoxRect(const PixelRect& row) const {
  return {row.left + kPadding, row.CenterY() - kCheckBox / 2, kCheckBox, kCheckBox};
}

TwipsRect qbEntityList::ItemBounds(std::size_t row) const {
  return metrics_.scale.ToTwips(RowRect(metrics_.scale.ToPixels(bounds_), row));
}

bool qbEntityList::IsRowVisible(std::size_t row) const {
  return row >= firstRow_ && row < firstRow_ + VisibleRowCount() && row <= rows_.Count();
}

BoxHit qbEntityList::HitTest(TwipsPoint point) const {
  if (!bounds_.Contains(point)) return {};
  const PixelPoint at = metrics_.scale.ToPixels(point);
  const PixelRect place = metrics_.scale.ToPixels(bounds_);
  const Pixels down = at.y - place.top - kFrame - metrics_.captionHeight;
  if (down < 0_px) return {BoxPart::Caption};
  const auto row = firstRow_ + static_cast<std::size_t>(down / metrics_.rowHeight);
  if (!IsRowVisible(row)) return {BoxPart::Nothing};
  const PixelRect check = CheckBoxRect(RowRect(place, row)).Inset(-4_px, -4_px);
  return {check.Contains(at) ? BoxPart::CheckBox : BoxPart::Row, row};
}

TwipsSize qbEntityList::FittingSize(const TextMetrics& text, std::size_t maximumRows) const {
  Font bold = metrics_.captionFont;
  bold.bold = true;
  Pixels width = text.TextWidth(caption_, bold) + kPadding * 2 + kIcon + kIconGap;
  for (std::size_t i = 1; i <= rows_.Count(); ++i) {
    const Ref<BoxRow> row = rows_.At(i);
    Font font = metrics_.font;
    font.bold = row->Bold();
    const Pixels key = row->Bold() ? kIcon + kIconGap : 0_px;
    width = std::max(width, kTextLeft + text.TextWidth(row->Text(), font) + key + kPadding);
  }
  width = std::clamp(width + kFrame * 2 + kScrollMark, kNarrowest, kWidest);
  const auto rows = static_cast<double>(std::min(rows_.Count(), maximumRows));
  const Pixels height = metrics_.captionHeight + metrics_.rowHeight * rows + kFrame * 2 + 2_px;
  return {metrics_.scale.TwipsX(Pixels(std::ceil(width.Value()))),
          metrics_.scale.TwipsY(Pixels(std::ceil(height.Value())))};
}

void qbEntityList::Notify(std::string_view message, const Variant& argument) {
  if (message == "move") {
    Move.Raise();
  } else if (message == "relationshipadd") {
    RelationshipAdd.Raise(argument.ToObject());
  } else if (message == "relationshipchange") {
    RelationshipChange.Raise(argument.ToObject());
  } else if (message == "relationshipremove") {
    RelationshipRemove.Raise(argument.ToObject());
  }
}

// --- Painting ---

void qbEntityList::Paint(Canvas& canvas, const PixelRect& place, bool active, const BoxHit& hover) const {
  canvas.FillRect(place, backColor_, kRadius);
  PaintCaption(canvas, place, active);
  {
    const PixelRect list{place.left + kFrame, place.top + kFrame + metrics_.captionHeight, place.width - kFrame * 2,
                         place.height - metrics_.captionHeight - kFrame * 2};
    const ClipScope clip(canvas, list);
    const std::size_t end = std::min(rows_.Count(), firstRow_ + VisibleRowCount() - 1);
    for (std::size_t i = firstRow_; i <= end; ++i) {
      PaintRow(canvas, RowRect(place, i), *rows_.At(i), active && i == selectedRow_, i == hover.row);
    }
  }
  PaintScrollMark(canvas, place);
  canvas.StrokeRect(place, active ? Ink(ColorRole::CaptionActive) : Ink(ColorRole::BoxFrame), kFrame, kRadius);
}

void qbEntityList::PaintCaption(Canvas& canvas, const PixelRect& place, bool active) const {
  const PixelRect bar{place.left, place.top, place.width, metrics_.captionHeight + kFrame};
  const Ink ink = active ? ColorRole::CaptionActiveText : ColorRole::CaptionInactiveText;
  const Ink fill = active ? ColorRole::CaptionActive : ColorRole::CaptionInactive;
  // Rounded above, straight below: the lower half covers the lower corners.
  canvas.FillRect(bar, fill, kRadius);
  canvas.FillRect({bar.left, bar.CenterY(), bar.width, bar.height / 2}, fill);
  const PixelRect icon{bar.left + kPadding, bar.CenterY() - kIcon / 2, kIcon, kIcon};
  if (captionIcon_) {
    canvas.DrawImage(icon, *captionIcon_);
  } else {
    DrawIcon(canvas, Icon::Table, icon, ink);
  }
  Font font = metrics_.captionFont;
  font.bold = true;
  const Pixels left = icon.Right() + kIconGap;
  canvas.DrawText({left, bar.top, bar.Right() - kPadding - left, bar.height}, caption_, {ink, font});
}

void qbEntityList::PaintRow(Canvas& canvas, const PixelRect& rect, const BoxRow& row, bool selected, bool hover) const {
  if (selected) {
    canvas.FillRect(rect, ColorRole::RowSelected);
  } else if (hover) {
    canvas.FillRect(rect, ColorRole::RowHover);
  }
  const Color custom = row.ForeColor() == Color::System(8) ? colors_.text : row.ForeColor();
  const Ink ink = selected ? Ink(ColorRole::RowSelectedText) : Ink(custom);
  canvas.DrawPart(ThemedPart::CheckBox, CheckBoxRect(rect), {.checked = row.Checked(), .hover = hover});
  Font font = metrics_.font;
  font.bold = row.Bold();
  Pixels right = rect.Right() - kPadding;
  if (row.Bold()) {
    DrawIcon(canvas, Icon::Key, {right - kIcon, rect.CenterY() - kIcon / 2, kIcon, kIcon},
             selected ? ink : Ink(ColorRole::KeyIcon));
    right -= kIcon + kIconGap;
  }
  const Pixels left = rect.left + kTextLeft;
  canvas.DrawText({left, rect.top, right - left, rect.height}, row.Text(), {ink, font});
}

// A thin mark at the right edge shows which part of a long list is visible.
void qbEntityList::PaintScrollMark(Canvas& canvas, const PixelRect& place) const {
  const std::size_t visible = VisibleRowCount();
  const auto count = static_cast<double>(rows_.Count());
  if (visible == 0 || rows_.Count() <= visible) return;
  const Pixels track = metrics_.rowHeight * static_cast<double>(visible);
  const Pixels top = place.top + kFrame + metrics_.captionHeight + track * (static_cast<double>(firstRow_ - 1) / count);
  canvas.FillRect(
      {place.Right() - kFrame - kScrollMark, top, kScrollMark - 1_px, track * (static_cast<double>(visible) / count)},
      ColorRole::BoxFrame, kScrollMark / 2);
}

}  // namespace zrqrybld
