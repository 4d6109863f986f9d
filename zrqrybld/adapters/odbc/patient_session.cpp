#include "zrqrybld/adapters/odbc/patient_session.h"

#include <utility>

#include "zrqrybld/adapters/odbc/patience.h"
#include "zrqrybld/base/error.h"
#include "zrqrybld/base/texts_platform.h"

namespace zrqrybld::odbc {

PatientSession::PatientSession(const std::string& connectionString, Secrets secrets) {
  const auto pulse = std::make_shared<Pulse>();
  session_ = WithPatience(pulse, [connectionString, owned = std::move(secrets)] {
    return std::make_shared<OdbcSession>(connectionString, owned);
  });
}

// Before the question the driver is asked whether the connection is still there: one driver crashes when it is asked
// anything else on a connection that was cut.
template <class Question>
auto PatientSession::Ask(Question question) const {
  if (!session_) throw Error(ErrorConnectionClosed, text::ConnectionIsClosed);
  const std::shared_ptr<OdbcSession> session = session_;
  try {
    return WithPatience(session->GetPulse(), [session, question] {
      session->RequireAlive();
      try {
        return question(*session);
      } catch (const Error&) {
        session->RequireAlive();
        throw;
      }
    });
  } catch (const ConnectionLost&) {
    session_.reset();
    throw;
  }
}

std::unique_ptr<RowSet> PatientSession::OpenSchema(SchemaKind kind, const SchemaRestrictions& restrictions) {
  return Ask([kind, restrictions](OdbcSession& session) { return session.OpenSchema(kind, restrictions); });
}

std::vector<std::string> PatientSession::Keywords() const {
  return Ask([](const OdbcSession& session) { return session.Keywords(); });
}

}  // namespace zrqrybld::odbc
