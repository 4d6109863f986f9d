#include "diagram/source_names.h"

namespace zrqrybld {
namespace {

std::string Fact(const qbEntity& entity, std::string_view field) {
  return entity.Properties()->FindText(std::string(kSchemaFactPrefix) + std::string(field)).value_or("");
}

}  // namespace

std::string QualifiedText(const std::string& schema, const std::string& name, const NameRules& rules) {
  if (schema.empty() || rules.schemaSeparator.empty()) return name;
  return schema + rules.schemaSeparator + name;
}

std::vector<Identifier> WrittenName(const qbEntity& entity, const NameRules& rules) {
  std::string tag = entity.TagVariant().Text();
  if (tag == Fact(entity, "TABLE_NAME")) return {Identifier(std::move(tag))};
  return SplitName(tag, rules);
}

std::vector<Identifier> SourceName(const qbEntity& entity, const NameRules& rules) {
  std::vector<Identifier> parts = WrittenName(entity, rules);
  std::string schema = Fact(entity, "TABLE_SCHEMA");
  if (parts.size() == 1 && !schema.empty()) parts.insert(parts.begin(), Identifier(std::move(schema)));
  return parts;
}

std::size_t SchemaBytesOf(const qbEntity& entity) {
  const std::string schema = Fact(entity, "TABLE_SCHEMA");
  if (schema.empty()) return 0;
  const std::string name = Fact(entity, "TABLE_NAME");
  const std::string caption = entity.Caption();
  if (!caption.ends_with(name) || caption.size() <= name.size() + schema.size()) return 0;
  const std::size_t bytes = caption.size() - name.size();
  return caption.substr(0, bytes).find(schema) == std::string::npos ? 0 : bytes;
}

}  // namespace zrqrybld
