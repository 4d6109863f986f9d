#include "designer/query_preview.h"

#include <algorithm>

#include "zrqrybld/adapters/qt/qt_text.h"
#include "zrqrybld/adapters/qt/query_designer_widget.h"
#include "zrqrybld/adapters/qt/say.h"
#include "zrqrybld/adapters/sqlite/sqlite_runner.h"
#include "zrqrybld/base/error.h"
#include "zrqrybld/base/texts_designer.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/hub/parameter_form.h"
#include "zrqrybld/platform/connection_string.h"
#include "zrqrybld/platform/provider.h"
#include "zrqrybld/platform/toolkit.h"
#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/host_parameters.h"
#include "zrqrybld/sql/lexer.h"
#include "zrqrybld/sql/readable_criteria.h"
#include "zrqrybld/sql/sql_pane.h"
#if ZRQRYBLD_HAS_ODBC
#include "zrqrybld/adapters/odbc/odbc_runner.h"
#endif

namespace zrqrybld {

PreviewJob::Open RunnerFor(const ProviderList& providers, const std::string& connectionString) {
  const ConnectionString parsed(connectionString);
  const std::string_view name = providers.Choose(parsed).Name();
  if (name == "SQLite") return [parsed] { return OpenSqliteRunner(parsed); };
#if ZRQRYBLD_HAS_ODBC
  if (name == "MSDASQL") return [parsed] { return OpenOdbcRunner(parsed); };
#endif
  throw Error(ErrorConnectionFailed, text::SourceCannotRun);
}

QueryPreview::QueryPreview(QueryDesignerWidget& designer, PreviewPane& pane) : designer_(designer), pane_(pane) {
  links_.push_back(designer_.QueryBuilder().SQLPane()->SQLChanged.Connect([this] { pane_.MarkStale(); }));
  QObject::connect(&pane_, &PreviewPane::Failing, &pane_, [this] { OfferOwnDialect(); });
  QObject::connect(&pane_, &PreviewPane::CureWanted, &pane_, [this] { SwitchToOwnDialect(); });
  QObject::connect(&pane_, &PreviewPane::Refused, &pane_, [this](quint64 offset) { ShowFault(offset); });
}

// A statement in another dialect than the source's own often fails for that reason.
void QueryPreview::OfferOwnDialect() {
  const qbQueryBuilder& hub = designer_.QueryBuilder();
  const Dialect* own = hub.SourceDialect();
  if (own && own != &hub.CurrentDialect()) pane_.OfferCure(Say(*hub.Texts(), text::SwitchTo, own->name));
}

void QueryPreview::SwitchToOwnDialect() {
  designer_.QueryBuilder().FollowSource();
  Run();
}

QueryPreview::Outcome QueryPreview::Run() {
  qbQueryBuilder& hub = designer_.QueryBuilder();
  qbSQLPane& sql = *hub.SQLPane();
  // Who runs a text again that could not be drawn wants it run as it stands.
  const bool again = sql.UseAsTyped();
  if (!sql.ApplyEditedText() && !(again && sql.UseAsTyped())) {
    pane_.DropFailure();
    return Outcome::BadText;
  }
  if (!hub.IsConnected()) {
    pane_.ShowFailure(Say(*hub.Texts(), text::NoSourceToRun));
    return Outcome::Refused;
  }
  try {
    if (!sql.IsSqlOnly()) RequireReadableCriteria(sql);
    shown_ = sql.SQLStatement();
    const std::string asked = WithParameterMarkers(shown_, hub.CurrentDialect().parameterSigns);
    const auto values = AskParameters(hub, asked);
    if (!values) return Outcome::Cancelled;
    sent_ = PutInLiterals(asked, *values, LiteralRulesOf(hub));
    designer_.SqlView().SetFault(0, 0);  // what was refused before
    pane_.Run(RunnerFor(*hub.GetToolkit().Providers(), hub.Connection()->ConnectionString()), sent_,
              hub.CurrentDialect());
  } catch (const std::exception& error) {
    pane_.ShowFailure(Say(*hub.Texts(), error));
    return Outcome::Refused;
  }
  return Outcome::Running;
}

// Up to the first parameter the two statements are the same, and so are their places.
void QueryPreview::ShowFault(std::size_t offset) {
  if (designer_.QueryBuilder().SQLPane()->SQLStatement() != shown_) return;
  const auto common = static_cast<std::size_t>(std::ranges::mismatch(shown_, sent_).in1 - shown_.begin());
  if (offset >= common && shown_ != sent_) return;
  Lexer lexer(shown_);
  Token faulty;  // the last one where the statement ends too early
  for (Token token; lexer.Next(token) && token.offset <= offset;) faulty = token;
  designer_.SqlView().SetFault(faulty.offset, faulty.length);
  fault_ = faulty.offset;
  pane_.OfferPlace();
}

void QueryPreview::GoToFault() {
  QtTextArea& view = designer_.SqlView();
  if (designer_.QueryBuilder().SQLPane()->SQLStatement() == shown_) {
    QTextCursor caret = view.textCursor();
    caret.setPosition(view.PositionOf(fault_));
    view.setTextCursor(caret);
  }
  view.setFocus(Qt::OtherFocusReason);
}

}  // namespace zrqrybld
