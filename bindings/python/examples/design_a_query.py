"""Designs a query from nothing and prints it in five dialects: design_a_query.py DATABASE"""

import sys

import zrqrybld
from zrqrybld import create


def main(database):
    qb = create("qbQueryBuilder")
    qb.DiagramPane, qb.GridPane, qb.SQLPane = create("qbDiagramPane"), create("qbGridPane"), create("qbSQLPane")
    qb.GridPane.ShowGroupBy = False
    qb.Connect(f"Provider=SQLite;Data Source={database}")
    if qb.LastErrorText:
        sys.exit(qb.LastErrorText)

    customers, orders = qb.AddTable("Customers"), qb.AddTable("Order")
    qb.RefreshAutoJoins()
    customers.Items["CompanyName"].Checked = True
    orders.Items["OrderDate"].Checked = True
    qb.GridPane.Value[2, "sort_type"] = "Descending"
    qb.GridPane.Value[2, "sort_order"] = "1"
    qb.SelectTopRecords = "10"

    for name, syntax in zrqrybld.constants()["SQLSyntaxEnum"].items():
        qb.SQLPane.SQLSyntax = syntax
        qb.SQLPane.Refresh()
        print(f"-- {name}\n{qb.SQLPane.SQLStatement}\n")


if __name__ == "__main__":
    main(*sys.argv[1:])
