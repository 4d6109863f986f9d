#include "designer/row_export.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QSet>

#include "zrqrybld/adapters/qt/qt_text.h"

namespace zrqrybld {
namespace {

// --- Between separators ---

// A spreadsheet would work out what begins like this; behind an apostrophe it is a text to all of them.
QString AsText(const QString& text) {
  constexpr QLatin1String kFormula("=+-@\t\r\n");
  return !text.isEmpty() && kFormula.contains(text.front()) ? QLatin1Char('\'') + text : text;
}

// As spreadsheets write and read it. In a file an empty text is told from nothing, and blanks at the ends are kept;
// what is copied between tabs is pasted into other texts, too, where quotes would be in the way.
QString InCell(const QString& text, QChar separator) {
  const bool edges = separator == ',' && (text.isEmpty() || text.front().isSpace() || text.back().isSpace());
  const bool plain = !edges && std::none_of(text.begin(), text.end(), [separator](QChar c) {
    return c == separator || c == '\n' || c == '\r' || c == '"';
  });
  return plain ? text : '"' + QString(text).replace('"', QLatin1String("\"\"")) + '"';
}

class SeparatedRows {
 public:
  SeparatedRows(const ResultModel& model, const RowExport& wanted)
      : model_(model), wanted_(wanted), separator_(wanted.format == RowFormat::Csv ? ',' : '\t') {}

  QString Head() const {
    if (!wanted_.names) return {};
    return Line([this](int column) { return Cell(model_.NameOf(column), wanted_.formulasAsText); });
  }
  QString Row(int row) const {
    return Line([this, row](int column) {
      const ResultValue& value = model_.ValueAt(row, column);
      if (value.kind == ResultKind::Null || (wanted_.holds && !wanted_.holds(row, column))) return QString();
      return Cell(ToQString(value.text), wanted_.formulasAsText && value.kind != ResultKind::Number);
    });
  }

 private:
  QString Cell(const QString& text, bool asText) const { return InCell(asText ? AsText(text) : text, separator_); }
  QString Line(const auto& cell) const {
    QString line;
    for (const int column : wanted_.columns) {
      if (column != wanted_.columns.front()) line += separator_;
      line += cell(column);
    }
    return line + (separator_ == ',' ? QLatin1String("\r\n") : QLatin1String("\n"));
  }

  const ResultModel& model_;
  const RowExport& wanted_;
  QChar separator_;
};

// --- JSON ---

QString Quoted(const QString& text) {
  const QByteArray array = QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact);
  return QString::fromUtf8(array.mid(1, array.size() - 2));
}

QString JsonValue(const ResultValue& value) {
  static const QRegularExpression kNumber(
      QRegularExpression::anchoredPattern("-?(0|[1-9][0-9]*)(\\.[0-9]+)?([eE][+-]?[0-9]+)?"));
  if (value.kind == ResultKind::Null) return QStringLiteral("null");
  const QString text = ToQString(value.text);
  return value.kind == ResultKind::Number && kNumber.match(text).hasMatch() ? text : Quoted(text);
}

// An object has each name once.
std::vector<QString> JsonKeys(const ResultModel& model, const std::vector<int>& columns) {
  QSet<QString> used;
  std::vector<QString> keys;
  for (const int column : columns) {
    QString key = model.NameOf(column);
    for (int number = 2; used.contains(key); ++number)
      key = QStringLiteral("%1 %2").arg(model.NameOf(column)).arg(number);
    used.insert(key);
    keys.push_back(Quoted(key));
  }
  return keys;
}

bool WriteJson(const ResultModel& model, const RowExport& wanted, const std::function<bool(const QByteArray&)>& write) {
  const std::vector<QString> keys = JsonKeys(model, wanted.columns);
  if (!write("[")) return false;
  for (const int row : wanted.rows) {
    QString object = row == wanted.rows.front() ? QStringLiteral("\n  {") : QStringLiteral(",\n  {");
    for (std::size_t i = 0; i < keys.size(); ++i) {
      if (i > 0) object += QStringLiteral(", ");
      const bool held = !wanted.holds || wanted.holds(row, wanted.columns[i]);
      object += keys[i] + QStringLiteral(": ") + (held ? JsonValue(model.ValueAt(row, wanted.columns[i])) : "null");
    }
    if (!write((object + '}').toUtf8())) return false;
  }
  return write(wanted.rows.empty() ? "]\n" : "\n]\n");
}

// --- Markdown ---

QString MarkdownCell(QString text) {
  text.replace('\\', QLatin1String("\\\\")).replace('|', QLatin1String("\\|"));
  text.replace('<', QLatin1String("&lt;")).replace(QLatin1String("\r\n"), QLatin1String("<br>"));
  return text.replace('\n', QLatin1String("<br>")).replace('\r', QLatin1String("<br>"));
}

QString MarkdownLine(const std::vector<int>& columns, const auto& cell) {
  QString line = QStringLiteral("|");
  for (const int column : columns) line += ' ' + cell(column) + QStringLiteral(" |");
  return line + '\n';
}

bool WriteMarkdown(const ResultModel& model, const RowExport& wanted,
                   const std::function<bool(const QByteArray&)>& write) {
  const auto name = [&](int column) { return MarkdownCell(model.NameOf(column)); };
  const auto rule = [&](int column) {
    return model.IsNumeric(column) ? QStringLiteral("---:") : QStringLiteral("---");
  };
  if (!write((MarkdownLine(wanted.columns, name) + MarkdownLine(wanted.columns, rule)).toUtf8())) return false;
  return std::ranges::all_of(wanted.rows, [&](int row) {
    return write(MarkdownLine(wanted.columns, [&](int column) {
                   if (wanted.holds && !wanted.holds(row, column)) return QString();
                   const ResultValue& value = model.ValueAt(row, column);
                   return value.kind == ResultKind::Null ? QStringLiteral("*NULL*")
                                                         : MarkdownCell(ToQString(value.text));
                 }).toUtf8());
  });
}

}  // namespace

bool WriteRows(const ResultModel& model, const RowExport& wanted, const std::function<bool(const QByteArray&)>& write) {
  if (wanted.format == RowFormat::Json) return WriteJson(model, wanted, write);
  if (wanted.format == RowFormat::Markdown) return WriteMarkdown(model, wanted, write);
  const SeparatedRows lines(model, wanted);
  return write(lines.Head().toUtf8()) &&
         std::ranges::all_of(wanted.rows, [&](int row) { return write(lines.Row(row).toUtf8()); });
}

}  // namespace zrqrybld
