#include "command/arguments.h"

#ifdef _WIN32
#include <windows.h>

#include <shellapi.h>

#include <filesystem>

#include "zrqrybld/base/file.h"
#endif

namespace zrqrybld {

#ifdef _WIN32

std::vector<std::string> Arguments(int, const char* const*) {
  SetConsoleOutputCP(CP_UTF8);
  int count = 0;
  wchar_t** const values = CommandLineToArgvW(GetCommandLineW(), &count);
  std::vector<std::string> arguments;
  for (int i = 1; i < count; ++i) arguments.push_back(Utf8Of(std::filesystem::path(values[i])));
  LocalFree(values);
  return arguments;
}

#else

std::vector<std::string> Arguments(int count, const char* const* values) {
  return {values + (count > 0 ? 1 : 0), values + count};
}

#endif

}  // namespace zrqrybld
