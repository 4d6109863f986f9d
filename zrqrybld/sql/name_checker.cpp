#include "zrqrybld/sql/name_checker.h"

#include <algorithm>
#include <array>
#include <span>
#include <utility>
#include <vector>

#include "zrqrybld/base/near_names.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_queries.h"
#include "zrqrybld/base/texts_sql.h"
#include "zrqrybld/host/catalogs.h"
#include "zrqrybld/sql/criteria_formatter.h"
#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/expression_parser.h"
#include "zrqrybld/sql/from_binder.h"
#include "zrqrybld/sql/lexer.h"
#include "zrqrybld/sql/outer_queries.h"
#include "zrqrybld/sql/statement_parser.h"
#include "zrqrybld/sql/syntax_error.h"

namespace zrqrybld {
namespace {

/// Queries within queries beyond this depth are not looked at: each level is read anew from its text.
constexpr int kDeepestQuery = 16;

// What servers know without a table that has it, beside the pseudo-columns.
constexpr std::string_view kServerWords[] = {"_ROWID_",
                                             "CMAX",
                                             "CMIN",
                                             "COLUMN_VALUE",
                                             "CONNECT_BY_ISCYCLE",
                                             "CONNECT_BY_ISLEAF",
                                             "CTID",
                                             "CURRENT",
                                             "CURRENT_CATALOG",
                                             "CURRENT_PATH",
                                             "CURRENT_ROLE",
                                             "CURRENT_SCHEMA",
                                             "DBTIMEZONE",
                                             "DEFAULT",
                                             "DOCUMENT",
                                             "INFINITE",
                                             "JSON",
                                             "LOCALTIME",
                                             "LOCALTIMESTAMP",
                                             "MAXVALUE",
                                             "NAN",
                                             "NORMALIZED",
                                             "OID",
                                             "ORA_ROWSCN",
                                             "SESSIONTIMEZONE",
                                             "SYSTEM_USER",
                                             "TABLEOID",
                                             "UID",
                                             "UNKNOWN",
                                             "UTC_DATE",
                                             "UTC_TIME",
                                             "UTC_TIMESTAMP",
                                             "XMAX",
                                             "XMIN"};
// What stands behind a sequence.
constexpr std::string_view kSequenceWords[] = {"CURRVAL", "NEXTVAL"};
// What functions take as an argument: parts of a date, and types.
constexpr std::string_view kArgumentWords[] = {
    "BIGINT",    "BINARY",   "BIT",     "BOOLEAN",     "CHAR",        "CHARACTER", "DATE",     "DATETIME", "DAY",
    "DECADE",    "DECIMAL",  "DOUBLE",  "DOW",         "DOY",         "EPOCH",     "FLOAT",    "HOUR",     "INT",
    "INTEGER",   "ISODOW",   "ISOYEAR", "MILLISECOND", "MICROSECOND", "MINUTE",    "MONEY",    "MONTH",    "NCHAR",
    "NUMERIC",   "NVARCHAR", "QUARTER", "REAL",        "SECOND",      "SIGNED",    "SMALLINT", "TEXT",     "TIME",
    "TIMESTAMP", "UNSIGNED", "VARCHAR", "WEEK",        "WEEKDAY",     "YEAR"};

bool IsOneOf(std::string_view name, std::span<const std::string_view> words) {
  return std::ranges::any_of(words, [name](std::string_view word) { return EqualsNoCase(word, name); });
}

// The tables of a query within a query.
class InnerSource final : public QuerySource {
 public:
  explicit InnerSource(const QuerySource& source) : source_(source) {}

  std::optional<SnapshotTable> AddTable(const WrittenTable& written) override {
    // What a query in FROM gives is not looked at here: any name may be a column of it.
    std::optional<std::vector<std::string>> columns =
        written.isQuery ? std::vector<std::string>() : source_.ColumnsOf(written);
    if (!columns) return std::nullopt;
    tables_.push_back({std::move(*columns), {}});
    Table& table = tables_.back();
    for (std::size_t i = 0; i < table.columns.size(); ++i) table.byName.emplace(table.columns[i], i);
    SnapshotTable result;
    result.name = written.parts;
    result.caption = written.alias.Empty() ? Identifier(WholeName(written.parts)) : written.alias;
    return result;
  }
  bool KnowsColumns(std::size_t table) const override { return !tables_[table].columns.empty(); }
  std::optional<std::string> FindColumn(std::size_t table, const std::string& name) const override {
    const auto found = tables_[table].byName.find(name);
    if (found == tables_[table].byName.end()) return std::nullopt;
    return tables_[table].columns[found->second];
  }
  std::vector<std::string> Columns(std::size_t table) const override { return tables_[table].columns; }
  std::optional<std::vector<std::string>> ColumnsOf(const WrittenTable& table) const override {
    return source_.ColumnsOf(table);
  }
  SnapshotType TypeOf(std::size_t, const std::string&) const override { return {}; }
  void OfferTables(NearestName& nearest) const override { source_.OfferTables(nearest); }

 private:
  struct Table {
    std::vector<std::string> columns;
    std::unordered_map<std::string, std::size_t, HashNoCase, EqualNoCase> byName;
  };
  const QuerySource& source_;
  std::vector<Table> tables_;
};

// What all queries of a statement share.
struct Rules {
  const Dialect& dialect;
  const qbDBFunctions* functions;
};

class Checker {
 public:
  Checker(const NameScope& scope, const Rules& rules, int depth, WordSet named = {})
      : scope_(scope), rules_(rules), depth_(depth), named_(std::move(named)) {}

  void Run(const SelectStatement& statement) {
    for (const SelectItem* item = statement.items; item; item = item->next) {
      if (!item->alias.empty()) named_.insert(PlainName(item->alias));
    }
    for (const SelectItem* item = statement.items; item; item = item->next) Check(*item->expression);
    for (const FromItem* item = statement.from; item; item = item->next) CheckJoins(*item);
    if (statement.where) Check(*statement.where);
    // Here the columns of the result have names without an alias, too.
    for (const SelectItem* item = statement.items; item; item = item->next) {
      if (item->expression->kind == ExpressionKind::Column) named_.insert(PlainName(item->expression->name));
    }
    for (const OrderItem* item = statement.groupBy; item; item = item->next) Check(*item->expression);
    if (statement.having) Check(*statement.having);
    for (const OrderItem* item = statement.orderBy; item; item = item->next) Check(*item->expression);
  }

  // In a loop, for an expression may be as deep as its text is long.
  void Check(const Expression& whole) const {
    struct Part {
      const Expression* expression;
      bool isArgument;
    };
    std::vector<Part> pending{{&whole, false}};
    while (!pending.empty()) {
      const auto [e, isArgument] = pending.back();
      pending.pop_back();
      if (e->kind == ExpressionKind::Column) CheckColumn(*e, isArgument);
      if (e->kind == ExpressionKind::Subquery) CheckQuery(e->text);
      if (e->kind == ExpressionKind::Sign) CheckSign(e->text);
      const auto first = static_cast<std::ptrdiff_t>(pending.size());
      for (const Expression* child = e->first; child; child = child->next) {
        pending.push_back({child, e->kind == ExpressionKind::Call});
      }
      std::reverse(pending.begin() + first, pending.end());
    }
  }

 private:
  void CheckJoins(const FromItem& item) {
    for (const JoinStep* step = item.joins; step; step = step->next) {
      CheckJoins(*step->right);
      if (step->on) Check(*step->on);
    }
  }

  void CheckSign(std::string_view sign) const {
    const bool isOwn = rules_.dialect.ownSigns.find(" " + std::string(sign) + " ") != std::string_view::npos;
    if (IsRareSign(sign) && !isOwn) scope_.Refuse(sign, {text::DialectCannotSay, sign});
  }

  void CheckColumn(const Expression& column, bool isArgument) const {
    if (column.Qualifier().empty() && named_.contains(PlainName(column.name))) return;
    if (!scope_.Means(column) && IsOtherwiseKnown(column, isArgument)) return;
    const bool isRow = NameScope::IsPseudoColumn(column.name) || IsOneOf(column.name, kServerWords);
    if (isRow && scope_.Means(column)) return;  // behind any table
    scope_.Check(column);
  }

  // What may stand where no table has such a column.
  bool IsOtherwiseKnown(const Expression& column, bool isArgument) const {
    const std::string_view name = column.name;
    if (!column.Qualifier().empty()) {
      return IsOneOf(name, kSequenceWords) ||
             (rules_.dialect.unknownNamesAsk && column.text.find('!') != std::string_view::npos);
    }
    switch (name.front()) {
      case '"':
        return rules_.dialect.doubleQuotesAreTexts || rules_.dialect.namePrefix != "\"";
      case '[':
        return rules_.dialect.unknownNamesAsk;
      case '@':
      case '$':
      case '#':
        return true;
      default:
        break;
    }
    return NameScope::IsPseudoColumn(name) || IsOneOf(name, kServerWords) ||
           (isArgument && IsOneOf(name, kArgumentWords)) || IsFunction(name);
  }

  bool IsFunction(std::string_view name) const {
    return rules_.functions && std::ranges::any_of(*rules_.functions, [name](const Ref<qbDBFunction>& function) {
             return EqualsNoCase(function->Name(), name) && function->Syntax().find('(') == std::string::npos;
           });
  }

  // What cannot be read as one SELECT of tables is not looked at.
  void CheckQuery(std::string_view text) const {
    const std::size_t open = text.find('(');
    if (depth_ >= kDeepestQuery || open == std::string_view::npos) return;
    const std::string_view inside = text.substr(open + 1, text.size() - open - 2);
    std::optional<SelectStatement> query;
    ParseOptions options = OptionsFor(rules_.dialect);
    options.openParenthesesInFrom = options.pipesMayBeOr = false;
    try {
      query.emplace(ParseSelect(inside, options));
    } catch (const SyntaxError&) {
      return;
    }
    InnerSource source(scope_.Source());
    NameScope scope(scope_.Text(), source, &scope_);
    AddTables(*query, scope);
    Checker(scope, rules_, depth_ + 1).Run(*query);
  }

  const NameScope& scope_;
  const Rules& rules_;
  const int depth_;
  WordSet named_;
};

}  // namespace

void RequireKnownNames(const SelectStatement& statement, const NameScope& scope, const Dialect& dialect,
                       const qbDBFunctions& functions) {
  const Rules rules{dialect, &functions};
  Checker(scope, rules, 0).Run(statement);
}

// --- A designed query ---

DesignNames::DesignNames(const QuerySnapshot& query, const Dialect& dialect, const qbDBFunctions* functions)
    : query_(query), dialect_(dialect), functions_(functions) {
  if (query.columns) source_ = std::make_unique<DesignSource>(query.columns);
  for (const SnapshotRow& row : query.rows) {
    if (!row.alias.Empty()) aliases_.insert(row.alias.Name());
  }
}

DesignNames::~DesignNames() = default;

NameScope& DesignNames::Scope() const {
  if (!scope_) {
    const NameScope* outer = query_.outer ? &query_.outer->Scope() : nullptr;
    scope_ = std::make_unique<NameScope>(std::string_view(), *source_, outer);
    for (const SnapshotTable& table : query_.tables) scope_->AddKnown(table);
  }
  return *scope_;
}

Phrase DesignNames::FaultIn(std::string_view expression) const {
  if (!source_) return {};
  const Expression* tree = nullptr;
  SyntaxArena arena(expression.size() * 8 + 256);
  try {
    tree = ParseExpressionText(expression, arena);
  } catch (const SyntaxError&) {
    return {};
  }
  NameScope& scope = Scope();
  scope.SetText(expression);
  try {
    const Rules rules{dialect_, functions_};
    Checker(scope, rules, 0, aliases_).Check(*tree);
  } catch (const SyntaxError& error) {
    return error.Sentence();
  }
  return {};
}

namespace {

// Whether a word stands in the criterion that may be a name.
bool MayHoldName(std::string_view cell) {
  Lexer lexer(cell);
  for (Token token; lexer.Next(token);) {
    if (token.kind == TokenKind::QuotedIdentifier) return true;
    if (token.kind == TokenKind::Word && token.keyword == Keyword::None) return true;
  }
  return false;
}

}  // namespace

Phrase DesignNames::FaultInCriterion(std::string_view cell, const SnapshotRow& row) const {
  if (!source_ || !MayHoldName(cell)) return {};
  CriteriaContext context = query_.criteria;
  DescribeColumn(context, row);
  context.quotePrefix = query_.names.quotePrefix;
  try {
    return FaultIn(FormatCondition("0", cell, context));
  } catch (const Error&) {
    return {};
  }
}

}  // namespace zrqrybld
