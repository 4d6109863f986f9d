#include "zrqrybld/platform/provider.h"

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_platform.h"

namespace zrqrybld {

Provider& ProviderList::Choose(const ConnectionString& connectionString) const {
  const std::optional<std::string> name = connectionString.Get("Provider");
  for (auto provider = providers_.rbegin(); provider != providers_.rend(); ++provider) {
    if (name ? EqualsNoCase((*provider)->Name(), *name) : (*provider)->Accepts(connectionString)) return **provider;
  }
  throw Error(ErrorConnectionFailed, name ? Phrase(text::NoProviderNamed, *name) : text::NoProviderKnows);
}

std::vector<DataSourceName> ProviderList::DataSources() const {
  std::vector<DataSourceName> all;
  for (const std::shared_ptr<Provider>& provider : providers_) {
    for (DataSourceName& source : provider->DataSources()) all.push_back(std::move(source));
  }
  return all;
}

std::vector<std::string> ProviderList::Drivers() const {
  std::vector<std::string> all;
  for (const std::shared_ptr<Provider>& provider : providers_) {
    for (std::string& driver : provider->Drivers()) all.push_back(std::move(driver));
  }
  return all;
}

Session& ProviderConnection::OpenedSession() const {
  if (!HasSession()) throw Error(ErrorConnectionClosed, text::ConnectionIsClosed);
  return *session_;
}

void ProviderConnection::SetConnectionString(std::string value) {
  if (HasSession()) throw Error(ErrorConnectionOpen, text::ConnectionStringInUse);
  connectionString_ = std::move(value);
}

void ProviderConnection::SetProperty(std::string_view, const Variant&) {}

void ProviderConnection::Open(std::string_view user, std::string_view password) {
  if (HasSession()) throw Error(ErrorConnectionOpen, text::ConnectionIsOpen);
  session_.reset();
  const zrqrybld::ConnectionString parsed(connectionString_);
  session_ = providers_->Choose(parsed).Open(parsed, user, password);
}

void ProviderConnection::Close() {
  OpenedSession();
  session_.reset();
}

std::unique_ptr<RowSet> ProviderConnection::OpenSchema(SchemaKind kind, const SchemaRestrictions& restrictions) {
  return OpenedSession().OpenSchema(kind, restrictions);
}

std::vector<std::string> ProviderConnection::Keywords() { return OpenedSession().Keywords(); }

}  // namespace zrqrybld
