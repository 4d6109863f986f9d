// ZoomBox: the button that tells how large the diagram is shown and offers other sizes.
#pragma once

#include <QToolButton>

#include "designer/command_actions.h"
#include "zrqrybld/adapters/qt/control_widget.h"
#include "zrqrybld/diagram/diagram_pane.h"

namespace zrqrybld {

class ZoomBox : public QToolButton {
  Q_OBJECT

 public:
  /// All must outlive it, but for the commands.
  ZoomBox(qbDiagramPane& diagram, ControlWidget& view, const CommandActions& commands, const TextSource& texts);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  qbDiagramPane& diagram_;
};

}  // namespace zrqrybld
