// The join list: the tables of FROM in their order, each with the conditions that join it to those before it.
//
// The SQL pane has one for the statement that was generated last.
#pragma once

#include <cstddef>
#include <cstdint>
#include <list>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "zrqrybld/base/export.h"
#include "zrqrybld/base/keyed_list.h"
#include "zrqrybld/base/object.h"
#include "zrqrybld/base/variant.h"
#include "zrqrybld/sql/join_kind.h"

namespace zrqrybld {

/// One condition; the left table is the one whose entry holds it. Tables are named by their captions.
class ZRQRYBLD_API qbJoinTable final : public Object {
 public:
  qbJoinTable(std::string leftTable, std::string leftField, std::string rightTable, std::string rightField)
      : LeftTable(std::move(leftTable)),
        LeftField(std::move(leftField)),
        RightTable(std::move(rightTable)),
        RightField(std::move(rightField)) {}
  std::string_view TypeName() const override { return "qbJoinTable"; }

  std::string LeftTable;              ///< the table that the entry adds
  std::string LeftField;              ///< its column
  std::string RightTable;             ///< a table before it
  std::string RightField;             ///< that table's column
  JoinTypeEnum JoinType = JoinInner;  ///< whose rows without a partner stay
};

/// The conditions of one table, in the order of adding.
class ZRQRYBLD_API qbJoinTables final : public Object {
 public:
  std::string_view TypeName() const override { return "qbJoinTables"; }

  /// Adds an inner condition, or returns the one with the same four names: no condition is written twice.
  Ref<qbJoinTable> Add(std::string leftTable, std::string leftField, std::string rightTable, std::string rightField);
  /// Removes all conditions.
  void Clear() { items_.Clear(); }
  /// How many there are.
  std::int32_t Count() const { return static_cast<std::int32_t>(items_.Count()); }
  /// The condition at a position from 1, or under its key "[table].[field] = [table].[field]". Error 9 when there is
  /// none.
  Ref<qbJoinTable> Item(const Variant& index) const;
  /// Removes a condition by position or key. Error 9 when there is none.
  void Remove(const Variant& index);

  /// Whether there is no condition.
  bool Empty() const { return items_.Empty(); }
  /// The condition at a position that exists, from 1.
  const qbJoinTable& At(std::size_t position) const { return **items_.At(position); }

 private:
  KeyedList<Ref<qbJoinTable>> items_;
};

/// One table of FROM.
class ZRQRYBLD_API qbJoin final : public Object {
 public:
  explicit qbJoin(std::string caption) : caption_(std::move(caption)) {}
  std::string_view TypeName() const override { return "qbJoin"; }

  /// The table's caption, by which the list finds the entry.
  const std::string& Caption() const { return caption_; }
  /// The conditions that join it to the tables before it.
  const Ref<qbJoinTables>& JoinTables() const { return conditions_; }

 private:
  std::string caption_;
  Ref<qbJoinTables> conditions_ = std::make_shared<qbJoinTables>();
};

/// The tables in the order of FROM. Adding, moving and finding by caption take constant time.
class ZRQRYBLD_API qbJoins final : public Object {
 public:
  std::string_view TypeName() const override { return "qbJoins"; }

  /// The entry of a table, made when there is none: at the end, or beside the entry with the given caption. An entry
  /// that is there moves to that place. Error 9 when no entry has the caption given.
  Ref<qbJoin> Add(const std::string& caption, std::string_view before = {}, std::string_view after = {});
  /// Removes all entries.
  void Clear();
  /// How many there are.
  std::int32_t Count() const { return static_cast<std::int32_t>(items_.size()); }
  /// The entry at a position from 1 (found by counting) or of a caption, exactly. Error 9 when there is none.
  Ref<qbJoin> Item(const Variant& index) { return *Require(index); }
  /// Removes an entry by position or caption. Error 9 when there is none.
  void Remove(const Variant& index);

  /// The entries in the order of FROM.
  auto begin() const { return items_.begin(); }
  /// Behind the last entry.
  auto end() const { return items_.end(); }

 private:
  using Place = std::list<Ref<qbJoin>>::iterator;
  Place Require(const Variant& index);

  std::list<Ref<qbJoin>> items_;
  std::unordered_map<std::string_view, Place> places_;  // by the captions that the entries hold
};

}  // namespace zrqrybld
