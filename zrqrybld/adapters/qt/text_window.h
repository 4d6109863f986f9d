// TextWindow: asks for one line of text and says at once why a text cannot be taken.
#pragma once

#include <QDialog>
#include <string>

#include "zrqrybld/platform/dialogs.h"

class QLabel;
class QLineEdit;
class QPushButton;

namespace zrqrybld {

class Mark;

class TextWindow : public QDialog {
  Q_OBJECT

 public:
  explicit TextWindow(const TextDialog& dialog, QWidget* parent = nullptr);

  /// What stands in the line now.
  std::string Text() const;

 private:
  void Check();

  TextDialog dialog_;
  QLineEdit* line_;
  Mark* mark_;
  QLabel* problem_;
  QPushButton* accept_;
};

}  // namespace zrqrybld
