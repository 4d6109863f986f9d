// QueryDocument: the query as a file: new, open, save, recent files, and the question about unsaved changes.
//
// It belongs to the main window. A query that cannot be opened or saved costs the user nothing: the one on the
// screen stays.
#pragma once

#include <QCoreApplication>
#include <QMessageBox>
#include <QString>
#include <QStringList>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "designer/recovery.h"
#include "zrqrybld/base/phrase.h"
#include "zrqrybld/platform/provider.h"

class QWidget;

namespace zrqrybld {

class qbQueryBuilder;

class QueryDocument {
 public:
  /// What the window does for its document.
  struct Window {
    /// Opens the source of a query file aside; an exception when that fails, or when it may not be opened.
    std::function<std::shared_ptr<ProviderConnection>(const std::string& connectionString)> openSaved;
    /// Another source is in use.
    std::function<void(const std::shared_ptr<ProviderConnection>& connection)> useConnection;
    /// The document has another name, or the query was replaced.
    std::function<void()> changed;
    /// Something was done that the user may like to read.
    std::function<void(const QString& text)> happened;
    /// The query is empty now: nothing of the one before may be shown as its.
    std::function<void()> emptied;
  };

  /// Both must outlive the document.
  QueryDocument(QWidget* parent, qbQueryBuilder& hub, Window window);

  /// The file's name without its folder; "" for a query that was never saved.
  QString Name() const;
  /// Whether the query is another than the saved one.
  bool IsModified() const { return Text() != saved_; }
  /// Takes the query as it is now for unmodified, as after opening a database.
  void MarkUnmodified() { saved_ = Text(); }

  /// Asks what to do with unsaved changes. False when the user wants to go on with the query.
  bool MaySetAside();

  /// Empties the designer, without a question.
  void Reset();
  /// Opens a query file in the place of the query, without a question about that. Returns an error message, empty on
  /// success. `remark` receives what the user should know then, if anything.
  QString Open(const QString& file, QString* remark = nullptr);
  /// Saves the query, which has that name from then on. Returns an error message, empty on success.
  QString SaveAs(const QString& file);

  /// What a crash would cost the user; nothing when nothing is unsaved. Without a password.
  std::optional<KeptWork> UnsavedWork() const;
  /// Shows work that was kept, in the place of the query; it counts as unsaved. `connection` is its source, or nothing:
  /// then its tables have the columns that were kept with it. Returns an error message, empty on success; typed text is
  /// the caller's to bring back.
  QString Recover(const KeptWork& work, const std::shared_ptr<ProviderConnection>& connection);

  /// The file itself; empty for a query that was never saved.
  const QString& File() const { return file_; }

  /// Empties the designer, with the question about unsaved changes.
  void New() {
    if (MaySetAside()) Reset();
  }
  /// Saves the query, under the name that the user chooses when it has none. Whether it is saved.
  bool Save();
  /// Saves the query under a name that the user chooses. Whether it is saved.
  bool AskAndSave();
  /// The file that the user chooses to open; empty for none.
  QString AskForFile() const;

  /// The files that were opened or saved last and are there, the newest first.
  static QStringList RecentFiles();
  /// Whether the file's name is that of a query file.
  static bool IsQueryFile(const QString& file);

 private:
  std::shared_ptr<ProviderConnection> TryConnection(const std::string& connectionString, QString* remark);
  QMessageBox::StandardButton AskAboutWritingOver();
  QString PassedOver() const;
  void AskAboutPassword();
  void Load(const std::string& text);
  std::string Text() const;
  void Clear();
  void Remember(const QString& file);

  QWidget* parent_;
  qbQueryBuilder& hub_;
  std::shared_ptr<const TextSource> texts_;
  Window window_;
  QString file_;
  std::string saved_;
  bool readInPart_ = false;         // the file holds more than was read
  std::string askedAboutPassword_;  // the connection string that the user was asked about last
};

}  // namespace zrqrybld
