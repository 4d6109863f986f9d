// The menus, the tool bar and the start page of the window.
#include <QAction>
#include <QActionGroup>
#include <QDir>
#include <QFileInfo>
#include <QInputDialog>
#include <QMenuBar>
#include <QMessageBox>
#include <QToolButton>
#include <array>
#include <optional>

#include "designer/appearance.h"
#include "designer/guarded.h"
#include "designer/key_list.h"
#include "designer/main_window.h"
#include "designer/plain_box.h"
#include "zrqrybld/adapters/qt/conditions_view.h"
#include "zrqrybld/adapters/qt/shortcuts.h"
#include "zrqrybld/adapters/qt/telling_order.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_designer.h"
#include "zrqrybld/base/texts_grid.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/hub/parameter_form.h"
#include "zrqrybld/hub/query_menus.h"
#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/host_parameters.h"
#include "zrqrybld/sql/sql_pane.h"

namespace zrqrybld {
namespace {

constexpr double kZoomStep = 1.25;
constexpr int kToolIcon = 20;

}  // namespace

void MainWindow::AddTo(QMenu& menu, Command command, std::function<void()> run) {
  menu.addAction(commands_.Add(command, std::move(run)));
}

// A command that is on or off; `UpdateState` shows which.
void MainWindow::AddSwitch(QMenu& menu, Command command, std::function<void()> run) {
  AddTo(menu, command, [this, run = std::move(run)] {
    run();
    UpdateState();
  });
  commands_.Of(command)->setCheckable(true);
}

void MainWindow::MakeMenus() {
  MakeFileMenu(*menuBar()->addMenu(Say(*texts_, text::FileMenu)));
  MakeEditMenu(*menuBar()->addMenu(Say(*texts_, text::EditMenu)));
  MakeQueryMenu(*menuBar()->addMenu(Say(*texts_, text::QueryMenu)));
  MakeSqlMenu(*menuBar()->addMenu(Say(*texts_, text::SqlMenu)));
  MakeViewMenu(*menuBar()->addMenu(Say(*texts_, text::ViewMenu)));
  QMenu* help = menuBar()->addMenu(Say(*texts_, text::HelpMenu));
  AddTo(*help, Command::ShowKeys, [this] { ShowKeys(); });
  help->addAction(Say(*texts_, text::AboutItem), this, &MainWindow::ShowAbout);
}

void MainWindow::MakeFileMenu(QMenu& file) {
  AddTo(file, Command::NewQuery, [this] { Document().New(); });
  AddTo(file, Command::NewTab, [this] { OpenTab(); });
  AddTo(file, Command::OpenQuery, [this] {
    if (const QString chosen = Document().AskForFile(); !chosen.isEmpty()) OpenQuery(chosen);
  });
  QMenu* queries = file.addMenu(Say(*texts_, text::OpenRecentMenu));
  connect(queries, &QMenu::aboutToShow, this, [this, queries] { FillRecentQueries(*queries); });
  AddTo(file, Command::SaveQuery, [this] { Document().Save(); });
  AddTo(file, Command::SaveQueryAs, [this] { Document().AskAndSave(); });
  AddTo(file, Command::CloseTab, [this] { CloseTab(tabs_->currentIndex()); });
  file.addSeparator();
  AddTo(file, Command::Print, [this] { Print(PrintWindow::Target::Paper); });
  AddTo(file, Command::SavePdf, [this] { Print(PrintWindow::Target::Pdf); });
  AddTo(file, Command::ExportRows, [this] { Preview().Export(); });
  file.addSeparator();
  AddTo(file, Command::OpenDatabase, [this] { AskForDatabase(); });
  AddTo(file, Command::Connect, [this] { AskForConnection(); });
  QMenu* sources = file.addMenu(Say(*texts_, text::ConnectRecentMenu));
  connect(sources, &QMenu::aboutToShow, this, [this, sources] { FillRecentConnections(*sources); });
  file.addSeparator();
  AddTo(file, Command::Quit, [this] { close(); });
}

// An editor that is open takes the same keys for itself first.
void MainWindow::MakeEditMenu(QMenu& edit) {
  const auto travel = [this](bool (qbQueryBuilder::*way)(), TextId done, std::string (qbQueryBuilder::*step)() const) {
    qbQueryBuilder& hub = Tab().Hub();
    const std::string what = (hub.*step)();
    const QString error = FailureOf(*texts_, [&] {
      if ((hub.*way)()) ShowHappened(Say(*texts_, done, what));
    });
    if (!error.isEmpty()) ShowError(error);
  };
  AddTo(edit, Command::Undo, [travel] { travel(&qbQueryBuilder::Undo, text::Undone, &qbQueryBuilder::UndoText); });
  AddTo(edit, Command::Redo, [travel] { travel(&qbQueryBuilder::Redo, text::DoneAgain, &qbQueryBuilder::RedoText); });
  commands_.Of(Command::Redo)->setShortcuts({ShortcutOf(Command::Redo), OtherShortcutOf(Command::Redo)});
}

void MainWindow::UpdateHistory() {
  const qbQueryBuilder& hub = Tab().Hub();
  const auto show = [](QAction& action, const QString& what, const std::string& step) {
    action.setEnabled(!step.empty());
    action.setText(step.empty() ? what : what + QLatin1Char(' ') + ToQString(step).replace("&", "&&"));
  };
  show(*commands_.Of(Command::Undo), Say(*texts_, text::UndoItem), hub.CanUndo() ? hub.UndoText() : std::string());
  show(*commands_.Of(Command::Redo), Say(*texts_, text::RedoItem), hub.CanRedo() ? hub.RedoText() : std::string());
  if (options_) options_->Refresh();
}

void MainWindow::ShowStep() {
  UpdateHistory();
  if (Tab().Hub().CanUndo()) ShowHappened(ToQString(Tab().Hub().UndoText()));
}

void MainWindow::MakeQueryMenu(QMenu& query) {
  AddTo(query, Command::AddTables, [this] { PickTables(); });
  for (const auto& [command, kind] : {std::pair(Command::NewSubquery, QueryDerivedTable),
                                      {Command::NewCommonTable, QueryCommonTable},
                                      {Command::AddUnionMember, QueryMember}}) {
    AddTo(query, command,
          [this, kind = kind] { OnQueries([kind](qbQueryBuilder& hub) { AddInnerQuery(hub, kind); }); });
  }
  AddTo(query, Command::AddSavedQuery, [this] {
    if (const QString file = Document().AskForFile(); !file.isEmpty()) AddSavedQuery(file);
  });
  AddTo(query, Command::LeaveQuery, [this] { OnQueries([](qbQueryBuilder& hub) { LeaveQuery(hub); }); });
  commands_.Of(Command::LeaveQuery)->setShortcut({});  // the key is the pane's that has the focus
  query.addSeparator();
  AddTo(query, Command::GiveParameters, [this] { AskForParameters(); });
  query.addSeparator();
  AddSwitch(query, Command::GroupRows, [this] {
    qbGridPane& grid = *Tab().Hub().GridPane();
    grid.SetShowGroupBy(!grid.ShowGroupBy());
  });
  AddSwitch(query, Command::EachRowOnce, [this] {
    qbQueryBuilder& hub = Tab().Hub();
    hub.SetDistinctRecords(!hub.DistinctRecords());
  });
  AddTo(query, Command::LimitRows, [this] { AskForLimit(); });
  query.addSeparator();
  AddTo(query, Command::ClearQuery, [this] { Tab().Hub().DiagramPane()->Clear(); });
  query.addSeparator();
  AddTo(query, Command::RunPreview, [this] { Tab().Run(); });
  AddTo(query, Command::StopPreview, [this] { Preview().Stop(); });
  AddTo(query, Command::GoToRows, [this] {
    Tab().Panes().ShowRows(true);
    Preview().TakeFocus();
  });
}

void MainWindow::AddSavedQuery(const QString& file) {
  OnQueries([&](qbQueryBuilder& hub) { hub.AddSavedQuery(ToUtf8(file), false); });
}

void MainWindow::OnQueries(const std::function<void(qbQueryBuilder&)>& work) {
  const QString error = FailureOf(*texts_, [&] { work(Tab().Hub()); });
  if (!error.isEmpty()) ShowError(error);
}

void MainWindow::MakeSqlMenu(QMenu& sql) {
  const auto pane = [this] { return Tab().Hub().SQLPane(); };
  AddTo(sql, Command::ApplyText, [pane] { pane()->ApplyEditedText(); });
  AddTo(sql, Command::RevertText, [pane] { pane()->RevertEditedText(); });
  AddTo(sql, Command::UseTextAsTyped, [pane] { pane()->UseAsTyped(); });
  sql.addSeparator();
  AddTo(sql, Command::WriteTextAnew, [pane] { pane()->WriteAnew(); });
  AddTo(sql, Command::GoToQueryAtCaret,
        [this, pane] { OnQueries([pane](qbQueryBuilder&) { pane()->OpenQueryAtCaret(); }); });
  for (const Command ofText : {Command::ApplyText, Command::GoToQueryAtCaret}) {
    commands_.Of(ofText)->setShortcut({});  // the key is the text's
  }
  const auto update = [this, pane] {
    commands_.Of(Command::ApplyText)->setEnabled(pane()->IsEdited());
    commands_.Of(Command::RevertText)->setEnabled(pane()->IsEdited());
    commands_.Of(Command::UseTextAsTyped)->setEnabled(pane()->IsEdited() && !pane()->IsSqlOnly());
    commands_.Of(Command::WriteTextAnew)->setEnabled(!pane()->IsEdited() && pane()->Typed());
  };
  connect(&sql, &QMenu::aboutToShow, this, update);
}

void MainWindow::MakeViewMenu(QMenu& view) {
  MakeZoomMenu(view);
  view.addSeparator();
  MakePaneMenu(view);
  view.addSeparator();
  AddTo(view, Command::CopyPicture, [this] { Tab().Hub().DiagramPane()->CopyPicture(); });
  commands_.Of(Command::CopyPicture)->setShortcut({});  // the key is the pane's that has the focus
  AddTo(view, Command::SavePicture, [this] { Tab().Hub().DiagramPane()->AskToSavePicture(); });
  view.addSeparator();
  AddTo(view, Command::NextTab, [this] { StepTab(1); });
  AddTo(view, Command::PreviousTab, [this] { StepTab(-1); });
  view.addSeparator();
  MakeThemeMenu(*view.addMenu(Say(*texts_, text::ThemeMenu)));
}

void MainWindow::MakeZoomMenu(QMenu& view) {
  const auto zoomTo = [this](double zoom) {
    const PixelSize size = Tab().Designer().DiagramView().ViewSize();
    Tab().Hub().DiagramPane()->SetZoom(zoom, {size.width / 2, size.height / 2});
  };
  const auto zoom = [this] { return Tab().Hub().DiagramPane()->Zoom(); };
  AddTo(view, Command::Arrange, [this] { Tab().Hub().DiagramPane()->Arrange(); });
  AddTo(view, Command::FitToWindow, [this] { Tab().Hub().DiagramPane()->ZoomToFit(); });
  view.addSeparator();
  AddTo(view, Command::ZoomIn, [zoomTo, zoom] { zoomTo(zoom() * kZoomStep); });
  AddTo(view, Command::ZoomOut, [zoomTo, zoom] { zoomTo(zoom() / kZoomStep); });
  AddTo(view, Command::ActualSize, [zoomTo] { zoomTo(1); });
  AddSwitch(view, Command::ShowMinimap, [this] {
    qbDiagramPane& diagram = *Tab().Hub().DiagramPane();
    diagram.SetShowMinimap(!diagram.ShowMinimap());
  });
  connect(&view, &QMenu::aboutToShow, this, &MainWindow::UpdateState);
  // Keyboards differ in where plus and minus stand.
  commands_.Of(Command::ZoomIn)->setShortcuts(QKeySequence::ZoomIn);
  commands_.Of(Command::ZoomOut)->setShortcuts(QKeySequence::ZoomOut);
}

void MainWindow::MakePaneMenu(QMenu& view) {
  // The key shows the tree and goes into it; again, and it is gone.
  AddTo(view, Command::ShowSchemaTree, [this] {
    UpdateState();
    if (tree_->isVisible()) tree_->TakeFocus();
  });
  QAction* tree = commands_.Of(Command::ShowSchemaTree);
  tree->setCheckable(true);
  connect(tree_, &SchemaTree::CloseWanted, tree, [tree] { tree->setChecked(false); });
  connect(tree_, &SchemaTree::LeaveWanted, this, [this](int direction) { Tab().Designer().FocusPane(direction); });
  showRows_ = view.addAction(Say(*texts_, text::ResultPreviewItem));
  showRows_->setCheckable(true);
  connect(showRows_, &QAction::triggered, this, [this](bool shown) { Tab().Panes().ShowRows(shown); });
  AddSwitch(view, Command::ShowConditions, [this] { Tab().ShowConditions(!Tab().ConditionsShown()); });
  AddSwitch(view, Command::RowsInTab, [this] { Tab().Panes().SetRowsInTab(!Tab().Panes().RowsInTab()); });
  AddSwitch(view, Command::MaximizePane, [this] { Tab().Panes().ToggleMaximized(); });
  AddTo(view, Command::CollapsePane, [this] { Tab().Panes().CollapseFocused(); });
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

void MainWindow::MakeToolBar() {
  using enum Command;
  constexpr auto kBetween = std::optional<Command>();
  options_ = new QueryOptionsBar(Tab().Hub(), this);
  options_->setIconSize(QSize(kToolIcon, kToolIcon));
  options_->AddCommands(commands_, std::array<std::optional<Command>, 13>{OpenQuery, SaveQuery, kBetween, Undo, Redo,
                                                                          kBetween, AddTables, RunPreview, StopPreview,
                                                                          kBetween, GroupRows, FitToWindow, kBetween});
  zoom_ = new ZoomBox(*Tab().Hub().DiagramPane(), Tab().Designer().DiagramView(), commands_, *texts_);
  options_->insertWidget(options_->actions().at(12), zoom_);
  for (const Command withText : {AddTables, RunPreview}) {
    auto* button = qobject_cast<QToolButton*>(options_->widgetForAction(commands_.Of(withText)));
    button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
  }
  connect(options_, &QueryOptionsBar::Failed, this, &MainWindow::ShowError);
  connect(options_, &QueryOptionsBar::DialectChosen, this, [this] {
    qbQueryBuilder& hub = Tab().Hub();
    if (!inSession_ || !hub.IsConnected()) return;
    const Dialect& dialect = hub.CurrentDialect();
    RememberDialect(hub.Connection()->ConnectionString(),
                    hub.SourceDialect() == &dialect ? "" : std::string(dialect.name));
  });
  addToolBar(options_);
  TellInOrder(*options_->layout());
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
    Tab().Designer().SqlView().setFocus();
  });
}

QList<RecentEntry> MainWindow::RecentEntries() {
  QList<RecentEntry> entries;
  for (const QString& file : QueryDocument::RecentFiles()) {
    entries.push_back({QFileInfo(file).fileName(), QDir::toNativeSeparators(file), [this, file] { OpenQuery(file); }});
  }
  for (const RecentConnection& recent : RecentConnections()) {
    entries.push_back(
        {SourceName(recent.text, *texts_), SourceTitle(recent.text, *texts_), [this, recent] { OpenRecent(recent); }});
  }
  return entries;
}

void MainWindow::FillRecentQueries(QMenu& menu) {
  menu.clear();
  for (const QString& file : QueryDocument::RecentFiles()) {
    menu.addAction(QDir::toNativeSeparators(file).replace("&", "&&"), this, [this, file] { OpenQuery(file); });
  }
  if (menu.isEmpty()) menu.addAction(Say(*texts_, text::NoRecentQueries))->setEnabled(false);
}

void MainWindow::FillRecentConnections(QMenu& menu) {
  menu.clear();
  for (const RecentConnection& recent : RecentConnections()) {
    menu.addAction(SourceTitle(recent.text, *texts_).replace("&", "&&"), this, [this, recent] { OpenRecent(recent); });
  }
  if (menu.isEmpty()) menu.addAction(Say(*texts_, text::NoRecentConnections))->setEnabled(false);
}

// --- What the commands ask ---

void MainWindow::PickTables() {
  const QString error = FailureOf(*texts_, [this] { Tab().Hub().ShowTables(); });
  if (!error.isEmpty()) ShowError(error);
}

void MainWindow::AskForParameters() {
  const QString error = FailureOf(*texts_, [this] {
    qbQueryBuilder& hub = Tab().Hub();
    const std::string sql = WithParameterMarkers(hub.SQLPane()->SQLStatement(), hub.CurrentDialect().parameterSigns);
    const std::optional<std::vector<ParameterValue>> values = AskParameters(hub, sql);
    if (values && values->empty()) {
      ShowPlain(this, QMessageBox::Information,
                Say(*texts_, text::NoParameters) + "\n\n" + Say(*texts_, text::ParametersSuchAs) +
                    "\n    >= ?PARAM(From which day, 2020-01-01, FromDay, date)\n" + Say(*texts_, text::ParametersAsk));
    }
  });
  if (!error.isEmpty()) ShowError(error);
}

void MainWindow::AskForLimit() {
  qbQueryBuilder& hub = Tab().Hub();
  bool accepted = false;
  const QString limit = QInputDialog::getText(this, Say(*texts_, text::LimitCaption), Say(*texts_, text::LimitLabel),
                                              QLineEdit::Normal, ToQString(hub.SelectTopRecords()), &accepted)
                            .trimmed();
  if (!accepted) return;
  if (!QueryOptionsBar::IsLimit(limit)) return ShowError(Say(*texts_, text::RowLimitTip));
  const QString error = FailureOf(*texts_, [&] { hub.SetSelectTopRecords(ToUtf8(limit)); });
  if (!error.isEmpty()) ShowError(error);
}

void MainWindow::Print(PrintWindow::Target target) {
  PrintWindow dialog(Tab().Designer(), Preview().Rows(), NameOf(Tab()), *texts_, target, this);
  if (dialog.exec() == QDialog::Accepted && !dialog.Done().isEmpty()) ShowHappened(dialog.Done());
}

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
