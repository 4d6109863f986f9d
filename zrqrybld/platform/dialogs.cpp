#include "zrqrybld/platform/dialogs.h"

namespace zrqrybld {

// NOLINTBEGIN(performance-unnecessary-value-param): toolkits whose windows answer later keep them
void Dialogs::AskJoinProperties(JoinDialog dialog, std::function<void(JoinDialog&)> accepted) {
  if (ShowJoinProperties(dialog)) accepted(dialog);
}

void Dialogs::AskExpression(ExpressionDialog dialog, std::function<void(ExpressionDialog&)> accepted) {
  if (ShowExpression(dialog)) accepted(dialog);
}

void Dialogs::AskConnection(ConnectionDialog dialog, std::function<void(const std::string&)> accepted) {
  const std::string connectionString = ShowConnectionPrompt(dialog);
  if (!connectionString.empty()) accepted(connectionString);
}

void Dialogs::AskSaveFile(SaveFileDialog dialog, std::function<void(const std::string& path)> accepted) {
  const std::string path = ShowSaveFile(dialog);
  if (!path.empty()) accepted(path);
}

void Dialogs::AskText(TextDialog dialog, std::function<void(const std::string&)> accepted) {
  if (const std::optional<std::string> text = ShowTextPrompt(dialog)) accepted(*text);
}

void Dialogs::AskParameters(ParametersDialog dialog, std::function<void(ParametersDialog&)> accepted) {
  if (ShowParameters(dialog)) accepted(dialog);
}
// NOLINTEND(performance-unnecessary-value-param)

}  // namespace zrqrybld
