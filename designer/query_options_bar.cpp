#include "designer/query_options_bar.h"

#include <QLabel>
#include <QRegularExpressionValidator>
#include <QSignalBlocker>
#include <limits>

#include "zrqrybld/adapters/qt/named_combo.h"
#include "zrqrybld/adapters/qt/qt_text.h"
#include "zrqrybld/adapters/qt/say.h"
#include "zrqrybld/base/error.h"
#include "zrqrybld/base/texts_designer.h"
#include "zrqrybld/host/step_context.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/sql_pane.h"
#include "zrqrybld/sql/sql_syntax.h"

namespace zrqrybld {
namespace {

constexpr int kLimitDigits = 8;  // room for as many
constexpr auto kLimit = "\\d{0,9}|(100|\\d{1,2})\\s?%";

}  // namespace

QueryOptionsBar::QueryOptionsBar(qbQueryBuilder& hub, QWidget* parent)
    : QToolBar(Say(*hub.Texts(), text::QueryToolBar), parent),
      hub_(&hub),
      dialect_(new NamedCombo(Say(*hub.Texts(), text::DialectName), this)),
      limit_(new QLineEdit(this)),
      skip_(new QSpinBox(this)),
      distinct_(new QCheckBox(Say(*hub.Texts(), text::EachRowOnce), this)) {
  const TextSource& texts = *hub.Texts();
  setObjectName(QStringLiteral("queryTools"));
  setMovable(false);
  const auto label = [this](const QString& text, QWidget* buddy) {
    auto* words = new QLabel(text, this);
    words->setBuddy(buddy);
    words->setContentsMargins(8, 0, 4, 0);
    return addWidget(words);
  };

  for (const Dialect& dialect : AllDialects()) {
    dialect_->addItem(ToQString(dialect.name), static_cast<int>(dialect.syntax));
  }
  label(Say(texts, text::DialectLabel), dialect_);
  addWidget(dialect_);

  limit_->setAccessibleName(Say(texts, text::RowLimitName));
  limit_->setPlaceholderText(Say(texts, text::RowsAll));
  limit_->setToolTip(Say(texts, text::RowLimitTip));
  limit_->setValidator(new QRegularExpressionValidator(QRegularExpression(kLimit), limit_));
  limit_->setMaximumWidth(limit_->fontMetrics().averageCharWidth() * kLimitDigits + 24);
  label(Say(texts, text::RowsLabel), limit_);
  addWidget(limit_);

  skip_->setAccessibleName(Say(texts, text::SkipName));
  skip_->setRange(0, std::numeric_limits<int>::max());
  skip_->setSpecialValueText(Say(texts, text::SkipNone));
  skip_->setToolTip(Say(texts, text::SkipTip));
  skip_->setKeyboardTracking(false);
  skip_->setMaximumWidth(limit_->maximumWidth() + 24);
  QAction* skipLabel = label(Say(texts, text::SkipLabel), skip_);
  skipShown_ = addWidget(skip_);
  connect(skipShown_, &QAction::changed, skipLabel,
          [this, skipLabel] { skipLabel->setVisible(skipShown_->isVisible()); });

  distinct_->setToolTip(Say(texts, text::EachRowOnceTip));
  auto* gap = new QWidget(this);
  gap->setFixedWidth(8);
  addWidget(gap);
  addWidget(distinct_);

  connect(dialect_, &QComboBox::currentIndexChanged, this, [this](int index) {
    Change([this, index] {
      const StepScope step(hub_->Hub(), kStepDialect);
      hub_->SQLPane()->SetSQLSyntax(static_cast<SQLSyntaxEnum>(dialect_->itemData(index).toInt()));
      hub_->QueryChanged();
    });
    Q_EMIT DialectChosen();
  });
  connect(limit_, &QLineEdit::editingFinished, this, &QueryOptionsBar::TakeLimit);
  connect(skip_, &QSpinBox::valueChanged, this,
          [this](int rows) { Change([this, rows] { hub_->SetSkipRecords(rows); }); });
  connect(distinct_, &QCheckBox::toggled, this,
          [this](bool on) { Change([this, on] { hub_->SetDistinctRecords(on); }); });
  Refresh();
}

void QueryOptionsBar::Follow(qbQueryBuilder& hub) {
  hub_ = &hub;
  limit_->setModified(false);  // what was typed was meant for the other one
  Refresh();
}

void QueryOptionsBar::AddCommands(const CommandActions& commands, std::span<const std::optional<Command>> wanted) {
  QAction* const first = actions().constFirst();
  for (const std::optional<Command>& command : wanted) {
    if (command) {
      insertAction(first, commands.Of(*command));
    } else {
      insertSeparator(first);
    }
  }
}

bool QueryOptionsBar::IsLimit(const QString& text) {
  return QRegularExpression(QRegularExpression::anchoredPattern(kLimit)).match(text).hasMatch();
}

void QueryOptionsBar::TakeLimit() {
  const std::string text = ToUtf8(limit_->text());
  if (text != hub_->SelectTopRecords()) Change([&] { hub_->SetSelectTopRecords(text); });
}

void QueryOptionsBar::Change(const std::function<void()>& change) {
  try {
    change();
  } catch (const std::exception& error) {
    Q_EMIT Failed(Say(*hub_->Texts(), error));
  }
  Refresh();
}

void QueryOptionsBar::Refresh() {
  const QSignalBlocker dialectQuiet(dialect_);
  const QSignalBlocker skipQuiet(skip_);
  const QSignalBlocker distinctQuiet(distinct_);
  dialect_->setCurrentIndex(dialect_->findData(static_cast<int>(hub_->SQLPane()->SQLSyntax())));
  const QString limit = ToQString(hub_->SelectTopRecords());
  if (!limit_->isModified() || !limit_->hasFocus()) limit_->setText(limit);
  skip_->setValue(hub_->SkipRecords());
  skipShown_->setVisible(hub_->SkipRecords() > 0 || !hub_->CurrentDialect().limit.offset.empty());
  distinct_->setChecked(hub_->DistinctRecords());
}

void QueryOptionsBar::ChooseDialect(const QString& name) {
  dialect_->setCurrentIndex(dialect_->findText(name, Qt::MatchFixedString));
}

}  // namespace zrqrybld
