#include "zrqrybld/sql/parameters.h"

#include <gtest/gtest.h>

#include "tests/data_table.h"
#include "tests/hub_fixture.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/host/catalogs.h"
#include "zrqrybld/host/data_types.h"
#include "zrqrybld/host/properties.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/hub/parameter_form.h"
#include "zrqrybld/platform/headless.h"
#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/host_parameters.h"
#include "zrqrybld/sql/sql_pane.h"

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

TEST(Parameters, ValuesStayValues) {
  for (const test::Row& row : test::ReadRows("parameter_values.txt")) {
    SCOPED_TRACE(row.place);
    Designer designer;
    designer.hub->DataTypes()->Add("ByTheSource", 129, "<", ">");
    designer.grid->SetDateFormat("yyyy-mm-dd");
    const std::string reading = row.cells.size() > 4 ? row[4] : "";
    const std::optional<TextReading> usual = UsualReading(reading);
    if (reading == "unknown") {
      const auto source = std::make_shared<test::FakeConnection>();
      source->Open({}, {});
      designer.hub->SetConnection(source);
    } else if (!reading.empty()) {
      designer.hub->Properties()->Set(kTextReadingLiteral, usual ? WordsOf(*usual) : reading);
    }
    designer.sql->SetSQLSyntax(FindDialect(row[0])->syntax);
    designer.toolkit->GetDialogs().onShowParameters = [&](ParametersDialog& dialog) {
      const std::vector<std::string_view> values = Split(row[2], ";");
      for (std::size_t i = 0; i < dialog.fields.size(); ++i) dialog.fields[i].value = values.at(i);
      return true;
    };
    std::string result;
    try {
      const std::string sql = WithParameterMarkers(row[1], designer.hub->CurrentDialect().parameterSigns);
      const auto values = AskParameters(*designer.hub, sql);
      result = PutInLiterals(sql, values.value(), LiteralRulesOf(*designer.hub));
    } catch (const Error& error) {
      result = "!" + error.Description();
    }
    EXPECT_EQ(result, row[3]);
  }
}

TEST(Parameters, TheDialogBeginsWithWhatWasGivenLast) {
  Designer designer;
  constexpr std::string_view kSql = "?PARAM([From], 2020-01-01, Start, date) ?PARAM(n & m,,,int)";
  EXPECT_TRUE(AskParameters(*designer.hub, "SELECT 1").value().empty()) << "without a question";
  EXPECT_FALSE(AskParameters(*designer.hub, kSql)) << "nobody answers";

  std::string seen;
  designer.toolkit->GetDialogs().onShowParameters = [&](ParametersDialog& dialog) {
    seen = dialog.caption;
    for (const ParameterField& field : dialog.fields) {
      seen += "/" + field.prompt + "|" + field.typeName + "|" + field.fallback + "|" + field.value;
    }
    seen += "/" + dialog.problem(1, "x") + dialog.problem(0, "");
    seen += "/" + dialog.statement({"", "x"});
    dialog.fields[0].value = "2 Feb 2020";
    dialog.fields[1].value = "5";
    return true;
  };
  EXPECT_TRUE(AskParameters(*designer.hub, kSql));
  EXPECT_EQ(seen,
            "Query Parameters/From]|date|2020-01-01|2020-01-01/n & m|whole number||/This is no number; one is 12.5./"
            "'01-Jan-2020' ?PARAM(n & m,,,int)");
  designer.toolkit->GetDialogs().onShowParameters = [&](ParametersDialog& dialog) {
    seen = dialog.fields.at(0).value;
    return true;
  };
  EXPECT_TRUE(AskParameters(*designer.hub, "?PARAM(x, 1, START)"));
  EXPECT_EQ(seen, "2 Feb 2020");
}

}  // namespace
}  // namespace zrqrybld
