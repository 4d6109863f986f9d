#include "zrqrybld/sql/condition_tree.h"

#include <algorithm>
#include <iterator>
#include <unordered_map>
#include <utility>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/sql/criteria_formatter.h"
#include "zrqrybld/sql/statement_parser.h"
#include "zrqrybld/sql/statement_printer.h"

namespace zrqrybld {
namespace {

using Kind = ConditionNode::Kind;

constexpr std::string_view kTrue = "= True";

bool SaysTruth(std::string_view cell, std::string_view truth) { return UpperAscii(Trim(cell)).ends_with(truth); }

std::string TextOf(const Expression& e) {
  std::string text;
  AppendExpression(text, e);
  return text;
}

// A condition that is being written: its field, or what is asked of it, is missing.
bool IsUnfinished(const ConditionNode& node) {
  return !node.IsGroup() && (node.field.column.empty() || (!node.field.table.empty() && node.criterion.empty()));
}

// --- Text as a tree ---

class TextReader {
 public:
  explicit TextReader(const ConditionWords& words) : words_(words) {}

  ConditionNode Read(const std::string& text) const {
    SyntaxArena arena(text.size() * 8 + 256);
    try {
      return Read(*ParseExpressionText(text, arena), 0);
    } catch (const Error&) {
      return Whole(text);
    }
  }

 private:
  static ConditionNode Whole(std::string text) { return {Kind::Single, false, {}, {{}, std::move(text)}, {}}; }

  ConditionNode Read(const Expression& e, int depth) const {
    const Expression& inner = *StripParentheses(&e);
    if (depth > kDeepestGroup) return Whole(TextOf(e));
    if (inner.kind == ExpressionKind::Not) {
      ConditionNode node = Read(*inner.first, depth + 1);
      if (node.negated) return {Kind::All, true, {std::move(node)}};
      node.negated = true;
      return node;
    }
    if (inner.kind != ExpressionKind::And && inner.kind != ExpressionKind::Or) return Single(inner);
    ConditionNode node{inner.kind == ExpressionKind::And ? Kind::All : Kind::Any};
    for (const Expression* part = inner.first; part; part = part->next) node.parts.push_back(Read(*part, depth + 1));
    return node;
  }

  // What stands at its left end, and what is asked of that; the whole text where the two cannot be told.
  ConditionNode Single(const Expression& e) const {
    const std::string text = TextOf(e);
    const bool compares = e.kind == ExpressionKind::Comparison || e.kind == ExpressionKind::Between ||
                          e.kind == ExpressionKind::In || e.kind == ExpressionKind::IsNull;
    if (!compares) return Whole(text);
    const std::string left = TextOf(*e.first);
    std::optional<std::string> criterion = CriterionOf(
        text, [&left](std::string_view field) { return field == left; }, words_.likeOperator);
    if (!criterion || criterion->empty() || StripParentheses(e.first)->kind == ExpressionKind::Literal)
      return Whole(text);
    ConditionNode node{Kind::Single};
    node.field = words_.fieldIn(left).value_or(ConditionField{{}, left});
    node.criterion = std::move(*criterion);
    // Beside an expression these words ask whether it is true.
    const bool asksTruth = SaysTruth(node.criterion, "TRUE") || SaysTruth(node.criterion, "FALSE");
    return node.field.table.empty() && asksTruth ? Whole(text) : node;
  }

  const ConditionWords& words_;
};

// --- A tree as text ---

std::string TextOf(const ConditionNode& node, const ConditionWords& words);

// In parentheses where AND, OR or NOT beside it would take it apart.
std::string OperandOf(const ConditionNode& node, const ConditionWords& words) {
  std::string text = TextOf(node, words);
  SyntaxArena arena(text.size() * 8 + 256);
  try {
    const ExpressionKind kind = ParseExpressionText(text, arena)->kind;
    if (kind != ExpressionKind::And && kind != ExpressionKind::Or && kind != ExpressionKind::Not) return text;
  } catch (const Error&) {
    // What cannot be read is kept together.
  }
  return "(" + text + ")";
}

std::string TextOf(const ConditionNode& node, const ConditionWords& words) {
  if (node.negated) {
    ConditionNode plain = node;
    plain.negated = false;
    return "NOT " + OperandOf(plain, words);
  }
  if (!node.IsGroup()) return node.criterion.empty() ? node.field.column : words.write(node.field, node.criterion);
  std::string text;
  for (const ConditionNode& part : node.parts) {
    if (!text.empty()) text += node.kind == Kind::All ? " AND " : " OR ";
    text += OperandOf(part, words);
  }
  return text;
}

// --- Rows as a tree ---

ConditionField FieldOf(const QueryRow& row) {
  const bool isAggregate = row.grouping.kind == GroupingKind::Aggregate;
  return {row.table, row.column, isAggregate ? row.grouping.name : std::string()};
}

ConditionNode NodeOf(const QueryRow& row, const std::string& cell, const ConditionWords& words) {
  if (row.table.empty() && row.grouping.kind != GroupingKind::Aggregate) {
    const bool isFalse = SaysTruth(cell, "FALSE");
    if (isFalse || SaysTruth(cell, "TRUE")) {
      ConditionNode node = TextReader(words).Read(row.column);
      if (!isFalse) return node;
      if (node.negated) return {Kind::All, true, {std::move(node)}};
      node.negated = true;
      return node;
    }
  }
  return {Kind::Single, false, {}, FieldOf(row), std::string(Trim(cell))};
}

ConditionNode PartOf(const std::vector<QueryRow>& rows, bool groups, const ConditionWords& words) {
  std::size_t widest = 0;
  for (const QueryRow& row : rows) widest = std::max(widest, row.criteria.size());
  ConditionNode alternatives{Kind::Any};
  for (std::size_t column = 0; column < widest; ++column) {
    ConditionNode all;
    for (const QueryRow& row : rows) {
      if (row.column.empty() || row.grouping.ChoosesGroups() != groups || column >= row.criteria.size()) continue;
      if (!Trim(row.criteria[column]).empty()) all.parts.push_back(NodeOf(row, row.criteria[column], words));
    }
    if (!all.parts.empty()) alternatives.parts.push_back(std::move(all));
  }
  return Plain(std::move(alternatives));
}

// --- A tree as rows ---

class RowsOfTree {
 public:
  RowsOfTree(const std::vector<QueryRow>& rows, const ConditionWords& words, bool grouped)
      : words_(words), grouped_(grouped) {
    for (const QueryRow& row : rows) {
      KeepExpressions(row);
      ConditionedRow& place = rows_.emplace_back(ConditionedRow{row, false});
      place.unused = !row.column.empty() && !place.row.criteria.empty() && IsOnlyCondition(row);
      if (!row.column.empty()) place.row.criteria.clear();
    }
    given_ = rows_.size();
  }

  void Place(const ConditionNode& part, bool groups) {
    const ConditionNode plain = Plain(part);
    const bool isAny = plain.kind == Kind::Any && !plain.negated;
    if (isAny && plain.parts.size() > kMostAlternatives) {
      PlaceTerm(plain, 0, groups);
      return;
    }
    std::vector<Term> terms;
    std::size_t column = 0;
    for (const ConditionNode& alternative : isAny ? plain.parts : std::vector{plain}) {
      const bool isAll = alternative.kind == Kind::All && !alternative.negated;
      for (const ConditionNode& term : isAll ? alternative.parts : std::vector{alternative}) {
        terms.push_back({term, column, std::nullopt});
      }
      ++column;
    }
    for (Term& term : terms) term.row = PlaceAsItWas(term.node, term.column, groups);
    for (Term& term : terms) {
      if (!term.row) term.row = PlaceTerm(term.node, term.column, groups);
    }
    for (const Term& term : terms) {
      if (!MayMove(*term.row)) continue;
      if (order_.empty() || order_.back().column != term.column || order_.back().groups != groups) {
        order_.push_back({groups, term.column, {}});
      }
      order_.back().rows.push_back(*term.row);
    }
  }

  std::vector<ConditionedRow> Take() {
    Reorder();
    return std::move(rows_);
  }

 private:
  // What all of an alternative must hold, and the row that says it.
  struct Term {
    ConditionNode node;
    std::size_t column = 0;
    std::optional<std::size_t> row;
  };

  // The rows of an alternative's conditions in the order of the tree, those left out that stand where a column does.
  struct Order {
    bool groups = false;
    std::size_t column = 0;
    std::vector<std::size_t> rows;
  };

  bool MayMove(std::size_t row) const { return IsOnlyCondition(rows_[row].row); }

  // The conditions of an alternative stand in the order of their rows: where the tree has another, rows that say
  // nothing else go behind all others. Alternatives that want them in several orders leave them as they are.
  void Reorder() {
    const auto isSorted = [](const Order& order) { return std::ranges::is_sorted(order.rows); };
    if (std::ranges::all_of(order_, isSorted)) return;
    std::vector<std::size_t> wanted;
    std::unordered_map<std::size_t, std::size_t> places;
    for (const Order& order : order_) {
      for (const std::size_t row : order.rows) {
        if (places.emplace(row, wanted.size()).second) wanted.push_back(row);
      }
    }
    const auto isWanted = [&](const Order& order) {
      return std::ranges::is_sorted(order.rows, {}, [&](std::size_t row) { return places.at(row); });
    };
    if (!std::ranges::all_of(order_, isWanted)) return;
    const auto moved = std::ranges::is_sorted_until(wanted);
    std::vector<ConditionedRow> tail;
    for (auto row = moved; row != wanted.end(); ++row) {
      tail.push_back(rows_[*row]);
      rows_[*row].row.criteria.clear();
      rows_[*row].unused = true;
    }
    std::size_t place = 0;
    std::erase_if(rows_, [&](const ConditionedRow& row) { return place++ >= given_ && row.unused; });
    std::ranges::move(tail, std::back_inserter(rows_));
  }

  // A condition that stands in a row as an expression, and its cell.
  struct Kept {
    std::size_t row = 0;
    std::string cell;
    ConditionNode node;
  };

  void KeepExpressions(const QueryRow& row) {
    if (!row.table.empty() || row.grouping.kind == GroupingKind::Aggregate) return;
    for (const std::string& cell : row.criteria) {
      if (!SaysTruth(cell, "TRUE") && !SaysTruth(cell, "FALSE")) continue;
      kept_.push_back({rows_.size(), cell, Plain(NodeOf(row, cell, words_))});
    }
  }

  // What is asked as before keeps its row and its text.
  std::optional<std::size_t> PlaceAsItWas(const ConditionNode& term, std::size_t column, bool groups) {
    const auto isSame = [&](const Kept& kept) {
      return rows_[kept.row].row.grouping.ChoosesGroups() == groups && kept.node == term;
    };
    const auto kept = std::ranges::find_if(kept_, isSame);
    if (kept == kept_.end()) return std::nullopt;
    const std::size_t row = kept->row;
    PutInto(rows_[row], kept->cell, column);
    kept_.erase(kept);
    return row;
  }

  static void PutInto(ConditionedRow& place, const std::string& criterion, std::size_t column) {
    place.unused = false;
    if (place.row.criteria.size() <= column) place.row.criteria.resize(column + 1);
    place.row.criteria[column] = criterion;
  }

  // Whether the row says nothing but its conditions.
  bool IsOnlyCondition(const QueryRow& row) const {
    const bool groups = row.grouping.kind == GroupingKind::GroupBy;
    return !row.output && row.alias.empty() && row.sort == RowSort() && (!grouped_ || !groups);
  }

  // Answers the row.
  std::size_t PlaceTerm(const ConditionNode& term, std::size_t column, bool groups) {
    if (term.kind == Kind::Single && !term.negated && !term.criterion.empty()) {
      return PlaceCell(term.field, term.criterion, column, groups);
    }
    std::string text = TextOf(term, words_);
    if (term.kind == Kind::Any && !term.negated) text = "(" + text + ")";
    return PlaceCell({{}, std::move(text)}, std::string(kTrue), column, groups);
  }

  std::size_t PlaceCell(const ConditionField& field, const std::string& criterion, std::size_t column, bool groups) {
    const auto suits = [&](const ConditionedRow& each) {
      const bool fits = FieldOf(each.row) == field && each.row.grouping.ChoosesGroups() == groups;
      const bool counts = grouped_ || !groups;
      return fits && counts && (column >= each.row.criteria.size() || each.row.criteria[column].empty());
    };
    auto place = std::ranges::find_if(rows_, suits);
    if (place == rows_.end()) place = RowInPlace(field, groups);
    PutInto(*place, criterion, column);
    return static_cast<std::size_t>(place - rows_.begin());
  }

  // An expression takes the row of one that is gone, so that a group which is edited stays where it is.
  std::vector<ConditionedRow>::iterator RowInPlace(const ConditionField& field, bool groups) {
    const auto isGone = [&](const ConditionedRow& each) {
      return each.unused && each.row.table.empty() && field.table.empty() &&
             each.row.grouping.ChoosesGroups() == groups && each.row.grouping.kind != GroupingKind::Aggregate;
    };
    const auto gone = std::ranges::find_if(rows_, isGone);
    if (gone == rows_.end()) return rows_.insert(rows_.end(), {RowFor(field, groups), false});
    gone->row.column = field.column;
    return gone;
  }

  QueryRow RowFor(const ConditionField& field, bool groups) const {
    QueryRow row;
    row.table = field.table;
    row.column = field.column;
    if (!field.aggregate.empty()) {
      row.grouping = RowGrouping(field.aggregate, {});
    } else if (grouped_) {
      row.grouping = groups ? GroupingKind::Expression : GroupingKind::Where;
    }
    return row;
  }

  const ConditionWords& words_;
  bool grouped_;
  std::vector<ConditionedRow> rows_;
  std::size_t given_ = 0;  // so many of the rows were there
  std::vector<Kept> kept_;
  std::vector<Order> order_;
};

}  // namespace

ConditionNode Plain(ConditionNode node) {
  if (IsUnfinished(node)) return {};
  if (!node.IsGroup()) return node;
  std::vector<ConditionNode> parts;
  for (ConditionNode& each : node.parts) {
    ConditionNode part = Plain(std::move(each));
    if (part.IsGroup() && part.parts.empty()) continue;
    if (part.kind == node.kind && !part.negated) {
      std::ranges::move(part.parts, std::back_inserter(parts));
    } else {
      parts.push_back(std::move(part));
    }
  }
  const bool isOne = parts.size() == 1 && !(node.negated && parts.front().negated);
  if (isOne) {
    parts.front().negated |= node.negated;
    return std::move(parts.front());
  }
  node.parts = std::move(parts);
  if (node.parts.empty()) return {};
  return node;
}

ConditionTree TreeOf(const std::vector<QueryRow>& rows, const ConditionWords& words) {
  return {PartOf(rows, false, words), PartOf(rows, true, words)};
}

std::vector<ConditionedRow> WithConditions(const std::vector<QueryRow>& rows, const ConditionTree& tree,
                                           const ConditionWords& words, bool grouped) {
  RowsOfTree result(rows, words, grouped);
  result.Place(tree.where, false);
  result.Place(tree.having, true);
  return result.Take();
}

}  // namespace zrqrybld
