#include "designer/query_document.h"

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QPushButton>
#include <QSettings>
#include <utility>

#include "designer/plain_box.h"
#include "designer/query_commands.h"
#include "designer/recent_connections.h"
#include "zrqrybld/adapters/qt/qt_text.h"
#include "zrqrybld/adapters/qt/say.h"
#include "zrqrybld/base/error.h"
#include "zrqrybld/base/file.h"
#include "zrqrybld/base/texts_designer.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/host/step_context.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/hub/query_file_reader.h"
#include "zrqrybld/platform/connection_string.h"
#include "zrqrybld/platform/provider.h"
#include "zrqrybld/sql/sql_pane.h"

namespace zrqrybld {
namespace {

constexpr int kMostRecent = 8;
constexpr const char* kRecentKey = "recentQueries";
constexpr const char* kSuffix = "zrq";

QString FileFilter(const TextSource& texts) { return FileKinds(texts, text::Queries, "*.zrq"); }

}  // namespace

QueryDocument::QueryDocument(QWidget* parent, qbQueryBuilder& hub, Window window)
    : parent_(parent), hub_(hub), texts_(hub.Texts()), window_(std::move(window)) {
  hub_.SetSaveConnectionString(true);
  MarkUnmodified();
}

bool QueryDocument::IsQueryFile(const QString& file) {
  return QFileInfo(file).suffix().compare(kSuffix, Qt::CaseInsensitive) == 0;
}

QString QueryDocument::Name() const { return QFileInfo(file_).fileName(); }

// --- What is on the screen ---

std::string QueryDocument::Text() const { return hub_.SaveQueryToText(); }

void QueryDocument::Clear() {
  LeaveMainQueryOnly(hub_);
  const StepScope step(hub_.Hub(), kStepClear);
  hub_.DiagramPane()->Clear();
  hub_.GridPane()->ResetRows();
  hub_.SetSelectTopRecords("");
  hub_.SetSkipRecords(0);
  hub_.SetDistinctRecords(false);
  hub_.GridPane()->SetShowGroupBy(false);
  hub_.QueryChanged();
  window_.emptied();
}

void QueryDocument::Reset() {
  Clear();
  file_.clear();
  readInPart_ = false;
  hub_.ClearHistory();
  MarkUnmodified();
  window_.changed();
}

void QueryDocument::Load(const std::string& text) {
  Clear();
  // The connection was opened before: one that fails must not end the load half-way.
  hub_.SetConnectOnLoad(false);
  hub_.LoadQuery(text, true);
}

bool QueryDocument::MaySetAside() {
  if (!IsModified()) return true;
  QMessageBox box(QMessageBox::Question, QApplication::applicationDisplayName(),
                  Say(*texts_, text::AskSaveChanges, file_.isEmpty() ? Say(*texts_, text::TheQuery) : Name()),
                  QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, parent_);
  box.setTextFormat(Qt::PlainText);
  box.setDefaultButton(QMessageBox::Save);
  box.setInformativeText(Say(*texts_, text::LostUnlessSaved));
  switch (box.exec()) {
    case QMessageBox::Save:
      return Save();
    case QMessageBox::Discard:
      return true;
    default:
      return false;
  }
}

// --- What a crash would cost ---

namespace {

// Options for what is kept in case of a crash, put back at the end.
class KeepingOptions {
 public:
  explicit KeepingOptions(qbQueryBuilder& hub)
      : hub_(hub),
        items_(hub.SaveLoadEntityItems()),
        password_(hub.SavePassword()),
        connection_(hub.SaveConnectionString()) {
    hub_.SetSaveLoadEntityItems(true);  // the source may not be there when the work is wanted
    hub_.SetSavePassword(false);
    if (MayHoldSecret(hub_.Connection()->ConnectionString())) hub_.SetSaveConnectionString(false);
  }
  KeepingOptions(const KeepingOptions&) = delete;
  KeepingOptions& operator=(const KeepingOptions&) = delete;
  ~KeepingOptions() {
    hub_.SetSaveLoadEntityItems(items_);
    hub_.SetSavePassword(password_);
    hub_.SetSaveConnectionString(connection_);
  }

 private:
  qbQueryBuilder& hub_;
  bool items_;
  bool password_;
  bool connection_;
};

}  // namespace

std::optional<KeptWork> QueryDocument::UnsavedWork() const {
  const Ref<qbSQLPane> sql = hub_.SQLPane();
  std::string typed = sql->IsEdited() ? sql->SQLStatement() : std::string();
  if (typed.empty() && !IsModified()) return std::nullopt;
  const KeepingOptions options(hub_);
  return KeptWork{file_, Text(), std::move(typed)};
}

QString QueryDocument::Recover(const KeptWork& work, const std::shared_ptr<ProviderConnection>& connection) {
  try {
    const KeepingOptions options(hub_);
    Clear();
    if (connection) window_.useConnection(connection);
    Load(work.query);
  } catch (const std::exception& error) {
    Reset();
    return Say(*texts_, error);
  }
  file_ = work.file;
  readInPart_ = false;
  hub_.ClearHistory();
  saved_.clear();
  window_.changed();
  return {};
}

// --- Opening ---

QString QueryDocument::AskForFile() const {
  return QFileDialog::getOpenFileName(parent_, Say(*texts_, text::OpenQueryCaption), QFileInfo(file_).path(),
                                      FileFilter(*texts_));
}

// The connection in use serves where the saved one cannot be opened: files move between machines, databases do not.
std::shared_ptr<ProviderConnection> QueryDocument::TryConnection(const std::string& connectionString, QString* remark) {
  if (connectionString.empty()) return nullptr;
  try {
    return window_.openSaved(connectionString);
  } catch (const std::exception& error) {
    if (!hub_.IsConnected()) throw;
    if (remark) {
      *remark = Say(*texts_, text::UsesConnectionInUse, Say(*texts_, error));
    }
    return nullptr;
  }
}

// What the file holds and the query does not; "" when that is nothing.
QString QueryDocument::PassedOver() const {
  constexpr std::size_t kShown = 10;
  const std::vector<std::string>& remarks = hub_.LoadRemarks();
  QStringList lines;
  for (std::size_t i = 0; i < remarks.size() && i < kShown; ++i) lines << ToQString(remarks[i]);
  if (remarks.size() > kShown) lines << Say(*texts_, text::AndMore);
  if (lines.isEmpty()) return {};
  return Say(*texts_, text::FileHoldsUnknown) + "\n\n" + lines.join('\n');
}

QString QueryDocument::Open(const QString& file, QString* remark) {
  const std::string before = Text();
  const Ref<Connection> connectionBefore = hub_.Connection();
  bool replaced = false;
  try {
    const std::string text = ReadWholeFile(ToUtf8(file), kLargestQueryFile);
    std::string connectionString;
    hub_.LoadQuery(text, true, true, nullptr, &connectionString);
    const std::shared_ptr<ProviderConnection> connection = TryConnection(connectionString, remark);
    replaced = true;
    Clear();
    if (connection) window_.useConnection(connection);
    Load(text);
  } catch (const std::exception& error) {
    const QString message = Say(*texts_, text::CannotBeOpened, QDir::toNativeSeparators(file), Say(*texts_, error));
    if (replaced) {
      hub_.SetConnection(connectionBefore);
      Load(before);
      hub_.ClearHistory();  // its last steps are those of the opening that failed
      window_.changed();
    }
    return message;
  }
  const QString passedOver = PassedOver();
  readInPart_ = !passedOver.isEmpty();
  if (remark && readInPart_) *remark += (remark->isEmpty() ? "" : "\n\n") + passedOver;
  file_ = QFileInfo(file).absoluteFilePath();
  hub_.ClearHistory();  // another document, perhaps of another source
  MarkUnmodified();
  Remember(file_);
  window_.changed();
  window_.happened(Say(*texts_, text::Opened, QDir::toNativeSeparators(file_)));
  return {};
}

// --- Saving ---

bool QueryDocument::Save() {
  if (file_.isEmpty()) return AskAndSave();
  if (readInPart_) {
    const QMessageBox::StandardButton answer = AskAboutWritingOver();
    if (answer != QMessageBox::Save) return answer == QMessageBox::Open && AskAndSave();
  }
  AskAboutPassword();
  const QString error = SaveAs(file_);
  if (!error.isEmpty()) ShowPlain(parent_, QMessageBox::Critical, error);
  return error.isEmpty();
}

// `Open` stands for another name.
QMessageBox::StandardButton QueryDocument::AskAboutWritingOver() {
  QMessageBox box(QMessageBox::Warning, QApplication::applicationDisplayName(),
                  Say(*texts_, text::AskWriteOver, Name()), QMessageBox::Save | QMessageBox::Open | QMessageBox::Cancel,
                  parent_);
  box.setTextFormat(Qt::PlainText);
  box.button(QMessageBox::Open)->setText(Say(*texts_, text::SaveAsItem));
  box.button(QMessageBox::Save)->setText(Say(*texts_, text::WriteOverIt));
  box.setDefaultButton(QMessageBox::Open);
  box.setInformativeText(Say(*texts_, text::NotReadIsLost));
  return static_cast<QMessageBox::StandardButton>(box.exec());
}

bool QueryDocument::AskAndSave() {
  QFileDialog dialog(parent_, Say(*texts_, text::SaveQueryCaption), QFileInfo(file_).path(), FileFilter(*texts_));
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  dialog.setDefaultSuffix(kSuffix);
  dialog.selectFile(file_.isEmpty() ? Say(*texts_, text::QueryFileName) + "." + kSuffix : Name());
  if (dialog.exec() != QDialog::Accepted) return false;
  AskAboutPassword();
  const QString error = SaveAs(dialog.selectedFiles().first());
  if (!error.isEmpty()) ShowPlain(parent_, QMessageBox::Critical, error);
  return error.isEmpty();
}

// A password goes into a file only when the user says so, once for each connection.
void QueryDocument::AskAboutPassword() {
  const std::string connectionString = hub_.Connection()->ConnectionString();
  if (!ConnectionString(connectionString).HoldsSecret()) return;
  if (std::exchange(askedAboutPassword_, connectionString) == connectionString) return;
  const auto answer = ShowPlain(parent_, QMessageBox::Question, Say(*texts_, text::AskSavePassword),
                                QMessageBox::Yes | QMessageBox::No, QMessageBox::No);
  hub_.SetSavePassword(answer == QMessageBox::Yes);
}

QString QueryDocument::SaveAs(const QString& file) {
  try {
    hub_.SaveQuery(ToUtf8(QFileInfo(file).absoluteFilePath()));
  } catch (const std::exception& error) {
    return Say(*texts_, error);
  }
  file_ = QFileInfo(file).absoluteFilePath();
  readInPart_ = false;
  MarkUnmodified();
  Remember(file_);
  window_.changed();
  window_.happened(Say(*texts_, text::Saved, QDir::toNativeSeparators(file_)));
  return {};
}

// --- Recent files ---

void QueryDocument::Remember(const QString& file) {
  QSettings settings;
  QStringList files = settings.value(kRecentKey).toStringList();
  files.removeAll(file);
  files.prepend(file);
  while (files.size() > kMostRecent) files.removeLast();
  settings.setValue(kRecentKey, files);
}

QStringList QueryDocument::RecentFiles() {
  QStringList files = QSettings().value(kRecentKey).toStringList();
  files.removeIf([](const QString& file) { return !QFileInfo::exists(file); });
  return files;
}

}  // namespace zrqrybld
