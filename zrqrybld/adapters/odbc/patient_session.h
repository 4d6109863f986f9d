// PatientSession: a session whose driver may take only so long. Only the adapter's sources include this.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "zrqrybld/adapters/odbc/odbc_session.h"
#include "zrqrybld/platform/provider.h"

namespace zrqrybld::odbc {

/// Asks an OdbcSession in another thread. One that has not answered in time, or whose connection is gone, is never
/// asked again: `IsOpen` is false then.
class PatientSession final : public Session {
 public:
  /// Error 3706 with the driver's words, or when it does not answer.
  PatientSession(const std::string& connectionString, Secrets secrets);

  std::unique_ptr<RowSet> OpenSchema(SchemaKind kind, const SchemaRestrictions& restrictions) override;
  std::vector<std::string> Keywords() const override;
  bool IsOpen() const override { return session_ != nullptr; }

 private:
  template <class Question>
  auto Ask(Question question) const;

  mutable std::shared_ptr<OdbcSession> session_;  // none once it is given up
};

}  // namespace zrqrybld::odbc
