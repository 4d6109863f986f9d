#include "designer/query_tab.h"

#include <QDir>
#include <QMessageBox>
#include <QVBoxLayout>

#include "designer/data_values.h"
#include "designer/guarded.h"
#include "designer/plain_box.h"
#include "designer/query_commands.h"
#include "designer/recent_connections.h"
#include "designer/row_count.h"
#include "zrqrybld/adapters/qt/conditions_view.h"
#include "zrqrybld/adapters/qt/qt_dialogs.h"
#include "zrqrybld/adapters/qt/query_bar.h"
#include "zrqrybld/adapters/qt/telling_order.h"
#include "zrqrybld/adapters/qt/waiting_provider.h"
#include "zrqrybld/adapters/sqlite/sqlite_provider.h"
#include "zrqrybld/base/texts_designer.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/platform/toolkit.h"
#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/sql_pane.h"
#if ZRQRYBLD_HAS_ODBC
#include "zrqrybld/adapters/odbc/odbc_provider.h"
#endif

namespace zrqrybld {
namespace {

constexpr float kCriteriaWidth = 2400;  // twips
// How the grid and the conditions beside it share the width.
constexpr int kGridShare = 3;
constexpr int kConditionsShare = 2;

}  // namespace

QueryTab::QueryTab(const QString& languageFile, QWidget* parent)
    : QWidget(parent), designer_(new QueryDesignerWidget(this)), texts_(Hub().Texts()) {
  if (!languageFile.isEmpty()) {
    const QString error = FailureOf(*texts_, [&] { Hub().LoadLanguageFile(ToUtf8(languageFile)); });
    if (!error.isEmpty()) languageFailure_ = error + "\n" + languageFile;
  }
  bar_ = new QueryBar(Hub(), this);
  MakeConditions();
  rows_ = new PreviewPane(texts_);
  panes_ = std::make_unique<PaneLayout>(*designer_, *rows_, *texts_);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->addWidget(bar_);
  layout->addWidget(designer_, 1);
  designer_->AddPane(bar_);
  TellInOrder({bar_, designer_});
  bar_->SetErrorHandler(
      [this](const std::exception& error) { ShowPlain(this, QMessageBox::Critical, Say(*texts_, error)); });
  setFocusProxy(&designer_->DiagramView());
  MakeHub();
  flow_ = std::make_unique<ConnectionFlow>(this, Hub());
  MakeDocument();
  query_ = std::make_unique<QueryPreview>(*designer_, *rows_);
  connect(rows_, &PreviewPane::Finished, this, &QueryTab::Happened);
  connect(rows_, &PreviewPane::RunWanted, this, &QueryTab::Run);
  connect(rows_, &PreviewPane::CloseWanted, this, [this] { panes_->ShowRows(false); });
  connect(rows_, &PreviewPane::PlaceWanted, this, [this] {
    panes_->ShowStatement();
    query_->GoToFault();
  });
  links_.push_back(Hub().SQLPane()->SQLChanged.Connect([this] {
    if (recovery_) recovery_->Changed();
    Q_EMIT Changed();
  }));
  links_.push_back(Hub().QueriesChanged.Connect([this] { Q_EMIT Changed(); }));
  links_.push_back(Hub().HistoryChanged.Connect([this] {
    if (recovery_) recovery_->Changed();
    Q_EMIT HistoryChanged();
  }));
  Hub().SQLPane()->Refresh();
  document_->MarkUnmodified();
}

QueryTab::~QueryTab() {
  if (const Ref<qbGridPane> grid = Hub().GridPane()) grid->SetValueSource(nullptr);
}

// They share the grid's place.
void QueryTab::MakeConditions() {
  values_ = std::make_shared<DataValues>(Hub(), *designer_);
  QWidget& grid = designer_->GridView();
  const int place = designer_->indexOf(&grid);
  const int share = grid.sizePolicy().verticalStretch();
  auto* beside = new QSplitter(Qt::Horizontal);
  conditions_ = new ConditionsView(RefTo(Hub()), values_);
  conditions_->hide();
  beside->addWidget(&grid);
  beside->addWidget(conditions_);
  beside->setStretchFactor(0, kGridShare);
  beside->setStretchFactor(1, kConditionsShare);
  beside->setChildrenCollapsible(false);
  TellInOrder(*beside);
  designer_->insertWidget(place, beside);
  designer_->setStretchFactor(place, share);
  designer_->AddPane(conditions_);
}

void QueryTab::ShowConditions(bool shown) {
  conditions_->setVisible(shown);
  (shown ? static_cast<QWidget*>(conditions_) : &designer_->GridView())->setFocus(Qt::OtherFocusReason);
}

bool QueryTab::ConditionsShown() const { return conditions_->isVisibleTo(this); }

void QueryTab::MakeHub() {
  qbQueryBuilder& hub = Hub();
  hub.GetToolkit().Providers()->Register(std::make_shared<SqliteProvider>());
#if ZRQRYBLD_HAS_ODBC
  hub.GetToolkit().Providers()->Register(MakeWaitingProvider(std::make_shared<OdbcProvider>(), texts_));
#endif
  if (auto* dialogs = dynamic_cast<QtDialogs*>(&hub.GetToolkit().GetDialogs())) {
    dialogs->SetRowCounter(CounterFor(hub));
  }
  hub.SetAllowJoinProperties(true);
  hub.SetAutoSyntax(true);
  // A plain tick means a plain column; grouping is a choice.
  hub.GridPane()->SetShowGroupBy(false);
  hub.GridPane()->SetDateFormat("yyyy-mm-dd");
  hub.SQLPane()->SetKeepTypedText(true);
  hub.DiagramPane()->SetPlacesByJoins(true);
  hub.DiagramPane()->SetShowMinimap(true);
  hub.GridPane()->SetGrowOrColumns(true);
  hub.GridPane()->SetValueSource(values_);
  zrGrid& grid = *hub.GridPane()->Grid();
  grid.SetFillsWidth(true);
  grid.SetRowKeysTakeCurrent(true);
  grid.SetHasCellButtons(true);
  grid.Columns()->Item("criteria")->SetWidth(kCriteriaWidth);
}

void QueryTab::MakeDocument() {
  document_ = std::make_unique<QueryDocument>(
      this, Hub(),
      QueryDocument::Window{
          [this](const std::string& connectionString) { return flow_->OpenSaved(connectionString); },
          [this](const std::shared_ptr<ProviderConnection>& connection) { UseConnection(connection); },
          [this] {
            Q_EMIT Changed();
            Q_EMIT Renamed();
            if (recovery_) recovery_->Keep();
          },
          [this](const QString& text) { Q_EMIT Happened(text); }, [this] { rows_->Clear(); }});
}

bool QueryTab::IsBlank() const {
  return document_->Name().isEmpty() && Hub().Entities()->Count() == 0 && !Hub().SQLPane()->IsEdited() &&
         !document_->IsModified();
}

// --- Its source ---

QString QueryTab::Connect(const std::string& connectionString, bool mayAsk) {
  const BusyPointer busy(Hub().GetToolkit());
  // A source that cannot be opened must not cost the user the query at hand: try it aside first.
  QString error;
  const std::shared_ptr<ProviderConnection> connection = flow_->Open(connectionString, &error);
  return connection ? ConnectTo(connection, mayAsk) : error;
}

QString QueryTab::OpenRecent(const RecentConnection& recent) {
  QString error;
  const std::shared_ptr<ProviderConnection> connection = flow_->OpenRecent(recent, &error);
  return connection ? ConnectTo(connection, true) : error;
}

QString QueryTab::ConnectTo(const std::shared_ptr<ProviderConnection>& connection, bool mayAsk) {
  if (mayAsk && !document_->MaySetAside()) return {};
  return FailureOf(*texts_, [&] {
    UseConnection(connection);
    document_->Reset();
    Q_EMIT Happened(Say(*texts_, text::ConnectedTo, sourceName_));
    if (mayAsk) Q_EMIT Connected();
  });
}

void QueryTab::UseConnection(const std::shared_ptr<ProviderConnection>& connection) {
  qbQueryBuilder& hub = Hub();
  LeaveMainQueryOnly(hub);
  hub.DiagramPane()->Clear();
  hub.SetConnection(connection);
  const Dialect* chosen = recovery_ ? FindDialect(RememberedDialect(connection->ConnectionString())) : nullptr;
  if (chosen) hub.SQLPane()->SetSQLSyntax(chosen->syntax);
  query_->SourceChanged();
  values_->SourceChanged();
  sourceName_ = zrqrybld::SourceName(connection->ConnectionString(), *texts_);
  NoteUsed(connection->ConnectionString());
  if (recovery_) RememberConnection(connection->ConnectionString());
  Q_EMIT SourceChanged();
}

// --- Its rows ---

void QueryTab::Run() {
  using Outcome = QueryPreview::Outcome;
  Outcome outcome = Outcome::Cancelled;
  if (const QString error = FailureOf(*texts_, [&] { outcome = query_->Run(); }); !error.isEmpty()) {
    ShowPlain(this, QMessageBox::Critical, error);
  }
  if (outcome == Outcome::Running || outcome == Outcome::Refused) panes_->ShowRows(true);
  if (outcome == Outcome::BadText) panes_->ShowStatement();
}

// --- From start to end ---

void QueryTab::BeginSession() {
  recovery_ = std::make_unique<Recovery>([this] { return document_->UnsavedWork(); }, this, nullptr);
  connect(recovery_.get(), &Recovery::Failed, this, [this](const QString& folder) {
    Q_EMIT Happened(Say(*texts_, text::CannotKeepWork, QDir::toNativeSeparators(folder)));
  });
  recovery_->Start();
  flow_->SetAsks(true);
}

void QueryTab::EndSession() {
  rows_->Clear();
  recovery_.reset();
  flow_->SetAsks(false);
}

QString QueryTab::BringBack(const KeptWork& work) {
  std::string connectionString;
  const QString unreadable =
      FailureOf(*texts_, [&] { Hub().LoadQuery(work.query, true, true, nullptr, &connectionString); });
  if (!unreadable.isEmpty()) return unreadable;
  std::shared_ptr<ProviderConnection> connection;
  if (!connectionString.empty()) {
    NoteUsed(connectionString);  // by whoever works here: the designer itself has kept it
    // Without its source the work is brought back all the same; the user is told below.
    FailureOf(*texts_, [&] { connection = flow_->OpenSaved(connectionString); });
  }
  if (const QString error = document_->Recover(work, connection); !error.isEmpty()) return error;
  if (!work.typed.empty()) {
    designer_->SqlView().selectAll();
    designer_->SqlView().insertPlainText(ToQString(work.typed).replace("\r\n", "\n"));
  }
  if (recovery_) recovery_->Keep();
  Q_EMIT Happened(Say(*texts_, text::WorkIsBack));
  if (!connection && !connectionString.empty()) {
    ShowPlain(this, QMessageBox::Information, Say(*texts_, text::BackWithoutSource));
  }
  return {};
}

}  // namespace zrqrybld
