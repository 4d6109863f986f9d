#include "zrqrybld/sql/value_places.h"

#include <algorithm>
#include <cstdint>
#include <optional>

#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_values.h"
#include "zrqrybld/sql/array_brackets.h"
#include "zrqrybld/sql/lexer.h"
#include "zrqrybld/sql/source_lexer.h"

namespace zrqrybld {
namespace {

// What a marker stands in.
struct Enclosure {
  enum class Kind : std::uint8_t { None, Quotes, Date, Comment, PlainComment, Raw, Unclear };
  Kind kind = Kind::None;
  char closing = '\0';
  bool escapes = false;
};

// --- Putting together ---

std::string WithBlanksFor(std::string text, std::string_view signs) {
  std::ranges::replace_if(
      text, [signs](char c) { return signs.find(c) != std::string_view::npos; }, ' ');
  return text;
}

std::string Doubled(const std::string& text, char c) { return ReplaceAll(text, std::string(1, c), std::string(2, c)); }

// The bare value with what would end the token around it taken out or doubled.
std::string Inside(const Enclosure& enclosure, const std::string& bare) {
  switch (enclosure.kind) {
    case Enclosure::Kind::Quotes:
      return Doubled(enclosure.escapes ? Doubled(bare, '\\') : bare, enclosure.closing);
    case Enclosure::Kind::Date:
      return WithBlanksFor(bare, "#\r\n");
    case Enclosure::Kind::Comment:
      return WithBlanksFor(bare, "*/\r\n");
    case Enclosure::Kind::PlainComment:
      return WithBlanksFor(bare, "*/\r\n;'\"`?{}");
    default:
      return bare;
  }
}

// Two words, figures on both sides of a point, quotes, or signs that would begin a comment want a blank between them.
bool WouldMerge(char before, char after) {
  const auto isWord = [](char c) { return IsWordByte(c) || c == '@' || c == '#' || c == '$' || c == '.'; };
  return (isWord(before) && isWord(after)) || (before == '-' && after == '-') || (before == '\'' && after == '\'');
}

void AppendApart(std::string& text, std::string_view piece) {
  if (!text.empty() && !piece.empty() && WouldMerge(text.back(), piece.front())) text += ' ';
  text += piece;
}

struct Region {
  std::size_t begin = 0;
  std::size_t end = 0;
};

// A statement, and where the values stand in it.
struct Assembled {
  std::string text;
  std::vector<Region> regions;
};

class Assembler {
 public:
  Assembler(std::string_view sql, const std::vector<MarkerPlace>& markers, const std::vector<PlacedText>& texts,
            const std::vector<Enclosure>& enclosures)
      : sql_(sql), markers_(markers), texts_(texts), enclosures_(enclosures) {}

  // With the values, or with harmless ones written in the same way.
  Assembled Run(bool standIns) {
    for (std::size_t i = 0; i < markers_.size(); ++i) {
      CopyUpTo(markers_[i].offset);
      done_ = markers_[i].offset + markers_[i].length;
      Put(i, standIns);
    }
    CopyUpTo(sql_.size());
    return std::move(result_);
  }

 private:
  void CopyUpTo(std::size_t end) {
    const std::string_view piece = sql_.substr(done_, end - done_);
    if (afterLiteral_) {
      AppendApart(result_.text, piece);
    } else {
      result_.text += piece;
    }
  }

  void Put(std::size_t i, bool standIns) {
    const PlacedText& text = texts_[i];
    const bool enclosed = enclosures_[i].kind != Enclosure::Kind::None;
    afterLiteral_ = text.given && !enclosed;
    std::string piece;
    if (!text.given) {
      piece = sql_.substr(markers_[i].offset, markers_[i].length);
    } else if (enclosed) {
      piece = standIns ? "x" : Inside(enclosures_[i], text.bare);
    } else {
      piece = standIns ? text.standIn : text.literal;
    }
    if (afterLiteral_) {
      AppendApart(result_.text, piece);
    } else {
      result_.text += piece;
    }
    result_.regions.push_back({result_.text.size() - piece.size(), result_.text.size()});
  }

  std::string_view sql_;
  const std::vector<MarkerPlace>& markers_;
  const std::vector<PlacedText>& texts_;
  const std::vector<Enclosure>& enclosures_;
  Assembled result_;
  std::size_t done_ = 0;
  bool afterLiteral_ = false;
};

// --- What markers stand in ---

// The text with another one of the same length in the place of each marker.
std::string WithoutMarkers(std::string_view sql, const std::vector<MarkerPlace>& markers, char instead) {
  std::string text(sql);
  for (const MarkerPlace& marker : markers) text.replace(marker.offset, marker.length, marker.length, instead);
  return text;
}

// Whether a bracket there is that of a name for some sources and picks an element, or lists some, for others: it stands
// close behind ARRAY, a name or what a parenthesis or bracket has closed.
bool IsUnclearBracket(std::string_view text, const Token& token, const Token& before) {
  if (text[token.offset] != '[' || before.length == 0 || before.offset + before.length != token.offset) return false;
  const char last = text[token.offset - 1];
  const bool isName =
      before.kind == TokenKind::QuotedIdentifier || (before.kind == TokenKind::Word && before.keyword == Keyword::None);
  return isName || last == ')' || last == ']' || BeginsArray(text, token.offset);
}

// By the designer's lexer; the markers count as white space.
std::vector<Enclosure> EnclosuresByLexer(std::string_view sql, const std::vector<MarkerPlace>& markers) {
  const std::string text = WithoutMarkers(sql, markers, ' ');
  Token before;
  const auto enclosureOf = [&](const Token& token) -> Enclosure {
    switch (token.kind) {
      case TokenKind::String:
        return {Enclosure::Kind::Quotes, '\'', false};
      case TokenKind::QuotedIdentifier:
        if (IsUnclearBracket(text, token, before)) return {Enclosure::Kind::Unclear, '\0', false};
        return {Enclosure::Kind::Quotes, text[token.offset] == '[' ? ']' : text[token.offset], false};
      case TokenKind::Date:
        return {Enclosure::Kind::Date, '#', false};
      case TokenKind::Comment:
        return {Enclosure::Kind::Comment, '\0', false};
      default:
        return {};
    }
  };
  std::vector<Enclosure> enclosures(markers.size());
  std::size_t next = 0;
  Lexer lexer(text);
  for (Token token; next < markers.size() && lexer.Next(token);) {
    for (; next < markers.size() && markers[next].offset < token.offset + token.length; ++next) {
      if (markers[next].offset >= token.offset) enclosures[next] = enclosureOf(token);
    }
    before = token;
  }
  return enclosures;
}

Enclosure EnclosureOf(const SourceToken& token) {
  switch (token.part) {
    case SourcePart::Text:
    case SourcePart::Name:
      return {Enclosure::Kind::Quotes, token.closing, token.escapes};
    case SourcePart::Date:
      return {Enclosure::Kind::Date, '#', false};
    case SourcePart::Comment:  // drivers look for quotes and the ends of statements, too, and know comments less well
      return {Enclosure::Kind::PlainComment, '\0', false};
    case SourcePart::Raw:
      return {Enclosure::Kind::Raw, '\0', false};
    default:
      return {};
  }
}

// --- Reading again ---

std::vector<SourceToken> TokensOf(std::string_view text, const TextReading& reading) {
  std::vector<SourceToken> tokens;
  SourceLexer lexer(text, reading);
  for (SourceToken token; lexer.Next(token);) tokens.push_back(token);
  return tokens;
}

// Places of a text counted in that of the stand-ins; those within a value that differs are none.
class Places {
 public:
  Places(const Assembled& from, const Assembled& to) : from_(from), to_(to) {}

  // To be asked in ascending order.
  std::optional<std::size_t> Of(std::size_t place) {
    while (next_ < from_.regions.size() && from_.regions[next_].end <= place) ++next_;
    const bool inside = next_ < from_.regions.size() && from_.regions[next_].begin < place;
    if (!inside) return place - Before(from_) + Before(to_);
    const Region& ours = from_.regions[next_];
    const Region& theirs = to_.regions[next_];
    const bool same =
        from_.text.compare(ours.begin, ours.end - ours.begin, to_.text, theirs.begin, theirs.end - theirs.begin) == 0;
    return same ? std::optional(place - ours.begin + theirs.begin) : std::nullopt;
  }

  // The value at or before the place asked last.
  std::size_t Value() const { return next_ < from_.regions.size() ? next_ : from_.regions.size() - 1; }

 private:
  // The end of the last value before the place.
  std::size_t Before(const Assembled& text) const { return next_ == 0 ? 0 : text.regions[next_ - 1].end; }

  const Assembled& from_;
  const Assembled& to_;
  std::size_t next_ = 0;
};

// Asks of what the source reads whether each value is one, as it was meant.
class Review {
 public:
  Review(const Assembled& placed, const Assembled& standIns, const std::vector<PlacedText>& texts,
         const std::vector<Enclosure>& enclosures, const TextReading& reading)
      : placed_(placed), standIns_(standIns), texts_(texts), enclosures_(enclosures), reading_(reading) {}

  void Run(std::vector<Phrase>& problems) {
    const std::vector<SourceToken> tokens = TokensOf(placed_.text, reading_);
    if (std::optional<std::size_t> value = FirstDifference(tokens)) problems[*value] = text::ChangesStatement;
    LiteralsOfTheirOwn(tokens, problems);
  }

 private:
  // The value at which the tokens begin to differ from those of a harmless one.
  std::optional<std::size_t> FirstDifference(const std::vector<SourceToken>& tokens) const {
    const std::vector<SourceToken> wanted = TokensOf(standIns_.text, reading_);
    Places places(placed_, standIns_);
    for (std::size_t i = 0; i < tokens.size(); ++i) {
      SourceToken token = tokens[i];
      const std::optional<std::size_t> begin = places.Of(token.begin);
      const std::optional<std::size_t> end = places.Of(token.end);
      if (!begin || !end || i >= wanted.size()) return places.Value();
      token.begin = *begin;
      token.end = *end;
      if (token != wanted[i]) return places.Value();
    }
    if (tokens.size() < wanted.size()) return places.Value();
    return std::nullopt;
  }

  // A literal with any characters has to be read as one that was written as this one.
  void LiteralsOfTheirOwn(const std::vector<SourceToken>& tokens, std::vector<Phrase>& problems) const {
    std::size_t at = 0;
    for (std::size_t i = 0; i < texts_.size(); ++i) {
      if (!texts_[i].given || !texts_[i].anyText || enclosures_[i].kind != Enclosure::Kind::None) continue;
      while (at < tokens.size() && tokens[at].end < placed_.regions[i].end) ++at;
      const bool isLiteral = at < tokens.size() && tokens[at].part == SourcePart::Text &&
                             tokens[at].end == placed_.regions[i].end && tokens[at].escapes == texts_[i].escapes;
      if (!isLiteral) problems[i] = text::ChangesStatement;
    }
  }

  const Assembled& placed_;
  const Assembled& standIns_;
  const std::vector<PlacedText>& texts_;
  const std::vector<Enclosure>& enclosures_;
  const TextReading& reading_;
};

}  // namespace

PlacedStatement PlaceTexts(std::string_view sql, const std::vector<MarkerPlace>& markers,
                           const std::vector<PlacedText>& texts) {
  const std::vector<Enclosure> enclosures = EnclosuresByLexer(sql, markers);
  std::vector<Phrase> problems(markers.size());
  for (std::size_t i = 0; i < enclosures.size(); ++i) {
    const bool same = texts[i].bare == texts[i].literal;  // such as a number, which is one in both
    if (enclosures[i].kind == Enclosure::Kind::Unclear && !same) problems[i] = text::ReadInSeveralWays;
  }
  return {Assembler(sql, markers, texts, enclosures).Run(false).text, std::move(problems)};
}

PlacedStatement PlaceTexts(std::string_view sql, const std::vector<MarkerPlace>& markers,
                           const std::vector<PlacedText>& texts, const TextReading& reading) {
  PlacedStatement result{{}, std::vector<Phrase>(markers.size())};
  if (markers.empty()) return {std::string(sql), {}};
  // A sign that no source takes for the beginning of anything.
  const std::string text = WithoutMarkers(sql, markers, '?');
  std::vector<Enclosure> enclosures(markers.size());
  std::size_t next = 0;
  bool afterUnicode = false;
  for (const SourceToken& token : TokensOf(text, reading)) {
    if (token.part == SourcePart::CodeComment) std::ranges::fill(result.problems, Phrase(text::VersionComment));
    const bool dashes = token.part == SourcePart::Code && std::string_view(text).substr(token.begin).starts_with("--");
    if (dashes) std::ranges::fill(result.problems, Phrase(text::DashesInStatement));
    // UESCAPE gives the part of "\" to another character.
    const std::string_view word = std::string_view(text).substr(token.begin, token.end - token.begin);
    if (afterUnicode && EqualsNoCase(word, "UESCAPE")) result.problems[next - 1] = text::ChangesStatement;
    for (; next < markers.size() && markers[next].offset < token.end; ++next) {
      if (markers[next].offset >= token.begin) enclosures[next] = EnclosureOf(token);
    }
    const bool holdsMarker = next > 0 && markers[next - 1].offset >= token.begin;
    if (token.part != SourcePart::Comment) afterUnicode = token.unicode && holdsMarker;
  }
  const Assembled placed = Assembler(sql, markers, texts, enclosures).Run(false);
  const Assembled standIns = Assembler(sql, markers, texts, enclosures).Run(true);
  Review(placed, standIns, texts, enclosures, reading).Run(result.problems);
  result.text = placed.text;
  return result;
}

}  // namespace zrqrybld
