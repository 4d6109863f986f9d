#include "zrqrybld/adapters/qt/join_window.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
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
#include "zrqrybld/adapters/qt/named_combo.h"
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

  /// Of a join that asks: the table it asks for, and whether those rows come back that have a partner or the others.
  struct Question {
    std::size_t table;
    bool forNone;
  };
  void Show(bool all1, bool all2, std::optional<Question> question) {
    all_[0] = all1;
    all_[1] = all2;
    question_ = question;
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

  QPainterPath Returned(const std::array<QPainterPath, 2>& circles) const;

  std::array<QString, 2> names_;
  std::array<bool, 2> all_{};
  std::optional<Question> question_;
};

QPainterPath JoinPicture::Returned(const std::array<QPainterPath, 2>& circles) const {
  if (question_ && question_->forNone) return circles[question_->table].subtracted(circles[1 - question_->table]);
  QPainterPath returned = circles[0].intersected(circles[1]);
  for (std::size_t i = 0; i < 2; ++i) {
    if (all_[i] && !question_) returned = returned.united(circles[i]);
  }
  return returned;
}

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

  painter.fillPath(Returned(circles), theme.Of(ColorRole::JoinSelected));
  painter.setBrush(Qt::NoBrush);
  for (std::size_t i = 0; i < 2; ++i) {
    const bool asked = question_ && question_->table != i;  // it returns nothing itself
    painter.setPen(QPen(theme.Of(ColorRole::Text), 1.5, asked ? Qt::DashLine : Qt::SolidLine));
    painter.drawPath(circles[i]);
  }

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

JoinWindow::JoinWindow(const JoinDialog& dialog, QWidget* parent, const TextSource& texts, RowCounter counter)
    : QDialog(parent, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint),
      dialog_(dialog),
      texts_(texts),
      counter_(dialog.countStatement ? std::move(counter) : RowCounter()) {
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
  QWidget* questions = dialog_.questions.empty() ? nullptr : MakeQuestions();
  if (questions) layout->addWidget(questions);
  layout->addWidget(group);
  layout->addWidget(sentence_);
  layout->addWidget(picture_);
  if (counter_) {
    count_ = new QLabel;
    count_->setTextFormat(Qt::PlainText);
    count_->setMinimumHeight(count_->fontMetrics().height());
    layout->addWidget(count_);
  }
  if (!dialog_.groupText.empty()) {
    group_ = new QCheckBox(ToQString(dialog_.groupText));
    group_->setChecked(dialog_.groupChecked);
    group_->setEnabled(dialog_.groupProblem.empty());
    group_->setToolTip(PlainTip(ToQString(dialog_.groupProblem)));
    group_->setAccessibleDescription(ToQString(dialog_.groupProblem));
    layout->addWidget(group_);
    connect(group_, &QCheckBox::toggled, this, [this] { ShowCount(); });
  }
  if (dialog_.conditionForm) {
    pairs_ = new JoinPairs(dialog_, texts_);
    layout->addWidget(pairs_);
  }
  const int belowPairs = layout->count();
  if (AnyAnswer(dialog_.warning, dialog_.warnOfQuestion)) layout->addWidget(MakeWarning());
  layout->addSpacing(4);
  layout->addLayout(buttons);

  // The window keeps its size whatever is chosen, so the texts get the room that the longest one needs.
  const int most = fontMetrics().averageCharWidth() * kMostTextWidth;
  const int groupFrame = group->sizeHint().width() - std::max(all1_->sizeHint().width(), all2_->sizeHint().width());
  for (QCheckBox* box : {all1_, all2_}) FitCheckBox(*box, most - groupFrame);
  if (questions) questions->setMaximumWidth(most);
  const int width = std::max({picture_->sizeHint().width(), group->sizeHint().width(), buttons->sizeHint().width(),
                              pairs_ ? pairs_->sizeHint().width() : 0});
  picture_->setFixedWidth(width);
  sentence_->setFixedWidth(width);
  sentence_->setFixedHeight(TallestAnswer(*sentence_, width, dialog_.describe, dialog_.describeQuestion));
  sentence_->setVisible(static_cast<bool>(dialog_.describe));

  connect(all1_, &QCheckBox::toggled, this, &JoinWindow::ShowChoice);
  connect(all2_, &QCheckBox::toggled, this, &JoinWindow::ShowChoice);
  connect(accept_, &QPushButton::clicked, this, &QDialog::accept);
  connect(cancelButton, &QPushButton::clicked, this, &QDialog::reject);
  if (warning_) {
    const int textWidth = width - warningMark_->sizeHint().width() - 8;
    warning_->setFixedWidth(textWidth);
    warning_->setFixedHeight(std::max(TallestAnswer(*warning_, textWidth, dialog_.warning, dialog_.warnOfQuestion),
                                      warningMark_->sizeHint().height()));
  }
  if (pairs_) {
    layout->insertWidget(belowPairs, MakeCondition(width));
    TellInOrder({warning_ ? warning_->parentWidget() : nullptr, accept_, cancelButton});
    connect(pairs_, &JoinPairs::Changed, this, &JoinWindow::Check);
    setTabOrder(condition_, accept_);
    setTabOrder(accept_, cancelButton);
  }
  all1_->setFocus();
  if (Question() != 0) questions_->setFocus();
  ApplyColors();
  ShowChoice();
  Check();
}

JoinWindow::~JoinWindow() = default;

QWidget* JoinWindow::MakeQuestions() {
  auto* line = new QWidget;
  const QString name = Say(texts_, text::ReturnLabel);
  auto* label = new QLabel(name);
  questions_ = new NamedCombo(name);
  questions_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  for (const std::string& question : dialog_.questions) questions_->addItem(ToQString(question));
  questions_->setCurrentIndex(static_cast<int>(dialog_.question));
  label->setBuddy(questions_);
  auto* layout = new QHBoxLayout(line);
  layout->setContentsMargins({});
  layout->addWidget(label);
  layout->addWidget(questions_, 1);
  connect(questions_, &QComboBox::currentIndexChanged, this, &JoinWindow::ShowChoice);
  return line;
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
  meaning_->setFixedHeight(TallestAnswer(*meaning_, width, dialog_.describeCondition));
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

std::size_t JoinWindow::Question() const {
  return questions_ ? static_cast<std::size_t>(std::max(questions_->currentIndex(), 0)) : dialog_.question;
}

bool JoinWindow::GroupChecked() const { return group_ ? group_->isChecked() : dialog_.groupChecked; }

std::size_t JoinWindow::Choices() const { return 4 + (dialog_.questions.empty() ? 0 : dialog_.questions.size() - 1); }

std::size_t JoinWindow::Choice() const {
  if (const std::size_t question = Question()) return 3 + question;
  return (Table1Checked() ? 1u : 0u) + (Table2Checked() ? 2u : 0u);
}

QString JoinWindow::Ask(std::size_t choice, const OfKinds& ofKinds, const OfQuestion& ofQuestion) const {
  QString answer;
  boundary_.Run([&] {
    if (choice > 3) {
      if (ofQuestion) answer = ToQString(ofQuestion(choice - 3));
    } else if (ofKinds) {
      answer = ToQString(ofKinds((choice & 1) != 0, (choice & 2) != 0));
    }
  });
  return answer;
}

bool JoinWindow::AnyAnswer(const OfKinds& ofKinds, const OfQuestion& ofQuestion) const {
  for (std::size_t choice = 0; choice < Choices(); ++choice) {
    if (!Ask(choice, ofKinds, ofQuestion).isEmpty()) return true;
  }
  return false;
}

int JoinWindow::TallestAnswer(QLabel& label, int width, const OfKinds& ofKinds, const OfQuestion& ofQuestion) const {
  int height = 0;
  for (std::size_t choice = 0; choice < Choices(); ++choice) {
    label.setText(Breakable(Ask(choice, ofKinds, ofQuestion), label.fontMetrics(), width));
    height = std::max(height, label.heightForWidth(width));
  }
  return height;
}

void JoinWindow::ShowChoice() {
  const QString sentence = Ask(Choice(), dialog_.describe, dialog_.describeQuestion);
  sentence_->setText(Breakable(sentence, sentence_->fontMetrics(), sentence_->width()));
  sentence_->setAccessibleName(sentence);
  // The second table asks about the first in questions 1 and 2, the first about the second in 3 and 4.
  const std::size_t question = Question();
  for (QCheckBox* box : {all1_, all2_}) box->setEnabled(question == 0);
  picture_->Show(
      Table1Checked(), Table2Checked(),
      question == 0 ? std::nullopt : std::optional(JoinPicture::Question{question <= 2 ? 1u : 0u, question % 2 == 0}));
  picture_->setAccessibleName(sentence);
  if (meaning_) {
    const QString meaning = Condition().empty() ? QString() : Ask(Choice(), dialog_.describeCondition);
    meaning_->setText(Breakable(meaning, meaning_->fontMetrics(), meaning_->width()));
  }
  ShowCount();
  if (!warning_) return;
  const QString warning = Ask(Choice(), dialog_.warning, dialog_.warnOfQuestion);
  warning_->setText(Breakable(warning, warning_->fontMetrics(), warning_->width()));
  warning_->setAccessibleName(warning);
  warningMark_->Show(warning.isEmpty() ? Mark::Kind::None : Mark::Kind::Warning);
}

// Only of the join as it is but for its kind; each choice is counted once.
void JoinWindow::ShowCount() {
  if (!count_) return;
  const bool isAsItWas =
      Pairs() == dialog_.pairs && Condition() == dialog_.condition && GroupChecked() == dialog_.groupChecked;
  counting_.reset();
  if (isAsItWas && !counted_.contains(Choice())) Count(Choice());
  count_->setText(isAsItWas ? counted_[Choice()] : QString());
}

void JoinWindow::Count(std::size_t choice) {
  std::string statement;
  boundary_.Run([&] {
    const std::size_t question = choice > 3 ? choice - 3 : 0;
    const bool kinds = question == 0;
    statement = dialog_.countStatement(kinds && (choice & 1) != 0, kinds && (choice & 2) != 0, question);
  });
  if (statement.empty()) {
    counted_[choice].clear();
    return;
  }
  count_->setText(Say(texts_, text::CountingRows));
  counting_ = counter_(statement, [this, choice](std::optional<std::int64_t> rows) {
    counted_[choice] = rows ? Say(texts_, text::CountedRows, locale().toString(static_cast<qlonglong>(*rows)))
                            : Say(texts_, text::CountGivenUp);
    count_->setText(counted_[choice]);
  });
  if (counting_) counted_[choice] = Say(texts_, text::CountingRows);
}

// The style derives the outline of a check box by darkening the window's colour: on a dark ground it would be lost.
void JoinWindow::ApplyColors() {
  constexpr int kOutlineFactor = 140;
  QPalette boxes;
  boxes.setColor(QPalette::Window, Theme::ForWindow(palette()).Of(ColorRole::QuietText).lighter(kOutlineFactor));
  for (QCheckBox* box : {all1_, all2_, group_}) {
    if (box) box->setPalette(boxes);
  }
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
