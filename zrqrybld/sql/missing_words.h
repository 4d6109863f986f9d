// What an expression says that only some dialects can: FILTER, WITHIN GROUP, OVER, GROUPING SETS, ROLLUP and CUBE.
// Pure.
#pragma once

#include <string_view>
#include <vector>

namespace zrqrybld {

struct Dialect;

/// Whether the dialect's servers do not know the word, in capital letters. RANGE stands for frames that begin or end at
/// a distance in values: UNBOUNDED and CURRENT ROW are known by all that know OVER.
bool Misses(const Dialect& dialect, std::string_view word);

/// Which of these the text says although the dialect does not know it, each once, in their order there.
std::vector<std::string_view> MissingWordsIn(std::string_view text, const Dialect& dialect);

}  // namespace zrqrybld
