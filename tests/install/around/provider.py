import zrqrybld
from zrqrybld import create

qb = create("qbQueryBuilder")
qb.DiagramPane, qb.GridPane, qb.SQLPane = create("qbDiagramPane"), create("qbGridPane"), create("qbSQLPane")
# EXAMPLE
qb.AddTable("Planet").Items["Mass"].Checked = True
assert 'Planet.Mass' in qb.SQLPane.SQLStatement, qb.SQLPane.SQLStatement
