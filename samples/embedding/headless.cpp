// A query designed by a program without any window: example_headless FILE prints a statement over the sample database.
#include <cstdio>
#include <memory>
#include <string>

#include <zrqrybld/adapters/sqlite/sqlite_provider.h>
#include <zrqrybld/hub/query_builder.h>

using namespace zrqrybld;

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: example_headless FILE\n");
    return 2;
  }
  const Ref<qbQueryBuilder> hub = qbQueryBuilder::Create();  // without a toolkit it is headless
  hub->SetDiagramPane(qbDiagramPane::Create());
  hub->SetGridPane(qbGridPane::Create());
  hub->SetSQLPane(qbSQLPane::Create());
  hub->GridPane()->SetShowGroupBy(false);

  hub->GetToolkit().Providers()->Register(std::make_shared<SqliteProvider>());
  hub->Connect("Provider=SQLite;Data Source=" + ConnectionString::QuoteValue(argv[1]));
  if (hub->LastError()) {
    std::fprintf(stderr, "%s\n", hub->LastError()->what());
    return 1;
  }

  const Ref<qbEntity> customers = hub->AddTable("Customers");
  const Ref<qbEntity> orders = hub->AddTable("Order");
  hub->RefreshAutoJoins();
  customers->Items()->Item("CompanyName")->SetChecked(true);
  orders->Items()->Item("OrderDate")->SetChecked(true);
  hub->GridPane()->SetValue(2, "sort_type", "Descending");
  hub->GridPane()->SetValue(2, "sort_order", "1");
  hub->SetSelectTopRecords("10");

  for (const SQLSyntaxEnum syntax : {SQLSyntaxMSSQL, SQLSyntaxOracle}) {
    hub->SQLPane()->SetSQLSyntax(syntax);
    hub->SQLPane()->Refresh();
    std::printf("%s\n\n", hub->SQLPane()->SQLStatement().c_str());
  }
}
