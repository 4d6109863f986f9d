#include "zrqrybld/expression/suggestions.h"

#include <algorithm>
#include <array>
#include <memory>
#include <span>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "zrqrybld/base/text.h"
#include "zrqrybld/expression/placeholders.h"

namespace zrqrybld {
namespace {

// What fits at a place, the best first; only the order of the numbers counts.
enum Rank : std::uint8_t { kBest, kGood, kFair, kLess, kLittle, kLeast };

// --- The words of the grammar ---

constexpr std::string_view kAfterTable[] = {"INNER JOIN", "LEFT JOIN", "RIGHT JOIN", "FULL JOIN", "CROSS JOIN",
                                            "WHERE",      "GROUP BY",  "ORDER BY",   "AS",        "UNION"};
constexpr std::string_view kAfterOn[] = {"INNER JOIN", "LEFT JOIN", "RIGHT JOIN", "FULL JOIN",
                                         "CROSS JOIN", "WHERE",     "GROUP BY",   "ORDER BY"};
constexpr std::string_view kAfterSelected[] = {"FROM", "AS"};
constexpr std::string_view kAfterWhere[] = {"GROUP BY", "ORDER BY", "HAVING", "UNION"};
constexpr std::string_view kAfterGroupBy[] = {"HAVING", "ORDER BY"};
constexpr std::string_view kAfterHaving[] = {"ORDER BY"};
constexpr std::string_view kAfterOrderBy[] = {"ASC", "DESC"};
constexpr std::string_view kOperandWords[] = {"CASE", "NULL", "NOT"};
constexpr std::string_view kCaseWords[] = {"WHEN", "THEN", "ELSE", "END"};
constexpr std::string_view kConditionWords[] = {"IS NULL", "IS NOT NULL"};

std::span<const std::string_view> PhrasesAfterOperand(SqlClause clause) {
  switch (clause) {
    case SqlClause::Select:
      return kAfterSelected;
    case SqlClause::From:
    case SqlClause::On:
      return kAfterOn;
    case SqlClause::Where:
      return kAfterWhere;
    case SqlClause::GroupBy:
      return kAfterGroupBy;
    case SqlClause::Having:
      return kAfterHaving;
    case SqlClause::OrderBy:
      return kAfterOrderBy;
    case SqlClause::None:
      break;
  }
  return {};
}

// --- The best suggestions ---

// What may become a suggestion: cheap to make, because most never do.
struct Candidate {
  std::uint32_t score = 0;  // match, then rank: the lower the better
  std::uint32_t order = 0;
  SuggestionKind kind = SuggestionKind::Keyword;
  std::string_view name = {};
  const struct NamedTable* table = nullptr;  // of a column, or the table of the query itself
  const TableFacts* source = nullptr;        // of a column or a table that the text does not name
  const ColumnFacts* column = nullptr;       // its name is written
  bool qualified = false;                    // with its table before it
  const VocabularyWord* word = nullptr;      // of the catalogs
};

// A table that the text can name, with what is known of it.
struct NamedTable {
  std::string exposed;
  std::string qualifier;  // as SQL text
  const TableFacts* facts = nullptr;
  bool outer = false;
};

// Keeps little more than the best: of a source of millions of columns most may hold what is typed.
class Collector {
 public:
  explicit Collector(std::string_view typed) : typed_(FoldCase(typed)) {}

  bool Typed() const { return !typed_.empty(); }
  // Whether there may be room among the best for another candidate of this rank.
  bool Wants(Rank rank) const { return rank < worst_; }

  // Whether one of the folded names, one behind the other, may hold what is typed.
  bool MayFindIn(std::string_view names) const { return names.find(typed_) != std::string_view::npos; }

  // Takes the candidate when its name holds what is typed.
  void Offer(std::string_view folded, Rank rank, Candidate candidate) {
    if (!Wants(rank)) return;
    std::uint32_t match = 0;
    if (!folded.starts_with(typed_)) {
      if (folded.find(typed_) == std::string_view::npos) return;
      match = 1;
    }
    candidate.score = match * 256 + rank;
    if (candidate.score >= worst_) return;
    candidate.order = order_++;
    found_.push_back(candidate);
    if (found_.size() == 4 * kMostSuggestions) Trim();
  }

  // Of those that fit alike, what was taken lately comes first.
  std::span<const Candidate> Best(const std::vector<std::string>& recent) {
    const std::size_t count = std::min(found_.size(), kMostSuggestions);
    std::ranges::partial_sort(found_, found_.begin() + static_cast<std::ptrdiff_t>(count), {}, Place);
    const std::span<Candidate> best = std::span(found_).first(count);
    if (!recent.empty()) {
      std::ranges::stable_sort(best, {}, [&recent](const Candidate& c) {
        const auto last = c.column ? recent.end() : std::ranges::find(recent, c.name);
        return std::pair(c.score, last - recent.begin());
      });
    }
    return best;
  }

 private:
  static std::pair<std::uint32_t, std::uint32_t> Place(const Candidate& c) { return {c.score, c.order}; }

  // Whoever comes later must be better than the last of the best.
  void Trim() {
    const auto last = found_.begin() + static_cast<std::ptrdiff_t>(kMostSuggestions) - 1;
    std::nth_element(found_.begin(), last, found_.end(),
                     [](const Candidate& a, const Candidate& b) { return Place(a) < Place(b); });
    worst_ = last->score;
    found_.resize(kMostSuggestions);
  }

  std::string typed_;
  std::vector<Candidate> found_;
  std::uint32_t order_ = 0;
  std::uint32_t worst_ = UINT32_MAX;
};

// The foreign keys that connect the named tables with others.
class Relations {
 public:
  explicit Relations(const std::vector<NamedTable>& tables) {
    for (const NamedTable& table : tables) {
      if (!table.facts) continue;
      named_.emplace(table.facts->folded, table.facts);
      for (const ForeignKeyFacts& key : table.facts->foreignKeys) {
        keys_.emplace(FoldCase(key.parentTable), std::pair(table.facts, &key));
      }
    }
  }

  // Whether one connects a named table with this other one.
  bool Lead(const TableFacts& table) const {
    const auto [key, lastKey] = keys_.equal_range(table.folded);
    const auto refers = [&](const auto& entry) {
      return entry.second.first != &table && RefersTo(*entry.second.second, table);
    };
    return std::any_of(key, lastKey, refers) || std::ranges::any_of(table.foreignKeys, [&](const ForeignKeyFacts& own) {
             const auto [parent, lastParent] = named_.equal_range(FoldCase(own.parentTable));
             return std::any_of(parent, lastParent, [&](const auto& entry) {
               return entry.second != &table && RefersTo(own, *entry.second);
             });
           });
  }

 private:
  // By the names of the tables, case-folded: the named ones, and what they refer to.
  std::unordered_multimap<std::string, const TableFacts*> named_;
  std::unordered_multimap<std::string, std::pair<const TableFacts*, const ForeignKeyFacts*>> keys_;
};

class Suggester {
 public:
  explicit Suggester(const SuggestionRequest& request)
      : request_(request), scope_(ReadCaretScope(request.text, request.caret, request.kind)), found_(scope_.typed) {}

  SuggestionList Run() {
    SuggestionList list{scope_.from, scope_.to, scope_.typed, scope_.mayBeName, !scope_.qualifier.empty(), {}};
    if (scope_.place == CaretPlace::Nothing) return list;
    FindTables();
    Collect();
    for (const Candidate& candidate : found_.Best(request_.words.recent)) list.items.push_back(Written(candidate));
    DropEqual(list.items);
    return list;
  }

 private:
  // --- The tables that the text can name ---

  void FindTables() {
    for (const ScopeTable& table : scope_.tables) {
      const TableFacts* facts = request_.facts.Find(table.parts);
      tables_.push_back({table.Exposed(), Quoted(table.Exposed()), facts, table.outer});
    }
    fromText_ = !tables_.empty();
    if (fromText_ && request_.kind == EditedText::Statement) return;
    for (const QueryTableFacts& table : request_.facts.QueryTables()) {
      tables_.push_back({table.caption, table.qualifier, table.facts, fromText_ || table.outer});
    }
  }

  // Whether columns are written with their table: there are several, or the text is a part of a larger one.
  bool MustQualify() const { return !fromText_ || std::ranges::count(tables_, false, &NamedTable::outer) > 1; }

  std::string Quoted(const std::string& name) const { return QuoteWhenNeeded(Identifier(name), request_.names).Text(); }
  std::string TableText(const TableFacts& table) const {
    std::vector<Identifier> parts;
    if (!table.schema.empty()) parts.emplace_back(table.schema);
    parts.emplace_back(table.name);
    return RenderQualified(parts, request_.names).Text();
  }

  // --- What fits ---

  void Collect() {
    switch (scope_.place) {
      case CaretPlace::Nothing:
        break;
      case CaretPlace::Statement:
        OfferPhrases(std::to_array<std::string_view>({"SELECT"}), kBest);
        break;
      case CaretPlace::Table:
        OfferSourceTables();
        break;
      case CaretPlace::AfterTable:
        if (scope_.joinOpen) OfferPhrases(std::to_array<std::string_view>({"ON"}), kBest);
        OfferPhrases(kAfterTable, kGood);
        break;
      case CaretPlace::Member:
        OfferMembers();
        break;
      case CaretPlace::Word:
        OfferCompletions();
        break;
      case CaretPlace::Operator:
        OfferOperators(EndsTerms() ? kGood : kBest, true);
        OfferPhrases(PhrasesAfterOperand(scope_.clause), EndsTerms() ? kBest : kGood);
        OfferPhrases(kCaseWords, kLess);
        if (scope_.clause == SqlClause::Select || scope_.clause == SqlClause::OrderBy) {
          OfferWords(request_.words.endings, SuggestionKind::Keyword, kLess, [](const auto&) { return true; });
        }
        break;
      case CaretPlace::Condition:
        OfferOperators(kBest, false);
        OfferOperands();
        break;
      case CaretPlace::Operand:
        OfferOperands();
        break;
    }
  }

  void OfferOperands() {
    if (scope_.clause == SqlClause::On && scope_.conditionStart) OfferPairs();
    if (!scope_.compared.empty()) OfferPartners();
    OfferColumns();
    if (scope_.clause == SqlClause::OrderBy) OfferAliases();
    for (const NamedTable& table : tables_) {
      OfferText(SuggestionKind::Table, table.exposed, kFair, {.table = &table});
    }
    if (!scope_.quoted) OfferOperandWords();
    if (!fromText_ && found_.Typed()) OfferWholeSource();
  }

  void OfferOperandWords() {
    const bool overRows =
        scope_.clause != SqlClause::Where && scope_.clause != SqlClause::On && scope_.clause != SqlClause::GroupBy;
    OfferWords(request_.words.functions, SuggestionKind::Function, kLess,
               [&](const VocabularyWord& word) { return overRows || !word.aggregate; });
    if (scope_.word == Keyword::Select) OfferPhrases(std::to_array<std::string_view>({"DISTINCT", "TOP"}), kLittle);
    if (scope_.word == Keyword::Not) OfferOperators(kLess, false);
    OfferPhrases(kOperandWords, kLittle);
    OfferWords(request_.words.pieces, SuggestionKind::Keyword, kLittle, [](const auto&) { return true; });
    OfferWords(request_.words.parameters, SuggestionKind::Parameter, kLittle, [](const auto&) { return true; });
    OfferPhrases(std::to_array<std::string_view>({"SELECT"}), kLeast);
    OfferWords(request_.words.keywords, SuggestionKind::Keyword, kLeast,
               [](const VocabularyWord& word) { return KeywordOf(word.name) == Keyword::None; });
  }

  void OfferColumns() {
    const bool qualify = MustQualify();
    for (const NamedTable& table : tables_) {
      if (table.facts) OfferColumnsOf(table, table.outer ? kFair : kGood, qualify || table.outer);
    }
  }

  void OfferColumnsOf(const NamedTable& table, Rank rank, bool qualify) {
    for (const ColumnFacts& column : table.facts->columns) {
      Offer(SuggestionKind::Column, column.folded, column.name, rank,
            {.table = &table, .column = &column, .qualified = qualify});
    }
  }

  // No table is written yet: every column that is known may be meant.
  void OfferWholeSource() {
    for (const TableFacts* table : request_.facts.Tables()) {
      if (!found_.Wants(kLeast)) return;
      const SuggestionKind kind = table->isView ? SuggestionKind::View : SuggestionKind::Table;
      Offer(kind, table->folded, table->name, kLeast, {.source = table});
      if (!found_.MayFindIn(table->foldedColumns)) continue;
      for (const ColumnFacts& column : table->columns) {
        Offer(SuggestionKind::Column, column.folded, column.name, kLeast,
              {.source = table, .column = &column, .qualified = true});
      }
    }
  }

  void OfferSourceTables() {
    const std::string schema = scope_.qualifier.empty() ? std::string() : FoldCase(scope_.qualifier.back());
    const Relations relations(tables_);
    for (const TableFacts* table : request_.facts.Tables()) {
      if (!schema.empty() && FoldCase(table->schema) != schema) continue;
      Offer(table->isView ? SuggestionKind::View : SuggestionKind::Table, table->folded, table->name,
            relations.Lead(*table) ? kBest : kGood, {.source = table});
    }
    if (schema.empty() && !scope_.quoted) OfferPhrases(std::to_array<std::string_view>({"SELECT"}), kLeast);
  }

  // The columns of the table before the dot: one of the query, by its name there, or one of the source.
  void OfferMembers() {
    const std::string name = FoldCase(scope_.qualifier.back());
    const auto named =
        std::ranges::find(tables_, name, [](const NamedTable& table) { return FoldCase(table.exposed); });
    if (named != tables_.end()) {
      if (named->facts) OfferColumnsOf(*named, kBest, false);
    } else if (const TableFacts* table = request_.facts.Find(scope_.qualifier)) {
      for (const ColumnFacts& column : table->columns) {
        Offer(SuggestionKind::Column, column.folded, column.name, kBest, {.source = table, .column = &column});
      }
    } else {
      for (const TableFacts* candidate : request_.facts.Tables()) {
        if (FoldCase(candidate->schema) != name) continue;
        Offer(SuggestionKind::Table, candidate->folded, candidate->name, kGood, {.source = candidate});
      }
    }
  }

  // --- Foreign keys ---

  // Calls `use(column, otherColumn...)` for every foreign key between the two, whichever of them holds it.
  template <class Use>
  static void ForKeysBetween(const NamedTable& one, const NamedTable& other, Use use) {
    if (!one.facts || !other.facts) return;
    for (const ForeignKeyFacts& key : one.facts->foreignKeys) {
      if (RefersTo(key, *other.facts)) use(key, one, other);
    }
    for (const ForeignKeyFacts& key : other.facts->foreignKeys) {
      if (RefersTo(key, *one.facts) && one.facts != other.facts) use(key, other, one);
    }
  }

  // The whole conditions that join the last table to those before it.
  void OfferPairs() {
    if (scope_.lastTable < 1 || scope_.quoted) return;
    const NamedTable& last = tables_[static_cast<std::size_t>(scope_.lastTable)];
    for (std::ptrdiff_t i = scope_.lastTable - 1; i >= 0; --i) {
      ForKeysBetween(last, tables_[static_cast<std::size_t>(i)],
                     [&](const ForeignKeyFacts& key, const NamedTable& child, const NamedTable& parent) {
                       std::string text;
                       for (const ForeignKeyFacts::Pair& pair : key.pairs) {
                         if (!text.empty()) text += " AND ";
                         text += child.qualifier + "." + Quoted(pair.column) + " = " + parent.qualifier + "." +
                                 Quoted(pair.parentColumn);
                       }
                       OfferText(SuggestionKind::ColumnPair, Keep(std::move(text)), kBest);
                     });
    }
  }

  // The columns that a foreign key pairs with the one left of the "=".
  void OfferPartners() {
    const std::string column = FoldCase(scope_.compared.back());
    const std::string qualifier = scope_.compared.size() > 1 ? FoldCase(scope_.compared.end()[-2]) : std::string();
    for (const NamedTable& left : tables_) {
      if (!qualifier.empty() && FoldCase(left.exposed) != qualifier) continue;
      for (const NamedTable& right : tables_) {
        if (&left == &right) continue;
        ForKeysBetween(left, right, [&](const ForeignKeyFacts& key, const NamedTable& child, const NamedTable&) {
          for (const ForeignKeyFacts::Pair& pair : key.pairs) {
            const bool fromChild = &child == &left;
            if (FoldCase(fromChild ? pair.column : pair.parentColumn) == column) {
              OfferColumn(right, fromChild ? pair.parentColumn : pair.column);
            }
          }
        });
      }
    }
  }

  void OfferColumn(const NamedTable& table, const std::string& name) {
    const auto column = std::ranges::find(table.facts->columns, FoldCase(name), &ColumnFacts::folded);
    if (column == table.facts->columns.end()) return;
    Offer(SuggestionKind::Column, column->folded, column->name, kBest,
          {.table = &table, .column = &*column, .qualified = true});
  }

  // --- Words ---

  void OfferAliases() {
    for (const std::string& alias : scope_.aliases) OfferText(SuggestionKind::Column, Keep(Quoted(alias)), kGood);
  }

  void OfferCompletions() {
    switch (scope_.word) {
      case Keyword::Group:
      case Keyword::Order:
        OfferPhrases(std::to_array<std::string_view>({"BY"}), kBest);
        break;
      case Keyword::Is:
        OfferPhrases(std::to_array<std::string_view>({"NULL", "NOT NULL"}), kBest);
        break;
      case Keyword::Left:
      case Keyword::Right:
      case Keyword::Full:
        OfferPhrases(std::to_array<std::string_view>({"JOIN", "OUTER JOIN"}), kBest);
        break;
      default:
        OfferPhrases(std::to_array<std::string_view>({"JOIN"}), kBest);
    }
  }

  // Whether a term is followed by a word of the clause more often than by an operator.
  bool EndsTerms() const {
    return scope_.clause == SqlClause::Select || scope_.clause == SqlClause::GroupBy ||
           scope_.clause == SqlClause::OrderBy;
  }

  // The operators between two operands, or those that begin a condition on a column that is not written.
  void OfferOperators(Rank rank, bool joining) {
    for (const VocabularyWord& word : request_.words.operators) {
      const Keyword keyword = KeywordOf(word.name);
      const bool joins = keyword == Keyword::And || keyword == Keyword::Or;
      if (!joining && (joins || !word.condition)) continue;
      const bool fits = word.condition ? scope_.clause != SqlClause::Select : true;
      // What makes or joins conditions comes before "&" and its like.
      const Rank own = joins || word.condition ? rank : static_cast<Rank>(rank + 1);
      OfferText(SuggestionKind::Operator, word.name, fits ? own : kLess, {.word = &word});
    }
    OfferPhrases(kConditionWords, scope_.clause == SqlClause::Select ? kLess : rank);
  }

  template <class Fits>
  void OfferWords(const std::vector<VocabularyWord>& words, SuggestionKind kind, Rank rank, Fits fits) {
    for (const VocabularyWord& word : words) {
      if (fits(word)) OfferText(kind, word.name, rank, {.word = &word});
    }
  }

  void OfferPhrases(std::span<const std::string_view> phrases, Rank rank) {
    if (scope_.quoted) return;
    for (const std::string_view phrase : phrases) {
      if (phrase == "FULL JOIN" && !request_.words.fullJoin) continue;
      OfferText(SuggestionKind::Keyword, phrase, rank);
    }
  }

  // --- Candidates ---

  void Offer(SuggestionKind kind, std::string_view folded, std::string_view name, Rank rank, Candidate candidate) {
    candidate.kind = kind;
    candidate.name = name;
    found_.Offer(folded, rank, candidate);
  }
  // As `Offer`, for texts that are not folded yet; they must live as long as this.
  void OfferText(SuggestionKind kind, std::string_view text, Rank rank, Candidate candidate = {}) {
    Offer(kind, FoldCase(text), text, rank, candidate);
  }
  std::string_view Keep(std::string text) {
    return *kept_.emplace_back(std::make_unique<std::string>(std::move(text)));
  }

  Suggestion Written(const Candidate& candidate) const {
    Suggestion item{candidate.kind, std::string(candidate.name), {}, {}};
    if (candidate.column) {
      const std::string qualifier = candidate.table ? candidate.table->qualifier : TableText(*candidate.source);
      item.insert = (candidate.qualified ? qualifier + "." : std::string()) + Quoted(candidate.column->name);
      item.detail = candidate.table ? candidate.table->exposed : candidate.source->name;
      if (!candidate.column->type.empty()) item.detail += " · " + candidate.column->type;
    } else if (candidate.table) {
      item.insert = candidate.table->qualifier;
      if (candidate.table->facts && candidate.table->facts->name != candidate.table->exposed) {
        item.detail = candidate.table->facts->name;
      }
    } else if (candidate.source) {
      item.insert = scope_.qualifier.empty() ? TableText(*candidate.source) : Quoted(candidate.source->name);
      item.detail = candidate.source->schema;
    } else if (candidate.word) {
      item.insert = candidate.word->syntax.empty() ? candidate.word->name : candidate.word->syntax;
      item.detail = candidate.word->description;
      if (item.detail.empty() && item.insert != item.label) item.detail = ReadTemplate(item.insert).text;
    } else {
      item.insert = item.label;
    }
    return item;
  }

  // The same text may fit for two reasons; the better one stands first.
  static void DropEqual(std::vector<Suggestion>& items) {
    std::unordered_set<std::string> seen;
    std::erase_if(items, [&](const Suggestion& item) { return !seen.insert(item.insert).second; });
  }

  const SuggestionRequest& request_;
  CaretScope scope_;
  Collector found_;
  std::vector<NamedTable> tables_;
  bool fromText_ = false;  // the text names tables itself
  std::vector<std::unique_ptr<std::string>> kept_;
};

}  // namespace

bool RefersTo(const ForeignKeyFacts& key, const TableFacts& table) {
  return EqualsNoCase(key.parentTable, table.name) &&
         (key.parentSchema.empty() || table.schema.empty() || EqualsNoCase(key.parentSchema, table.schema));
}

SuggestionList Suggest(const SuggestionRequest& request) { return Suggester(request).Run(); }

}  // namespace zrqrybld
