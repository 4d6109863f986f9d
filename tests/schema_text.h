// What a source tells about its tables, as one text.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tests/data_table.h"
#include "zrqrybld/platform/database.h"
#include "zrqrybld/platform/provider.h"

namespace zrqrybld::test {

using Fields = std::vector<std::string_view>;

/// The rows as one text: the chosen fields with "|" between them, a line a row; "NULL" for Null.
std::string Dump(RowSet& rows, const Fields& fields);

/// The same of the rows that a session finds.
std::string Ask(Session& session, SchemaKind kind, const Fields& fields, const SchemaRestrictions& restrictions = {});

inline SchemaRestrictions Table(std::string name) { return {{}, {}, std::move(name)}; }

/// What a record asks: "ask" (a kind and the fields, blanks between), perhaps "catalog", "schema" and "table".
std::string Ask(Session& session, const Record& record);

/// The lines one by one, and sorted, without those of SQLite's own tables.
std::vector<std::string> Lines(const std::string& text);
std::string Sorted(const std::string& text);

}  // namespace zrqrybld::test
