// WebDialogs: windows of a page, which nothing waits for.
//
// A window is its kind and the texts that it shows; while it is open the page asks it by `Ask`, and its answer comes by
// `Answer`. Windows that are open when the designer goes are forgotten.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "zrqrybld/adapters/web/fields.h"
#include "zrqrybld/adapters/web/numbered.h"
#include "zrqrybld/adapters/web/web_text_area.h"
#include "zrqrybld/platform/dialogs.h"

namespace zrqrybld {

class frmExpressionZoom;

class WebDialogs final : public Dialogs {
 public:
  explicit WebDialogs(std::shared_ptr<const WebHome> home) : home_(std::move(home)) {}

  /// What an open window answers to a question of the page; "" for a window that is not open.
  std::string Ask(int window, const std::string& what, const Fields& arguments);
  /// The window is closed: accepted, with what the user has chosen, or cancelled.
  void Answer(int window, bool accepted, const Fields& answer);

  void ShowMessage(std::string_view text, MessageIcon icon) override;
  void ShowMessageSoon(std::string_view text, MessageIcon icon) override { ShowMessage(text, icon); }
  bool Confirm(std::string_view question) override;
  void ShowTables(const TablesDialog& dialog) override;

  // Nobody can wait here: these answer as if cancelled.
  bool ShowJoinProperties(JoinDialog&) override { return false; }
  bool ShowExpression(ExpressionDialog&) override { return false; }
  std::string ShowConnectionPrompt(const ConnectionDialog&) override { return {}; }
  std::string ShowSaveFile(const SaveFileDialog&) override { return {}; }
  std::optional<std::string> ShowTextPrompt(const TextDialog&) override { return std::nullopt; }
  bool ShowParameters(ParametersDialog&) override { return false; }

  void AskJoinProperties(JoinDialog dialog, std::function<void(JoinDialog&)> accepted) override;
  void AskExpression(ExpressionDialog dialog, std::function<void(ExpressionDialog&)> accepted) override;
  void AskConnection(ConnectionDialog dialog, std::function<void(const std::string&)> accepted) override;
  void AskSaveFile(SaveFileDialog dialog, std::function<void(const std::string& path)> accepted) override;
  void AskText(TextDialog dialog, std::function<void(const std::string&)> accepted) override;
  void AskParameters(ParametersDialog dialog, std::function<void(ParametersDialog&)> accepted) override;

 private:
  struct Window {
    std::function<std::string(const std::string& what, const Fields& arguments)> ask = {};
    std::function<void(const Fields& answer)> accepted = {};
    std::shared_ptr<WebTextArea> text = {};
  };
  /// A text of a window: with predictive text, and while it is written the form's fault in it is marked and said.
  std::shared_ptr<WebTextArea> Typed(const std::shared_ptr<frmExpressionZoom>& form) const;
  void Open(const char* kind, const Fields& fields, Window window);

  const std::shared_ptr<const WebHome> home_;
  std::map<int, Window> windows_;
};

}  // namespace zrqrybld
