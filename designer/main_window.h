// MainWindow: the desktop application around the query designer.
#pragma once

#include <QComboBox>
#include <QLabel>
#include <QMainWindow>
#include <functional>
#include <memory>
#include <string>

#include "adapters/qt/query_designer_widget.h"
#include "designer/query_document.h"
#include "platform/provider.h"

namespace zrqrybld {

class MainWindow : public QMainWindow {
  Q_OBJECT

 public:
  MainWindow();

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

  /// Takes the captions from a language file. Returns an error message, empty on success.
  QString LoadLanguage(const QString& file);

  /// Chooses a dialect that exists.
  void SetSyntax(const QString& name);

  /// The statement, with line feeds.
  QString Statement() const;

  /// Shows a message to the user.
  void ShowError(const QString& message);

 protected:
  void closeEvent(QCloseEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  void MakeDocument();
  void MakeMenus();
  void MakeThemeMenu(QMenu& menu);
  void MakeToolBar();
  void AskForDatabase();
  void AskForConnection();
  std::shared_ptr<ProviderConnection> TryConnection(const std::string& connectionString) const;
  QString Connect(const std::string& connectionString, bool mayAsk);
  void UseConnection(const std::shared_ptr<ProviderConnection>& connection);
  void OpenDropped(const QString& file);
  void UpdateTitle();
  void PickTables();
  void AskForParameters();
  void SyntaxChosen(int index);
  void WidenColumns();
  void UpdateState();
  /// Runs a command; an error becomes its message.
  static QString Guarded(const std::function<void()>& command);

  QueryDesignerWidget* designer_;
  std::unique_ptr<QueryDocument> document_;
  QString sourceName_;
  QComboBox* syntax_ = nullptr;
  QLabel* source_ = nullptr;
  QAction* addTables_ = nullptr;
  QAction* clear_ = nullptr;
  std::vector<EventConnection> links_;
};

}  // namespace zrqrybld
