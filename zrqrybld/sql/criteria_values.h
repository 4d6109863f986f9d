// The values of a criterion: which are SQL already, and how the others become literals of the column's type.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "zrqrybld/platform/schema_fields.h"
#include "zrqrybld/sql/criteria_context.h"
#include "zrqrybld/sql/criteria_tokens.h"

namespace zrqrybld {

class CriterionValues {
 public:
  /// Both must outlive this. What is written for a statement is in its dialect; for a cell, truth values are the same
  /// in every dialect.
  CriterionValues(const CriterionTokens& tokens, const CriteriaContext& context, bool forStatement);

  /// The format of the dates that may stand between two "#" for this column; nothing where they may not.
  static const std::string* HashDateFormat(const CriteriaContext& context);
  /// The word before the opening quote of the column's literals, as N in N'text'; "" for none.
  static std::string LiteralWord(const CriteriaContext& context);

  /// The value that the tokens write, at least one. Error 40002 when the type has no such value.
  std::string Write(std::size_t from, std::size_t to) const;

  /// The same for a pattern, which is text whatever the column's type.
  std::string WritePattern(std::size_t from, std::size_t to) const;

 private:
  using Kind = ValueKind;

  /// What a run of tokens is made of, when it is read as an expression.
  struct Expression {
    bool valid = true;                             // operands and operators alternate
    bool hasSql = false;                           // something that only SQL has: a literal in quotes, a name, a call
    std::size_t unknown = CriterionTokens::kNone;  // the first plain word, or name that is no column
  };

  static Kind KindOf(const CriteriaContext& context);
  bool IsSql(Kind kind, std::size_t from, std::size_t to) const;
  bool IsLiteralApart(std::size_t from, std::size_t to) const;
  Expression Examine(Kind kind, std::size_t from, std::size_t to) const;
  std::size_t ReadOperand(Kind kind, std::size_t at, std::size_t to, Expression& expression) const;
  std::size_t ReadName(Kind kind, std::size_t at, std::size_t to, Expression& expression) const;
  std::size_t ReadOperator(std::size_t at, std::size_t to) const;
  bool IsPlaceholder(std::size_t at, std::size_t to) const;
  bool IsQuery(std::size_t parenthesis) const;

  std::string WriteText(std::size_t from, std::size_t to, bool pattern) const;
  std::string_view QuotedDate(std::size_t from, std::size_t to) const;
  bool WriteDate(std::size_t from, std::size_t to, std::string& text) const;
  std::string Truth(std::string_view text) const;
  [[noreturn]] void Refuse(std::size_t at, const Phrase& what) const;

  const CriterionTokens& tokens_;
  const CriteriaContext& context_;
  Kind kind_;
  bool forStatement_;
};

}  // namespace zrqrybld
