#include "zrqrybld/platform/provider.h"

#include <gtest/gtest.h>

#include "tests/fakes/recording_canvas.h"
#include "zrqrybld/base/error.h"
#include "zrqrybld/platform/headless.h"
#include "zrqrybld/platform/mirrored_canvas.h"
#include "zrqrybld/platform/schema_fields.h"
#include "zrqrybld/platform/table_row_set.h"

namespace zrqrybld {
namespace {

class FakeSession final : public Session {
 public:
  std::unique_ptr<RowSet> OpenSchema(SchemaKind, const SchemaRestrictions&) override {
    return std::make_unique<TableRowSet>(
        kLiteralFields, std::vector<std::vector<Variant>>{{"QUOTE_PREFIX", "[", Variant::Null(), 1}, {"B", "", "", 2}});
  }
  std::vector<std::string> Keywords() const override { return {"PRAGMA"}; }
};

class FakeProvider final : public Provider {
 public:
  FakeProvider(std::string name, std::string key) : name_(std::move(name)), key_(std::move(key)) {}
  std::string_view Name() const override { return name_; }
  bool Accepts(const ConnectionString& text) const override { return text.Get(key_).has_value(); }
  std::unique_ptr<Session> Open(const ConnectionString& text, std::string_view, std::string_view) override {
    if (text.Get("Fail")) throw Error(77, "refused");
    return std::make_unique<FakeSession>();
  }
  std::vector<DataSourceName> DataSources() override { return {{"a source", name_}}; }

 private:
  std::string name_;
  std::string key_;
};

std::int32_t NumberOf(const std::function<void()>& action) {
  try {
    action();
  } catch (const Error& error) {
    return error.Number();
  }
  return 0;
}

TEST(Provider, IsChosenByNameElseByWhatItAccepts) {
  ProviderList providers;
  const auto file = std::make_shared<FakeProvider>("File", "Data Source");
  const auto server = std::make_shared<FakeProvider>("Server", "DSN");
  const auto newer = std::make_shared<FakeProvider>("SERVER", "DSN");
  for (const auto& provider : {file, server, newer}) providers.Register(provider);
  const auto choose = [&](const char* text) { return &providers.Choose(ConnectionString(text)); };
  EXPECT_EQ(choose("Data Source=x"), file.get());
  EXPECT_EQ(choose("DSN=x"), newer.get());
  EXPECT_EQ(choose("Provider=file;DSN=x"), file.get());
  EXPECT_EQ(choose("Provider=Server"), newer.get());
  EXPECT_EQ(NumberOf([&] { choose("Provider=None;DSN=x"); }), ErrorConnectionFailed);
  EXPECT_EQ(NumberOf([&] { choose(""); }), ErrorConnectionFailed);
}

TEST(Provider, DataSourcesOfAllAreListedInTheOrderOfRegistration) {
  ProviderList providers;
  for (const char* name : {"File", "Server"}) providers.Register(std::make_shared<FakeProvider>(name, "DSN"));
  std::string drivers;
  for (const DataSourceName& source : providers.DataSources()) drivers += source.driver + " ";
  EXPECT_EQ(drivers, "File Server ");
}

TEST(Provider, ConnectionKeepsItsState) {
  const auto providers = std::make_shared<ProviderList>();
  providers->Register(std::make_shared<FakeProvider>("File", "Data Source"));
  ProviderConnection connection(providers);
  const auto schema = [&] { connection.OpenSchema(SchemaKind::Literals, {}); };
  EXPECT_EQ(NumberOf([&] { connection.Close(); }), ErrorConnectionClosed);
  EXPECT_EQ(NumberOf(schema), ErrorConnectionClosed);
  connection.SetConnectionString("Data Source=x;Fail");
  EXPECT_EQ(NumberOf([&] { connection.Open("", ""); }), 77);
  EXPECT_FALSE(connection.IsOpen());
  connection.SetConnectionString("Data Source=x");
  connection.Open("", "");
  EXPECT_TRUE(connection.IsOpen());
  EXPECT_EQ(NumberOf([&] { connection.Open("", ""); }), ErrorConnectionOpen);
  EXPECT_EQ(NumberOf([&] { connection.SetConnectionString("other"); }), ErrorConnectionOpen);
  EXPECT_EQ(connection.ConnectionString(), "Data Source=x");
  EXPECT_EQ(NumberOf(schema), 0);
  EXPECT_EQ(connection.Keywords(), std::vector<std::string>{"PRAGMA"});
  connection.Close();
  EXPECT_EQ(NumberOf(schema), ErrorConnectionClosed);
  EXPECT_EQ(NumberOf([&] { connection.Keywords(); }), ErrorConnectionClosed);
}

TEST(RowSet, FindsFieldsWithoutCaseAndEnds) {
  const std::unique_ptr<RowSet> rows = FakeSession().OpenSchema(SchemaKind::Literals, {});
  EXPECT_EQ(rows->Text("literalname"), "QUOTE_PREFIX");
  EXPECT_TRUE(rows->Value("InvalidChars").IsNull());
  EXPECT_EQ(rows->Text("InvalidChars"), "");
  EXPECT_EQ(NumberOf([&] { rows->Value("nothing"); }), ErrorNoSuchItem);
  rows->MoveNext();
  EXPECT_EQ(rows->Text("LiteralName"), "B");
  rows->MoveNext();
  rows->MoveNext();
  EXPECT_TRUE(rows->Eof());
  const std::unique_ptr<RowSet> closed = FakeSession().OpenSchema(SchemaKind::Literals, {});
  closed->Close();
  EXPECT_TRUE(closed->Eof());
}

TEST(Headless, StoresOnlyWhatDiffersFromItsDefault) {
  MemoryPropertyStore store;
  store.Write("a", 5, 1);
  EXPECT_EQ(store.Read("a", 1), Variant(5));
  store.Write("a", 1.0, 1);  // the default again, in another kind: the old value must not stay
  EXPECT_TRUE(store.Values().empty());
  EXPECT_EQ(store.Read("a", 9), Variant(9));
}

TEST(Headless, RecordsDrawingInOrderWithItsClips) {
  RecordingCanvas canvas;
  Font bold;
  bold.bold = true;
  const PixelRect rect{1_px, 2_px, 30_px, 4.5_px};
  {
    const ClipScope clip(canvas, rect);
    canvas.FillRect(rect, ColorRole::Identifier);
    canvas.DrawText(rect, "a \"b\"", {.ink = Color::Rgb(1, 0, 0), .font = bold});
  }
  canvas.DrawPart(ThemedPart::FocusRectangle, rect, {.checked = true, .disabled = true});
  EXPECT_EQ(canvas.Text(),
            "clip 1,2 30x4.5\nfill 1,2 30x4.5 Identifier\ntext 1,2 30x4.5 color1 bold \"a \"b\"\"\nunclip\n"
            "part FocusRectangle 1,2 30x4.5 checked disabled\n");
}

// A place and its mirror add up to the width, also inside a view that is moved and enlarged.
TEST(MirroredCanvas, TurnsPlacesRoundAndTextsNot) {
  RecordingCanvas plain;
  MirroredCanvas mirrored(plain, 100_px);
  const PixelPoint line[] = {{0_px, 1_px}, {30_px, 1_px}};
  mirrored.DrawPolyline(line, ColorRole::Join, 1_px);
  {
    const ViewScope view(mirrored, {10_px, 0_px}, 2);  // 5 to 25 is seen from 20 to 60, in the mirror from 40 to 80
    mirrored.DrawText({5_px, 0_px, 20_px, 4_px}, "ab", {});
  }
  mirrored.FillRect({5_px, 0_px, 20_px, 4_px}, ColorRole::Box);
  RecordingCanvas expected;
  const PixelPoint there[] = {{100_px, 1_px}, {70_px, 1_px}};
  expected.DrawPolyline(there, ColorRole::Join, 1_px);
  {
    const ViewScope view(expected, {10_px, 0_px}, 2);
    expected.DrawText({15_px, 0_px, 20_px, 4_px}, "ab", {.alignment = TextAlignment::Right});
  }
  expected.FillRect({75_px, 0_px, 20_px, 4_px}, ColorRole::Box);
  EXPECT_EQ(plain.Text(), expected.Text());
}

}  // namespace
}  // namespace zrqrybld
