// DiagramView: what the model asks of the pane that shows it.
//
// Creating or removing a model object creates or removes its visual object at the same moment, so
// the model and the screen never disagree. The pane implements this; the model knows no pane.
#pragma once

#include <vector>

#include "zrqrybld/base/object.h"

namespace zrqrybld {

class qbEntityList;
class qbLine;
class qbRelationship;
struct QueryContext;

class DiagramView {
 public:
  DiagramView() = default;
  DiagramView(const DiagramView&) = delete;
  DiagramView& operator=(const DiagramView&) = delete;
  virtual ~DiagramView() = default;

  /// Makes a box, at the place where the next box goes; it is not visible yet.
  virtual Ref<qbEntityList> LoadBox() = 0;
  /// Whether the box is one of the view's.
  virtual bool HasBox(const qbEntityList& box) const = 0;
  /// The box has its entity and caption: show it.
  virtual void ShowBox(const Ref<qbEntityList>& box) = 0;
  virtual void UnloadBox(const Ref<qbEntityList>& box) = 0;

  /// Makes the line of a join between two boxes.
  virtual Ref<qbLine> LoadLine(const Ref<qbRelationship>& relationship, const Ref<qbEntityList>& source,
                               const Ref<qbEntityList>& target) = 0;
  virtual void UnloadLine(const Ref<qbLine>& line) = 0;
  /// The lines of all joins that start or end at the box.
  virtual std::vector<Ref<qbLine>> LinesAt(const qbEntityList& box) const = 0;

  /// Gives the box the size that fits its rows; when it then covers another box, it is placed anew.
  virtual void FitBox(const Ref<qbEntityList>& box) = 0;

  virtual Ref<Object> SelectedObject() const = 0;
  virtual void DropSelection() = 0;

  /// Whether new entities show a minimise button.
  virtual bool EntityMinimizeButton() const = 0;

  /// What the designer shares; nothing while the diagram stands alone.
  virtual Ref<QueryContext> Context() const = 0;
};

}  // namespace zrqrybld
