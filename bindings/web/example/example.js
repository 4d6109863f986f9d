// A page with the designer over a database that lives in the page: the sample one, or a file that is dropped on it. Opened
// with a token it asks the server that it came from.
import './zrqrybld/element.js';
import {remoteSource} from './zrqrybld/connection.js';
import {sqliteRows, sqliteSource} from './zrqrybld/sqlite.js';

const SQLITE = 7, POSTGRESQL = 5;  // of SQLSyntaxEnum
const of = id => document.getElementById(id);
const designer = of('designer'), said = of('said');
let database, remote;

const tell = text => { said.textContent = text; };

function show({columns, rows}) {
  const table = document.createElement('table'), cells = (name, values) => {
    const row = document.createElement('tr');
    for (const value of values) {
      const cell = document.createElement(name);
      cell.textContent = value === null ? 'NULL' : value instanceof Uint8Array ? `${value.length} bytes` : String(value);
      cell.classList.toggle('null', value === null);
      row.append(cell);
    }
    return row;
  };
  table.append(cells('th', columns), ...rows.map(row => cells('td', row)));
  of('rows').replaceChildren(table);
}

async function run() {
  const {sql} = designer;
  if (!sql) return tell('There is nothing to run yet.');
  try {
    const started = performance.now(), result = remote ? await remote.run(sql) : sqliteRows(database, sql);
    show(result);
    tell(`${result.more ? 'The first ' : ''}${result.rows.length} rows, ${Math.round(performance.now() - started)} ms`);
  } catch (error) {
    tell(error.message);
  }
}

function save() {
  const link = Object.assign(document.createElement('a'), {download: 'query.zrq', href: URL.createObjectURL(new Blob([designer.design]))});
  link.click();
  setTimeout(() => URL.revokeObjectURL(link.href), 10000);
}

async function open(file) {
  if (!file) return;
  try {
    if (file.name.toLowerCase().endsWith('.zrq')) {
      designer.design = await file.text();
      return tell(file.name);
    }
    const opened = new SQL.Database(new Uint8Array(await file.arrayBuffer()));
    opened.exec('SELECT count(*) FROM sqlite_schema');  // what is no database fails here
    remote = undefined;
    designer.query.DiagramPane.Clear();
    designer.query.SQLPane.SQLSyntax = SQLITE;
    designer.connection = sqliteSource(database = opened);
    tell(file.name);
  } catch (error) {
    tell(`${file.name}: ${error.message}`);
  }
}

// The token is in the fragment, too, until it has been read; a page that is loaded again still knows it.
function takeToken() {
  const given = location.hash.match(/^#token=([\w-]+)$/)?.[1];
  if (given) {
    sessionStorage.setItem('token', given);
    history.replaceState(null, '', location.pathname);
  }
  return sessionStorage.getItem('token');
}

// The design itself is the link's fragment, which no browser sends to a server.
async function share() {
  const packed = await new Response(new Blob([designer.design]).stream().pipeThrough(new CompressionStream('deflate-raw'))).arrayBuffer();
  location.hash = 'q=' + btoa(String.fromCharCode(...new Uint8Array(packed))).replaceAll('+', '-').replaceAll('/', '_').replace(/=+$/, '');
  await navigator.clipboard?.writeText(location.href).catch(() => {});
  tell('The link of this page carries the query.');
}
async function shared() {
  const text = location.hash.match(/^#q=([\w-]+)$/)?.[1];
  if (!text) return null;
  const bytes = Uint8Array.from(atob(text.replaceAll('-', '+').replaceAll('_', '/')), c => c.charCodeAt(0));
  return new Response(new Blob([bytes]).stream().pipeThrough(new DecompressionStream('deflate-raw'))).text();
}

of('run').addEventListener('click', run);
of('save').addEventListener('click', save);
of('link').addEventListener('click', share);
of('open').addEventListener('click', () => of('file').click());
of('file').addEventListener('change', event => open(event.target.files[0]));
addEventListener('dragover', event => { if (event.dataTransfer.types.includes('Files')) event.preventDefault(); });
addEventListener('drop', event => {
  if (!event.dataTransfer.files.length) return;
  event.preventDefault();
  open(event.dataTransfer.files[0]);
});
addEventListener('keydown', event => {
  if (event.key !== 'F5') return;
  event.preventDefault();
  run();
});

async function begin() {
  const {query} = designer, token = takeToken();
  query.GridPane.ShowGroupBy = false;
  if (token) {
    remote = remoteSource(location.href, {token});
    query.SQLPane.SQLSyntax = POSTGRESQL;
    designer.connection = remote;
    tell('Tables and rows come from the server.');
  } else {
    database = new SQL.Database();
    database.exec(await (await fetch('store.sql')).text());
    query.SQLPane.SQLSyntax = SQLITE;
    designer.connection = sqliteSource(database);
  }
  if (!await designer.connected && remote) return sessionStorage.removeItem('token');  // of a server that is gone
  const design = await shared().catch(() => null);
  if (design) {
    designer.design = design;
  } else if (!remote) {
    for (const table of ['Customers', 'Order', 'Order Lines', 'Products']) query.AddTable(table);
    query.RefreshAutoJoins();
  }
}

const SQL = await initSqlJs({locateFile: name => name});
await designer.ready;
await begin();
document.documentElement.dataset.ready = 'yes';
