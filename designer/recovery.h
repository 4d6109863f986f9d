// Recovery: unsaved work that survives a crash.
//
// While a query has unsaved changes, a copy of it lies in the application's data folder, one file for each running
// designer, written whole or not at all and without a password. It is removed as soon as nothing is unsaved and at a
// clean end; one that is found at the next start, and whose designer is gone, holds work that was lost.
#pragma once

#include <QDateTime>
#include <QLockFile>
#include <QObject>
#include <QString>
#include <QTimer>
#include <QWidget>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace zrqrybld {

/// Work as it is kept.
struct KeptWork {
  QString file;       ///< the query's own file; "" for one that was never saved
  std::string query;  ///< in the form of query files, with the columns of its tables
  std::string typed;  ///< the statement as it was typed and not applied; "" when there is none
};

class Recovery : public QObject {
  Q_OBJECT

 public:
  /// What there is to keep; nothing when nothing is unsaved.
  using Work = std::function<std::optional<KeptWork>()>;

  /// Keeps nothing until `Start`. The work is done in `place`, which must outlive this: what happens while it is not
  /// seen is no change.
  Recovery(Work work, const QWidget* place, QObject* parent);
  /// Removes what was kept: the designer ends as it should.
  ~Recovery() override;

  /// Begins to keep work: soon after each input of the user and each call of `Changed`.
  void Start();
  /// Something may have changed.
  void Changed();
  /// Brings the kept file up to date at once, or removes it.
  void Keep();

  /// The work of a designer that is gone, the newest first, what cannot be read last; none when there is none. It is
  /// this designer's from then on: give it back by `Discard` or `PutAside`, or keep it for the next start by letting it
  /// go.
  class Lost {
   public:
    Lost(QString path, std::unique_ptr<QLockFile> lock, KeptWork work, QDateTime time)
        : path_(std::move(path)), lock_(std::move(lock)), work_(std::move(work)), time_(std::move(time)) {}
    const KeptWork& Work() const { return work_; }
    QDateTime Time() const { return time_; }
    /// The file that holds it.
    const QString& Path() const { return path_; }
    /// Whether the file could be read; there is no work otherwise.
    bool IsReadable() const { return !work_.query.empty(); }
    /// Removes it for good.
    void Discard();
    /// Keeps the file under another name, where no start asks for it any more. Returns its path; "" when that fails.
    QString PutAside();

   private:
    QString path_;
    std::unique_ptr<QLockFile> lock_;
    KeptWork work_;
    QDateTime time_;
  };
  static std::optional<Lost> FindLost();

  /// The folder of all designers of this user.
  static QString Folder();

 Q_SIGNALS:
  /// Work cannot be kept, and why; told once until it works again.
  void Failed(const QString& reason);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  bool Write(const KeptWork& work);
  void Remove();

  Work work_;
  const QWidget* place_;
  QTimer soon_;
  QString path_;  // "" until `Start`
  std::unique_ptr<QLockFile> lock_;
  QByteArray written_;  // empty while there is no file
  bool failed_ = false;
};

}  // namespace zrqrybld
