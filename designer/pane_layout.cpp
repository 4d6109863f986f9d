#include "designer/pane_layout.h"

#include <QApplication>
#include <QEvent>
#include <QTabBar>
#include <algorithm>
#include <utility>

#include "zrqrybld/adapters/qt/say.h"
#include "zrqrybld/adapters/qt/telling_order.h"
#include "zrqrybld/base/texts_designer.h"

namespace zrqrybld {
namespace {

constexpr int kLeastRows = 150;  // pixels: a few rows below the pane's bar
constexpr int kExpanded = 180;   // of a pane that comes back
constexpr int kPixelsAShare = 8;

}  // namespace

PaneLayout::PaneLayout(QueryDesignerWidget& designer, PreviewPane& rows, const TextSource& texts)
    : designer_(designer), rows_(rows), rowsName_(Say(texts, text::RowsTab)), tabs_(new QTabWidget) {
  const int place = designer_.indexOf(&designer_.SqlView());
  const int share = designer_.SqlView().sizePolicy().verticalStretch();
  TellInOrder(*tabs_);
  tabs_->setDocumentMode(true);
  tabs_->setTabBarAutoHide(true);
  tabs_->tabBar()->setExpanding(false);
  tabs_->tabBar()->setFocusPolicy(Qt::NoFocus);  // F6 goes to what the tabs show
  tabs_->addTab(&designer_.SqlView(), Say(texts, text::SqlTab));
  designer_.insertWidget(place, tabs_);
  rows_.setMinimumHeight(kLeastRows);
  tabs_->addTab(&rows_, rowsName_);
  designer_.setStretchFactor(place, share);
  designer_.AddPane(&rows_);
  QList<int> sizes;
  for (int i = 0; i < designer_.count(); ++i) {
    designer_.setCollapsible(i, true);
    sizes += designer_.widget(i)->sizePolicy().verticalStretch() * kPixelsAShare;
  }
  designer_.setSizes(sizes);
  WatchHandles();
  connect(&designer_, &QueryDesignerWidget::PaneWanted, this, [this](QWidget* pane) {
    if (QWidget* part = PartOf(pane)) Reveal(part, pane);
  });
  connect(tabs_, &QTabWidget::currentChanged, this, &PaneLayout::Changed);
  connect(tabs_, &QTabWidget::tabBarDoubleClicked, this, [this] { Maximize(IsMaximized() ? nullptr : tabs_); });
}

void PaneLayout::SetRowsInTab(bool inTab) {
  if (inTab == RowsInTab()) return;
  Maximize(nullptr);
  const bool shown = RowsShown();
  if (inTab) {
    tabs_->addTab(&rows_, rowsName_);
  } else {
    tabs_->removeTab(tabs_->indexOf(&rows_));
    designer_.addWidget(&rows_);
    designer_.setCollapsible(designer_.indexOf(&rows_), true);
    WatchHandles();
  }
  ShowRows(shown);
}

// The child of the splitter that holds the pane; nothing for a pane that stands elsewhere.
QWidget* PaneLayout::PartOf(const QWidget* pane) const {
  for (int i = 0; i < designer_.count(); ++i) {
    if (designer_.widget(i) == pane || designer_.widget(i)->isAncestorOf(pane)) return designer_.widget(i);
  }
  return nullptr;
}

QWidget* PaneLayout::FocusedPart() const {
  const QWidget* focused = QApplication::focusWidget();
  QWidget* part = focused ? PartOf(focused) : nullptr;
  return part ? part : designer_.widget(0);
}

void PaneLayout::ShowRows(bool shown) {
  QWidget* const part = PartOf(&rows_);
  rowsWanted_ = shown;
  if (shown) {
    if (part == &rows_) rows_.show();
    Reveal(part, &rows_);
  } else if (part == tabs_) {
    tabs_->setCurrentWidget(&designer_.SqlView());
  } else {
    if (maximized_ == part) Maximize(nullptr);
    rows_.hide();
  }
  Q_EMIT Changed();
}

void PaneLayout::Reveal(QWidget* part, QWidget* pane) {
  if (part == tabs_ && tabs_->indexOf(pane) >= 0) tabs_->setCurrentWidget(pane);
  if (part == &rows_ && !rowsWanted_) return;  // hidden on purpose
  if (maximized_ && maximized_ != part) Maximize(part);
  Expand(part);
}

// Gives a part without height its place back, from the highest one.
void PaneLayout::Expand(QWidget* part) {
  QList<int> sizes = designer_.sizes();
  const int at = designer_.indexOf(part);
  if (sizes[at] > 0 || part->isHidden()) return;
  auto highest = std::ranges::max_element(sizes);
  const int height = std::min(std::max(kExpanded, part->minimumSizeHint().height()), *highest / 2);
  *highest -= height;
  sizes[at] = height;
  designer_.setSizes(sizes);
}

void PaneLayout::ToggleCollapsed(QWidget* part) {
  QList<int> sizes = designer_.sizes();
  const int at = designer_.indexOf(part);
  if (sizes[at] == 0) return Expand(part);
  const int height = std::exchange(sizes[at], 0);
  const auto shown = std::ranges::find_if(sizes, [](int size) { return size > 0; });
  if (shown == sizes.end()) return;  // something is always seen
  *shown += height;
  designer_.setSizes(sizes);
}

void PaneLayout::CollapseFocused() {
  QWidget* const part = FocusedPart();
  Maximize(nullptr);
  ToggleCollapsed(part);
  for (int i = 0; i < designer_.count() && designer_.sizes()[designer_.indexOf(part)] == 0; ++i) {
    QWidget* const other = designer_.widget(i);
    if (designer_.sizes()[i] == 0 || !other->isVisible()) continue;
    (other == tabs_ ? tabs_->currentWidget() : other)->setFocus(Qt::OtherFocusReason);
    return;
  }
}

void PaneLayout::ToggleMaximized() { Maximize(maximized_ ? nullptr : FocusedPart()); }

// Nothing for none.
void PaneLayout::Maximize(QWidget* part) {
  if (part == maximized_) return;
  maximized_ = part;
  for (int i = 0; i < designer_.count(); ++i) {
    QWidget* const one = designer_.widget(i);
    one->setVisible(part ? one == part : one != &rows_ || rowsWanted_);
  }
  if (part) Expand(part);
  Q_EMIT Changed();
}

// A double click on a splitter hides the pane below it, or brings it back.
void PaneLayout::WatchHandles() {
  for (int i = 1; i < designer_.count(); ++i) {
    designer_.handle(i)->removeEventFilter(this);
    designer_.handle(i)->installEventFilter(this);
  }
  TellInOrder(designer_);
}

bool PaneLayout::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() != QEvent::MouseButtonDblClick) return QObject::eventFilter(watched, event);
  for (int i = 1; i < designer_.count(); ++i) {
    if (designer_.handle(i) == watched) ToggleCollapsed(designer_.widget(i));
  }
  return true;
}

QByteArray PaneLayout::State() {
  Maximize(nullptr);
  return designer_.saveState();
}

void PaneLayout::SetState(const QByteArray& state) {
  Maximize(nullptr);
  designer_.restoreState(state);
  for (int i = 0; i < designer_.count(); ++i) designer_.setCollapsible(i, true);
}

}  // namespace zrqrybld
