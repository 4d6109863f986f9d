#include "zrqrybld/sql/from_binder.h"

#include <algorithm>
#include <utility>

#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_sql.h"
#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/join_condition.h"
#include "zrqrybld/sql/join_list.h"

namespace zrqrybld {
namespace {

bool SharesColumns(const FromItem& item) {
  for (const JoinStep* step = item.joins; step; step = step->next) {
    if (step->natural || step->columns || SharesColumns(*step->right)) return true;
  }
  return false;
}

bool IsOuter(JoinWord word) { return word != JoinWord::Inner && word != JoinWord::Cross; }

bool HasOuterJoin(const FromItem& item) {
  for (const JoinStep* step = item.joins; step; step = step->next) {
    if (IsOuter(step->word) || HasOuterJoin(*step->right)) return true;
  }
  return false;
}

// Calls `visit` for each term of a condition whose terms are joined by AND, inside parentheses too.
template <class Visit>
void ForEachTerm(const Expression* condition, const Visit& visit) {
  std::vector<const Expression*> pending{condition};
  while (!pending.empty()) {
    const Expression* term = StripParentheses(pending.back());
    pending.pop_back();
    if (term->kind != ExpressionKind::And) {
      visit(*term);
      continue;
    }
    const std::size_t first = pending.size();
    for (const Expression* e = term->first; e; e = e->next) pending.push_back(e);
    std::reverse(pending.begin() + static_cast<std::ptrdiff_t>(first), pending.end());
  }
}

bool IsEquality(std::string_view sign) { return sign == "=" || sign == "==" || sign == "*=" || sign == "=*"; }

bool IsColumn(const Expression& e) { return StripParentheses(&e)->kind == ExpressionKind::Column; }

// Whether both sides are columns, compared by a sign that joins tables.
bool ComparesColumns(const Expression& e, bool anySign) {
  if (e.kind != ExpressionKind::Comparison || e.negated || !IsColumn(*e.first) || !IsColumn(*e.first->next))
    return false;
  return IsEquality(e.name) || (anySign && JoinComparisonOf(e.name).has_value());
}

bool IsMark(const Expression& e) {
  return (e.kind == ExpressionKind::Column && e.optional) ||
         (e.kind == ExpressionKind::Comparison && (e.name == "*=" || e.name == "=*"));
}

bool HasMark(const Expression& e) {
  if (IsMark(e)) return true;
  for (const Expression* child = e.first; child; child = child->next) {
    if (HasMark(*child)) return true;
  }
  return false;
}

}  // namespace

// --- Tables ---

namespace {

void CollectTables(const FromItem& item, std::vector<const FromItem*>& tables) {
  tables.push_back(&item);
  for (const JoinStep* step = item.joins; step; step = step->next) CollectTables(*step->right, tables);
}

}  // namespace

std::vector<const FromItem*> TablesOf(const SelectStatement& statement) {
  std::vector<const FromItem*> tables;
  for (const FromItem* item = statement.from; item; item = item->next) CollectTables(*item, tables);
  return tables;
}

void AddTables(const SelectStatement& statement, NameScope& scope) {
  for (const FromItem* item : TablesOf(statement)) scope.AddTable(*item);
}

// --- FROM ---

BoundFrom FromBinder::Bind() {
  for (const FromItem* item = statement_.from; item; item = item->next) {
    sharesColumns_ |= SharesColumns(*item);
    hasOuterJoin_ |= HasOuterJoin(*item);
  }
  forms_.emplace(hasOuterJoin_ ? scope_.Tables().size() : 0);
  std::optional<JoinForms::Form> all;
  std::size_t number = 0;
  for (const FromItem* item = statement_.from; item; item = item->next) {
    const Side side = BindItem(*item);
    itemOf_.resize(side.end, number++);
    if (hasOuterJoin_) all = all ? forms_->Inner(*all, side.form, {}) : side.form;
    bound_.columns.insert(bound_.columns.end(), side.columns.begin(), side.columns.end());
  }
  for (const Residual& residual : residuals_) {
    if (residual.isAsked) continue;
    bound_.conditions.insert(bound_.conditions.end(), residual.conditions.begin(), residual.conditions.end());
  }
  BindWhere();
  RefuseMarksOutsideWhere();
  for (auto& [join, condition] : asked_) bound_.joins[join].condition = std::move(condition);
  if (hasMarks_) {
    FinishMarks();
  } else if (all) {
    forms_->Filter(*all, whereJoins_);
    bound_.meaning = forms_->Text(*all);
  }
  return std::move(bound_);
}

FromBinder::Side FromBinder::BindItem(const FromItem& item) {
  const std::size_t table = nextTable_++;
  Side side{table, table, table + 1, {}};
  if (sharesColumns_) {
    for (std::string& column : scope_.Source().Columns(table)) side.columns.push_back({table, std::move(column)});
  }
  const std::size_t firstResidual = residuals_.size();
  const std::int32_t level = level_;
  for (const JoinStep* step = item.joins; step && reading_.nestsAll; step = step->next) ++level_;
  for (const JoinStep* step = item.joins; step; step = step->next) {
    if (reading_.nestsAll) --level_;
    BindStep(side, *step, firstResidual);
  }
  level_ = level;
  return side;
}

void FromBinder::BindStep(Side& left, const JoinStep& step, std::size_t firstResidual) {
  const std::size_t rightResidual = residuals_.size();
  const bool isGroup = step.right->joins != nullptr;
  level_ += isGroup ? 1 : 0;
  const Side right = BindItem(*step.right);
  level_ -= isGroup ? 1 : 0;
  Terms terms = TermsOf(left, right, step);
  const bool allOfLeft = step.word == JoinWord::Left || step.word == JoinWord::Full;
  const bool allOfRight = step.word == JoinWord::Right || step.word == JoinWord::Full;
  const std::span residuals(residuals_);
  if (allOfLeft) KeepFromWhere(residuals.subspan(rightResidual), right.form);
  if (allOfRight) KeepFromWhere(residuals.subspan(firstResidual, rightResidual - firstResidual), left.form);
  if (IsOuter(step.word) && bound_.firstOuter.empty()) bound_.firstOuter = step.place;
  if (sharesColumns_) JoinColumns(left, right, step.on ? std::vector<JoinPair>() : terms.pairs, step);
  const std::vector<std::size_t> joins = AddPairs(terms.pairs, right, allOfLeft, allOfRight);
  if (IsOuter(step.word)) {
    BindOuter(terms, joins, left, right, {.allOfTarget = allOfRight, .allOfSource = allOfLeft});
  } else {
    BindInner(terms, joins, left, right);
  }
  const std::vector<JoinPair>& pairs = terms.pairs;
  left.end = right.end;
  if (!hasOuterJoin_) return;
  switch (step.word) {
    case JoinWord::Inner:
    case JoinWord::Cross:
      left.form = forms_->Inner(left.form, right.form, pairs);
      break;
    case JoinWord::Left:
      left.form = forms_->Left(left.form, right.form, pairs);
      break;
    case JoinWord::Right:
      left.form = forms_->Left(right.form, left.form, pairs);
      break;
    case JoinWord::Full:
      left.form = forms_->Full(left.form, right.form, pairs);
      bound_.hasFull = true;
      break;
  }
}

// The pairs of columns of ON, USING or NATURAL, and what else ON says.
FromBinder::Terms FromBinder::TermsOf(const Side& left, const Side& right, const JoinStep& step) {
  Terms terms;
  if (step.natural || step.columns) AddSharedColumns(terms.pairs, left, right, step);
  const bool isInner = !IsOuter(step.word);
  if (step.on) ForEachTerm(step.on, [&](const Expression& term) { AddTerm(terms, term, left, right, isInner); });
  if (terms.pairs.empty() && terms.others.empty() && !isInner) scope_.Refuse(step.place, text::OuterNeedsColumns);
  return terms;
}

void FromBinder::AddTerm(Terms& terms, const Expression& term, const Side& left, const Side& right,
                         bool isInner) const {
  if (HasMark(term)) scope_.Refuse(term.text, text::MarkInOn);
  const std::optional<JoinPair> pair = PairOf(term);
  const auto isInside = [&](std::size_t table) { return left.Holds(table) || right.Holds(table); };
  if (pair && (!isInside(pair->left) || !isInside(pair->right))) {
    scope_.Refuse(term.text, text::NotJoinedHere);
  }
  const bool linksSides = pair && left.Holds(pair->left) != left.Holds(pair->right);
  if (pair && CanSay(*pair, isInner) && (linksSides || (isInner && pair->comparison == JoinEqual))) {
    terms.pairs.push_back(*pair);
    return;
  }
  if (AddBetween(terms.pairs, term, left, right)) return;
  RequireClearNames(term);
  if (!isInner && dialect_.joins == Dialect::Joins::Conditions) scope_.Refuse(term.text, text::OnlyColumnPairs);
  terms.others.push_back(&term);
}

// "a.x BETWEEN b.low AND b.high" is two comparisons.
bool FromBinder::AddBetween(std::vector<JoinPair>& pairs, const Expression& term, const Side& left,
                            const Side& right) const {
  if (term.kind != ExpressionKind::Between || term.negated || dialect_.joins == Dialect::Joins::Conditions)
    return false;
  const Expression* low = term.first->next;
  if (!IsColumn(*term.first) || !IsColumn(*low) || !IsColumn(*low->next)) return false;
  const std::optional<BoundColumn> value = scope_.Find(*StripParentheses(term.first));
  const std::optional<BoundColumn> from = scope_.Find(*StripParentheses(low));
  const std::optional<BoundColumn> to = scope_.Find(*StripParentheses(low->next));
  if (!value || !from || !to || from->table != to->table) return false;
  const bool linksSides =
      left.Holds(value->table) ? right.Holds(from->table) : right.Holds(value->table) && left.Holds(from->table);
  if (!linksSides) return false;
  pairs.push_back({value->table, value->column, from->table, from->column, JoinGreaterOrEqual});
  pairs.push_back({value->table, value->column, to->table, to->column, JoinLessOrEqual});
  return true;
}

// Whether the dialect writes the comparison in a join of this kind.
bool FromBinder::CanSay(const JoinPair& pair, bool isInner) const {
  if (pair.comparison == JoinSame && dialect_.sameValue.empty()) return false;
  if (isInner || pair.comparison == JoinEqual || dialect_.joins == Dialect::Joins::Clauses) return true;
  return dialect_.marksColumns && NeedsValues(pair.comparison) && Mirrored(pair.comparison);
}

// The joins' places in `bound_.joins`.
std::vector<std::size_t> FromBinder::AddPairs(const std::vector<JoinPair>& pairs, const Side& right, bool allOfLeft,
                                              bool allOfRight) {
  std::vector<std::size_t> joins;
  for (const JoinPair& pair : pairs) {
    const bool isSwapped = right.Holds(pair.left);
    joins.push_back(AddJoin(pair, isSwapped ? allOfRight : allOfLeft, isSwapped ? allOfLeft : allOfRight));
  }
  return joins;
}

// The first table of the side that the conditions name, or its last.
std::size_t FromBinder::TableFor(const Side& side, const std::vector<const Expression*>& conditions) const {
  for (const Expression* condition : conditions) {
    for (const std::size_t table : TablesNamed(fields_.Normalized(*condition), scope_.Tables()).tables) {
      if (side.Holds(table)) return table;
    }
  }
  return side.end - 1;
}

void FromBinder::AskOfJoin(std::size_t join, const std::string& condition) {
  std::string& asked = asked_[join];
  asked += (asked.empty() ? "" : " AND ") + condition;
}

// A join that compares no columns.
std::size_t FromBinder::AddBareJoin(std::size_t left, std::size_t right, JoinKind kind) {
  SnapshotJoin& join = bound_.joins.emplace_back();
  join.source = left;
  join.target = right;
  join.kind = kind;
  bound_.groupLevels.push_back(level_);
  return bound_.joins.size() - 1;
}

// Conditions of joins inside of a side that may be missing are asked there, of the joins, and not of the whole.
void FromBinder::KeepFromWhere(std::span<Residual> residuals, JoinForms::Form form) {
  for (Residual& residual : residuals) {
    if (std::exchange(residual.isAsked, true)) continue;
    if (dialect_.joins == Dialect::Joins::Conditions) {
      scope_.Refuse(residual.conditions.front()->text, text::ConditionInOuterJoin);
    }
    if (residual.join == kNone) {
      residual.join =
          AddBareJoin(TableFor(residual.left, residual.conditions), TableFor(residual.right, residual.conditions), {});
    }
    const std::string condition = TextOf(residual.conditions);
    AskOfJoin(residual.join, condition);
    std::vector<JoinPair> terms;
    AddConditionTerms(terms, condition, scope_.Tables());
    forms_->Filter(form, terms);
  }
}

// As it stands beside others in ON.
std::string FromBinder::TextOf(const Expression& condition) const {
  return JoinConditionText(fields_.Normalized(condition));
}

std::string FromBinder::TextOf(const std::vector<const Expression*>& conditions) const {
  std::string text;
  for (const Expression* condition : conditions) text += (text.empty() ? "" : " AND ") + TextOf(*condition);
  return text;
}

// A condition of an inner join stands in WHERE, unless the diagram has it in a join or nothing else holds the tables
// together.
void FromBinder::BindInner(Terms& terms, const std::vector<std::size_t>& joins, const Side& left, const Side& right) {
  const bool holds = joins.empty() && HoldsTogether();
  std::string asked = holds && terms.others.empty() ? "1 = 1" : "";
  std::vector<const Expression*> ofWhole;
  for (const Expression* other : terms.others) {
    if (holds || IsDrawn(*other)) {
      asked += (asked.empty() ? "" : " AND ") + TextOf(*other);
    } else {
      ofWhole.push_back(other);
    }
  }
  std::size_t join = joins.empty() ? kNone : joins.front();
  if (!asked.empty()) {
    if (join == kNone) join = AddBareJoin(TableFor(left, terms.others), TableFor(right, terms.others), {});
    AskOfJoin(join, asked);
    AddConditionTerms(terms.pairs, asked, scope_.Tables());
  }
  if (!ofWhole.empty()) residuals_.push_back({std::move(ofWhole), join, left, right});
}

// Whether the condition stands in a join of the diagram.
bool FromBinder::IsDrawn(const Expression& condition) {
  if (!drawnConditions_) {
    drawnConditions_.emplace();
    for (const DrawnJoin& drawn : drawn_.joins) {
      for (std::string& term : JoinConditionTerms(drawn.condition)) drawnConditions_->insert(std::move(term));
    }
  }
  return !drawnConditions_->empty() && drawnConditions_->contains(TextOf(condition));
}

// Whether tables without a comparison between them have to be held together by a join: others are joined to them as
// one.
bool FromBinder::HoldsTogether() const {
  return hasOuterJoin_ && dialect_.hasJoinGroups && (reading_.crossesAsJoins || level_ > 0);
}

// What an outer join asks decides only which rows match: it stands nowhere but in the join.
void FromBinder::BindOuter(Terms& terms, const std::vector<std::size_t>& joins, const Side& left, const Side& right,
                           JoinKind kind) {
  if (terms.others.empty()) return;
  for (const Expression* other : terms.others) RequireJoined(*other, left, right);
  const std::size_t join =
      joins.empty() ? AddBareJoin(TableFor(left, terms.others), TableFor(right, terms.others), kind) : joins.front();
  const std::string condition = TextOf(terms.others);
  AskOfJoin(join, condition);
  AddConditionTerms(terms.pairs, condition, scope_.Tables());
}

void FromBinder::RequireJoined(const Expression& expression, const Side& left, const Side& right) const {
  if (expression.kind == ExpressionKind::Column) {
    const std::optional<BoundColumn> column = scope_.Find(expression);
    if (column && !left.Holds(column->table) && !right.Holds(column->table)) {
      scope_.Refuse(expression.text, text::NotJoinedHere);
    }
  }
  for (const Expression* child = expression.first; child; child = child->next) RequireJoined(*child, left, right);
}

// A name that only one of the tables joined here has may be one of several in WHERE.
void FromBinder::RequireClearNames(const Expression& expression) const {
  if (expression.kind == ExpressionKind::Column && expression.Qualifier().empty()) scope_.Find(expression);
  for (const Expression* child = expression.first; child; child = child->next) RequireClearNames(*child);
}

// The one table of a side that has the column; what USING has joined before counts as one.
std::optional<BoundColumn> FromBinder::ColumnIn(const Side& side, const std::string& name, std::string_view place) {
  if (const BoundColumn* unified = scope_.FindUnified(name); unified && side.Holds(unified->table)) return *unified;
  std::optional<BoundColumn> found;
  for (std::size_t table = side.first; table < side.end; ++table) {
    if (!scope_.Source().KnowsColumns(table)) scope_.Refuse(place, text::JoinedColumnsUnknown);
    std::optional<std::string> column = scope_.Source().FindColumn(table, name);
    if (!column) continue;
    if (found) scope_.Refuse(place, {text::SeveralHaveColumn, name});
    found = BoundColumn{table, std::move(*column)};
  }
  return found;
}

std::vector<std::string> FromBinder::SharedColumns(const Side& left, const Side& right, const JoinStep& step) {
  std::vector<std::string> names;
  for (const NameItem* column = step.columns; column; column = column->next) names.push_back(PlainName(column->name));
  if (!step.natural) return names;
  for (std::size_t table = left.first; table < left.end; ++table) {
    for (const std::string& column : scope_.Source().Columns(table)) {
      const bool seen = std::ranges::any_of(names, [&](const std::string& name) { return EqualsNoCase(name, column); });
      if (!seen && ColumnIn(right, column, step.place)) names.push_back(column);
    }
  }
  return names;
}

void FromBinder::AddSharedColumns(std::vector<JoinPair>& pairs, const Side& left, const Side& right,
                                  const JoinStep& step) {
  for (const std::string& name : SharedColumns(left, right, step)) {
    const std::optional<BoundColumn> a = ColumnIn(left, name, step.place);
    const std::optional<BoundColumn> b = ColumnIn(right, name, step.place);
    if (!a || !b) scope_.Refuse(step.place, {text::BothNeedColumn, name});
    if (step.word == JoinWord::Full) scope_.Refuse(step.place, text::NoFullUsing);
    pairs.push_back({a->table, a->column, b->table, b->column});
    scope_.Unify(name, step.word == JoinWord::Right ? *b : *a);
  }
}

// A shared column stands once, as the table has it whose rows are all kept: where the first table has it, or before all
// others.
void FromBinder::JoinColumns(Side& left, const Side& right, const std::vector<JoinPair>& shared,
                             const JoinStep& step) const {
  const bool isRight = step.word == JoinWord::Right;
  const auto holds = [](const JoinPair& pair, bool ofRight, const BoundColumn& column) {
    return column == (ofRight ? BoundColumn{pair.right, pair.rightColumn} : BoundColumn{pair.left, pair.leftColumn});
  };
  const auto placeIn = [&](bool ofRight, const BoundColumn& column) {
    return std::ranges::find_if(shared, [&](const JoinPair& pair) { return holds(pair, ofRight, column); });
  };
  // Where shared columns come as a table has them, RIGHT JOIN is LEFT JOIN with its tables turned round.
  const bool turned = isRight && dialect_.sharedColumns == Dialect::SharedColumns::FirstAsInTable;
  std::vector<BoundColumn> columns = turned ? right.columns : left.columns;
  if (isRight && !turned) {
    for (BoundColumn& column : columns) {
      const auto pair = placeIn(false, column);
      if (pair != shared.end()) column = {pair->right, pair->rightColumn};
    }
  }
  for (const BoundColumn& column : turned ? left.columns : right.columns) {
    if (placeIn(!turned, column) == shared.end()) columns.push_back(column);
  }
  left.columns = std::move(columns);
  if (dialect_.sharedColumns == Dialect::SharedColumns::InPlace) return;
  // Not of std::ranges: clang 14 does not take the range it returns.
  const auto others = std::stable_partition(left.columns.begin(), left.columns.end(), [&](const BoundColumn& column) {
    return placeIn(isRight, column) != shared.end();
  });
  if (dialect_.sharedColumns != Dialect::SharedColumns::FirstAsListed || step.natural) return;
  std::ranges::sort(left.columns.begin(), others, {},
                    [&](const BoundColumn& column) { return placeIn(isRight, column); });
}

// The columns of two tables that a term compares; none for every other condition.
std::optional<JoinPair> FromBinder::PairOf(const Expression& condition) const {
  if (!ComparesColumns(condition, true)) return std::nullopt;
  const std::optional<BoundColumn> a = scope_.Find(*StripParentheses(condition.first));
  const std::optional<BoundColumn> b = scope_.Find(*StripParentheses(condition.first->next));
  if (!a || !b || a->table == b->table) return std::nullopt;
  return JoinPair{a->table, a->column, b->table, b->column,
                  IsEquality(condition.name) ? JoinEqual : *JoinComparisonOf(condition.name)};
}

// The source is the table that stands first in FROM, whichever side of the comparison it stands on. Answers the join's
// place in `bound_.joins`.
std::size_t FromBinder::AddJoin(const JoinPair& pair, bool allOfLeft, bool allOfRight) {
  SnapshotJoin join{pair.left,
                    pair.right,
                    Identifier(pair.leftColumn),
                    Identifier(pair.rightColumn),
                    {.allOfTarget = allOfRight, .allOfSource = allOfLeft},
                    pair.comparison};
  if (pair.left > pair.right) join = Reversed(std::move(join));
  bound_.joins.push_back(std::move(join));
  const auto [place, isNew] = known_.insert(bound_.joins.size() - 1);
  if (isNew) {
    bound_.groupLevels.push_back(level_);
  } else {
    bound_.joins.pop_back();  // a condition that is said twice is one join
  }
  return *place;
}

std::size_t FromBinder::HashJoin::operator()(std::size_t place) const {
  const SnapshotJoin& join = (*joins)[place];
  return HashColumnPair()({join.source, join.sourceColumn->Name(), join.target, join.targetColumn->Name()});
}

// --- WHERE ---

// A comparison of columns is a join as a bare term, or in one pair of parentheses alone or with others: so the
// generator writes joins. Criteria stand in two pairs.
void FromBinder::BindWhere() {
  if (!statement_.where) return;
  hasMarks_ = HasMark(*statement_.where);
  bringIn_.resize(scope_.Tables().size());
  const auto take = [&](const Expression* term, bool anySign) {
    if (!IsWhereJoin(*term, anySign)) return false;
    bound_.whereHadJoins = true;
    if (HasMark(*term)) {
      AddMarkedJoin(*term);
    } else {
      const JoinPair pair = *PairOf(*term);
      whereJoins_.push_back(pair);
      AddJoin(pair, false, false);
    }
    return true;
  };
  const auto takeTerm = [&](const Expression* term) {
    if (take(term, false)) return;
    const Expression* inside = term->kind == ExpressionKind::Parentheses ? term->first : nullptr;
    if (inside && inside->kind == ExpressionKind::And) {
      const auto isJoin = [&](const Expression* e) { return IsWhereJoin(*e, true); };
      const Expression* e = inside->first;
      while (e && !isJoin(e)) e = e->next;
      if (e) {
        for (e = inside->first; e; e = e->next) {
          if (!take(e, true)) bound_.where.push_back(e);
        }
        return;
      }
    }
    if (!inside || !take(inside, true)) bound_.where.push_back(term);
  };
  if (statement_.where->kind == ExpressionKind::And) {
    for (const Expression* term = statement_.where->first; term; term = term->next) takeTerm(term);
  } else {
    takeTerm(statement_.where);
  }
  for (const Expression* term : bound_.where) RefuseMarks(*term);
}

// `anySign` where the generator writes joins of a list of tables: there every comparison is one.
bool FromBinder::IsWhereJoin(const Expression& condition, bool anySign) const {
  const bool hasMark = HasMark(condition);
  if (!ComparesColumns(condition, hasMark || (anySign && dialect_.joins == Dialect::Joins::Conditions))) return false;
  if (hasMark) return true;
  if (!reading_.joinsFromWhere) return false;
  const std::optional<JoinPair> pair = PairOf(condition);
  if (!pair) return false;
  return dialect_.joins == Dialect::Joins::Conditions || itemOf_[pair->left] != itemOf_[pair->right];
}

// "*=" keeps all rows of the left table, "=*" those of the right; (+) marks the table whose rows may be missing.
void FromBinder::AddMarkedJoin(const Expression& condition) {
  const std::optional<JoinPair> pair = PairOf(condition);
  if (!pair) scope_.Refuse(condition.text, text::MarkNeedsTwoTables);
  const bool leftOptional = condition.name == "=*" || StripParentheses(condition.first)->optional;
  const bool rightOptional = condition.name == "*=" || StripParentheses(condition.first->next)->optional;
  if (leftOptional == rightOptional) scope_.Refuse(condition.text, text::OneSideMarked);
  if (!CanSay(*pair, false)) scope_.Refuse(condition.text, text::OnlyColumnPairs);
  bringIn_[leftOptional ? pair->left : pair->right].push_back(*pair);
  AddJoin(*pair, rightOptional, leftOptional);
  if (bound_.firstOuter.empty()) bound_.firstOuter = condition.text;
}

// Marks belong to tables in a list.
void FromBinder::FinishMarks() {
  for (const FromItem* item = statement_.from; item; item = item->next) {
    if (item->joins) scope_.Refuse(item->joins->place, text::JoinAndMarks);
  }
  forms_.emplace(scope_.Tables().size());
  bound_.meaning = forms_->MeaningOfMarks(bringIn_, whereJoins_);
}

void FromBinder::RefuseMarksOutsideWhere() const {
  for (const SelectItem* item = statement_.items; item; item = item->next) RefuseMarks(*item->expression);
  for (const OrderItem* item = statement_.groupBy; item; item = item->next) RefuseMarks(*item->expression);
  if (statement_.having) RefuseMarks(*statement_.having);
  for (const OrderItem* item = statement_.orderBy; item; item = item->next) RefuseMarks(*item->expression);
}

void FromBinder::RefuseMarks(const Expression& expression) const {
  if (IsMark(expression)) scope_.Refuse(expression.text, text::MarkMisplaced);
  for (const Expression* child = expression.first; child; child = child->next) RefuseMarks(*child);
}

}  // namespace zrqrybld
