// What a typed statement means to the designer.
#pragma once

#include <string>
#include <string_view>

namespace zrqrybld {

class qbQueryBuilder;
struct ReadQuery;

/// The statement that the designer would write if it read this one now; nothing is changed. Error 40002 with the place
/// for one that cannot be read.
std::string MeaningOf(qbQueryBuilder& hub, std::string_view sql);

/// Error 40002 where the dialect could not write the queries that were read, as the designer holds them.
void RequireWritable(const qbQueryBuilder& hub, const ReadQuery& main);

}  // namespace zrqrybld
