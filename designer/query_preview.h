// QueryPreview: joins the designer to the pane that shows its query's rows: what is run, on which source, and where an
// error lies in the statement.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "designer/preview_pane.h"
#include "zrqrybld/base/event.h"

namespace zrqrybld {

class ProviderList;
class QueryDesignerWidget;

class QueryPreview {
 public:
  /// Both must outlive it.
  QueryPreview(QueryDesignerWidget& designer, PreviewPane& pane);

  /// Applies what was typed, asks for the values of parameters, and runs the statement on the source in use, read-only.
  /// Text that cannot be applied is told where it stands, and nothing is run.
  enum class Outcome : std::uint8_t {
    Running,
    Refused,    ///< the pane tells why
    BadText,    ///< the statement's own pane tells why
    Cancelled,  ///< by the user
  };
  Outcome Run();
  /// Puts the caret where the statement was refused last.
  void GoToFault();
  /// Another source is in use, or none: nothing of the earlier one is shown or goes on.
  void SourceChanged() { pane_.Clear(); }

 private:
  void ShowFault(std::size_t offset);
  void OfferOwnDialect();
  void SwitchToOwnDialect();

  QueryDesignerWidget& designer_;
  PreviewPane& pane_;
  std::string shown_;      // the statement as it stood in its pane when it was run
  std::string sent_;       // the same with the values of its parameters
  std::size_t fault_ = 0;  // where the statement was refused last
  std::vector<EventConnection> links_;
};

/// Opens the source of a connection string for running a statement, by the provider that serves it. Thread-safe. Error
/// 3706 when there is no such provider, or it cannot run statements.
PreviewJob::Open RunnerFor(const ProviderList& providers, const std::string& connectionString);

}  // namespace zrqrybld
