// KeyList: the window that tells what the keys do, by pane.
#pragma once

#include <QDialog>

#include "zrqrybld/base/phrase.h"

namespace zrqrybld {

class KeyList : public QDialog {
  Q_OBJECT

 public:
  explicit KeyList(const TextSource& texts, QWidget* parent = nullptr);
};

}  // namespace zrqrybld
