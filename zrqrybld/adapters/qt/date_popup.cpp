#include "zrqrybld/adapters/qt/date_popup.h"

#include <QCalendarWidget>
#include <QMenu>
#include <QWidgetAction>
#include <utility>

namespace zrqrybld {

void ChooseDay(QWidget& field, QDate day, std::function<void(QDate)> taken) {
  auto* popup = new QMenu(&field);
  popup->setAttribute(Qt::WA_DeleteOnClose);
  auto* calendar = new QCalendarWidget;
  if (day.isValid()) calendar->setSelectedDate(day);
  auto* holder = new QWidgetAction(popup);
  holder->setDefaultWidget(calendar);
  popup->addAction(holder);
  const auto take = [popup, taken = std::move(taken)](QDate chosen) {
    popup->close();
    taken(chosen);
  };
  QObject::connect(calendar, &QCalendarWidget::clicked, popup, take);
  QObject::connect(calendar, &QCalendarWidget::activated, popup, take);
  popup->popup(field.mapToGlobal(QPoint(0, field.height())));
  calendar->setFocus(Qt::PopupFocusReason);  // for any other the field would end its edit
}

}  // namespace zrqrybld
