#include "tests/player.h"

#include <stdexcept>

#include "base/error.h"
#include "base/text.h"

namespace zrqrybld::test {
namespace {

template <class Map>
const auto& Find(const Map& map, const std::string& name) {
  const auto found = map.find(name);
  if (found == map.end()) throw std::runtime_error("nobody knows \"" + name + "\"");
  return found->second;
}

}  // namespace

void Player::Do(const std::string& step) {
  Words words;
  for (const std::string_view word : Split(step, " ")) words.push_back(ReplaceAll(word, "~", " "));
  Find(actions, words.at(0))(words);
}

void Player::Play(const Row& row) {
  std::string failure, description;
  Around([&] {
    try {
      for (const std::string_view step : Split(row[0], "; ")) Do(std::string(step));
    } catch (const Error& error) {
      failure = std::to_string(error.Number());
      description = error.Description();
    }
  });
  std::string expected;
  for (std::size_t i = 1; i < row.cells.size(); ++i) {
    const std::size_t equals = row[i].find('=');
    const std::string name = row[i].substr(0, equals);
    const std::string text = row[i].substr(equals + 1);
    const std::size_t colon = name.find(':');
    if (name == "error") {
      expected = text;
    } else if (name == "fails") {
      EXPECT_EQ(description, text);
    } else {
      EXPECT_EQ(Find(answers, name.substr(0, colon))(colon == std::string::npos ? "" : name.substr(colon + 1)), text)
          << name;
    }
  }
  EXPECT_EQ(failure, expected) << "error";
  CheckAlways();
}

}  // namespace zrqrybld::test
