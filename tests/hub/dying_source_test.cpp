// A source that dies with each of its calls in turn, and in the middle of the rows of an answer: the error is told, the
// design is whole, and it goes on when the source is back.
#include <gtest/gtest.h>

#include "tests/hub_fixture.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/expression/schema_cache.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/platform/table_row_set.h"
#include "zrqrybld/sql/sql_pane.h"

namespace zrqrybld {
namespace {

// How many calls and rows there are before it dies, and how many there were.
struct Life {
  std::size_t left = SIZE_MAX;
  std::size_t used = 0;

  void Use() {
    ++used;
    if (left == 0) throw Error(ErrorConnectionFailed, "The server has gone away.");
    --left;
  }
};

class MortalRows final : public RowSet {
 public:
  MortalRows(std::unique_ptr<RowSet> rows, Life& life) : rows_(std::move(rows)), life_(life) {}
  bool Eof() const override { return rows_->Eof(); }
  void MoveNext() override {
    life_.Use();
    rows_->MoveNext();
  }
  void Close() override { rows_->Close(); }
  std::size_t FieldCount() const override { return rows_->FieldCount(); }
  std::string_view FieldName(std::size_t index) const override { return rows_->FieldName(index); }
  Variant Value(std::size_t index) const override { return rows_->Value(index); }

 private:
  std::unique_ptr<RowSet> rows_;
  Life& life_;
};

class MortalSource final : public Connection {
 public:
  MortalSource(Ref<Connection> source, Life& life) : source_(std::move(source)), life_(life) {}
  std::string ConnectionString() const override { return source_->ConnectionString(); }
  void SetConnectionString(std::string value) override { source_->SetConnectionString(std::move(value)); }
  void SetProperty(std::string_view name, const Variant& value) override { source_->SetProperty(name, value); }
  void Open(std::string_view user, std::string_view password) override { source_->Open(user, password); }
  void Close() override { source_->Close(); }
  ConnectionStateEnum State() const override { return life_.left == 0 ? ConnectionClosed : source_->State(); }
  std::unique_ptr<RowSet> OpenSchema(SchemaKind kind, const SchemaRestrictions& wanted) override {
    life_.Use();
    return std::make_unique<MortalRows>(source_->OpenSchema(kind, wanted), life_);
  }

 private:
  Ref<Connection> source_;
  Life& life_;
};

struct Journey {
  const char* name;
  std::function<void(test::Designer&)> act;
};

constexpr const char* kSaved =
    "Begin Entity\r\nTagVariant=Orders\r\nCaption=o\r\nEnd Entity\r\nBegin GridData\r\ntable,1=o\r\ncolumn,1=Total\r\n"
    "output,1=True\r\nEnd GridData";

const Journey kJourneys[] = {
    {"connect", [](auto& d) { d.hub->SetConnection(d.hub->Connection()); }},
    {"add tables", [](auto& d) { d.hub->AddTable("Staff"), d.hub->RefreshAutoJoins(); }},
    {"read a statement",
     [](auto& d) {
       d.sql->ParseSQLStatement(
           "SELECT s.Name, SUM(o.Total) FROM Staff s, Orders o WHERE s.StaffID = o.OrderID GROUP BY s.Name");
     }},
    {"load", [](auto& d) { d.hub->LoadQuery(kSaved, true); }},
    {"what may be typed",
     [](auto& d) {
       SchemaCache facts(*d.hub);
       facts.Refresh();
       facts.Find({"Staff"});
     }},
};

std::string Saved(const test::Designer& designer) { return designer.hub->SaveQueryToText(); }

void Design(test::Designer& designer) {
  designer.hub->AddTable("Customers");
  designer.hub->AddTable("Orders");
  designer.hub->RefreshAutoJoins();
  designer.Tick("Customers", "Name");
}

struct Mortal : test::Designer {
  explicit Mortal(Life& life) {
    source->Table("Staff", {"StaffID", "Name"});
    hub->SetConnection(std::make_shared<MortalSource>(source, life));
    Design(*this);
    life.used = 0;
  }
};

class DyingSource : public testing::TestWithParam<Journey> {};

TEST_P(DyingSource, CostsNoWork) {
  const Journey& journey = GetParam();
  Life life;
  Mortal whole(life);
  const std::string before = Saved(whole);
  journey.act(whole);
  const std::string after = Saved(whole);
  const std::size_t calls = life.used;
  ASSERT_GT(calls, 0U);
  for (std::size_t at = 0; at < calls; ++at) {
    SCOPED_TRACE("call " + std::to_string(at) + " of " + std::to_string(calls));
    life = {};
    Mortal designer(life);
    life.left = at;
    test::ErrorOf([&] { journey.act(designer); });
    designer.hub->SetState(InfoDone);  // which a statement that cannot be read leaves
    if (Saved(designer) != before && Saved(designer) != after) {
      EXPECT_TRUE(designer.hub->Undo());
      EXPECT_EQ(Saved(designer), before);
    }

    life = {};
    designer.diagram->Clear();
    designer.hub->SetConnection(designer.hub->Connection());
    Design(designer);
    journey.act(designer);
    EXPECT_EQ(Saved(designer), after) << "when the source is back";
    if (testing::Test::HasFailure()) return;
  }
}

INSTANTIATE_TEST_SUITE_P(Each, DyingSource, testing::ValuesIn(kJourneys), [](const auto& test) {
  std::string name = test.param.name;
  std::erase(name, ' ');
  return name;
});

}  // namespace
}  // namespace zrqrybld
