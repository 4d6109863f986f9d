// The schema rows: the same tables give the same rows through every provider. Where a driver tells something else,
// that is one line of kExpectedTypes or one Difference of the source.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "tests/providers/provider_test.h"
#include "tests/schema_text.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/platform/schema_fields.h"

namespace zrqrybld {
namespace {

using test::Difference;
using test::Dump;

using test::Ask;
using test::Fields;
using test::Lines;
using test::Sorted;
using test::Table;

class ProviderSchema : public test::ProviderTest {
 protected:
  void SetUp() override {
    ProviderTest::SetUp();
    if (!IsSkipped() && !HasFatalFailure()) session_ = source_->Open();
  }

  bool Has(Difference difference) const { return source_->Has(difference); }

  std::string Place() const {
    if (Has(Difference::SchemaIsPublic)) return "public";
    return Has(Difference::SchemaIsDatabase) ? "zr_test" : "NULL";
  }

  std::unique_ptr<Session> session_;
};

INSTANTIATE_TEST_SUITE_P(All, ProviderSchema, testing::ValuesIn(test::SourceNames()),
                         [](const auto& test) { return test.param; });

// --- What differs only in its data ---

TEST_P(ProviderSchema, TellsWhatItsTableSays) {
  const std::string catalog = Has(Difference::CatalogIsDatabase) ? "zr_test" : "NULL";
  for (const test::Record& record : test::ReadRecords("provider_schema.txt")) {
    SCOPED_TRACE(record.place + " " + record["rule"]);
    const auto mine = [&](const std::string& name) -> std::string {
      const std::string own = name + " " + GetParam();
      return record.Has(own) ? record[own] : record.Has(name) ? record[name] : "";
    };
    const auto run = [&](const std::string& statements) {
      if (statements.empty()) return;
      for (const std::string_view statement : Split(statements, "\r\n")) source_->query(std::string(statement));
    };
    run(mine("before"));
    std::string rows = Ask(*session_, record);
    run(mine("after"));
    if (!record.Has("table")) rows = Sorted(rows);
    if (record.Has("but")) {  // tables that are looked at elsewhere
      std::string others;
      for (const std::string& line : Lines(rows)) {
        const auto begins = [&](std::string_view table) { return line.starts_with(ReplaceAll(table, "~", " ")); };
        if (std::ranges::none_of(Split(record["but"], " "), begins)) others += line + "\n";
      }
      rows = others;
    }
    const std::string expected = ReplaceAll(ReplaceAll(mine("rows"), "{catalog}", catalog), "{schema}", Place());
    EXPECT_EQ(rows, expected.empty() ? "" : ReplaceAll(expected, "\r\n", "\n") + "\n");
  }
}

// --- Tables ---

TEST_P(ProviderSchema, ASchemaRestrictionFindsItsOwnTablesOnly) {
  for (const SchemaKind kind :
       {SchemaKind::Tables, SchemaKind::Columns, SchemaKind::PrimaryKeys, SchemaKind::ForeignKeys}) {
    SCOPED_TRACE(static_cast<int>(kind));
    SchemaRestrictions own = Table("Order");
    if (Place() != "NULL") own.schema = Place();
    EXPECT_FALSE(session_->OpenSchema(kind, own)->Eof());
    SchemaRestrictions other = own;
    other.schema = "zrXtest";  // differs from the database's name in the place of a pattern's character
    EXPECT_TRUE(session_->OpenSchema(kind, other)->Eof());
    other.table.reset();
    EXPECT_TRUE(session_->OpenSchema(kind, other)->Eof());
    other = own;
    other.catalog = "elsewhere";
    EXPECT_TRUE(session_->OpenSchema(kind, other)->Eof());
  }
}

// --- Columns ---

// The whole source is one answer, in which a table's rows must stand together: its reader compares neighbours.
TEST_P(ProviderSchema, TheColumnsOfATableAreTheSameAskedForAloneAndAmongAll) {
  const Fields all(std::begin(kColumnFields), std::end(kColumnFields));
  std::map<std::string, std::string> byTable;
  std::string before;
  const std::unique_ptr<RowSet> rows = session_->OpenSchema(SchemaKind::Columns, {});
  for (; !rows->Eof(); rows->MoveNext()) {
    const std::string table = rows->Text("TABLE_NAME");
    EXPECT_TRUE(table == before || !byTable.contains(table)) << table << " comes twice";
    before = table;
    for (const std::string_view field : all) {
      const Variant value = rows->Value(field);
      byTable[table] += (field == all.front() ? "" : "|") + (value.IsNull() ? "NULL" : value.Text());
    }
    byTable[table] += '\n';
  }
  for (const std::string& table : Lines(Sorted(Ask(*session_, SchemaKind::Tables, {"TABLE_NAME"})))) {
    EXPECT_EQ(Ask(*session_, SchemaKind::Columns, all, Table(table)), byTable[table]) << table;
  }
}

TEST_P(ProviderSchema, TypesHaveTheLibrarysCodesLengthsAndFlags) {
  const auto source =
      static_cast<std::size_t>(std::ranges::find(test::SourceNames(), GetParam()) - test::SourceNames().begin());
  std::string expected;
  for (const test::Row& row : test::ReadRows("provider_types.txt")) expected += row[0] + ": " + row[source + 1] + "\n";
  std::string actual;
  const std::unique_ptr<RowSet> rows = session_->OpenSchema(SchemaKind::Columns, Table("Kinds"));
  for (; !rows->Eof(); rows->MoveNext()) {
    actual += rows->Text("COLUMN_NAME") + ": " + rows->Text("DATA_TYPE");
    if (const std::string length = rows->Text("CHARACTER_MAXIMUM_LENGTH"); !length.empty())
      actual += "(" + length + ")";
    if (const std::string precision = rows->Text("NUMERIC_PRECISION"); !precision.empty()) {
      actual += "(" + precision + "," + rows->Text("NUMERIC_SCALE") + ")";
    }
    const std::int32_t flags = rows->Value("COLUMN_FLAGS").ToInt32();
    if (flags & ColumnFixedLength) actual += " fixed";
    if (flags & ColumnLong) actual += " long";
    if (flags & ColumnNullable) actual += " null";
    EXPECT_EQ((flags & ColumnNullable) != 0, rows->Value("IS_NULLABLE").ToBoolean());
    EXPECT_EQ((flags & ColumnNullable) != 0, (flags & ColumnMaybeNull) != 0);
    EXPECT_EQ((flags & ColumnWritable) != 0, Has(Difference::WritableTold));
    actual += '\n';
  }
  EXPECT_EQ(actual, expected);
}

TEST_P(ProviderSchema, ADefaultIsToldInTheSourcesWords) {
  // Each server writes it in its own way, for instance 'none'::character varying.
  const std::string texts = Ask(*session_, SchemaKind::Columns, {"COLUMN_DEFAULT"}, Table("Order"));
  EXPECT_TRUE(texts.starts_with("NULL\nNULL\n") && texts.find("none") != std::string::npos) << texts;
}

// Literals are written by the type found under a column's code and long flag.
TEST_P(ProviderSchema, TheTypeOfEveryColumnIsAmongTheProvidersTypes) {
  std::set<std::string> types;
  const std::unique_ptr<RowSet> rows = session_->OpenSchema(SchemaKind::ProviderTypes, {});
  for (; !rows->Eof(); rows->MoveNext()) {
    const std::int32_t code = rows->Value("DATA_TYPE").ToInt32();
    types.insert(std::to_string(code) + (rows->Value("IS_LONG").ToBoolean() ? "L" : ""));
    const bool isText = code == 129 || code == 130 || (code >= 200 && code <= 203);
    const bool isNumber = code == 2 || code == 3 || code == 20 || code == 131;
    if (isText) {
      EXPECT_EQ(rows->Text("LITERAL_PREFIX") + rows->Text("LITERAL_SUFFIX"), "''") << code;
    }
    if (isNumber) {
      EXPECT_TRUE(rows->Value("LITERAL_PREFIX").IsNull()) << code;
    }
    EXPECT_NE(rows->Text("TYPE_NAME"), "");
  }
  std::string unknown;
  const std::unique_ptr<RowSet> columns = session_->OpenSchema(SchemaKind::Columns, {});
  for (; !columns->Eof(); columns->MoveNext()) {
    const bool isLong = (columns->Value("COLUMN_FLAGS").ToInt32() & ColumnLong) != 0;
    if (!types.contains(columns->Text("DATA_TYPE") + (isLong ? "L" : "")))
      unknown += columns->Text("COLUMN_NAME") + " ";
  }
  EXPECT_EQ(unknown, "");
}

// --- Keys ---

TEST_P(ProviderSchema, TwoReferencesToOneParentStayApart) {
  source_->query(R"(CREATE TABLE "Twice" ("a" INTEGER, "b" INTEGER, "c" INTEGER, "d" INTEGER,
                    FOREIGN KEY ("a", "b") REFERENCES "Order Details" ("OrderID", "Line No"),
                    FOREIGN KEY ("c", "d") REFERENCES "Order Details" ("OrderID", "Line No")))");
  const std::string keys = Ask(*session_, SchemaKind::ForeignKeys, {"ORDINAL", "FK_COLUMN_NAME"}, Table("Twice"));
  source_->query(R"(DROP TABLE "Twice")");
  EXPECT_TRUE(keys == "1|a\n2|b\n1|c\n2|d\n" || keys == "1|c\n2|d\n1|a\n2|b\n") << keys;
}

// --- Names are exact ---

TEST_P(ProviderSchema, NoRestrictionBecomesPartOfAStatement) {
  const std::string before = Sorted(Ask(*session_, SchemaKind::Tables, {"TABLE_TYPE", "TABLE_NAME"}));
  const std::string attacks[] = {"' OR '1'='1",
                                 "x' OR 1=1 -- ",
                                 "\\' OR 1=1 -- ",
                                 "'; DROP TABLE \"lower\"; --",
                                 "lower'; DROP TABLE \"lower\"; --",
                                 "\"; DROP TABLE \"lower\"; --",
                                 "`; DROP TABLE `lower`; -- ",
                                 "x') UNION SELECT 1,2,3,4,5 -- ",
                                 "lower\") --",
                                 "%",
                                 "\\%",
                                 "_____",
                                 "Order%",
                                 "Ord\\er",
                                 "main.lower",
                                 "'",
                                 "\"",
                                 "`",
                                 "\\",
                                 "''",
                                 std::string("lower\0", 6),
                                 std::string("lower\0' OR 1=1", 14),
                                 std::string("\xFF\xFE"),
                                 "\xF0\x9F\x8D\xBA",
                                 std::string(40000, 'x'),
                                 std::string(70000, '\'')};
  for (const SchemaKind kind :
       {SchemaKind::Tables, SchemaKind::Columns, SchemaKind::PrimaryKeys, SchemaKind::ForeignKeys}) {
    for (const std::string& attack : attacks) {
      SCOPED_TRACE(std::to_string(static_cast<int>(kind)) + " " + attack.substr(0, 50));
      for (const SchemaRestrictions& restrictions :
           {Table(attack), SchemaRestrictions{{}, attack, {}}, SchemaRestrictions{{}, attack, "Order"},
            SchemaRestrictions{attack, {}, {}}, SchemaRestrictions{attack, {}, "Order"}}) {
        EXPECT_TRUE(session_->OpenSchema(kind, restrictions)->Eof());
      }
    }
  }
  EXPECT_EQ(Sorted(Ask(*session_, SchemaKind::Tables, {"TABLE_TYPE", "TABLE_NAME"})), before);
}

// --- Changes by others ---

TEST_P(ProviderSchema, ATableThatIsDroppedAfterTheListingGivesNoRowsAndNoError) {
  source_->query(R"(CREATE TABLE "Doomed" ("a" INTEGER NOT NULL PRIMARY KEY))");
  const std::string listed = Ask(*session_, SchemaKind::Tables, {"TABLE_NAME"});
  EXPECT_FALSE(session_->OpenSchema(SchemaKind::Columns, Table("Doomed"))->Eof());
  source_->query(R"(DROP TABLE "Doomed")");
  EXPECT_NE(listed.find("Doomed"), std::string::npos);
  for (const SchemaKind kind :
       {SchemaKind::Tables, SchemaKind::Columns, SchemaKind::PrimaryKeys, SchemaKind::ForeignKeys}) {
    EXPECT_TRUE(session_->OpenSchema(kind, Table("Doomed"))->Eof()) << static_cast<int>(kind);
  }
}

TEST_P(ProviderSchema, RowsOutliveTheSession) {
  const std::unique_ptr<RowSet> rows = session_->OpenSchema(SchemaKind::Columns, Table("Staff"));
  session_.reset();
  EXPECT_EQ(Dump(*rows, {"COLUMN_NAME"}), "StaffID\nName\nBoss\n");
}

// --- Schemas and databases ---

class ProviderWithSchemas : public ProviderSchema {};  // one file of SQLite is one schema

INSTANTIATE_TEST_SUITE_P(All, ProviderWithSchemas, testing::Values("PostgreSql", "MariaDb"),
                         [](const auto& test) { return test.param; });

// A name without a schema is the table that the source itself finds by it; with one it is that schema's.
TEST_P(ProviderWithSchemas, TwoTablesOfOneNameInTwoSchemasStayApart) {
  const bool schemas = Has(Difference::SchemaIsPublic);  // otherwise a database is a schema
  const std::string other = "An other";
  source_->query(schemas ? "CREATE SCHEMA \"An other\"" : "CREATE DATABASE \"An other\"");
  source_->query(R"(CREATE TABLE "An other"."Staff" ("Elsewhere" INTEGER NOT NULL PRIMARY KEY))");
  source_->query(R"(CREATE TABLE "An other"."Alone" ("x" INTEGER))");
  const Fields names = {"COLUMN_NAME"};
  EXPECT_EQ(Ask(*session_, SchemaKind::Columns, names, Table("Staff")), "StaffID\nName\nBoss\n");
  EXPECT_EQ(Ask(*session_, SchemaKind::Columns, names, {{}, other, "Staff"}), "Elsewhere\n");
  EXPECT_EQ(Ask(*session_, SchemaKind::PrimaryKeys, names, {{}, other, "Staff"}), "Elsewhere\n");
  EXPECT_EQ(Ask(*session_, SchemaKind::PrimaryKeys, names, Table("Staff")), "StaffID\n");
  EXPECT_EQ(Ask(*session_, SchemaKind::Columns, {"TABLE_NAME", "COLUMN_NAME"}, {{}, other, {}}),
            "Alone|x\nStaff|Elsewhere\n");
  // All schemas of a database are listed, but of all databases only the connection's own.
  const std::string all = Ask(*session_, SchemaKind::Tables, {"TABLE_SCHEMA", "TABLE_NAME"});
  EXPECT_EQ(all.find("An other|Alone") != std::string::npos, schemas);
  source_->query(schemas ? "DROP SCHEMA \"An other\" CASCADE" : "DROP DATABASE \"An other\"");
}

// A materialised view is a view; an index is nothing that a query reads, though its driver tells its columns.
TEST_P(ProviderWithSchemas, OnlyWhatAQueryCanReadIsListed) {
  const bool materialised = Has(Difference::SchemaIsPublic);
  source_->query(std::string("CREATE ") + (materialised ? "MATERIALIZED " : "") +
                 R"(VIEW "Kept" AS SELECT "StaffID" FROM "Staff")");
  source_->query(R"(CREATE INDEX "An index" ON "Staff" ("Name"))");
  const std::string kept = Ask(*session_, SchemaKind::Tables, {"TABLE_TYPE", "TABLE_NAME"}, Table("Kept"));
  const std::string columns = Ask(*session_, SchemaKind::Columns, {"TABLE_NAME", "COLUMN_NAME"});
  source_->query(materialised ? R"(DROP INDEX "An index")" : R"(DROP INDEX "An index" ON "Staff")");
  source_->query(std::string("DROP ") + (materialised ? "MATERIALIZED " : "") + R"(VIEW "Kept")");
  EXPECT_EQ(kept, "VIEW|Kept\n");
  EXPECT_NE(columns.find("Kept|StaffID\n"), std::string::npos);
  EXPECT_EQ(columns.find("An index"), std::string::npos);
}

TEST_P(ProviderSchema, TheSourcesOwnTablesAreSystemTables) {
  SchemaRestrictions own;
  if (Has(Difference::SchemaIsPublic) || Has(Difference::SchemaIsDatabase)) own.schema = "information_schema";
  std::set<std::string> types;
  const std::unique_ptr<RowSet> rows = session_->OpenSchema(SchemaKind::Tables, own);
  for (; !rows->Eof(); rows->MoveNext()) {
    if (own.schema || rows->Text("TABLE_NAME").starts_with("sqlite_")) types.insert(rows->Text("TABLE_TYPE"));
  }
  types.erase("SYSTEM TABLE");
  EXPECT_TRUE(types.empty()) << *types.begin();
}

// --- How the source writes ---

TEST_P(ProviderSchema, TheSourceTellsItsReservedWords) {
  std::set<std::string> words;
  for (const std::string& word : session_->Keywords()) words.insert(UpperAscii(word));
  for (const char* word : {"SELECT", "ORDER", "GROUP", "TABLE", "CURRENT_DATE"}) {
    EXPECT_TRUE(words.contains(word)) << word;
  }
  for (const std::string& word : words) {
    EXPECT_EQ(word.find_first_of(" ,"), std::string::npos) << word;
    EXPECT_NE(word, "");
  }
  EXPECT_FALSE(words.contains("STAFF"));
  EXPECT_EQ(words.contains("RLIKE"), GetParam() == "MariaDb");  // from the driver's own list
  EXPECT_EQ(words.contains("PRAGMA"), GetParam() == "Sqlite");  // SQLite's driver tells few of its words
}

}  // namespace
}  // namespace zrqrybld
