// NamedCombo: a combo that assistive technology is told by its name, with what is chosen as its text. Qt gives what is
// chosen as the name of a combo, so that nobody hears what is being chosen.
#pragma once

#include <QComboBox>

#include "zrqrybld/base/export.h"

namespace zrqrybld {

class ZRQRYBLD_API NamedCombo final : public QComboBox {
 public:
  /// An access key in the name is left out.
  explicit NamedCombo(const QString& name, QWidget* parent = nullptr);
};

}  // namespace zrqrybld
