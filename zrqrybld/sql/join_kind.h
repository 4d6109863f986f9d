// The kind of a join: of which of its two tables all rows come back.
//
// A join runs from a source to a target; the diagram, files and the interface write its kind as bits. An entry of FROM
// sees the same join from one of its ends.
#pragma once

#include <cstdint>

namespace zrqrybld {

/// Bits of `qbRelationship::ItemData`.
enum JoinKindFlag : std::int32_t {
  JoinAllOfTarget = 1,  ///< all rows of the target's table
  JoinAllOfSource = 2,  ///< all rows of the source's table
};

/// The kind of a join as a table's entry in FROM sees it.
enum JoinTypeEnum : std::uint8_t {
  JoinInner = 0,
  JoinAllOfThis = 1,     ///< all rows of the table that the entry adds
  JoinAllOfEarlier = 2,  ///< all rows of the tables before it
  JoinAllOfBoth = 3,
};

/// The kind as a value; neither is a join of matching rows only.
struct JoinKind {
  bool allOfTarget = false;
  bool allOfSource = false;

  /// The kind that `JoinKindFlag` bits name; others are ignored.
  static constexpr JoinKind FromBits(std::int32_t bits) {
    return {(bits & JoinAllOfTarget) != 0, (bits & JoinAllOfSource) != 0};
  }
  constexpr std::int32_t Bits() const {
    return (allOfTarget ? JoinAllOfTarget : 0) | (allOfSource ? JoinAllOfSource : 0);
  }
  constexpr bool IsFull() const { return allOfTarget && allOfSource; }
  /// The kind of the same join drawn from its target to its source.
  constexpr JoinKind Reversed() const { return {allOfSource, allOfTarget}; }
  /// The kind as the entry of the source in FROM sees it; the target stands before it.
  constexpr JoinTypeEnum SeenFromSource() const {
    return static_cast<JoinTypeEnum>((allOfSource ? JoinAllOfThis : 0) | (allOfTarget ? JoinAllOfEarlier : 0));
  }
  friend constexpr bool operator==(JoinKind, JoinKind) = default;
};

}  // namespace zrqrybld
