#include "adapters/run/source_sql.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "base/error.h"
#include "base/text.h"
#include "sql/lexer.h"

namespace zrqrybld {
namespace {

// --- How a server tells code from literals and comments ---

struct Reading {
  SourceFamily family;
  bool backslashInLiterals = false;  // a backslash takes the meaning of the character behind it
  bool escapeLiterals = false;       // as before, in E'...' only
  bool hashComments = false;
  bool blankAfterDashes = false;  // "--" begins a comment only in front of a blank
  bool commentsNest = false;
  bool commentsHoldCode = false;  // /*! ... */ is run
  bool dollarLiterals = false;    // $tag$ ... $tag$
  bool brackets = false;          // [name]
  bool backticks = false;         // `name`
};

constexpr Reading kReadings[] = {
    {.family = SourceFamily::Sqlite, .brackets = true, .backticks = true},
    {.family = SourceFamily::PostgreSql, .escapeLiterals = true, .commentsNest = true, .dollarLiterals = true},
    {.family = SourceFamily::MariaDb,
     .backslashInLiterals = true,
     .hashComments = true,
     .blankAfterDashes = true,
     .commentsHoldCode = true,
     .backticks = true},
    {.family = SourceFamily::SqlServer, .commentsNest = true, .brackets = true},
    {.family = SourceFamily::Oracle},
    {.family = SourceFamily::Access, .brackets = true, .backticks = true},
};

struct Piece {
  std::size_t offset = 0;
  std::string_view text;  // a word, one sign, or a literal or name with its quotes
};

// The words and signs of a text that a server would act on.
class CodeReader {
 public:
  CodeReader(std::string_view text, const Reading& reading) : text_(text), reading_(reading) {}

  bool Next(Piece& piece) {
    while (at_ < text_.size()) {
      if (SkipWhiteOrComment()) continue;
      const std::size_t start = at_;
      if (SkipQuoted()) {
        // It is one piece.
      } else if (IsWordByte(text_[at_])) {
        while (at_ < text_.size() && (IsWordByte(text_[at_]) || text_[at_] == '$')) ++at_;
        const bool escape = reading_.escapeLiterals && EqualsNoCase(text_.substr(start, at_ - start), "E");
        if (escape && Ahead("'")) SkipLiteral('\'', true);
      } else {
        ++at_;
      }
      piece = {start, text_.substr(start, at_ - start)};
      return true;
    }
    return false;
  }

 private:
  bool Ahead(std::string_view word) const { return text_.substr(at_).starts_with(word); }

  bool SkipWhiteOrComment() {
    if (IsWhite(text_[at_])) {
      ++at_;
      return true;
    }
    const bool dashes = Ahead("--") && (!reading_.blankAfterDashes || at_ + 2 >= text_.size() ||
                                        static_cast<unsigned char>(text_[at_ + 2]) <= ' ');
    if (dashes || (reading_.hashComments && Ahead("#"))) {
      at_ = std::min(text_.find('\n', at_), text_.size());
      return true;
    }
    if (reading_.commentsHoldCode && (Ahead("/*!") || Ahead("/*M!"))) {
      at_ = text_.find('!', at_) + 1;
      while (at_ < text_.size() && IsDigit(text_[at_])) ++at_;
      return true;
    }
    if (!Ahead("/*")) return false;
    SkipComment();
    return true;
  }

  void SkipComment() {
    int depth = 0;
    do {
      if (Ahead("/*") && (depth == 0 || reading_.commentsNest)) {
        ++depth;
        at_ += 2;
      } else if (Ahead("*/")) {
        --depth;
        at_ += 2;
      } else {
        ++at_;
      }
    } while (depth > 0 && at_ < text_.size());
  }

  bool SkipQuoted() {
    const char c = text_[at_];
    if (c == '\'' || c == '"') {
      SkipLiteral(c, reading_.backslashInLiterals);
    } else if (c == '`' && reading_.backticks) {
      SkipLiteral(c, false);
    } else if (c == '[' && reading_.brackets) {
      SkipLiteral(']', false);
    } else if (c == '$' && reading_.dollarLiterals) {
      return SkipDollarLiteral();
    } else {
      return false;
    }
    return true;
  }

  // From the opening character to behind the closing one; doubled it stands for itself.
  void SkipLiteral(char closing, bool backslash) {
    for (++at_; at_ < text_.size(); ++at_) {
      if (backslash && text_[at_] == '\\') {
        ++at_;
      } else if (text_[at_] == closing) {
        if (at_ + 1 >= text_.size() || text_[at_ + 1] != closing) break;
        ++at_;
      }
    }
    at_ = std::min(at_ + 1, text_.size());
  }

  bool SkipDollarLiteral() {
    std::size_t end = at_ + 1;
    while (end < text_.size() && IsWordByte(text_[end])) ++end;
    const bool parameter = end > at_ + 1 && IsDigit(text_[at_ + 1]);
    if (end >= text_.size() || text_[end] != '$' || parameter) return false;
    const std::string_view tag = text_.substr(at_, end + 1 - at_);
    const std::size_t close = text_.find(tag, end + 1);
    at_ = close == std::string_view::npos ? text_.size() : close + tag.size();
    return true;
  }

  std::string_view text_;
  const Reading& reading_;
  std::size_t at_ = 0;
};

[[noreturn]] void Refuse(std::string reason, std::size_t offset) {
  throw Error(ErrorParsingText, std::move(reason), offset);
}

void RequireOneSelectAs(std::string_view sql, const Reading& reading) {
  CodeReader reader(sql, reading);
  Piece piece;
  bool any = reader.Next(piece);
  while (any && piece.text == "(") any = reader.Next(piece);
  if (!any) Refuse("There is no statement to run.", 0);
  if (!EqualsNoCase(piece.text, "SELECT")) Refuse("Only a SELECT statement is run.", piece.offset);
  bool atStart = true;  // of the select list
  bool ended = false;
  Piece before = piece;
  for (; reader.Next(piece); before = piece) {
    if (ended) Refuse("Only one statement is run.", piece.offset);
    ended = piece.text == ";";
    if (EqualsNoCase(piece.text, "INTO") && before.text != ".") {
      Refuse("A SELECT with INTO writes, so it is not run.", piece.offset);
    }
    if (atStart && EqualsNoCase(piece.text, "FROM")) {
      Refuse("The query has no column yet. Tick one in the diagram.", piece.offset);
    }
    atStart = atStart && (EqualsNoCase(piece.text, "DISTINCT") || EqualsNoCase(piece.text, "ALL"));
  }
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
  std::string_view what;                // how a message names it
  std::string_view advice;
};

constexpr SourceFamily kTopFamilies[] = {SourceFamily::SqlServer, SourceFamily::Access};
constexpr SourceFamily kOracle[] = {SourceFamily::Oracle};
constexpr SourceFamily kAccess[] = {SourceFamily::Access};
constexpr std::string_view kWithoutLimit = "Take the limit out: the preview reads a few hundred rows at a time anyway.";
constexpr std::string_view kJoinClauses = "Choose a dialect that writes LEFT JOIN, such as MSSQL.";

constexpr Construct kConstructs[] = {
    {"TOP 0", kTopFamilies, "TOP", kWithoutLimit},
    {"*=", {}, "outer joins written as *=", kJoinClauses},
    {"=*", {}, "outer joins written as =*", kJoinClauses},
    {"( + )", kOracle, "outer joins written as (+)", kJoinClauses},
    {"ROWNUM", kOracle, "ROWNUM", kWithoutLimit},
    {"UP TO 0 ROWS", {}, "UP TO ... ROWS", kWithoutLimit},
    {"#", kAccess, "dates between number signs", "Choose the dialect MSSQL or Generic."},
};

bool Matches(std::string_view sql, const Token& token, std::string_view word) {
  if (word == "0") return token.kind == TokenKind::Number;
  if (word == "#") return token.kind == TokenKind::Date;
  const bool plain = token.kind == TokenKind::Word || token.kind == TokenKind::Operator;
  return plain && EqualsNoCase(sql.substr(token.offset, token.length), word);
}

}  // namespace

SourceFamily FamilyOf(std::string_view sourceName) {
  constexpr std::pair<std::string_view, SourceFamily> kNames[] = {
      {"sqlite", SourceFamily::Sqlite}, {"postgres", SourceFamily::PostgreSql},  {"mariadb", SourceFamily::MariaDb},
      {"mysql", SourceFamily::MariaDb}, {"sql server", SourceFamily::SqlServer}, {"oracle", SourceFamily::Oracle},
      {"access", SourceFamily::Access}};
  for (const auto& [name, family] : kNames) {
    if (FindNoCase(sourceName, name) != std::string::npos) return family;
  }
  return SourceFamily::Other;
}

void RequireOneSelect(std::string_view sql, SourceFamily family) {
  for (const Reading& reading : kReadings) {
    if (family == SourceFamily::Other || family == reading.family) RequireOneSelectAs(sql, reading);
  }
}

void RequireSpoken(std::string_view sql, const Dialect& dialect, std::string_view sourceName) {
  const SourceFamily family = FamilyOf(sourceName);
  if (family == SourceFamily::Other) return;
  const std::string source(sourceName);
  if (!dialect.canBeParsed) {
    Refuse(source + " does not speak " + std::string(dialect.name) + ". Choose another dialect to see rows.", 0);
  }
  const std::vector<Token> tokens = CodeTokens(sql);
  for (const Construct& construct : kConstructs) {
    if (std::ranges::find(construct.known, family) != construct.known.end()) continue;
    const std::vector<std::string_view> words = Split(construct.words, " ");
    const auto found =
        std::search(tokens.begin(), tokens.end(), words.begin(), words.end(),
                    [sql](const Token& token, std::string_view word) { return Matches(sql, token, word); });
    if (found == tokens.end()) continue;
    Refuse(source + " does not know " + std::string(construct.what) + ". " + std::string(construct.advice),
           found->offset);
  }
}

}  // namespace zrqrybld
