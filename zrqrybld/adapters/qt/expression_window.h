// ExpressionWindow: a larger editor for one expression and, when it is to be put together, a tree of pieces with their
// parameters, and a page for functions over rows.
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
class QTabWidget;
class QToolButton;

namespace zrqrybld {

class PredictiveText;
class QtTextArea;
class WindowPage;

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
  QWidget* MakePages();
  void FillTree();
  void Search(const QString& wanted);
  void ShowChosen();
  void Insert();
  bool DropPiece(const QDropEvent& drop);
  void Check();
  void FollowCaret();
  void StartWindowCall();
  void WriteWindowCall(TextRange place, const WindowCall& call);
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
  QToolButton* insert_ = nullptr;
  QTabWidget* pages_ = nullptr;
  WindowPage* window_ = nullptr;         // nothing where there can be no function over rows
  std::optional<TextRange> windowCall_;  // the one that the page shows, in the editor's text
  bool writing_ = false;                 // what the page says is being written
  std::vector<EventConnection> links_;
};

}  // namespace zrqrybld
