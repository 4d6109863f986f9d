#include "designer/result_model.h"

#include <algorithm>
#include <iterator>
#include <set>

#include "zrqrybld/adapters/qt/qt_text.h"
#include "zrqrybld/base/text.h"

namespace zrqrybld {
namespace {

constexpr std::size_t kShownCharacters = 200;
constexpr std::size_t kTipCharacters = 2000;

// The beginning of a text in one line.
QString OneLine(std::string_view text) {
  const std::string_view shown = FirstCharacters(text, kShownCharacters);
  QString line = ToQString(shown);
  line.replace(QLatin1String("\r\n"), QStringLiteral("\u21b5"));
  for (const QChar c : {QChar('\n'), QChar('\r'), QChar(0x2028), QChar(0x2029)}) line.replace(c, QChar(0x21b5));
  line.replace(QChar('\t'), QChar(' '));
  if (shown.size() < text.size()) line += QChar(0x2026);
  return line;
}

// As spreadsheets write and read it.
QString InCell(const QString& text) {
  const bool plain =
      std::none_of(text.begin(), text.end(), [](QChar c) { return c == '\t' || c == '\n' || c == '\r' || c == '"'; });
  return plain ? text : '"' + QString(text).replace('"', QLatin1String("\"\"")) + '"';
}

// A spreadsheet would work out what begins like this; behind an apostrophe it is a text to all of them.
QString AsText(const QString& text) {
  constexpr QLatin1String kFormula("=+-@\t\r\n");
  return !text.isEmpty() && kFormula.contains(text.front()) ? QLatin1Char('\'') + text : text;
}

}  // namespace

ResultModel::ResultModel(QObject* parent) : QAbstractTableModel(parent) {}

void ResultModel::Begin(const std::vector<std::string>& columns) {
  beginResetModel();
  names_.clear();
  std::ranges::transform(columns, std::back_inserter(names_), ToQString);
  rows_.clear();
  rows_.shrink_to_fit();
  numbers_.clear();
  bytes_ = 0;
  more_ = false;
  asked_ = false;
  endResetModel();
}

void ResultModel::Append(std::vector<ResultRow> rows, bool more) {
  asked_ = false;
  more_ = more;
  if (rows.empty()) return;
  if (rows_.empty()) FindNumbers(rows);
  const int first = static_cast<int>(rows_.size());
  beginInsertRows({}, first, first + static_cast<int>(rows.size()) - 1);
  for (ResultRow& row : rows) {
    bytes_ += BytesOf(row);
    rows_.push_back(std::move(row));
  }
  endInsertRows();
}

// A column of numbers has its name above them.
void ResultModel::FindNumbers(const std::vector<ResultRow>& rows) {
  numbers_.assign(names_.size(), false);
  for (std::size_t column = 0; column < names_.size(); ++column) {
    const auto value =
        std::ranges::find_if(rows, [column](const ResultRow& row) { return row[column].kind != ResultKind::Null; });
    numbers_[column] = value != rows.end() && (*value)[column].kind == ResultKind::Number;
  }
}

int ResultModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int ResultModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(names_.size());
}

QVariant ResultModel::data(const QModelIndex& index, int role) const {
  if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
  const ResultValue& value = rows_[static_cast<std::size_t>(index.row())][static_cast<std::size_t>(index.column())];
  const bool isNull = value.kind == ResultKind::Null;
  switch (role) {
    case Qt::DisplayRole:
      return isNull ? QStringLiteral("NULL") : OneLine(value.text);
    case Qt::ToolTipRole: {
      if (isNull) return {};
      const std::string_view shown = FirstCharacters(value.text, kTipCharacters);
      const bool cut = value.cut || shown.size() < value.text.size();
      // As it stands, also where it looks like markup.
      return "<span style='white-space:pre-wrap'>" + ToQString(shown).toHtmlEscaped() +
             (cut && value.kind != ResultKind::Binary ? QStringLiteral("\u2026") : QString()) + "</span>";
    }
    case Qt::TextAlignmentRole:
      return static_cast<int>(value.kind == ResultKind::Number ? Qt::AlignRight | Qt::AlignVCenter
                                                               : Qt::AlignLeading | Qt::AlignVCenter);
    case Qt::ForegroundRole:
      return isNull || value.kind == ResultKind::Binary ? QVariant(quiet_) : QVariant();
    default:
      return {};
  }
}

QVariant ResultModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (role == Qt::TextAlignmentRole && orientation == Qt::Horizontal) {
    const auto column = static_cast<std::size_t>(section);
    const bool number = column < numbers_.size() && numbers_[column];
    return static_cast<int>(number ? Qt::AlignRight | Qt::AlignVCenter : Qt::AlignLeading | Qt::AlignVCenter);
  }
  if (role != Qt::DisplayRole) return {};
  if (orientation == Qt::Vertical) return section + 1;
  return section < columnCount() ? names_[static_cast<std::size_t>(section)] : QVariant();
}

bool ResultModel::canFetchMore(const QModelIndex& parent) const {
  return !parent.isValid() && more_ && !asked_ && !IsFull();
}

void ResultModel::fetchMore(const QModelIndex& parent) {
  if (!canFetchMore(parent) || !want_) return;
  asked_ = true;
  want_();
}

QString ResultModel::SelectedText(const QItemSelection& selection, bool withNames, bool formulasAsText) const {
  std::set<int> rows;
  std::set<int> columns;
  for (const QItemSelectionRange& range : selection) {
    for (int row = range.top(); row <= range.bottom(); ++row) rows.insert(rows.end(), row);
    for (int column = range.left(); column <= range.right(); ++column) columns.insert(column);
  }
  const bool whole = selection.size() == 1;
  QString text;
  const auto line = [&](const auto& cell) {
    for (const int column : columns) {
      if (column != *columns.begin()) text += '\t';
      text += InCell(cell(column));
    }
    text += '\n';
  };
  if (withNames) {
    line([&](int column) {
      const QString& name = names_[static_cast<std::size_t>(column)];
      return formulasAsText ? AsText(name) : name;
    });
  }
  for (const int row : rows) {
    line([&](int column) {
      if (!whole && !selection.contains(index(row, column))) return QString();
      const ResultValue& value = rows_[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)];
      const QString shown = ToQString(value.text);
      return formulasAsText && value.kind != ResultKind::Number ? AsText(shown) : shown;
    });
  }
  return text;
}

}  // namespace zrqrybld
