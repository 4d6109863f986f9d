// qbEntityList: the box that shows one entity: a caption bar and a list of rows.
//
// The one home of an entity's caption, place and look. The pane owns it, paints it and gives it the
// user's input; the model tells it what happened through `Notify`.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_set>

#include "zrqrybld/base/event.h"
#include "zrqrybld/base/export.h"
#include "zrqrybld/base/object.h"
#include "zrqrybld/base/units.h"
#include "zrqrybld/base/variant.h"
#include "zrqrybld/diagram/box_rows.h"
#include "zrqrybld/diagram/box_shape.h"
#include "zrqrybld/platform/canvas.h"

namespace zrqrybld {

/// The sizes that follow from the font, the same for all boxes of a pane.
struct BoxMetrics {
  Pixels captionHeight = 26_px;
  Pixels rowHeight = 21_px;
  ScreenScale scale;
  Font font;
  Font captionFont;
};

/// The colours that all boxes of a pane share.
struct BoxColors {
  Color text = Color::System(8);
  Color frame = Color::System(15);
};

/// What is under a point of a box.
enum class BoxPart : std::uint8_t { Nothing, Caption, MinimizeButton, CheckBox, Row, ScrollBar, Edge };

/// The edges of a box, as bits; a corner is two of them.
enum BoxEdge : std::uint8_t { EdgeLeft = 1, EdgeTop = 2, EdgeRight = 4, EdgeBottom = 8 };

struct BoxHit {
  BoxPart part = BoxPart::Nothing;
  std::size_t row = 0;     ///< from 1; 0 when no row is hit
  std::uint8_t edges = 0;  ///< `BoxEdge` bits
  friend bool operator==(const BoxHit&, const BoxHit&) = default;
};

/// How the pane wants a box drawn besides what the box knows itself.
struct BoxLook {
  bool active = false;                                   ///< the selected object
  bool focused = false;                                  ///< and the pane has the keyboard
  BoxHit hover = {};                                     ///< what the pointer is over
  std::size_t dropRow = 0;                               ///< a row where a join may end now, from 1
  const std::unordered_set<const BoxRow*>* joined = {};  ///< rows that take part in a join
  const std::unordered_set<const BoxRow*>* marked = {};  ///< rows of the selected join
  bool asked = false;                                    ///< the table is only asked about: nothing can be ticked
  bool nameOnly = false;                                 ///< the box alone: its name stands on it, larger
  std::string table;                                     ///< what the caption is an alias of; "" for none
  std::size_t schemaBytes = 0;                           ///< so much of the caption is the table's schema
  const TextMetrics* text = nullptr;                     ///< keeps a column's name whole beside the words of its note
};

/// Every change that can be seen raises `Changed`, or `Move` when lines must be routed anew.
class ZRQRYBLD_API qbEntityList final : public Object {
 public:
  explicit qbEntityList(const BoxMetrics& metrics);
  std::string_view TypeName() const override { return "qbEntityList"; }

  // --- What the entity forwards here ---

  /// The text of the caption bar; stored as it is, the collection of entities keeps it unique.
  const std::string& Caption() const { return caption_; }
  void SetCaption(std::string caption);
  /// The picture in the caption bar; nothing shows the usual one.
  const Ref<Image>& CaptionIcon() const { return captionIcon_; }
  void SetCaptionIcon(Ref<Image> icon);
  /// The colour that is to be transparent in the picture, and whether there is one; only kept.
  Color CaptionIconMaskColor() const { return captionIconMaskColor_; }
  void SetCaptionIconMaskColor(Color color);
  bool UseCaptionIconMaskColor() const { return useCaptionIconMaskColor_; }
  void SetUseCaptionIconMaskColor(bool use);
  /// The colour behind the rows; system colour 5 (window background) at first.
  Color BackColor() const { return backColor_; }
  void SetBackColor(Color color);
  /// Whether the caption bar offers to minimise the box; True at first.
  bool ShowMinimizeButton() const { return showMinimizeButton_; }
  void SetShowMinimizeButton(bool show);

  /// Place and size on the pane's surface, in twips. A size below the caption bar's is raised to it.
  const TwipsRect& Bounds() const { return bounds_; }
  void SetBounds(const TwipsRect& wanted);

  // --- Rows ---

  /// The rows, which live as long as the box.
  BoxRows& Rows() { return rows_; }
  const BoxRows& Rows() const { return rows_; }
  /// The row that is current in the list, from 1; 0 for none.
  std::size_t SelectedRow() const { return PositionOf(selectedRow_); }
  void SetSelectedRow(std::size_t row);
  /// Where the row stands now, from 1; 0 for nothing and for a row that was removed.
  std::size_t PositionOf(const Ref<BoxRow>& row) const {
    return row && rows_.At(row->Index()) == row ? row->Index() : 0;
  }
  /// The first row that is visible, from 1.
  std::size_t FirstVisibleRow() const { return firstRow_; }
  /// How many rows fit, at least 0.
  std::size_t VisibleRowCount() const;
  /// Scrolls so that `row` becomes the first visible one, as far as the list is long.
  void ScrollTo(std::size_t row);

  /// How far the list can be scrolled: the largest first visible row, from 1.
  std::size_t LastFirstRow() const;
  /// Where the scroll mark begins on the surface.
  Twips ScrollMarkTop() const;
  /// The first visible row at which the scroll mark's top would stand at this height on the surface.
  std::size_t FirstRowAt(Twips y) const;
  /// The row that begins with `text` in any letter case, looked for behind `after` and then from the top; 0 for none.
  std::size_t FindRow(std::string_view text, std::size_t after) const;

  /// Whether the box shows a view: another icon in its caption bar.
  bool IsView() const { return isView_; }
  void SetIsView(bool isView);
  /// Whether it shows what a query of the statement outputs: another icon, too.
  bool IsQuery() const { return isQuery_; }
  void SetIsQuery(bool isQuery);

  // --- Minimising ---

  /// Whether only the caption bar is shown.
  bool Minimized() const { return minimized_; }
  /// How high it is then; no box is lower.
  Twips MinimizedHeight() const;
  /// A minimised box shows its caption bar only; its height comes back when it is restored.
  void SetMinimized(bool minimized);

  /// All of its place at once.
  BoxShape Shape() const { return {bounds_, minimized_, restoredHeight_}; }
  void SetShape(const BoxShape& shape);

  // --- Geometry, in twips on the pane's surface ---

  /// The place of a row; rows that are scrolled away lie outside the box.
  TwipsRect ItemBounds(std::size_t row) const;
  /// Whether the row is inside the visible part of the list.
  bool IsRowVisible(std::size_t row) const;
  /// What is at this point.
  BoxHit HitTest(TwipsPoint point) const;
  /// The size at which everything is visible, with at most `maximumRows` rows.
  TwipsSize FittingSize(const TextMetrics& text, std::size_t maximumRows) const;

  /// Another font or screen.
  void SetMetrics(const BoxMetrics& metrics);
  void SetColors(const BoxColors& colors) { colors_ = colors; }
  /// The pictures that the rows' `SmallIcon` values name.
  void SetImages(const Ref<ImageList>& images) { rows_.SetImages(images); }

  /// Where a line that belongs to the row ends: the row's middle, or the caption's when it is not visible.
  Pixels LineY(std::size_t row) const;

  /// Draws the box into `place`.
  void Paint(Canvas& canvas, const PixelRect& place, const BoxLook& look) const;

  // --- Messages ---

  /// Passes on a message of the model: "move", "relationshipadd", "relationshipchange",
  /// "relationshipremove". Any other message is ignored.
  void Notify(std::string_view message, const Variant& argument);

  /// The box has another place, size, font or first visible row: its lines must be routed anew.
  Event<> Move;
  /// Another number after each such change; it comes before the event.
  std::uint64_t Layout() const { return layout_; }
  /// The relationship that was added, changed or removed at this end.
  Event<const Ref<Object>&> RelationshipAdd;
  Event<const Ref<Object>&> RelationshipChange;
  Event<const Ref<Object>&> RelationshipRemove;
  /// A row was ticked or unticked, by the user or by program.
  Event<const Ref<BoxRow>&> ItemChecked;
  /// The box looks different now.
  Event<> Changed;

  // --- What undo remembers ---

  /// The entity may be another than it was remembered: its box, its rows, its joins or what it keeps itself.
  void Touch();
  /// It is remembered as it is now.
  void Remembered() { touched_ = false; }
  /// The first such change since then; it comes before any event.
  std::function<void()> onTouched;

  /// The entity that the box shows.
  void SetEntity(const Ref<Object>& entity) { entity_ = entity; }
  Ref<Object> Entity() const { return entity_.lock(); }

 private:
  void Moved();
  PixelRect RowRect(const PixelRect& place, std::size_t row) const;
  PixelRect CheckBoxRect(const PixelRect& row) const;
  PixelRect MinimizeRect(const PixelRect& place) const;
  PixelRect ScrollMarkRect(const PixelRect& place) const;
  void PaintCaption(Canvas& canvas, const PixelRect& place, const BoxLook& look) const;
  Pixels WidthOfNote(const ColumnNote& note, const TextMetrics& text) const;
  Pixels PaintNote(Canvas& canvas, const PixelRect& rect, const ColumnNote& note, Pixels nameWidth,
                   const TextMetrics& text, const Ink& ink) const;
  void PaintRow(Canvas& canvas, const PixelRect& rect, const BoxRow& row, const BoxLook& look) const;

  BoxMetrics metrics_;
  BoxColors colors_;
  std::string caption_;
  Ref<Image> captionIcon_;
  Color captionIconMaskColor_;
  bool useCaptionIconMaskColor_ = false;
  Color backColor_ = Color::System(5);
  bool showMinimizeButton_ = true;
  TwipsRect bounds_;
  bool isView_ = false;
  bool isQuery_ = false;
  bool minimized_ = false;
  Twips restoredHeight_;  // while minimised
  BoxRows rows_;
  Ref<BoxRow> selectedRow_;  // the row itself: it moves when rows before it go
  std::size_t firstRow_ = 1;
  WeakRef<Object> entity_;
  bool touched_ = false;
  std::uint64_t layout_ = 0;
};

}  // namespace zrqrybld
