// A walk over all public members by name, with handlers that walk on, and steps undone and redone on the way. Chance
// leads it, or the bytes of a fuzzer.
#pragma once

#include <cstddef>
#include <functional>
#include <string>

namespace zrqrybld::test {

struct WalkChoices {
  std::function<bool()> goesOn;                       ///< whether there is another step
  std::function<std::size_t(std::size_t end)> below;  ///< a number from 0 on, less than `end`
  bool traces = false;                                ///< each call is printed before it is made
};

/// Whatever is called ends in the change or in a numbered error, the designer goes on, and all its steps can be undone
/// and redone. What is wrong otherwise, "" for nothing; any other exception is one too many.
std::string TakeWalk(const WalkChoices& choices);

}  // namespace zrqrybld::test
