// A PostgreSQL database for reading: what it holds as a schema document, and the rows of a statement.
//
// Each statement runs alone in a transaction that only reads and is rolled back, for at most ten seconds. That does not
// keep functions from what they may do outside of the transaction: the role of the address should have SELECT, no more.
import {createRequire} from 'node:module';
import {join, resolve} from 'node:path';
import {pathToFileURL} from 'node:url';

const MOST_ROWS = 10000, MOST_BYTES = 8 << 20, BLOCK = 100;

const TABLES = `
SELECT CASE WHEN NOT pg_table_is_visible(c.oid) THEN n.nspname END AS schema, c.relname AS name,
  CASE WHEN c.relkind IN ('v', 'm') THEN 'VIEW' ELSE 'TABLE' END AS type, obj_description(c.oid, 'pg_class') AS description,
  (SELECT json_agg(json_build_object('name', a.attname, 'type', format_type(a.atttypid, a.atttypmod),
      'nullable', NOT a.attnotnull, 'description', col_description(c.oid, a.attnum)) ORDER BY a.attnum)
    FROM pg_attribute a WHERE a.attrelid = c.oid AND a.attnum > 0 AND NOT a.attisdropped) AS columns,
  (SELECT json_agg(a.attname ORDER BY k.place) FROM pg_index i
    CROSS JOIN unnest(i.indkey) WITH ORDINALITY AS k (number, place)
    JOIN pg_attribute a ON a.attrelid = c.oid AND a.attnum = k.number
    WHERE i.indrelid = c.oid AND i.indisprimary) AS "primaryKey"
FROM pg_class c JOIN pg_namespace n ON n.oid = c.relnamespace
WHERE c.relkind IN ('r', 'p', 'f', 'v', 'm') AND n.nspname <> 'information_schema' AND n.nspname !~ '^pg_'
  AND has_schema_privilege(n.oid, 'USAGE') AND has_table_privilege(c.oid, 'SELECT')
ORDER BY NOT pg_table_is_visible(c.oid), n.nspname, c.relname LIMIT 20000`;

const FOREIGN_KEYS = `
SELECT f.conname AS name, t.relname AS table, r.relname AS references,
  (SELECT json_agg(a.attname ORDER BY k.place) FROM unnest(f.conkey) WITH ORDINALITY AS k (number, place)
    JOIN pg_attribute a ON a.attrelid = f.conrelid AND a.attnum = k.number) AS columns,
  (SELECT json_agg(a.attname ORDER BY k.place) FROM unnest(f.confkey) WITH ORDINALITY AS k (number, place)
    JOIN pg_attribute a ON a.attrelid = f.confrelid AND a.attnum = k.number) AS to
FROM pg_constraint f JOIN pg_class t ON t.oid = f.conrelid JOIN pg_class r ON r.oid = f.confrelid
WHERE f.contype = 'f' ORDER BY t.relname, f.conname LIMIT 20000`;

// Numbers that JavaScript holds exactly and truth are values; everything else is the database's own text.
const BOOLEAN = 16, EXACT = [21, 23, 26];
const types = {getTypeParser: type => (type === BOOLEAN ? text => text === 't' : EXACT.includes(type) ? Number : String)};

/** Opens the database of an address, and throws where that fails. */
export async function openDatabase(address) {
  const require = createRequire(pathToFileURL(join(resolve(process.env.MODULES ?? '.'), '/')));
  const {Pool} = require('pg'), Cursor = require('pg-cursor');
  const pool = new Pool({connectionString: address, max: 4, connectionTimeoutMillis: 10000, statement_timeout: 10000,
    idle_in_transaction_session_timeout: 30000, application_name: 'zrQryBld sample'});
  pool.on('error', error => console.error(error.message));  // of a connection that rests

  async function reading(work) {
    const client = await pool.connect();
    let broken;
    try {
      await client.query('BEGIN TRANSACTION READ ONLY');
      return await work(client);
    } finally {
      // Locks and settings of the session go, too.
      await client.query('ROLLBACK').then(() => client.query('DISCARD ALL')).catch(error => { broken = error; });
      client.release(broken);
    }
  }

  const schema = () => reading(async client => ({
    tables: (await client.query(TABLES)).rows,
    foreignKeys: (await client.query(FOREIGN_KEYS)).rows,
    quotes: ['"', '"'], folds: 'lower', dialect: 'PostgreSQL',
  }));

  // A cursor takes one statement only, and reads no more than it is told.
  const rows = ({sql, limit}) => reading(async client => {
    const cursor = client.query(new Cursor(sql, [], {rowMode: 'array', types})), most = Math.min(limit, MOST_ROWS);
    const found = [];
    let columns = [], bytes = 0, more = true;
    while (more && found.length <= most && bytes < MOST_BYTES) {
      const block = await new Promise((take, fail) => cursor.read(BLOCK, (error, read, result) => {
        columns = result?.fields?.map(field => field.name) ?? columns;
        return error ? fail(error) : take(read);
      }));
      for (const row of block) for (const value of row) bytes += String(value ?? '').length;
      found.push(...block);
      more = block.length === BLOCK;
    }
    await cursor.close();
    return {columns, rows: found.slice(0, most), more: more || found.length > most};
  });

  await reading(client => client.query('SELECT 1'));
  return {schema, rows, close: () => pool.end()};
}
