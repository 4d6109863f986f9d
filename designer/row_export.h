// How rows are written for other programs.
#pragma once

#include <QByteArray>
#include <cstdint>
#include <functional>
#include <vector>

#include "designer/result_model.h"

namespace zrqrybld {

enum class RowFormat : std::uint8_t { Csv, Tsv, Json, Markdown };

/// What is written, and how.
struct RowExport {
  RowFormat format = RowFormat::Csv;
  bool names = true;           ///< the columns' names first; JSON and Markdown always have them
  bool formulasAsText = true;  ///< a text that a spreadsheet would take for a formula gets an apostrophe in front
  std::vector<int> rows = {};  ///< of those that are shown
  std::vector<int> columns = {};
  /// Whether a value is written, when not all are; a value that is not is empty.
  std::function<bool(int row, int column)> holds = {};
};

/// Writes rows in UTF-8, piece by piece. CSV and TSV: NULL is empty, in CSV an empty text is ""; what needs it stands
/// in quotes. JSON: an array of objects, numbers as numbers, NULL as null; of columns of one name the second gets a
/// number. Markdown: a table. Ends when `write` says that it cannot. Whether all was written.
bool WriteRows(const ResultModel& model, const RowExport& wanted, const std::function<bool(const QByteArray&)>& write);

}  // namespace zrqrybld
