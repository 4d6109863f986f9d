#include "zrqrybld/adapters/qt/connection_choice.h"

#include "zrqrybld/base/text.h"
#include "zrqrybld/platform/connection_string.h"

namespace zrqrybld {

std::string BuildConnectionString(const ConnectionChoice& choice) {
  switch (choice.way) {
    case ConnectionWay::SqliteFile:
      if (TrimWhite(choice.file).empty()) return {};
      return "Provider=SQLite;Data Source=" + ConnectionString::QuoteValue(choice.file);
    case ConnectionWay::DataSource: {
      if (choice.dataSource.empty()) return {};
      std::string text = "DSN=" + ConnectionString::QuoteValue(choice.dataSource);
      // A data source may hold its own user and password; an empty one here would replace it.
      if (!choice.user.empty()) text += ";UID=" + ConnectionString::QuoteValue(choice.user);
      if (!choice.password.empty()) text += ";PWD=" + ConnectionString::QuoteValue(choice.password);
      return text;
    }
    case ConnectionWay::Text:
      return std::string(TrimWhite(choice.text));
  }
  return {};
}

}  // namespace zrqrybld
