#include "zrqrybld/base/keyed_list.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/text.h"

namespace zrqrybld {
namespace {

TEST(KeyedList, FindsWithoutCaseAndKeepsItsItemsInPlace) {
  KeyedList<int> list;
  int& item = list.Insert(4, "Größe", 99);  // behind the end appends
  EXPECT_EQ(*list.Find("GRÖẞE"), 4);
  EXPECT_EQ(list.Find(""), nullptr);
  list.Insert(5);
  try {
    list.Insert(6, "Größe");
    ADD_FAILURE() << "a duplicate key was taken";
  } catch (const Error& error) {
    EXPECT_EQ(error.Number(), ErrorDuplicateKey);
  }
  list.Rekey(1, "b");
  EXPECT_EQ(list.Find("B"), &item);
  EXPECT_FALSE(list.HasExactly("B"));
  for (const std::size_t outside : {std::size_t{0}, std::size_t{3}}) {
    EXPECT_EQ(list.At(outside), nullptr);
    EXPECT_EQ(list.KeyAt(outside), "");
  }
  list.Clear();
  EXPECT_EQ(list.Find("b"), nullptr);
  KeyedList<std::unique_ptr<int>> movable;
  movable.Insert(std::make_unique<int>(5), "p");
  EXPECT_EQ(*movable.RemoveAt(1), 5);
}

// Thousands of random operations, compared with the plainest list that could do the same.
void CompareWithAPlainList(std::size_t filled, int steps) {
  struct Plain {
    int value;
    std::string key;
  };
  constexpr std::string_view kKeys[] = {"", "a", "A", "b", "B", "ß", "ẞ", "c"};
  std::mt19937 random(3);
  const auto below = [&random](std::size_t n) { return static_cast<std::size_t>(random()) % n; };
  KeyedList<int> list;
  std::vector<Plain> plain;
  const auto inUse = [&plain](std::string_view key) {
    return !key.empty() && std::ranges::count(plain, key, &Plain::key) > 0;
  };
  for (std::size_t i = 0; i < filled; ++i) {
    list.Insert(-1);
    plain.push_back({-1, ""});
  }
  for (int step = 0; step < steps; ++step) {
    const std::string key(kKeys[below(std::size(kKeys))]);
    const std::size_t count = plain.size();
    const auto at = [&plain](std::size_t position) {
      return plain.begin() + static_cast<std::ptrdiff_t>(position - 1);
    };
    switch (below(count > filled + 12 ? 6 : 5)) {
      case 0:
      case 1: {
        const std::size_t position = below(count + 2);  // 0 appends
        if (inUse(key)) {
          ASSERT_THROW(list.Insert(step, key, position), Error);
        } else {
          list.Insert(step, key, position);
          plain.insert(position == 0 ? plain.end() : at(position), {step, key});
        }
        break;
      }
      case 2:
        if (count > 0) {
          const std::size_t position = 1 + below(count);
          if (at(position)->key != key && inUse(key)) {
            ASSERT_THROW(list.Rekey(position, key), Error);
          } else {
            list.Rekey(position, key);
            at(position)->key = key;
          }
        }
        break;
      case 3:
        if (count > 0) {
          const std::size_t from = 1 + below(count);
          const std::size_t to = 1 + below(count);
          list.Move(from, to);
          const Plain moved = *at(from);
          plain.erase(at(from));
          plain.insert(at(to), moved);
        }
        break;
      default:
        if (count > 0) {
          const std::size_t position = 1 + below(count);
          ASSERT_EQ(list.RemoveAt(position), at(position)->value);
          plain.erase(at(position));
        }
    }
    ASSERT_EQ(list.Count(), plain.size());
    for (std::size_t i = 1; i <= plain.size(); ++i) {
      ASSERT_EQ(*list.At(i), at(i)->value);
      ASSERT_EQ(list.KeyAt(i), at(i)->key);
    }
    for (const std::string_view wanted : kKeys) {
      auto found = std::ranges::find(plain, wanted, &Plain::key);
      if (found == plain.end()) {
        found = std::ranges::find_if(plain, [&](const Plain& p) { return EqualsNoCase(p.key, wanted); });
      }
      const bool exists = !wanted.empty() && found != plain.end();
      ASSERT_EQ(list.PositionOf(wanted), exists ? static_cast<std::size_t>(found - plain.begin()) + 1 : 0);
    }
  }
  list.RemoveIf([](int value) { return value % 2 == 0; });
  std::erase_if(plain, [](const Plain& one) { return one.value % 2 == 0; });
  ASSERT_EQ(list.Count(), plain.size());
  for (std::size_t i = 1; i <= plain.size(); ++i) {
    ASSERT_EQ(*list.At(i), plain[i - 1].value);
    ASSERT_EQ(list.PositionOf(list.MarkAt(i)), i);
  }
}

TEST(KeyedList, BehavesLikeAPlainList) {
  CompareWithAPlainList(0, 20'000);
  CompareWithAPlainList(2000, 1000);
}

}  // namespace
}  // namespace zrqrybld
