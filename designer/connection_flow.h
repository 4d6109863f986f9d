// ConnectionFlow: how a source is opened for the user: what is refused, what is asked first, and the password.
//
// It belongs to the main window and changes nothing in the designer: whoever gets a connection from it uses it.
#pragma once

#include <QString>
#include <memory>
#include <string>

#include "designer/recent_connections.h"
#include "zrqrybld/base/phrase.h"
#include "zrqrybld/platform/provider.h"

class QWidget;

namespace zrqrybld {

class qbQueryBuilder;

class ConnectionFlow {
 public:
  /// Both must outlive it. Questions appear over the window.
  ConnectionFlow(QWidget* window, qbQueryBuilder& hub);

  /// Whether somebody can be asked; not at first. A script's strings are trusted as a program's.
  void SetAsks(bool asks) { asks_ = asks; }
  /// Query files are connected as they say, without a question. Some strings are refused all the same.
  void SetConnectSaved(bool connect) { connectSaved_ = connect; }

  /// Opens a source that was typed or chosen. Nothing when it cannot be opened, with the reason.
  std::shared_ptr<ProviderConnection> Open(const std::string& connectionString, QString* error);
  /// Opens one that was used before; its password may be asked for. Nothing when it cannot be opened, with the reason
  /// unless the user has cancelled.
  std::shared_ptr<ProviderConnection> OpenRecent(const RecentConnection& recent, QString* error);
  /// Opens the source of a query file; an exception when that fails, or when nobody wants it.
  std::shared_ptr<ProviderConnection> OpenSaved(const std::string& connectionString);

 private:
  QString RefusalOf(const std::string& connectionString);
  bool MayOpenSaved(const std::string& connectionString);
  std::shared_ptr<ProviderConnection> OpenAsking(std::string connectionString, bool askFirst, QString* error);
  std::shared_ptr<ProviderConnection> TryConnection(const std::string& connectionString) const;

  QWidget* window_;
  qbQueryBuilder& hub_;
  std::shared_ptr<const TextSource> texts_;
  bool asks_ = false;
  bool connectSaved_ = false;
};

}  // namespace zrqrybld
