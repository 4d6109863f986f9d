#include "zrqrybld/sql/inner_queries.h"

#include "zrqrybld/base/text.h"
#include "zrqrybld/sql/lexer.h"
#include "zrqrybld/sql/query_begin.h"

namespace zrqrybld {
namespace {

constexpr std::string_view kLeftOut = "\xE2\x80\xA6";

// Most cells hold no query, and are not looked at by words.
bool MayHoldQuery(std::string_view text) {
  return text.find('(') != std::string_view::npos &&
         (FindNoCase(text, "SELECT") != std::string_view::npos || FindNoCase(text, "WITH") != std::string_view::npos);
}

class Reader {
 public:
  explicit Reader(std::string_view text) : text_(text) {
    Lexer lexer(text);
    for (Token token; lexer.Next(token);) {
      if (token.kind != TokenKind::Comment) tokens_.push_back(token);
    }
  }

  // Calls back with the places of each query's parentheses among the tokens.
  template <class Found>
  void ForEach(Found found) const {
    std::size_t open = tokens_.size();  // of the query that is read
    std::size_t depth = 0;
    QueryBegin begin;  // of the parentheses that follow one another here
    for (std::size_t at = 0; at < tokens_.size(); ++at) {
      if (IsSign(at, '(')) {
        const std::size_t place = tokens_[at].offset;
        if (open == tokens_.size() && (begin.first == std::string_view::npos || begin.first <= place)) {
          begin = LookForQuery(text_, place);
        }
        if (open == tokens_.size() && (place == begin.select || place == begin.compound)) {
          open = at;
          depth = 0;
        }
        ++depth;
      } else if (IsSign(at, ')') && open < tokens_.size() && --depth == 0) {
        found(open, at);
        open = tokens_.size();
      }
    }
  }

  InnerQueryPlace PlaceOf(std::size_t open, std::size_t close) const {
    return {tokens_[open].offset + 1, tokens_[close].offset};
  }

  // "SELECT Orders…"
  std::string Shortened(std::size_t open, std::size_t close) const {
    std::size_t first = open + 1;
    while (IsSign(first, '(')) ++first;
    const std::size_t from = FirstFrom(first, close);
    std::string text = std::string(WordAt(first)) + " ";
    if (from == close || IsSign(from + 1, '(')) return text + std::string(kLeftOut);
    std::size_t at = from + 1;
    while (at + 2 < close && IsSign(at + 1, '.')) at += 2;
    text += text_.substr(tokens_[from + 1].offset, tokens_[at].offset + tokens_[at].length - tokens_[from + 1].offset);
    return text + std::string(kLeftOut);
  }

 private:
  std::string_view WordAt(std::size_t at) const { return text_.substr(tokens_[at].offset, tokens_[at].length); }
  bool IsSign(std::size_t at, char sign) const {
    return at < tokens_.size() && tokens_[at].kind == TokenKind::Operator && WordAt(at) == std::string_view(&sign, 1);
  }
  // Of the query's own FROM; `close` when it has none.
  std::size_t FirstFrom(std::size_t at, std::size_t close) const {
    for (int depth = 0; at + 1 < close; ++at) {
      if (IsSign(at, '(')) ++depth;
      if (IsSign(at, ')')) --depth;
      if (depth == 0 && tokens_[at].keyword == Keyword::From) return at;
    }
    return close;
  }

  std::string_view text_;
  std::vector<Token> tokens_;
};

}  // namespace

std::vector<InnerQueryPlace> InnerQueriesIn(std::string_view text) {
  std::vector<InnerQueryPlace> places;
  if (!MayHoldQuery(text)) return places;
  const Reader reader(text);
  reader.ForEach([&](std::size_t open, std::size_t close) { places.push_back(reader.PlaceOf(open, close)); });
  return places;
}

std::string ShortWithQueries(std::string_view text) {
  std::string shortened;
  if (!MayHoldQuery(text)) return shortened;
  const Reader reader(text);
  std::size_t behind = 0;
  reader.ForEach([&](std::size_t open, std::size_t close) {
    const InnerQueryPlace place = reader.PlaceOf(open, close);
    shortened += text.substr(behind, place.begin - behind);
    shortened += reader.Shortened(open, close);
    behind = place.end;
  });
  return behind == 0 ? shortened : shortened + std::string(text.substr(behind));
}

}  // namespace zrqrybld
