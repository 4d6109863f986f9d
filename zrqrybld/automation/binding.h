// Rows of the member tables, made from pointers to members: types, argument types and the calls are deduced.
//
//   constexpr Member kMembers[] = {
//       ReadWrite<qbEntity, &qbEntity::Caption, &qbEntity::SetCaption>("Caption"),
//       Method<qbEntities, &qbEntities::Add>("Add", "Key"),
//       Raised<qbEntities, &qbEntities::EntityAdd>("EntityAdd", "Key"),
//   };
//
// The class comes first because a member that a class inherits is a pointer into its base. Instead of a member
// pointer a free function may stand that takes the object first, where the boundary's form differs from C++'s.
#pragma once

#include <array>
#include <tuple>
#include <type_traits>
#include <utility>

#include "zrqrybld/automation/convert.h"
#include "zrqrybld/automation/member.h"

namespace zrqrybld {

// --- One argument of a call
// --------------------------------------------------------------------------------------------

/// A value argument: read before the call; written back after it when it is taken by reference.
template <class P>
class Argument {
  using Value =
      std::conditional_t<std::is_same_v<std::remove_cvref_t<P>, std::string_view>, std::string, std::remove_cvref_t<P>>;

 public:
  static constexpr ArgumentType kType{Convert<Value>::kName,
                                      std::is_lvalue_reference_v<P> && !std::is_const_v<std::remove_reference_t<P>>};

  explicit Argument(const Variant& given) : value_(Read(given)) {}
  std::conditional_t<kType.byReference, Value&, const Value&> Get() { return value_; }
  void WriteBack(Variant& given) const {
    if constexpr (kType.byReference) given = Convert<Value>::To(value_);
  }

 private:
  static Value Read(const Variant& given) {
    if constexpr (std::is_same_v<Value, Variant>) {
      // A value that is kept has no use for "not given"; one that is looked at tells the two apart.
      return given.IsMissing() && !std::is_reference_v<P> ? Variant() : given;
    } else {
      return given.IsMissing() ? Value() : Convert<Value>::From(given);
    }
  }

  Value value_;
};

/// An object that is taken by reference: nothing is error 91.
template <class P>
requires std::derived_from<std::remove_cvref_t<P>, Object>
class Argument<P> {
  using Class = std::remove_cvref_t<P>;

 public:
  static constexpr ArgumentType kType{kPublicName<Class>, false};

  explicit Argument(const Variant& given) : object_(Convert<Ref<Class>>::From(given)) {
    if (!object_) throw Error(ErrorObjectRemoved, "An object is wanted, nothing is given.");
  }
  Class& Get() { return *object_; }
  void WriteBack(Variant&) const {}

 private:
  Ref<Class> object_;
};

// --- What a pointer to a member or a function says
// ------------------------------------------------------------------------

template <class R, class... A>
struct Signature {
  using Result = R;
  using Indexes = std::index_sequence_for<A...>;
  static constexpr std::array<ArgumentType, sizeof...(A)> kTypes{Argument<A>::kType...};

  /// Calls `function` on the object with the converted arguments, and converts what comes back.
  template <class C, class F>
  static Variant Call(C& object, F function, std::span<Variant> given) {
    return CallWith(object, function, given, Indexes());
  }

 private:
  template <class C, class F, std::size_t... I>
  static Variant CallWith(C& object, F function, [[maybe_unused]] std::span<Variant> given, std::index_sequence<I...>) {
    std::tuple<Argument<A>...> arguments{Argument<A>(given[I])...};
    Variant result;
    if constexpr (std::is_void_v<R>) {
      std::invoke(function, object, std::get<I>(arguments).Get()...);
    } else {
      result = Convert<std::remove_cvref_t<R>>::To(std::invoke(function, object, std::get<I>(arguments).Get()...));
    }
    (std::get<I>(arguments).WriteBack(given[I]), ...);
    return result;
  }
};

template <class F>
struct SignatureOf;
template <class R, class C, class... A>
struct SignatureOf<R (C::*)(A...)> : Signature<R, A...> {};
template <class R, class C, class... A>
struct SignatureOf<R (C::*)(A...) const> : Signature<R, A...> {};
template <class R, class C, class... A>
struct SignatureOf<R (*)(C&, A...)> : Signature<R, A...> {};
template <class T, class C>
struct SignatureOf<T C::*> : Signature<const T&> {};  // a plain field is read like a getter

template <class R>
constexpr std::string_view ResultName() {
  if constexpr (std::is_void_v<R>) {
    return "";
  } else {
    return Convert<std::remove_cvref_t<R>>::kName;
  }
}

template <class T>
inline constexpr bool kIsHandle = false;
template <class T>
inline constexpr bool kIsHandle<Ref<T>> = true;

// --- The functions behind a row
// -------------------------------------------------------------------------------------------

template <class C, auto kFunction>
Variant InvokeMember(Object& object, std::span<Variant> arguments) {
  return SignatureOf<decltype(kFunction)>::Call(static_cast<C&>(object), kFunction, arguments);
}

template <class C, auto kSetter>
void AssignMember(Object& object, std::span<Variant> arguments) {
  SignatureOf<decltype(kSetter)>::Call(static_cast<C&>(object), kSetter, arguments);
}

template <class C, auto kField>
void AssignField(Object& object, std::span<Variant> arguments) {
  auto& field = static_cast<C&>(object).*kField;
  field = Convert<std::remove_cvref_t<decltype(field)>>::From(arguments.back());
}

// Whether a handler changes the object that stands for the argument, rather than giving back another.
template <class T>
inline constexpr bool kChangedInPlace = false;

template <class>
struct EventSignature;
template <class C, class... A>
struct EventSignature<Event<A...> C::*> {
  static constexpr std::array<ArgumentType, sizeof...(A)> kTypes{Argument<A>::kType...};

  static EventConnection Connect(Event<A...>& event, const EventHandler& handler) {
    return event.Connect([handler](A... given) {
      std::array<Variant, sizeof...(A)> values{Convert<std::remove_cvref_t<A>>::To(given)...};
      handler(values);
      std::size_t at = 0;
      (WriteBack<A>(given, values[at++]), ...);
    });
  }

 private:
  template <class P>
  static void WriteBack([[maybe_unused]] P given, [[maybe_unused]] const Variant& value) {
    if constexpr (Argument<P>::kType.byReference || kChangedInPlace<std::remove_cvref_t<P>>)
      given = Convert<std::remove_cvref_t<P>>::From(value);
  }
};

template <class C, auto kEvent>
EventConnection SubscribeMember(Object& object, const EventHandler& handler) {
  return EventSignature<decltype(kEvent)>::Connect(static_cast<C&>(object).*kEvent, handler);
}

// --- Rows
// -----------------------------------------------------------------------------------------------------------------

template <class C, auto kGetter>
constexpr Member ReadOnly(std::string_view name, std::string_view arguments = {}) {
  using S = SignatureOf<decltype(kGetter)>;
  return {name, MemberGet, ResultName<typename S::Result>(), arguments, S::kTypes, &InvokeMember<C, kGetter>};
}

/// A property that can be read and written. The setter takes the getter's arguments, then the value.
template <class C, auto kGetter, auto kSetter>
constexpr Member ReadWrite(std::string_view name, std::string_view arguments = {}) {
  Member member = ReadOnly<C, kGetter>(name, arguments);
  using Value = std::remove_cvref_t<typename SignatureOf<decltype(kGetter)>::Result>;
  member.kinds |= kIsHandle<Value> ? MemberSet : MemberLet;
  if constexpr (std::is_same_v<Value, Variant>) member.kinds |= MemberSet;
  member.assign = &AssignMember<C, kSetter>;
  return member;
}

/// A property that is a plain field.
template <class C, auto kField>
constexpr Member Field(std::string_view name) {
  Member member = ReadOnly<C, kField>(name);
  member.kinds |= MemberLet;
  member.assign = &AssignField<C, kField>;
  return member;
}

template <class C, auto kFunction>
constexpr Member Method(std::string_view name, std::string_view arguments = {}) {
  Member member = ReadOnly<C, kFunction>(name, arguments);
  member.kinds = MemberCall;
  return member;
}

template <class C, auto kEvent>
constexpr Member Raised(std::string_view name, std::string_view arguments = {}) {
  using S = EventSignature<decltype(kEvent)>;
  return {name, MemberEvent, {}, arguments, S::kTypes, nullptr, nullptr, &SubscribeMember<C, kEvent>};
}

/// A font property: the object handed out writes its changes back as long as the control lives.
template <class C, auto kGetter, auto kSetter>
constexpr Member FontProperty(std::string_view name) {
  Member member{name, MemberGet | MemberSet, "Font", {}, {}};
  member.invoke = [](Object& object, std::span<Variant>) -> Variant {
    auto& control = static_cast<C&>(object);
    const WeakRef<Object> owner = object.weak_from_this();
    return Ref<Object>(std::make_shared<FontObject>(std::invoke(kGetter, control), [owner](const Font& font) {
      if (const Ref<Object> alive = owner.lock()) std::invoke(kSetter, static_cast<C&>(*alive), font);
    }));
  };
  member.assign = [](Object& object, std::span<Variant> arguments) {
    std::invoke(kSetter, static_cast<C&>(object), Convert<Font>::From(arguments.back()));
  };
  return member;
}

}  // namespace zrqrybld
