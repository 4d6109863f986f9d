// What a typed statement means to the designer.
#pragma once

#include <string>
#include <string_view>

namespace zrqrybld {

class qbQueryBuilder;

/// The statement that the designer would write if it read this one now; nothing is changed. Error 40002 with the place
/// for one that cannot be read.
std::string MeaningOf(qbQueryBuilder& hub, std::string_view sql);

}  // namespace zrqrybld
