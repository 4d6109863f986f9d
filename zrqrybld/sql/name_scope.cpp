#include "zrqrybld/sql/name_scope.h"

#include <algorithm>
#include <array>
#include <functional>
#include <span>

#include "zrqrybld/base/near_names.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_sql.h"
#include "zrqrybld/sql/lexer.h"
#include "zrqrybld/sql/syntax_error.h"

namespace zrqrybld {
namespace {

// Those behind ROWNUM may be columns as well, or stand behind a table.
constexpr std::array<std::string_view, 11> kPseudoColumns = {"CURRENT_DATE", "CURRENT_TIME", "CURRENT_TIMESTAMP",
                                                             "CURRENT_USER", "SYSDATE",      "SYSTIMESTAMP",
                                                             "SESSION_USER", "USER",         "ROWNUM",
                                                             "LEVEL",        "ROWID"};
constexpr std::size_t kServerValues = 9;

bool IsOneOf(std::string_view name, std::span<const std::string_view> words) {
  return std::ranges::any_of(words, [name](std::string_view word) { return EqualsNoCase(word, name); });
}

// A name that is written without quotes and without dots.
bool IsOnePart(std::string_view written) {
  const auto isPlain = [](char c) {
    return IsDigit(c) || c == '_' || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
  };
  return !written.empty() && !IsDigit(written.front()) && std::ranges::all_of(written, isPlain);
}

// Of ASCII alone; what a server makes of others hangs on its locale.
char LowerAscii(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

}  // namespace

std::string InLetters(std::string_view name, Dialect::PlainNames plain) {
  if (plain == Dialect::PlainNames::Upper) return UpperAscii(name);
  std::string text(name);
  if (plain == Dialect::PlainNames::Lower) std::ranges::transform(text, text.begin(), LowerAscii);
  return text;
}

std::string WholeName(const std::vector<Identifier>& parts) {
  std::string name;
  for (const Identifier& part : parts) name += (name.empty() ? "" : ".") + part.Name();
  return name;
}

std::string PlainName(std::string_view written) {
  if (written.size() < 2 || std::string_view("\"[`'").find(written.front()) == std::string_view::npos) {
    return std::string(written);
  }
  const std::string closing(1, written.back());
  return ReplaceAll(written.substr(1, written.size() - 2), closing + closing, closing);
}

std::vector<Identifier> NameParts(std::string_view written, Dialect::PlainNames plain) {
  std::vector<Identifier> parts;
  if (IsOnePart(written)) {
    parts.emplace_back(InLetters(written, plain));
    return parts;
  }
  Lexer lexer(written);
  bool partCame = false;
  for (Token token; lexer.Next(token);) {
    if (token.kind == TokenKind::Comment) continue;
    if (token.kind == TokenKind::Operator) {
      if (!partCame) parts.emplace_back();  // a part was left out
      partCame = false;
      continue;
    }
    const std::string_view part = written.substr(token.offset, token.length);
    parts.emplace_back(token.kind == TokenKind::Word ? InLetters(part, plain) : PlainName(part));
    partCame = true;
  }
  return parts;
}

WrittenTable WrittenTableOf(const FromItem& item, std::size_t place) {
  if (item.query.empty()) return {NameParts(item.table), Identifier(PlainName(item.alias))};
  std::string name = item.table.empty() ? "Query" + std::to_string(place + 1) : PlainName(item.table);
  return {.parts = {Identifier(std::move(name))}, .alias = {}, .isQuery = true};
}

bool NameScope::IsPseudoColumn(std::string_view name) { return IsOneOf(name, kPseudoColumns); }

bool NameScope::IsServerValue(std::string_view name) {
  return IsOneOf(name, std::span(kPseudoColumns).first(kServerValues));
}

void NameScope::Refuse(std::string_view part, Phrase message) const {
  throw SyntaxError(text_, OffsetOf(part), std::move(message));
}

// --- Tables ---

std::size_t NameScope::AddTable(const FromItem& item) {
  const WrittenTable written = WrittenTableOf(item, tables_.size());
  const std::string_view place = item.query.empty() ? item.table : item.query;
  std::optional<SnapshotTable> table = source_.AddTable(written);
  if (!table) {
    NearestName nearest(written.parts.back().Name());
    source_.OfferTables(nearest);
    Refuse(place, nearest.With({text::NoTableNamed, WholeName(written.parts)}));
  }
  const std::size_t index = tables_.size();
  const std::string& caption = table->caption.Name();
  if (!byCaption_.emplace(caption, index).second) {
    Refuse(item.alias.empty() ? place : item.alias, {text::TableNameTwice, caption});
  }
  if (written.alias.Empty()) {
    const auto [known, added] = byLastPart_.emplace(written.parts.back().Name(), index);
    if (!added) known->second = kAmbiguous;
  }
  tables_.push_back(std::move(*table));
  return index;
}

void NameScope::AddKnown(const SnapshotTable& table) {
  const std::size_t index = tables_.size();
  byCaption_.emplace(table.caption.Name(), index);
  if (!table.aliased && !table.name.empty()) {
    const auto [known, added] = byLastPart_.emplace(table.name.back().Name(), index);
    if (!added) known->second = kAmbiguous;
  }
  tables_.push_back(table);
}

std::optional<std::size_t> NameScope::FindTable(std::string_view qualifier) const {
  if (const auto found = byCaption_.find(qualifier); found != byCaption_.end() && IsOnePart(qualifier)) {
    return found->second;
  }
  const std::vector<Identifier> parts = NameParts(qualifier);
  if (parts.empty()) return std::nullopt;
  if (const auto found = byCaption_.find(WholeName(parts)); found != byCaption_.end()) return found->second;
  const auto found = byLastPart_.find(parts.back().Name());
  if (found == byLastPart_.end()) return std::nullopt;
  if (parts.size() == 1 || found->second == kAmbiguous) return found->second;
  // A longer qualifier must end as the table's name does.
  const std::vector<Identifier>& name = tables_[found->second].name;
  for (std::size_t i = 1; i <= std::min(parts.size(), name.size()); ++i) {
    if (!EqualsNoCase(parts[parts.size() - i].Name(), name[name.size() - i].Name())) return std::nullopt;
  }
  return found->second;
}

std::size_t NameScope::RequireTable(std::string_view qualifier, std::string_view place) const {
  const std::optional<std::size_t> table = FindTable(qualifier);
  if (!table) {
    NearestName nearest(WholeName(NameParts(qualifier)));
    for (const SnapshotTable& known : tables_) nearest.Offer(known.caption.Name());
    Refuse(place, nearest.With({text::NoTableInFrom, WholeName(NameParts(qualifier))}));
  }
  if (*table == kAmbiguous) Refuse(place, {text::SeveralTablesCalled, qualifier});
  return *table;
}

// --- Columns ---

std::vector<std::size_t> NameScope::TablesWith(const std::string& name) const {
  std::vector<std::size_t> having, open;
  for (std::size_t table = 0; table < tables_.size(); ++table) {
    if (source_.FindColumn(table, name)) {
      having.push_back(table);
    } else if (!source_.KnowsColumns(table)) {
      open.push_back(table);
    }
  }
  return having.empty() ? open : having;
}

std::optional<BoundColumn> NameScope::Find(const Expression& column) const {
  if (MeansOuter(column)) {
    CheckOuter(column);
    return std::nullopt;
  }
  const std::string name = PlainName(column.name);
  const std::string_view qualifier = column.Qualifier();
  if (!qualifier.empty()) {
    const std::size_t table = RequireTable(qualifier, column.text);
    std::optional<std::string> found = source_.FindColumn(table, name);
    if (!found && !source_.KnowsColumns(table)) found = FirstSpelling(table, name);
    if (!found) {
      NearestName nearest(name);
      OfferColumns(table, nearest);
      Refuse(column.text, nearest.With({text::NoColumnInTable, tables_[table].caption.Name(), name}));
    }
    return BoundColumn{table, std::move(*found)};
  }
  if (const BoundColumn* unified = FindUnified(name)) return *unified;
  const std::vector<std::size_t> tables = TablesWith(name);
  if (tables.empty()) return std::nullopt;
  if (IsServerValue(column.name) && !source_.FindColumn(tables[0], name)) return std::nullopt;
  if (tables.size() > 1) {
    std::string candidates;
    for (const std::size_t table : tables) {
      candidates += (candidates.empty() ? "" : ", ") + tables_[table].caption.Name() + "." + name;
    }
    Refuse(column.text, {text::ColumnAmbiguous, name, candidates});
  }
  std::optional<std::string> found = source_.FindColumn(tables[0], name);
  if (!found) found = FirstSpelling(tables[0], name);
  return BoundColumn{tables[0], std::move(*found)};
}

const std::string& NameScope::FirstSpelling(std::size_t table, const std::string& name) const {
  if (spellings_.size() <= table) spellings_.resize(table + 1);
  return spellings_[table].try_emplace(name, name).first->second;
}

std::optional<BoundColumn> NameScope::TryFind(const Expression& column) const {
  try {
    return Find(column);
  } catch (const SyntaxError&) {
    return std::nullopt;
  }
}

BoundColumn NameScope::Require(const Expression& column) const {
  std::optional<BoundColumn> found = Find(column);
  if (!found) {
    NearestName nearest(PlainName(column.name));
    for (std::size_t table = 0; table < tables_.size(); ++table) OfferColumns(table, nearest);
    Refuse(column.text, nearest.With({text::NoTableHasColumn, PlainName(column.name)}));
  }
  return std::move(*found);
}

bool NameScope::MeansHere(const Expression& column) const {
  const std::string_view qualifier = column.Qualifier();
  if (!qualifier.empty()) return FindTable(qualifier).has_value();
  const std::string name = PlainName(column.name);
  return FindUnified(name) || !TablesWith(name).empty() || FindTable(column.name).has_value();
}

bool NameScope::Means(const Expression& column) const { return MeansHere(column) || (outer_ && outer_->Means(column)); }

std::string NameScope::OuterTableOf(const Expression& column) const {
  if (MeansHere(column)) return {};
  for (const NameScope* scope = outer_; scope; scope = scope->outer_) {
    if (!scope->MeansHere(column)) continue;
    const std::optional<BoundColumn> found = scope->TryFind(column);
    return found ? scope->tables_[found->table].caption.Name() : std::string();
  }
  return {};
}

// Whether the columns of any table are known, here or around.
bool NameScope::KnowsAny() const {
  for (std::size_t table = 0; table < tables_.size(); ++table) {
    if (source_.KnowsColumns(table)) return true;
  }
  return outer_ && outer_->KnowsAny();
}

// A fault is told at its place in the text that is looked at here: the scope around may be that of another one.
void NameScope::CheckOuter(const Expression& column) const {
  try {
    outer_->Check(column);
  } catch (const SyntaxError& error) {
    Refuse(column.text, error.Sentence());
  }
}

std::size_t NameScope::OffsetOf(std::string_view part) const {
  const std::less<> before;
  const bool isWithin = !before(part.data(), text_.data()) && !before(text_.data() + text_.size(), part.data());
  return isWithin ? static_cast<std::size_t>(part.data() - text_.data()) : 0;
}

void NameScope::Check(const Expression& column) const {
  if (!MeansHere(column) && outer_ && outer_->Means(column)) return CheckOuter(column);
  const bool hasTables = !tables_.empty() || outer_;
  if (hasTables && !column.Qualifier().empty() && !Means(column) && !KnowsAny()) return;
  if (column.Qualifier().empty() && MeansHere(column)) {
    const std::vector<std::size_t> tables = TablesWith(PlainName(column.name));
    if (tables.empty() || !source_.FindColumn(tables[0], PlainName(column.name))) return;
  }
  Require(column);
}

void NameScope::OfferColumns(std::size_t table, NearestName& nearest) const {
  for (const std::string& column : source_.Columns(table)) nearest.Offer(column);
}

void NameScope::Unify(const std::string& name, const BoundColumn& column) { unified_.insert_or_assign(name, column); }

const BoundColumn* NameScope::FindUnified(std::string_view name) const {
  const auto found = unified_.find(name);
  return found == unified_.end() ? nullptr : &found->second;
}

}  // namespace zrqrybld
