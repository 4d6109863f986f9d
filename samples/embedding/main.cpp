// A query designer in an application's window: example_window FILE opens a SQLite database.
#include <QApplication>

#include <zrqrybld/adapters/qt/query_designer_widget.h>
#include <zrqrybld/adapters/sqlite/sqlite_provider.h>

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  zrqrybld::QueryDesignerWidget designer;
  zrqrybld::qbQueryBuilder& hub = designer.QueryBuilder();

  hub.GetToolkit().Providers()->Register(std::make_shared<zrqrybld::SqliteProvider>());
  hub.Connect("Provider=SQLite;Data Source=" + zrqrybld::ConnectionString::QuoteValue(argc > 1 ? argv[1] : "store.db"));
  if (hub.LastError()) qFatal("%s", hub.LastError()->what());
  hub.GridPane()->SetShowGroupBy(false);

  hub.AddTable("Customers");
  hub.AddTable("Order");
  hub.RefreshAutoJoins();

  // The statement is the application's to run: it hears of every change.
  const auto link = hub.SQLPane()->SQLChanged.Connect([&hub] { qInfo("%s", hub.SQLPane()->SQLStatement().c_str()); });

  designer.resize(1000, 700);
  designer.show();
  return QApplication::exec();
}
