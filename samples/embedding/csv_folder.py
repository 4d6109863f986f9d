"""Designs a query over a folder of CSV files: csv_folder.py FOLDER FILE.COLUMN...

Each file is a table, its first line names the columns, and a column "customer_id" refers to "id" of customer.csv. Prints
the SELECT that joins the files whose columns are asked for.
"""

import csv
import sys
from pathlib import Path

import zrqrybld
from zrqrybld import create


class Folder(zrqrybld.Provider):
    """What the library asks of a source, answered from the files."""

    dialect = "DuckDB"

    def __init__(self, folder):
        self.files = {path.stem: next(csv.reader(path.open(encoding="utf-8", newline=""))) for path in Path(folder).glob("*.csv")}

    def tables(self):
        return sorted(self.files)

    def columns(self, table):
        return [{"name": name, "type": int if name.endswith("id") else str, "primary_key": name == "id"} for name in self.files[table]]

    def foreign_keys(self):
        return [(table, name, name[:-3], "id") for table, names in self.files.items() for name in names
                if name.endswith("_id") and name[:-3] in self.files]


def main(folder, *wanted):
    qb = create("qbQueryBuilder")
    qb.DiagramPane, qb.GridPane, qb.SQLPane = create("qbDiagramPane"), create("qbGridPane"), create("qbSQLPane")
    qb.GridPane.ShowGroupBy, qb.AutoSyntax = False, True
    qb.Connection = Folder(folder)
    for table, column in (name.split(".") for name in wanted):
        entity = qb.DiagramPane.Entities.Item(table) or qb.AddTable(table)
        entity.Items[column].Checked = True
    qb.RefreshAutoJoins()
    for remark in qb.SQLPane.Remarks:
        print(remark, file=sys.stderr)
    print(qb.SQLPane.SQLStatement)


if __name__ == "__main__":
    main(*sys.argv[1:])
