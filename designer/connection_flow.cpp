#include "designer/connection_flow.h"

#include <QApplication>
#include <QCoreApplication>
#include <QInputDialog>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <optional>

#include "designer/guarded.h"
#include "zrqrybld/adapters/qt/qt_text.h"
#include "zrqrybld/adapters/qt/say.h"
#include "zrqrybld/adapters/sqlite/sqlite_provider.h"
#include "zrqrybld/base/error.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_designer.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/platform/connection_policy.h"
#include "zrqrybld/platform/connection_string.h"
#include "zrqrybld/platform/provider.h"
#include "zrqrybld/platform/toolkit.h"

namespace zrqrybld {
namespace {

constexpr std::size_t kShownConnection = 1000;  // characters

}  // namespace

ConnectionFlow::ConnectionFlow(QWidget* window, qbQueryBuilder& hub)
    : window_(window), hub_(hub), texts_(hub.Texts()) {}

std::shared_ptr<ProviderConnection> ConnectionFlow::Open(const std::string& connectionString, QString* error) {
  *error = RefusalOf(connectionString);
  std::shared_ptr<ProviderConnection> connection;
  if (error->isEmpty()) *error = FailureOf(*texts_, [&] { connection = TryConnection(connectionString); });
  return connection;
}

std::shared_ptr<ProviderConnection> ConnectionFlow::OpenRecent(const RecentConnection& recent, QString* error) {
  *error = RefusalOf(recent.text);
  return error->isEmpty() ? OpenAsking(recent.text, recent.asksPassword, error) : nullptr;
}

// Passwords are not kept, so the user may have to type one. Nothing when the source cannot be opened, with the reason
// unless the user has cancelled.
std::shared_ptr<ProviderConnection> ConnectionFlow::OpenAsking(std::string connectionString, bool askFirst,
                                                               QString* error) {
  const std::string kept = connectionString;
  bool ask = askFirst;
  QString reason;
  while (true) {
    if (ask) {
      const QString before = reason.isEmpty() ? QString() : reason + "\n\n";
      QInputDialog dialog(window_);
      dialog.setWindowTitle(Say(*texts_, text::PasswordCaption));
      dialog.setLabelText(before + Say(*texts_, text::PasswordFor, SourceTitle(kept, *texts_)));
      for (QLabel* label : dialog.findChildren<QLabel*>()) label->setTextFormat(Qt::PlainText);
      dialog.setTextEchoMode(QLineEdit::Password);
      if (dialog.exec() != QDialog::Accepted) return nullptr;
      connectionString = WithPassword(kept, ToUtf8(dialog.textValue()));
    }
    std::shared_ptr<ProviderConnection> connection;
    reason = FailureOf(*texts_, [&] {
      const BusyPointer busy(hub_.GetToolkit());
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
QString ConnectionFlow::RefusalOf(const std::string& connectionString) {
  const auto origin = asks_ ? ConnectionOrigin::Person : ConnectionOrigin::Program;
  const std::optional<Error> refusal = hub_.RefusalOf(connectionString, origin);
  return refusal ? Say(*texts_, *refusal) : QString();
}

// Shows the user what a query file wants to be connected by, unless they were connected by it before.
bool ConnectionFlow::MayOpenSaved(const std::string& connectionString) {
  if (connectSaved_ || WasUsed(connectionString)) return true;
  if (!asks_) return false;
  QMessageBox box(QMessageBox::Question, QApplication::applicationDisplayName(), Say(*texts_, text::AskSavedConnection),
                  QMessageBox::NoButton, window_);
  box.setTextFormat(Qt::PlainText);
  box.setInformativeText(ToQString(FirstCharacters(ConnectionString(connectionString).Masked(), kShownConnection)));
  const QAbstractButton* connect = box.addButton(Say(*texts_, text::ConnectAnswer), QMessageBox::AcceptRole);
  QPushButton* leave = box.addButton(Say(*texts_, text::DoNotConnect), QMessageBox::RejectRole);
  box.setDefaultButton(leave);
  box.setEscapeButton(leave);
  box.exec();
  return box.clickedButton() == connect;
}

std::shared_ptr<ProviderConnection> ConnectionFlow::OpenSaved(const std::string& connectionString) {
  if (const auto refusal = hub_.RefusalOf(connectionString, ConnectionOrigin::File)) throw *refusal;
  if (!MayOpenSaved(connectionString)) {
    throw Error(ErrorConnectionFailed, Phrase(asks_ ? text::DidNotWantToConnect : text::NobodyAgreed,
                                              ConnectionString(connectionString).Masked()));
  }
  QString error;
  std::shared_ptr<ProviderConnection> connection = OpenAsking(connectionString, false, &error);
  // Files are saved without passwords. Another one helps with servers only.
  const bool mayAsk = asks_ && !SqliteProvider().Accepts(ConnectionString(connectionString));
  if (!connection && mayAsk) connection = OpenAsking(connectionString, true, &error);
  if (!connection) throw Error(ErrorConnectionFailed, ToUtf8(error));
  return connection;
}

std::shared_ptr<ProviderConnection> ConnectionFlow::TryConnection(const std::string& connectionString) const {
  auto connection = std::make_shared<ProviderConnection>(hub_.GetToolkit().Providers());
  connection->SetConnectionString(connectionString);
  connection->Open({}, {});
  return connection;
}

}  // namespace zrqrybld
