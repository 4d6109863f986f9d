#include "zrqrybld/base/phrase.h"

#include <algorithm>

#include "zrqrybld/base/text.h"

namespace zrqrybld {

std::string FillIn(std::string_view text, const std::vector<std::string>& arguments) {
  std::string filled;
  while (!text.empty()) {
    const std::size_t percent = std::min(text.find('%'), text.size());
    filled.append(text.substr(0, percent));
    text.remove_prefix(percent);
    const bool capital = text.starts_with("%^");
    const std::size_t figure = capital ? 2 : 1;
    const bool isPlace = text.size() > figure && text[figure] >= '1' && text[figure] <= '9';
    const std::size_t argument = isPlace ? static_cast<std::size_t>(text[figure] - '1') : arguments.size();
    if (argument < arguments.size()) {
      const std::size_t begin = filled.size();
      filled += arguments[argument];
      if (capital && begin < filled.size()) filled[begin] = UpperAscii(filled[begin]);
      text.remove_prefix(figure + 1);
    } else if (!text.empty()) {
      filled += text.front();
      text.remove_prefix(1);
    }
  }
  return filled;
}

std::string Phrase::In(const TextSource& texts) const {
  if (!id_) return words_;
  std::vector<std::string> arguments;
  arguments.reserve(arguments_.size());
  for (const Phrase& argument : arguments_) arguments.push_back(argument.In(texts));
  return FillIn(texts.Text(*id_), arguments);
}

}  // namespace zrqrybld
