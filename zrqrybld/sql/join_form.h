// JoinForms: what a tree of joins means, as a text. Two trees with one text give the same rows from every data.
//
// A comparison of columns holds for no row that an outer join has filled up. Therefore the order of joins matters only
// in who may be missing: some tables are always there (the core), with all conditions among them; others form groups
// that may be missing as a whole, each with the conditions that bring it in. A comparison that is asked of a group
// afterwards moves it into the core. Other conditions may hold for missing rows: what they are asked of is told apart
// only as far as it does not depend on that, otherwise it counts as one thing.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "zrqrybld/sql/query_snapshot.h"

namespace zrqrybld {

struct Dialect;

/// A condition that joins two tables, named by their positions in the query: a comparison of two columns, or a text.
struct JoinPair {
  std::size_t left = 0;
  std::string leftColumn;
  std::size_t right = 0;
  std::string rightColumn;
  JoinComparisonEnum comparison = JoinEqual;
  std::string text = {};       ///< instead of columns; "" for a comparison of columns
  bool namesAllTables = true;  ///< whether the tables that the text is about can be told

  /// Whether it holds for no row in which one of the columns is missing.
  bool NeedsBoth() const { return text.empty() && NeedsValues(comparison); }
};

/// A join's condition as a term of its own.
JoinPair ConditionTerm(const std::string& condition, const std::vector<SnapshotTable>& tables);

class JoinForms {
 public:
  /// Joined tables; valid until they are joined with others.
  using Form = std::size_t;

  explicit JoinForms(std::size_t tables);

  Form Table(std::size_t table) const { return table; }
  /// Only rows of both that fulfil the conditions; without conditions every pair of rows.
  Form Inner(Form a, Form b, std::span<const JoinPair> conditions);
  /// All rows of `a`.
  Form Left(Form a, Form b, std::span<const JoinPair> conditions);
  /// All rows of both.
  Form Full(Form a, Form b, std::span<const JoinPair> conditions);
  /// Only rows that fulfil the conditions.
  void Filter(Form form, std::span<const JoinPair> conditions);

  /// Tables in a list, with conditions in WHERE: what the tables mean all together. `bringIn` holds for each table the
  /// conditions on which it may be missing (none for those that may not), `others` are asked of the whole. "" when
  /// tables that may be missing wait for each other.
  std::string MeaningOfMarks(const std::vector<std::vector<JoinPair>>& bringIn, std::span<const JoinPair> others);
  /// What the form means.
  std::string Text(Form form);

 private:
  // Tables that are there together or not at all.
  struct Group {
    std::vector<std::string> tables;
    std::vector<std::string> conditions;
    std::vector<std::size_t> touched;  // the tables that have to be there for the conditions to hold
    bool open = false;                 // a condition may hold for tables that are missing
  };
  struct FormParts {
    std::size_t core;
    std::vector<std::size_t> groups;  // those that may be missing, if they still are optional
  };

  static std::size_t RootOf(std::vector<std::size_t>& next, std::size_t table);
  void Unite(Form a, Form b);
  void Merge(std::size_t into, std::size_t group);
  void AddConditions(std::size_t group, std::span<const JoinPair> conditions);
  void Require(Form form, std::span<const std::size_t> tables);
  bool DependsOnMissing(Form form, std::span<const JoinPair> conditions) const;
  void MakeOne(Form form, std::string text);
  Form Closed(Form form, std::span<const JoinPair> conditions);
  std::string TextOf(Group& group) const;

  std::vector<FormParts> forms_;      // by the form's first table
  std::vector<Group> groups_;         // by the group's first table
  std::vector<std::size_t> groupOf_;  // of each table: a group that was merged points on
  std::vector<std::size_t> sideOf_;   // of each table, in the same way: the form that it stands in
  std::vector<bool> optional_;        // by group: whether it may be missing
};

/// The tables of the query in the order in which FROM is generated when the diagram holds them in `order` (positions in
/// `query.tables`; each once) and `query.joins` as they are.
std::vector<std::size_t> GeneratedOrder(const QuerySnapshot& query, std::span<const std::size_t> order);

/// An order of the tables of the query that begins with `first` and follows the joins: behind the tables that stand
/// already come those that are always there with them, then those that keep all their rows, then those that may be
/// missing. A table that is joined to none of these stands behind all that are.
std::vector<std::size_t> OrderFrom(std::size_t first, const QuerySnapshot& query);

/// The join seen from its other end; as it is where its columns cannot be exchanged.
SnapshotJoin Reversed(SnapshotJoin join);

/// What the joins of the query mean in the text that is generated for the dialect; "" when that text makes no sense.
std::string MeaningOfGeneratedJoins(const QuerySnapshot& query, std::span<const std::size_t> order,
                                    const Dialect& dialect);

}  // namespace zrqrybld
