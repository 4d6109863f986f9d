#include "zrqrybld/sql/statement_parser.h"

#include <algorithm>
#include <utility>

#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_sql.h"
#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/expression_parser.h"
#include "zrqrybld/sql/keywords.h"
#include "zrqrybld/sql/lexer.h"
#include "zrqrybld/sql/name_scope.h"
#include "zrqrybld/sql/syntax_error.h"
#include "zrqrybld/sql/token_reader.h"

namespace zrqrybld {
namespace {

/// How deep tables may be nested in parentheses that begin together, and how deep otherwise, which costs stack.
constexpr int kDeepestTables = 4000;
constexpr int kDeepestCalls = 250;

constexpr std::string_view kNoLimit = "18446744073709551615";  // what MySQL takes for no limit

// What no designer of one SELECT can show, by the word that begins it.
bool IsBeyondDesigner(Keyword keyword) {
  switch (keyword) {
    case Keyword::Connect:
    case Keyword::Except:
    case Keyword::For:
    case Keyword::Intersect:
    case Keyword::Into:
    case Keyword::Minus:
    case Keyword::Option:
    case Keyword::Start:
    case Keyword::Union:
    case Keyword::Window:
    case Keyword::With:
      return true;
    default:
      return false;
  }
}

class Parser {
 public:
  Parser(SelectStatement& statement, const ParseOptions& options)
      : statement_(statement),
        options_(options),
        reader_(statement.text),
        expressions_(reader_, statement.arena,
                     {.pipesMayBeOr = options.pipesMayBeOr,
                      .hasSubscripts = options.hasSubscripts,
                      .doubleQuotesAreTexts = options.doubleQuotesAreTexts}) {}

  void Run() {
    for (; reader_.IsSign('(') && depthOfWhole_ < kDeepestCalls; reader_.Advance()) ++depthOfWhole_;
    RefuseWhatCannotBeShown();
    reader_.Expect(Keyword::Select);
    ParseHead();
    if (!reader_.Is(Keyword::From)) ParseSelectList();
    RefuseWhatCannotBeShown();
    if (!AtClauseEnd() || !MayLackTables()) ParseFrom();
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
    RefuseWhatCannotBeShown();
    reader_.FailExpected(reader_.IsSign(')') ? text::StatementEnd : behind);
  }

  const std::vector<std::size_t>& Queries() const { return expressions_.Queries(); }

 private:
  void RefuseWhatCannotBeShown() {
    if (!IsBeyondDesigner(reader_.Current().keyword)) return;
    reader_.Refuse(reader_.Offset(), {text::CannotShow, NameOf(reader_.Current().keyword)});
  }

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
      if (item->expression->kind != ExpressionKind::Star) item->alias = ParseAlias(true);
      *end = item;
      end = &item->next;
    } while (reader_.TakeSign(','));
    const bool ends = AtClauseEnd() && MayLackTables();
    if (!reader_.Is(Keyword::From) && !ends && !IsBeyondDesigner(reader_.Current().keyword)) {
      reader_.FailExpected(text::OperatorAliasOrFrom);
    }
  }

  // With or without AS. A text in quotes names a column, never a table.
  std::string_view ParseAlias(bool textAllowed) {
    const auto isText = [&] { return textAllowed && reader_.Is(TokenKind::String); };
    const std::size_t start = reader_.Offset();
    if (reader_.Take(Keyword::As)) {
      const std::size_t name = reader_.Offset();
      const bool isClause = !textAllowed && IsJoinWord(reader_.Current().keyword) && IsJoinWord(reader_.Peek().keyword);
      if (isClause || (!reader_.Is(TokenKind::Word) && !reader_.Is(TokenKind::QuotedIdentifier) && !isText())) {
        reader_.FailExpected(text::AnAlias);
      }
      reader_.Advance();
      return reader_.TextFrom(name);
    }
    const bool isName = reader_.Is(TokenKind::QuotedIdentifier) ||
                        (reader_.Is(TokenKind::Word) && reader_.Current().keyword == Keyword::None);
    if (!isName && !isText()) return {};
    reader_.Advance();
    return reader_.TextFrom(start);
  }

  // --- FROM ---

  void ParseFrom() {
    reader_.Expect(Keyword::From);
    if (IsEmptyTable()) {
      reader_.Advance();
    } else if (!AtClauseEnd() || IsTableCalledAsLimit()) {
      statement_.from = ParseTables();
    } else if (NamesColumn() || !options_.mayEndAtFrom) {
      reader_.FailExpected(text::ATable);
    }
  }

  // Whether the statement may be one without tables; one that names a column is found out when names are resolved.
  bool MayLackTables() const { return !options_.needsTables && statement_.items && !HasStar(); }

  bool IsEmptyTable() const {
    const bool isNamed = !options_.emptyTable.empty() && EqualsNoCase(reader_.CurrentText(), options_.emptyTable);
    if (!isNamed || !MayLackTables() || NamesColumn()) return false;
    TokenReader behind = reader_;
    behind.Advance();
    return AtClauseEnd(behind);
  }

  bool AtClauseEnd() const { return AtClauseEnd(reader_); }

  bool AtClauseEnd(const TokenReader& reader) const {
    const Keyword keyword = reader.Current().keyword;
    return reader.AtEnd() || reader.IsSign(';') || (depthOfWhole_ > 0 && reader.IsSign(')')) ||
           keyword == Keyword::Where || keyword == Keyword::Group || keyword == Keyword::Having ||
           keyword == Keyword::Order || keyword == Keyword::Limit || keyword == Keyword::Fetch ||
           keyword == Keyword::Offset;
  }

  // These words are names, too; at the beginning of FROM only what follows tells.
  bool IsTableCalledAsLimit() const {
    const Token next = reader_.Peek();
    if (reader_.Is(Keyword::Limit) || reader_.Is(Keyword::Offset)) return next.kind != TokenKind::Number;
    const std::string_view word = statement_.text.substr(next.offset, next.length);
    return reader_.Is(Keyword::Fetch) && !EqualsNoCase(word, "FIRST") && !EqualsNoCase(word, "NEXT");
  }

  FromItem* ParseTables() {
    FromItem* first = nullptr;
    FromItem** end = &first;
    do {
      *end = ParseJoined();
      end = &(*end)->next;
    } while (reader_.TakeSign(','));
    if (!AtClauseEnd() && !IsBeyondDesigner(reader_.Current().keyword)) {
      RefuseTableClause();
      reader_.FailExpected(text::JoinOrEnd);
    }
    RefuseWhatCannotBeShown();
    return first;
  }

  // What may stand behind a table elsewhere.
  void RefuseTableClause() {
    if (reader_.Is(TokenKind::Word) && BeginsTableClause(reader_.CurrentText())) {
      reader_.Refuse(reader_.Offset(), {text::CannotShow, UpperAscii(reader_.CurrentText())});
    }
  }

  // A table and what is joined to it.
  FromItem* ParseJoined() {
    FromItem* item = ParseTable();
    ParseJoins(item);
    return item;
  }

  FromItem* ParseTable() {
    if (reader_.IsSign('(')) return BeginsQuery() ? ParseQueryInFrom() : ParseTablesInParentheses();
    if (reader_.IsSign('{')) return ParseJoinEscape();
    auto* item = Make<FromItem>();
    const std::size_t start = reader_.Offset();
    if (reader_.IsWord("LATERAL")) RefuseTableClause();  // the other words may name a table
    item->table = expressions_.ParseName(text::ATable);
    if (reader_.IsSign('(')) reader_.Refuse(start, text::NoFunctionInFrom);
    RefuseTableClause();
    item->alias = ParseAlias(false);
    if (!item->alias.empty() && reader_.IsSign('(')) {
      reader_.Refuse(reader_.Offset(), text::NoColumnNames);
    }
    if (reader_.Is(Keyword::With)) reader_.Refuse(reader_.Offset(), text::NoHints);
    return item;
  }

  // Whether what stands in the parenthesis here is a query, not tables. One that begins with another parenthesis is a
  // query only where what stands in that is one, and more of it follows: "((SELECT ...) UNION ...)". Parentheses that
  // follow one another are looked through once.
  bool BeginsQuery() {
    if (reader_.Offset() < tablesUntil_) return false;
    Lexer ahead(statement_.text);
    ahead.SetPosition(reader_.Offset());
    Token token;
    const auto next = [&] {
      do {
        if (!ahead.Next(token)) return false;
      } while (token.kind == TokenKind::Comment);
      return true;
    };
    const auto isSign = [&](char sign) {
      return token.kind == TokenKind::Operator && token.length == 1 && statement_.text[token.offset] == sign;
    };
    int level = 0;
    while (next() && isSign('(')) ++level;
    if (level > kDeepestCalls || (token.keyword != Keyword::Select && token.keyword != Keyword::With)) {
      tablesUntil_ = token.offset;
      return false;
    }
    for (int depth = level; level > 1;) {
      if (!next()) return false;
      if (isSign('(')) ++depth;
      if (!isSign(')') || --depth >= level) continue;
      const std::size_t behind = ahead.Position();
      if (!next() || !GoesOnAsQuery(token, isSign(')'))) return false;
      ahead.SetPosition(behind);
      --level;
    }
    return true;
  }

  static bool GoesOnAsQuery(const Token& token, bool closes) {
    switch (token.keyword) {
      case Keyword::Union:
      case Keyword::Intersect:
      case Keyword::Except:
      case Keyword::Minus:
      case Keyword::Order:
      case Keyword::Limit:
      case Keyword::Offset:
      case Keyword::Fetch:
        return true;
      default:
        return closes;
    }
  }

  // A query in the place of a table; its name stands where a table's alias does.
  FromItem* ParseQueryInFrom() {
    auto* item = Make<FromItem>();
    const std::size_t open = reader_.Offset();
    reader_.Advance();
    const std::size_t start = reader_.Offset();
    expressions_.NoteQuery(start);
    while (!reader_.AtEnd() && !reader_.IsSign(')')) SkipOne();
    if (reader_.AtEnd()) reader_.FailOpen(open, "\")\"");
    item->query = statement_.text.substr(start, reader_.Offset() - start);
    reader_.Advance();
    item->table = ParseAlias(false);
    if (!item->table.empty() && reader_.IsSign('(')) reader_.Refuse(reader_.Offset(), text::NoColumnNames);
    return item;
  }

  // A token, or what stands in parentheses.
  void SkipOne() {
    const bool opens = reader_.TakeSign('(');
    if (opens) reader_.SkipTo(')');
    reader_.Advance();
  }

  void RequireDepth(int depth, int deepest) const {
    if (depth <= deepest) return;
    reader_.Refuse(reader_.Offset(), {text::TablesTooDeep, deepest});
  }

  // Parentheses that begin together are read in a loop, from the inside.
  FromItem* ParseTablesInParentheses() {
    RequireDepth(++calls_, kDeepestCalls);
    int open = 0;
    for (; reader_.IsSign('(') && !BeginsQuery(); reader_.Advance()) RequireDepth(++open, kDeepestTables);
    FromItem* item = ParseTable();
    for (; open > 0; --open) ParseRestInParentheses(item);
    --calls_;
    return item;
  }

  // Joined tables behind the first, up to the ")"; commas in there join without a condition.
  void ParseRestInParentheses(FromItem* item) {
    ParseJoins(item);
    while (reader_.IsSign(',')) {
      JoinStep* step = AddStep(item, reader_.CurrentText());
      reader_.Advance();
      step->word = JoinWord::Cross;
      step->right = ParseJoined();
    }
    const bool leftOpen = options_.openParenthesesInFrom && AtClauseEnd();
    if (!leftOpen && !reader_.TakeSign(')')) reader_.FailExpected(text::JoinOrClosing);
    if (reader_.Is(Keyword::As) || reader_.Is(TokenKind::QuotedIdentifier) ||
        (reader_.Is(TokenKind::Word) && reader_.Current().keyword == Keyword::None)) {
      reader_.Refuse(reader_.Offset(), text::NoNameForJoin);
    }
  }

  // { oj tables }
  FromItem* ParseJoinEscape() {
    reader_.Advance();
    if (!reader_.IsWord("OJ")) reader_.FailExpected("OJ");
    reader_.Advance();
    FromItem* item = ParseJoined();
    reader_.ExpectSign('}');
    return item;
  }

  // The steps behind those that the item has already.
  JoinStep* AddStep(FromItem* item, std::string_view place) {
    auto* step = Make<JoinStep>();
    step->place = place;
    if (item->lastJoin) {
      item->lastJoin->next = step;
    } else {
      item->joins = step;
    }
    item->lastJoin = step;
    return step;
  }

  static bool IsJoinWord(Keyword keyword) {
    switch (keyword) {
      case Keyword::Cross:
      case Keyword::Full:
      case Keyword::Inner:
      case Keyword::Join:
      case Keyword::Left:
      case Keyword::Natural:
      case Keyword::Outer:
      case Keyword::Right:
        return true;
      default:
        return false;
    }
  }

  void ParseJoins(FromItem* item) {
    while (IsJoinWord(reader_.Current().keyword)) {
      JoinStep* step = AddStep(item, reader_.CurrentText());
      ParseJoinWords(*step);
      step->right = ParseTable();
      // The conditions of joins in a row may all stand behind the last: A JOIN B JOIN C ON ... ON ...
      if (TakesCondition(*step) && IsJoinWord(reader_.Current().keyword)) {
        RequireDepth(++calls_, kDeepestCalls);
        ParseJoins(step->right);
        --calls_;
      }
      ParseJoinCondition(*step);
    }
  }

  static bool TakesCondition(const JoinStep& step) { return step.word != JoinWord::Cross && !step.natural; }

  // Whether the select list needs a table: it names a column. Words that mean something by themselves, and texts in
  // double quotes, are none.
  bool NamesColumn() const {
    for (const SelectItem* item = statement_.items; item; item = item->next) {
      const Expression& e = *item->expression;
      if (e.kind == ExpressionKind::Column && !e.text.starts_with('"') && !NameScope::IsPseudoColumn(e.name))
        return true;
    }
    return false;
  }

  bool HasStar() const {
    for (const SelectItem* item = statement_.items; item; item = item->next) {
      if (item->expression->kind == ExpressionKind::Star) return true;
    }
    return false;
  }

  // The words may come in any order: LEFT OUTER JOIN, OUTER LEFT JOIN.
  void ParseJoinWords(JoinStep& step) {
    Keyword kind = Keyword::None;
    bool outer = false;
    for (; !reader_.Is(Keyword::Join); reader_.Advance()) {
      const Keyword word = reader_.Current().keyword;
      if (word == Keyword::Outer) {
        outer = true;
      } else if (word == Keyword::Natural) {
        step.natural = true;
      } else if (IsJoinWord(word) && kind == Keyword::None) {
        kind = word;
      } else {
        reader_.FailExpected("JOIN");
      }
    }
    const bool keepsRows = kind == Keyword::Left || kind == Keyword::Right || kind == Keyword::Full;
    if (outer && !keepsRows) reader_.FailExpected(text::LeftRightOrFull);
    reader_.Advance();
    step.word = kind == Keyword::Left    ? JoinWord::Left
                : kind == Keyword::Right ? JoinWord::Right
                : kind == Keyword::Full  ? JoinWord::Full
                : kind == Keyword::Cross ? JoinWord::Cross
                                         : JoinWord::Inner;
  }

  void ParseJoinCondition(JoinStep& step) {
    if (!TakesCondition(step)) return;
    if (reader_.Take(Keyword::On)) {
      step.on = expressions_.ParseExpression();
    } else if (reader_.Take(Keyword::Using)) {
      ParseUsing(step);
    } else if (step.word == JoinWord::Inner) {
      step.word = JoinWord::Cross;
    } else {
      RefuseTableClause();
      reader_.FailExpected(text::OnOrUsing);
    }
  }

  void ParseUsing(JoinStep& step) {
    reader_.ExpectSign('(');
    NameItem** end = &step.columns;
    do {
      const std::size_t start = reader_.Offset();
      if (!reader_.Is(TokenKind::Word) && !reader_.Is(TokenKind::QuotedIdentifier)) reader_.FailExpected(text::AColumn);
      reader_.Advance();
      *end = Make<NameItem>();
      (*end)->name = reader_.TextFrom(start);
      end = &(*end)->next;
    } while (reader_.TakeSign(','));
    reader_.ExpectSign(')');
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
  const ParseOptions& options_;
  TokenReader reader_;
  ExpressionParser expressions_;
  int calls_ = 0;
  int depthOfWhole_ = 0;         // parentheses around the statement that are open
  std::size_t tablesUntil_ = 0;  // parentheses in front of this hold tables
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
          .hasSubscripts = dialect.hasSubscripts};
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
