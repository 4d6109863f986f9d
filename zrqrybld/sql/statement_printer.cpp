#include "zrqrybld/sql/statement_printer.h"

#include <algorithm>

#include "zrqrybld/base/text.h"
#include "zrqrybld/sql/keywords.h"
#include "zrqrybld/sql/lexer.h"

namespace zrqrybld {
namespace {

void AppendUpper(std::string& text, std::string_view word) {
  for (const char c : word) text += UpperAscii(c);
}

std::string_view UsualSign(std::string_view sign) {
  if (sign == "!=") return "<>";
  if (sign == "==") return "=";
  return sign;
}

class Printer {
 public:
  explicit Printer(std::string& text, const Substitution* substitution = nullptr)
      : text_(text), substitution_(substitution) {}

  void Print(const Expression& e) {
    if (substitution_ && (*substitution_)(e, text_)) return;
    switch (e.kind) {
      case ExpressionKind::Column:
        AppendOnOneLine(text_, e.text);
        if (e.optional) text_ += " (+)";
        return;
      case ExpressionKind::Star:
      case ExpressionKind::Literal:
      case ExpressionKind::Sign:
      case ExpressionKind::Subquery:
        return AppendOnOneLine(text_, e.text);
      case ExpressionKind::Opaque:
        return PrintOpaque(e);
      case ExpressionKind::Chain:
        return PrintChain(e);
      case ExpressionKind::Call:
        AppendOnOneLine(text_, e.name);
        text_ += e.negated ? "(DISTINCT " : "(";
        PrintList(e.first, ", ");
        text_ += ')';
        return;
      case ExpressionKind::Case:
        text_ += "CASE ";
        PrintWords(e);
        text_ += " END";
        return;
      case ExpressionKind::Row:
      case ExpressionKind::Parentheses:
        text_ += '(';
        PrintList(e.first, ", ");
        text_ += ')';
        return;
      case ExpressionKind::Exists:
        text_ += "EXISTS ";
        return Print(*e.first);
      case ExpressionKind::Not:
        text_ += "NOT ";
        return Print(*e.first);
      case ExpressionKind::And:
        return PrintList(e.first, " AND ");
      case ExpressionKind::Or:
        return PrintList(e.first, " OR ");
      default:
        return PrintPredicate(e);
    }
  }

 private:
  // As it stands, but for the expressions in it. Apart, because what it needs would deepen each call of `Print`.
  [[gnu::noinline]] void PrintOpaque(const Expression& e) {
    if (!substitution_ || !e.first) return AppendOnOneLine(text_, e.text);
    std::string text;
    const char* done = e.text.data();
    for (const Expression* part = e.first; part; part = part->next) {
      text.append(done, part->text.data());
      Printer(text, substitution_).Print(*part);
      done = part->text.data() + part->text.size();
    }
    text.append(done, e.text.data() + e.text.size());
    AppendOnOneLine(text_, text);
  }

  void PrintList(const Expression* first, std::string_view separator) {
    for (const Expression* e = first; e; e = e->next) {
      if (e != first) text_ += separator;
      Print(*e);
    }
  }

  // A sign in front of an operand stands close to it, but two never touch: "--" begins a comment.
  void PrintChain(const Expression& chain) {
    bool operandCame = false;
    bool afterPrefix = false;
    for (const Expression* e = chain.first; e; e = e->next) {
      const bool isSign = e->kind == ExpressionKind::Sign;
      const bool isCast = e->kind == ExpressionKind::Opaque && e->text.starts_with("::");
      if (e != chain.first && !isCast && (!afterPrefix || isSign)) text_ += ' ';
      Print(*e);
      afterPrefix = isSign && !operandCame;
      operandCame = !isSign;
    }
  }

  void PrintWords(const Expression& e) {
    for (const Expression* piece = e.first; piece; piece = piece->next) {
      if (piece != e.first) text_ += ' ';
      if (piece->kind == ExpressionKind::Sign) {
        AppendUpper(text_, piece->text);
      } else {
        Print(*piece);
      }
    }
  }

  void PrintPredicate(const Expression& e) {
    Print(*e.first);
    const Expression* second = e.first->next;
    if (e.kind == ExpressionKind::IsNull) {
      text_ += e.negated ? " IS NOT NULL" : " IS NULL";
      return;
    }
    text_ += e.negated ? " NOT " : " ";
    if (e.kind == ExpressionKind::Between) {
      text_ += "BETWEEN ";
      Print(*second);
      text_ += " AND ";
      Print(*second->next);
      return;
    }
    if (e.kind == ExpressionKind::In) {
      text_ += "IN";
    } else {
      AppendUpper(text_, substitution_ ? UsualSign(e.name) : e.name);
    }
    text_ += ' ';
    Print(*second);
    if (!second->next) return;
    text_ += " ESCAPE ";
    AppendOnOneLine(text_, second->next->text.substr(NameOf(Keyword::Escape).size()));
  }

  std::string& text_;
  const Substitution* substitution_;
};

}  // namespace

void AppendExpression(std::string& text, const Expression& expression) { Printer(text).Print(expression); }

std::string PrintExpression(const Expression& expression, const Substitution& substitution) {
  std::string text;
  Printer(text, &substitution).Print(expression);
  return text;
}

void AppendOnOneLine(std::string& text, std::string_view written) {
  // Most texts are one word.
  const auto isPlain = [](char c) { return IsWordByte(c) || c == '.'; };
  if (std::ranges::all_of(written, isPlain)) {
    text += written;
    return;
  }
  Lexer lexer(written);
  OneLine line(written, text);
  for (Token token; lexer.Next(token);) line.Add(token);
}

std::string OnOneLine(std::string_view text) {
  std::string result;
  AppendOnOneLine(result, text);
  return result;
}

}  // namespace zrqrybld
