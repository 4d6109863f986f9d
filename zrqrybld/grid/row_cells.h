// The cells of the grid pane's rows by what they say: the one place that reads them, and the one that writes them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "zrqrybld/grid/grid_columns.h"
#include "zrqrybld/grid/rows.h"
#include "zrqrybld/host/catalogs.h"
#include "zrqrybld/sql/query_row.h"

namespace zrqrybld {

/// A grouping as its cell holds it: the text that is shown, and in the tag its form in SQL.
struct GroupingCell {
  std::string_view text;
  std::string_view tag;
};
inline constexpr GroupingCell kNoGrouping{"", ""};
/// What a row with a column gets as soon as the query groups.
inline constexpr GroupingCell kGroupByCell{"Group By", "GROUP BY"};
/// What a row of "*" gets then.
inline constexpr GroupingCell kCountCell{"Count", "COUNT"};
/// The only choice that a row of "*" has.
inline constexpr GroupingCell kCountChoice{"Count", "COUNT(@field)"};
/// The choice that a function is. It must outlive the result.
GroupingCell ChoiceOf(const qbDBFunction& function);

/// The text of the column that stands for all columns.
inline constexpr std::string_view kAllColumns = "*";

/// Reads a row, which must outlive this.
class RowReader {
 public:
  explicit RowReader(const zrGridRow& row) : row_(row) {}

  std::string Text(std::size_t column) const { return row_.ValueAt(column).Text(); }
  bool IsBlank(std::size_t column) const { return row_.ValueAt(column).IsBlank(); }
  /// Whether it names neither a table nor a column.
  bool IsEmpty() const { return IsBlank(kColumnColumn) && IsBlank(kColumnTable); }
  /// Whether it names exactly this field.
  bool Names(std::string_view table, std::string_view column) const;
  bool IsOutput() const { return row_.ValueAt(kColumnOutput) == Variant(true); }
  /// Whether it has a sort type or a sort number, of whatever kind.
  bool HasSort() const { return !IsBlank(kColumnSortType) || !IsBlank(kColumnSortOrder); }
  SortDirection Direction() const { return ReadSort(Text(kColumnSortType)).direction; }
  /// Its sort number; none when the cell holds no number.
  std::optional<double> Place() const { return ReadSortPlace(Text(kColumnSortOrder)); }
  /// Without functions no aggregate has a syntax.
  RowGrouping Grouping(const qbDBFunctions* functions) const;
  /// Whether it says more about its field than whether that is output and how it groups.
  bool HasContent(std::size_t lastColumn) const;
  /// Whether any cell from the first criteria column to the last column holds something.
  bool HasCriteria(std::size_t lastColumn) const;
  /// All of it.
  QueryRow Read(std::size_t lastColumn, const qbDBFunctions* functions) const;

 private:
  std::vector<std::string> Criteria(std::size_t lastColumn) const;

  const zrGridRow& row_;
};

/// Writes a row, which must outlive this; a row that was removed is error 91. Listeners hear of every value.
class RowWriter {
 public:
  explicit RowWriter(zrGridRow& row) : row_(row) {}

  void SetText(std::size_t column, std::string_view text) const { row_.SetValue(Position(column), text); }
  void SetOutput(bool output) const { row_.SetValue(Position(kColumnOutput), output); }
  /// 0 empties the cell.
  void SetSortPlace(std::int32_t place) const {
    SetText(kColumnSortOrder, place != 0 ? std::to_string(place) : std::string());
  }
  void SetGrouping(const GroupingCell& grouping) const;
  /// The tag alone: the text stays as somebody else has written it.
  void SetGroupingTag(const GroupingCell& grouping) const {
    row_.SetTagVariant(Position(kColumnGroupBy), grouping.tag);
  }
  void SetAliasMaxLen(std::int32_t characters) const { row_.SetMaxLen(Position(kColumnAlias), characters); }
  void SetHint(std::size_t column, std::string text) const { row_.SetHint(Position(column), std::move(text)); }
  /// What the row says; where it says nothing the cells stay as they are. A grouping is written as the function that it
  /// names has it.
  void Write(const QueryRow& content, const qbDBFunctions* functions) const;

 private:
  static std::int32_t Position(std::size_t column) { return static_cast<std::int32_t>(column); }

  zrGridRow& row_;
};

}  // namespace zrqrybld
