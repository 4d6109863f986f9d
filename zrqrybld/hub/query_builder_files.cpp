// The query's way into a file and back.
#include "zrqrybld/base/error.h"
#include "zrqrybld/base/file.h"
#include "zrqrybld/base/texts_hub.h"
#include "zrqrybld/hub/query_builder.h"
#include "zrqrybld/hub/query_file_reader.h"
#include "zrqrybld/hub/query_file_writer.h"

namespace zrqrybld {

bool qbQueryBuilder::SaveQuery(std::string& filename, bool returnData) {
  RunOperation(text::StepSave, InfoSavingQuery, [&] {
    RaiseInfo(InfoSavingQuery, returnData ? std::string() : filename);
    std::string text = QueryFileWriter(*this).Write();
    if (returnData) {
      filename = std::move(text);
    } else {
      const bool holdsPassword = options_.saveConnectionString && savePassword_;
      WriteWholeFile(filename, text + "\r\n", GetToolkit().Files(), holdsPassword);
    }
  });
  return false;
}

bool qbQueryBuilder::SaveQuery(const std::string& filename) {
  std::string name = filename;
  return SaveQuery(name);
}

bool qbQueryBuilder::LoadQuery(const std::string& filename, bool fileIsData, bool returnParametersOnly,
                               std::string* sqlStatement, std::string* connectionString) {
  bool complete = false;
  RunOperation(kStepLoadQuery, InfoLoadingQuery, [&] {
    loadRemarks_.clear();
    QueryFileReader reader(*this, {returnParametersOnly, sqlStatement, connectionString}, loadRemarks_);
    try {
      RaiseInfo(InfoLoadingQuery, fileIsData ? std::string() : filename);
      const std::string text = fileIsData ? filename : ReadWholeFile(filename, kLargestQueryFile);
      complete = WholeOrNothing(RefTo<QueryContext>(*this), [&] { return reader.Read(text); });
    } catch (const std::exception& cause) {
      throw WrapError(ErrorLoadingQuery, text::LoadingFailed, cause);
    }
    if (!complete || returnParametersOnly) return;
    if (sqlPane_) sqlPane_->QueryReplaced();
    QueryChanged();
  });
  return complete;
}

}  // namespace zrqrybld
