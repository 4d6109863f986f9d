// Providers through the C interface: what they answer, right and wrong, and how long they live.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "zrqrybld/zrqrybld.h"

namespace {

zrq_value Text(std::string_view text) {
  zrq_value value{ZRQ_STRING, 0, {}};
  value.as.text = {text.data(), text.size()};
  return value;
}
zrq_value Of(int32_t type, int64_t number = 0) {
  zrq_value value{type, 0, {}};
  value.as.integer = number;
  return value;
}
const zrq_value kNone = Of(ZRQ_NULL);
using Row = std::vector<zrq_value>;

// A source whose rows are given by the test, and what happened to it.
struct Source {
  std::function<int32_t(int32_t kind)> rows = [](int32_t) { return 0; };
  int32_t openFails = 0;
  std::string opened;
  int open = 0;
  int ended = 0;
};

int32_t Open(void* context, const char* connectionString, const char*, const char*, void** session) {
  auto& source = *static_cast<Source*>(context);
  source.opened = connectionString;
  if (source.openFails != 0) return zrq_fail(source.openFails, "locked");
  ++source.open;
  *session = context;
  return 0;
}
int32_t Rows(void* context, void* session, int32_t kind, const zrq_wanted*) {
  EXPECT_EQ(session, context);
  return static_cast<Source*>(context)->rows(kind);
}
void Close(void* context, void*) { --static_cast<Source*>(context)->open; }
void Ended(void* context) { ++static_cast<Source*>(context)->ended; }

zrq_provider Functions(const char* name = "Made") { return {sizeof(zrq_provider), name, Open, Rows, Close, Ended}; }

zrq_handle Opened(Source& source) {
  const zrq_provider functions = Functions();
  zrq_handle connection = 0;
  EXPECT_EQ(zrq_connection(&functions, &source, &connection), 0);
  EXPECT_EQ(zrq_call(connection, "Open", nullptr, 0, nullptr, nullptr), 0);
  return connection;
}

// Asks for a kind of rows; the first row's fields, or the error.
std::string Asked(zrq_handle connection, int32_t kind, std::string_view table = {}) {
  const Row restrictions{kNone, kNone, Text(table)};
  zrq_value array = Of(ZRQ_ARRAY);
  array.as.array = {restrictions.data(), restrictions.size()};
  const Row arguments{Of(ZRQ_INT32, kind), array};
  zrq_value rows{};
  const int32_t error = zrq_call(connection, "OpenSchema", arguments.data(), arguments.size(), &rows, nullptr);
  const char* description = nullptr;
  zrq_last_error(&description);
  if (error != 0) return std::to_string(error) + " " + description;
  std::string told;
  zrq_value end{}, count{};
  for (zrq_get(rows.as.object, "EOF", nullptr, 0, &end); end.as.integer == 0;
       zrq_get(rows.as.object, "EOF", nullptr, 0, &end)) {
    zrq_get(rows.as.object, "FieldCount", nullptr, 0, &count);
    for (int32_t i = 0; i < count.as.integer; ++i) {
      const zrq_value index = Of(ZRQ_INT32, i);
      zrq_value field{}, value{};
      zrq_get(rows.as.object, "Fields", &index, 1, &field);
      EXPECT_EQ(zrq_get(field.as.object, "Value", nullptr, 0, &value), 0);
      told += value.type == ZRQ_STRING ? value.as.text.data
              : value.type == ZRQ_NULL ? "-"
                                       : std::to_string(value.as.integer);
      told += i + 1 < count.as.integer ? "," : ";";
      zrq_clear(&value);
      zrq_clear(&field);
    }
    zrq_call(rows.as.object, "MoveNext", nullptr, 0, nullptr, nullptr);
  }
  zrq_clear(&rows);
  return told;
}

// What was given, however hostile, is rows or an error with its words.
TEST(CProvider, WhatItAnswersIsChecked) {
  const std::string huge((std::size_t{1} << 20) + 1, 'x');
  const Row table{kNone, Text(""), Text("T")};
  const struct {
    int32_t kind;
    std::vector<Row> rows;
    std::string_view told;
  } cases[] = {
      {ZRQ_TABLES, {table}, "-,-,T,-,-;"},
      {ZRQ_TABLES, {}, ""},
      {ZRQ_COLUMNS, {{kNone, kNone, Text("T"), Text("c")}}, "-,-,T,c,-,-,-,-,-,0,-,-,-,-;"},
      {ZRQ_LITERALS, {{Text("QUOTE_PREFIX"), Text("")}}, "QUOTE_PREFIX,,-,-;"},
      {ZRQ_TABLES, {{kNone, kNone}}, "5 TABLE_NAME of a provider's row: a name is wanted."},
      {ZRQ_TABLES, {{kNone, kNone, Text("")}}, "5 TABLE_NAME of a provider's row: a name is wanted."},
      {ZRQ_TABLES, {{kNone, kNone, Text({"a\0b", 3})}}, "5 TABLE_NAME of a provider's row: a text is wanted."},
      {ZRQ_TABLES, {{kNone, kNone, Of(ZRQ_INT32, 3)}}, "5 TABLE_NAME of a provider's row: a text is wanted."},
      {ZRQ_TABLES, {{kNone, kNone, Text("\xFF")}}, "5 A text that is not UTF-8."},
      {ZRQ_TABLES, {{kNone, kNone, Text(huge)}}, "7 A provider gives a longer text than any source has."},
      {ZRQ_TABLES, {{kNone, kNone, Of(ZRQ_OBJECT, 77)}}, "13 A provider's row holds texts, numbers and Booleans."},
      {ZRQ_TABLES, {Row(6, Text("x"))}, "5 A provider's row has too many values."},
      {ZRQ_COLUMNS,
       {{kNone, kNone, Text("T"), Text("c"), Text("first")}},
       "5 ORDINAL_POSITION of a provider's row: a whole number is wanted."},
      {21, {}, "3251 The provider has no such rows."},
  };
  Source source;
  const zrq_handle connection = Opened(source);
  for (const auto& [kind, rows, told] : cases) {
    source.rows = [&rows = rows](int32_t) {
      for (const Row& row : rows) {
        if (const int32_t error = zrq_row(row.data(), row.size())) {
          const char* description = nullptr;
          zrq_last_error(&description);
          return zrq_fail(error, std::string(description).c_str());
        }
      }
      return 0;
    };
    EXPECT_EQ(Asked(connection, kind), told);
  }
  source.rows = [](int32_t) { return 0x7FFFFFFF; };
  EXPECT_EQ(Asked(connection, ZRQ_TABLES), "2147483647 The provider has failed.");
  source.rows = [&](int32_t) { return zrq_fail(12, std::string(20'000, 'x').c_str()); };
  EXPECT_EQ(Asked(connection, ZRQ_TABLES), "12 " + std::string(10'000, 'x'));
  source.rows = [&](int32_t) { return zrq_fail(12, "\xFF"); };
  EXPECT_EQ(Asked(connection, ZRQ_TABLES), "12 The provider has failed.");
  const Row large{kNone, kNone, Text(std::string_view(huge).substr(1))};
  int taken = 0;
  source.rows = [&](int32_t) {
    int32_t error = 0;
    for (; error == 0; ++taken) error = zrq_row(large.data(), large.size());
    return error;
  };
  EXPECT_EQ(Asked(connection, ZRQ_TABLES).substr(0, 2), "7 ");
  EXPECT_EQ(taken, 256);
  EXPECT_EQ(zrq_row(table.data(), table.size()), 5);  // nobody asks
  EXPECT_EQ(zrq_release(connection), 0);
}

// A provider may answer with everything it has: names that are equal exactly come before those equal but for their
// case.
TEST(CProvider, RowsOfOtherTablesArePassedOver) {
  Source source;
  source.rows = [](int32_t) {
    for (const char* name : {"a", "A", "b"}) {
      const Row row{kNone, kNone, Text(name)};
      EXPECT_EQ(zrq_row(row.data(), row.size()), 0);
    }
    return 0;
  };
  const zrq_handle connection = Opened(source);
  EXPECT_EQ(Asked(connection, ZRQ_TABLES, "A"), "-,-,A,-,-;");
  EXPECT_EQ(Asked(connection, ZRQ_TABLES, "B"), "-,-,b,-,-;");
  EXPECT_EQ(Asked(connection, ZRQ_TABLES, "c"), "");
  zrq_release(connection);
}

TEST(CProvider, MisuseIsAnError) {
  Source source;
  zrq_handle connection = 0;
  const auto refused = [&](auto change) {
    zrq_provider functions = Functions();
    change(functions);
    return zrq_connection(&functions, &source, &connection);
  };
  EXPECT_EQ(refused([](zrq_provider& functions) { functions.size = 0; }), 5);
  EXPECT_EQ(refused([](zrq_provider& functions) { functions.name = nullptr; }), 5);
  EXPECT_EQ(refused([](zrq_provider& functions) { functions.name = "\xFF"; }), 5);
  EXPECT_EQ(refused([](zrq_provider& functions) { functions.name = " "; }), 5);
  EXPECT_EQ(refused([](zrq_provider& functions) { functions.rows = nullptr; }), 5);
  EXPECT_EQ(zrq_connection(nullptr, nullptr, &connection), 5);
  struct {
    zrq_provider functions = Functions();
    void* added = nullptr;
  } later;
  later.functions.size = sizeof later;
  EXPECT_EQ(zrq_connection(&later.functions, &source, &connection), 0);  // what is added is not asked for
  zrq_release(connection);
  EXPECT_EQ(source.ended, 1);
  later.added = &later;
  EXPECT_EQ(zrq_connection(&later.functions, &source, &connection), 5);
  EXPECT_EQ(source.ended, 1);
  EXPECT_EQ(zrq_fail(0, "x"), 5);
}

// While it answers, the designer is in the middle of something; its handles can be released, its members not used.
TEST(CProvider, MayNotUseTheDesignerThatAsks) {
  Source source;
  zrq_handle connection = Opened(source), designer = 0;
  ASSERT_EQ(zrq_create("qbQueryBuilder", &designer), 0);
  bool released = false;
  source.rows = [&](int32_t) {
    zrq_value value{};
    EXPECT_EQ(zrq_get(designer, "State", nullptr, 0, &value), 5);
    EXPECT_EQ(zrq_get(connection, "State", nullptr, 0, &value), 0);
    if (!std::exchange(released, true)) {
      EXPECT_EQ(zrq_release(designer), 0);
      EXPECT_EQ(zrq_release(connection), 0);
    }
    return 0;
  };
  const zrq_value value = Of(ZRQ_OBJECT, static_cast<int64_t>(connection));
  EXPECT_EQ(zrq_let(designer, "Connection", nullptr, 0, &value), 0);
  EXPECT_TRUE(released);
  EXPECT_EQ(source.open, 0);
  EXPECT_EQ(source.ended, 1);
}

TEST(CProvider, IsClosedAndEnds) {
  Source source;
  zrq_handle connection = Opened(source);
  EXPECT_EQ(source.opened, "Provider=Made");
  EXPECT_EQ(source.open, 1);
  // It may close the connection that asks it.
  source.rows = [&](int32_t) {
    EXPECT_EQ(zrq_call(connection, "Close", nullptr, 0, nullptr, nullptr), 0);
    EXPECT_EQ(source.open, 1);
    return 0;
  };
  EXPECT_EQ(Asked(connection, ZRQ_TABLES), "");
  EXPECT_EQ(source.open, 0);
  EXPECT_EQ(Asked(connection, ZRQ_TABLES).substr(0, 4), "3704");
  source.openFails = 77;
  EXPECT_EQ(zrq_call(connection, "Open", nullptr, 0, nullptr, nullptr), 77);
  const char* description = nullptr;
  EXPECT_EQ(zrq_last_error(&description), 77);
  EXPECT_STREQ(description, "locked");
  source.openFails = 0;
  EXPECT_EQ(zrq_call(connection, "Open", nullptr, 0, nullptr, nullptr), 0);
  EXPECT_EQ(source.ended, 0);
  zrq_release(connection);
  EXPECT_EQ(source.open, 0);
  EXPECT_EQ(source.ended, 1);
}

// The caller goes first: what lives on asks nothing of it any more.
TEST(CProvider, EndsBeforeItsConnections) {
  Source source, known;
  const zrq_handle connection = Opened(source);
  const zrq_provider functions = Functions("Known");
  ASSERT_EQ(zrq_register(&functions, &known), 0);
  zrq_handle byName = 0;
  ASSERT_EQ(zrq_create("Connection", &byName), 0);
  const zrq_value text = Text("provider=known;Year='2;4'");
  ASSERT_EQ(zrq_call(byName, "Open", &text, 1, nullptr, nullptr), 0);
  EXPECT_EQ(known.opened, "provider=known;Year=\"2;4\"");
  EXPECT_EQ(zrq_end_subscriptions(), 0);
  EXPECT_EQ(source.ended + known.ended, 2);
  for (const zrq_handle left : {connection, byName}) {
    EXPECT_EQ(Asked(left, ZRQ_TABLES), "3704 The provider has ended.");
    zrq_release(left);
  }
  EXPECT_EQ(source.ended + known.ended, 2);
}

}  // namespace
