#include "designer/value_window.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QJsonDocument>
#include <QLabel>
#include <QLocale>
#include <QPlainTextEdit>
#include <QVBoxLayout>

#include "zrqrybld/adapters/qt/say.h"
#include "zrqrybld/base/texts_designer.h"

namespace zrqrybld {
namespace {

// Empty when it is none, or has nothing to be set out.
QString JsonLines(const ResultValue& value) {
  if (value.cut || value.text.empty() || (value.text.front() != '{' && value.text.front() != '[')) return {};
  return QString::fromUtf8(QJsonDocument::fromJson(QByteArray::fromStdString(value.text)).toJson());
}

}  // namespace

QString ByteLines(const ResultValue& value) {
  constexpr qsizetype kInLine = 16;
  const std::size_t at = value.text.find("0x");
  if (at == std::string::npos) return {};
  const QByteArray bytes = QByteArray::fromHex(QByteArray::fromStdString(value.text.substr(at + 2)));
  QString lines;
  for (qsizetype first = 0; first < bytes.size(); first += kInLine) {
    const QByteArray line = bytes.mid(first, kInLine);
    QString letters;
    for (const char byte : line) letters += byte >= ' ' && byte <= '~' ? QLatin1Char(byte) : QLatin1Char('.');
    lines += QStringLiteral("%1  %2  %3\n")
                 .arg(first, 8, 16, QLatin1Char('0'))
                 .arg(QString::fromLatin1(line.toHex(' ')), -(kInLine * 3 - 1))
                 .arg(letters);
  }
  return lines;
}

ValueWindow::ValueWindow(const ResultValue& value, const QString& caption, const TextSource& texts, QWidget* parent)
    : QDialog(parent), texts_(texts) {
  setWindowTitle(caption);
  const bool binary = value.kind == ResultKind::Binary;
  const QString plain = binary ? ByteLines(value) : ToQString(value.text);
  const QString json = binary ? QString() : JsonLines(value);
  auto* about = new QLabel(Describe(value));
  about->setTextFormat(Qt::PlainText);
  auto* text = new QPlainTextEdit(plain);
  text->setReadOnly(true);
  text->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  text->setTabChangesFocus(true);
  text->setAccessibleName(caption);
  text->setLineWrapMode(binary ? QPlainTextEdit::NoWrap : QPlainTextEdit::WidgetWidth);
  if (binary || !json.isEmpty()) text->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));

  auto* wrap = new QCheckBox(Say(texts_, text::ValueWrap));
  wrap->setChecked(!binary);
  wrap->setVisible(!binary);
  connect(wrap, &QCheckBox::toggled, text,
          [text](bool on) { text->setLineWrapMode(on ? QPlainTextEdit::WidgetWidth : QPlainTextEdit::NoWrap); });
  auto* format = new QCheckBox(Say(texts_, text::ValueJson));
  format->setVisible(!json.isEmpty());
  connect(format, &QCheckBox::toggled, text, [=](bool on) { text->setPlainText(on ? json : plain); });
  format->setChecked(!json.isEmpty());

  auto* foot = new QHBoxLayout;
  foot->addWidget(wrap);
  foot->addWidget(format);
  foot->addStretch();
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  foot->addWidget(buttons);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(about);
  layout->addWidget(text, 1);
  layout->addLayout(foot);
  resize(fontMetrics().averageCharWidth() * 90, fontMetrics().height() * 22);
  text->setFocus();
}

QString ValueWindow::Describe(const ResultValue& value) const {
  if (value.kind == ResultKind::Null) return Say(texts_, text::ValueNull);
  if (value.kind == ResultKind::Binary) return ToQString(value.text.substr(0, value.text.find("  0x")));
  if (value.text.empty()) return Say(texts_, text::ValueEmpty);
  const QString characters = QLocale::c().toString(ToQString(value.text).toUcs4().size());
  const QString said = Say(texts_, text::ValueCharacters, characters);
  return value.cut ? said + "; " + Say(texts_, text::ValueCut) : said;
}

}  // namespace zrqrybld
