#include "zrqrybld/adapters/qt/query_designer_widget.h"

#include <QApplication>
#include <QShortcut>
#include <algorithm>

#include "zrqrybld/adapters/qt/change_announcer.h"
#include "zrqrybld/adapters/qt/name_find_bar.h"
#include "zrqrybld/adapters/qt/predictive_text.h"
#include "zrqrybld/adapters/qt/say.h"
#include "zrqrybld/adapters/qt/shortcuts.h"
#include "zrqrybld/adapters/qt/sql_only_cover.h"
#include "zrqrybld/adapters/qt/telling_order.h"
#include "zrqrybld/base/texts_qt.h"
#include "zrqrybld/grid/grid_layout.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/hub/query_menus.h"
#include "zrqrybld/sql/brackets.h"
#include "zrqrybld/sql/highlighting.h"

namespace zrqrybld {
namespace {

// How the panes share the height at first.
constexpr int kDiagramShare = 46;
constexpr int kGridShare = 28;
constexpr int kSqlShare = 26;

// Twips.
constexpr float kColumnNameWidth = 2400;
constexpr float kTableNameWidth = 1800;

}  // namespace

QueryDesignerWidget::QueryDesignerWidget(QWidget* parent)
    : QSplitter(Qt::Vertical, parent),
      toolkit_(std::make_shared<QtToolkit>(this)),
      hub_(qbQueryBuilder::Create(toolkit_)),
      diagram_(new ControlWidget(nullptr, this)),
      grid_(new ControlWidget(nullptr, this)),
      sql_(new QtTextArea(this)) {
  const Ref<qbDiagramPane> diagram = qbDiagramPane::Create();
  const Ref<qbGridPane> grid = qbGridPane::Create();
  const Ref<qbSQLPane> sql = qbSQLPane::Create();
  hub_->SetDiagramPane(diagram);
  hub_->SetGridPane(grid);
  hub_->SetSQLPane(sql);
  diagram_->SetControl(diagram);
  grid_->SetControl(grid->Grid());
  sql_->SetHighlighter(HighlightSql);
  sql_->SetBracketFinder(MatchingBrackets);
  sql->AttachTextArea(sql_);
  new PredictiveText(*sql_, qbIntelliList::Create(hub_, EditedText::Statement));  // the text area owns it

  for (QWidget* pane : {static_cast<QWidget*>(diagram_), static_cast<QWidget*>(grid_), static_cast<QWidget*>(sql_)}) {
    addWidget(pane);
    setCollapsible(indexOf(pane), false);
    pane->setMinimumHeight(72);
    AddPane(pane);
  }
  TellInOrder(*this);
  setStretchFactor(0, kDiagramShare);
  setStretchFactor(1, kGridShare);
  setStretchFactor(2, kSqlShare);
  setSizes({kDiagramShare * 8, kGridShare * 8, kSqlShare * 8});
  setHandleWidth(6);

  const auto onKey = [this](const QKeySequence& key, int direction) {
    auto* shortcut = new QShortcut(key, this);
    shortcut->setContext(Qt::WidgetWithChildrenShortcut);
    connect(shortcut, &QShortcut::activated, this, [this, direction] { FocusPane(direction); });
  };
  onKey(ShortcutOf(Command::NextPane), 1);
  onKey(ShortcutOf(Command::PreviousPane), -1);

  auto* leave = new QShortcut(ShortcutOf(Command::LeaveQuery), grid_);  // diagram and text have the key themselves
  leave->setContext(Qt::WidgetWithChildrenShortcut);
  connect(leave, &QShortcut::activated, this, [this] { sql_->Boundary().Run([this] { LeaveQuery(*hub_); }); });

  new SqlOnlyCover(*diagram_, *hub_, true);  // the panes own them
  new SqlOnlyCover(*grid_, *hub_, false);
  find_ = new NameFindBar(*diagram_, diagram);
  wanted_ = diagram->FindWanted.Connect([this](bool& isShown) {
    isShown = true;
    find_->Open();
  });

  announcer_ = new ChangeAnnouncer(*hub_, this);
  ApplyTexts();
  texts_ = hub_->TextsChanged.Connect([this] { ApplyTexts(); });

  // An error from a pane is a message for its user, not a lost exception.
  const auto show = [this](const std::exception& error) {
    toolkit_->GetDialogs().ShowMessage(hub_->Say(error), MessageIcon::Critical);
  };
  diagram_->SetErrorHandler(show);
  grid_->SetErrorHandler(show);
  sql_->SetErrorHandler(show);
}

void QueryDesignerWidget::ApplyTexts() {
  sql_->SetTexts(hub_->Texts());
  find_->SetTexts(*hub_->Texts());
  sql_->setAccessibleName(Say(*hub_->Texts(), text::SqlName));
  FitColumns();
}

// Names are long and captions differ by language: no caption is cut off where a little width shows it. No column
// becomes narrower.
void QueryDesignerWidget::FitColumns() {
  const Ref<qbGridPane> pane = hub_->GridPane();
  if (!pane) return;
  zrGrid& grid = *pane->Grid();
  for (std::int32_t i = 1; i <= grid.Columns()->Count(); ++i) {
    const Ref<zrGridColumn> column = grid.Columns()->Item(i);
    float least = column->Width();
    if (column->Index() == kColumnColumn) least = std::max(kColumnNameWidth, least);
    if (column->Index() == kColumnTable) least = std::max(kTableNameWidth, least);
    if (column->Index() == kColumnSortType) {
      const Pixels longest = grid_->Metrics().TextWidth(TextOf(SortDirection::Descending), {}) + kGridTextPadding * 3;
      least = std::max(least, static_cast<float>(ScreenScale{}.TwipsX(longest).Value()));
    }
    if (column->Width() > 0) grid.FitColumn(i, least);
  }
}

void QueryDesignerWidget::AddPane(QWidget* pane) { panes_.emplace_back(pane); }

void QueryDesignerWidget::FocusPane(int direction) {
  std::erase(panes_, nullptr);
  const QWidget* focused = QApplication::focusWidget();
  const auto holdsFocus = [focused](const QWidget* pane) { return pane == focused || pane->isAncestorOf(focused); };
  const auto count = std::ssize(panes_);
  auto at = std::ranges::find_if(panes_, holdsFocus) - panes_.begin();
  if (at == count) at = direction > 0 ? count - 1 : 0;
  for (std::ptrdiff_t step = 1; step <= count; ++step) {
    const QPointer<QWidget> pane = panes_[static_cast<std::size_t>((at + direction * step + count) % count)];
    Q_EMIT PaneWanted(pane);
    if (!pane || !pane->isVisibleTo(pane->window())) continue;
    pane->setFocus(Qt::TabFocusReason);
    return;
  }
}

QueryDesignerWidget::~QueryDesignerWidget() {
  delete announcer_;  // it listens to the hub
  // The application may keep the panes; this widget's text area goes away.
  if (const Ref<qbSQLPane> sql = hub_->SQLPane()) sql->AttachTextArea(nullptr);
}

}  // namespace zrqrybld
