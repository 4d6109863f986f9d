// The sample server over a PostgreSQL of its own, and the sample page over that.
//
//   tests/providers/servers.sh node --test tests/web    PAGE: the sample page, MODULES: a folder with pg, playwright-core
import assert from 'node:assert/strict';
import {spawn} from 'node:child_process';
import {request} from 'node:http';
import {createRequire} from 'node:module';
import {join} from 'node:path';
import {after, before, describe, test} from 'node:test';
import {pathToFileURL} from 'node:url';
import {launchBrowser, modules, root} from './browser.mjs';

const {Client} = createRequire(pathToFileURL(modules))('pg');
const odbc = process.env.ZRQRYBLD_TEST_POSTGRESQL;
const part = name => odbc.match(new RegExp(`${name}=([^;]*)`))[1];
const address = odbc && `postgres://${part('UID')}@${part('Server')}:${part('Port')}/${part('Database')}`;

describe('the sample server', {skip: odbc ? false : process.env.ZRQRYBLD_TEST_POSTGRESQL_MISSING ?? 'run it by servers.sh'}, () => {
  let client, server, page, token;

  before(async () => {
    client = new Client(address);
    await client.connect();
    await client.query(`
      DROP SCHEMA IF EXISTS web CASCADE; CREATE SCHEMA web;
      CREATE TABLE web."Customers" ("ID" integer PRIMARY KEY, "Name" varchar(40) NOT NULL, "Since" date);
      CREATE TABLE web."Orders" ("No" bigint, "Line" integer, "Customer" integer REFERENCES web."Customers", PRIMARY KEY ("No", "Line"));
      CREATE VIEW web."Late" AS SELECT "No" FROM web."Orders";
      INSERT INTO web."Customers" SELECT i, 'Name ' || i, date '2020-01-01' + i FROM generate_series(1, 300) i;
      COMMENT ON COLUMN web."Customers"."Since" IS 'First order';
      ALTER ROLE tester SET search_path = web`);
    server = spawn(process.execPath, [join(root, 'samples/web_server/serve.mjs'), process.env.PAGE ?? join(root, 'build/wasm/site'), '0',
      '--database', address], {env: {...process.env, MODULES: modules}, stdio: ['ignore', 'pipe', 'inherit']});
    const said = await new Promise((done, fail) => {
      server.stdout.once('data', text => done(String(text)));
      server.once('exit', code => fail(new Error(`it ended with ${code}`)));
    });
    [, page, token] = said.match(/(http:\S+\/)#token=(\S+)/);
  });
  after(async () => {
    server?.kill();
    await client?.query('DROP SCHEMA web CASCADE; ALTER ROLE tester RESET search_path');
    await client?.end();
  });

  const ask = (what, question, headers = {}) => fetch(page + what, {
    headers: {Authorization: `Bearer ${token}`, ...question !== undefined && {'Content-Type': 'application/json'}, ...headers},
    ...question !== undefined && {method: 'POST', body: typeof question === 'string' ? question : JSON.stringify(question)},
  });
  const rows = async (sql, limit) => {
    const answer = await ask('rows', {sql, limit});
    return {status: answer.status, ...await answer.json()};
  };

  test('answers who has the token, and nothing else', async () => {
    const wanted = [
      [401, 'schema', undefined, {Authorization: 'Bearer x'}], [401, 'schema', undefined, {Authorization: `Bearer ${token}x`}],
      [405, 'rows'], [415, 'rows', {sql: 'SELECT 1'}, {'Content-Type': 'text/plain'}], [400, 'rows', '{'], [400, 'rows', 'null'],
      [400, 'rows', {sql: 1}], [400, 'rows', {sql: 'SELECT 1', limit: 0}], [413, 'rows', {sql: ' '.repeat(2 << 20)}],
      [404, '../serve.mjs'], [404, '%2e%2e/%2e%2e/package.json'], [404, '%ff'],
    ];
    for (const [status, ...question] of wanted) assert.equal((await ask(...question)).status, status, JSON.stringify(question).slice(0, 80));
    const foreign = await new Promise(done => request(`${page}schema`, {headers: {Host: 'evil.example', Authorization: `Bearer ${token}`}}, done).end());
    assert.equal(foreign.statusCode, 403);
  });

  test('tells of tables, keys and views', async () => {
    const {tables, foreignKeys} = await (await ask('schema')).json();
    assert.deepEqual(tables.map(table => [table.schema, table.name, table.type, table.primaryKey]), [
      [null, 'Customers', 'TABLE', ['ID']], [null, 'Late', 'VIEW', null], [null, 'Orders', 'TABLE', ['No', 'Line']]]);
    assert.deepEqual(tables[0].columns[2], {name: 'Since', type: 'date', nullable: true, description: 'First order'});
    assert.deepEqual(foreignKeys.map(({table, references, columns, to}) => [table, references, columns, to]),
      [['Orders', 'Customers', ['Customer'], ['ID']]]);
  });

  test('gives rows within limits', async () => {
    const some = await rows('SELECT "ID", "Name", "Since", "ID" > 1 AS later FROM "Customers" ORDER BY "ID"', 2);
    assert.deepEqual(some, {status: 200, columns: ['ID', 'Name', 'Since', 'later'],
      rows: [[1, 'Name 1', '2020-01-02', false], [2, 'Name 2', '2020-01-03', true]], more: true});
    assert.equal((await rows('SELECT "ID" FROM "Customers"')).rows.length, 300);
    assert.deepEqual(await rows('SELECT "ID" FROM "Customers" WHERE false'), {status: 200, columns: ['ID'], rows: [], more: false});
    const wide = await rows("SELECT repeat('x', 1000000) FROM generate_series(1, 1000)", 1000);
    assert.ok(wide.more && wide.rows.length < 200);
    const wrong = await rows('SELECT nothing FROM "Customers"');
    assert.deepEqual([wrong.status, wrong.position], [400, 8]);
  });

  test('changes nothing', async () => {
    const refused = ['DELETE FROM "Customers"', 'WITH gone AS (DELETE FROM "Orders" RETURNING *) SELECT * FROM gone', 'SELECT 1; SELECT 2',
      'SELECT 1; COMMIT; DELETE FROM "Customers"', 'SELECT * INTO copied FROM "Customers"', 'SELECT "ID" FROM "Customers" FOR UPDATE', 'VACUUM'];
    for (const sql of refused) assert.equal((await rows(sql)).status, 400, sql);
    for (const sql of ['COMMIT', 'SET default_transaction_read_only = off', 'SELECT pg_advisory_lock(1)']) await rows(sql);
    assert.equal((await rows('DELETE FROM "Customers"')).status, 400);
    const {rows: [left]} = await client.query(`SELECT (SELECT count(*) FROM web."Customers") AS customers,
      (SELECT count(*) FROM pg_locks WHERE locktype = 'advisory') AS locks`);
    assert.deepEqual(left, {customers: '300', locks: '0'});
  });

  test('a page designs and runs on it', async () => {
    const browser = await launchBrowser();
    try {
      const opened = await browser.newPage();
      await opened.goto(`${page}#token=${token}`);
      await opened.waitForSelector('html[data-ready]');
      assert.equal(await opened.evaluate(() => location.hash), '');
      await opened.evaluate(() => {
        const {query} = document.getElementById('designer');
        for (const table of ['Customers', 'Orders']) query.AddTable(table);
        query.RefreshAutoJoins();
        query.DiagramPane.Entities.Item('Customers').Items.Item('Name').Checked = true;
      });
      await opened.click('#run');
      await opened.waitForFunction(() => document.getElementById('said').textContent.startsWith('0 rows'));
      await client.query('INSERT INTO web."Orders" VALUES (7, 1, 12)');
      await opened.keyboard.press('F5');
      await opened.waitForSelector('#rows td');
      assert.deepEqual(await opened.$$eval('#rows td', cells => cells.map(cell => cell.textContent)), ['Name 12']);
    } finally {
      await browser.close();
    }
  });
});
