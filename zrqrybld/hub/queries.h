// qbQueries: the queries that a statement is made of, and qbQuery: one of them.
//
// Both are thin faces of the hub, which keeps the queries. The panes show one at a time.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "zrqrybld/base/collection.h"
#include "zrqrybld/base/export.h"
#include "zrqrybld/base/object.h"
#include "zrqrybld/base/variant.h"
#include "zrqrybld/sql/query_kind.h"

namespace zrqrybld {

class qbQueryBuilder;
class qbRelationship;
struct StoredQuery;

/// A query of the statement. Once it is removed its members raise error 91; undo brings it back.
class ZRQRYBLD_API qbQuery final : public Object {
 public:
  qbQuery(WeakRef<qbQueryBuilder> hub, std::int32_t id) : hub_(std::move(hub)), id_(id) {}
  std::string_view TypeName() const override { return "qbQuery"; }

  /// What stands for the query as long as the design is open; 0 is the main query.
  std::int32_t Id() const { return id_; }

  /// What it is to the one that it belongs to. A query in FROM can move to WITH, and back; anything else is error
  /// 40005. A query in a cell is one of the queries only while it is shown.
  QueryKindEnum Kind() const;
  void SetKind(QueryKindEnum kind);

  /// The name that other queries name it by; "" of the main query and of members. Setting it renames it wherever it is
  /// named. Error 40005 for a blank name, one that is taken, and a query without a name.
  std::string Name() const;
  void SetName(const std::string& name);

  /// How a member is put together with all before it; `QueryUnion` for other queries, whose operator cannot be set:
  /// error 40005.
  QueryOperatorEnum Operator() const;
  void SetOperator(QueryOperatorEnum combined);

  /// The query that it belongs to; nothing for the main query.
  Ref<qbQuery> Parent() const;

  /// Its own text, with those that belong to it; "" where the dialect cannot say it.
  std::string SQLStatement() const;

  /// Shows it in the panes: no step. Error 5 while a step is going on.
  void Open();

  /// Removes it with all that belongs to it and its boxes; a step. The main query stays, and a query in a cell goes
  /// with the cell's text: error 40005.
  void Remove();

 private:
  Ref<qbQueryBuilder> Hub() const;
  const StoredQuery& Facts() const;

  WeakRef<qbQueryBuilder> hub_;
  std::int32_t id_;
};

/// The queries by position from 1, each behind the one that it belongs to; the main one is the first.
class ZRQRYBLD_API qbQueries final : public Object {
 public:
  explicit qbQueries(WeakRef<qbQueryBuilder> hub) : hub_(std::move(hub)) {}
  std::string_view TypeName() const override { return "qbQueries"; }

  /// How many there are; none once the designer is gone.
  std::int32_t Count() const;
  /// The query at a position from 1, or the first with the name. Error 9 when there is none.
  Ref<qbQuery> Item(const Variant& index) const;
  /// Walks them in that order, for a range-based loop.
  CollectionIterator<qbQueries> begin() const { return CollectionIterator(*this); }
  std::default_sentinel_t end() const { return {}; }

  /// Adds a query to the one that is shown, with a box for one that is named like a table; a step. A name that is taken
  /// gets a number, "" a name of its own. A member is put together by UNION ALL at first.
  Ref<qbQuery> Add(QueryKindEnum kind, const std::string& name = {});

  /// Adds what a query file holds to the one that is shown, as a query in FROM with a box; a step. It bears the name of
  /// the file, with a number where that is taken. With `fileIsData` the text is given instead of its path. Error 40003
  /// with its cause, and nothing is changed, for a file that cannot be read, that was saved in another dialect, or
  /// whose statement cannot be read here.
  Ref<qbQuery> AddSaved(const std::string& filename, bool fileIsData = false);

  /// The query that the panes show.
  Ref<qbQuery> Current() const;
  void SetCurrent(const Ref<qbQuery>& query);

  /// Shows a query that stands in a cell of the shown one's grid, as a criterion or an expression has it, by the row
  /// and the column of the grid and its number in the cell, each from 1. It is one of the queries as long as it, or
  /// what belongs to it, is shown; what is changed there is written into the cell at once. No step. Error 9 when the
  /// cell holds no such query, 40002 for one that cannot be shown, 5 while a step is going on.
  Ref<qbQuery> OpenInCell(std::int32_t row, const Variant& column, std::int32_t number = 1);
  /// Shows a query that stands in the condition of a join of the shown one's diagram, in the same way. Error 91
  /// without a join, 9 for one of another diagram.
  Ref<qbQuery> OpenInJoin(const Ref<qbRelationship>& join, std::int32_t number = 1);
  /// Shows an empty query for a criterion of the grid. It is written behind what the cell holds, in an empty one behind
  /// IN, as soon as it says something. Errors as above; error 9 for a cell that is none of a criterion, or whose row
  /// names no column.
  Ref<qbQuery> AddInCell(std::int32_t row, const Variant& column);

  // --- For the model ---

  /// What stands for the query with this id; the same object as long as somebody holds it.
  Ref<qbQuery> Of(std::int32_t id) const;

 private:
  Ref<qbQueryBuilder> Hub() const;
  std::int32_t ColumnOf(const Variant& column) const;

  WeakRef<qbQueryBuilder> hub_;
  mutable std::unordered_map<std::int32_t, WeakRef<qbQuery>> known_;
};

}  // namespace zrqrybld
