// LineSuggestions: the list of predictive text at the caret of a line edit.
//
// What it does is `PredictiveTyping`; this translates between it and Qt's line edit.
#pragma once

#include <QLineEdit>
#include <QObject>
#include <string>
#include <vector>

#include "zrqrybld/adapters/qt/qt_editors.h"
#include "zrqrybld/expression/predictive_typing.h"

namespace zrqrybld {

/// Lives as long as its line edit, which owns it.
class LineSuggestions : public QObject, private SuggestedText {
  Q_OBJECT

 public:
  LineSuggestions(QLineEdit& line, Ref<qbIntelliList> list);
  ~LineSuggestions() override;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  std::string Text() const override;
  TextRange Selection() const override;
  void Select(TextRange part) override;
  void Replace(TextRange part, const std::string& text) override;
  void ShowList(const qbIntelliList& list) override;

  QLineEdit& line_;
  QtMetrics metrics_;
  EventBoundary boundary_;
  QtPopupList popup_;
  PredictiveTyping typing_;
  std::vector<EventConnection> links_;
  bool typed_ = false;  // the key that is going down types something
};

}  // namespace zrqrybld
