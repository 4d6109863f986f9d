// QueryTab: one open query: its designer, its rows, its file, its source, and what is kept of it in case of a crash.
#pragma once

#include <QString>
#include <QWidget>
#include <memory>
#include <string>
#include <vector>

#include "designer/connection_flow.h"
#include "designer/pane_layout.h"
#include "designer/preview_pane.h"
#include "designer/query_document.h"
#include "designer/query_preview.h"
#include "designer/recovery.h"
#include "zrqrybld/adapters/qt/query_designer_widget.h"
#include "zrqrybld/base/event.h"
#include "zrqrybld/platform/provider.h"

namespace zrqrybld {

class QueryBar;
class ConditionsView;
class DataValues;

class QueryTab : public QWidget {
  Q_OBJECT

 public:
  /// With the texts of a language file; the built-in ones without.
  explicit QueryTab(const QString& languageFile, QWidget* parent = nullptr);
  ~QueryTab() override;

  /// Why the language file could not be read; empty on success.
  const QString& LanguageFailure() const { return languageFailure_; }

  QueryDesignerWidget& Designer() const { return *designer_; }
  qbQueryBuilder& Hub() const { return designer_->QueryBuilder(); }
  PreviewPane& Rows() const { return *rows_; }
  QueryDocument& Document() const { return *document_; }
  PaneLayout& Panes() const { return *panes_; }
  /// The conditions as a tree, beside the grid; hidden at first.
  ConditionsView& Conditions() const { return *conditions_; }
  /// Shows the conditions, with the keyboard, or hides them.
  void ShowConditions(bool shown);
  bool ConditionsShown() const;
  ConnectionFlow& Flow() const { return *flow_; }
  /// What its source is called; empty without one.
  const QString& SourceName() const { return sourceName_; }
  /// Whether nothing was done with it yet: it has no file, no tables and no typed text.
  bool IsBlank() const;

  /// Opens a source and forgets the query designed so far; with `mayAsk` the user may keep it. Returns an error
  /// message, empty on success; the query stays when the source cannot be opened.
  QString Connect(const std::string& connectionString, bool mayAsk);
  /// Opens one that was used before; its password may be asked for. As above.
  QString OpenRecent(const RecentConnection& recent);

  /// Applies what was typed, and runs the statement.
  void Run();

  /// Begins to work for a user: questions may be asked, and unsaved work is kept from now on.
  void BeginSession();
  bool InSession() const { return recovery_ != nullptr; }
  /// The query is given up or saved: nothing runs any more and nothing is kept.
  void EndSession();
  /// Shows work that was lost in the place of the query. Returns an error message, empty on success.
  QString BringBack(const KeptWork& work);

 Q_SIGNALS:
  /// The query is another now.
  void Changed();
  /// It has another name, or was replaced.
  void Renamed();
  /// There are other steps to undo.
  void HistoryChanged();
  /// The user has connected the query to another source.
  void Connected();
  /// Another source is in use.
  void SourceChanged();
  /// Something was done that the user may like to read.
  void Happened(const QString& text);

 private:
  void MakeHub();
  void MakeConditions();
  void MakeDocument();
  QString ConnectTo(const std::shared_ptr<ProviderConnection>& connection, bool mayAsk);
  void UseConnection(const std::shared_ptr<ProviderConnection>& connection);

  QueryDesignerWidget* designer_;
  QueryBar* bar_;
  ConditionsView* conditions_ = nullptr;
  std::shared_ptr<const TextSource> texts_;
  QString languageFailure_;
  PreviewPane* rows_;
  std::unique_ptr<PaneLayout> panes_;
  std::unique_ptr<ConnectionFlow> flow_;
  std::unique_ptr<QueryDocument> document_;
  std::unique_ptr<QueryPreview> query_;
  std::shared_ptr<DataValues> values_;
  std::unique_ptr<Recovery> recovery_;  // while the designer works for a user
  QString sourceName_;
  std::vector<EventConnection> links_;
};

}  // namespace zrqrybld
