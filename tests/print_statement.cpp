#include "tests/print_statement.h"

#include "zrqrybld/sql/statement_printer.h"

namespace zrqrybld::test {
namespace {

class Printer {
 public:
  explicit Printer(std::string& text) : text_(text) {}

  void Print(const SelectStatement& statement) {
    text_ += "SELECT ";
    if (statement.distinct) text_ += "DISTINCT ";
    if (!statement.top.empty()) {
      text_ += "TOP ";
      text_ += statement.top;
      text_ += statement.topPercent ? " PERCENT " : " ";
    }
    for (const SelectItem* item = statement.items; item; item = item->next) {
      if (item != statement.items) text_ += ", ";
      AppendExpression(text_, *item->expression);
      if (item->alias.empty()) continue;
      text_ += " AS ";
      AppendOnOneLine(text_, item->alias);
    }
    if (statement.items) text_ += ' ';
    text_ += "FROM";
    for (const FromItem* item = statement.from; item; item = item->next) {
      text_ += item == statement.from ? " " : ", ";
      Print(*item);
    }
    PrintClause(" WHERE ", statement.where);
    PrintClause(" GROUP BY ", statement.groupBy);
    PrintClause(" HAVING ", statement.having);
    PrintClause(" ORDER BY ", statement.orderBy);
    if (!statement.skip.empty()) text_ += " OFFSET " + std::string(statement.skip);
  }

 private:
  void Print(const FromItem& item) {
    if (!item.query.empty()) text_ += "(" + OnOneLine(item.query) + (item.table.empty() ? ")" : ") AS ");
    AppendOnOneLine(text_, item.table);
    if (!item.alias.empty()) {
      text_ += " AS ";
      text_ += item.alias;
    }
    for (const JoinStep* step = item.joins; step; step = step->next) {
      static constexpr std::string_view kWords[] = {" INNER JOIN ", " RIGHT JOIN ", " LEFT JOIN ", " FULL JOIN ",
                                                    " CROSS JOIN "};
      if (step->natural) text_ += " NATURAL";
      text_ += kWords[static_cast<std::size_t>(step->word)];
      const bool nested = step->right->joins != nullptr;
      if (nested) text_ += '(';
      Print(*step->right);
      if (nested) text_ += ')';
      PrintClause(" ON ", step->on);
      for (const NameItem* column = step->columns; column; column = column->next) {
        text_ += column == step->columns ? " USING (" : ", ";
        AppendOnOneLine(text_, column->name);
      }
      if (step->columns) text_ += ')';
    }
  }

  void PrintClause(std::string_view words, const Expression* expression) {
    if (!expression) return;
    text_ += words;
    AppendExpression(text_, *expression);
  }

  void PrintClause(std::string_view words, const OrderItem* items) {
    for (const OrderItem* item = items; item; item = item->next) {
      text_ += item == items ? words : ", ";
      AppendExpression(text_, *item->expression);
      if (item->descending) text_ += " DESC";
      text_ += WordsOf(item->nulls);
    }
  }

  std::string& text_;
};

}  // namespace

std::string PrintStatement(const SelectStatement& statement) {
  std::string text;
  text.reserve(statement.text.size() + 32);
  Printer(text).Print(statement);
  return text;
}

}  // namespace zrqrybld::test
