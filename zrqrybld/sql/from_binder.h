// FromBinder: the tables and joins of a statement, from FROM and from the conditions in WHERE that are joins.
#pragma once

#include <cstddef>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "zrqrybld/sql/field_terms.h"
#include "zrqrybld/sql/join_form.h"
#include "zrqrybld/sql/join_orders.h"
#include "zrqrybld/sql/name_scope.h"

namespace zrqrybld {

struct Dialect;

/// What FROM says, and what WHERE has left over.
struct BoundFrom {
  /// Without group levels.
  std::vector<SnapshotJoin> joins;
  /// Of each join, in how many parentheses of FROM it stands.
  std::vector<std::int32_t> groupLevels;
  /// What the joins mean, as `JoinForms` tells it.
  std::string meaning;
  /// The first join that keeps rows without a partner; empty when there is none.
  std::string_view firstOuter;
  bool hasFull = false;
  /// Conditions in ON that belong to no join; they are true of every row of the result, as those in WHERE are.
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
  FromBinder(const SelectStatement& statement, NameScope& scope, const FieldTerms& fields, const DrawnDiagram& drawn,
             const Dialect& dialect)
      : statement_(statement), scope_(scope), fields_(fields), drawn_(drawn), dialect_(dialect) {}
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
  // A condition in the ON of an inner join that compares no columns of its sides.
  struct Residual {
    const Expression* condition;
    std::size_t firstOfJoin;  // the first condition of the same ON, by its place among all
    std::size_t join;         // of the same ON, by its place in `bound_.joins`; `kNone` for none
    std::size_t left;         // a table of each side
    std::size_t right;
    bool isAsked = false;  // of the join; otherwise of the whole
  };
  // What an ON says.
  struct Terms {
    std::vector<JoinPair> pairs;
    std::vector<const Expression*> others;
  };
  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

  Side BindItem(const FromItem& item);
  void BindStep(Side& left, const JoinStep& step, std::size_t firstResidual);
  Terms TermsOf(const Side& left, const Side& right, const JoinStep& step);
  void AddTerm(Terms& terms, const Expression& term, const Side& left, const Side& right, bool isInner) const;
  bool AddBetween(std::vector<JoinPair>& pairs, const Expression& term, const Side& left, const Side& right) const;
  bool CanSay(const JoinPair& pair, bool isInner) const;
  std::vector<std::size_t> AddPairs(const std::vector<JoinPair>& pairs, const Side& right, bool allOfLeft,
                                    bool allOfRight);
  std::size_t TableFor(const Side& side, const std::vector<const Expression*>& conditions) const;
  void AskOfJoin(std::size_t join, const std::string& condition);
  std::size_t AddBareJoin(std::size_t left, std::size_t right, JoinKind kind);
  std::string TextOf(const Expression& condition) const;
  std::string TextOf(const std::vector<const Expression*>& conditions) const;
  void KeepFromWhere(std::size_t from, std::size_t to, JoinForms::Form form);
  void BindInner(Terms& terms, const std::vector<std::size_t>& joins, const Side& left, const Side& right);
  void BindOuter(Terms& terms, const std::vector<std::size_t>& joins, const Side& left, const Side& right,
                 JoinKind kind);
  void RequireJoined(const Expression& expression, const Side& left, const Side& right) const;
  bool IsDrawnWith(std::size_t join, const std::string& condition) const;
  void AddSharedColumns(std::vector<JoinPair>& pairs, const Side& left, const Side& right, const JoinStep& step);
  void RequireClearNames(const Expression& expression) const;
  void JoinColumns(Side& left, const Side& right, const std::vector<JoinPair>& shared, const JoinStep& step) const;
  std::optional<BoundColumn> ColumnIn(const Side& side, const std::string& name, std::string_view place);
  std::vector<std::string> SharedColumns(const Side& left, const Side& right, const JoinStep& step);
  std::optional<JoinPair> PairOf(const Expression& condition) const;
  std::size_t AddJoin(const JoinPair& pair, bool allOfLeft, bool allOfRight);

  void BindWhere(bool joinsFromWhere);
  bool IsWhereJoin(const Expression& condition, bool joinsFromWhere, bool anySign) const;
  void AddMarkedJoin(const Expression& condition);
  void FinishMarks();
  void RefuseMarksOutsideWhere() const;
  void RefuseMarks(const Expression& expression) const;

  const SelectStatement& statement_;
  NameScope& scope_;
  const FieldTerms& fields_;
  const DrawnDiagram& drawn_;
  const Dialect& dialect_;
  std::optional<JoinForms> forms_;
  std::size_t nextTable_ = 0;
  std::vector<std::size_t> itemOf_;  // of each table: the item of the list in FROM that it belongs to
  std::vector<Residual> residuals_;
  std::unordered_map<std::size_t, std::string> asked_;  // conditions, by their join's place in `bound_.joins`
  std::int32_t level_ = 0;                              // of the parentheses that are read
  std::vector<std::vector<JoinPair>> bringIn_;          // by table, from the marks in WHERE
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
