// A page with the designer over a database that lives in the page: the sample one, or a file that is dropped on it.
import './zrqrybld/element.js';
import {sqliteRows, sqliteSource} from './zrqrybld/sqlite.js';

const of = id => document.getElementById(id);
const designer = of('designer'), said = of('said');
let database;

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

function run() {
  const {sql} = designer;
  if (!sql) return tell('There is nothing to run yet.');
  try {
    const started = performance.now(), result = sqliteRows(database, sql);
    show(result);
    tell(`${result.rows.length} rows, ${Math.round(performance.now() - started)} ms`);
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
    designer.query.DiagramPane.Clear();
    designer.connection = sqliteSource(database = opened);
    tell(file.name);
  } catch (error) {
    tell(`${file.name}: ${error.message}`);
  }
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

const SQL = await initSqlJs({locateFile: name => name});
database = new SQL.Database();
database.exec(await (await fetch('store.sql')).text());
await designer.ready;
const {query} = designer;
query.GridPane.ShowGroupBy = false;
query.SQLPane.SQLSyntax = 7;  // SQLite
designer.connection = sqliteSource(database);
await designer.connected;
const design = await shared().catch(() => null);
if (design) {
  designer.design = design;
} else {
  for (const table of ['Customers', 'Order', 'Order Lines', 'Products']) query.AddTable(table);
  query.RefreshAutoJoins();
}
document.documentElement.dataset.ready = 'yes';
