// The window for the properties of a join: its texts, and what becomes of an answer. The window is the toolkit's.
#pragma once

#include <memory>

#include "zrqrybld/diagram/relationship.h"

namespace zrqrybld {

class frmExpressionZoom;
struct QueryContext;

/// Lets the user edit the whole join that the relationship is a part of. Returns whether it was accepted; its pairs,
/// its condition, the kind and the signs at the lines' ends are set then. `conditionForm` helps to type the condition.
/// Error 40002 when a program's answer has a condition that cannot be read.
bool EditJoin(QueryContext& context, qbRelationship& relationship,
              const std::shared_ptr<frmExpressionZoom>& conditionForm);

}  // namespace zrqrybld
