// What the values of a field of the grid are asked by: which columns are asked at all, and the statement that reads
// them.
#pragma once

#include <memory>
#include <string>

#include "zrqrybld/base/object.h"
#include "zrqrybld/expression/column_values.h"

namespace zrqrybld {

struct FieldName;
struct QueryContext;

/// How a criterion of the field is read and written; `aggregate` is the syntax of what its row makes of it, "" for
/// nothing.
CriteriaContext CriteriaRulesOf(const QueryContext& context, const FieldName& field, std::string aggregate);

/// The values that a criterion of the field may be compared with; nothing where there are none to offer. `source` may
/// be nothing. A column of long texts or bytes is never asked, nor an aggregate or an expression. Where the column
/// alone refers to another table, that table is read: its key, and the column that says what its row is called.
std::shared_ptr<ColumnValues> ValuesFor(const Ref<QueryContext>& context, const FieldName& field, CriteriaContext rules,
                                        std::shared_ptr<ValueSource> source);

}  // namespace zrqrybld
