#!/usr/bin/env python3
"""Walks the designer over the platform's accessibility bus, as a screen reader would.

    dbus-run-session -- tools/with_xvfb accessibility_bus.py DESIGNER DATABASE

Ends with 77 (a test that was skipped) where there is no such bus or no gdbus to speak to it.
"""
import os
import re
import shutil
import subprocess
import sys
import tempfile
import time

SKIPPED = 77
LAUNCHERS = ("/usr/libexec/at-spi-bus-launcher", "/usr/lib/at-spi2-core/at-spi-bus-launcher")
ACCESSIBLE = "org.a11y.atspi.Accessible"


def gdbus(*arguments):
    done = subprocess.run(["gdbus", "call", *arguments], capture_output=True, text=True, timeout=20)
    return done.stdout.strip() if done.returncode == 0 else ""


class Bus:
    def __init__(self, address):
        self.address = address

    def call(self, who, path, method, *arguments):
        return gdbus("--address", self.address, "--dest", who, "--object-path", path, "--method", method, *arguments)

    def children(self, who, path):
        return re.findall(r"\('([^']*)', (?:objectpath )?'([^']*)'\)", self.call(who, path, ACCESSIBLE + ".GetChildren"))

    def line(self, who, path):
        role = self.call(who, path, ACCESSIBLE + ".GetRoleName")
        name = self.call(who, path, "org.freedesktop.DBus.Properties.Get", ACCESSIBLE, "Name")
        text = lambda answer: (re.findall(r"['\"](.*)['\"]", answer) or [""])[0]
        return f'{text(role)} "{text(name)}"'

    def find(self, who, path, wanted, depth):
        """The first object whose line is wanted, at most so many levels down."""
        for child in self.children(who, path):
            if self.line(*child) == wanted:
                return child
            found = depth > 1 and self.find(*child, wanted, depth - 1)
            if found:
                return found
        return None


def wait_for(what, seconds=20):
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        answer = what()
        if answer:
            return answer
        time.sleep(0.2)
    return None


def walk(bus):
    """What is wrong; nothing when all is well."""
    root = ("org.a11y.atspi.Registry", "/org/a11y/atspi/accessible/root")
    application = wait_for(lambda: bus.children(*root))
    if not application:
        return "the designer is not on the bus"
    diagram = wait_for(lambda: bus.find(*application[0], 'panel "Diagram"', 10))
    if not diagram:
        return "there is no diagram"
    # Qt's versions differ in what they call a picture.
    wait_for(lambda: len(bus.children(*diagram)) == 3)  # the window is there before its tables are
    boxes = [re.sub("^(image|graphic) ", "", bus.line(*box)) for box in bus.children(*diagram)]
    if boxes != ['list "Customers"', 'list "Order"', '"join Order.CustomerID = Customers.CustomerID"']:
        return f"the diagram holds {boxes}"
    order = bus.children(*diagram)[1]
    rows = bus.children(*order)
    freight = next(row for row in rows if bus.line(*row) == 'list item "Freight"')
    grid = bus.find(*application[0], 'table "Query columns"', 10)
    if not grid:
        return "there is no grid"
    cell = lambda: bus.line(*bus.children(*grid)[11])  # behind ten headers and the first row's own
    before = cell()
    bus.call(*freight, "org.a11y.atspi.Action.DoAction", "0")
    if not wait_for(lambda: cell().endswith(' "Freight"'), 5):
        return f"ticking Freight over the bus changed {before} to {cell()}"
    dialect = bus.find(*application[0], 'combo box "Dialect"', 10)
    chosen = dialect and bus.call(*dialect, "org.a11y.atspi.Text.GetText", "0", "6")
    if chosen != "('SQLite',)":
        return f"the combo of dialects is {dialect} and says {chosen}"
    return None


def main():
    designer, database = sys.argv[1:]
    launcher = next((path for path in LAUNCHERS if os.path.exists(path)), None)
    if not launcher or not shutil.which("gdbus") or "DBUS_SESSION_BUS_ADDRESS" not in os.environ:
        print("skipped: there is no accessibility bus", file=sys.stderr)
        return SKIPPED
    home = tempfile.TemporaryDirectory()  # no settings, and nothing to recover
    own = {name: home.name for name in ("HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_STATE_HOME")}
    environment = dict(os.environ, QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1", QT_ACCESSIBILITY="1", **own)
    processes = [subprocess.Popen([launcher, "--launch-immediately"], stderr=subprocess.DEVNULL)]
    try:
        ask = ("--session", "--dest", "org.a11y.Bus", "--object-path", "/org/a11y/bus", "--method", "org.a11y.Bus.GetAddress")
        address = wait_for(lambda: re.findall(r"'(.+)'", gdbus(*ask)))
        if not address:
            print("skipped: the accessibility bus did not start", file=sys.stderr)
            return SKIPPED
        command = [designer, database, "--add-table", "Customers", "--add-table", "Order"]
        processes.append(subprocess.Popen(command, env=environment))
        wrong = walk(Bus(address[0]))
    finally:
        for process in reversed(processes):
            process.terminate()
            process.wait()
        home.cleanup()
    print(wrong or "ok")
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
