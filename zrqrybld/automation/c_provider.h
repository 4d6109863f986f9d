// Providers that a caller of the C interface writes: its functions as a `Provider`, with what they answer checked.
//
// While such a function runs, the designer that asks is in the middle of something: only connections and their rows
// can be used then, and handles that are released are kept until the call is done.
#pragma once

#include "zrqrybld/base/object.h"
#include "zrqrybld/platform/provider.h"

namespace zrqrybld {

/// Error 5 for an object that cannot be used while a provider answers.
void RequireUsable(const Object& object);

/// Registers the providers that callers have registered with another list.
void RegisterCallerProviders(ProviderList& providers);

/// Ends all of them, whoever holds them: their functions are called no more.
void EndCallerProviders();

}  // namespace zrqrybld
