#include "zrqrybld/sql/readable_criteria.h"

#include <algorithm>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/texts_sql.h"

namespace zrqrybld {

void RequireReadableCriteria(const qbSQLPane& pane) {
  const auto& remarks = pane.Diagnostics();
  const auto unread = std::ranges::find(remarks, DiagnosticUnreadableCriterion, &SQLDiagnostic::kind);
  if (unread != remarks.end()) throw Error(ErrorParsingText, Phrase(text::NotRun, unread->what));
}

}  // namespace zrqrybld
