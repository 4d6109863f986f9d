#include "designer/main_window.h"

#include <QCloseEvent>
#include <QDir>
#include <QDropEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QSettings>
#include <QStatusBar>
#include <QTabBar>
#include <QUrl>

#include "designer/guarded.h"
#include "designer/lost_work.h"
#include "designer/plain_box.h"
#include "designer/query_commands.h"
#include "designer/result_model.h"
#include "designer/tool_icons.h"
#include "designer/window_memory.h"
#include "zrqrybld/adapters/qt/conditions_view.h"
#include "zrqrybld/adapters/qt/connection_choice.h"
#include "zrqrybld/adapters/qt/telling_order.h"
#include "zrqrybld/base/texts_designer.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/hub/query_set.h"
#include "zrqrybld/platform/connection_string.h"
#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/sql_pane.h"

namespace zrqrybld {
namespace {

constexpr auto kSchemaTreeKey = "window/schemaTree";
constexpr auto kConditionsKey = "window/conditions";
constexpr auto kNumberProperty = "number";  // of a query without a file
constexpr int kModifiedDelay = 250;         // milliseconds: asking writes the whole query

}  // namespace

MainWindow::MainWindow(const QString& languageFile)
    : languageFile_(languageFile),
      tabs_(new QTabWidget(this)),
      texts_(AddTab().Hub().Texts()),
      commands_(*this, *texts_),
      tree_(new SchemaTree(Tab().Designer(), this)),
      pages_(new QStackedWidget(this)),
      source_(new QLabel(this)) {
  setWindowTitle(Say(*texts_, text::AppName));
  setWindowIcon(ProgramIcon());
  resize(1120, 780);
  TellInOrder(*tabs_);
  tabs_->setDocumentMode(true);
  tabs_->setTabBarAutoHide(true);
  tabs_->setTabsClosable(true);
  tabs_->setMovable(true);
  tabs_->setElideMode(Qt::ElideMiddle);
  tabs_->tabBar()->setFocusPolicy(Qt::NoFocus);
  addDockWidget(isRightToLeft() ? Qt::RightDockWidgetArea : Qt::LeftDockWidgetArea, tree_);
  tree_->hide();
  Tab().Designer().AddPane(tree_);
  connect(tree_, &SchemaTree::Failed, this, &MainWindow::ShowError);
  MakeMenus();
  MakeToolBar();
  MakeStartPage();
  pages_->addWidget(tabs_);
  pages_->addWidget(start_);
  setCentralWidget(pages_);
  setAcceptDrops(true);
  source_->setTextFormat(Qt::PlainText);   // a file's name is no markup
  statusBar()->setSizeGripEnabled(false);  // it is told before what stands in the bar
  statusBar()->addPermanentWidget(source_);
  TellInOrder({menuBar(), options_, tree_, pages_, statusBar()});
  modifiedSoon_.setSingleShot(true);
  modifiedSoon_.setInterval(kModifiedDelay);
  connect(&modifiedSoon_, &QTimer::timeout, this, &MainWindow::UpdateTitle);
  connect(tabs_, &QTabWidget::currentChanged, this, &MainWindow::ShowTab);
  connect(tabs_, &QTabWidget::tabCloseRequested, this, &MainWindow::CloseTab);
  UpdateHistory();
  UpdateState();
}

MainWindow::~MainWindow() {
  tabs_->disconnect(this);  // a tab that goes shows no other one
}

// --- Open queries ---

QueryTab& MainWindow::TabAt(int index) const { return *qobject_cast<QueryTab*>(tabs_->widget(index)); }

QueryTab& MainWindow::Tab() const { return TabAt(tabs_->currentIndex()); }

QueryTab& MainWindow::AddTab() {
  auto* tab = new QueryTab(languageFile_);
  tab->setProperty(kNumberProperty, ++made_);
  tabs_->addTab(tab, QString());
  const auto current = [this, tab](auto tell) {
    return [this, tab, tell] {
      if (tab == tabs_->currentWidget()) (this->*tell)();
    };
  };
  connect(tab, &QueryTab::Changed, this, current(&MainWindow::UpdateQuery));
  connect(tab, &QueryTab::Renamed, this, current(&MainWindow::UpdateTitle));
  connect(tab, &QueryTab::HistoryChanged, this, current(&MainWindow::ShowStep));
  connect(tab, &QueryTab::SourceChanged, this, current(&MainWindow::ShowSource));
  connect(&tab->Panes(), &PaneLayout::Changed, this, current(&MainWindow::UpdateState));
  connect(&tab->Rows(), &PreviewPane::RunningChanged, this, current(&MainWindow::UpdateState));
  connect(tab, &QueryTab::Happened, this, &MainWindow::ShowHappened);
  tab->Designer().DiagramView().viewport()->installEventFilter(this);
  // The next step of whoever has chosen a source: its tables.
  connect(tab, &QueryTab::Connected, this, [this] {
    if (inSession_) QTimer::singleShot(0, this, &MainWindow::PickTables);
  });
  return *tab;
}

QueryTab& MainWindow::OpenTab() {
  QueryTab& before = Tab();
  QueryTab& tab = AddTab();
  tab.Designer().AddPane(tree_);
  CopyLayout(before.Designer(), before.Panes(), tab.Designer(), tab.Panes());
  tab.Conditions().setVisible(before.ConditionsShown());
  tab.Flow().SetConnectSaved(connectSaved_);
  if (inSession_) tab.BeginSession();
  tabs_->setCurrentWidget(&tab);
  tab.Designer().DiagramView().setFocus();
  if (before.Hub().IsConnected()) {
    // A connection of its own: two queries may wait for the source at the same time.
    const QString error = tab.Connect(before.Hub().Connection()->ConnectionString(), false);
    if (!error.isEmpty()) ShowError(error);
  }
  return tab;
}

void MainWindow::OpenQuery(const QString& file) {
  const QString path = QFileInfo(file).absoluteFilePath();
  for (int i = 0; i < tabs_->count(); ++i) {
    if (TabAt(i).Document().File() == path) return tabs_->setCurrentIndex(i);
  }
  const bool inPlace = Tab().IsBlank();
  QueryTab& before = Tab();
  QueryTab& tab = inPlace ? before : OpenTab();
  QString remark;
  const QString error = tab.Document().Open(path, &remark);
  if (!error.isEmpty() && !inPlace) {
    RemoveTab(tab);
    tabs_->setCurrentWidget(&before);
  }
  if (!error.isEmpty()) ShowError(error);
  if (!remark.isEmpty()) ShowPlain(this, QMessageBox::Information, remark);
}

void MainWindow::CloseTab(int index) {
  QueryTab& tab = TabAt(index);
  tabs_->setCurrentIndex(index);  // the question is about what one sees
  if (!tab.Document().MaySetAside()) return;
  if (tabs_->count() > 1) {
    RemoveTab(tab);
  } else {
    tab.Document().Reset();
  }
}

void MainWindow::RemoveTab(QueryTab& tab) {
  tab.EndSession();
  tabs_->removeTab(tabs_->indexOf(&tab));
  tab.deleteLater();
}

void MainWindow::StepTab(int direction) {
  tabs_->setCurrentIndex((tabs_->currentIndex() + direction + tabs_->count()) % tabs_->count());
}

void MainWindow::ShowTab() {
  QueryTab& tab = Tab();
  tree_->Follow(tab.Designer());
  options_->Follow(tab.Hub());
  zoom_->Follow(*tab.Hub().DiagramPane(), tab.Designer().DiagramView());
  source_->setText(tab.SourceName());
  UpdateHistory();
  UpdateTitle();
  UpdateState();
}

QString MainWindow::NameOf(const QueryTab& tab) const {
  const QString name = tab.Document().Name();
  return name.isEmpty() ? Say(*texts_, text::UnnamedTab, tab.property(kNumberProperty).toInt()) : name;
}

// --- What the current query is ---

void MainWindow::UpdateQuery() {
  if (options_) options_->Refresh();
  UpdateState();
  modifiedSoon_.start();
}

void MainWindow::UpdateTitle() {
  QueryTab& tab = Tab();
  const bool modified = tab.Document().IsModified();
  QStringList parts;
  for (const QString& part : {tab.Document().Name(), tab.SourceName(), Say(*texts_, text::AppName)}) {
    if (!part.isEmpty()) parts += part;
  }
  parts.first() += "[*]";  // where the system puts its mark
  setWindowTitle(parts.join(" - "));
  setWindowModified(modified);
  const int index = tabs_->currentIndex();
  tabs_->setTabText(index, NameOf(tab).replace("&", "&&") + (modified ? QStringLiteral(" *") : QString()));
  tabs_->setTabToolTip(index, QDir::toNativeSeparators(tab.Document().File()));
}

void MainWindow::ShowSource() {
  tree_->SourceChanged();
  source_->setText(Tab().SourceName());
}

void MainWindow::UpdateState() {
  if (!start_) return;  // while the window is made
  QueryTab& tab = Tab();
  const qbQueryBuilder& hub = tab.Hub();
  const bool atStart = inSession_ && !startPassed_ && tabs_->count() == 1 && !hub.IsConnected() &&
                       hub.Entities()->Count() == 0 && !hub.SQLPane()->IsEdited() && tab.Document().Name().isEmpty();
  pages_->setCurrentWidget(atStart ? static_cast<QWidget*>(start_) : tabs_);
  tree_->setVisible(!atStart && commands_.Of(Command::ShowSchemaTree)->isChecked());
  commands_.Of(Command::LeaveQuery)->setEnabled(hub.QueriesNow().shown != 0);
  commands_.Of(Command::GroupRows)->setChecked(hub.GridPane()->ShowGroupBy());
  commands_.Of(Command::EachRowOnce)->setChecked(hub.DistinctRecords());
  commands_.Of(Command::ShowMinimap)->setChecked(hub.DiagramPane()->ShowMinimap());
  commands_.Of(Command::ShowConditions)->setChecked(tab.ConditionsShown());
  commands_.Of(Command::MaximizePane)->setChecked(tab.Panes().IsMaximized());
  commands_.Of(Command::RowsInTab)->setChecked(tab.Panes().RowsInTab());
  commands_.Of(Command::StopPreview)->setEnabled(tab.Rows().IsRunning());
  commands_.Of(Command::ExportRows)->setEnabled(tab.Rows().Rows().RowsHeld() > 0);
  showRows_->setChecked(tab.Panes().RowsShown());
  commands_.Update({.connection = hub.IsConnected(), .tables = hub.Entities()->Count() > 0});
}

void MainWindow::ShowHappened(const QString& text) { statusBar()->showMessage(text); }

void MainWindow::ShowError(const QString& message) { ShowPlain(this, QMessageBox::Critical, message); }

// --- Sources and files ---

void MainWindow::SetConnectSaved(bool connect) {
  connectSaved_ = connect;
  for (int i = 0; i < tabs_->count(); ++i) TabAt(i).Flow().SetConnectSaved(connect);
}

void MainWindow::AskForDatabase() {
  const QString file =
      QFileDialog::getOpenFileName(this, Say(*texts_, text::OpenDatabaseCaption), {},
                                   FileKinds(*texts_, text::SqliteDatabases, "*.db *.sqlite *.sqlite3"));
  if (!file.isEmpty()) OpenDropped(file);
}

// A query, or a database with the question about unsaved changes.
void MainWindow::OpenDropped(const QString& file) {
  if (QueryDocument::IsQueryFile(file)) return OpenQuery(file);
  const std::string source = BuildConnectionString({.way = ConnectionWay::SqliteFile, .file = ToUtf8(file)});
  if (const QString error = Tab().Connect(source, true); !error.isEmpty()) ShowError(error);
}

QString MainWindow::OpenDatabase(const QString& file) {
  return OpenConnection(BuildConnectionString({.way = ConnectionWay::SqliteFile, .file = ToUtf8(file)}));
}

void MainWindow::AskForConnection() {
  const std::string chosen = Tab().Hub().PromptForConnection();
  if (chosen.empty()) return;
  if (const QString error = Tab().Connect(chosen, true); !error.isEmpty()) ShowError(error);
}

void MainWindow::OpenRecent(const RecentConnection& recent) {
  if (const QString error = Tab().OpenRecent(recent); !error.isEmpty()) ShowError(error);
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
  if (event->mimeData()->urls().size() == 1 && event->mimeData()->urls().first().isLocalFile()) {
    event->acceptProposedAction();
  }
}

// A file that is dropped on a diagram that is designed already becomes a part of it.
bool MainWindow::eventFilter(QObject* watched, QEvent* event) {
  const bool drags = event->type() == QEvent::DragEnter || event->type() == QEvent::DragMove;
  if (!drags && event->type() != QEvent::Drop) return QMainWindow::eventFilter(watched, event);
  auto& drop = static_cast<QDropEvent&>(*event);
  const QList<QUrl> files = drop.mimeData()->urls();
  if (files.size() != 1 || !files.first().isLocalFile()) return QMainWindow::eventFilter(watched, event);
  drop.acceptProposedAction();
  if (!drags) DropOnDiagram(files.first().toLocalFile());
  return true;
}

void MainWindow::DropOnDiagram(const QString& file) {
  const bool becomesPart = QueryDocument::IsQueryFile(file) && Tab().Hub().Entities()->Count() > 0;
  becomesPart ? AddSavedQuery(file) : OpenDropped(file);
}

void MainWindow::dropEvent(QDropEvent* event) {
  event->acceptProposedAction();
  OpenDropped(event->mimeData()->urls().first().toLocalFile());
}

// --- For scripts ---

QStringList MainWindow::AddTables(const QStringList& names) { return zrqrybld::AddTables(Tab().Hub(), names); }
QString MainWindow::TickColumn(const QString& name) { return zrqrybld::TickColumn(Tab().Hub(), name); }
QString MainWindow::ParseFile(const QString& file) { return zrqrybld::ParseFile(Tab().Hub(), file); }
QString MainWindow::Statement() const { return StatementOf(Tab().Hub()); }

// --- From start to start ---

void MainWindow::BeginSession() {
  if (inSession_) return;
  inSession_ = true;
  RestoreLayout({*this, Tab().Designer(), Tab().Panes()});
  Tab().BeginSession();
  commands_.Of(Command::ShowSchemaTree)->setChecked(QSettings().value(kSchemaTreeKey, true).toBool());
  Tab().Conditions().setVisible(QSettings().value(kConditionsKey, false).toBool());
  UpdateState();
}

bool MainWindow::OfferLostWork() {
  const auto bringBack = [this](const KeptWork& work) {
    QueryTab& before = Tab();
    QueryTab& tab = before.IsBlank() ? before : AddTab();
    if (&tab != &before) {
      tab.Designer().AddPane(tree_);
      if (inSession_) tab.BeginSession();
    }
    tabs_->setCurrentWidget(&tab);
    const QString error = tab.BringBack(work);
    if (!error.isEmpty() && &tab != &before) RemoveTab(tab);
    return error;
  };
  return zrqrybld::OfferLostWork(this, *texts_,
                                 {bringBack, [this](const QString& happened) { ShowHappened(happened); }});
}

void MainWindow::closeEvent(QCloseEvent* event) {
  event->ignore();
  for (int i = 0; i < tabs_->count(); ++i) {
    if (TabAt(i).Document().IsModified()) tabs_->setCurrentIndex(i);
    if (!TabAt(i).Document().MaySetAside()) return;
  }
  event->accept();
  for (int i = 0; i < tabs_->count(); ++i) TabAt(i).EndSession();
  if (!std::exchange(inSession_, false)) return;
  QSettings().setValue(kSchemaTreeKey, commands_.Of(Command::ShowSchemaTree)->isChecked());
  QSettings().setValue(kConditionsKey, Tab().ConditionsShown());
  StoreLayout({*this, Tab().Designer(), Tab().Panes()});
}

}  // namespace zrqrybld
