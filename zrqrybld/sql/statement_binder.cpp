#include "zrqrybld/sql/statement_binder.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_sql.h"
#include "zrqrybld/sql/criteria_binder.h"
#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/field_terms.h"
#include "zrqrybld/sql/from_binder.h"
#include "zrqrybld/sql/join_form.h"
#include "zrqrybld/sql/join_limits.h"
#include "zrqrybld/sql/keywords.h"
#include "zrqrybld/sql/lexer.h"
#include "zrqrybld/sql/name_checker.h"
#include "zrqrybld/sql/outer_queries.h"

namespace zrqrybld {
namespace {

bool IsRowNumber(const Expression& e) { return EqualsNoCase(e.text, NameOf(Keyword::Rownum)); }
bool IsFigure(const Expression& e) { return e.kind == ExpressionKind::Literal && IsDigit(e.text.front()); }

// The number that "ROWNUM <= n" limits the rows to; none for every other condition.
std::optional<std::string> RowLimitOf(const Expression& e) {
  if (e.kind != ExpressionKind::Comparison || e.negated || !IsRowNumber(*e.first) || !IsFigure(*e.first->next)) {
    return std::nullopt;
  }
  const std::string_view number = e.first->next->text;
  if (e.name == "<=") return OnOneLine(number);
  if (e.name == "=" && number == "1") return std::string("1");
  return std::nullopt;
}

// The same, however it is written: "n >= ROWNUM", "ROWNUM < n + 1", in one pair of parentheses. In two it is a
// criterion.
std::optional<std::string> AnyRowLimitOf(const Expression& term) {
  const Expression& e = term.kind == ExpressionKind::Parentheses ? *term.first : term;
  if (std::optional<std::string> limit = RowLimitOf(e)) return limit;
  if (e.kind != ExpressionKind::Comparison || e.negated) return std::nullopt;
  const bool isFirst = IsRowNumber(*e.first);
  const Expression& number = isFirst ? *e.first->next : *e.first;
  if (!IsFigure(number) || !(isFirst || IsRowNumber(*e.first->next))) return std::nullopt;
  if (e.name == (isFirst ? "<=" : ">=")) return OnOneLine(number.text);
  const bool isWhole = number.text.find_first_not_of("0123456789") == std::string_view::npos && number.text.size() <= 9;
  const double next = isWhole ? ParseNumber(number.text).value_or(0) : 0;
  if (e.name != (isFirst ? "<" : ">") || next < 1) return std::nullopt;
  return std::to_string(static_cast<int>(next) - 1);
}

constexpr double kMostSkipped = 2147483647;

// ORDER BY (SELECT NULL), which asks for no order where an offset needs one.
bool IsAnyOrder(const OrderItem* item) {
  if (!item || item->next || item->expression->kind != ExpressionKind::Subquery) return false;
  std::string words;
  const std::string_view text = item->expression->text;
  for (const Token& token : Tokenize(text)) words += std::string(text.substr(token.offset, token.length)) + " ";
  return EqualsNoCase(words, "( SELECT NULL ) ");
}

bool IsAggregate(const SnapshotRow& row) { return row.grouping.HasSyntax(); }

// An expression of numbers alone.
bool IsFigures(const SnapshotRow& row) {
  return !row.table && row.column.find_first_not_of("0123456789.+-*/() ") == std::string::npos;
}

class Binder {
 public:
  Binder(const SelectStatement& statement, NameScope& scope, const BindOptions& options)
      : statement_(statement),
        scope_(scope),
        options_(options),
        fields_(scope, options.names, *options.functions),
        rows_(query_.rows) {}

  // With joins from WHERE where that means the same, otherwise with those conditions as criteria.
  BoundStatement Run() {
    query_.tables = scope_.Tables();
    query_.names = options_.names;
    query_.criteria = options_.criteria;
    query_.distinct = statement_.distinct;
    IndexItems();
    BindTop();
    BindFrom();
    FindGrouping();
    BindSelectList();
    BindGroupBy();
    BindConditions();
    BindOrderBy();
    return {std::move(query_), std::move(arrangement_)};
  }

 private:
  // --- SELECT ---

  void SetTop(const std::string& text, std::string_view place) {
    if (!query_.top.empty()) scope_.Refuse(place, text::SecondRowLimit);
    const bool percent = text.ends_with('%');
    const std::optional<double> number = ParseNumber(text.substr(0, text.size() - (percent ? 1 : 0)));
    const bool whole = text.find_first_not_of("0123456789%") == std::string::npos;
    if (!number || !whole || text.size() > 9 || (percent && *number > 100)) {
      scope_.Refuse(place, text::BadRowLimit);
    }
    query_.top = text;
  }

  void BindTop() {
    if (!statement_.top.empty()) {
      SetTop(std::string(statement_.top) + (statement_.topPercent ? "%" : ""), statement_.top);
    }
    const RowLimit& limit = options_.dialect->limit;
    if (statement_.topPercent && limit.percent.empty()) {
      scope_.Refuse(statement_.top, text::DialectWithoutPercentages);
    }
    if (statement_.skip.find_first_not_of('0') == std::string_view::npos) return;
    if (limit.offset.empty()) scope_.Refuse(statement_.skip, text::DialectWithoutOffset);
    if (statement_.topPercent) scope_.Refuse(statement_.skip, text::PercentageWithOffset);
    const std::optional<double> number = ParseNumber(statement_.skip);
    if (!number || *number > kMostSkipped ||
        statement_.skip.find_first_not_of("0123456789") != std::string_view::npos) {
      scope_.Refuse(statement_.skip, text::BadOffset);
    }
    query_.skip = static_cast<std::int32_t>(*number);
  }

  // "@field" in an expression would be replaced when the statement is written.
  std::string ExpressionText(const Expression& expression) const {
    std::string text = fields_.Written(expression);
    if (FindNoCase(text, "@field") != std::string::npos) {
      scope_.Refuse(expression.text, text::FieldIsPlaceholder);
    }
    return text;
  }

  // A column, an aggregate or an expression. A name that no table has is an expression only when it is known to mean
  // something by itself.
  RowField FieldOf(const Expression& expression) const {
    if (std::optional<RowField> aggregate = fields_.AggregateOf(expression)) return *aggregate;
    if (std::optional<RowField> column = fields_.ColumnOf(expression)) return *column;
    const Expression& inner = *StripParentheses(&expression);
    const bool isText = options_.dialect->doubleQuotesAreTexts && inner.text.starts_with('"');
    const bool isName = inner.kind == ExpressionKind::Column && !isText && !NameScope::IsPseudoColumn(inner.name);
    if (isName && !scope_.MeansOuter(inner)) scope_.Require(inner);
    return {std::nullopt, ExpressionText(expression), {}};
  }

  void BindSelectList() {
    for (const SelectItem* item = statement_.items; item; item = item->next) {
      const Expression& e = *item->expression;
      if (e.kind == ExpressionKind::Star) {
        BindStar(e);
        continue;
      }
      const RowField field = FieldOf(e);
      const std::size_t row = AddOutput(field, KeyOf(e));
      rows_[row].alias = Identifier(PlainName(item->alias));
      outputs_.push_back({row, &e, rows_[row].alias.Name()});
      if (!item->alias.empty()) aliases_.emplace(FoldCase(rows_[row].alias.Name()), row);
    }
  }

  // Groups by the field when GROUP BY names it; the first row of the field does so.
  std::size_t AddOutput(const RowField& field, const std::string& key) {
    const std::size_t row = rows_.Add(field);
    rows_[row].output = true;
    if (!query_.groupByMode || IsAggregate(rows_[row])) return row;
    const auto grouping = grouping_.find(key);
    const bool groups = grouping != grouping_.end() && !grouping->second.placed;
    if (groups) grouping->second.placed = true;
    rows_[row].grouping = groups ? GroupingKind::GroupBy : GroupingKind::Expression;
    return row;
  }

  // A row "*" for each table; where joined columns are one, each column by itself.
  void BindStar(const Expression& star) {
    if (star.text != "*") return AddStar(scope_.RequireTable(star.Qualifier(), star.text));
    if (scope_.Tables().empty()) scope_.Refuse(star.text, text::StarNeedsTable);
    if (!scope_.HasUnified()) {
      for (std::size_t table = 0; table < scope_.Tables().size(); ++table) AddStar(table);
      return;
    }
    for (std::size_t table = 0; table < scope_.Tables().size(); ++table) {
      if (!scope_.Source().KnowsColumns(table)) scope_.Refuse(star.text, text::StarUnknown);
    }
    for (const BoundColumn& column : from_.columns) {
      const RowField field{column.table, column.column, {}};
      outputs_.push_back({AddOutput(field, fields_.TermOf(field)), nullptr, column.column});
    }
  }

  void AddStar(std::size_t table) {
    const std::size_t row = rows_.Add({table, "*", {}});
    rows_[row].output = true;
    outputs_.push_back({row, nullptr, {}});
  }

  // --- FROM ---

  void BindFrom() {
    BoundFrom bound = ReadFrom({});
    if (bound.hasFull && !options_.dialect->hasFullJoin && options_.dialect->joins == Dialect::Joins::Clauses) {
      scope_.Refuse(bound.firstOuter, text::DialectWithoutFullJoin);
    }
    constexpr FromReading kOthers[] = {
        {.joinsFromWhere = false}, {.crossesAsJoins = true}, {.crossesAsJoins = true, .nestsAll = true}};
    const FromReading* next = std::begin(kOthers);
    while (!Take(bound)) {
      if (next == std::end(kOthers)) scope_.Refuse(bound.firstOuter, text::JoinsInOtherOrder);
      bound = ReadFrom(*next++);
    }
    from_ = std::move(bound);
  }

  BoundFrom ReadFrom(FromReading reading) {
    return FromBinder(statement_, scope_, fields_, options_.drawn, *options_.dialect, reading).Bind();
  }

  // Whether the generated text means what the statement says. A dialect without "all rows of both" keeps it in the
  // diagram alone.
  bool Take(const BoundFrom& bound) {
    const bool means = bound.firstOuter.empty() || (bound.hasFull && !options_.dialect->hasFullJoin);
    const bool hasGroups =
        std::ranges::any_of(options_.drawn.joins, [](const DrawnJoin& j) { return j.groupLevel > 0; });
    return (hasGroups && TakeGroups(bound, means)) || TakeInOrder(bound, bound.joins, means) ||
           (!hasGroups && TakeGroups(bound, means));
  }

  bool TakeGroups(const BoundFrom& bound, bool means) {
    const bool isTooDeep = std::ranges::any_of(bound.groupLevels, [](std::int32_t l) { return l > kDeepestJoinGroup; });
    if (!options_.dialect->hasJoinGroups || isTooDeep) return false;
    std::vector<SnapshotJoin> joins = bound.joins;
    for (std::size_t i = 0; i < joins.size(); ++i) joins[i].groupLevel = bound.groupLevels[i];
    return joins != bound.joins && TakeInOrder(bound, joins, means);
  }

  bool TakeInOrder(const BoundFrom& bound, const std::vector<SnapshotJoin>& joins, bool means) {
    JoinOrders orders(query_.tables.size(), joins, options_.drawn, *options_.dialect);
    while (std::optional<JoinArrangement> way = orders.Next()) {
      query_.joins = way->joins;
      arrangement_ = std::move(*way);
      if (means || MeaningOfGeneratedJoins(query_, arrangement_.order, *options_.dialect) == bound.meaning) return true;
    }
    return false;
  }

  // --- GROUP BY ---

  // What a grouping expression is known by.
  std::string KeyOf(const Expression& e) const { return fields_.Normalized(*StripParentheses(&e)); }

  // The items of the select list by place, up to the first "*", and by alias; the first of each.
  void IndexItems() {
    bool counts = true;
    for (const SelectItem* item = statement_.items; item; item = item->next) {
      counts = counts && item->expression->kind != ExpressionKind::Star;
      if (counts) itemsByPlace_.push_back(item);
      if (!item->alias.empty()) itemsByAlias_.emplace(FoldCase(PlainName(item->alias)), item);
    }
  }

  const SelectItem* ItemAt(const Expression& position) const {
    const double place = ParseNumber(position.text).value_or(0);
    if (place < 1 || place > static_cast<double>(itemsByPlace_.size()) || place != std::floor(place)) return nullptr;
    return itemsByPlace_[static_cast<std::size_t>(place) - 1];
  }

  const SelectItem* ItemNamed(std::string_view alias) const {
    const auto found = itemsByAlias_.find(FoldCase(alias));
    return found == itemsByAlias_.end() ? nullptr : found->second;
  }

  // A position or an alias stands for the item of the select list; a number that is none for itself.
  const Expression& GroupedBy(const Expression& e) const {
    if (e.kind == ExpressionKind::Literal && IsDigit(e.text.front())) {
      const SelectItem* item = ItemAt(e);
      return item ? *item->expression : e;
    }
    const Expression& inner = *StripParentheses(&e);
    if (inner.kind == ExpressionKind::Column && inner.Qualifier().empty()) {
      const SelectItem* item = ItemNamed(PlainName(inner.name));
      if (item && !scope_.TryFind(inner)) return *item->expression;
    }
    return e;
  }

  void FindGrouping() {
    for (const OrderItem* item = statement_.groupBy; item; item = item->next) {
      const Expression& e = GroupedBy(*item->expression);
      const std::string key = KeyOf(e);
      if (grouping_.emplace(key, Grouping{&e, false}).second) groupingOrder_.push_back(key);
    }
    query_.groupByMode = statement_.groupBy || statement_.having;
    for (const SelectItem* item = statement_.items; item && !query_.groupByMode; item = item->next) {
      query_.groupByMode = fields_.AggregateOf(*item->expression).has_value();
    }
    for (const OrderItem* item = statement_.orderBy; item && !query_.groupByMode; item = item->next) {
      query_.groupByMode = fields_.AggregateOf(*item->expression).has_value();
    }
  }

  // What the select list does not show.
  void BindGroupBy() {
    for (const std::string& key : groupingOrder_) {
      Grouping& grouping = grouping_.at(key);
      if (grouping.placed) continue;
      RowField field = FieldOf(*grouping.expression);
      if (field.grouping.HasSyntax()) field = {std::nullopt, ExpressionText(*grouping.expression), {}};
      rows_[rows_.Add(field)].grouping = GroupingKind::GroupBy;
    }
  }

  // --- WHERE and HAVING ---

  void BindConditions() {
    CriteriaContext context = options_.criteria;
    context.quotePrefix = options_.names.quotePrefix;
    CriteriaBinder criteria(
        scope_, fields_, rows_,
        {query_.groupByMode, options_.criteriaColumns, options_.usualCriteriaColumns, std::move(context)});
    criteria.isAlias = [this](std::string_view name) { return aliases_.contains(FoldCase(name)); };
    criteria.Place(WhereAlternatives(criteria), false);
    if (!statement_.having) return;
    const Expression& having = *statement_.having;
    criteria.Place(criteria.Fitting(CriteriaBinder::AlternativesOf(having), having, true), true);
  }

  std::vector<CriteriaTerms> WhereAlternatives(const CriteriaBinder& criteria) {
    std::vector<const Expression*> terms = std::move(from_.where);
    std::erase_if(terms, [this](const Expression* term) {
      const std::optional<std::string> limit = AnyRowLimitOf(*term);
      if (limit) SetTop(*limit, term->text);
      return limit.has_value();
    });
    const bool takesLimit = options_.dialect->limit.place == RowLimit::Place::Condition && query_.top.empty();
    if (terms.size() == 1 && from_.conditions.empty()) {
      std::vector<CriteriaTerms> alternatives = CriteriaBinder::AlternativesOf(*terms[0], from_.whereHadJoins);
      if (takesLimit && alternatives.size() > 1 && TakeLimit(alternatives.back())) return alternatives;
      // A limit would be written behind the last alternative and count for that one alone.
      const bool limitsLastOnly = options_.dialect->limit.place == RowLimit::Place::Condition && !query_.top.empty();
      if (limitsLastOnly && query_.joins.empty() && alternatives.size() > 1) return {{terms[0]}};
      return criteria.Fitting(std::move(alternatives), *terms[0], false);
    }
    terms.insert(terms.begin(), from_.conditions.begin(), from_.conditions.end());
    if (terms.empty()) return {};
    return {terms};
  }

  // The generator writes a limit behind the last alternative, as if it stood for all.
  bool TakeLimit(CriteriaTerms& terms) {
    if (terms.size() < 2) return false;
    const std::optional<std::string> limit = RowLimitOf(*terms.back());
    if (!limit) return false;
    SetTop(*limit, terms.back()->text);
    terms.pop_back();
    if (terms.size() > 1) return true;
    std::vector<CriteriaTerms> inner = CriteriaBinder::AlternativesOf(*terms[0]);
    if (inner.size() == 1) terms = std::move(inner.front());
    return true;
  }

  // --- ORDER BY ---

  struct Output {
    std::size_t row;
    const Expression* expression;  // none for "*"
    std::string alias;             // or the column's name, where "*" stands for columns
  };

  void BindOrderBy() {
    int order = 0;
    if (query_.skip > 0 && IsAnyOrder(statement_.orderBy)) return;
    for (const OrderItem* item = statement_.orderBy; item; item = item->next) {
      const bool hasNulls = item->nulls != NullsPlace::Usual;
      if (hasNulls && !options_.dialect->hasNullsPlace) {
        rows_[SortedAsWritten(*item)].sort = {SortDirection::Ascending, ++order};
        continue;
      }
      const std::size_t row = RowToSort(*item->expression);
      // Sorting by the same once more changes nothing; in a compound two alike columns are the same in the first member
      // alone.
      if (options_.beginsCompound ? rows_[row].sort.place.has_value() : IsSorted(rows_[row])) continue;
      // Nor does sorting by a number of the select list, which would be written as if it were a position.
      if (!options_.beginsCompound && rows_[row].output && IsFigures(rows_[row])) continue;
      const SortDirection direction = item->descending ? SortDirection::Descending : SortDirection::Ascending;
      rows_[row].sort = {direction, ++order, item->nulls};
    }
  }

  bool IsSorted(const SnapshotRow& row) const {
    const RowField field{row.table, row.column, IsAggregate(row) ? row.grouping : RowGrouping()};
    return rows_.FindAny(field, [](const SnapshotRow& alike) { return alike.sort.place.has_value(); }).has_value();
  }

  // Where the dialect is not known to say where Nulls come, the whole term is an expression, which is written without
  // any other.
  std::size_t SortedAsWritten(const OrderItem& item) {
    std::string term = fields_.Normalized(SortedBy(*item.expression));
    term += item.descending ? " DESC" : "";
    term += WordsOf(item.nulls);
    const std::size_t row = rows_.Add({std::nullopt, std::move(term), {}});
    if (query_.groupByMode) rows_[row].grouping = GroupingKind::Expression;
    return row;
  }

  // A position or an alias stands for the item of the select list.
  const Expression& SortedBy(const Expression& e) const {
    if (e.kind == ExpressionKind::Column && e.Qualifier().empty()) {
      const SelectItem* item = ItemNamed(PlainName(e.name));
      return item ? *item->expression : e;
    }
    return GroupedBy(e);
  }

  std::size_t RowToSort(const Expression& e) {
    if (e.kind == ExpressionKind::Literal && IsDigit(e.text.front())) {
      // A number that is no position is written as it is read: who sorts by a constant sorts by nothing.
      if (const std::optional<std::size_t> row = RowAt(e)) return *row;
      return RowToSort(RowField{std::nullopt, ExpressionText(e), {}});
    }
    const Expression& inner = *StripParentheses(&e);
    if (inner.kind == ExpressionKind::Column && inner.Qualifier().empty()) {
      const std::string name = PlainName(inner.name);
      if (const auto alias = aliases_.find(FoldCase(name)); alias != aliases_.end()) return alias->second;
      if (const std::optional<std::size_t> row = OutputNamed(name)) return *row;
    }
    return RowToSort(FieldOf(e));
  }

  // A row that the field has already, or a new one that is not output.
  std::size_t RowToSort(const RowField& field) {
    const auto suits = [&](const SnapshotRow& row) { return field.table || row.criteria.empty(); };
    if (const std::optional<std::size_t> row = rows_.FindAny(field, suits)) return *row;
    const std::size_t row = rows_.Add(field);
    if (query_.groupByMode && !field.grouping.HasSyntax()) rows_[row].grouping = GroupingKind::Expression;
    return row;
  }

  // The one column of the select list with this name.
  std::optional<std::size_t> OutputNamed(const std::string& name) const {
    std::optional<std::size_t> found;
    for (const Output& output : outputs_) {
      if (!output.expression || output.expression->kind != ExpressionKind::Column || !output.alias.empty() ||
          !EqualsNoCase(PlainName(output.expression->name), name)) {
        continue;
      }
      if (found) return std::nullopt;
      found = output.row;
    }
    return found;
  }

  // The row of a column of the result, by its position from 1; none where there is no such column, or nobody knows.
  std::optional<std::size_t> RowAt(const Expression& position) {
    double left = ParseNumber(position.text).value_or(0);
    for (const Output& output : outputs_) {
      if (left < 1) break;
      const SnapshotRow& row = rows_[output.row];
      if (row.column != "*" || output.expression) {
        if (left == 1) return output.row;
        left -= 1;
        continue;
      }
      if (!scope_.Source().KnowsColumns(*row.table)) return std::nullopt;
      const std::vector<std::string> columns = scope_.Source().Columns(*row.table);
      if (left <= static_cast<double>(columns.size())) {
        return RowToSort(RowField{row.table, columns[static_cast<std::size_t>(left) - 1], {}});
      }
      left -= static_cast<double>(columns.size());
    }
    return std::nullopt;
  }

  struct Grouping {
    const Expression* expression;
    bool placed;  // a row of the select list groups by it
  };

  const SelectStatement& statement_;
  NameScope& scope_;
  const BindOptions& options_;
  QuerySnapshot query_;
  FieldTerms fields_;
  QueryRows rows_;
  BoundFrom from_;
  JoinArrangement arrangement_;
  std::vector<const SelectItem*> itemsByPlace_;
  std::unordered_map<std::string, const SelectItem*> itemsByAlias_;  // case-folded
  std::vector<Output> outputs_;
  std::unordered_map<std::string, std::size_t> aliases_;  // case-folded; the row
  std::unordered_map<std::string, Grouping> grouping_;
  std::vector<std::string> groupingOrder_;
};

}  // namespace

BoundStatement BindStatement(const SelectStatement& statement, QuerySource& source, const BindOptions& options) {
  NameScope scope(statement.text, source, options.outer ? &options.outer->Scope() : nullptr);
  AddTables(statement, scope);
  BoundStatement bound = Binder(statement, scope, options).Run();
  RequireKnownNames(statement, scope, *options.dialect, *options.functions);
  return bound;
}

}  // namespace zrqrybld
