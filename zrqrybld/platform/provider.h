// Providers of data sources, and the connection that picks one by its connection string.
//
// An adapter implements Provider and Session; the application registers it with its toolkit. The
// core knows no database.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "zrqrybld/base/export.h"
#include "zrqrybld/platform/connection_string.h"
#include "zrqrybld/platform/database.h"

namespace zrqrybld {

/// One open data source. Destroying it closes the source.
class ZRQRYBLD_API Session {
 public:
  Session() = default;
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;
  virtual ~Session() = default;

  /// See `Connection::OpenSchema`.
  virtual std::unique_ptr<RowSet> OpenSchema(SchemaKind kind, const SchemaRestrictions& restrictions) = 0;

  /// See `Connection::Keywords`.
  virtual std::vector<std::string> Keywords() const { return {}; }

  /// See `Connection::KnowsWholeSource`.
  virtual bool KnowsWholeSource(SchemaKind) const { return false; }

  /// False from the moment at which the source was found to be gone or has not answered in time. Every call fails then.
  virtual bool IsOpen() const { return true; }
};

/// A data source that is configured on the machine.
struct DataSourceName {
  std::string name;
  std::string driver;  ///< what reaches it, by the driver's own name
};

/// One way to reach data sources, for instance an embedded database library.
class ZRQRYBLD_API Provider {
 public:
  Provider() = default;
  Provider(const Provider&) = delete;
  Provider& operator=(const Provider&) = delete;
  virtual ~Provider() = default;

  /// The value of `Provider=` that chooses this provider, in any letter case.
  virtual std::string_view Name() const = 0;

  /// Whether a connection string without `Provider=` is for this provider.
  virtual bool Accepts(const ConnectionString& connectionString) const = 0;

  /// Opens the source. Errors carry the provider's own number and words, never a password.
  virtual std::unique_ptr<Session> Open(const ConnectionString& connectionString, std::string_view user,
                                        std::string_view password) = 0;

  /// The data sources that are configured for this provider on the machine; none for a provider that has no such
  /// configuration, or whose configuration cannot be read.
  virtual std::vector<DataSourceName> DataSources() { return {}; }

  /// The names of the drivers that are configured for this provider on the machine, as above.
  virtual std::vector<std::string> Drivers() { return {}; }
};

/// The providers that an application has registered.
class ZRQRYBLD_API ProviderList {
 public:
  /// Adds a provider; of two with one name the later is used.
  void Register(std::shared_ptr<Provider> provider) { providers_.push_back(std::move(provider)); }

  /// The provider for the string; error 3706 when there is none.
  Provider& Choose(const ConnectionString& connectionString) const;

  /// The configured data sources of all providers, in the order of registration.
  std::vector<DataSourceName> DataSources() const;

  /// The configured drivers of all providers, likewise.
  std::vector<std::string> Drivers() const;

 private:
  std::vector<std::shared_ptr<Provider>> providers_;
};

/// The connection that the library makes itself: empty until it gets a connection string.
class ZRQRYBLD_API ProviderConnection final : public Connection {
 public:
  explicit ProviderConnection(std::shared_ptr<const ProviderList> providers) : providers_(std::move(providers)) {}

  std::string ConnectionString() const override { return connectionString_; }
  void SetConnectionString(std::string value) override;
  void SetProperty(std::string_view name, const Variant& value) override;
  void Open(std::string_view user, std::string_view password) override;
  void Close() override;
  ConnectionStateEnum State() const override { return HasSession() ? ConnectionOpened : ConnectionClosed; }
  std::unique_ptr<RowSet> OpenSchema(SchemaKind kind, const SchemaRestrictions& restrictions) override;
  std::vector<std::string> Keywords() override;
  bool KnowsWholeSource(SchemaKind kind) const override { return HasSession() && session_->KnowsWholeSource(kind); }

 private:
  // One whose source is gone counts as none.
  bool HasSession() const { return session_ && session_->IsOpen(); }
  Session& OpenedSession() const;

  std::shared_ptr<const ProviderList> providers_;
  std::string connectionString_;
  std::unique_ptr<Session> session_;
};

}  // namespace zrqrybld
