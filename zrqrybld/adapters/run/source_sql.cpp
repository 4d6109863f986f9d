#include "zrqrybld/adapters/run/source_sql.h"

#include <algorithm>
#include <initializer_list>
#include <iterator>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "zrqrybld/adapters/run/code_reader.h"
#include "zrqrybld/adapters/run/source_effects.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_run.h"
#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/lexer.h"

namespace zrqrybld {
namespace {

// A column may be called INTO: in front of it stands a table's name, and nothing between.
bool IsMember(const Piece& name, const Piece& point, const Piece& piece) {
  return point.text == "." && !name.text.empty() && !IsDigit(name.text.front()) &&
         name.offset + name.text.size() == point.offset && point.offset + 1 == piece.offset;
}

bool IsOneOf(std::string_view word, std::initializer_list<std::string_view> words) {
  return std::ranges::any_of(words, [word](std::string_view one) { return EqualsNoCase(one, word); });
}

// Requires that a query begins where one has to: at the beginning, in each parenthesis of WITH and behind these. Some
// servers would change tables there.
class QueryHeads {
 public:
  void Add(const Piece& piece) {
    if (state_ == State::BehindBody) state_ = piece.text == "," ? State::BeforeName : State::Query;
    if (state_ == State::BeforeName && piece.text == ",") return;
    switch (state_) {
      case State::Query:
        return AddHead(piece);
      case State::BeforeName:
        state_ = EqualsNoCase(piece.text, "RECURSIVE") ? State::Recursive : State::BehindName;
        return;
      case State::Recursive:  // or that is the name
        state_ = State::BehindName;
        if (piece.text != "(" && !EqualsNoCase(piece.text, "AS")) return;
        [[fallthrough]];
      case State::BehindName:
        if (piece.text != "(") return AddAs(piece);
        state_ = State::Columns;
        return;
      case State::Columns:
        if (piece.text == ")") state_ = State::BehindColumns;
        return;
      case State::BehindColumns:
        return AddAs(piece);
      case State::BehindAs:
        if (IsOneOf(piece.text, {"NOT", "MATERIALIZED"})) return;
        if (piece.text != "(") Refuse(piece);
        bodies_.push_back(depth_++);
        state_ = State::Query;
        return;
      default:
        return AddInside(piece);
    }
  }

 private:
  enum class State { Query, BeforeName, Recursive, BehindName, Columns, BehindColumns, BehindAs, Inside, BehindBody };

  [[noreturn]] static void Refuse(const Piece& piece) { RefuseStatement(text::OnlySelectStatement, piece.offset); }

  void AddHead(const Piece& piece) {
    if (piece.text == "(") {
      ++depth_;
    } else if (EqualsNoCase(piece.text, "WITH")) {
      hasWith_ = true;
      state_ = State::BeforeName;
    } else if (EqualsNoCase(piece.text, "SELECT") || (!bodies_.empty() && EqualsNoCase(piece.text, "VALUES"))) {
      state_ = State::Inside;
    } else {
      Refuse(piece);
    }
  }

  void AddAs(const Piece& piece) {
    if (!EqualsNoCase(piece.text, "AS")) Refuse(piece);
    state_ = State::BehindAs;
  }

  void AddInside(const Piece& piece) {
    const bool changes = hasWith_ && opened_ && IsOneOf(piece.text, {"INSERT", "UPDATE", "DELETE", "MERGE"});
    if (changes) Refuse(piece);
    opened_ = piece.text == "(";
    if (opened_) ++depth_;
    if (piece.text != ")") return;
    --depth_;
    if (bodies_.empty() || depth_ != bodies_.back()) return;
    bodies_.pop_back();
    state_ = State::BehindBody;
  }

  State state_ = State::Query;
  int depth_ = 0;
  std::vector<int> bodies_;  // of WITH that are open: the depth around each
  bool hasWith_ = false;
  bool opened_ = false;  // the piece before opens a parenthesis
};

void RequireOneSelectAs(std::string_view sql, const KnownReading& reading) {
  CodeReader reader(sql, reading);
  EffectFinder effects(reading.family);
  QueryHeads heads;
  Piece piece;
  bool any = reader.Next(piece);
  for (; any && piece.text == "("; any = reader.Next(piece)) heads.Add(piece);
  if (!any) RefuseStatement(text::NothingToRun, 0);
  heads.Add(piece);
  bool atStart = EqualsNoCase(piece.text, "SELECT");  // of the select list
  bool ended = false;
  Piece before = piece;
  Piece beforeThat;
  while (reader.Next(piece)) {
    if (ended) RefuseStatement(text::OnlyOneStatement, piece.offset);
    ended = piece.text == ";";
    if (!ended) heads.Add(piece);
    if (EqualsNoCase(piece.text, "INTO") && !IsMember(beforeThat, before, piece)) {
      RefuseStatement(text::SelectInto, piece.offset);
    }
    effects.Add(piece);
    if (atStart && EqualsNoCase(piece.text, "FROM")) {
      RefuseStatement(text::NoColumnYet, piece.offset);
    }
    atStart = atStart && (EqualsNoCase(piece.text, "DISTINCT") || EqualsNoCase(piece.text, "ALL"));
    beforeThat = before;
    before = piece;
  }
}

// What a server may take for another text than the one that is looked at.
void RequireTransparent(std::string_view sql, const SourceMode& mode) {
  if (const std::size_t zero = sql.find('\0'); zero != std::string_view::npos) {
    RefuseStatement(text::ZeroInStatement, zero);
  }
  if (mode.unicode) return;
  const auto beyond = std::ranges::find_if(sql, [](char c) { return static_cast<unsigned char>(c) >= 0x80; });
  if (beyond == sql.end()) return;
  RefuseStatement(text::CharacterSetUnclear, static_cast<std::size_t>(beyond - sql.begin()));
}

// --- Semicolons in another way ---

// The inner text of a literal or name in which a backslash has the meaning of `escapes`.
std::string WithEscapes(std::string_view inner, bool escapes, std::string_view semicolon) {
  std::string text;
  for (std::size_t at = 0; at < inner.size(); ++at) {
    const bool escaped = escapes && inner[at] == '\\' && at + 1 < inner.size();
    if (escaped) ++at;
    if (inner[at] == ';') {
      text += semicolon;
    } else if (escaped || inner[at] == '\\') {
      text += {'\\', inner[at]};
    } else {
      text += inner[at];
    }
  }
  return text;
}

// A literal or name of PostgreSQL without a ";" in it; "" for one that cannot be written so.
std::string WithoutSemicolon(std::string_view piece, bool backslashes) {
  constexpr std::string_view kInLiteral = "\\073";
  if (piece.front() == '\'') return "E" + WithEscapes(piece, backslashes, kInLiteral);
  if (UpperAscii(piece.front()) == 'E' && piece[1] == '\'') return WithEscapes(piece, true, kInLiteral);
  if (piece.front() == '"' && !backslashes) return "U&" + WithEscapes(piece, false, "\\003B");
  if (piece.front() != '$') return {};
  const std::size_t tag = piece.find('$', 1) + 1;
  if (piece.size() < 2 * tag) return {};
  return "E'" + ReplaceAll(WithEscapes(piece.substr(tag, piece.size() - 2 * tag), false, kInLiteral), "'", "''") + "'";
}

// --- What a dialect writes and a source does not know ---

// The tokens that mean something, comments left out.
std::vector<Token> CodeTokens(std::string_view sql) {
  std::vector<Token> tokens = Tokenize(sql);
  std::erase_if(tokens, [](const Token& token) { return token.kind == TokenKind::Comment; });
  return tokens;
}

struct Construct {
  std::string_view words;               // separated by blanks; "0" stands for any number, "#" for a date
  std::span<const SourceFamily> known;  // who understands it
  TextId what;                          // how a message names it
  std::string_view signs;               // in what it says
};

constexpr SourceFamily kTop[] = {SourceFamily::SqlServer, SourceFamily::Access};
constexpr SourceFamily kLimit[] = {SourceFamily::Sqlite, SourceFamily::PostgreSql, SourceFamily::MariaDb};
constexpr SourceFamily kFetch[] = {SourceFamily::PostgreSql, SourceFamily::MariaDb, SourceFamily::SqlServer,
                                   SourceFamily::Oracle};
constexpr SourceFamily kOracle[] = {SourceFamily::Oracle};
constexpr SourceFamily kPostgreSql[] = {SourceFamily::PostgreSql};
constexpr SourceFamily kAccess[] = {SourceFamily::Access};

constexpr Construct kConstructs[] = {
    {"TOP 0", kTop, text::Signs, "TOP"},
    {"TOP ( 0 )", kTop, text::Signs, "TOP"},
    {"LIMIT 0", kLimit, text::Signs, "LIMIT"},
    {"FETCH FIRST 0", kFetch, text::Signs, "FETCH FIRST"},
    {"FETCH NEXT 0", kFetch, text::Signs, "FETCH NEXT"},
    {"*=", {}, text::OuterJoinWritten, "*="},
    {"=*", {}, text::OuterJoinWritten, "=*"},
    {"( + )", kOracle, text::OuterJoinWritten, "(+)"},
    {"ROWNUM", kOracle, text::Signs, "ROWNUM"},
    {"UP TO 0 ROWS", {}, text::Signs, "UP TO ... ROWS"},
    {"ILIKE", kPostgreSql, text::Signs, "ILIKE"},
    {"#", kAccess, text::DatesInNumberSigns, {}},
};

bool Matches(std::string_view sql, const Token& token, std::string_view word) {
  if (word == "0") return token.kind == TokenKind::Number;
  if (word == "#") return token.kind == TokenKind::Date;
  const bool plain = token.kind == TokenKind::Word || token.kind == TokenKind::Operator;
  return plain && EqualsNoCase(sql.substr(token.offset, token.length), word);
}

}  // namespace

void RequireOneSelect(std::string_view sql, const SourceMode& mode) {
  RequireTransparent(sql, mode);
  for (const KnownReading& reading : ReadingsOf(mode)) RequireOneSelectAs(sql, reading);
}

std::string StatementToSend(std::string_view sql, const SourceMode& mode) {
  const std::vector<KnownReading> readings = ReadingsOf(mode);
  if (readings.size() != 1) return std::string(sql);
  std::string sent(sql);
  std::ranges::replace_if(
      sent, [](char c) { return !IsWhite(c); }, ' ');
  CodeReader reader(sql, readings.front());
  for (Piece piece; reader.Next(piece);) {
    if (piece.text != ";") sent.replace(piece.offset, piece.text.size(), piece.text);
  }
  return sent;
}

std::string WithoutSemicolons(std::string_view sql, const SourceMode& mode) {
  if (sql.find(';') == std::string_view::npos) return std::string(sql);
  const std::vector<KnownReading> readings = ReadingsOf(mode);
  std::string text;
  std::size_t end = 0;  // of what is written
  CodeReader reader(sql, readings.front());
  for (Piece piece; reader.Next(piece);) {
    if (piece.text.find(';') == std::string_view::npos) continue;
    const std::string other = piece.text == ";" || readings.size() != 1
                                  ? ""
                                  : WithoutSemicolon(piece.text, readings.front().text.backslashEscapes);
    if (other.empty()) RefuseStatement(text::SemicolonCannotBeSent, piece.offset);
    text.append(sql.substr(end, piece.offset - end)).append(other);
    end = piece.offset + piece.text.size();
  }
  text.append(sql.substr(end));
  const std::size_t left = text.find(';');
  if (left != std::string::npos) RefuseStatement(text::OnlyOneStatement, sql.find(';'));
  return text;
}

void RequireSpoken(std::string_view sql, const Dialect& dialect, std::string_view sourceName) {
  const SourceFamily family = FamilyOf(sourceName);
  if (family == SourceFamily::Other) return;
  const Dialect* own = DialectOfSource(sourceName, {});
  const Phrase advice = own && own != &dialect ? Phrase(text::ChooseDialect, own->name) : Phrase();
  if (!dialect.canBeParsed) {
    RefuseStatement({text::OtherDialect, sourceName, dialect.name, advice}, 0);
  }
  const std::vector<Token> tokens = CodeTokens(sql);
  for (const Construct& construct : kConstructs) {
    if (std::ranges::find(construct.known, family) != construct.known.end()) continue;
    const std::vector<std::string_view> words = Split(construct.words, " ");
    const auto found =
        std::search(tokens.begin(), tokens.end(), words.begin(), words.end(),
                    [sql](const Token& token, std::string_view word) { return Matches(sql, token, word); });
    if (found == tokens.end()) continue;
    RefuseStatement({text::DoesNotKnow, sourceName, Phrase(construct.what, construct.signs), advice}, found->offset);
  }
}

}  // namespace zrqrybld
