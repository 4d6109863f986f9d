// The columns that a designed query outputs, for whoever names it like a table. Pure.
#pragma once

#include <cstddef>
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

/// The one column that is called otherwise now, as before and as now; none where the columns are others in another way.
std::optional<std::pair<std::string, std::string>> RenamedColumn(const std::vector<std::string>& before,
                                                                 const std::vector<QueryColumn>& now);

/// Makes the query name a column of a table, by its place from 0, by another name: in its rows and joins.
void RenameColumn(QuerySnapshot& query, std::size_t table, const std::string& before, const std::string& after);

/// What is known of the columns now, for as long as anybody asks.
std::shared_ptr<const KnownColumns> CapturedColumns(const KnownColumns& columns, std::size_t tables);

}  // namespace zrqrybld
