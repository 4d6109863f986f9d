// The fields that texts of the grid name: as somebody types them, in the diagram's own spelling.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/host/data_types.h"
#include "zrqrybld/sql/names.h"
#include "zrqrybld/sql/query_snapshot.h"

namespace zrqrybld {

/// A table's caption and the text of one of its columns, as the diagram writes them.
struct FieldName {
  std::string table;
  std::string column;
};

/// The column with exactly this text, or nothing.
Ref<qbEntityItem> FindItemExactly(const qbEntity& entity, const std::string& text);

/// The table that a typed text names: by its caption, exactly first, then without regard to case, quotes taken off.
Ref<qbEntity> FindTypedTable(const qbEntities& entities, std::string_view text, const NameRules& rules);

/// The column that a typed text names, in the same way.
Ref<qbEntityItem> FindTypedColumn(const qbEntity& entity, std::string_view text, const NameRules& rules);

/// The field that a table's caption, a point outside quotes and a column's text name; none when no field of the diagram
/// is written so.
std::optional<FieldName> FindQualifiedField(const qbEntities& entities, std::string_view text, const NameRules& rules);

/// The field of the only table that has a column of this name; none when there are several or none.
std::optional<FieldName> FindOnlyField(const qbEntities& entities, std::string_view text, const NameRules& rules);

/// What a type code says of a column, and how literals of the type are written.
SnapshotType DescribeType(std::int32_t code, bool isLong, const qbDataTypes& types);

/// The type of an entity's column; nothing is known of one that it does not have.
SnapshotType TypeOfColumn(const qbEntity& entity, const std::string& column, const qbDataTypes& types);

}  // namespace zrqrybld
