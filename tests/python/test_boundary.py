"""Every member by name, right and wrong; handles, events and values that a caller gets wrong."""

import ctypes
import gc
import os
import random
import resource
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

import zrqrybld
from zrqrybld import Error, Null, Ref, _library, create, members, toolkit

DATA = Path(__file__).resolve().parent.parent / "data"
STORE = os.environ["STORE_DB"]


def saved(qb):
    """A file with the query of the designer."""
    name = os.path.join(tempfile.mkdtemp(), "query.zrq")
    qb.SaveQuery(name)
    return name


def join_with_query(qb):
    """A join whose condition holds a query."""
    qb.SQLPane.SQLSyntax = zrqrybld.SQLSyntaxSQLite
    qb.SQLPane.ParseSQLStatement(
        'SELECT City FROM Customers LEFT JOIN "Order" ON Customers.CustomerID = "Order".CustomerID '
        'AND "Order".Freight > (SELECT AVG(o.Freight) FROM "Order" o)')
    return next(join for table in qb.DiagramPane.Entities for join in table.Relationships)


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

    # What a member takes; one that is not here is called without arguments.
    ARGUMENTS = {
        "AddTable": ("Products",), "Connect": (f"Data Source={STORE}",), "Exists": ("x",), "Find": ("Average",),
        "CureRemark": (1,), "FindByIndicator": (3,), "FindByIndicatorLong": (3, False), "FindByText": ("orderid",), "Fields": (0,),
        "GetLanguageString": (1,), "BeginStep": ("A step",), "HasTable": ("Order",), "HideColumn": (1,), "ShowColumn": (1,), "Item": (1,),
        "LoadLanguageFile": (str(DATA.parent.parent / "samples/languages/german.txt"),), "OpenSchema": (20,),
        "ParseSQLStatement": ("SELECT City FROM Customers",), "LoadQuery": ("Version=1", True), "MaxLen": (1,),
        "SaveQuery": ("", True), "QuoteIdentifier": ("a b",), "Remove": (1,), "SetLanguageString": (1, "x"),
        "Test": ("x",), "ReadProperty": ("x",), "WriteProperty": ("x", 1), "CreateImage": (1, 1, [0]), "Move": (1, 2),
        "SavePicture": (os.path.join(tempfile.gettempdir(), "diagram.svg"),), "TagVariant": (1,), "AddItem": ("x",),
        "GetRowColumnIndex": (50.0, 50.0, 0, 0), "GetRowColumnXY": (1, 1, 0.0, 0.0), "GotoRowCol": (1, 2),
        "qbGridPane.Value": (1, 1), "ParametersDialog.Value": (1,), "AskParameters": ("SELECT 1",),
        "zrGridRow.Value": (1,), "qbEntity.TagVariant": (), "zrGridColumns.Remove": (11,),
        "TablesDialog.Add": (["Products"],), "qbJoinTables.Add": ("a", "x", "b", "y"), "qbQueries.Add": (2, "q"), "OpenInCell": (1, "criteria"), "AddInCell": (1, "criteria"), "AskAsJoin": (2, "criteria"), "PasteText": ("x",),
    }
    # What raises the event that brings a dialog.
    DIALOGS = {
        "TablesDialog": ("ShowTables", lambda qb, found: qb.ShowTables()),
        "JoinDialog": ("JoinProperties", lambda qb, found: qb.ShowJoinProperties(found["qbRelationship"])),
        "ConnectionDialog": ("ConnectionPrompt", lambda qb, found: qb.Connect(Ref(None))),
        "ExpressionDialog": ("Expression", lambda qb, found: qb.GridPane.ShowExpressionZoom()),
        "SaveFileDialog": ("SaveFile", lambda qb, found: qb.DiagramPane.AskToSavePicture()),
        "ParametersDialog": ("Parameters", lambda qb, found: qb.AskParameters("SELECT ?PARAM(Year,2024)")),
        "TextDialog": ("TextPrompt", lambda qb, found: qb.DiagramPane.AskForAlias(found["qbEntity"])),
        "ContextMenu": ("BeforeContextMenu", lambda qb, found: qb.DiagramPane.OpenMenu()),
        "MenuItem": ("BeforeContextMenu", lambda qb, found: qb.DiagramPane.OpenMenu()),
    }

    ANSWER_FALSE = {"qbQueryBuilder.ShowJoinProperties", "qbRelationships.Exists", "qbWholeJoins.Between"}  # about nothing

    def arguments(self, type_name, member, objects):
        special = {
            "qbQueryBuilder.ShowJoinProperties": lambda: (objects["qbRelationship"],),
            "qbQueries.OpenInJoin": lambda: (join_with_query(objects["qbQueryBuilder"]),),
            "qbQueries.AddSaved": lambda: (saved(objects["qbQueryBuilder"]),),
            "qbUtility.RemoveQuotedIdentifiers": lambda: (objects["qbQueryBuilder"], '"a"'),
            "qbGridPane.SetGroupByFunction": lambda: (1, objects["qbQueryBuilder"].DBFunctions["SUM"]),
            "qbRelationships.Add": lambda: (objects["qbEntity"],),
            "qbWholeJoins.Between": lambda: (objects["qbEntity"], objects["qbEntity"]),
            "qbRelationships.Exists": lambda: (objects["qbEntity"], objects["qbEntity"], 2, 2),
            "qbDiagramPane.SelectObject": lambda: (objects["qbEntity"],),
            "qbDiagramPane.AskForAlias": lambda: (objects["qbEntity"],),
            "qbDiagramPane.SetMinimized": lambda: (objects["qbEntity"], True),
            "ImageList.Add": lambda: (objects["Image"],),
        }.get(f"{type_name}.{member.name}")
        if special:
            return special()
        if not member.arguments:
            return ()
        if member.name in ("ReadProperties", "WriteProperties"):
            return (create("PropertyBag"),)
        qualified = f"{type_name}.{member.name}"
        if qualified in self.ARGUMENTS:
            return self.ARGUMENTS[qualified]
        if member.name == "Add" and not member.arguments[0].optional:
            return ("added",)
        return self.ARGUMENTS.get(member.name, ())

    @staticmethod
    def objects():
        """An object of every class that has objects of its own, in a designer of their own."""
        qb = designer()
        entity, grid, bag, rows = qb.DiagramPane.Entities["Order"], qb.GridPane.Grid, qb.Properties, qb.Connection.OpenSchema(20)
        grid.GotoRowCol(1, 1)
        toolkit.clear()
        qb.AboutBox()
        image, images, parameters = toolkit.CreateImage(1, 1, [0]), create("ImageList"), []
        images.Add(image)
        qb.SQLPane.SQLStatement = "SELECT ?PARAM(a)"
        qb.SQLPane.on("ParseParameter", lambda parameter, cancel: parameters.append(parameter))
        qb.SQLPane.ParseParameters()
        joins = create("qbJoins")
        joins.Add("a").JoinTables.Add("a", "x", "b", "y")
        combo = create("zrSimpleCombo")
        combo.AddItem("x")
        found = [qb, bag, bag[1], qb.DBFunctions, qb.DBFunctions[1], qb.DBKeywords, qb.DBKeywords[1], qb.DBOperators,
                 qb.DBOperators[1], qb.DataTypes, qb.DataTypes[1], qb.QuotedIdentifiers, qb.DiagramPane,
                 qb.DiagramPane.Entities, entity, entity.Items, entity.Items[2], entity.Relationships,
                 entity.Relationships[1], qb.DiagramPane.WholeJoins, qb.DiagramPane.WholeJoins[1],
                 qb.GridPane, grid, grid.Rows, grid.Rows[1], grid.Columns, grid.Columns[1],
                 grid.Columns["sort_type"].ComboItems, grid.Columns["sort_type"].ComboItems[1], qb.SQLPane, combo, qb.Queries, qb.Queries.Add(3),
                 create("qbUtility"), create("PropertyBag"), qb.Connection, rows, rows.Fields(0), image, images, joins,
                 joins[1], joins[1].JoinTables, joins[1].JoinTables[1], create("qbParameters"), parameters[0],
                 qb.DiagramPane.EntityFont, toolkit._object, toolkit.Messages, toolkit.Messages[1]]
        return {zrqrybld.type_name(obj): obj for obj in found}

    def with_object(self, type_name, use):
        """Calls `use` with an object of the class and those beside it."""
        objects = self.objects()  # of its own: a member may empty or close what others need
        if type_name not in self.DIALOGS:
            return use(objects[type_name], objects)
        event, raise_it = self.DIALOGS[type_name]
        used, failures = [], []

        def handler(*arguments):
            dialog = arguments[-1].Add("x") if type_name == "MenuItem" else arguments[-1]
            used.append(dialog)
            try:
                use(dialog, objects)
            except Exception as failure:  # would only be reported
                failures.append(failure)

        answer = (objects["qbDiagramPane"] if event == "BeforeContextMenu" else toolkit).on(event, handler)
        raise_it(objects["qbQueryBuilder"], objects)
        answer.off()
        self.assertTrue(used)
        if failures:
            raise failures[0]

    def test_every_class_is_here(self):
        without_parameters = {"qbParameters"}  # made here; one of a statement is never handed out
        self.assertEqual(set(zrqrybld.classes()), set(self.objects()) | set(self.DIALOGS) | without_parameters)

    def test_right(self):
        for type_name in zrqrybld.classes():
            for member in members(type_name):
                if type_name == "qbParameters" and member.name in ("Item", "Remove"):
                    continue  # always empty for a script
                with self.subTest(member=f"{type_name}.{member.name}"):
                    self.with_object(type_name, lambda obj, objects: self.use(type_name, obj, member, objects))

    def use(self, type_name, obj, member, objects):
        if f"{type_name}.{member.name}" in ("Connection.ConnectionString", "Connection.Open"):
            obj.Close()
        if member.name == "EndStep":
            obj.BeginStep("A step")
        if member.name == "CureRemark":
            objects["qbQueryBuilder"].AddTable("Products")  # a table that is joined to none
        if member.name == "OpenInCell":
            objects["qbQueryBuilder"].SQLPane.ParseSQLStatement("SELECT City FROM Customers WHERE City IN (SELECT City FROM Customers)")
        if member.name == "AskAsJoin":
            objects["qbQueryBuilder"].SQLPane.ParseSQLStatement(
                'SELECT City FROM Customers WHERE CustomerID IN (SELECT CustomerID FROM "Order")')
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
        for type_name in zrqrybld.classes():
            self.with_object(type_name, lambda obj, objects: [self.misuse(type_name, obj, member, objects)
                                                              for member in members(type_name)])

    def misuse(self, type_name, obj, member, objects):
        with self.subTest(member=f"{type_name}.{member.name}"):
            if member.kind == "event":
                for misuse in (lambda: getattr(obj, member.name), lambda: obj.let(member.name, 1)):
                    self.assertRaisesNumber(438, misuse)
                return
            too_many = [1] * (len(member.arguments) + 1)
            self.assertRaisesNumber(450, lambda: obj.get(member.name, *too_many) if member.kind == "property"
                                    else getattr(obj, member.name)(*too_many))
            if not {"let", "set"} & set(member.access):
                self.assertRaisesNumber(438, lambda: obj.let(member.name, 1))
            elif member.type != "Variant":
                given = self.arguments(type_name, member, objects)
                self.assertRaisesNumber(13, lambda: obj.let(member.name, toolkit._object, *given))
            self.assertRaisesNumber(438, lambda: obj.on(member.name, print))
            if member.arguments and not member.arguments[0].optional:
                self.assertRaisesNumber(449, lambda: getattr(obj, member.name)())
            # Nothing where an object is wanted, or one of a wrong class, is an error or has no effect; it ends nothing.
            given = list(self.arguments(type_name, member, objects))
            for place, argument in enumerate(member.arguments[:len(given)]):
                if argument.type not in zrqrybld.classes():
                    continue
                given[place] = create("qbProperties")
                self.assertRaisesNumber(13, lambda: getattr(obj, member.name)(*given))
                given[place] = None
                if f"{type_name}.{member.name}" in self.ANSWER_FALSE:
                    self.assertFalse(getattr(obj, member.name)(*given))
                else:
                    self.assertRaisesNumber(91, lambda: getattr(obj, member.name)(*given))

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

    def test_an_item_that_is_missing_is_an_error_in_every_collection(self):
        qb = designer()
        tables = qb.DiagramPane.Entities
        for collection in (tables, tables["order"].Items, tables[1].Relationships, qb.Properties, qb.DataTypes, qb.DBFunctions,
                           qb.GridPane.Grid.Rows, qb.GridPane.Grid.Columns):
            for index in ("x", 9999):
                with self.subTest(collection=collection, index=index), self.assertRaises(LookupError) as caught:
                    collection[index]
                self.assertEqual(caught.exception.number, 9)
        self.assertIsNone(tables.Item("x"))

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
            self.assertEqual(entities.Count, 4)  # nor is there half a table
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

    def test_a_script_may_end_while_its_handlers_listen(self):
        # Whatever goes first: the objects, the module, or a subscription that an event still keeps.
        script = '''
import sys, zrqrybld
class Heard(list):
    def __call__(self, *arguments):
        print(len(arguments), len(self))
hub, pane, heard = zrqrybld.create("qbQueryBuilder"), zrqrybld.create("qbDiagramPane"), Heard()
hub.DiagramPane = pane
hub.SQLPane = zrqrybld.create("qbSQLPane")
for thing, event in ((hub, "Info"), (hub, "HistoryChanged"), (pane.Entities, "EntityRemove"), (zrqrybld.toolkit, "MessageBox")):
    thing.on(event, heard)
off = hub.SQLPane.on("SQLChanged", heard)
off.off()
hub.AddTable("a")
sys.keeps = [hub, pane, off] if len(sys.argv) > 1 else None
sys.modules["_keeps"] = heard
print("end")
'''
        for arguments in ((), ("keep",)):
            ended = subprocess.run([sys.executable, "-c", script, *arguments], capture_output=True, text=True)
            self.assertEqual((ended.returncode, ended.stdout.splitlines()[-1], ended.stderr), (0, "end", ""))

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


    def test_questions_of_the_panes_are_answered(self):
        qb, problems = designer(), []
        entity, target = qb.DiagramPane.Entities["Order"], Path(tempfile.mkdtemp()) / "picture.svg"

        def answered(event, answer, ask):
            subscription = toolkit.on(event, answer)
            result = ask()
            subscription.off()
            return result

        def rename(dialog, name):
            dialog.Text, dialog.Accepted = name, True
            problems.append(dialog.Problem)

        def give(dialog, value):
            dialog.Value[1], dialog.Accepted = value, True
            problems.append(dialog.Problem)

        answered("SaveFile", lambda dialog: setattr(dialog, "Path", str(target)), qb.DiagramPane.AskToSavePicture)
        self.assertIn("Customers", target.read_text())
        toolkit.clear()
        answered("SaveFile", lambda dialog: setattr(dialog, "Path", str(target.with_suffix(""))), qb.DiagramPane.AskToSavePicture)
        self.assertIn("picture.png", toolkit.messages[1].Text)  # the suggested kind, which needs a window
        for name, taken in (("Customers", "Order"), ("o", "o")):
            answered("TextPrompt", lambda dialog: rename(dialog, name), lambda: qb.DiagramPane.AskForAlias(entity))
            self.assertEqual(entity.Caption, taken)
        for value, statement in (("x", ""), ("7", "SELECT 7")):
            self.assertEqual(answered("Parameters", lambda dialog: give(dialog, value),
                                      lambda: qb.AskParameters("SELECT ?PARAM(Year,1,,INTEGER)")), statement)
        self.assertEqual([bool(problem) for problem in problems], [True, False] * 2, problems)
        self.assertEqual(qb.AskParameters("SELECT ?PARAM(a)"), "")  # nobody answers
        with self.assertRaises(Error) as caught:
            create("qbSQLPane").ParseSQLStatement("SELECT 1")
        self.assertIn("not linked", caught.exception.description)


class Menus(unittest.TestCase):
    """What else a host hears of and decides."""

    def test_a_menu_is_read_changed_and_chosen(self):
        qb = designer()
        kept, texts, clicked = [], [], []

        def first(about, menu):
            kept.append(menu["fit to columns"])
            menu.Remove("Remove")
            menu.Add("Mine", 1).on("Click", lambda: clicked.append(about))
            menu.Add("")

        def second(about, menu):
            kept.append(menu[1])
            texts.extend(item.Text.replace("&", "") for item in menu)
            menu["Mine"].Choose()
            menu["Minimise"].Choose()
        table = qb.DiagramPane.Entities["Order"]
        qb.DiagramPane.SelectObject(table)
        height = table.Height
        listening = [qb.DiagramPane.on("BeforeContextMenu", handler) for handler in (first, second)]
        qb.DiagramPane.OpenMenu()
        self.assertEqual((texts[0], texts[-1]), ("Mine", ""))
        self.assertNotIn("Remove", texts)
        self.assertEqual(clicked, [table])
        self.assertLess(table.Height, height)
        for each in kept:  # the menu was shown meanwhile
            self.assertEqual(each.Enabled, True)
            with self.assertRaises(Error) as caught:
                each.Choose()
            self.assertEqual(caught.exception.number, 91)
        [each.off() for each in listening]
        cells = []
        qb.GridPane.on("BeforeContextMenu", lambda row, column, menu: cells.append((row, menu.Count > 3)))
        qb.GridPane.Grid.GotoRowCol(1, 2)
        qb.GridPane.OpenMenu()
        self.assertEqual(cells, [(1, True)])

    def test_a_program_s_removals_can_be_refused(self):
        qb = designer()
        tables = qb.DiagramPane.Entities

        def refuse(key, cancel):
            cancel.value = key == "Order"
        tables.on("BeforeRemove", refuse)
        tables.Remove("Order")
        tables.Remove("Customers")
        self.assertEqual([table.Caption for table in tables], ["Order"])
        qb.SQLPane.ParseSQLStatement("SELECT City FROM Customers")  # another query: nobody is asked
        self.assertEqual([table.Caption for table in tables], ["Customers"])
        qb.AddTable("Order")
        qb.DiagramPane.Clear()
        self.assertEqual(tables.Count, 0)

    def test_changed_properties_questions_and_cells(self):
        qb = designer()
        changed = []
        for each in (qb, qb.DiagramPane, qb.GridPane, qb.SQLPane):
            each.on("PropertyChanged", changed.append)
        qb.AliasMaxLen, qb.DiagramPane.EntityMinimizeButton, qb.GridPane.DateFormat = 7, True, "yyyy"
        qb.SQLPane.Locked = True
        self.assertEqual(changed, ["AliasMaxLen", "EntityMinimizeButton", "DateFormat", "Locked"])
        qb.GridPane.Grid.GotoRowCol(2, 2)
        qb.GridPane.Grid.PasteText("Freight")
        self.assertEqual(qb.GridPane.Value(2, 2), "Freight")
        self.assertEqual(qb.GridPane.Grid.CopyText(), "Freight")
        dangerous = f"Provider=SQLite;Data Source={STORE};InitSQL=x"
        asked = [toolkit.on("ConnectionPrompt", lambda dialog: setattr(dialog, "ConnectionString", dangerous))]
        for answer in (False, True):
            qb.Connection.Close() if qb.Connection.State else None
            asked.append(toolkit.on("Confirm", lambda question, accepted, answer=answer: setattr(accepted, "value", answer)))
            qb.Connect(Ref(None))
            self.assertEqual(qb.LastErrorText == "", answer, qb.LastErrorText)
        [each.off() for each in asked]


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
