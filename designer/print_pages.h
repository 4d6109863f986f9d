// A query on paper: its diagram on a page of its own, then its statement and its rows.
#pragma once

#include <QString>

#include "zrqrybld/base/phrase.h"

class QPagedPaintDevice;

namespace zrqrybld {

class QueryDesignerWidget;
class ResultModel;

/// More rows are not printed; the last page says so.
inline constexpr int kMostPrintedRows = 1000;

/// What is printed. A diagram without tables and rows that are not there are left out in any case.
struct PrintedParts {
  bool diagram = true;
  bool statement = true;
  bool rows = true;
};

/// Prints in dark colours on white, whatever the window's are. `title` stands at the top of each page, its number at
/// the foot. Whether the device took it.
bool PrintQuery(QPagedPaintDevice& device, const QueryDesignerWidget& designer, const ResultModel& rows,
                const PrintedParts& parts, const QString& title, const TextSource& texts);

}  // namespace zrqrybld
