#include "tests/player.h"

#include <stdexcept>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/text.h"

namespace zrqrybld::test {
namespace {

template <class Map>
const auto& Find(const Map& map, const std::string& name) {
  const auto found = map.find(name);
  if (found == map.end()) throw std::runtime_error("nobody knows \"" + name + "\"");
  return found->second;
}

constexpr std::string_view kTitleMark = "---";

// Nobody plays the rows of a file that could not be read: `fault` says why.
struct Scenario {
  std::string name;
  std::string place;
  std::vector<Row> rows;
  std::string fault;
};

class ScenarioTest final : public testing::Test {
 public:
  ScenarioTest(std::function<std::unique_ptr<Player>()> makePlayer, Scenario scenario)
      : makePlayer_(std::move(makePlayer)), scenario_(std::move(scenario)) {}
  void TestBody() override {
    if (!scenario_.fault.empty()) FAIL() << scenario_.fault;
    const std::unique_ptr<Player> player = makePlayer_();
    for (const Row& row : scenario_.rows) {
      SCOPED_TRACE(row.place + " " + row[0]);
      player->Play(row);
      if (HasFatalFailure()) return;
    }
  }

 private:
  std::function<std::unique_ptr<Player>()> makePlayer_;
  Scenario scenario_;
};

// "A row dropped on a row" is the test ARowDroppedOnARow.
std::string NameOf(std::string_view title) {
  std::string name;
  bool begins = true;
  for (const char c : title) {
    const bool counts = IsWordByte(c) && static_cast<unsigned char>(c) < 0x80;
    if (counts) name += begins ? UpperAscii(c) : c;
    begins = !counts;
  }
  return name;
}

std::vector<Scenario> ReadScenarios(const char* file) {
  std::vector<Scenario> scenarios;
  try {
    for (Row& row : ReadRows(file)) {
      if (row[0].starts_with(kTitleMark)) {
        scenarios.push_back({NameOf(row[0].substr(kTitleMark.size())), row.place, {}, {}});
      } else if (scenarios.empty()) {
        throw std::runtime_error(row.place + ": a scenario begins with its title");
      } else {
        scenarios.back().rows.push_back(std::move(row));
      }
    }
  } catch (const std::exception& error) {
    scenarios = {{"CanBeRead", file, {}, error.what()}};
  }
  return scenarios;
}

}  // namespace

bool RegisterScenarios(const char* suite, const char* file, std::function<std::unique_ptr<Player>()> makePlayer) {
  for (Scenario& scenario : ReadScenarios(file)) {
    const std::string name = scenario.name;
    testing::RegisterTest(suite, name.c_str(), nullptr, nullptr, __FILE__, __LINE__,
                          [makePlayer, scenario = std::move(scenario)]() -> testing::Test* {
                            return new ScenarioTest(makePlayer, scenario);
                          });
  }
  return true;
}

void Player::Do(const std::string& step) {
  Words words;
  for (const std::string_view word : Split(step, " ")) words.push_back(ReplaceAll(word, "~", " "));
  Find(actions, words.at(0))(words);
}

KeyEvent ReadKey(std::string_view name) {
  KeyEvent key;
  for (const auto& [prefix, shift] : {std::pair{"Ctrl+", ShiftCtrl}, {"Shift+", ShiftShift}, {"Alt+", ShiftAlt}}) {
    if (!name.starts_with(prefix)) continue;
    key.shift |= shift;
    name.remove_prefix(std::string_view(prefix).size());
  }
  static const std::map<std::string_view, std::int32_t> kKeys = {
      {"Back", KeyCodeBack},     {"Del", KeyCodeDelete},  {"Delete", KeyCodeDelete},     {"Down", KeyCodeDown},
      {"End", KeyCodeEnd},       {"Enter", KeyCodeEnter}, {"Esc", KeyCodeEscape},        {"F2", KeyCodeF2},
      {"F4", KeyCodeF4},         {"F8", KeyCodeF2 + 6},   {"F12", KeyCodeF2 + 10},       {"Home", KeyCodeHome},
      {"Insert", KeyCodeInsert}, {"Left", KeyCodeLeft},   {"PageDown", KeyCodePageDown}, {"PageUp", KeyCodePageUp},
      {"Right", KeyCodeRight},   {"Space", KeyCodeSpace}, {"Tab", KeyCodeTab},           {"Up", KeyCodeUp}};
  const auto known = kKeys.find(name);
  if (known == kKeys.end()) key.text = name;
  key.keyCode = known != kKeys.end() ? known->second : UpperAscii(key.text).front();
  return key;
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
