// PredictiveText: the list of predictive text at the caret of a text area.
//
// What it does is `PredictiveTyping`; this translates between it and Qt's text area.
#pragma once

#include <QObject>
#include <string>
#include <vector>

#include "zrqrybld/adapters/qt/qt_editors.h"
#include "zrqrybld/adapters/qt/qt_text_area.h"
#include "zrqrybld/expression/predictive_typing.h"

namespace zrqrybld {

/// Lives as long as its text area.
class PredictiveText : public QObject, private SuggestedText {
  Q_OBJECT

 public:
  PredictiveText(QtTextArea& area, Ref<qbIntelliList> list);
  ~PredictiveText() override;

  /// The selected part of the text area's text, in bytes.
  TextRange Selection() const override;
  /// Writes a text with fields in place of another and selects the first field.
  void Write(const TextReplacement& replacement) { typing_.Write(replacement); }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  std::string Text() const override { return area_.Text(); }
  void Select(TextRange part) override;
  void Replace(TextRange part, const std::string& text) override;
  void ShowList(const qbIntelliList& list) override;
  QTextCursor CursorOn(TextRange part) const;

  QtTextArea& area_;
  QtMetrics metrics_;
  QtPopupList popup_;
  PredictiveTyping typing_;
  std::vector<EventConnection> links_;
  int added_ = 0;  // characters of the latest change
  int removed_ = 0;
};

}  // namespace zrqrybld
