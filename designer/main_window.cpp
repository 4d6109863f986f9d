#include "designer/main_window.h"

#include <QAction>
#include <QActionGroup>
#include <QCloseEvent>
#include <QDropEvent>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QStatusBar>
#include <QToolBar>
#include <QUrl>
#include <algorithm>
#include <optional>

#include "adapters/qt/connection_choice.h"
#include "adapters/qt/qt_text.h"
#include "adapters/sqlite/sqlite_provider.h"
#include "designer/appearance.h"
#include "hub/parameter_form.h"
#include "platform/connection_string.h"
#if ZRQRYBLD_HAS_ODBC
#include "adapters/odbc/odbc_provider.h"
#endif

namespace zrqrybld {
namespace {

constexpr float kNameColumnWidth = 2400;  // twips
constexpr double kZoomStep = 1.25;

// What a source is called in the window: its file, its name or its place. Passwords are taken out first, also those
// inside a value.
QString SourceName(const std::string& connectionString) {
  const ConnectionString parts(ConnectionString(connectionString).WithoutPassword());
  for (const char* key : {"Data Source", "DSN", "Database", "DBQ", "Server", "Driver", "Provider"}) {
    const std::optional<std::string> value = parts.Get(key);
    if (!value || value->empty()) continue;
    const QString fileName = QFileInfo(ToQString(*value)).fileName();
    return fileName.isEmpty() ? ToQString(*value) : fileName;
  }
  return MainWindow::tr("a data source");
}

}  // namespace

MainWindow::MainWindow() : designer_(new QueryDesignerWidget(this)) {
  setWindowTitle("Query Designer");
  setCentralWidget(designer_);
  resize(1120, 780);

  qbQueryBuilder& hub = designer_->QueryBuilder();
  hub.GetToolkit().Providers()->Register(std::make_shared<SqliteProvider>());
#if ZRQRYBLD_HAS_ODBC
  hub.GetToolkit().Providers()->Register(std::make_shared<OdbcProvider>());
#endif
  hub.SetAllowJoinProperties(true);
  // A plain tick means a plain column; grouping is a choice.
  hub.GridPane()->SetShowGroupBy(false);
  hub.GridPane()->SetDateFormat("yyyy-mm-dd");
  WidenColumns();

  MakeDocument();
  MakeMenus();
  MakeToolBar();
  setAcceptDrops(true);
  source_ = new QLabel(this);
  source_->setTextFormat(Qt::PlainText);  // a file's name is no markup
  statusBar()->addPermanentWidget(source_);
  links_.push_back(hub.SQLPane()->SQLChanged.Connect([this] { UpdateState(); }));
  hub.SQLPane()->Refresh();
  document_->MarkUnmodified();
  UpdateState();
}

void MainWindow::MakeDocument() {
  document_ = std::make_unique<QueryDocument>(
      this, designer_->QueryBuilder(),
      QueryDocument::Window{
          [this](const std::string& connectionString) { return TryConnection(connectionString); },
          [this](const std::shared_ptr<ProviderConnection>& connection) { UseConnection(connection); },
          [this] {
            const QSignalBlocker blocker(syntax_);
            syntax_->setCurrentIndex(designer_->QueryBuilder().SQLPane()->SQLSyntax());
            UpdateTitle();
            UpdateState();
          }});
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
  file->addSeparator();
  file->addAction(tr("&Quit"), QKeySequence::Quit, this, &QWidget::close);

  QMenu* query = menuBar()->addMenu(tr("&Query"));
  addTables_ = query->addAction(tr("&Add Tables..."), QKeySequence(Qt::Key_F7), this, &MainWindow::PickTables);
  query->addAction(tr("&Parameters..."), this, &MainWindow::AskForParameters);
  clear_ = query->addAction(tr("&Clear"), this, [this] { designer_->QueryBuilder().DiagramPane()->Clear(); });

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
  view->addAction(tr("&Copy Diagram as Picture"), this, [diagram] { diagram().CopyPicture(); });
  view->addAction(tr("&Save Diagram as Picture..."), this, [diagram] { diagram().AskToSavePicture(); });

  view->addSeparator();
  MakeThemeMenu(*view->addMenu(tr("&Theme")));

  QMenu* help = menuBar()->addMenu(tr("&Help"));
  help->addAction(tr("&About"), this, [this] {
    QMessageBox::about(this, tr("About the Query Designer"),
                       tr("Query Designer %1\nA visual designer of SELECT statements, built on zrQryBld.")
                           .arg(QCoreApplication::applicationVersion()));
  });
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
  QToolBar* bar = addToolBar(tr("Query"));
  bar->setMovable(false);
  bar->addAction(addTables_);
  bar->addSeparator();
  auto* label = new QLabel(tr("Dialect: "), bar);
  bar->addWidget(label);
  syntax_ = new QComboBox(bar);
  syntax_->setAccessibleName(tr("Dialect"));
  for (const Dialect& dialect : AllDialects()) syntax_->addItem(ToQString(dialect.name));
  bar->addWidget(syntax_);
  connect(syntax_, &QComboBox::currentIndexChanged, this, &MainWindow::SyntaxChosen);
}

QString MainWindow::Guarded(const std::function<void()>& command) {
  try {
    command();
  } catch (const std::exception& error) {
    return ToQString(error.what());
  }
  return {};
}

void MainWindow::ShowError(const QString& message) { QMessageBox::critical(this, windowTitle(), message); }

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
  std::shared_ptr<ProviderConnection> connection;
  const QString error = Guarded([&] { connection = TryConnection(connectionString); });
  if (!error.isEmpty()) return error;
  if (mayAsk && !document_->MaySetAside()) return {};
  return Guarded([&] {
    UseConnection(connection);
    document_->Reset();
    statusBar()->showMessage(tr("Connected to %1").arg(sourceName_));
  });
}

void MainWindow::UseConnection(const std::shared_ptr<ProviderConnection>& connection) {
  qbQueryBuilder& hub = designer_->QueryBuilder();
  hub.DiagramPane()->Clear();
  hub.SetConnection(connection);
  sourceName_ = SourceName(connection->ConnectionString());
  source_->setText(sourceName_);
}

void MainWindow::UpdateTitle() {
  QStringList parts;
  for (const QString& part : {document_->Name(), sourceName_, QString("Query Designer")}) {
    if (!part.isEmpty()) parts += part;
  }
  setWindowTitle(parts.join(" - "));
}

void MainWindow::closeEvent(QCloseEvent* event) { event->setAccepted(document_->MaySetAside()); }

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
      QMessageBox::information(this, windowTitle(),
                               tr("This statement has no parameters.\n\nA criterion such as\n"
                                  "    >= ?PARAM(From which day, 2020-01-01, FromDay, date)\n"
                                  "asks for its value: prompt, default, name and data type."));
    }
  });
  if (!error.isEmpty()) ShowError(error);
}

QStringList MainWindow::AddTables(const QStringList& names) {
  qbQueryBuilder& hub = designer_->QueryBuilder();
  const StepScope step(hub.Hub(), "Add tables");  // one statement at the end, not one for each table
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

void MainWindow::SetSyntax(const QString& name) {
  syntax_->setCurrentIndex(syntax_->findText(name, Qt::MatchFixedString));
}

void MainWindow::SyntaxChosen(int index) {
  const Ref<qbSQLPane> pane = designer_->QueryBuilder().SQLPane();
  pane->SetSQLSyntax(static_cast<SQLSyntaxEnum>(index));
  if (const QString error = Guarded([&] { pane->Refresh(); }); !error.isEmpty()) ShowError(error);
}

QString MainWindow::Statement() const {
  return ToQString(designer_->QueryBuilder().SQLPane()->SQLStatement()).replace("\r\n", "\n");
}

}  // namespace zrqrybld
