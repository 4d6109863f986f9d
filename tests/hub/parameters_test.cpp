#include "sql/parameters.h"

#include <gtest/gtest.h>

#include "tests/data_table.h"
#include "tests/hub/hub_fixture.h"

namespace zrqrybld {
namespace {

using test::Designer;

// The parameters as "prompt|default|name|type", "/" between them.
std::string Listed(const qbParameters& parameters) {
  std::string text;
  for (std::int32_t i = 1; i <= parameters.Count(); ++i) {
    const qbParameter& p = *parameters.Item("param:" + std::to_string(i));
    text += (i > 1 ? "/" : "") + p.Prompt + "|" + p.Default.Text() + "|" + p.Name + "|" + p.DataType.Text();
  }
  return text;
}

TEST(Parameters, AreFoundAndReplacedByTheirValues) {
  for (const test::Record& record : test::ReadRecords("parameters.txt")) {
    SCOPED_TRACE(record.place);
    Designer designer;
    const ScannedStatement scanned = ScanParameters(record["text"], designer.hub);
    EXPECT_EQ(scanned.text, record["scanned"]);
    EXPECT_EQ(Listed(*scanned.parameters), record["parameters"]);
    EXPECT_EQ(scanned.parameters->QueryBuilder(), designer.hub);

    designer.sql->SetSQLStatement(record["text"]);
    const std::vector<std::string_view> values = Split(record["values"], ",");
    std::int32_t asked = 0;
    const auto link = designer.sql->ParseParameter.Connect([&](const Ref<qbParameter>& parameter, bool& cancel) {
      const std::string_view value = values.at(static_cast<std::size_t>(asked++));
      cancel = value == "CANCEL";
      if (!value.empty()) parameter->Value = value;
    });
    EXPECT_EQ(designer.sql->ParseParameters(), record["result"]);
    EXPECT_EQ(asked, record["values"].empty() && scanned.parameters->Count() == 0
                         ? 0
                         : static_cast<std::int32_t>(values.size()));
    EXPECT_EQ(designer.sql->SQLStatement(), record["text"]) << "the pane's own text has changed";
  }
}

TEST(Parameters, PromptsLoseTheirQuotes) {
  Designer designer;
  const auto prompt = [&](const std::string& text) {
    return ScanParameters("?PARAM(" + text + ")", designer.hub).parameters->Item(1)->FormatPrompt();
  };
  designer.hub->QuotedIdentifiers()->Clear();
  EXPECT_EQ(prompt("'Start'"), "Start");
  EXPECT_EQ(prompt("[Start]"), "Start]");
  EXPECT_EQ(prompt("''Start"), "'Start");
  EXPECT_EQ(prompt("["), "");
  designer.hub->QuotedIdentifiers()->Add("]");
  designer.hub->QuotedIdentifiers()->Add("<<");
  EXPECT_EQ(prompt("[Start]"), "Start");
  EXPECT_EQ(prompt("<<Start]"), "Start");
}

TEST(Parameters, QuotesComeFromTheSourcesType) {
  Designer designer;
  designer.hub->DataTypes()->Add("Date", 133, "'", "'");
  const Ref<qbParameter> parameter = ScanParameters("?PARAM(a,,,date)", designer.hub).parameters->Item(1);
  EXPECT_EQ(parameter->QuotePrefix + parameter->QuoteSuffix, "''");
}

}  // namespace
}  // namespace zrqrybld
