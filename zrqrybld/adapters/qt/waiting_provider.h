// A provider whose sources are asked in another thread, so that the window lives while a server takes its time.
#pragma once

#include <memory>

#include "zrqrybld/base/export.h"
#include "zrqrybld/base/phrase.h"
#include "zrqrybld/platform/provider.h"

namespace zrqrybld {

/// A provider that does what `provider` does, away from the window's thread. A question that takes longer than a second
/// shows a small modal window with a busy bar and a Stop button. Stopped, it is error 3706, and a session is closed:
/// the thread that asks cannot be ended, so it keeps the source until that answers.
///
/// For use in the window's thread; any other thread just waits.
ZRQRYBLD_API std::shared_ptr<Provider> MakeWaitingProvider(std::shared_ptr<Provider> provider,
                                                           std::shared_ptr<const TextSource> texts = nullptr);

/// Whether a question is being waited for in an event loop of its own: what a timer does should wait, too, because
/// whatever asked is in the middle of something.
ZRQRYBLD_API bool IsWaitingForSource();

}  // namespace zrqrybld
