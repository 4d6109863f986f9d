// KeyList: the window that tells what the keys do, by pane.
#pragma once

#include <QDialog>

namespace zrqrybld {

class KeyList : public QDialog {
  Q_OBJECT

 public:
  explicit KeyList(QWidget* parent = nullptr);
};

}  // namespace zrqrybld
