// FromBinder: the tables and joins of a statement, from FROM and from the conditions in WHERE that are joins.
#pragma once

#include <cstddef>
#include <string>
#include <unordered_set>
#include <vector>

#include "zrqrybld/sql/join_form.h"
#include "zrqrybld/sql/name_scope.h"

namespace zrqrybld {

struct Dialect;

/// What FROM says, and what WHERE has left over.
struct BoundFrom {
  std::vector<SnapshotJoin> joins;
  /// What the joins mean, as `JoinForms` tells it.
  std::string meaning;
  /// The first join that keeps rows without a partner; empty when there is none.
  std::string_view firstOuter;
  bool hasFull = false;
  /// Conditions in ON that are no joins; they are true of every row of the result, as those in WHERE are.
  std::vector<const Expression*> conditions;
  /// The terms of WHERE, joined by AND, that are no joins.
  std::vector<const Expression*> where;
  /// Whether WHERE had joins among its terms.
  bool whereHadJoins = false;
  /// What "*" stands for where USING or NATURAL makes one column of two.
  std::vector<BoundColumn> columns;
};

/// Without the parentheses around it.
const Expression* StripParentheses(const Expression* expression);

/// The tables of FROM in the order in which they are written.
std::vector<const FromItem*> TablesOf(const SelectStatement& statement);

/// Adds the tables of FROM to the scope, in their order. SyntaxError for one that cannot be.
void AddTables(const SelectStatement& statement, NameScope& scope);

class FromBinder {
 public:
  FromBinder(const SelectStatement& statement, NameScope& scope, const Dialect& dialect)
      : statement_(statement), scope_(scope), dialect_(dialect) {}
  FromBinder(const FromBinder&) = delete;
  FromBinder& operator=(const FromBinder&) = delete;

  /// Reads the joins; to be called once. SyntaxError for a column or a join that cannot be. With `joinsFromWhere`
  /// comparisons of columns in WHERE join tables that FROM only lists; those with the marks of outer joins always do.
  BoundFrom Bind(bool joinsFromWhere);

 private:
  // The tables from `first` to before `end`.
  struct Side {
    JoinForms::Form form;
    std::size_t first;
    std::size_t end;
    std::vector<BoundColumn> columns;  // known only where some are shared
    bool Holds(std::size_t table) const { return table >= first && table < end; }
  };
  // A condition in ON that is no join, and whether rows may come without fulfilling it.
  struct Residual {
    const Expression* condition;
    bool blocked = false;
  };

  Side BindItem(const FromItem& item);
  void BindStep(Side& left, const JoinStep& step, std::size_t firstResidual);
  std::vector<JoinPair> PairsOf(const Side& left, const Side& right, const JoinStep& step);
  void AddSharedColumns(std::vector<JoinPair>& pairs, const Side& left, const Side& right, const JoinStep& step);
  void RequireClearNames(const Expression& expression) const;
  void JoinColumns(Side& left, const Side& right, const std::vector<JoinPair>& shared, const JoinStep& step) const;
  std::optional<BoundColumn> ColumnIn(const Side& side, const std::string& name, std::string_view place);
  std::vector<std::string> SharedColumns(const Side& left, const Side& right, const JoinStep& step);
  std::optional<JoinPair> PairOf(const Expression& condition) const;
  void AddJoin(const JoinPair& pair, bool allOfLeft, bool allOfRight);

  void BindWhere(bool joinsFromWhere);
  bool IsWhereJoin(const Expression& condition, bool joinsFromWhere) const;
  void AddMarkedJoin(const Expression& condition);
  void FinishMarks();
  void RefuseMarksOutsideWhere() const;
  void RefuseMarks(const Expression& expression) const;

  const SelectStatement& statement_;
  NameScope& scope_;
  const Dialect& dialect_;
  std::optional<JoinForms> forms_;
  std::size_t nextTable_ = 0;
  std::vector<std::size_t> itemOf_;  // of each table: the item of the list in FROM that it belongs to
  std::vector<Residual> residuals_;
  std::vector<std::vector<JoinPair>> bringIn_;  // by table, from the marks in WHERE
  std::vector<JoinPair> whereJoins_;
  bool hasMarks_ = false;
  bool sharesColumns_ = false;
  bool hasOuterJoin_ = false;  // otherwise any order of joins means the same, and the forms are left alone
  BoundFrom bound_;
  // By their places in `bound_.joins`.
  struct HashJoin {
    const std::vector<SnapshotJoin>* joins;
    std::size_t operator()(std::size_t place) const;
  };
  struct EqualJoin {
    const std::vector<SnapshotJoin>* joins;
    bool operator()(std::size_t a, std::size_t b) const { return (*joins)[a] == (*joins)[b]; }
  };
  std::unordered_set<std::size_t, HashJoin, EqualJoin> known_{0, HashJoin{&bound_.joins}, EqualJoin{&bound_.joins}};
};

}  // namespace zrqrybld
