#include "zrqrybld/expression/expression_builder.h"

#include <gtest/gtest.h>

#include "tests/data_table.h"
#include "tests/known_source.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/sql/sql_pane.h"

namespace zrqrybld::test {
namespace {

// Chooses "group/piece"; nothing when there is none.
void ChooseByName(frmExpressionBuilder& builder, const std::string& name) {
  const std::size_t slash = name.find('/');
  std::size_t g = 0;
  while (g < builder.Groups().size() && builder.Groups()[g].name != name.substr(0, slash)) ++g;
  std::size_t p = 0;
  if (g < builder.Groups().size()) {
    const auto& parts = builder.Groups()[g].parts;
    while (p < parts.size() && parts[p].text != name.substr(slash + 1)) ++p;
  }
  builder.Choose(g, p);
}

class ExpressionToolsTest : public testing::Test, protected KnownSource {};

TEST_F(ExpressionToolsTest, InsertsWhatIsChosen) {
  hub->AddTable("Orders");
  for (const Row& row : ReadRows("expression_builder.txt")) {
    SCOPED_TRACE(row.place);
    const Ref<frmExpressionBuilder> builder = frmExpressionBuilder::Create(hub, EditedText::Expression);
    ChooseByName(*builder, row[0]);
    std::size_t parameter = 0;
    if (!row[1].empty()) {
      for (const std::string_view value : Split(row[1], ",")) builder->SetParameter(parameter++, std::string(value));
    }
    std::string text = row[2];
    const std::size_t from = text.find("[[");
    const std::size_t to = text.find("]]") - 2;
    if (builder->HasChosen()) text.erase(text.find("]]"), 2).erase(from, 2);
    const TextReplacement taken = builder->Insertion(text, from, to);
    std::string written = taken.text.text;
    for (auto field = taken.text.fields.rbegin(); field != taken.text.fields.rend(); ++field) {
      written.insert(field->start + field->length, ">").insert(field->start, "<");
    }
    EXPECT_EQ(text.replace(taken.from, taken.to - taken.from, written), row[3]);
  }
}

// What an expression becomes when a function over rows is chosen for it, and then another one.
TEST_F(ExpressionToolsTest, TakesAFunctionOverRows) {
  hub->AddTable("Orders");
  const Ref<qbSQLPane> sql = qbSQLPane::Create();
  hub->SetSQLPane(sql);
  const Ref<frmExpressionBuilder> builder = frmExpressionBuilder::Create(hub, EditedText::Expression);
  const struct {
    std::string text, function, made, next, then;
  } kCases[] = {
      {"Total", "SUM", "SUM(Total) OVER ()", "LAG", "LAG(Total, 1) OVER ()"},
      {"Total", "LAG", "LAG(Total, 1) OVER ()", "nth_value", "NTH_VALUE(Total, 2) OVER ()"},
      {"Total", "RANK", "RANK() OVER (ORDER BY Total)", "NTILE", "NTILE(4) OVER (ORDER BY Total)"},
      {"a\n+ b", "AVG", "AVG(a + b) OVER ()", "ROW_NUMBER", "ROW_NUMBER() OVER ()"},
      {"1 +", "MAX", "MAX() OVER ()", "MIN", "MIN() OVER ()"},
      {"", "NTILE", "NTILE(4) OVER ()", "No such", "NTILE(4) OVER ()"},
  };
  for (const auto& c : kCases) {
    WindowCall call = builder->NewWindowCall(builder->WindowFunctionAt(c.function), c.text);
    EXPECT_EQ(WriteWindowCall(call), c.made);
    call = builder->WithFunction(call, builder->WindowFunctionAt(c.next));
    EXPECT_EQ(WriteWindowCall(call), c.then);
  }
  EXPECT_EQ(builder->WhyNoWindows(), "");
  EXPECT_EQ(builder->Columns()[2], "Orders.[Order]");
  EXPECT_FALSE(frmExpressionBuilder::Create(hub, EditedText::Criterion)->OffersWindows());

  sql->SetSQLSyntax(SQLSyntaxAccess);
  const Ref<frmExpressionBuilder> without = frmExpressionBuilder::Create(hub, EditedText::Expression);
  EXPECT_TRUE(without->WindowFunctions().empty());
  EXPECT_EQ(without->WhyNoWindows(), "The servers of this dialect have no functions over rows (OVER).");
}

TEST_F(ExpressionToolsTest, SayWhereATextCannotBeRead) {
  for (const Row& row : ReadRows("expression_checks.txt")) {
    SCOPED_TRACE(row.place);
    const EditedText kind = row[0] == "E" ? EditedText::Expression : EditedText::Criterion;
    const std::optional<ExpressionFault> fault = frmExpressionZoom::Create(hub, kind)->Check(row[1]);
    EXPECT_EQ(fault ? std::to_string(fault->offset) : "-", row[2]) << (fault ? fault->message : "");
    EXPECT_EQ(frmExpressionZoom::OnOneLine(row[1]), row[3]);
  }
}

TEST_F(ExpressionToolsTest, SearchByWordsOfGroupAndPiece) {
  const frmExpressionBuilder::Group group{"Orders", {{"CustomerID", "", ""}}};
  for (const auto& [wanted, found] : {std::pair("", true), {"cust", true}, {"ORD id", true}, {"ord city", false}}) {
    EXPECT_EQ(frmExpressionBuilder::Finds(wanted, group, group.parts.front()), found) << wanted;
  }
}

}  // namespace
}  // namespace zrqrybld::test
