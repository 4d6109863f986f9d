// GroupByColumn: whether the query of a grid pane groups, the column that is shown then, and what its cells can hold.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "zrqrybld/grid/pane_rows.h"

namespace zrqrybld {

class GroupByColumn {
 public:
  /// `rows` must outlive this.
  explicit GroupByColumn(PaneRows& rows) : rows_(rows) {}

  /// True at first.
  bool IsShown() const { return shown_; }
  /// Shows the column, as wide as it was, or hides it. The rows stay as they are.
  void Show(bool show);
  /// As `Show`; and all rows get what belongs there.
  void Apply(bool show);

  /// Gives a row with a column what belongs there: "*" is counted, any other column is grouped by, and nothing stands
  /// there while the query does not group.
  void Fill(zrGridRow& row) const;
  /// The row's choice that a text names; none when it has no such choice.
  std::optional<GroupingCell> ChoiceNamed(std::string_view text, const zrGridRow& row) const;
  /// The text was written by somebody who writes no tags, as programs do: the tag follows. Where the text names no
  /// choice the tag stays, for whoever has written both.
  void TagText(zrGridRow& row) const;
  /// The choices of the row.
  void FillList(zrGridComboItems& list, const zrGridRow& row) const;
  /// The syntax of the aggregate that the statement makes of the row's column; "" for none.
  std::string AggregateOf(const zrGridRow& row) const;

 private:
  PaneRows& rows_;
  bool shown_ = true;
  float width_ = 0;  // to bring back; 0 until the column is first hidden
};

}  // namespace zrqrybld
