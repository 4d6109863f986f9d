#include "zrqrybld/sql/diagnostics.h"

#include <algorithm>
#include <numeric>
#include <set>
#include <unordered_map>
#include <unordered_set>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_sql.h"
#include "zrqrybld/sql/asked_tables.h"
#include "zrqrybld/sql/criteria_formatter.h"
#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/join_condition.h"
#include "zrqrybld/sql/join_form.h"
#include "zrqrybld/sql/join_limits.h"
#include "zrqrybld/sql/join_list.h"
#include "zrqrybld/sql/join_move.h"
#include "zrqrybld/sql/lexer.h"
#include "zrqrybld/sql/missing_words.h"
#include "zrqrybld/sql/name_checker.h"
#include "zrqrybld/sql/null_list.h"

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
      : query_(query), dialect_(dialect), generated_(generated), parts_(PartsOf(query)), sorted_(SortedRows(query)) {}

  std::vector<SQLDiagnostic> Run() {
    Tables();
    Joins();
    Questions();
    Rows();
    Names();
    NullLists();
    MissingWords();
    Alternatives();
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

  // To what was said last.
  void Offer(SQLCureEnum cure, Phrase name, const SnapshotRow* row = nullptr) {
    found_.back().cure = cure;
    found_.back().cureName = std::move(name);
    if (row) found_.back().row = static_cast<std::size_t>(row - query_.rows.data());
  }

  const std::string& CaptionOf(std::size_t table) const { return query_.tables[table].caption.Name(); }
  std::string NameOf(const SnapshotRow& row) const {
    return row.table ? CaptionOf(*row.table) + "." + row.column : row.column;
  }
  static bool HasCriteria(const SnapshotRow& row) {
    return !row.column.empty() &&
           std::ranges::any_of(row.criteria, [](const std::string& cell) { return !Trim(cell).empty(); });
  }
  bool IsOutput(const SnapshotRow& row) const { return row.output && !row.column.empty() && !parts_.IsAsked(row); }
  bool IsSorted(const SnapshotRow& row) const { return std::ranges::binary_search(sortedPlaces_, &row); }

  // --- Tables and joins ---

  void Tables() {
    const bool nested = dialect_.fromParentheses == Dialect::FromParentheses::Nested && !query_.isAmongOthers &&
                        generated_.from.size() > 2;
    std::vector<bool> joinedByCriteria;  // looked for when a table is joined to none
    for (const FromEntry& entry : generated_.from) {
      const std::string& caption = CaptionOf(entry.table);
      if (entry.conditions.empty() && &entry != &generated_.from.front()) {
        if (joinedByCriteria.empty()) joinedByCriteria = JoinedByCriteria();
        if (!joinedByCriteria[entry.table]) Say(DiagnosticTableNotJoined, text::TableNotJoined, caption);
        if (nested) Say(DiagnosticParentheses, text::ParenthesesOpen, caption);
      }
      MixedKinds(entry);
    }
    for (const std::vector<FromEntry>& asked : generated_.asked) {
      for (const FromEntry& entry : asked) MixedKinds(entry);
    }
  }

  void MixedKinds(const FromEntry& entry) {
    if (HasMixedKinds(entry)) Say(DiagnosticMixedJoins, text::MixedJoins, CaptionOf(entry.table));
    for (const FromEntry& inside : entry.group) MixedKinds(inside);
  }

  // By table, whether each alternative of the criteria compares a column of it with one of another.
  std::vector<bool> JoinedByCriteria() const {
    std::unordered_map<std::string, std::size_t> tables;  // by caption, case-folded
    for (std::size_t table = 0; table < query_.tables.size(); ++table)
      tables.emplace(FoldCase(CaptionOf(table)), table);
    std::size_t widest = 0;
    for (const SnapshotRow& row : query_.rows) widest = std::max(widest, row.criteria.size());
    std::vector<std::size_t> joined(query_.tables.size());  // in so many alternatives
    std::size_t alternatives = 0;
    for (std::size_t column = 0; column < widest; ++column) {
      bool says = false;
      std::set<std::size_t> here;
      for (const SnapshotRow& row : query_.rows) {
        if (row.column.empty() || row.grouping.ChoosesGroups() || column >= row.criteria.size()) continue;
        says |= !Trim(row.criteria[column]).empty();
        const auto other = row.table ? tables.find(ComparedTable(row.criteria[column])) : tables.end();
        if (other == tables.end() || other->second == *row.table) continue;
        here.insert({other->second, *row.table});
      }
      for (const std::size_t table : here) ++joined[table];
      alternatives += says ? 1 : 0;
    }
    std::vector<bool> result(joined.size());
    for (std::size_t table = 0; table < joined.size(); ++table) {
      result[table] = alternatives > 0 && joined[table] == alternatives;
    }
    return result;
  }

  // The table of a criterion "= table.column", case-folded; "" for others.
  static std::string ComparedTable(std::string_view cell) {
    cell = Trim(cell);
    if (!cell.starts_with('=')) return {};
    const std::vector<Identifier> parts = NameParts(Trim(cell.substr(1)));
    return parts.size() < 2 ? std::string() : FoldCase(parts[parts.size() - 2].Name());
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
    const auto isOuter = [](const SnapshotJoin& join) { return join.kind.IsOuter(); };
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

  // --- Tables that are only asked about ---

  void Questions() {
    for (const AskingFault& fault : parts_.faults) {
      Say(DiagnosticJoinNotWritten, fault.why, EndsOf(*fault.join), CaptionOf(AskedEnd(*fault.join)),
          CaptionOf(AskingEnd(*fault.join)));
    }
    if (parts_.parts.empty()) return;
    for (const AskedPart& part : parts_.parts) {
      for (const SnapshotJoin* link : part.links) {
        if (const std::optional<std::size_t> hidden = HiddenIn(link->condition, parts_.partOf[AskedEnd(*link)])) {
          Say(DiagnosticJoinNotWritten, text::ConditionNamesLater, EndsOf(*link), CaptionOf(*hidden));
        }
      }
    }
    for (const SnapshotRow& row : query_.rows) {
      if (!row.column.empty()) ColumnsAsked(row);
    }
  }

  // A table that the text names and that is not there where the part's are.
  std::optional<std::size_t> HiddenIn(std::string_view text, std::size_t part) const {
    if (text.find('.') == std::string_view::npos) return std::nullopt;
    for (const std::size_t table : TablesNamed(text, query_.tables).tables) {
      if (!parts_.Sees(part, table)) return table;
    }
    return std::nullopt;
  }

  // What asks about a table can filter its rows, not show them.
  void ColumnsAsked(const SnapshotRow& row) {
    if (parts_.IsAsked(row)) {
      const bool groups = query_.groupByMode && row.grouping.kind == GroupingKind::GroupBy;
      const bool choosesGroups = row.grouping.ChoosesGroups() && HasCriteria(row);
      if (row.output || IsAmongSorted(row) || groups || choosesGroups) {
        Say(DiagnosticColumnAsked, text::ColumnOfAsked, NameOf(row), CaptionOf(*row.table));
      }
    } else if (const std::optional<std::size_t> hidden =
                   row.table ? std::nullopt : HiddenIn(row.column, QueryParts::kRows)) {
      Say(DiagnosticColumnAsked, text::NamesAsked, NameOf(row), CaptionOf(*hidden));
    }
    const std::size_t part = row.table ? parts_.partOf[*row.table] : QueryParts::kRows;
    for (const std::string& cell : row.criteria) {
      const std::optional<std::size_t> hidden = HiddenIn(ConditionText(row, cell), part);
      if (hidden) Say(DiagnosticColumnAsked, text::NamesAsked, NameOf(row), CaptionOf(*hidden));
    }
  }

  // The cell as a condition; "" for one that cannot name a table.
  std::string ConditionText(const SnapshotRow& row, const std::string& cell) const {
    if (cell.find('.') == std::string::npos) return {};
    CriteriaContext context = query_.criteria;
    context.quotePrefix = query_.names.quotePrefix;
    DescribeColumn(context, row);
    try {
      return FormatCondition("0", cell, context);
    } catch (const Error&) {
      return {};  // another remark says that it cannot be read
    }
  }

  bool IsAmongSorted(const SnapshotRow& row) const {
    return row.sort.place && std::ranges::find(sorted_, &row) != sorted_.end();
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
        Offer(CureAlias, {text::CureAddAlias, name}, &row);
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

  // --- Names in expressions and criteria ---

  void Names() {
    if (!query_.columns) return;
    constexpr std::size_t kMost = 50;  // each is compared with all names there are, and nobody reads more
    const DesignNames names(query_, dialect_, nullptr);
    const std::size_t before = found_.size();
    for (const SnapshotRow& row : query_.rows) {
      if (found_.size() - before >= kMost) return;
      if (row.column.empty()) continue;
      if (!row.table) SayFault(row, names.FaultIn(row.column));
      for (const std::string& cell : row.criteria) SayFault(row, names.FaultInCriterion(cell, row));
    }
  }

  void SayFault(const SnapshotRow& row, const Phrase& fault) {
    if (!fault.Empty()) Say(DiagnosticUnknownName, text::NameNotThere, NameOf(row), fault);
  }

  // --- Words that the dialect lacks ---

  void MissingWords() {
    for (const SnapshotRow& row : query_.rows) {
      if (row.column.empty()) continue;
      if (!row.table) SayMissing(row, row.column);
      for (const std::string& cell : row.criteria) SayMissing(row, cell);
    }
  }

  void SayMissing(const SnapshotRow& row, std::string_view text) {
    for (const std::string_view word : MissingWordsIn(text, dialect_)) {
      Say(DiagnosticWordMissing, text::WordMissing, NameOf(row), word);
    }
  }

  // --- Queries behind NOT IN ---

  void NullLists() {
    if (!query_.columns) return;
    for (const SnapshotRow& row : query_.rows) {
      if (row.column.empty()) continue;
      if (!row.table) SayNullList(row, row.column, FindNullList(row.column, *query_.columns));
      for (const std::string& cell : row.criteria) SayNullList(row, cell, FindNullListIn(query_, row, cell));
    }
  }

  void SayNullList(const SnapshotRow& row, const std::string& text, const std::optional<NullList>& list) {
    if (!list) return;
    Say(DiagnosticNullInList, text::NullInList, NameOf(row), list->column);
    if (WithoutNulls(text, *list)) Offer(CureLeaveNulls, {text::CureLeaveNullsOut}, &row);
  }

  // --- Alternatives ---

  // An alternative that has some of the first one's conditions, and none of its own, is seldom meant so.
  void Alternatives() {
    const auto says = [](const SnapshotRow& row, std::size_t column) {
      return !row.column.empty() && !row.grouping.ChoosesGroups() && column < row.criteria.size() &&
             !Trim(row.criteria[column]).empty();
    };
    std::size_t widest = 0;
    for (const SnapshotRow& row : query_.rows) widest = std::max(widest, row.criteria.size());
    std::unordered_set<const SnapshotRow*> said;
    for (std::size_t column = 1; column < widest; ++column) {
      const auto repeats = [&](const SnapshotRow& row) { return says(row, 0) && says(row, column); };
      const auto adds = [&](const SnapshotRow& row) { return !says(row, 0) && says(row, column); };
      if (std::ranges::none_of(query_.rows, repeats) || std::ranges::any_of(query_.rows, adds)) continue;
      for (const SnapshotRow& row : query_.rows) {
        if (!says(row, 0) || says(row, column) || !said.insert(&row).second) continue;
        Say(DiagnosticLackingCondition, text::ConditionLacking, NameOf(row));
      }
    }
  }

  // --- Grouping ---

  void Grouping() {
    for (const SnapshotRow* row : sorted_) sortedPlaces_.push_back(row);
    std::ranges::sort(sortedPlaces_);
    const bool grouped = query_.groupByMode && std::ranges::any_of(query_.rows, Groups) &&
                         std::ranges::none_of(query_.rows, GroupsInSets);
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
        if (row.column != "*") Offer(CureGroupBy, {text::CureGroupByIt, NameOf(row)}, &row);
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

  // Whether the row groups by whatever columns its expression holds.
  static bool GroupsInSets(const SnapshotRow& row) {
    constexpr std::string_view kWords[] = {"CUBE", "GROUPING", "ROLLUP"};
    const auto begins = [&](std::string_view word) { return StartsWithNoCase(Trim(row.column), word); };
    return !row.table && row.grouping.kind == GroupingKind::GroupBy && std::ranges::any_of(kWords, begins);
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
    for (const std::size_t row : generated_.unsorted) {
      Say(DiagnosticSortNotSelected, text::SortNotInUnion, NameOf(query_.rows[row]));
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
    const std::vector<Missing> missing = MissingTables();
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
        if (!row.table || !missing[*row.table].may || AcceptsNull(row.criteria[column])) continue;
        if (std::exchange(counted[*row.table], column + 1) == column + 1) continue;
        ++refusing[*row.table];
        if (!rowOf[*row.table]) rowOf[*row.table] = &row;
      }
      columns += any ? 1 : 0;
    }
    for (std::size_t table = 0; table < refusing.size(); ++table) {
      if (!rowOf[table] || refusing[table] < columns) continue;
      SayUndone(*rowOf[table], columns == 1 ? missing[table].join : nullptr);
    }
  }

  // The condition means in the join what whoever chose the join wants, as far as it is about its table alone. Behind an
  // alternative there is a choice that no join makes.
  void SayUndone(const SnapshotRow& row, const SnapshotJoin* join) {
    const bool moves = join && dialect_.joins == Dialect::Joins::Clauses && ConditionToMove(query_, row);
    Say(DiagnosticOuterJoinUndone, moves ? text::OuterJoinUndoneHere : text::OuterJoinUndone, NameOf(row));
    if (!moves) return;
    Offer(CureMoveToJoin, {text::CureMoveIntoJoin}, &row);
    found_.back().join = static_cast<std::size_t>(join - query_.joins.data());
  }

  // Whether a table's columns are empty in rows that only an outer join returns, and the first join that makes it so;
  // none where that keeps all rows of both tables.
  struct Missing {
    bool may = false;
    const SnapshotJoin* join = nullptr;
  };

  std::vector<Missing> MissingTables() const {
    std::vector<Missing> missing(query_.tables.size());
    MarkMissing(generated_.from, missing);
    return missing;
  }

  // Answers which of the tables are always there as far as these entries tell.
  std::vector<std::size_t> MarkMissing(const std::vector<FromEntry>& entries, std::vector<Missing>& missing) const {
    std::vector<std::size_t> earlier;  // always there yet
    for (const FromEntry& entry : entries) {
      const std::vector<std::size_t> present =
          entry.group.empty() ? std::vector{entry.table} : MarkMissing(entry.group, missing);
      const JoinTypeEnum type = entry.conditions.empty() ? JoinInner : entry.conditions.front().type;
      const Missing mark{true, type == JoinInner || type == JoinAllOfBoth ? nullptr : entry.conditions.front().join};
      if (type == JoinAllOfThis || (type == JoinAllOfBoth && dialect_.hasFullJoin)) {
        for (const std::size_t before : earlier) missing[before] = mark;
        earlier.clear();
      }
      if (type == JoinAllOfEarlier || (type == JoinAllOfBoth && dialect_.hasFullJoin)) {
        for (const std::size_t table : present) missing[table] = mark;
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
    if (!sorted_.empty()) SayCounted(text::CountedBeforeSort);
    if (query_.groupByMode) SayCounted(text::CountedBeforeGrouping);
    if (query_.distinct) SayCounted(text::CountedBeforeDistinct);
    const bool joined = std::ranges::any_of(generated_.from, [](const FromEntry& e) { return !e.conditions.empty(); });
    const bool alternatives = std::ranges::any_of(query_.rows, [](const SnapshotRow& row) {
      return !row.column.empty() && !row.grouping.ChoosesGroups() && row.criteria.size() > 1;
    });
    if (alternatives && !joined) {
      Say(DiagnosticLimitWritten, text::LimitOfLast, query_.top);
    }
  }

  void SayCounted(TextId what) {
    Say(DiagnosticLimitWritten, what, query_.top);
    if (!dialect_.today.empty()) Offer(CureDialect, {text::CureChooseDialect, dialect_.today});
  }

  const QuerySnapshot& query_;
  const Dialect& dialect_;
  const GeneratedSql& generated_;
  const QueryParts parts_;
  const std::vector<const SnapshotRow*> sorted_;
  std::vector<const SnapshotRow*> sortedPlaces_;  // the same, by address
  std::vector<SQLDiagnostic> found_;
};

}  // namespace

std::vector<SQLDiagnostic> Diagnose(const QuerySnapshot& query, const Dialect& dialect, const GeneratedSql& generated) {
  return Diagnosis(query, dialect, generated).Run();
}

}  // namespace zrqrybld
