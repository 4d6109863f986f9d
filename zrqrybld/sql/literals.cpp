#include "zrqrybld/sql/literals.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "zrqrybld/base/text.h"
#include "zrqrybld/platform/schema_fields.h"
#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/lexer.h"
#include "zrqrybld/sql/source_lexer.h"

namespace zrqrybld {
namespace {

bool IsHex(char c) { return IsDigit(c) || (UpperAscii(c) >= 'A' && UpperAscii(c) <= 'F'); }

bool IsDay(const CriteriaContext& context) {
  return context.dataType == static_cast<std::int32_t>(DataTypeCode::Date) ||
         context.dataType == static_cast<std::int32_t>(DataTypeCode::DbDate);
}

// Whether the format has a place for everything that the value has.
bool Fits(const DateTime& value, std::string_view format) {
  return value.hasDate && (!value.hasTime || FormatHasTime(format));
}

// The format by which the source itself reads the dates of this type, as in TO_DATE('...','format'); "" where it has
// none.
std::string_view SourceFormat(const CriteriaContext& context) {
  const std::string_view suffix = context.suffix;
  if (context.prefix.find('(') == std::string::npos || !suffix.starts_with("','") || !suffix.ends_with("')")) return {};
  return suffix.substr(3, suffix.size() - 5);
}

// Whether the type's literal has a word before its quote, as DATE '...' and {d '...'}: such ones are in ISO form.
bool IsNamedLiteral(const CriteriaContext& context) {
  return context.prefix.size() > 1 && context.prefix.back() == '\'' && context.prefix.find('(') == std::string::npos;
}

// Whether dates are in ISO form, because their source has a form and nobody chose another.
bool WritesIso(const CriteriaContext& context) {
  return !context.dateFormatChosen && (IsNamedLiteral(context) || DateForms(context));
}

// The literal of the dialect or of the source; none where the date format decides.
std::optional<std::string> FormedLiteral(const DateTime& value, const CriteriaContext& context) {
  const ValueForms* forms = DateForms(context);
  if (!forms) return std::nullopt;
  if (!value.hasDate) return ReplaceAll(forms->time, "@", FormatDateTime(value, "hh:nn:ss"));
  if (!value.hasTime) return ReplaceAll(forms->date, "@", FormatDateTime(value, "yyyy-mm-dd"));
  return ReplaceAll(forms->timestamp, "@", FormatDateTime(value, "yyyy-mm-dd hh:nn:ss"));
}

// A part that was given is never dropped: what a form has no place for takes the one that has it.
std::string EscapeSequence(const DateTime& value, const CriteriaContext& context) {
  if (IsTimeOfDay(context) && !value.hasDate) return "{ t '" + FormatDateTime(value, "hh:nn:ss") + "' }";
  if (IsDay(context) && !value.hasTime) return "{ d '" + FormatDateTime(value, "yyyy-mm-dd") + "' }";
  return "{ ts '" + FormatDateTime(value, "yyyy-mm-dd hh:nn:ss") + "' }";
}

}  // namespace

std::string TextLiteral(std::string_view value, const CriteriaContext& context, bool usualQuotes) {
  const bool usual = usualQuotes || context.prefix.empty();
  std::string prefix = usual ? "'" : context.prefix;
  const bool escapes = value.find('\\') != std::string_view::npos && BackslashEscapes(prefix, context);
  // Where the source has literals that mean the same in each of its modes, the text does not hang on the mode.
  if (escapes && prefix == "'" && context.reading && context.reading->escapeLiterals) prefix = "E'";
  // What begins with a quote ends with it; figures need no end.
  const std::string closing = EqualsNoCase(prefix, "0x") ? "" : prefix.substr(prefix.size() - 1);
  const std::string suffix = usual || context.suffix.empty() ? closing : context.suffix;
  std::string text = prefix;
  if (prefix.back() == '\'' || prefix.back() == '"') {
    const std::string doubled = ReplaceAll(value, prefix.substr(prefix.size() - 1), std::string(2, prefix.back()));
    text += escapes ? ReplaceAll(doubled, "\\", "\\\\") : doubled;
  } else {
    text += value;
  }
  return text + suffix;
}

bool BackslashEscapes(std::string_view prefix, const CriteriaContext& context) {
  std::optional<TextReading> reading = context.reading;
  if (!reading && context.dialect) reading = UsualReading(context.dialect->readsAs);
  if (prefix.empty() || !reading) return false;
  SourceLexer lexer(prefix, *reading);
  SourceToken token;
  while (lexer.Next(token)) {
    // The quote stands last.
  }
  return token.part == SourcePart::Text && token.escapes;
}

const ValueForms* DateForms(const CriteriaContext& context) {
  const auto formsOf = [](const Dialect* d) { return d && !d->values.date.empty() ? &d->values : nullptr; };
  if (const ValueForms* forms = formsOf(context.dialect)) return forms;
  const bool leftToSource = !context.dateFormatChosen && !IsNamedLiteral(context) && SourceFormat(context).empty();
  return leftToSource ? formsOf(context.source) : nullptr;
}

std::string MisreadDate(std::string_view condition, const CriteriaContext& context) {
  if (!context.source || !context.source->misreadsDates || ValueKindOf(context.dataType) != ValueKind::Date) return {};
  Lexer lexer(condition);
  Token token;
  std::string_view last, beforeLast;  // the tokens before
  const auto isName = [](std::string_view text) { return !text.empty() && IsWordByte(text.back()); };
  while (lexer.Next(token)) {
    const std::string_view text = condition.substr(token.offset, token.length);
    const bool argument = last == "(" && isName(beforeLast) && !EqualsNoCase(beforeLast, "IN");
    if (token.kind == TokenKind::String && text.front() == '\'' && text.size() > 2 && !argument) {
      const std::string_view bare = text.substr(1, text.size() - 2);
      DateTime value;
      const DateReading reading = ReadDateTime(bare, context.dateFormat, false, value);
      const bool isDate = reading == DateReading::Ambiguous || value.hasDate;
      if (isDate && !bare.starts_with(FormatDateTime(value, "yyyy-mm-dd"))) return std::string(text);
    }
    beforeLast = std::exchange(last, text);
  }
  return {};
}

std::string DateText(const DateTime& value, const CriteriaContext& context) {
  std::string_view format = SourceFormat(context);
  if (format.empty()) format = WritesIso(context) ? std::string_view("yyyy-mm-dd") : context.dateFormat;
  std::string text;
  if (value.hasDate) text = FormatDateTime(value, format);
  if (!Fits(value, format)) text += (text.empty() ? "" : " ") + FormatDateTime(value, "hh:nn:ss");
  return text;
}

std::optional<std::string> DateLiteral(const DateTime& value, const CriteriaContext& context) {
  if (context.dateFormatStyle == DateFormatEscapeSequence) return EscapeSequence(value, context);
  if (std::optional<std::string> literal = FormedLiteral(value, context)) return literal;
  const std::string_view format = SourceFormat(context);
  if (!format.empty() && !Fits(value, format)) return std::nullopt;
  CriteriaContext quoted = context;
  if (quoted.prefix.empty() && quoted.dialect) quoted.prefix = quoted.suffix = quoted.dialect->values.dateQuote;
  return TextLiteral(DateText(value, context), quoted);
}

std::optional<bool> TruthIn(std::string_view text, const CriteriaContext& context) {
  struct Word {
    std::string_view word;
    bool truth;
  };
  constexpr Word kWords[] = {{"TRUE", true},   {"YES", true}, {"ON", true},
                             {"FALSE", false}, {"NO", false}, {"OFF", false}};
  const auto* found = std::ranges::find_if(kWords, [text](const Word& row) { return EqualsNoCase(row.word, text); });
  if (found != std::end(kWords)) return found->truth;
  if (!context.dialect) return std::nullopt;
  const ValueForms& forms = context.dialect->values;
  if (EqualsNoCase(text, forms.yes)) return true;
  if (EqualsNoCase(text, forms.no)) return false;
  return std::nullopt;
}

std::string TruthLiteral(bool truth, const CriteriaContext& context) {
  const ValueForms& forms = context.dialect ? context.dialect->values : ValueForms{};
  return std::string(truth ? forms.yes : forms.no);
}

bool IsTimeOfDay(const CriteriaContext& context) {
  return context.dataType == static_cast<std::int32_t>(DataTypeCode::DbTime);
}

bool IsGuid(std::string_view text) {
  if (text.starts_with('{') && text.ends_with('}')) text = text.substr(1, text.size() - 2);
  if (text.size() != 36) return false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool dash = i == 8 || i == 13 || i == 18 || i == 23;
    if (dash ? text[i] != '-' : !IsHex(text[i])) return false;
  }
  return true;
}

bool IsHexBytes(std::string_view text) { return text.size() % 2 == 0 && std::ranges::all_of(text, IsHex); }

}  // namespace zrqrybld
