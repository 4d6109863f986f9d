#include "tests/flow/random_designs.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

#include "tests/flow/headless_designer.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/relationships.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/host/step_context.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/source_rules.h"
#include "zrqrybld/sql/sql_pane.h"
#include "zrqrybld/sql/sql_syntax.h"

namespace zrqrybld::test {
namespace {

using Lines = std::vector<std::vector<std::string>>;

// The columns that criteria are made for, by what they hold.
enum class Holds { Number, Text, Date };
struct KnownColumn {
  const char* table;
  const char* column;
  Holds holds;
};
constexpr KnownColumn kColumns[] = {
    {"Customers", "CustomerID", Holds::Text},     {"Customers", "City", Holds::Text},
    {"Customers", "Währung", Holds::Text},        {"Customers", "CreditLimit", Holds::Number},
    {"Order", "OrderID", Holds::Number},          {"Order", "EmployeeID", Holds::Number},
    {"Order", "OrderDate", Holds::Date},          {"Order", "RequiredDate", Holds::Date},
    {"Order Lines", "LineNo", Holds::Number},     {"Order Lines", "Quantity", Holds::Number},
    {"Order Lines", "Unit Price", Holds::Number}, {"Products", "ProductName", Holds::Text},
    {"Products", "SupplierID", Holds::Number},    {"Products", "UnitsInStock", Holds::Number},
    {"Categories", "Group", Holds::Text},         {"Categories", "CategoryID", Holds::Number},
    {"Suppliers", "Country", Holds::Text},        {"Suppliers", "SupplierID", Holds::Number},
    {"Employees", "LastName", Holds::Text},       {"Employees", "ReportsTo", Holds::Number},
    {"Employees", "BirthDate", Holds::Date},      {"Shipments", "ShipmentID", Holds::Number},
    {"Shipments", "CarrierID", Holds::Number},    {"carriers", "carrier_name", Holds::Text},
    {"Währungen", "Kürzel", Holds::Text},         {"Währungen", "Kurs in €", Holds::Number},
};

// --- Criteria ---

std::string Literal(const Cell& value, Holds holds) {
  const std::string text = CellText(value);
  return holds == Holds::Text ? "'" + ReplaceAll(text, "'", "''") + "'" : text;
}

// A criterion about two values of the column; how it is typed, and what it means.
Criterion CriterionByChance(Chance& chance, Holds holds, Cell low, Cell high) {
  if (Compare(low, high) > 0) std::swap(low, high);
  const std::string a = Literal(low, holds);
  const std::string b = Literal(high, holds);
  const auto known = [](auto holdsFor) {
    return [holdsFor](const Cell& cell) -> std::optional<bool> {
      if (cell.index() == 0) return std::nullopt;
      return holdsFor(cell);
    };
  };
  switch (chance.Below(11)) {
    case 0:
      return {a, known([low](const Cell& c) { return Compare(c, low) == 0; })};
    case 1:
      return {"<>" + a, known([low](const Cell& c) { return Compare(c, low) != 0; })};
    case 2:
      return {"> " + a, known([low](const Cell& c) { return Compare(c, low) > 0; })};
    case 3:
      return {"<=" + b, known([high](const Cell& c) { return Compare(c, high) <= 0; })};
    case 4:
      return {"between " + a + " and " + b,
              known([low, high](const Cell& c) { return Compare(c, low) >= 0 && Compare(c, high) <= 0; })};
    case 5:
      return {"not in (" + a + "," + b + ")",
              known([low, high](const Cell& c) { return Compare(c, low) != 0 && Compare(c, high) != 0; })};
    case 6:
      return {"is null", [](const Cell& c) { return c.index() == 0; }};
    case 7:
      return {"Not Null", [](const Cell& c) { return c.index() != 0; }};
    case 8:
      return {"< " + a + " Or > " + b,
              known([low, high](const Cell& c) { return Compare(c, low) < 0 || Compare(c, high) > 0; })};
    case 9:
      return {"Is Null Or (>= " + a + " And Not " + b + ")", [low, high](const Cell& c) -> std::optional<bool> {
                return c.index() == 0 || (Compare(c, low) >= 0 && Compare(c, high) != 0);
              }};
    default: {
      if (holds != Holds::Text) return {"= " + b, known([high](const Cell& c) { return Compare(c, high) == 0; })};
      const std::string start(FirstCharacters(std::get<std::string>(low), 2));
      return {"Like '" + ReplaceAll(start, "'", "''") + "%'",
              known([start](const Cell& c) { return std::get<std::string>(c).starts_with(start); })};
    }
  }
}

std::optional<Cell> ValueByChance(Store& store, Chance& chance, const KnownColumn& known) {
  const StoredTable& table = store.Table(known.table);
  const Cell& value = table.rows[chance.Below(table.rows.size())][table.ColumnAt(known.column)];
  return value.index() == 0 ? std::nullopt : std::optional<Cell>(value);
}

// --- Fields ---

void AddField(Store& store, Chance& chance, Design& design, bool grouped) {
  const KnownColumn& known = kColumns[chance.Below(std::size(kColumns))];
  for (std::size_t table = 0; table < design.tables.size(); ++table) {
    if (design.tables[table].name != known.table || chance.OneIn(3)) continue;
    const auto same = [&](const Design::Field& field) { return field.table == table && field.column == known.column; };
    if (std::ranges::any_of(design.fields, same)) return;
    Design::Field field{table, known.column};
    if (grouped) {
      field.group = std::array{"Group By", "Group By", "Where", "Count", "Sum", "Min", "Max"}[chance.Below(7)];
      const StoredTable& stored = store.Table(known.table);
      const bool whole = std::ranges::all_of(stored.rows, [at = stored.ColumnAt(known.column)](const Row& row) {
        return row[at].index() == 0 || std::holds_alternative<std::int64_t>(row[at]);
      });
      if (field.group == "Sum" && !whole) field.group = "Count";
    }
    for (std::size_t column = 0; column < 4; ++column) {
      if (!chance.OneIn(column < 2 ? 3 : 12)) continue;
      std::optional<Cell> low = ValueByChance(store, chance, known);
      std::optional<Cell> high = ValueByChance(store, chance, known);
      Holds holds = known.holds;
      if (field.group == "Count" || field.group == "Sum") {
        low = Cell(static_cast<std::int64_t>(chance.Below(5)));
        high = Cell(static_cast<std::int64_t>(2 + chance.Below(90)));
        holds = Holds::Number;
      }
      if (low && high) field.criteria[column] = CriterionByChance(chance, holds, *low, *high);
    }
    if (field.group == "Where" && field.criteria.empty()) return;
    field.output = field.group != "Where" && (field.criteria.empty() || !chance.OneIn(3));
    design.fields.push_back(std::move(field));
    return;
  }
}

// --- Marks of outer joins ---

// One condition in a list of tables: its sides without marks, and which of them may be missing.
struct Marked {
  std::string left;
  std::string right;
  const char* join = " INNER JOIN ";
};

Marked ReadMarks(std::string text) {
  Marked marked;
  const auto cut = [&](std::string_view sign, const char* join) {
    const std::size_t at = text.find(sign);
    if (at == std::string::npos) return false;
    marked = {text.substr(0, at), text.substr(at + sign.size()), join};
    return true;
  };
  if (cut(" *= ", " RIGHT JOIN ") || cut(" =* ", " LEFT JOIN ") || cut(" (+) = ", " LEFT JOIN ")) return marked;
  const bool rightMayMiss = text.ends_with(" (+)");
  if (rightMayMiss) text.resize(text.size() - 4);
  cut(" = ", rightMayMiss ? " RIGHT JOIN " : " INNER JOIN ");
  return marked;
}

// The statement with the list of tables and its marked conditions turned into joins.
std::string MarksToJoins(const std::string& sql) {
  constexpr std::string_view kFrom = "\nFROM \n";
  constexpr std::string_view kWhere = "\nWHERE\n\t(";
  const std::size_t from = sql.find(kFrom);
  const std::size_t where = sql.find(kWhere);
  if (where == std::string::npos) return sql;
  std::size_t end = where + kWhere.size();
  for (int depth = 1; depth > 0; ++end) depth += sql[end] == '(' ? 1 : sql[end] == ')' ? -1 : 0;
  const std::string conditions =
      ReplaceAll(sql.substr(where + kWhere.size(), end - 1 - where - kWhere.size()), "\n\t", "");
  const std::string list = sql.substr(from + kFrom.size(), where - from - kFrom.size());
  std::vector<std::string_view> tables = Split(list, ",\n");
  // The table of a side: the text before its "." is the table's, or the end of it, which is the alias.
  const auto tableOf = [&](const std::string& side) {
    const auto found = std::ranges::find_if(tables, [&](std::string_view table) {
      for (std::size_t start = 0;; ++start) {
        if (side.starts_with(std::string(table.substr(start)) + ".")) return true;
        start = table.find(' ', start);
        if (start == std::string_view::npos) return false;
      }
    });
    if (found == tables.end()) throw std::runtime_error("no table of " + side + " in\n" + sql);
    return *found;
  };
  std::string joins;
  std::string last;
  std::vector<std::string_view> joined;
  for (const std::string_view text : Split(conditions, " AND ")) {
    const Marked marked = ReadMarks(std::string(text));
    const std::string table(tableOf(marked.left));
    joins += table == last ? " AND " : marked.join + table + " ON ";
    joins += marked.left + " = " + marked.right;
    last = table;
    joined.push_back(tableOf(marked.left));
  }
  std::string start;
  for (const std::string_view table : tables) {
    if (std::ranges::find(joined, table) == joined.end()) start = table;
  }
  std::string rest = sql.substr(end);
  if (rest.starts_with(" AND (")) rest = "\nWHERE (" + rest.substr(6);
  return sql.substr(0, from) + "\nFROM " + start + joins + rest;
}

bool HoldsNumbers(Store& store, const std::string& table, const std::string& column) {
  const StoredTable& stored = store.Table(table);
  const std::size_t place = stored.ColumnAt(column);
  return std::ranges::any_of(stored.rows,
                             [&](const Row& row) { return std::holds_alternative<std::int64_t>(row[place]); });
}

// Other comparisons, and conditions on tables with captions of their own.
void AskMore(Store& store, Chance& chance, const Design& design, Design::Join& join) {
  if (!HoldsNumbers(store, design.tables[join.left].name, join.leftColumn)) return;
  // PostgreSQL joins all rows of both only by equality.
  if (chance.OneIn(6) && join.kind != JoinAllOfBoth) join.comparison = 1 + static_cast<int>(chance.Below(5));
  const bool isLeft = chance.OneIn(2);
  const Design::Table& table = design.tables[isLeft ? join.left : join.right];
  if (!table.caption.starts_with("t") || !chance.OneIn(3)) return;
  join.condition = {isLeft ? join.left : join.right, isLeft ? join.leftColumn : join.rightColumn,
                    static_cast<std::int64_t>(chance.Below(6))};
}

}  // namespace

std::string CellText(const std::string& text) {
  const std::optional<double> number = ParseNumber(text);
  return number ? NumberText(*number) : text;
}

std::string CellText(const Cell& cell) {
  if (const auto* whole = std::get_if<std::int64_t>(&cell)) return std::to_string(*whole);
  if (const auto* number = std::get_if<double>(&cell)) return NumberText(*number);
  if (const auto* text = std::get_if<std::string>(&cell)) return CellText(*text);
  return "NULL";
}

namespace {

// The tables that hang together with one, whatever the joins ask.
std::set<std::size_t> ReachedFrom(Design design, std::size_t table) {
  for (Design::Join& join : design.joins) join.question = 0;
  return TogetherWith(design, table);
}

// Some joins only ask: what hangs together with the first table returns rows, the tables behind such a join do not.
void AskByChance(Chance& chance, Design& design) {
  for (std::size_t tries = chance.Below(3); tries > 0; --tries) {
    const Design::Join& chosen = design.joins[chance.Below(design.joins.size())];
    const std::pair ends(chosen.left, chosen.right);
    Design cut = design;
    std::erase_if(cut.joins, [&](const Design::Join& join) { return std::pair(join.left, join.right) == ends; });
    if (chosen.question != 0 || TogetherWith(cut, ends.first).contains(ends.second)) continue;
    const bool asksRight = !ReachedFrom(cut, ends.second).contains(0);
    const int question = (asksRight ? 1 : 3) + static_cast<int>(chance.Below(2));
    for (Design::Join& join : design.joins) {
      if (std::pair(join.left, join.right) != ends) continue;
      join.question = question;
      join.kind = 0;
    }
  }
}

// Fields of tables that are only asked about choose rows and nothing else.
void OnlyChooseRows(Design& design, bool grouped) {
  std::set<std::size_t> asked;
  for (const Design::Join& join : design.joins) {
    if (join.question != 0) asked.merge(TogetherWith(design, join.Asked()));
  }
  std::erase_if(design.fields, [&](Design::Field& field) {
    if (!asked.contains(field.table)) return false;
    field.output = false;
    if (grouped && field.group != "Where" && field.group != "Group By") field.criteria.clear();
    field.group = grouped ? "Where" : "";
    return field.criteria.empty();
  });
}

}  // namespace

Design DesignByChance(Store& store, Chance& chance, bool withFullJoins) {
  const std::vector<std::string> all = {"Customers", "Order",     "Order Lines", "Products", "Categories",
                                        "Suppliers", "Employees", "Shipments",   "carriers", "Währungen"};
  Design design;
  do {
    std::vector<std::string> names;
    const std::size_t count = 2 + chance.Below(4);
    while (names.size() < count) names.push_back(all[chance.Below(all.size())]);
    design.tables = WithCaptions(names);
    for (std::size_t t = 0; t < names.size(); ++t) {
      const bool copy = design.tables[t].caption != design.tables[t].name;
      if (copy || chance.OneIn(2))
        design.tables[t].caption = chance.OneIn(2) ? "t " + std::to_string(t) : "t" + std::to_string(t);
    }
    design.joins = JoinsByForeignKeys(design.tables);
    std::map<std::pair<std::size_t, std::size_t>, int> kinds;  // all columns of one key are of one kind
    for (Design::Join& join : design.joins) {
      const int kind = chance.OneIn(2) ? 0 : static_cast<int>(chance.Below(withFullJoins ? 4 : 3));
      join.kind = kinds.emplace(std::pair(join.left, join.right), kind).first->second;
      AskMore(store, chance, design, join);
    }
  } while (!IsConnected(design) || !HasOneKindATable(design));
  if (!design.joins.empty()) AskByChance(chance, design);

  const bool grouped = chance.OneIn(3);
  for (std::size_t tries = 3 + chance.Below(60); tries > 0; --tries) AddField(store, chance, design, grouped);
  if (design.fields.size() > 6) design.fields.resize(6);
  OnlyChooseRows(design, grouped);
  // Something must come out.
  const auto isShown = [&](const Design::Field& field) { return field.output; };
  const bool hasQuestions = std::ranges::any_of(design.joins, [](const Design::Join& j) { return j.question != 0; });
  if (design.fields.empty() || (hasQuestions && std::ranges::none_of(design.fields, isShown))) {
    design.fields.push_back({0, store.Table(design.tables[0].name).columns[0], true, grouped ? "Group By" : ""});
  } else if (!std::ranges::any_of(design.fields, &Design::Field::output)) {
    design.fields[0].output = true;
    if (design.fields[0].group == "Where") design.fields[0].group = "Group By";
  }
  if (grouped && chance.OneIn(2)) design.fields.push_back({0, "*", true, "Count"});
  int sorts = 0;
  for (Design::Field& field : design.fields) {
    if (field.output && field.column != "*" && chance.OneIn(3)) field.sort = chance.OneIn(2) ? ++sorts : -(++sorts);
  }
  design.distinct = chance.OneIn(5);
  return design;
}

void Build(qbQueryBuilder& hub, const Design& design, const std::string& prefix) {
  const StepScope step(hub.Hub(), "Build");
  hub.DiagramPane()->Clear();
  qbGridPane& grid = *hub.GridPane();
  std::vector<Ref<qbEntity>> entities;
  for (const Design::Table& table : design.tables) {
    entities.push_back(hub.AddTable(prefix + table.name));
    if (table.caption != table.name) entities.back()->SetCaption(table.caption);
  }
  std::vector<std::pair<Ref<qbRelationship>, JoinExistenceEnum>> questions;
  for (const Design::Join& join : design.joins) {
    const Ref<qbRelationship> line = entities[join.left]->Relationships()->Add(entities[join.right]);
    line->SetSourceItemIndex(entities[join.left]->Items()->Item(join.leftColumn)->Index());
    line->SetTargetItemIndex(entities[join.right]->Items()->Item(join.rightColumn)->Index());
    line->SetItemData(join.kind);
    line->SetComparison(JoinComparisonAt(join.comparison));
    questions.emplace_back(line, JoinExistenceAt(join.question));
    if (!join.condition) continue;
    const NameRules rules = CurrentNameRules(hub);
    const auto quoted = [&](const std::string& name) { return QuoteWhenNeeded(Identifier(name), rules).Text(); };
    line->SetCondition(quoted(entities[join.condition->table]->Caption()) + "." + quoted(join.condition->column) +
                       " > " + std::to_string(join.condition->over));
  }
  grid.SetShowGroupBy(std::ranges::any_of(design.fields, [](const Design::Field& f) { return !f.group.empty(); }));
  hub.SetDistinctRecords(design.distinct);
  std::map<int, std::int32_t> sorted;
  for (const Design::Field& field : design.fields) {
    const std::int32_t row = grid.SetFieldOutput(field.column, true, entities[field.table]->Caption());
    grid.SetValue(row, "group_by", field.group);
    for (const auto& [column, criterion] : field.criteria) {
      grid.SetValue(row, column == 0 ? std::string("criteria") : "or" + std::to_string(column), criterion.text);
    }
    if (field.sort != 0) sorted[field.sort] = row;
    if (!field.output) grid.SetValue(row, "output", false);
  }
  for (int place = 1; place <= static_cast<int>(sorted.size()); ++place) {
    const bool descends = sorted.contains(-place);
    const std::int32_t row = sorted.at(descends ? -place : place);
    grid.SetValue(row, "sort_type", descends ? "Descending" : "Ascending");
    grid.SetValue(row, "sort_order", std::to_string(place));
  }
  for (const auto& [join, question] : questions) join->SetExistence(question);  // nothing is ticked behind it
}

namespace {

class Trial {
 public:
  Trial(qbQueryBuilder& hub, const Design& design, const Target& target, const std::vector<Row>& expected,
        bool marksCanSay)
      : hub_(hub), design_(design), target_(target), marksCanSay_(marksCanSay) {
    for (const Row& row : expected) {
      std::vector<std::string> line;
      for (const Cell& cell : row) line.push_back(CellText(cell));
      expected_.push_back(std::move(line));
    }
    // The places of the sort keys in the result.
    std::map<int, std::size_t> keys;
    std::size_t place = 0;
    for (const Design::Field& field : design.fields) {
      if (field.sort != 0) keys[std::abs(field.sort)] = place;
      place += field.output ? 1 : 0;
    }
    for (const auto& [order, key] : keys) keys_.push_back(key);
  }

  // Every dialect's statement; false after the first wrong one.
  bool Run(bool withLimit) {
    // A limit says which rows come only where the order says it, for all and without Null.
    const Lines keys = Keys(expected_);
    const auto hasNull = [](const std::vector<std::string>& line) { return std::ranges::count(line, "NULL") > 0; };
    limit_ = withLimit && !keys_.empty() && !std::ranges::any_of(keys, hasNull) ? expected_.size() / 2 + 1 : 0;
    sorts_ = !std::ranges::any_of(keys, hasNull);
    hub_.SetSelectTopRecords(limit_ == 0 ? "" : std::to_string(limit_));
    for (const Dialect& dialect : AllDialects()) {
      if (dialect.syntax > SQLSyntaxOpenSQL) continue;  // these are written for one source each
      if (dialect.joins == Dialect::Joins::Conditions && !marksCanSay_) continue;
      if (dialect.limit.place == RowLimit::Place::Condition && limit_ > 0) continue;  // it cuts before it sorts
      if (!Check(dialect)) return false;
    }
    return CheckOwn();
  }

 private:
  Lines Keys(const Lines& lines) const {
    Lines keys;
    for (const std::vector<std::string>& line : lines) {
      keys.emplace_back();
      for (const std::size_t key : keys_) keys.back().push_back(line.at(key));
    }
    return keys;
  }

  // The source's own dialect, also with rows passed over, with and without a limit.
  bool CheckOwn() {
    const Dialect& own = DialectFor(target_.own);
    bool same = Check(own);
    if (limit_ > 0) {
      skip_ = expected_.size() / 3;
      hub_.SetSkipRecords(static_cast<std::int32_t>(skip_));
      same = same && Check(own);
      hub_.SetSelectTopRecords("");
      limit_ = expected_.size();
      same = same && Check(own);
      hub_.SetSkipRecords(0);
      skip_ = 0;
    }
    return same && CheckReadBack(own);
  }

  // What joins ask is read from the text as joins or as conditions: the rows are the same.
  bool CheckReadBack(const Dialect& own) {
    const bool asks = std::ranges::any_of(design_.joins, [](const Design::Join& join) { return join.question != 0; });
    if (!asks) return true;
    hub_.SQLPane()->Refresh();
    hub_.SQLPane()->ParseSQLStatement(std::string(hub_.SQLPane()->SQLStatement()));
    return Check(own);
  }

  bool Check(const Dialect& dialect) {
    hub_.SQLPane()->SetSQLSyntax(dialect.syntax);
    hub_.SQLPane()->Refresh();
    const std::string statement = ReplaceAll(hub_.SQLPane()->SQLStatement(), "\r\n", "\n");
    std::string sql = ForSqlite(statement, dialect.syntax);
    const auto isOuter = [](const Design::Join& join) { return join.kind != 0; };
    const bool outer = std::ranges::any_of(design_.joins, isOuter);
    if (dialect.joins == Dialect::Joins::Conditions && outer) sql = MarksToJoins(sql);
    Lines rows = target_.run(sql);
    Lines expected = expected_;
    const auto fail = [&](const char* what) {
      ADD_FAILURE() << what << ": " << rows.size() << " rows instead of " << expected.size() << "\n"
                    << statement << "\n--\n"
                    << sql;
      return false;
    };
    if (limit_ > 0) {
      expected.erase(expected.begin(), expected.begin() + static_cast<std::ptrdiff_t>(skip_));
      expected.resize(std::min(expected.size(), limit_));
      return Keys(rows) == Keys(expected) || fail("other rows within the limit");
    }
    if (sorts_ && Keys(rows) != Keys(expected)) return fail("another order");
    std::ranges::sort(rows);
    std::ranges::sort(expected);
    return rows == expected || fail("other rows");
  }

  qbQueryBuilder& hub_;
  const Design& design_;
  const Target& target_;
  Lines expected_;
  std::vector<std::size_t> keys_;
  std::size_t limit_ = 0;
  std::size_t skip_ = 0;
  bool sorts_ = false;
  const bool marksCanSay_;
};

}  // namespace

std::string TryDesigns(qbQueryBuilder& hub, Store& store, const Target& target, int count, unsigned seed) {
  Chance chance(seed);
  std::size_t rows = 0, outer = 0, full = 0, grouped = 0, empty = 0, limited = 0, marks = 0, asked = 0, questions = 0;
  for (int made = 0; made < count;) {
    const Design design = DesignByChance(store, chance, target.hasFullJoin);
    const auto expected = Evaluate(store, design, target.mostRows);
    if (!expected || (expected->empty() && !chance.OneIn(10))) continue;  // too large, or says little
    ++made;
    const auto kindHas = [&](int bits) {
      return std::ranges::any_of(design.joins, [&](const Design::Join& join) { return (join.kind & bits) == bits; });
    };
    const bool isOuter = kindHas(1) || kindHas(2);
    const auto asksMore = [](const Design::Join& join) { return join.comparison != 0 || join.condition.has_value(); };
    const bool isAsked = std::ranges::any_of(design.joins, asksMore);
    asked += isAsked ? 1 : 0;
    const bool hasQuestions = std::ranges::any_of(design.joins, [](const Design::Join& j) { return j.question != 0; });
    questions += hasQuestions ? 1 : 0;
    const bool marksCanSay = !kindHas(3) && !(isOuter && (isAsked || hasQuestions));
    rows += expected->size();
    outer += isOuter ? 1 : 0;
    full += kindHas(3) ? 1 : 0;
    marks += isOuter && marksCanSay ? 1 : 0;
    empty += expected->empty() ? 1 : 0;
    grouped += std::ranges::any_of(design.fields, [](const Design::Field& f) { return !f.group.empty(); }) ? 1 : 0;
    Build(hub, design, target.prefix);
    Trial trial(hub, design, target, *expected, marksCanSay);
    const bool withLimit = chance.OneIn(4);
    limited += withLimit ? 1 : 0;
    if (!trial.Run(withLimit)) return "failed";
  }
  return std::to_string(rows) + " rows; designs with outer joins " + std::to_string(outer) + ", with full ones " +
         std::to_string(full) + ", with marks " + std::to_string(marks) + ", with other conditions " +
         std::to_string(asked) + ", with questions " + std::to_string(questions) + ", grouped " +
         std::to_string(grouped) + ", without rows " + std::to_string(empty) + ", with a limit " +
         std::to_string(limited);
}

}  // namespace zrqrybld::test
