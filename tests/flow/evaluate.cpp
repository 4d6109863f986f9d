// What a design means, worked out over rows in memory: nothing here knows SQL or the library.
#include <algorithm>
#include <set>

#include "tests/flow/store_rows.h"

namespace zrqrybld::test {
namespace {

bool IsNull(const Cell& cell) { return cell.index() == 0; }

// A table with the conditions that join it to tables before it: its own column, the other table and its column.
struct Step {
  struct Condition {
    std::string own;
    std::size_t table;
    std::string column;
    bool keepsOwn;
    bool keepsEarlier;
    const Design::Join* join;
  };
  std::size_t table;
  std::vector<Condition> conditions;
};

// The order of the tables: each table's joins are followed depth first, those drawn from it before the others, and a
// table that is met stands right behind the one it was met from.
class Order {
 public:
  Order(const Design& design, const std::set<std::size_t>& tables) : design_(design) {
    for (std::size_t j = 0; j < design.joins.size(); ++j) {
      if (design.joins[j].question == 0 && tables.contains(design.joins[j].left)) joins_.push_back(j);
    }
    std::ranges::stable_sort(joins_, {}, [&](std::size_t j) { return design.joins[j].left; });
    for (const std::size_t table : tables) {
      if (!Has(table)) Visit(table, order_.size());
    }
  }

  std::vector<Step> Steps() const {
    std::vector<Step> steps;
    for (const std::size_t table : order_) steps.push_back({table, {}});
    for (const std::size_t j : met_) {
      const Design::Join& join = design_.joins[j];
      const bool keepsLeft = (join.kind & 2) != 0;
      const bool keepsRight = (join.kind & 1) != 0;
      const std::size_t left = PlaceOf(join.left);
      const std::size_t right = PlaceOf(join.right);
      if (left > right) {
        steps[left].conditions.push_back({join.leftColumn, join.right, join.rightColumn, keepsLeft, keepsRight, &join});
      } else {
        steps[right].conditions.push_back({join.rightColumn, join.left, join.leftColumn, keepsRight, keepsLeft, &join});
      }
    }
    return steps;
  }

 private:
  bool Has(std::size_t table) const { return std::ranges::find(order_, table) != order_.end(); }
  std::size_t PlaceOf(std::size_t table) const {
    return static_cast<std::size_t>(std::ranges::find(order_, table) - order_.begin());
  }
  void Visit(std::size_t table, std::size_t place) {
    order_.insert(order_.begin() + static_cast<std::ptrdiff_t>(place), table);
    for (const bool own : {true, false}) {
      for (const std::size_t j : joins_) {
        const Design::Join& join = design_.joins[j];
        if ((own ? join.left : join.right) != table) continue;
        const std::size_t other = own ? join.right : join.left;
        if (!Has(other)) Visit(other, PlaceOf(table) + 1);
        if (std::ranges::find(met_, j) == met_.end()) met_.push_back(j);
      }
    }
  }

  const Design& design_;
  std::vector<std::size_t> joins_;  // by the table they are drawn from
  std::vector<std::size_t> order_;
  std::vector<std::size_t> met_;
};

// A row of the joined tables: a position in each, or nothing where an outer join has none.
using Combination = std::vector<std::optional<std::size_t>>;

class Evaluation {
 public:
  Evaluation(Store& store, const Design& design, std::size_t most) : store_(store), design_(design), most_(most) {
    for (const Design::Table& table : design.tables) tables_.push_back(&store.Table(table.name));
  }

  std::optional<std::vector<Row>> Run() {
    for (std::size_t table = 0; table < tables_.size(); ++table) {
      if (!FindQuestion(table)) return std::nullopt;
    }
    std::set<std::size_t> own;
    for (std::size_t table = 0; table < tables_.size(); ++table) {
      if (!IsAsked(table)) own.insert(table);
    }
    if (!Join(own)) return std::nullopt;
    std::size_t steps = rows_.size();
    for (const Question& question : questions_) steps *= std::max<std::size_t>(question.rows.size(), 1);
    constexpr std::size_t kMostSteps = 1'000'000;
    if (!questions_.empty() && steps > kMostSteps) return std::nullopt;
    std::erase_if(rows_, [this](const Combination& row) { return !IsChosen(row); });
    return Finish(IsGrouped() ? Groups() : Single());
  }

 private:
  Cell At(const Combination& row, std::size_t table, const std::string& column) const {
    return row[table] ? tables_[table]->rows[*row[table]][tables_[table]->ColumnAt(column)] : Cell();
  }
  Cell At(const Combination& row, const Design::Field& field) const { return At(row, field.table, field.column); }

  // --- What joins only ask ---

  struct Question {
    std::set<std::size_t> tables;
    std::vector<const Design::Join*> links;
    std::vector<Combination> rows;
    bool forNone = false;
  };

  bool IsAsked(std::size_t table) const {
    return std::ranges::any_of(questions_, [&](const Question& one) { return one.tables.contains(table); });
  }

  // The question about the table, with all rows of the tables that hang together with it; false for too many.
  bool FindQuestion(std::size_t table) {
    for (const Design::Join& join : design_.joins) {
      if (join.question == 0 || join.Asked() != table) continue;
      const auto known =
          std::ranges::find_if(questions_, [&](const Question& one) { return one.tables.contains(table); });
      if (known != questions_.end()) {
        known->links.push_back(&join);
        continue;
      }
      const std::set<std::size_t> tables = TogetherWith(design_, table);
      if (!Join(tables)) return false;
      questions_.push_back({tables, {&join}, std::move(rows_), join.question % 2 == 0});
    }
    return true;
  }

  // Whether the questions that these tables ask have their answers for the row, with the criteria of the column.
  bool Answers(const std::set<std::size_t>& asking, const Combination& row, std::size_t column) const {
    return std::ranges::all_of(questions_, [&](const Question& question) {
      const Design::Join& link = *question.links.front();
      if (!asking.contains(link.Asked() == link.right ? link.left : link.right)) return true;
      const bool found = std::ranges::any_of(question.rows, [&](const Combination& inner) {
        Combination both = row;
        for (const std::size_t table : question.tables) both[table] = inner[table];
        const auto holds = [&](const Design::Join* one) { return Holds(*one, both); };
        const auto value = [&](const Design::Field& field) { return At(both, field); };
        return std::ranges::all_of(question.links, holds) && Meets(question.tables, column, value) &&
               Answers(question.tables, both, column);
      });
      return found != question.forNone;
    });
  }

  bool IsChosen(const Combination& row) const {
    std::set<std::size_t> own;
    for (std::size_t table = 0; table < tables_.size(); ++table) {
      if (!IsAsked(table)) own.insert(table);
    }
    const auto value = [&](const Design::Field& field) { return At(row, field); };
    bool any = false;
    for (std::size_t column = 0; column < 4; ++column) {
      const bool says = std::ranges::any_of(design_.fields, [&](const Design::Field& field) {
        return field.criteria.contains(column) && !IsAggregate(field);
      });
      any = any || says;
      if (says && Meets(own, column, value) && Answers(own, row, column)) return true;
    }
    return !any && Answers(own, row, 0);
  }

  // Whether the criteria that the tables' fields have in the column hold.
  template <class Value>
  bool Meets(const std::set<std::size_t>& tables, std::size_t column, Value&& value) const {
    return std::ranges::all_of(design_.fields, [&](const Design::Field& field) {
      const auto criterion = field.criteria.find(column);
      if (criterion == field.criteria.end() || IsAggregate(field) || !tables.contains(field.table)) return true;
      return criterion->second.holds(value(field)).value_or(false);
    });
  }

  bool Join(const std::set<std::size_t>& tables) {
    rows_ = {Combination(tables_.size())};
    for (const Step& step : Order(design_, tables).Steps()) {
      if (!Add(step)) return false;
    }
    return true;
  }

  bool Add(const Step& step) {
    std::vector<std::size_t> own;
    for (const Step::Condition& condition : step.conditions) {
      if (condition.join->comparison == 0) own.push_back(tables_[step.table]->ColumnAt(condition.own));
    }
    const auto& index = store_.Index(design_.tables[step.table].name, own);
    std::vector<Combination> longer;
    std::vector<bool> met(tables_[step.table]->rows.size());
    const bool joined = !step.conditions.empty();
    for (Combination& row : rows_) {
      Row wanted;
      for (const Step::Condition& condition : step.conditions) {
        if (condition.join->comparison == 0) wanted.push_back(At(row, condition.table, condition.column));
      }
      const auto found = index.find(wanted);
      bool matched = false;
      for (std::size_t i = 0; found != index.end() && i < found->second.size(); ++i) {
        row[step.table] = found->second[i];
        if (!Holds(step, row)) continue;
        if (longer.size() == most_) return false;
        met[found->second[i]] = matched = true;
        longer.push_back(row);
      }
      row[step.table].reset();
      if (!matched && joined && step.conditions.front().keepsEarlier) longer.push_back(row);
    }
    for (std::size_t position = 0; joined && step.conditions.front().keepsOwn && position < met.size(); ++position) {
      if (met[position]) continue;
      longer.emplace_back(tables_.size());
      longer.back()[step.table] = position;
    }
    rows_ = std::move(longer);
    return rows_.size() <= most_;
  }

  // Whether the row fulfils what the joins of the step ask besides equality.
  bool Holds(const Step& step, const Combination& row) const {
    return std::ranges::all_of(step.conditions,
                               [&](const Step::Condition& condition) { return Holds(*condition.join, row); });
  }

  bool Holds(const Design::Join& join, const Combination& row) const {
    const Cell left = At(row, join.left, join.leftColumn);
    const Cell right = At(row, join.right, join.rightColumn);
    if (IsNull(left) || IsNull(right)) return false;
    const int order = Compare(left, right);
    const bool compares[] = {order == 0, order != 0, order<0, order <= 0, order> 0, order >= 0};
    if (!compares[join.comparison] || !join.condition) return compares[join.comparison];
    const Cell asked = At(row, join.condition->table, join.condition->column);
    return !IsNull(asked) && Compare(asked, Cell(join.condition->over)) > 0;
  }

  // --- Criteria ---

  static bool IsAggregate(const Design::Field& field) {
    return !field.group.empty() && field.group != "Group By" && field.group != "Where";
  }

  // Whether the criteria let it through: all of one column, of any column that says something.
  template <class Value>
  bool ChoosesGroup(Value&& value) const {
    bool any = false;
    for (std::size_t column = 0; column < 4; ++column) {
      bool says = false;
      bool all = true;
      for (const Design::Field& field : design_.fields) {
        const auto criterion = field.criteria.find(column);
        if (criterion == field.criteria.end() || !IsAggregate(field)) continue;
        says = any = true;
        all = all && criterion->second.holds(value(field)).value_or(false);
      }
      if (says && all) return true;
    }
    return !any;
  }

  // --- Groups ---

  bool IsGrouped() const {
    return std::ranges::any_of(design_.fields,
                               [](const Design::Field& f) { return f.group == "Group By" || IsAggregate(f); });
  }

  // The values of all fields, a row for each combination.
  std::vector<Row> Single() const {
    std::vector<Row> all;
    for (const Combination& row : rows_) {
      Row& values = all.emplace_back();
      for (const Design::Field& field : design_.fields) values.push_back(field.column == "*" ? Cell() : At(row, field));
    }
    return all;
  }

  // The same, a row for each group.
  std::vector<Row> Groups() const {
    std::map<Row, std::vector<const Combination*>> groups;
    const bool byKeys =
        std::ranges::any_of(design_.fields, [](const Design::Field& f) { return f.group == "Group By"; });
    if (!byKeys) groups[{}];
    for (const Combination& row : rows_) {
      Row key;
      for (const Design::Field& field : design_.fields) {
        if (field.group == "Group By") key.push_back(At(row, field));
      }
      groups[key].push_back(&row);
    }
    std::vector<Row> all;
    for (const auto& [key, members] : groups) {
      const auto value = [&members = members, this](const Design::Field& field) { return Aggregate(field, members); };
      if (!ChoosesGroup(value)) continue;
      Row& values = all.emplace_back();
      for (const Design::Field& field : design_.fields) values.push_back(value(field));
    }
    return all;
  }

  Cell Aggregate(const Design::Field& field, const std::vector<const Combination*>& members) const {
    if (field.column == "*") return static_cast<std::int64_t>(members.size());
    if (!IsAggregate(field)) return members.empty() ? Cell() : At(*members.front(), field);
    std::int64_t count = 0;
    std::int64_t sum = 0;
    Cell extreme;
    for (const Combination* row : members) {
      const Cell cell = At(*row, field);
      if (IsNull(cell)) continue;
      ++count;
      if (const auto* whole = std::get_if<std::int64_t>(&cell)) sum += *whole;
      const int order = IsNull(extreme) ? 0 : Compare(cell, extreme);
      if (IsNull(extreme) || (field.group == "Min" ? order < 0 : order > 0)) extreme = cell;
    }
    if (field.group == "Count") return count;
    if (field.group == "Sum") return count == 0 ? Cell() : Cell(sum);
    return extreme;
  }

  // --- The result ---

  std::vector<Row> Finish(const std::vector<Row>& all) const {
    std::map<int, std::pair<std::size_t, bool>> keys;  // by the place: the field, and whether it descends
    for (std::size_t i = 0; i < design_.fields.size(); ++i) {
      const int sort = design_.fields[i].sort;
      if (sort != 0) keys[std::abs(sort)] = {i, sort < 0};
    }
    std::vector<std::size_t> order(all.size());
    for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
    std::ranges::stable_sort(order, [&](std::size_t a, std::size_t b) {
      for (const auto& [place, key] : keys) {
        const Cell& x = all[a][key.first];
        const Cell& y = all[b][key.first];
        const int compared = IsNull(x) || IsNull(y) ? int(IsNull(y)) - int(IsNull(x)) : Compare(x, y);
        if (compared != 0) return key.second ? compared > 0 : compared < 0;
      }
      return false;
    });
    std::vector<Row> rows;
    std::set<Row> seen;
    for (const std::size_t i : order) {
      Row row;
      for (std::size_t f = 0; f < design_.fields.size(); ++f) {
        const Design::Field& field = design_.fields[f];
        if (!field.output) continue;
        if (field.column == "*" && !IsGrouped()) {
          for (const std::string& column : tables_[field.table]->columns)
            row.push_back(At(rows_[i], field.table, column));
        } else {
          row.push_back(all[i][f]);
        }
      }
      if (!design_.distinct || seen.insert(row).second) rows.push_back(std::move(row));
    }
    return rows;
  }

  Store& store_;
  const Design& design_;
  const std::size_t most_;
  std::vector<const StoredTable*> tables_;
  std::vector<Combination> rows_;
  std::vector<Question> questions_;
};

}  // namespace

int Compare(const Cell& a, const Cell& b) {
  const auto number = [](const Cell& cell) -> std::optional<double> {
    if (const auto* whole = std::get_if<std::int64_t>(&cell)) return static_cast<double>(*whole);
    if (const auto* value = std::get_if<double>(&cell)) return *value;
    return std::nullopt;
  };
  const std::optional<double> x = number(a);
  const std::optional<double> y = number(b);
  if (x && y) return *x < *y ? -1 : *x > *y ? 1 : 0;
  return std::get<std::string>(a).compare(std::get<std::string>(b));
}

std::set<std::size_t> TogetherWith(const Design& design, std::size_t table) {
  std::set<std::size_t> together = {table};
  for (std::size_t before = 0; before != together.size();) {
    before = together.size();
    for (const Design::Join& join : design.joins) {
      if (join.question != 0 || together.contains(join.left) == together.contains(join.right)) continue;
      together.insert({join.left, join.right});
    }
  }
  return together;
}

bool HasOneKindATable(const Design& design) {
  std::set<std::size_t> all;
  for (std::size_t table = 0; table < design.tables.size(); ++table) all.insert(table);
  for (const Step& step : Order(design, all).Steps()) {
    for (const Step::Condition& condition : step.conditions) {
      const Step::Condition& first = step.conditions.front();
      if (condition.keepsOwn != first.keepsOwn || condition.keepsEarlier != first.keepsEarlier) return false;
    }
  }
  return true;
}

std::optional<std::vector<Row>> Evaluate(Store& store, const Design& design, std::size_t most) {
  return Evaluation(store, design, most).Run();
}

}  // namespace zrqrybld::test
