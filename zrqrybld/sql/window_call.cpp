#include "zrqrybld/sql/window_call.h"

#include <algorithm>
#include <array>
#include <utility>

#include "zrqrybld/base/text.h"
#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/lexer.h"
#include "zrqrybld/sql/missing_words.h"

namespace zrqrybld {
namespace {

constexpr std::string_view kUnits[] = {"", "ROWS", "RANGE", "GROUPS"};

// The tokens of a text, each parenthesis with its partner.
class Tokens {
 public:
  explicit Tokens(std::string_view text) : text_(text), tokens_(Tokenize(text)), partner_(tokens_.size(), kNone) {
    std::vector<std::size_t> open;
    for (std::size_t i = 0; i < tokens_.size(); ++i) {
      if (Is(i, "(")) open.push_back(i);
      if (!Is(i, ")") || open.empty()) continue;
      partner_[i] = open.back();
      partner_[open.back()] = i;
      open.pop_back();
    }
  }

  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

  std::size_t Count() const { return tokens_.size(); }
  const Token& At(std::size_t i) const { return tokens_[i]; }
  std::string_view Text(std::size_t i) const { return text_.substr(tokens_[i].offset, tokens_[i].length); }
  std::size_t End(std::size_t i) const { return tokens_[i].offset + tokens_[i].length; }
  bool Is(std::size_t i, std::string_view word) const {
    const TokenKind kind = i < Count() ? tokens_[i].kind : TokenKind::Comment;
    return (kind == TokenKind::Word || kind == TokenKind::Operator) && EqualsNoCase(Text(i), word);
  }
  bool IsName(std::size_t i) const {
    return i < Count() && (tokens_[i].kind == TokenKind::Word || tokens_[i].kind == TokenKind::QuotedIdentifier);
  }
  std::size_t Partner(std::size_t i) const { return i < Count() ? partner_[i] : kNone; }
  // The token behind this one, past what stands in its parentheses.
  std::size_t Next(std::size_t i) const { return Is(i, "(") && partner_[i] != kNone ? partner_[i] + 1 : i + 1; }
  // As it was typed.
  std::string Part(std::size_t from, std::size_t to) const {
    return from < to ? std::string(text_.substr(tokens_[from].offset, End(to - 1) - tokens_[from].offset)) : "";
  }

 private:
  std::string_view text_;
  std::vector<Token> tokens_;
  std::vector<std::size_t> partner_;
};

// Reads a call from its OVER on, backwards and forwards. Nothing is taken that could not be written as it was.
class Reader {
 public:
  Reader(const Tokens& tokens, std::size_t over) : tokens_(tokens), over_(over) {}

  std::optional<WindowCallPlace> Read() {
    end_ = tokens_.Partner(over_ + 1);
    if (end_ == Tokens::kNone || !ReadCall() || !ReadWindow()) return std::nullopt;
    for (std::size_t i = begin_; i < end_; ++i) {
      if (tokens_.At(i).kind == TokenKind::Comment || tokens_.At(i).unfinished) return std::nullopt;
    }
    const std::size_t offset = tokens_.At(begin_).offset;
    return WindowCallPlace{std::move(call_), offset, tokens_.End(end_) - offset};
  }

 private:
  bool ReadCall() {
    std::size_t close = over_;  // behind the call's ")"
    while (true) {
      if (close < 2) return false;
      const std::size_t last = close - 1;
      if (tokens_.Is(last, "NULLS") && (tokens_.Is(last - 1, "IGNORE") || tokens_.Is(last - 1, "RESPECT"))) {
        close -= 2;
        continue;
      }
      const std::size_t open = tokens_.Is(last, ")") ? tokens_.Partner(last) : Tokens::kNone;
      if (open == Tokens::kNone || open == 0) return false;
      if (tokens_.Is(open - 1, "FILTER")) {
        close = open - 1;
      } else if (open > 1 && tokens_.Is(open - 1, "GROUP") && tokens_.Is(open - 2, "WITHIN")) {
        close = open - 2;
      } else {
        return ReadName(open, close);
      }
    }
  }

  bool ReadName(std::size_t open, std::size_t close) {
    if (!tokens_.IsName(open - 1)) return false;
    begin_ = open - 1;
    while (begin_ > 1 && tokens_.Is(begin_ - 1, ".") && tokens_.IsName(begin_ - 2)) begin_ -= 2;
    call_.function = tokens_.Part(begin_, open);
    call_.arguments = tokens_.Part(open + 1, close - 1);
    call_.rest = tokens_.Part(close, over_);
    return true;
  }

  bool ReadWindow() {
    std::size_t at = over_ + 2;
    if (at < end_ && tokens_.IsName(at) && !IsHead(at) && (at + 1 == end_ || IsHead(at + 1))) {
      call_.window = tokens_.Part(at, at + 1);
      ++at;
    }
    if (tokens_.Is(at, "PARTITION") && tokens_.Is(at + 1, "BY")) {
      at += 2;
      if (!ReadList(at,
                    [this](std::size_t from, std::size_t to) { call_.partitions.push_back(tokens_.Part(from, to)); }))
        return false;
    }
    if (tokens_.Is(at, "ORDER") && tokens_.Is(at + 1, "BY")) {
      at += 2;
      if (!ReadList(at, [this](std::size_t from, std::size_t to) { ReadOrder(from, to); })) return false;
    }
    if (std::ranges::any_of(call_.orders, [](const WindowOrder& order) { return order.expression.empty(); }))
      return false;
    return at == end_ || ReadFrame(at);
  }

  // Whether a part of a window begins here.
  bool IsHead(std::size_t at) const {
    if (tokens_.Is(at, "PARTITION") || tokens_.Is(at, "ORDER")) return tokens_.Is(at + 1, "BY");
    const bool isUnit = tokens_.Is(at, kUnits[1]) || tokens_.Is(at, kUnits[2]) || tokens_.Is(at, kUnits[3]);
    return isUnit && at + 1 < end_ && !tokens_.Is(at + 1, ",") && !tokens_.Is(at + 1, ".");
  }

  // Whether an expression may end before this token, so that a name there is none of its own.
  bool EndsBefore(std::size_t at) const {
    constexpr std::array kGoOn{Keyword::And,  Keyword::Or,     Keyword::Not,    Keyword::Like, Keyword::Between,
                               Keyword::In,   Keyword::Is,     Keyword::Case,   Keyword::When, Keyword::Then,
                               Keyword::Else, Keyword::Escape, Keyword::Collate};
    const Token& last = tokens_.At(at - 1);
    if (last.kind == TokenKind::Operator) return tokens_.Is(at - 1, ")");
    return std::ranges::find(kGoOn, last.keyword) == kGoOn.end();
  }

  // The parts between commas, to where the next part of the window begins. None may be empty.
  template <typename Take>
  bool ReadList(std::size_t& at, Take take) {
    std::size_t from = at;
    for (;; at = tokens_.Next(at)) {
      const bool ends = at >= end_ || (at > from && EndsBefore(at) && IsHead(at));
      if (!ends && !tokens_.Is(at, ",")) continue;
      if (at == from) return false;
      take(from, at);
      from = at + 1;
      if (ends) return at <= end_;
    }
  }

  void ReadOrder(std::size_t from, std::size_t to) {
    WindowOrder order;
    if (to >= from + 3 && tokens_.Is(to - 2, "NULLS") && (tokens_.Is(to - 1, "FIRST") || tokens_.Is(to - 1, "LAST"))) {
      order.nulls = tokens_.Is(to - 1, "FIRST") ? WindowOrder::Nulls::First : WindowOrder::Nulls::Last;
      to -= 2;
    }
    order.descending = tokens_.Is(to - 1, "DESC");
    if (order.descending || tokens_.Is(to - 1, "ASC")) --to;
    order.expression = tokens_.Part(from, to);
    call_.orders.push_back(std::move(order));
  }

  bool ReadFrame(std::size_t at) {
    for (std::size_t unit = 1; unit < std::size(kUnits); ++unit) {
      if (tokens_.Is(at, kUnits[unit])) call_.unit = static_cast<FrameUnit>(unit);
    }
    if (call_.unit == FrameUnit::None) return false;
    ++at;
    if (tokens_.Is(at, "BETWEEN")) {
      if (!ReadBound(++at, call_.from) || !tokens_.Is(at, "AND") || !ReadBound(++at, call_.to)) return false;
    } else if (!ReadBound(at, call_.from)) {
      return false;
    }
    if (at < end_ && !tokens_.Is(at, "EXCLUDE")) return false;
    call_.exclusion = tokens_.Part(at, end_);
    return true;
  }

  bool ReadBound(std::size_t& at, FrameBound& bound) {
    const std::size_t from = at;
    while (at < end_ && !tokens_.Is(at, "PRECEDING") && !tokens_.Is(at, "FOLLOWING") &&
           !(tokens_.Is(at, "ROW") && tokens_.Is(at - 1, "CURRENT")))
      at = tokens_.Next(at);
    if (at >= end_ || at == from) return false;
    const bool isBefore = tokens_.Is(at, "PRECEDING");
    bound = {};
    if (tokens_.Is(at, "ROW")) {
      if (at != from + 1) return false;
    } else if (at == from + 1 && tokens_.Is(from, "UNBOUNDED")) {
      bound.edge = isBefore ? FrameEdge::First : FrameEdge::Last;
    } else {
      bound = {isBefore ? FrameEdge::Before : FrameEdge::After, tokens_.Part(from, at)};
    }
    ++at;
    return true;
  }

  const Tokens& tokens_;
  std::size_t over_;
  std::size_t begin_ = 0;
  std::size_t end_ = 0;  // its last ")"
  WindowCall call_;
};

// Of calls that cannot be read only so many are looked at, so that hostile texts take no longer than others.
constexpr std::size_t kMostTried = 100;

bool IsOver(const Tokens& tokens, std::size_t i) { return tokens.Is(i, "OVER") && tokens.Is(i + 1, "("); }

void WriteBound(const FrameBound& bound, std::string& text) {
  const std::string distance = bound.distance.empty() ? "1" : bound.distance;
  switch (bound.edge) {
    case FrameEdge::First:
      text += "UNBOUNDED PRECEDING";
      break;
    case FrameEdge::Before:
      text += distance + " PRECEDING";
      break;
    case FrameEdge::Current:
      text += "CURRENT ROW";
      break;
    case FrameEdge::After:
      text += distance + " FOLLOWING";
      break;
    case FrameEdge::Last:
      text += "UNBOUNDED FOLLOWING";
      break;
  }
}

struct KnownFunction {
  WindowFunction function;
  bool everywhere = true;  // otherwise some dialects miss its name
};
constexpr KnownFunction kFunctions[] = {
    {{"CUME_DIST", false, ""}},          {{"DENSE_RANK", false, ""}},
    {{"FIRST_VALUE", true, ""}},         {{"LAG", true, ", 1"}},
    {{"LAST_VALUE", true, ""}},          {{"LEAD", true, ", 1"}},
    {{"NTH_VALUE", true, ", 2"}, false}, {{"NTILE", false, "4"}},
    {{"PERCENT_RANK", false, ""}},       {{"RANK", false, ""}},
    {{"ROW_NUMBER", false, ""}},
};

}  // namespace

namespace {

// Words in wrong places may read otherwise once they are written: such a call is none.
std::optional<WindowCallPlace> ReadCall(const Tokens& tokens, std::size_t over) {
  std::optional<WindowCallPlace> found = Reader(tokens, over).Read();
  if (!found) return std::nullopt;
  const std::string written = WriteWindowCall(found->call);
  const Tokens again(written);
  for (std::size_t i = again.Count(); i-- > 0;) {
    if (!IsOver(again, i) || again.Partner(i + 1) != again.Count() - 1) continue;
    const std::optional<WindowCallPlace> same = Reader(again, i).Read();
    return same && same->offset == 0 && same->call == found->call ? found : std::nullopt;
  }
  return std::nullopt;
}

}  // namespace

// Calls within one another end the other way round than they begin, so the first one that ends behind the place and
// holds it is the innermost.
std::optional<WindowCallPlace> FindWindowCall(std::string_view text, std::size_t place) {
  const Tokens tokens(text);
  std::vector<std::size_t> holding;
  for (std::size_t i = 0; i < tokens.Count(); ++i) {
    if (!IsOver(tokens, i) || tokens.Partner(i + 1) == Tokens::kNone) continue;
    if (tokens.End(tokens.Partner(i + 1)) >= place) holding.push_back(i);
  }
  std::ranges::stable_sort(holding, {}, [&](std::size_t over) { return tokens.Partner(over + 1); });
  if (holding.size() > kMostTried) holding.resize(kMostTried);
  for (const std::size_t over : holding) {
    std::optional<WindowCallPlace> found = ReadCall(tokens, over);
    if (found && found->offset <= place) return found;
  }
  return std::nullopt;
}

std::optional<WindowCallPlace> FirstWindowCall(std::string_view text) {
  const Tokens tokens(text);
  std::size_t tried = 0;
  for (std::size_t i = 0; i < tokens.Count() && tried < kMostTried; ++i) {
    if (!IsOver(tokens, i)) continue;
    ++tried;
    if (std::optional<WindowCallPlace> found = ReadCall(tokens, i)) return found;
  }
  return std::nullopt;
}

std::string WriteWindowCall(const WindowCall& call) {
  std::string text = call.function + "(" + call.arguments + ")";
  if (!call.rest.empty()) text += " " + call.rest;
  text += " OVER (";
  const std::size_t inside = text.size();
  const auto part = [&](std::string_view words) {
    if (text.size() > inside) text += " ";
    text += words;
  };
  const auto list = [&](std::string_view words, const auto& parts, const auto& write) {
    bool first = true;
    for (const auto& one : parts) {
      const std::string written = write(one);
      if (written.empty()) continue;
      if (first) {
        part(words);
      } else {
        text += ",";
      }
      first = false;
      text += " " + written;
    }
  };
  if (!call.window.empty()) part(call.window);
  list("PARTITION BY", call.partitions, [](const std::string& expression) { return expression; });
  list("ORDER BY", call.orders, [](const WindowOrder& order) {
    constexpr std::string_view kNulls[] = {"", " NULLS FIRST", " NULLS LAST"};
    if (order.expression.empty()) return std::string();
    return order.expression + (order.descending ? " DESC" : "") +
           std::string(kNulls[static_cast<std::size_t>(order.nulls)]);
  });
  if (call.unit != FrameUnit::None) {
    part(kUnits[static_cast<std::size_t>(call.unit)]);
    text += " BETWEEN ";
    WriteBound(call.from, text);
    text += " AND ";
    WriteBound(call.to, text);
    if (!call.exclusion.empty()) text += " " + call.exclusion;
  }
  return text + ")";
}

WindowCallFault FaultOf(const WindowCall& call, const Dialect& dialect) {
  if (call.unit == FrameUnit::None) return WindowCallFault::None;
  const auto orders = std::ranges::count_if(call.orders, [](const WindowOrder& o) { return !o.expression.empty(); });
  const auto hasDistance = [](const FrameBound& bound) {
    return bound.edge == FrameEdge::Before || bound.edge == FrameEdge::After;
  };
  const bool inValues = call.unit == FrameUnit::Range && (hasDistance(call.from) || hasDistance(call.to));
  if (inValues && Misses(dialect, "RANGE")) return WindowCallFault::DistanceInValues;
  // A window that it builds upon may hold the order.
  if (call.window.empty()) {
    if (call.unit == FrameUnit::Groups && orders == 0) return WindowCallFault::GroupsWithoutOrder;
    if (inValues && orders != 1) return WindowCallFault::DistanceWithoutOrder;
  }
  const bool turned =
      call.from.edge > call.to.edge || call.from.edge == FrameEdge::Last || call.to.edge == FrameEdge::First;
  return turned ? WindowCallFault::EndsBeforeItBegins : WindowCallFault::None;
}

void SetFunction(WindowCall& call, const WindowFunction& before, const WindowFunction& now) {
  call.function = now.name;
  std::string operand = before.takesOperand ? call.arguments : std::string();
  if (operand.ends_with(before.further)) operand.resize(operand.size() - before.further.size());
  call.arguments = (now.takesOperand ? operand : std::string()) + std::string(now.further);
}

std::vector<WindowFunction> WindowFunctionsOf(const Dialect& dialect) {
  std::vector<WindowFunction> result;
  if (Misses(dialect, "OVER")) return result;
  for (const KnownFunction& known : kFunctions) {
    if (known.everywhere || !Misses(dialect, known.function.name)) result.push_back(known.function);
  }
  return result;
}

}  // namespace zrqrybld
