// SelectStatement: a SELECT statement as a plain syntax tree.
//
// The tree's texts are views into the statement that was read, which must outlive it. Its nodes live in one arena, so
// that reading a statement allocates a few blocks of memory, not one for each node, and dropping it runs no
// destructors.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "zrqrybld/sql/nulls_place.h"

namespace zrqrybld {

enum class ExpressionKind : std::uint8_t {
  Column,       ///< a name, qualified or not
  Star,         ///< "*" or "t.*"
  Literal,      ///< a number, a text, a date, NULL, TRUE, a parameter
  Sign,         ///< an operator inside a chain, or a word inside CASE
  Opaque,       ///< text that is passed on as it stands: OVER (...), AS type; the children are expressions in it
  Chain,        ///< operands, signs and opaque texts, as written: precedence among them means nothing to us
  Call,         ///< `name` ( the children )
  Case,         ///< words and expressions in turn, without CASE and END
  Row,          ///< ( a, b, ... )
  Parentheses,  ///< ( the child )
  Subquery,     ///< ( SELECT ... ) as it stands
  Comparison,   ///< two operands; `name` is the operator: a sign, LIKE, IS, ...
  Between,      ///< three operands
  In,           ///< an operand, and a `Row`, `Subquery` or other operand
  IsNull,       ///< one operand
  Exists,       ///< a `Subquery`
  Not,          ///< one operand
  And,          ///< two or more operands
  Or,           ///< two or more operands
};

/// A node of an expression. Siblings are linked by `next`.
struct Expression {
  ExpressionKind kind = ExpressionKind::Column;
  bool negated = false;  ///< NOT stands before BETWEEN, IN, LIKE; IS NOT NULL; in a call: DISTINCT before the arguments
  bool optional = false;  ///< a column with the mark (+): its table's rows may be missing
  std::string_view text;  ///< the whole of it as it was written, without the mark (+)
  std::string_view name;  ///< a column's last part, a call's name, a comparison's operator, as written
  Expression* first = nullptr;
  Expression* next = nullptr;

  /// What stands before the last part of a column or a "t.*", without its dot; "" when it is not qualified.
  std::string_view Qualifier() const {
    return name.data() == text.data() || name.empty()
               ? std::string_view{}
               : text.substr(0, static_cast<std::size_t>(name.data() - text.data()) - 1);
  }
};

/// Without the parentheses around it.
inline const Expression* StripParentheses(const Expression* expression) {
  while (expression->kind == ExpressionKind::Parentheses) expression = expression->first;
  return expression;
}

enum class JoinWord : std::uint8_t {
  Inner,
  Right,  ///< all rows of the table behind the word
  Left,   ///< all rows of the tables before it
  Full,
  Cross,  ///< CROSS JOIN, or a comma inside parentheses
};

/// A name in a list, as written.
struct NameItem {
  std::string_view name;
  NameItem* next = nullptr;
};

struct JoinStep;

/// A table and what is joined to it, in this order; parentheses that change nothing are gone. Siblings are the items of
/// the list in FROM.
struct FromItem {
  std::string_view table;       ///< as written, with its schema; of a query in FROM its name, "" for none
  std::string_view alias;       ///< as written; "" for none
  std::string_view query;       ///< the query in FROM, without the parentheses around it; "" for a table
  NameItem* columns = nullptr;  ///< what its columns are called from outside
  JoinStep* joins = nullptr;
  JoinStep* lastJoin = nullptr;
  FromItem* next = nullptr;
};

/// One JOIN.
struct JoinStep {
  JoinWord word = JoinWord::Inner;
  bool natural = false;
  std::string_view place;       ///< its first word
  FromItem* right = nullptr;    ///< a table, or tables that are joined first
  Expression* on = nullptr;     ///< none for CROSS JOIN, USING and NATURAL
  NameItem* columns = nullptr;  ///< of USING
  JoinStep* next = nullptr;
};

struct SelectItem {
  Expression* expression = nullptr;
  std::string_view alias;  ///< as written, in quotes or not; "" for none
  SelectItem* next = nullptr;
};

/// An item of GROUP BY or ORDER BY.
struct OrderItem {
  Expression* expression = nullptr;
  bool descending = false;
  NullsPlace nulls = NullsPlace::Usual;
  OrderItem* next = nullptr;
};

/// The memory of a tree: nodes are taken one after the other and given back all at once.
class SyntaxArena {
 public:
  /// `size` is how much memory the first block has, in bytes.
  explicit SyntaxArena(std::size_t size) { AddBlock(size); }

  template <class T>
  T* Make() {
    static_assert(std::is_trivially_destructible_v<T> && alignof(T) <= alignof(std::max_align_t));
    constexpr std::size_t kSize = (sizeof(T) + alignof(T) - 1) / alignof(T) * alignof(T);
    static_assert(kSize % alignof(void*) == 0);
    if (left_ < kSize) AddBlock(blockSize_ * 2);
    left_ -= kSize;
    return new (std::exchange(free_, free_ + kSize)) T();
  }

 private:
  void AddBlock(std::size_t size) {
    blocks_.push_back(std::make_unique_for_overwrite<std::byte[]>(size));
    free_ = blocks_.back().get();
    left_ = blockSize_ = size;
  }

  std::vector<std::unique_ptr<std::byte[]>> blocks_;
  std::byte* free_ = nullptr;
  std::size_t left_ = 0;
  std::size_t blockSize_ = 0;
};

struct SelectStatement {
  explicit SelectStatement(std::string_view sql) : text(sql), arena(sql.size() * 8 + 1024) {}

  std::string_view text;
  SyntaxArena arena;
  bool distinct = false;
  std::string_view top;     ///< the row limit's number as written; "" for none
  bool topPercent = false;  ///< it is a percentage
  std::string_view skip;    ///< how many rows are passed over, as written; "" for none
  SelectItem* items = nullptr;
  FromItem* from = nullptr;
  Expression* where = nullptr;
  OrderItem* groupBy = nullptr;
  Expression* having = nullptr;
  OrderItem* orderBy = nullptr;
};

}  // namespace zrqrybld
