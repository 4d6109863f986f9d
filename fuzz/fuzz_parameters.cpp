// Any bytes as a statement and, behind a line feed, a value: whatever the value is, it stays one token where a marker
// stood, or a part of the token around it.
#include <cstdlib>

#include "zrqrybld/base/error.h"
#include "zrqrybld/sql/lexer.h"
#include "zrqrybld/sql/parameter_values.h"
#include "zrqrybld/sql/parameters.h"

namespace {

using namespace zrqrybld;

bool Encloses(const Token& token, std::size_t offset) {
  return token.kind != TokenKind::Operator && token.offset <= offset && offset < token.offset + token.length;
}

std::string WithoutMarkers(std::string_view sql, const std::vector<MarkerPlace>& markers) {
  std::string blank(sql);
  for (const MarkerPlace& marker : markers) blank.replace(marker.offset, marker.length, marker.length, ' ');
  return blank;
}

// The kinds of the tokens; where a marker stands outside of all of them, a text.
std::vector<TokenKind> WantedKinds(const std::string& blank, const std::vector<MarkerPlace>& markers) {
  std::vector<TokenKind> kinds;
  std::size_t next = 0;
  const auto takeBefore = [&](std::size_t offset) {
    for (; next < markers.size() && markers[next].offset < offset; ++next) kinds.push_back(TokenKind::String);
  };
  for (const Token& token : Tokenize(blank)) {
    takeBefore(token.offset);
    while (next < markers.size() && Encloses(token, markers[next].offset)) ++next;
    kinds.push_back(token.kind);
  }
  takeBefore(blank.size() + 1);
  return kinds;
}

// Text that no parser takes: a value could end what is open there.
bool HoldsWhatIsOpen(std::string_view sql) {
  for (const Token& token : Tokenize(sql)) {
    const bool isHalfDate = token.kind == TokenKind::Word && BeginsAsDate(sql.substr(token.offset, token.length));
    if (token.unfinished || isHalfDate) return true;
  }
  return false;
}

// Letters that make one literal of themselves and the text behind them.
bool PrefixesText(std::string_view sql, const MarkerPlace& marker) {
  return marker.offset > 0 && std::string_view("NXBnxb").find(sql[marker.offset - 1]) != std::string_view::npos;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const std::size_t end = std::min(text.find('\n'), size);
  const std::string_view sql = text.substr(0, end);
  const std::string value(text.substr(std::min(end + 1, size)));
  const ScannedStatement scanned = ScanParameters(sql, nullptr);
  const auto count = static_cast<std::size_t>(scanned.parameters->Count());
  if (scanned.markers.size() != count) std::abort();
  try {
    PutInValues(scanned.text, std::vector<std::string>(count, value));
  } catch (const Error& error) {
    if (error.Number() != ErrorParsingText) std::abort();
  }

  const std::string blank = WithoutMarkers(sql, scanned.markers);
  if (HoldsWhatIsOpen(blank)) return 0;
  for (const MarkerPlace& marker : scanned.markers) {
    if (PrefixesText(sql, marker)) return 0;
  }
  const SnapshotType kText{.code = 200, .isLong = false, .prefix = {}, .suffix = {}};
  const bool isRefused = count > 0 && value.find('\0') != std::string::npos;
  const bool mayBeRefused = isRefused || sql.find('[') != std::string_view::npos;  // of a name, or of an array
  std::string result;
  try {
    result = PutInLiterals(sql, std::vector<ParameterValue>(count, {.text = value, .type = kText}), {});
    if (isRefused) std::abort();
  } catch (const Error& error) {
    if (!mayBeRefused || error.Number() != ErrorInvalidPropertyValue) std::abort();
    return 0;
  }
  std::vector<TokenKind> kinds;
  for (const Token& token : Tokenize(result)) kinds.push_back(token.kind);
  if (kinds != WantedKinds(blank, scanned.markers)) std::abort();
  return 0;
}
