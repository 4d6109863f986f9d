// ValueWindow: one value of a row as a whole: a long text with its lines, JSON set out in lines, binary data by bytes.
#pragma once

#include <QDialog>
#include <QString>

#include "zrqrybld/adapters/run/query_runner.h"
#include "zrqrybld/base/phrase.h"

class QPlainTextEdit;

namespace zrqrybld {

class ValueWindow : public QDialog {
  Q_OBJECT

 public:
  /// `caption` says whose value it is; the texts must outlive it.
  ValueWindow(const ResultValue& value, const QString& caption, const TextSource& texts, QWidget* parent);

 private:
  QString Describe(const ResultValue& value) const;

  const TextSource& texts_;
};

/// Binary data as its bytes stand in a value, sixteen in a line: the place, the bytes, and those that are letters.
QString ByteLines(const ResultValue& value);

}  // namespace zrqrybld
