// frmExpressionBuilder: puts an expression together from the query's columns and the words of the catalogs.
//
// What its window shows and does, without the window. The chosen piece has parameters, the placeholders of its syntax;
// the values that they are given are inserted with it.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "zrqrybld/base/export.h"
#include "zrqrybld/expression/expression_zoom.h"
#include "zrqrybld/expression/vocabulary.h"
#include "zrqrybld/host/language_ids.h"
#include "zrqrybld/sql/window_call.h"

namespace zrqrybld {

class ZRQRYBLD_API frmExpressionBuilder final : public frmExpressionZoom {
 public:
  /// A piece of an expression.
  struct Part {
    std::string text;    ///< what the tree shows
    std::string insert;  ///< what goes into the expression, with placeholders
    std::string hint;    ///< a column's type, a function's syntax or description; "" for none
  };
  struct Group {
    std::string name;
    std::vector<Part> parts;
  };
  /// A placeholder of the chosen piece, without its "@", and what takes its place; "" leaves it to be filled in later.
  struct Parameter {
    std::string name;
    std::string value;
  };

  static Ref<frmExpressionBuilder> Create(const Ref<QueryContext>& context, EditedText kind);
  std::string_view TypeName() const override { return "frmExpressionBuilder"; }

  std::string Caption() const override { return Language(LanguageExprBuildCaption); }
  std::string AcceptButton() const override { return Language(LanguageExprBuildAcceptButton); }
  std::string CancelButton() const override { return Language(LanguageExprBuildCancelButton); }
  /// Further texts of the window, from the language table.
  std::string ParameterNameHeader() const { return Language(LanguageExprBuildGridParamName); }
  std::string ParameterValueHeader() const { return Language(LanguageExprBuildGridParamValue); }
  std::string ClearToolTip() const { return Language(LanguageExprBuildToolTipClearExpr); }
  std::string InsertToolTip() const { return Language(LanguageExprBuildToolTipInsert); }

  /// The pieces: a group for each table of the diagram, then functions, aggregates, operators, keywords, parameters.
  /// Groups without pieces are left out.
  const std::vector<Group>& Groups() const { return groups_; }

  /// Whether a search for the text finds the piece: its name or its group's holds every word of the text, in any letter
  /// case. An empty text finds all.
  static bool Finds(std::string_view wanted, const Group& group, const Part& part);

  /// Makes a piece the chosen one, by its group and its place there, both from 0; an index that does not exist chooses
  /// none. The values of its parameters are empty.
  void Choose(std::size_t group, std::size_t part);
  bool HasChosen() const { return chosen_ != nullptr; }
  const std::vector<Parameter>& Parameters() const { return parameters_; }
  /// Gives a parameter its value; error 9 when there is none at the index, from 0.
  void SetParameter(std::size_t index, const std::string& value);

  /// The chosen piece in place of a part of the text (in bytes), set apart by blanks where it needs them. Parameters
  /// without a value are its fields. Nothing is replaced while no piece is chosen.
  TextReplacement Insertion(std::string_view text, std::size_t from, std::size_t to) const;

  // Functions over the rows around each row.

  /// Whether such a function may stand in the text that is built: in a column of the query, but not in a condition.
  bool OffersWindows() const { return kind_ == EditedText::Expression; }
  /// The functions: the aggregates, then those that are made for it. None where the dialect's servers have no OVER.
  const std::vector<WindowFunction>& WindowFunctions() const { return windowFunctions_; }
  /// Why there are none, as a sentence; "" when there are some.
  std::string WhyNoWindows() const;
  /// Whether the dialect's servers do not know a word of it, in capital letters: GROUPS, NULLS.
  bool MissesWindowWord(std::string_view word) const;
  /// What keeps servers from taking a call, as a sentence; "" for nothing.
  std::string ProblemOf(const WindowCall& call) const;
  /// A call of one of the functions, by its place there, that is made of a text: its operand, or what its rows are
  /// ordered by; a text that cannot be read is left out.
  WindowCall NewWindowCall(std::size_t function, std::string_view text) const;
  /// The call with another of the functions. Of an index that does not exist, the call as it is.
  WindowCall WithFunction(WindowCall call, std::size_t function) const;
  /// The place of a function's name among them, in any letter case; their number when it is none of them.
  std::size_t WindowFunctionAt(std::string_view name) const;
  /// The columns of the query's tables, as they stand in an expression.
  std::vector<std::string> Columns() const;

 private:
  frmExpressionBuilder(const Ref<QueryContext>& context, EditedText kind);
  void AddTables();
  void AddWords();
  void AddWindowFunctions(const Vocabulary& words);
  void AddGroup(Group group);

  EditedText kind_;
  std::vector<Group> groups_;
  std::size_t tables_ = 0;  // the first so many groups are tables
  std::vector<std::string> aggregates_;
  std::vector<WindowFunction> windowFunctions_;  // their names may stand in `aggregates_`
  const Part* chosen_ = nullptr;
  TextTemplate pattern_;  // the chosen piece as it is inserted
  std::vector<Parameter> parameters_;
};

}  // namespace zrqrybld
