// zrGridRows: the rows of a grid, by position from 1 or by key, and their cells.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "zrqrybld/base/collection.h"
#include "zrqrybld/base/export.h"
#include "zrqrybld/base/object.h"
#include "zrqrybld/base/untouched.h"
#include "zrqrybld/base/variant.h"

namespace zrqrybld {

class zrGridRow;
class zrGridRows;

/// A cell of a row.
struct GridCell {
  Variant value;
  Variant tag;
  std::int32_t maxLen = 0;
  std::shared_ptr<const std::string> hint;  ///< seldom there
};

/// What a row holds. Undo remembers it: as long as others share it, a change makes a copy.
struct RowContent {
  std::vector<GridCell> cells;
  std::string key;
  bool locked = false;
};
/// Nothing is an empty row.
using SharedRowContent = std::shared_ptr<const RowContent>;

/// Whether the two rows say the same: values and tags, key, lock.
bool SaysTheSame(const SharedRowContent& a, const SharedRowContent& b);
/// How much memory it takes, roughly, in bytes.
std::size_t SizeOf(const SharedRowContent& content);

/// What rows ask of the grid they stand in.
class RowOwner {
 public:
  RowOwner() = default;
  RowOwner(const RowOwner&) = delete;
  RowOwner& operator=(const RowOwner&) = delete;
  virtual ~RowOwner() = default;

  /// Keeps the grid for as long as it is held.
  virtual Ref<Object> Alive() = 0;
  /// The position of a column by key or number. Error 9 when there is none.
  virtual std::size_t ColumnPosition(const Variant& column) const = 0;
  virtual bool IsCheckBoxColumn(std::size_t column) const = 0;
  /// Whether the cell may change; asks whoever listens.
  virtual bool BeforeCellChange(std::size_t row, std::size_t column) = 0;
  virtual void AfterCellChange(std::size_t row, std::size_t column) = 0;
  /// Rows were added, moved or removed; those before the position `from` are untouched.
  virtual void RowsChanged(std::size_t from) = 0;
  /// A cell looks different; its value is the same.
  virtual void CellLooksChanged() = 0;
};

/// One row. A cell has a value and a tag; both are Empty until set. Columns are named by position from
/// 1 or by key; one that does not exist is error 9.
class ZRQRYBLD_API zrGridRow final : public Object {
 public:
  std::string_view TypeName() const override { return "zrGridRow"; }

  /// The position among the rows, from 1; 0 once the row was removed.
  std::int32_t Index() const { return static_cast<std::int32_t>(IndexInList()); }

  /// The longest text that the cell's editor takes, in characters; 0 means any.
  std::int32_t MaxLen(const Variant& column) const;
  void SetMaxLen(const Variant& column, std::int32_t characters);

  /// What the cell shows and the statement is made from. Error 91 once the row was removed.
  const Variant& Value(const Variant& column) const;
  /// Does nothing when the value is the same. In a check-box column the value must be a Boolean, the text
  /// "True" or "False", or a number; anything else is error 40005. A listener may prevent the change.
  void SetValue(const Variant& column, Variant value);

  /// A value beside the one shown; no listener hears of a change. Error 91 once the row was removed.
  const Variant& TagVariant(const Variant& column) const;
  void SetTagVariant(const Variant& column, Variant tag);

  /// What is wrong with the cell's text, shown beside it; "" for nothing. The next change of the value takes it away.
  const std::string& Hint(const Variant& column) const;
  void SetHint(const Variant& column, std::string text);

  /// The key among the rows; "" for none.
  const std::string& Key() const;
  /// Error 457 when another row has the key.
  void SetKey(std::string key);

  /// A locked row is not edited in place.
  bool Locked() const { return content_ && content_->locked; }
  void SetLocked(bool locked) {
    if (locked != Locked()) Changing().locked = locked;
  }

  // --- For the grid and its owner ---

  /// The cell at a column position from 1; Empty beyond the cells that were set.
  const Variant& ValueAt(std::size_t column) const;
  const Variant& TagAt(std::size_t column) const;
  const std::string& HintAt(std::size_t column) const;
  /// All that the row holds.
  SharedRowContent Content() const { return content_; }

 private:
  friend class zrGridRows;
  explicit zrGridRow(std::string key);
  std::size_t Position(const Variant& column) const;
  std::size_t IndexInList() const { return list_ ? KeyedList<Ref<zrGridRow>>::PositionOf(mark_) : 0; }
  const GridCell* CellIf(std::size_t column) const;
  RowContent& Changing();
  GridCell& CellAt(std::size_t column);

  zrGridRows* list_ = nullptr;  // none once the row was removed
  KeyedList<Ref<zrGridRow>>::Mark mark_ = nullptr;
  std::shared_ptr<RowContent> content_;  // none while the row is empty
};

/// Rows stand in the order shown; adding, moving or removing one renumbers those after it.
class ZRQRYBLD_API zrGridRows final : public Object {
 public:
  explicit zrGridRows(RowOwner* owner) : owner_(owner) {}
  ~zrGridRows() override { DetachRows(); }
  std::string_view TypeName() const override { return "zrGridRows"; }

  /// Adds a row at the end, or before or after another (position or key). Error 457 when the key is in
  /// use, 9 when the neighbour does not exist.
  Ref<zrGridRow> Add(const std::string& key = {}, const Variant& before = Variant::Missing(),
                     const Variant& after = Variant::Missing());
  /// Removes all rows.
  void Clear();
  /// How many there are; positions run from 1 to it.
  std::int32_t Count() const { return static_cast<std::int32_t>(items_.Count()); }
  /// The row at a position from 1 or under a key. Error 9 when there is none.
  Ref<zrGridRow> Item(const Variant& index) const { return *items_.At(RequirePosition(items_, index)); }
  /// Moves the row at position `from` so that it stands at `to`. Error 9 when one does not exist.
  void Move(std::int32_t from, std::int32_t to);
  /// Removes a row by position or key. Error 9 when there is none.
  void Remove(const Variant& index);
  /// Removes all rows of which `unwanted` says so, in one pass.
  void RemoveIf(const std::function<bool(const zrGridRow&)>& unwanted);
  /// Removes these rows, as far as they are still there; the grid is told once.
  void RemoveAll(const std::vector<Ref<zrGridRow>>& rows);

  /// The items in their order, as handles; see `CollectionIterator`.
  CollectionIterator<zrGridRows> begin() const { return CollectionIterator(*this); }
  std::default_sentinel_t end() const { return {}; }

  /// The row at a position that exists.
  zrGridRow& At(std::size_t position) const { return **items_.At(position); }
  /// Which rows may be others, or hold something else, than when they were last remembered.
  const Untouched& SinceRemembered() const { return untouched_; }
  /// All rows are remembered as they are now.
  void Remembered();
  /// Replaces `count` rows from the position `first` on by rows that hold this. Rows stay the same objects as far as
  /// their keys allow; no listener is asked or told about a cell.
  void Restore(std::size_t first, std::size_t count, const std::vector<SharedRowContent>& contents);

  /// A column has left: its cells go, those behind them move up.
  void DropColumn(std::size_t position);
  /// The grid goes away.
  void Detach() { owner_ = nullptr; }

 private:
  friend class zrGridRow;
  void Insert(const Ref<zrGridRow>& row, std::size_t position);
  void TakeOut(std::size_t position);
  void Changed(std::size_t from);
  void DetachRows();

  RowOwner* owner_;
  Untouched untouched_;
  KeyedList<Ref<zrGridRow>> items_;
};

}  // namespace zrqrybld
