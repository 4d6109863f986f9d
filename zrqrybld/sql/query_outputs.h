// The columns that a designed query outputs, for whoever names it like a table. Pure.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "zrqrybld/host/designer_values.h"
#include "zrqrybld/sql/query_snapshot.h"

namespace zrqrybld {

/// What the source says of a column's type, by the table's place from 0.
using ColumnTypes = std::function<SnapshotType(std::size_t table, const std::string& column)>;

/// The columns in their order: an expression without an alias has a name that only the server knows, and is left out,
/// and so is a name that an earlier column bears. "*" stands for the known columns of its table. The first ones are
/// called by `names`, as WITH gives them, whatever they are called in the query.
std::vector<QueryColumn> OutputsOf(const QuerySnapshot& query, const ColumnTypes& typeOf,
                                   const std::vector<std::string>& names = {});

/// A column at its place among all that a query outputs.
struct OutputPlace {
  std::string name;       ///< its alias, its name, or the expression
  std::int32_t type = 0;  ///< 0 where it is not known
};

struct OutputPlaces {
  std::vector<OutputPlace> columns;
  bool isCounted = true;  ///< false where "*" stands for columns that nobody knows: some may be missing here
};

/// All columns in their order, those without a name of their own, too; `outputs` tells their types.
OutputPlaces PlacesOf(const QuerySnapshot& query, const std::vector<QueryColumn>& outputs);

/// Whether both types are known, and are those of different kinds of values.
bool HoldsOtherKind(const OutputPlace& one, const OutputPlace& other);

/// The one column that is called otherwise now, as before and as now; none where the columns are others in another way.
std::optional<std::pair<std::string, std::string>> RenamedColumn(const std::vector<std::string>& before,
                                                                 const std::vector<QueryColumn>& now);

/// Makes the query name a column of a table, by its place from 0, by another name: in its rows and joins.
void RenameColumn(QuerySnapshot& query, std::size_t table, const std::string& before, const std::string& after);

/// What is known of the columns now, for as long as anybody asks.
std::shared_ptr<const KnownColumns> CapturedColumns(const KnownColumns& columns, std::size_t tables);

}  // namespace zrqrybld
