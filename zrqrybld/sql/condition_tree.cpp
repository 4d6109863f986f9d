#include "zrqrybld/sql/condition_tree.h"

#include <algorithm>
#include <iterator>
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
  }

  void Place(const ConditionNode& part, bool groups) {
    const ConditionNode plain = Plain(part);
    const bool isAny = plain.kind == Kind::Any && !plain.negated;
    if (isAny && plain.parts.size() > kMostAlternatives) return PlaceTerm(plain, 0, groups);
    std::vector<std::pair<ConditionNode, std::size_t>> terms;
    std::size_t column = 0;
    for (const ConditionNode& alternative : isAny ? plain.parts : std::vector{plain}) {
      const bool isAll = alternative.kind == Kind::All && !alternative.negated;
      for (const ConditionNode& term : isAll ? alternative.parts : std::vector{alternative}) {
        terms.emplace_back(term, column);
      }
      ++column;
    }
    std::erase_if(terms, [&](const auto& term) { return PlaceAsItWas(term.first, term.second, groups); });
    for (const auto& [term, place] : terms) PlaceTerm(term, place, groups);
  }

  std::vector<ConditionedRow> Take() { return std::move(rows_); }

 private:
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
  bool PlaceAsItWas(const ConditionNode& term, std::size_t column, bool groups) {
    const auto isSame = [&](const Kept& kept) {
      return rows_[kept.row].row.grouping.ChoosesGroups() == groups && kept.node == term;
    };
    const auto kept = std::ranges::find_if(kept_, isSame);
    if (kept == kept_.end()) return false;
    PutInto(rows_[kept->row], kept->cell, column);
    kept_.erase(kept);
    return true;
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

  void PlaceTerm(const ConditionNode& term, std::size_t column, bool groups) {
    if (term.kind == Kind::Single && !term.negated && !term.criterion.empty()) {
      return PlaceCell(term.field, term.criterion, column, groups);
    }
    std::string text = TextOf(term, words_);
    if (term.kind == Kind::Any && !term.negated) text = "(" + text + ")";
    PlaceCell({{}, std::move(text)}, std::string(kTrue), column, groups);
  }

  void PlaceCell(const ConditionField& field, const std::string& criterion, std::size_t column, bool groups) {
    const auto suits = [&](const ConditionedRow& each) {
      const bool fits = FieldOf(each.row) == field && each.row.grouping.ChoosesGroups() == groups;
      const bool counts = grouped_ || !groups;
      return fits && counts && (column >= each.row.criteria.size() || each.row.criteria[column].empty());
    };
    auto place = std::ranges::find_if(rows_, suits);
    if (place == rows_.end()) place = RowInPlace(field, groups);
    PutInto(*place, criterion, column);
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
  std::vector<Kept> kept_;
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
