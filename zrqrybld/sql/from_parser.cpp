#include "zrqrybld/sql/from_parser.h"

#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_sql.h"
#include "zrqrybld/sql/expression_parser.h"
#include "zrqrybld/sql/keywords.h"
#include "zrqrybld/sql/lexer.h"
#include "zrqrybld/sql/name_scope.h"
#include "zrqrybld/sql/query_begin.h"
#include "zrqrybld/sql/token_reader.h"

namespace zrqrybld {
namespace {

// How deep tables may be nested in parentheses that begin together, and how deep otherwise, which costs stack.
constexpr int kDeepestTables = 4000;
constexpr int kDeepestCalls = 250;

bool IsJoinWord(Keyword keyword) {
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

bool TakesCondition(const JoinStep& step) { return step.word != JoinWord::Cross && !step.natural; }

}  // namespace

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

void RefuseBeyondDesigner(const TokenReader& reader) {
  const Keyword keyword = reader.Current().keyword;
  if (IsBeyondDesigner(keyword)) reader.Refuse(reader.Offset(), {text::CannotShow, NameOf(keyword)});
}

std::string_view FromParser::ParseAlias(bool textAllowed) {
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

void FromParser::ParseFrom() {
  reader_.Expect(Keyword::From);
  if (IsEmptyTable()) {
    reader_.Advance();
  } else if (!AtClauseEnd() || IsTableCalledAsLimit()) {
    statement_.from = ParseTables();
  } else if (NamesColumn() || !rules_.mayEndAtFrom) {
    reader_.FailExpected(text::ATable);
  }
}

bool FromParser::IsEmptyTable() const {
  const bool isNamed = !rules_.emptyTable.empty() && EqualsNoCase(reader_.CurrentText(), rules_.emptyTable);
  if (!isNamed || !MayLackTables() || NamesColumn()) return false;
  TokenReader behind = reader_;
  behind.Advance();
  return AtClauseEnd(behind);
}

bool FromParser::AtClauseEnd(const TokenReader& reader) const {
  const Keyword keyword = reader.Current().keyword;
  return reader.AtEnd() || reader.IsSign(';') || (inParentheses_ && reader.IsSign(')')) || keyword == Keyword::Where ||
         keyword == Keyword::Group || keyword == Keyword::Having || keyword == Keyword::Order ||
         keyword == Keyword::Limit || keyword == Keyword::Fetch || keyword == Keyword::Offset;
}

// These words are names, too; at the beginning of FROM only what follows tells.
bool FromParser::IsTableCalledAsLimit() const {
  const Token next = reader_.Peek();
  if (reader_.Is(Keyword::Limit) || reader_.Is(Keyword::Offset)) return next.kind != TokenKind::Number;
  const std::string_view word = statement_.text.substr(next.offset, next.length);
  return reader_.Is(Keyword::Fetch) && !EqualsNoCase(word, "FIRST") && !EqualsNoCase(word, "NEXT");
}

FromItem* FromParser::ParseTables() {
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
  RefuseBeyondDesigner(reader_);
  return first;
}

// What may stand behind a table elsewhere.
void FromParser::RefuseTableClause() {
  if (reader_.Is(TokenKind::Word) && BeginsTableClause(reader_.CurrentText())) {
    reader_.Refuse(reader_.Offset(), {text::CannotShow, UpperAscii(reader_.CurrentText())});
  }
}

// A table and what is joined to it.
FromItem* FromParser::ParseJoined() {
  FromItem* item = ParseTable();
  ParseJoins(item);
  return item;
}

FromItem* FromParser::ParseTable() {
  if (reader_.IsSign('(')) return BeginsQuery() ? ParseQueryInFrom() : ParseTablesInParentheses();
  if (reader_.IsSign('{')) return ParseJoinEscape();
  auto* item = statement_.arena.Make<FromItem>();
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

// Whether what stands in the parenthesis here is a query, not tables. Parentheses that follow one another are looked
// through once where they hold tables.
bool FromParser::BeginsQuery() {
  if (reader_.Offset() < tablesUntil_) return false;
  const QueryBegin begin = LookForQuery(statement_.text, reader_.Offset());
  if (begin.query == std::string_view::npos) tablesUntil_ = begin.first;
  return begin.query == reader_.Offset();
}

// A query in the place of a table; its name stands where a table's alias does.
FromItem* FromParser::ParseQueryInFrom() {
  auto* item = statement_.arena.Make<FromItem>();
  const std::size_t open = reader_.Offset();
  reader_.Advance();
  const std::size_t start = reader_.Offset();
  expressions_.NoteQuery(start);
  while (!reader_.AtEnd() && !reader_.IsSign(')')) SkipOne();
  if (reader_.AtEnd()) reader_.FailOpen(open, "\")\"");
  item->query = statement_.text.substr(start, reader_.Offset() - start);
  reader_.Advance();
  item->table = ParseAlias(false);
  if (!item->table.empty() && reader_.IsSign('(')) {
    if (!rules_.namesColumns) reader_.Refuse(reader_.Offset(), text::NoNamesOfColumns);
    item->columns = ParseNames();
  }
  return item;
}

// A token, or what stands in parentheses.
void FromParser::SkipOne() {
  const bool opens = reader_.TakeSign('(');
  if (opens) reader_.SkipTo(')');
  reader_.Advance();
}

void FromParser::RequireDepth(int depth, int deepest) const {
  if (depth <= deepest) return;
  reader_.Refuse(reader_.Offset(), {text::TablesTooDeep, deepest});
}

// Parentheses that begin together are read in a loop, from the inside.
FromItem* FromParser::ParseTablesInParentheses() {
  RequireDepth(++calls_, kDeepestCalls);
  int open = 0;
  for (; reader_.IsSign('(') && !BeginsQuery(); reader_.Advance()) RequireDepth(++open, kDeepestTables);
  FromItem* item = ParseTable();
  for (; open > 0; --open) ParseRestInParentheses(item);
  --calls_;
  return item;
}

// Joined tables behind the first, up to the ")"; commas in there join without a condition.
void FromParser::ParseRestInParentheses(FromItem* item) {
  ParseJoins(item);
  while (reader_.IsSign(',')) {
    JoinStep* step = AddStep(item, reader_.CurrentText());
    reader_.Advance();
    step->word = JoinWord::Cross;
    step->right = ParseJoined();
  }
  const bool leftOpen = rules_.openParentheses && AtClauseEnd();
  if (!leftOpen && !reader_.TakeSign(')')) reader_.FailExpected(text::JoinOrClosing);
  if (reader_.Is(Keyword::As) || reader_.Is(TokenKind::QuotedIdentifier) ||
      (reader_.Is(TokenKind::Word) && reader_.Current().keyword == Keyword::None)) {
    reader_.Refuse(reader_.Offset(), text::NoNameForJoin);
  }
}

// { oj tables }
FromItem* FromParser::ParseJoinEscape() {
  reader_.Advance();
  if (!reader_.IsWord("OJ")) reader_.FailExpected("OJ");
  reader_.Advance();
  FromItem* item = ParseJoined();
  reader_.ExpectSign('}');
  return item;
}

// The steps behind those that the item has already.
JoinStep* FromParser::AddStep(FromItem* item, std::string_view place) {
  auto* step = statement_.arena.Make<JoinStep>();
  step->place = place;
  if (item->lastJoin) {
    item->lastJoin->next = step;
  } else {
    item->joins = step;
  }
  item->lastJoin = step;
  return step;
}

void FromParser::ParseJoins(FromItem* item) {
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

// Whether the select list needs a table: it names a column. Words that mean something by themselves, and texts in
// double quotes, are none.
bool FromParser::NamesColumn() const {
  for (const SelectItem* item = statement_.items; item; item = item->next) {
    const Expression& e = *item->expression;
    if (e.kind == ExpressionKind::Column && !e.text.starts_with('"') && !NameScope::IsPseudoColumn(e.name)) return true;
  }
  return false;
}

bool FromParser::HasStar() const {
  for (const SelectItem* item = statement_.items; item; item = item->next) {
    if (item->expression->kind == ExpressionKind::Star) return true;
  }
  return false;
}

// The words may come in any order: LEFT OUTER JOIN, OUTER LEFT JOIN.
void FromParser::ParseJoinWords(JoinStep& step) {
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

void FromParser::ParseJoinCondition(JoinStep& step) {
  if (!TakesCondition(step)) return;
  if (reader_.Take(Keyword::On)) {
    step.on = expressions_.ParseExpression();
  } else if (reader_.Take(Keyword::Using)) {
    step.columns = ParseNames();
  } else if (step.word == JoinWord::Inner) {
    step.word = JoinWord::Cross;
  } else {
    RefuseTableClause();
    reader_.FailExpected(text::OnOrUsing);
  }
}

// Names of columns in parentheses.
NameItem* FromParser::ParseNames() {
  reader_.ExpectSign('(');
  NameItem* names = nullptr;
  NameItem** end = &names;
  do {
    const std::size_t start = reader_.Offset();
    if (!reader_.Is(TokenKind::Word) && !reader_.Is(TokenKind::QuotedIdentifier)) reader_.FailExpected(text::AColumn);
    reader_.Advance();
    *end = statement_.arena.Make<NameItem>();
    (*end)->name = reader_.TextFrom(start);
    end = &(*end)->next;
  } while (reader_.TakeSign(','));
  reader_.ExpectSign(')');
  return names;
}

}  // namespace zrqrybld
