#include "zrqrybld/expression/intelli_list.h"

#include <algorithm>
#include <utility>

#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_expression.h"
#include "zrqrybld/expression/column_values.h"
#include "zrqrybld/expression/schema_cache.h"
#include "zrqrybld/host/context_link.h"
#include "zrqrybld/host/design_queries.h"
#include "zrqrybld/host/source_context.h"
#include "zrqrybld/platform/input.h"
#include "zrqrybld/sql/parameters.h"
#include "zrqrybld/sql/query_snapshot.h"
#include "zrqrybld/sql/source_rules.h"

namespace zrqrybld {
namespace {

constexpr std::ptrdiff_t kPage = 8;
constexpr std::size_t kSureOfAWord = 2;  // letters after which a word is meant where a new name may stand as well

// Whether the text is written already: the list would only be in the way of Enter.
bool IsWritten(const SuggestionList& list) {
  return !list.items.empty() && EqualsNoCase(list.items.front().insert, list.typed) &&
         std::ranges::none_of(list.items.begin() + 1, list.items.end(), [&](const Suggestion& item) {
           return FoldCase(item.label).starts_with(FoldCase(list.typed));
         });
}

// A part of the query's tables.
class SomeTables final : public SourceFacts {
 public:
  SomeTables(SourceFacts& all, const std::vector<std::string>& captions) : all_(all) {
    for (const QueryTableFacts& table : all.QueryTables()) {
      if (std::ranges::find(captions, table.caption) != captions.end()) queryTables_.push_back(table);
    }
  }
  const std::vector<const TableFacts*>& Tables() const override { return all_.Tables(); }
  const std::vector<QueryTableFacts>& QueryTables() const override { return queryTables_; }
  const TableFacts* Find(const std::vector<std::string>& parts) override { return all_.Find(parts); }

 private:
  SourceFacts& all_;
  std::vector<QueryTableFacts> queryTables_;
};

}  // namespace

Ref<qbIntelliList> qbIntelliList::Create(const Ref<QueryContext>& context, EditedText kind) {
  return Ref<qbIntelliList>(new qbIntelliList(context, kind));
}

void qbIntelliList::Prepare() {
  const Ref<QueryContext> context = context_.lock();
  if (!context) return;
  context->design.Schema()->Refresh();
  markers_ = QueryMarkers(context->design.Snapshot());
}

void qbIntelliList::SetValues(std::shared_ptr<ColumnValues> values) {
  values_ = std::move(values);
  arrived_ = values_ ? EventConnection(values_->Arrived.Connect([this] { ValuesArrived(); })) : EventConnection();
}

SuggestionList qbIntelliList::Ask(std::string_view text, std::size_t caret) {
  SuggestionList list = AskWords(text, caret);
  showsValues_ = false;
  if (wanted_) {
    wanted_ = Wanted{std::string(text), caret};
    AddValues(list, text, caret);
  }
  return list;
}

// Values come before words, and alone where the two would replace other parts of the text.
void qbIntelliList::AddValues(SuggestionList& list, std::string_view text, std::size_t caret) {
  const Ref<QueryContext> context = context_.lock();
  const std::optional<ValuePlace> place = FindValuePlace(text, caret);
  if (!context || !place) return;
  std::vector<Suggestion> values = values_->Fitting(*place);
  if (values.empty()) return;
  for (Suggestion& value : values) {
    if (value.asksDate) value.label = context->source.Say(text::ChooseDate);
  }
  if (list.from == place->from && list.to == place->to) std::ranges::move(list.items, std::back_inserter(values));
  if (values.size() > kMostSuggestions) values.resize(kMostSuggestions);
  showsValues_ = true;
  list.from = place->from;
  list.to = place->to;
  list.typed = place->typed;
  list.items = std::move(values);
}

// The entry that somebody has gone to stays the one that stands out.
void qbIntelliList::ValuesArrived() {
  if (!wanted_) return;
  const Wanted wanted = *wanted_;
  const std::string chosen = selected_ < 0 ? "" : list_.items[static_cast<std::size_t>(selected_)].insert;
  SuggestionList list = Ask(wanted.text, wanted.caret);
  const auto place = std::ranges::find(list.items, chosen, &Suggestion::insert);
  const bool stays = selected_ >= 0 && place != list.items.end();
  const auto selected = stays ? place - list.items.begin() : 0;
  Show(std::move(list), selected);
}

SuggestionList qbIntelliList::AskWords(std::string_view text, std::size_t caret) {
  const Ref<QueryContext> context = context_.lock();
  if (!context) return {};
  const std::shared_ptr<SchemaCache> facts = context->design.Schema();
  facts->Refresh();
  Vocabulary words = ReadVocabulary(*context);
  words.recent = facts->Recent();
  const std::string inUse = context->source.Say(text::InUse);
  AddMarkers(words, markers_, inUse);
  // A marker that the caret stands in is not complete.
  AddMarkers(words, ParameterMarkers(text.substr(0, caret)), inUse);
  AddMarkers(words, ParameterMarkers(text.substr(caret)), inUse);
  const NameRules names = CurrentNameRules(*context);
  if (!tables_) return Suggest({text, caret, kind_, *facts, words, names});
  SomeTables some(*facts, *tables_);
  return Suggest({text, caret, kind_, some, words, names});
}

void qbIntelliList::OnTyped(std::string_view text, std::size_t caret, bool inserted) {
  if (!inserted && !IsOpen()) return;
  SuggestionList list = Ask(text, caret);
  const bool wanted = !list.typed.empty() || (list.member && (inserted || IsOpen()));
  if (!wanted || IsWritten(list)) {
    Close();
    return;
  }
  // A condition may hold a value as it is typed, without quotes: nothing is taken there without being chosen, or asked
  // for.
  const bool mayBeValue = kind_ == EditedText::Criterion && !list.member && !showsValues_;
  const bool select = !mayBeValue && (!list.mayBeName || list.typed.size() >= kSureOfAWord);
  Show(std::move(list), select ? 0 : -1);
}

// While values are on their way nothing stands out: they would come in under the hand that takes the first entry.
void qbIntelliList::Open(std::string_view text, std::size_t caret) {
  wanted_.reset();
  if (values_) {
    values_->Want();
    wanted_.emplace();
  }
  Show(Ask(text, caret), values_ && values_->IsWaiting() ? -1 : 0);
}

void qbIntelliList::Close() {
  wanted_.reset();
  if (IsOpen()) Show({}, -1);
}

void qbIntelliList::Show(SuggestionList list, std::ptrdiff_t selected) {
  const bool wasOpen = IsOpen();
  list_ = std::move(list);
  selected_ = IsOpen() ? selected : -1;
  if (wasOpen || IsOpen()) Changed.Raise();
}

bool qbIntelliList::MoveTo(std::ptrdiff_t index) {
  selected_ = std::clamp<std::ptrdiff_t>(index, 0, std::ssize(list_.items) - 1);
  Changed.Raise();
  return true;
}

bool qbIntelliList::OnKeyDown(const KeyEvent& event) {
  if (!IsOpen() || (event.shift & (ShiftCtrl | ShiftAlt)) != 0) return false;
  switch (event.keyCode) {
    case KeyCodeDown:
      return MoveTo(selected_ + 1);
    case KeyCodeUp:
      return MoveTo(selected_ - 1);
    case KeyCodePageDown:
      return MoveTo(selected_ + kPage);
    case KeyCodePageUp:
      return MoveTo(selected_ - kPage);
    case KeyCodeEscape:
      Close();
      return true;
    case KeyCodeEnter:
    case KeyCodeTab:
      if (selected_ < 0 || (event.shift & ShiftShift) != 0) {
        Close();
        return false;
      }
      Accept(selected_);
      return true;
    default:
      return false;
  }
}

std::vector<ListEntry> qbIntelliList::Entries() const {
  std::vector<ListEntry> entries;
  for (const Suggestion& item : list_.items) entries.push_back({item.label, item.detail, item.kind});
  return entries;
}

void qbIntelliList::Accept(std::ptrdiff_t index) {
  if (index < 0 || index >= std::ssize(list_.items)) return;
  const Suggestion& item = list_.items[static_cast<std::size_t>(index)];
  if (item.asksDate) return ChooseDate(std::string(item.insert));  // the entry goes with the list
  const TextReplacement taken{list_.from, list_.to, ReadTemplate(item.insert)};
  // Columns keep their order: who has just taken one wants another.
  const bool returns = item.kind != SuggestionKind::Text && item.kind != SuggestionKind::Column;
  const Ref<QueryContext> context = context_.lock();
  if (context && returns) context->design.Schema()->NoteTaken(item.label);
  Close();
  Accepted.Raise(taken);
}

void qbIntelliList::ChooseDate(const std::string& now) {
  const std::size_t from = list_.from;
  const std::size_t to = list_.to;
  Close();
  values_->ChooseDate(now, [weak = weak_from_this(), from, to](const std::string& literal) {
    const auto self = std::static_pointer_cast<qbIntelliList>(weak.lock());
    if (self) self->Accepted.Raise({from, to, {literal, {}}});
  });
}

}  // namespace zrqrybld
