#include "designer/member_table.h"

#include <QHeaderView>
#include <QScrollBar>
#include <QStyle>
#include <algorithm>

#include "zrqrybld/adapters/qt/say.h"
#include "zrqrybld/base/texts_queries.h"
#include "zrqrybld/hub/member_columns.h"
#include "zrqrybld/hub/query_set.h"
#include "zrqrybld/hub/query_titles.h"

namespace zrqrybld {
namespace {

constexpr int kMostRows = 6;  // without scrolling
constexpr int kIdRole = Qt::UserRole;

}  // namespace

MemberTable::MemberTable() {
  setFrameShape(QFrame::NoFrame);
  setEditTriggers(QAbstractItemView::NoEditTriggers);
  setSelectionMode(QAbstractItemView::SingleSelection);
  setTabKeyNavigation(false);
  setWordWrap(false);
  setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Maximum);
  horizontalHeader()->setHighlightSections(false);
  verticalHeader()->setDefaultAlignment(Qt::AlignCenter);
  connect(this, &QTableWidget::cellActivated, this, [this](int, int column) {
    const int id = horizontalHeaderItem(column)->data(kIdRole).toInt();
    boundary_.Run([&] { hub_->ShowQuery(id); });
  });
  hide();
}

void MemberTable::Follow(qbQueryBuilder& hub) {
  hub_ = &hub;
  setAccessibleName(Say(*hub.Texts(), text::MemberColumnsName));
  links_.clear();
  links_.push_back(hub.QueriesChanged.Connect([this] { Fill(); }));
  links_.push_back(hub.HistoryChanged.Connect([this] { Fill(); }));
  Fill();
}

QTableWidgetItem* MemberTable::ItemFor(const QString& text, const QString& fault) const {
  auto* item = new QTableWidgetItem(text);
  item->setToolTip((fault.isEmpty() ? text : text + " \u2013 " + fault).toHtmlEscaped());
  if (fault.isEmpty()) return item;
  item->setIcon(style()->standardIcon(QStyle::SP_MessageBoxWarning));
  item->setData(Qt::AccessibleDescriptionRole, fault);
  return item;
}

// What is missing in a member, and what the first has not, is marked; so is what holds values of another kind.
void MemberTable::Fill() {
  const std::vector<MemberColumns> members = ColumnsOfMembers(*hub_);
  const TextSource& texts = *hub_->Texts();
  clear();
  setVisible(!members.empty());
  if (members.empty()) return;
  const bool isCounted = std::ranges::all_of(members, &MemberColumns::isCounted);
  std::size_t rows = 0;
  for (const MemberColumns& member : members) rows = std::max(rows, member.columns.size());
  setRowCount(static_cast<int>(rows));
  setColumnCount(static_cast<int>(members.size()));
  const std::size_t wanted = members.front().columns.size();
  for (std::size_t at = 0; at < members.size(); ++at) {
    const MemberColumns& member = members[at];
    const auto column = static_cast<int>(at);
    auto* title = new QTableWidgetItem(Say(texts, text::MemberTitle, static_cast<int>(at) + 1));
    title->setData(kIdRole, member.id);
    if (member.id == hub_->QueriesNow().shown) {
      QFont bold = font();
      bold.setBold(true);
      title->setFont(bold);
    }
    setHorizontalHeaderItem(column, title);
    for (std::size_t row = 0; row < rows; ++row) {
      const bool has = row < member.columns.size();
      QString fault;
      if (isCounted && has != (row < wanted)) {
        fault = Say(texts, has ? text::ColumnTooMany : text::ColumnMissing);
      } else if (has && member.columns[row].differs) {
        fault = Say(texts, text::ColumnOfOtherKind);
      }
      setItem(static_cast<int>(row), column,
              ItemFor(has ? ToQString(member.columns[row].name) : QStringLiteral("\u2014"), fault));
    }
  }
  updateGeometry();
}

QSize MemberTable::sizeHint() const {
  const int rows = std::clamp(rowCount(), 1, kMostRows);
  const int bar = horizontalScrollBar()->sizeHint().height();
  return {QTableWidget::sizeHint().width(),
          horizontalHeader()->sizeHint().height() + rows * verticalHeader()->defaultSectionSize() + bar + 2};
}

}  // namespace zrqrybld
