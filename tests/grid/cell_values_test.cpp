#include "zrqrybld/grid/cell_values.h"

#include <gtest/gtest.h>

#include "tests/data_table.h"
#include "tests/hub_fixture.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/expression/intelli_list.h"
#include "zrqrybld/grid/field_names.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/platform/input.h"
#include "zrqrybld/platform/schema_fields.h"
#include "zrqrybld/sql/sql_pane.h"

namespace zrqrybld::test {
namespace {

TEST(ValuePlace, IsFoundInHalfWrittenCriteria) {
  for (const Row& row : ReadRows("value_places.txt")) {
    SCOPED_TRACE(row.place + ": " + row[0]);
    std::string text = row[0];
    const std::size_t caret = text.find('^');
    text.erase(caret, 1);
    const std::optional<ValuePlace> place = FindValuePlace(text, caret);
    if (place) {
      text.insert(place->to, "]");
      text.insert(place->from, "[");
    }
    EXPECT_EQ(place ? text : "-", row[1]);
    EXPECT_EQ(place ? place->typed : "", row.cells.size() > 2 ? row[2] : "");
  }
}

// Remembers what it is asked, and answers when the test says so.
class SlowSource final : public ValueSource {
 public:
  void Ask(const ValueQuestion& question, Answer answer) override {
    asked.push_back(question);
    answers.push_back(std::move(answer));
  }
  bool CanChooseDates() const override { return true; }
  void ChooseDate(const std::string& now, const DateAnswer& answer) override {
    begun = now;
    answer("2024-02-29");
  }
  std::vector<ValueQuestion> asked;
  std::vector<Answer> answers;
  std::string begun;
};

class CellValuesTest : public HubTest {
 protected:
  CellValuesTest() {
    source->Column("Customers", "City", 3, {}, DataTypeCode::VarWChar);
    source->Column("Orders", "Shipped", 4, {}, DataTypeCode::DbDate);
    source->Column("Orders", "Paid", 5, {}, DataTypeCode::Boolean);
    source->Column("Orders", "Scan", 6, {}, DataTypeCode::LongVarBinary, ColumnLong);
    source->Column("Orders", "Notes", 7, {}, DataTypeCode::VarWChar, ColumnLong);
    Use();
    hub->AddTable("Customers");
    hub->AddTable("Orders");
    sql->SetSQLSyntax(SQLSyntaxMSSQL);
  }
  // A list for a criterion of the column, open at the end of the text.
  Ref<qbIntelliList> Open(const std::string& table, const std::string& column, const std::string& text) {
    CriteriaContext rules = hub->CriteriaRules();
    const SnapshotType type = TypeOfColumn(*diagram->Entities()->Item(table), column, *hub->DataTypes());
    rules.dataType = type.code;
    rules.isLong = type.isLong;
    const Ref<qbIntelliList> list = qbIntelliList::Create(hub, EditedText::Criterion);
    list->SetValues(ValuesFor(hub, {table, column}, rules, values));
    list->Open(text, text.size());
    return list;
  }
  // The first entries, a detail in parentheses.
  static std::string First(const qbIntelliList& list, std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < std::min(count, list.Items().size()); ++i) {
      const Suggestion& item = list.Items()[i];
      text += item.label + (item.detail.empty() ? "" : "(" + item.detail + ")") + " ";
    }
    return text;
  }
  std::string Taken(const Ref<qbIntelliList>& list, std::ptrdiff_t index) {
    std::string text;
    const auto link = list->Accepted.Connect([&](const TextReplacement& taken) { text = taken.text.text; });
    list->Accept(index);
    return text;
  }
  std::shared_ptr<SlowSource> values = std::make_shared<SlowSource>();
};

TEST_F(CellValuesTest, AreAskedOnceAndOfferedWhenTheyCome) {
  const Ref<qbIntelliList> list = Open("Customers", "City", "= ");
  ASSERT_EQ(values->asked.size(), 1U);
  EXPECT_EQ(values->asked[0].sql, "SELECT DISTINCT TOP 150 \r\n\tCustomers.City\r\nFROM \r\n\tCustomers");
  EXPECT_EQ(list->Selected(), -1) << "nothing is taken that moves away";
  values->answers[0]({{"Rom"}, {"L'Aquila"}, {std::string(300, 'x')}, {"two\nlines"}, {"Bern"}});
  EXPECT_EQ(First(*list, 3), "Bern L'Aquila Rom ");
  EXPECT_EQ(list->Selected(), 0);
  values->answers[0]({{"Again"}});
  EXPECT_EQ(First(*list, 3), "Bern L'Aquila Rom ") << "the first answer counts";
  list->OnTyped("= A", 3, true);
  EXPECT_EQ(First(*list, 1), "L'Aquila ");
  EXPECT_EQ(Taken(list, 0), "'L''Aquila'");
  list->Open("= 'R", 4);
  EXPECT_EQ(First(*list, 9), "Rom Bern ") << "no words inside a literal";
  EXPECT_EQ(values->asked.size(), 1U);
}

// Somebody has gone to an entry, closed the list, or the editor is gone.
TEST_F(CellValuesTest, DisturbNobody) {
  Ref<qbIntelliList> list = Open("Customers", "City", "= ");
  list->OnKeyDown({KeyCodeDown, ShiftNone});
  const std::string chosen = list->Items()[0].label;
  values->answers[0]({{"Bern"}});
  EXPECT_EQ(list->Items()[static_cast<std::size_t>(list->Selected())].label, chosen);
  list = Open("Customers", "City", "= ");
  list->Close();
  values->answers[1]({{"Bern"}});
  EXPECT_FALSE(list->IsOpen());
  list = Open("Customers", "City", "= ");
  list.reset();
  values->answers[2]({{"Bern"}});
}

TEST_F(CellValuesTest, OfAKeyAreThoseOfTheTableItRefersTo) {
  const Ref<qbIntelliList> list = Open("Orders", "CustomerID", "");
  EXPECT_EQ(values->asked.at(0).sql,
            "SELECT DISTINCT TOP 150 \r\n\tCustomers.CustomerID, \r\n\tCustomers.Name\r\nFROM \r\n\tCustomers");
  values->answers[0]({{"10", true, "Berg"}, {"9", true, "Adam"}});
  EXPECT_EQ(First(*list, 2), "9(Adam) 10(Berg) ");
  list->OnTyped("be", 2, true);
  EXPECT_EQ(First(*list, 1), "10(Berg) ");
  EXPECT_EQ(Taken(list, 0), "10");
}

TEST_F(CellValuesTest, OfOtherTypes) {
  for (const char* column : {"Scan", "Notes", "*", "None", "Paid"}) {
    const Ref<qbIntelliList> list = Open("Orders", column, "");
    EXPECT_TRUE(values->asked.empty()) << column;
    EXPECT_EQ(First(*list, 2) == "True False ", column == std::string("Paid")) << First(*list, 2);
  }
  const Ref<qbIntelliList> list = Open("Orders", "Shipped", "> 2024-02-01");
  EXPECT_EQ(First(*list, 1), "Choose a date... ");
  EXPECT_EQ(Taken(list, 0), "'2024-02-29'");
  EXPECT_EQ(values->begun, "2024-02-01");
  values.reset();
  EXPECT_EQ(Open("Customers", "City", "= ")->Selected(), 0) << "without a source as ever";
}

}  // namespace
}  // namespace zrqrybld::test
