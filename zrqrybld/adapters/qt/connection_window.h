// ConnectionWindow: the prompt that builds a connection string, in three ways: a SQLite file, a configured
// data source, or the text itself.
//
// It remembers the way last taken and the files last opened in the application's QSettings, under
// "ConnectionPrompt". Passwords and connection strings are kept nowhere.
#pragma once

#include <QDialog>
#include <string>

#include "zrqrybld/adapters/qt/connection_choice.h"
#include "zrqrybld/adapters/qt/mark.h"
#include "zrqrybld/base/phrase.h"
#include "zrqrybld/platform/dialogs.h"

class QLineEdit;
class QListWidget;
class QPlainTextEdit;
class QPushButton;
class QSortFilterProxyModel;
class QTabWidget;

namespace zrqrybld {

class NameList;

class ConnectionWindow : public QDialog {
  Q_OBJECT

 public:
  /// So many files are remembered, the latest first.
  static constexpr int kRecentFiles = 10;

  /// The language must outlive the window.
  explicit ConnectionWindow(const ConnectionDialog& dialog, QWidget* parent = nullptr,
                            const TextSource& texts = EnglishTexts());

  /// The connection string of what is given now; "" while that is too little.
  std::string Text() const { return BuildConnectionString(Choice()); }

  void accept() override;
  void done(int result) override;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void changeEvent(QEvent* event) override;
  void showEvent(QShowEvent* event) override;

 private:
  QWidget* MakeFilePage();
  QWidget* MakeDataSourcePage();
  QWidget* MakeTextPage();
  QWidget* MakeStatus();
  ConnectionChoice Choice() const;
  void Browse();
  void ChooseRecentFile();
  void ForgetRecentFile();
  void GivenChanged();
  /// Tries the connection and shows the outcome; returns whether it works.
  bool Test();
  void ShowStatus(Mark::Kind kind, const QString& text);
  void FocusFirstField();
  void ApplyColors();

  const TextSource& texts_;
  ConnectionDialog dialog_;
  std::string working_;  // the connection string that the last test has opened
  QTabWidget* tabs_ = nullptr;
  QLineEdit* file_ = nullptr;
  QListWidget* recent_ = nullptr;
  QLineEdit* filter_ = nullptr;
  QSortFilterProxyModel* filtered_ = nullptr;
  NameList* sources_ = nullptr;
  QLineEdit* user_ = nullptr;
  QLineEdit* password_ = nullptr;
  QPlainTextEdit* text_ = nullptr;
  Mark* mark_ = nullptr;
  QPlainTextEdit* status_ = nullptr;
  QPushButton* test_ = nullptr;
  QPushButton* connect_ = nullptr;
};

}  // namespace zrqrybld
