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

// The query in parentheses; none when it cannot be read.
std::unique_ptr<SelectStatement> ReadInner(const Expression& query, const ParseOptions& options) {
  const std::size_t open = query.text.find('(');
  if (query.kind != ExpressionKind::Subquery || open == std::string_view::npos) return nullptr;
  try {
    return std::make_unique<SelectStatement>(
        ParseSelect(query.text.substr(open + 1, query.text.size() - open - 2), options));
  } catch (const SyntaxError&) {
    return nullptr;
  }
}

bool IsAboutOneTable(const SelectStatement& query) {
  const FromItem* table = query.from;
  return table && !table->table.empty() && table->query.empty() && !table->next && !table->joins &&
         ChoosesNoRows(query);
}

class Taking {
 public:
  Taking(SelectStatement& statement, const ParseOptions& options) : options_(options) {
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
    std::unique_ptr<SelectStatement> read = query ? ReadInner(*query, options_) : nullptr;
    if (!read || !read->where || !IsAboutOneTable(*read)) return false;
    if (!names_.insert(ExposedName(*read->from)).second) return false;  // the diagram has one table of a name
    const std::size_t place = questions.size();
    questions.push_back({std::move(read), forNone, around});
    TakeFrom(*questions[place].query, place);
    return true;
  }

  ParseOptions options_;
  WordSet names_;
};

}  // namespace

std::vector<ReadQuestion> TakeQuestions(SelectStatement& statement, const ParseOptions& options) {
  return std::move(Taking(statement, options).questions);
}

std::optional<ListQuestion> ReadListQuestion(const std::string& condition) {
  const std::string statement = "SELECT * FROM t WHERE " + condition;  // a condition alone is no statement
  std::unique_ptr<SelectStatement> read;
  std::unique_ptr<SelectStatement> query;
  try {
    read = std::make_unique<SelectStatement>(ParseSelect(statement, {}));
  } catch (const SyntaxError&) {
    return std::nullopt;
  }
  const Expression* in = read->where ? StripParentheses(read->where) : nullptr;
  if (!in || in->kind != ExpressionKind::In || in->first->kind != ExpressionKind::Column) return std::nullopt;
  query = ReadInner(*in->first->next, {});
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
  tables.reserve(questions.size());
  for (const ReadQuestion& question : questions) tables.push_back(question.query->from);
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
    asked_ = scope.AddTable(*question.query->from);
    asking_ = question.around ? std::optional(firstAsked_ + *question.around) : std::nullopt;
    if (question.query->where) UnifyNames(*question.query->where, scope);
    RequireKnownNames(*question.query, scope, *options_.dialect, *options_.functions);
    joins_.clear();
    condition_.clear();
    const FieldTerms fields(scope, options_.names, *options_.functions);
    if (!question.query->where || !BindTerm(*question.query->where, scope, fields) || joins_.empty()) return false;
    joins_.front().condition = condition_;
    bound_.query.tables.push_back(scope.Tables().back());
    bound_.arrangement.order.push_back(asked_);
    for (SnapshotJoin& join : joins_) {
      join.kind = JoinKind::Asking(Existence(join, question.forNone));
      Keep(std::move(join));
    }
    return true;
  }

 private:
  // A name that the table has is the table's, whatever stands around the query.
  void UnifyNames(const Expression& expression, NameScope& scope) const {
    if (expression.kind == ExpressionKind::Column && expression.Qualifier().empty() && source_.KnowsColumns(asked_)) {
      const std::string name = PlainName(expression.name);
      if (const std::optional<std::string> column = source_.FindColumn(asked_, name)) {
        scope.Unify(name, {asked_, *column});
      }
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
    if (std::ranges::find(named.tables, asked_) == named.tables.end()) return false;
    condition_ += (condition_.empty() ? "" : " AND ") + condition;
    return true;
  }

  // A comparison of a column of the table with one of a table that asks.
  bool AddPair(const Expression& e, const NameScope& scope) {
    if (e.kind != ExpressionKind::Comparison || e.negated || !IsColumn(e.first) || !IsColumn(e.first->next)) {
      return false;
    }
    const std::optional<JoinComparisonEnum> comparison = JoinComparisonOf(e.name);
    const std::optional<BoundColumn> a = scope.Find(*StripParentheses(e.first));
    const std::optional<BoundColumn> b = scope.Find(*StripParentheses(e.first->next));
    if (!comparison || !a || !b || (a->table == asked_) == (b->table == asked_)) return false;
    if (!Asks(a->table == asked_ ? b->table : a->table)) return false;
    SnapshotJoin join{a->table, b->table, Identifier(a->column), Identifier(b->column), {}, *comparison};
    if (join.source == asked_) join = Reversed(std::move(join));
    if (std::ranges::find(joins_, join) == joins_.end()) joins_.push_back(std::move(join));
    return true;
  }

  bool Asks(std::size_t table) const { return asking_ ? table == *asking_ : table < firstAsked_; }

  JoinExistenceEnum Existence(const SnapshotJoin& join, bool forNone) const {
    if (join.target == asked_) return forNone ? JoinTargetMissing : JoinTargetExists;
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
  std::size_t asked_ = 0;
  std::optional<std::size_t> asking_;  // none for the tables of the statement itself
  std::vector<SnapshotJoin> joins_;
  std::string condition_;
};

}  // namespace

bool BindQuestions(BoundStatement& bound, const std::vector<ReadQuestion>& questions, QuerySource& source,
                   const BindOptions& options, const DrawnDiagram& drawn) {
  QuestionBinder binder(bound, source, options, drawn);
  for (const ReadQuestion& question : questions) {
    if (!binder.Bind(question)) return false;
  }
  return PartsOf(bound.query).faults.empty();
}

}  // namespace zrqrybld
