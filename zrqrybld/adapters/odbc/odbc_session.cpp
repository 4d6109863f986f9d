#include "zrqrybld/adapters/odbc/odbc_session.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <tuple>
#include <utility>

#include "zrqrybld/adapters/odbc/catalog_rows.h"
#include "zrqrybld/adapters/odbc/odbc_text.h"
#include "zrqrybld/adapters/odbc/odbc_types.h"
#include "zrqrybld/base/error.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_run.h"
#include "zrqrybld/platform/schema_fields.h"
#include "zrqrybld/platform/table_row_set.h"

namespace zrqrybld::odbc {
namespace {

Variant OrNull(std::optional<std::string> text) {
  return text && !text->empty() ? Variant(std::move(*text)) : Variant::Null();
}
Variant OrNull(std::optional<std::int32_t> number) { return number ? Variant(*number) : Variant::Null(); }

bool IsGiven(const std::optional<std::string>& restriction) { return restriction && !restriction->empty(); }
std::optional<std::string> Given(const std::optional<std::string>& restriction) {
  return IsGiven(restriction) ? restriction : std::nullopt;
}

// An argument of a catalogue function: a text, or none. An empty text would mean "those without", not "any".
class Argument {
 public:
  explicit Argument(const std::optional<std::string>& value)
      : given_(IsGiven(value)), text_(given_ ? ToUtf16(*value) : std::u16string()) {}

  SQLWCHAR* Text() { return given_ ? Wide(text_) : nullptr; }
  // The text ends at its zero: a driver manager that hands on other bytes than it got may leave the length as it was,
  // and cut names beyond ASCII.
  SQLSMALLINT Length() const { return given_ ? SQL_NTS : 0; }

 private:
  bool given_;
  std::u16string text_;
};

// Attributes of ODBC are numbers in the place of pointers.
SQLPOINTER Seconds(std::uintptr_t count) { return reinterpret_cast<SQLPOINTER>(count); }

// A statement that the server ends by itself where its driver can tell it so: nobody waits for the answer any longer.
class Question : public Statement {
 public:
  explicit Question(const DriverConnection& connection) : Statement(connection) {
    SQLSetStmtAttrW(Get(), SQL_ATTR_QUERY_TIMEOUT, Seconds(kPatienceSeconds), SQL_IS_UINTEGER);
  }
};

// No source has names anywhere near this, and the length of an argument is a 16-bit number.
constexpr std::size_t kLongestName = 8000;

bool CanBeName(const std::optional<std::string>& text) {
  return !text || (text->size() <= kLongestName && text->find('\0') == std::string::npos);
}

// Of the elements those whose name is `wanted`: exactly where there is one, otherwise without regard to case.
template <class Element, class Name>
void KeepMatching(std::vector<Element>& elements, const std::optional<std::string>& wanted, Name name) {
  if (!wanted) return;
  const bool exact = std::ranges::any_of(elements, [&](const Element& e) { return name(e) == *wanted; });
  std::erase_if(elements,
                [&](const Element& e) { return exact ? name(e) != *wanted : !EqualsNoCase(name(e), *wanted); });
}

struct TypeWord {
  std::string_view driver;
  std::string_view type;
};

// Words of drivers for what counts as a table or a view here.
constexpr TypeWord kTypeWords[] = {
    {"BASE TABLE", "TABLE"},       {"FOREIGN TABLE", "TABLE"}, {"PARTITIONED TABLE", "TABLE"},
    {"SYSTEM VERSIONED", "TABLE"}, {"MATVIEW", "VIEW"},        {"MATERIALIZED VIEW", "VIEW"},
};

// Schemas, or databases, in which servers keep their own tables.
constexpr std::string_view kSystemSchemas[] = {"information_schema", "pg_catalog", "pg_toast", "sys", "mysql",
                                               "performance_schema"};

// How servers read bytes from hexadecimal figures, where their drivers tell only the quotes, or a number's prefix.
struct ByteQuotes {
  std::string_view server;  // within its name
  std::string_view prefix;
  std::string_view suffix = "'";
};
constexpr ByteQuotes kByteQuotes[] = {{"postgresql", R"('\x)"}, {"mariadb", "X'"}, {"mysql", "X'"}, {"sqlite", "X'"}};

constexpr std::string_view kUpperLetters = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";
constexpr std::string_view kLowerLetters = "abcdefghijklmnopqrstuvwxyz";

}  // namespace

// --- What the source is like ---

OdbcSession::OdbcSession(const std::string& connectionString, Secrets secrets)
    : connection_(connectionString, std::move(secrets)) {
  // For this session only: rows may be waited for. It does not matter to a driver that does not know it.
  SQLSetConnectAttrW(connection_.Get(), SQL_ATTR_CONNECTION_TIMEOUT, Seconds(kPatienceSeconds), SQL_IS_UINTEGER);
  facts_.quote = connection_.InfoText(SQL_IDENTIFIER_QUOTE_CHAR);
  facts_.catalogSeparator = connection_.InfoText(SQL_CATALOG_NAME_SEPARATOR);
  facts_.patternEscape = connection_.InfoText(SQL_SEARCH_PATTERN_ESCAPE);
  facts_.identifierCase = connection_.InfoShort(SQL_IDENTIFIER_CASE);
  facts_.hasCatalogs = UpperAscii(connection_.InfoText(SQL_CATALOG_NAME)) == "Y";
  facts_.hasSchemas = connection_.InfoNumber(SQL_SCHEMA_USAGE) != 0;
  const std::string server = connection_.InfoText(SQL_DBMS_NAME);
  facts_.isSqlite = FindNoCase(server, "sqlite") != std::string::npos;
  for (const ByteQuotes& quotes : kByteQuotes) {
    if (FindNoCase(server, quotes.server) != std::string::npos) facts_.byteQuotes.emplace(quotes.prefix, quotes.suffix);
  }
  facts_.reading = AskReading(server);
  // The backslash before the bytes is an escape in one mode of a server; in these literals it is one in each.
  const bool escapes = facts_.reading && facts_.reading->backslashEscapes && facts_.reading->escapeLiterals;
  if (escapes && facts_.byteQuotes) facts_.byteQuotes->first = R"((E'\\x)";
}

// The first value of the answer; none when there is no answer.
std::optional<std::string> OdbcSession::Ask(std::string_view question) const {
  constexpr CatalogField kFields[] = {{1, FieldKind::Text}};
  try {
    const Statement statement(connection_);
    std::u16string text = ToUtf16(question);
    statement.Check(SQLExecDirectW(statement.Get(), Wide(text), static_cast<SQLINTEGER>(text.size())));
    CatalogRows rows(statement, kFields);
    return rows.Next() ? rows.Text(0) : std::nullopt;
  } catch (const Error&) {
    return std::nullopt;
  }
}

// How the server reads literals in the mode that this connection is in. What does not answer is not known.
std::optional<TextReading> OdbcSession::AskReading(std::string_view server) const {
  const SourceFamily family = FamilyOf(server);
  if (!HasModes(family)) return UsualReading(server);
  const bool isPostgreSql = family == SourceFamily::PostgreSql;
  const std::optional<std::string> mode = Ask(isPostgreSql ? "SHOW standard_conforming_strings" : "SELECT @@sql_mode");
  return mode ? ReadingInMode(family, *mode) : std::nullopt;
}

std::unique_ptr<RowSet> OdbcSession::OpenSchema(SchemaKind kind, const SchemaRestrictions& restrictions) {
  const std::optional<Scope> scope = ScopeOf(restrictions);
  const auto read = [&](auto reader) { return scope ? (this->*reader)(*scope) : Rows(); };
  switch (kind) {
    case SchemaKind::Tables:
      return std::make_unique<TableRowSet>(kTableFields, read(&OdbcSession::ReadTables));
    case SchemaKind::Columns:
      return std::make_unique<TableRowSet>(kColumnFields, read(&OdbcSession::ReadColumns));
    case SchemaKind::PrimaryKeys:
      return std::make_unique<TableRowSet>(kPrimaryKeyFields, read(&OdbcSession::ReadPrimaryKeys));
    case SchemaKind::ForeignKeys:
      return std::make_unique<TableRowSet>(kForeignKeyFields, read(&OdbcSession::ReadForeignKeys));
    case SchemaKind::ProviderTypes:
      return std::make_unique<TableRowSet>(kProviderTypeFields, ReadProviderTypes());
    case SchemaKind::Literals:
      return std::make_unique<TableRowSet>(kLiteralFields, MakeLiterals());
  }
  throw Error(ErrorSchemaNotSupported, text::OdbcHasNoSchema);
}

// A driver tells only the words that ODBC itself does not name.
std::vector<std::string> OdbcSession::Keywords() const {
  std::vector<std::string> words;
  const std::string own = connection_.InfoText(SQL_KEYWORDS);
  for (const std::string_view list : {std::string_view(SQL_ODBC_KEYWORDS), std::string_view(own)}) {
    for (const std::string_view word : Split(list, ",")) {
      if (!TrimWhite(word).empty()) words.emplace_back(TrimWhite(word));
    }
  }
  return words;
}

// None when nothing can be there.
std::optional<OdbcSession::Scope> OdbcSession::ScopeOf(const SchemaRestrictions& restrictions) const {
  for (const auto& name : {restrictions.catalog, restrictions.schema, restrictions.table}) {
    if (!CanBeName(name)) return std::nullopt;
  }
  Scope scope{Given(restrictions.catalog), Given(restrictions.schema), Given(restrictions.table)};
  if (facts_.hasSchemas) {
    if (scope.catalog && !facts_.hasCatalogs) return std::nullopt;
    return scope;
  }
  if (scope.catalog) return std::nullopt;
  if (DatabaseIsSchema()) {
    scope.catalog = scope.schema ? scope.schema : Given(connection_.CurrentCatalog());
  } else if (scope.schema && UpperAscii(*scope.schema) != "MAIN") {
    return std::nullopt;
  }
  scope.schema.reset();
  return scope;
}

// The name as an argument that is a pattern. It may match more than the name, which is why answers are compared again:
// drivers do not agree how the escape character itself is escaped, and not every server compares its names with
// characters beyond the first 65536.
std::string OdbcSession::Pattern(std::string_view name) const {
  const std::string& escape = facts_.patternEscape;
  constexpr std::string_view kAnyCharacter = "_";
  std::string pattern;
  for (std::size_t i = 0; i < name.size();) {
    const std::size_t start = i;
    const bool beyond = DecodeUtf8(name, i) > 0xFFFF;
    const std::string_view character = name.substr(start, i - start);
    if (beyond || (!escape.empty() && character == escape)) {
      pattern += kAnyCharacter;
    } else {
      if (character == "%" || character == "_") pattern += escape;
      pattern += character;
    }
  }
  return pattern;
}

std::string OdbcSession::TypeOf(const Table& table, const std::string& type) const {
  const std::string upper = UpperAscii(type);
  const std::optional<std::string>& place = DatabaseIsSchema() ? table.catalog : table.schema;
  const bool ownSchema = place && std::ranges::any_of(kSystemSchemas, [&](std::string_view schema) {
                           return EqualsNoCase(*place, schema);
                         });
  const bool ownName = facts_.isSqlite && StartsWithNoCase(table.name, "sqlite_");
  if (ownSchema || ownName) return "SYSTEM TABLE";
  const auto* word = std::ranges::find(kTypeWords, upper, &TypeWord::driver);
  return word != std::end(kTypeWords) ? std::string(word->type) : upper;
}

Variant OdbcSession::CatalogOf(const Table& table) const {
  return facts_.hasSchemas ? OrNull(table.catalog) : Variant::Null();
}

Variant OdbcSession::SchemaOf(const Table& table) const {
  if (facts_.hasSchemas) return OrNull(table.schema);
  return DatabaseIsSchema() ? OrNull(table.catalog) : Variant::Null();
}

// --- Tables ---

std::vector<OdbcSession::Table> OdbcSession::AskTables(const Scope& scope, bool anySchema) const {
  constexpr CatalogField kFields[] = {
      {1, FieldKind::Name}, {2, FieldKind::Name}, {3, FieldKind::Name}, {4, FieldKind::Name}, {5, FieldKind::Name}};
  const auto pattern = [&](const std::optional<std::string>& name) {
    return name ? std::optional(Pattern(*name)) : std::nullopt;
  };
  Argument catalog(pattern(scope.catalog));
  Argument schema(scope.schema || !anySchema ? pattern(scope.schema) : std::optional<std::string>("%"));
  Argument name(pattern(scope.table));
  const Question statement(connection_);
  statement.Check(SQLTablesW(statement.Get(), catalog.Text(), catalog.Length(), schema.Text(), schema.Length(),
                             name.Text(), name.Length(), nullptr, 0));
  std::vector<Table> tables;
  CatalogRows rows(statement, kFields);
  while (rows.Next()) {
    Table table{Given(rows.Text(0)), Given(rows.Text(1)), rows.Text(2).value_or(""), {}, rows.Text(4)};
    table.type = TypeOf(table, rows.Text(3).value_or(""));
    tables.push_back(std::move(table));
  }
  KeepMatching(tables, scope.catalog, [](const Table& t) { return t.catalog.value_or(""); });
  KeepMatching(tables, scope.schema, [](const Table& t) { return t.schema.value_or(""); });
  KeepMatching(tables, scope.table, [](const Table& t) { return t.name; });
  return tables;
}

// Asked without a schema, some drivers answer as the source itself understands such a name, which is what is
// wanted for one table, but not for all of them.
std::vector<OdbcSession::Table> OdbcSession::ListTables(const Scope& scope) const {
  const bool schemaMatters = facts_.hasSchemas && !scope.schema;
  if (!schemaMatters) return AskTables(scope, false);
  if (!scope.table) return AskTables(scope, true);
  std::vector<Table> tables = AskTables(scope, false);
  if (tables.empty()) tables = AskTables(scope, true);
  if (!tables.empty()) {
    const auto place = std::pair(tables.front().catalog, tables.front().schema);
    std::erase_if(tables, [&](const Table& table) { return std::pair(table.catalog, table.schema) != place; });
  }
  return tables;
}

OdbcSession::Rows OdbcSession::ReadTables(const Scope& scope) const {
  std::vector<Table> tables = ListTables(scope);
  std::ranges::sort(tables, {}, [](const Table& table) {
    return std::tuple(table.type, table.schema, FoldCase(table.name), table.name);
  });
  Rows rows;
  for (Table& table : tables) {
    rows.push_back({CatalogOf(table), SchemaOf(table), table.name, table.type, OrNull(table.remarks)});
  }
  return rows;
}

// --- Columns ---

OdbcSession::Rows OdbcSession::ReadColumns(const Scope& scope) const {
  Rows rows;
  if (!scope.table) {
    // That argument is no pattern and reaches the server as it is: it must be a name that exists.
    const bool otherDatabase = DatabaseIsSchema() && scope.catalog && *scope.catalog != connection_.CurrentCatalog();
    if (otherDatabase && ListTables(scope).empty()) return rows;
    AskColumns(scope, nullptr, rows);
    if (facts_.hasSchemas) KeepListedTables(scope, rows);
    return rows;
  }
  for (const Table& table : ListTables(scope)) AskColumns({table.catalog, table.schema, table.name}, &table, rows);
  return rows;
}

// Asked for everything, one driver also tells the columns of indexes and of the server's own tables.
void OdbcSession::KeepListedTables(const Scope& scope, Rows& rows) const {
  std::set<std::pair<std::string, std::string>> listed;
  for (const Table& table : ListTables(scope)) listed.emplace(table.schema.value_or(""), table.name);
  std::erase_if(rows, [&](const std::vector<Variant>& row) {
    return !listed.contains({row[1].Text(), row[2].Text()});
  });
}

// The columns of one table, or in one question those of all tables within the scope.
void OdbcSession::AskColumns(const Scope& scope, const Table* only, Rows& rows) const {
  enum Field { Catalog, Schema, Name, Column, Type, Size, Digits, Nullable, Remarks, Default, Position };
  constexpr CatalogField kFields[] = {{1, FieldKind::Name},    {2, FieldKind::Name},     {3, FieldKind::Name},
                                      {4, FieldKind::Name},    {5, FieldKind::Integer},  {7, FieldKind::Integer},
                                      {9, FieldKind::Integer}, {11, FieldKind::Integer}, {12, FieldKind::Name},
                                      {13, FieldKind::Text},   {17, FieldKind::Integer}};
  struct Found {
    Table table;
    std::int32_t position;
    std::vector<Variant> row;
  };
  Argument catalog(scope.catalog);  // the only argument that is no pattern
  Argument schema(scope.schema ? Pattern(*scope.schema) : std::optional<std::string>(facts_.hasSchemas ? "%" : ""));
  Argument name(scope.table ? std::optional(Pattern(*scope.table)) : std::optional<std::string>("%"));
  const Question statement(connection_);
  statement.Check(SQLColumnsW(statement.Get(), catalog.Text(), catalog.Length(), schema.Text(), schema.Length(),
                              name.Text(), name.Length(), nullptr, 0));
  std::vector<Found> found;
  CatalogRows answer(statement, kFields);
  while (answer.Next()) {
    Table table{Given(answer.Text(Catalog)), Given(answer.Text(Schema)), answer.Text(Name).value_or(""), {}, {}};
    if (only && table.name != only->name) continue;  // another name that the driver's pattern matches
    const TypeFacts& type = FactsOf(answer.Integer(Type).value_or(SQL_WVARCHAR));
    const std::int32_t nullable = answer.Integer(Nullable).value_or(SQL_NULLABLE_UNKNOWN);
    std::int32_t flags = 0;
    if (type.fixedLength) flags |= ColumnFixedLength;
    if (nullable == SQL_NULLABLE) flags |= ColumnNullable;
    if (nullable != SQL_NO_NULLS) flags |= ColumnMaybeNull;
    if (type.isLong) flags |= ColumnLong;
    const std::optional<std::int32_t> size = answer.Integer(Size);
    std::optional<std::string> defaultText = answer.Text(Default);
    const bool hasDefault = defaultText && *defaultText != "NULL";  // the word stands for no default as well
    if (!hasDefault) defaultText.reset();
    const Variant catalogValue = CatalogOf(table);
    const Variant schemaValue = SchemaOf(table);
    std::vector<Variant> row = {catalogValue,
                                schemaValue,
                                table.name,
                                answer.Text(Column).value_or(""),
                                Variant::Null(),  // counted below
                                hasDefault,
                                defaultText ? Variant(std::move(*defaultText)) : Variant::Null(),
                                flags,
                                nullable != SQL_NO_NULLS,
                                static_cast<std::int32_t>(CodeOf(type, false)),
                                type.hasLength && size && *size > 0 ? Variant(*size) : Variant::Null(),
                                type.hasPrecision ? OrNull(size) : Variant::Null(),
                                type.hasPrecision ? OrNull(answer.Integer(Digits)) : Variant::Null(),
                                OrNull(answer.Text(Remarks))};
    const std::int32_t position = answer.Integer(Position).value_or(static_cast<std::int32_t>(found.size()));
    found.push_back({std::move(table), position, std::move(row)});
  }
  std::ranges::stable_sort(
      found, {}, [](const Found& f) { return std::tie(f.table.catalog, f.table.schema, f.table.name, f.position); });
  // A driver's positions have gaps where columns were dropped.
  std::int32_t ordinal = 0;
  const Table* before = nullptr;
  for (Found& f : found) {
    const auto place = [](const Table& t) { return std::tie(t.catalog, t.schema, t.name); };
    ordinal = before && place(*before) == place(f.table) ? ordinal + 1 : 1;
    before = &f.table;
    f.row[4] = ordinal;
    rows.push_back(std::move(f.row));
  }
}

// --- Keys ---

// The one table asked for, or all that can have keys.
std::vector<OdbcSession::Table> OdbcSession::TablesWithKeys(const Scope& scope) const {
  std::vector<Table> tables = ListTables(scope);
  std::erase_if(tables, [&](const Table& table) { return !scope.table && table.type != "TABLE"; });
  return tables;
}

std::vector<OdbcSession::KeyColumn> OdbcSession::AskPrimaryKey(const Table& table) const {
  constexpr CatalogField kFields[] = {
      {3, FieldKind::Name}, {4, FieldKind::Name}, {5, FieldKind::Integer}, {6, FieldKind::Name}};
  Argument catalog(table.catalog);
  Argument schema(table.schema);
  Argument name(table.name);
  const Question statement(connection_);
  statement.Check(SQLPrimaryKeysW(statement.Get(), catalog.Text(), catalog.Length(), schema.Text(), schema.Length(),
                                  name.Text(), name.Length()));
  std::vector<KeyColumn> keys;
  CatalogRows answer(statement, kFields);
  while (answer.Next()) {
    if (answer.Text(0) != table.name) continue;
    const auto next = static_cast<std::int32_t>(keys.size()) + 1;
    keys.push_back({{}, {}, answer.Text(1).value_or(""), answer.Integer(2).value_or(next), Given(answer.Text(3))});
  }
  std::ranges::stable_sort(keys, {}, &KeyColumn::ordinal);
  return keys;
}

OdbcSession::Rows OdbcSession::ReadPrimaryKeys(const Scope& scope) const {
  Rows rows;
  for (const Table& table : TablesWithKeys(scope)) {
    for (KeyColumn& key : AskPrimaryKey(table)) {
      rows.push_back({CatalogOf(table), SchemaOf(table), table.name, key.column, key.ordinal, OrNull(key.name)});
    }
  }
  return rows;
}

std::vector<OdbcSession::KeyColumn> OdbcSession::AskForeignKeys(const Table& table) const {
  enum Field { ParentCatalog, ParentSchema, ParentName, ParentColumn, Name, Column, Sequence, KeyName };
  constexpr CatalogField kFields[] = {{1, FieldKind::Name},    {2, FieldKind::Name}, {3, FieldKind::Name},
                                      {4, FieldKind::Name},    {7, FieldKind::Name}, {8, FieldKind::Name},
                                      {9, FieldKind::Integer}, {12, FieldKind::Name}};
  Argument catalog(table.catalog);
  Argument schema(table.schema);
  Argument name(table.name);
  const Question statement(connection_);
  statement.Check(SQLForeignKeysW(statement.Get(), nullptr, 0, nullptr, 0, nullptr, 0, catalog.Text(), catalog.Length(),
                                  schema.Text(), schema.Length(), name.Text(), name.Length()));
  std::vector<KeyColumn> keys;
  CatalogRows answer(statement, kFields);
  while (answer.Next()) {
    if (answer.Text(Name) != table.name) continue;
    Table parent{Given(answer.Text(ParentCatalog)),
                 Given(answer.Text(ParentSchema)),
                 answer.Text(ParentName).value_or(""),
                 {},
                 {}};
    keys.push_back({std::move(parent), Given(answer.Text(ParentColumn)), answer.Text(Column).value_or(""),
                    answer.Integer(Sequence).value_or(1), Given(answer.Text(KeyName))});
  }
  // The standard order mixes the columns of several keys to one parent.
  std::ranges::stable_sort(keys, {}, &KeyColumn::name);
  return keys;
}

// A reference may leave the parent's columns to its primary key.
void OdbcSession::CompleteParents(std::vector<KeyColumn>& keys) const {
  for (std::size_t i = 0; i < keys.size(); ++i) {
    KeyColumn& key = keys[i];
    if (key.parentColumn || key.ordinal != 1) continue;
    if (i + 1 < keys.size() && keys[i + 1].ordinal > 1) continue;
    const std::vector<Table> parents = ListTables({key.parent.catalog, key.parent.schema, key.parent.name});
    if (parents.empty()) continue;
    const std::vector<KeyColumn> parentKey = AskPrimaryKey(parents.front());
    if (parentKey.size() == 1) key.parentColumn = parentKey.front().column;
  }
  std::erase_if(keys, [](const KeyColumn& key) { return !key.parentColumn; });
}

OdbcSession::Rows OdbcSession::ReadForeignKeys(const Scope& scope) const {
  Rows rows;
  for (const Table& table : TablesWithKeys(scope)) {
    std::vector<KeyColumn> keys = AskForeignKeys(table);
    CompleteParents(keys);
    for (KeyColumn& key : keys) {
      rows.push_back({CatalogOf(key.parent), SchemaOf(key.parent), key.parent.name, OrNull(key.parentColumn),
                      CatalogOf(table), SchemaOf(table), table.name, key.column, key.ordinal, OrNull(key.name)});
    }
  }
  return rows;
}

// --- Types and literals ---

OdbcSession::Rows OdbcSession::ReadProviderTypes() const {
  enum Field { Name, Type, Size, Prefix, Suffix, Unsigned };
  constexpr CatalogField kFields[] = {{1, FieldKind::Name}, {2, FieldKind::Integer}, {3, FieldKind::Integer},
                                      {4, FieldKind::Name}, {5, FieldKind::Name},    {10, FieldKind::Integer}};
  const Question statement(connection_);
  statement.Check(SQLGetTypeInfoW(statement.Get(), SQL_ALL_TYPES));
  Rows rows;
  CatalogRows answer(statement, kFields);
  while (answer.Next()) {
    const TypeFacts& type = FactsOf(answer.Integer(Type).value_or(SQL_WVARCHAR));
    const DataTypeCode code = CodeOf(type, answer.Integer(Unsigned).value_or(SQL_FALSE) == SQL_TRUE);
    const bool ownQuotes = facts_.byteQuotes && ValueKindOf(static_cast<std::int32_t>(code)) == ValueKind::Binary;
    const auto prefix = ownQuotes ? facts_.byteQuotes->first : answer.Text(Prefix);
    const auto suffix = ownQuotes ? facts_.byteQuotes->second : answer.Text(Suffix);
    rows.push_back({answer.Text(Name).value_or(""), static_cast<std::int32_t>(code), OrNull(answer.Integer(Size)),
                    OrNull(prefix), OrNull(suffix), type.isLong});
  }
  // The type that one driver gives to a blob's column, but does not list.
  if (facts_.isSqlite) {
    rows.push_back({"blob", static_cast<std::int32_t>(DataTypeCode::Binary), Variant::Null(),
                    OrNull(facts_.byteQuotes->first), OrNull(facts_.byteQuotes->second), false});
  }
  return rows;
}

OdbcSession::Rows OdbcSession::MakeLiterals() const {
  const auto row = [](std::string_view name, std::string_view value) {
    return std::vector<Variant>{name, value, Variant::Null(), Variant::Null()};
  };
  const bool ownSeparator = DatabaseIsSchema() && !facts_.catalogSeparator.empty();
  Rows rows = {row("SCHEMA_SEPARATOR", ownSeparator ? facts_.catalogSeparator : "."), row("LIKE_PERCENT", "%"),
               row("LIKE_UNDERSCORE", "_")};
  // A blank says that the source has no quotes at all.
  if (const std::string_view quote = Trim(facts_.quote); !quote.empty()) {
    rows.push_back(row("QUOTE_PREFIX", quote));
    rows.push_back(row("QUOTE_SUFFIX", quote == "[" ? "]" : quote));
  }
  // A source that folds names finds those with letters of the other case only in quotes. Everything else that needs
  // quotes needs them in every source.
  std::string_view folded;
  if (facts_.identifierCase == SQL_IC_LOWER) folded = kUpperLetters;
  if (facts_.identifierCase == SQL_IC_UPPER) folded = kLowerLetters;
  rows.push_back({"TABLE_NAME", Variant::Null(), folded, ""});
  if (facts_.reading) rows.push_back(row(kTextReadingLiteral, WordsOf(*facts_.reading)));
  rows.push_back(row(kSourceNameLiteral, connection_.InfoText(SQL_DBMS_NAME)));
  rows.push_back(row(kSourceVersionLiteral, connection_.InfoText(SQL_DBMS_VER)));
  return rows;
}

}  // namespace zrqrybld::odbc
