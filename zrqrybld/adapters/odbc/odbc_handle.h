// Owners of ODBC's handles, and what a driver says when something fails. Only the adapter's sources
// include this.
#pragma once

#include <sql.h>
#include <sqlext.h>
#include <sqltypes.h>
#include <sqlucode.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "zrqrybld/adapters/odbc/patience.h"

namespace zrqrybld::odbc {

static_assert(sizeof(SQLWCHAR) == sizeof(char16_t), "the driver manager must take UTF-16");

inline SQLWCHAR* Wide(std::u16string& text) { return reinterpret_cast<SQLWCHAR*>(text.data()); }

/// The texts that no message may show, longest first.
class Secrets {
 public:
  /// Also hides the text as it stands in braces. "" is no secret.
  void Add(const std::string& secret);

  /// `message` with "***" for every secret. One of up to three characters is only hidden where it stands
  /// alone: it would leave nothing of the message, and be easily read from the gaps.
  std::string Hide(std::string message) const;

 private:
  std::vector<std::string> secrets_;
};

/// While one lives, the thread's characters are UTF-8.
///
/// A driver manager passes text to a driver without Unicode functions in the encoding that the thread has when the
/// connection's handle is made. A program that has not chosen a locale would lose everything beyond ASCII, for
/// instance in SQLite.
class Utf8Scope {
 public:
  Utf8Scope();
  Utf8Scope(const Utf8Scope&) = delete;
  Utf8Scope& operator=(const Utf8Scope&) = delete;
  ~Utf8Scope();

 private:
  void* own_ = nullptr;
  void* before_ = nullptr;
};

/// One handle of ODBC.
template <SQLSMALLINT kHandleType>
class Handle {
 public:
  /// Makes the handle under `parent`; empty when that fails.
  explicit Handle(SQLHANDLE parent) {
    std::optional<Utf8Scope> utf8;
    if constexpr (kHandleType == SQL_HANDLE_DBC) utf8.emplace();
    if (!SQL_SUCCEEDED(SQLAllocHandle(kHandleType, parent, &handle_))) handle_ = SQL_NULL_HANDLE;
  }
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  ~Handle() {
    if (handle_ != SQL_NULL_HANDLE) SQLFreeHandle(kHandleType, handle_);
  }

  SQLHANDLE Get() const { return handle_; }

 private:
  SQLHANDLE handle_ = SQL_NULL_HANDLE;
};

/// What ODBC itself keeps for a program. Connections and the list of data sources need one.
class Environment {
 public:
  /// Error 3706 when there is no memory for it.
  Environment();

  SQLHENV Get() const { return handle_.Get(); }

 private:
  Handle<SQL_HANDLE_ENV> handle_;
};

/// One open source.
class DriverConnection {
 public:
  /// Opens the source, for reading only where the driver knows such a thing. Error 3706 with the driver's words
  /// when that fails, or when there is no answer in time.
  DriverConnection(const std::string& connectionString, Secrets secrets);
  DriverConnection(const DriverConnection&) = delete;
  DriverConnection& operator=(const DriverConnection&) = delete;

  SQLHDBC Get() const { return link_->handle.Get(); }
  const Secrets& GetSecrets() const { return secrets_; }

  /// Beaten whenever the driver has returned from a call.
  const std::shared_ptr<Pulse>& GetPulse() const { return pulse_; }

  /// Asks the driver whether the connection is still there. ConnectionLost when it says no.
  void RequireAlive() const;

  /// What the driver tells about itself; "" and 0 when it does not tell.
  std::string InfoText(SQLUSMALLINT kind) const;
  std::uint32_t InfoNumber(SQLUSMALLINT kind) const;
  std::uint16_t InfoShort(SQLUSMALLINT kind) const;

  /// The database that names without one belong to; "" when there is none.
  std::string CurrentCatalog() const;

 private:
  // What the driver uses, so that a call that never returns can keep it.
  struct Link {
    Link() : handle(environment.Get()) {}
    Link(const Link&) = delete;
    Link& operator=(const Link&) = delete;
    ~Link();
    void Open(const std::string& connectionString, const Secrets& secrets);

    Environment environment;
    Handle<SQL_HANDLE_DBC> handle;
    bool open = false;
  };

  Secrets secrets_;
  std::shared_ptr<Pulse> pulse_ = std::make_shared<Pulse>();
  std::shared_ptr<Link> link_;
};

/// One catalogue question. The connection must outlive it.
class Statement {
 public:
  explicit Statement(const DriverConnection& connection);

  SQLHSTMT Get() const { return handle_.Get(); }

  /// Beats the connection's pulse, and throws when `result` is a failure: ConnectionLost when the driver says so, 3251
  /// when the driver lacks what was asked, otherwise the driver's own number, or 3706 when it has none. The description
  /// is the driver's, with its SQLSTATE in front.
  void Check(SQLRETURN result) const;

 private:
  const DriverConnection& connection_;
  Handle<SQL_HANDLE_STMT> handle_;
};

}  // namespace zrqrybld::odbc
