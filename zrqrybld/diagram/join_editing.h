// The window for the properties of a join: its texts, and what becomes of an answer. The window is the toolkit's.
#pragma once

#include <functional>
#include <memory>

#include "zrqrybld/diagram/relationship.h"

namespace zrqrybld {

class frmExpressionZoom;
struct QueryContext;

/// Lets the user edit the whole join that the relationship is a part of. When it is accepted, its pairs, its condition,
/// the kind and the signs at the lines' ends are set, and `accepted` goes on in the same step. `conditionForm` helps to
/// type the condition. Error 40002 when a program's answer has a condition that cannot be read.
void EditJoin(const Ref<QueryContext>& context, qbRelationship& relationship,
              const std::shared_ptr<frmExpressionZoom>& conditionForm, std::function<void()> accepted);

}  // namespace zrqrybld
