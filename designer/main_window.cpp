#include "designer/main_window.h"

#include <QAction>
#include <QActionGroup>
#include <QCloseEvent>
#include <QDir>
#include <QDropEvent>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QInputDialog>
#include <QLocale>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QSettings>
#include <QStackedWidget>
#include <QStatusBar>
#include <QTimer>
#include <QToolBar>
#include <QToolButton>
#include <QUrl>
#include <algorithm>
#include <array>
#include <optional>

#include "designer/appearance.h"
#include "designer/connection_flow.h"
#include "designer/guarded.h"
#include "designer/key_list.h"
#include "designer/plain_box.h"
#include "designer/preview_pane.h"
#include "designer/query_document.h"
#include "designer/query_options_bar.h"
#include "designer/query_preview.h"
#include "designer/recent_connections.h"
#include "designer/tool_icons.h"
#include "designer/window_memory.h"
#include "designer/zoom_box.h"
#include "zrqrybld/adapters/qt/connection_choice.h"
#include "zrqrybld/adapters/qt/qt_text.h"
#include "zrqrybld/adapters/qt/query_designer_widget.h"
#include "zrqrybld/adapters/qt/say.h"
#include "zrqrybld/adapters/qt/shortcuts.h"
#include "zrqrybld/adapters/qt/waiting_provider.h"
#include "zrqrybld/adapters/sqlite/sqlite_provider.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_designer.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/host/step_context.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/hub/parameter_form.h"
#include "zrqrybld/platform/connection_string.h"
#include "zrqrybld/platform/provider.h"
#include "zrqrybld/platform/toolkit.h"
#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/sql_pane.h"
#if ZRQRYBLD_HAS_ODBC
#include "zrqrybld/adapters/odbc/odbc_provider.h"
#endif

namespace zrqrybld {
namespace {

constexpr double kZoomStep = 1.25;
constexpr int kToolIcon = 20;
constexpr auto kSchemaTreeKey = "window/schemaTree";
constexpr int kModifiedDelay = 250;  // milliseconds: asking writes the whole query
constexpr int kDesignerShare = 500;  // pixels, of a window of usual height
constexpr int kPreviewShare = 200;
constexpr int kLeastPreview = 96;

}  // namespace

MainWindow::MainWindow(const QString& languageFile)
    : panes_(new QSplitter(Qt::Vertical, this)),
      designer_(new QueryDesignerWidget),
      texts_(designer_->QueryBuilder().Texts()),
      commands_(*this, *texts_),
      languageFailure_(languageFile.isEmpty() ? QString() : LoadLanguage(languageFile)),
      preview_(new PreviewPane(texts_)),
      tree_(new SchemaTree(*designer_, this)) {
  setWindowTitle(Say(*texts_, text::AppName));
  setWindowIcon(ProgramIcon());
  panes_->addWidget(designer_);
  panes_->addWidget(preview_);
  panes_->setChildrenCollapsible(false);
  panes_->setHandleWidth(6);
  panes_->setSizes({kDesignerShare, kPreviewShare});
  panes_->setStretchFactor(0, 1);
  preview_->setMinimumHeight(kLeastPreview);
  preview_->hide();
  resize(1120, 780);

  qbQueryBuilder& hub = designer_->QueryBuilder();
  hub.GetToolkit().Providers()->Register(std::make_shared<SqliteProvider>());
#if ZRQRYBLD_HAS_ODBC
  hub.GetToolkit().Providers()->Register(MakeWaitingProvider(std::make_shared<OdbcProvider>(), texts_));
#endif
  addDockWidget(Qt::LeftDockWidgetArea, tree_);
  tree_->hide();
  connect(tree_, &SchemaTree::Failed, this, &MainWindow::ShowError);
  hub.SetAllowJoinProperties(true);
  hub.SetAutoSyntax(true);
  // A plain tick means a plain column; grouping is a choice.
  hub.GridPane()->SetShowGroupBy(false);
  hub.GridPane()->SetDateFormat("yyyy-mm-dd");
  hub.SQLPane()->SetKeepTypedText(true);
  hub.DiagramPane()->SetPlacesByJoins(true);
  hub.DiagramPane()->SetShowMinimap(true);
  zrGrid& grid = *hub.GridPane()->Grid();
  grid.SetFillsWidth(true);
  grid.SetRowKeysTakeCurrent(true);
  grid.SetHasCellButtons(true);

  flow_ = std::make_unique<ConnectionFlow>(this, hub);
  MakeDocument();
  query_ = std::make_unique<QueryPreview>(*designer_, *preview_);
  connect(preview_, &PreviewPane::Finished, this, &MainWindow::ShowHappened);
  connect(preview_, &PreviewPane::RunWanted, this, &MainWindow::RunPreview);
  connect(preview_, &PreviewPane::LeaveWanted, designer_, &QueryDesignerWidget::FocusPane);
  MakeMenus();
  MakeToolBar();
  MakeStartPage();
  commands_.Of(Command::StopPreview)->setEnabled(preview_->IsRunning());
  connect(preview_, &PreviewPane::RunningChanged, commands_.Of(Command::StopPreview), &QAction::setEnabled);
  setAcceptDrops(true);
  source_ = new QLabel(this);
  source_->setTextFormat(Qt::PlainText);  // a file's name is no markup
  statusBar()->addPermanentWidget(source_);
  links_.push_back(hub.SQLPane()->SQLChanged.Connect([this] {
    options_->Refresh();
    UpdateState();
    modifiedSoon_.start();
    if (recovery_) recovery_->Changed();
  }));
  hub.SQLPane()->Refresh();
  document_->MarkUnmodified();
  UpdateState();
}

void MainWindow::MakeDocument() {
  document_ = std::make_unique<QueryDocument>(
      this, designer_->QueryBuilder(),
      QueryDocument::Window{
          [this](const std::string& connectionString) { return flow_->OpenSaved(connectionString); },
          [this](const std::shared_ptr<ProviderConnection>& connection) { UseConnection(connection); },
          [this] {
            if (options_) options_->Refresh();
            UpdateTitle();
            UpdateState();
            if (recovery_) recovery_->Keep();
          },
          [this](const QString& text) { ShowHappened(text); }, [this] { preview_->Clear(); }});
}

void MainWindow::MakeMenus() {
  const auto add = [this](QMenu& menu, Command command, std::function<void()> run) {
    menu.addAction(commands_.Add(command, std::move(run)));
  };
  QMenu* file = menuBar()->addMenu(Say(*texts_, text::FileMenu));
  document_->FillMenu(*file, commands_);
  file->addSeparator();
  add(*file, Command::OpenDatabase, [this] { AskForDatabase(); });
  add(*file, Command::Connect, [this] { AskForConnection(); });
  QMenu* recent = file->addMenu(Say(*texts_, text::ConnectRecentMenu));
  connect(recent, &QMenu::aboutToShow, this, [this, recent] { FillRecentConnections(*recent); });
  file->addSeparator();
  add(*file, Command::Quit, [this] { close(); });

  MakeEditMenu();

  QMenu* query = menuBar()->addMenu(Say(*texts_, text::QueryMenu));
  add(*query, Command::AddTables, [this] { PickTables(); });
  add(*query, Command::GiveParameters, [this] { AskForParameters(); });
  query->addSeparator();
  QAction* group = commands_.Add(Command::GroupRows, [this] {
    qbGridPane& grid = *designer_->QueryBuilder().GridPane();
    grid.SetShowGroupBy(!grid.ShowGroupBy());
    UpdateState();
  });
  group->setCheckable(true);
  query->addAction(group);
  query->addSeparator();
  add(*query, Command::ClearQuery, [this] { designer_->QueryBuilder().DiagramPane()->Clear(); });
  query->addSeparator();
  add(*query, Command::RunPreview, [this] { RunPreview(); });
  add(*query, Command::StopPreview, [this] { preview_->Stop(); });
  add(*query, Command::GoToRows, [this] {
    showPreview_->setChecked(true);
    preview_->TakeFocus();
  });

  MakeViewMenu(*menuBar()->addMenu(Say(*texts_, text::ViewMenu)));

  QMenu* help = menuBar()->addMenu(Say(*texts_, text::HelpMenu));
  add(*help, Command::ShowKeys, [this] { ShowKeys(); });
  help->addAction(Say(*texts_, text::AboutItem), this, &MainWindow::ShowAbout);
}

void MainWindow::MakeViewMenu(QMenu& view) {
  const auto diagram = [this]() -> qbDiagramPane& { return *designer_->QueryBuilder().DiagramPane(); };
  const auto zoomBy = [this, diagram](double factor) {
    const PixelSize size = designer_->DiagramView().ViewSize();
    diagram().SetZoom(diagram().Zoom() * factor, {size.width / 2, size.height / 2});
  };
  view.addAction(commands_.Add(Command::Arrange, [diagram] { diagram().Arrange(); }));
  view.addAction(commands_.Add(Command::FitToWindow, [diagram] { diagram().ZoomToFit(); }));
  view.addSeparator();
  view.addAction(commands_.Add(Command::ZoomIn, [zoomBy] { zoomBy(kZoomStep); }));
  view.addAction(commands_.Add(Command::ZoomOut, [zoomBy] { zoomBy(1 / kZoomStep); }));
  view.addAction(commands_.Add(Command::ActualSize, [zoomBy, diagram] { zoomBy(1 / diagram().Zoom()); }));
  // Keyboards differ in where plus and minus stand.
  commands_.Of(Command::ZoomIn)->setShortcuts(QKeySequence::ZoomIn);
  commands_.Of(Command::ZoomOut)->setShortcuts(QKeySequence::ZoomOut);
  view.addSeparator();
  QAction* map = commands_.Add(Command::ShowMinimap, [diagram] { diagram().SetShowMinimap(!diagram().ShowMinimap()); });
  map->setCheckable(true);
  connect(&view, &QMenu::aboutToShow, map, [map, diagram] { map->setChecked(diagram().ShowMinimap()); });
  view.addAction(map);
  // The key shows the tree and goes into it; again, and it is gone.
  QAction* tree = commands_.Add(Command::ShowSchemaTree, [this] {
    UpdateState();
    if (tree_->isVisible()) tree_->TakeFocus();
  });
  tree->setCheckable(true);
  connect(tree_, &SchemaTree::CloseWanted, tree, [tree] { tree->setChecked(false); });
  view.addAction(tree);
  showPreview_ = view.addAction(Say(*texts_, text::ResultPreviewItem));
  showPreview_->setCheckable(true);
  connect(showPreview_, &QAction::toggled, preview_, &QWidget::setVisible);
  connect(preview_, &PreviewPane::CloseWanted, showPreview_, [this] { showPreview_->setChecked(false); });
  view.addSeparator();
  view.addAction(commands_.Add(Command::CopyPicture, [diagram] { diagram().CopyPicture(); }));
  commands_.Of(Command::CopyPicture)->setShortcut({});  // the key is the pane's that has the focus
  view.addAction(commands_.Add(Command::SavePicture, [diagram] { diagram().AskToSavePicture(); }));
  view.addSeparator();
  MakeThemeMenu(*view.addMenu(Say(*texts_, text::ThemeMenu)));
}

// An editor that is open takes the same keys for itself first.
void MainWindow::MakeEditMenu() {
  qbQueryBuilder& hub = designer_->QueryBuilder();
  QMenu* edit = menuBar()->addMenu(Say(*texts_, text::EditMenu));
  const auto travel = [this](bool (qbQueryBuilder::*way)(), TextId done, const std::string& step) {
    const QString error = Guarded([&] { (designer_->QueryBuilder().*way)(); });
    if (!error.isEmpty()) ShowError(error);
    if (error.isEmpty()) ShowHappened(Say(*texts_, done, step));
  };
  edit->addAction(commands_.Add(Command::Undo, [this, travel] {
    travel(&qbQueryBuilder::Undo, text::Undone, designer_->QueryBuilder().UndoText());
  }));
  edit->addAction(commands_.Add(Command::Redo, [this, travel] {
    travel(&qbQueryBuilder::Redo, text::DoneAgain, designer_->QueryBuilder().RedoText());
  }));
  commands_.Of(Command::Redo)->setShortcuts({ShortcutOf(Command::Redo), OtherShortcutOf(Command::Redo)});
  links_.push_back(hub.HistoryChanged.Connect([this] {
    UpdateHistory();
    if (designer_->QueryBuilder().CanUndo()) ShowHappened(ToQString(designer_->QueryBuilder().UndoText()));
    if (recovery_) recovery_->Changed();
  }));
  UpdateHistory();
}

void MainWindow::UpdateHistory() {
  const qbQueryBuilder& hub = designer_->QueryBuilder();
  const auto show = [](QAction& action, const QString& what, const std::string& step) {
    action.setEnabled(!step.empty());
    action.setText(step.empty() ? what : what + QLatin1Char(' ') + ToQString(step).replace("&", "&&"));
  };
  show(*commands_.Of(Command::Undo), Say(*texts_, text::UndoItem), hub.CanUndo() ? hub.UndoText() : std::string());
  show(*commands_.Of(Command::Redo), Say(*texts_, text::RedoItem), hub.CanRedo() ? hub.RedoText() : std::string());
  if (options_) options_->Refresh();
}

void MainWindow::MakeThemeMenu(QMenu& menu) {
  auto* group = new QActionGroup(&menu);
  for (const AppearanceName& name : AllAppearances()) {
    QAction* action = menu.addAction(Say(*texts_, name.text), this, [appearance = name.appearance] {
      StoreAppearance(appearance);
      SetAppearance(appearance);
    });
    action->setCheckable(true);
    action->setChecked(name.appearance == StoredAppearance());
    group->addAction(action);
  }
}

// Shown as long as there is nothing to be seen in the panes, to whoever works with the window.
void MainWindow::MakeStartPage() {
  start_ = new StartPage(*texts_, commands_, [this] { return RecentEntries(); });
  if (const QString sample = SampleDatabase(); !sample.isEmpty()) {
    start_->OfferSample([this, sample] { OpenDropped(sample); });
  }
  connect(start_, &StartPage::EmptyWanted, this, [this] {
    startPassed_ = true;
    UpdateState();
    designer_->SqlView().setFocus();
  });
  auto* pages = new QStackedWidget(this);
  pages->addWidget(panes_);
  pages->addWidget(start_);
  setCentralWidget(pages);
  modifiedSoon_.setSingleShot(true);
  modifiedSoon_.setInterval(kModifiedDelay);
  connect(&modifiedSoon_, &QTimer::timeout, this, [this] { setWindowModified(document_->IsModified()); });
}

QList<RecentEntry> MainWindow::RecentEntries() {
  QList<RecentEntry> entries;
  for (const QString& file : QueryDocument::RecentFiles()) {
    entries.push_back(
        {QFileInfo(file).fileName(), QDir::toNativeSeparators(file), [this, file] { document_->AskAndOpen(file); }});
  }
  for (const RecentConnection& recent : RecentConnections()) {
    entries.push_back(
        {SourceName(recent.text, *texts_), SourceTitle(recent.text, *texts_), [this, recent] { OpenRecent(recent); }});
  }
  return entries;
}

void MainWindow::MakeToolBar() {
  using enum Command;
  constexpr auto kBetween = std::optional<Command>();
  options_ = new QueryOptionsBar(designer_->QueryBuilder(), this);
  options_->setIconSize(QSize(kToolIcon, kToolIcon));
  options_->AddCommands(commands_, std::array<std::optional<Command>, 13>{OpenQuery, SaveQuery, kBetween, Undo, Redo,
                                                                          kBetween, AddTables, RunPreview, StopPreview,
                                                                          kBetween, GroupRows, FitToWindow, kBetween});
  auto* zoom = new ZoomBox(*designer_->QueryBuilder().DiagramPane(), designer_->DiagramView(), commands_, *texts_);
  options_->insertWidget(options_->actions().at(12), zoom);
  for (const Command withText : {AddTables, RunPreview}) {
    auto* button = qobject_cast<QToolButton*>(options_->widgetForAction(commands_.Of(withText)));
    button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
  }
  connect(options_, &QueryOptionsBar::Failed, this, &MainWindow::ShowError);
  connect(options_, &QueryOptionsBar::DialectChosen, this, [this] {
    qbQueryBuilder& hub = designer_->QueryBuilder();
    if (!recovery_ || !hub.IsConnected()) return;
    const Dialect& dialect = hub.CurrentDialect();
    RememberDialect(hub.Connection()->ConnectionString(),
                    hub.SourceDialect() == &dialect ? "" : std::string(dialect.name));
  });
  addToolBar(options_);
}

QString MainWindow::Guarded(const std::function<void()>& command) const { return FailureOf(*texts_, command); }

void MainWindow::ShowError(const QString& message) { ShowPlain(this, QMessageBox::Critical, message); }

// --- Database ---

void MainWindow::AskForDatabase() {
  const QString file =
      QFileDialog::getOpenFileName(this, Say(*texts_, text::OpenDatabaseCaption), {},
                                   FileKinds(*texts_, text::SqliteDatabases, "*.db *.sqlite *.sqlite3"));
  if (!file.isEmpty()) OpenDropped(file);
}

// A query or a database, with the question about unsaved changes.
void MainWindow::OpenDropped(const QString& file) {
  QString error;
  if (QueryDocument::IsQueryFile(file)) {
    if (document_->MaySetAside()) error = document_->Open(file);
  } else {
    error = Connect(BuildConnectionString({.way = ConnectionWay::SqliteFile, .file = ToUtf8(file)}), true);
  }
  if (!error.isEmpty()) ShowError(error);
}

QString MainWindow::OpenDatabase(const QString& file) {
  return OpenConnection(BuildConnectionString({.way = ConnectionWay::SqliteFile, .file = ToUtf8(file)}));
}

void MainWindow::AskForConnection() {
  const std::string chosen = designer_->QueryBuilder().PromptForConnection();
  if (chosen.empty()) return;
  if (const QString error = Connect(chosen, true); !error.isEmpty()) ShowError(error);
}

void MainWindow::FillRecentConnections(QMenu& menu) {
  menu.clear();
  for (const RecentConnection& recent : RecentConnections()) {
    menu.addAction(SourceTitle(recent.text, *texts_).replace("&", "&&"), this, [this, recent] { OpenRecent(recent); });
  }
  if (menu.isEmpty()) menu.addAction(Say(*texts_, text::NoRecentConnections))->setEnabled(false);
}

MainWindow::~MainWindow() = default;

void MainWindow::SetConnectSaved(bool connect) { flow_->SetConnectSaved(connect); }

void MainWindow::OpenRecent(const RecentConnection& recent) {
  QString error;
  const std::shared_ptr<ProviderConnection> connection = flow_->OpenRecent(recent, &error);
  if (connection) error = ConnectTo(connection, true);
  if (!error.isEmpty()) ShowError(error);
}

QString MainWindow::OpenConnection(const std::string& connectionString) { return Connect(connectionString, false); }

QString MainWindow::Connect(const std::string& connectionString, bool mayAsk) {
  const BusyPointer busy(designer_->QueryBuilder().GetToolkit());
  // A source that cannot be opened must not cost the user the query at hand: try it aside first.
  QString error;
  const std::shared_ptr<ProviderConnection> connection = flow_->Open(connectionString, &error);
  if (!connection) return error;
  return ConnectTo(connection, mayAsk);
}

QString MainWindow::ConnectTo(const std::shared_ptr<ProviderConnection>& connection, bool mayAsk) {
  if (mayAsk && !document_->MaySetAside()) return {};
  return Guarded([&] {
    UseConnection(connection);
    document_->Reset();
    ShowHappened(Say(*texts_, text::ConnectedTo, sourceName_));
    // The next step of whoever has chosen a source: its tables.
    if (mayAsk && recovery_) QTimer::singleShot(0, this, &MainWindow::PickTables);
  });
}

void MainWindow::UseConnection(const std::shared_ptr<ProviderConnection>& connection) {
  qbQueryBuilder& hub = designer_->QueryBuilder();
  hub.DiagramPane()->Clear();
  hub.SetConnection(connection);
  const Dialect* chosen = recovery_ ? FindDialect(RememberedDialect(connection->ConnectionString())) : nullptr;
  if (chosen) hub.SQLPane()->SetSQLSyntax(chosen->syntax);
  query_->SourceChanged();
  tree_->SourceChanged();
  sourceName_ = SourceName(connection->ConnectionString(), *texts_);
  source_->setText(sourceName_);
  NoteUsed(connection->ConnectionString());
  if (recovery_) RememberConnection(connection->ConnectionString());
}

void MainWindow::UpdateTitle() {
  QStringList parts;
  for (const QString& part : {document_->Name(), sourceName_, Say(*texts_, text::AppName)}) {
    if (!part.isEmpty()) parts += part;
  }
  parts.first() += "[*]";  // where the system puts its mark
  setWindowTitle(parts.join(" - "));
  setWindowModified(document_->IsModified());
}

void MainWindow::closeEvent(QCloseEvent* event) {
  event->setAccepted(document_->MaySetAside());
  if (!event->isAccepted()) return;
  preview_->Clear();
  if (!recovery_) return;
  recovery_.reset();
  flow_->SetAsks(false);
  QSettings().setValue(kSchemaTreeKey, commands_.Of(Command::ShowSchemaTree)->isChecked());
  StoreLayout({*this, *panes_, *designer_});
}

void MainWindow::ShowHappened(const QString& text) { statusBar()->showMessage(text); }

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
  if (event->mimeData()->urls().size() == 1 && event->mimeData()->urls().first().isLocalFile()) {
    event->acceptProposedAction();
  }
}

void MainWindow::dropEvent(QDropEvent* event) {
  event->acceptProposedAction();
  OpenDropped(event->mimeData()->urls().first().toLocalFile());
}

void MainWindow::UpdateState() {
  const qbQueryBuilder& hub = designer_->QueryBuilder();
  const bool atStart = recovery_ && !startPassed_ && !hub.IsConnected() && hub.Entities()->Count() == 0 &&
                       !hub.SQLPane()->IsEdited() && document_->Name().isEmpty();
  qobject_cast<QStackedWidget*>(centralWidget())->setCurrentWidget(atStart ? static_cast<QWidget*>(start_) : panes_);
  tree_->setVisible(!atStart && commands_.Of(Command::ShowSchemaTree)->isChecked());
  commands_.Of(Command::GroupRows)->setChecked(hub.GridPane()->ShowGroupBy());
  commands_.Update({.connection = hub.IsConnected(), .tables = hub.Entities()->Count() > 0});
}

// --- Query ---

void MainWindow::PickTables() {
  const QString error = Guarded([this] { designer_->QueryBuilder().ShowTables(); });
  if (!error.isEmpty()) ShowError(error);
}

void MainWindow::AskForParameters() {
  const QString error = Guarded([this] {
    qbQueryBuilder& hub = designer_->QueryBuilder();
    const std::string sql = hub.SQLPane()->SQLStatement();
    const std::optional<std::vector<ParameterValue>> values = AskParameters(hub, sql);
    if (values && values->empty()) {
      ShowPlain(this, QMessageBox::Information,
                Say(*texts_, text::NoParameters) + "\n\n" + Say(*texts_, text::ParametersSuchAs) +
                    "\n    >= ?PARAM(From which day, 2020-01-01, FromDay, date)\n" + Say(*texts_, text::ParametersAsk));
    }
  });
  if (!error.isEmpty()) ShowError(error);
}

QStringList MainWindow::AddTables(const QStringList& names) {
  qbQueryBuilder& hub = designer_->QueryBuilder();
  // One step and one statement at the end, not one for each table.
  const StepScope step(hub.Hub(), names.size() == 1 ? kStepAddTable : kStepAddTables,
                       names.size() == 1 ? ToUtf8(names.front()) : std::string());
  QStringList errors;
  for (const QString& name : names) {
    const std::int32_t before = hub.Entities()->Count();
    const QString error = Guarded([&] {
      if (!hub.HasTable(ToUtf8(name))) {
        errors += Say(*texts_, text::NoTableOrView, name);
        return;
      }
      hub.AddTable(ToUtf8(name));
    });
    if (error.isEmpty()) continue;
    errors += error;
    while (hub.Entities()->Count() > before) hub.Entities()->Remove(hub.Entities()->Count());  // half-made
  }
  if (const QString error = Guarded([&] { hub.RefreshAutoJoins(); }); !error.isEmpty()) errors += error;
  return errors;
}

QString MainWindow::TickColumn(const QString& name) {
  qbQueryBuilder& hub = designer_->QueryBuilder();
  const std::string text = ToUtf8(name);
  const std::size_t dot = text.rfind('.');
  const std::string table = dot == std::string::npos ? std::string() : text.substr(0, dot);
  const Ref<qbEntity> entity = hub.Entities()->Item(table);
  if (!entity) return Say(*texts_, text::NamesNoTable, name);
  const Ref<qbEntityItem> item = entity->Items()->Item(text.substr(dot + 1));
  if (!item) return Say(*texts_, text::TableWithoutColumn, ToQString(table), ToQString(text.substr(dot + 1)));
  return Guarded([&] { item->SetChecked(true); });
}

QString MainWindow::ParseFile(const QString& file) {
  QFile statement(file);
  if (!statement.open(QIODevice::ReadOnly)) return Say(*texts_, text::StatementCannotBeRead, file);
  const std::string sql = statement.readAll().toStdString();
  return Guarded([&] {
    const Ref<qbSQLPane> pane = designer_->QueryBuilder().SQLPane();
    try {
      pane->ParseSQLStatement(sql);
    } catch (const Error&) {
      designer_->QueryBuilder().SetState(InfoDone);
      throw;
    }
  });
}

QString MainWindow::LoadLanguage(const QString& file) {
  const QString error = Guarded([&] { designer_->QueryBuilder().LoadLanguageFile(ToUtf8(file)); });
  return error.isEmpty() ? error : error + "\n" + file;
}

void MainWindow::SetSyntax(const QString& name) { options_->ChooseDialect(name); }

QString MainWindow::Statement() const {
  return ToQString(designer_->QueryBuilder().SQLPane()->SQLStatement()).replace("\r\n", "\n");
}

// --- Result preview ---

void MainWindow::RunPreview() {
  showPreview_->setChecked(true);
  if (const QString error = Guarded([this] { query_->Run(); }); !error.isEmpty()) ShowError(error);
}

// --- From start to start ---

void MainWindow::BeginSession() {
  if (recovery_) return;
  RestoreLayout({*this, *panes_, *designer_});
  recovery_ = std::make_unique<Recovery>([this] { return document_->UnsavedWork(); }, nullptr);
  connect(recovery_.get(), &Recovery::Failed, this, [this](const QString& folder) {
    ShowHappened(Say(*texts_, text::CannotKeepWork, QDir::toNativeSeparators(folder)));
  });
  recovery_->Start();
  flow_->SetAsks(true);
  commands_.Of(Command::ShowSchemaTree)->setChecked(QSettings().value(kSchemaTreeKey, true).toBool());
  UpdateState();
}

bool MainWindow::OfferLostWork() {
  std::optional<Recovery::Lost> lost = Recovery::FindLost();
  if (!lost) return false;
  if (!lost->IsReadable()) {
    OfferToPutAside(*lost, {});
    return false;
  }
  const QString name = lost->Work().file.isEmpty() ? Say(*texts_, text::NeverSaved) : lost->Work().file;
  QMessageBox box(QMessageBox::Question, QGuiApplication::applicationDisplayName(), Say(*texts_, text::AskBringBack),
                  QMessageBox::NoButton, this);
  box.setTextFormat(Qt::PlainText);
  box.setInformativeText(Say(*texts_, text::ChangedOn, name, QLocale().toString(lost->Time(), QLocale::ShortFormat)));
  const QAbstractButton* recover = box.addButton(Say(*texts_, text::BringBack), QMessageBox::AcceptRole);
  const QAbstractButton* discard = box.addButton(Say(*texts_, text::DeleteIt), QMessageBox::DestructiveRole);
  box.setEscapeButton(box.addButton(Say(*texts_, text::AskLater), QMessageBox::RejectRole));
  box.exec();
  if (box.clickedButton() == discard) lost->Discard();
  return box.clickedButton() == recover && Recover(*lost);
}

bool MainWindow::Recover(Recovery::Lost& lost) {
  std::string connectionString;
  QString remark;
  const QString unreadable =
      Guarded([&] { designer_->QueryBuilder().LoadQuery(lost.Work().query, true, true, nullptr, &connectionString); });
  std::shared_ptr<ProviderConnection> connection;
  if (unreadable.isEmpty() && !connectionString.empty()) {
    NoteUsed(connectionString);  // by whoever works here: the designer itself has kept it
    remark = Guarded([&] { connection = flow_->OpenSaved(connectionString); });
  }
  const QString error = unreadable.isEmpty() ? document_->Recover(lost.Work(), connection) : unreadable;
  if (!error.isEmpty()) {
    OfferToPutAside(lost, error);
    return false;
  }
  if (!lost.Work().typed.empty()) {
    designer_->SqlView().selectAll();
    designer_->SqlView().insertPlainText(ToQString(lost.Work().typed).replace("\r\n", "\n"));
  }
  if (recovery_) recovery_->Keep();
  lost.Discard();
  ShowHappened(Say(*texts_, text::WorkIsBack));
  if (!connection && !connectionString.empty()) {
    ShowPlain(this, QMessageBox::Information, Say(*texts_, text::BackWithoutSource));
  }
  return true;
}

// What cannot be brought back may still be of use to somebody who reads the file; nothing removes it unasked.
void MainWindow::OfferToPutAside(Recovery::Lost& lost, const QString& reason) {
  QMessageBox box(QMessageBox::Warning, QGuiApplication::applicationDisplayName(), Say(*texts_, text::CannotBringBack),
                  QMessageBox::NoButton, this);
  box.setTextFormat(Qt::PlainText);
  const QString file = Say(*texts_, text::ItIsIn, QDir::toNativeSeparators(lost.Path()),
                           QLocale().toString(lost.Time(), QLocale::ShortFormat));
  box.setInformativeText(reason.isEmpty() ? file : file + "\n" + reason);
  const QAbstractButton* aside = box.addButton(Say(*texts_, text::PutAside), QMessageBox::AcceptRole);
  const QAbstractButton* discard = box.addButton(Say(*texts_, text::DeleteIt), QMessageBox::DestructiveRole);
  box.setEscapeButton(box.addButton(Say(*texts_, text::AskLater), QMessageBox::RejectRole));
  box.exec();
  if (box.clickedButton() == discard) lost.Discard();
  if (box.clickedButton() != aside) return;
  const QString kept = lost.PutAside();
  ShowHappened(kept.isEmpty() ? Say(*texts_, text::CannotPutAside)
                              : Say(*texts_, text::FileIsNow, QDir::toNativeSeparators(kept)));
}

// --- Help ---

void MainWindow::ShowKeys() {
  KeyList list(*texts_, this);
  list.exec();
}

void MainWindow::ShowAbout() {
  QMessageBox::about(this, Say(*texts_, text::AboutCaption),
                     "<h3>" + Say(*texts_, text::AboutTitle, QCoreApplication::applicationVersion()).toHtmlEscaped() +
                         "</h3><p>" + Say(*texts_, text::AboutWhat).toHtmlEscaped() + "</p><p>" +
                         Say(*texts_, text::AboutReadOnly).toHtmlEscaped() + "</p><p>" +
                         Say(*texts_, text::AboutLicence, QString(qVersion())).toHtmlEscaped() + "</p>");
}

}  // namespace zrqrybld
