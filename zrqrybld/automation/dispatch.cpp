#include "zrqrybld/automation/dispatch.h"

#include <algorithm>
#include <unordered_map>

#include "zrqrybld/automation/classes.h"
#include "zrqrybld/base/error.h"
#include "zrqrybld/base/text.h"

namespace zrqrybld {
namespace {

// A class with what is looked up in it at every call.
struct IndexedClass {
  const ClassInfo* type;
  struct IndexedMember {
    const Member* member;
    std::vector<ArgumentInfo> arguments;
  };
  std::unordered_map<std::string, IndexedMember> members;  // by case-folded name

  const IndexedMember* Find(std::string_view name) const {
    const auto found = members.find(FoldCase(name.empty() ? type->defaultMember : name));
    return found == members.end() ? nullptr : &found->second;
  }
};

const std::unordered_map<std::string, IndexedClass>& Index() {
  static const auto index = [] {
    std::unordered_map<std::string, IndexedClass> classes;
    for (const ClassInfo& type : Classes()) {
      IndexedClass& indexed = classes[FoldCase(type.name)];
      indexed.type = &type;
      for (const Member& member : type.members) {
        indexed.members.try_emplace(FoldCase(member.name), IndexedClass::IndexedMember{&member, ArgumentsOf(member)});
      }
    }
    return classes;
  }();
  return index;
}

const IndexedClass* FindIndexed(std::string_view name) {
  const auto found = Index().find(FoldCase(name));
  return found == Index().end() ? nullptr : &found->second;
}

const IndexedClass& IndexedTypeOf(const Object& object) {
  if (const IndexedClass* type = FindIndexed(object.TypeName())) return *type;
  throw Error(ErrorNoSuchMember, std::string(object.TypeName()) + " is not a public class.");
}

std::string_view WordFor(std::uint8_t kinds) {
  if ((kinds & MemberEvent) != 0) return "raise";
  return (kinds & (MemberLet | MemberSet)) != 0 ? "write" : "read or call";
}

const IndexedClass::IndexedMember& Require(const Object& object, std::string_view name, std::uint8_t kinds) {
  const IndexedClass& type = IndexedTypeOf(object);
  const IndexedClass::IndexedMember* found = type.Find(name);
  const std::string member = std::string(type.type->name) + "." + std::string(name.empty() ? "(default)" : name);
  if (!found) throw Error(ErrorNoSuchMember, "There is no member " + member + ".");
  if ((found->member->kinds & kinds) == 0) {
    throw Error(ErrorNoSuchMember, "Cannot " + std::string(WordFor(kinds)) + " " + member + ".");
  }
  return *found;
}

// As many arguments as the member takes, Missing for those that may be left out.
std::vector<Variant> Complete(const IndexedClass::IndexedMember& found, std::span<const Variant> given,
                              bool allMustBeGiven) {
  const std::vector<ArgumentInfo>& wanted = found.arguments;
  const std::string name(found.member->name);
  if (given.size() > wanted.size()) {
    throw Error(ErrorTooManyArguments, name + " takes " + std::to_string(wanted.size()) + " arguments, " +
                                           std::to_string(given.size()) + " are given.");
  }
  std::vector<Variant> arguments;
  arguments.reserve(wanted.size() + 1);
  for (std::size_t i = 0; i < wanted.size(); ++i) {
    Variant value = i < given.size() ? given[i] : Variant::Missing();
    if (wanted[i].optional && value.IsEmpty()) value = Variant::Missing();
    if (value.IsMissing() && (!wanted[i].optional || allMustBeGiven)) {
      throw Error(ErrorArgumentMissing, name + ": the argument " + wanted[i].name + " must be given.");
    }
    arguments.push_back(std::move(value));
  }
  return arguments;
}

Variant Invoke(Object& object, std::string_view name, std::uint8_t kinds, std::span<Variant> given) {
  const IndexedClass::IndexedMember& found = Require(object, name, kinds);
  if (found.arguments.empty() && given.empty()) return found.member->invoke(object, {});
  std::vector<Variant> arguments = Complete(found, given, false);
  Variant result = found.member->invoke(object, arguments);
  for (std::size_t i = 0; i < given.size(); ++i) {
    if (found.arguments[i].byReference) given[i] = std::move(arguments[i]);
  }
  return result;
}

}  // namespace

std::vector<ArgumentInfo> ArgumentsOf(const Member& member) {
  std::vector<ArgumentInfo> arguments;
  std::string_view names = member.argumentNames;
  for (const ArgumentType& type : member.argumentTypes) {
    const std::size_t end = std::min(names.find(", "), names.size());
    std::string_view name = names.substr(0, end);
    names.remove_prefix(std::min(end + 2, names.size()));
    const bool optional = name.starts_with('[');
    if (optional) name = name.substr(1, name.size() - 2);
    arguments.push_back({std::string(name), type.type, optional, type.byReference});
  }
  return arguments;
}

const ClassInfo* FindClass(std::string_view name) {
  const IndexedClass* found = FindIndexed(name);
  return found ? found->type : nullptr;
}

const ClassInfo& TypeOf(const Object& object) { return *IndexedTypeOf(object).type; }

const Member* FindMember(const ClassInfo& type, std::string_view name) {
  const IndexedClass* indexed = FindIndexed(type.name);
  const IndexedClass::IndexedMember* found = indexed ? indexed->Find(name) : nullptr;
  return found ? found->member : nullptr;
}

Ref<Object> CreateObject(std::string_view className) {
  const ClassInfo* type = FindClass(className);
  if (!type) throw Error(ErrorCannotCreate, "There is no class \"" + std::string(className) + "\".");
  if (!type->create) {
    throw Error(ErrorCannotCreate, std::string(type->name) + " objects come from other objects and cannot be made.");
  }
  return type->create();
}

Variant GetMember(Object& object, std::string_view name, std::span<Variant> arguments) {
  return Invoke(object, name, MemberGet, arguments);
}

void LetMember(Object& object, std::string_view name, const Variant& value, std::span<const Variant> given) {
  const IndexedClass::IndexedMember& found = Require(object, name, MemberLet | MemberSet);
  std::vector<Variant> arguments = Complete(found, given, true);
  arguments.push_back(value);
  found.member->assign(object, arguments);
}

Variant CallMember(Object& object, std::string_view name, std::span<Variant> arguments) {
  return Invoke(object, name, MemberCall | MemberGet, arguments);
}

EventConnection Subscribe(Object& object, std::string_view name, EventHandler handler) {
  return Require(object, name, MemberEvent).member->subscribe(object, handler);
}

}  // namespace zrqrybld
