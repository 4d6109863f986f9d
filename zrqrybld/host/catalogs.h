// The vocabulary of SQL that the designer understands and offers: keywords, operators, functions.
//
// The hub owns one of each and fills them with defaults; the application may add, rename, remove or
// clear entries. Entries are found by name in any letter case; a name that is present exactly
// cannot be added again.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "zrqrybld/base/collection.h"
#include "zrqrybld/base/export.h"
#include "zrqrybld/base/keyed_list.h"
#include "zrqrybld/base/object.h"
#include "zrqrybld/base/variant.h"

namespace zrqrybld {

template <class Entry>
class CatalogEntry;

/// What all catalogs share: an ordered collection by position from 1 or by name.
template <class Entry>
class ZRQRYBLD_API Catalog : public Object {
 public:
  /// Removes all entries.
  void Clear() {
    for (std::size_t i = 1; i <= items_.Count(); ++i) (*items_.At(i))->catalog_ = nullptr;
    items_.Clear();
    ++revision_;
  }
  /// How many there are; positions run from 1 to it.
  std::int32_t Count() const { return static_cast<std::int32_t>(items_.Count()); }
  /// Walks them in that order, for a range-based loop.
  CollectionIterator<Catalog> begin() const { return CollectionIterator(*this); }
  std::default_sentinel_t end() const { return {}; }

  /// The entry at a position from 1 or with this name. Error 9 when there is none.
  Ref<Entry> Item(const Variant& index) const { return *items_.At(RequirePosition(items_, index)); }

  /// Removes an entry by position or name. Error 9 when there is none.
  void Remove(const Variant& index) {
    items_.RemoveAt(RequirePosition(items_, index))->catalog_ = nullptr;
    ++revision_;
  }

  /// The entry at a position from 1; the position must exist.
  const Entry& At(std::size_t position) const { return **items_.At(position); }

  /// The entry with this name, or nothing.
  Ref<Entry> FindByName(std::string_view name) const {
    const Ref<Entry>* entry = items_.Find(name);
    return entry ? *entry : nullptr;
  }

  /// Grows with every change, so that what is derived from the catalog can be kept until then.
  std::uint64_t Revision() const { return revision_; }

  ~Catalog() override {
    for (std::size_t i = 1; i <= items_.Count(); ++i) (*items_.At(i))->catalog_ = nullptr;
  }

 protected:
  Ref<Entry> AddEntry(Ref<Entry> entry) {
    items_.Insert(entry, entry->Name());
    entry->mark_ = items_.MarkAt(items_.Count());
    entry->catalog_ = this;
    ++revision_;
    return entry;
  }
  const KeyedList<Ref<Entry>>& Items() const { return items_; }

 private:
  friend class CatalogEntry<Entry>;
  void Rename(const CatalogEntry<Entry>& entry, std::string_view name) {
    items_.Rekey(KeyedList<Ref<Entry>>::PositionOf(entry.mark_), name);
    ++revision_;
  }

  KeyedList<Ref<Entry>> items_;
  std::uint64_t revision_ = 0;
};

/// What all entries share: a name, by which the catalog finds them, and a description.
template <class Entry>
class CatalogEntry : public Object {
 public:
  /// What the catalog finds the entry by, in any letter case.
  const std::string& Name() const { return name_; }
  /// Error 457 when another entry of the catalog has the name.
  void SetName(std::string name) {
    if (catalog_) catalog_->Rename(*this, name);
    name_ = std::move(name);
  }
  /// What it is for, for a person; "" when nobody has said.
  const std::string& Description() const { return description_; }
  void SetDescription(std::string description) { description_ = std::move(description); }

 protected:
  CatalogEntry(std::string name, std::string description)
      : name_(std::move(name)), description_(std::move(description)) {}
  void Touch() {
    if (catalog_) ++catalog_->revision_;
  }

 private:
  friend class Catalog<Entry>;
  std::string name_;
  std::string description_;
  Catalog<Entry>* catalog_ = nullptr;                    // reset when the entry leaves its catalog
  typename KeyedList<Ref<Entry>>::Mark mark_ = nullptr;  // of its place there
};

/// A word that has a meaning in SQL; names equal to one are quoted.
class ZRQRYBLD_API qbDBKeyword final : public CatalogEntry<qbDBKeyword> {
 public:
  std::string_view TypeName() const override { return "qbDBKeyword"; }

 private:
  friend class qbDBKeywords;
  using CatalogEntry::CatalogEntry;
};

/// The words that mean something in SQL, in the order of adding; names are found in any letter case.
class ZRQRYBLD_API qbDBKeywords final : public Catalog<qbDBKeyword> {
 public:
  std::string_view TypeName() const override { return "qbDBKeywords"; }

  /// Adds a keyword at the end. Error 457 when the name is present.
  Ref<qbDBKeyword> Add(std::string name, std::string description = {}) {
    return AddEntry(Ref<qbDBKeyword>(new qbDBKeyword(std::move(name), std::move(description))));
  }
};

/// What an operator does, as bits.
enum SQLOperatorEnum : std::int32_t {
  SQLOperatorComparison = 1,
  SQLOperatorLogical = 2,
  SQLOperatorArithmetic = 4,
  SQLOperatorBitwise = 8,
};

/// A sign or word that stands between, before or around expressions.
class ZRQRYBLD_API qbDBOperator final : public CatalogEntry<qbDBOperator> {
 public:
  std::string_view TypeName() const override { return "qbDBOperator"; }

  /// How it is written, with "@" placeholders for its operands; "" when it stands between two.
  const std::string& Syntax() const { return syntax_; }
  void SetSyntax(std::string syntax) { syntax_ = std::move(syntax); }
  /// `SQLOperatorEnum` bits.
  std::int32_t Flags() const { return flags_; }
  void SetFlags(std::int32_t flags) { flags_ = flags; }

 private:
  friend class qbDBOperators;
  qbDBOperator(std::string name, std::string syntax, std::string description)
      : CatalogEntry(std::move(name), std::move(description)), syntax_(std::move(syntax)) {}

  std::string syntax_;
  std::int32_t flags_ = 0;
};

/// The operators that the expression tools offer, in the order of adding.
class ZRQRYBLD_API qbDBOperators final : public Catalog<qbDBOperator> {
 public:
  std::string_view TypeName() const override { return "qbDBOperators"; }

  /// Adds an operator at the end; set `Flags` on the returned item. Error 457 when the name is present.
  Ref<qbDBOperator> Add(std::string name, std::string syntax = {}, std::string description = {}) {
    return AddEntry(Ref<qbDBOperator>(new qbDBOperator(std::move(name), std::move(syntax), std::move(description))));
  }
};

/// A function, an aggregate, a grouping choice or the parameter marker.
class ZRQRYBLD_API qbDBFunction final : public CatalogEntry<qbDBFunction> {
 public:
  std::string_view TypeName() const override { return "qbDBFunction"; }

  /// How it is written, with "@" placeholders for its arguments; "@field" is the grid row's column.
  const std::string& Syntax() const { return syntax_; }
  void SetSyntax(std::string syntax) {
    syntax_ = std::move(syntax);
    Touch();
  }
  /// What the grid's group-by list shows; "" shows the name.
  const std::string& ShortDescription() const { return shortDescription_; }
  void SetShortDescription(std::string text) {
    shortDescription_ = std::move(text);
    Touch();
  }
  /// Bit 1: a choice of the grid's group-by column. Bit 2: a grouping choice, no aggregate.
  std::int32_t Flags() const { return flags_; }
  void SetFlags(std::int32_t flags) {
    flags_ = flags;
    Touch();
  }

  /// Whether names equal to it are quoted; True at first. A dialect's own functions are told from columns by their
  /// parentheses.
  bool IsReserved() const { return reserved_; }
  void SetReserved(bool reserved) {
    reserved_ = reserved;
    Touch();
  }

  /// The text that the grid's group-by list shows.
  const std::string& DisplayText() const { return shortDescription_.empty() ? Name() : shortDescription_; }

 private:
  friend class qbDBFunctions;
  qbDBFunction(std::string name, std::string syntax, std::string description, std::string shortDescription,
               std::int32_t flags)
      : CatalogEntry(std::move(name), std::move(description)),
        syntax_(std::move(syntax)),
        shortDescription_(std::move(shortDescription)),
        flags_(flags) {}

  std::string syntax_;
  std::string shortDescription_;
  std::int32_t flags_ = 0;
  bool reserved_ = true;
};

/// The functions that the expression tools offer, and among them the choices of the grid's group-by column.
class ZRQRYBLD_API qbDBFunctions final : public Catalog<qbDBFunction> {
 public:
  std::string_view TypeName() const override { return "qbDBFunctions"; }

  /// Adds a function at the end. Error 457 when the name is present.
  Ref<qbDBFunction> Add(std::string name, std::string syntax = {}, std::string description = {},
                        std::string shortDescription = {}, std::int32_t flags = 0) {
    return AddEntry(Ref<qbDBFunction>(new qbDBFunction(std::move(name), std::move(syntax), std::move(description),
                                                       std::move(shortDescription), flags)));
  }

  /// The first function whose field equals the first argument given, without regard to case. An empty
  /// text counts as given. Nothing without an argument or a match.
  Ref<qbDBFunction> Find(const std::optional<std::string>& shortDescription = std::nullopt,
                         const std::optional<std::string>& description = std::nullopt,
                         const std::optional<std::string>& syntax = std::nullopt) const;

  /// The group-by choice that a grid cell names: by short description, then by name, without regard to
  /// case. Nothing when the text names none.
  Ref<qbDBFunction> FindGroupBy(std::string_view text) const;
};

// Compiled in one place.
extern template class Catalog<qbDBKeyword>;
extern template class Catalog<qbDBOperator>;
extern template class Catalog<qbDBFunction>;

/// An ordered collection of texts.
class StringCollection final : public Object {
 public:
  std::string_view TypeName() const override { return "StringCollection"; }

  /// Adds a text at the end.
  void Add(std::string text) {
    items_.Insert(std::move(text));
    ++revision_;
  }
  /// Removes all texts.
  void Clear() {
    items_.Clear();
    ++revision_;
  }
  /// How many texts there are; positions run from 1 to it.
  std::int32_t Count() const { return static_cast<std::int32_t>(items_.Count()); }
  /// Walks them in that order, for a range-based loop.
  CollectionIterator<StringCollection> begin() const { return CollectionIterator(*this); }
  std::default_sentinel_t end() const { return {}; }
  /// The text at a position from 1. Error 9 when there is none.
  const std::string& Item(const Variant& index) const { return *items_.At(RequirePosition(items_, index)); }
  /// Removes the text at a position from 1. Error 9 when there is none.
  void Remove(const Variant& index) {
    items_.RemoveAt(RequirePosition(items_, index));
    ++revision_;
  }

  /// Grows with every change.
  std::uint64_t Revision() const { return revision_; }

 private:
  KeyedList<std::string> items_;
  std::uint64_t revision_ = 0;
};

/// Adds the default entries to empty catalogs, and the characters that force a name into quotes.
void FillCatalogs(qbDBKeywords& keywords, qbDBOperators& operators, qbDBFunctions& functions,
                  StringCollection& quotedIdentifiers);

}  // namespace zrqrybld
