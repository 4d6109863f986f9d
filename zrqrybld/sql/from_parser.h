// The tables of a SELECT statement and how they are joined, read by recursive descent.
#pragma once

#include <cstddef>
#include <string_view>

#include "zrqrybld/sql/keywords.h"
#include "zrqrybld/sql/select_statement.h"

namespace zrqrybld {

class ExpressionParser;
class TokenReader;

/// Whether the word begins what no designer of one SELECT can show.
bool IsBeyondDesigner(Keyword keyword);
/// SyntaxError where such a word stands.
void RefuseBeyondDesigner(const TokenReader& reader);

struct FromRules {
  /// Whether parentheses that are opened in FROM may stay open up to its end.
  bool openParentheses = false;
  /// Whether every statement has FROM; otherwise one that names no column may lack it, or have this table there.
  bool needsTables = true;
  std::string_view emptyTable = {};
  /// Whether nothing need stand behind FROM where no item of the select list is a column.
  bool mayEndAtFrom = true;
  /// Whether the columns of a query in FROM can be named behind its name.
  bool namesColumns = false;
};

class FromParser {
 public:
  FromParser(SelectStatement& statement, TokenReader& reader, ExpressionParser& expressions, FromRules rules)
      : statement_(statement), reader_(reader), expressions_(expressions), rules_(rules) {}

  /// Whether the whole statement stands in parentheses, so that ")" ends a clause.
  void SetInParentheses(bool inParentheses) { inParentheses_ = inParentheses; }

  /// FROM with all that stands in it. SyntaxError with the place otherwise.
  void ParseFrom();
  /// An alias with or without AS; "" where none stands. A text in quotes names a column, never a table.
  std::string_view ParseAlias(bool textAllowed);
  /// Whether the statement may be one without tables; one that names a column is found out when names are resolved.
  bool MayLackTables() const { return !rules_.needsTables && statement_.items && !HasStar(); }
  /// Whether what stands here ends a clause.
  bool AtClauseEnd() const { return AtClauseEnd(reader_); }

 private:
  bool AtClauseEnd(const TokenReader& reader) const;
  bool IsEmptyTable() const;
  bool IsTableCalledAsLimit() const;
  bool NamesColumn() const;
  bool HasStar() const;
  FromItem* ParseTables();
  void RefuseTableClause();
  FromItem* ParseJoined();
  FromItem* ParseTable();
  bool BeginsQuery();
  FromItem* ParseQueryInFrom();
  void SkipOne();
  void RequireDepth(int depth, int deepest) const;
  FromItem* ParseTablesInParentheses();
  void ParseRestInParentheses(FromItem* item);
  FromItem* ParseJoinEscape();
  JoinStep* AddStep(FromItem* item, std::string_view place);
  void ParseJoins(FromItem* item);
  void ParseJoinWords(JoinStep& step);
  void ParseJoinCondition(JoinStep& step);
  NameItem* ParseNames();

  SelectStatement& statement_;
  TokenReader& reader_;
  ExpressionParser& expressions_;
  const FromRules rules_;
  bool inParentheses_ = false;
  int calls_ = 0;
  std::size_t tablesUntil_ = 0;  // parentheses in front of this hold tables
};

}  // namespace zrqrybld
