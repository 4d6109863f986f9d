#include "zrqrybld/sql/generator.h"

#include <algorithm>
#include <span>
#include <unordered_map>
#include <utility>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_sql.h"
#include "zrqrybld/sql/asked_tables.h"
#include "zrqrybld/sql/criteria_formatter.h"
#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/join_condition.h"
#include "zrqrybld/sql/join_limits.h"
#include "zrqrybld/sql/keywords.h"
#include "zrqrybld/sql/lexer.h"
#include "zrqrybld/sql/literals.h"

namespace zrqrybld {
namespace {

constexpr std::string_view kField = "@field";
constexpr std::string_view kItem = "\r\n\t";
constexpr std::string_view kAnd = " AND \r\n\t\t";

// Replacing "@field" in expressions that themselves hold "@field" can double the text with every row.
constexpr std::size_t kLongestSelectList = 64u << 20;

// Blank lines go where lines are put together. What is a blank line in a literal, a name or a comment belongs to that.
std::string WithoutBlankLines(std::string text) {
  constexpr std::string_view kBlankLine = "\r\n\r\n";
  constexpr std::string_view kLineEnd = "\r\n";
  if (text.find(kBlankLine) == std::string::npos) return text;
  const std::string_view whole = text;
  std::string result;
  std::size_t done = 0;
  Lexer lexer(whole);
  for (Token token; lexer.Next(token) && !token.unfinished;) {
    result += ReplaceAll(whole.substr(done, token.offset - done), kBlankLine, kLineEnd);
    result += whole.substr(token.offset, token.length);
    done = token.offset + token.length;
  }
  return result + ReplaceAll(whole.substr(done), kBlankLine, kLineEnd);
}

}  // namespace

std::string Indented(std::string_view text, std::string_view indent) {
  std::string result;
  std::size_t done = 0;
  const auto append = [&](std::string_view between) {
    result += ReplaceAll(between, "\n", "\n" + std::string(indent));
  };
  Lexer lexer(text);
  for (Token token; lexer.Next(token);) {
    append(text.substr(done, token.offset - done));
    result += text.substr(token.offset, token.length);
    done = token.offset + token.length;
  }
  append(text.substr(done));
  return result;
}

namespace {

class Generator {
 public:
  Generator(const QuerySnapshot& query, const Dialect& dialect)
      : query_(query), dialect_(dialect), parts_(PartsOf(query)), context_(query.criteria) {
    context_.quotePrefix = query.names.quotePrefix;
    tableTerms_.reserve(query.tables.size());
    for (const SnapshotTable& table : query.tables) {
      // Without AS before it, an alias that is any keyword would be taken for one.
      const std::string& caption = table.caption.Name();
      const bool isWord = IsSqlKeyword(caption) || BeginsTableClause(caption);
      const bool bare = table.aliased && dialect.aliasStandsBare && isWord;
      tableTerms_.push_back((bare ? Quote(table.caption, query.names) : TableTerm(table, query.names)).Text());
    }
  }

  GeneratedSql Run(const ExtraConditions& extra) {
    if (!parts_.faults.empty()) return std::move(result_);
    result_.from = PlaceTables(query_, parts_.rows);
    for (const FromEntry& entry : result_.from) {
      result_.cartesian |= entry.conditions.empty() && &entry != &result_.from.front();
    }
    WriteFrom(result_.from, parts_.rows);
    WriteSelectList();
    WriteOrderBy();
    FindAlternatives();
    WriteQuestions();
    WriteCriteria();
    WriteGroupBy();
    WriteLimit();
    WriteExtraCondition(" AND ", extra.andExpression);
    WriteExtraCondition(" OR ", extra.orExpression);
    if (!CannotSay()) result_.text = Assemble();
    if (query_.beginsCompound) result_.tail = WithoutBlankLines(order_);
    return std::move(result_);
  }

 private:
  // --- Names ---

  // What stands in FROM.
  std::string FromTerm(std::size_t index) const {
    const SnapshotTable& table = query_.tables[index];
    if (!table.query.empty()) {
      return "(" + Indented("\r\n" + table.query, "\t\t") + "\r\n\t)" + std::string(dialect_.tableAlias) +
             tableTerms_[index] + table.columnNames;
    }
    if (!table.aliased) return tableTerms_[index];
    return RenderQualified(table.name, query_.names).Text() + std::string(dialect_.tableAlias) + tableTerms_[index];
  }

  // Many tables have columns of the same name: each name of the query is looked at once.
  const std::string& ColumnTerm(std::string_view column) const {
    const auto [term, isNew] = columnTerms_.try_emplace(column);
    if (isNew) term->second = QuoteWhenNeeded(Identifier(std::string(column)), query_.names).Text();
    return term->second;
  }

  // The column's name is one that the query holds.
  std::string FieldTerm(std::size_t table, std::string_view column) const {
    return tableTerms_[table] + "." + ColumnTerm(column);
  }

  // A row's column by its qualified name; an expression row as it was typed.
  std::string FieldTerm(const SnapshotRow& row) const {
    return row.table ? FieldTerm(*row.table, row.column) : row.column;
  }

  // What replaces "@field" in a row's template.
  std::string TemplateOperand(const SnapshotRow& row) const {
    return row.table && row.column == "*" && row.grouping.kind != GroupingKind::None ? "*" : FieldTerm(row);
  }

  std::string_view TemplateOf(const SnapshotRow& row) const {
    return row.grouping.HasSyntax() ? std::string_view(row.grouping.syntax) : kField;
  }

  // The row's term in the select list, without its alias.
  std::string SelectTerm(const SnapshotRow& row) const {
    return ReplaceNoCase(TemplateOf(row), kField, TemplateOperand(row));
  }

  // --- FROM and joins ---

  void WriteFrom(const std::vector<FromEntry>& entries, const std::vector<std::size_t>& tables) {
    if (dialect_.joins == Dialect::Joins::Clauses) {
      WriteJoinClauses(entries);
      if (dialect_.fromParentheses == Dialect::FromParentheses::Whole && !from_.empty()) from_ += dialect_.close;
    } else {
      WriteTableList(tables);
      WriteJoinConditions(entries);
    }
  }

  void WriteTableList(const std::vector<std::size_t>& tables) {
    for (const std::size_t table : tables) {
      if (!from_.empty()) from_ += dialect_.fromSeparator;
      if (depth_ == 0) {
        from_ += "\r\n";
      } else {
        BeginLine();
      }
      from_ += FromTerm(table);
    }
  }

  void WriteJoinConditions(const std::vector<FromEntry>& entries) {
    for (const FromEntry& entry : WithoutGroups(entries)) {
      if (entry.conditions.empty()) continue;
      joinConditions_ += joinConditions_.empty() ? "" : " AND ";
      joinConditions_ += kItem;
      if (joinConditions_.size() == kItem.size()) joinConditions_ += '(';
      AppendConditions(joinConditions_, entry, " AND ");
    }
    if (!joinConditions_.empty()) joinConditions_ += ')';
  }

  // The tables of FROM, or those of a group.
  void WriteJoinClauses(const std::vector<FromEntry>& entries) {
    std::string_view end;  // of the item of the list that is being written
    for (const FromEntry& entry : entries) {
      if (entry.conditions.empty()) {
        from_ += end;
        end = KeepsEarlierRows({&entry, &entries.back() + 1}) && &entry != &entries.front() ? ")" : "";
        WriteUnjoinedTable(entry, entries, end.empty() ? "" : "(");
        continue;
      }
      BeginLine();
      from_ += dialect_.joinWords[entry.conditions.front().type];
      from_ += "JOIN ";
      WriteTable(entry);
      from_ += " ON ";
      AppendConditions(from_, entry, std::string(kAnd) + std::string(depth_, '\t'));
      const bool last = &entry == &entries.back();
      const bool endsItem = last || (&entry + 1)->conditions.empty();
      if (dialect_.fromParentheses == Dialect::FromParentheses::Nested && !(query_.isAmongOthers ? endsItem : last)) {
        from_ += ')';
      }
    }
    from_ += end;
  }

  // Whether the item of the list has to stand in parentheses, lest its joins keep rows of other items.
  bool KeepsEarlierRows(std::span<const FromEntry> item) const {
    if (!dialect_.commaJoins) return false;
    for (const FromEntry& entry : item.subspan(1)) {
      if (entry.conditions.empty()) return false;
      const JoinTypeEnum type = entry.conditions.front().type;
      if (type == JoinAllOfThis || type == JoinAllOfBoth) return true;
    }
    return false;
  }

  // A table, or those that are joined first.
  void WriteTable(const FromEntry& entry) {
    if (entry.group.empty()) {
      from_ += FromTerm(entry.table);
      return;
    }
    from_ += '(';
    ++depth_;
    WriteJoinClauses(entry.group);
    --depth_;
    from_ += ')';
  }

  void BeginLine() { from_.append(kItem).append(depth_, '\t'); }

  // A parenthesis for each join of the item but the last one, which closes none. Where the query stands alone there is
  // one for each table but two, and every table without a condition opens them anew, not only the first.
  std::size_t OpenedBefore(const FromEntry& entry, const std::vector<FromEntry>& entries) const {
    if (dialect_.fromParentheses != Dialect::FromParentheses::Nested) return 0;
    std::size_t tables = entries.size();
    if (query_.isAmongOthers) {
      const FromEntry* next = &entry + 1;
      while (next <= &entries.back() && !next->conditions.empty()) ++next;
      tables = static_cast<std::size_t>(next - &entry);
    }
    return tables > 2 ? tables - 2 : 0;
  }

  void WriteUnjoinedTable(const FromEntry& entry, const std::vector<FromEntry>& entries, std::string_view open) {
    const bool first = from_.empty();
    const bool beginsGroup = depth_ > 0 && &entry == &entries.front();
    if (&entry != &entries.front()) from_ += dialect_.fromSeparator;
    if (!beginsGroup) BeginLine();
    from_ += open;
    if (first && dialect_.fromParentheses == Dialect::FromParentheses::Whole) from_ += dialect_.open;
    from_.append(OpenedBefore(entry, entries), '(');
    WriteTable(entry);
  }

  // First what is compared, then what else is asked.
  void AppendConditions(std::string& text, const FromEntry& entry, std::string_view separator) const {
    const std::size_t begin = text.size();
    const auto part = [&] { text += text.size() == begin ? std::string_view() : separator; };
    for (const FromCondition& condition : entry.conditions) {
      if (condition.leftColumn.empty()) continue;
      part();
      AppendComparison(text, condition);
    }
    for (const FromCondition& condition : entry.conditions) {
      for (const std::string& term : JoinConditionTerms(condition.join->condition)) {
        part();
        text += term;
      }
    }
  }

  // Equality begins with the entry's own column. Whoever chose another comparison reads it as it was drawn, unless the
  // mark of an outer join has to stand where the entry has it.
  void AppendComparison(std::string& text, const FromCondition& condition) const {
    const JoinComparisonEnum comparison = condition.join->comparison;
    const bool isMarked = dialect_.joins == Dialect::Joins::Conditions && condition.type != JoinInner;
    const bool asDrawn = comparison != JoinEqual && !isMarked && !condition.FromSource();
    const std::string left = FieldTerm(condition.left, condition.leftColumn);
    const std::string right = FieldTerm(condition.right, condition.rightColumn);
    const std::string& first = asDrawn ? right : left;
    const std::string& second = asDrawn ? left : right;
    if (comparison == JoinSame && dialect_.sameValue.empty()) {
      text += "(" + first + " = " + second + " OR " + first + " IS NULL AND " + second + " IS NULL)";
      return;
    }
    const bool mirrors = isMarked && !condition.FromSource();
    const std::string_view sign = SignOf(mirrors ? Mirrored(comparison).value_or(comparison) : comparison, dialect_);
    text += first;
    text += comparison == JoinEqual ? std::string(dialect_.comparison[condition.type])
                                    : ReplaceAll(dialect_.comparison[condition.type], "=", sign);
    text += second;
    text += dialect_.afterCondition[condition.type];
  }

  // --- SELECT, ORDER BY, GROUP BY ---

  // Each row's term replaces every "@field" in the whole text so far. What holds none any more is finished and never
  // looked at again, so the work grows with the text, not with rows times text. A name is no template, even when a
  // table is called "@field".
  void WriteSelectList() {
    std::string pending;
    bool first = true;
    for (const SnapshotRow& row : query_.rows) {
      if (row.column.empty() || !row.output || parts_.IsAsked(row)) continue;
      if (!first) pending += dialect_.selectSeparator;
      first = false;
      pending += kItem;
      pending += TemplateOf(row);
      pending = Filled(pending, TemplateOperand(row));
      if (row.table) select_ += std::exchange(pending, {});
      if (!row.alias.Empty() && !IsAllColumns(row)) {
        pending += " AS ";
        pending += QuoteWhenNeeded(row.alias, query_.names).Text();
      }
      const std::size_t unfinished = std::min(FindNoCase(pending, kField), pending.size());
      select_.append(pending, 0, unfinished);
      pending.erase(0, unfinished);
    }
    select_ += pending;
  }

  std::string Filled(const std::string& text, const std::string& operand) const {
    std::size_t size = select_.size() + text.size();
    for (std::size_t at = FindNoCase(text, kField); at < text.size();
         at = FindNoCase(text, kField, at + kField.size())) {
      size += operand.size();
    }
    if (size > kLongestSelectList) {
      throw Error(ErrorParsingText, text::SelectListGrows);
    }
    return ReplaceNoCase(text, kField, operand);
  }

  void WriteOrderBy() {
    for (const SnapshotRow* row : SortedRows(query_)) {
      if (parts_.IsAsked(*row)) continue;
      const std::string term = query_.beginsCompound                      ? OutputTerm(*row)
                               : row->grouping.kind == GroupingKind::None ? FieldTerm(*row)
                                                                          : SelectTerm(*row);
      if (term.empty()) {
        result_.unsorted.push_back(static_cast<std::size_t>(row - query_.rows.data()));
        continue;
      }
      order_ += order_.empty() ? "\r\nORDER BY " : ", ";
      order_ += kItem;
      order_ += term;
      if (row->sort.direction == SortDirection::Descending) order_ += " DESC";
      if (dialect_.hasNullsPlace) order_ += WordsOf(row->sort.nulls);
    }
  }

  // A compound is sorted by what it outputs: by the name of the column where only one bears it, otherwise by its place;
  // "" where it is not output, or nobody knows how many columns stand before it.
  std::string OutputTerm(const SnapshotRow& sorted) const {
    const auto nameOf = [](const SnapshotRow& row) {
      const bool isColumn = row.table && !row.grouping.HasSyntax() && row.column != "*";
      return !row.alias.Empty() ? row.alias : Identifier(isColumn ? row.column : std::string());
    };
    const Identifier name = nameOf(sorted);
    std::size_t place = 0, count = 0, alike = 0;
    bool hasStar = false;
    for (const SnapshotRow& row : query_.rows) {
      if (row.column.empty() || !row.output) continue;
      ++count;
      hasStar |= IsAllColumns(row);
      alike += EqualsNoCase(nameOf(row).Name(), name.Name()) ? 1 : 0;
      if (&row == &sorted) place = hasStar ? 0 : count;
    }
    if (!sorted.output || IsAllColumns(sorted)) return {};
    if (!name.Empty() && alike == 1) return QuoteWhenNeeded(name, query_.names).Text();
    return place == 0 ? std::string() : std::to_string(place);
  }

  void WriteGroupBy() {
    if (!query_.groupByMode) return;
    for (const SnapshotRow& row : query_.rows) {
      if (row.column.empty() || row.grouping.kind != GroupingKind::GroupBy || parts_.IsAsked(row)) continue;
      group_ += group_.empty() ? "\r\nGROUP BY " : ", ";
      group_ += kItem;
      group_ += FieldTerm(row);
    }
  }

  // --- What joins only ask: EXISTS (...) ---

  // Where several criteria columns choose rows, a question with criteria of its own has another answer in each.
  void FindAlternatives() {
    if (parts_.parts.empty()) return;
    hasCriteria_.resize(parts_.parts.size());
    rowsOf_.resize(parts_.parts.size());
    std::vector<bool> says;
    for (const SnapshotRow& row : query_.rows) {
      bool any = false;
      for (std::size_t column = 0; column < row.criteria.size(); ++column) {
        if (!ChoosesRows(row, column)) continue;
        says.resize(std::max(says.size(), column + 1));
        says[column] = any = true;
      }
      if (!any || !parts_.IsAsked(row)) continue;
      std::size_t part = parts_.partOf[*row.table];
      rowsOf_[part].push_back(&row);
      for (; part != QueryParts::kRows; part = parts_.parts[part].parent) hasCriteria_[part] = true;
    }
    for (std::size_t column = 0; column < says.size(); ++column) {
      if (says[column]) alternatives_.push_back(column);
    }
  }

  static bool ChoosesRows(const SnapshotRow& row, std::size_t column) {
    return !row.column.empty() && column < row.criteria.size() && !row.grouping.ChoosesGroups() &&
           !Trim(row.criteria[column]).empty();
  }

  bool HasAlternatives(std::size_t part) const { return alternatives_.size() > 1 && hasCriteria_[part]; }

  // They stand among the conditions of joins, before the criteria, as far as they are the same for all of them.
  void WriteQuestions() {
    const std::size_t column = alternatives_.empty() ? 0 : alternatives_.front();
    std::string questions;
    for (std::size_t part = 0; part < parts_.parts.size(); ++part) {
      if (parts_.parts[part].parent != QueryParts::kRows || HasAlternatives(part)) continue;
      if (!questions.empty()) questions += " AND ";
      questions.append(kItem).append(Question(part, column));
    }
    if (questions.empty()) return;
    if (joinConditions_.empty()) {
      joinConditions_ = std::string(kItem) + "(" + questions.substr(kItem.size()) + ")";
    } else {
      joinConditions_.insert(joinConditions_.size() - 1, " AND " + questions);
    }
  }

  // The others, as conditions of the column.
  std::string QuestionsOf(std::size_t column) {
    std::string questions;
    if (std::ranges::find(alternatives_, column) == alternatives_.end()) return questions;
    for (std::size_t part = 0; part < parts_.parts.size(); ++part) {
      if (parts_.parts[part].parent != QueryParts::kRows || !HasAlternatives(part)) continue;
      if (!questions.empty()) questions += kAnd;
      questions.append(dialect_.open).append(Question(part, column)).append(dialect_.close);
    }
    return questions;
  }

  // A query within the query over the tables of the part, with their criteria in the column.
  std::string Question(std::size_t part, std::size_t column) {
    const AskedPart& asked = parts_.parts[part];
    ++depth_;
    const std::string line = std::string(kItem) + std::string(depth_, '\t');
    std::string from = std::exchange(from_, {});
    std::string joinConditions = std::exchange(joinConditions_, {});
    const std::vector<FromEntry>& entries = result_.asked.emplace_back(PlaceTables(query_, asked.tables));
    WriteFrom(entries, asked.tables);
    std::swap(from, from_);
    std::swap(joinConditions, joinConditions_);
    std::string conditions = LinksOf(asked, line);
    const auto add = [&](std::string_view condition) {
      conditions.append(conditions.empty() ? "" : " AND " + line).append(condition);
    };
    if (!joinConditions.empty()) add(TrimWhite(joinConditions));
    for (const SnapshotRow* row : rowsOf_[part]) {
      if (!ChoosesRows(*row, column)) continue;
      const std::string condition = ConditionOf(*row, row->criteria[column]);
      if (!condition.empty()) add(std::string(dialect_.open) + condition + std::string(dialect_.close));
    }
    for (const std::size_t inner : asked.inside) add(Question(inner, column));
    --depth_;
    return (asked.forNone ? "NOT EXISTS (SELECT *" : "EXISTS (SELECT *") + line + "FROM " +
           std::string(TrimWhite(from)) + line + "WHERE " + conditions + ")";
  }

  // What compares the tables that are asked about with those that ask.
  std::string LinksOf(const AskedPart& asked, const std::string& line) const {
    FromEntry entry{asked.tables.front(), {}};
    for (const SnapshotJoin* link : asked.links) {
      const bool target = link->kind.AsksTarget();
      const auto name = [](const std::optional<Identifier>& column) {
        return column ? std::string_view(column->Name()) : std::string_view();
      };
      entry.conditions.push_back({AskedEnd(*link), name(target ? link->targetColumn : link->sourceColumn),
                                  AskingEnd(*link), name(target ? link->sourceColumn : link->targetColumn), JoinInner,
                                  link});
    }
    std::string conditions;
    AppendConditions(conditions, entry, " AND " + line);
    return conditions;
  }

  // --- WHERE and HAVING ---

  // The cells of one column are joined by AND, the columns by OR.
  void WriteCriteria() {
    std::size_t columns = 0;
    for (const SnapshotRow& row : query_.rows) columns = std::max(columns, row.criteria.size());
    for (std::size_t column = 0; column < columns; ++column) {
      std::string where = QuestionsOf(column);
      std::string having;
      for (const SnapshotRow& row : query_.rows) {
        if (row.column.empty() || column >= row.criteria.size() || parts_.IsAsked(row)) continue;
        const std::string condition = ConditionOf(row, row.criteria[column]);
        if (condition.empty()) continue;  // a blank cell, or one with nothing but a comment
        std::string& group = row.grouping.ChoosesGroups() ? having : where;
        if (!group.empty()) group += kAnd;
        group += dialect_.open;
        group += condition;
        group += dialect_.close;
      }
      if (!having.empty()) {
        having_ += having_.empty() ? "\r\nHAVING " : " OR ";
        AppendGroup(having_, having);
      }
      if (!where.empty()) {
        where_ += !where_.empty() ? std::string_view(" OR ") : WordBeforeCriteria();
        AppendGroup(where_, where);
      }
    }
    if (!where_.empty() && !joinConditions_.empty()) where_ += ')';
  }

  // Beside join conditions the criteria stand in parentheses of their own.
  std::string_view WordBeforeCriteria() const {
    if (!joinConditions_.empty()) return " AND (";
    return dialect_.joins == Dialect::Joins::Clauses ? "\r\nWHERE " : "WHERE ";
  }

  void AppendGroup(std::string& text, const std::string& group) const {
    text += kItem;
    text += dialect_.open;
    text += group;
    text += dialect_.close;
  }

  std::string ConditionOf(const SnapshotRow& row, const std::string& cell) {
    if (!row.table) {
      // A condition that was typed as an expression is true or false by itself.
      if (EndsWithNoCase(cell, "TRUE")) return std::string(Trim(row.column));
      if (EndsWithNoCase(cell, "FALSE")) return "NOT " + std::string(Trim(row.column));
    }
    const std::string field = row.grouping.HasSyntax() ? SelectTerm(row) : FieldTerm(row);
    const auto position = static_cast<std::size_t>(&row - query_.rows.data());
    DescribeColumn(context_, row);
    try {
      std::string condition = FormatCondition(field, cell, context_);
      if (std::string date = MisreadDate(condition, context_); !date.empty()) {
        result_.misread.push_back({position, std::move(date)});
      }
      return condition;
    } catch (const Error& error) {
      // Not a text that can be read: it stays as it was typed, for the statement must not lose it.
      result_.unreadable.push_back({position, cell, error.What()});
      return field + " " + cell;
    }
  }

  static bool EndsWithNoCase(std::string_view text, std::string_view end) {
    return text.size() >= end.size() && EqualsNoCase(text.substr(text.size() - end.size()), end);
  }

  // A join that the dialect cannot say makes no text: another one in its place would return other rows. Full joins in a
  // list of tables are written all the same, as they always were.
  bool CannotSay() const {
    if (cannotLimit_) return true;
    const bool hasOuter = HasOuterJoins(query_);
    const auto isLimited = [&](const SnapshotJoin& join) {
      return LimitOf(join, dialect_, hasOuter) != JoinLimit::None;
    };
    if (std::ranges::any_of(query_.joins, isLimited)) return true;
    if (dialect_.hasFullJoin || dialect_.joins != Dialect::Joins::Clauses) return false;
    const auto hasFull = [](const std::vector<FromEntry>& from) {
      return std::ranges::any_of(WithoutGroups(from), [](const FromEntry& entry) {
        return !entry.conditions.empty() && entry.conditions.front().type == JoinAllOfBoth;
      });
    };
    return hasFull(result_.from) || std::ranges::any_of(result_.asked, hasFull);
  }

  // --- Head and assembly ---

  void WriteLimit() {
    if (query_.distinct) head_ += "DISTINCT ";
    const RowLimit& limit = dialect_.limit;
    const bool percent = query_.top.ends_with('%');
    const bool offset = query_.skip > 0 && !limit.offset.empty();
    std::string_view form = query_.top.empty() ? std::string_view() : percent ? limit.percent : limit.rows;
    if (offset) form = form.empty() || percent ? limit.offset : limit.rowsAndOffset;
    const bool behindMembers = query_.beginsCompound && !form.empty() && !offset && limit.place != RowLimit::Place::End;
    if (behindMembers) {
      // What limits one SELECT would limit the first member alone.
      form = percent ? std::string_view() : limit.rowsAndOffset;
      cannotLimit_ = form.empty();
    }
    if (form.empty()) return;
    std::string text = ReplaceAll(form, "@n", Trim(query_.top.substr(0, query_.top.size() - (percent ? 1 : 0))));
    text = ReplaceAll(text, "@m", std::to_string(query_.skip));
    if ((offset || behindMembers) && limit.offsetNeedsOrder && order_.empty()) order_ = AnyOrder();
    switch (offset || behindMembers ? RowLimit::Place::End : limit.place) {
      case RowLimit::Place::Head:
        head_ += text;
        break;
      case RowLimit::Place::Condition:
        where_ += where_.empty() && joinConditions_.empty() ? "WHERE" : " AND ";
        where_ += kItem;
        where_ += text;
        break;
      case RowLimit::Place::From:
        from_ += kItem;
        from_ += text;
        break;
      case RowLimit::Place::End:
        order_ += "\r\n" + text;
        break;
    }
  }

  // An ORDER BY that asks for no order. Beside DISTINCT only what is selected can be ordered by.
  std::string AnyOrder() const {
    return "\r\nORDER BY " + std::string(kItem) + (query_.distinct || query_.beginsCompound ? "1" : "(SELECT NULL)");
  }

  // The word stands even where no condition comes before it in a list of tables: the text is completed by whoever
  // asked for the condition.
  void WriteExtraCondition(std::string_view word, const std::string& expression) {
    if (expression.empty()) return;
    const bool begins = where_.empty() && joinConditions_.empty() && dialect_.joins == Dialect::Joins::Clauses;
    where_ += begins ? "\r\nWHERE " : word;
    where_ += kItem;
    where_ += expression;
  }

  std::string FromClause() const {
    const bool lacksTables = !dialect_.needsTables && query_.tables.empty() && !select_.empty();
    if (!lacksTables) return "\r\nFROM " + from_;
    return dialect_.emptyTable.empty() ? std::string() : "\r\nFROM " + std::string(dialect_.emptyTable);
  }

  std::string Assemble() const {
    std::string text = "SELECT " + head_ + select_ + FromClause();
    if (dialect_.joins == Dialect::Joins::Conditions || !joinConditions_.empty()) {
      text += "\r\n";
      if (!joinConditions_.empty()) text += "WHERE" + joinConditions_;
    }
    text += where_ + group_ + having_;
    if (!query_.beginsCompound) text += order_;
    return WithoutBlankLines(std::move(text));
  }

  const QuerySnapshot& query_;
  const Dialect& dialect_;
  const QueryParts parts_;
  std::vector<std::size_t> alternatives_;                // the criteria columns that choose rows, where a join asks
  std::vector<std::vector<const SnapshotRow*>> rowsOf_;  // by part: its rows with criteria
  std::vector<bool> hasCriteria_;                        // by part: whether it or one inside it has criteria
  std::vector<std::string> tableTerms_;
  mutable std::unordered_map<std::string_view, std::string> columnTerms_;  // as they are written
  CriteriaContext context_;                                                // of the criterion that is being written
  GeneratedSql result_;
  std::string head_;
  std::string select_;
  std::string from_;
  bool cannotLimit_ = false;
  std::size_t depth_ = 0;  // of the group in FROM that is being written
  std::string joinConditions_;
  std::string where_;
  std::string having_;
  std::string group_;
  std::string order_;
};

}  // namespace

GeneratedSql GenerateSelect(const QuerySnapshot& query, const Dialect& dialect, const ExtraConditions& extra) {
  return Generator(query, dialect).Run(extra);
}

}  // namespace zrqrybld
