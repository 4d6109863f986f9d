// ParametersWindow: asks for the values of a statement's parameters, a line each with the editor that fits its type,
// and shows the statement with them.
#pragma once

#include <QDialog>
#include <string>
#include <vector>

#include "zrqrybld/adapters/qt/event_boundary.h"
#include "zrqrybld/base/phrase.h"
#include "zrqrybld/platform/dialogs.h"

class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace zrqrybld {

class Mark;
class QtTextArea;

class ParametersWindow : public QDialog {
  Q_OBJECT

 public:
  /// The language must outlive the window.
  explicit ParametersWindow(const ParametersDialog& dialog, QWidget* parent = nullptr,
                            const TextSource& texts = EnglishTexts());

  /// What stands in the fields now.
  std::vector<std::string> Values() const;

 private:
  // One of the two is there.
  struct Editor {
    QLineEdit* line = nullptr;
    QComboBox* choice = nullptr;
    QWidget* Widget() const;
  };

  QWidget* MakeForm();
  Editor MakeEditor(const ParameterField& field);
  void AddCalendar(QLineEdit& line);
  void Check();

  const TextSource& texts_;
  ParametersDialog dialog_;
  EventBoundary boundary_;
  std::vector<Editor> editors_;
  QtTextArea* statement_;
  Mark* mark_;
  QLabel* message_;
  QPushButton* accept_;
};

}  // namespace zrqrybld
