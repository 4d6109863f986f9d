#include "zrqrybld/hub/read_queries.h"

#include <algorithm>
#include <utility>

#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_queries.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/from_binder.h"
#include "zrqrybld/sql/name_scope.h"
#include "zrqrybld/sql/query_outline.h"
#include "zrqrybld/sql/query_outputs.h"
#include "zrqrybld/sql/syntax_error.h"

namespace zrqrybld {
namespace {

// The queries that can be named like tables here; those around come after one's own.
class Scope {
 public:
  explicit Scope(const Scope* outer) : outer_(outer) {}
  void Add(const std::string& name, const std::vector<QueryColumn>& columns) { queries_.emplace_back(name, &columns); }
  std::optional<std::vector<QueryColumn>> Find(const std::string& name) const {
    const auto found =
        std::ranges::find_if(queries_, [&](const auto& query) { return EqualsNoCase(query.first, name); });
    if (found != queries_.end()) return *found->second;
    return outer_ ? outer_->Find(name) : std::nullopt;
  }
  bool Has(const std::string& name) const {
    return std::ranges::any_of(queries_, [&](const auto& query) { return EqualsNoCase(query.first, name); });
  }

 private:
  const Scope* outer_;
  std::vector<std::pair<std::string, const std::vector<QueryColumn>*>> queries_;
};

// A text and where it stands in the whole.
struct Part {
  std::string_view text;
  std::size_t offset = 0;
  std::size_t OffsetOf(std::string_view inside) const {
    return offset + static_cast<std::size_t>(inside.data() - text.data());
  }
};

class Reader {
 public:
  // Without surroundings the text is a statement.
  Reader(qbQueryBuilder& hub, std::string_view whole, const QuerySurroundings* around)
      : hub_(hub), whole_(whole), around_(around) {}

  ReadQuery Run() {
    const Part part{whole_, 0};
    Scope around(nullptr);
    if (around_) {
      for (const auto& [name, columns] : around_->named) around.Add(name, columns);
    }
    return Read(OutlineQuery(whole_, hub_.CurrentDialect()), part, {}, &around, false);
  }

 private:
  // What is read of a part tells places in that: they become places in the whole.
  template <class Work>
  auto InWhole(std::size_t offset, Work work) {
    try {
      return work();
    } catch (const SyntaxError& error) {
      if (offset == 0) throw;
      throw SyntaxError(whole_, offset + error.Offset().value_or(0), error.Sentence(), error.Expected());
    }
  }

  [[noreturn]] void Refuse(std::size_t offset, Phrase message) const {
    throw SyntaxError(whole_, offset, std::move(message));
  }

  ReadQuery Read(const QueryOutline& outline, const Part& part, StoredQuery facts, const Scope* around,
                 bool recursive) {
    const std::size_t place = part.OffsetOf(outline.select);
    if (++depth_ > kDeepestQuery) Refuse(place, {text::QueriesTooDeep, kDeepestQuery});
    if (++count_ > kMostQueries) Refuse(place, {text::TooManyQueries, kMostQueries});
    ReadQuery query;
    query.facts = std::move(facts);
    // The scopes hold on to the columns, so these stay where they are.
    std::vector<std::unique_ptr<ReadQuery>> inner;
    Scope common(around);
    for (const QueryOutline::Named& named : outline.named)
      inner.push_back(ReadNamed(named, part, common, outline.recursive));
    Scope own(&common);
    query.text = TextOfSelect(outline);
    query.statement = InWhole(
        place, [&] { return std::make_unique<ReadStatement>(hub_, query.text, around_ ? around_->outer : nullptr); });
    ReadDerived(*query.statement, place, common, own, inner);
    InWhole(place,
            [&] { query.statement->Bind(hub_, LookupIn(own), IsPlain(outline, inner), !outline.members.empty()); });
    const bool isCommon = query.facts.kind == QueryCommonTable;
    if (isCommon || query.facts.kind == QueryDerivedTable) {
      query.columns = OutputsOfStatement(*query.statement, query.facts.columnNames);
    }
    if (isCommon) common.Add(query.facts.name, query.columns);
    for (const QueryOutline::Member& member : outline.members) {
      StoredQuery memberFacts;
      memberFacts.kind = QueryMember;
      memberFacts.combined = member.combined;
      inner.push_back(std::make_unique<ReadQuery>(Read(*member.query, part, std::move(memberFacts), &common, false)));
      if (isCommon && !recursive && Names(*inner.back(), query.facts.name)) {
        Refuse(part.OffsetOf(member.word), {text::QueryNamesItself, query.facts.name});
      }
    }
    for (std::unique_ptr<ReadQuery>& each : inner) query.inner.push_back(std::move(*each));
    --depth_;
    return query;
  }

  // Only a statement of one SELECT takes over what the diagram shows: others do so when they are written.
  bool IsPlain(const QueryOutline& outline, const std::vector<std::unique_ptr<ReadQuery>>& inner) const {
    return !around_ && depth_ == 1 && outline.IsPlain() && inner.empty() && hub_.QueriesNow().IsSingle();
  }

  static QueryLookup LookupIn(const Scope& scope) {
    return [&scope](const std::string& name) { return scope.Find(name); };
  }

  std::unique_ptr<ReadQuery> ReadNamed(const QueryOutline::Named& named, const Part& part, Scope& common,
                                       bool recursive) {
    StoredQuery facts;
    facts.kind = QueryCommonTable;
    facts.name = PlainName(named.name);
    for (const std::string_view column : named.columns) facts.columnNames.push_back(PlainName(column));
    if (common.Has(facts.name)) Refuse(part.OffsetOf(named.name), {text::QueryNameTaken, facts.name});
    // Where no word says so, any query of WITH may name itself.
    const bool mayNameItself = recursive || hub_.CurrentDialect().queries.recursive.empty();
    auto query = std::make_unique<ReadQuery>(Read(*named.query, part, std::move(facts), &common, mayNameItself));
    common.Add(query->facts.name, query->columns);
    return query;
  }

  void ReadDerived(const ReadStatement& statement, std::size_t place, const Scope& common, Scope& own,
                   std::vector<std::unique_ptr<ReadQuery>>& inner) {
    std::size_t number = 0;
    for (const FromItem* item : TablesOf(statement.Tree())) {
      const std::size_t at = number++;
      if (item->query.empty()) continue;
      const Part part{item->query, Part{statement.Text(), place}.OffsetOf(item->query)};
      const QueryOutline outline = InWhole(part.offset, [&] { return OutlineQuery(part.text, hub_.CurrentDialect()); });
      StoredQuery facts;
      facts.kind = QueryDerivedTable;
      facts.name = WrittenTableOf(*item, at).parts.front().Name();
      for (const NameItem* column = item->columns; column; column = column->next) {
        facts.columnNames.push_back(PlainName(column->name));
      }
      if (own.Has(facts.name)) Refuse(part.offset, {text::QueryNameTaken, facts.name});
      inner.push_back(std::make_unique<ReadQuery>(Read(outline, part, std::move(facts), &common, false)));
      own.Add(inner.back()->facts.name, inner.back()->columns);
    }
  }

  std::vector<QueryColumn> OutputsOfStatement(const ReadStatement& statement,
                                              const std::vector<std::string>& names) const {
    QuerySnapshot query = statement.Bound().query;
    query.columns = CapturedColumns(statement.Plan(), query.tables.size());
    const auto typeOf = [&](std::size_t table, const std::string& column) {
      return statement.Plan().TypeOf(table, column);
    };
    return OutputsOf(query, typeOf, names);
  }

  // Whether the query, or one that belongs to it, names the table.
  static bool Names(const ReadQuery& query, const std::string& name) {
    const auto isNamed = [&](const SnapshotTable& table) {
      return table.name.size() == 1 && EqualsNoCase(table.name.front().Name(), name);
    };
    return std::ranges::any_of(query.statement->Bound().query.tables, isNamed) ||
           std::ranges::any_of(query.inner, [&](const ReadQuery& inner) { return Names(inner, name); });
  }

  qbQueryBuilder& hub_;
  const std::string_view whole_;
  const QuerySurroundings* const around_;
  int depth_ = 0;
  int count_ = 0;
};

}  // namespace

ReadQueries::ReadQueries(qbQueryBuilder& hub, std::string_view typed) {
  const std::string whole = ReadableStatement(hub, typed);
  main_ = Reader(hub, whole, nullptr).Run();
}

ReadQueries::ReadQueries(qbQueryBuilder& hub, std::string_view typed, const QuerySurroundings& around) {
  const std::string whole = ReadableStatement(hub, typed);
  main_ = Reader(hub, whole, &around).Run();
}

}  // namespace zrqrybld
