#include "zrqrybld/sql/diagnostics.h"

#include <algorithm>
#include <numeric>
#include <set>
#include <unordered_map>
#include <unordered_set>

#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_sql.h"
#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/join_condition.h"
#include "zrqrybld/sql/join_form.h"
#include "zrqrybld/sql/join_limits.h"
#include "zrqrybld/sql/join_list.h"
#include "zrqrybld/sql/lexer.h"

namespace zrqrybld {
namespace {

// Whether a criterion can hold for a missing value: it asks for NULL somewhere.
bool AcceptsNull(std::string_view criterion) {
  bool afterIs = false;
  Lexer lexer(criterion);
  for (Token token; lexer.Next(token);) {
    const std::string_view word = criterion.substr(token.offset, token.length);
    if (token.kind == TokenKind::Word && EqualsNoCase(word, "NULL") && afterIs) return true;
    afterIs = token.kind == TokenKind::Word && EqualsNoCase(word, "IS");
  }
  return EqualsNoCase(Trim(criterion), "NULL");
}

class Diagnosis {
 public:
  Diagnosis(const QuerySnapshot& query, const Dialect& dialect, const GeneratedSql& generated)
      : query_(query), dialect_(dialect), generated_(generated), sorted_(SortedRows(query)) {}

  std::vector<SQLDiagnostic> Run() {
    Tables();
    Joins();
    Rows();
    Grouping();
    Sorting();
    OuterJoins();
    Limit();
    return std::move(found_);
  }

 private:
  // What is said names the object first.
  template <class... More>
  void Say(SQLDiagnosticEnum kind, TextId what, std::string object, const More&... more) {
    Phrase phrase(what, object, more...);
    std::string english = phrase.English();
    found_.push_back({kind, std::move(object), std::move(english), std::move(phrase)});
  }

  const std::string& CaptionOf(std::size_t table) const { return query_.tables[table].caption.Name(); }
  std::string NameOf(const SnapshotRow& row) const {
    return row.table ? CaptionOf(*row.table) + "." + row.column : row.column;
  }
  static bool HasCriteria(const SnapshotRow& row) {
    return !row.column.empty() &&
           std::ranges::any_of(row.criteria, [](const std::string& cell) { return !Trim(cell).empty(); });
  }
  static bool IsOutput(const SnapshotRow& row) { return row.output && !row.column.empty(); }
  bool IsSorted(const SnapshotRow& row) const { return std::ranges::binary_search(sortedPlaces_, &row); }

  // --- Tables and joins ---

  void Tables() {
    const bool nested = dialect_.fromParentheses == Dialect::FromParentheses::Nested && generated_.from.size() > 2;
    for (const FromEntry& entry : generated_.from) {
      const std::string& caption = CaptionOf(entry.table);
      if (entry.conditions.empty() && &entry != &generated_.from.front()) {
        Say(DiagnosticTableNotJoined, text::TableNotJoined, caption);
        if (nested) Say(DiagnosticParentheses, text::ParenthesesOpen, caption);
      }
      MixedKinds(entry);
    }
  }

  void MixedKinds(const FromEntry& entry) {
    if (HasMixedKinds(entry)) Say(DiagnosticMixedJoins, text::MixedJoins, CaptionOf(entry.table));
    for (const FromEntry& inside : entry.group) MixedKinds(inside);
  }

  // A JOIN clause has one word for all its conditions; conditions in a list of tables have a mark each, and only those
  // to the same table must agree.
  bool HasMixedKinds(const FromEntry& entry) const {
    if (entry.conditions.size() < 2) return false;
    const bool clauses = dialect_.joins == Dialect::Joins::Clauses;
    std::unordered_map<std::size_t, JoinTypeEnum> kinds;
    for (const FromCondition& condition : entry.conditions) {
      if (kinds.emplace(clauses ? 0 : condition.right, condition.type).first->second != condition.type) return true;
    }
    return false;
  }

  // The two ends as people read them.
  std::string EndsOf(const SnapshotJoin& join) const {
    const auto end = [&](std::size_t table, const std::optional<Identifier>& column) {
      return CaptionOf(table) + (column ? "." + column->Name() : std::string());
    };
    return end(join.source, join.sourceColumn) + " " + std::string(SignOf(join.comparison)) + " " +
           end(join.target, join.targetColumn);
  }

  void Joins() {
    const bool hasOuter = HasOuterJoins(query_);
    for (const SnapshotJoin& join : query_.joins) {
      if (join.source == join.target) {
        Say(DiagnosticJoinToItself, text::JoinToItself, CaptionOf(join.source));
      } else if (!IsUsable(join)) {
        Say(DiagnosticIncompleteJoin, text::IncompleteJoin, CaptionOf(join.source) + " - " + CaptionOf(join.target));
      } else if (join.kind.IsFull() && !dialect_.hasFullJoin) {
        Say(DiagnosticFullJoin, dialect_.joins == Dialect::Joins::Clauses ? text::FullJoinMissing : text::FullJoinLost,
            EndsOf(join));
      }
      const JoinLimit limit = LimitOf(join, dialect_, hasOuter);
      if (limit != JoinLimit::None) {
        Say(DiagnosticJoinNotWritten, limit == JoinLimit::Group ? text::JoinGroupMissing : text::JoinConditionMissing,
            EndsOf(join));
      }
    }
    WaitingJoins();
    ConditionsTooEarly();
  }

  // Marks in WHERE can say what no order of joins can.
  void WaitingJoins() {
    const auto isOuter = [](const SnapshotJoin& join) { return join.kind != JoinKind(); };
    const auto outer = std::ranges::find_if(query_.joins, isOuter);
    if (dialect_.joins == Dialect::Joins::Clauses || outer == query_.joins.end()) return;
    std::vector<std::size_t> order(query_.tables.size());
    std::iota(order.begin(), order.end(), 0);
    if (!MeaningOfGeneratedJoins(query_, order, dialect_).empty()) return;
    Say(DiagnosticJoinsWait, text::JoinsWait, CaptionOf(outer->source));
  }

  // A condition may name the tables that are joined so far.
  void ConditionsTooEarly() {
    if (std::ranges::all_of(query_.joins, [](const SnapshotJoin& join) { return join.condition.empty(); })) return;
    CheckConditions(generated_.from);
  }

  // Answers which tables the entries hold.
  std::unordered_set<std::size_t> CheckConditions(const std::vector<FromEntry>& entries) {
    std::unordered_set<std::size_t> stand;
    for (const FromEntry& entry : entries) {
      stand.insert(entry.table);
      if (!entry.group.empty()) stand.merge(CheckConditions(entry.group));
      for (const FromCondition& condition : entry.conditions) {
        for (const std::size_t table : TablesNamed(condition.join->condition, query_.tables).tables) {
          if (stand.contains(table)) continue;
          Say(DiagnosticJoinNotWritten, text::ConditionNamesLater, EndsOf(*condition.join), CaptionOf(table));
        }
      }
    }
    return stand;
  }

  // --- Rows ---

  void Rows() {
    std::unordered_set<std::string> names;  // case-folded
    for (const SnapshotRow& row : query_.rows) {
      if (!IsOutput(row)) continue;
      const bool plain = row.table && row.column != "*" && !row.grouping.HasSyntax();
      const std::string& name = row.alias.Empty() && plain ? row.column : row.alias.Name();
      if (IsAllColumns(row)) continue;
      if (!name.empty() && !names.insert(FoldCase(name)).second) {
        Say(DiagnosticDuplicateName, text::DuplicateName, name);
      }
    }
    for (const SnapshotRow& row : query_.rows) {
      if (!IsOutput(row) || row.alias.Empty()) continue;
      if (IsAllColumns(row)) {
        Say(DiagnosticAliasWritten, text::AliasOfSeveral, NameOf(row));
      } else if (!row.uncutAlias.empty()) {
        Say(DiagnosticAliasWritten, text::AliasCut, NameOf(row), row.uncutAlias);
      }
    }
    for (const UnreadableCriterion& criterion : generated_.unreadable) {
      Say(DiagnosticUnreadableCriterion, text::CriterionUnreadable, NameOf(query_.rows[criterion.row]), criterion.text,
          criterion.reason);
    }
    for (const MisreadCriterion& criterion : generated_.misread) {
      Say(DiagnosticDateMisread, text::DateMisread, NameOf(query_.rows[criterion.row]), criterion.date);
    }
  }

  // --- Grouping ---

  void Grouping() {
    for (const SnapshotRow* row : sorted_) sortedPlaces_.push_back(row);
    std::ranges::sort(sortedPlaces_);
    const bool grouped = query_.groupByMode && std::ranges::any_of(query_.rows, Groups);
    for (const SnapshotRow& row : query_.rows) {
      if (row.column.empty()) continue;
      const RowGrouping& grouping = row.grouping;
      const bool unknown = grouping.kind == GroupingKind::Aggregate && !grouping.HasSyntax();
      const bool isExpression = grouping.kind == GroupingKind::Expression && !row.table;
      const bool shown = row.output || IsSorted(row);
      if (query_.groupByMode && unknown) {
        Say(DiagnosticUnknownFunction, text::NoFunction, NameOf(row), grouping.name);
      } else if (grouped && shown && !Groups(row) && !isExpression) {
        Say(DiagnosticNotGrouped, text::NotGrouped, NameOf(row));
      }
      if (!query_.groupByMode && row.grouping.ChoosesGroups() && HasCriteria(row)) {
        Say(DiagnosticNothingToGroup, text::NothingToGroup, NameOf(row));
      }
      CheckAllColumns(row);
    }
  }

  // Whether the row stands for one value of a group.
  static bool Groups(const SnapshotRow& row) {
    return row.grouping.HasSyntax() || row.grouping.kind == GroupingKind::GroupBy;
  }

  void CheckAllColumns(const SnapshotRow& row) {
    if (row.column != "*" || !row.table) return;
    const bool counted = StartsWithNoCase(row.grouping.syntax, "COUNT");
    const bool single = Groups(row) || IsSorted(row) || HasCriteria(row);
    if (single && !counted) Say(DiagnosticAllColumns, text::OnlySingleColumn, NameOf(row));
  }

  // --- Sorting ---

  void Sorting() {
    std::set<std::pair<std::size_t, std::string_view>> selected;  // tables from 1, expressions under 0
    const auto key = [](const SnapshotRow& row) {
      return std::pair<std::size_t, std::string_view>(row.table ? *row.table + 1 : 0, row.column);
    };
    const bool asked = query_.distinct && !sorted_.empty();
    for (const SnapshotRow& row : query_.rows) {
      if (asked && IsOutput(row)) selected.insert(key(row));
    }
    for (const SnapshotRow& row : query_.rows) {
      if (row.sort.place && *row.sort.place >= 0.5 && !IsSorted(row)) {
        Say(DiagnosticSameSortOrder, text::SameSortPlace, NameOf(row));
      }
      if (IsSorted(row) && row.sort.nulls != NullsPlace::Usual && !dialect_.hasNullsPlace) {
        Say(DiagnosticNullsPlace, text::NullsPlaceMissing, NameOf(row));
      }
      if (asked && IsSorted(row) && !selected.contains(key(row)) && !selected.contains({key(row).first, "*"})) {
        Say(DiagnosticSortNotSelected, text::SortNotSelected, NameOf(row));
      }
    }
  }

  // --- Criteria on what an outer join may leave empty ---

  void OuterJoins() {
    const std::vector<bool> optional = OptionalTables();
    std::size_t columns = 0;                                  // criteria columns with a condition for rows
    std::vector<std::size_t> refusing(query_.tables.size());  // how many of them refuse the table's missing rows
    std::vector<std::size_t> counted(query_.tables.size());   // the last of them, from 1
    std::vector<const SnapshotRow*> rowOf(query_.tables.size());
    std::size_t widest = 0;
    for (const SnapshotRow& row : query_.rows) widest = std::max(widest, row.criteria.size());
    for (std::size_t column = 0; column < widest; ++column) {
      bool any = false;
      for (const SnapshotRow& row : query_.rows) {
        if (row.column.empty() || row.grouping.ChoosesGroups() || column >= row.criteria.size()) continue;
        if (Trim(row.criteria[column]).empty()) continue;
        any = true;
        if (!row.table || !optional[*row.table] || AcceptsNull(row.criteria[column])) continue;
        if (std::exchange(counted[*row.table], column + 1) == column + 1) continue;
        ++refusing[*row.table];
        if (!rowOf[*row.table]) rowOf[*row.table] = &row;
      }
      columns += any ? 1 : 0;
    }
    for (std::size_t table = 0; table < refusing.size(); ++table) {
      if (!rowOf[table] || refusing[table] < columns) continue;
      Say(DiagnosticOuterJoinUndone, text::OuterJoinUndone, NameOf(*rowOf[table]));
    }
  }

  // The tables whose columns are empty in rows that only an outer join returns.
  std::vector<bool> OptionalTables() const {
    std::vector<bool> optional(query_.tables.size());
    MarkOptional(generated_.from, optional);
    return optional;
  }

  // Answers which of the tables are always there as far as these entries tell.
  std::vector<std::size_t> MarkOptional(const std::vector<FromEntry>& entries, std::vector<bool>& optional) const {
    std::vector<std::size_t> earlier;  // not optional yet
    for (const FromEntry& entry : entries) {
      const std::vector<std::size_t> present =
          entry.group.empty() ? std::vector{entry.table} : MarkOptional(entry.group, optional);
      const JoinTypeEnum type = entry.conditions.empty() ? JoinInner : entry.conditions.front().type;
      if (type == JoinAllOfThis || (type == JoinAllOfBoth && dialect_.hasFullJoin)) {
        for (const std::size_t before : earlier) optional[before] = true;
        earlier.clear();
      }
      if (type == JoinAllOfEarlier || (type == JoinAllOfBoth && dialect_.hasFullJoin)) {
        for (const std::size_t table : present) optional[table] = true;
      } else {
        earlier.insert(earlier.end(), present.begin(), present.end());
      }
    }
    return earlier;
  }

  // --- The row limit ---

  void Limit() {
    const RowLimit& limit = dialect_.limit;
    const bool percent = query_.top.ends_with('%');
    if (query_.skip > 0 && limit.offset.empty()) {
      Say(DiagnosticLimitWritten, text::PassesOverNoRows, std::to_string(query_.skip));
    } else if (query_.skip > 0 && percent) {
      Say(DiagnosticLimitWritten, text::NoPercentagesWithOffset, query_.top);
    } else if (percent && !limit.takesPercent) {
      Say(DiagnosticLimitWritten, text::NoPercentages, query_.top);
    }
    if (query_.top.empty() || limit.place != RowLimit::Place::Condition) return;
    if (!sorted_.empty()) Say(DiagnosticLimitWritten, text::CountedBeforeSort, query_.top);
    const bool joined = std::ranges::any_of(generated_.from, [](const FromEntry& e) { return !e.conditions.empty(); });
    const bool alternatives = std::ranges::any_of(query_.rows, [](const SnapshotRow& row) {
      return !row.column.empty() && !row.grouping.ChoosesGroups() && row.criteria.size() > 1;
    });
    if (alternatives && !joined) {
      Say(DiagnosticLimitWritten, text::LimitOfLast, query_.top);
    }
  }

  const QuerySnapshot& query_;
  const Dialect& dialect_;
  const GeneratedSql& generated_;
  const std::vector<const SnapshotRow*> sorted_;
  std::vector<const SnapshotRow*> sortedPlaces_;  // the same, by address
  std::vector<SQLDiagnostic> found_;
};

}  // namespace

std::vector<SQLDiagnostic> Diagnose(const QuerySnapshot& query, const Dialect& dialect, const GeneratedSql& generated) {
  return Diagnosis(query, dialect, generated).Run();
}

}  // namespace zrqrybld
