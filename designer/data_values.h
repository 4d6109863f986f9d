// DataValues: the values of a column, read as the preview reads rows: in the background, read-only, on a connection of
// their own, and given up when the source is slow.
#pragma once

#include <QTimer>
#include <memory>

#include "designer/preview_job.h"
#include "zrqrybld/host/value_source.h"

class QWidget;

namespace zrqrybld {

class qbQueryBuilder;

class DataValues final : public ValueSource {
 public:
  /// Whoever waits longer has gone on typing.
  static constexpr std::chrono::milliseconds kPatience{3000};

  /// Both must outlive it. `above` is what a calendar opens over when nothing has the keyboard.
  DataValues(qbQueryBuilder& hub, QWidget& above);

  /// A question that is not answered yet is given up.
  void Ask(const ValueQuestion& question, Answer answer) override;
  bool CanChooseDates() const override { return true; }
  void ChooseDate(const std::string& now, const DateAnswer& answer) override;

  /// Another source is in use, or none.
  void SourceChanged() { GiveUp(); }

 private:
  void Receive(PreviewNews& news);
  void GiveUp();
  void End(std::vector<ColumnValue> values);

  qbQueryBuilder& hub_;
  QWidget& above_;
  QTimer slow_;
  Answer answer_;
  std::unique_ptr<PreviewJob> job_;
};

}  // namespace zrqrybld
