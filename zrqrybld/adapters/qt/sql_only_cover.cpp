#include "zrqrybld/adapters/qt/sql_only_cover.h"

#include <QEvent>
#include <QPainter>

#include "zrqrybld/adapters/qt/say.h"
#include "zrqrybld/base/texts_sql.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/sql/sql_pane.h"

namespace zrqrybld {
namespace {

constexpr int kVeil = 176;  // of 255: what lies below is still recognised
constexpr int kPadding = 12;

}  // namespace

SqlOnlyCover::SqlOnlyCover(QWidget& pane, qbQueryBuilder& hub, bool saysWhy)
    : QWidget(&pane), pane_(pane), hub_(hub), saysWhy_(saysWhy) {
  hide();
  pane.installEventFilter(this);
  link_ = hub.SQLPane()->SqlOnlyChanged.Connect([this] { Follow(); });
}

void SqlOnlyCover::Follow() {
  const bool covers = hub_.SQLPane() && hub_.SQLPane()->IsSqlOnly();
  pane_.setEnabled(!covers);
  setGeometry(pane_.rect());
  setVisible(covers);
  raise();
}

bool SqlOnlyCover::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::Resize) setGeometry(pane_.rect());
  return QWidget::eventFilter(watched, event);
}

void SqlOnlyCover::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  QColor veil = palette().color(QPalette::Active, QPalette::Window);
  veil.setAlpha(kVeil);
  painter.fillRect(rect(), veil);
  if (!saysWhy_) return;
  const QString words = Say(*hub_.Texts(), text::CannotBeDrawn);
  const QRect inner = rect().adjusted(kPadding, kPadding, -kPadding, -kPadding);
  QRect plate = painter.boundingRect(inner, Qt::AlignCenter | Qt::TextWordWrap, words);
  plate.adjust(-kPadding, -kPadding / 2, kPadding, kPadding / 2);
  painter.setPen(Qt::NoPen);
  painter.setBrush(palette().color(QPalette::Active, QPalette::ToolTipBase));
  painter.setRenderHint(QPainter::Antialiasing);
  painter.drawRoundedRect(plate, kPadding / 3, kPadding / 3);
  painter.setPen(palette().color(QPalette::Active, QPalette::ToolTipText));
  painter.drawText(inner, Qt::AlignCenter | Qt::TextWordWrap, words);
}

}  // namespace zrqrybld
