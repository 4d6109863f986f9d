"""The command zrqb, and the example that translates a folder, as a shell runs them."""

import json
import os
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent.parent
STORE, ZRQB = os.environ["STORE_DB"], os.environ["ZRQB"]
SELECT = "SELECT TOP 5 o.OrderID, c.City FROM [Order] o LEFT JOIN Customers c ON c.CustomerID = o.CustomerID WHERE o.Freight > 3"


def run(*arguments, given=""):
    done = subprocess.run([ZRQB, *map(str, arguments)], input=given, capture_output=True, text=True, timeout=60)
    return done.returncode, done.stdout, done.stderr


class Command(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        self.good, self.bad = self.folder / "good.sql", self.folder / "bad.sql"
        self.good.write_text(SELECT)
        self.bad.write_text("SELECT City\nFROM Customers\nWHERE City = = 1")

    def test_tables(self):
        status, text, _ = run("tables", "--db", STORE)
        self.assertEqual(status, 0)
        self.assertIn("Customers\tTABLE\n", text)
        names = {table["name"]: table["type"] for table in json.loads(run("tables", "--db", STORE, "--json")[1])}
        self.assertEqual(names["OrderTotals"], "VIEW")

    def test_translate(self):
        status, text, _ = run("translate", "--db", STORE, "--from", "MSSQL", "--to", "Oracle", "-", given=SELECT)
        self.assertEqual(status, 0)
        self.assertIn("ROWNUM <= 5", text)
        self.assertIn("(+)", text)
        target = self.folder / "out"
        status, text, errors = run("translate", "--db", STORE, "--from", "MSSQL", "--to", "Access", "-o", target, self.good,
                                   self.bad)
        self.assertEqual((status, text), (1, ""))
        self.assertIn("LEFT JOIN", (target / "good.sql").read_text())
        self.assertFalse((target / "bad.sql").exists())
        self.assertTrue(errors.startswith(f"{self.bad}:3:14:"), errors)

    def test_check(self):
        self.assertEqual(run("check", self.good), (0, "", ""))
        for source in ((), ("--db", STORE)):
            status, _, errors = run("check", *source, self.good, self.bad)
            self.assertEqual(status, 1)
            self.assertTrue(errors.startswith(f"{self.bad}:3:14:"), errors)
        problem, = json.loads(run("check", "--json", self.bad)[1])
        self.assertEqual((problem["line"], problem["column"]), (3, 14))
        self.assertEqual(run("check", self.folder / "none.sql")[0], 1)
        # A criterion that cannot be read stands in the statement as it was typed.
        query = self.folder / "typed.zrq"
        query.write_bytes((ROOT / "tests/data/first_release.zrq").read_bytes().replace(b"=> 100", b"=1; DROP TABLE x"))
        for verb in ("check", "show"):
            status, _, errors = run(verb, query)
            self.assertEqual(status, 1)
            self.assertIn("cannot be read", errors)

    def test_remarks_are_told_and_have_a_status(self):
        cross = self.folder / "cröss.sql"
        cross.write_text("SELECT Customers.City FROM Customers, Products")
        for verb, source, written in (("translate", ("--db", STORE), True), ("check", ("--db", STORE), False)):
            with self.subTest(verb=verb):
                status, text, errors = run(verb, *source, cross)
                self.assertEqual((status, "FROM" in text), (3, written))
                self.assertTrue(errors.startswith(f"{cross}: remark: "), errors)
                self.assertIn("Products", errors)
                status, text, errors = run(verb, *source, "--json", cross)
                found, = json.loads(text)
                self.assertEqual((status, errors), (3, ""))
                self.assertIn("Products", found["remarks"][0] if written else found["remark"])
                self.assertEqual(run(verb, *source, cross, self.bad)[0], 1)

    def test_show_and_picture(self):
        query = ROOT / "tests/data/first_release.zrq"
        status, text, errors = run("show", "--json", query)
        self.assertEqual((status, errors), (0, ""))
        shown = json.loads(text)
        self.assertTrue(shown["tables"])
        self.assertIn("SELECT", shown["statement"])
        svg = self.folder / "out.svg"
        self.assertEqual(run("picture", query, "-o", svg), (0, "", ""))
        self.assertIn(shown["tables"][0]["caption"], svg.read_text())
        self.assertEqual(run("picture", self.good)[0], 1)

    def test_a_query_file_that_is_read_in_part_is_refused(self):
        query = self.folder / "later.zrq"
        query.write_bytes((ROOT / "tests/data/first_release.zrq").read_bytes() + b"Begin Note\r\nEnd Note\r\n")
        for verb in ("show", "picture", "check"):
            with self.subTest(verb=verb):
                status, text, errors = run(verb, query)
                self.assertEqual((status, text), (1, ""))
                self.assertIn("not read completely: A section is not known: Note (line", errors)

    def test_the_command_line(self):
        self.assertEqual(run("--help")[0], 0)
        for wrong in ((), ("nothing",), ("tables",), ("translate", "--db", STORE), ("check", "--from", "Latin", "x"),
                      ("check", "--wrong", "x"), ("show", "a", "b")):
            with self.subTest(wrong=wrong):
                status, text, errors = run(*wrong)
                self.assertEqual((status, text), (2, ""))
                self.assertTrue(errors.startswith("zrqb: "))

    def test_a_folder_is_translated_by_the_example(self):
        target = self.folder / "translated"
        done = subprocess.run([sys.executable, ROOT / "bindings/python/examples/translate_folder.py", STORE, self.folder,
                               target], capture_output=True, text=True, timeout=60)
        self.assertEqual(done.returncode, 1)
        self.assertIn("bad.sql", done.stderr)
        self.assertIn("ROWNUM <= 5", (target / "good.sql").read_text())


if __name__ == "__main__":
    unittest.main()
