#include "designer/export_window.h"

#include <QClipboard>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QFormLayout>
#include <QGuiApplication>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QSaveFile>
#include <QSettings>
#include <numeric>
#include <set>

#include "designer/plain_box.h"
#include "zrqrybld/adapters/qt/named_combo.h"
#include "zrqrybld/adapters/qt/say.h"
#include "zrqrybld/adapters/qt/telling_order.h"
#include "zrqrybld/base/texts_designer.h"

namespace zrqrybld {
namespace {

constexpr auto kFormatKey = "export/format";
constexpr auto kNamesKey = "export/names";
constexpr auto kFormulasAsTextKey = "preview/formulasAsText";
constexpr auto kFolderKey = "export/folder";

struct FormatRow {
  RowFormat format;
  TextId name;
  const char* suffix;
};
constexpr FormatRow kFormats[] = {{RowFormat::Csv, text::CsvFiles, "csv"},
                                  {RowFormat::Tsv, text::TsvFiles, "tsv"},
                                  {RowFormat::Json, text::JsonFiles, "json"},
                                  {RowFormat::Markdown, text::MarkdownFiles, "md"}};

QString Number(std::size_t number) { return QLocale::c().toString(static_cast<qulonglong>(number)); }

QLabel* Remark(const QString& text) {
  auto* label = new QLabel(text);
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(true);
  return label;
}

}  // namespace

ExportWindow::ExportWindow(const ResultModel& model, const QItemSelection& selection, const TextSource& texts,
                           QWidget* parent)
    : QDialog(parent),
      model_(model),
      selection_(selection),
      texts_(texts),
      format_(new NamedCombo(Say(texts, text::ExportFormat))),
      all_(new QRadioButton(Say(texts, text::ExportShown, Number(static_cast<std::size_t>(model.rowCount()))))),
      selected_(new QRadioButton),
      names_(new QCheckBox(Say(texts, text::ExportNames))),
      safe_(new QCheckBox(Say(texts, text::ExportSafe))) {
  setWindowTitle(Say(texts_, text::ExportCaption));
  AddChoices();
  ShowChoice();
}

void ExportWindow::AddChoices() {
  RowExport selected;
  TakeSelected(selection_, selected);
  const bool several = selected.rows.size() * selected.columns.size() > 1;
  selected_->setText(Say(texts_, text::ExportSelected, Number(selected.rows.size())));
  selected_->setEnabled(several);
  all_->setChecked(true);
  for (const FormatRow& row : kFormats) format_->addItem(Say(texts_, row.name));
  format_->setCurrentIndex(QSettings().value(kFormatKey, 0).toInt());
  names_->setChecked(QSettings().value(kNamesKey, true).toBool());
  safe_->setChecked(FormulasAsText());
  safe_->setToolTip(Say(texts_, text::ExportSafeTip));
  connect(format_, &QComboBox::currentIndexChanged, this, &ExportWindow::ShowChoice);

  auto* form = new QFormLayout;
  form->addRow(Say(texts_, text::ExportFormat), format_);
  form->addRow(Say(texts_, text::ExportWhich), all_);
  form->addRow(QString(), selected_);
  form->addRow(QString(), names_);
  form->addRow(QString(), safe_);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(form);
  AddRemarks();
  layout->addStretch();
  AddButtons();
}

// What somebody who reads the file would not notice.
void ExportWindow::AddRemarks() {
  if (model_.HasMore()) layout()->addWidget(Remark(Say(texts_, text::ExportPart)));
  std::size_t cut = 0;
  for (int row = 0; row < model_.rowCount(); ++row) {
    for (int column = 0; column < model_.columnCount(); ++column) cut += model_.ValueAt(row, column).cut ? 1 : 0;
  }
  if (cut > 0) layout()->addWidget(Remark(Say(texts_, text::ExportCut, Number(cut))));
}

void ExportWindow::AddButtons() {
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel);
  QPushButton* save = buttons->addButton(Say(texts_, text::ExportToFile), QDialogButtonBox::AcceptRole);
  QPushButton* copy = buttons->addButton(Say(texts_, text::ExportToClipboard), QDialogButtonBox::ActionRole);
  connect(save, &QPushButton::clicked, this, &ExportWindow::Save);
  connect(copy, &QPushButton::clicked, this, &ExportWindow::Copy);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  TellInOrder(*buttons->layout());
  layout()->addWidget(buttons);
  save->setDefault(true);  // known to the window only now
}

// Only spreadsheets compute, and only some formats can do without names.
void ExportWindow::ShowChoice() {
  const RowFormat format = kFormats[std::max(0, format_->currentIndex())].format;
  const bool separated = format == RowFormat::Csv || format == RowFormat::Tsv;
  names_->setEnabled(separated);
  safe_->setEnabled(separated);
}

bool ExportWindow::FormulasAsText() { return QSettings().value(kFormulasAsTextKey, true).toBool(); }

void ExportWindow::SetFormulasAsText(bool asText) { QSettings().setValue(kFormulasAsTextKey, asText); }

void ExportWindow::TakeAll(const ResultModel& model, RowExport& wanted) {
  wanted.rows.resize(static_cast<std::size_t>(model.rowCount()));
  wanted.columns.resize(static_cast<std::size_t>(model.columnCount()));
  std::iota(wanted.rows.begin(), wanted.rows.end(), 0);
  std::iota(wanted.columns.begin(), wanted.columns.end(), 0);
}

void ExportWindow::TakeSelected(const QItemSelection& selection, RowExport& wanted) {
  std::set<int> rows;
  std::set<int> columns;
  for (const QItemSelectionRange& range : selection) {
    for (int row = range.top(); row <= range.bottom(); ++row) rows.insert(rows.end(), row);
    for (int column = range.left(); column <= range.right(); ++column) columns.insert(column);
  }
  wanted.rows.assign(rows.begin(), rows.end());
  wanted.columns.assign(columns.begin(), columns.end());
  if (selection.size() <= 1) return;
  wanted.holds = [&selection](int row, int column) {
    return std::ranges::any_of(selection, [row, column](const QItemSelectionRange& range) {
      return row >= range.top() && row <= range.bottom() && column >= range.left() && column <= range.right();
    });
  };
}

RowExport ExportWindow::Wanted() const {
  QSettings settings;
  settings.setValue(kFormatKey, format_->currentIndex());
  settings.setValue(kNamesKey, names_->isChecked());
  SetFormulasAsText(safe_->isChecked());
  RowExport wanted{.format = kFormats[format_->currentIndex()].format,
                   .names = names_->isChecked(),
                   .formulasAsText = safe_->isChecked()};
  if (selected_->isChecked()) {
    TakeSelected(selection_, wanted);
  } else {
    TakeAll(model_, wanted);
  }
  return wanted;
}

void ExportWindow::Copy() {
  const RowExport wanted = Wanted();
  QByteArray text;
  WriteRows(model_, wanted, [&text](const QByteArray& piece) {
    text += piece;
    return true;
  });
  QGuiApplication::clipboard()->setText(QString::fromUtf8(text));
  done_ = Say(texts_, text::ExportedToClipboard, Number(wanted.rows.size()));
  accept();
}

void ExportWindow::Save() {
  const FormatRow& format = kFormats[format_->currentIndex()];
  QFileDialog dialog(this, Say(texts_, text::ExportCaption), QSettings().value(kFolderKey).toString());
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  dialog.setNameFilter(Say(texts_, format.name) + " (*." + format.suffix + ")");
  dialog.setDefaultSuffix(format.suffix);
  dialog.selectFile(Say(texts_, text::RowsFileName) + "." + format.suffix);
  if (dialog.exec() != QDialog::Accepted) return;
  const QString file = dialog.selectedFiles().value(0);
  QSettings().setValue(kFolderKey, QFileInfo(file).path());
  const QString error = SaveTo(file);
  if (!error.isEmpty()) {
    ShowPlain(this, QMessageBox::Critical,
              Say(texts_, text::FileCannotBeWritten, QDir::toNativeSeparators(file), error));
    return;
  }
  done_ = Say(texts_, text::Exported, Number(Wanted().rows.size()), QDir::toNativeSeparators(file));
  accept();
}

// The file before stays whole until all is written.
QString ExportWindow::SaveTo(const QString& file) const {
  QSaveFile to(file);
  const bool written =
      to.open(QIODevice::WriteOnly) &&
      WriteRows(model_, Wanted(), [&to](const QByteArray& piece) { return to.write(piece) == piece.size(); }) &&
      to.commit();
  return written ? QString() : to.errorString();
}

}  // namespace zrqrybld
