// A SQLite database in the page as a source: an open database of the npm package sql.js, or of @sqlite.org/sqlite-wasm.
//
//   designer.connection = sqliteSource(new SQL.Database(bytes));

// The rows of a statement as objects, whichever of the two packages the database is of.
function select(database, sql, values = []) {
  if (database.selectObjects) return database.selectObjects(sql, values);
  const statement = database.prepare(sql, values), rows = [];
  try {
    while (statement.step()) rows.push(statement.getAsObject());
  } finally {
    statement.free();
  }
  return rows;
}

/** What the database holds now, as a schema document. */
export function sqliteSchema(database) {
  const tables = [], foreignKeys = [];
  const listed = select(database, "SELECT name, type FROM pragma_table_list WHERE schema = 'main' AND type IN ('table', 'view', 'virtual') " +
    "AND name NOT LIKE 'sqlite\\_%' ESCAPE '\\' ORDER BY name");
  for (const {name, type} of listed) {
    const columns = select(database, 'SELECT name, type, pk, "notnull" AS required, dflt_value AS given FROM pragma_table_xinfo(?) WHERE hidden <> 1', [name]);
    tables.push({
      name,
      type: type === 'view' ? 'VIEW' : 'TABLE',
      columns: columns.map(column => ({name: column.name, type: column.type, nullable: !column.required, default: column.given ?? undefined})),
      primaryKey: columns.filter(column => column.pk > 0).sort((a, b) => a.pk - b.pk).map(column => column.name),
    });
    const keys = new Map();
    for (const key of select(database, 'SELECT id, "table" AS target, "from" AS source, "to" AS column FROM pragma_foreign_key_list(?) ORDER BY id, seq', [name])) {
      if (!keys.has(key.id)) keys.set(key.id, {table: name, references: key.target, columns: [], to: []});
      keys.get(key.id).columns.push(key.source);
      keys.get(key.id).to.push(key.column);
    }
    foreignKeys.push(...keys.values());
  }
  // A reference without columns is to the primary key.
  for (const key of foreignKeys) {
    const target = tables.find(table => table.name.toLowerCase() === key.references.toLowerCase());
    key.to = key.to.map((column, i) => column ?? target?.primaryKey[i] ?? key.columns[i]);
  }
  return {tables, foreignKeys, quotes: ['"', '"']};
}

/** A source for `connection` of the element. */
export const sqliteSource = database => ({schema: () => sqliteSchema(database)});

/** Up to `limit` rows of a statement that only reads: `{columns, rows}`. Whatever else it is throws. */
export function sqliteRows(database, sql, limit = 1000) {
  const columns = [], rows = [];
  if (database.selectObjects) throw new TypeError('Rows are read with sql.js.');
  database.run('PRAGMA query_only = 1');
  const statement = database.prepare(sql);
  try {
    columns.push(...statement.getColumnNames());
    while (rows.length < limit && statement.step()) rows.push(statement.get());
  } finally {
    statement.free();
  }
  return {columns, rows};
}
