// The way to assistive technology: whether somebody listens there, and what is told.
#pragma once

#include <QAccessible>
#include <functional>

namespace zrqrybld {

/// Whether assistive technology listens, or who was put in its place.
bool AccessIsHeard();

/// Tells of a change.
void TellAccess(QAccessibleEvent& event);

/// Hears everything in place of the platform's assistive technology, for instance in a test; an empty function ends
/// that.
void SetAccessListener(std::function<void(QAccessibleEvent&)> listener);

}  // namespace zrqrybld
