#include "zrqrybld/adapters/qt/announcer.h"

#include <QAccessible>
#include <QAccessibleObject>

#include "zrqrybld/adapters/qt/access_events.h"

namespace zrqrybld {
namespace {

// What was said last, as an object without a place.
class Notification final : public QAccessibleObject {
 public:
  explicit Notification(Announcer& announcer) : QAccessibleObject(&announcer), announcer_(announcer) {}

  QAccessibleInterface* parent() const override {
    return QAccessible::queryAccessibleInterface(announcer_.QObject::parent());
  }
  QAccessibleInterface* child(int) const override { return nullptr; }
  int childCount() const override { return 0; }
  int indexOfChild(const QAccessibleInterface*) const override { return -1; }
  QString text(QAccessible::Text kind) const override {
    return kind == QAccessible::Name ? announcer_.Last() : QString();
  }
  QAccessible::Role role() const override { return QAccessible::Notification; }
  QAccessible::State state() const override { return {}; }

 private:
  const Announcer& announcer_;
};

}  // namespace

Announcer::Announcer(QWidget* window) : QObject(window) {
  QAccessible::installFactory([](const QString&, QObject* object) -> QAccessibleInterface* {
    auto* announcer = qobject_cast<Announcer*>(object);
    return announcer ? new Notification(*announcer) : nullptr;
  });
}

void Announcer::Say(const QString& sentence) {
  if (sentence.isEmpty() || !AccessIsHeard()) return;
  last_ = sentence;
#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
  QAccessibleAnnouncementEvent event(parent(), sentence);
  TellAccess(event);
#else
  for (const QAccessible::Event kind : {QAccessible::NameChanged, QAccessible::ObjectShow}) {
    QAccessibleEvent event(this, kind);
    TellAccess(event);
  }
#endif
}

}  // namespace zrqrybld
