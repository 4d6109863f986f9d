#include "zrqrybld/sql/rename.h"

#include <vector>

#include "zrqrybld/base/text.h"
#include "zrqrybld/sql/lexer.h"

namespace zrqrybld {
namespace {

class Renamer {
 public:
  Renamer(std::string_view text, std::string_view before, const NameRules& rules)
      : text_(text), tokens_(Tokenize(text)), before_{{Identifier(std::string(before))}, SplitName(before, rules)} {
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
  std::string NameOf(const Token& token) const {
    const std::string_view written = text_.substr(token.offset, token.length);
    return token.kind == TokenKind::QuotedIdentifier && !token.unfinished ? RemoveIdentifierQuotes(written, {})
                                                                          : std::string(written);
  }
  bool IsDot(std::size_t i) const {
    return i < tokens_.size() && tokens_[i].length == 1 && text_[tokens_[i].offset] == '.';
  }
  bool IsName(std::size_t i, const Identifier& name) const {
    if (i >= tokens_.size()) return false;
    const TokenKind kind = tokens_[i].kind;
    return (kind == TokenKind::Word || kind == TokenKind::QuotedIdentifier) &&
           EqualsNoCase(NameOf(tokens_[i]), name.Name());
  }

  // The token behind the table's name when it begins at `i` and a "." follows; `i` otherwise. A name behind a "." is
  // not the table's: it is a column, or a table of another schema.
  std::size_t EndOfQualifier(std::size_t i) const {
    if (i > 0 && IsDot(i - 1)) return i;
    for (const std::vector<Identifier>& parts : before_) {
      const std::size_t end = i + parts.size() * 2 - 1;
      bool isTable = IsDot(end);
      for (std::size_t part = 0; isTable && part < parts.size(); ++part) {
        isTable = IsName(i + part * 2, parts[part]) && IsDot(i + part * 2 + 1);
      }
      if (isTable) return end;
    }
    return i;
  }

  std::string_view text_;
  std::vector<Token> tokens_;
  std::vector<std::vector<Identifier>> before_;  // as one name, and as schema and table
};

}  // namespace

std::string RenameQualifier(std::string_view text, std::string_view before, const SqlText& after,
                            const NameRules& rules) {
  return Renamer(text, before, rules).Run(after.Text());
}

}  // namespace zrqrybld
