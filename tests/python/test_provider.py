"""Data of one's own: what an object may say of its tables, right and wrong, and how long it lives."""

import ctypes
import datetime
import gc
import subprocess
import sys
import threading
import unittest
import weakref

import zrqrybld
from zrqrybld import Error, Provider, create


def designer(provider=None):
    qb = create("qbQueryBuilder")
    qb.DiagramPane, qb.GridPane, qb.SQLPane = create("qbDiagramPane"), create("qbGridPane"), create("qbSQLPane")
    qb.GridPane.ShowGroupBy = False
    qb.AutoSyntax = True
    if provider is not None:
        qb.Connection = provider
    return qb


def rows(connection, kind, *restrictions):
    """The rows of a kind as dicts without what is Null."""
    found, answer = [], connection.OpenSchema(kind, [None, *restrictions])
    while not answer.EOF:
        fields = [answer.Fields(i) for i in range(answer.FieldCount)]
        found.append({field.Name: field.Value for field in fields if field.Value is not zrqrybld.Null})
        answer.MoveNext()
    return found


def columns(qb, table):
    return [item.Text for item in qb.AddTable(table).Items][1:]


class Shop(Provider):
    """Everything that can be said, in all its forms."""
    dialect, version, separator = "SQLServer", 16, "."

    def tables(self):
        return ["Plain", ("Ordér \N{SNOWMAN}", "sales"), {"name": b"V", "schema": "sales", "type": "VIEW"}, ("Plain", "other")]

    def columns(self, table):
        return {("Plain", None): ["a", ("b", "varchar(20)", False), {"name": "c d", "type": "Double Precision", "default": 0}],
                ("Plain", "other"): ["x"],
                ("Ordér \N{SNOWMAN}", "sales"): [{"name": "Ä", "primary_key": True}, ("day", datetime.date), ("blob", bytes)],
                ("V", "sales"): [(b"\xc3\xbc", 131)]}[table, table.schema]

    def primary_key(self, table):
        return ["b", "a"] if table == "Plain" else None

    def foreign_keys(self):
        return [("Plain", ("a", "b"), "Ordér \N{SNOWMAN}", ["Ä", "day"], None, "sales", "fk")]

    def keywords(self):
        return ["zebra"]

    def types(self):
        return [("varchar", 202, 10, "N'", "'", False)]

    def literals(self):
        return {"LIKE_PERCENT": "*"}


class WhatIsSaid(unittest.TestCase):
    def test_rows(self):
        made = zrqrybld.connection(Shop())
        made.Open()
        self.assertEqual([(row.get("TABLE_SCHEMA"), row["TABLE_NAME"], row["TABLE_TYPE"]) for row in rows(made, 20)],
                         [(None, "Plain", "TABLE"), ("sales", "Ordér \N{SNOWMAN}", "TABLE"), ("sales", "V", "VIEW"),
                          ("other", "Plain", "TABLE")])
        plain = [{name: row[name] for name in ("COLUMN_NAME", "ORDINAL_POSITION", "COLUMN_FLAGS", "DATA_TYPE")}
                 for row in rows(made, 4, None, "plain")]
        self.assertEqual([tuple(row.values()) for row in plain], [("a", 1, 0x64, 0), ("b", 2, 4, 202), ("c d", 3, 0x64, 5)])
        self.assertEqual([row["COLUMN_NAME"] for row in rows(made, 4, "other", "Plain")], ["x"])
        self.assertEqual(len(rows(made, 4)), 8)
        self.assertEqual([row["COLUMN_NAME"] for row in rows(made, 28, None, "Plain")], ["b", "a"])
        self.assertEqual([row["COLUMN_NAME"] for row in rows(made, 28, "sales")], ["Ä"])
        self.assertEqual([(row["FK_COLUMN_NAME"], row["PK_COLUMN_NAME"], row["ORDINAL"]) for row in rows(made, 27)],
                         [("a", "Ä", 1), ("b", "day", 2)])
        self.assertEqual(rows(made, 4, None, "none"), [])

    def test_a_statement_over_them(self):
        qb = designer(Shop())
        self.assertEqual(qb.SQLPane.SQLSyntax, zrqrybld.SQLSyntaxSQLServer)
        self.assertEqual(columns(qb, "sales.Ordér \N{SNOWMAN}"), ["Ä", "day", "blob"])
        entities = qb.DiagramPane.Entities
        self.assertEqual([item.Bold for item in entities[1].Items], [False, True, False, False])
        columns(qb, "Plain")
        qb.RefreshAutoJoins()
        entities[2].Items["b"].Checked = True
        qb.GridPane.Value[1, "criteria"] = "=x"
        qb.AddTable("sales.V")
        statement = " ".join(qb.SQLPane.SQLStatement.split())
        for part in ("[Ordér \N{SNOWMAN}]", "INNER JOIN", "= N'x'", "sales.V"):
            self.assertIn(part, statement)
        listed = []
        subscription = zrqrybld.toolkit.on("ShowTables", lambda dialog: listed.extend((dialog.Tables, dialog.Views)))
        qb.ShowTables()
        subscription.off()
        self.assertEqual(listed, [["Plain", "sales.Ordér \N{SNOWMAN}", "other.Plain"], ["sales.V"]])

    def test_any_object_with_tables_will_do(self):
        class Least:
            def tables(self):
                return ("t",)

        class More(Least):
            def columns(self, table):
                return ["zebra", "select"]

            def keywords(self):
                return ["zebra"]
        with self.assertRaisesRegex(Error, "NotImplementedError|no such|3251"):
            designer(Least()).AddTable("t")
        qb = designer(More())
        self.assertEqual(columns(qb, "T"), ["zebra", "select"])
        qb.DiagramPane.Entities["T"].Items["zebra"].Checked = True
        self.assertIn('"zebra"', qb.SQLPane.SQLStatement)
        for no_provider in (More, object(), {"tables": 1}):
            with self.assertRaises(Error) as caught:
                qb.Connection = no_provider
            self.assertEqual(caught.exception.number, 13)


class Failing(unittest.TestCase):
    def test_what_makes_no_sense_is_an_error_with_its_words(self):
        cases = [
            (lambda: 3, "'int' object is not iterable"),
            (lambda: [None], "a name, a tuple or a dict, not None"),
            (lambda: [(None,)], "a name is wanted"),
            (lambda: [""], "a name is wanted"),
            (lambda: [{"nmae": "x"}], "no 'nmae'; there are name, schema"),
            (lambda: [b"\xff"], "UnicodeDecodeError"),
            (lambda: ["\ud800"], "surrogates not allowed"),
            (lambda: ["a\0b"], "a text is wanted"),
            (lambda: [("x",) * 9], "a name, a tuple or a dict"),
            (lambda: [("x", 3)], "schema is a text, not int"),
            (lambda: 1 / 0, "ZeroDivisionError: division by zero"),
            (lambda: sys.exit(3), "SystemExit: 3"),
        ]
        for tables, words in cases:
            provider = Shop()
            provider.tables = tables
            qb = designer(provider)
            with self.subTest(words=words), self.assertRaises(Error) as caught:
                qb.AddTable("x")
            self.assertEqual(caught.exception.number, 40004)
            self.assertIn(words, caught.exception.description)
            self.assertEqual(qb.State, zrqrybld.InfoDone)

    def test_its_own_error_and_its_cause(self):
        raised = KeyError("gone")

        class Locked(Provider):
            def open(self, connection_string, user, password):
                raise Error(1234, "locked by ü")

        class Broken(Provider):
            def tables(self):
                raise raised
        with self.assertRaises(Error) as caught:
            designer(Locked())
        self.assertEqual((caught.exception.number, caught.exception.description), (1234, "locked by ü"))
        with self.assertRaises(Error) as caught:
            designer(Broken()).AddTable("x")
        self.assertIs(caught.exception.__cause__, raised)
        with self.assertRaises(Error) as caught:
            create("qbEntities")
        self.assertIsNone(caught.exception.__cause__)

    def test_it_cannot_use_the_designer_that_asks(self):
        seen = []

        class Curious(Shop):
            def tables(self):
                seen.append([])
                for use in (lambda: qb.State, lambda: qb.AddTable("Plain"), lambda: setattr(qb, "Connection", None)):
                    try:
                        use()
                    except Error as error:
                        seen[-1].append(error.number)
                seen[-1].append(qb.__class__ and self.inner.State)
                return super().tables()
        provider = Curious()
        provider.inner = create("Connection")
        qb = designer()
        qb.Connection = provider
        self.assertEqual(columns(qb, "Plain")[0], "a")
        self.assertEqual(seen[0], [5, 5, 5, 0])


class Lifetime(unittest.TestCase):
    def test_it_lives_as_long_as_its_connection(self):
        for first in ("provider", "designer"):
            provider = Shop()
            alive, qb = weakref.ref(provider), designer(provider)
            if first == "provider":
                del provider
                gc.collect()
                self.assertEqual(columns(qb, "Plain")[0], "a")
                qb.Connection = None
            else:
                del qb
                gc.collect()
                self.assertIsNotNone(provider.tables())
                del provider
            gc.collect()
            self.assertIsNone(alive())

    def test_it_is_closed(self):
        told = []

        class Counted(Shop):
            def open(self, *given):
                told.append(given)

            def close(self):
                told.append("closed")
        qb = designer(Counted())
        self.assertEqual(told, [("Provider=Counted", "", "")])
        qb.Connection.Close()
        self.assertEqual(told[1:], ["closed"])

    def test_what_is_thrown_away_while_it_answers(self):
        class Careless(Shop):
            def tables(self):
                self.hub = None
                gc.collect()
                return super().tables()
        for _ in range(20):
            provider = Careless()
            provider.hub = designer(provider)
            entities = provider.hub.DiagramPane.Entities
            try:
                provider.hub.AddTable("Plain")
            except Error:
                pass
            self.assertIsInstance(entities.Count, int)

    def test_by_name(self):
        class Yearly(Shop):
            name = "Büro"

            def open(self, connection_string, user, password):
                year = Shop()
                year.tables = lambda: [connection_string.rpartition("=")[2]]
                year.columns = lambda table: ["a"]
                return year
        zrqrybld.register(Yearly())
        qb = designer()
        qb.Connect("Provider=BÜRO;Year=2024")
        self.assertEqual(qb.LastErrorText, "")
        self.assertEqual(columns(qb, "2024"), ["a"])

    def test_threads(self):
        """One thread's provider answers slowly, another uses a designer of its own: neither waits for ever."""
        inside, done, found = threading.Event(), [], []

        class Slow(Shop):
            def tables(self):
                inside.set()
                threading.Event().wait(0.05)
                return super().tables()

        def other():
            inside.wait(10)
            for _ in range(20):
                found.append(columns(designer(Shop()), "Plain"))
            done.append(True)
        thread = threading.Thread(target=other, daemon=True)
        thread.start()
        qb = designer(Slow())
        for _ in range(10):
            self.assertEqual(columns(qb, "Plain")[0], "a")
        thread.join(60)
        self.assertEqual(done, [True])

    def test_the_script_ends_while_all_is_open(self):
        script = ("import zrqrybld\nfrom test_provider import Shop, designer\n"
                  "zrqrybld.register(Shop())\nkept = designer(Shop())\nkept.AddTable('Plain')\nprint('end')")
        done = subprocess.run([sys.executable, "-c", script], capture_output=True, text=True, timeout=60,
                              cwd=__file__.rpartition("/")[0] or ".")
        self.assertEqual((done.returncode, done.stdout, done.stderr), (0, "end\n", ""))


if __name__ == "__main__":
    unittest.main()
