// qbParameters: the run-time parameters of a statement, which stand in its text as ?PARAM markers.
//
//   ?PARAM(prompt, default, name, data type)
//
// A marker is found in any letter case, also inside literals and comments, and ends at the first ")" behind it.
// Arguments may be missing from the right; commas inside quotes and brackets do not separate them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "zrqrybld/base/collection.h"
#include "zrqrybld/base/export.h"
#include "zrqrybld/base/keyed_list.h"
#include "zrqrybld/base/object.h"
#include "zrqrybld/base/variant.h"

namespace zrqrybld {

class qbParameters;
class qbQueryBuilder;
struct QueryContext;

/// One parameter. Everything but the owner may be changed by whoever handles it.
class ZRQRYBLD_API qbParameter final : public Object {
 public:
  std::string_view TypeName() const override { return "qbParameter"; }

  std::string Prompt;       ///< what to ask the user, quotes included: see `FormatPrompt`
  Variant Default;          ///< put in when `Value` is Empty or ""
  Variant Value;            ///< put in; Empty until somebody sets it
  std::string Name;         ///< "" when the marker names none
  Variant DataType;         ///< as the marker has it
  std::string QuotePrefix;  ///< what the source writes around a value of `DataType`, when that is one of its types;
  std::string QuoteSuffix;  ///< whoever sets `Value` puts them around it, nobody else does

  /// The prompt without its quotes: one of "'", '"', "[" at the front and at the end, or else the texts of the hub's
  /// `QuotedIdentifiers` there. "]" goes only as one of these.
  std::string FormatPrompt() const;

 private:
  friend class qbParameters;
  explicit qbParameter(std::weak_ptr<QueryContext> context) : context_(std::move(context)) {}

  std::weak_ptr<QueryContext> context_;
};

/// The parameters of a statement in the order of their markers; the n-th has the key "param:" and n.
class ZRQRYBLD_API qbParameters final : public Object {
 public:
  explicit qbParameters(const Ref<QueryContext>& context) : context_(context) {}
  std::string_view TypeName() const override { return "qbParameters"; }

  /// Removes all parameters.
  void Clear() { items_.Clear(); }
  /// How many there are; positions run from 1 to it.
  std::int32_t Count() const { return static_cast<std::int32_t>(items_.Count()); }
  /// Walks them in that order, for a range-based loop.
  CollectionIterator<qbParameters> begin() const { return CollectionIterator(*this); }
  std::default_sentinel_t end() const { return {}; }
  /// The parameter at a position from 1 or under its key. Error 9 when there is none.
  Ref<qbParameter> Item(const Variant& index) const { return *items_.At(RequirePosition(items_, index)); }
  /// Removes a parameter by position or key. Error 9 when there is none.
  void Remove(const Variant& index) { items_.RemoveAt(RequirePosition(items_, index)); }
  /// The hub that the statement belongs to, or nothing.
  Ref<qbQueryBuilder> QueryBuilder() const;

  /// Adds the parameter that the text between a marker's parentheses describes.
  void AddFromMarker(std::string_view arguments);

 private:
  std::weak_ptr<QueryContext> context_;
  KeyedList<Ref<qbParameter>> items_;
};

/// Where a marker stands in a text: `length` bytes from `offset`.
struct MarkerPlace {
  std::size_t offset = 0;
  std::size_t length = 0;
};

/// A statement taken apart: its parameters, and its text with "?param:n?" in the place of each marker.
struct ScannedStatement {
  Ref<qbParameters> parameters;
  std::string text;
  std::vector<MarkerPlace> markers;  ///< in the text that was scanned
};

/// Finds all markers of a text. A "?PARAM" without parentheses behind it stays as it stands.
ZRQRYBLD_API ScannedStatement ScanParameters(std::string_view text, const Ref<QueryContext>& context);

/// The markers of a text as they are written, each once, in their order.
std::vector<std::string> ParameterMarkers(std::string_view text);

/// The text with every "?param:n?" replaced by the n-th value, from the first to the last: what a value brings in is
/// replaced by those behind it. Error 40002 when the text grows beyond 64 MB by this.
std::string PutInValues(std::string text, const std::vector<std::string>& values);

}  // namespace zrqrybld
