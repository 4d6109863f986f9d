#include "designer/start_page.h"

#include <QCommandLinkButton>
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QGridLayout>
#include <QLabel>
#include <utility>

#include "designer/tool_icons.h"
#include "zrqrybld/adapters/qt/plain_tip.h"
#include "zrqrybld/adapters/qt/say.h"
#include "zrqrybld/adapters/qt/telling_order.h"
#include "zrqrybld/base/texts_designer.h"

namespace zrqrybld {
namespace {

constexpr int kSpacing = 8;
constexpr int kWayWidth = 320;
constexpr int kLogoSize = 48;

QLabel* Heading(const QString& text, double scale) {
  auto* label = new QLabel(text);
  QFont font = label->font();
  font.setPointSizeF(font.pointSizeF() * scale);
  font.setWeight(QFont::DemiBold);
  label->setFont(font);
  return label;
}

}  // namespace

StartPage::StartPage(const TextSource& texts, const CommandActions& commands,
                     std::function<QList<RecentEntry>()> recent)
    : texts_(texts), recent_(std::move(recent)), ways_(new QVBoxLayout), list_(new QListWidget) {
  setAccessibleName(Say(texts_, text::StartPageName));
  auto* logo = new QLabel;
  logo->setPixmap(ProgramIcon().pixmap(kLogoSize, kLogoSize));
  auto* subtitle = new QLabel(Say(texts_, text::StartAbout));
  subtitle->setWordWrap(true);
  auto* words = new QVBoxLayout;
  words->setSpacing(kSpacing / 2);
  words->addWidget(Heading(Say(texts_, text::AppName), 1.8));
  words->addWidget(subtitle);
  auto* head = new QHBoxLayout;
  head->setSpacing(2 * kSpacing);
  head->addWidget(logo, 0, Qt::AlignTop);
  head->addLayout(words, 1);

  ways_->setSpacing(kSpacing);
  for (const auto& [command, title, about] :
       {std::tuple(Command::OpenDatabase, text::StartDatabase, text::StartDatabaseAbout),
        {Command::Connect, text::StartConnect, text::StartConnectAbout},
        {Command::OpenQuery, text::StartQuery, text::StartQueryAbout}}) {
    connect(AddWay(IconOf(command), title, about), &QAbstractButton::clicked, commands.Of(command), &QAction::trigger);
  }
  connect(AddWay(IconOf(Command::NewQuery), text::StartEmpty, text::StartEmptyAbout), &QAbstractButton::clicked, this,
          &StartPage::EmptyWanted);
  ways_->addStretch();

  list_->setAccessibleName(Say(texts_, text::StartRecent));
  list_->setFrameShape(QFrame::StyledPanel);
  list_->setTextElideMode(Qt::ElideMiddle);
  list_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  list_->setMinimumWidth(kWayWidth);
  const auto open = [this](const QListWidgetItem* item) {
    if (const auto at = list_->row(item); at < shown_.size()) std::function(shown_[at].open)();
  };
  connect(list_, &QListWidget::itemActivated, this, open);
  connect(list_, &QListWidget::itemClicked, this, open);

  auto* inside = new QGridLayout;
  inside->setHorizontalSpacing(4 * kSpacing);
  inside->setVerticalSpacing(kSpacing);
  inside->addLayout(head, 0, 0, 1, 2);
  inside->setRowMinimumHeight(1, 2 * kSpacing);
  inside->addWidget(Heading(Say(texts_, text::StartBegin), 1.15), 2, 0);
  inside->addWidget(Heading(Say(texts_, text::StartRecent), 1.15), 2, 1);
  inside->addLayout(ways_, 3, 0);
  inside->addWidget(list_, 3, 1);
  auto* outside = new QGridLayout(this);
  outside->setContentsMargins(4 * kSpacing, 4 * kSpacing, 4 * kSpacing, 4 * kSpacing);
  outside->addLayout(inside, 1, 1);
  outside->setColumnStretch(0, 1);
  outside->setColumnStretch(2, 1);
  outside->setRowStretch(0, 1);
  outside->setRowStretch(2, 2);
}

QCommandLinkButton* StartPage::AddWay(const QIcon& icon, TextId title, TextId about) {
  auto* button = new QCommandLinkButton(Say(texts_, title), Say(texts_, about));
  button->setIcon(icon);
  button->setMinimumWidth(kWayWidth);
  button->setAccessibleName(Say(texts_, title).remove(QLatin1Char('&')));
  ways_->addWidget(button);
  return button;
}

void StartPage::OfferSample(std::function<void()> open) {
  QCommandLinkButton* sample = AddWay(IconOf(Command::RunPreview), text::StartSample, text::StartSampleAbout);
  ways_->removeWidget(sample);
  ways_->insertWidget(0, sample);
  TellInOrder(*ways_);
  TellInOrder({list_});
  connect(sample, &QAbstractButton::clicked, this, [open = std::move(open)] { open(); });
}

void StartPage::showEvent(QShowEvent* event) {
  shown_ = recent_();
  list_->clear();
  for (const RecentEntry& entry : shown_) {
    auto* item = new QListWidgetItem(entry.title, list_);
    item->setToolTip(PlainTip(entry.tip));
  }
  list_->setFocusPolicy(shown_.isEmpty() ? Qt::NoFocus : Qt::StrongFocus);
  if (shown_.isEmpty()) {
    auto* none = new QListWidgetItem(Say(texts_, text::StartNothingYet), list_);
    none->setFlags(Qt::NoItemFlags);
  }
  QWidget::showEvent(event);
}

QString SampleDatabase() {
  const QDir program(QCoreApplication::applicationDirPath());
  // Beside an installed program, and beside one that stands where it was built.
  for (const char* place : {"../share/zrqrybld/store.db", "../samples/store.db"}) {
    if (const QFileInfo file(program.filePath(place)); file.isReadable()) return file.canonicalFilePath();
  }
  return {};
}

}  // namespace zrqrybld
