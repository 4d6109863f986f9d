// RemarkLine: one line below a text for what there is to say about it, and buttons for what can be done.
#pragma once

#include <QStringList>
#include <QWidget>
#include <string>
#include <vector>

#include "zrqrybld/adapters/qt/event_boundary.h"
#include "zrqrybld/adapters/qt/theme.h"
#include "zrqrybld/base/phrase.h"
#include "zrqrybld/platform/editors.h"

class QPushButton;

namespace zrqrybld {

class RemarkLine final : public QWidget {
 public:
  /// Hidden until there is something to say. What is given must outlive it; buttons run inside the boundary.
  RemarkLine(QWidget& text, const Theme& theme, const EventBoundary& boundary);

  /// Shows the first sentence and says how many more there are; the tool tip has all.
  void SetRemarks(const std::vector<std::string>& remarks);
  /// The buttons stand at the right end.
  void SetCommands(std::vector<TextCommand> commands);
  /// The language of "and so many more"; it must outlive the line.
  void SetTexts(const TextSource& texts) { texts_ = &texts; }
  /// How high the line is, in pixels; 0 while there is neither remark nor button.
  int Height() const;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  void PlaceButtons();

  const Theme& theme_;
  const EventBoundary& boundary_;
  const TextSource* texts_ = &EnglishTexts();
  QStringList remarks_;
  std::vector<QPushButton*> buttons_;
  int buttonsLeft_ = 0;
};

}  // namespace zrqrybld
