"""The designer in a Python program's window: what is painted, what its events reach, and who outlives whom."""

import gc
import os
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

from PyQt6 import sip
from PyQt6.QtCore import Qt, QTimer
from PyQt6.QtGui import QColor, QImage
from PyQt6.QtTest import QTest
from PyQt6.QtWidgets import QApplication, QSplitter, QWidget

EXAMPLES = Path(__file__).resolve().parents[2] / "bindings/python/examples"
sys.path.insert(0, str(EXAMPLES))

import zrqrybld  # noqa: E402
from own_data import Observatory  # noqa: E402
from zrqrybld import Error  # noqa: E402

application = QApplication.instance() or QApplication(sys.argv[:1])


def shown():
    made = zrqrybld.widget()
    made.resize(800, 600)
    qb = made.QueryBuilder
    qb.GridPane.ShowGroupBy = False
    qb.Connection = Observatory()
    made.show()
    application.processEvents()
    return made, qb


def colours(image):
    """How many colours a picture has."""
    return len({image.pixel(x, y) for x in range(0, image.width(), 3) for y in range(0, image.height(), 3)})


class Window(unittest.TestCase):
    def test_the_example_shows_the_designer_and_hears_of_the_statement(self):
        with tempfile.TemporaryDirectory() as folder:
            picture = os.path.join(folder, "window.png")
            done = subprocess.run([sys.executable, EXAMPLES / "window.py", picture], capture_output=True, text=True,
                                  timeout=60)
            self.assertEqual((done.returncode, done.stdout), (0, ""), done.stderr)
            self.assertNotIn("Traceback", done.stderr)
            image = QImage(picture)
        self.assertEqual((image.width(), image.height()), (900, 640))
        bar = QColor(image.pixel(10, image.height() - 20))
        self.assertEqual(bar.name(), "#204060")  # the program's own line
        # The upper half, where the tables stand, is not empty.
        self.assertGreater(colours(image.copy(0, 0, 900, 250)), 20)

    def test_a_table_is_painted_and_a_key_removes_it_unless_the_program_says_no(self):
        designer, qb = shown()
        empty = designer.grab().toImage()
        planet = qb.AddTable("Planet")
        application.processEvents()
        self.assertNotEqual(designer.grab().toImage(), empty)

        asked, answers = [], [True, False]

        def keep(key, cancel):
            asked.append(key)
            cancel.value = answers.pop(0)
        qb.DiagramPane.Entities.on("BeforeRemove", keep)
        diagram = designer.widget(0)
        for left in (1, 0):
            qb.DiagramPane.SelectObject(planet)
            QTest.keyClick(diagram, Qt.Key.Key_Delete)
            self.assertEqual(qb.DiagramPane.Entities.Count, left)
        self.assertEqual(asked, ["Planet", "Planet"])
        self.assertEqual(designer.grab().toImage(), empty)

    def test_a_menu_that_the_program_has_added_to(self):
        designer, qb = shown()
        qb.AddTable("Moon")
        clicked, seen = [], []

        def more(what, menu):
            seen.append([item.Text for item in menu])
            menu.Add("Tell", 1).on("Click", lambda: clicked.append(zrqrybld.type_name(what)))
        qb.DiagramPane.on("BeforeContextMenu", more)
        qb.DiagramPane.SelectObject(qb.DiagramPane.Entities["Moon"])

        def choose():
            menu = application.activePopupWidget()
            self.assertEqual([entry.text() for entry in menu.actions()][0], "Tell")
            menu.actions()[0].trigger()
            menu.close()

        QTimer.singleShot(100, choose)
        QTest.keyClick(designer.widget(0), Qt.Key.Key_Menu)
        QTest.qWait(50)
        self.assertEqual(clicked, ["qbEntity"])
        self.assertTrue(seen[0])

    def test_a_provider_s_exception_is_an_error_here_and_a_message_there(self):
        designer, qb = shown()

        class Broken(Observatory):
            def columns(self, table):
                raise RuntimeError("no columns today")
        qb.Connection = Broken()
        with self.assertRaisesRegex(Error, "no columns today"):
            qb.AddTable("Planet")

    def test_who_outlives_whom(self):
        for how in ("delete", "forget", "parent"):
            parent = QWidget() if how == "parent" else None
            designer = zrqrybld.widget(parent)
            self.assertIsInstance(designer, QSplitter)
            self.assertIs(designer.parentWidget(), parent)
            qb = designer.QueryBuilder
            qb.Connection = Observatory()
            if how == "delete":
                sip.delete(designer)
            elif how == "parent":
                sip.delete(parent)
            else:
                alive = []
                designer.destroyed.connect(lambda: alive.append("gone"))
                del designer
                gc.collect()
                self.assertEqual(alive, ["gone"])
            # The designer lives without its window.
            qb.AddTable("Planet").Items["Mass"].Checked = True
            self.assertIn("Planet.Mass", qb.SQLPane.SQLStatement)
            # And the window without what Python holds of it.
            designer, qb = shown()
            qb.AddTable("Moon")
            del qb, designer.QueryBuilder
            gc.collect()
            self.assertGreater(colours(designer.grab().toImage()), 10)

    def test_what_cannot_be_a_window_is_an_error_that_says_why(self):
        with self.assertRaisesRegex(Error, "a widget of PyQt6 or PySide6 wanted, int given"):
            zrqrybld.widget(3)
        core = os.environ["ZRQRYBLD_LIBRARY"].replace("zrQryBldQt", "zrQryBld")
        for imports, library, words in (("", None, "A widget needs PyQt6 or PySide6: import it before zrqrybld"),
                                        ("import PyQt6.QtWidgets", None, "A widget needs a QApplication of the same Qt"),
                                        ("import PyQt6.QtWidgets", core, "was built without a window")):
            script = f"{imports}\nimport zrqrybld\ntry: zrqrybld.widget()\nexcept zrqrybld.Error as error: print(error)"
            environment = {**os.environ, **({"ZRQRYBLD_LIBRARY": library} if library else {})}
            done = subprocess.run([sys.executable, "-c", script], capture_output=True, text=True, timeout=60, env=environment)
            self.assertIn(words, done.stdout + done.stderr)
            self.assertEqual(done.returncode, 0)


if __name__ == "__main__":
    unittest.main()
