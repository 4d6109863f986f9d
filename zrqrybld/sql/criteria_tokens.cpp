#include "zrqrybld/sql/criteria_tokens.h"

#include <algorithm>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_sql.h"
#include "zrqrybld/base/texts_values.h"
#include "zrqrybld/sql/date_literal.h"
#include "zrqrybld/sql/names.h"
#include "zrqrybld/sql/source_lexer.h"
#include "zrqrybld/sql/statement_printer.h"

namespace zrqrybld {
namespace {

constexpr std::size_t kDeepest = 200;

constexpr std::string_view kLiteralWords[] = {"DATE", "TIME", "TIMESTAMP", "INTERVAL", "E"};

}  // namespace

bool IsHashDate(std::string_view written, const std::string& dateFormat) {
  DateTime date;
  return written.size() > 2 && written.back() == '#' &&
         ReadDateTime(written.substr(1, written.size() - 2), dateFormat, true, date) != DateReading::NoDate;
}

void ThrowCriterionError(std::string_view text, std::size_t offset, const Phrase& message) {
  const std::size_t character = CharacterCount(text.substr(0, offset)) + 1;
  throw Error(ErrorParsingText, Phrase(text::AtCharacter, message, character), offset);
}

bool IsLiteralWord(std::string_view word) {
  return std::ranges::find(kLiteralWords, std::string_view(UpperAscii(word))) != std::end(kLiteralWords);
}

CriterionTokens::CriterionTokens(std::string_view text, std::string_view literalWord, const std::string* dateFormat,
                                 const CriteriaContext& context)
    : text_(text), context_(context) {
  Read(literalWord, dateFormat);
  FindPartners();
}

void CriterionTokens::Read(std::string_view literalWord, const std::string* dateFormat) {
  std::size_t base = 0;  // where the lexer's text begins
  Lexer lexer(text_);
  const auto add = [&](Token token) {
    tokens_.push_back(token);
    base = token.offset + token.length;
    lexer = Lexer(text_.substr(base));
  };
  for (Token token; lexer.Next(token);) {
    token.offset += base;
    const char first = text_[token.offset];
    if ((first == '\'' || first == '"') && !tokens_.empty() &&
        tokens_.back().offset + tokens_.back().length == token.offset) {
      const TokenKind before = tokens_.back().kind;
      const std::string_view word = Text(tokens_.size() - 1);
      const bool begins = IsSqlKeyword(word) || IsLiteralWord(word) || EqualsNoCase(word, literalWord);
      if (before == TokenKind::Number || (before == TokenKind::Word && !begins)) {
        add({TokenKind::Operator, true, token.offset, 1});
        continue;
      }
    }
    if (const std::size_t end = EndOfEscaped(tokens_.size(), token); end != 0) {
      add({TokenKind::String, false, token.offset, end - token.offset});
      continue;
    }
    if (dateFormat && first == '#' && token.kind != TokenKind::Date) {
      // As it will be kept: blanks of every kind become one, and what is no date before is none afterwards.
      const std::size_t end = text_.find('#', token.offset + 1);
      if (end != std::string_view::npos &&
          IsHashDate(OnOneLine(text_.substr(token.offset, end + 1 - token.offset)), *dateFormat)) {
        add({TokenKind::Date, false, token.offset, end + 1 - token.offset});
        continue;
      }
    }
    tokens_.push_back(token);
  }
}

// E'it\'s' ends where the source sees it end, whatever the lexer says. 0 for every other literal.
std::size_t CriterionTokens::EndOfEscaped(std::size_t index, const Token& literal) const {
  if (!context_.reading || index == 0 || text_[literal.offset] != '\'') return 0;
  if (!EqualsNoCase(Text(index - 1), "E") || tokens_[index - 1].offset + 1 != literal.offset) return 0;
  TextReading reading = *context_.reading;
  reading.literalsJoin = false;  // what goes on behind a line end is a literal of its own here
  SourceToken token;
  const bool escapes = SourceLexer(text_, reading, literal.offset - 1).Next(token) && token.escapes;
  return escapes && !token.unfinished ? token.end : 0;
}

void CriterionTokens::FindPartners() {
  partners_.assign(tokens_.size(), kNone);
  struct Opening {
    std::size_t index;
    char closing;  // 'E' for END
    bool hasWhen = false;
  };
  std::vector<Opening> open;
  for (std::size_t i = 0; i < tokens_.size(); ++i) {
    if (tokens_[i].kind == TokenKind::Word) {
      // Without WHEN, CASE is a word like others; so is END without CASE.
      const bool inCase = !open.empty() && open.back().closing == 'E';
      if (EqualsNoCase(Text(i), "CASE")) {
        open.push_back({i, 'E'});
      } else if (inCase && EqualsNoCase(Text(i), "WHEN")) {
        open.back().hasWhen = true;
      } else if (inCase && open.back().hasWhen && EqualsNoCase(Text(i), "END")) {
        partners_[open.back().index] = i;
        open.pop_back();
      }
    } else if (Is(i, '(') || Is(i, '{')) {
      open.push_back({i, Is(i, '(') ? ')' : '}'});
    } else if (Is(i, ')') || Is(i, '}')) {
      while (!open.empty() && open.back().closing == 'E') open.pop_back();
      if (open.empty() || open.back().closing != text_[tokens_[i].offset]) {
        ThrowCriterionError(text_, tokens_[i].offset, text::NothingOpen);
      }
      partners_[open.back().index] = i;
      open.pop_back();
    }
    if (open.size() > kDeepest) ThrowCriterionError(text_, tokens_[i].offset, text::TooDeepWithin);
  }
  for (const Opening& opening : open) {
    if (opening.closing != 'E') ThrowCriterionError(text_, tokens_[opening.index].offset, text::NeverClosed);
  }
}

std::string_view CriterionTokens::Slice(std::size_t from, std::size_t to) const {
  if (from >= to) return {};
  const std::size_t begin = tokens_[from].offset;
  return text_.substr(begin, tokens_[to - 1].offset + tokens_[to - 1].length - begin);
}

bool CriterionTokens::Is(std::size_t index, char sign) const {
  return index < Count() && tokens_[index].kind == TokenKind::Operator && tokens_[index].length == 1 &&
         text_[tokens_[index].offset] == sign;
}

bool CriterionTokens::IsWord(std::size_t index, std::string_view word) const {
  return index < Count() && tokens_[index].kind == TokenKind::Word && EqualsNoCase(Text(index), word);
}

bool CriterionTokens::Adjoins(std::size_t index) const {
  return index > 0 && index < Count() && tokens_[index - 1].offset + tokens_[index - 1].length == tokens_[index].offset;
}

bool CriterionTokens::IsApostrophe(std::size_t index) const {
  return tokens_[index].kind == TokenKind::Operator && tokens_[index].unfinished;
}

std::string CriterionTokens::Kept(std::size_t from, std::size_t to) const {
  RequireFinished(from, to);
  std::string text;
  OneLine line(text_, text);
  for (std::size_t i = from; i < to; ++i) {
    if (IsApostrophe(i)) ThrowCriterionError(text_, tokens_[i].offset, text::QuoteNeverClosed);
    if (tokens_[i].kind == TokenKind::Word && BeginsAsDate(Text(i))) {
      ThrowCriterionError(text_, tokens_[i].offset, text::BeginsAsDate);
    }
    const bool isText = tokens_[i].kind == TokenKind::String;
    if (isText && context_.reading && !ReadsAlike(text_, tokens_[i], *context_.reading)) {
      ThrowCriterionError(text_, tokens_[i].offset, text::ReadsOtherwise);
    }
    // Who reads the statement knows no date format, and would take the second "#" for the beginning of a date.
    if (Token alone;
        tokens_[i].kind == TokenKind::Date && Lexer(Text(i)).Next(alone) && alone.kind != TokenKind::Date) {
      ThrowCriterionError(text_, tokens_[i].offset, text::DateBeginsWithFigure);
    }
    line.Add(tokens_[i], isText ? Doubled(i) : Requoted(i, from));
  }
  return text;
}

// A literal with quotes that a backslash escapes, as the lexer reads it, too.
std::string CriterionTokens::Doubled(std::size_t index) const {
  if (!context_.reading || EndOfEscaped(index, tokens_[index]) == 0) return std::string(Text(index));
  return WithDoubledQuotes("E" + std::string(Text(index)), *context_.reading).substr(1);
}

// "[a]" and "`a`" in the quotes of a source that may not know these. A cell keeps them: there "a" may be a text. Behind
// an operand it is the index of an array.
std::string CriterionTokens::Requoted(std::size_t index, std::size_t from) const {
  const std::string& quote = context_.quotePrefix;
  const std::string_view text = Text(index);
  const bool isForeign = tokens_[index].kind == TokenKind::QuotedIdentifier && text[0] != '"' && text[0] != quote[0] &&
                         (quote == "\"" || (quote == "`" && text[0] == '['));
  const bool behindOperand =
      index > from && (Is(index - 1, ')') || tokens_[index - 1].kind == TokenKind::QuotedIdentifier ||
                       (tokens_[index - 1].kind == TokenKind::Word && tokens_[index - 1].keyword == Keyword::None));
  if (!isForeign || behindOperand || context_.isColumn) return std::string(text);
  NameRules rules;
  rules.quotePrefix = rules.quoteSuffix = quote;
  return Quote(Identifier(RemoveIdentifierQuotes(text, rules)), rules).Text();
}

void CriterionTokens::RequireFinished(std::size_t from, std::size_t to) const {
  for (std::size_t i = from; i < to; ++i) {
    if (tokens_[i].unfinished && !IsApostrophe(i)) {
      ThrowCriterionError(text_, tokens_[i].offset, text::BeginningNeverClosed);
    }
  }
}

}  // namespace zrqrybld
