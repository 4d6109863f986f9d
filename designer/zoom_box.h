// ZoomBox: the button that tells how large the diagram is shown and offers other sizes.
#pragma once

#include <QPointer>
#include <QToolButton>

#include "designer/command_actions.h"
#include "zrqrybld/adapters/qt/control_widget.h"
#include "zrqrybld/diagram/diagram_pane.h"

namespace zrqrybld {

class ZoomBox : public QToolButton {
  Q_OBJECT

 public:
  /// The texts must outlive it, diagram and view until others are followed.
  ZoomBox(qbDiagramPane& diagram, ControlWidget& view, const CommandActions& commands, const TextSource& texts);

  /// Tells of another diagram from now on.
  void Follow(qbDiagramPane& diagram, ControlWidget& view);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void ShowZoom();

  qbDiagramPane* diagram_;
  QPointer<ControlWidget> view_;
};

}  // namespace zrqrybld
