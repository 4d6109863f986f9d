// CriteriaBinder: the conditions of WHERE and HAVING as criteria of the grid's rows.
//
// Alternatives (an OR outside of parentheses) become the grid's criteria columns, the terms of each (joined by AND)
// cells below each other. A term about one field, or about one expression, is a cell of a row of that field or
// expression when the criteria formatter makes the same condition of it again; every other one is an expression row
// with the criterion "= True", so that no condition changes.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "zrqrybld/sql/field_terms.h"

namespace zrqrybld {

/// One alternative: terms joined by AND.
using CriteriaTerms = std::vector<const Expression*>;

class CriteriaBinder {
 public:
  struct Options {
    bool groupByMode = false;
    /// How many alternatives the grid can hold, and how many it has columns for at first.
    std::size_t columns = 4;
    std::size_t usualColumns = 4;
    /// How values are written.
    CriteriaContext context;
  };

  CriteriaBinder(const NameScope& scope, const FieldTerms& fields, QueryRows& rows, Options options)
      : scope_(scope), fields_(fields), rows_(rows), options_(std::move(options)) {}

  /// The alternatives of a condition, and the terms of each. `inParentheses`: the generator has put the whole into a
  /// pair of its own.
  static std::vector<CriteriaTerms> AlternativesOf(const Expression& condition, bool inParentheses = false);

  /// The alternatives as the grid holds them: the whole condition is one where a cell says it, and where there are
  /// more than there are columns at first and one of them does not stand in cells, which no further column makes
  /// clearer.
  std::vector<CriteriaTerms> Fitting(std::vector<CriteriaTerms> alternatives, const Expression& whole,
                                     bool groups) const;

  /// Places conditions that choose rows (WHERE), or groups (HAVING). SyntaxError for a name that cannot be told.
  /// `alias` answers whether a name without a qualifier is an alias of the select list.
  void Place(const std::vector<CriteriaTerms>& alternatives, bool groups);

  /// Whether a name is an alias of the select list; conditions about it are taken as they stand.
  std::function<bool(std::string_view)> isAlias = [](std::string_view) { return false; };

 private:
  void PlaceTerm(const Expression& term, std::size_t column, bool groups);
  bool PlaceCell(const Expression& condition, std::size_t column, bool groups);
  struct Cell {
    RowField field;
    std::string text;
  };
  std::optional<Cell> CellFor(const Expression& condition, bool groups) const;
  bool StandsInCells(const Expression& term, bool groups) const;
  void PlaceExpression(const std::string& text, std::size_t column, bool groups);
  bool StandsRight(const Expression& condition, const std::optional<RowField>& left, bool groups) const;
  std::optional<RowField> FieldOf(const Expression& condition, bool groups) const;
  RowField OperandField(const Expression& operand, bool groups) const;
  std::optional<std::string> CellOf(const Expression& condition, const RowField& field) const;
  struct FieldTexts {
    std::string term;
    std::string normalized;
  };
  FieldTexts TextsOf(const RowField& field) const;
  std::optional<std::string> CellSaying(const std::string& written, const FieldTexts& texts,
                                        const RowField& field) const;
  std::size_t RowFor(const RowField& field, std::size_t column, bool groups);

  const NameScope& scope_;
  const FieldTerms& fields_;
  QueryRows& rows_;
  Options options_;
};

}  // namespace zrqrybld
