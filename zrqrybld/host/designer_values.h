// Small values that the hub and the panes tell each other.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace zrqrybld {

/// What the designer is busy with, and what the event `Info` reports.
enum QueryBuilderInfoEnum : std::int32_t {
  InfoDone = 0,
  InfoRetrieveConnectionInfo = 1,
  InfoTableAdded = 2,
  InfoRelationshipAdded = 3,
  InfoRetrieveTableInfo = 4,
  InfoSavingQuery = 5,
  InfoLoadingQuery = 6,
  InfoTableRemoved = 7,
  InfoAddTables = 8,
  InfoParsingSQL = 9,
  InfoSavingDetail = 10,
};

/// The order in which a table's columns are listed.
enum FieldOrderEnum : std::int32_t {
  FieldOrderDefault = 0,  ///< as the provider returns them
  FieldOrderOrdinal = 1,  ///< by their ordinal position
};

/// What the grid says about a column of the diagram.
struct ColumnUse {
  std::string sortType;  ///< "Ascending", "Descending" or ""
  std::string groupBy;   ///< the text of its "group_by" cell
};

/// A table of the data source with its columns, as far as they were read on connecting.
struct SourceTable {
  std::string name;
  std::vector<std::string> columns;
};

/// A column that a query outputs, for whoever names the query like a table.
struct QueryColumn {
  std::string name;
  std::int32_t type = 0;  ///< a `DataTypeCode`; 0 where nobody knows
  bool isLong = false;
  friend bool operator==(const QueryColumn&, const QueryColumn&) = default;
};

}  // namespace zrqrybld
