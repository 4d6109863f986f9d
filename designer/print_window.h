// PrintWindow: asks what of a query is to be printed, and prints it or writes it as PDF. Its choices are kept in the
// application's settings.
#pragma once

#include <QCheckBox>
#include <QDialog>
#include <cstdint>

#include "designer/print_pages.h"

namespace zrqrybld {

class PrintWindow : public QDialog {
  Q_OBJECT

 public:
  enum class Target : std::uint8_t { Paper, Pdf };

  /// All must outlive it.
  PrintWindow(const QueryDesignerWidget& designer, const ResultModel& rows, const QString& title,
              const TextSource& texts, Target target, QWidget* parent);

  /// What was written and where; empty when nothing was, or it went to a printer.
  const QString& Done() const { return done_; }

  /// Writes a PDF file. Returns an error message, empty on success; the file before stays whole until all is written.
  QString SaveTo(const QString& file) const;

 private:
  QCheckBox* AddPart(TextId text, const char* key, bool there);
  PrintedParts Parts() const;
  void Print();
  void Preview();
  void SavePdf();

  const QueryDesignerWidget& designer_;
  const ResultModel& rows_;
  QString title_;
  const TextSource& texts_;
  QCheckBox* diagram_;
  QCheckBox* statement_;
  QCheckBox* printedRows_;
  QString done_;
};

}  // namespace zrqrybld
