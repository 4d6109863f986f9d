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
#include <QStatusBar>
#include <QToolBar>
#include <QUrl>
#include <algorithm>
#include <optional>

#include "adapters/qt/connection_choice.h"
#include "adapters/qt/qt_text.h"
#include "adapters/qt/waiting_provider.h"
#include "adapters/sqlite/sqlite_provider.h"
#include "base/text.h"
#include "designer/appearance.h"
#include "designer/key_list.h"
#include "designer/plain_box.h"
#include "designer/recent_connections.h"
#include "designer/window_memory.h"
#include "hub/parameter_form.h"
#include "platform/connection_string.h"
#include "sql/dialect.h"
#if ZRQRYBLD_HAS_ODBC
#include "adapters/odbc/odbc_provider.h"
#endif

namespace zrqrybld {
namespace {

constexpr float kNameColumnWidth = 2400;  // twips
constexpr double kZoomStep = 1.25;
constexpr int kDesignerShare = 500;  // pixels, of a window of usual height
constexpr int kPreviewShare = 200;
constexpr int kLeastPreview = 96;
constexpr std::size_t kShownConnection = 1000;  // characters

}  // namespace

MainWindow::MainWindow()
    : panes_(new QSplitter(Qt::Vertical, this)), designer_(new QueryDesignerWidget), preview_(new PreviewPane) {
  setWindowTitle("Query Designer");
  panes_->addWidget(designer_);
  panes_->addWidget(preview_);
  panes_->setChildrenCollapsible(false);
  panes_->setHandleWidth(6);
  panes_->setSizes({kDesignerShare, kPreviewShare});
  panes_->setStretchFactor(0, 1);
  preview_->setMinimumHeight(kLeastPreview);
  preview_->hide();
  setCentralWidget(panes_);
  resize(1120, 780);

  qbQueryBuilder& hub = designer_->QueryBuilder();
  hub.GetToolkit().Providers()->Register(std::make_shared<SqliteProvider>());
#if ZRQRYBLD_HAS_ODBC
  hub.GetToolkit().Providers()->Register(MakeWaitingProvider(std::make_shared<OdbcProvider>()));
#endif
  hub.SetAllowJoinProperties(true);
  hub.SetAutoSyntax(true);
  // A plain tick means a plain column; grouping is a choice.
  hub.GridPane()->SetShowGroupBy(false);
  hub.GridPane()->SetDateFormat("yyyy-mm-dd");
  WidenColumns();

  MakeDocument();
  query_ = std::make_unique<QueryPreview>(*designer_, *preview_);
  connect(preview_, &PreviewPane::Finished, this, &MainWindow::ShowHappened);
  connect(preview_, &PreviewPane::RunWanted, this, &MainWindow::RunPreview);
  connect(preview_, &PreviewPane::LeaveWanted, designer_, &QueryDesignerWidget::FocusPane);
  MakeMenus();
  MakeToolBar();
  setAcceptDrops(true);
  source_ = new QLabel(this);
  source_->setTextFormat(Qt::PlainText);  // a file's name is no markup
  statusBar()->addPermanentWidget(source_);
  links_.push_back(hub.SQLPane()->SQLChanged.Connect([this] {
    options_->Refresh();
    UpdateState();
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
          [this](const std::string& connectionString) { return OpenSaved(connectionString); },
          [this](const std::shared_ptr<ProviderConnection>& connection) { UseConnection(connection); },
          [this] {
            if (options_) options_->Refresh();
            UpdateTitle();
            UpdateState();
            if (recovery_) recovery_->Keep();
          },
          [this](const QString& text) { ShowHappened(text); }});
}

// Names are long and captions differ by language: no caption is cut off where a little width shows it.
void MainWindow::WidenColumns() {
  zrGrid& grid = *designer_->QueryBuilder().GridPane()->Grid();
  for (std::int32_t i = 1; i <= grid.Columns()->Count(); ++i) {
    const Ref<zrGridColumn> column = grid.Columns()->Item(i);
    const bool holdsNames = column->Key() == "column" || column->Key() == "table";
    float least = holdsNames ? kNameColumnWidth : column->Width();
    if (column->Key() == "sort_type") {
      const Pixels longest = designer_->GridView().Metrics().TextWidth("Descending", {}) + kGridTextPadding * 3;
      least = std::max(least, static_cast<float>(ScreenScale{}.TwipsX(longest).Value()));
    }
    if (column->Width() > 0) grid.FitColumn(i, least);
  }
}

void MainWindow::MakeMenus() {
  QMenu* file = menuBar()->addMenu(tr("&File"));
  document_->FillMenu(*file);
  file->addSeparator();
  file->addAction(tr("Open &Database..."), QKeySequence(Qt::CTRL | Qt::Key_D), this, &MainWindow::AskForDatabase);
  file->addAction(tr("&Connect..."), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_O), this,
                  &MainWindow::AskForConnection);
  QMenu* recent = file->addMenu(tr("Connect to R&ecent"));
  connect(recent, &QMenu::aboutToShow, this, [this, recent] { FillRecentConnections(*recent); });
  file->addSeparator();
  file->addAction(tr("&Quit"), QKeySequence::Quit, this, &QWidget::close);

  MakeEditMenu();

  QMenu* query = menuBar()->addMenu(tr("&Query"));
  addTables_ = query->addAction(tr("&Add Tables..."), QKeySequence(Qt::Key_F7), this, &MainWindow::PickTables);
  query->addAction(tr("&Parameters..."), this, &MainWindow::AskForParameters);
  clear_ = query->addAction(tr("&Clear"), this, [this] { designer_->QueryBuilder().DiagramPane()->Clear(); });
  query->addSeparator();
  query->addAction(tr("&Run Preview"), QKeySequence(Qt::Key_F5), this, &MainWindow::RunPreview);
  query->addAction(tr("&Stop Preview"), QKeySequence(Qt::SHIFT | Qt::Key_F5), preview_, &PreviewPane::Stop);
  query->addAction(tr("&Go to the Rows"), QKeySequence(Qt::CTRL | Qt::Key_R), this, [this] {
    showPreview_->setChecked(true);
    preview_->TakeFocus();
  });

  const auto diagram = [this]() -> qbDiagramPane& { return *designer_->QueryBuilder().DiagramPane(); };
  const auto zoomBy = [this, diagram](double factor) {
    const PixelSize view = designer_->DiagramView().ViewSize();
    diagram().SetZoom(diagram().Zoom() * factor, {view.width / 2, view.height / 2});
  };
  QMenu* view = menuBar()->addMenu(tr("&View"));
  view->addAction(tr("A&rrange Tables"), this, [diagram] { diagram().Arrange(); });
  view->addAction(tr("&Fit Diagram"), this, [diagram] { diagram().ZoomToFit(); });
  view->addSeparator();
  view->addAction(tr("Zoom &In"), QKeySequence::ZoomIn, this, [zoomBy] { zoomBy(kZoomStep); });
  view->addAction(tr("Zoom &Out"), QKeySequence::ZoomOut, this, [zoomBy] { zoomBy(1 / kZoomStep); });
  view->addAction(tr("&Actual Size"), QKeySequence(Qt::CTRL | Qt::Key_0), this,
                  [zoomBy, diagram] { zoomBy(1 / diagram().Zoom()); });
  view->addSeparator();
  showPreview_ = view->addAction(tr("&Result Preview"));
  showPreview_->setCheckable(true);
  connect(showPreview_, &QAction::toggled, preview_, &QWidget::setVisible);
  connect(preview_, &PreviewPane::CloseWanted, showPreview_, [this] { showPreview_->setChecked(false); });
  view->addSeparator();
  view->addAction(tr("&Copy Diagram as Picture"), this, [diagram] { diagram().CopyPicture(); });
  view->addAction(tr("&Save Diagram as Picture..."), this, [diagram] { diagram().AskToSavePicture(); });

  view->addSeparator();
  MakeThemeMenu(*view->addMenu(tr("&Theme")));

  QMenu* help = menuBar()->addMenu(tr("&Help"));
  help->addAction(tr("&Keys"), QKeySequence(Qt::Key_F1), this, &MainWindow::ShowKeys);
  help->addAction(tr("&About"), this, &MainWindow::ShowAbout);
}

// An editor that is open takes the same keys for itself first.
void MainWindow::MakeEditMenu() {
  qbQueryBuilder& hub = designer_->QueryBuilder();
  QMenu* edit = menuBar()->addMenu(tr("&Edit"));
  const auto travel = [this](bool (qbQueryBuilder::*way)(), const QString& done, const std::string& step) {
    const QString error = Guarded([&] { (designer_->QueryBuilder().*way)(); });
    if (!error.isEmpty()) ShowError(error);
    if (error.isEmpty()) ShowHappened(done.arg(ToQString(step)));
  };
  undo_ = edit->addAction(tr("&Undo"), this, [this, travel] {
    travel(&qbQueryBuilder::Undo, tr("Undone: %1"), designer_->QueryBuilder().UndoText());
  });
  undo_->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Z));
  redo_ = edit->addAction(tr("&Redo"), this, [this, travel] {
    travel(&qbQueryBuilder::Redo, tr("Done again: %1"), designer_->QueryBuilder().RedoText());
  });
  redo_->setShortcuts({QKeySequence(Qt::CTRL | Qt::Key_Y), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z)});
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
  show(*undo_, tr("&Undo"), hub.CanUndo() ? hub.UndoText() : std::string());
  show(*redo_, tr("&Redo"), hub.CanRedo() ? hub.RedoText() : std::string());
  if (options_) options_->Refresh();
}

void MainWindow::MakeThemeMenu(QMenu& menu) {
  auto* group = new QActionGroup(&menu);
  for (const AppearanceName& name : AllAppearances()) {
    QAction* action = menu.addAction(tr(name.text), this, [appearance = name.appearance] {
      StoreAppearance(appearance);
      SetAppearance(appearance);
    });
    action->setCheckable(true);
    action->setChecked(name.appearance == StoredAppearance());
    group->addAction(action);
  }
}

void MainWindow::MakeToolBar() {
  options_ = new QueryOptionsBar(designer_->QueryBuilder(), this);
  QAction* const first = options_->actions().constFirst();
  options_->insertAction(first, addTables_);
  options_->insertSeparator(first);
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

QString MainWindow::Guarded(const std::function<void()>& command) {
  try {
    command();
  } catch (const std::exception& error) {
    return ToQString(error.what());
  }
  return {};
}

void MainWindow::ShowError(const QString& message) { ShowPlain(this, QMessageBox::Critical, message); }

// --- Database ---

void MainWindow::AskForDatabase() {
  const QString file = QFileDialog::getOpenFileName(this, tr("Open Database"), {},
                                                    tr("SQLite databases (*.db *.sqlite *.sqlite3);;All files (*)"));
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
    menu.addAction(SourceTitle(recent.text).replace("&", "&&"), this, [this, recent] {
      QString error = RefusalOf(recent.text);
      std::shared_ptr<ProviderConnection> connection;
      if (error.isEmpty()) connection = OpenAsking(recent.text, recent.asksPassword, &error);
      if (connection) error = ConnectTo(connection, true);
      if (!error.isEmpty()) ShowError(error);
    });
  }
  if (menu.isEmpty()) menu.addAction(tr("No recent connections"))->setEnabled(false);
}

// Passwords are not kept, so the user may have to type one. Nothing when the source cannot be opened, with the reason
// unless the user has cancelled.
std::shared_ptr<ProviderConnection> MainWindow::OpenAsking(std::string connectionString, bool askFirst,
                                                           QString* error) {
  const std::string kept = connectionString;
  bool ask = askFirst;
  QString reason;
  while (true) {
    if (ask) {
      const QString before = reason.isEmpty() ? QString() : reason + "\n\n";
      QInputDialog dialog(this);
      dialog.setWindowTitle(tr("Password"));
      dialog.setLabelText(before + tr("Password for %1:").arg(SourceTitle(kept)));
      for (QLabel* label : dialog.findChildren<QLabel*>()) label->setTextFormat(Qt::PlainText);
      dialog.setTextEchoMode(QLineEdit::Password);
      if (dialog.exec() != QDialog::Accepted) return nullptr;
      connectionString = WithPassword(kept, ToUtf8(dialog.textValue()));
    }
    std::shared_ptr<ProviderConnection> connection;
    reason = Guarded([&] {
      const BusyPointer busy(designer_->QueryBuilder().GetToolkit());
      connection = TryConnection(connectionString);
    });
    if (connection) return connection;
    *error = reason;
    if (!askFirst) return nullptr;
    error->clear();
  }
}

// Why a string that the user has typed or chosen is not opened; "" when nothing speaks against it. On the command line
// of a script nobody can be asked.
QString MainWindow::RefusalOf(const std::string& connectionString) {
  const auto origin = recovery_ ? ConnectionOrigin::Person : ConnectionOrigin::Program;
  const std::optional<Error> refusal = designer_->QueryBuilder().RefusalOf(connectionString, origin);
  return refusal ? ToQString(refusal->Description()) : QString();
}

// Shows the user what a query file wants to be connected by, unless they were connected by it before.
bool MainWindow::MayOpenSaved(const std::string& connectionString) {
  if (connectSaved_ || WasUsed(connectionString)) return true;
  if (!recovery_) return false;
  QMessageBox box(QMessageBox::Question, QCoreApplication::applicationName(),
                  tr("The query file was saved with a data source that you have not used here before. Connect to it?"),
                  QMessageBox::NoButton, this);
  box.setTextFormat(Qt::PlainText);
  box.setInformativeText(ToQString(FirstCharacters(ConnectionString(connectionString).Masked(), kShownConnection)));
  const QAbstractButton* connect = box.addButton(tr("&Connect"), QMessageBox::AcceptRole);
  QPushButton* leave = box.addButton(tr("&Do Not Connect"), QMessageBox::RejectRole);
  box.setDefaultButton(leave);
  box.setEscapeButton(leave);
  box.exec();
  return box.clickedButton() == connect;
}

std::shared_ptr<ProviderConnection> MainWindow::OpenSaved(const std::string& connectionString) {
  qbQueryBuilder& hub = designer_->QueryBuilder();
  if (const auto refusal = hub.RefusalOf(connectionString, ConnectionOrigin::File)) throw *refusal;
  if (!MayOpenSaved(connectionString)) {
    const QString what = ToQString(ConnectionString(connectionString).Masked());
    const QString why = recovery_ ? tr("You did not want to connect to %1")
                                  : tr("Nobody has agreed to connect to %1; --connect-saved does");
    throw Error(ErrorConnectionFailed, ToUtf8(why.arg(what)));
  }
  QString error;
  std::shared_ptr<ProviderConnection> connection = OpenAsking(connectionString, false, &error);
  // Files are saved without passwords. Another one helps with servers only.
  const bool mayAsk = recovery_ && !SqliteProvider().Accepts(ConnectionString(connectionString));
  if (!connection && mayAsk) connection = OpenAsking(connectionString, true, &error);
  if (!connection) throw Error(ErrorConnectionFailed, ToUtf8(error));
  return connection;
}

std::shared_ptr<ProviderConnection> MainWindow::TryConnection(const std::string& connectionString) const {
  auto connection = std::make_shared<ProviderConnection>(designer_->QueryBuilder().GetToolkit().Providers());
  connection->SetConnectionString(connectionString);
  connection->Open({}, {});
  return connection;
}

QString MainWindow::OpenConnection(const std::string& connectionString) { return Connect(connectionString, false); }

QString MainWindow::Connect(const std::string& connectionString, bool mayAsk) {
  const BusyPointer busy(designer_->QueryBuilder().GetToolkit());
  // A source that cannot be opened must not cost the user the query at hand: try it aside first.
  if (const QString refusal = RefusalOf(connectionString); !refusal.isEmpty()) return refusal;
  std::shared_ptr<ProviderConnection> connection;
  const QString error = Guarded([&] { connection = TryConnection(connectionString); });
  if (!error.isEmpty()) return error;
  return ConnectTo(connection, mayAsk);
}

QString MainWindow::ConnectTo(const std::shared_ptr<ProviderConnection>& connection, bool mayAsk) {
  if (mayAsk && !document_->MaySetAside()) return {};
  return Guarded([&] {
    UseConnection(connection);
    document_->Reset();
    ShowHappened(tr("Connected to %1").arg(sourceName_));
  });
}

void MainWindow::UseConnection(const std::shared_ptr<ProviderConnection>& connection) {
  qbQueryBuilder& hub = designer_->QueryBuilder();
  hub.DiagramPane()->Clear();
  hub.SetConnection(connection);
  const Dialect* chosen = recovery_ ? FindDialect(RememberedDialect(connection->ConnectionString())) : nullptr;
  if (chosen) hub.SQLPane()->SetSQLSyntax(chosen->syntax);
  query_->SourceChanged();
  sourceName_ = SourceName(connection->ConnectionString());
  source_->setText(sourceName_);
  NoteUsed(connection->ConnectionString());
  if (recovery_) RememberConnection(connection->ConnectionString());
}

void MainWindow::UpdateTitle() {
  QStringList parts;
  for (const QString& part : {document_->Name(), sourceName_, QString("Query Designer")}) {
    if (!part.isEmpty()) parts += part;
  }
  setWindowTitle(parts.join(" - "));
}

void MainWindow::closeEvent(QCloseEvent* event) {
  event->setAccepted(document_->MaySetAside());
  if (!event->isAccepted()) return;
  preview_->Clear();
  if (!recovery_) return;
  recovery_.reset();
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
  addTables_->setEnabled(hub.IsConnected());
  clear_->setEnabled(hub.Entities()->Count() > 0);
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
                tr("This statement has no parameters.\n\nA criterion such as\n"
                   "    >= ?PARAM(From which day, 2020-01-01, FromDay, date)\n"
                   "asks for its value: prompt, default, name and data type."));
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
        errors += tr("There is no table or view named \"%1\".").arg(name);
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
  if (!entity) return tr("\"%1\" names no table of the diagram; write TABLE.COLUMN.").arg(name);
  const Ref<qbEntityItem> item = entity->Items()->Item(text.substr(dot + 1));
  if (!item) return tr("The table \"%1\" has no column \"%2\".").arg(ToQString(table), ToQString(text.substr(dot + 1)));
  return Guarded([&] { item->SetChecked(true); });
}

QString MainWindow::ParseFile(const QString& file) {
  QFile statement(file);
  if (!statement.open(QIODevice::ReadOnly)) return tr("The statement cannot be read: %1").arg(file);
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
  WidenColumns();
  return error.isEmpty() ? error : tr("%1\n%2").arg(error, file);
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
    ShowHappened(tr("Unsaved work cannot be kept in %1").arg(QDir::toNativeSeparators(folder)));
  });
  recovery_->Start();
}

bool MainWindow::OfferLostWork() {
  std::optional<Recovery::Lost> lost = Recovery::FindLost();
  if (!lost) return false;
  if (!lost->IsReadable()) {
    OfferToPutAside(*lost, {});
    return false;
  }
  const QString name = lost->Work().file.isEmpty() ? tr("A query that was never saved") : lost->Work().file;
  QMessageBox box(QMessageBox::Question, QCoreApplication::applicationName(),
                  tr("The designer has ended unexpectedly with unsaved work. Bring it back?"), QMessageBox::NoButton,
                  this);
  box.setTextFormat(Qt::PlainText);
  box.setInformativeText(tr("%1, changed on %2.").arg(name, QLocale().toString(lost->Time(), QLocale::ShortFormat)));
  const QAbstractButton* recover = box.addButton(tr("&Bring Back"), QMessageBox::AcceptRole);
  const QAbstractButton* discard = box.addButton(tr("&Delete It"), QMessageBox::DestructiveRole);
  box.setEscapeButton(box.addButton(tr("Ask &Later"), QMessageBox::RejectRole));
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
    remark = Guarded([&] { connection = OpenSaved(connectionString); });
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
  ShowHappened(tr("Unsaved work is back"));
  if (!connection && !connectionString.empty()) {
    ShowPlain(this, QMessageBox::Information,
              tr("The query is back without its source, which cannot be opened. Save it, connect, and "
                 "open it again to go on with its tables."));
  }
  return true;
}

// What cannot be brought back may still be of use to somebody who reads the file; nothing removes it unasked.
void MainWindow::OfferToPutAside(Recovery::Lost& lost, const QString& reason) {
  QMessageBox box(QMessageBox::Warning, QCoreApplication::applicationName(),
                  tr("Unsaved work of an earlier session cannot be brought back."), QMessageBox::NoButton, this);
  box.setTextFormat(Qt::PlainText);
  const QString file =
      tr("It is in %1, changed on %2.")
          .arg(QDir::toNativeSeparators(lost.Path()), QLocale().toString(lost.Time(), QLocale::ShortFormat));
  box.setInformativeText(reason.isEmpty() ? file : file + "\n" + reason);
  const QAbstractButton* aside = box.addButton(tr("&Put Aside"), QMessageBox::AcceptRole);
  const QAbstractButton* discard = box.addButton(tr("&Delete It"), QMessageBox::DestructiveRole);
  box.setEscapeButton(box.addButton(tr("Ask &Later"), QMessageBox::RejectRole));
  box.exec();
  if (box.clickedButton() == discard) lost.Discard();
  if (box.clickedButton() != aside) return;
  const QString kept = lost.PutAside();
  ShowHappened(kept.isEmpty() ? tr("The file cannot be put aside")
                              : tr("The file is now %1").arg(QDir::toNativeSeparators(kept)));
}

// --- Help ---

void MainWindow::ShowKeys() {
  KeyList list(this);
  list.exec();
}

void MainWindow::ShowAbout() {
  QMessageBox::about(this, tr("About the Query Designer"),
                     tr("<h3>Query Designer %1</h3>"
                        "<p>A visual designer of SELECT statements, built on zrQryBld.</p>"
                        "<p>The preview runs them read-only; nothing is ever written to a source.</p>"
                        "<p>With Qt %2. MIT licence.</p>")
                         .arg(QCoreApplication::applicationVersion().toHtmlEscaped(), qVersion()));
}

}  // namespace zrqrybld
