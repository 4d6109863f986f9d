#include "zrqrybld/sql/query_text.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_queries.h"
#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/query_outputs.h"

namespace zrqrybld {
namespace {

constexpr std::string_view kLine = "\r\n";

// A sign that no text holds that people write: it marks where a query begins and ends, until all is put together.
constexpr std::string_view kMark = "\xEF\xB7\x90";

constexpr std::size_t kLongestQuery = 64u << 20;

bool IsMember(const QueryTree& query) { return query.kind == QueryMember; }
bool IsCommon(const QueryTree& query) { return query.kind == QueryCommonTable; }

bool NamesTable(const QuerySnapshot& query, std::string_view name) {
  return std::ranges::any_of(query.tables, [name](const SnapshotTable& table) {
    return table.name.size() == 1 && EqualsNoCase(table.name.front().Name(), name);
  });
}

// Whether the query, or one that belongs to it, names the table.
bool Names(const QueryTree& query, std::string_view name) {
  return NamesTable(query.query, name) ||
         std::ranges::any_of(query.inner, [name](const QueryTree& inner) { return Names(inner, name); });
}

// Gives the first columns of the query these names; false where "*" stands among them, or there are too few.
bool NameColumns(QuerySnapshot& query, const std::vector<std::string>& names) {
  auto name = names.begin();
  for (SnapshotRow& row : query.rows) {
    if (row.column.empty() || !row.output) continue;
    if (name == names.end()) return true;
    if (IsAllColumns(row)) return false;
    row.alias = Identifier(*name++);
  }
  return name == names.end();
}

class Writer {
 public:
  Writer(const Dialect& dialect, std::int32_t shown, const ExtraConditions& extra, bool marks)
      : dialect_(dialect), forms_(dialect.queries), shown_(shown), extra_(extra), marks_(marks) {}

  std::string WriteAll(QueryTree& query) {
    isAmongOthers_ = query.kind != QueryMain || !query.inner.empty();
    return Write(query, false);
  }

  // "" when something cannot be said.
  std::string Write(QueryTree& query, bool nested) {
    std::string text = WithClause(query, nested);
    text += Compound(query);
    if (marks_) text = Mark(query.id) + text + std::string(kMark);
    return text;
  }

  bool HoldsMark() const { return holdsMark_; }
  std::vector<QueryFault>& Faults() { return faults_; }
  std::vector<QueryRemark>& Remarks() { return remarks_; }

  // Takes the marks out and notes where they stood.
  static GeneratedQuery WithoutMarks(std::string_view text) {
    GeneratedQuery result;
    std::vector<std::size_t> open;
    while (!text.empty()) {
      const std::size_t at = text.find(kMark);
      result.text += text.substr(0, at);
      if (at == std::string_view::npos) break;
      text.remove_prefix(at + kMark.size());
      if (text.starts_with('<')) {
        const std::size_t end = text.find('>');
        open.push_back(result.parts.size());
        const auto id = ParseNumber(text.substr(1, end - 1)).value_or(0);
        result.parts.push_back({static_cast<std::int32_t>(id), result.text.size(), 0});
        text.remove_prefix(end + 1);
      } else if (!open.empty()) {
        result.parts[open.back()].end = result.text.size();
        open.pop_back();
      }
    }
    return result;
  }

 private:
  static std::string Mark(std::int32_t id) { return std::string(kMark) + "<" + std::to_string(id) + ">"; }

  void Fault(const QueryTree& query, Phrase what, bool stops = true) {
    faults_.push_back({query.id, std::move(what), stops});
  }

  std::string WithClause(QueryTree& query, bool nested) {
    std::string text;
    bool namesItself = false;
    for (QueryTree& inner : query.inner) {
      if (!IsCommon(inner)) continue;
      namesItself |= std::ranges::any_of(
          inner.inner, [&](const QueryTree& member) { return IsMember(member) && Names(member, inner.name); });
      text += text.empty() ? kLine : ",\r\n";
      text += "\t" + QuoteWhenNeeded(Identifier(inner.name), query.query.names).Text();
      CheckNames(inner);
      text += NameList(inner, query.query.names);
      text += " AS (" + Indented(std::string(kLine) + Write(inner, true), "\t\t") + "\r\n\t)";
    }
    if (text.empty()) return {};
    if (!forms_.hasWith || (nested && !forms_.nestsWith)) Fault(query, {text::DialectCannotSay, "WITH"});
    return "WITH " + std::string(namesItself ? forms_.recursive : "") + text + std::string(kLine);
  }

  void CheckNames(const QueryTree& query) {
    if (query.columnNames.empty()) return;
    const OutputPlaces own = PlacesOf(query.query, query.columns);
    if (!own.isCounted || own.columns.size() >= query.columnNames.size()) return;
    Fault(query, {text::MoreNamesThanColumns, query.name, query.columnNames.size(), own.columns.size()}, false);
  }

  void Remark(const QueryTree& query, const GeneratedSql& generated) {
    for (SQLDiagnostic& diagnostic : Diagnose(query.query, dialect_, generated)) {
      diagnostic.cure = CureNone;
      diagnostic.cureName = {};
      remarks_.push_back({query.name, member_, std::move(diagnostic)});
    }
  }

  // What stands behind the query's name where its columns are called otherwise than in it.
  static std::string NameList(const QueryTree& query, const NameRules& rules) {
    std::string list;
    for (const std::string& name : query.columnNames) {
      list += (list.empty() ? " (" : ", ") + QuoteWhenNeeded(Identifier(name), rules).Text();
    }
    return list.empty() ? list : list + ")";
  }

  std::string Compound(QueryTree& query) {
    query.query.beginsCompound = std::ranges::any_of(query.inner, IsMember);
    query.query.isAmongOthers = isAmongOthers_;
    const OutputPlaces columns = query.query.beginsCompound ? PlacesOf(query.query, query.columns) : OutputPlaces();
    const std::size_t around = std::exchange(member_, query.kind == QueryMember ? member_ : 0);
    const GeneratedSql head = Select(query);
    std::string text = head.text;
    std::size_t number = 1;
    bool mayIntersect = true;  // all so far is one SELECT, or put together by INTERSECT
    for (QueryTree& member : query.inner) {
      if (!IsMember(member)) continue;
      const std::string word = WordOf(member.combined, forms_);
      if (word.empty()) Fault(member, {text::DialectCannotSay, NameOf(member.combined)});
      if (forms_.intersectFirst && Intersects(member.combined) && !mayIntersect) {
        text.insert(0, "(");
        text += ')';
      }
      mayIntersect = Intersects(member.combined);
      member_ = ++number;
      text += std::string(kLine) + word + std::string(kLine) + MemberText(member);
      CompareColumns(columns, member);
    }
    member_ = around;
    return text + head.tail;
  }

  std::string MemberText(QueryTree& member) {
    const QuerySnapshot& query = member.query;
    const bool stands =
        SortedRows(query).empty() && query.top.empty() && query.skip == 0 &&
        std::ranges::none_of(member.inner, [](const QueryTree& q) { return IsMember(q) || IsCommon(q); });
    if (stands) return Write(member, true);
    if (!forms_.membersInParentheses) Fault(member, text::MemberNeedsParentheses);
    return "(" + Write(member, true) + ")";
  }

  void CompareColumns(const OutputPlaces& first, const QueryTree& member) {
    const OutputPlaces own = PlacesOf(member.query, member.columns);
    if (!first.isCounted || !own.isCounted) return;
    if (own.columns.size() != first.columns.size()) {
      return Fault(member, {text::MemberColumnsDiffer, own.columns.size(), first.columns.size()}, false);
    }
    for (std::size_t i = 0; i < own.columns.size() && !forms_.mixesKinds; ++i) {
      if (!HoldsOtherKind(own.columns[i], first.columns[i])) continue;
      Fault(member, {text::MemberKindsDiffer, i + 1, own.columns[i].name, first.columns[i].name}, false);
    }
  }

  // Where the dialect has no names for the columns behind the query's, they stand in it.
  std::string WriteDerived(QueryTree& query) {
    CheckNames(query);
    if (!query.columnNames.empty() && !forms_.namesColumns) {
      if (!NameColumns(query.query, query.columnNames)) {
        Fault(query, {text::DialectCannotSay, query.name + NameList(query, query.query.names)});
      }
      query.columnNames.clear();
    }
    return Write(query, true);
  }

  GeneratedSql Select(QueryTree& query) {
    struct Derived {
      std::string text, columnNames;
    };
    std::unordered_map<std::string_view, Derived, HashNoCase, EqualNoCase> derived;  // by name
    for (QueryTree& inner : query.inner) {
      if (inner.kind != QueryDerivedTable || !NamesTable(query.query, inner.name)) continue;
      derived.emplace(inner.name, Derived{WriteDerived(inner), NameList(inner, query.query.names)});
    }
    std::size_t size = 0;
    for (SnapshotTable& table : query.query.tables) {
      const auto found = table.name.size() == 1 ? derived.find(table.name.front().Name()) : derived.end();
      if (found == derived.end()) continue;
      // One that stands in several places doubles at each level.
      size += found->second.text.size();
      if (size > kLongestQuery) throw Error(ErrorParsingText, text::StatementGrows);
      table.query = found->second.text;
      table.columnNames = found->second.columnNames;
    }
    GeneratedSql generated = GenerateSelect(query.query, dialect_, query.id == shown_ ? extra_ : ExtraConditions());
    holdsMark_ |= generated.text.find(kMark) != std::string::npos && !marks_;
    if (generated.text.empty()) Fault(query, CannotLimit(query.query) ? Phrase(text::NoLimitOfCompound) : Phrase());
    if (query.id != shown_ && !marks_) Remark(query, generated);
    return generated;
  }

  // What limits one SELECT cannot limit all members.
  bool CannotLimit(const QuerySnapshot& query) const {
    const RowLimit& limit = dialect_.limit;
    const bool limits = query.beginsCompound && !query.top.empty();
    return limits && limit.place != RowLimit::Place::End && (limit.rowsAndOffset.empty() || query.top.ends_with('%'));
  }

  const Dialect& dialect_;
  const QueryForms& forms_;
  const std::int32_t shown_;
  const ExtraConditions& extra_;
  const bool marks_;
  bool isAmongOthers_ = false;
  bool holdsMark_ = false;
  std::size_t member_ = 0;  // that is written, of its compound
  std::vector<QueryFault> faults_;
  std::vector<QueryRemark> remarks_;
};

}  // namespace

// First without marks, for a text that holds the sign itself is not to be marked.
GeneratedQuery GenerateQuery(QueryTree tree, const Dialect& dialect, std::int32_t shown, const ExtraConditions& extra) {
  Writer plain(dialect, shown, extra, false);
  QueryTree copy = tree;
  std::string text = plain.WriteAll(copy);
  GeneratedQuery result;
  if (!plain.HoldsMark()) result = Writer::WithoutMarks(Writer(dialect, shown, extra, true).WriteAll(tree));
  result.text = std::move(text);
  result.extended = shown;
  result.faults = std::move(plain.Faults());
  result.remarks = std::move(plain.Remarks());
  const bool stops = std::ranges::any_of(result.faults, [](const QueryFault& fault) { return fault.stops; });
  if (stops) {
    result.text.clear();
    result.parts.clear();
  }
  return result;
}

}  // namespace zrqrybld
