// Language strings: every text that the library and its windows show, by number.
//
// The application replaces texts one by one or all at once from a file; a number without a text of
// its own shows the built-in English one, which stands in base/texts.h.
#pragma once

#include <cstdint>
#include <istream>
#include <string>
#include <string_view>
#include <unordered_map>

#include "zrqrybld/base/export.h"
#include "zrqrybld/base/phrase.h"

namespace zrqrybld {

class ZRQRYBLD_API LanguageTable final : public TextSource {
 public:
  /// The text under the number, or the built-in one when there is none or it is empty; "" for a number that nobody has.
  std::string Get(std::int32_t id) const;
  std::string Text(TextId id) const override { return Get(static_cast<std::int32_t>(id)); }

  /// Replaces the text under the number; "" brings the built-in text back.
  void Set(std::int32_t id, std::string text);

  /// Drops every text, then reads `id=text` lines in UTF-8; empty lines and lines that begin with "'" are skipped.
  /// Error 40000 at the first line that is neither, at a number that is no 16-bit integer, at a number that comes twice
  /// and at bytes that are no text; texts read before stay.
  void Load(const std::string& path);
  void Load(std::istream& input);

 private:
  std::unordered_map<std::int32_t, std::string> texts_;
};

}  // namespace zrqrybld
