"""Writes the statements of a folder in another dialect:

    translate_folder.py DATABASE FOLDER TARGET-FOLDER [FROM [TO]]     dialects as in SQLSyntaxEnum; MSSQL and Oracle

Says for each file that cannot be read why not, and ends with status 1 then.
"""

import sys
from pathlib import Path

import zrqrybld
from zrqrybld import create


def designer(database):
    """A connected designer."""
    qb = create("qbQueryBuilder")
    qb.DiagramPane, qb.GridPane, qb.SQLPane = create("qbDiagramPane"), create("qbGridPane"), create("qbSQLPane")
    qb.Connect(f"Provider=SQLite;Data Source={database}")
    if qb.LastErrorText:
        sys.exit(qb.LastErrorText)
    return qb


def main(database, folder, target, source="MSSQL", wanted="Oracle"):
    read, write = (getattr(zrqrybld, f"SQLSyntax{name}") for name in (source, wanted))
    Path(target).mkdir(parents=True, exist_ok=True)
    failures = 0
    for file in sorted(Path(folder).glob("*.sql")):
        qb = designer(database)  # one for each file: no statement meets what another has left
        sql = qb.SQLPane
        try:
            sql.SQLSyntax = read
            sql.ParseSQLStatement(file.read_text(encoding="utf-8"))
        except zrqrybld.Error as error:
            print(f"{file}: {error.description}", file=sys.stderr)
            failures += 1
            continue
        sql.SQLSyntax = write
        sql.Refresh()
        (Path(target) / file.name).write_text(sql.SQLStatement + "\n", encoding="utf-8", newline="")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
