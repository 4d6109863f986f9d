#include "zrqrybld/host/language.h"

#include <cmath>
#include <optional>
#include <utility>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/file.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts.h"
#include "zrqrybld/base/texts_hub.h"
#include "zrqrybld/host/language_file.h"
#include "zrqrybld/host/language_ids.h"

namespace zrqrybld {
namespace {

// The names that applications use and the rows of the table mean the same.
#define ZRQRYBLD_TEXT(name, number, english, placeholders) static_assert((name) == (number));
#include "zrqrybld/base/texts_captions.inc"
#undef ZRQRYBLD_TEXT

// A caption is a line; a file with longer ones is none of ours.
constexpr std::size_t kLongestLine = std::size_t{64} * 1024;
constexpr std::size_t kLargestFile = std::size_t{64} << 20;

[[noreturn]] void ThrowInvalidFile() { throw Error(ErrorInvalidResFile, text::LanguageFileFailed); }

[[noreturn]] void ThrowNotUtf8(std::size_t line) {
  throw WrapError(ErrorInvalidResFile, text::LanguageFileFailed,
                  Error(ErrorInvalidResFile, Phrase(text::LanguageLineNotUtf8, line)));
}

// An id is a whole number of 16 bits; blanks around it do not matter.
std::optional<std::int32_t> ReadId(std::string_view text) {
  const std::optional<double> number = ParseNumber(TrimWhite(text));
  if (!number || std::nearbyint(*number) != *number || *number < -32768 || *number > 32767) return std::nullopt;
  return static_cast<std::int32_t>(*number);
}

}  // namespace

std::string LanguageTable::Get(std::int32_t id) const {
  const auto found = texts_.find(id);
  return found == texts_.end() || found->second.empty() ? std::string(DefaultText(id)) : found->second;
}

void LanguageTable::Set(std::int32_t id, std::string text) { texts_.insert_or_assign(id, std::move(text)); }

void LanguageTable::Load(const std::string& path) {
  texts_.clear();
  std::string text;
  try {
    text = ReadWholeFile(path, kLargestFile);
  } catch (const Error&) {
    ThrowInvalidFile();
  }
  ReadLanguageFile(text, texts_);
}

void ReadLanguageFile(std::string_view text, std::unordered_map<std::int32_t, std::string>& texts) {
  for (std::size_t number = 1; !text.empty(); ++number) {
    const std::size_t end = text.find('\n');
    std::string_view line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    if (line.size() >= kLongestLine) ThrowInvalidFile();
    if (!IsUtf8(line) || line.find('\0') != std::string_view::npos) ThrowNotUtf8(number);
    if (number == 1 && line.starts_with("\xEF\xBB\xBF")) line.remove_prefix(3);
    if (line.ends_with('\r')) line.remove_suffix(1);
    const std::string_view trimmed = Trim(line);
    if (trimmed.empty() || trimmed.front() == '\'') continue;
    const std::size_t equals = line.find('=');
    const std::optional<std::int32_t> id =
        equals == std::string_view::npos ? std::nullopt : ReadId(line.substr(0, equals));
    if (!id || !texts.try_emplace(*id, line.substr(equals + 1)).second) ThrowInvalidFile();
  }
}

}  // namespace zrqrybld
