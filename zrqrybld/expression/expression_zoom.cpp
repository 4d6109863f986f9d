#include "zrqrybld/expression/expression_zoom.h"

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/host/context_link.h"
#include "zrqrybld/host/source_context.h"
#include "zrqrybld/sql/lexer.h"
#include "zrqrybld/sql/statement_parser.h"

namespace zrqrybld {

frmExpressionZoom::frmExpressionZoom(const Ref<QueryContext>& context, EditedText kind)
    : context_(context), kind_(kind), suggestions_(qbIntelliList::Create(context, kind)) {}

Ref<frmExpressionZoom> frmExpressionZoom::Create(const Ref<QueryContext>& context, EditedText kind) {
  return Ref<frmExpressionZoom>(new frmExpressionZoom(context, kind));
}

std::string frmExpressionZoom::Language(std::int32_t id) const {
  const Ref<QueryContext> context = context_.lock();
  return Say(context, TextId{id});
}

std::optional<ExpressionFault> frmExpressionZoom::Check(std::string_view text) const {
  if (TrimWhite(text).empty()) return std::nullopt;
  try {
    if (reader_) {
      reader_(text);
    } else if (kind_ == EditedText::Expression && TrimWhite(text) != "*") {
      SyntaxArena arena(text.size() * 8 + 1024);
      ParseExpressionText(text, arena);
    }
  } catch (const Error& error) {
    return ExpressionFault{Say(context_.lock(), error.What()), error.Offset().value_or(text.size())};
  }
  return std::nullopt;
}

std::string frmExpressionZoom::OnOneLine(std::string_view text) {
  std::string line;
  std::size_t done = 0;
  const auto takeWhite = [&](std::size_t end) {
    bool ends = false;
    for (; done < end; ++done) {
      const bool isEnd = text[done] == '\r' || text[done] == '\n';
      if (!isEnd) line += text[done];
      if (isEnd && !ends) line += ' ';
      ends = isEnd;
    }
  };
  Lexer lexer(text);
  for (Token token; lexer.Next(token);) {
    takeWhite(token.offset);
    const std::string_view written = text.substr(token.offset, token.length);
    const bool toLineEnd = token.kind == TokenKind::Comment && written.starts_with("--");
    line += toLineEnd ? "/*" + std::string(written.substr(2)) + " */" : std::string(written);
    done = token.offset + token.length;
  }
  takeWhite(text.size());
  return std::string(TrimWhite(line));
}

}  // namespace zrqrybld
