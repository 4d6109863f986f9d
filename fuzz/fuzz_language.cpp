// Any bytes as a language file: it is read, or it fails with the error of such files.
#include <cstdlib>
#include <sstream>
#include <string>

#include "zrqrybld/base/error.h"
#include "zrqrybld/host/language.h"
#include "zrqrybld/host/language_ids.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace zrqrybld;
  LanguageTable table;
  std::istringstream file(std::string(reinterpret_cast<const char*>(data), size));
  try {
    table.Load(file);
  } catch (const Error& error) {
    if (error.Number() != ErrorInvalidResFile) std::abort();
  }
  if (table.Get(LanguageTableCaption).empty()) std::abort();
  return 0;
}
