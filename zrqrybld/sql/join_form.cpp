#include "zrqrybld/sql/join_form.h"

#include <algorithm>
#include <iterator>
#include <numeric>
#include <set>
#include <utility>

#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/join_condition.h"
#include "zrqrybld/sql/join_list.h"

namespace zrqrybld {
namespace {

std::string SideText(std::size_t table, const std::string& column) {
  return std::to_string(table) + '.' + std::to_string(column.size()) + ':' + column;
}

// The same text whichever side stands first.
std::string PairText(const JoinPair& pair) {
  if (!pair.text.empty()) return '?' + std::to_string(pair.text.size()) + ':' + pair.text;
  std::string a = SideText(pair.left, pair.leftColumn);
  std::string b = SideText(pair.right, pair.rightColumn);
  JoinComparisonEnum comparison = pair.comparison;
  if (const std::optional<JoinComparisonEnum> mirrored = Mirrored(comparison); mirrored && b < a) {
    std::swap(a, b);
    comparison = *mirrored;
  }
  return a + std::string(SignOf(comparison)) + b;
}

// The tables that have to be there for the conditions to hold.
std::vector<std::size_t> TablesOf(std::span<const JoinPair> conditions) {
  std::vector<std::size_t> tables;
  for (const JoinPair& pair : conditions) {
    if (!pair.NeedsBoth()) continue;
    tables.push_back(pair.left);
    tables.push_back(pair.right);
  }
  return tables;
}

bool AreOpen(std::span<const JoinPair> conditions) {
  return std::ranges::any_of(conditions, [](const JoinPair& pair) { return !pair.NeedsBoth(); });
}

template <class T>
void Append(std::vector<T>& to, std::vector<T>& from) {
  if (to.size() < from.size()) std::swap(to, from);
  to.insert(to.end(), std::make_move_iterator(from.begin()), std::make_move_iterator(from.end()));
  from.clear();
}

// Sorted, each once, with "," between.
std::string Joined(std::vector<std::string>& texts) {
  std::ranges::sort(texts);
  texts.erase(std::unique(texts.begin(), texts.end()), texts.end());
  std::string result;
  for (const std::string& text : texts) result += text + ',';
  return result;
}

}  // namespace

JoinPair ConditionTerm(const std::string& condition, const std::vector<SnapshotTable>& tables) {
  JoinPair term;
  term.text = condition;
  term.namesAllTables = TablesNamed(condition, tables).areAll;
  return term;
}

JoinForms::JoinForms(std::size_t tables) : groupOf_(tables), sideOf_(tables), optional_(tables) {
  std::iota(groupOf_.begin(), groupOf_.end(), 0);
  std::iota(sideOf_.begin(), sideOf_.end(), 0);
  for (std::size_t table = 0; table < tables; ++table) {
    forms_.push_back({table, {}});
    groups_.push_back({{std::to_string(table)}, {}, {}});
  }
}

std::size_t JoinForms::RootOf(std::vector<std::size_t>& next, std::size_t table) {
  while (next[table] != table) {
    next[table] = next[next[table]];
    table = next[table];
  }
  return table;
}

// The groups of both stand in the first.
void JoinForms::Unite(Form a, Form b) {
  Append(forms_[a].groups, forms_[b].groups);
  sideOf_[RootOf(sideOf_, b)] = RootOf(sideOf_, a);
}

void JoinForms::Merge(std::size_t into, std::size_t group) {
  Append(groups_[into].tables, groups_[group].tables);
  Append(groups_[into].conditions, groups_[group].conditions);
  groups_[into].open |= groups_[group].open;
  groupOf_[group] = into;
}

void JoinForms::AddConditions(std::size_t group, std::span<const JoinPair> conditions) {
  for (const JoinPair& pair : conditions) {
    groups_[group].conditions.push_back(PairText(pair));
    groups_[group].open |= !pair.NeedsBoth();
  }
  std::vector<std::size_t> touched = TablesOf(conditions);
  Append(groups_[group].touched, touched);
}

// A condition is asked of these tables: they are there in every row, and so are those that bring them in. Tables of
// another form are left alone.
void JoinForms::Require(Form form, std::span<const std::size_t> tables) {
  const FormParts& parts = forms_[form];
  std::vector<std::size_t> pending(tables.begin(), tables.end());
  while (!pending.empty()) {
    const std::size_t group = RootOf(groupOf_, pending.back());
    pending.pop_back();
    if (!optional_[group] || RootOf(sideOf_, group) != RootOf(sideOf_, form)) continue;
    optional_[group] = false;
    const std::vector<std::size_t> touched = std::move(groups_[group].touched);
    pending.insert(pending.end(), touched.begin(), touched.end());
    Merge(parts.core, group);
  }
}

JoinForms::Form JoinForms::Inner(Form a, Form b, std::span<const JoinPair> conditions) {
  Merge(forms_[a].core, forms_[b].core);
  Unite(a, b);
  Filter(a, conditions);
  return Closed(a, conditions);
}

void JoinForms::Filter(Form form, std::span<const JoinPair> conditions) {
  Group& core = groups_[forms_[form].core];
  for (const JoinPair& pair : conditions) core.conditions.push_back(PairText(pair));
  core.open |= AreOpen(conditions);
  Require(form, TablesOf(conditions));
}

// Whether it matters for the conditions, or for those inside the form, that parts of it are missing, and not only the
// whole.
bool JoinForms::DependsOnMissing(Form form, std::span<const JoinPair> conditions) const {
  const auto isOptional = [this](std::size_t group) { return optional_[group]; };
  const std::vector<std::size_t>& groups = forms_[form].groups;
  if (std::ranges::none_of(groups, isOptional)) return false;
  const auto isOpen = [&](std::size_t group) { return optional_[group] && groups_[group].open; };
  return AreOpen(conditions) || groups_[forms_[form].core].open || std::ranges::any_of(groups, isOpen);
}

// From now on nothing can be told about its parts from outside.
void JoinForms::MakeOne(Form form, std::string text) {
  const std::size_t core = forms_[form].core;
  for (const std::size_t group : std::exchange(forms_[form].groups, {})) {
    if (!optional_[group]) continue;
    optional_[group] = false;
    Merge(core, group);
  }
  groups_[core].tables = {std::move(text)};
  groups_[core].conditions.clear();
  groups_[core].open = false;
}

// Where a condition may be about any table, what it was asked of stays as it is.
JoinForms::Form JoinForms::Closed(Form form, std::span<const JoinPair> conditions) {
  const auto isUnclear = [](const JoinPair& pair) { return !pair.namesAllTables; };
  if (std::ranges::any_of(conditions, isUnclear)) MakeOne(form, "ONE{" + Text(form) + '}');
  return form;
}

JoinForms::Form JoinForms::Left(Form a, Form b, std::span<const JoinPair> conditions) {
  Require(b, TablesOf(conditions));
  if (DependsOnMissing(b, conditions)) MakeOne(b, "ONE{" + Text(b) + '}');
  const std::size_t group = forms_[b].core;
  AddConditions(group, conditions);
  Unite(a, b);
  forms_[a].groups.push_back(group);
  optional_[group] = true;
  return Closed(a, conditions);
}

// Nothing can be told about its parts from outside.
JoinForms::Form JoinForms::Full(Form a, Form b, std::span<const JoinPair> conditions) {
  std::string first = Text(a);
  std::string second = Text(b);
  if (second < first) std::swap(first, second);
  std::vector<std::string> texts;
  for (const JoinPair& pair : conditions) texts.push_back(PairText(pair));
  const std::size_t core = forms_[a].core;
  Unite(a, b);
  Merge(core, forms_[b].core);
  MakeOne(a, "FULL{" + first + '|' + second + '|' + Joined(texts) + '}');
  return a;
}

std::string JoinForms::TextOf(Group& group) const { return Joined(group.tables) + '/' + Joined(group.conditions); }

std::string JoinForms::Text(Form form) {
  std::vector<std::string> groups;
  for (const std::size_t group : forms_[form].groups) {
    if (optional_[group]) groups.push_back(TextOf(groups_[group]));
  }
  return TextOf(groups_[forms_[form].core]) + '{' + Joined(groups) + '}';
}

// --- The generated text ---

namespace {

JoinPair PairOf(const FromCondition& condition) {
  JoinPair pair{condition.left, std::string(condition.leftColumn), condition.right, std::string(condition.rightColumn)};
  pair.comparison = condition.join->comparison;
  if (!condition.FromSource()) {
    if (const std::optional<JoinComparisonEnum> mirrored = Mirrored(pair.comparison)) {
      pair.comparison = *mirrored;
    } else {
      std::swap(pair.left, pair.right);
      std::swap(pair.leftColumn, pair.rightColumn);
    }
  }
  return pair;
}

// JOIN clauses, one after the other. The form of them all; none when there are no tables, or when a condition names
// a table that is not joined yet.
class Clauses {
 public:
  Clauses(JoinForms& forms, const QuerySnapshot& query) : forms_(forms), query_(query) {}

  std::optional<JoinForms::Form> FormOf(const std::vector<FromEntry>& entries) {
    std::optional<JoinForms::Form> all, item;
    std::vector<std::size_t> stand;  // in the item
    const auto endItem = [&] {
      if (item) all = all ? forms_.Inner(*all, *item, {}) : *item;
    };
    for (const FromEntry& entry : entries) {
      const std::optional<JoinForms::Form> joined =
          entry.group.empty() ? forms_.Table(entry.table) : FormOf(entry.group);
      if (!joined) return std::nullopt;
      if (entry.conditions.empty()) {
        endItem();
        item = joined;
        stand.clear();
        AddTables(stand, entry);
        continue;
      }
      AddTables(stand, entry);
      const std::optional<std::vector<JoinPair>> terms = TermsOf(entry, stand);
      if (!terms) return std::nullopt;
      item = Joined(entry.conditions.front().type, *item, *joined, *terms);
    }
    endItem();
    return all;
  }

 private:
  static void AddTables(std::vector<std::size_t>& tables, const FromEntry& entry) {
    if (entry.group.empty()) tables.push_back(entry.table);
    for (const FromEntry& inside : entry.group) AddTables(tables, inside);
  }

  std::optional<std::vector<JoinPair>> TermsOf(const FromEntry& entry, const std::vector<std::size_t>& stand) const {
    std::vector<JoinPair> terms;
    for (const FromCondition& condition : entry.conditions) {
      if (!condition.leftColumn.empty()) terms.push_back(PairOf(condition));
      if (condition.join->condition.empty()) continue;
      for (const std::size_t table : TablesNamed(condition.join->condition, query_.tables).tables) {
        if (std::ranges::find(stand, table) == stand.end()) return std::nullopt;
      }
      terms.push_back(ConditionTerm(condition.join->condition, query_.tables));
    }
    return terms;
  }

  JoinForms::Form Joined(JoinTypeEnum type, JoinForms::Form before, JoinForms::Form joined,
                         std::span<const JoinPair> terms) {
    switch (type) {
      case JoinAllOfEarlier:
        return forms_.Left(before, joined, terms);
      case JoinAllOfThis:
        return forms_.Left(joined, before, terms);
      case JoinAllOfBoth:
        return forms_.Full(before, joined, terms);
      default:
        return forms_.Inner(before, joined, terms);
    }
  }

  JoinForms& forms_;
  const QuerySnapshot& query_;
};

// Conditions in WHERE: the marked table of each may be missing. The marked conditions bring their table in, all others
// are asked of the whole.
std::string MeaningOfMarks(JoinForms& forms, const QuerySnapshot& query, const std::vector<FromEntry>& entries) {
  std::vector<std::vector<JoinPair>> bringIn(query.tables.size());
  std::vector<JoinPair> others;
  for (const FromEntry& entry : entries) {
    for (const FromCondition& condition : entry.conditions) {
      if (const std::string& text = condition.join->condition; !text.empty()) {
        others.push_back(ConditionTerm(text, query.tables));
      }
      if (condition.leftColumn.empty()) continue;
      if (condition.type == JoinAllOfEarlier) {
        bringIn[condition.left].push_back(PairOf(condition));
      } else if (condition.type == JoinAllOfThis) {
        bringIn[condition.right].push_back(PairOf(condition));
      } else {
        others.push_back(PairOf(condition));
      }
    }
  }
  return forms.MeaningOfMarks(bringIn, others);
}

}  // namespace

std::string JoinForms::MeaningOfMarks(const std::vector<std::vector<JoinPair>>& bringIn,
                                      std::span<const JoinPair> others) {
  std::optional<Form> all;
  std::vector<std::size_t> missing(bringIn.size());               // conditions whose other table is not there yet
  std::vector<std::vector<std::size_t>> waitFor(bringIn.size());  // by table: who has such a condition on it
  std::vector<std::size_t> present;
  for (std::size_t table = 0; table < bringIn.size(); ++table) {
    for (const JoinPair& pair : bringIn[table]) waitFor[pair.left == table ? pair.right : pair.left].push_back(table);
    missing[table] = bringIn[table].size();
    if (missing[table] != 0) continue;
    all = all ? Inner(*all, table, {}) : table;
    present.push_back(table);
  }
  for (std::size_t i = 0; i < present.size(); ++i) {
    for (const std::size_t table : waitFor[present[i]]) {
      if (--missing[table] != 0) continue;
      all = Left(*all, table, bringIn[table]);
      present.push_back(table);
    }
  }
  if (!all || present.size() < bringIn.size()) return {};  // each waits for another
  Filter(*all, others);
  return Text(*all);
}

std::vector<std::size_t> GeneratedOrder(const QuerySnapshot& query, std::span<const std::size_t> order) {
  std::vector<std::size_t> tables;
  for (const FromEntry& entry : PlaceTables(query, order)) tables.push_back(entry.table);
  return tables;
}

std::vector<std::size_t> OrderFrom(std::size_t first, const QuerySnapshot& query) {
  std::vector<std::vector<const SnapshotJoin*>> joinsOf(query.tables.size());
  for (const SnapshotJoin& join : query.joins) {
    joinsOf[join.source].push_back(&join);
    joinsOf[join.target].push_back(&join);
  }
  std::vector<std::size_t> order;
  std::vector<bool> stands(query.tables.size());
  std::set<std::pair<int, std::size_t>> next;  // how soon, and which
  const auto follow = [&](std::size_t begin) {
    next.emplace(0, begin);
    while (!next.empty()) {
      const std::size_t table = next.extract(next.begin()).value().second;
      if (stands[table]) continue;
      stands[table] = true;
      order.push_back(table);
      for (const SnapshotJoin* join : joinsOf[table]) {
        const std::size_t other = join->source == table ? join->target : join->source;
        const JoinKind kind = join->source == table ? join->kind : join->kind.Reversed();
        if (!stands[other]) next.emplace(kind.Bits(), other);  // those of which all rows come back last
      }
    }
  };
  follow(first);
  for (std::size_t table = 0; table < query.tables.size(); ++table) {
    if (!stands[table]) follow(table);
  }
  return order;
}

SnapshotJoin Reversed(SnapshotJoin join) {
  const std::optional<JoinComparisonEnum> mirrored = Mirrored(join.comparison);
  if (!mirrored) return join;
  join.comparison = *mirrored;
  std::swap(join.source, join.target);
  std::swap(join.sourceColumn, join.targetColumn);
  join.kind = join.kind.Reversed();
  return join;
}

std::string MeaningOfGeneratedJoins(const QuerySnapshot& query, std::span<const std::size_t> order,
                                    const Dialect& dialect) {
  JoinForms forms(query.tables.size());
  const std::vector<FromEntry> entries = PlaceTables(query, order);
  if (dialect.joins == Dialect::Joins::Conditions) {
    return MeaningOfMarks(forms, query, WithoutGroups(entries));
  }
  const std::optional<JoinForms::Form> form = Clauses(forms, query).FormOf(entries);
  return form ? forms.Text(*form) : std::string();
}

}  // namespace zrqrybld
