// MainWindow: the desktop application around the query designer: open queries in tabs, menus, tool bar, start page.
//
// What belongs to one query is in `QueryTab`; the window shows the current one and gives it its commands.
#pragma once

#include <QLabel>
#include <QMainWindow>
#include <QStackedWidget>
#include <QTabWidget>
#include <QTimer>
#include <string>
#include <vector>

#include "designer/command_actions.h"
#include "designer/print_window.h"
#include "designer/query_document.h"
#include "designer/query_options_bar.h"
#include "designer/query_tab.h"
#include "designer/recent_connections.h"
#include "designer/schema_tree.h"
#include "designer/start_page.h"
#include "designer/zoom_box.h"
#include "zrqrybld/base/phrase.h"

namespace zrqrybld {

class MainWindow : public QMainWindow {
  Q_OBJECT

 public:
  /// With the texts of a language file; the built-in ones without. Texts that the file lacks, or that could not be
  /// read, are the built-in ones.
  explicit MainWindow(const QString& languageFile = {});
  ~MainWindow() override;

  /// Why the language file could not be read; empty on success.
  const QString& LanguageFailure() const { return Tab().LanguageFailure(); }

  /// The query that is shown.
  QueryTab& Tab() const;
  /// How many queries are open.
  int TabCount() const { return tabs_->count(); }
  /// Opens an empty query on the source of the one that is shown, and shows it.
  QueryTab& OpenTab();
  /// Opens a query file: in its tab when it is open, in the place of a query with which nothing was done, otherwise in
  /// a tab of its own. Failures are messages.
  void OpenQuery(const QString& file);

  /// Opens a data source and forgets the query designed so far. Returns an error message, empty on success;
  /// the query stays when the source cannot be opened.
  QString OpenConnection(const std::string& connectionString) { return Tab().Connect(connectionString, false); }
  /// Opens a SQLite database, as above.
  QString OpenDatabase(const QString& file);

  /// The query as a file.
  QueryDocument& Document() { return Tab().Document(); }
  /// The pane with the query's rows.
  PreviewPane& Preview() { return Tab().Rows(); }

  /// Adds tables and draws their joins. Returns messages about those that could not be added.
  QStringList AddTables(const QStringList& names);
  /// Ticks a column, given as TABLE.COLUMN. Returns an error message, empty on success.
  QString TickColumn(const QString& name);
  /// Makes the query that of the statement in a file. Returns an error message, empty on success.
  QString ParseFile(const QString& file);
  /// Chooses a dialect that exists.
  void SetSyntax(const QString& name) { options_->ChooseDialect(name); }
  /// The statement, with line feeds.
  QString Statement() const;

  /// Query files are connected as they say, without a question. Some strings are refused all the same.
  void SetConnectSaved(bool connect);

  /// Shows a message to the user.
  void ShowError(const QString& message);

  /// Begins to work for a user: takes the window's last layout, and keeps unsaved work from now on. A window that does
  /// the work of a script remembers nothing.
  void BeginSession();
  /// Offers work that earlier designers have lost. Whether it is now open here.
  bool OfferLostWork();

 protected:
  void closeEvent(QCloseEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  // Open queries
  QueryTab& AddTab();
  void CloseTab(int index);
  void RemoveTab(QueryTab& tab);
  void StepTab(int direction);
  void ShowTab();
  QueryTab& TabAt(int index) const;
  QString NameOf(const QueryTab& tab) const;

  // Menus and tool bar
  void AddTo(QMenu& menu, Command command, std::function<void()> run);
  void AddSwitch(QMenu& menu, Command command, std::function<void()> run);
  void MakeMenus();
  void MakeFileMenu(QMenu& file);
  void MakeEditMenu(QMenu& edit);
  void MakeQueryMenu(QMenu& query);
  void MakeSqlMenu(QMenu& sql);
  void MakeViewMenu(QMenu& view);
  void MakeZoomMenu(QMenu& view);
  void MakePaneMenu(QMenu& view);
  void MakeThemeMenu(QMenu& menu);
  void MakeToolBar();
  void MakeStartPage();
  QList<RecentEntry> RecentEntries();
  void FillRecentQueries(QMenu& menu);
  void FillRecentConnections(QMenu& menu);

  // Sources and files
  void AskForDatabase();
  void AskForConnection();
  void OpenRecent(const RecentConnection& recent);
  void OpenDropped(const QString& file);
  void DropOnDiagram(const QString& file);
  void AddSavedQuery(const QString& file);

  // The query that is shown
  void PickTables();
  void OnQueries(const std::function<void(qbQueryBuilder&)>& work);
  void AskForParameters();
  void AskForLimit();
  void Print(PrintWindow::Target target);
  void ShowAbout();
  void ShowKeys();
  void ShowSource();
  void ShowHappened(const QString& text);
  void UpdateTitle();
  void UpdateState();
  void UpdateHistory();
  void ShowStep();
  void UpdateQuery();

  QString languageFile_;
  int made_ = 0;  // how many queries were opened so far
  QTabWidget* tabs_;
  std::shared_ptr<const TextSource> texts_;
  CommandActions commands_;
  SchemaTree* tree_;
  QStackedWidget* pages_;
  QueryOptionsBar* options_ = nullptr;
  ZoomBox* zoom_ = nullptr;
  StartPage* start_ = nullptr;
  QAction* showRows_ = nullptr;
  QLabel* source_;
  QTimer modifiedSoon_;
  bool inSession_ = false;  // the designer works for a user
  bool startPassed_ = false;
  bool connectSaved_ = false;
};

}  // namespace zrqrybld
