// Designs made by chance: the statement of each, read back, is the same design, in all dialects that are read.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <set>

#include "tests/flow/headless_designer.h"
#include "tests/flow/random_designs.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/relationships.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/sql/diagnostics.h"
#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/query_snapshot.h"
#include "zrqrybld/sql/sql_pane.h"
#include "zrqrybld/sql/sql_syntax.h"

namespace zrqrybld {
namespace {

using test::HeadlessDesigner;

constexpr SQLSyntaxEnum kSyntaxes[] = {SQLSyntaxGeneric,    SQLSyntaxMSSQL, SQLSyntaxOracle, SQLSyntaxAccess,
                                       SQLSyntaxPostgreSQL, SQLSyntaxMySQL, SQLSyntaxSQLite, SQLSyntaxSQLServer,
                                       SQLSyntaxOracle12,   SQLSyntaxANSI};

using test::Chance;

// --- A design as a text: what two equal designs have in common ---

std::string JoinText(const qbRelationship& join) {
  std::string a = join.Source()->Caption() + "." + join.SourceItem()->Text() + (join.Kind().allOfSource ? "+" : "");
  std::string b = join.Target()->Caption() + "." + join.TargetItem()->Text() + (join.Kind().allOfTarget ? "+" : "");
  if (b < a) std::swap(a, b);
  return a + " = " + b;
}

// Rows without effect do not count, nor columns without criteria (of WHERE or of HAVING, which are texts of their own);
// sort numbers count by their order.
std::vector<std::string> RowTexts(const QuerySnapshot& query) {
  std::set<std::size_t> columns[2];
  std::map<const SnapshotRow*, std::size_t> ranks;
  for (const SnapshotRow* row : SortedRows(query)) ranks.emplace(row, ranks.size() + 1);
  for (const SnapshotRow& row : query.rows) {
    for (std::size_t i = 0; i < row.criteria.size(); ++i) {
      if (!row.criteria[i].empty()) columns[row.grouping.ChoosesGroups()].insert(i);
    }
  }
  std::vector<std::string> outputs, others;
  for (const SnapshotRow& row : query.rows) {
    std::string text = row.table ? query.tables[*row.table].caption.Name() + "." : "";
    text += row.column + " AS " + row.alias.Name() + " " + std::string(row.grouping.Text());
    if (ranks.contains(&row)) text += " #" + std::to_string(ranks.at(&row)) + std::string(TextOf(row.sort.direction));
    bool hasCriteria = false;
    for (const std::size_t i : columns[row.grouping.ChoosesGroups()]) {
      const std::string cell = i < row.criteria.size() ? row.criteria[i] : "";
      hasCriteria |= !cell.empty();
      text += " | " + cell;
    }
    const bool hasEffect = hasCriteria || ranks.contains(&row) || row.grouping.kind == GroupingKind::GroupBy;
    if (row.output) {
      outputs.push_back("out " + text);
    } else if (hasEffect) {
      others.push_back(text);
    }
  }
  std::ranges::sort(others);
  outputs.insert(outputs.end(), others.begin(), others.end());
  return outputs;
}

std::string DesignText(const qbQueryBuilder& hub) {
  const QuerySnapshot query = hub.Snapshot();
  std::set<std::string> tables, joins;
  for (std::int32_t i = 1; i <= hub.Entities()->Count(); ++i) {
    const qbEntity& entity = *hub.Entities()->Item(i);
    tables.insert(entity.Caption() + " is " + entity.TagVariant().Text());
    for (std::int32_t j = 1; j <= entity.Relationships()->Count(); ++j) {
      joins.insert(JoinText(*entity.Relationships()->Item(j)));
    }
  }
  std::string text = "top " + query.top + " skip " + std::to_string(query.skip) + (query.distinct ? " distinct" : "") +
                     (query.groupByMode ? " grouped" : "");
  for (const auto& part : {tables, joins}) {
    for (const std::string& line : part) text += "\n" + line;
  }
  for (const std::string& row : RowTexts(query)) text += "\n" + row;
  return text;
}

// --- Designs by chance ---

class Maker {
 public:
  Maker(HeadlessDesigner& designer, Chance& chance) : designer_(designer), chance_(chance) {}

  void Make(const Dialect& dialect) {
    qbQueryBuilder& hub = designer_.Hub();
    hub.DiagramPane()->Clear();
    hub.SetDistinctRecords(chance_.OneIn(4));
    hub.SetSelectTopRecords(Any({"", "", "7", dialect.limit.percent.empty() ? "" : "25%"}));
    const bool skips = !dialect.limit.offset.empty() && !hub.SelectTopRecords().ends_with('%');
    hub.SetSkipRecords(skips && chance_.OneIn(4) ? 3 : 0);
    // An offset without an order is an order by the first column beside DISTINCT, where it needs one.
    if (hub.SkipRecords() > 0 && dialect.limit.offsetNeedsOrder) hub.SetDistinctRecords(false);
    hub.GridPane()->SetShowGroupBy(false);
    AddTables();
    ChooseKinds(dialect.hasFullJoin);
    grouped_ = chance_.OneIn(3);
    hub.GridPane()->SetShowGroupBy(grouped_);
    FillGrid();
  }

 private:
  void AddTables() {
    static const std::vector<std::string> all = {"Customers", "Order",     "Order Lines", "Products", "Categories",
                                                 "Suppliers", "Employees", "Shipments",   "carriers", "Währungen"};
    std::vector<std::string> names;
    for (std::size_t count = 1 + chance_.Below(5); names.size() < count;) names.push_back(Any(all));
    designer_.AddTables(names);
    static const std::vector<std::string> captions = {"o", "Customers x", "order", "a.b", "Größe", "x]y", "FROM"};
    for (std::int32_t i = 1; i <= designer_.Entities().Count(); ++i) {
      const std::string caption = Any(captions);
      if (chance_.OneIn(3) && !designer_.Entities().Item(caption)) designer_.Entities().Item(i)->SetCaption(caption);
    }
  }

  // Two tables have one kind of join, whichever columns join them.
  void ChooseKinds(bool mayBeFull) {
    std::map<std::pair<std::string, std::string>, int> kinds;
    for (std::int32_t i = 1; i <= designer_.Entities().Count(); ++i) {
      const qbRelationships& joins = *designer_.Entities().Item(i)->Relationships();
      for (std::int32_t j = 1; j <= joins.Count(); ++j) {
        const qbRelationship& join = *joins.Item(j);
        const auto pair = std::make_pair(join.Source()->Caption(), join.Target()->Caption());
        const int kind = chance_.OneIn(2) ? static_cast<int>(chance_.Below(mayBeFull ? 4 : 3)) : 0;
        joins.Item(j)->SetItemData(kinds.try_emplace(pair, kind).first->second);
      }
    }
  }

  // Each field once, so that it is clear which row a condition belongs to.
  void FillGrid() {
    std::vector<QueryRow> rows;
    std::set<std::string> fields;
    int sorted = 0;
    for (std::size_t count = 1 + chance_.Below(6); rows.size() < count;) {
      const qbEntity& entity = *designer_.Entities().Item(
          static_cast<std::int32_t>(1 + chance_.Below(static_cast<std::size_t>(designer_.Entities().Count()))));
      const qbEntityItem& item = *entity.Items()->Item(
          static_cast<std::int32_t>(1 + chance_.Below(static_cast<std::size_t>(entity.Items()->Count()))));
      if (grouped_ && rows.empty() && item.Text() == "*") continue;  // it would not group
      if (!fields.insert(entity.Caption() + "." + item.Text()).second) {
        if (chance_.OneIn(20)) break;
        continue;
      }
      QueryRow row;
      row.table = entity.Caption();
      row.column = item.Text();
      row.output = rows.empty() || !chance_.OneIn(4);
      const bool star = item.Text() == "*";
      if (row.output && !star && chance_.OneIn(3)) {
        row.alias = Any({"Total", "two words", "Größe", "select", "a\"b", "x]", "5th", "it's"});
      }
      if (!star && chance_.OneIn(3)) {
        row.sort = {ReadSort(Any({"Ascending", "Descending"})).direction, ++sorted};
      }
      if (!star && chance_.OneIn(2)) AddCriteria(row, item.Kind());
      if (grouped_) ChooseGrouping(row, rows.empty());
      if (!row.output && row.criteria.empty() && !row.sort.place) row.output = true;
      rows.push_back(std::move(row));
    }
    if (chance_.OneIn(3)) rows.push_back(Expression());
    designer_.Hub().GridPane()->AddRows(rows);
  }

  void AddCriteria(QueryRow& row, TypeKind kind) {
    static const std::vector<std::string> numbers = {
        "= 5",        "<> 3",       "BETWEEN 1 AND 9", "IN (1, 2, 3)",        "IS NULL", "> 1 AND < 9",
        "= 1 OR = 2", "NOT IN (4)", "IS NOT NULL",     "NOT BETWEEN 1 AND 2", "<= -1.5"};
    static const std::vector<std::string> texts = {"= 'x'",   "LIKE 'a%'", "NOT LIKE '%''%'", "IN ('a', 'b''c')",
                                                   "IS NULL", "<> ''",     "> 'a' AND < 'z'", "= 'AND' OR = 'OR'"};
    if (kind != TypeKind::Number && kind != TypeKind::Text) return;
    for (std::size_t column = chance_.Below(4); column < 4; column += 1 + chance_.Below(4)) {
      row.criteria.resize(column + 1);
      row.criteria[column] = Any(kind == TypeKind::Number ? numbers : texts);
    }
  }

  void ChooseGrouping(QueryRow& row, bool first) {
    if (row.column == "*") {
      row.output = true;
    } else if (!row.output && !row.criteria.empty() && !row.sort.place) {
      row.grouping = ReadGrouping(Any({"Where", "Expression", "Max"}), nullptr);
    } else {
      row.grouping = ReadGrouping(Any({"Group By", "Sum", "Count Distinct", "Min"}), nullptr);
    }
    if (first) row.grouping = GroupingKind::GroupBy;
  }

  QueryRow Expression() {
    QueryRow row;
    row.column = Any({"1 + 1", "UPPER('a, b')", "CASE WHEN 1 = 2 THEN 'x' ELSE 'y' END", "'O''Brien'"});
    row.output = !chance_.OneIn(3);
    if (grouped_) row.grouping = row.output ? GroupingKind::Expression : GroupingKind::Where;
    if (!row.output) {
      row.column = "1 = 1";
      row.criteria = {"= True"};
    }
    return row;
  }

  std::string Any(const std::vector<std::string>& all) { return all[chance_.Below(all.size())]; }

  HeadlessDesigner& designer_;
  Chance& chance_;
  bool grouped_ = false;
};

// What the dialect cannot say, and says so.
bool IsException(const qbSQLPane& pane) {
  return std::ranges::any_of(pane.Diagnostics(), [](const SQLDiagnostic& diagnostic) {
    return diagnostic.kind == DiagnosticMixedJoins || diagnostic.kind == DiagnosticFullJoin;
  });
}

TEST(RoundTrip, AStatementReadBackIsTheDesignItWasMadeFrom) {
  const char* more = std::getenv("ZRQRYBLD_ROUND_TRIPS");  // how many designs; the usual number keeps the test short
  const unsigned designs = more ? static_cast<unsigned>(std::atoi(more)) : 2000;
  HeadlessDesigner designer, fresh;
  std::map<std::string, int> compared;
  for (unsigned seed = 1; seed <= designs; ++seed) {
    const SQLSyntaxEnum syntax = kSyntaxes[seed % std::size(kSyntaxes)];
    Chance chance(seed);
    Maker(designer, chance).Make(DialectFor(syntax));
    const std::string statement = designer.Statement(syntax);
    if (IsException(*designer.Hub().SQLPane())) continue;
    const std::string made = DesignText(designer.Hub());
    for (HeadlessDesigner* reader : {&designer, &fresh}) {
      reader->Hub().SQLPane()->SetSQLSyntax(syntax);
      try {
        reader->Hub().SQLPane()->ParseSQLStatement(statement);
      } catch (const Error& error) {
        ADD_FAILURE() << "seed " << seed << "\n" << statement << "\n" << error.Description();
        break;
      }
      EXPECT_EQ(DesignText(reader->Hub()), made) << "seed " << seed << "\n" << statement;
    }
    // What the designer writes then is read back as the same text: parsing it again changes nothing.
    const std::string again = fresh.Statement(syntax);
    fresh.Hub().SQLPane()->ParseSQLStatement(again);
    EXPECT_EQ(fresh.Statement(syntax), again) << "seed " << seed << "\n" << statement;
    ++compared[std::string(DialectFor(syntax).name)];
  }
  for (const auto& [dialect, count] : compared) EXPECT_GT(count, static_cast<int>(designs / 15)) << dialect;
}

}  // namespace
}  // namespace zrqrybld
