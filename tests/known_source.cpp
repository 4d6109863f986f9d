#include "tests/known_source.h"

#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/hub/hub.h"

namespace zrqrybld::test {

KnownSource::KnownSource() : hub(qbQueryBuilder::Create()), diagram(qbDiagramPane::Create()) {
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

}  // namespace zrqrybld::test
