// The default vocabulary, one row a fact.
#include "zrqrybld/host/catalogs.h"

namespace zrqrybld {
namespace {

constexpr std::string_view kQuotedIdentifiers[] = {"-", "*", "#", "$", " ", "."};

constexpr std::string_view kKeywords[] = {"SELECT", "AS", "FROM", "WHERE", "NULL", "BY", "GROUP", "ORDER", "DISTINCT"};

struct OperatorRow {
  std::string_view name;
  std::string_view syntax;
  std::int32_t flags;
};
constexpr OperatorRow kOperators[] = {
    {"IS", "", SQLOperatorLogical},
    {"BETWEEN", "BETWEEN @Expression1 AND @Expression2", SQLOperatorLogical},
    {"AND", "", SQLOperatorLogical},
    {"IN", "IN(@Expression)", SQLOperatorLogical},
    {"LIKE", "LIKE @Expression", SQLOperatorLogical},
    {"NOT", "NOT @Expression", SQLOperatorLogical},
    {"OR", "", SQLOperatorLogical},
    {"&", "", SQLOperatorBitwise},
    {"|", "", SQLOperatorBitwise},
    {"^", "", SQLOperatorBitwise},
    {"=", "", SQLOperatorComparison},
    {">", "", SQLOperatorComparison},
    {"<", "", SQLOperatorComparison},
    {">=", "", SQLOperatorComparison},
    {"<=", "", SQLOperatorComparison},
    {"<>", "", SQLOperatorComparison},
    {"!=", "", SQLOperatorComparison},
    {"!<", "", SQLOperatorComparison},
    {"!>", "", SQLOperatorComparison},
    {"+", "", SQLOperatorArithmetic},
    {"-", "", SQLOperatorArithmetic},
    {"*", "", SQLOperatorArithmetic},
    {"/", "", SQLOperatorArithmetic},
    {"%", "", SQLOperatorArithmetic},
    {"~", "", 0},  // on purpose without a flag: it is offered, but in no group of operators
};

struct FunctionRow {
  std::string_view name;
  std::string_view syntax;
  std::string_view shortDescription;
  std::string_view description;
  std::int32_t flags;
};
constexpr FunctionRow kFunctions[] = {
    {"ALL", "ALL(@SubQuery)", "", "", 0},
    {"ANY", "ANY(@SubQuery)", "", "", 0},
    {"SOME", "SOME(@SubQuery)", "", "", 0},
    {"EXISTS", "EXISTS(@SubQuery)", "", "", 0},
    {"?PARAM", "?PARAM(@Prompt:af=0,@Default:af=0,@Name:af=0,@DataType:af=0)", "", "QueryBuilder Parameter", 0},
    {"GROUP BY", "", "Group By", "", 3},
    {"EXPRESSION", "", "Expression", "", 3},
    {"WHERE", "", "Where", "", 3},
    {"COUNT", "COUNT(@field)", "Count", "", 1},
    {"SUM", "SUM(@field)", "Sum", "", 1},
    {"MIN", "MIN(@field)", "Min", "", 1},
    {"MAX", "MAX(@field)", "Max", "", 1},
    {"AVG", "AVG(@field)", "Average", "", 1},
    {"MIN DISTINCT", "MIN(DISTINCT @field)", "Min Distinct", "", 1},
    {"MAX DISTINCT", "MAX(DISTINCT @field)", "Max Distinct", "", 1},
    {"COUNT DISTINCT", "COUNT(DISTINCT @field)", "Count Distinct", "", 1},
};

}  // namespace

void FillCatalogs(qbDBKeywords& keywords, qbDBOperators& operators, qbDBFunctions& functions,
                  StringCollection& quotedIdentifiers) {
  for (const std::string_view text : kQuotedIdentifiers) quotedIdentifiers.Add(std::string(text));
  for (const std::string_view name : kKeywords) keywords.Add(std::string(name));
  for (const OperatorRow& row : kOperators) {
    operators.Add(std::string(row.name), std::string(row.syntax))->SetFlags(row.flags);
  }
  for (const FunctionRow& row : kFunctions) {
    functions.Add(std::string(row.name), std::string(row.syntax), std::string(row.description),
                  std::string(row.shortDescription), row.flags);
  }
}

}  // namespace zrqrybld
