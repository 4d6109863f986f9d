#include "zrqrybld/sql/criteria_formatter.h"

#include <algorithm>
#include <iterator>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_values.h"
#include "zrqrybld/sql/criteria_tokens.h"
#include "zrqrybld/sql/criteria_values.h"
#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/query_begin.h"

namespace zrqrybld {
namespace {

constexpr std::size_t kLongestResult = 64u << 20;
constexpr std::string_view kCaseBlindLike = "ILIKE";  // as it stands in a cell, whatever the dialect writes for it

// An operator as it may be typed, and as it is written. The lexer reads some as two signs.
struct Comparison {
  std::string_view typed;
  std::string_view written;
};
constexpr Comparison kComparisons[] = {{"=", "="},   {"<", "<"},   {">", ">"},   {"<>", "<>"}, {"!=", "<>"},
                                       {"^=", "<>"}, {"<=", "<="}, {">=", ">="}, {"=<", "<="}, {"=>", ">="},
                                       {"==", "="},  {"!<", "!<"}, {"!>", "!>"}};
constexpr std::string_view kQuantifiers[] = {"ALL", "ANY", "SOME"};
constexpr std::string_view kStates[] = {"NULL", "TRUE", "FALSE", "UNKNOWN"};

std::string_view WrittenComparison(std::string_view typed) {
  const auto* entry = std::ranges::find(kComparisons, typed, &Comparison::typed);
  return entry == std::end(kComparisons) ? std::string_view() : entry->written;
}

// Reads a criterion and writes it: in its normal form, as a condition on a field, or from a condition back.
class CriterionReader {
 public:
  // A criterion. With `field` the result is a condition.
  CriterionReader(std::string_view text, const CriteriaContext& context, std::string_view field = {})
      : context_(context),
        field_(field),
        tokens_(text, CriterionValues::LiteralWord(context), CriterionValues::HashDateFormat(context), context),
        values_(tokens_, context, !field.empty()) {}

  // A condition, whose left sides are asked for and left out.
  CriterionReader(std::string_view condition, const CriteriaContext& context,
                  const std::function<bool(std::string_view)>& isField)
      : context_(context),
        isField_(&isField),
        tokens_(condition, {}, nullptr, context),
        values_(tokens_, context, true) {}

  std::string Run() && {
    if (tokens_.Count() > 0) ReadTerms(tokens_.Count());
    return std::move(result_);
  }

 private:
  // --- What stands where ---

  void SkipComments() {
    while (at_ < tokens_.Count() && tokens_[at_].kind == TokenKind::Comment) {
      tokens_.RequireFinished(at_, at_ + 1);
      ++at_;
    }
  }
  bool AtWord(std::string_view word) const { return tokens_.IsWord(at_, word); }
  bool AtEnd(std::size_t end) const { return at_ >= end || AtWord("AND") || AtWord("OR"); }

  // The number of tokens that an operator takes here, and how it is written; 0 for none.
  std::size_t ComparisonAt(std::size_t at, std::string_view& written) const {
    if (at >= tokens_.Count() || tokens_[at].kind != TokenKind::Operator || tokens_.IsApostrophe(at)) return 0;
    for (const std::size_t length : {std::size_t{2}, std::size_t{1}}) {
      if (length == 2 && !(tokens_.Adjoins(at + 1) && tokens_[at + 1].kind == TokenKind::Operator)) continue;
      written = WrittenComparison(tokens_.Slice(at, at + length));
      if (!written.empty()) return length;
    }
    return 0;
  }

  // The number of tokens that the operator takes here; 0 when it is another one.
  std::size_t WordsAt(std::size_t at, std::string_view name, const std::vector<Token>& words) const {
    std::size_t count = 0;
    for (const Token& word : words) {
      if (at + count >= tokens_.Count()) return 0;
      if (!EqualsNoCase(tokens_.Text(at + count), name.substr(word.offset, word.length))) return 0;
      ++count;
    }
    return count;
  }

  // The number of tokens of LIKE, or of what is or was written for it; 0 for none.
  std::size_t LikeAt(std::size_t at) const {
    if (const std::size_t count = WordsAt(at, context_.likeOperator, likeWords_)) return count;
    if (const std::size_t count = WordsAt(at, context_.formerLike, formerLikeWords_)) return count;
    return tokens_.IsWord(at, "LIKE") || CaseBlindLikeAt(at) ? 1 : 0;
  }

  bool CaseBlindLikeAt(std::size_t at) const {
    return tokens_.IsWord(at, kCaseBlindLike) && !EqualsNoCase(context_.likeOperator, kCaseBlindLike);
  }

  // Whether a list, a query or a marker follows IN; "In Flames" is a text.
  bool InAt(std::size_t at) const {
    return tokens_.IsWord(at, "IN") &&
           (tokens_.Is(at + 1, '(') || (at + 1 < tokens_.Count() && tokens_[at + 1].kind == TokenKind::Parameter));
  }

  bool StateAt(std::size_t at) const {
    return at < tokens_.Count() && std::ranges::any_of(kStates, [&](auto word) { return tokens_.IsWord(at, word); });
  }

  bool IsQuery(std::size_t parenthesis) const {
    return tokens_.Is(parenthesis, '(') && HoldsQuery(tokens_.All(), tokens_.Offset(parenthesis));
  }

  // The end of the value that begins here: AND, OR, a comma of the list, ESCAPE of a pattern, or `end`.
  std::size_t EndOfValue(std::size_t end, bool inList = false, bool inPattern = false) const {
    std::size_t at = at_;
    while (at < end) {
      if (tokens_.IsWord(at, "AND") || tokens_.IsWord(at, "OR")) break;
      if (inList && tokens_.Is(at, ',')) break;
      if (inPattern && tokens_.IsWord(at, "ESCAPE") && at + 1 < end && tokens_[at + 1].kind == TokenKind::String) break;
      at = tokens_.After(at);
    }
    return std::min(at, end);
  }

  [[noreturn]] void Fail(const Phrase& message) const {
    ThrowCriterionError(tokens_.All(), tokens_.Offset(at_), message);
  }

  // --- Writing ---

  void Put(std::string_view text) {
    result_ += text;
    if (result_.size() > kLongestResult) Fail(text::ConditionGrows);
  }

  // What every predicate begins with: the field, or nothing in a criterion.
  void PutField() {
    if (field_.empty()) return;
    Put(field_);
    Put(" ");
  }

  // Writes the value from here to `end` and goes behind it.
  void PutValue(std::size_t end, bool pattern = false) {
    SkipComments();
    if (at_ >= end) Fail(text::ValueMissing);
    std::string_view sign;
    for (std::size_t at = at_; at < end; at = tokens_.After(at)) {
      if (ComparisonAt(at, sign) == 0) continue;
      if (at == at_) Fail(text::ValueMissing);
      at_ = at;
      Fail(text::ColumnItself);
    }
    if (isField_) {
      Put(tokens_.Kept(at_, end));
    } else {
      Put(pattern ? values_.WritePattern(at_, end) : values_.Write(at_, end));
    }
    at_ = end;
  }

  void PutKept(std::size_t end) {
    Put(tokens_.Kept(at_, end));
    at_ = end;
  }

  std::string_view CaseBlindLike() const { return context_.dialect ? context_.dialect->caseBlindLike : kCaseBlindLike; }

  // --- The grammar ---

  void ReadTerms(std::size_t end) {
    for (;;) {
      ReadTerm(end);
      SkipComments();
      if (at_ >= end) return;
      if (!AtEnd(end)) Fail(text::AndOrMissing);
      Put(AtWord("AND") ? " AND " : " OR ");
      ++at_;
    }
  }

  void ReadTerm(std::size_t end) {
    SkipComments();
    // NOT that belongs to the operator behind it, or to NULL, stays with it.
    while (AtWord("NOT") && !(LikeAt(at_ + 1) != 0 || InAt(at_ + 1) || tokens_.IsWord(at_ + 1, "BETWEEN") ||
                              (!isField_ && tokens_.IsWord(at_ + 1, "NULL")))) {
      Put("NOT ");
      ++at_;
      SkipComments();
    }
    if (AtEnd(end)) Fail(text::ConditionMissing);
    if (IsGroup(end)) {
      const std::size_t closing = tokens_.Partner(at_);
      Put("(");
      ++at_;
      ReadTerms(closing);
      Put(")");
      at_ = closing + 1;
    } else if (AtWord("EXISTS") && IsQuery(at_ + 1)) {
      if (isField_) Fail(text::NoCondition);
      Put("EXISTS ");
      ++at_;
      PutKept(tokens_.After(at_));
    } else {
      if (isField_) ReadLeftSide(end);
      fieldAt_ = result_.size();
      PutField();
      ReadPredicate(end);
    }
  }

  // Whether parentheses hold conditions: a whole term, and no query.
  bool IsGroup(std::size_t end) const {
    if (!tokens_.Is(at_, '(') || IsQuery(at_)) return false;
    std::size_t behind = tokens_.After(at_);
    while (behind < end && tokens_[behind].kind == TokenKind::Comment) ++behind;
    return behind >= end || tokens_.IsWord(behind, "AND") || tokens_.IsWord(behind, "OR");
  }

  void ReadLeftSide(std::size_t end) {
    std::size_t at = at_;
    std::string_view sign;
    while (at < end && ComparisonAt(at, sign) == 0 && LikeAt(at) == 0 && !InAt(at) && !tokens_.IsWord(at, "BETWEEN") &&
           !tokens_.IsWord(at, "IS") && !tokens_.IsWord(at, "NOT")) {
      at = tokens_.After(at);
    }
    if (at >= end || !(*isField_)(tokens_.Kept(at_, at))) Fail(text::NoCondition);
    at_ = at;
  }

  void ReadPredicate(std::size_t end) {
    std::string_view written;
    if (const std::size_t length = ComparisonAt(at_, written); length != 0) {
      at_ += length;
      ReadComparison(written, end);
      return;
    }
    const bool negated = AtWord("NOT");
    const std::size_t at = negated ? at_ + 1 : at_;
    if (tokens_.IsWord(at, "NULL") && at + 1 >= EndOfValue(end)) {
      Put(negated ? "IS NOT NULL" : "IS NULL");
      at_ = at + 1;
    } else if (AtWord("IS") && (StateAt(at_ + 1) || (tokens_.IsWord(at_ + 1, "NOT") && StateAt(at_ + 2)))) {
      ReadState();
    } else if (const std::size_t length = LikeAt(at); length != 0) {
      at_ = at + length;
      ReadLike(negated, CaseBlindLikeAt(at), end);
    } else if (InAt(at)) {
      at_ = at + 1;
      ReadIn(negated);
    } else if (tokens_.IsWord(at, "BETWEEN")) {
      at_ = at + 1;
      ReadBetween(negated, end);
    } else {
      if (isField_) Fail(text::NoCondition);
      ReadComparison("=", end);
    }
  }

  void ReadComparison(std::string_view written, std::size_t end) {
    Put(written);
    Put(" ");
    SkipComments();
    for (const std::string_view word : kQuantifiers) {
      if (!AtWord(word) || !IsQuery(at_ + 1)) continue;
      Put(word);
      Put(" ");
      ++at_;
      PutKept(tokens_.After(at_));
      return;
    }
    PutValue(EndOfValue(end));
  }

  void ReadState() {
    Put("IS ");
    ++at_;
    if (AtWord("NOT")) {
      Put("NOT ");
      ++at_;
    }
    Put(UpperAscii(tokens_.Text(at_)));
    ++at_;
  }

  void ReadLike(bool negated, bool caseBlind, std::size_t end) {
    const bool inUpperCase = caseBlind && !field_.empty() && CaseBlindLike().empty();
    if (inUpperCase) {
      result_.resize(fieldAt_);
      Put("UPPER(");
      Put(field_);
      Put(") ");
    }
    if (negated) Put("NOT ");
    const std::string_view usual = likeWords_.empty() ? std::string_view("LIKE") : context_.likeOperator;
    Put(inUpperCase || !caseBlind ? usual : field_.empty() ? kCaseBlindLike : CaseBlindLike());
    Put(inUpperCase ? " UPPER(" : " ");
    PutValue(EndOfValue(end, false, true), true);
    if (inUpperCase) Put(")");
    if (at_ >= end || !AtWord("ESCAPE")) return;
    Put(" ESCAPE ");
    ++at_;
    PutKept(at_ + 1);
  }

  void ReadIn(bool negated) {
    Put(negated ? "NOT IN " : "IN ");
    if (!tokens_.Is(at_, '(') || IsQuery(at_)) {
      PutKept(tokens_.After(at_));
      return;
    }
    const std::size_t closing = tokens_.Partner(at_);
    Put("(");
    ++at_;
    for (;;) {
      PutValue(EndOfValue(closing, true));
      if (at_ >= closing) break;
      if (!tokens_.Is(at_, ',')) Fail(text::CommaMissing);
      Put(", ");
      ++at_;
    }
    Put(")");
    ++at_;
  }

  void ReadBetween(bool negated, std::size_t end) {
    Put(negated ? "NOT BETWEEN " : "BETWEEN ");
    PutValue(EndOfValue(end));
    if (at_ >= end || !AtWord("AND")) Fail(text::SecondValueMissing);
    Put(" AND ");
    ++at_;
    PutValue(EndOfValue(end));
  }

  const CriteriaContext& context_;
  std::string_view field_;
  const std::function<bool(std::string_view)>* isField_ = nullptr;
  CriterionTokens tokens_;
  CriterionValues values_;
  std::vector<Token> likeWords_ = Tokenize(context_.likeOperator);
  std::vector<Token> formerLikeWords_ = Tokenize(context_.formerLike);
  std::size_t fieldAt_ = 0;  // where the condition begins that is being written
  std::size_t at_ = 0;
  std::string result_;
};

// Whether an operator before the field, or behind it, would tear it apart.
bool IsCondition(std::string_view field) {
  constexpr std::string_view kWords[] = {"AND", "BETWEEN", "IN", "IS", "LIKE", "NOT", "OR"};
  int depth = 0;
  for (const Token& token : Tokenize(field)) {
    const std::string_view text = field.substr(token.offset, token.length);
    if (token.kind == TokenKind::Operator) {
      if (text == "(") ++depth;
      if (text == ")") --depth;
      if (depth == 0 && !WrittenComparison(text).empty()) return true;
    } else if (token.kind == TokenKind::Word && depth == 0) {
      const std::string word = UpperAscii(text);
      if (std::ranges::find(kWords, std::string_view(word)) != std::end(kWords)) return true;
    }
  }
  return false;
}

}  // namespace

std::string FormatCriterion(std::string_view text, const CriteriaContext& context) {
  return CriterionReader(text, context).Run();
}

std::string FormatCondition(std::string_view field, std::string_view text, const CriteriaContext& context) {
  if (IsCondition(field)) return CriterionReader(text, context, "(" + std::string(field) + ")").Run();
  return CriterionReader(text, context, field).Run();
}

std::optional<std::string> CriterionOf(std::string_view condition,
                                       const std::function<bool(std::string_view left)>& isField,
                                       const std::string& likeOperator) {
  CriteriaContext context;
  context.likeOperator = likeOperator;
  try {
    return CriterionReader(condition, context, isField).Run();
  } catch (const Error&) {
    return std::nullopt;
  }
}

}  // namespace zrqrybld
