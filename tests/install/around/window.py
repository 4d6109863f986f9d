import os
import sys

os.environ["ZRQRYBLD_LIBRARY"] = os.environ["ZRQRYBLD_LIBRARY"].replace("zrQryBld.", "zrQryBldQt.")
from PyQt6.QtWidgets import QApplication
QApplication.exec = QApplication.processEvents  # nobody is there to close it
sys.path.append(os.path.join(os.environ["PYTHONPATH"], "examples"))
from own_data import Observatory
# EXAMPLE
assert designer.isVisible()
