#include "zrqrybld/adapters/qt/text_window.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "zrqrybld/adapters/qt/mark.h"
#include "zrqrybld/adapters/qt/qt_text.h"

namespace zrqrybld {

TextWindow::TextWindow(const TextDialog& dialog, QWidget* parent)
    : QDialog(parent), dialog_(dialog), line_(new QLineEdit), mark_(new Mark), problem_(new QLabel) {
  setWindowTitle(ToQString(dialog_.caption));
  auto* label = new QLabel(ToQString(dialog_.label));
  label->setTextFormat(Qt::PlainText);
  label->setBuddy(line_);
  constexpr int kCharacters = 44;
  line_->setMinimumWidth(fontMetrics().averageCharWidth() * kCharacters);
  line_->setText(ToQString(dialog_.text));
  line_->selectAll();
  problem_->setTextFormat(Qt::PlainText);
  problem_->setWordWrap(true);
  problem_->setMinimumHeight(fontMetrics().height() * 2);  // nothing moves while one types

  auto* message = new QHBoxLayout;
  message->addWidget(mark_, 0, Qt::AlignTop);
  message->addWidget(problem_, 1, Qt::AlignTop);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
  accept_ = buttons->button(QDialogButtonBox::Ok);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(label);
  layout->addWidget(line_);
  layout->addLayout(message);
  layout->addWidget(buttons);

  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  connect(line_, &QLineEdit::textChanged, this, &TextWindow::Check);
  Check();
}

std::string TextWindow::Text() const { return ToUtf8(line_->text()); }

void TextWindow::Check() {
  const std::string problem = dialog_.problem ? dialog_.problem(Text()) : std::string();
  problem_->setText(ToQString(problem));
  mark_->Show(problem.empty() ? Mark::Kind::None : Mark::Kind::Warning);
  accept_->setEnabled(problem.empty());
}

}  // namespace zrqrybld
