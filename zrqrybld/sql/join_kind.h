// The kind of a join: of which of its two tables all rows come back, or whether one of them is only asked about.
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

/// What a join asks of a table that returns no rows itself: whether it has a row that fits.
enum JoinExistenceEnum : std::int32_t {
  JoinReturnsRows = 0,    ///< nothing: both tables return rows
  JoinTargetExists = 1,   ///< rows of the source for which the target has one
  JoinTargetMissing = 2,  ///< rows of the source for which the target has none
  JoinSourceExists = 3,   ///< rows of the target for which the source has one
  JoinSourceMissing = 4,  ///< rows of the target for which the source has none
};

/// What the number says; that both tables return rows for one that says nothing.
constexpr JoinExistenceEnum JoinExistenceAt(std::int32_t number) {
  return number >= JoinReturnsRows && number <= JoinSourceMissing ? static_cast<JoinExistenceEnum>(number)
                                                                  : JoinReturnsRows;
}

/// The kind as a value; what is made by default is a join of matching rows only.
struct JoinKind {
  bool allOfTarget = false;
  bool allOfSource = false;
  JoinExistenceEnum existence = JoinReturnsRows;

  /// The kind that `JoinKindFlag` bits name; others are ignored.
  static constexpr JoinKind FromBits(std::int32_t bits) {
    return {(bits & JoinAllOfTarget) != 0, (bits & JoinAllOfSource) != 0};
  }
  /// A join that only asks; of matching rows for `JoinReturnsRows`.
  static constexpr JoinKind Asking(JoinExistenceEnum existence) { return {false, false, existence}; }
  constexpr std::int32_t Bits() const {
    return (allOfTarget ? JoinAllOfTarget : 0) | (allOfSource ? JoinAllOfSource : 0);
  }
  constexpr bool IsFull() const { return allOfTarget && allOfSource; }
  /// Whether it returns rows without a partner.
  constexpr bool IsOuter() const { return allOfTarget || allOfSource; }
  /// Whether one of the tables is only asked about, which one, and whether it is to have no row.
  constexpr bool Asks() const { return existence != JoinReturnsRows; }
  constexpr bool AsksTarget() const { return existence == JoinTargetExists || existence == JoinTargetMissing; }
  constexpr bool AsksForNone() const { return existence == JoinTargetMissing || existence == JoinSourceMissing; }
  /// The kind of the same join drawn from its target to its source.
  constexpr JoinKind Reversed() const {
    const int turned = !Asks() ? existence : AsksTarget() ? existence + 2 : existence - 2;
    return {allOfSource, allOfTarget, static_cast<JoinExistenceEnum>(turned)};
  }
  /// The kind as the entry of the source in FROM sees it; the target stands before it.
  constexpr JoinTypeEnum SeenFromSource() const {
    return static_cast<JoinTypeEnum>((allOfSource ? JoinAllOfThis : 0) | (allOfTarget ? JoinAllOfEarlier : 0));
  }
  friend constexpr bool operator==(JoinKind, JoinKind) = default;
};

}  // namespace zrqrybld
