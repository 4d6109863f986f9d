#include "zrqrybld/adapters/web/web_text_area.h"

#include <algorithm>
#include <utility>

#include "zrqrybld/adapters/web/fields.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/expression/expression_builder.h"
#include "zrqrybld/platform/input.h"
#include "zrqrybld/sql/brackets.h"
#include "zrqrybld/sql/highlighting.h"

namespace zrqrybld {
namespace {

std::string WithCrLf(std::string_view text) {
  std::string lines;
  lines.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\n' && (i == 0 || text[i - 1] != '\r')) lines += '\r';
    lines += text[i];
  }
  return lines;
}

std::string WithLf(std::string_view text) {
  std::string lines(text);
  std::erase(lines, '\r');
  return lines;
}

// Counts a character of the library's text in units of the element's.
int UnitsOf(char32_t character) { return character == '\r' ? 0 : character > 0xFFFF ? 2 : 1; }

}  // namespace

void WebTextArea::Suggest(Ref<qbIntelliList> list) {
  typing_ = std::make_unique<PredictiveTyping>(static_cast<SuggestedText&>(*this), std::move(list));
  links_.push_back(list_->Chosen.Connect([this](std::int32_t index) { typing_->List()->Accept(index); }));
}

void WebTextArea::CheckBy(std::function<std::optional<ExpressionFault>(const std::string& text)> check) {
  links_.push_back(Edited.Connect([this, check = std::move(check)] {
    const std::optional<ExpressionFault> fault = check(text_);
    SetRemarks(fault ? std::vector{fault->message} : std::vector<std::string>());
    if (!fault || text_.empty()) return;
    std::size_t at = std::min(fault->offset, text_.size() - 1);  // behind the end nothing can be marked
    while (at > 0 && (text_[at] & 0xC0) == 0x80) --at;
    SetFault(at, 1);
  }));
}

void WebTextArea::Insert(const frmExpressionBuilder& builder) {
  const TextRange selected = Selection();
  if (typing_) typing_->Write(builder.Insertion(text_, selected.start, selected.start + selected.length));
}

std::size_t WebTextArea::ByteOf(int unit) const {
  std::size_t at = 0;
  while (unit > 0 && at < text_.size()) unit -= UnitsOf(DecodeUtf8(text_, at));
  return at;
}

int WebTextArea::UnitOf(std::size_t byte) const {
  int units = 0;
  for (std::size_t at = 0; at < std::min(byte, text_.size());) units += UnitsOf(DecodeUtf8(text_, at));
  return units;
}

// --- What the page tells ---

void WebTextArea::Input(std::string_view text, int start, int length, bool typed) {
  text_ = WithCrLf(text);
  start_ = start;
  length_ = length;
  Edited.Raise();
  if (typing_ && !readOnly_) typing_->OnEdited(typed);
}

void WebTextArea::SelectionIs(int start, int length) {
  if (start_ == start && length_ == length) return;
  start_ = start;
  length_ = length;
  if (typing_) typing_->OnCaretMoved();
}

bool WebTextArea::OnKey(const KeyEvent& key, bool down) {
  std::int32_t code = key.keyCode;
  if (!down) {
    if (code != 0) KeyUp.Raise(code, key.shift);
    return false;
  }
  if (typing_ && !readOnly_ && typing_->OnKeyDown(key)) return true;
  if (code != 0) KeyDown.Raise(code, key.shift);
  if (key.keyCode != 0 && code == 0) return true;
  std::string typed;
  for (std::size_t at = 0; at < key.text.size();) {
    char32_t character = DecodeUtf8(key.text, at);
    KeyPress.Raise(character);
    if (character != 0) AppendUtf8(typed, character);
  }
  if (typed == key.text) return false;
  if (!typed.empty() && !readOnly_) zrp_area_replace(Number(), start_, length_, typed.data(), LengthOf(typed));
  return true;
}

void WebTextArea::FocusIs(bool focused) {
  if (typing_ && focused) typing_->List()->Prepare();
  if (typing_ && !focused) typing_->List()->Close();
  if (!focused) Left.Raise();
}

void WebTextArea::RunCommand(std::size_t command) {
  if (command >= commands_.size()) return;
  const auto run = commands_[command].run;  // it may take the commands away
  run();
}

std::string WebTextArea::Highlighting() const {
  std::string pieces;
  std::size_t at = 0;
  int units = 0;
  const auto unitAt = [&](std::size_t byte) {  // pieces come in their order: each character is looked at once
    while (at < byte && at < text_.size()) units += UnitsOf(DecodeUtf8(text_, at));
    return units;
  };
  for (const TextSpan& span : HighlightSql(text_)) {
    const int start = unitAt(span.start);
    const int end = unitAt(span.start + span.length);
    pieces += std::to_string(start) + ' ' + std::to_string(end - start) + ' ' +
              std::to_string(static_cast<int>(span.role)) + ' ';
  }
  return pieces;
}

std::string WebTextArea::Brackets() const {
  if (length_ != 0) return {};
  const std::size_t caret = ByteOf(start_);
  std::string alone;
  for (const std::size_t at : {caret, caret - 1}) {
    if (at >= text_.size() || std::string_view("(){}").find(text_[at]) == std::string_view::npos) continue;
    const std::string place = std::to_string(UnitOf(at));
    if (const auto pair = MatchingBrackets(text_, at)) return place + ' ' + std::to_string(UnitOf(pair->second));
    const std::vector<TextSpan> spans = HighlightSql(text_);
    const bool isText = std::ranges::any_of(
        spans, [&](const TextSpan& span) { return span.start <= at && at < span.start + span.length; });
    if (alone.empty() && !isText) alone = place;
  }
  return alone;
}

// --- TextArea ---

void WebTextArea::SetText(std::string_view text) {
  text_ = WithCrLf(text);
  const std::string shown = WithLf(text_);
  zrp_area_set(Number(), shown.data(), LengthOf(shown));
}

void WebTextArea::SetReadOnly(bool readOnly) {
  readOnly_ = readOnly;
  zrp_area_read_only(Number(), readOnly);
}

void WebTextArea::SetRemarks(const std::vector<std::string>& remarks) {
  const std::string fields = Packed(remarks);
  zrp_area_remarks(Number(), fields.data(), LengthOf(fields));
}

void WebTextArea::SetFault(std::size_t offset, std::size_t length) {
  const int start = UnitOf(offset);
  zrp_area_fault(Number(), start, UnitOf(offset + length) - start);
}

void WebTextArea::SetCommands(std::vector<TextCommand> commands) {
  commands_ = std::move(commands);
  Fields captions;
  for (const TextCommand& command : commands_) captions.push_back(command.caption);
  const std::string fields = Packed(captions);
  zrp_area_commands(Number(), fields.data(), LengthOf(fields));
}

// --- For predictive text ---

TextRange WebTextArea::Selection() const {
  const std::size_t start = ByteOf(start_);
  return {start, ByteOf(start_ + length_) - start};
}

void WebTextArea::Select(TextRange part) {
  start_ = UnitOf(part.start);
  length_ = UnitOf(part.start + part.length) - start_;
  zrp_area_select(Number(), start_, length_);
}

// The element tells the new text by `Input` before this returns.
void WebTextArea::Replace(TextRange part, const std::string& text) {
  const int start = UnitOf(part.start);
  const std::string written = WithLf(text);
  zrp_area_replace(Number(), start, UnitOf(part.start + part.length) - start, written.data(), LengthOf(written));
}

void WebTextArea::ShowList(const qbIntelliList& list) {
  if (!list.IsOpen()) {
    list_->Close();
  } else {
    list_->OpenAt(UnitOf(list.From()), list.Entries(), static_cast<std::int32_t>(list.Selected()));
  }
}

}  // namespace zrqrybld
