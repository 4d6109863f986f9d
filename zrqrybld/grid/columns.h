// zrGridColumns: the columns of a grid, by position from 1 or by key.
#pragma once

#include <cstdint>
#include <string>

#include "zrqrybld/base/collection.h"
#include "zrqrybld/base/export.h"
#include "zrqrybld/base/object.h"
#include "zrqrybld/base/units.h"
#include "zrqrybld/grid/combo_items.h"

namespace zrqrybld {

/// How the cells of a column are edited.
enum GridColumnStyle : std::int16_t {
  GridColumnText = 0,
  GridColumnCombo = 1,  ///< a text with a list of suggestions
  GridColumnCheckBox = 2,
  GridColumnComboList = 4,  ///< one of a list
};

/// The display attribute of a column whose header bears a check box that states, and sets, all its cells.
inline constexpr std::int16_t kCheckedHeader = 37;

class zrGridColumn;

/// What columns ask of the grid they stand in.
class ColumnOwner {
 public:
  ColumnOwner() = default;
  ColumnOwner(const ColumnOwner&) = delete;
  ColumnOwner& operator=(const ColumnOwner&) = delete;
  virtual ~ColumnOwner() = default;

  /// A column looks different or has another width now.
  virtual void ColumnsChanged() = 0;
  /// The column at this position has left; those behind it have moved up.
  virtual void ColumnRemoved(std::size_t position) = 0;
};

/// One column of a grid. It stays readable once it was removed, and changes nothing on the screen any more.
class ZRQRYBLD_API zrGridColumn final : public Object {
 public:
  std::string_view TypeName() const override { return "zrGridColumn"; }

  /// The choices of a combo column; made on first use.
  const Ref<zrGridComboItems>& ComboItems();

  /// Hiding remembers the width, showing brings it back. Hiding what is hidden forgets nothing.
  bool Hidden() const { return hidden_; }
  void SetHidden(bool hidden);

  /// The position in the collection, from 1; 0 once the column was removed.
  std::int32_t Index() const { return static_cast<std::int32_t>(index_); }

  /// The key among the columns; "" for none.
  const std::string& Key() const { return key_; }
  /// Error 457 when another column has the key.
  void SetKey(std::string key);

  /// The width in twips; 0 makes the column invisible. Values below 0 count as 0.
  float Width() const { return width_; }
  void SetWidth(float twips);

  /// The text of the header.
  const std::string& Caption() const { return caption_; }
  void SetCaption(std::string caption);

  /// A `GridColumnStyle`.
  std::int16_t Style() const { return style_; }
  void SetStyle(std::int16_t style);

  /// How the column is shown besides its style: 0, or `kCheckedHeader`.
  std::int16_t DisplayAttribute() const { return displayAttribute_; }
  void SetDisplayAttribute(std::int16_t attribute);

  /// Its share of the width that all columns leave free, where the grid's `FillsWidth`; 0 at first, none once the user
  /// has made it wider or narrower.
  float Share() const { return share_; }
  void SetShare(float share);
  /// Whether its cells have a button that opens a larger editor, where the grid's `HasCellButtons`; False at first.
  bool HasButton() const { return hasButton_; }
  void SetHasButton(bool has);

  /// How the text stands in its cells: 0 left, 1 right, 2 centred. Other values count as 0.
  std::int16_t Alignment() const { return alignment_; }
  void SetAlignment(std::int16_t alignment);

 private:
  friend class zrGridColumns;
  zrGridColumn(class zrGridColumns* list, std::string key, std::string caption)
      : list_(list), key_(std::move(key)), caption_(std::move(caption)) {}
  void Changed() const;

  zrGridColumns* list_;  // none once the column was removed
  std::size_t index_ = 0;
  std::string key_;
  std::string caption_;
  float width_ = 1200;
  float shownWidth_ = 0;
  bool hidden_ = false;
  std::int16_t style_ = GridColumnText;
  std::int16_t displayAttribute_ = 0;
  std::int16_t alignment_ = 0;
  float share_ = 0;
  bool hasButton_ = false;
  Ref<zrGridComboItems> comboItems_;
};

/// Columns stand in the order of adding; removing one moves the later ones up by a position.
class ZRQRYBLD_API zrGridColumns final : public Object {
 public:
  explicit zrGridColumns(ColumnOwner* owner) : owner_(owner) {}
  ~zrGridColumns() override { Clear(); }
  std::string_view TypeName() const override { return "zrGridColumns"; }

  /// Adds a column at the end. Error 457 when the key is in use.
  Ref<zrGridColumn> Add(const std::string& key = {}, std::string caption = {});
  /// Removes all columns, and the cells of all rows with them.
  void Clear();
  /// How many there are; positions run from 1 to it.
  std::int32_t Count() const { return static_cast<std::int32_t>(items_.Count()); }
  /// The column at a position from 1 or under a key. Error 9 when there is none.
  Ref<zrGridColumn> Item(const Variant& index) const { return *items_.At(RequirePosition(items_, index)); }
  /// Removes a column by position or key. Error 9 when there is none.
  void Remove(const Variant& index);

  /// The items in their order, as handles; see `CollectionIterator`.
  CollectionIterator<zrGridColumns> begin() const { return CollectionIterator(*this); }
  std::default_sentinel_t end() const { return {}; }

  /// The column under a key, or nothing: an application may have removed it.
  Ref<zrGridColumn> Find(std::string_view key) const {
    const Ref<zrGridColumn>* column = items_.Find(key);
    return column ? *column : nullptr;
  }
  /// The position of a key or number. Error 9 when there is no such column.
  std::size_t PositionOf(const Variant& index) const { return RequirePosition(items_, index); }
  /// The column at a position that exists.
  zrGridColumn& At(std::size_t position) const { return **items_.At(position); }
  /// The grid goes away.
  void Detach() { owner_ = nullptr; }

 private:
  friend class zrGridColumn;

  ColumnOwner* owner_;
  KeyedList<Ref<zrGridColumn>> items_;
};

}  // namespace zrqrybld
