"""The designer in a Python program's own window: window.py [PICTURE] shows it, or saves its picture and ends."""

import sys

from PyQt6.QtWidgets import QApplication, QLabel, QMainWindow, QVBoxLayout, QWidget

import zrqrybld
from own_data import Observatory


class Window(QMainWindow):
    """The designer, and below it what the program does with the statement."""

    def __init__(self):
        super().__init__()
        self.setWindowTitle("Observatory")
        self.designer = zrqrybld.widget()
        self.statement = QLabel()
        self.statement.setStyleSheet("background: #204060; color: white; padding: 6px")
        layout = QVBoxLayout()
        layout.addWidget(self.designer, 1)
        layout.addWidget(self.statement)
        middle = QWidget()
        middle.setLayout(layout)
        self.setCentralWidget(middle)

        qb = self.designer.QueryBuilder
        qb.SQLPane.on("SQLChanged", self.tell)
        qb.GridPane.ShowGroupBy = False
        qb.AutoSyntax = True
        qb.Connection = Observatory()
        qb.AddTable("Planet").Items["Mass"].Checked = True
        qb.AddTable("Moon").Items["Found on"].Checked = True
        qb.RefreshAutoJoins()

    def tell(self):
        text = self.designer.QueryBuilder.SQLPane.SQLStatement
        self.statement.setText(f"The program has heard of {len(text)} characters.")


def main(picture=None):
    application = QApplication(sys.argv[:1])
    window = Window()
    window.resize(900, 640)
    window.show()
    if picture is None:
        return application.exec()
    application.processEvents()
    return 0 if window.grab().save(picture) else 1


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
