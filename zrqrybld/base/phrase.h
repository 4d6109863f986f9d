// Phrases: what is said to a person, before it is known in which language.
//
// A phrase is the number of a text and what stands for its placeholders, or words that come from somebody else, such as
// a driver or an application. Errors, remarks and hints are phrases; whoever shows one has the language and renders it
// there, so that two designers in one process can speak two languages and pure code needs none.
#pragma once

#include <concepts>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "zrqrybld/base/export.h"

namespace zrqrybld {

/// The number of a text in the language table. Each room has a header of its own with the names: base/texts_ROOM.h.
enum class TextId : std::int32_t {};

/// A number that can stand in a phrase.
template <class T>
concept CountNumber = std::integral<T> && !std::same_as<T, bool> && !std::same_as<T, char>;

/// A language: the text of each number.
class ZRQRYBLD_API TextSource {
 public:
  TextSource() = default;
  TextSource(const TextSource&) = default;
  TextSource& operator=(const TextSource&) = default;
  virtual ~TextSource() = default;

  /// The text under the number; "" for a number that has none.
  virtual std::string Text(TextId id) const = 0;
};

/// The built-in texts.
ZRQRYBLD_API const TextSource& EnglishTexts();

namespace text {
/// The number of no text.
inline constexpr TextId NoText{-1};  // NOLINT(readability-identifier-naming): named as the texts are
}  // namespace text

class ZRQRYBLD_API Phrase {
 public:
  /// Nothing to say.
  Phrase() = default;
  /// Words that are the same in every language: a name, or what somebody else says.
  Phrase(std::string words) : words_(std::move(words)) {}
  Phrase(std::string_view words) : words_(words) {}
  Phrase(const char* words) : words_(words) {}
  template <CountNumber T>
  Phrase(T number) : words_(std::to_string(number)) {}
  /// The text with this number; %1 to %9 in it stand for the arguments, phrases themselves. "%^1" is the first one
  /// with a capital letter at its beginning.
  template <class... Arguments>
  Phrase(TextId id, Arguments&&... arguments) : id_(id) {
    (arguments_.emplace_back(std::forward<Arguments>(arguments)), ...);
  }

  bool Empty() const { return !id_ && words_.empty(); }
  /// The phrase in a language.
  std::string In(const TextSource& texts) const;
  std::string English() const { return In(EnglishTexts()); }

  friend bool operator==(const Phrase&, const Phrase&) = default;

 private:
  std::optional<TextId> id_;
  std::string words_;
  std::vector<Phrase> arguments_;
};

/// The text with its placeholders, %1 to %9, replaced by what they stand for; one without a partner stays.
ZRQRYBLD_API std::string FillIn(std::string_view text, const std::vector<std::string>& arguments);

}  // namespace zrqrybld
