#include "zrqrybld/expression/expression_builder.h"

#include <gtest/gtest.h>

#include "tests/data_table.h"
#include "tests/known_source.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/hub/hub.h"

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
