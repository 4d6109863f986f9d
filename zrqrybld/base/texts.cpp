#include "zrqrybld/base/texts.h"

#include <algorithm>

#include "zrqrybld/base/phrase.h"

namespace zrqrybld {
namespace {

constexpr TextRow kTexts[] = {
#define ZRQRYBLD_TEXT(name, number, english, placeholders) {number, english, placeholders},
#include "zrqrybld/base/texts_base.inc"
#include "zrqrybld/base/texts_captions.inc"
#include "zrqrybld/base/texts_designer.inc"
#include "zrqrybld/base/texts_diagram.inc"
#include "zrqrybld/base/texts_expression.inc"
#include "zrqrybld/base/texts_grid.inc"
#include "zrqrybld/base/texts_hub.inc"
#include "zrqrybld/base/texts_platform.inc"
#include "zrqrybld/base/texts_qt.inc"
#include "zrqrybld/base/texts_queries.inc"
#include "zrqrybld/base/texts_run.inc"
#include "zrqrybld/base/texts_sql.inc"
#include "zrqrybld/base/texts_steps.inc"
#include "zrqrybld/base/texts_values.inc"
#undef ZRQRYBLD_TEXT
};

struct SortedTexts {
  TextRow rows[std::size(kTexts)];
};

constexpr SortedTexts Sorted() {
  SortedTexts sorted{};
  std::ranges::copy(kTexts, sorted.rows);
  std::ranges::sort(sorted.rows, {}, &TextRow::number);
  return sorted;
}

// Sorted by number, whatever the order of the files, so that adding one needs no thought.
constexpr SortedTexts kSorted = Sorted();

static_assert(std::ranges::adjacent_find(kSorted.rows, {}, &TextRow::number) == std::end(kSorted.rows),
              "two texts have one number");

class English final : public TextSource {
 public:
  std::string Text(TextId id) const override { return std::string(DefaultText(static_cast<std::int32_t>(id))); }
};

}  // namespace

const TextSource& EnglishTexts() {
  static const English kEnglish;
  return kEnglish;
}

std::span<const TextRow> AllTexts() { return kSorted.rows; }

std::string_view DefaultText(std::int32_t number) {
  const auto* row = std::ranges::lower_bound(kSorted.rows, number, {}, &TextRow::number);
  return row == std::end(kSorted.rows) || row->number != number ? std::string_view() : row->english;
}

}  // namespace zrqrybld
