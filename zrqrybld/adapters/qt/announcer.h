// Announcer: says sentences to assistive technology about what has happened in a window.
//
// With Qt 6.8 and later it sends announcements. Before, Qt has none: a notification object takes the sentence as its
// name and is shown anew, which screen readers on Linux speak.
#pragma once

#include <QObject>
#include <QString>
#include <QWidget>

namespace zrqrybld {

class Announcer : public QObject {
  Q_OBJECT

 public:
  /// `window` owns this.
  explicit Announcer(QWidget* window);

  /// Says the sentence, when somebody listens. An empty one says nothing.
  void Say(const QString& sentence);
  /// What was said last.
  const QString& Last() const { return last_; }

 private:
  QString last_;
};

}  // namespace zrqrybld
