#include "designer/row_count.h"

#include <QTimer>
#include <charconv>
#include <utility>

#include "designer/query_preview.h"
#include "zrqrybld/base/error.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/platform/provider.h"
#include "zrqrybld/platform/toolkit.h"

namespace zrqrybld {
namespace {

constexpr std::chrono::seconds kPatience{2};

using Tell = std::function<void(std::optional<std::int64_t>)>;

std::optional<std::int64_t> NumberIn(const std::vector<ResultRow>& rows) {
  if (rows.empty() || rows.front().empty()) return std::nullopt;
  const std::string& text = rows.front().front().text;
  std::int64_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && end == text.data() + text.size() ? std::optional(number) : std::nullopt;
}

class JobCount final : public RowCount {
 public:
  JobCount(PreviewJob::Open open, const std::string& statement, const Dialect& dialect, Tell tell)
      : tell_(std::move(tell)),
        job_(std::make_unique<PreviewJob>(std::move(open), statement, dialect, [this](const PreviewNews& news) {
          if (news.kind == PreviewNews::Kind::Rows) Answer(NumberIn(news.rows));
          if (news.kind == PreviewNews::Kind::Failed) Answer(std::nullopt);
        })) {
    patience_.setSingleShot(true);
    QObject::connect(&patience_, &QTimer::timeout, &patience_, [this] { Answer(std::nullopt); });
    patience_.start(kPatience);
  }

 private:
  // Once; then the source is let go, but not by the job's own call.
  void Answer(std::optional<std::int64_t> rows) {
    patience_.stop();
    QTimer::singleShot(0, &patience_, [this] { job_.reset(); });
    if (const Tell tell = std::exchange(tell_, {})) tell(rows);
  }

  Tell tell_;
  QTimer patience_;
  std::unique_ptr<PreviewJob> job_;
};

}  // namespace

RowCounter CounterFor(qbQueryBuilder& hub) {
  return [&hub](const std::string& statement, Tell tell) -> std::unique_ptr<RowCount> {
    if (!hub.IsConnected()) return nullptr;
    try {
      return std::make_unique<JobCount>(RunnerFor(*hub.GetToolkit().Providers(), hub.Connection()->ConnectionString()),
                                        statement, hub.CurrentDialect(), std::move(tell));
    } catch (const Error&) {
      return nullptr;  // the source cannot run statements
    }
  };
}

}  // namespace zrqrybld
