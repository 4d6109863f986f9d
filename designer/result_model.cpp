#include "designer/result_model.h"

#include <QFont>
#include <algorithm>
#include <charconv>
#include <iterator>
#include <numeric>

#include "zrqrybld/adapters/qt/qt_text.h"
#include "zrqrybld/base/text.h"

namespace zrqrybld {
namespace {

constexpr std::size_t kShownCharacters = 200;
constexpr std::size_t kTipCharacters = 2000;
constexpr std::size_t kSortedCharacters = 200;  // what is alike so far keeps its order

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

// What rows are sorted by, made once for each: nothing, a number, or a text without regard to case.
struct SortKey {
  int kind = 0;
  double number = 0;
  QString text;
  std::uint32_t row = 0;

  SortKey(const ResultValue& value, std::uint32_t place) : row(place) {
    if (value.kind == ResultKind::Null) return;
    kind = 2;
    if (value.kind == ResultKind::Number) {
      const char* const end = value.text.data() + value.text.size();
      const auto [at, error] = std::from_chars(value.text.data(), end, number);
      if (error == std::errc() && at == end) kind = 1;
    }
    if (kind == 2) text = ToQString(FirstCharacters(value.text, kSortedCharacters)).toCaseFolded();
  }
};

bool ComesFirst(const SortKey& a, const SortKey& b) {
  if (a.kind != b.kind) return a.kind < b.kind;
  return a.kind == 1 ? a.number < b.number : a.text < b.text;
}

}  // namespace

ResultModel::ResultModel(QObject* parent) : QAbstractTableModel(parent) {}

void ResultModel::Begin(const std::vector<std::string>& columns) {
  beginResetModel();
  names_.clear();
  std::ranges::transform(columns, std::back_inserter(names_), ToQString);
  rows_.clear();
  rows_.shrink_to_fit();
  shown_.clear();
  numbers_.clear();
  filter_.clear();
  sortedBy_ = -1;
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
  std::vector<std::uint32_t> passing;
  for (ResultRow& row : rows) {
    if (Passes(row)) passing.push_back(static_cast<std::uint32_t>(rows_.size()));
    bytes_ += BytesOf(row);
    rows_.push_back(std::move(row));
  }
  if (passing.empty()) return;
  const int first = static_cast<int>(shown_.size());
  beginInsertRows({}, first, first + static_cast<int>(passing.size()) - 1);
  shown_.insert(shown_.end(), passing.begin(), passing.end());
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

bool ResultModel::IsNumeric(int column) const {
  const auto at = static_cast<std::size_t>(column);
  return at < numbers_.size() && numbers_[at];
}

// --- What is shown, and in which order ---

bool ResultModel::Passes(const ResultRow& row) const {
  return filter_.isEmpty() || std::ranges::any_of(row, [this](const ResultValue& value) {
           return (value.kind == ResultKind::Null ? QStringLiteral("NULL") : ToQString(value.text))
               .contains(filter_, Qt::CaseInsensitive);
         });
}

void ResultModel::SortShown() {
  if (sortedBy_ < 0) {
    std::ranges::sort(shown_);
    return;
  }
  std::vector<SortKey> keys;
  keys.reserve(shown_.size());
  for (const std::uint32_t row : shown_) keys.emplace_back(rows_[row][static_cast<std::size_t>(sortedBy_)], row);
  // What is alike keeps the source's order, whichever way the others are turned.
  std::ranges::sort(keys, {}, &SortKey::row);
  std::ranges::stable_sort(keys, [this](const SortKey& a, const SortKey& b) {
    return sortOrder_ == Qt::AscendingOrder ? ComesFirst(a, b) : ComesFirst(b, a);
  });
  std::ranges::transform(keys, shown_.begin(), &SortKey::row);
}

// The selection goes with its rows.
void ResultModel::ShowAnew(const std::function<void()>& change) {
  Q_EMIT layoutAboutToBeChanged();
  const QModelIndexList before = persistentIndexList();
  std::vector<std::uint32_t> rows;
  for (const QModelIndex& one : before) rows.push_back(shown_[static_cast<std::size_t>(one.row())]);
  change();
  std::vector<int> places(before.isEmpty() ? 0 : rows_.size(), -1);
  for (std::size_t i = 0; i < shown_.size() && !places.empty(); ++i) places[shown_[i]] = static_cast<int>(i);
  QModelIndexList after;
  for (qsizetype i = 0; i < before.size(); ++i) {
    const int place = places[rows[static_cast<std::size_t>(i)]];
    after += place < 0 ? QModelIndex() : index(place, before[i].column());
  }
  changePersistentIndexList(before, after);
  Q_EMIT layoutChanged();
}

void ResultModel::sort(int column, Qt::SortOrder order) {
  if (column >= columnCount()) return;
  if (column < 0 && sortedBy_ < 0) return;
  sortedBy_ = column;
  sortOrder_ = order;
  ShowAnew([this] { SortShown(); });
}

void ResultModel::SetFilter(const QString& text) {
  if (text == filter_) return;
  filter_ = text;
  ShowAnew([this] {
    shown_.clear();
    for (std::uint32_t row = 0; row < rows_.size(); ++row) {
      if (Passes(rows_[row])) shown_.push_back(row);
    }
    SortShown();
  });
}

// --- For the view ---

int ResultModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(shown_.size());
}

int ResultModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(names_.size());
}

QVariant ResultModel::data(const QModelIndex& index, int role) const {
  if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
  const ResultValue& value = ValueAt(index.row(), index.column());
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
    case Qt::FontRole: {
      if (!isNull) return {};  // a text "NULL" stands upright
      QFont font;
      font.setItalic(true);
      return font;
    }
    default:
      return {};
  }
}

QVariant ResultModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (role == Qt::TextAlignmentRole) {
    const bool right = orientation == Qt::Vertical || IsNumeric(section);
    return static_cast<int>(right ? Qt::AlignRight | Qt::AlignVCenter : Qt::AlignLeading | Qt::AlignVCenter);
  }
  if (role == Qt::ToolTipRole && orientation == Qt::Horizontal) return headerTip_;
  if (role != Qt::DisplayRole) return {};
  if (orientation == Qt::Vertical) return section + 1;
  // With the air that values have around them.
  return section < columnCount() ? QChar::Nbsp + NameOf(section) + QChar::Nbsp : QVariant();
}

bool ResultModel::canFetchMore(const QModelIndex& parent) const {
  return !parent.isValid() && more_ && !asked_ && !IsFull();
}

void ResultModel::fetchMore(const QModelIndex& parent) {
  if (!canFetchMore(parent) || !want_) return;
  asked_ = true;
  want_();
}

}  // namespace zrqrybld
