// MainWindow: the desktop application around the query designer.
#pragma once

#include <QLabel>
#include <QMainWindow>
#include <QSplitter>
#include <QTimer>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "designer/command_actions.h"
#include "designer/connection_flow.h"
#include "designer/preview_pane.h"
#include "designer/query_document.h"
#include "designer/query_options_bar.h"
#include "designer/query_preview.h"
#include "designer/recovery.h"
#include "designer/schema_tree.h"
#include "designer/start_page.h"
#include "zrqrybld/adapters/qt/query_designer_widget.h"
#include "zrqrybld/base/event.h"
#include "zrqrybld/base/phrase.h"
#include "zrqrybld/platform/provider.h"

namespace zrqrybld {

class ConnectionFlow;
class PreviewPane;
class ProviderConnection;
class QueryDesignerWidget;
class QueryDocument;
class QueryOptionsBar;
class QueryPreview;

class MainWindow : public QMainWindow {
  Q_OBJECT

 public:
  /// With the texts of a language file; the built-in ones without. Texts that the file lacks, or that could not be
  /// read, are the built-in ones.
  explicit MainWindow(const QString& languageFile = {});
  ~MainWindow() override;

  /// Why the language file could not be read; empty on success.
  const QString& LanguageFailure() const { return languageFailure_; }

  /// Opens a data source and forgets the query designed so far. Returns an error message, empty on success;
  /// the query stays when the source cannot be opened.
  QString OpenConnection(const std::string& connectionString);

  /// The query as a file.
  QueryDocument& Document() { return *document_; }

  /// Opens a SQLite database, as above.
  QString OpenDatabase(const QString& file);

  /// Adds tables and draws their joins. Returns messages about those that could not be added.
  QStringList AddTables(const QStringList& names);

  /// Ticks a column, given as TABLE.COLUMN. Returns an error message, empty on success.
  QString TickColumn(const QString& name);

  /// Makes the query that of the statement in a file. Returns an error message, empty on success.
  QString ParseFile(const QString& file);

  /// Chooses a dialect that exists.
  void SetSyntax(const QString& name);

  /// The statement, with line feeds.
  QString Statement() const;

  /// Query files are connected as they say, without a question. Some strings are refused all the same.
  void SetConnectSaved(bool connect);

  /// Shows a message to the user.
  void ShowError(const QString& message);

  /// Begins to work for a user: takes the window's last layout, and keeps unsaved work from now on. A window that does
  /// the work of a script remembers nothing.
  void BeginSession();
  /// Offers work that an earlier designer has lost. Whether it is now the query of this one.
  bool OfferLostWork();

  /// The pane with the query's rows; hidden until they are asked for.
  PreviewPane& Preview() { return *preview_; }

 protected:
  void closeEvent(QCloseEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  QString LoadLanguage(const QString& file);
  void MakeDocument();
  void MakeMenus();
  void MakeEditMenu();
  void MakeViewMenu(QMenu& view);
  void MakeThemeMenu(QMenu& menu);
  void MakeToolBar();
  void MakeStartPage();
  QList<RecentEntry> RecentEntries();
  void OpenRecent(const RecentConnection& recent);
  void AskForDatabase();
  void AskForConnection();
  void FillRecentConnections(QMenu& menu);
  QString ConnectTo(const std::shared_ptr<ProviderConnection>& connection, bool mayAsk);
  QString Connect(const std::string& connectionString, bool mayAsk);
  void UseConnection(const std::shared_ptr<ProviderConnection>& connection);
  void OpenDropped(const QString& file);
  void UpdateTitle();
  void RunPreview();
  void ShowAbout();
  void ShowKeys();
  bool Recover(Recovery::Lost& lost);
  void OfferToPutAside(Recovery::Lost& lost, const QString& reason);
  /// Says in the status line what has happened last.
  void ShowHappened(const QString& text);
  void PickTables();
  void AskForParameters();
  void UpdateState();
  void UpdateHistory();
  /// Runs a command; an error becomes its message.
  QString Guarded(const std::function<void()>& command) const;

  QSplitter* panes_;
  QueryDesignerWidget* designer_;
  std::shared_ptr<const TextSource> texts_;
  CommandActions commands_;
  QString languageFailure_;
  PreviewPane* preview_;
  SchemaTree* tree_;
  std::unique_ptr<ConnectionFlow> flow_;
  std::unique_ptr<QueryDocument> document_;
  std::unique_ptr<QueryPreview> query_;
  std::unique_ptr<Recovery> recovery_;  // while the designer works for a user
  QString sourceName_;
  QueryOptionsBar* options_ = nullptr;
  StartPage* start_ = nullptr;
  bool startPassed_ = false;
  QTimer modifiedSoon_;
  QLabel* source_ = nullptr;
  QAction* showPreview_ = nullptr;
  std::vector<EventConnection> links_;
};

}  // namespace zrqrybld
