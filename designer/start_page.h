// StartPage: what the window shows while there is neither a source nor a query: the ways to begin, and what was used
// last.
#pragma once

#include <QListWidget>
#include <QVBoxLayout>
#include <QWidget>
#include <functional>

#include "designer/command_actions.h"
#include "zrqrybld/base/phrase.h"

class QCommandLinkButton;

namespace zrqrybld {

/// Something that was used before.
struct RecentEntry {
  QString title;
  QString tip;
  std::function<void()> open;
};

class StartPage : public QWidget {
  Q_OBJECT

 public:
  /// Both must outlive the page. The buttons are those of the commands; `recent` is asked whenever the page is shown.
  StartPage(const TextSource& texts, const CommandActions& commands, std::function<QList<RecentEntry>()> recent);

  /// Offers the sample database.
  void OfferSample(std::function<void()> open);

 Q_SIGNALS:
  /// The user wants to begin without a source.
  void EmptyWanted();

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  QCommandLinkButton* AddWay(const QIcon& icon, TextId title, TextId about);

  const TextSource& texts_;
  std::function<QList<RecentEntry>()> recent_;
  QList<RecentEntry> shown_;
  QVBoxLayout* ways_;
  QListWidget* list_;
};

/// The sample database that came with the program; empty when it is not there.
QString SampleDatabase();

}  // namespace zrqrybld
