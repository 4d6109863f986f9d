#include "zrqrybld/sql/parameters.h"

#include <charconv>
#include <optional>
#include <unordered_set>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_values.h"
#include "zrqrybld/host/context_link.h"
#include "zrqrybld/host/design_queries.h"
#include "zrqrybld/host/source_context.h"

namespace zrqrybld {
namespace {

constexpr std::string_view kMarker = "?PARAM";
constexpr std::string_view kPlaceholder = "?param:";
constexpr std::size_t kLongestText = 64u << 20;
constexpr std::size_t kMostNested = 1000;  // each costs a pass over the text

std::string PlaceholderOf(std::size_t number) { return std::string(kPlaceholder) + std::to_string(number) + "?"; }

// A marker's place in a text: from the first byte up to its closing parenthesis.
struct Marker {
  std::size_t start;
  std::size_t opening;
  std::size_t closing;
};

// The first marker from `at` on. A "?PARAM" without parentheses behind it is none.
std::optional<Marker> FindMarker(std::string_view text, std::size_t at) {
  while ((at = FindNoCase(text, kMarker, at)) != std::string_view::npos) {
    const std::size_t closing = text.find(')', at);
    if (closing == std::string_view::npos) break;
    const std::size_t opening = text.substr(0, closing).find('(', at);
    if (opening != std::string_view::npos) return Marker{at, opening, closing};
    at = closing;  // none of those before it has one either
  }
  return std::nullopt;
}

// The signs of which one is dropped at either end of a prompt.
bool IsQuote(char c) { return c == '\'' || c == '"' || c == '['; }

void RequireBounded(const std::string& text) {
  if (text.size() > kLongestText) {
    throw Error(ErrorParsingText, text::StatementGrows);
  }
}

// One pass over the text, for values that bring in no placeholders.
std::string PutInAtOnce(const std::string& text, const std::vector<std::string>& values) {
  std::string result;
  std::size_t done = 0;
  for (std::size_t at = 0; (at = text.find(kPlaceholder, at)) != std::string::npos;) {
    const char* const digits = text.data() + at + kPlaceholder.size();
    std::size_t number = 0;
    const auto [end, error] = std::from_chars(digits, text.data() + text.size(), number);
    const bool plain = error == std::errc() && *digits != '0' && end != text.data() + text.size() && *end == '?';
    if (!plain || number > values.size()) {
      at += kPlaceholder.size();
      continue;
    }
    result.append(text, done, at - done);
    result += values[number - 1];
    RequireBounded(result);
    at = done = static_cast<std::size_t>(end - text.data()) + 1;
  }
  return result.append(text, done);
}

// The first type with this name, in any letter case; nothing when there is none.
Ref<qbDataType> TypeNamed(const qbDataTypes& types, std::string_view name) {
  for (const Ref<qbDataType>& type : types) {
    if (EqualsNoCase(type->Name, name)) return type;
  }
  return nullptr;
}

}  // namespace

// --- Parameters ---

std::string qbParameter::FormatPrompt() const {
  std::string_view text = Prompt;
  const Ref<QueryContext> context = context_.lock();
  const Ref<StringCollection> quotes =
      context ? context->source.QuotedIdentifiers() : std::make_shared<StringCollection>();
  if (!text.empty() && IsQuote(text.front())) {
    text.remove_prefix(1);
  } else {
    for (const std::string& quote : *quotes) {
      if (!quote.empty() && text.starts_with(quote)) text.remove_prefix(quote.size());
    }
  }
  // "[" and not "]" ends a prompt here: the closing bracket is dropped only as one of the hub's texts.
  if (!text.empty() && IsQuote(text.back())) {
    text.remove_suffix(1);
  } else {
    for (const std::string& quote : *quotes) {
      if (!quote.empty() && text.ends_with(quote)) text.remove_suffix(quote.size());
    }
  }
  return std::string(text);
}

Ref<qbQueryBuilder> qbParameters::QueryBuilder() const {
  const Ref<QueryContext> context = context_.lock();
  return context ? context->design.Hub() : nullptr;
}

void qbParameters::AddFromMarker(std::string_view arguments) {
  const Ref<qbParameter> parameter(new qbParameter(context_));
  const std::vector<std::string_view> pieces = SplitOutsideQuotes(arguments, ",");
  const auto piece = [&pieces](std::size_t index) { return std::string(Trim(pieces[index])); };
  parameter->Prompt = piece(0);
  if (pieces.size() > 1) parameter->Default = piece(1);
  if (pieces.size() > 2) parameter->Name = piece(2);
  if (pieces.size() > 3) {
    parameter->DataType = piece(3);
    const Ref<QueryContext> context = context_.lock();
    if (const Ref<qbDataType> type =
            context ? TypeNamed(*context->source.DataTypes(), parameter->DataType.Text()) : nullptr) {
      parameter->QuotePrefix = type->PrefixLetters;
      parameter->QuoteSuffix = type->SuffixLetters;
    }
  }
  items_.Insert(parameter, "param:" + std::to_string(items_.Count() + 1));
}

// --- The text ---

ScannedStatement ScanParameters(std::string_view text, const Ref<QueryContext>& context) {
  ScannedStatement result{std::make_shared<qbParameters>(context), {}, {}};
  std::size_t done = 0;
  while (const std::optional<Marker> marker = FindMarker(text, done)) {
    result.parameters->AddFromMarker(text.substr(marker->opening + 1, marker->closing - marker->opening - 1));
    result.text += text.substr(done, marker->start - done);
    result.markers.push_back({marker->start, marker->closing + 1 - marker->start});
    result.text += PlaceholderOf(static_cast<std::size_t>(result.parameters->Count()));
    done = marker->closing + 1;
  }
  result.text += text.substr(done);
  return result;
}

std::vector<std::string> ParameterMarkers(std::string_view text) {
  std::vector<std::string> markers;
  std::unordered_set<std::string_view> known;
  std::size_t done = 0;
  while (const std::optional<Marker> marker = FindMarker(text, done)) {
    done = marker->closing + 1;
    const std::string_view written = text.substr(marker->start, done - marker->start);
    if (known.insert(written).second) markers.emplace_back(written);
  }
  return markers;
}

std::string PutInValues(std::string text, const std::vector<std::string>& values) {
  bool nested = false;
  for (const std::string& value : values) nested = nested || value.find(kPlaceholder) != std::string::npos;
  if (!nested) return PutInAtOnce(text, values);
  if (values.size() > kMostNested) throw Error(ErrorParsingText, text::TooManyParameters);
  for (std::size_t i = 0; i < values.size(); ++i) {
    text = ReplaceAll(text, PlaceholderOf(i + 1), values[i]);
    RequireBounded(text);
  }
  return text;
}

}  // namespace zrqrybld
