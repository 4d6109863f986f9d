// qbIntelliList: the list of predictive text at an editor's caret.
//
// It holds what is offered and which entry stands out; the editor tells it what was typed and shows it. It opens by
// itself while a word is typed and behind a dot, and when it is asked for.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "zrqrybld/base/event.h"
#include "zrqrybld/base/export.h"
#include "zrqrybld/base/object.h"
#include "zrqrybld/expression/placeholders.h"
#include "zrqrybld/expression/suggestions.h"

namespace zrqrybld {

class ColumnValues;
struct KeyEvent;
struct QueryContext;

/// A piece of text that takes the place of another; ranges count bytes, those of the fields in the new piece.
struct TextReplacement {
  std::size_t from = 0;
  std::size_t to = 0;
  TextTemplate text;
};

/// One for each editor; the editor owns it.
class ZRQRYBLD_API qbIntelliList final : public Object {
 public:
  /// A list for texts of one kind, closed. It knows nothing once the context is gone.
  static Ref<qbIntelliList> Create(const Ref<QueryContext>& context, EditedText kind);
  std::string_view TypeName() const override { return "qbIntelliList"; }

  /// The list was opened, closed or filled anew, or another entry stands out.
  Event<> Changed;
  /// The user has taken an entry: the editor writes it. Fields are stepped through with Tab.
  Event<const TextReplacement&> Accepted;

  /// The editor has got the keyboard: whatever must be read from the source is read now, not while one types.
  void Prepare();
  /// Only these of the query's tables are offered, by their captions; without a call all are.
  void SetTables(std::vector<std::string> captions) { tables_ = std::move(captions); }
  /// What the criterion's column is compared with; offered when the user asks for the list, as soon as it is known.
  void SetValues(std::shared_ptr<ColumnValues> values);
  /// The user has changed the text; `inserted` says whether characters were typed. Caret and ranges are in bytes.
  void OnTyped(std::string_view text, std::size_t caret, bool inserted);
  /// The user asks for the list. It stays closed when nothing fits.
  void Open(std::string_view text, std::size_t caret);
  void Close();

  /// A key while the editor has the keyboard. Returns whether the list has used it; it uses none while it is closed.
  /// Arrows and page keys move, Enter and Tab accept, Esc closes.
  bool OnKeyDown(const KeyEvent& event);
  /// Takes the entry at an index from 0; nothing when there is none.
  void Accept(std::ptrdiff_t index);

  /// Whether there is something to show, and what: the best first.
  bool IsOpen() const { return !list_.items.empty(); }
  const std::vector<Suggestion>& Items() const { return list_.items; }
  /// The same as a toolkit's list shows it.
  std::vector<ListEntry> Entries() const;
  /// The entry that stands out, from 0; -1 for none: Enter then belongs to the editor.
  std::ptrdiff_t Selected() const { return selected_; }
  /// Where the text begins that an entry replaces, in bytes: the list stands there.
  std::size_t From() const { return list_.from; }

 private:
  qbIntelliList(const Ref<QueryContext>& context, EditedText kind) : context_(context), kind_(kind) {}
  SuggestionList Ask(std::string_view text, std::size_t caret);
  SuggestionList AskWords(std::string_view text, std::size_t caret);
  void AddValues(SuggestionList& list, std::string_view text, std::size_t caret);
  void ValuesArrived();
  void ChooseDate(const std::string& now);
  void Show(SuggestionList list, std::ptrdiff_t selected);
  bool MoveTo(std::ptrdiff_t index);

  WeakRef<QueryContext> context_;
  EditedText kind_;
  std::vector<std::string> markers_;  // of the parameters that the query has
  std::optional<std::vector<std::string>> tables_;
  std::shared_ptr<ColumnValues> values_;
  EventConnection arrived_;
  // What the values are offered for, from when the list is asked for until it closes.
  struct Wanted {
    std::string text;
    std::size_t caret;
  };
  std::optional<Wanted> wanted_;
  bool showsValues_ = false;
  SuggestionList list_;
  std::ptrdiff_t selected_ = -1;
};

}  // namespace zrqrybld
