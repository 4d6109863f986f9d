// Toolkit: the services of the outside that are shared by a whole designer.
#pragma once

#include <memory>
#include <utility>

#include "zrqrybld/base/export.h"
#include "zrqrybld/base/phrase.h"
#include "zrqrybld/platform/dialogs.h"
#include "zrqrybld/platform/provider.h"

namespace zrqrybld {

class FileSystem;

/// One for a designer; it outlives the hub that uses it.
class ZRQRYBLD_API Toolkit {
 public:
  Toolkit();
  Toolkit(const Toolkit&) = delete;
  Toolkit& operator=(const Toolkit&) = delete;
  virtual ~Toolkit() = default;

  /// The windows that ask or tell the user something.
  virtual Dialogs& GetDialogs() = 0;

  /// Shows the hourglass over the whole application, or the usual pointer again. Calls nest.
  virtual void SetBusyPointer(bool busy) = 0;

  /// The language of the windows: the designer's own, from when it has begun; the built-in texts before.
  const TextSource& Texts() const { return texts_ ? *texts_ : EnglishTexts(); }
  void SetTexts(std::shared_ptr<const TextSource> texts) { texts_ = std::move(texts); }

  /// The data source providers that the application has registered.
  const std::shared_ptr<ProviderList>& Providers() const { return providers_; }

  /// How files are written; by the standard library unless the application hands in the system's own.
  const FileSystem& Files() const { return *files_; }
  void SetFiles(std::shared_ptr<const FileSystem> files) { files_ = std::move(files); }

 private:
  std::shared_ptr<ProviderList> providers_ = std::make_shared<ProviderList>();
  std::shared_ptr<const FileSystem> files_;
  std::shared_ptr<const TextSource> texts_;
};

/// Shows the hourglass while it lives.
class [[nodiscard]] BusyPointer {
 public:
  explicit BusyPointer(Toolkit& toolkit) : toolkit_(toolkit) { toolkit_.SetBusyPointer(true); }
  BusyPointer(const BusyPointer&) = delete;
  BusyPointer& operator=(const BusyPointer&) = delete;
  ~BusyPointer() { toolkit_.SetBusyPointer(false); }

 private:
  Toolkit& toolkit_;
};

}  // namespace zrqrybld
