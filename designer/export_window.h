// ExportWindow: asks how rows are to be written, and writes them to a file or the clipboard. Its choices are kept in
// the application's settings.
#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QItemSelection>
#include <QRadioButton>

#include "designer/row_export.h"
#include "zrqrybld/base/phrase.h"

namespace zrqrybld {

class ExportWindow : public QDialog {
  Q_OBJECT

 public:
  /// All must outlive it. More than one selected cell is offered as what to write.
  ExportWindow(const ResultModel& model, const QItemSelection& selection, const TextSource& texts, QWidget* parent);

  /// What was written and where; empty when nothing was.
  const QString& Done() const { return done_; }

  /// What of the rows is selected, for `WriteRows`.
  static void TakeSelected(const QItemSelection& selection, RowExport& wanted);
  static void TakeAll(const ResultModel& model, RowExport& wanted);
  /// Whether texts are kept from being computed by spreadsheets, as chosen last; they are at first.
  static bool FormulasAsText();
  static void SetFormulasAsText(bool asText);

 private:
  void AddChoices();
  void AddRemarks();
  void AddButtons();
  void ShowChoice();
  RowExport Wanted() const;
  void Copy();
  void Save();
  QString SaveTo(const QString& file) const;

  const ResultModel& model_;
  const QItemSelection& selection_;
  const TextSource& texts_;
  QComboBox* format_;
  QRadioButton* all_;
  QRadioButton* selected_;
  QCheckBox* names_;
  QCheckBox* safe_;
  QString done_;
};

}  // namespace zrqrybld
