// Player: plays the scenarios of a table of cases.
//
// A row "--- title" begins a scenario. Every other row is what is done and, in its other cells, what holds afterwards:
// checks "name=text". Several things are done with "; " between them; each is a word and what it needs, in which "~" is
// a blank. A question may say what of: "cell:1 alias". A failure that no check "error=number" expects fails the test;
// "fails=text" is its description.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tests/data_table.h"
#include "zrqrybld/platform/input.h"

namespace zrqrybld::test {

/// "Ctrl+Shift+Right", "F2" or a single character, which types itself.
KeyEvent ReadKey(std::string_view name);

class Player {
 public:
  using Words = std::vector<std::string>;
  /// Gets the words of what is done, itself the first.
  using Action = std::function<void(const Words& w)>;
  /// Gets what stands behind the colon.
  using Answer = std::function<std::string(const std::string& of)>;

  virtual ~Player() = default;
  Player() = default;
  Player(const Player&) = delete;
  Player& operator=(const Player&) = delete;

  void Play(const Row& row);

 protected:
  /// Runs all that a row does; a player may look around it.
  virtual void Around(const std::function<void()>& act) { act(); }
  /// What is to hold after every row.
  virtual void CheckAlways() {}
  void Do(const std::string& step);
  /// "-" is the empty word.
  static std::string OrNone(const std::string& word) { return word == "-" ? "" : word; }

  std::map<std::string, Action, std::less<>> actions;
  std::map<std::string, Answer, std::less<>> answers;
};

/// Registers every scenario of tests/data/`file` as a test of its own, named by its title and played by a player of its
/// own. For the initializer of a global: tests are registered before the first one runs.
bool RegisterScenarios(const char* suite, const char* file, std::function<std::unique_ptr<Player>()> makePlayer);

template <class Scene>
bool RegisterScenarios(const char* suite, const char* file) {
  return RegisterScenarios(suite, file, [] { return std::unique_ptr<Player>(std::make_unique<Scene>()); });
}

}  // namespace zrqrybld::test
