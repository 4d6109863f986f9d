"""A query over data that only this script knows: own_data.py"""

import datetime

import zrqrybld
from zrqrybld import create


class Observatory(zrqrybld.Provider):
    """Tables and columns from wherever the program has them; here they are written down."""

    dialect = "PostgreSQL"

    COLUMNS = {
        "Planet": [{"name": "Name", "type": str, "primary_key": True}, ("Mass", float)],
        "Moon": [{"name": "Name", "type": str, "primary_key": True}, ("Planet", str), ("Found on", datetime.date)],
        "Brightest": [("Name", str), ("Magnitude", "numeric(4,2)")],
    }

    def tables(self):
        return ["Planet", "Moon", {"name": "Brightest", "type": "VIEW"}]

    def columns(self, table):
        return self.COLUMNS[table]

    def foreign_keys(self):
        return [("Moon", "Planet", "Planet", "Name")]


def main():
    qb = create("qbQueryBuilder")
    qb.DiagramPane, qb.GridPane, qb.SQLPane = create("qbDiagramPane"), create("qbGridPane"), create("qbSQLPane")
    qb.GridPane.ShowGroupBy = False
    qb.AutoSyntax = True  # the statement follows the provider's dialect
    qb.Connection = Observatory()

    planet, moon = qb.AddTable("Planet"), qb.AddTable("Moon")
    qb.RefreshAutoJoins()
    planet.Items["Mass"].Checked = True
    moon.Items["Found on"].Checked = True
    qb.GridPane.Value[1, "criteria"] = "> 5"
    print(qb.SQLPane.SQLStatement)


if __name__ == "__main__":
    main()
