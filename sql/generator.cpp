#include "sql/generator.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "base/error.h"
#include "base/text.h"
#include "sql/join_list.h"

namespace zrqrybld {
namespace {

constexpr std::string_view kField = "@field";
constexpr std::string_view kItem = "\r\n\t";

// Replacing "@field" in expressions that themselves hold "@field" can double the text with every row.
constexpr std::size_t kLongestSelectList = 64u << 20;

class Generator {
 public:
  Generator(const QuerySnapshot& query, const Dialect& dialect) : query_(query), dialect_(dialect) {
    tableTerms_.reserve(query.tables.size());
    for (const SnapshotTable& table : query.tables) tableTerms_.push_back(TableTerm(table).Text());
  }

  GeneratedSql Run(const ExtraConditions& extra) {
    if (dialect_.joins == Dialect::Joins::Clauses) {
      WriteJoinClauses();
    } else {
      WriteTableList();
      WriteJoinConditions();
    }
    WriteSelectList();
    WriteOrderBy();
    WriteGroupBy();
    WriteLimit();
    WriteExtraCondition(" AND ", extra.andExpression);
    WriteExtraCondition(" OR ", extra.orExpression);
    return {Assemble(), cartesian_};
  }

 private:
  // --- Names ---

  // What stands before "." and a column.
  SqlText TableTerm(const SnapshotTable& table) const {
    return table.aliased ? QuoteWhenNeeded(table.caption, query_.names) : RenderQualified(table.name, query_.names);
  }

  // What stands in FROM.
  std::string FromTerm(std::size_t index) const {
    const SnapshotTable& table = query_.tables[index];
    if (!table.aliased) return tableTerms_[index];
    return RenderQualified(table.name, query_.names).Text() + std::string(dialect_.tableAlias) + tableTerms_[index];
  }

  std::string FieldTerm(std::size_t table, const Identifier& column) const {
    return tableTerms_[table] + "." + QuoteWhenNeeded(column, query_.names).Text();
  }

  // A row's column by its qualified name; an expression row as it was typed.
  std::string FieldTerm(const SnapshotRow& row) const {
    return row.table ? FieldTerm(*row.table, Identifier(row.column)) : row.column;
  }

  // What replaces "@field" in a row's template.
  std::string TemplateOperand(const SnapshotRow& row) const {
    return row.table && row.column == "*" && !row.groupBy.empty() ? "*" : FieldTerm(row);
  }

  std::string_view TemplateOf(const SnapshotRow& row) const { return row.aggregate.empty() ? kField : row.aggregate; }

  // --- FROM and joins ---

  void WriteTableList() {
    for (std::size_t table = 0; table < query_.tables.size(); ++table) {
      if (!from_.empty()) from_ += dialect_.fromSeparator;
      from_ += "\r\n";
      from_ += FromTerm(table);
    }
  }

  void WriteJoinConditions() {
    const std::vector<JoinEntry> entries = BuildJoinList(query_);
    for (const JoinEntry& entry : entries) {
      if (entry.conditions.empty()) {
        if (&entry != &entries.front()) cartesian_ = true;
        continue;
      }
      joinConditions_ += joinConditions_.empty() ? "" : " AND ";
      joinConditions_ += kItem;
      if (joinConditions_.size() == kItem.size()) joinConditions_ += '(';
      for (const JoinCondition& condition : entry.conditions) {
        if (&condition != &entry.conditions.front()) joinConditions_ += " AND ";
        joinConditions_ += ConditionText(condition);
      }
    }
    if (!joinConditions_.empty()) joinConditions_ += ')';
  }

  void WriteJoinClauses() {
    const std::vector<JoinEntry> entries = BuildJoinList(query_);
    for (const JoinEntry& entry : entries) {
      const bool last = &entry == &entries.back();
      if (entry.conditions.empty()) {
        if (&entry != &entries.front()) cartesian_ = true;
        WriteUnjoinedTable(entry, entries.size());
        continue;
      }
      from_ += kItem;
      from_ += dialect_.joinWords[entry.conditions.front().type];
      from_ += "JOIN ";
      from_ += FromTerm(entry.table);
      from_ += " ON ";
      for (const JoinCondition& condition : entry.conditions) {
        if (&condition != &entry.conditions.front()) from_ += " AND \r\n\t\t";
        from_ += ConditionText(condition);
      }
      if (dialect_.fromParentheses == Dialect::FromParentheses::Nested && !last) from_ += ')';
    }
    if (dialect_.fromParentheses == Dialect::FromParentheses::Whole && !from_.empty()) from_ += dialect_.close;
  }

  // Every table without a condition opens the parentheses anew, not only the first.
  void WriteUnjoinedTable(const JoinEntry& entry, std::size_t count) {
    const bool first = from_.empty();
    if (!first) from_ += dialect_.fromSeparator;
    from_ += kItem;
    if (first && dialect_.fromParentheses == Dialect::FromParentheses::Whole) from_ += dialect_.open;
    if (dialect_.fromParentheses == Dialect::FromParentheses::Nested && count > 2) from_.append(count - 2, '(');
    from_ += FromTerm(entry.table);
  }

  std::string ConditionText(const JoinCondition& condition) const {
    std::string text = FieldTerm(condition.leftTable, condition.leftColumn);
    text += dialect_.comparison[condition.type];
    text += FieldTerm(condition.rightTable, condition.rightColumn);
    text += dialect_.afterCondition[condition.type];
    return text;
  }

  // --- SELECT, ORDER BY, GROUP BY ---

  // Each row's "@field" replaces every "@field" in the whole text so far. What holds none any more is
  // finished and never looked at again, so the work grows with the text, not with rows times text.
  void WriteSelectList() {
    std::string pending;
    bool first = true;
    for (const SnapshotRow& row : query_.rows) {
      if (row.column.empty() || !row.output) continue;
      if (!first) pending += dialect_.selectSeparator;
      first = false;
      pending += kItem;
      pending += TemplateOf(row);
      pending = ReplaceNoCase(pending, kField, TemplateOperand(row));
      if (!row.alias.Empty()) {
        pending += " AS ";
        pending += QuoteWhenNeeded(row.alias, query_.names).Text();
      }
      const std::size_t unfinished = std::min(FindNoCase(pending, kField), pending.size());
      select_.append(pending, 0, unfinished);
      pending.erase(0, unfinished);
      if (select_.size() + pending.size() > kLongestSelectList) {
        throw Error(ErrorParsingText, "The select list grows beyond all bounds: its expressions hold \"@field\".");
      }
    }
    select_ += pending;
  }

  void WriteOrderBy() {
    std::map<double, const SnapshotRow*> sorted;  // by sort number; of two equal numbers the later row counts
    for (const SnapshotRow& row : query_.rows) {
      const std::optional<double> number = ParseNumber(row.sortOrder);
      if (number && *number >= 0.5) sorted[std::nearbyint(*number)] = &row;
    }
    for (const auto& [number, row] : sorted) {
      order_ += order_.empty() ? "\r\nORDER BY " : ", ";
      order_ += kItem;
      order_ += row->groupBy.empty() ? FieldTerm(*row) : ReplaceNoCase(TemplateOf(*row), kField, TemplateOperand(*row));
      if (EqualsNoCase(row->sortType, "DESCENDING")) order_ += " DESC";
    }
  }

  void WriteGroupBy() {
    if (!query_.groupByMode) return;
    for (const SnapshotRow& row : query_.rows) {
      if (row.column.empty() || !EqualsNoCase(row.groupBy, "GROUP BY")) continue;
      group_ += group_.empty() ? "\r\nGROUP BY " : ", ";
      group_ += kItem;
      group_ += FieldTerm(row);
    }
  }

  // --- Head and assembly ---

  void WriteLimit() {
    if (query_.distinct) head_ += "DISTINCT ";
    if (query_.top.empty()) return;
    const std::string value = dialect_.limitTakesPercent ? ReplaceAll(Trim(query_.top), "%", " PERCENT") : query_.top;
    const std::string limit = std::string(dialect_.limitBefore) + value + std::string(dialect_.limitAfter);
    switch (dialect_.limit) {
      case Dialect::Limit::Head:
        head_ += limit;
        break;
      case Dialect::Limit::Condition:
        where_ += where_.empty() && joinConditions_.empty() ? "WHERE" : " AND ";
        where_ += kItem;
        where_ += limit;
        break;
      case Dialect::Limit::From:
        from_ += kItem;
        from_ += limit;
        break;
    }
  }

  // The word stands even where no condition comes before it in a list of tables: the text is completed by whoever
  // asked for the condition.
  void WriteExtraCondition(std::string_view word, const std::string& expression) {
    if (expression.empty()) return;
    const bool begins = where_.empty() && dialect_.joins == Dialect::Joins::Clauses;
    where_ += begins ? "\r\nWHERE " : word;
    where_ += kItem;
    where_ += expression;
  }

  std::string Assemble() const {
    std::string text = "SELECT " + head_ + select_ + "\r\nFROM " + from_;
    if (dialect_.joins == Dialect::Joins::Conditions) {
      text += "\r\n";
      if (!joinConditions_.empty()) text += "WHERE" + joinConditions_;
    }
    text += where_ + group_ + order_;
    return ReplaceAll(text, "\r\n\r\n", "\r\n");
  }

  const QuerySnapshot& query_;
  const Dialect& dialect_;
  std::vector<std::string> tableTerms_;
  bool cartesian_ = false;
  std::string head_;
  std::string select_;
  std::string from_;
  std::string joinConditions_;
  std::string where_;
  std::string group_;
  std::string order_;
};

}  // namespace

GeneratedSql GenerateSelect(const QuerySnapshot& query, const Dialect& dialect, const ExtraConditions& extra) {
  return Generator(query, dialect).Run(extra);
}

}  // namespace zrqrybld
