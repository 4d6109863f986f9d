// ExpressionWindow: a larger editor for one expression and, when there are any, a tree of pieces to insert.
#pragma once

#include <QDialog>
#include <string>

#include "platform/dialogs.h"

class QPlainTextEdit;
class QTreeWidget;
class QTreeWidgetItem;

namespace zrqrybld {

class ExpressionWindow : public QDialog {
  Q_OBJECT

 public:
  explicit ExpressionWindow(const ExpressionDialog& dialog, QWidget* parent = nullptr);

  /// The expression on one line: line ends have become blanks.
  std::string Text() const;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QWidget* MakeParts(const ExpressionDialog& dialog);
  void Filter(const QString& wanted);
  void Insert(const QTreeWidgetItem* item);

  QPlainTextEdit* text_ = nullptr;
  QTreeWidget* parts_ = nullptr;
};

}  // namespace zrqrybld
