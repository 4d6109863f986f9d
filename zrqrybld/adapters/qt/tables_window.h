// TablesWindow: the table picker's window. It lists what the core hands it, filters as the user types
// and hands back the chosen names; it stays open after adding.
#pragma once

#include <QDialog>
#include <QString>
#include <vector>

#include "zrqrybld/adapters/qt/event_boundary.h"
#include "zrqrybld/base/phrase.h"
#include "zrqrybld/platform/dialogs.h"

class QLabel;
class QLineEdit;
class QPushButton;
class QSortFilterProxyModel;
class QTabWidget;

namespace zrqrybld {

class NameList;

class TablesWindow : public QDialog {
  Q_OBJECT

 public:
  /// The language must outlive the window.
  explicit TablesWindow(const TablesDialog& dialog, QWidget* parent = nullptr,
                        const TextSource& texts = EnglishTexts());

  /// Failures of the core while it adds go here instead of into a warning.
  void SetErrorHandler(ErrorHandler handler) { boundary_.SetHandler(std::move(handler)); }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  // One tab: a list of names behind a filter.
  struct Page {
    const std::vector<std::string>* names;
    QSortFilterProxyModel* filtered;
    NameList* list;
    QString caption;
  };

  Page AddPage(const std::string& caption, const std::vector<std::string>& names, const QString& emptyText);
  const Page& CurrentPage() const;
  std::vector<std::string> SelectedNames() const;
  void Filter(const QString& text);
  bool AddSelected();
  void ShowCounts();

  const TextSource& texts_;
  TablesDialog dialog_;
  EventBoundary boundary_;
  QLineEdit* filter_;
  QTabWidget* tabs_;
  std::vector<Page> pages_;
  QLabel* counts_;
  QPushButton* add_;
  QPushButton* addAndClose_;
  QString lastAction_;  // what adding did, shown until the selection changes
};

}  // namespace zrqrybld
