#include "zrqrybld/adapters/qt/qt_dialogs.h"

#include <QApplication>
#include <QFileDialog>
#include <QMessageBox>
#include <QTimer>
#include <map>

#include "zrqrybld/adapters/qt/connection_window.h"
#include "zrqrybld/adapters/qt/expression_window.h"
#include "zrqrybld/adapters/qt/join_window.h"
#include "zrqrybld/adapters/qt/parameters_window.h"
#include "zrqrybld/adapters/qt/qt_text.h"
#include "zrqrybld/adapters/qt/tables_window.h"
#include "zrqrybld/adapters/qt/text_window.h"
#include "zrqrybld/base/error.h"

namespace zrqrybld {
namespace {

QMessageBox::Icon ToQtIcon(MessageIcon icon) {
  switch (icon) {
    case MessageIcon::Exclamation:
      return QMessageBox::Warning;
    case MessageIcon::Critical:
      return QMessageBox::Critical;
    case MessageIcon::Information:
      break;
  }
  return QMessageBox::Information;
}

}  // namespace

// A message that comes while a dialog is open belongs over that dialog.
QWidget* QtDialogs::ParentForDialog() const {
  if (QWidget* modal = QApplication::activeModalWidget()) return modal;
  return parent_ ? parent_.data() : QApplication::activeWindow();
}

void QtDialogs::ShowMessage(std::string_view text, MessageIcon icon) {
  QMessageBox box(ToQtIcon(icon), QGuiApplication::applicationDisplayName(), ToQString(text), QMessageBox::Ok,
                  ParentForDialog());
  box.setTextFormat(Qt::PlainText);  // a name such as "<b>" is a name, not markup
  box.exec();
}

bool QtDialogs::Confirm(std::string_view question) {
  QMessageBox box(QMessageBox::Warning, QGuiApplication::applicationDisplayName(), ToQString(question),
                  QMessageBox::Yes | QMessageBox::No, ParentForDialog());
  box.setTextFormat(Qt::PlainText);
  box.setDefaultButton(QMessageBox::No);
  return box.exec() == QMessageBox::Yes;
}

void QtDialogs::ShowMessageSoon(std::string_view text, MessageIcon icon) {
  QTimer::singleShot(0, &soon_, [this, text = std::string(text), icon] { ShowWhenReleased(text, icon); });
}

// A window that opens while a button is held would keep the release from the widget that was pressed.
void QtDialogs::ShowWhenReleased(const std::string& text, MessageIcon icon) {
  if (QGuiApplication::mouseButtons() == Qt::NoButton) {
    ShowMessage(text, icon);
    return;
  }
  constexpr int kWaitMilliseconds = 15;
  QTimer::singleShot(kWaitMilliseconds, &soon_, [this, text, icon] { ShowWhenReleased(text, icon); });
}

void QtDialogs::ShowTables(const TablesDialog& dialog) {
  TablesWindow window(dialog, ParentForDialog(), toolkit_.Texts());
  window.SetErrorHandler(errorHandler_ ? errorHandler_ : [this](const std::exception& error) {
    ShowMessage(PhraseOf(error).In(toolkit_.Texts()), MessageIcon::Critical);
  });
  window.exec();
}

bool QtDialogs::ShowJoinProperties(JoinDialog& dialog) {
  JoinWindow window(dialog, ParentForDialog(), toolkit_.Texts(), rowCounter_);
  if (window.exec() != QDialog::Accepted) return false;
  dialog.pairs = window.Pairs();
  dialog.condition = window.Condition();
  dialog.table1Checked = window.Table1Checked();
  dialog.table2Checked = window.Table2Checked();
  dialog.question = window.Question();
  dialog.groupChecked = window.GroupChecked();
  return true;
}

bool QtDialogs::ShowExpression(ExpressionDialog& dialog) {
  ExpressionWindow window(dialog, ParentForDialog(), toolkit_.Texts());
  if (window.exec() != QDialog::Accepted) return false;
  dialog.text = window.Text();
  return true;
}

std::string QtDialogs::ShowConnectionPrompt(const ConnectionDialog& dialog) {
  ConnectionWindow window(dialog, ParentForDialog(), toolkit_.Texts());
  return window.exec() == QDialog::Accepted ? window.Text() : std::string();
}

std::string QtDialogs::ShowSaveFile(const SaveFileDialog& dialog) {
  QFileDialog window(ParentForDialog(), ToQString(dialog.caption));
  window.setAcceptMode(QFileDialog::AcceptSave);
  QStringList filters;
  for (const FileKind& kind : dialog.kinds) filters += ToQString(kind.name + " (*." + kind.extension + ")");
  window.setNameFilters(filters);
  // An extension that is typed chooses the kind by itself; this one is for names without.
  const auto useExtension = [&](const QString& filter) {
    const qsizetype at = filters.indexOf(filter);
    if (at >= 0) window.setDefaultSuffix(ToQString(dialog.kinds[static_cast<std::size_t>(at)].extension));
  };
  QObject::connect(&window, &QFileDialog::filterSelected, &window, useExtension);
  static std::map<std::string, QString> chosenKinds;  // by caption; Qt itself remembers the folder
  QString& kind = chosenKinds[dialog.caption];
  if (!filters.contains(kind)) kind = filters.value(0);
  window.selectNameFilter(kind);
  useExtension(kind);
  window.selectFile(ToQString(dialog.fileName));
  if (window.exec() != QDialog::Accepted) return {};
  kind = window.selectedNameFilter();
  return ToUtf8(window.selectedFiles().value(0));
}

std::optional<std::string> QtDialogs::ShowTextPrompt(const TextDialog& dialog) {
  TextWindow window(dialog, ParentForDialog());
  if (window.exec() != QDialog::Accepted) return std::nullopt;
  return window.Text();
}

bool QtDialogs::ShowParameters(ParametersDialog& dialog) {
  ParametersWindow window(dialog, ParentForDialog(), toolkit_.Texts());
  if (window.exec() != QDialog::Accepted) return false;
  const std::vector<std::string> values = window.Values();
  for (std::size_t i = 0; i < values.size(); ++i) dialog.fields[i].value = values[i];
  return true;
}

}  // namespace zrqrybld
