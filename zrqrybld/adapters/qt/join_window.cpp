#include "zrqrybld/adapters/qt/join_window.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QPainterPath>
#include <QPushButton>
#include <QRegularExpression>
#include <QVBoxLayout>
#include <algorithm>
#include <array>
#include <initializer_list>

#include "zrqrybld/adapters/qt/join_pairs.h"
#include "zrqrybld/adapters/qt/mark.h"
#include "zrqrybld/adapters/qt/plain_tip.h"
#include "zrqrybld/adapters/qt/predictive_text.h"
#include "zrqrybld/adapters/qt/qt_text.h"
#include "zrqrybld/adapters/qt/qt_text_area.h"
#include "zrqrybld/adapters/qt/say.h"
#include "zrqrybld/adapters/qt/telling_order.h"
#include "zrqrybld/adapters/qt/theme.h"
#include "zrqrybld/base/texts_diagram.h"
#include "zrqrybld/sql/highlighting.h"

namespace zrqrybld {
namespace {

// How wide the texts are, and may become for the sake of long names, in characters.
constexpr int kTextWidth = 60;
constexpr int kMostTextWidth = 84;

// The text of a check box, in which a table's name marks no access key.
QString CheckBoxText(const std::string& text, const std::string& table) {
  const QString name = ToQString(table);
  QString escaped = name;
  escaped.replace(QLatin1Char('&'), QLatin1String("&&"));
  QString result = ToQString(text);
  if (escaped != name && !result.contains(escaped)) result.replace(name, escaped);
  return result;
}

// The text with places to break it in words that are wider than a line.
QString Breakable(const QString& text, const QFontMetrics& metrics, int width) {
  QStringList words = text.split(QLatin1Char(' '));
  for (QString& word : words) {
    if (metrics.horizontalAdvance(word) <= width) continue;
    for (qsizetype i = word.size() - 1; i > 0; --i) {
      if (!word[i].isLowSurrogate()) word.insert(i, QChar(0x200b));
    }
  }
  return words.join(QLatin1Char(' '));
}

// What does not fit is cut out of the middle, and then the tool tip tells it.
void FitCheckBox(QCheckBox& box, int width) {
  const int frame = box.sizeHint().width() - box.fontMetrics().size(Qt::TextShowMnemonic, box.text()).width();
  const QString fitting =
      box.fontMetrics().elidedText(box.text(), Qt::ElideMiddle, width - frame, Qt::TextShowMnemonic);
  if (fitting == box.text()) return;
  QString whole = box.text();
  whole.replace(QRegularExpression(QStringLiteral("&(.)")), QStringLiteral("\\1"));
  box.setAccessibleName(whole);
  box.setToolTip(PlainTip(whole));
  box.setText(fitting);
}

}  // namespace

// --- The picture ---

// Two tables as overlapping circles; the part that is returned is filled.
class JoinPicture final : public QWidget {
 public:
  JoinPicture(const std::string& table1, const std::string& table2) : names_{ToQString(table1), ToQString(table2)} {
    setObjectName(QStringLiteral("picture"));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  }

  void Show(bool all1, bool all2) {
    all_[0] = all1;
    all_[1] = all2;
    update();
  }

  QSize sizeHint() const override {
    return {fontMetrics().averageCharWidth() * kTextWidth, 2 * kAir + fontMetrics().height() + kGap + 2 * Radius()};
  }

 protected:
  void paintEvent(QPaintEvent*) override;

 private:
  static constexpr int kAir = 12;
  static constexpr int kGap = 8;

  int Radius() const { return fontMetrics().height() * 9 / 4; }

  std::array<QString, 2> names_;
  std::array<bool, 2> all_{};
};

void JoinPicture::paintEvent(QPaintEvent*) {
  const Theme theme(palette());
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(theme.Of(ColorRole::BoxFrame), 1));
  painter.setBrush(theme.Of(ColorRole::Box));
  painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 4, 4);

  const double radius = Radius();
  const double top = kAir + fontMetrics().height() + kGap;
  const QPointF middle(width() / 2.0, top + radius);
  const double offset = radius * 0.6;
  // The first table is where reading begins.
  const double side = isRightToLeft() ? 1 : -1;
  const std::array centers{middle + QPointF(side * offset, 0), middle - QPointF(side * offset, 0)};
  std::array<QPainterPath, 2> circles;
  for (std::size_t i = 0; i < 2; ++i) circles[i].addEllipse(centers[i], radius, radius);

  QPainterPath returned = circles[0].intersected(circles[1]);
  for (std::size_t i = 0; i < 2; ++i) {
    if (all_[i]) returned = returned.united(circles[i]);
  }
  painter.fillPath(returned, theme.Of(ColorRole::JoinSelected));
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(theme.Of(ColorRole::Text), 1.5));
  for (const QPainterPath& circle : circles) painter.drawPath(circle);

  // Each name begins or ends at the picture's middle, over its circle.
  painter.setPen(theme.Of(ColorRole::Text));
  const double nameWidth = width() / 2.0 - kAir - kGap;
  for (std::size_t i = 0; i < 2; ++i) {
    const bool left = centers[i].x() < middle.x();
    const QString name = fontMetrics().elidedText(names_[i], Qt::ElideMiddle, static_cast<int>(nameWidth));
    const double wanted = fontMetrics().horizontalAdvance(name) + 1.0;
    // Centred over the circle's own part, as far as the name of the other table leaves room.
    const double own = middle.x() + (left ? -1 : 1) * radius;
    const double least = left ? kAir : middle.x() + kGap;
    const double x = std::clamp(own - wanted / 2, least, std::max(least, least + nameWidth - wanted));
    painter.drawText(QRectF(x, kAir, wanted, fontMetrics().height()), Qt::AlignCenter | Qt::TextSingleLine, name);
  }
}

// --- The window ---

JoinWindow::JoinWindow(const JoinDialog& dialog, QWidget* parent, const TextSource& texts)
    : QDialog(parent, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint), dialog_(dialog), texts_(texts) {
  setWindowTitle(ToQString(dialog_.caption));

  auto* group = new QGroupBox(ToQString(dialog_.frame));
  all1_ = new QCheckBox(CheckBoxText(dialog_.allOfTable1, dialog_.table1));
  all1_->setChecked(dialog_.table1Checked);
  all2_ = new QCheckBox(CheckBoxText(dialog_.allOfTable2, dialog_.table2));
  all2_->setChecked(dialog_.table2Checked);
  auto* checks = new QVBoxLayout(group);
  checks->addWidget(all1_);
  checks->addWidget(all2_);

  sentence_ = new QLabel;
  sentence_->setTextFormat(Qt::PlainText);
  sentence_->setWordWrap(true);
  sentence_->setAlignment(Qt::AlignLeading | Qt::AlignTop);
  picture_ = new JoinPicture(dialog_.table1, dialog_.table2);

  accept_ = new QPushButton(ToQString(dialog_.acceptButton));
  accept_->setDefault(true);
  auto* cancelButton = new QPushButton(ToQString(dialog_.cancelButton));
  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  buttons->addWidget(accept_);
  buttons->addWidget(cancelButton);

  auto* layout = new QVBoxLayout(this);
  layout->setSizeConstraint(QLayout::SetFixedSize);
  layout->setSpacing(8);
  layout->addWidget(group);
  layout->addWidget(sentence_);
  layout->addWidget(picture_);
  if (dialog_.conditionForm) {
    pairs_ = new JoinPairs(dialog_, texts_);
    layout->addWidget(pairs_);
  }
  const int belowPairs = layout->count();
  if (AnyAnswer(dialog_.warning)) layout->addWidget(MakeWarning());
  layout->addSpacing(4);
  layout->addLayout(buttons);

  // The window keeps its size whatever is chosen, so the texts get the room that the longest one needs.
  const int most = fontMetrics().averageCharWidth() * kMostTextWidth;
  const int groupFrame = group->sizeHint().width() - std::max(all1_->sizeHint().width(), all2_->sizeHint().width());
  for (QCheckBox* box : {all1_, all2_}) FitCheckBox(*box, most - groupFrame);
  const int width = std::max({picture_->sizeHint().width(), group->sizeHint().width(), buttons->sizeHint().width(),
                              pairs_ ? pairs_->sizeHint().width() : 0});
  picture_->setFixedWidth(width);
  sentence_->setFixedWidth(width);
  sentence_->setFixedHeight(TallestAnswer(*sentence_, dialog_.describe, width));
  sentence_->setVisible(static_cast<bool>(dialog_.describe));

  connect(all1_, &QCheckBox::toggled, this, &JoinWindow::ShowChoice);
  connect(all2_, &QCheckBox::toggled, this, &JoinWindow::ShowChoice);
  connect(accept_, &QPushButton::clicked, this, &QDialog::accept);
  connect(cancelButton, &QPushButton::clicked, this, &QDialog::reject);
  if (warning_) {
    const int textWidth = width - warningMark_->sizeHint().width() - 8;
    warning_->setFixedWidth(textWidth);
    warning_->setFixedHeight(
        std::max(TallestAnswer(*warning_, dialog_.warning, textWidth), warningMark_->sizeHint().height()));
  }
  if (pairs_) {
    layout->insertWidget(belowPairs, MakeCondition(width));
    TellInOrder({warning_ ? warning_->parentWidget() : nullptr, accept_, cancelButton});
    connect(pairs_, &JoinPairs::Changed, this, &JoinWindow::Check);
    setTabOrder(condition_, accept_);
    setTabOrder(accept_, cancelButton);
  }
  all1_->setFocus();
  ApplyColors();
  ShowChoice();
  Check();
}

QWidget* JoinWindow::MakeCondition(int width) {
  auto* panel = new QWidget;
  auto* label = new QLabel(Say(texts_, text::JoinConditionLabel));
  condition_ = new QtTextArea;
  condition_->setFrameShape(QFrame::StyledPanel);
  condition_->SetLineNumbers(false);
  condition_->setLineWrapMode(QPlainTextEdit::WidgetWidth);
  condition_->setTabChangesFocus(true);
  condition_->setFixedHeight(condition_->fontMetrics().lineSpacing() * 2 + condition_->fontMetrics().height());
  condition_->SetText(dialog_.condition);
  condition_->installEventFilter(this);
  condition_->SetHighlighter([this](std::string_view text) { return HighlightWithFault(text, faultAt_); });
  new PredictiveText(*condition_, dialog_.conditionForm->Suggestions());
  label->setBuddy(condition_);
  condition_->setAccessibleName(label->text().remove(QLatin1Char('&')));
  message_ = new QLabel;
  meaning_ = new QLabel;
  for (QLabel* line : {message_, meaning_}) {
    line->setTextFormat(Qt::PlainText);
    line->setWordWrap(true);
    line->setAlignment(Qt::AlignLeading | Qt::AlignTop);
    line->setFixedWidth(width);
  }
  message_->setObjectName(QStringLiteral("message"));
  message_->setFixedHeight(message_->fontMetrics().height());
  meaning_->setFixedHeight(TallestAnswer(*meaning_, dialog_.describeCondition, width));
  links_.push_back(condition_->Edited.Connect([this] { Check(); }));
  auto* layout = new QVBoxLayout(panel);
  layout->setContentsMargins({});
  layout->setSpacing(4);
  for (QWidget* part : std::initializer_list<QWidget*>{label, condition_, message_, meaning_}) layout->addWidget(part);
  return panel;
}

std::vector<JoinDialog::Pair> JoinWindow::Pairs() const { return pairs_ ? pairs_->Pairs() : dialog_.pairs; }

std::string JoinWindow::Condition() const {
  return condition_ ? frmExpressionZoom::OnOneLine(condition_->Text()) : dialog_.condition;
}

void JoinWindow::Check() {
  if (!pairs_) return;
  const std::string condition = condition_->Text();
  std::optional<ExpressionFault> fault;
  QString problem;
  boundary_.Run([&] {
    fault = dialog_.conditionForm->Check(condition);
    problem = ToQString(fault ? fault->message : dialog_.problem ? dialog_.problem(Pairs(), Condition()) : "");
  });
  faultAt_ = fault ? std::optional(fault->offset) : std::nullopt;
  condition_->Rehighlight();
  message_->setText(message_->fontMetrics().elidedText(problem, Qt::ElideRight, message_->width()));
  message_->setToolTip(PlainTip(problem));
  message_->setAccessibleName(problem);
  condition_->setAccessibleDescription(problem);
  accept_->setEnabled(problem.isEmpty());
  ShowChoice();
}

// Ctrl+Enter accepts, as Enter writes a line end.
bool JoinWindow::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::KeyPress && watched == condition_) {
    const auto& key = static_cast<const QKeyEvent&>(*event);
    const bool isEnter = key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter;
    if (isEnter && key.modifiers().testFlag(Qt::ControlModifier) && accept_->isEnabled()) {
      accept();
      return true;
    }
  }
  return QDialog::eventFilter(watched, event);
}

QWidget* JoinWindow::MakeWarning() {
  auto* line = new QWidget;
  auto* layout = new QHBoxLayout(line);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(8);
  warningMark_ = new Mark;
  warning_ = new QLabel;
  warning_->setTextFormat(Qt::PlainText);
  warning_->setWordWrap(true);
  warning_->setAlignment(Qt::AlignLeading | Qt::AlignTop);
  layout->addWidget(warningMark_, 0, Qt::AlignTop);
  layout->addWidget(warning_, 1);
  return line;
}

bool JoinWindow::Table1Checked() const { return all1_->isChecked(); }
bool JoinWindow::Table2Checked() const { return all2_->isChecked(); }

QString JoinWindow::Ask(const std::function<std::string(bool, bool)>& question, bool all1, bool all2) const {
  QString answer;
  if (question) boundary_.Run([&] { answer = ToQString(question(all1, all2)); });
  return answer;
}

bool JoinWindow::AnyAnswer(const std::function<std::string(bool, bool)>& question) const {
  return !(Ask(question, false, false) + Ask(question, false, true) + Ask(question, true, false) +
           Ask(question, true, true))
              .isEmpty();
}

int JoinWindow::TallestAnswer(QLabel& label, const std::function<std::string(bool, bool)>& question, int width) const {
  int height = 0;
  for (const bool all1 : {false, true}) {
    for (const bool all2 : {false, true}) {
      label.setText(Breakable(Ask(question, all1, all2), label.fontMetrics(), width));
      height = std::max(height, label.heightForWidth(width));
    }
  }
  return height;
}

void JoinWindow::ShowChoice() {
  const QString sentence = Ask(dialog_.describe, Table1Checked(), Table2Checked());
  sentence_->setText(Breakable(sentence, sentence_->fontMetrics(), sentence_->width()));
  sentence_->setAccessibleName(sentence);
  picture_->Show(Table1Checked(), Table2Checked());
  picture_->setAccessibleName(sentence);
  if (meaning_) {
    const QString meaning =
        Condition().empty() ? QString() : Ask(dialog_.describeCondition, Table1Checked(), Table2Checked());
    meaning_->setText(Breakable(meaning, meaning_->fontMetrics(), meaning_->width()));
  }
  if (!warning_) return;
  const QString warning = Ask(dialog_.warning, Table1Checked(), Table2Checked());
  warning_->setText(Breakable(warning, warning_->fontMetrics(), warning_->width()));
  warning_->setAccessibleName(warning);
  warningMark_->Show(warning.isEmpty() ? Mark::Kind::None : Mark::Kind::Warning);
}

// The style derives the outline of a check box by darkening the window's colour: on a dark ground it would be lost.
void JoinWindow::ApplyColors() {
  constexpr int kOutlineFactor = 140;
  QPalette boxes;
  boxes.setColor(QPalette::Window, Theme::ForWindow(palette()).Of(ColorRole::QuietText).lighter(kOutlineFactor));
  for (QCheckBox* box : {all1_, all2_}) box->setPalette(boxes);
  if (!message_) return;
  QPalette errors = palette();
  errors.setColor(QPalette::WindowText, Theme::ForWindow(palette()).Of(ColorRole::Error));
  message_->setPalette(errors);
}

void JoinWindow::changeEvent(QEvent* event) {
  QDialog::changeEvent(event);
  if (event->type() == QEvent::PaletteChange && all2_) ApplyColors();
}

// A close from the window frame decides nothing, so it is refused; a close from code is a cancel.
void JoinWindow::closeEvent(QCloseEvent* event) {
  if (event->spontaneous()) {
    event->ignore();
  } else {
    QDialog::closeEvent(event);
  }
}

}  // namespace zrqrybld
