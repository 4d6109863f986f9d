#include "zrqrybld/adapters/sqlite/sqlite_session.h"

#include "zrqrybld/adapters/sqlite/sqlite_types.h"
#include "zrqrybld/base/error.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_run.h"
#include "zrqrybld/platform/schema_fields.h"
#include "zrqrybld/platform/table_row_set.h"
#include "zrqrybld/platform/text_reading.h"

namespace zrqrybld::sqlite {
namespace {

// Parameter 1 of every query is the name of the one table wanted, or null for all of them. The cross
// joins fix the order of the loops: the pragma functions need the name of a table to work on. The list of
// tables could take the name as its argument, but it would cut it at a zero character and know SQLite's own
// table by another name than the one it lists.

constexpr std::string_view kTablesQuery = R"(
  SELECT name,
         CASE WHEN type = 'shadow' OR name LIKE 'sqlite\_%' ESCAPE '\' THEN 'SYSTEM TABLE'
              WHEN type = 'view' THEN 'VIEW'
              ELSE 'TABLE' END AS kind
  FROM pragma_table_list
  WHERE schema = 'main' AND (?1 IS NULL OR name = ?1 COLLATE NOCASE)
  ORDER BY kind, name COLLATE NOCASE, name)";

// Hidden 1 is a hidden column of a virtual table; 2 and 3 are generated columns.
constexpr std::string_view kColumnsQuery = R"(
  SELECT t.name, t.type, c.name, c.type, c."notnull", c.dflt_value, c.pk, c.hidden
  FROM pragma_table_list AS t CROSS JOIN pragma_table_xinfo(t.name, 'main') AS c
  WHERE t.schema = 'main' AND (?1 IS NULL OR t.name = ?1 COLLATE NOCASE) AND c.hidden <> 1
  ORDER BY t.name COLLATE NOCASE, t.name, c.cid)";

constexpr std::string_view kPrimaryKeysQuery = R"(
  SELECT t.name, c.name, c.pk
  FROM pragma_table_list AS t CROSS JOIN pragma_table_xinfo(t.name, 'main') AS c
  WHERE t.schema = 'main' AND (?1 IS NULL OR t.name = ?1 COLLATE NOCASE) AND t.type <> 'view' AND c.pk > 0
  ORDER BY t.name COLLATE NOCASE, t.name, c.pk)";

// SQLite numbers a table's foreign keys from the last declared to the first. Parent names stand as they
// were written in the reference, so the parent's own spelling is looked up. A key that names no columns
// is taken for the parent's primary key if that has as many columns as the key.
constexpr std::string_view kForeignKeysQuery = R"(
  WITH keys AS MATERIALIZED (
    SELECT t.name AS child, k.id AS id, k.seq AS seq, k."table" AS written, k."from" AS child_column, k."to" AS named,
           count(*) OVER (PARTITION BY t.name, k.id) AS width
    FROM pragma_table_list AS t CROSS JOIN pragma_foreign_key_list(t.name, 'main') AS k
    WHERE t.schema = 'main' AND (?1 IS NULL OR t.name = ?1 COLLATE NOCASE) AND t.type = 'table')
  SELECT coalesce(p.name, k.written),
         CASE WHEN k.named IS NOT NULL
              THEN coalesce((SELECT c.name FROM pragma_table_xinfo(k.written, 'main') AS c
                             WHERE c.name = k.named COLLATE NOCASE), k.named)
              WHEN k.width = (SELECT count(*) FROM pragma_table_xinfo(k.written, 'main') AS c WHERE c.pk > 0)
              THEN (SELECT c.name FROM pragma_table_xinfo(k.written, 'main') AS c WHERE c.pk = k.seq + 1)
         END AS parent_column,
         k.child, k.child_column, k.seq + 1
  FROM keys AS k LEFT JOIN sqlite_schema AS p ON p.name = k.written COLLATE NOCASE AND p.type IN ('table', 'view')
  WHERE parent_column IS NOT NULL
  ORDER BY k.child COLLATE NOCASE, k.child, k.id DESC, k.seq)";

Variant OrNull(std::optional<std::string> text) { return text ? Variant(std::move(*text)) : Variant::Null(); }
Variant OrNull(std::optional<std::int32_t> number) { return number ? Variant(*number) : Variant::Null(); }
Variant OrNull(std::string_view text) { return text.empty() ? Variant::Null() : Variant(text); }

// What SQLite tells about one column.
struct ColumnFacts {
  std::string name;
  std::string declaration;
  bool notNull;
  std::optional<std::string> defaultValue;
  std::int32_t keyPosition;  // 0 when it belongs to no primary key
  bool generated;
};

// The columns of one table, in order.
struct TableFacts {
  std::string name;
  bool isView = false;
  std::vector<ColumnFacts> columns;
};

// Whether the column is the table's row number under a name. SQLite does not call such a column NOT NULL,
// yet it never holds null.
bool IsRowNumber(const TableFacts& table, const ColumnFacts& column) {
  if (column.keyPosition == 0 || UpperAscii(column.declaration) != "INTEGER") return false;
  for (const ColumnFacts& other : table.columns) {
    if (&other != &column && other.keyPosition > 0) return false;
  }
  return true;
}

void AppendColumns(const TableFacts& table, std::vector<std::vector<Variant>>& rows) {
  std::int32_t ordinal = 0;
  for (const ColumnFacts& column : table.columns) {
    const DeclaredType declared = ReadDeclaredType(column.declaration);
    const bool nullable = !column.notNull && !IsRowNumber(table, column);
    std::int32_t flags = 0;
    if (!table.isView && !column.generated) flags |= ColumnWritable;
    if (declared.type->fixedLength) flags |= ColumnFixedLength;
    if (nullable) flags |= ColumnNullable | ColumnMaybeNull;
    if (declared.type->isLong) flags |= ColumnLong;
    rows.push_back({Variant::Null(), Variant::Null(), table.name, column.name, ++ordinal,
                    column.defaultValue.has_value(), OrNull(column.defaultValue), flags, nullable,
                    static_cast<std::int32_t>(declared.type->code), OrNull(declared.length), OrNull(declared.precision),
                    OrNull(declared.scale), Variant::Null()});
  }
}

std::vector<std::vector<Variant>> MakeLiterals() {
  const auto row = [](std::string_view name, std::string_view value) {
    return std::vector<Variant>{name, value, Variant::Null(), Variant::Null()};
  };
  // A quoted name may hold and begin with any character, so no character is invalid in a table's name.
  return {row("SCHEMA_SEPARATOR", "."),
          row("LIKE_PERCENT", "%"),
          row("LIKE_UNDERSCORE", "_"),
          row("QUOTE_PREFIX", "\""),
          row("QUOTE_SUFFIX", "\""),
          {"TABLE_NAME", Variant::Null(), "", ""},
          row(kTextReadingLiteral, WordsOf(*UsualReading("SQLite"))),
          row(kSourceNameLiteral, "SQLite"),
          row(kSourceVersionLiteral, sqlite3_libversion())};
}

bool IsGiven(const std::optional<std::string>& restriction) { return restriction && !restriction->empty(); }

// Whether the restrictions name a place that this provider has no tables in.
bool IsElsewhere(const SchemaRestrictions& restrictions) {
  return IsGiven(restrictions.catalog) || (IsGiven(restrictions.schema) && UpperAscii(*restrictions.schema) != "MAIN");
}

}  // namespace

std::unique_ptr<RowSet> SqliteSession::OpenSchema(SchemaKind kind, const SchemaRestrictions& restrictions) {
  const TableName table = IsGiven(restrictions.table) ? restrictions.table : std::nullopt;
  const auto read = [&](Reader reader) {
    return IsElsewhere(restrictions) ? Rows() : ReadSkippingBroken(reader, table);
  };
  switch (kind) {
    case SchemaKind::Tables:
      return std::make_unique<TableRowSet>(kTableFields, read(&SqliteSession::ReadTables));
    case SchemaKind::Columns:
      return std::make_unique<TableRowSet>(kColumnFields, read(&SqliteSession::ReadColumns));
    case SchemaKind::PrimaryKeys:
      return std::make_unique<TableRowSet>(kPrimaryKeyFields, read(&SqliteSession::ReadPrimaryKeys));
    case SchemaKind::ForeignKeys:
      return std::make_unique<TableRowSet>(kForeignKeyFields, read(&SqliteSession::ReadForeignKeys));
    case SchemaKind::ProviderTypes:
      return std::make_unique<TableRowSet>(kProviderTypeFields, MakeProviderTypes());
    case SchemaKind::Literals:
      return std::make_unique<TableRowSet>(kLiteralFields, MakeLiterals());
  }
  throw Error(ErrorSchemaNotSupported, text::SqliteHasNoSchema);
}

std::vector<std::string> SqliteSession::Keywords() const {
  std::vector<std::string> words;
  for (int i = 0; i < sqlite3_keyword_count(); ++i) {
    const char* word = nullptr;
    int length = 0;
    if (sqlite3_keyword_name(i, &word, &length) == SQLITE_OK) {
      words.emplace_back(word, static_cast<std::size_t>(length));
    }
  }
  return words;
}

// One query serves the whole source, but it fails as a whole when a single view refers to a table that is
// gone or a virtual table needs a module that is not there. Then the tables are read one by one.
SqliteSession::Rows SqliteSession::ReadSkippingBroken(Reader reader, const TableName& table) const {
  Rows rows;
  try {
    (this->*reader)(table, rows);
    return rows;
  } catch (const Error& error) {
    if (table || error.Number() != SQLITE_ERROR) throw;
  }
  rows.clear();
  Statement names(database_.get(),
                  "SELECT name FROM pragma_table_list WHERE schema = 'main' ORDER BY name COLLATE NOCASE, name");
  while (names.Step()) {
    const std::size_t before = rows.size();
    try {
      (this->*reader)(names.TextIf(0), rows);
    } catch (const Error& error) {
      if (error.Number() != SQLITE_ERROR) throw;
      rows.resize(before);
    }
  }
  return rows;
}

void SqliteSession::ReadTables(const TableName& table, Rows& rows) const {
  Statement query(database_.get(), kTablesQuery);
  query.Bind(1, table);
  while (query.Step()) {
    rows.push_back({Variant::Null(), Variant::Null(), query.Text(0), query.Text(1), Variant::Null()});
  }
}

void SqliteSession::ReadColumns(const TableName& table, Rows& rows) const {
  Statement query(database_.get(), kColumnsQuery);
  query.Bind(1, table);
  TableFacts current;
  while (query.Step()) {
    std::string name = query.Text(0);
    if (name != current.name) {
      AppendColumns(current, rows);
      current = {std::move(name), query.Text(1) == "view", {}};
    }
    current.columns.push_back({query.Text(2), query.Text(3), query.Integer(4) != 0, query.TextIf(5), query.Integer(6),
                               query.Integer(7) != 0});
  }
  AppendColumns(current, rows);
}

void SqliteSession::ReadPrimaryKeys(const TableName& table, Rows& rows) const {
  Statement query(database_.get(), kPrimaryKeysQuery);
  query.Bind(1, table);
  while (query.Step()) {
    rows.push_back({Variant::Null(), Variant::Null(), query.Text(0), query.Text(1), query.Integer(2), Variant::Null()});
  }
}

void SqliteSession::ReadForeignKeys(const TableName& table, Rows& rows) const {
  Statement query(database_.get(), kForeignKeysQuery);
  query.Bind(1, table);
  while (query.Step()) {
    rows.push_back({Variant::Null(), Variant::Null(), query.Text(0), query.Text(1), Variant::Null(), Variant::Null(),
                    query.Text(2), query.Text(3), query.Integer(4), Variant::Null()});
  }
}

SqliteSession::Rows SqliteSession::MakeProviderTypes() const {
  const std::int32_t longest = sqlite3_limit(database_.get(), SQLITE_LIMIT_LENGTH, -1);
  Rows rows;
  for (const ProviderType& type : ProviderTypes()) {
    rows.push_back({type.name, static_cast<std::int32_t>(type.code), type.size != 0 ? type.size : longest,
                    OrNull(type.prefix), OrNull(type.suffix), type.isLong});
  }
  return rows;
}

}  // namespace zrqrybld::sqlite
