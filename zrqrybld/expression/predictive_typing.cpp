#include "zrqrybld/expression/predictive_typing.h"

#include <algorithm>
#include <utility>

#include "zrqrybld/base/scoped_value.h"
#include "zrqrybld/platform/commands.h"
#include "zrqrybld/platform/input.h"

namespace zrqrybld {
namespace {

// Keys that take the caret away from what is being completed.
bool MovesCaret(std::int32_t keyCode) {
  return keyCode == KeyCodeLeft || keyCode == KeyCodeRight || keyCode == KeyCodeHome || keyCode == KeyCodeEnd;
}

}  // namespace

PredictiveTyping::PredictiveTyping(SuggestedText& editor, Ref<qbIntelliList> list)
    : editor_(editor), list_(std::move(list)) {
  links_.push_back(list_->Changed.Connect([this] { editor_.ShowList(*list_); }));
  links_.push_back(list_->Accepted.Connect([this](const TextReplacement& taken) { Write(taken); }));
}

std::size_t PredictiveTyping::Caret() const {
  const TextRange selection = editor_.Selection();
  return selection.start + selection.length;
}

// --- Typing ---

bool PredictiveTyping::OnKeyDown(const KeyEvent& event) {
  if (Asks(event, Command::Suggest)) {
    caret_ = Caret();
    list_->Prepare();
    list_->Open(editor_.Text(), caret_);
    return true;
  }
  if (list_->OnKeyDown(event)) return true;
  if (MovesCaret(event.keyCode)) list_->Close();
  if (fields_.empty()) return false;
  if (Asks(event, Command::NextStop)) return StepToField(1);
  if (Asks(event, Command::PreviousStop)) return StepToField(-1);
  if (event.keyCode != KeyCodeEscape) return false;
  fields_.clear();
  return true;
}

void PredictiveTyping::OnEdited(bool typed) {
  FollowText();
  if (writing_) return;
  caret_ = Caret();
  // A paste is nothing that one is about to complete.
  list_->OnTyped(editor_.Text(), caret_, typed);
}

void PredictiveTyping::OnCaretMoved() {
  if (writing_ || !WantsEscape()) return;
  if (list_->IsOpen() && editor_.Selection() != TextRange{caret_, 0}) list_->Close();
  if (fields_.empty()) return;
  FollowText();
  if (!IsInFields()) fields_.clear();
}

// --- What is written ---

void PredictiveTyping::Write(const TextReplacement& replacement) {
  const ScopedValue writing(writing_, true);
  const std::size_t start = replacement.from;
  editor_.Replace({start, replacement.to - start}, replacement.text.text);
  FollowText();
  if (replacement.text.fields.empty()) return;
  fields_.clear();
  for (const TextRange& field : replacement.text.fields) fields_.push_back({start + field.start, field.length});
  fields_.push_back({start + replacement.text.text.size(), 0});
  field_ = 0;
  text_ = editor_.Text();
  editor_.Select(fields_.front());
}

void PredictiveTyping::FollowText() {
  if (fields_.empty()) return;
  std::string text = editor_.Text();
  if (text == text_) return;
  MoveFields(fields_, field_, text_, text);
  text_ = std::move(text);
}

bool PredictiveTyping::IsInFields() const {
  const std::size_t caret = Caret();
  return caret >= fields_.front().start && caret <= fields_.back().start + fields_.back().length;
}

// Behind the last field stands the end of the whole; from there Tab is a tab again.
bool PredictiveTyping::StepToField(int direction) {
  FollowText();
  if (!IsInFields()) fields_.clear();
  if (fields_.empty() || (direction < 0 && field_ == 0)) return false;
  field_ = direction > 0 ? field_ + 1 : field_ - 1;
  const ScopedValue writing(writing_, true);
  editor_.Select(fields_[field_]);
  if (field_ + 1 == fields_.size()) fields_.clear();
  return true;
}

void MoveFields(std::vector<TextRange>& fields, std::size_t current, std::string_view before, std::string_view after) {
  // What has changed: everything between the common beginning and the common end.
  const std::size_t shorter = std::min(before.size(), after.size());
  const auto same = std::mismatch(before.begin(), before.begin() + static_cast<std::ptrdiff_t>(shorter), after.begin());
  const auto from = static_cast<std::size_t>(same.first - before.begin());
  std::size_t tail = 0;
  while (tail < shorter - from && before[before.size() - 1 - tail] == after[after.size() - 1 - tail]) ++tail;
  const std::size_t oldEnd = before.size() - tail;
  const std::size_t newEnd = after.size() - tail;
  for (std::size_t i = 0; i < fields.size(); ++i) {
    std::size_t start = fields[i].start;
    std::size_t end = start + fields[i].length;
    const bool movesStart = start > from || (start == oldEnd && i != current);
    if (start >= oldEnd && movesStart) {
      start = start - oldEnd + newEnd;
    } else if (start > from) {
      start = from;
    }
    if (end >= oldEnd) {
      end = end - oldEnd + newEnd;
    } else if (end > from) {
      end = newEnd;
    }
    fields[i] = {start, std::max(start, end) - start};
  }
}

}  // namespace zrqrybld
