#include "tests/schema_text.h"

#include <algorithm>
#include <map>
#include <sstream>

#include "zrqrybld/base/text.h"

namespace zrqrybld::test {

std::string Dump(RowSet& rows, const Fields& fields) {
  std::string text;
  for (; !rows.Eof(); rows.MoveNext()) {
    for (std::size_t i = 0; i < fields.size(); ++i) {
      const Variant value = rows.Value(fields[i]);
      text += (i > 0 ? "|" : "") + (value.IsNull() ? "NULL" : value.Text());
    }
    text += '\n';
  }
  return text;
}

std::string Ask(Session& session, SchemaKind kind, const Fields& fields, const SchemaRestrictions& restrictions) {
  return Dump(*session.OpenSchema(kind, restrictions), fields);
}

std::string Ask(Session& session, const Record& record) {
  static const std::map<std::string_view, SchemaKind> kKinds = {{"tables", SchemaKind::Tables},
                                                                {"columns", SchemaKind::Columns},
                                                                {"primary", SchemaKind::PrimaryKeys},
                                                                {"foreign", SchemaKind::ForeignKeys},
                                                                {"literals", SchemaKind::Literals}};
  Fields words = Split(record["ask"], " ");
  const SchemaKind kind = kKinds.at(words.front());
  words.erase(words.begin());
  const auto restriction = [&](std::string_view name) {
    return record.Has(name) ? std::optional(record[name]) : std::nullopt;
  };
  return Ask(session, kind, words, {restriction("catalog"), restriction("schema"), restriction("table")});
}

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

std::string Sorted(const std::string& text) {
  std::vector<std::string> lines = Lines(text);
  std::erase_if(lines, [](const std::string& line) { return line.find("sqlite_") != std::string::npos; });
  std::ranges::sort(lines);
  std::string sorted;
  for (const std::string& line : lines) sorted += line + "\n";
  return sorted;
}

}  // namespace zrqrybld::test
