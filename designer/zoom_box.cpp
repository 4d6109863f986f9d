#include "designer/zoom_box.h"

#include <QEvent>
#include <QMenu>

#include "zrqrybld/adapters/qt/say.h"
#include "zrqrybld/base/texts_designer.h"

namespace zrqrybld {
namespace {

QString Percent(double zoom) { return QString::number(qRound(zoom * 100)) + QStringLiteral(" %"); }

}  // namespace

ZoomBox::ZoomBox(qbDiagramPane& diagram, ControlWidget& view, const CommandActions& commands, const TextSource& texts) {
  setToolTip(Say(texts, text::ZoomTip));
  setAccessibleName(Say(texts, text::ZoomName));
  setPopupMode(InstantPopup);
  setMinimumWidth(fontMetrics().horizontalAdvance(Percent(10)) + 24);  // the bar does not move while one zooms
  auto* menu = new QMenu(this);
  for (const double zoom : {0.5, 0.75, 1.0, 1.5, 2.0}) {
    menu->addAction(Percent(zoom), this, [this, zoom] {
      const PixelSize size = view_->ViewSize();
      diagram_->SetZoom(zoom, {size.width / 2, size.height / 2});
    });
  }
  menu->addSeparator();
  menu->addAction(commands.Of(Command::FitToWindow));
  setMenu(menu);
  Follow(diagram, view);
}

void ZoomBox::Follow(qbDiagramPane& diagram, ControlWidget& view) {
  if (view_) view_->viewport()->removeEventFilter(this);
  diagram_ = &diagram;
  view_ = &view;
  // Keys, wheel, fitting and undo all zoom; what they have in common is that the diagram is painted anew.
  view.viewport()->installEventFilter(this);
  ShowZoom();
}

void ZoomBox::ShowZoom() {
  if (const QString zoom = Percent(diagram_->Zoom()); text() != zoom) setText(zoom);
}

bool ZoomBox::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::Paint) ShowZoom();
  return QToolButton::eventFilter(watched, event);
}

}  // namespace zrqrybld
