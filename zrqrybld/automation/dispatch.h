// Late binding: members found by name, called with values.
//
// Names are found in any letter case. Errors: 438 for a member that the class does not have or that cannot do
// what is asked, 450 for more arguments than it takes, 449 for one that is left out though it must be given,
// 13 for one of the wrong kind, and whatever the member itself raises.
#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "zrqrybld/automation/member.h"

namespace zrqrybld {

/// Numbers of errors that only late binding raises.
enum AutomationErrorEnum : std::int32_t {
  ErrorCannotCreate = 429,      ///< no such class, or one whose objects come only from other objects
  ErrorNoSuchMember = 438,      ///< the class has no such member, or it cannot do this
  ErrorArgumentMissing = 449,   ///< an argument that must be given
  ErrorTooManyArguments = 450,  ///< more arguments than the member takes
};

/// The class with this name in any letter case, or nullptr.
const ClassInfo* FindClass(std::string_view name);

/// What an object is. Error 438 for an object of a class that is not public.
const ClassInfo& TypeOf(const Object& object);

/// The member with this name in any letter case, or nullptr. "" is the default member.
const Member* FindMember(const ClassInfo& type, std::string_view name);

/// Makes an object. Error 429 when the class is not known or cannot be made.
Ref<Object> CreateObject(std::string_view className);

/// Reads a property. By-reference arguments are written back.
Variant GetMember(Object& object, std::string_view name, std::span<Variant> arguments = {});

/// Writes a property.
void LetMember(Object& object, std::string_view name, const Variant& value, std::span<const Variant> arguments = {});

/// Calls a method, or reads a property as a method. By-reference arguments are written back.
Variant CallMember(Object& object, std::string_view name, std::span<Variant> arguments = {});

/// Listens to an event until the connection is destroyed.
EventConnection Subscribe(Object& object, std::string_view name, EventHandler handler);

}  // namespace zrqrybld
