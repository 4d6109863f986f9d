// QtDialogs: the core's dialogs as Qt windows. Each returns when the user has closed it.
#pragma once

#include <QObject>
#include <QPointer>
#include <QWidget>

#include "zrqrybld/adapters/qt/event_boundary.h"
#include "zrqrybld/adapters/qt/row_counter.h"
#include "zrqrybld/base/export.h"
#include "zrqrybld/platform/toolkit.h"

namespace zrqrybld {

class ZRQRYBLD_API QtDialogs final : public Dialogs {
 public:
  /// `parent` is the window over which dialogs appear; the active window when it is nothing. They speak the toolkit's
  /// language, which must outlive them.
  explicit QtDialogs(const Toolkit& toolkit, QWidget* parent = nullptr) : toolkit_(toolkit), parent_(parent) {}

  /// Failures while tables are added go here instead of into a message.
  void SetErrorHandler(ErrorHandler handler) { errorHandler_ = std::move(handler); }

  /// Who counts the rows that the choices of a join return; without one nothing is said of them.
  void SetRowCounter(RowCounter counter) { rowCounter_ = std::move(counter); }

  void ShowMessage(std::string_view text, MessageIcon icon) override;
  void ShowMessageSoon(std::string_view text, MessageIcon icon) override;
  void ShowTables(const TablesDialog& dialog) override;
  bool ShowJoinProperties(JoinDialog& dialog) override;
  bool ShowExpression(ExpressionDialog& dialog) override;
  std::string ShowConnectionPrompt(const ConnectionDialog& dialog) override;
  std::string ShowSaveFile(const SaveFileDialog& dialog) override;
  bool Confirm(std::string_view question) override;
  std::optional<std::string> ShowTextPrompt(const TextDialog& dialog) override;
  bool ShowParameters(ParametersDialog& dialog) override;

 private:
  QWidget* ParentForDialog() const;

  void ShowWhenReleased(const std::string& text, MessageIcon icon);

  const Toolkit& toolkit_;
  QPointer<QWidget> parent_;
  QObject soon_;  // messages to be shown soon go with this object
  ErrorHandler errorHandler_;
  RowCounter rowCounter_;
};

}  // namespace zrqrybld
