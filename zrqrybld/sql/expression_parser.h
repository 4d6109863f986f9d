// The expressions of a SELECT statement, read by recursive descent. Chains of AND, OR and arithmetic are read in loops,
// so that only what is nested in parentheses, calls and CASE costs depth.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "zrqrybld/base/phrase.h"
#include "zrqrybld/sql/select_statement.h"
#include "zrqrybld/sql/token_reader.h"

namespace zrqrybld {

/// Whether the text is one of the operators that only some dialects have.
bool IsRareSign(std::string_view sign);

struct ExpressionRules {
  /// Whether "||" may mean OR: it is refused beside AND and NOT, which would take its operands from it.
  bool pipesMayBeOr = false;
  /// Whether "[...]" close behind a value is a part of it, not a name.
  bool hasSubscripts = false;
  /// Whether what stands in double quotes where a value can stand is a text.
  bool doubleQuotesAreTexts = false;
};

class ExpressionParser {
 public:
  /// How deep expressions may be nested. Parentheses that begin together cost no stack; of everything else so many
  /// levels fit into a thread with 512 kB.
  static constexpr int kDeepest = 1000;
  static constexpr int kDeepestCalls = 250;

  ExpressionParser(TokenReader& reader, SyntaxArena& arena, ExpressionRules rules = {})
      : reader_(reader), arena_(arena), rules_(rules) {}

  /// A whole expression: conditions joined by OR. SyntaxError with the place otherwise; so do the others.
  Expression* ParseExpression();
  /// "*", "t.*" or an expression.
  Expression* ParseSelected();
  /// A name with its dots, and nothing else.
  std::string_view ParseName(TextId what);
  /// Where the queries begin that were met inside of expressions.
  const std::vector<std::size_t>& Queries() const { return queries_; }
  /// A query begins here, of which only the end was looked for.
  void NoteQuery(std::size_t offset) { queries_.push_back(offset); }
  /// Whether the current token can be a name by itself.
  bool IsNamePart() const;

 private:
  class Level;

  // Links nodes in the order they come.
  class List {
   public:
    explicit List(Expression*& first) : end_(&first) {}
    void Append(Expression* expression) {
      *end_ = expression;
      end_ = &expression->next;
    }

   private:
    Expression** end_;
  };

  Expression* Make(ExpressionKind kind, std::size_t start, Expression* first = nullptr);
  void RequireDepth(bool tooDeep, int levels) const;
  // Where the expression begins that is read next.
  std::size_t Start() const { return begun_ ? begunAt_ : reader_.Offset(); }
  Expression* Close(Expression* expression, std::size_t start);
  void RefusePipe() const;

  Expression* ParseAnd();
  Expression* ParseNot();
  Expression* ParsePredicate();
  Expression* ParseComparison(Expression* left, std::size_t start);
  Expression* ParseIs(Expression* left, std::size_t start);
  Expression* ParseWordOperator(Expression* left, std::size_t start, bool negated);
  Expression* ParseLimitNumber();
  Expression* ParseChain();
  Expression* ParsePostfix();
  Expression* ParseRowsOf(std::size_t start);
  void ParseOrder(Expression**& end);
  bool IsSubscript() const;
  Expression* ParseSubscript(std::size_t start);
  Expression* ParseOperand();
  Expression* ParseParentheses();
  Expression* ParseInParentheses(std::size_t start, Expression* begun);
  Expression* ParseNamed();
  Expression* ParseCall(std::size_t start, std::string_view name);
  bool BeginsWithWord(std::string_view function) const;
  Expression* ParseWordArgument();
  bool ClosesBehind(std::string_view function) const;
  Expression* ParseArgument(std::string_view function = {});
  void RequireNameBehindPoint(std::size_t start, TextId what) const;
  Expression* ParseCase();
  Expression* ParseLiteral();
  Expression* ParseInterval();
  Expression* ParseSubquery(std::size_t start);
  static bool TakesNot(const Expression& test);
  bool IsComparisonSign() const;
  bool IsChainSign() const;
  bool IsPoint() const;  // between the parts of a name
  std::string_view FurtherSign() const;
  bool IsWordOperator() const;
  bool IsTypedLiteral() const;

  TokenReader& reader_;
  SyntaxArena& arena_;
  ExpressionRules rules_;
  std::optional<std::size_t> pipe_;  // where "||" stands that may be OR, in what AND or NOT takes for one operand
  int depth_ = 0;
  int calls_ = 0;
  std::vector<std::size_t> queries_;
  std::vector<std::size_t> open_;  // where the parentheses begin that are open in loops
  Expression* begun_ = nullptr;    // the operand that the next expression begins with, read already
  std::size_t begunAt_ = 0;
};

}  // namespace zrqrybld
