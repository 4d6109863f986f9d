// ExpressionWindow: a larger editor for one expression and, when it is to be put together, a tree of pieces with their
// parameters.
#pragma once

#include <QDialog>
#include <QTreeWidget>
#include <string>

#include "zrqrybld/adapters/qt/event_boundary.h"
#include "zrqrybld/base/phrase.h"
#include "zrqrybld/expression/expression_builder.h"
#include "zrqrybld/platform/dialogs.h"

class QLabel;
class QLineEdit;
class QTableWidget;

namespace zrqrybld {

class PredictiveText;
class QtTextArea;

/// The pieces; one that is dragged out is a text.
class PartsTree : public QTreeWidget {
  Q_OBJECT

 public:
  using QTreeWidget::QTreeWidget;

 protected:
  QMimeData* mimeData(const QList<QTreeWidgetItem*>& items) const override;
};

class ExpressionWindow : public QDialog {
  Q_OBJECT

 public:
  /// The language must outlive the window.
  explicit ExpressionWindow(const ExpressionDialog& dialog, QWidget* parent = nullptr,
                            const TextSource& texts = EnglishTexts());

  /// The expression on one line.
  std::string Text() const;

  QtTextArea& Editor() const { return *editor_; }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  QWidget* MakeEditor(const ExpressionDialog& dialog);
  QWidget* MakeTools();
  QWidget* MakeParts();
  QWidget* MakeParameters();
  void FillTree();
  void Search(const QString& wanted);
  void ShowChosen();
  void Insert();
  bool DropPiece(const QDropEvent& drop);
  void Check();
  void ApplyColors();

  const TextSource& texts_;
  Ref<frmExpressionZoom> form_;
  Ref<frmExpressionBuilder> builder_;  // nothing in the zoom
  EventBoundary boundary_;
  std::optional<ExpressionFault> fault_;
  QtTextArea* editor_ = nullptr;
  PredictiveText* predictive_ = nullptr;
  QLabel* message_ = nullptr;
  QLineEdit* search_ = nullptr;
  PartsTree* parts_ = nullptr;
  QLabel* hint_ = nullptr;
  QTableWidget* parameters_ = nullptr;
  std::vector<EventConnection> links_;
};

}  // namespace zrqrybld
