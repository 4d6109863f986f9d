// PredictiveTyping: what happens between an editor and its list of predictive text.
//
// The editor says what was typed and offers its keys; what is taken from the list is written into it, and the fields of
// what was written are stepped through with Tab and Shift+Tab. How the editor does its part stands behind
// `SuggestedText`, so the SQL pane's text, the expression windows and the cells of the grid behave the same.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "zrqrybld/base/event.h"
#include "zrqrybld/base/export.h"
#include "zrqrybld/expression/intelli_list.h"

namespace zrqrybld {

struct KeyEvent;

/// An editor as predictive text sees it. All places are bytes of its text.
class SuggestedText {
 public:
  SuggestedText() = default;
  SuggestedText(const SuggestedText&) = delete;
  SuggestedText& operator=(const SuggestedText&) = delete;
  virtual ~SuggestedText() = default;

  /// The whole text as it is now.
  virtual std::string Text() const = 0;
  /// What is selected; of length 0 where the caret stands when nothing is.
  virtual TextRange Selection() const = 0;
  /// Selects a part of the text.
  virtual void Select(TextRange part) = 0;
  /// Replaces a part, as one step of the editor's own undo; the caret stands behind what is new.
  virtual void Replace(TextRange part, const std::string& text) = 0;
  /// Shows what the list holds now, where the text begins that it would replace, or hides it.
  virtual void ShowList(const qbIntelliList& list) = 0;
};

class ZRQRYBLD_API PredictiveTyping {
 public:
  /// The editor must outlive this.
  PredictiveTyping(SuggestedText& editor, Ref<qbIntelliList> list);

  const Ref<qbIntelliList>& List() const { return list_; }

  /// A key, before the editor acts on it. Returns whether it was used here: Ctrl+Space, the keys of the open list, and
  /// Tab and Esc while there are fields to fill in.
  bool OnKeyDown(const KeyEvent& event);
  /// The user has changed the text; `typed` says whether by typing a character.
  void OnEdited(bool typed);
  /// The caret has moved, or something was selected, for any reason.
  void OnCaretMoved();

  /// Writes a text with fields in place of another and selects the first field.
  void Write(const TextReplacement& replacement);

  /// Whether Esc would be used here.
  bool WantsEscape() const { return list_->IsOpen() || !fields_.empty(); }

 private:
  std::size_t Caret() const;
  void FollowText();
  bool IsInFields() const;
  bool StepToField(int direction);

  SuggestedText& editor_;
  Ref<qbIntelliList> list_;
  std::vector<EventConnection> links_;
  std::size_t caret_ = 0;  // where the list was opened or last followed
  bool writing_ = false;
  std::vector<TextRange> fields_;  // what is still to be filled in; the last one is the end of the whole
  std::size_t field_ = 0;
  std::string text_;  // what the fields are places in
};

/// Where the fields stand after a text has become another one: what was typed inside the field at `current`, or at its
/// edges, belongs to it.
void MoveFields(std::vector<TextRange>& fields, std::size_t current, std::string_view before, std::string_view after);

}  // namespace zrqrybld
