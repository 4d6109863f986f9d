#include "zrqrybld/sql/rename.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "zrqrybld/base/text.h"
#include "zrqrybld/sql/inner_queries.h"
#include "zrqrybld/sql/lexer.h"

namespace zrqrybld {
namespace {

std::string NameOf(std::string_view text, const Token& token) {
  const std::string_view written = text.substr(token.offset, token.length);
  return token.kind == TokenKind::QuotedIdentifier && !token.unfinished ? RemoveIdentifierQuotes(written, {})
                                                                        : std::string(written);
}

class Renamer {
 public:
  // `schemas` are places of names in FROM that are schemas, in their order.
  Renamer(std::string_view text, std::string_view before, const NameRules& rules, std::vector<std::size_t> schemas)
      : text_(text),
        tokens_(Tokenize(text)),
        before_{{Identifier(std::string(before))}, SplitName(before, rules)},
        schemas_(std::move(schemas)) {
    std::erase_if(tokens_, [](const Token& token) { return token.kind == TokenKind::Comment; });
  }

  std::string Run(const std::string& replacement) const {
    std::string result;
    std::size_t copied = 0;
    for (std::size_t i = 0; i < tokens_.size(); ++i) {
      const std::size_t end = EndOfQualifier(i);
      if (end == i) continue;
      result.append(text_, copied, tokens_[i].offset - copied);
      result += replacement;
      const Token& last = tokens_[end - 1];
      copied = last.offset + last.length;
      i = end;  // on the "." behind it
    }
    result.append(text_, copied);
    return result;
  }

 private:
  bool IsDot(std::size_t i) const {
    return i < tokens_.size() && tokens_[i].length == 1 && text_[tokens_[i].offset] == '.';
  }
  bool IsName(std::size_t i, const Identifier& name) const {
    if (i >= tokens_.size()) return false;
    const TokenKind kind = tokens_[i].kind;
    return (kind == TokenKind::Word || kind == TokenKind::QuotedIdentifier) &&
           EqualsNoCase(NameOf(text_, tokens_[i]), name.Name());
  }

  // The token behind the table's name when it begins at `i` and a "." follows; `i` otherwise. A name behind a "." is
  // not the table's: it is a column, or a table of another schema.
  std::size_t EndOfQualifier(std::size_t i) const {
    if (i > 0 && IsDot(i - 1)) return i;
    if (std::ranges::binary_search(schemas_, tokens_[i].offset)) return i;
    for (const std::vector<Identifier>& parts : before_) {
      const std::size_t end = i + parts.size() * 2 - 1;
      bool isTable = IsDot(end);
      for (std::size_t part = 0; isTable && part < parts.size(); ++part) {
        isTable = IsName(i + part * 2, parts[part]) && IsDot(i + part * 2 + 1);
      }
      const bool isSchema = parts.size() == 1 && IsDot(end + 2);  // of "schema.table.column"
      if (isTable && !isSchema) return end;
    }
    return i;
  }

  std::string_view text_;
  std::vector<Token> tokens_;
  std::vector<std::vector<Identifier>> before_;  // as one name, and as schema and table
  std::vector<std::size_t> schemas_;
};

// Finds where a table stands in FROM of queries in parentheses.
class SourceFinder {
 public:
  SourceFinder(std::string_view text, std::string_view name) : text_(text), name_(name), tokens_(Tokenize(text)) {
    std::erase_if(tokens_, [](const Token& token) { return token.kind == TokenKind::Comment; });
    for (at_ = 0; at_ < tokens_.size(); ++at_) Take();
  }

  const std::vector<Token>& Found() const { return found_; }
  /// Where the name is that of a schema, before a table in FROM.
  const std::vector<std::size_t>& Schemas() const { return schemas_; }
  /// Whether "name.column" means it.
  bool Qualifies() const { return bare_ && !isAlias_; }
  /// Whether the text has a query of its own that is called so.
  bool IsOther() const { return isOther_; }

 private:
  struct Level {
    bool isQuery = false;
    bool inFrom = false;
  };

  void Take() {
    const bool atSource = std::exchange(atSource_, false);
    if (IsSign('(')) {
      const Keyword next = KeywordAt(at_ + 1);
      const bool isQuery = next == Keyword::Select || next == Keyword::With;
      levels_.push_back({isQuery, atSource && !isQuery});  // tables that are joined first
      atSource_ = levels_.back().inFrom;
    } else if (IsSign(')')) {
      if (levels_.size() > 1) levels_.pop_back();
    } else if (IsSign(',')) {
      atSource_ = levels_.back().inFrom;
    } else if (tokens_[at_].kind == TokenKind::QuotedIdentifier || KeywordAt(at_) == Keyword::None) {
      TakeName(atSource);
    } else {
      TakeKeyword(KeywordAt(at_));
    }
  }

  void TakeKeyword(Keyword keyword) {
    Level& level = levels_.back();
    switch (keyword) {
      case Keyword::From:
        atSource_ = level.inFrom = level.isQuery;
        break;
      case Keyword::Join:
        atSource_ = level.inFrom;
        break;
      case Keyword::Select:
        level.isQuery = true;  // also behind a member of UNION that has parentheses of its own
        [[fallthrough]];
      case Keyword::Where:
      case Keyword::Group:
      case Keyword::Having:
      case Keyword::Order:
      case Keyword::Union:
      case Keyword::Intersect:
      case Keyword::Except:
        level.inFrom = false;
        break;
      default:
        break;
    }
  }

  void TakeName(bool atSource) {
    if (!IsName(at_) || !EqualsNoCase(NameAt(at_), name_)) return;
    if (IsSignAt(at_ + 1, '.')) {
      if (atSource) schemas_.push_back(tokens_[at_].offset);
      return;
    }
    const Keyword before = at_ == 0 ? Keyword::None : KeywordAt(at_ - 1);
    const Keyword behind = KeywordAt(at_ + 1);
    const bool recursive = at_ > 0 && EqualsNoCase(NameAt(at_ - 1), "RECURSIVE");
    if (before == Keyword::With || recursive || (behind == Keyword::As && IsSignAt(at_ + 2, '('))) {
      isOther_ = true;
    } else if (atSource) {
      found_.push_back(tokens_[at_]);
      bare_ |= behind != Keyword::As && !IsName(at_ + 1);
    } else if (levels_.back().inFrom && at_ > 0) {
      isAlias_ |= before == Keyword::As || IsName(at_ - 1) || IsSignAt(at_ - 1, ')');
    }
  }

  bool IsName(std::size_t at) const {
    return at < tokens_.size() && (tokens_[at].kind == TokenKind::QuotedIdentifier ||
                                   (tokens_[at].kind == TokenKind::Word && tokens_[at].keyword == Keyword::None));
  }
  std::string NameAt(std::size_t at) const { return NameOf(text_, tokens_[at]); }
  Keyword KeywordAt(std::size_t at) const { return at < tokens_.size() ? tokens_[at].keyword : Keyword::None; }
  bool IsSign(char sign) const { return IsSignAt(at_, sign); }
  bool IsSignAt(std::size_t at, char sign) const {
    return at < tokens_.size() && tokens_[at].length == 1 && text_[tokens_[at].offset] == sign;
  }

  const std::string_view text_;
  const std::string_view name_;
  std::vector<Token> tokens_;
  std::vector<Token> found_;
  std::vector<std::size_t> schemas_;
  std::vector<Level> levels_{Level()};
  std::size_t at_ = 0;
  bool atSource_ = false;  // a table stands next
  bool bare_ = false;      // it stands in FROM without an alias
  bool isAlias_ = false;
  bool isOther_ = false;
};

// The same for one query with its parentheses.
std::string RenameInQuery(std::string_view query, std::string_view before, const SqlText& after,
                          const NameRules& rules) {
  const SourceFinder finder(query, before);
  if (finder.IsOther() || finder.Found().empty()) return std::string(query);
  std::string result;
  std::size_t copied = 0;
  for (const Token& token : finder.Found()) {
    result.append(query, copied, token.offset - copied);
    result += after.Text();
    copied = token.offset + token.length;
  }
  result.append(query, copied);
  return finder.Qualifies() ? RenameQualifier(result, before, after, rules) : result;
}

}  // namespace

std::string RenameSource(std::string_view text, std::string_view before, const SqlText& after, const NameRules& rules) {
  std::string result;
  std::size_t copied = 0;
  for (const InnerQueryPlace& place : InnerQueriesIn(text)) {
    const std::size_t open = place.begin - 1;
    result.append(text, copied, open - copied);
    copied = place.end + 1;
    result += RenameInQuery(text.substr(open, copied - open), before, after, rules);
  }
  return result.append(text, copied);
}

std::string RenameQualifier(std::string_view text, std::string_view before, const SqlText& after,
                            const NameRules& rules) {
  return Renamer(text, before, rules, SourceFinder(text, before).Schemas()).Run(after.Text());
}

std::string QualifyColumns(std::string_view text,
                           const std::unordered_map<std::string, SqlText, HashNoCase, EqualNoCase>& tables) {
  const std::vector<InnerQueryPlace> queries = InnerQueriesIn(text);
  std::vector<Token> tokens = Tokenize(text);
  std::erase_if(tokens, [](const Token& token) { return token.kind == TokenKind::Comment; });
  const auto isSign = [&](std::size_t at, char sign) {
    return at < tokens.size() && tokens[at].length == 1 && text[tokens[at].offset] == sign;
  };
  std::string result;
  std::size_t copied = 0;
  auto query = queries.begin();
  for (std::size_t at = 0; at < tokens.size(); ++at) {
    const Token& token = tokens[at];
    while (query != queries.end() && query->end <= token.offset) ++query;
    const bool inQuery = query != queries.end() && query->begin <= token.offset;
    const bool isName = token.kind == TokenKind::QuotedIdentifier || token.kind == TokenKind::Word;
    if (inQuery || !isName || (at > 0 && isSign(at - 1, '.')) || isSign(at + 1, '.') || isSign(at + 1, '(')) continue;
    const auto table = tables.find(NameOf(text, token));
    if (table == tables.end()) continue;
    result.append(text, copied, token.offset - copied);
    result += table->second.Text() + ".";
    copied = token.offset;
  }
  return result.append(text, copied);
}

}  // namespace zrqrybld
