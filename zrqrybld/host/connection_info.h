// What the library asks a data source right after connecting: how it writes names and literals, and
// its types.
#pragma once

#include <optional>

#include "zrqrybld/platform/text_reading.h"

namespace zrqrybld {

struct QueryContext;

/// Bits of the property "_QBDSFLAGS".
enum DataSourceFlag : std::int16_t {
  DataSourceIsText = 1,  ///< text files through ODBC: names hold dots, quotes are brackets
};

/// Whether the connected source is text files, by "_QBDSFLAGS".
bool IsTextSource(const QueryContext& context);

/// How the source reads literals, by the property `kTextReadingLiteral`; none when no source has told.
std::optional<TextReading> SourceReading(const QueryContext& context);

/// Fills `Properties` with the source's literals, `DataTypes` with its types and, when `withTables`,
/// `SourceTables`; its reserved words become ours. What was there from an earlier connection is removed first. A schema
/// that the source does not have leaves its entries absent. Does nothing on a closed connection.
void RetrieveConnectionInfo(QueryContext& context, bool withTables);

}  // namespace zrqrybld
