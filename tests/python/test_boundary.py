"""Every member by name, right and wrong; handles, events and values that a caller gets wrong."""

import ctypes
import gc
import os
import random
import resource
import sys
import tempfile
import unittest
from pathlib import Path

import zrqrybld
from zrqrybld import Error, Null, Ref, _library, create, members, toolkit

DATA = Path(__file__).resolve().parent.parent / "data"
STORE = os.environ["STORE_DB"]


def designer():
    """A linked designer on the sample database with two joined tables and a query column."""
    qb = create("qbQueryBuilder")
    qb.DiagramPane, qb.GridPane, qb.SQLPane = create("qbDiagramPane"), create("qbGridPane"), create("qbSQLPane")
    qb.GridPane.ShowGroupBy = False
    qb.Connect(f"Provider=SQLite;Data Source={STORE}")
    qb.AddTable("Order")
    qb.AddTable("Customers")
    qb.RefreshAutoJoins()
    qb.DiagramPane.Entities["Order"].Items["OrderID"].Checked = True
    return qb


def line_of(class_name, member):
    """A member as the kept list writes it."""
    arguments = ", ".join(f"{'ByRef ' if a.by_reference else ''}{f'[{a.name}]' if a.optional else a.name}: {a.type}"
                          for a in member.arguments)
    kind = {"event": "event ", "method": "", "property": "/".join(member.access) + " "}[member.kind]
    brackets = f"({arguments})" if arguments or member.kind != "property" else ""
    default = " (default)" if member.is_default else ""
    return f"{class_name}: {kind}{member.name}{brackets}{f' -> {member.type}' if member.type else ''}{default}"


class Tables(unittest.TestCase):
    def test_members_are_those_of_the_kept_list(self):
        now = [line_of(name, member) for name in zrqrybld.classes() for member in members(name)]
        kept = DATA / "members.txt"
        if "--update" in sys.argv:
            kept.write_text("\n".join(now) + "\n", encoding="utf-8")
        self.assertEqual(kept.read_text(encoding="utf-8").splitlines(), now)

    def test_every_argument_has_a_name_and_optional_ones_stand_last(self):
        for name in zrqrybld.classes():
            for member in members(name):
                with self.subTest(member=f"{name}.{member.name}"):
                    self.assertTrue(all(argument.name for argument in member.arguments))
                    optional = [argument.optional for argument in member.arguments]
                    self.assertEqual(optional, sorted(optional))


class EveryMember(unittest.TestCase):
    """Reads, writes, calls and listens to all members of one object of each class."""

    # What a method takes; one that is not here is called without arguments.
    ARGUMENTS = {
        "AddTable": ("Products",), "Connect": (f"Data Source={STORE}",), "Exists": ("x",), "Find": ("Average",),
        "FindByIndicator": (3,), "FindByIndicatorLong": (3, False), "FindByText": ("orderid",),
        "GetLanguageString": (1,), "BeginStep": ("A step",), "HasTable": ("Order",), "HideColumn": (1,), "ShowColumn": (1,),
        "LoadLanguageFile": (str(DATA.parent.parent / "samples/languages/german.txt"),), "OpenSchema": (20,), "ParseSQLStatement": ("SELECT City FROM Customers",),
        "LoadQuery": ("Version=1", True), "SaveQuery": ("", True),
        "QuoteIdentifier": ("a b",), "Remove": (1,), "SetLanguageString": (1, "x"), "Test": ("x",),
        "ReadProperty": ("x",), "WriteProperty": ("x", 1), "CreateImage": (1, 1, [0]),
        "SavePicture": (os.path.join(tempfile.gettempdir(), "diagram.svg"),),
    }
    INDEX = {"qbGridPane.Value": (1, 1), "zrGridRow.Value": (1,), "TagVariant": (1,), "Item": (1,), "Fields": (0,)}

    def arguments(self, type_name, member, objects):
        qb = objects["qbQueryBuilder"]
        special = {
            "qbQueryBuilder.ShowJoinProperties": lambda: (objects["qbRelationship"],),
            "qbUtility.RemoveQuotedIdentifiers": lambda: (qb, '"a"'),
            "qbGridPane.SetGroupByFunction": lambda: (1, qb.DBFunctions["SUM"]),
            "qbRelationships.Add": lambda: (objects["qbEntity"],),
            "qbRelationships.Exists": lambda: (objects["qbEntity"], objects["qbEntity"], 2, 2),
            "qbDiagramPane.SelectObject": lambda: (objects["qbEntity"],),
            "qbDiagramPane.SetMinimized": lambda: (objects["qbEntity"], True),
        }.get(f"{type_name}.{member.name}")
        if special:
            return special()
        if member.name in ("ReadProperties", "WriteProperties"):
            return (create("PropertyBag"),)
        if member.name == "Add" and member.arguments and not member.arguments[0].optional:
            return ("added",)
        if not member.arguments:
            return ()
        qualified = f"{type_name}.{member.name}"
        return self.ARGUMENTS.get(member.name) or self.INDEX.get(qualified) or self.INDEX.get(member.name, ())

    @staticmethod
    def objects():
        qb = designer()
        entity = qb.DiagramPane.Entities["Order"]
        bag = qb.Properties
        grid = qb.GridPane.Grid
        rows = qb.Connection.OpenSchema(20)
        toolkit.clear()
        found = [qb, bag, bag[1], qb.DBFunctions, qb.DBFunctions[1], qb.DBKeywords, qb.DBKeywords[1], qb.DBOperators,
                 qb.DBOperators[1], qb.DataTypes, qb.DataTypes[1], qb.QuotedIdentifiers, qb.DiagramPane,
                 qb.DiagramPane.Entities, entity, entity.Items, entity.Items[2], entity.Relationships,
                 entity.Relationships[1], qb.GridPane, grid, grid.Rows, grid.Rows[1], grid.Columns, grid.Columns[1],
                 grid.Columns["sort_type"].ComboItems, grid.Columns["sort_type"].ComboItems[1], qb.SQLPane,
                 create("qbUtility"), create("PropertyBag"), qb.Connection, rows, rows.Fields(0),
                 qb.DiagramPane.EntityFont, toolkit.CreateImage(1, 1, [0])]
        return {zrqrybld.type_name(obj): obj for obj in found}

    def test_right(self):
        for type_name in self.objects():
            for member in members(type_name):
                with self.subTest(member=f"{type_name}.{member.name}"):
                    objects = self.objects()  # of its own: a member may empty or close what others need
                    obj = objects[type_name]
                    if f"{type_name}.{member.name}" in ("Connection.ConnectionString", "Connection.Open"):
                        obj.Close()
                    arguments = self.arguments(type_name, member, objects)
                    if member.kind == "event":
                        obj.on(member.name, lambda *_: None).off()
                    elif member.kind == "method":
                        getattr(obj, member.name)(*arguments)
                    else:
                        value = obj.get(member.name, *arguments)
                        if {"let", "set"} & set(member.access):
                            obj.let(member.name, value, *arguments)
                            if member.type != "Font":  # a new object at each reading
                                self.assertEqual(obj.get(member.name, *arguments), value)

    def test_wrong(self):
        objects = self.objects()
        for type_name, obj in objects.items():
            for member in members(type_name):
                with self.subTest(member=f"{type_name}.{member.name}"):
                    if member.kind == "event":
                        for misuse in (lambda: getattr(obj, member.name), lambda: obj.let(member.name, 1)):
                            self.assertRaisesNumber(438, misuse)
                        continue
                    too_many = [1] * (len(member.arguments) + 1)
                    self.assertRaisesNumber(450, lambda: obj.get(member.name, *too_many) if member.kind == "property"
                                            else getattr(obj, member.name)(*too_many))
                    if not {"let", "set"} & set(member.access):
                        self.assertRaisesNumber(438, lambda: obj.let(member.name, 1))
                    elif member.type not in ("Variant",):
                        given = self.arguments(type_name, member, objects)
                        self.assertRaisesNumber(13, lambda: obj.let(member.name, toolkit._object, *given))
                    self.assertRaisesNumber(438, lambda: obj.on(member.name, print))
                    if member.arguments and not member.arguments[0].optional:
                        self.assertRaisesNumber(449, lambda: getattr(obj, member.name)())

    def assertRaisesNumber(self, number, call):
        with self.assertRaises(Error) as caught:
            call()
        self.assertEqual(caught.exception.number, number, caught.exception)


class Values(unittest.TestCase):
    def test_values_come_back_as_they_went(self):
        bag = create("qbProperties")
        for value in (None, True, False, 0, -1, 2**31, -2**63, 1.5, float("inf"), "", "Grüße \0 ☃", Null, [1, ["a", None]],
                      zrqrybld._datetime.datetime(2024, 2, 29, 12)):
            with self.subTest(value=value):
                bag.Clear()
                self.assertEqual(bag.Add(value).Value, value)

    def test_what_cannot_be_passed_is_an_error(self):
        bag = create("qbProperties")
        deep = []
        for _ in range(100):
            deep = [deep]
        for value in (object(), 2**63, deep, {"a": 1}):
            with self.subTest(value=type(value)), self.assertRaises(Error):
                bag.Add(value)

    def test_named_arguments_and_references(self):
        found = create("qbQueryBuilder").DBFunctions.Find(Syntax="SUM(@field)")
        self.assertEqual(found.Name, "SUM")
        qb, text = create("qbQueryBuilder"), Ref(None)
        qb.Connect(text)  # cancelled: nobody answers the prompt
        self.assertEqual(text.value, "")
        toolkit_answer = toolkit.on("ConnectionPrompt", lambda d: setattr(d, "ConnectionString", f"Data Source={STORE}"))
        qb.Connect(text := Ref(None))
        toolkit_answer.off()
        self.assertIn("store.db", text.value)
        self.assertEqual(qb.Connection.State, zrqrybld.ConnectionOpened)


class Events(unittest.TestCase):
    def test_a_handler_may_cancel_and_may_fail(self):
        qb, seen, failures = designer(), [], []
        entities = qb.DiagramPane.Entities

        def refuse(key, cancel):
            seen.append(key)
            cancel.value = key == "Products"

        subscription = entities.on("BeforeAdd", refuse)
        self.assertIsNone(qb.AddTable("Products"))
        self.assertEqual(qb.AddTable("Suppliers").Caption, "Suppliers")
        subscription.off()
        self.assertEqual(qb.AddTable("Products").Caption, "Products")
        self.assertEqual(seen, ["Products", "Suppliers"])

        hook, sys.unraisablehook = sys.unraisablehook, lambda report: failures.append(report.exc_type)
        qb.on("Info", lambda *_: 1 / 0)
        qb.on("Info", lambda info, parameters: setattr(info, "value", "no number"))
        try:
            self.assertEqual(entities.Count, 4)
            with self.assertRaises(Error):  # what the second handler wrote is no such number
                qb.AddTable("Categories")
        finally:
            sys.unraisablehook = hook
        self.assertIn(ZeroDivisionError, failures)

    def test_parameters_are_asked_for(self):
        qb, asked = designer(), []
        sql = qb.SQLPane
        sql.SQLStatement = "SELECT ?PARAM('How many',1,n,3), ?PARAM(who,'x')"

        def answer(parameter, cancel):
            asked.append((parameter.FormatPrompt(), parameter.Name, parameter.Default))
            parameter.Value = None if len(asked) > 1 else 7
            cancel.value = len(asked) > 2

        sql.on("ParseParameter", answer)
        self.assertEqual(sql.ParseParameters(), "SELECT 7, 'x'")
        self.assertEqual(asked, [("How many", "n", "1"), ("who", "", "'x'")])
        self.assertEqual(sql.ParseParameters(), "")

    def test_a_handler_ends_with_its_object_or_subscription(self):
        before = len(zrqrybld._handlers)
        for off in (False, True):
            entities = create("qbDiagramPane").Entities
            subscription = entities.on("EntityAdd", lambda key: None)
            self.assertEqual(len(zrqrybld._handlers), before + 1)
            if off:
                subscription.off()
                subscription.off()
            del entities
            gc.collect()
            self.assertEqual(len(zrqrybld._handlers), before)

    def test_dialogs_are_answered_or_cancelled_and_recorded(self):
        qb = designer()
        qb.SQLPane.SQLSyntax = zrqrybld.SQLSyntaxMSSQL
        join = qb.DiagramPane.Entities["Order"].Relationships[1]
        toolkit.clear()
        self.assertFalse(qb.ShowJoinProperties(join))
        kept = []

        def accept(dialog):
            dialog.Table1Checked = dialog.Accepted = True
            kept.append(dialog)

        answer = toolkit.on("JoinProperties", accept)
        self.assertTrue(qb.ShowJoinProperties(join))
        answer.off()
        self.assertEqual(join.ItemData, 1)
        self.assertEqual([message.Kind for message in toolkit.messages], ["JoinProperties"] * 2)
        with self.assertRaises(Error) as caught:
            print(kept[0].Caption)
        self.assertEqual(caught.exception.number, 91)


class Steps(unittest.TestCase):
    def test_what_a_script_does_is_undone_by_name(self):
        qb = designer()
        text = qb.SQLPane.SQLStatement
        heard = []
        subscription = qb.on("HistoryChanged", lambda: heard.append(qb.UndoText))
        qb.BeginStep("Two columns")
        for column in ("CustomerID", "OrderDate"):
            qb.DiagramPane.Entities["Order"].Items[column].Checked = True
        with self.assertRaises(Error) as refused:
            qb.Undo()
        self.assertEqual(refused.exception.number, 5)
        qb.EndStep()
        self.assertEqual((qb.UndoText, qb.RedoText, qb.CanRedo), ("Two columns", "", False))
        self.assertTrue(qb.Undo())
        self.assertEqual((qb.SQLPane.SQLStatement, qb.RedoText), (text, "Two columns"))
        self.assertTrue(qb.Redo())
        self.assertIn("OrderDate", qb.SQLPane.SQLStatement)
        self.assertEqual(heard, ["Two columns", "Tick Order.OrderID", "Two columns"])
        del subscription


class Handles(unittest.TestCase):
    def test_released_in_any_order(self):
        for seed in range(20):
            chance = random.Random(seed)
            qb = designer()
            kept = [qb, qb.DiagramPane, qb.GridPane, qb.SQLPane, qb.Connection, qb.DiagramPane.Entities,
                    *qb.DiagramPane.Entities, *qb.DiagramPane.Entities["Order"].Items, qb.GridPane.Grid]
            del qb
            chance.shuffle(kept)
            while kept:
                kept.pop()
                for obj in kept[-2:]:
                    try:
                        [obj.get(m.name) for m in members(obj) if m.kind == "property" and not m.arguments]
                    except Error as error:
                        self.assertEqual(error.number, 91, error)

    def test_a_made_up_handle_is_an_error(self):
        lib, value, text = zrqrybld._lib, _library.Value(), _library.Value()
        text.type, text.text.length = _library.STRING, 10**9
        live = create("qbProperties")
        released = ctypes.c_uint64()
        lib.zrq_create(b"qbProperties", ctypes.byref(released))
        lib.zrq_release(released)
        for handle in (0, 1 << 40, 2**64 - 1, released.value):
            for status in (lib.zrq_retain(handle), lib.zrq_release(handle), lib.zrq_get(handle, b"Count", None, 0, value),
                           lib.zrq_let(handle, b"Count", None, 0, value), lib.zrq_call(handle, b"Clear", None, 0, value, None)):
                self.assertEqual(status, 5)
        name, handler = live._handle, zrqrybld._c_handle
        bad_array = _library.Value()
        bad_array.type, bad_array.array.count = _library.ARRAY, 3
        unknown = _library.Value()
        unknown.type = 77
        for status in (lib.zrq_get(name, None, None, 0, value), lib.zrq_get(name, b"Item", None, 1, value),
                       lib.zrq_get(name, b"Item", text, 1, value), lib.zrq_get(name, b"Item", bad_array, 1, value),
                       lib.zrq_get(name, b"Item", unknown, 1, value), lib.zrq_create(b"qbProperties", None),
                       lib.zrq_let(name, b"Count", None, 0, None), lib.zrq_write(0, value),
                       lib.zrq_subscribe(name, b"x", handler, zrqrybld._c_ended, None, None)):
            self.assertEqual(status, 5)
        self.assertEqual(lib.zrq_unsubscribe(12345), 0)
        self.assertEqual(lib.zrq_get(name, b"Count", None, 0, None), 0)  # a result that nobody wants

    def test_a_million_pairs_do_not_grow(self):
        lib, handle = zrqrybld._lib, ctypes.c_uint64()

        def pairs(count):
            for _ in range(count):
                lib.zrq_create(b"qbProperties", ctypes.byref(handle))
                lib.zrq_release(handle)
            return resource.getrusage(resource.RUSAGE_SELF).ru_maxrss

        before = pairs(50_000)
        self.assertLess(pairs(1_000_000) - before, 20_000)  # kB; a leak of one byte a pair would hardly hide


if __name__ == "__main__":
    unittest.main(argv=[argument for argument in sys.argv if argument != "--update"])
