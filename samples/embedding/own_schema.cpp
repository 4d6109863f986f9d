// A report designer over tables that only this program knows: example_own_schema [--print]. The user designs, the
// button hands the statement to the program; with --print it ends at once and prints the statement.
#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>
#include <vector>

#include <zrqrybld/adapters/qt/query_designer_widget.h>
#include <zrqrybld/platform/schema_fields.h>
#include <zrqrybld/platform/table_row_set.h>
#include <zrqrybld/platform/text_reading.h>

using namespace zrqrybld;

namespace {

// --- The program's own data: what its tables are called and hold ---

struct Field {
  std::string table;
  std::string name;
  DataTypeCode type;
  bool inKey = false;
  std::string refersTo = {};  // the table whose "Id" it holds
};

const std::vector<Field> kFields = {
    {"Room", "Id", DataTypeCode::Integer, true},   {"Room", "Name", DataTypeCode::VarWChar},
    {"Sensor", "Id", DataTypeCode::Integer, true}, {"Sensor", "RoomId", DataTypeCode::Integer, false, "Room"},
    {"Sensor", "Kind", DataTypeCode::VarWChar},    {"Reading", "SensorId", DataTypeCode::Integer, false, "Sensor"},
    {"Reading", "At", DataTypeCode::DbTimeStamp},  {"Reading", "Value", DataTypeCode::Double},
};

// --- The source: rows for the questions that the library asks. It may answer with more rows than were asked for ---

class Building final : public Connection {
 public:
  std::string ConnectionString() const override { return {}; }
  void SetConnectionString(std::string) override {}
  void SetProperty(std::string_view, const Variant&) override {}
  void Open(std::string_view, std::string_view) override { open_ = true; }
  void Close() override { open_ = false; }
  ConnectionStateEnum State() const override { return open_ ? ConnectionOpened : ConnectionClosed; }

  std::unique_ptr<RowSet> OpenSchema(SchemaKind kind, const SchemaRestrictions& wanted) override {
    using Rows = std::vector<std::vector<Variant>>;
    const Variant none = Variant::Null();
    Rows rows;
    switch (kind) {
      case SchemaKind::Tables:
        for (const Field& field : kFields) {
          if (!rows.empty() && rows.back()[2].Text() == field.table) continue;
          if (wanted.table.value_or(field.table) == field.table)
            rows.push_back({none, none, field.table, "TABLE", none});
        }
        return std::make_unique<TableRowSet>(kTableFields, rows);
      case SchemaKind::Columns: {
        std::int32_t position = 0;
        const std::string* table = nullptr;
        for (const Field& field : kFields) {
          position = table && *table == field.table ? position + 1 : 1;
          table = &field.table;
          if (wanted.table.value_or(field.table) != field.table) continue;
          std::vector<Variant> row(std::size(kColumnFields), none);
          row[2] = field.table;
          row[3] = field.name;
          row[4] = position;
          row[9] = static_cast<std::int32_t>(field.type);
          rows.push_back(std::move(row));
        }
        return std::make_unique<TableRowSet>(kColumnFields, rows);
      }
      case SchemaKind::PrimaryKeys:
        for (const Field& field : kFields) {
          if (field.inKey && wanted.table.value_or(field.table) == field.table) {
            rows.push_back({none, none, field.table, field.name, 1, none});
          }
        }
        return std::make_unique<TableRowSet>(kPrimaryKeyFields, rows);
      case SchemaKind::ForeignKeys:
        for (const Field& field : kFields) {
          if (field.refersTo.empty() || wanted.table.value_or(field.table) != field.table) continue;
          rows.push_back({none, none, field.refersTo, "Id", none, none, field.table, field.name, 1, none});
        }
        return std::make_unique<TableRowSet>(kForeignKeyFields, rows);
      case SchemaKind::Literals:  // it says which SQL the program will run
        rows.push_back({std::string(kSourceNameLiteral), "PostgreSQL", none, none});
        return std::make_unique<TableRowSet>(kLiteralFields, rows);
      default:
        return std::make_unique<TableRowSet>(kProviderTypeFields, rows);
    }
  }

 private:
  bool open_ = false;
};

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  QWidget window;
  auto* designer = new QueryDesignerWidget;
  auto* button = new QPushButton("Make the &report");
  auto* told = new QLabel;
  auto* layout = new QVBoxLayout(&window);
  for (QWidget* part : {static_cast<QWidget*>(designer), static_cast<QWidget*>(button), static_cast<QWidget*>(told)}) {
    layout->addWidget(part);
  }
  layout->setStretch(0, 1);

  qbQueryBuilder& hub = designer->QueryBuilder();
  hub.GridPane()->SetShowGroupBy(false);
  hub.SetAutoSyntax(true);
  const auto building = std::make_shared<Building>();
  building->Open({}, {});
  hub.SetConnection(building);
  const Ref<qbEntity> room = hub.AddTable("Room");
  const Ref<qbEntity> sensor = hub.AddTable("Sensor");
  const Ref<qbEntity> reading = hub.AddTable("Reading");
  hub.RefreshAutoJoins();
  room->Items()->Item("Name")->SetChecked(true);
  reading->Items()->Item("Value")->SetChecked(true);
  reading->Items()->Item("At")->SetChecked(true);
  hub.GridPane()->SetValue(3, "criteria", ">= '2024-05-01'");
  hub.GridPane()->FinishEdit();
  hub.ClearHistory();  // the user's own steps begin here

  QObject::connect(button, &QPushButton::clicked, told, [&hub, told] {
    told->setText(QString::fromStdString(hub.SQLPane()->SQLStatement()));  // a program would run it
  });
  if (argc > 1 && std::strcmp(argv[1], "--print") == 0) {
    std::printf("%s\n", hub.SQLPane()->SQLStatement().c_str());
    return 0;
  }
  window.resize(1000, 760);
  window.show();
  return QApplication::exec();
}
