#include "designer/data_values.h"

#include <QApplication>
#include <utility>

#include "designer/query_preview.h"
#include "zrqrybld/adapters/qt/date_popup.h"
#include "zrqrybld/adapters/qt/qt_text.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/platform/database.h"
#include "zrqrybld/platform/toolkit.h"

namespace zrqrybld {

DataValues::DataValues(qbQueryBuilder& hub, QWidget& above) : hub_(hub), above_(above) {
  slow_.setSingleShot(true);
  QObject::connect(&slow_, &QTimer::timeout, &slow_, [this] { GiveUp(); });
}

void DataValues::Ask(const ValueQuestion& question, Answer answer) {
  GiveUp();
  answer_ = std::move(answer);
  try {
    job_ =
        std::make_unique<PreviewJob>(RunnerFor(*hub_.GetToolkit().Providers(), hub_.Connection()->ConnectionString()),
                                     question.sql, *question.dialect, [this](PreviewNews news) { Receive(news); });
    slow_.start(kPatience);
  } catch (const std::exception&) {
    End({});  // a source that runs no statements has nothing to offer
  }
}

// The first block of rows holds all: the question has a limit.
void DataValues::Receive(PreviewNews& news) {
  if (news.kind == PreviewNews::Kind::Columns) return;
  std::vector<ColumnValue> values;
  for (ResultRow& row : news.rows) {
    if (row.empty() || row[0].cut || row[0].kind == ResultKind::Null || row[0].kind == ResultKind::Binary) continue;
    ColumnValue& value = values.emplace_back();
    value.text = std::move(row[0].text);
    value.isNumber = row[0].kind == ResultKind::Number;
    if (row.size() > 1) value.detail = std::move(row[1].text);
  }
  End(std::move(values));
}

void DataValues::GiveUp() {
  if (answer_) End({});
}

void DataValues::End(std::vector<ColumnValue> values) {
  slow_.stop();
  job_.reset();
  if (const Answer answer = std::exchange(answer_, nullptr)) answer(std::move(values));
}

void DataValues::ChooseDate(const std::string& now, const DateAnswer& answer) {
  QWidget* field = QApplication::focusWidget();
  ChooseDay(field && above_.isAncestorOf(field) ? *field : above_,
            QDate::fromString(ToQString(now).left(10), Qt::ISODate),
            [answer](QDate day) { answer(ToUtf8(day.toString(Qt::ISODate))); });
}

}  // namespace zrqrybld
