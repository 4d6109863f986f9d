#include "zrqrybld/diagram/entity_box.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "zrqrybld/base/text.h"
#include "zrqrybld/diagram/icons.h"

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
constexpr Twips kFarthest = 1'000'000'000_twips;

// The edges where a box is resized reach this far to both sides of its frame.
constexpr Pixels kEdgeOutside = 3_px;
constexpr Pixels kEdgeInside = 3_px;

}  // namespace

qbEntityList::qbEntityList(const BoxMetrics& metrics) : metrics_(metrics) {
  bounds_.width = metrics.scale.TwipsX(kDefaultWidth);
  bounds_.height = metrics.scale.TwipsY(kDefaultHeight);
  rows_.onTouched = [this] { Touch(); };
  rows_.onChanged = [this] { Changed.Raise(); };
  rows_.onRemoved = [this] {
    ScrollTo(firstRow_);  // a list that became shorter must not stay scrolled past its end
    Moved();
  };
  rows_.onChecked = [this](const Ref<BoxRow>& row) { ItemChecked.Raise(row); };
}

void qbEntityList::Moved() {
  ++layout_;
  Move.Raise();
}

void qbEntityList::Touch() {
  if (!std::exchange(touched_, true) && onTouched) onTouched();
}

void qbEntityList::SetCaption(std::string caption) {
  caption_ = std::move(caption);
  Touch();
  Changed.Raise();
}

void qbEntityList::SetCaptionIcon(Ref<Image> icon) {
  captionIcon_ = std::move(icon);
  Touch();
  Changed.Raise();
}

void qbEntityList::SetCaptionIconMaskColor(Color color) {
  captionIconMaskColor_ = color;
  Touch();
  Changed.Raise();
}

void qbEntityList::SetUseCaptionIconMaskColor(bool use) {
  useCaptionIconMaskColor_ = use;
  Touch();
  Changed.Raise();
}

void qbEntityList::SetBackColor(Color color) {
  backColor_ = color;
  Touch();
  Changed.Raise();
}

void qbEntityList::SetShowMinimizeButton(bool show) {
  showMinimizeButton_ = show;
  Touch();
  Changed.Raise();
}

void qbEntityList::SetBounds(const TwipsRect& wanted) {
  const TwipsRect before = bounds_;
  // An application may give any number: what is none changes nothing, and all of them fit a scroll bar.
  const auto sane = [](Twips value, Twips old) {
    return std::isfinite(value.Value()) ? std::clamp(value, -kFarthest, kFarthest) : old;
  };
  const TwipsRect bounds{sane(wanted.left, before.left), sane(wanted.top, before.top), sane(wanted.width, before.width),
                         sane(wanted.height, before.height)};
  bounds_ = bounds;
  const Twips caption = MinimizedHeight();
  if (minimized_ && bounds.height > caption && bounds.height != before.height) minimized_ = false;  // made higher
  bounds_.height = minimized_ ? caption : std::max(bounds.height, caption);
  bounds_.width = std::max(bounds.width, metrics_.scale.TwipsX(metrics_.captionHeight * 2));
  if (bounds_ == before) return;
  Touch();
  ScrollTo(firstRow_);
  Moved();
}

void qbEntityList::SetShape(const BoxShape& shape) {
  if (shape == Shape()) return;
  bounds_ = shape.bounds;
  minimized_ = shape.minimized;
  restoredHeight_ = shape.restoredHeight;
  Touch();
  ScrollTo(firstRow_);
  Changed.Raise();
  Moved();
}

void qbEntityList::SetIsView(bool isView) {
  isView_ = isView;
  Touch();
  Changed.Raise();
}

void qbEntityList::SetIsQuery(bool isQuery) {
  isQuery_ = isQuery;
  Touch();
  Changed.Raise();
}

void qbEntityList::SetMetrics(const BoxMetrics& metrics) {
  metrics_ = metrics;
  ScrollTo(firstRow_);
  Moved();
}

void qbEntityList::SetSelectedRow(std::size_t row) {
  selectedRow_ = rows_.At(row);
  Changed.Raise();
}

std::size_t qbEntityList::VisibleRowCount() const {
  const Pixels room = metrics_.scale.PixelsY(bounds_.height) - metrics_.captionHeight - kFrame * 2;
  return static_cast<std::size_t>(std::max(0.0, std::floor(room / metrics_.rowHeight)));
}

std::size_t qbEntityList::LastFirstRow() const {
  const std::size_t visible = VisibleRowCount();
  return rows_.Count() > visible ? rows_.Count() - visible + 1 : 1;
}

void qbEntityList::ScrollTo(std::size_t row) {
  const std::size_t first = std::clamp<std::size_t>(row, 1, LastFirstRow());
  if (first == firstRow_) return;
  firstRow_ = first;
  Moved();
}

Twips qbEntityList::ScrollMarkTop() const {
  return metrics_.scale.TwipsY(ScrollMarkRect(metrics_.scale.ToPixels(bounds_)).top);
}

std::size_t qbEntityList::FirstRowAt(Twips y) const {
  const Pixels track = metrics_.rowHeight * static_cast<double>(VisibleRowCount());
  if (track <= 0_px) return 1;
  const Pixels down = metrics_.scale.PixelsY(y - bounds_.top) - kFrame - metrics_.captionHeight;
  const double row = std::round(down / track * static_cast<double>(rows_.Count()));
  return static_cast<std::size_t>(std::clamp(row, 0.0, static_cast<double>(rows_.Count()))) + 1;
}

std::size_t qbEntityList::FindRow(std::string_view text, std::size_t after) const {
  const std::size_t count = rows_.Count();
  const std::string wanted = FoldCase(text);
  for (std::size_t step = 1; step <= count; ++step) {
    const std::size_t row = (after + step - 1) % count + 1;
    if (FoldCase(rows_.At(row)->Text()).starts_with(wanted)) return row;
  }
  return 0;
}

Twips qbEntityList::MinimizedHeight() const { return metrics_.scale.TwipsY(metrics_.captionHeight + kFrame * 2); }

void qbEntityList::SetMinimized(bool minimized) {
  if (minimized == minimized_) return;
  TwipsRect bounds = bounds_;
  if (minimized) restoredHeight_ = bounds.height;
  bounds.height = minimized ? Twips() : restoredHeight_;
  minimized_ = minimized;
  Touch();
  SetBounds(bounds);
  Changed.Raise();
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

Pixels qbEntityList::LineY(std::size_t row) const {
  const PixelRect place = metrics_.scale.ToPixels(bounds_);
  if (!IsRowVisible(row)) return place.top + kFrame + metrics_.captionHeight / 2;
  return RowRect(place, row).CenterY();
}

BoxHit qbEntityList::HitTest(TwipsPoint point) const {
  const PixelPoint at = metrics_.scale.ToPixels(point);
  const PixelRect place = metrics_.scale.ToPixels(bounds_);
  if (!place.Inset(-kEdgeOutside).Contains(at)) return {};
  std::uint8_t edges = 0;
  if (at.x < place.left + kEdgeInside) edges |= EdgeLeft;
  if (at.x >= place.Right() - kEdgeInside) edges |= EdgeRight;
  if (!minimized_ && at.y < place.top + kEdgeInside) edges |= EdgeTop;
  if (!minimized_ && at.y >= place.Bottom() - kEdgeInside) edges |= EdgeBottom;
  if (ScrollMarkRect(place).Inset(-3_px, 0_px).Contains(at) && (edges & (EdgeTop | EdgeBottom)) == 0 &&
      at.x < place.Right() - 1_px) {
    return {BoxPart::ScrollBar};
  }
  if (edges != 0) return {BoxPart::Edge, 0, edges};
  const Pixels down = at.y - place.top - kFrame - metrics_.captionHeight;
  if (down < 0_px) return {MinimizeRect(place).Contains(at) ? BoxPart::MinimizeButton : BoxPart::Caption};
  const auto row = firstRow_ + static_cast<std::size_t>(down / metrics_.rowHeight);
  if (!IsRowVisible(row)) return {BoxPart::Nothing};
  const PixelRect check = CheckBoxRect(RowRect(place, row)).Inset(-4_px, -4_px);
  return {check.Contains(at) ? BoxPart::CheckBox : BoxPart::Row, row};
}

TwipsSize qbEntityList::FittingSize(const TextMetrics& text, std::size_t maximumRows) const {
  Font bold = metrics_.captionFont;
  bold.bold = true;
  const Pixels button = showMinimizeButton_ ? kIcon + kIconGap : 0_px;
  Pixels width = text.TextWidth(caption_, bold) + kPadding * 2 + kIcon + kIconGap + button;
  const Pixels textLeft = kPadding + kCheckBox + kIconGap + (rows_.HaveIcons() ? kIcon + kIconGap : 0_px);
  const Pixels joinMark = kIcon + kIconGap;
  for (std::size_t i = 1; i <= rows_.Count(); ++i) {
    const Ref<BoxRow> row = rows_.At(i);
    Font font = metrics_.font;
    font.bold = row->Bold();
    const Pixels key = row->Bold() ? kIcon + kIconGap : 0_px;
    width = std::max(width, textLeft + text.TextWidth(row->Text(), font) + key + joinMark + kPadding);
  }
  width = std::clamp(width + kFrame * 2 + kScrollMark, kNarrowest, kWidest);
  const auto rows =
      static_cast<double>(std::clamp<std::size_t>(rows_.Count(), 1, std::max<std::size_t>(maximumRows, 1)));
  const Pixels height = metrics_.captionHeight + metrics_.rowHeight * rows + kFrame * 2 + 2_px;
  return {metrics_.scale.TwipsX(Pixels(std::ceil(width.Value()))),
          metrics_.scale.TwipsY(Pixels(std::ceil(height.Value())))};
}

void qbEntityList::Notify(std::string_view message, const Variant& argument) {
  if (message == "move") {
    Moved();
  } else if (message == "relationshipadd") {
    RelationshipAdd.Raise(argument.ToObject());
  } else if (message == "relationshipchange") {
    RelationshipChange.Raise(argument.ToObject());
  } else if (message == "relationshipremove") {
    RelationshipRemove.Raise(argument.ToObject());
  }
}

// --- Painting ---

void qbEntityList::Paint(Canvas& canvas, const PixelRect& place, const BoxLook& look) const {
  if (look.nameOnly) {
    canvas.FillRect(place, look.active ? ColorRole::CaptionActive : ColorRole::CaptionInactive, kRadius);
  } else {
    canvas.FillRect(place, backColor_, kRadius);
    PaintCaption(canvas, place, look);
  }
  if (!minimized_ && !look.nameOnly) {
    const PixelRect list{place.left + kFrame, place.top + kFrame + metrics_.captionHeight, place.width - kFrame * 2,
                         place.height - metrics_.captionHeight - kFrame * 2};
    const ClipScope clip(canvas, list);
    const std::size_t end = std::min(rows_.Count() + 1, firstRow_ + VisibleRowCount());
    for (std::size_t i = firstRow_; i < end; ++i) PaintRow(canvas, RowRect(place, i), *rows_.At(i), look);
  }
  if (!look.nameOnly) canvas.FillRect(ScrollMarkRect(place), ColorRole::BoxFrame, kScrollMark / 2);
  const bool strong = look.active && look.focused;
  const Ink frame = strong                               ? Ink(ColorRole::Focus)
                    : look.active                        ? Ink(ColorRole::JoinSelected)
                    : colors_.frame == Color::System(15) ? Ink(ColorRole::BoxFrame)
                                                         : Ink(colors_.frame);
  canvas.StrokeRect(place, frame, strong ? 2_px : kFrame, kRadius);
}

PixelRect qbEntityList::MinimizeRect(const PixelRect& place) const {
  if (!showMinimizeButton_) return {};
  return {place.Right() - kPadding - kIcon - 2_px, place.top + kFrame, kIcon + 8_px, metrics_.captionHeight};
}

// Which part of a long list is visible: a thin mark at the right edge, nothing when all of it is.
PixelRect qbEntityList::ScrollMarkRect(const PixelRect& place) const {
  const std::size_t visible = VisibleRowCount();
  const auto count = static_cast<double>(rows_.Count());
  if (minimized_ || visible == 0 || rows_.Count() <= visible) return {};
  const Pixels track = metrics_.rowHeight * static_cast<double>(visible);
  const Pixels top = place.top + kFrame + metrics_.captionHeight + track * (static_cast<double>(firstRow_ - 1) / count);
  return {place.Right() - kFrame - kScrollMark - 2_px, top, kScrollMark,
          track * (static_cast<double>(visible) / count)};
}

void qbEntityList::PaintCaption(Canvas& canvas, const PixelRect& place, const BoxLook& look) const {
  const PixelRect bar{place.left, place.top, place.width, metrics_.captionHeight + kFrame};
  const Ink ink = look.active ? ColorRole::CaptionActiveText : ColorRole::CaptionInactiveText;
  const Ink fill = look.active ? ColorRole::CaptionActive : ColorRole::CaptionInactive;
  canvas.FillRect(bar, fill, kRadius);
  // Rounded above, straight below: the lower half covers the lower corners.
  if (!minimized_) canvas.FillRect({bar.left, bar.CenterY(), bar.width, bar.height / 2}, fill);
  const PixelRect icon{bar.left + kPadding, bar.CenterY() - kIcon / 2, kIcon, kIcon};
  if (captionIcon_) {
    canvas.DrawImage(icon, *captionIcon_);
  } else {
    DrawIcon(canvas, isQuery_ ? Icon::Query : isView_ ? Icon::View : Icon::Table, icon, ink);
  }
  const PixelRect button = MinimizeRect(place);
  if (!button.Empty()) {
    const PixelRect sign{button.CenterX() - kIcon / 2, bar.CenterY() - kIcon / 2, kIcon, kIcon};
    if (look.hover.part == BoxPart::MinimizeButton) canvas.FillRect(sign.Inset(-2_px), ColorRole::RowHover, 3_px);
    DrawIcon(canvas, minimized_ ? Icon::Restore : Icon::Minimize, sign, ink);
  }
  Font font = metrics_.captionFont;
  font.bold = true;
  const Pixels left = icon.Right() + kIconGap;
  const Pixels right = button.Empty() ? bar.Right() - kPadding : button.left;
  TextStyle style{ink, font};
  style.quietBytes = look.schemaBytes;
  style.quietInk =
      look.active ? ink : Ink(ColorRole::QuietText);  // on the strong colour only the weight tells it apart
  canvas.DrawText({left, bar.top, right - left, bar.height}, caption_, style);
  if (look.table.empty() || !look.text) return;
  constexpr Pixels kDot = 14_px;
  const Pixels table = left + look.text->TextWidth(caption_, font) + kDot;
  const TextStyle quiet{style.quietInk, metrics_.captionFont};
  canvas.DrawText({table - kDot, bar.top, std::min(kDot, right - table + kDot), bar.height}, "·",
                  {quiet.ink, quiet.font, TextAlignment::Center});
  canvas.DrawText({table, bar.top, right - table, bar.height}, look.table, quiet);
}

namespace {

struct AggregateMark {
  std::string_view name;
  std::string_view mark;
};
// A grouping or aggregate as its row shows it, always whole; what has no short mark here begins with its first letters.
constexpr AggregateMark kAggregateMarks[] = {
    {"GROUP BY", "≡"}, {"SUM", "Σ"}, {"COUNT", "n"}, {"AVG", "⌀"}, {"MIN", "min"}, {"MAX", "max"},
};

std::string MarkOf(const ColumnNote& note) {
  const auto* known = std::ranges::find(kAggregateMarks, UpperAscii(note.function), &AggregateMark::name);
  if (known != std::end(kAggregateMarks)) return std::string(known->mark);
  constexpr std::size_t kLetters = 4;
  return std::string(FirstCharacters(note.aggregate.substr(0, note.aggregate.find_first_of(" (")), kLetters));
}

}  // namespace

Pixels qbEntityList::WidthOfNote(const ColumnNote& note, const TextMetrics& text) const {
  const Pixels signs = (note.filtered ? kIcon + kIconGap / 2 : 0_px) + (note.sort != 0 ? kIcon + kIconGap / 2 : 0_px);
  return note.aggregate.empty() ? signs : signs + text.TextWidth(MarkOf(note), metrics_.font) + kIconGap;
}

// What the query does with the column, at the right end of `rect`. Signs are always seen, the place in the sort order
// as far as the column's name leaves room. Returns where the note begins.
Pixels qbEntityList::PaintNote(Canvas& canvas, const PixelRect& rect, const ColumnNote& note, Pixels nameWidth,
                               const TextMetrics& text, const Ink& ink) const {
  constexpr Pixels kOrder = 16_px;
  const std::string mark = note.aggregate.empty() ? std::string() : MarkOf(note);
  const Pixels markWidth = text.TextWidth(mark, metrics_.font);
  const Pixels words = rect.width - nameWidth - WidthOfNote(note, text);
  const bool showsOrder = note.sort != 0 && !note.order.empty() && words >= kOrder;
  Pixels right = rect.Right();
  const auto take = [&](Pixels width) {
    right -= width;
    return PixelRect{right, rect.top, width, rect.height};
  };
  if (note.filtered) {
    DrawIcon(canvas, Icon::Filter, take(kIcon).Inset(0_px, (rect.height - kIcon) / 2), ink);
    right -= kIconGap / 2;
  }
  if (note.sort != 0) {
    if (showsOrder) canvas.DrawText(take(kOrder), note.order, {ink, metrics_.font});
    DrawIcon(canvas, note.sort > 0 ? Icon::Ascending : Icon::Descending,
             take(kIcon).Inset(0_px, (rect.height - kIcon) / 2), ink);
    right -= kIconGap / 2;
  }
  if (!mark.empty()) {
    canvas.DrawText(take(markWidth), mark, {ink, metrics_.font, TextAlignment::Right});
    right -= kIconGap;
  }
  return right;
}

void qbEntityList::PaintRow(Canvas& canvas, const PixelRect& rect, const BoxRow& row, const BoxLook& look) const {
  const bool selected = look.active && &row == selectedRow_.get();
  const bool hover = row.Index() == look.hover.row;
  const bool marked = look.marked && look.marked->contains(&row);
  if (selected || marked || row.Index() == look.dropRow) {
    canvas.FillRect(rect, ColorRole::RowSelected);
  } else if (hover) {
    canvas.FillRect(rect, ColorRole::RowHover);
  }
  if (row.Index() == look.dropRow) canvas.StrokeRect(rect, ColorRole::JoinSelected, 2_px);
  const Color custom = row.ForeColor() == Color::System(8) ? colors_.text : row.ForeColor();
  const Ink ink = selected ? Ink(ColorRole::RowSelectedText) : look.asked ? Ink(ColorRole::QuietText) : Ink(custom);
  if (!look.asked || row.Checked()) {
    canvas.DrawPart(ThemedPart::CheckBox, CheckBoxRect(rect),
                    {.checked = row.Checked(), .hover = hover && !look.asked, .disabled = look.asked});
  }
  Pixels left = rect.left + kPadding + kCheckBox + kIconGap;
  if (rows_.HaveIcons()) {
    const PixelRect icon{left, rect.CenterY() - kIcon / 2, kIcon, kIcon};
    if (const Ref<Image> picture = row.Picture()) {
      canvas.DrawImage(icon, *picture);
    } else {
      DrawTypeIcon(canvas, row.Kind(), icon, ColorRole::QuietText);
    }
    left += kIcon + kIconGap;
  }
  Pixels right = rect.Right() - kPadding - kScrollMark;
  if (row.Bold()) {
    DrawIcon(canvas, Icon::Key, {right - kIcon, rect.CenterY() - kIcon / 2, kIcon, kIcon}, ColorRole::KeyIcon);
    right -= kIcon + kIconGap;
  }
  Font font = metrics_.font;
  font.bold = row.Bold();
  const bool hasNote = row.Note() != ColumnNote{} && look.text;
  const Pixels nameWidth = hasNote ? look.text->TextWidth(row.Text(), font) : 0_px;
  // Where there is no room for all, the line itself says that there is a join.
  const bool isTight = hasNote && left + nameWidth + WidthOfNote(row.Note(), *look.text) > right - kIcon - kIconGap;
  if (look.joined && look.joined->contains(&row) && !isTight) {
    DrawIcon(canvas, Icon::Joined, {right - kIcon, rect.CenterY() - kIcon / 2, kIcon, kIcon},
             marked ? ColorRole::JoinSelected : ColorRole::Join);
    right -= kIcon + kIconGap;
  }
  if (hasNote) {
    right = PaintNote(canvas, {left, rect.top, right - left, rect.height}, row.Note(), nameWidth, *look.text,
                      selected ? ink : Ink(ColorRole::QuietText));
  }
  canvas.DrawText({left, rect.top, right - left, rect.height}, row.Text(), {ink, font});
}

}  // namespace zrqrybld
