#include "adapters/qt/expression_window.h"

#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSplitter>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <algorithm>

#include "adapters/qt/qt_text.h"

namespace zrqrybld {

ExpressionWindow::ExpressionWindow(const ExpressionDialog& dialog, QWidget* parent) : QDialog(parent) {
  setWindowTitle(ToQString(dialog.caption));
  text_ = new QPlainTextEdit(ToQString(dialog.text));
  text_->setAccessibleName(ToQString(dialog.caption));
  text_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  text_->installEventFilter(this);
  text_->setTabChangesFocus(true);
  text_->selectAll();

  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
  QPushButton* clear = buttons->addButton(tr("C&lear"), QDialogButtonBox::ResetRole);
  connect(clear, &QPushButton::clicked, text_, &QPlainTextEdit::clear);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

  auto* layout = new QVBoxLayout(this);
  if (dialog.parts.empty()) {
    layout->addWidget(text_, 1);
    resize(520, 200);
  } else {
    auto* splitter = new QSplitter(Qt::Vertical);
    splitter->addWidget(text_);
    splitter->addWidget(MakeParts(dialog));
    splitter->setStretchFactor(1, 2);
    splitter->setChildrenCollapsible(false);
    layout->addWidget(splitter, 1);
    resize(560, 480);
  }
  layout->addWidget(buttons);
  text_->setFocus();
}

QWidget* ExpressionWindow::MakeParts(const ExpressionDialog& dialog) {
  auto* panel = new QWidget;
  auto* filter = new QLineEdit;
  filter->setPlaceholderText(tr("Filter columns, functions, operators and keywords"));
  filter->setAccessibleName(filter->placeholderText());
  filter->setClearButtonEnabled(true);
  parts_ = new QTreeWidget;
  parts_->setHeaderHidden(true);
  parts_->setColumnCount(2);
  for (const ExpressionGroup& group : dialog.parts) {
    auto* top = new QTreeWidgetItem(parts_, {ToQString(group.name)});
    top->setFlags(Qt::ItemIsEnabled);
    for (const ExpressionGroup::Part& part : group.parts) {
      auto* item = new QTreeWidgetItem(top, {ToQString(part.text), ToQString(part.hint)});
      item->setData(0, Qt::UserRole, ToQString(part.insert));
      item->setToolTip(1, ToQString(part.hint).toHtmlEscaped());
    }
  }
  parts_->topLevelItem(0)->setExpanded(true);
  parts_->resizeColumnToContents(0);
  auto* layout = new QVBoxLayout(panel);
  layout->setContentsMargins({});
  layout->addWidget(filter);
  layout->addWidget(parts_, 1);
  connect(filter, &QLineEdit::textChanged, this, &ExpressionWindow::Filter);
  connect(parts_, &QTreeWidget::itemActivated, this, [this](QTreeWidgetItem* item) { Insert(item); });
  return panel;
}

// A group is shown, and opened, while one of its pieces holds the text.
void ExpressionWindow::Filter(const QString& wanted) {
  for (int i = 0; i < parts_->topLevelItemCount(); ++i) {
    QTreeWidgetItem* group = parts_->topLevelItem(i);
    bool any = false;
    for (int j = 0; j < group->childCount(); ++j) {
      const bool matches = group->child(j)->text(0).contains(wanted, Qt::CaseInsensitive);
      group->child(j)->setHidden(!matches);
      any = any || matches;
    }
    group->setHidden(!any);
    group->setExpanded(any && (!wanted.isEmpty() || i == 0));
  }
}

// In place of what is selected, set apart by blanks; the first placeholder of a function is selected then.
void ExpressionWindow::Insert(const QTreeWidgetItem* item) {
  const QString piece = item->data(0, Qt::UserRole).toString();
  if (piece.isEmpty()) return;
  QTextCursor caret = text_->textCursor();
  const int start = caret.selectionStart();
  const QChar before = text_->document()->characterAt(start - 1);
  const bool apart = start > 0 && !before.isSpace() && before != QLatin1Char('(');
  caret.insertText(apart ? QLatin1Char(' ') + piece : piece);
  const auto placeholder = piece.indexOf(QLatin1Char('@'));
  if (placeholder >= 0) {
    auto end = placeholder + 1;
    while (end < piece.size() && (piece[end].isLetterOrNumber() || piece[end] == QLatin1Char('_'))) ++end;
    const int from = start + (apart ? 1 : 0) + static_cast<int>(placeholder);
    caret.setPosition(from);
    caret.setPosition(from + static_cast<int>(end - placeholder), QTextCursor::KeepAnchor);
  }
  text_->setTextCursor(caret);
  text_->setFocus();
}

// Ctrl+Enter accepts; Tab goes on to the next widget: an expression has no use for either.
bool ExpressionWindow::eventFilter(QObject* watched, QEvent* event) {
  if (watched == text_ && event->type() == QEvent::KeyPress) {
    const auto& key = static_cast<const QKeyEvent&>(*event);
    const bool isEnter = key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter;
    if (isEnter && key.modifiers().testFlag(Qt::ControlModifier)) {
      accept();
      return true;
    }
  }
  return QDialog::eventFilter(watched, event);
}

std::string ExpressionWindow::Text() const {
  return ToUtf8(text_->toPlainText().replace(QLatin1Char('\n'), QLatin1Char(' ')).trimmed());
}

}  // namespace zrqrybld
