// The box of a query: what it shows follows what the query outputs.
#pragma once

#include <string>
#include <vector>

#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/host/data_types.h"
#include "zrqrybld/host/designer_values.h"

namespace zrqrybld {

/// Makes the items of the entity "*" and these columns. Ticks and the ends of joins stay with the columns of their
/// names; a join whose column has gone is left without it. Nobody is told. False where the columns are these already.
bool ShowColumns(const qbEntities& entities, qbEntity& entity, const std::vector<QueryColumn>& columns,
                 const qbDataTypes& types);

/// The texts of its items but "*", in their order.
std::vector<std::string> TextsOf(const qbEntity& entity);

/// Gives the item with this text another. Nobody is told.
void RenameItem(qbEntity& entity, const std::string& before, const std::string& after);

}  // namespace zrqrybld
