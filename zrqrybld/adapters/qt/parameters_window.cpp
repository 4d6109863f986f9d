#include "zrqrybld/adapters/qt/parameters_window.h"
#include "zrqrybld/adapters/qt/named_combo.h"

#include <QAction>
#include <QComboBox>
#include <QDate>
#include <QEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QIconEngine>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>
#include <algorithm>

#include "zrqrybld/adapters/qt/date_popup.h"
#include "zrqrybld/adapters/qt/mark.h"
#include "zrqrybld/adapters/qt/qt_text.h"
#include "zrqrybld/adapters/qt/qt_text_area.h"
#include "zrqrybld/adapters/qt/say.h"
#include "zrqrybld/adapters/qt/theme.h"
#include "zrqrybld/base/texts_qt.h"
#include "zrqrybld/platform/schema_fields.h"
#include "zrqrybld/sql/highlighting.h"

namespace zrqrybld {
namespace {

constexpr int kSpacing = 8;
constexpr int kCharacters = 44;      // of an editor
constexpr int kMostFieldsShown = 8;  // more are scrolled
constexpr int kStatementLines = 9;

// In a quieter tone, which follows the palette.
class QuietLabel final : public QLabel {
 public:
  explicit QuietLabel(const QString& text) : QLabel(text) {
    setTextFormat(Qt::PlainText);
    Recolor();
  }

 protected:
  void changeEvent(QEvent* event) override {
    QLabel::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) Recolor();
  }

 private:
  void Recolor() {
    const QColor quiet = Theme::ForWindow(QApplication::palette()).Of(ColorRole::QuietText);
    if (palette().color(QPalette::WindowText) == quiet) return;
    QPalette own;  // with this colour alone, so that the others still follow
    own.setColor(QPalette::WindowText, quiet);
    setPalette(own);
  }
};

// A page of a calendar, in the colour that text has when it is painted.
class CalendarIcon final : public QIconEngine {
 public:
  void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
    constexpr qreal kSide = 64;
    const QPalette::ColorGroup group = mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active;
    const QColor ink = QApplication::palette().color(group, QPalette::Text);
    painter->save();
    painter->translate(rect.topLeft());
    painter->scale(rect.width() / kSide, rect.height() / kSide);
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(QPen(ink, 5));
    painter->drawRoundedRect(QRectF(8, 12, 48, 44), 5, 5);
    painter->fillRect(QRectF(8, 14, 48, 12), ink);
    painter->drawLine(QPointF(20, 5), QPointF(20, 14));
    painter->drawLine(QPointF(44, 5), QPointF(44, 14));
    for (const int y : {33, 44}) {
      for (const int x : {17, 29, 41}) painter->fillRect(QRectF(x, y, 6, 5), ink);
    }
    painter->restore();
  }
  QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
    QPixmap picture(size);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    paint(&painter, QRect(QPoint(), size), mode, state);
    return picture;
  }
  QIconEngine* clone() const override { return new CalendarIcon(*this); }
};

}  // namespace

QWidget* ParametersWindow::Editor::Widget() const { return line ? static_cast<QWidget*>(line) : choice; }

ParametersWindow::ParametersWindow(const ParametersDialog& dialog, QWidget* parent, const TextSource& texts)
    : QDialog(parent),
      texts_(texts),
      dialog_(dialog),
      statement_(new QtTextArea),
      mark_(new Mark),
      message_(new QLabel) {
  setWindowTitle(ToQString(dialog_.caption));

  statement_->SetReadOnly(true);
  statement_->SetHighlighter(HighlightSql);
  statement_->SetLineNumbers(false);
  statement_->setTabChangesFocus(true);
  statement_->setLineWrapMode(QPlainTextEdit::WidgetWidth);
  statement_->setMinimumHeight(fontMetrics().lineSpacing() * kStatementLines / 2);
  auto* statementLabel = new QLabel(ToQString(dialog_.statementLabel));
  statementLabel->setTextFormat(Qt::PlainText);
  statementLabel->setBuddy(statement_);
  statement_->setAccessibleName(ToQString(dialog_.statementLabel).remove(QLatin1Char('&')));

  message_->setTextFormat(Qt::PlainText);
  message_->setWordWrap(true);
  message_->setMinimumHeight(fontMetrics().lineSpacing() * 2);  // nothing moves while one types
  message_->setAlignment(Qt::AlignLeading | Qt::AlignTop);
  auto* message = new QHBoxLayout;
  message->setSpacing(kSpacing);
  message->addWidget(mark_, 0, Qt::AlignTop);
  message->addWidget(message_, 1);

  accept_ = new QPushButton(ToQString(dialog_.acceptButton));
  accept_->setDefault(true);
  auto* cancel = new QPushButton(ToQString(dialog_.cancelButton));
  cancel->setAutoDefault(false);
  auto* buttons = new QHBoxLayout;
  buttons->setSpacing(kSpacing);
  buttons->addStretch();
  buttons->addWidget(accept_);
  buttons->addWidget(cancel);

  auto* layout = new QVBoxLayout(this);
  layout->setSpacing(kSpacing);
  layout->addWidget(MakeForm());
  layout->addLayout(message);
  layout->addWidget(statementLabel);
  layout->addWidget(statement_, 1);
  layout->addLayout(buttons);
  resize(sizeHint().width(), sizeHint().height() + fontMetrics().lineSpacing() * kStatementLines / 2);

  connect(accept_, &QPushButton::clicked, this, &QDialog::accept);
  connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
  Check();
  if (!editors_.empty()) editors_.front().Widget()->setFocus();
}

// --- Fields ---

QWidget* ParametersWindow::MakeForm() {
  auto* page = new QWidget;
  auto* form = new QGridLayout(page);
  form->setContentsMargins(0, 0, 0, 0);
  form->setSpacing(kSpacing);
  form->setColumnStretch(1, 1);
  for (const ParameterField& field : dialog_.fields) {
    const Editor editor = MakeEditor(field);
    editors_.push_back(editor);
    editor.Widget()->setAccessibleName(ToQString(field.prompt));
    editor.Widget()->setAccessibleDescription(ToQString(field.typeName));
    auto* label = new QLabel(ToQString(field.prompt).replace(QLatin1Char('&'), QLatin1String("&&")));
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setMinimumWidth(std::min(label->sizeHint().width(), fontMetrics().averageCharWidth() * kCharacters / 2));
    label->setBuddy(editor.Widget());
    const int row = static_cast<int>(editors_.size()) - 1;
    form->addWidget(label, row, 0);
    form->addWidget(editor.Widget(), row, 1);
    form->addWidget(new QuietLabel(ToQString(field.typeName)), row, 2);
  }
  auto* area = new QScrollArea;
  area->setFrameShape(QFrame::NoFrame);
  area->setFocusPolicy(Qt::NoFocus);  // it follows the field that has the keyboard
  area->setWidgetResizable(true);
  area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  area->setWidget(page);
  area->setMinimumWidth(page->sizeHint().width() + (editors_.size() > kMostFieldsShown ? kSpacing * 3 : 0));
  const int shown = static_cast<int>(std::min<std::size_t>(editors_.size(), kMostFieldsShown));
  const int all = std::max(1, static_cast<int>(editors_.size()));
  area->setFixedHeight(page->sizeHint().height() * shown / all + 2);
  return area;
}

ParametersWindow::Editor ParametersWindow::MakeEditor(const ParameterField& field) {
  Editor editor;
  const ValueKind kind = ValueKindOf(field.dataType);
  if (kind == ValueKind::Boolean) {
    editor.choice = new NamedCombo(ToQString(field.prompt));
    const QString fallback = ToQString(field.fallback);
    editor.choice->addItem(
        fallback.isEmpty() ? Say(texts_, text::ChooseYesOrNo) : Say(texts_, text::DefaultValue, fallback), QString());
    editor.choice->addItem(Say(texts_, text::Yes), QStringLiteral("yes"));
    editor.choice->addItem(Say(texts_, text::No), QStringLiteral("no"));
    // What was given may be another word for either.
    const QString given = ToQString(field.value).trimmed().toLower();
    constexpr const char* kYes[] = {"yes", "true", "on", "1", "-1"};
    const bool yes = std::ranges::any_of(kYes, [&](const char* word) { return given == QLatin1String(word); });
    editor.choice->setCurrentIndex(given.isEmpty() ? 0 : yes ? 1 : 2);
    connect(editor.choice, &QComboBox::currentIndexChanged, this, &ParametersWindow::Check);
    return editor;
  }
  editor.line = new QLineEdit(ToQString(field.value));
  editor.line->setMinimumWidth(fontMetrics().averageCharWidth() * kCharacters);
  if (!field.fallback.empty())
    editor.line->setPlaceholderText(Say(texts_, text::DefaultValue, ToQString(field.fallback)));
  if (kind == ValueKind::Number) editor.line->setInputMethodHints(Qt::ImhFormattedNumbersOnly);
  const bool isTime = field.dataType == static_cast<std::int32_t>(DataTypeCode::DbTime);
  if (kind == ValueKind::Date && !isTime) AddCalendar(*editor.line);
  editor.line->selectAll();
  connect(editor.line, &QLineEdit::textChanged, this, &ParametersWindow::Check);
  return editor;
}

// A date can be typed in any form that criteria take; the calendar writes one that cannot be misread.
void ParametersWindow::AddCalendar(QLineEdit& line) {
  QAction* open = line.addAction(QIcon(new CalendarIcon), QLineEdit::TrailingPosition);
  open->setToolTip(Say(texts_, text::Calendar));
  open->setShortcut(Qt::ALT | Qt::Key_Down);
  open->setShortcutContext(Qt::WidgetShortcut);
  connect(open, &QAction::triggered, &line, [&line] {
    const QDate typed = QDate::fromString(line.text().trimmed().left(10), Qt::ISODate);
    ChooseDay(line, typed, [&line](QDate date) { line.setText(date.toString(Qt::ISODate)); });
  });
}

// --- Values ---

std::vector<std::string> ParametersWindow::Values() const {
  std::vector<std::string> values;
  values.reserve(editors_.size());
  for (const Editor& editor : editors_) {
    values.push_back(ToUtf8(editor.line ? editor.line->text() : editor.choice->currentData().toString()));
  }
  return values;
}

// The message is about the field with the keyboard, if that has a fault, otherwise about the first one that has.
void ParametersWindow::Check() {
  boundary_.Run([this] {
    const std::vector<std::string> values = Values();
    QString message;
    for (std::size_t i = 0; i < values.size(); ++i) {
      const std::string problem = dialog_.problem ? dialog_.problem(i, values[i]) : std::string();
      if (problem.empty()) continue;
      const bool current = editors_[i].Widget()->hasFocus();
      if (message.isEmpty() || current) message = ToQString(dialog_.fields[i].prompt + ": " + problem);
      if (current) break;
    }
    message_->setText(message);
    message_->setAccessibleName(message);
    mark_->Show(message.isEmpty() ? Mark::Kind::None : Mark::Kind::Warning);
    accept_->setEnabled(message.isEmpty());
    if (dialog_.statement) statement_->SetText(dialog_.statement(values));
  });
}

}  // namespace zrqrybld
