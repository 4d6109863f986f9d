#include "zrqrybld/sql/join_condition.h"

#include "zrqrybld/base/text.h"
#include "zrqrybld/sql/statement_parser.h"
#include "zrqrybld/sql/statement_printer.h"

namespace zrqrybld {

std::string JoinConditionText(std::string_view typed) {
  if (TrimWhite(typed).empty()) return {};
  SyntaxArena arena(typed.size() * 8 + 1024);
  const Expression* condition = ParseExpressionText(typed, arena);
  std::string text = OnOneLine(condition->text);
  return condition->kind == ExpressionKind::Or ? "(" + text + ")" : text;
}

}  // namespace zrqrybld
