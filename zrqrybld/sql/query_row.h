// A row of the grid as plain data: what its cells say about the query, and the words that they say it with. Pure.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "zrqrybld/base/export.h"
#include "zrqrybld/sql/nulls_place.h"

namespace zrqrybld {

class qbDBFunctions;

// --- Sorting ---

enum class SortDirection : std::uint8_t { None, Ascending, Descending };

/// A sort type as a cell shows it.
struct SortWord {
  std::string_view text;
  SortDirection direction = SortDirection::None;
  NullsPlace nulls = NullsPlace::Usual;
};

/// The sort types in the order in which they are offered; those that say where Nulls come only where they can be
/// written.
std::span<const SortWord> OfferedSorts(bool withNulls);
/// What a cell shows for the direction; "" for none.
ZRQRYBLD_API std::string_view TextOf(SortDirection direction, NullsPlace nulls = NullsPlace::Usual);
/// What a cell's text means, without regard to case. Any word of somebody else's sorts, and so it sorts upwards.
SortWord ReadSort(std::string_view cell);
/// The offered sort type that begins with what was typed, without regard to case; nothing when none does.
const SortWord* FindTypedSort(std::string_view typed, bool withNulls);

/// How the query is sorted by a row.
struct RowSort {
  SortDirection direction = SortDirection::None;
  /// The number that orders the sorted rows; none when there is none.
  std::optional<double> place = {};
  NullsPlace nulls = NullsPlace::Usual;
  friend bool operator==(const RowSort&, const RowSort&) = default;
};

/// What a cell's text says as a sort number.
std::optional<double> ReadSortPlace(std::string_view cell);

// --- Grouping ---

/// What a row is in a query that groups. Any text that is none of the other choices is taken for an aggregate's name.
enum class GroupingKind : std::uint8_t { None, GroupBy, Where, Expression, Aggregate };

struct RowGrouping {
  RowGrouping() = default;
  /// One of the choices that are no aggregates.
  RowGrouping(GroupingKind choice) : kind(choice) {}  // NOLINT(google-explicit-constructor)
  RowGrouping(std::string aggregate, std::string itsSyntax)
      : kind(GroupingKind::Aggregate), name(std::move(aggregate)), syntax(std::move(itsSyntax)) {}

  GroupingKind kind = GroupingKind::None;
  /// The aggregate's name as a cell shows it; "" for the other kinds.
  std::string name;
  /// The aggregate's syntax with "@field" in it; "" for the other kinds, for a name that no function has, and while the
  /// query does not group.
  std::string syntax;

  /// Whether the row's criteria choose groups (HAVING); otherwise they choose rows (WHERE).
  bool ChoosesGroups() const { return kind == GroupingKind::Expression || kind == GroupingKind::Aggregate; }
  bool HasSyntax() const { return !syntax.empty(); }
  /// What a cell shows.
  std::string_view Text() const;
  friend bool operator==(const RowGrouping&, const RowGrouping&) = default;
};

/// What a cell's text means, without regard to case. Without functions no aggregate has a syntax.
RowGrouping ReadGrouping(std::string_view cell, const qbDBFunctions* functions);

// --- The row ---

/// What a row says whatever its table is called.
struct RowTerms {
  /// A column's name, "*", or an expression.
  std::string column;
  bool output = false;
  RowSort sort;
  RowGrouping grouping;
  /// The cells of the criteria columns in their order; columns behind the last filled one may be left out.
  std::vector<std::string> criteria;
  friend bool operator==(const RowTerms&, const RowTerms&) = default;
};

/// A row as its cells have it.
struct QueryRow : RowTerms {
  std::string alias;
  /// The caption of a table of the diagram; any other text makes the row an expression.
  std::string table;
  friend bool operator==(const QueryRow&, const QueryRow&) = default;
};

}  // namespace zrqrybld
