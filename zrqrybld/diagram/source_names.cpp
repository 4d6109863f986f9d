#include "zrqrybld/diagram/source_names.h"

#include "zrqrybld/base/text.h"

namespace zrqrybld {
namespace {

constexpr std::string_view kTableName = "_ADO_SCHEMA_TABLE_NAME";
constexpr std::string_view kTableSchema = "_ADO_SCHEMA_TABLE_SCHEMA";
static_assert(kTableName.starts_with(kSchemaFactPrefix) && kTableSchema.starts_with(kSchemaFactPrefix));

// What the source says of the table; "" when it does not.
const std::string& Fact(const qbEntity& entity, std::string_view key) {
  static const std::string kNothing;
  const Variant* fact = entity.Properties()->Find(key);
  const std::string* text = fact ? fact->StringIf() : nullptr;
  return text ? *text : kNothing;
}

}  // namespace

std::string QualifiedText(const std::string& schema, const std::string& name, const NameRules& rules) {
  if (schema.empty() || rules.schemaSeparator.empty()) return name;
  return schema + rules.schemaSeparator + name;
}

std::vector<Identifier> WrittenName(const qbEntity& entity, const NameRules& rules) {
  std::string tag = entity.TagVariant().Text();
  const std::string& name = Fact(entity, kTableName);
  const std::string& schema = Fact(entity, kTableSchema);
  if (tag == name) return {Identifier(std::move(tag))};
  if (!schema.empty() && tag == QualifiedText(schema, name, rules)) return {Identifier(schema), Identifier(name)};
  return SplitName(tag, rules);
}

std::vector<Identifier> SourceName(const qbEntity& entity, const NameRules& rules) {
  return SourceName(entity, WrittenName(entity, rules));
}

std::vector<Identifier> SourceName(const qbEntity& entity, std::vector<Identifier> writtenName) {
  const std::string& schema = Fact(entity, kTableSchema);
  if (writtenName.size() == 1 && !schema.empty()) writtenName.insert(writtenName.begin(), Identifier(schema));
  return writtenName;
}

SourceTableName TableInSource(const qbEntity& entity, const NameRules& rules) {
  const std::vector<Identifier> parts = SourceName(entity, rules);
  SourceTableName asked{parts.size() > 1 ? parts[parts.size() - 2].Name() : std::string(), parts.back().Name()};
  const SourceTableName told{Fact(entity, kTableSchema), Fact(entity, kTableName)};
  // A source without schemas tells none, but may take one.
  const bool same =
      EqualsNoCase(told.table, asked.table) && (told.schema.empty() || EqualsNoCase(told.schema, asked.schema));
  return same && !told.table.empty() ? told : asked;
}

std::size_t SchemaBytesOf(const qbEntity& entity) {
  const std::string& schema = Fact(entity, kTableSchema);
  if (schema.empty()) return 0;
  const std::string& name = Fact(entity, kTableName);
  const std::string& caption = entity.Caption();
  if (!caption.ends_with(name) || caption.size() <= name.size() + schema.size()) return 0;
  const std::size_t bytes = caption.size() - name.size();
  return caption.substr(0, bytes).find(schema) == std::string::npos ? 0 : bytes;
}

std::string AliasedTable(const qbEntity& entity) {
  const std::string* tag = entity.TagVariant().StringIf();
  const std::string& caption = entity.Caption();
  if (!tag || tag->empty() || *tag == caption) return {};
  if (entity.EntityBox() && entity.EntityBox()->IsQuery()) return *tag;
  const std::string& table = Fact(entity, kTableName);
  return table == caption ? std::string() : table;
}

}  // namespace zrqrybld
