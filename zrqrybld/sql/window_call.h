// A function over the rows around each row, f(...) OVER (PARTITION BY ... ORDER BY ... frame), taken apart and put
// together again. Pure.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "zrqrybld/base/export.h"

namespace zrqrybld {

struct Dialect;

/// What is counted from the current row to where a frame begins and ends.
enum class FrameUnit : std::uint8_t {
  None,    ///< no frame is written: the function has its own
  Rows,    ///< single rows
  Range,   ///< values of what the rows are ordered by
  Groups,  ///< rows that are equal in their order
};

enum class FrameEdge : std::uint8_t {
  First,    ///< the first row of all
  Before,   ///< a distance before the current row
  Current,  ///< the current row
  After,    ///< a distance behind it
  Last,     ///< the last row of all
};

struct FrameBound {
  FrameEdge edge = FrameEdge::Current;
  std::string distance;  ///< an expression; of `Before` and `After` only
  friend bool operator==(const FrameBound&, const FrameBound&) = default;
};

/// An expression that rows are ordered by.
struct WindowOrder {
  enum class Nulls : std::uint8_t { AsTheServer, First, Last };

  std::string expression;
  bool descending = false;
  Nulls nulls = Nulls::AsTheServer;
  friend bool operator==(const WindowOrder&, const WindowOrder&) = default;
};

/// Such a call. Expressions are SQL as it was typed.
struct WindowCall {
  std::string function;   ///< its name
  std::string arguments;  ///< between its parentheses; DISTINCT stands there, too
  std::string rest;       ///< between the call and OVER: FILTER (...), IGNORE NULLS; "" for nothing
  std::string window;     ///< the window of the query that this one builds upon; "" for none
  std::vector<std::string> partitions;
  std::vector<WindowOrder> orders;
  FrameUnit unit = FrameUnit::None;
  FrameBound from{FrameEdge::First, {}};
  FrameBound to;
  std::string exclusion;  ///< EXCLUDE ... of the frame; "" for none
  friend bool operator==(const WindowCall&, const WindowCall&) = default;
};

/// A call in a text, in bytes from 0.
struct WindowCallPlace {
  WindowCall call;
  std::size_t offset = 0;
  std::size_t length = 0;
};

/// The innermost call that the place stands in, or at the end of. None when there is none, and when it says something
/// that a `WindowCall` does not hold, such as a comment.
ZRQRYBLD_API std::optional<WindowCallPlace> FindWindowCall(std::string_view text, std::size_t place);

/// The first call of a text; none as above.
ZRQRYBLD_API std::optional<WindowCallPlace> FirstWindowCall(std::string_view text);

/// The call as SQL. Partitions and orders without an expression are left out, a distance that is missing is written
/// as 1.
ZRQRYBLD_API std::string WriteWindowCall(const WindowCall& call);

/// What keeps servers from taking a call.
enum class WindowCallFault : std::uint8_t {
  None,
  GroupsWithoutOrder,    ///< groups of equal rows are counted, but the rows have no order
  DistanceWithoutOrder,  ///< a distance in values, but not exactly one value that the rows are ordered by
  EndsBeforeItBegins,    ///< the frame's end stands before its beginning
  DistanceInValues,      ///< a distance in values, where the dialect's servers count rows only
};
ZRQRYBLD_API WindowCallFault FaultOf(const WindowCall& call, const Dialect& dialect);

/// A function that may stand before OVER.
struct WindowFunction {
  std::string_view name;
  bool takesOperand = true;       ///< an expression of the query, its first argument
  std::string_view further = {};  ///< what else is asked for, as it is suggested: ", 1"
};

/// Those that are made for OVER and that the dialect's servers have, by name; none where they have no OVER.
std::vector<WindowFunction> WindowFunctionsOf(const Dialect& dialect);

/// Puts a function in the place of another, of which the call is. The operand stays where the new one takes one.
void SetFunction(WindowCall& call, const WindowFunction& before, const WindowFunction& now);

}  // namespace zrqrybld
