// QtToolkit: the services that a whole designer shares, given by Qt. The application owns it and keeps
// it longer than the designer.
#pragma once

#include "zrqrybld/adapters/qt/qt_dialogs.h"
#include "zrqrybld/base/export.h"
#include "zrqrybld/platform/toolkit.h"

namespace zrqrybld {

class ZRQRYBLD_API QtToolkit final : public Toolkit {
 public:
  /// `parent` is the window over which dialogs appear.
  explicit QtToolkit(QWidget* parent = nullptr);
  ~QtToolkit() override;

  QtDialogs& GetDialogs() override { return dialogs_; }
  void SetBusyPointer(bool busy) override;

 private:
  QtDialogs dialogs_;
  int busyDepth_ = 0;
};

}  // namespace zrqrybld
