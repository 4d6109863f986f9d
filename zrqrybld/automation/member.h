// Members by name: what a class offers to a caller that knows it only at run time.
//
// A class has one table of members in interface order. A row names the member, says what it can do and
// which types it takes, and holds the functions that do it. The C interface, the Python package and the
// reference documentation all read these tables, so nothing is written twice.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "zrqrybld/base/event.h"
#include "zrqrybld/base/object.h"
#include "zrqrybld/base/variant.h"

namespace zrqrybld {

/// What can be done with a member; a bit set.
enum MemberKind : std::uint8_t {
  MemberGet = 1,    ///< a property that can be read
  MemberLet = 2,    ///< a property that takes a value
  MemberSet = 4,    ///< a property that takes an object
  MemberCall = 8,   ///< a method
  MemberEvent = 16  ///< an event
};

/// Receives an event's arguments; what it writes into a by-reference argument goes back to the sender.
using EventHandler = std::function<void(std::span<Variant> arguments)>;

/// What an argument takes.
struct ArgumentType {
  std::string_view type;     ///< "String", "Long", a class, an enumeration, ...
  bool byReference = false;  ///< what the member writes into it goes back to the caller
};

/// One member of a class.
struct Member {
  std::string_view name;
  std::uint8_t kinds = 0;
  std::string_view type;           ///< of the property or the result; "" for none
  std::string_view argumentNames;  ///< separated by ", "; an optional one in brackets: "Text, [Key]"
  std::span<const ArgumentType> argumentTypes;
  /// Reads the property or calls the method. As many arguments as there are types; Missing for one not given.
  Variant (*invoke)(Object& object, std::span<Variant> arguments) = nullptr;
  /// Writes the property: its arguments, then the value.
  void (*assign)(Object& object, std::span<Variant> arguments) = nullptr;
  EventConnection (*subscribe)(Object& object, const EventHandler& handler) = nullptr;
};

/// One argument of a member, as a caller sees it.
struct ArgumentInfo {
  std::string name;
  std::string_view type;
  bool optional = false;
  bool byReference = false;
};

/// The arguments of a member, in order.
std::vector<ArgumentInfo> ArgumentsOf(const Member& member);

/// The members of one class.
struct ClassInfo {
  std::string_view name;
  std::span<const Member> members;  ///< in interface order
  std::string_view defaultMember;   ///< the member that stands for the object itself; "" for none
  /// Makes an object; nullptr when objects of the class come only from other objects.
  Ref<Object> (*create)() = nullptr;
};

}  // namespace zrqrybld
