#include "zrqrybld/sql/query_begin.h"

#include <vector>

#include "zrqrybld/sql/lexer.h"

namespace zrqrybld {
namespace {

constexpr std::size_t kDeepest = 250;

bool IsSetWord(Keyword keyword) {
  return keyword == Keyword::Union || keyword == Keyword::Intersect || keyword == Keyword::Except ||
         keyword == Keyword::Minus;
}

// What stands behind a query in parentheses and belongs to one around it.
bool GoesOnAsQuery(Keyword keyword) {
  return IsSetWord(keyword) || keyword == Keyword::Order || keyword == Keyword::Limit || keyword == Keyword::Offset ||
         keyword == Keyword::Fetch;
}

class Look {
 public:
  Look(std::string_view text, std::size_t open) : text_(text), ahead_(text) { ahead_.SetPosition(open); }

  QueryBegin Run() {
    QueryBegin begin;
    std::vector<std::size_t> open;
    while (Next() && IsSign('(')) open.push_back(token_.offset);
    begin.first = token_.offset;
    const bool isSelect = token_.keyword == Keyword::Select || token_.keyword == Keyword::With;
    if (!isSelect || open.empty()) return begin;
    begin.select = open.back();
    if (open.size() > kDeepest) return begin;
    begin.query = begin.select;
    for (std::size_t level = open.size(), depth = level; level > 1;) {
      if (!Next()) break;
      if (IsSign('(')) ++depth;
      if (!IsSign(')') || --depth >= level) continue;
      const std::size_t behind = ahead_.Position();
      if (!Next() || !(IsSign(')') || GoesOnAsQuery(token_.keyword))) break;
      --level;
      begin.query = open[level - 1];
      if (IsSetWord(token_.keyword)) begin.compound = begin.query;
      ahead_.SetPosition(behind);
    }
    return begin;
  }

 private:
  bool Next() {
    do {
      if (!ahead_.Next(token_)) return false;
    } while (token_.kind == TokenKind::Comment);
    return true;
  }
  bool IsSign(char sign) const {
    return token_.kind == TokenKind::Operator && token_.length == 1 && text_[token_.offset] == sign;
  }

  std::string_view text_;
  Lexer ahead_;
  Token token_;
};

}  // namespace

QueryBegin LookForQuery(std::string_view text, std::size_t open) { return Look(text, open).Run(); }

bool HoldsQuery(std::string_view text, std::size_t open) {
  const QueryBegin begin = LookForQuery(text, open);
  return begin.select == open || begin.compound == open;
}

}  // namespace zrqrybld
