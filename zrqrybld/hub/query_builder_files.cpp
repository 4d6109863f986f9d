// The query's way into a file and back.
#include "zrqrybld/base/error.h"
#include "zrqrybld/base/file.h"
#include "zrqrybld/base/texts_hub.h"
#include "zrqrybld/host/step_context.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/hub/query_file_reader.h"
#include "zrqrybld/hub/query_file_writer.h"
#include "zrqrybld/platform/toolkit.h"
#include "zrqrybld/sql/sql_pane.h"

namespace zrqrybld {

void qbQueryBuilder::SaveQuery(const std::string& filename) {
  RunOperation(text::StepSave, InfoSavingQuery, [&] {
    RaiseInfo(InfoSavingQuery, filename);
    const std::string text = QueryFileWriter(*this).Write();
    const bool holdsPassword = options_.saveConnectionString && savePassword_;
    WriteWholeFile(filename, text + "\r\n", GetToolkit().Files(), holdsPassword);
  });
}

std::string qbQueryBuilder::SaveQueryToText() {
  std::string written;
  RunOperation(text::StepSave, InfoSavingQuery, [&] {
    RaiseInfo(InfoSavingQuery, std::string());
    written = QueryFileWriter(*this).Write();
  });
  return written;
}

bool qbQueryBuilder::LoadQuery(const std::string& filename, bool fileIsData, bool returnParametersOnly,
                               std::string* sqlStatement, std::string* connectionString) {
  bool complete = false;
  std::string notApplied;
  RunOperation(kStepLoadQuery, InfoLoadingQuery, [&] {
    loadRemarks_.clear();
    QueryFileReader reader(*this, {returnParametersOnly, sqlStatement, connectionString}, loadRemarks_);
    try {
      RaiseInfo(InfoLoadingQuery, fileIsData ? std::string() : filename);
      const std::string text = fileIsData ? filename : ReadWholeFile(filename, kLargestQueryFile);
      complete = WholeOrNothing(RefTo(*this), [&] { return reader.Read(text); });
    } catch (const std::exception& cause) {
      throw WrapError(ErrorLoadingQuery, text::LoadingFailed, cause);
    }
    if (!complete || returnParametersOnly) return;
    notApplied = reader.NotApplied();
    if (sqlPane_) sqlPane_->QueryReplaced();
    QueryChanged();
  });
  if (!notApplied.empty() && sqlPane_ && sqlPane_->KeepTypedText()) sqlPane_->ShowTyped(notApplied);
  return complete;
}

}  // namespace zrqrybld
