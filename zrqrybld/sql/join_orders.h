// JoinOrders: the ways in which a diagram may hold the tables and joins of a statement, best first.
//
// Pure. FROM is generated from the order of tables and joins in the diagram, so what a statement means may hang on it;
// whoever reads a statement takes the first way whose text means the same.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "zrqrybld/sql/query_snapshot.h"

namespace zrqrybld {

struct Dialect;

/// A join of the diagram; its tables by their places in the statement. Without columns it asks a condition alone.
struct DrawnJoin {
  std::size_t source;
  std::size_t target;
  std::string sourceColumn;
  std::string targetColumn;
  JoinComparisonEnum comparison = JoinEqual;
  std::string condition = {};
};

/// What the diagram holds of a statement's tables and joins already.
struct DrawnDiagram {
  std::vector<std::size_t> order;  ///< the statement's tables as the diagram has them; new ones come last
  std::vector<DrawnJoin> joins;
};

/// One way: `joins` is the query's then.
struct JoinArrangement {
  static constexpr std::size_t kNew = static_cast<std::size_t>(-1);

  std::vector<std::size_t> order;  ///< of the tables in the diagram, by their places in the statement
  std::vector<SnapshotJoin> joins;
  std::vector<std::size_t> drawn;  ///< for each join which of the diagram's it is; `kNew` for one that is to be drawn
};

class JoinOrders {
 public:
  /// The joins of so many tables as the statement has them. Everything must outlive this.
  JoinOrders(std::size_t tables, const std::vector<SnapshotJoin>& joins, const DrawnDiagram& drawn,
             const Dialect& dialect);

  /// The next way; none when there are no more.
  std::optional<JoinArrangement> Next();

 private:
  enum class Order : unsigned char { Written, Drawn };
  struct Candidate {
    Order order = Order::Written;
    bool keepsDrawn = false;
    std::optional<std::size_t> first = {};  // the table that FROM begins with, where it is another
  };

  JoinArrangement Make(const Candidate& candidate) const;
  JoinArrangement Arrange(const std::vector<SnapshotJoin>& joins, std::vector<std::size_t> order, bool keepsDrawn,
                          const std::vector<std::size_t>& places) const;
  QuerySnapshot QueryOf(std::vector<SnapshotJoin> joins) const;
  JoinArrangement BeginWith(std::size_t first) const;
  bool IsGeneratedAsWritten(const JoinArrangement& arrangement) const;

  const std::vector<SnapshotJoin>& joins_;
  const DrawnDiagram& drawn_;
  std::vector<std::size_t> written_;  // 0, 1, ...
  std::vector<Candidate> candidates_;
  std::size_t next_ = 0;
};

}  // namespace zrqrybld
