// What the criteria formatter knows about a column and its source.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "zrqrybld/host/date_format.h"
#include "zrqrybld/platform/text_reading.h"

namespace zrqrybld {

struct Dialect;

/// What a criterion is read by: the facts about its column, and how the source writes values.
struct CriteriaContext {
  /// The column's type, a `DataTypeCode`; 0 when it is not known, as for an expression.
  std::int32_t dataType = 0;
  bool isLong = false;
  /// What stands around a literal of the type; "" for the usual: single quotes, or nothing around a number.
  std::string prefix = {};
  std::string suffix = {};
  /// The row's aggregate, as "COUNT(@field)"; "" for none. What counts or adds up is compared with numbers.
  std::string aggregate = {};
  DateFormatEnum dateFormatStyle = DateFormatNative;
  std::string dateFormat = "dd-mmm-yyyy";
  /// Whether the application chose `dateFormat`. Otherwise a source that has a form of its own gets that.
  bool dateFormatChosen = false;
  /// Written for LIKE; read as well as LIKE itself.
  std::string likeOperator = "LIKE";
  /// Read as LIKE, too, while cells are brought over to another operator; "" for none.
  std::string formerLike = {};
  /// What the source writes before a quoted name; tells whether "text" in double quotes is one.
  std::string quotePrefix = "[";
  /// How the source reads literals; none when nobody has told. Literals are then written as standard SQL has them.
  std::optional<TextReading> reading = {};
  /// The dialect of the statement; none writes values as standard SQL and the source have them.
  const Dialect* dialect = nullptr;
  /// The dialect that the connected source speaks; none while it does not tell what it is.
  const Dialect* source = nullptr;
  /// Whether a name, given by its parts, is a column of the diagram. Without it every name in quotes or with a "."
  /// is taken for one, and so is a plain word where the type has none.
  std::function<bool(const std::vector<std::string>& parts)> isColumn = {};
};

}  // namespace zrqrybld
