// PredictiveText: the list of predictive text at the caret of a text area.
//
// It hands the keys to a `qbIntelliList`, shows what that holds below the caret, and writes what is taken. The fields
// of what was written are stepped through with Tab and Shift+Tab.
#pragma once

#include <QListView>
#include <QObject>
#include <QTextCursor>
#include <cstddef>
#include <utility>
#include <vector>

#include "adapters/qt/qt_text_area.h"
#include "expression/intelli_list.h"

class QStandardItemModel;

namespace zrqrybld {

/// The list itself: a window that never takes the keyboard.
class SuggestionPopup : public QListView {
  Q_OBJECT

 public:
  explicit SuggestionPopup(QWidget* editor);

  /// Shows the entries below a rectangle of the screen, or above it where there is no room; -1 selects none.
  void ShowAt(const QRect& caret, const std::vector<Suggestion>& items, std::ptrdiff_t selected);

 private:
  QStandardItemModel* model_;
};

/// Lives as long as its text area.
class PredictiveText : public QObject {
  Q_OBJECT

 public:
  PredictiveText(QtTextArea& area, Ref<qbIntelliList> list);
  ~PredictiveText() override;

  const SuggestionPopup& Popup() const { return *popup_; }

  /// The selected part of the text area's text, in bytes.
  std::pair<std::size_t, std::size_t> Selection() const;
  /// Writes a text with fields in place of another and selects the first field.
  void Write(const TextReplacement& replacement);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  bool OnKey(QKeyEvent& event);
  void OnEdited();
  void OnCaretMoved();
  void ShowList();
  bool StepToField(int direction);
  void EndFields() { fields_.clear(); }

  QtTextArea& area_;
  Ref<qbIntelliList> list_;
  SuggestionPopup* popup_;
  std::vector<EventConnection> links_;
  int added_ = 0;  // characters of the latest change
  int removed_ = 0;
  int caret_ = 0;  // where the list was opened or last followed
  bool writing_ = false;
  std::vector<QTextCursor> fields_;  // what is still to be filled in; the last one is the end of the whole
  std::size_t field_ = 0;
};

}  // namespace zrqrybld
