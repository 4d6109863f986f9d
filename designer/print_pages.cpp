#include "designer/print_pages.h"

#include <QFontDatabase>
#include <QFontInfo>
#include <QLocale>
#include <QPagedPaintDevice>
#include <QPainter>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextTable>
#include <algorithm>

#include "designer/result_model.h"
#include "zrqrybld/adapters/qt/qt_canvas.h"
#include "zrqrybld/adapters/qt/query_designer_widget.h"
#include "zrqrybld/adapters/qt/say.h"
#include "zrqrybld/base/texts_designer.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/sql/highlighting.h"
#include "zrqrybld/sql/sql_pane.h"

namespace zrqrybld {
namespace {

constexpr double kUnits = 96;     // to the inch: pages are laid out as windows are
constexpr double kEdge = 28;      // of the lines at head and foot
constexpr int kCharacters = 200;  // of a value
constexpr double kRowsPoint = 8;  // the size of letters
constexpr double kTextPoint = 9.5;

const QPalette& PaperColors() {
  static const QPalette kPaper(QColor(240, 240, 240), Qt::white);
  return kPaper;
}

QString Number(int number) { return QLocale::c().toString(number); }

// --- What is written ---

QTextCharFormat Letters(double size, const QColor& color, bool fixed = false) {
  QFont font = fixed ? QFontDatabase::systemFont(QFontDatabase::FixedFont) : QFont();
  font.setPointSizeF(size);
  QTextCharFormat format;
  format.setFont(font);
  format.setForeground(color);
  return format;
}

void WriteStatement(QTextCursor& cursor, const std::string& sql, const Theme& theme) {
  cursor.insertBlock();
  const QTextCharFormat plain = Letters(kTextPoint, theme.Of(ColorRole::Text), true);
  std::size_t written = 0;
  const auto write = [&](std::size_t end, const QTextCharFormat& format) {
    cursor.insertText(ToQString(sql.substr(written, end - written)).replace("\r\n", QString(QChar::LineSeparator)),
                      format);
    written = end;
  };
  std::vector<TextSpan> spans = HighlightSql(sql);
  std::ranges::stable_sort(spans, {}, &TextSpan::start);
  for (const TextSpan& span : spans) {
    if (span.start < written) continue;
    write(span.start, plain);
    QTextCharFormat format = plain;
    format.setForeground(theme.Of(span.role));
    if (span.bold) format.setFontWeight(QFont::Bold);
    write(span.start + span.length, format);
  }
  write(sql.size(), plain);
}

void WriteCell(const QTextTable& table, int row, int column, const QString& text, const QTextCharFormat& letters,
               bool right) {
  QTextCursor cursor = table.cellAt(row, column).firstCursorPosition();
  QTextBlockFormat block;
  block.setAlignment(right ? Qt::AlignRight : Qt::AlignLeft);
  cursor.setBlockFormat(block);
  cursor.insertText(text, letters);
}

void WriteRows(QTextCursor& cursor, const ResultModel& model, const Theme& theme, const TextSource& texts) {
  const int rows = std::min(model.rowCount(), kMostPrintedRows);
  QTextTableFormat format;
  format.setHeaderRowCount(1);
  format.setBorderCollapse(true);
  format.setBorder(0.5);
  format.setBorderBrush(theme.Of(ColorRole::GridLine));
  format.setCellPadding(3);
  format.setCellSpacing(0);
  format.setTopMargin(12);
  cursor.insertBlock();
  const QTextTable& table = *cursor.insertTable(rows + 1, model.columnCount(), format);
  const QTextCharFormat letters = Letters(kRowsPoint, theme.Of(ColorRole::Text));
  QTextCharFormat head = letters;
  head.setFontWeight(QFont::Bold);
  QTextCharFormat quiet = Letters(kRowsPoint, theme.Of(ColorRole::QuietText));
  quiet.setFontItalic(true);
  for (int column = 0; column < model.columnCount(); ++column) {
    WriteCell(table, 0, column, model.NameOf(column), head, model.IsNumeric(column));
    for (int row = 0; row < rows; ++row) {
      const bool isNull = model.ValueAt(row, column).kind == ResultKind::Null;
      const QString text = model.index(row, column).data().toString().left(kCharacters);
      WriteCell(table, row + 1, column, text, isNull ? quiet : letters,
                model.ValueAt(row, column).kind == ResultKind::Number);
    }
  }
  cursor.movePosition(QTextCursor::End);
  if (rows == model.rowCount()) return;
  cursor.insertBlock();
  cursor.insertText(Say(texts, text::PrintRowsCut, Number(rows), Number(model.rowCount())), quiet);
}

// --- Where it stands ---

class Pages {
 public:
  Pages(QPagedPaintDevice& device, QString title, const TextSource& texts, const Theme& theme)
      : device_(device), title_(std::move(title)), texts_(texts), theme_(theme) {
    const QRect paper = device.pageLayout().paintRectPixels(device.logicalDpiX());
    scale_ = device.logicalDpiX() / kUnits;
    page_ = QRectF(0, 0, paper.width() / scale_, paper.height() / scale_);
    body_ = page_.adjusted(0, kEdge, 0, -kEdge);
  }

  bool Begin() { return painter_.begin(&device_); }
  const QRectF& Body() const { return body_; }
  QPainter& Painter() { return painter_; }

  /// Begins a page, of so many.
  void Next(int total) {
    if (number_++ > 0) {
      painter_.restore();
      device_.newPage();
    }
    painter_.save();
    painter_.scale(scale_, scale_);
    QFont font;
    font.setPixelSize(11);
    painter_.setFont(font);
    painter_.setPen(theme_.Of(ColorRole::QuietText));
    painter_.drawText(page_, Qt::AlignTop | Qt::AlignLeft, title_);
    painter_.drawText(page_, Qt::AlignBottom | Qt::AlignRight,
                      Say(texts_, text::PrintPage, Number(number_), Number(total)));
  }
  bool End() {
    if (number_ > 0) painter_.restore();
    return painter_.end();
  }

 private:
  QPagedPaintDevice& device_;
  QString title_;
  const TextSource& texts_;
  const Theme& theme_;
  QPainter painter_;
  double scale_ = 1;
  QRectF page_;
  QRectF body_;
  int number_ = 0;
};

// As large as the page lets it, and no larger than on the screen.
void DrawDiagram(Pages& pages, const QueryDesignerWidget& designer, const Theme& theme) {
  const qbDiagramPane& diagram = *designer.QueryBuilder().DiagramPane();
  const PixelSize size = diagram.PictureSize();
  const QRectF& body = pages.Body();
  const double zoom = std::min({1.0, body.width() / size.width.Value(), body.height() / size.height.Value()});
  pages.Painter().translate(body.topLeft());
  pages.Painter().scale(zoom, zoom);
  // In units of the page: a size in points would be that of the paper's finer dots once more.
  QFont font = designer.DiagramView().font();
  font.setPixelSize(QFontInfo(font).pixelSize());
  const QtMetrics metrics(font);
  QtCanvas canvas(pages.Painter(), theme, metrics, &designer);
  diagram.PaintPicture(canvas);
}

}  // namespace

bool PrintQuery(QPagedPaintDevice& device, const QueryDesignerWidget& designer, const ResultModel& rows,
                const PrintedParts& parts, const QString& title, const TextSource& texts) {
  Theme theme(PaperColors());
  Pages pages(device, title, texts, theme);
  const qbQueryBuilder& hub = designer.QueryBuilder();
  const bool diagram = parts.diagram && hub.Entities()->Count() > 0;
  QTextDocument document;
  document.setDocumentMargin(0);
  document.setPageSize(pages.Body().size());
  QTextOption wrap;
  wrap.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
  document.setDefaultTextOption(wrap);
  QTextCursor cursor(&document);
  if (parts.statement) WriteStatement(cursor, hub.SQLPane()->SQLStatement(), theme);
  if (parts.rows && rows.rowCount() > 0) WriteRows(cursor, rows, theme, texts);
  const int written = document.isEmpty() ? 0 : document.pageCount();
  const int total = written + (diagram ? 1 : 0);
  if (total == 0 || !pages.Begin()) return false;
  if (diagram) {
    pages.Next(total);
    DrawDiagram(pages, designer, theme);
  }
  const QRectF body = pages.Body();
  for (int page = 0; page < written; ++page) {
    pages.Next(total);
    pages.Painter().translate(body.left(), body.top() - page * body.height());
    document.drawContents(&pages.Painter(), QRectF(0, page * body.height(), body.width(), body.height()));
  }
  return pages.End();
}

}  // namespace zrqrybld
