// What an entity's table is called in the data source.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "zrqrybld/base/export.h"
#include "zrqrybld/diagram/entity.h"
#include "zrqrybld/host/foreign_keys.h"
#include "zrqrybld/sql/names.h"

namespace zrqrybld {

/// Properties with this prefix and a field's name hold what the source told about the table.
inline constexpr std::string_view kSchemaFactPrefix = "_ADO_SCHEMA_";

/// A table's name with the schema in front, as lists show it; the name alone where the source has no schemas.
std::string QualifiedText(const std::string& schema, const std::string& name, const NameRules& rules);

/// The parts of the name as the entity's `TagVariant` gives it. A name that the source knows whole is
/// one part, even when it holds the schema separator; one that is the source's schema and name is those two, whatever
/// stands in them.
std::vector<Identifier> WrittenName(const qbEntity& entity, const NameRules& rules);

/// The name with the schema in front that the source told when it has none: of the entity, or of a `WrittenName` of it.
std::vector<Identifier> SourceName(const qbEntity& entity, const NameRules& rules);
std::vector<Identifier> SourceName(const qbEntity& entity, std::vector<Identifier> writtenName);

/// The table as the source's own rows name it, in whatever spelling, and with whatever schema, it was asked for. What
/// the source told counts, as long as the entity's `TagVariant` still means that table.
ZRQRYBLD_API SourceTableName TableInSource(const qbEntity& entity, const NameRules& rules);

/// The table, or query, that an entity shows under another name: what its caption is an alias of; "" for a caption that
/// is the table's name, and for tables that no source has told about.
std::string AliasedTable(const qbEntity& entity);

/// How many bytes at the beginning of the caption say the table's schema, its separator included; 0 where the caption
/// is not the name that the source knows.
std::size_t SchemaBytesOf(const qbEntity& entity);

}  // namespace zrqrybld
