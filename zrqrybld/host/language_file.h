// The lines of a language file.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>

namespace zrqrybld {

/// Adds the texts of a language file by their numbers. Error 40000 as `LanguageTable::Load`; texts read before stay.
void ReadLanguageFile(std::string_view text, std::unordered_map<std::int32_t, std::string>& texts);

}  // namespace zrqrybld
