// A designer over a source that the tables of suggestions name.
#pragma once

#include <memory>

#include "tests/fakes/fake_connection.h"
#include "zrqrybld/hub/query_builder.h"

namespace zrqrybld::test {

struct KnownSource {
  KnownSource() {
    source->Table("Customers", {"CustomerID", "Company Name", "City"});
    source->Table("Orders", {"OrderID", "CustomerID", "Order", "Total"});
    source->Table("Order Details", {"OrderID", "Line", "Quantity"});
    source->Table("Shipments", {"ShipID", "OrderID", "Line"});
    source->Table("Targets", {"Year", "Goal"}, "sales");
    source->Table("BigOrders", {"OrderID", "Total"}, "", "VIEW");
    source->ForeignKey("Orders", "CustomerID", "Customers", "CustomerID");
    source->ForeignKey("Order Details", "OrderID", "Orders", "OrderID");
    source->ForeignKey("Shipments", "OrderID", "Order Details", "OrderID");
    source->ForeignKey("Shipments", "Line", "Order Details", "Line");
    source->Literal("SCHEMA_SEPARATOR", ".");
    source->Open("", "");
    hub->SetDiagramPane(diagram);
    hub->SetConnection(source);
  }

  Ref<FakeConnection> source = std::make_shared<FakeConnection>();
  Ref<qbQueryBuilder> hub = qbQueryBuilder::Create();
  Ref<qbDiagramPane> diagram = qbDiagramPane::Create();
};

}  // namespace zrqrybld::test
