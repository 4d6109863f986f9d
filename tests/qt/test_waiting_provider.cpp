// Asking a slow source: the window lives, and a question can be stopped.
#include "zrqrybld/adapters/qt/waiting_provider.h"

#include <gtest/gtest.h>

#include <QDialog>
#include <QElapsedTimer>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <atomic>
#include <future>

#include "tests/qt/modal.h"
#include "zrqrybld/base/error.h"
#include "zrqrybld/platform/schema_fields.h"
#include "zrqrybld/platform/table_row_set.h"

namespace zrqrybld {
namespace {

// Answers when it is let go.
struct SlowSource {
  std::promise<void> go;
  std::shared_future<void> gone = go.get_future().share();
  std::atomic<int> sessions = 0;
};

class SlowSession final : public Session {
 public:
  explicit SlowSession(std::shared_ptr<SlowSource> source) : source_(std::move(source)) { ++source_->sessions; }
  ~SlowSession() override { --source_->sessions; }
  std::unique_ptr<RowSet> OpenSchema(SchemaKind kind, const SchemaRestrictions&) override {
    if (kind == SchemaKind::PrimaryKeys) throw Error(ErrorSchemaNotSupported, "no keys");
    if (kind == SchemaKind::Columns) source_->gone.wait();
    return std::make_unique<TableRowSet>(kTableFields, std::vector<std::vector<Variant>>{});
  }

 private:
  std::shared_ptr<SlowSource> source_;
};

class SlowProvider final : public Provider {
 public:
  explicit SlowProvider(std::shared_ptr<SlowSource> source) : source_(std::move(source)) {}
  std::string_view Name() const override { return "Slow"; }
  bool Accepts(const ConnectionString&) const override { return true; }
  std::unique_ptr<Session> Open(const ConnectionString&, std::string_view, std::string_view) override {
    return std::make_unique<SlowSession>(source_);
  }

 private:
  std::shared_ptr<SlowSource> source_;
};

std::int32_t NumberOf(Session& session, SchemaKind kind) {
  try {
    session.OpenSchema(kind, {});
  } catch (const Error& error) {
    return error.Number();
  }
  return 0;
}

TEST(WaitingProvider, TheWindowLivesAndTheQuestionCanBeStopped) {
  const auto source = std::make_shared<SlowSource>();
  const auto provider = MakeWaitingProvider(std::make_shared<SlowProvider>(source));
  std::unique_ptr<Session> session = provider->Open(ConnectionString("x"), "", "");
  EXPECT_EQ(NumberOf(*session, SchemaKind::Tables), 0);
  EXPECT_EQ(NumberOf(*session, SchemaKind::PrimaryKeys), ErrorSchemaNotSupported) << "the source's own error";
  EXPECT_TRUE(session->IsOpen());
  int ticks = 0;
  QTimer timer;
  QObject::connect(&timer, &QTimer::timeout, [&] {
    auto* window = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    if (!window || ++ticks < 10) return;
    EXPECT_TRUE(IsWaitingForSource());
    QTest::mouseClick(window->findChild<QPushButton*>(), Qt::LeftButton);
  });
  timer.start(10);
  EXPECT_EQ(NumberOf(*session, SchemaKind::Columns), ErrorConnectionFailed);
  EXPECT_GE(ticks, 10);
  EXPECT_FALSE(IsWaitingForSource());
  EXPECT_FALSE(session->IsOpen());
  EXPECT_EQ(NumberOf(*session, SchemaKind::Tables), ErrorConnectionClosed);
  // The thread that asks keeps the source until it answers.
  session.reset();
  EXPECT_EQ(source->sessions, 1);
  source->go.set_value();
  EXPECT_TRUE(QTest::qWaitFor([&] { return source->sessions == 0; }));
}

}  // namespace
}  // namespace zrqrybld
