#include "designer/print_window.h"

#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QLabel>
#include <QLocale>
#include <QPdfWriter>
#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QPrinter>
#include <QPushButton>
#include <QSaveFile>
#include <QSettings>
#include <QVBoxLayout>

#include "designer/plain_box.h"
#include "designer/result_model.h"
#include "zrqrybld/adapters/qt/query_designer_widget.h"
#include "zrqrybld/adapters/qt/say.h"
#include "zrqrybld/adapters/qt/telling_order.h"
#include "zrqrybld/base/texts_designer.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/hub/hub.h"

namespace zrqrybld {
namespace {

constexpr auto kFolderKey = "print/folder";
constexpr int kPdfDpi = 300;

}  // namespace

PrintWindow::PrintWindow(const QueryDesignerWidget& designer, const ResultModel& rows, const QString& title,
                         const TextSource& texts, Target target, QWidget* parent)
    : QDialog(parent), designer_(designer), rows_(rows), title_(title), texts_(texts) {
  setWindowTitle(Say(texts_, text::PrintCaption));
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(new QLabel(Say(texts_, text::PrintWhat)));
  diagram_ = AddPart(text::PrintDiagram, "print/diagram", designer.QueryBuilder().Entities()->Count() > 0);
  statement_ = AddPart(text::PrintStatement, "print/statement", true);
  printedRows_ = AddPart(text::PrintRows, "print/rows", rows.rowCount() > 0);
  if (rows.rowCount() > kMostPrintedRows) {
    printedRows_->setText(Say(texts_, text::PrintRowsFirst, QLocale::c().toString(kMostPrintedRows)));
  }
  layout->addStretch();
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  layout->addWidget(buttons);
  const auto add = [&](TextId name, QDialogButtonBox::ButtonRole role, void (PrintWindow::*run)()) {
    QPushButton* button = buttons->addButton(Say(texts_, name), role);
    button->setDefault(role == QDialogButtonBox::AcceptRole);
    connect(button, &QPushButton::clicked, this, run);
  };
  if (target == Target::Paper) {
    add(text::PrintItem, QDialogButtonBox::AcceptRole, &PrintWindow::Print);
    add(text::PrintPreviewButton, QDialogButtonBox::ActionRole, &PrintWindow::Preview);
  } else {
    add(text::SavePdfItem, QDialogButtonBox::AcceptRole, &PrintWindow::SavePdf);
  }
  TellInOrder(*buttons->layout());
}

// What is not there cannot be chosen, and is still chosen for the next query.
QCheckBox* PrintWindow::AddPart(TextId text, const char* key, bool there) {
  auto* part = new QCheckBox(Say(texts_, text));
  part->setChecked(QSettings().value(key, true).toBool() && there);
  part->setEnabled(there);
  connect(part, &QCheckBox::toggled, this, [key](bool on) { QSettings().setValue(key, on); });
  layout()->addWidget(part);
  return part;
}

PrintedParts PrintWindow::Parts() const {
  return {diagram_->isChecked(), statement_->isChecked(), printedRows_->isChecked()};
}

void PrintWindow::Print() {
  QPrinter printer(QPrinter::HighResolution);
  printer.setDocName(title_);
  QPrintDialog dialog(&printer, this);
  if (dialog.exec() != QDialog::Accepted) return;
  PrintQuery(printer, designer_, rows_, Parts(), title_, texts_);
  accept();
}

void PrintWindow::Preview() {
  QPrinter printer(QPrinter::HighResolution);
  QPrintPreviewDialog dialog(&printer, this);
  connect(&dialog, &QPrintPreviewDialog::paintRequested, this,
          [this](QPrinter* paper) { PrintQuery(*paper, designer_, rows_, Parts(), title_, texts_); });
  dialog.exec();
}

void PrintWindow::SavePdf() {
  QFileDialog dialog(this, Say(texts_, text::PrintCaption), QSettings().value(kFolderKey).toString());
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  dialog.setNameFilter(Say(texts_, text::PdfFiles) + " (*.pdf)");
  dialog.setDefaultSuffix(QStringLiteral("pdf"));
  dialog.selectFile(Say(texts_, text::QueryFileName) + ".pdf");
  if (dialog.exec() != QDialog::Accepted) return;
  const QString file = dialog.selectedFiles().value(0);
  QSettings().setValue(kFolderKey, QFileInfo(file).path());
  if (const QString error = SaveTo(file); !error.isEmpty()) {
    ShowPlain(this, QMessageBox::Critical, error);
    return;
  }
  done_ = Say(texts_, text::Saved, QDir::toNativeSeparators(file));
  accept();
}

QString PrintWindow::SaveTo(const QString& file) const {
  QSaveFile to(file);
  bool written = to.open(QIODevice::WriteOnly);
  if (written) {
    QPdfWriter pdf(&to);
    pdf.setTitle(title_);
    pdf.setResolution(kPdfDpi);
    pdf.setPageMargins(QMarginsF(15, 15, 15, 15), QPageLayout::Millimeter);
    written = PrintQuery(pdf, designer_, rows_, Parts(), title_, texts_);
  }
  written = written && to.commit();
  return written ? QString() : Say(texts_, text::FileCannotBeWritten, QDir::toNativeSeparators(file), to.errorString());
}

}  // namespace zrqrybld
