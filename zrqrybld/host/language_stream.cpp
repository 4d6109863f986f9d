// Apart from the rest: streams bring much with them, which a program that reads language files by name does not need.
#include <iterator>
#include <string>

#include "zrqrybld/host/language.h"
#include "zrqrybld/host/language_file.h"

namespace zrqrybld {

void LanguageTable::Load(std::istream& input) {
  texts_.clear();
  ReadLanguageFile(std::string(std::istreambuf_iterator<char>(input), {}), texts_);
}

}  // namespace zrqrybld
