// The rows inside an entity box: one a column, with check box, text, icon and tool tip.
//
// They are the one home of these facts; `qbEntityItem` is a thin face over a row. A row tells its
// list when it changes, the list tells its box.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "zrqrybld/base/export.h"
#include "zrqrybld/base/keyed_list.h"
#include "zrqrybld/base/object.h"
#include "zrqrybld/base/units.h"
#include "zrqrybld/base/variant.h"
#include "zrqrybld/platform/image.h"

namespace zrqrybld {

class BoxRows;

/// What a column holds, as far as its row shows it.
enum class TypeKind : std::uint8_t { None, Number, Text, Date, YesNo, Binary, Other };

/// What the query does with a column, as its row shows it.
struct ColumnNote {
  int sort = 0;               ///< 1 ascending, -1 descending, 0 not sorted
  std::string order;          ///< the column's place among the sorted ones
  std::string aggregate;      ///< how it is grouped, as people read it; "" when the query does not group
  bool filtered = false;      ///< it has criteria
  std::string function = {};  ///< the aggregate's name in SQL, or "GROUP BY"; "" for what has none
  friend bool operator==(const ColumnNote&, const ColumnNote&) = default;
};

class ZRQRYBLD_API BoxRow final : public Object {
 public:
  std::string_view TypeName() const override { return "BoxRow"; }

  /// The row's position in its list, from 1; it shifts when a row before it is removed. 0 once it was removed itself.
  std::size_t Index() const { return list_ ? KeyedList<Ref<BoxRow>>::PositionOf(mark_) : 0; }

  const std::string& Text() const { return text_; }
  void SetText(std::string text);
  const std::string& Key() const { return key_; }
  /// Error 457 when another row of the list has the key.
  void SetKey(std::string key);
  bool Checked() const { return checked_; }
  void SetChecked(bool checked);
  /// Makes the latest `SetChecked` undone, of which nobody has heard.
  void TakeTickBack() { checked_ = !checked_; }
  bool Bold() const { return bold_; }
  void SetBold(bool bold);
  /// The text's colour; system colour 8 (window text) at first.
  Color ForeColor() const { return foreColor_; }
  void SetForeColor(Color color);
  /// An index or key into the list's pictures. One that they do not have is ignored; without pictures it is kept.
  const Variant& SmallIcon() const { return smallIcon_; }
  void SetSmallIcon(Variant icon);
  /// The picture that `SmallIcon` names, or nothing.
  Ref<Image> Picture() const;
  /// What the column holds; shown as a small icon.
  TypeKind Kind() const { return kind_; }
  void SetKind(TypeKind kind);
  /// What the source calls the column's type; "" when the row was not made from a source, or was brought back.
  const std::string& DataTypeName() const { return dataTypeName_; }
  void SetDataTypeName(std::string name) { dataTypeName_ = std::move(name); }
  /// What the query does with the column; the hub sets it from the grid.
  const ColumnNote& Note() const { return note_; }
  void SetNote(ColumnNote note);
  const std::string& ToolTipText() const { return toolTipText_; }
  void SetToolTipText(std::string text);

 private:
  friend class BoxRows;
  BoxRow(std::string text, std::string key) : text_(std::move(text)), key_(std::move(key)) {}
  void Changed() const;
  void Rename(std::string text);

  BoxRows* list_ = nullptr;  // none once the row was removed
  KeyedList<Ref<BoxRow>>::Mark mark_ = nullptr;
  std::string text_;
  std::string key_;
  bool checked_ = false;
  bool bold_ = false;
  Color foreColor_ = Color::System(8);
  Variant smallIcon_;
  TypeKind kind_ = TypeKind::None;
  std::string dataTypeName_;
  ColumnNote note_;
  std::string toolTipText_;
};

class BoxRows {
 public:
  BoxRows() = default;
  BoxRows(const BoxRows&) = delete;
  BoxRows& operator=(const BoxRows&) = delete;
  ~BoxRows() { Detach(); }

  /// Adds a row at the end. Error 457 when the key is in use.
  Ref<BoxRow> Add(std::string text, std::string key);
  void Clear();
  void RemoveAt(std::size_t position);
  std::size_t Count() const { return rows_.Count(); }
  /// The row at a position from 1, or nothing.
  Ref<BoxRow> At(std::size_t position) const {
    const Ref<BoxRow>* row = rows_.At(position);
    return row ? *row : nullptr;
  }

  /// Ticks or unticks the rows, one value a row, without a word about each.
  void SetTicks(const std::vector<bool>& ticks);

  /// Another number after each change of what the rows say, in any of them; their ticks and notes are left out.
  std::uint64_t Revision() const { return revision_; }

  /// The pictures that the rows' `SmallIcon` values name; nothing at first.
  void SetImages(Ref<ImageList> images) { images_ = std::move(images); }
  /// Whether some row has shown an icon: all rows keep room for one then.
  bool HaveIcons() const { return haveIcons_; }
  /// Whether some row may have said something else than its key: otherwise a text is found by key.
  bool TextsDiffer() const { return textsDiffer_; }

  // The box that holds the rows sets the first four; the others may be nothing.

  /// The rows say something else now, or their ticks do; this comes first.
  std::function<void()> onTouched;
  /// The rows look different now.
  std::function<void()> onChanged;
  /// Rows were removed; those behind them stand elsewhere now.
  std::function<void()> onRemoved;
  /// A row was ticked or unticked.
  std::function<void(const Ref<BoxRow>&)> onChecked;
  /// A ticked row has got another text, or ticked rows are gone: what they said.
  std::function<void(const std::string& before, const std::string& after)> onRenamed;
  std::function<void(const std::string& text)> onTickLost;
  /// Runs what changes ticked rows, so that all that follows from it is one step. Nothing runs it as it is.
  std::function<void(const std::function<void()>& work)> inStep;

 private:
  friend class BoxRow;
  void Detach();
  void Change(bool ticked, const std::function<void()>& work);
  void TellLost(const std::vector<std::string>& texts);
  void Note(const BoxRow& row) { textsDiffer_ = textsDiffer_ || row.text_ != row.key_; }
  void Revised();
  void Changed();
  void TicksChanged();

  std::uint64_t revision_ = 0;
  KeyedList<Ref<BoxRow>> rows_;
  Ref<ImageList> images_;
  bool haveIcons_ = false;
  bool textsDiffer_ = false;
};

}  // namespace zrqrybld
