#include "zrqrybld/adapters/qt/change_announcer.h"

#include <QTimer>
#include <utility>

#include "zrqrybld/adapters/qt/access_events.h"
#include "zrqrybld/adapters/qt/qt_text.h"
#include "zrqrybld/base/texts_queries.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/hub/query_set.h"
#include "zrqrybld/hub/query_titles.h"
#include "zrqrybld/sql/query_changes.h"
#include "zrqrybld/sql/query_snapshot.h"
#include "zrqrybld/sql/sql_pane.h"

namespace zrqrybld {

ChangeAnnouncer::ChangeAnnouncer(qbQueryBuilder& hub, QWidget* window) : Announcer(window), hub_(hub) {
  QAccessible::installActivationObserver(this);
  links_.push_back(hub.SQLPane()->SQLChanged.Connect([this] { CompareSoon(); }));
  links_.push_back(hub.Info.Connect([this](QueryBuilderInfoEnum&, Variant&) { CompareSoon(); }));
  links_.push_back(hub.QueriesChanged.Connect([this] { CompareSoon(); }));
  accessibilityActiveChanged(AccessIsHeard());
}

ChangeAnnouncer::~ChangeAnnouncer() { QAccessible::removeActivationObserver(this); }

void ChangeAnnouncer::accessibilityActiveChanged(bool active) {
  before_ = active ? hub_.Snapshot() : QuerySnapshot();
  shown_ = hub_.QueriesNow().shown;
}

// Everything that one action of the user's brings is one sentence.
void ChangeAnnouncer::CompareSoon() {
  if (waiting_ || !AccessIsHeard()) return;
  waiting_ = true;
  QTimer::singleShot(0, this, [this] { Compare(); });
}

void ChangeAnnouncer::Compare() {
  waiting_ = false;
  const QuerySnapshot before = std::exchange(before_, hub_.Snapshot());
  const QuerySet& queries = hub_.QueriesNow();
  if (std::exchange(shown_, queries.shown) != queries.shown) {
    Phrase title = TitleOf(queries, queries.shown);
    if (!queries.Shown().name.empty()) title = {text::MemberTitle, queries.Shown().name};
    return Say(ToQString(Phrase(text::QueryShownNow, title, before_.tables.size()).In(*hub_.Texts())));
  }
  Say(ToQString(DescribeChanges(before, before_, *hub_.Texts())));
}

}  // namespace zrqrybld
