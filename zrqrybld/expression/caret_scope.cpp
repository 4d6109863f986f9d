#include "zrqrybld/expression/caret_scope.h"

#include <algorithm>
#include <utility>

#include "zrqrybld/base/text.h"
#include "zrqrybld/sql/lexer.h"

namespace zrqrybld {
namespace {

bool IsWordTail(char c) { return IsWordByte(c) || c == '$' || c == '#' || c == '@'; }

bool EndsQuery(Keyword keyword) {
  return keyword == Keyword::Union || keyword == Keyword::Except || keyword == Keyword::Intersect;
}

// A quoted name without its quotes; one that is never closed lacks only the opening quote.
std::string Unquote(std::string_view name) {
  const char closing = name.front() == '[' ? ']' : name.front();
  name.remove_prefix(1);
  std::string text;
  for (std::size_t i = 0; i < name.size(); ++i) {
    if (name[i] == closing && (++i >= name.size() || name[i] != closing)) break;
    text += name[i];
  }
  return text;
}

// The tokens of a text without comments and without the word at the caret, which is still being written.
class CaretTokens {
 public:
  CaretTokens(std::string_view text, std::size_t caret, CaretScope& scope) : text_(text) {
    scope.from = scope.to = caret;
    Lexer head(text.substr(0, caret));
    for (Token token; head.Next(token);) {
      if (token.offset + token.length == caret && !TakeTyped(token, caret, scope)) writing_ = false;
      if (token.kind != TokenKind::Comment && token.offset < scope.from) tokens_.push_back(token);
    }
    if (scope.from < caret && text[scope.from] == '?' && !tokens_.empty() && tokens_.back().offset >= scope.from) {
      tokens_.pop_back();
    }
    caret_ = tokens_.size();
    Lexer tail(text);
    tail.SetPosition(scope.to);
    for (Token token; tail.Next(token);) {
      if (token.kind != TokenKind::Comment) tokens_.push_back(token);
    }
    MatchParentheses();
  }

  // Whether something may be offered here: not inside a literal or a comment.
  bool Writing() const { return writing_; }
  // The number of tokens before the caret.
  std::size_t Caret() const { return caret_; }
  std::size_t Count() const { return tokens_.size(); }
  const Token& operator[](std::size_t index) const { return tokens_[index]; }
  std::string_view Text(std::size_t index) const { return text_.substr(tokens_[index].offset, tokens_[index].length); }
  Keyword KeywordAt(std::size_t index) const { return index < Count() ? tokens_[index].keyword : Keyword::None; }
  bool IsSign(std::size_t index, std::string_view sign) const {
    return index < Count() && tokens_[index].kind == TokenKind::Operator && Text(index) == sign;
  }
  bool IsName(std::size_t index) const {
    if (index >= Count()) return false;
    const Token& token = tokens_[index];
    return token.kind == TokenKind::QuotedIdentifier || (token.kind == TokenKind::Word && !IsReserved(token.keyword));
  }
  std::string Name(std::size_t index) const {
    return tokens_[index].kind == TokenKind::QuotedIdentifier ? Unquote(Text(index)) : std::string(Text(index));
  }
  // Whether the caret lies between the two tokens.
  bool CaretBetween(std::size_t first, std::size_t last) const { return first < caret_ && caret_ <= last; }

  // The parts of the name that ends at the token, which is not before `first`; none when it is no name.
  std::vector<std::string> NameEndingAt(std::size_t last, std::size_t first) const {
    std::vector<std::string> parts;
    for (std::size_t at = last;; at -= 2) {
      const TokenKind kind = tokens_[at].kind;
      if (kind != TokenKind::Word && kind != TokenKind::QuotedIdentifier) return {};
      parts.push_back(Name(at));
      if (at < first + 2 || !IsSign(at - 1, ".")) break;
    }
    std::ranges::reverse(parts);
    return parts;
  }

  // The token that closes the parenthesis; the number of tokens when none does.
  std::size_t Closing(std::size_t open) const { return closings_[open]; }
  bool IsClosed(std::size_t open) const { return closings_[open] < Count(); }

 private:
  void MatchParentheses() {
    closings_.assign(Count(), Count());
    std::vector<std::size_t> open;
    for (std::size_t i = 0; i < Count(); ++i) {
      if (IsSign(i, "(")) open.push_back(i);
      if (IsSign(i, ")") && !open.empty()) {
        closings_[open.back()] = i;
        open.pop_back();
      }
    }
  }

  // The token that ends at the caret. Returns false when nothing can be offered in it.
  bool TakeTyped(const Token& token, std::size_t caret, CaretScope& scope) {
    const std::string_view written = text_.substr(token.offset, token.length);
    switch (token.kind) {
      case TokenKind::Word: {
        const bool marker = token.offset > 0 && text_[token.offset - 1] == '?';
        scope.from = token.offset - (marker ? 1 : 0);
        scope.typed = text_.substr(scope.from, caret - scope.from);
        while (scope.to < text_.size() && IsWordTail(text_[scope.to])) ++scope.to;
        return true;
      }
      case TokenKind::QuotedIdentifier:
        if (!token.unfinished) return false;
        scope.from = token.offset;
        scope.typed = Unquote(written);
        scope.quoted = true;
        TakeRestOfQuoted(written.front(), scope);
        return true;
      case TokenKind::Operator:
        if (written == "?") {
          scope.from = token.offset;
          scope.typed = written;
        }
        return true;
      case TokenKind::Parameter:
        if (token.length > 6) return false;  // a whole marker
        scope.from = token.offset;
        scope.typed = written;
        return true;
      default:
        return token.kind == TokenKind::Comment && !token.unfinished && written.starts_with("/*");
    }
  }

  // What belongs to the name behind the caret: up to its closing quote, where one stands behind the word.
  void TakeRestOfQuoted(char opening, CaretScope& scope) const {
    const char closing = opening == '[' ? ']' : opening;
    std::size_t end = scope.to;
    if (opening == '[') {
      end = std::min(text_.find_first_of("[]\r\n", end), text_.size());
    } else {
      while (end < text_.size() && IsWordTail(text_[end])) ++end;
    }
    if (end < text_.size() && text_[end] == closing) scope.to = end + 1;
  }

  std::string_view text_;
  std::vector<Token> tokens_;
  std::vector<std::size_t> closings_;  // of each token that opens a parenthesis
  std::size_t caret_ = 0;
  bool writing_ = true;
};

// Reads one query: its tables, and what its clauses are at the caret.
class QueryReader {
 public:
  QueryReader(const CaretTokens& tokens, CaretScope& scope, bool outer)
      : tokens_(tokens), scope_(scope), outer_(outer) {}

  void Read(std::size_t begin) {
    int depth = 0;
    std::size_t i = begin;
    for (; i < tokens_.Count(); ++i) {
      if (i == tokens_.Caret()) NoteCaret();
      if (tokens_.IsSign(i, ";") || (tokens_.IsSign(i, ")") && --depth < 0)) break;
      if (depth == 0 && EndsQuery(tokens_.KeywordAt(i))) {
        if (i >= tokens_.Caret()) break;
        StartAnew();
      }
      if (tokens_.IsSign(i, "(")) {
        if (tokens_.KeywordAt(i + 1) == Keyword::Select && !(tokens_.Caret() == i + 1)) {
          i = SkipSubquery(i);
          continue;
        }
        // One that is still open does not hide the clauses behind the caret.
        if (tokens_.IsClosed(i)) ++depth;
      }
      if (expectsTable_ && tokens_.IsName(i)) {
        i = ReadTable(i);
      } else {
        ReadWord(i, depth);
      }
    }
    if (!noted_) NoteCaret();
    scope_.tables.insert(scope_.tables.end(), found_.begin(), found_.end());
  }

  SqlClause ClauseAtCaret() const { return clauseAtCaret_; }
  bool ExpectsTableAtCaret() const { return expectsTableAtCaret_; }
  // The first token of the select at the caret.
  std::size_t Begin() const { return begin_; }

 private:
  void NoteCaret() {
    if (std::exchange(noted_, true)) return;
    clauseAtCaret_ = clause_;
    expectsTableAtCaret_ = expectsTable_;
    if (outer_) return;
    scope_.joinOpen = joinOpen_;
    scope_.lastTable = static_cast<std::ptrdiff_t>(found_.size()) - 1;
  }

  void StartAnew() {
    found_.clear();
    clause_ = SqlClause::None;
    expectsTable_ = joinOpen_ = false;
  }

  std::size_t SkipSubquery(std::size_t open) {
    const std::size_t close = tokens_.Closing(open);
    if (tokens_.CaretBetween(open, close)) NoteCaret();
    std::size_t last = close;
    if (expectsTable_) {  // a derived table: only its name is known
      if (tokens_.KeywordAt(last + 1) == Keyword::As) ++last;
      if (tokens_.IsName(last + 1) && !tokens_.CaretBetween(close, last + 1)) {
        AddTable({tokens_.Name(++last)}, {}, open);
      }
    }
    return last;
  }

  void AddTable(std::vector<std::string> parts, std::string alias, std::size_t at) {
    found_.push_back({std::move(parts), std::move(alias), outer_, at < tokens_.Caret()});
    expectsTable_ = false;
  }

  // A table's name and its alias. Returns the last token of them; a name that still ends in a dot is none yet.
  std::size_t ReadTable(std::size_t first) {
    std::size_t last = first;
    std::vector<std::string> parts{tokens_.Name(first)};
    while (tokens_.IsSign(last + 1, ".")) {
      if (tokens_.CaretBetween(last, last + 2) || !tokens_.IsName(last + 2)) return last + 1;
      last += 2;
      parts.push_back(tokens_.Name(last));
    }
    std::size_t alias = last + 1;
    if (tokens_.KeywordAt(alias) == Keyword::As) ++alias;
    const bool named = tokens_.IsName(alias) && !tokens_.CaretBetween(last, alias);
    AddTable(std::move(parts), named ? tokens_.Name(alias) : std::string(), first);
    return named ? alias : last;
  }

  void ReadWord(std::size_t i, int depth) {
    switch (tokens_.KeywordAt(i)) {
      case Keyword::Select:
        if (depth == 0) Enter(SqlClause::Select, i);
        break;
      case Keyword::From:
        if (depth == 0) Enter(SqlClause::From, i);
        break;
      case Keyword::Join:
        Enter(SqlClause::From, i);
        joinOpen_ = true;
        break;
      case Keyword::On:
        Enter(SqlClause::On, i);
        break;
      case Keyword::Where:
        if (depth == 0) Enter(SqlClause::Where, i);
        break;
      case Keyword::Group:
        if (depth == 0) Enter(SqlClause::GroupBy, i);
        break;
      case Keyword::Having:
        if (depth == 0) Enter(SqlClause::Having, i);
        break;
      case Keyword::Order:
        if (depth == 0) Enter(SqlClause::OrderBy, i);
        break;
      case Keyword::As:
        if (clause_ == SqlClause::Select && depth == 0 && tokens_.IsName(i + 1) && !outer_ &&
            !tokens_.CaretBetween(i, i + 1)) {
          scope_.aliases.push_back(tokens_.Name(i + 1));
        }
        break;
      default:
        if (tokens_.IsSign(i, ",") && clause_ == SqlClause::From) expectsTable_ = true;
    }
  }

  void Enter(SqlClause clause, std::size_t at) {
    clause_ = clause;
    expectsTable_ = clause == SqlClause::From;
    joinOpen_ = false;
    if (clause == SqlClause::Select) begin_ = at;
  }

  const CaretTokens& tokens_;
  CaretScope& scope_;
  bool outer_;
  std::vector<ScopeTable> found_;
  SqlClause clause_ = SqlClause::None;
  bool expectsTable_ = false;
  bool joinOpen_ = false;
  std::size_t begin_ = 0;
  bool noted_ = false;
  SqlClause clauseAtCaret_ = SqlClause::None;
  bool expectsTableAtCaret_ = false;
};

// --- What may stand at the caret ---

CaretPlace PlaceAfterKeyword(Keyword keyword, SqlClause clause, EditedText kind) {
  switch (keyword) {
    case Keyword::From:
    case Keyword::Join:
      return clause == SqlClause::From ? CaretPlace::Table : CaretPlace::Operand;
    case Keyword::As:
    case Keyword::Top:
    case Keyword::Limit:
    case Keyword::Offset:
    case Keyword::Using:
    case Keyword::Exists:
    case Keyword::Any:
    case Keyword::Some:
      return CaretPlace::Nothing;
    case Keyword::Left:
    case Keyword::Right:
    case Keyword::Full:
    case Keyword::Inner:
    case Keyword::Cross:
    case Keyword::Outer:
    case Keyword::Natural:
    case Keyword::Group:
    case Keyword::Order:
    case Keyword::Is:
      return CaretPlace::Word;
    case Keyword::Union:
    case Keyword::Except:
    case Keyword::Intersect:
      return CaretPlace::Statement;
    case Keyword::Null:
    case Keyword::True:
    case Keyword::False:
    case Keyword::End:
    case Keyword::Asc:
    case Keyword::Desc:
    case Keyword::Rownum:
      return CaretPlace::Operator;
    case Keyword::And:
    case Keyword::Or:
    case Keyword::Not:
      return kind == EditedText::Criterion ? CaretPlace::Condition : CaretPlace::Operand;
    default:
      return CaretPlace::Operand;
  }
}

bool BeginsCondition(Keyword keyword) {
  return keyword == Keyword::On || keyword == Keyword::Where || keyword == Keyword::Having || keyword == Keyword::And ||
         keyword == Keyword::Or || keyword == Keyword::When;
}

class PlaceFinder {
 public:
  PlaceFinder(const CaretTokens& tokens, CaretScope& scope, const QueryReader& query, EditedText kind,
              std::size_t begin)
      : tokens_(tokens), scope_(scope), query_(query), kind_(kind), begin_(begin) {}

  CaretPlace Find() {
    if (tokens_.Caret() <= begin_) {
      if (kind_ == EditedText::Statement) return CaretPlace::Statement;
      return kind_ == EditedText::Criterion ? CaretPlace::Condition : CaretPlace::Operand;
    }
    const std::size_t last = tokens_.Caret() - 1;
    scope_.word = tokens_.KeywordAt(last);
    switch (tokens_[last].kind) {
      case TokenKind::Operator:
        return AfterSign(last);
      case TokenKind::Word:
        if (scope_.word != Keyword::None && !(query_.ClauseAtCaret() == SqlClause::From && tokens_.IsName(last))) {
          scope_.conditionStart = BeginsCondition(scope_.word);
          return PlaceAfterKeyword(scope_.word, query_.ClauseAtCaret(), kind_);
        }
        return AfterOperand();
      default:
        return AfterOperand();
    }
  }

 private:
  CaretPlace AfterSign(std::size_t last) {
    const std::string_view sign = tokens_.Text(last);
    const bool expectsTable = query_.ExpectsTableAtCaret();
    if (sign == ".") {
      if (last == begin_) return CaretPlace::Nothing;
      scope_.qualifier = tokens_.NameEndingAt(last - 1, begin_);
      if (scope_.qualifier.empty()) return CaretPlace::Nothing;
      return expectsTable ? CaretPlace::Table : CaretPlace::Member;
    }
    if (sign == ")") return AfterOperand();
    if ((sign == "," || sign == "(") && expectsTable) return CaretPlace::Table;
    if (sign == ";") return CaretPlace::Statement;
    if (sign == "*" && last > begin_ && StarIsAll(last)) return AfterOperand();
    scope_.conditionStart = sign == "(";
    if (sign == "=" && last > begin_) scope_.compared = tokens_.NameEndingAt(last - 1, begin_);
    return CaretPlace::Operand;
  }

  // "*" for all columns, not a multiplication.
  bool StarIsAll(std::size_t last) const {
    const Keyword before = tokens_.KeywordAt(last - 1);
    return before == Keyword::Select || before == Keyword::Distinct || before == Keyword::All ||
           tokens_.IsSign(last - 1, ",") || tokens_.IsSign(last - 1, ".") || tokens_.IsSign(last - 1, "(");
  }

  CaretPlace AfterOperand() {
    const std::size_t last = tokens_.Caret() - 1;
    scope_.word = Keyword::None;
    if (query_.ClauseAtCaret() == SqlClause::From && !query_.ExpectsTableAtCaret()) {
      const bool named = last > begin_ && (tokens_.IsName(last - 1) || tokens_.KeywordAt(last - 1) == Keyword::As);
      scope_.mayBeName = tokens_.IsName(last) && !named;
      return CaretPlace::AfterTable;
    }
    scope_.mayBeName = query_.ClauseAtCaret() == SqlClause::Select;
    return CaretPlace::Operator;
  }

  const CaretTokens& tokens_;
  CaretScope& scope_;
  const QueryReader& query_;
  EditedText kind_;
  std::size_t begin_;
};

}  // namespace

CaretScope ReadCaretScope(std::string_view text, std::size_t caret, EditedText kind) {
  CaretScope scope;
  const CaretTokens tokens(text, std::min(caret, text.size()), scope);
  if (!tokens.Writing()) return scope;

  // The queries around the caret, the outermost first.
  std::vector<std::size_t> open;
  std::size_t base = 0;
  for (std::size_t i = 0; i < tokens.Caret(); ++i) {
    if (tokens.IsSign(i, "(")) open.push_back(i);
    if (tokens.IsSign(i, ")") && !open.empty()) open.pop_back();
    if (tokens.IsSign(i, ";")) {
      open.clear();
      base = i + 1;
    }
  }
  std::vector<std::size_t> queries{base};
  for (const std::size_t parenthesis : open) {
    if (parenthesis + 1 < tokens.Caret() && tokens.KeywordAt(parenthesis + 1) == Keyword::Select) {
      queries.push_back(parenthesis + 1);
    }
  }

  QueryReader inner(tokens, scope, false);
  inner.Read(queries.back());
  scope.clause = inner.ClauseAtCaret();
  scope.place = PlaceFinder(tokens, scope, inner, kind, queries.back()).Find();
  for (std::size_t i = queries.size() - 1; i-- > 0;) QueryReader(tokens, scope, true).Read(queries[i]);
  return scope;
}

}  // namespace zrqrybld
