#include "zrqrybld/adapters/qt/query_bar.h"

#include <QHBoxLayout>
#include <QMenu>
#include <QSignalBlocker>
#include <algorithm>

#include "zrqrybld/adapters/qt/qt_menu.h"
#include "zrqrybld/adapters/qt/say.h"
#include "zrqrybld/adapters/qt/telling_order.h"
#include "zrqrybld/base/texts_queries.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/hub/query_menus.h"
#include "zrqrybld/hub/query_set.h"
#include "zrqrybld/hub/query_titles.h"
#include "zrqrybld/platform/commands.h"
#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/outer_queries.h"

namespace zrqrybld {
namespace {

constexpr std::size_t kMostStops = 6;  // of a longer path those in between are a menu
constexpr std::size_t kLastStops = 4;
constexpr int kWidestTitle = 180;  // pixels

QString WithoutKey(QString text) { return text.remove(QLatin1Char('&')); }
QString AsLabel(QString text) { return text.replace(QLatin1String("&"), QLatin1String("&&")); }

QString WordFor(QueryOperatorEnum combined, const Dialect& dialect) {
  const std::string word = WordOf(combined, dialect.queries);
  return ToQString(word.empty() ? std::string(NameOf(combined)) : word);
}

// The query that others are put together with, where the query is one of them; itself otherwise.
const StoredQuery& FirstOf(const QuerySet& set, const StoredQuery& query) {
  const bool isMember = query.kind == QueryMember && !set.BeginsCompound(query.id);
  return isMember ? *set.Find(query.parent) : query;
}

// "uses Customers of the outer query"; "" for a query that could stand alone.
QString UsedOf(const qbQueryBuilder& hub) {
  if (!hub.Outer()) return {};
  QStringList tables;
  for (const std::string& table : OuterTablesNamed(hub.Snapshot())) tables += ToQString(table);
  return tables.isEmpty() ? QString() : Say(*hub.Texts(), text::UsesOuterTables, tables.join(QLatin1String(", ")));
}

}  // namespace

QueryBar::QueryBar(qbQueryBuilder& hub, QWidget* parent)
    : QWidget(parent),
      hub_(hub),
      path_(new QWidget(this)),
      members_(new QTabBar(this)),
      operator_(new QToolButton(this)),
      add_(new QToolButton(this)),
      uses_(new QLabel(this)) {
  auto* path = new QHBoxLayout(path_);
  path->setContentsMargins(0, 0, 0, 0);
  path->setSpacing(0);
  members_->setExpanding(false);
  members_->setDrawBase(false);
  members_->setFocusPolicy(Qt::TabFocus);
  members_->setContextMenuPolicy(Qt::CustomContextMenu);
  operator_->setAutoRaise(true);
  operator_->setPopupMode(QToolButton::InstantPopup);
  operator_->setMenu(new QMenu(operator_));
  add_->setText(QStringLiteral("+"));
  add_->setAutoRaise(true);
  uses_->setTextFormat(Qt::PlainText);
  auto* layout = new QHBoxLayout(this);
  layout->setContentsMargins(8, 4, 8, 4);
  layout->setSpacing(8);
  layout->addWidget(path_);
  layout->addWidget(members_);
  layout->addWidget(operator_);
  layout->addWidget(add_);
  layout->addWidget(uses_);
  layout->addStretch(1);
  TellInOrder(*layout);
  connect(members_, &QTabBar::currentChanged, this, [this](int at) { Open(members_->tabData(at).toInt()); });
  connect(members_, &QTabBar::customContextMenuRequested, this, &QueryBar::ShowMenu);
  connect(add_, &QToolButton::clicked, this, [this] { boundary_.Run([this] { AddInnerQuery(hub_, QueryMember); }); });
  links_.push_back(hub.QueriesChanged.Connect([this] { Follow(); }));
  links_.push_back(hub.HistoryChanged.Connect([this] { Follow(); }));  // the dialect may be another
  links_.push_back(hub.TextsChanged.Connect([this] {
    content_ = {};
    Follow();
  }));
  hide();
  Follow();
}

QueryBar::Content QueryBar::ContentNow() const {
  const QuerySet& set = hub_.QueriesNow();
  const TextSource& texts = *hub_.Texts();
  const Dialect& dialect = hub_.CurrentDialect();
  Content content;
  content.shown = set.shown;
  const StoredQuery& first = FirstOf(set, set.Shown());
  for (const StoredQuery* at = &first;; at = set.Find(at->parent)) {
    content.path.push_back({at->id, ToQString(TitleOf(set, at->id).In(texts))});
    if (at->kind == QueryMain) break;
  }
  std::ranges::reverse(content.path);
  content.uses = UsedOf(hub_);
  if (!set.BeginsCompound(first.id)) return content;
  content.members.push_back({first.id, Say(texts, text::MemberTitle, 1)});
  for (const StoredQuery* member : set.InnerOf(first.id)) {
    if (member->kind != QueryMember) continue;
    const int number = static_cast<int>(content.members.size()) + 1;
    content.members.push_back(
        {member->id, WordFor(member->combined, dialect) + QLatin1Char(' ') + Say(texts, text::MemberTitle, number)});
  }
  if (first.id == set.shown) return content;
  content.combined = set.Shown().combined;
  for (int combined = QueryUnion; combined <= QueryExceptAll; ++combined) {
    const bool isWritten = !WordOf(static_cast<QueryOperatorEnum>(combined), dialect.queries).empty();
    if (isWritten || combined == content.combined) content.operators.push_back(combined);
  }
  return content;
}

void QueryBar::Follow() {
  Content now = ContentNow();
  const bool isSingle = hub_.QueriesNow().IsSingle();
  if (now != content_) {
    content_ = std::move(now);
    ShowPath();
    ShowMembers();
    uses_->setText(content_.uses);
    uses_->setVisible(!content_.uses.isEmpty());
  }
  setVisible(!isSingle);
}

// --- The path ---

QToolButton& QueryBar::ButtonAt(std::size_t at) {
  while (stops_.size() <= at) {
    auto* button = new QToolButton(path_);
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::TabFocus);
    button->setPopupMode(QToolButton::InstantPopup);
    connect(button, &QToolButton::clicked, this, [this, button] {
      if (!button->menu()) Open(button->property("query").toInt());
    });
    path_->layout()->addWidget(button);
    stops_.push_back(button);
  }
  return *stops_[at];
}

void QueryBar::ShowPath() {
  const std::vector<Stop>& path = content_.path;
  const bool isLong = path.size() > kMostStops;
  std::size_t at = 0;
  for (std::size_t i = 0; i < path.size(); ++i) {
    if (isLong && i == 1) {
      ShowLeftOut(at++, 1, path.size() - kLastStops);
      i = path.size() - kLastStops;
    }
    ShowStop(at++, path[i]);
  }
  for (; at < stops_.size(); ++at) stops_[at]->hide();
}

void QueryBar::ShowStop(std::size_t at, const Stop& stop) {
  const TextSource& texts = *hub_.Texts();
  QToolButton& button = ButtonAt(at);
  const bool isLast = stop.id == content_.path.back().id;
  delete button.menu();
  QFont font = this->font();
  font.setBold(isLast);
  button.setFont(font);
  button.setProperty("query", stop.id);
  const QString title = QFontMetrics(font).elidedText(stop.title, Qt::ElideMiddle, kWidestTitle);
  const QString arrow = isRightToLeft() ? QStringLiteral("◂ ") : QStringLiteral("▸ ");
  button.setText((at == 0 ? QString() : arrow) + AsLabel(title));
  const QString what =
      isLast ? Say(texts, text::QueryBarName) + ": " + stop.title : Say(texts, text::QueryPathTo, stop.title);
  button.setToolTip(what.toHtmlEscaped());
  button.setAccessibleName(what);
  button.show();
}

void QueryBar::ShowLeftOut(std::size_t at, std::size_t first, std::size_t last) {
  QToolButton& button = ButtonAt(at);
  const QString name = Say(*hub_.Texts(), text::PathLeftOut);
  delete button.menu();
  auto* menu = new QMenu(&button);
  for (std::size_t i = first; i < last; ++i) {
    menu->addAction(AsLabel(content_.path[i].title), this, [this, id = content_.path[i].id] { Open(id); });
  }
  button.setMenu(menu);
  button.setFont(font());
  button.setText(QStringLiteral("…"));
  button.setToolTip(name);
  button.setAccessibleName(name);
  button.show();
}

// --- The members of a UNION ---

void QueryBar::ShowMembers() {
  const TextSource& texts = *hub_.Texts();
  const QSignalBlocker quiet(members_);
  const auto count = static_cast<int>(content_.members.size());
  while (members_->count() > count) members_->removeTab(members_->count() - 1);
  for (int i = 0; i < count; ++i) {
    const Stop& member = content_.members[static_cast<std::size_t>(i)];
    if (i == members_->count()) members_->addTab({});
    members_->setTabText(i, AsLabel(member.title));
    members_->setTabData(i, member.id);
    if (member.id == content_.shown) members_->setCurrentIndex(i);
  }
  members_->setAccessibleName(Say(texts, text::QueryMembersName));
  members_->setVisible(count > 0);
  add_->setVisible(count > 0);
  const QString more = WithoutKey(Say(texts, text::AddUnionMemberItem));
  add_->setToolTip(more);
  add_->setAccessibleName(more);
  ShowOperator();
  setFocusProxy(count > 0 ? static_cast<QWidget*>(members_) : stops_.front());
}

// Only what the dialect can write, and what the member has.
void QueryBar::ShowOperator() {
  operator_->setVisible(content_.combined >= 0);
  operator_->menu()->clear();
  for (const int value : content_.operators) {
    const auto combined = static_cast<QueryOperatorEnum>(value);
    QAction* action = operator_->menu()->addAction(WordFor(combined, hub_.CurrentDialect()), this, [this, combined] {
      boundary_.Run([&] { hub_.SetQueryOperator(content_.shown, combined); });
    });
    action->setCheckable(true);
    action->setChecked(value == content_.combined);
    if (action->isChecked()) operator_->setText(action->text());
  }
  const QString name = Say(*hub_.Texts(), text::QueryOperatorName);
  operator_->setToolTip(name);
  operator_->setAccessibleName(name + ": " + operator_->text());
}

void QueryBar::ShowMenu(const QPoint& at) {
  const int tab = members_->tabAt(at);
  if (tab < 0) return;
  auto* menu = new QMenu(this);
  menu->setAttribute(Qt::WA_DeleteOnClose);
  FillMenu(*menu, MenuOfQuery(hub_, members_->tabData(tab).toInt()), boundary_);
  menu->popup(members_->mapToGlobal(at));
}

// Where the query cannot be shown now the bar goes on saying what is shown.
void QueryBar::Open(std::int32_t id) {
  if (boundary_.Run([&] { hub_.ShowQuery(id); })) return;
  content_ = {};
  Follow();
}

}  // namespace zrqrybld
