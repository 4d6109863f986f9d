// Connections: what a page gives as the source of tables and columns, as the rows that the library asks for.
//
// A schema document is plain data, as JSON holds it:
//
//   {tables: [{name: 'Orders', schema: 'dbo', type: 'TABLE', description: '',
//              columns: [{name: 'OrderID', type: 'integer', primaryKey: true, nullable: false}, 'Remark']}],
//    foreignKeys: [{table: 'Orders', columns: ['CustomerID'], references: 'Customers', to: ['CustomerID']}],
//    quotes: ['"', '"'], keywords: ['ORDER'], folds: 'lower', dialect: 'PostgreSQL'}
//
// A source that folds names to lower (or upper) letters finds a name with others only in quotes; `dialect` is what it
// speaks, a name of SQLSyntaxEnum without its beginning or of a database.
// Types are names of SQL ("varchar(20)", "integer") or numbers of docs/automation.md. What the document leaves out is not
// known, which is no error.

const KEYWORDS = 0, COLUMNS = 4, TABLES = 20, FOREIGN_KEYS = 27, PRIMARY_KEYS = 28, LITERALS = 31;
const NULLABLE = 0x20, WRITABLE = 0x04, LONG = 0x80;

// By how a type's name begins; the first that fits counts.
const TYPES = [
  [/^(tiny|small)int|^int2/, 2], [/^bigint|^int8/, 20], [/^(int|serial|counter|mediumint)/, 3], [/^bool|^bit/, 11],
  [/^(numeric|decimal|number|money)/, 131], [/^(real|float4)/, 4], [/^(float|double)/, 5], [/^(datetime|timestamp)/, 135],
  [/^date/, 133], [/^time/, 134], [/^(uuid|guid|uniqueidentifier)/, 72], [/^(blob|image|bytea|binary|varbinary)/, 205],
  [/^(text|clob|ntext|memo|longtext|json)/, 203], [/char|^string/, 202],
];
// What does not survive in a name without quotes.
const LETTERS = 'abcdefghijklmnopqrstuvwxyz', LOST = {lower: LETTERS.toUpperCase(), upper: LETTERS};
const LONG_TYPES = [201, 203, 205];

function typeCode(type) {
  if (typeof type === 'number') return type;
  const name = String(type ?? '').trim().toLowerCase();
  return name ? TYPES.find(([pattern]) => pattern.test(name))?.[1] ?? 0 : null;
}

const text = value => (value === undefined || value === null ? null : String(value));

/** The rows of a schema document: an object for `Library.connection`. Throws a TypeError for what is no such document. */
export function schemaRows(document) {
  if (!Array.isArray(document?.tables)) throw new TypeError('A schema has an array "tables".');
  const tables = document.tables.map((table, i) => {
    const given = typeof table === 'string' ? {name: table} : table;
    if (!given || typeof given.name !== 'string' || !given.name) throw new TypeError(`tables[${i}] has no name.`);
    const columns = (given.columns ?? []).map((column, c) => {
      const known = typeof column === 'string' ? {name: column} : column;
      if (!known || typeof known.name !== 'string' || !known.name) throw new TypeError(`${given.name}.columns[${c}] has no name.`);
      return known;
    });
    return {...given, columns};
  });
  const named = new Map();  // by name in lower case: one table is asked for as often as there are tables
  for (const table of tables) named.set(table.name.toLowerCase(), [...named.get(table.name.toLowerCase()) ?? [], table]);
  const tableOf = name => {
    const alike = named.get(name.toLowerCase()) ?? [];
    return alike.find(table => table.name === name) ?? alike[0];
  };
  const place = (table, name) => [text(table?.catalog), text(table?.schema), table?.name ?? name];
  // Equal in every letter, where there is such a one.
  const wantedOf = wanted => {
    if (wanted.table === null) return tables;
    const alike = (named.get(wanted.table.toLowerCase()) ?? [])
      .filter(table => wanted.schema === null || !table.schema || table.schema.toLowerCase() === wanted.schema.toLowerCase());
    const equal = alike.filter(table => table.name === wanted.table);
    return equal.length ? equal : alike;
  };
  return {
    * columnsOf(wanted) {
      for (const table of wantedOf(wanted)) {
        for (const [i, column] of table.columns.entries()) {
          const code = typeCode(column.type), nullable = column.nullable !== false;
          const flags = (nullable ? NULLABLE : 0) | WRITABLE | (LONG_TYPES.includes(code) ? LONG : 0);
          yield [...place(table), column.name, i + 1, column.default !== undefined, text(column.default), flags, nullable, code,
            column.size ?? null, column.precision ?? null, column.scale ?? null, text(column.description)];
        }
      }
    },
    * primaryKeysOf(wanted) {
      for (const table of wantedOf(wanted)) {
        const key = table.primaryKey ?? table.columns.filter(column => column.primaryKey).map(column => column.name);
        for (const [i, column] of [key].flat().entries()) yield [...place(table), column, i + 1, null];
      }
    },
    * foreignKeys() {
      for (const key of document.foreignKeys ?? []) {
        const from = tableOf(String(key.table)), to = tableOf(String(key.references));
        const columns = [key.columns].flat(), referenced = [key.to ?? key.columns].flat();
        for (const [i, column] of columns.entries()) {
          yield [...place(to, String(key.references)), referenced[i] ?? column, ...place(from, String(key.table)), column, i + 1, text(key.name)];
        }
      }
    },
    rows(kind, wanted) {
      switch (kind) {
        case TABLES: return wantedOf(wanted).map(table => [...place(table), table.type ?? 'TABLE', text(table.description)]);
        case COLUMNS: return this.columnsOf(wanted);
        case PRIMARY_KEYS: return this.primaryKeysOf(wanted);
        case FOREIGN_KEYS: return this.foreignKeys();
        case KEYWORDS: return (document.keywords ?? []).map(word => [word]);
        case LITERALS: {
          const [open, close] = document.quotes ?? ['"', '"'];
          const known = [['SOURCE_NAME', text(document.dialect), null, null], ['TABLE_NAME', null, LOST[document.folds], '']];
          return [['QUOTE_PREFIX', open, null, null], ['QUOTE_SUFFIX', close ?? open, null, null],
            ['SCHEMA_SEPARATOR', '.', null, null], ['LIKE_PERCENT', '%', null, null], ['LIKE_UNDERSCORE', '_', null, null],
            ...known.filter(([, value, letters]) => value ?? letters)];
        }
        default: return null;
      }
    },
  };
}

/**
 * An open connection to a source: a schema document; an object with `schema()`, which gives one or a promise of one; an
 * object with `rows(kind, wanted)`; a connection of the library; null for none.
 */
export async function connectionTo(library, source) {
  if (source === null || source === undefined) return null;
  let given = await source;
  if (typeof given?.schema === 'function') given = await given.schema();
  if (String(given) === 'Connection') return given;
  const rows = typeof given?.rows === 'function' ? given : schemaRows(given);
  const connection = library.connection('Page', rows);
  connection.Open();
  return connection;
}

/** A source whose schema document is fetched: `GET address` answers it as JSON. */
export const fetched = (address, options) => ({
  async schema() {
    const answer = await fetch(address, options);
    if (!answer.ok) throw new Error(`${address}: ${answer.status} ${answer.statusText}`);
    return answer.json();
  },
});

/**
 * A server that answers as docs/web.md describes: a source for `connection` of the element, and with `run(sql, limit)` a
 * promise of rows: `{columns, rows, more}`. What the server refuses is an Error with its words.
 */
export function remoteSource(address, {token} = {}) {
  const ask = async (what, question) => {
    const answer = await fetch(new URL(what, address), {
      headers: {...token && {Authorization: `Bearer ${token}`}, ...question && {'Content-Type': 'application/json'}},
      ...question && {method: 'POST', body: JSON.stringify(question)},
    });
    const said = await answer.json().catch(() => ({}));
    if (!answer.ok) throw new Error(said.error ?? `${answer.url}: ${answer.status} ${answer.statusText}`);
    return said;
  };
  return {schema: () => ask('schema'), run: (sql, limit = 1000) => ask('rows', {sql, limit})};
}
