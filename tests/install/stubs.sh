#!/usr/bin/env bash
# The type stubs are well formed, know what the examples use, and know nothing else. Needs mypy.
# Usage: stubs.sh SOURCE PYTHON, with the environment of tools/make_stubs.
set -euo pipefail
source=$1 python=$2
command -v mypy >/dev/null || { echo "mypy is not installed"; exit 77; }
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work" && mkdir zrqrybld
"$python" "$source/tools/make_stubs" zrqrybld/__init__.pyi
cat >right.py <<'PYTHON'
import zrqrybld
designer = zrqrybld.create("qbQueryBuilder")
designer.DiagramPane, designer.GridPane = zrqrybld.create("qbDiagramPane"), zrqrybld.create("qbGridPane")
table: zrqrybld.qbEntity = designer.AddTable("Orders")
table.Items["OrderID"].Checked = True
names: list[str] = [entity.Caption for entity in designer.DiagramPane.Entities]
designer.GridPane.Value[1, "criteria"] = "> 5"
taken = designer.on("Info", lambda *arguments: None)
PYTHON
cat >wrong.py <<'PYTHON'
import zrqrybld
designer = zrqrybld.create("qbQueryBuilder")
designer.AddTabel("Orders")
designer.AddTable(5)
zrqrybld.create("qbQueryBilder")
designer.on("Infos", print)
designer.SQLPane.SQLStatement.x
number: int = designer.LastErrorText
zrqrybld.SQLSyntaxOrakel
PYTHON
export MYPYPATH=$work
mypy --strict zrqrybld/__init__.pyi
mypy --check-untyped-defs right.py "$source"/bindings/python/examples/*.py
mypy wrong.py >said.txt && { echo "mypy is content with what is wrong"; exit 1; }
for line in 3 4 5 6 7 8 9; do
  grep -q "^wrong.py:$line: error" said.txt || { cat said.txt; echo "line $line of wrong.py is no error"; exit 1; }
done
