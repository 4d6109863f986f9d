// The schema rows: the same tables give the same rows through every provider. Where a driver tells something else,
// that is one line of kExpectedTypes or one Difference of the source.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "base/text.h"
#include "platform/schema_fields.h"
#include "tests/providers/provider_test.h"

namespace zrqrybld {
namespace {

using test::Difference;
using test::Dump;

using Fields = std::vector<std::string_view>;

std::string Ask(Session& session, SchemaKind kind, const Fields& fields, const SchemaRestrictions& restrictions = {}) {
  return Dump(*session.OpenSchema(kind, restrictions), fields);
}

SchemaRestrictions Table(std::string name) { return {{}, {}, std::move(name)}; }

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

// Providers list in different orders where that means nothing. The sources' own tables are no matter here.
std::string Sorted(const std::string& text) {
  std::vector<std::string> lines = Lines(text);
  std::erase_if(lines, [](const std::string& line) { return line.find("sqlite_") != std::string::npos; });
  std::ranges::sort(lines);
  std::string sorted;
  for (const std::string& line : lines) sorted += line + "\n";
  return sorted;
}

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

// --- Tables ---

TEST_P(ProviderSchema, TablesAndViewsAreListedUnderTheirOwnNames) {
  EXPECT_EQ(Sorted(Ask(*session_, SchemaKind::Tables, {"TABLE_TYPE", "TABLE_NAME"})),
            "TABLE|100%_a\\b\nTABLE|100%xa\\b\nTABLE|Implied\nTABLE|Kinds\nTABLE|MixedCase\nTABLE|Order\n"
            "TABLE|Order Details\nTABLE|Order_Details\nTABLE|Pairs\nTABLE|Returns\nTABLE|Staff\nTABLE|Währungen\n"
            "TABLE|a\"b'c`d;[e]\nTABLE|lower\nVIEW|Order Sums\n");
}

TEST_P(ProviderSchema, EveryRowSaysWhereItsTableStands) {
  const std::string catalog = Has(Difference::CatalogIsDatabase) ? "zr_test" : "NULL";
  const std::string expected = catalog + "|" + Place() + "\n";
  const Fields own = {"TABLE_CATALOG", "TABLE_SCHEMA"};
  EXPECT_EQ(Ask(*session_, SchemaKind::Tables, own, Table("Staff")), expected);
  EXPECT_EQ(Ask(*session_, SchemaKind::Columns, own, Table("lower")), expected);
  EXPECT_EQ(Ask(*session_, SchemaKind::PrimaryKeys, own, Table("Staff")), expected);
  EXPECT_EQ(Ask(*session_, SchemaKind::ForeignKeys, {"PK_TABLE_CATALOG", "PK_TABLE_SCHEMA"}, Table("Order")), expected);
  EXPECT_EQ(Ask(*session_, SchemaKind::ForeignKeys, {"FK_TABLE_CATALOG", "FK_TABLE_SCHEMA"}, Table("Order")), expected);
}

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

TEST_P(ProviderSchema, ColumnsComeOnceAndInTheirOrder) {
  const Fields fields = {"TABLE_NAME", "ORDINAL_POSITION", "COLUMN_NAME", "IS_NULLABLE"};
  std::string columns;
  for (const std::string& line : Lines(Sorted(Ask(*session_, SchemaKind::Columns, fields)))) {
    const bool elsewhere = line.starts_with("Kinds|") || line.starts_with("Order Sums|");
    if (!elsewhere) columns += line + "\n";
  }
  EXPECT_EQ(columns,
            "100%_a\\b|1|c%|False\n"
            "100%xa\\b|1|wrong|False\n"
            "Implied|1|Ref|True\n"
            "MixedCase|1|TheId|False\nMixedCase|2|theOther|True\n"
            "Order Details|1|OrderID|False\nOrder Details|2|Line No|False\nOrder Details|3|Amount|True\n"
            "Order_Details|1|Wrong|True\n"
            "Order|1|OrderID|False\nOrder|2|Währung|False\nOrder|3|Select|True\n"
            "Pairs|1|a|False\nPairs|2|b|False\n"
            "Returns|1|ReturnID|False\nReturns|2|Order|True\nReturns|3|Line|True\n"
            "Staff|1|StaffID|False\nStaff|2|Name|True\nStaff|3|Boss|True\n"
            "Währungen|1|Kürzel|False\nWährungen|2|Kurs in €|False\n"
            "a\"b'c`d;[e]|1|x\"y'z`w|False\na\"b'c`d;[e]|2|ref|True\n"
            "lower|1|id|False\n");
  EXPECT_EQ(Ask(*session_, SchemaKind::Columns, {"ORDINAL_POSITION", "COLUMN_NAME"}, Table("Order Sums")),
            "1|OrderID\n2|Total\n");
}

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

// Code, length or precision and scale, and flags without the writable one, by source in the order of SourceNames.
struct ExpectedType {
  const char* column;
  std::vector<const char*> facts;
};

const ExpectedType kExpectedTypes[] = {
    {"Small", {"2 fixed", "2 fixed", "2 fixed", "2 fixed"}},
    {"Int", {"3 fixed null", "3 fixed null", "3 fixed null", "3 fixed null"}},
    {"Big", {"20 fixed null", "20 fixed null", "20 fixed null", "20 fixed null"}},
    {"Double", {"5 fixed null", "5 fixed null", "5 fixed null", "5 fixed null"}},
    // SQLite's driver takes the scale for a length.
    {"Dec", {"131(12,3) fixed null", "200(3) null", "131(12,3) fixed null", "131(12,3) fixed null"}},
    {"Char", {"130(5) fixed null", "200(5) null", "130(5) fixed null", "130(5) fixed null"}},
    {"VarChar", {"202(40) null", "200(40) null", "202(40) null", "202(40) null"}},
    // PostgreSQL's driver tells its own limit.
    {"Text", {"203 long null", "201 long null", "203(8190) long null", "203 long null"}},
    {"Blob", {"205 long null", "128 fixed null", "205 long null", "205 long null"}},
    {"Date", {"133 fixed null", "133 fixed null", "133 fixed null", "133 fixed null"}},
    {"Time", {"134 fixed null", "134 fixed null", "134 fixed null", "134 fixed null"}},
    {"Stamp", {"135 fixed null", "135 fixed null", "135 fixed null", "135 fixed null"}},
    {"Bool", {"11 fixed null", "11 fixed null", "200(5) null", "16 fixed null"}},
};

TEST_P(ProviderSchema, TypesHaveTheLibrarysCodesLengthsAndFlags) {
  const auto source =
      static_cast<std::size_t>(std::ranges::find(test::SourceNames(), GetParam()) - test::SourceNames().begin());
  std::string expected;
  for (const ExpectedType& type : kExpectedTypes)
    expected += std::string(type.column) + ": " + type.facts[source] + "\n";
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

TEST_P(ProviderSchema, OnlyAColumnWithADefaultTellsOne) {
  EXPECT_EQ(Ask(*session_, SchemaKind::Columns, {"COLUMN_NAME", "COLUMN_HASDEFAULT"}, Table("Order")),
            "OrderID|False\nWährung|False\nSelect|True\n");
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

TEST_P(ProviderSchema, GeneratedColumnsAreColumns) {
  source_->query(
      R"(CREATE TABLE "Doubled" ("a" INTEGER, "b" INTEGER GENERATED ALWAYS AS ("a" * 2) STORED, "c" INTEGER))");
  const std::string columns =
      Ask(*session_, SchemaKind::Columns, {"ORDINAL_POSITION", "COLUMN_NAME"}, Table("Doubled"));
  source_->query(R"(DROP TABLE "Doubled")");
  EXPECT_EQ(columns, Has(Difference::GeneratedColumnsMissing) ? "1|a\n2|c\n" : "1|a\n2|b\n3|c\n");
}

// --- Keys ---

TEST_P(ProviderSchema, PrimaryKeysNameTheirColumnsByThePlaceInTheKey) {
  const Fields fields = {"TABLE_NAME", "ORDINAL", "COLUMN_NAME"};
  const std::string pairs = Has(Difference::KeyNumberedByColumns) ? "Pairs|1|a\nPairs|2|b\n" : "Pairs|1|b\nPairs|2|a\n";
  EXPECT_EQ(Sorted(Ask(*session_, SchemaKind::PrimaryKeys, fields)),
            "100%_a\\b|1|c%\n100%xa\\b|1|wrong\nMixedCase|1|TheId\n"
            "Order Details|1|OrderID\nOrder Details|2|Line No\nOrder|1|OrderID\n" +
                pairs +
                "Returns|1|ReturnID\nStaff|1|StaffID\nWährungen|1|Kürzel\na\"b'c`d;[e]|1|x\"y'z`w\nlower|1|id\n");
  EXPECT_EQ(Ask(*session_, SchemaKind::PrimaryKeys, fields, Table("Order Details")),
            "Order Details|1|OrderID\nOrder Details|2|Line No\n");
  EXPECT_EQ(Ask(*session_, SchemaKind::PrimaryKeys, fields, Table("Pairs")), pairs);
  EXPECT_EQ(Ask(*session_, SchemaKind::PrimaryKeys, fields, Table("Order Sums")), "");
}

TEST_P(ProviderSchema, ForeignKeysPairTheirColumns) {
  const Fields fields = {"FK_TABLE_NAME", "ORDINAL", "FK_COLUMN_NAME", "PK_TABLE_NAME", "PK_COLUMN_NAME"};
  EXPECT_EQ(Sorted(Ask(*session_, SchemaKind::ForeignKeys, fields)),
            "Implied|1|Ref|Währungen|Kürzel\n"
            "Order Details|1|OrderID|Order|OrderID\n"
            "Order|1|Währung|Währungen|Kürzel\n"
            "Returns|1|Order|Order Details|OrderID\nReturns|2|Line|Order Details|Line No\n"
            "Staff|1|Boss|Staff|StaffID\n"
            "a\"b'c`d;[e]|1|ref|a\"b'c`d;[e]|x\"y'z`w\n");
  EXPECT_EQ(Ask(*session_, SchemaKind::ForeignKeys, fields, Table("Returns")),
            "Returns|1|Order|Order Details|OrderID\nReturns|2|Line|Order Details|Line No\n");
  // The restriction names the referencing table, so a mere parent has none.
  EXPECT_EQ(Ask(*session_, SchemaKind::ForeignKeys, fields, Table("Währungen")), "");
}

TEST_P(ProviderSchema, TwoReferencesToOneParentStayApart) {
  source_->query(R"(CREATE TABLE "Twice" ("a" INTEGER, "b" INTEGER, "c" INTEGER, "d" INTEGER,
                    FOREIGN KEY ("a", "b") REFERENCES "Order Details" ("OrderID", "Line No"),
                    FOREIGN KEY ("c", "d") REFERENCES "Order Details" ("OrderID", "Line No")))");
  const std::string keys = Ask(*session_, SchemaKind::ForeignKeys, {"ORDINAL", "FK_COLUMN_NAME"}, Table("Twice"));
  source_->query(R"(DROP TABLE "Twice")");
  EXPECT_TRUE(keys == "1|a\n2|b\n1|c\n2|d\n" || keys == "1|c\n2|d\n1|a\n2|b\n") << keys;
}

TEST_P(ProviderSchema, AReferenceWithoutColumnsIsToThePrimaryKeyOrLeftOut) {
  const std::string reference = Has(Difference::ReferencesNameColumns) ? R"(("OrderID", "Line No"))" : "";
  source_->query(R"(CREATE TABLE "Pair" ("a" INTEGER, "b" INTEGER,
                    FOREIGN KEY ("a", "b") REFERENCES "Order Details")" +
                 reference + ")");
  const std::string keys = Ask(*session_, SchemaKind::ForeignKeys, {"FK_COLUMN_NAME", "PK_COLUMN_NAME"}, Table("Pair"));
  source_->query(R"(DROP TABLE "Pair")");
  EXPECT_EQ(keys, Has(Difference::ImpliedPairsLeftOut) ? "" : "a|OrderID\nb|Line No\n");
}

// --- Names are exact ---

TEST_P(ProviderSchema, NoCharacterOfARestrictionIsAPattern) {
  struct {
    const char* table;
    const char* columns;
  } const cases[] = {{"Order_Details", "Wrong\n"},
                     {"Order Details", "OrderID\nLine No\nAmount\n"},
                     {"100%_a\\b", "c%\n"},
                     {"100%xa\\b", "wrong\n"},
                     {"a\"b'c`d;[e]", "x\"y'z`w\nref\n"},
                     {"Währungen", "Kürzel\nKurs in €\n"},
                     {"%", ""},
                     {"_____", ""},
                     {"Order%", ""},
                     {"\\", ""},
                     {"\\%", ""},
                     {"Ord\\er", ""}};
  for (const auto& c : cases) {
    EXPECT_EQ(Ask(*session_, SchemaKind::Columns, {"COLUMN_NAME"}, Table(c.table)), c.columns) << c.table;
    const std::string name = *c.columns != '\0' ? std::string(c.table) + "\n" : "";
    EXPECT_EQ(Ask(*session_, SchemaKind::Tables, {"TABLE_NAME"}, Table(c.table)), name) << c.table;
  }
}

TEST_P(ProviderSchema, NamesMayHoldCharactersBeyondTheFirstPlane) {
  bool made = true;
  try {
    source_->query(R"(CREATE TABLE "Maß 🍺" ("🍺" INTEGER NOT NULL PRIMARY KEY))");
  } catch (const std::exception& error) {
    ASSERT_EQ(GetParam(), "MariaDb") << error.what();
    made = false;
  }
  const std::string key = Ask(*session_, SchemaKind::PrimaryKeys, {"TABLE_NAME", "COLUMN_NAME"}, Table("Maß 🍺"));
  if (made) source_->query(R"(DROP TABLE "Maß 🍺")");
  EXPECT_EQ(key, Has(Difference::NamesInFirstPlane) ? "" : "Maß 🍺|🍺\n");
}

TEST_P(ProviderSchema, AnotherLetterCaseFindsATableOnlyWhereTheSourceDoes) {
  const std::string expected = Has(Difference::CaseMatters) ? "" : "MixedCase|TheId\n";
  EXPECT_EQ(Ask(*session_, SchemaKind::PrimaryKeys, {"TABLE_NAME", "COLUMN_NAME"}, Table("mIXEDcASE")), expected);
  EXPECT_EQ(Ask(*session_, SchemaKind::PrimaryKeys, {"TABLE_NAME", "COLUMN_NAME"}, Table("MixedCase")),
            "MixedCase|TheId\n");
}

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

TEST_P(ProviderSchema, PositionsHaveNoGapsWhereAColumnWasDropped) {
  source_->query(R"(CREATE TABLE "Holes" ("a" INTEGER, "b" INTEGER, "c" INTEGER, "d" INTEGER))");
  source_->query(R"(ALTER TABLE "Holes" DROP COLUMN "b")");
  const std::string columns = Ask(*session_, SchemaKind::Columns, {"ORDINAL_POSITION", "COLUMN_NAME"}, Table("Holes"));
  source_->query(R"(DROP TABLE "Holes")");
  EXPECT_EQ(columns, "1|a\n2|c\n3|d\n");
}

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

TEST_P(ProviderSchema, TheSourceTellsHowItWrites) {
  std::map<std::string, std::string> literals;
  const std::unique_ptr<RowSet> rows = session_->OpenSchema(SchemaKind::Literals, {});
  for (; !rows->Eof(); rows->MoveNext()) {
    literals[rows->Text("LiteralName")] = rows->Text("LiteralValue") + rows->Text("InvalidChars");
  }
  const std::string quote = Has(Difference::SchemaIsDatabase) ? "`" : "\"";
  const std::map<std::string, std::string> expected = {
      {"SCHEMA_SEPARATOR", "."},
      {"LIKE_PERCENT", "%"},
      {"LIKE_UNDERSCORE", "_"},
      {"QUOTE_PREFIX", quote},
      {"QUOTE_SUFFIX", quote},
      // PostgreSQL makes small letters of names without quotes.
      {"TABLE_NAME", Has(Difference::CaseMatters) ? "ABCDEFGHIJKLMNOPQRSTUVWXYZ" : ""}};
  EXPECT_EQ(literals, expected);
}

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
