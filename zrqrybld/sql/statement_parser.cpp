#include "zrqrybld/sql/statement_parser.h"

#include <algorithm>
#include <utility>

#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_sql.h"
#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/expression_parser.h"
#include "zrqrybld/sql/from_parser.h"
#include "zrqrybld/sql/keywords.h"
#include "zrqrybld/sql/lexer.h"
#include "zrqrybld/sql/name_scope.h"
#include "zrqrybld/sql/syntax_error.h"
#include "zrqrybld/sql/token_reader.h"

namespace zrqrybld {
namespace {

constexpr int kDeepestWhole = 250;  // parentheses around the statement

constexpr std::string_view kNoLimit = "18446744073709551615";  // what MySQL takes for no limit

class Parser {
 public:
  Parser(SelectStatement& statement, const ParseOptions& options)
      : statement_(statement),
        reader_(statement.text),
        expressions_(reader_, statement.arena,
                     {.pipesMayBeOr = options.pipesMayBeOr,
                      .hasSubscripts = options.hasSubscripts,
                      .doubleQuotesAreTexts = options.doubleQuotesAreTexts}),
        from_(statement, reader_, expressions_,
              {.openParentheses = options.openParenthesesInFrom,
               .needsTables = options.needsTables,
               .emptyTable = options.emptyTable,
               .mayEndAtFrom = options.mayEndAtFrom,
               .namesColumns = options.namesColumns}) {}

  void Run() {
    for (; reader_.IsSign('(') && depthOfWhole_ < kDeepestWhole; reader_.Advance()) ++depthOfWhole_;
    from_.SetInParentheses(depthOfWhole_ > 0);
    RefuseBeyondDesigner(reader_);
    reader_.Expect(Keyword::Select);
    ParseHead();
    if (!reader_.Is(Keyword::From)) ParseSelectList();
    RefuseBeyondDesigner(reader_);
    if (!from_.AtClauseEnd() || !from_.MayLackTables()) from_.ParseFrom();
    TextId behind = text::StatementEnd;
    if (reader_.Take(Keyword::Where)) {
      statement_.where = expressions_.ParseExpression();
      behind = text::BehindCondition;
    }
    if (TakeBy(Keyword::Group)) {
      statement_.groupBy = ParseOrderItems(false);
      behind = text::BehindGrouping;
    }
    if (reader_.Take(Keyword::Having)) {
      statement_.having = expressions_.ParseExpression();
      behind = text::BehindCondition;
    }
    if (TakeBy(Keyword::Order)) {
      statement_.orderBy = ParseOrderItems(true);
      behind = text::BehindSorting;
    }
    if (ParseLimits()) behind = text::StatementEnd;
    for (; depthOfWhole_ > 0; --depthOfWhole_) reader_.ExpectSign(')');
    while (reader_.TakeSign(';')) behind = text::StatementEnd;
    if (reader_.AtEnd()) return;
    RefuseBeyondDesigner(reader_);
    reader_.FailExpected(reader_.IsSign(')') ? text::StatementEnd : behind);
  }

  const std::vector<std::size_t>& Queries() const { return expressions_.Queries(); }

 private:
  template <class T>
  T* Make() {
    return statement_.arena.Make<T>();
  }

  // --- SELECT ---

  void ParseHead() {
    for (;;) {
      if (reader_.Is(Keyword::Distinct) || reader_.Is(Keyword::Distinctrow)) {
        reader_.Advance();
        if (reader_.Is(Keyword::On)) reader_.Refuse(reader_.Offset(), text::NoDistinctOn);
        statement_.distinct = true;
      } else if (reader_.Is(Keyword::All) && !reader_.NextIsSign('.')) {
        reader_.Advance();
      } else if (IsTop()) {
        ParseTop();
      } else {
        return;
      }
    }
  }

  // TOP is a row limit when a number follows; otherwise it is a name.
  bool IsTop() const {
    if (!reader_.Is(Keyword::Top) || !statement_.top.empty()) return false;
    const Token next = reader_.Peek();
    return next.kind == TokenKind::Number || next.kind == TokenKind::Parameter || reader_.NextIsSign('(') ||
           reader_.NextIsSign(':') || reader_.NextIsSign('?') || statement_.text.substr(next.offset, 1) == "@";
  }

  void ParseTop() {
    reader_.Advance();
    const bool inParentheses = reader_.TakeSign('(');
    ParseLimitNumber();
    if (inParentheses) reader_.ExpectSign(')');
    if (reader_.Is(Keyword::Percent) && !reader_.NextIsSign(',')) {
      reader_.Advance();
      statement_.topPercent = true;
    }
    RefuseTies();
  }

  void ParseLimitNumber() {
    if (!reader_.Is(TokenKind::Number)) reader_.FailExpected(text::ANumber);
    statement_.top = reader_.CurrentText();
    reader_.Advance();
  }

  void ParseSelectList() {
    SelectItem** end = &statement_.items;
    do {
      auto* item = Make<SelectItem>();
      item->expression = expressions_.ParseSelected();
      if (item->expression->kind != ExpressionKind::Star) item->alias = from_.ParseAlias(true);
      *end = item;
      end = &item->next;
    } while (reader_.TakeSign(','));
    const bool ends = from_.AtClauseEnd() && from_.MayLackTables();
    if (!reader_.Is(Keyword::From) && !ends && !IsBeyondDesigner(reader_.Current().keyword)) {
      reader_.FailExpected(text::OperatorAliasOrFrom);
    }
  }

  // --- GROUP BY, ORDER BY and what comes last ---

  bool TakeBy(Keyword keyword) {
    if (!reader_.Take(keyword)) return false;
    reader_.Expect(Keyword::By);
    return true;
  }

  OrderItem* ParseOrderItems(bool sorted) {
    OrderItem* first = nullptr;
    OrderItem** end = &first;
    do {
      auto* item = Make<OrderItem>();
      item->expression = expressions_.ParseExpression();
      if (sorted && !reader_.Take(Keyword::Asc)) item->descending = reader_.Take(Keyword::Desc);
      if (sorted && reader_.IsWord("NULLS")) item->nulls = ParseNulls();
      *end = item;
      end = &item->next;
    } while (reader_.TakeSign(','));
    return first;
  }

  NullsPlace ParseNulls() {
    reader_.Advance();
    const NullsPlace place = reader_.IsWord("FIRST") ? NullsPlace::First : NullsPlace::Last;
    TakeWord("FIRST", "LAST");
    return place;
  }

  // Whether there was any. LIMIT n and FETCH FIRST n ROWS ONLY say the same as TOP n; an offset may stand before or
  // behind them.
  bool ParseLimits() {
    for (bool any = false;; any = true) {
      if (reader_.Is(Keyword::Limit)) {
        ParseLimit();
      } else if (reader_.Is(Keyword::Fetch)) {
        ParseFetch();
      } else if (reader_.Is(Keyword::Offset)) {
        reader_.Advance();
        ParseOffsetNumber();
        if (reader_.IsWord("ROW") || reader_.Is(Keyword::Rows)) reader_.Advance();
      } else {
        return any;
      }
    }
  }

  void RefuseSecondLimit() const {
    if (!statement_.top.empty()) reader_.Refuse(reader_.Offset(), text::SecondRowLimit);
  }

  void ParseOffsetNumber() {
    if (!statement_.skip.empty()) reader_.Refuse(reader_.Offset(), text::SecondOffset);
    if (!reader_.Is(TokenKind::Number)) reader_.FailExpected(text::ANumber);
    statement_.skip = reader_.CurrentText();
    reader_.Advance();
  }

  // LIMIT n; LIMIT offset, n; and what stands for no limit where an offset needs one: ALL, -1, the largest number.
  void ParseLimit() {
    RefuseSecondLimit();
    reader_.Advance();
    if (reader_.Take(Keyword::All)) return;
    if (reader_.TakeSign('-')) {
      if (reader_.CurrentText() != "1") reader_.FailExpected(text::NumberFromZero);
      reader_.Advance();
      return;
    }
    ParseLimitNumber();
    if (reader_.IsSign(',')) {
      statement_.skip = std::exchange(statement_.top, {});
      reader_.Advance();
      ParseLimitNumber();
    }
    if (statement_.top == kNoLimit) statement_.top = {};
  }

  void ParseFetch() {
    RefuseSecondLimit();
    reader_.Advance();
    TakeWord("FIRST", "NEXT");
    if (reader_.IsWord("ROW") || reader_.Is(Keyword::Rows)) {
      statement_.top = "1";  // FETCH FIRST ROW ONLY
    } else {
      ParseLimitNumber();
      statement_.topPercent = reader_.Take(Keyword::Percent);
    }
    TakeWord("ROWS", "ROW");
    RefuseTies();
    TakeWord("ONLY", "ONLY");
  }

  // One word or the other.
  void TakeWord(std::string_view word, std::string_view other) {
    if (!reader_.IsWord(word) && !reader_.IsWord(other)) {
      reader_.FailExpected(word == other ? std::string(word) : std::string(word) + " or " + std::string(other));
    }
    reader_.Advance();
  }

  void RefuseTies() {
    if (reader_.Is(Keyword::With)) reader_.Refuse(reader_.Offset(), text::NoWithTies);
  }

  SelectStatement& statement_;
  TokenReader reader_;
  ExpressionParser expressions_;
  FromParser from_;
  int depthOfWhole_ = 0;  // parentheses around the statement that are open
};

}  // namespace

namespace {

// Queries in queries beyond this depth are not looked at for a fault: each is read anew from its text.
constexpr int kDeepestBlamed = 16;

SelectStatement ParseWithin(std::string_view text, const ParseOptions& options, int depth);

// A parenthesis too many or too few is seen late where a query inside has it: there the fault lies.
void BlameQueries(std::string_view text, const std::vector<std::size_t>& queries, const SyntaxError& error,
                  const ParseOptions& options, int depth) {
  for (const std::size_t query : queries) {
    // Up to what closes it, or where that is missing, up to the end.
    std::size_t end = text.size();
    int open = 0;
    Lexer lexer(text.substr(query));
    for (Token token; lexer.Next(token);) {
      const char sign = token.kind == TokenKind::Operator ? text[query + token.offset] : ' ';
      if (sign == '(') ++open;
      if (sign == ')' && open-- == 0) {
        end = query + token.offset;
        break;
      }
    }
    // What stands before it becomes blank, so that lines and columns are those of the whole.
    std::string alone(text.substr(0, end));
    for (std::size_t i = 0; i < query; ++i) {
      if (!IsWhite(alone[i])) alone[i] = ' ';
    }
    try {
      ParseWithin(alone, options, depth + 1);
    } catch (const SyntaxError& inside) {
      const std::size_t offset = inside.Offset().value_or(0);
      // A query that ends too early may be one that this parser does not know.
      if (inside.Expected().empty() || offset >= std::min(end, error.Offset().value_or(0))) continue;
      throw SyntaxError(text, offset, inside.Sentence(), inside.Expected());
    }
  }
}

SelectStatement ParseWithin(std::string_view text, const ParseOptions& options, int depth) {
  SelectStatement statement(text);
  Parser parser(statement, options);
  try {
    parser.Run();
  } catch (const SyntaxError& error) {
    if (!error.Expected().empty() && depth < kDeepestBlamed) {
      BlameQueries(text, parser.Queries(), error, options, depth);
    }
    throw;
  }
  return statement;
}

}  // namespace

ParseOptions OptionsFor(const Dialect& dialect) {
  return {.openParenthesesInFrom = dialect.leavesParenthesesOpen,
          .pipesMayBeOr = dialect.pipesMayBeOr,
          .needsTables = dialect.needsTables,
          .emptyTable = dialect.emptyTable,
          .hasSubscripts = dialect.hasSubscripts,
          .namesColumns = dialect.queries.namesColumns};
}

SelectStatement ParseSelect(std::string_view text, const ParseOptions& options) {
  return ParseWithin(text, options, 0);
}

Expression* ParseExpressionText(std::string_view text, SyntaxArena& arena) {
  TokenReader reader(text);
  // No alias can stand here, in brackets or not.
  Expression* expression = ExpressionParser(reader, arena, {.hasSubscripts = true}).ParseExpression();
  if (!reader.AtEnd()) reader.FailExpected(text::OperatorOrTextEnd);
  return expression;
}

std::optional<AliasedText> SplitAlias(std::string_view text) {
  const std::vector<Token> tokens = Tokenize(text);
  const auto word = [&](std::size_t i) { return text.substr(tokens[i].offset, tokens[i].length); };
  const auto isName = [&](std::size_t i) {
    return tokens[i].kind == TokenKind::Word || tokens[i].kind == TokenKind::QuotedIdentifier;
  };
  const std::size_t count = tokens.size();
  if (count > 2 && isName(count - 1) && tokens[count - 2].keyword == Keyword::As) {
    return AliasedText{std::string(Trim(text.substr(0, tokens[count - 2].offset))), PlainName(word(count - 1))};
  }
  // The colon stands close to the name; "::" converts, and ":name" is a parameter.
  std::size_t names = 0;
  while (names < count && isName(names)) ++names;
  if (names == 0 || names + 1 >= count || word(names) != ":") return std::nullopt;
  const std::size_t colon = tokens[names].offset;
  const bool adjoins = colon == tokens[names - 1].offset + tokens[names - 1].length;
  if (!adjoins || word(names + 1) == ":") return std::nullopt;
  const std::string_view name = text.substr(tokens[0].offset, colon - tokens[0].offset);
  return AliasedText{std::string(Trim(text.substr(colon + 1))), names == 1 ? PlainName(name) : std::string(name)};
}

}  // namespace zrqrybld
