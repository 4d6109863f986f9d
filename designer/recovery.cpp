#include "designer/recovery.h"

#include <QCoreApplication>
#include <QDir>
#include <QEvent>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>
#include <QStandardPaths>
#include <QUuid>
#include <utility>

#include "zrqrybld/adapters/qt/qt_text.h"
#include "zrqrybld/adapters/qt/waiting_provider.h"

namespace zrqrybld {
namespace {

constexpr int kSoonMilliseconds = 1000;
constexpr qint64 kLargest = qint64{256} << 20;  // bytes; more is no file of ours

constexpr auto kSuffix = ".recovery";
constexpr auto kLockSuffix = ".lock";
constexpr auto kAsideSuffix = ".aside";

std::unique_ptr<QLockFile> LockOf(const QString& path) {
  auto lock = std::make_unique<QLockFile>(path + kLockSuffix);
  lock->setStaleLockTime(0);  // its owner may run for days; it is stale when the owner is gone
  return lock;
}

QByteArray ToBytes(const KeptWork& work) {
  QJsonObject object;
  object["file"] = work.file;
  object["query"] = ToQString(work.query);
  object["typed"] = ToQString(work.typed);
  return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

// Without a query when the file cannot be read.
KeptWork FromFile(const QString& path) {
  QFile file(path);
  if (file.size() > kLargest || !file.open(QIODevice::ReadOnly)) return {};
  const QJsonObject object = QJsonDocument::fromJson(file.readAll()).object();
  return {object["file"].toString(), ToUtf8(object["query"].toString()), ToUtf8(object["typed"].toString())};
}

}  // namespace

Recovery::Recovery(Work work, const QWidget* place, QObject* parent)
    : QObject(parent), work_(std::move(work)), place_(place) {
  soon_.setSingleShot(true);
  soon_.setInterval(kSoonMilliseconds);
  connect(&soon_, &QTimer::timeout, this, &Recovery::Keep);
}

Recovery::~Recovery() { Remove(); }

QString Recovery::Folder() {
  return QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) + QStringLiteral("/recovery");
}

// --- Keeping ---

void Recovery::Start() {
  if (!path_.isEmpty()) return;
  QDir().mkpath(Folder());
  QFile::setPermissions(Folder(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
  path_ = QDir(Folder()).filePath(QUuid::createUuid().toString(QUuid::WithoutBraces) + kSuffix);
  lock_ = LockOf(path_);
  QCoreApplication::instance()->installEventFilter(this);
  Changed();
}

// What changes a query and is told by nobody, such as moving a box, comes from the user's hand.
bool Recovery::eventFilter(QObject* watched, QEvent* event) {
  switch (event->type()) {
    case QEvent::MouseButtonRelease:
    case QEvent::KeyPress:
    case QEvent::Drop:
      if (place_->isVisible()) Changed();
      break;
    default:
      break;
  }
  return QObject::eventFilter(watched, event);
}

// Not put off by further changes: somebody may type for minutes without a pause.
void Recovery::Changed() {
  if (!path_.isEmpty() && !soon_.isActive()) soon_.start();
}

void Recovery::Keep() {
  soon_.stop();
  if (path_.isEmpty()) return;
  if (IsWaitingForSource()) {  // half a query is no work to keep
    soon_.start();
    return;
  }
  const std::optional<KeptWork> work = work_();
  if (!work) {
    Remove();
    return;
  }
  const bool kept = Write(*work);
  if (!kept && !failed_) Q_EMIT Failed(QFileInfo(path_).path());
  failed_ = !kept;
}

bool Recovery::Write(const KeptWork& work) {
  QByteArray bytes = ToBytes(work);
  if (bytes == written_) return true;
  // The lock is there before the file, so that nobody takes the file for lost.
  if (!lock_->isLocked() && !lock_->tryLock(0)) return false;
  QSaveFile file(path_);
  if (!file.open(QIODevice::WriteOnly)) return false;
  file.setPermissions(QFile::ReadOwner | QFile::WriteOwner);
  if (file.write(bytes) != bytes.size() || !file.commit()) return false;
  written_ = std::move(bytes);
  return true;
}

void Recovery::Remove() {
  if (!written_.isEmpty()) QFile::remove(path_);
  written_.clear();
  if (lock_) lock_->unlock();
}

// --- Finding ---

std::optional<Recovery::Lost> Recovery::FindLost() {
  const QFileInfoList files =
      QDir(Folder()).entryInfoList({QStringLiteral("*") + kSuffix}, QDir::Files, QDir::Time);  // the newest first
  std::optional<Lost> unreadable;
  for (const QFileInfo& file : files) {
    std::unique_ptr<QLockFile> lock = LockOf(file.filePath());
    if (!lock->tryLock(0)) continue;  // its designer runs
    Lost lost(file.filePath(), std::move(lock), FromFile(file.filePath()), file.lastModified());
    if (lost.IsReadable()) return lost;
    if (!unreadable) unreadable = std::move(lost);
  }
  return unreadable;
}

void Recovery::Lost::Discard() {
  QFile::remove(path_);
  lock_->unlock();
}

QString Recovery::Lost::PutAside() {
  const QString aside = path_ + kAsideSuffix;
  if (!QFile::rename(path_, aside)) return {};
  lock_->unlock();
  return aside;
}

}  // namespace zrqrybld
