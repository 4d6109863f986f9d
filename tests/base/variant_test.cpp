#include "zrqrybld/base/variant.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <limits>

#include "zrqrybld/base/error.h"

namespace zrqrybld {
namespace {

class Thing final : public Object {
 public:
  std::string_view TypeName() const override { return "Thing"; }
};

constexpr std::int64_t kLargest = std::numeric_limits<std::int64_t>::max();

TEST(Variant, HasOneTextForm) {
  const std::pair<Variant, const char*> cases[] = {
      {Variant(), ""},
      {Variant::Null(), ""},
      {Variant::Missing(), ""},
      {true, "True"},
      {std::int16_t{-7}, "-7"},
      {kLargest, "9223372036854775807"},
      {0.1f, "0.1"},
      {16777216.0f, "16777216"},
      {1e10f, "10000000000"},
      {1.5e20f, "1.5e+20"},
      {-3.4028235e38f, "-3.4028235e+38"},
      {1e-45f, "1e-45"},
      {0.1, "0.1"},
      {static_cast<double>(0.1f), "0.10000000149011612"},
      {"text", "text"},
      {Ref<Object>(std::make_shared<Thing>()), ""},
      {std::vector<Variant>{1, 2}, ""},
  };
  for (const auto& [value, text] : cases) EXPECT_EQ(value.Text(), text);
}

TEST(Variant, WritesNumbersWithoutTheLocale) {
  for (const char* name : {"de_DE.UTF-8", "fr_FR.UTF-8", "C"}) {
    std::setlocale(LC_ALL, name);  // most machines have only the last: the others are a bonus
    EXPECT_EQ(Variant(2.5f).Text(), "2.5") << name;
    EXPECT_EQ(Variant(2.5).Text(), "2.5") << name;
    EXPECT_EQ(Variant("2.5").Number(), 2.5) << name;
  }
}

TEST(Variant, WritesDatesOfTheWholeCalendar) {
  const std::pair<double, const char*> cases[] = {
      {0, "1899-12-30 00:00:00"},
      {2, "1900-01-01 00:00:00"},
      {60, "1900-02-28 00:00:00"},  // 1900 was no leap year
      {61, "1900-03-01 00:00:00"},
      {36584, "2000-02-28 00:00:00"},
      {36585, "2000-02-29 00:00:00"},
      {36586, "2000-03-01 00:00:00"},
      {45350.75, "2024-02-28 18:00:00"},
      {45351, "2024-02-29 00:00:00"},
      {73109, "2100-02-28 00:00:00"},
      {73110, "2100-03-01 00:00:00"},
      {25569 + 86399.6 / 86400, "1970-01-02 00:00:00"},  // rounded to the second, over midnight too
      {-1, "1899-12-29 00:00:00"},
      {-0.25, "1899-12-29 18:00:00"},
      {-109205, "1601-01-01 00:00:00"},
      {-693593, "0001-01-01 00:00:00"},
      {2958465, "9999-12-31 00:00:00"},
      {1e300, ""},
      {std::numeric_limits<double>::quiet_NaN(), ""},
  };
  for (const auto& [days, text] : cases) EXPECT_EQ(Variant(DateValue{days}).Text(), text) << days;
}

TEST(Variant, ReadsNumbersFromEveryKind) {
  const std::pair<Variant, std::optional<double>> cases[] = {{true, -1},
                                                             {false, 0},
                                                             {std::int16_t{5}, 5},
                                                             {0.5f, 0.5},
                                                             {DateValue{2.5}, 2.5},
                                                             {" 12.5 ", 12.5},
                                                             {"12,5", {}},
                                                             {"", {}},
                                                             {"True", {}},
                                                             {"inf", {}},
                                                             {Variant(), {}},
                                                             {Variant::Null(), {}},
                                                             {Variant::Missing(), {}},
                                                             {Ref<Object>(), {}},
                                                             {std::vector<Variant>{1}, {}}};
  for (const auto& [value, number] : cases) EXPECT_EQ(value.Number(), number) << value.Text();
}

std::optional<std::int32_t> Int32Of(const Variant& value) {
  try {
    return value.ToInt32();
  } catch (const Error& error) {
    EXPECT_EQ(error.Number(), ErrorTypeMismatch);
    return std::nullopt;
  }
}

TEST(Variant, RoundsToIntegersAndRefusesWhatDoesNotFit) {
  const std::pair<Variant, std::optional<std::int32_t>> cases[] = {{2.5, 2},
                                                                   {3.5, 4},
                                                                   {-0.5, 0},
                                                                   {2147483647.4, 2147483647},
                                                                   {2147483647.5, {}},
                                                                   {-2147483648.5, -2147483647 - 1},
                                                                   {-2147483649.0, {}},
                                                                   {kLargest, {}},
                                                                   {"7", 7},
                                                                   {"seven", {}},
                                                                   {Variant(), {}},
                                                                   {true, -1},
                                                                   {std::nan(""), {}},
                                                                   {HUGE_VAL, {}}};
  for (const auto& [value, number] : cases) EXPECT_EQ(Int32Of(value), number) << value.Text();
}

TEST(Variant, ReadsTruthFromTextAndNumber) {
  const std::pair<Variant, bool> cases[] = {{true, true},    {"tRUE", true}, {"False", false}, {"0", false},
                                            {"0.001", true}, {-1, true},     {0.0, false}};
  for (const auto& [value, truth] : cases) EXPECT_EQ(value.ToBoolean(), truth) << value.Text();
  for (const Variant& value : {Variant("yes"), Variant(""), Variant(), Variant::Null(), Variant(Ref<Object>())}) {
    EXPECT_THROW(value.ToBoolean(), Error) << value.Text();
  }
}

TEST(Variant, ComparesNumbersByValueAcrossKinds) {
  const Ref<Object> thing = std::make_shared<Thing>();
  const double twoTo63 = 9223372036854775808.0;
  const std::tuple<Variant, Variant, bool> cases[] = {
      {1, 1.0, true},
      {true, -1, true},
      {std::int16_t{3}, 3.0f, true},
      {0.1f, 0.1, false},
      {0.5f, 0.5, true},
      {DateValue{2}, 2, true},
      {0.0, -0.0, true},
      {std::nan(""), std::nan(""), false},
      // Above 2^53 a double no longer tells neighbouring integers apart; the integers stay different.
      {std::int64_t{9007199254740993}, 9007199254740992.0, false},
      {std::int64_t{9007199254740993}, std::int64_t{9007199254740992}, false},
      {std::int64_t{9007199254740992}, 9007199254740992.0, true},
      {kLargest, twoTo63, false},
      {-kLargest - 1, -twoTo63, true},
      {std::int64_t{1}, 1.5, false},
      {std::int64_t{1}, std::nan(""), false},
      {"1", 1, false},
      {"a", "A", false},
      {"", Variant(), false},
      {Variant(), Variant::Null(), false},
      {Variant::Null(), Variant::Null(), true},
      {thing, thing, true},
      {thing, Ref<Object>(std::make_shared<Thing>()), false},
      {std::vector<Variant>{1, "a"}, std::vector<Variant>{1.0, "a"}, true},
      {std::vector<Variant>{1}, std::vector<Variant>{1, 2}, false},
  };
  for (const auto& [a, b, equal] : cases) {
    EXPECT_EQ(a == b, equal) << a.Text() << " and " << b.Text();
    EXPECT_EQ(b == a, equal) << b.Text() << " and " << a.Text();
  }
}

}  // namespace
}  // namespace zrqrybld
