#include "zrqrybld/sql/question_reader.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "zrqrybld/base/text.h"
#include "zrqrybld/sql/asked_tables.h"
#include "zrqrybld/sql/field_terms.h"
#include "zrqrybld/sql/join_condition.h"
#include "zrqrybld/sql/join_form.h"
#include "zrqrybld/sql/join_list.h"
#include "zrqrybld/sql/name_checker.h"
#include "zrqrybld/sql/statement_parser.h"
#include "zrqrybld/sql/syntax_error.h"

namespace zrqrybld {
namespace {

constexpr std::size_t kMostQuestions = 50;

// --- Taking them out ---

// The query of EXISTS, and whether NOT stands before it; nothing for every other condition. Like joins in WHERE it
// stands bare or in one pair of parentheses, alone or with others; in two pairs it is a criterion.
const Expression* ExistsIn(const Expression& term, bool& forNone, bool mayHaveParentheses) {
  const bool inside = mayHaveParentheses && term.kind == ExpressionKind::Parentheses;
  const Expression* bare = inside ? term.first : &term;
  if (bare->kind == ExpressionKind::Not) {
    forNone = !forNone;
    return ExistsIn(*bare->first, forNone, true);
  }
  if (bare->kind != ExpressionKind::Exists) return nullptr;
  forNone = forNone != bare->negated;
  return StripParentheses(bare->first);
}

// What a query is called by that names no other table than this.
std::string ExposedName(const FromItem& item) {
  if (!item.alias.empty() || item.table.empty()) return PlainName(item.alias);
  return NameParts(item.table).back().Name();
}

void AddExposedNames(const FromItem& item, WordSet& names) {
  names.insert(ExposedName(item));
  for (const JoinStep* step = item.joins; step; step = step->next) AddExposedNames(*step->right, names);
}

// Which rows there are is all that counts, so whatever chooses columns is no matter; what makes one row of many is.
bool ChoosesNoRows(const SelectStatement& query) {
  for (const SelectItem* item = query.items; item; item = item->next) {
    const ExpressionKind kind = item->expression->kind;
    const bool plain =
        kind == ExpressionKind::Star || kind == ExpressionKind::Literal || kind == ExpressionKind::Column;
    if (!plain) return false;
  }
  return query.top.empty() && query.skip.empty() && !query.groupBy && !query.having;
}

std::unique_ptr<SelectStatement> Read(std::string_view statement, const ParseOptions& options) {
  try {
    return std::make_unique<SelectStatement>(ParseSelect(statement, options));
  } catch (const SyntaxError&) {
    return nullptr;
  }
}

// Inner joins alone: their conditions are those of WHERE.
bool TakeTables(const FromItem& item, ReadQuestion& question) {
  if (item.table.empty() || !item.query.empty()) return false;
  question.tables.push_back(&item);
  for (const JoinStep* step = item.joins; step; step = step->next) {
    const bool isInner = step->word == JoinWord::Inner || step->word == JoinWord::Cross;
    if (!isInner || step->natural || step->columns || !TakeTables(*step->right, question)) return false;
    if (step->on) question.conditions.push_back(step->on);
  }
  return true;
}

bool TakeTables(ReadQuestion& question) {
  for (const FromItem* item = question.query->from; item; item = item->next) {
    if (!TakeTables(*item, question)) return false;
  }
  return question.query->from && ChoosesNoRows(*question.query);
}

bool IsAboutOneTable(const SelectStatement& query) {
  const FromItem* table = query.from;
  return table && !table->table.empty() && table->query.empty() && !table->next && !table->joins &&
         ChoosesNoRows(query);
}

class Taking {
 public:
  Taking(SelectStatement& statement, const ParseOptions& options, std::span<const std::string_view> left)
      : options_(options), left_(left) {
    for (const FromItem* item = statement.from; item; item = item->next) AddExposedNames(*item, names_);
    TakeFrom(statement, std::nullopt);
  }

  std::vector<ReadQuestion> questions;

 private:
  // Terms that stood in parentheses with a question keep parentheses of their own.
  void TakeFrom(SelectStatement& statement, std::optional<std::size_t> around) {
    if (!statement.where) return;
    std::vector<Expression*> rest;
    const std::size_t before = questions.size();
    const auto take = [&](Expression* term, bool isInside) {
      if (Take(*term, around, !isInside)) return;
      rest.push_back(isInside ? InParentheses(statement.arena, term) : term);
    };
    for (Expression* term : TermsOf(statement.where)) {
      const bool holds = term->kind == ExpressionKind::Parentheses && term->first->kind == ExpressionKind::And &&
                         std::ranges::any_of(TermsOf(term->first), [](const Expression* inner) {
                           bool forNone = false;
                           return ExistsIn(*inner, forNone, false);
                         });
      if (!holds) {
        take(term, false);
        continue;
      }
      for (Expression* inner : TermsOf(term->first)) take(inner, true);
    }
    if (questions.size() > before) statement.where = Joined(statement.arena, rest);
  }

  static std::vector<Expression*> TermsOf(Expression* condition) {
    if (condition->kind != ExpressionKind::And) return {condition};
    std::vector<Expression*> terms;
    for (Expression* term = condition->first; term; term = term->next) terms.push_back(term);
    return terms;
  }

  static Expression* InParentheses(SyntaxArena& arena, Expression* term) {
    auto* parentheses = arena.Make<Expression>();
    parentheses->kind = ExpressionKind::Parentheses;
    parentheses->text = term->text;
    parentheses->first = term;
    term->next = nullptr;
    return parentheses;
  }

  // The parentheses around a condition that is left alone were there for the others.
  static Expression* Joined(SyntaxArena& arena, const std::vector<Expression*>& terms) {
    if (terms.empty()) return nullptr;
    for (std::size_t i = 0; i < terms.size(); ++i) terms[i]->next = i + 1 < terms.size() ? terms[i + 1] : nullptr;
    if (terms.size() == 1) {
      return terms.front()->kind == ExpressionKind::Parentheses ? terms.front()->first : terms.front();
    }
    auto* all = arena.Make<Expression>();
    all->kind = ExpressionKind::And;
    all->first = terms.front();
    return all;
  }

  bool Take(const Expression& term, std::optional<std::size_t> around, bool mayHaveParentheses) {
    bool forNone = false;
    const Expression* query = questions.size() < kMostQuestions ? ExistsIn(term, forNone, mayHaveParentheses) : nullptr;
    const auto isThis = [query](std::string_view place) { return place.data() == query->text.data(); };
    if (!query || std::ranges::any_of(left_, isThis)) return false;
    ReadQuestion question{ReadInner(*query, options_), forNone, query->text, around};
    if (!question.query || !TakeTables(question)) return false;
    if (!question.query->where && question.conditions.empty()) return false;
    if (!TakeNames(question)) return false;
    const std::size_t place = questions.size();
    questions.push_back(std::move(question));
    SelectStatement& inner = *questions[place].query;
    TakeFrom(inner, place);
    if (inner.where) questions[place].conditions.push_back(inner.where);
    return true;
  }

  // The diagram has one table of a name.
  bool TakeNames(const ReadQuestion& question) {
    WordSet names;
    for (const FromItem* table : question.tables) {
      const std::string name = ExposedName(*table);
      if (names_.contains(name) || !names.insert(name).second) return false;
    }
    names_.insert(names.begin(), names.end());
    return true;
  }

  ParseOptions options_;
  std::span<const std::string_view> left_;
  WordSet names_;
};

}  // namespace

std::unique_ptr<SelectStatement> ReadInner(const Expression& query, const ParseOptions& options) {
  const std::size_t open = query.text.find('(');
  if (query.kind != ExpressionKind::Subquery || open == std::string_view::npos) return nullptr;
  return Read(query.text.substr(open + 1, query.text.size() - open - 2), options);
}

std::unique_ptr<SelectStatement> ReadAsWhere(std::string_view condition, std::string& statement) {
  statement = "SELECT * FROM t WHERE ";  // a condition alone is no statement
  statement += condition;
  std::unique_ptr<SelectStatement> read = Read(statement, {});
  return read && read->where ? std::move(read) : nullptr;
}

std::vector<ReadQuestion> TakeQuestions(SelectStatement& statement, const ParseOptions& options,
                                        std::span<const std::string_view> left) {
  return std::move(Taking(statement, options, left).questions);
}

std::optional<ListQuestion> ReadListQuestion(const std::string& condition) {
  std::string statement;
  const std::unique_ptr<SelectStatement> read = ReadAsWhere(condition, statement);
  const Expression* in = read ? StripParentheses(read->where) : nullptr;
  if (!in || in->kind != ExpressionKind::In || in->first->kind != ExpressionKind::Column) return std::nullopt;
  const std::unique_ptr<SelectStatement> query = ReadInner(*in->first->next, {});
  if (!query || !IsAboutOneTable(*query)) return std::nullopt;
  const SelectItem* item = query->items;
  if (!item || item->next || item->expression->kind != ExpressionKind::Column) return std::nullopt;
  const std::string_view column = item->expression->text;
  std::string exists(in->negated ? "NOT EXISTS (SELECT * FROM " : "EXISTS (SELECT * FROM ");
  exists += std::string(query->from->table) + ' ' + std::string(query->from->alias) + " WHERE " + std::string(column) +
            " = " + std::string(in->first->text);
  if (query->where) {
    const bool isChoice = query->where->kind == ExpressionKind::Or;
    exists += (isChoice ? " AND (" : " AND ") + std::string(query->where->text) + (isChoice ? ")" : "");
  }
  return ListQuestion{exists + ")", ExposedName(*query->from), PlainName(item->expression->name), in->negated};
}

std::vector<const FromItem*> TablesOf(const std::vector<ReadQuestion>& questions) {
  std::vector<const FromItem*> tables;
  for (const ReadQuestion& question : questions) {
    tables.insert(tables.end(), question.tables.begin(), question.tables.end());
  }
  return tables;
}

// --- Binding ---

namespace {

bool IsColumn(const Expression* e) { return StripParentheses(e)->kind == ExpressionKind::Column; }

using JoinsByColumns = std::unordered_map<ColumnPair, std::size_t, HashColumnPair>;

class QuestionBinder {
 public:
  QuestionBinder(BoundStatement& bound, QuerySource& source, const BindOptions& options, const DrawnDiagram& drawn)
      : bound_(bound), source_(source), options_(options), drawn_(drawn), firstAsked_(bound.query.tables.size()) {
    for (std::size_t i = 0; i < drawn.joins.size(); ++i) {
      const DrawnJoin& join = drawn.joins[i];
      if (std::max(join.source, join.target) < firstAsked_) continue;
      drawnAt_.emplace(KeyOf(join.source, join.sourceColumn, join.target, join.targetColumn, join.comparison), i);
    }
  }

  bool Bind(const ReadQuestion& question) {
    NameScope scope(question.query->text, source_);
    for (const SnapshotTable& table : bound_.query.tables) scope.AddKnown(table);
    asked_ = {scope.Tables().size(), scope.Tables().size() + question.tables.size()};
    for (const FromItem* table : question.tables) scope.AddTable(*table);
    asking_ = question.around ? placesOf_[*question.around] : Places{0, firstAsked_};
    placesOf_.push_back(asked_);
    for (const Expression* condition : question.conditions) UnifyNames(*condition, scope);
    RequireKnownNames(*question.query, scope, *options_.dialect, *options_.functions);
    joins_.clear();
    condition_.clear();
    const FieldTerms fields(scope, options_.names, *options_.functions);
    for (const Expression* condition : question.conditions) {
      if (!BindTerm(*condition, scope, fields)) return false;
    }
    const auto link = std::ranges::find_if(joins_, [this](const SnapshotJoin& join) { return IsLink(join); });
    if (link == joins_.end() || !StandTogether()) return false;
    link->condition = condition_;
    for (std::size_t table = asked_.begin; table < asked_.end; ++table) {
      bound_.query.tables.push_back(scope.Tables()[table]);
      bound_.arrangement.order.push_back(table);
    }
    for (SnapshotJoin& join : joins_) {
      if (IsLink(join)) join.kind = JoinKind::Asking(Existence(join, question.forNone));
      Keep(std::move(join));
    }
    return true;
  }

 private:
  // Tables by their positions, without that of `end`.
  struct Places {
    std::size_t begin = 0;
    std::size_t end = 0;
    bool Hold(std::size_t table) const { return table >= begin && table < end; }
  };

  // Whether one end is asked about and the other asks.
  bool IsLink(const SnapshotJoin& join) const { return asked_.Hold(join.source) != asked_.Hold(join.target); }

  // Whether joins lead from the first table to all others.
  bool StandTogether() const {
    std::vector<bool> reached(asked_.end);
    reached[asked_.begin] = true;
    std::size_t count = 1;
    for (bool more = true; std::exchange(more, false);) {
      for (const SnapshotJoin& join : joins_) {
        if (IsLink(join) || reached[join.source] == reached[join.target]) continue;
        reached[join.source] = reached[join.target] = more = true;
        ++count;
      }
    }
    return count == asked_.end - asked_.begin;
  }

  // A name that one of the tables has is that table's, whatever stands around the query.
  void UnifyNames(const Expression& expression, NameScope& scope) const {
    if (expression.kind == ExpressionKind::Column && expression.Qualifier().empty()) {
      const std::string name = PlainName(expression.name);
      std::vector<BoundColumn> columns;
      for (std::size_t table = asked_.begin; table < asked_.end; ++table) {
        if (!source_.KnowsColumns(table)) continue;
        if (std::optional<std::string> column = source_.FindColumn(table, name)) columns.push_back({table, *column});
      }
      if (columns.size() == 1) scope.Unify(name, columns.front());
    }
    for (const Expression* child = expression.first; child; child = child->next) UnifyNames(*child, scope);
  }

  bool BindTerm(const Expression& term, const NameScope& scope, const FieldTerms& fields) {
    const Expression& inside = *StripParentheses(&term);
    if (inside.kind == ExpressionKind::And) {
      for (const Expression* one = inside.first; one; one = one->next) {
        if (!BindTerm(*one, scope, fields)) return false;
      }
      return true;
    }
    if (AddPair(inside, scope)) return true;
    const std::string condition = JoinConditionText(fields.Normalized(term));
    const std::vector<SnapshotTable>& tables = scope.Tables();
    const NamedTables named = TablesNamed(condition, tables);
    if (std::ranges::none_of(named.tables, [this](std::size_t table) { return asked_.Hold(table); })) return false;
    condition_ += (condition_.empty() ? "" : " AND ") + condition;
    return true;
  }

  // A comparison of a column of a table with one of another, or of a table that asks.
  bool AddPair(const Expression& e, const NameScope& scope) {
    if (e.kind != ExpressionKind::Comparison || e.negated || !IsColumn(e.first) || !IsColumn(e.first->next)) {
      return false;
    }
    const std::optional<JoinComparisonEnum> comparison = JoinComparisonOf(e.name);
    const std::optional<BoundColumn> a = scope.Find(*StripParentheses(e.first));
    const std::optional<BoundColumn> b = scope.Find(*StripParentheses(e.first->next));
    if (!comparison || !a || !b || a->table == b->table) return false;
    const auto stands = [this](std::size_t table) { return asked_.Hold(table) || asking_.Hold(table); };
    if (!stands(a->table) || !stands(b->table) || (asking_.Hold(a->table) && asking_.Hold(b->table))) return false;
    SnapshotJoin join{a->table, b->table, Identifier(a->column), Identifier(b->column), {}, *comparison};
    if (join.source > join.target) join = Reversed(std::move(join));
    if (std::ranges::find(joins_, join) == joins_.end()) joins_.push_back(std::move(join));
    return true;
  }

  JoinExistenceEnum Existence(const SnapshotJoin& join, bool forNone) const {
    if (asked_.Hold(join.target)) return forNone ? JoinTargetMissing : JoinTargetExists;
    return forNone ? JoinSourceMissing : JoinSourceExists;
  }

  // What the diagram has stays as it was drawn.
  void Keep(SnapshotJoin join) {
    const auto found = drawnAt_.find(
        KeyOf(join.source, join.sourceColumn->Name(), join.target, join.targetColumn->Name(), join.comparison));
    const std::size_t drawn = found == drawnAt_.end() ? JoinArrangement::kNew : found->second;
    if (drawn != JoinArrangement::kNew) {
      if (join.source != drawn_.joins[drawn].source) join = Reversed(std::move(join));
      drawnAt_.erase(found);
    }
    bound_.query.joins.push_back(join);
    bound_.arrangement.joins.push_back(std::move(join));
    bound_.arrangement.drawn.push_back(drawn);
  }

  BoundStatement& bound_;
  QuerySource& source_;
  const BindOptions& options_;
  const DrawnDiagram& drawn_;
  const std::size_t firstAsked_;
  JoinsByColumns drawnAt_;
  std::vector<Places> placesOf_;  // the tables of each question
  Places asked_;
  Places asking_;
  std::vector<SnapshotJoin> joins_;
  std::string condition_;
};

}  // namespace

const ReadQuestion* BindQuestions(BoundStatement& bound, const std::vector<ReadQuestion>& questions,
                                  QuerySource& source, const BindOptions& options, const DrawnDiagram& drawn) {
  QuestionBinder binder(bound, source, options, drawn);
  for (const ReadQuestion& question : questions) {
    if (!binder.Bind(question)) return &question;
  }
  return PartsOf(bound.query).faults.empty() ? nullptr : &questions.back();
}

}  // namespace zrqrybld
