#include "zrqrybld/adapters/qt/waiting_provider.h"

#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QThread>
#include <QTimer>
#include <QVBoxLayout>
#include <chrono>
#include <exception>
#include <functional>
#include <string>
#include <system_error>
#include <type_traits>
#include <utility>

#include "zrqrybld/adapters/qt/say.h"
#include "zrqrybld/base/detached_call.h"
#include "zrqrybld/base/error.h"
#include "zrqrybld/base/texts_platform.h"
#include "zrqrybld/base/texts_qt.h"

namespace zrqrybld {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds kQuiet{1000};  // so long nothing is shown
constexpr milliseconds kLook{20};
constexpr int kWidth = 320;

int g_waiting = 0;  // the window's thread only

// Waits up to the time; true when there is an answer.
using Answered = std::function<bool(milliseconds)>;

using Language = std::shared_ptr<const TextSource>;  // nothing for the built-in texts

class WaitWindow final : public QDialog {
 public:
  WaitWindow(const Answered& answered, const TextSource& texts) : QDialog(QApplication::activeWindow()) {
    setWindowTitle(QApplication::applicationDisplayName());
    auto* label = new QLabel(Say(texts, text::AskingSource));
    auto* bar = new QProgressBar;
    bar->setRange(0, 0);
    bar->setTextVisible(false);
    bar->setAccessibleName(label->text());
    auto* stop = new QPushButton(Say(texts, text::StopButton));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(label);
    layout->addWidget(bar);
    layout->addWidget(stop, 0, Qt::AlignTrailing);
    setMinimumWidth(kWidth);
    connect(stop, &QPushButton::clicked, this, &QDialog::reject);
    auto* timer = new QTimer(this);
    connect(timer, &QTimer::timeout, this, [this, answered] {
      if (answered(milliseconds(0))) accept();
    });
    timer->start(kLook);
  }
};

// False when the user has stopped it.
bool WaitFor(const Answered& answered, const TextSource& texts) {
  if (answered(kQuiet)) return true;
  const bool hasWindow = qobject_cast<QApplication*>(QCoreApplication::instance()) != nullptr &&
                         QThread::currentThread() == QCoreApplication::instance()->thread();
  if (!hasWindow) {
    while (!answered(kQuiet)) {
    }
    return true;
  }
  ++g_waiting;
  WaitWindow window(answered, texts);
  window.exec();
  --g_waiting;
  return answered(milliseconds(0));
}

// What the question answers. `question` owns all that it uses.
template <class Question>
auto AskAside(const Language& texts, Question question) {
  auto result = CallDetached(std::move(question));
  const bool answered =
      WaitFor([&result](milliseconds time) { return result.wait_for(time) == std::future_status::ready; },
              texts ? *texts : EnglishTexts());
  if (!answered) throw Error(ErrorConnectionFailed, text::QuestionStopped);
  return result.get();
}

class WaitingSession final : public Session {
 public:
  WaitingSession(std::shared_ptr<Session> session, Language texts)
      : session_(std::move(session)), texts_(std::move(texts)) {}

  std::unique_ptr<RowSet> OpenSchema(SchemaKind kind, const SchemaRestrictions& restrictions) override {
    return Ask([kind, restrictions](Session& session) { return session.OpenSchema(kind, restrictions); });
  }
  std::vector<std::string> Keywords() const override {
    return Ask([](const Session& session) { return session.Keywords(); });
  }
  bool KnowsWholeSource(SchemaKind kind) const override { return IsOpen() && session_->KnowsWholeSource(kind); }
  bool IsOpen() const override { return session_ && session_->IsOpen(); }

 private:
  template <class Value>
  struct Answer {
    Value value;
    std::exception_ptr failure;
  };
  // A failure of the source comes back as an answer, which tells it from a stop.
  template <class Question>
  static Answer<std::invoke_result_t<Question, Session&>> Tried(const Question& question, Session& session) {
    try {
      return {question(session), nullptr};
    } catch (...) {
      return {{}, std::current_exception()};
    }
  }

  // Taken out while it is asked: nobody else may ask it meanwhile, and one that is stopped is not given back.
  template <class Question>
  auto Ask(Question question) const -> std::invoke_result_t<Question, Session&> {
    if (!session_) throw Error(ErrorConnectionClosed, text::ConnectionIsClosed);
    const std::shared_ptr<Session> session = session_;
    session_.reset();
    const auto returns = [&] { session_ = session; };
    try {
      auto answer = AskAside(texts_, [session, question] { return Tried(question, *session); });
      returns();
      if (answer.failure) std::rethrow_exception(answer.failure);
      return std::move(answer.value);
    } catch (const std::system_error& error) {
      returns();
      throw Error(ErrorConnectionFailed, PhraseOf(error));
    }
  }

  mutable std::shared_ptr<Session> session_;  // none while it is asked, and when it was stopped
  Language texts_;
};

class WaitingProvider final : public Provider {
 public:
  WaitingProvider(std::shared_ptr<Provider> provider, Language texts)
      : provider_(std::move(provider)), texts_(std::move(texts)) {}

  std::string_view Name() const override { return provider_->Name(); }
  bool Accepts(const ConnectionString& connectionString) const override { return provider_->Accepts(connectionString); }
  std::unique_ptr<Session> Open(const ConnectionString& connectionString, std::string_view user,
                                std::string_view password) override {
    return std::make_unique<WaitingSession>(
        AskAside(texts_,
                 [provider = provider_, connectionString, user = std::string(user), password = std::string(password)] {
                   return std::shared_ptr<Session>(provider->Open(connectionString, user, password));
                 }),
        texts_);
  }
  std::vector<DataSourceName> DataSources() override { return provider_->DataSources(); }
  std::vector<std::string> Drivers() override { return provider_->Drivers(); }

 private:
  std::shared_ptr<Provider> provider_;
  Language texts_;
};

}  // namespace

std::shared_ptr<Provider> MakeWaitingProvider(std::shared_ptr<Provider> provider,
                                              std::shared_ptr<const TextSource> texts) {
  return std::make_shared<WaitingProvider>(std::move(provider), std::move(texts));
}

bool IsWaitingForSource() { return g_waiting > 0; }

}  // namespace zrqrybld
