// What docs/web.md tells of sizes and times, measured in Chromium; beside it three other libraries of the npm registry, each
// with as many boxes of as many rows, in a part of the page of the same size, moved by the same mouse.
//
//   node tests/web/figures.mjs                  after ./test web, which builds the package
//   node tests/web/figures.mjs ours             without the others, which it installs into build/compare
//
// BOXES: 300. The others are not part of this project: react-querybuilder, @xyflow/react, @joint/core and drawflow as npm
// has them, put together with esbuild as a page would.
import {execFileSync} from 'node:child_process';
import {existsSync, mkdirSync, readFileSync, writeFileSync} from 'node:fs';
import {createServer} from 'node:http';
import {cpus} from 'node:os';
import {extname, join, normalize} from 'node:path';
import {brotliCompressSync, constants} from 'node:zlib';
import {folder, launchBrowser, root} from './browser.mjs';

const boxes = +(process.env.BOXES ?? 300), rows = 10;
const compare = join(root, 'build/compare'), onlyOurs = process.argv[2] === 'ours';
const others = ['react-querybuilder@8.24.1', '@xyflow/react@12.12.1', '@joint/core@4.3.3', 'drawflow@0.0.60'];
const tools = ['react@19.3.1', 'react-dom@19.3.1', 'esbuild@0.28.2'];

const frame = 'const frame = () => new Promise(done => requestAnimationFrame(() => setTimeout(done)));';
// Each page has add(count), which makes boxes in rows of twenty, each joined with the next, and grip(), which tells where
// the mouse takes the first of them.
const shared = `${frame}
const place = i => ({x: 20 + i % 20 * 220, y: 20 + Math.floor(i / 20) * 300});
const fields = [...Array(${rows}).keys()].map(k => 'Column' + k);
const begun = async () => { await add(2); await frame(); window.firstPaint = performance.now(); document.documentElement.dataset.ready = 'yes'; };
`;

const pages = {
  'zr-query-designer': {
    code: `import '/zrqrybld/element.js';
${shared}
const {Surface} = await import('/zrqrybld/surface.js'), paint = Surface.prototype.paint;
window.paints = [];
Surface.prototype.paint = function () {
  const begin = performance.now();
  paint.call(this);
  const written = performance.now();
  if (window.flushes) this.context.getImageData(0, 0, 1, 1);
  if (this.host.id === 'diagram') paints.push([written - begin, performance.now() - begin]);
};
window.designer = document.querySelector('zr-query-designer');
await designer.ready;
window.connect = async count => {
  const tables = [...Array(count).keys()].map(i => ({name: 'T' + i, columns: fields.map((name, k) => ({name, type: 'integer', primaryKey: k === 0}))}));
  const foreignKeys = tables.slice(1).map((t, i) => ({table: t.name, columns: ['Column1'], references: 'T' + i, to: ['Column0']}));
  designer.connection = {tables, foreignKeys};
  if (!await designer.connected) throw new Error('no schema');
};
window.add = async count => {
  designer.sql = '';
  await connect(count);
  designer.query.ShowTables();
  const box = designer.shadowRoot.querySelector('dialog.tables');
  [...box.querySelector('select').options].forEach(option => { option.selected = true; });
  const begin = performance.now();
  box.querySelector('form').requestSubmit();
  const took = performance.now() - begin;
  box.querySelector('.buttons button:not(.main)').click();
  if (count <= 300) [...designer.query.DiagramPane.Entities].forEach((entity, i) => {
    const {x, y} = place(i);
    [entity.Left, entity.Top] = [x * 15, y * 15];
  });
  await frame();
  return {took, untilPainted: performance.now() - begin, count: designer.query.DiagramPane.Entities.Count};
};
window.grip = async () => {
  await new Promise(done => setTimeout(done, 300));
  const node = designer.shadowRoot.querySelector('#diagram .access [role=listbox]'), [x, y, w] = node.dataset.bounds.split(' ').map(Number);
  const {left, top} = designer.shadowRoot.querySelector('#diagram canvas').getBoundingClientRect();
  return {x: left + x + w / 2, y: top + y + 10};
};
window.heap = async () => (await (await import('/zrqrybld/library.js')).load()).module.HEAPU8.length;
begun();`,
    body: '<zr-query-designer></zr-query-designer>', css: 'zr-query-designer { width: 1280px; height: 900px; }',
  },
  '@xyflow/react': {
    code: `import React, {useState, useCallback} from 'react';
import {createRoot} from 'react-dom/client';
import {ReactFlow, Handle, Position, applyNodeChanges} from '@xyflow/react';
import '@xyflow/react/dist/style.css';
${shared}
const h = React.createElement;
const Table = ({data}) => h('div', {className: 'table'}, h('b', null, data.name),
  fields.map((name, k) => h('label', {key: name}, h('input', {type: 'checkbox'}), name,
    k < 2 && h(Handle, {id: name, type: k ? 'source' : 'target', position: k ? Position.Right : Position.Left, style: {position: 'absolute', top: 34 + k * 20}}))));
const nodeTypes = {table: Table};
let show;
function App() {
  const [{nodes, edges}, setAll] = useState({nodes: [], edges: []});
  show = setAll;
  const onNodesChange = useCallback(changes => setAll(all => ({...all, nodes: applyNodeChanges(changes, all.nodes)})), []);
  return h(ReactFlow, {nodes, edges, nodeTypes, onNodesChange, onlyRenderVisibleElements: true, autoPanOnNodeDrag: false, defaultViewport: {x: 0, y: 0, zoom: 1}});
}
createRoot(document.querySelector('#host')).render(h(App));
window.add = async count => {
  while (!show) await frame();
  const begin = performance.now(), ids = [...Array(count).keys()];
  show({nodes: ids.map(i => ({id: 'T' + i, type: 'table', width: 152, height: 226, position: place(i), data: {name: 'T' + i}})),
    edges: ids.slice(1).map(i => ({id: 'e' + i, source: 'T' + i, sourceHandle: 'Column1', target: 'T' + (i - 1), targetHandle: 'Column0'}))});
  await frame(); await frame();
  return {untilPainted: performance.now() - begin};
};
window.grip = () => { const {left, top} = document.querySelector('.table b').getBoundingClientRect(); return {x: left + 40, y: top + 8}; };
begun();`,
  },
  '@joint/core': {
    code: `import {dia, g, shapes} from '@joint/core';
${shared}
const namespace = {...shapes}, graph = new dia.Graph({}, {cellNamespace: namespace});
const host = document.querySelector('#host');
const seen = ({model}) => !model.isElement?.() || model.getBBox().intersect(new g.Rect(0, 0, host.clientWidth, host.clientHeight)) !== null;
const paper = new dia.Paper({el: host, model: graph, width: host.clientWidth, height: host.clientHeight, cellViewNamespace: namespace, async: true, sorting: dia.Paper.sorting.APPROX,
  viewport: view => !view.model.isElement() || seen(view)});
const table = i => {
  const made = new shapes.standard.HeaderedRectangle({id: 'T' + i, position: place(i), size: {width: 150, height: 230}});
  made.attr({headerText: {text: 'T' + i}, bodyText: {text: fields.map(name => '\\u2610 ' + name).join('\\n'), fontSize: 13}});
  return made;
};
window.add = async count => {
  const begin = performance.now(), ids = [...Array(count).keys()];
  graph.resetCells([...ids.map(table), ...ids.slice(1).map(i => new shapes.standard.Link({source: {id: 'T' + i}, target: {id: 'T' + (i - 1)}}))]);
  await new Promise(done => paper.once('render:done', done));
  await frame();
  return {untilPainted: performance.now() - begin};
};
window.grip = () => { const {left, top} = document.querySelector('[joint-selector=header]').getBoundingClientRect(); return {x: left + 40, y: top + 12}; };
begun();`,
  },
  drawflow: {
    code: `import Drawflow from 'drawflow';
import 'drawflow/dist/drawflow.min.css';
${shared}
const editor = new Drawflow(document.querySelector('#host'));
editor.start();
window.add = async count => {
  const begin = performance.now();
  editor.clear();
  const ids = [...Array(count).keys()].map(i => editor.addNode('T' + i, 1, 1, place(i).x, place(i).y, 'table', {},
    '<div class="table"><b>T' + i + '</b>' + fields.map(name => '<label><input type="checkbox">' + name + '</label>').join('') + '</div>'));
  ids.slice(1).forEach((id, i) => editor.addConnection(id, ids[i], 'output_1', 'input_1'));
  await frame();
  return {untilPainted: performance.now() - begin};
};
window.grip = () => { const {left, top} = document.querySelector('.table b').getBoundingClientRect(); return {x: left + 40, y: top + 8}; };
begun();`,
  },
  'react-querybuilder': {  // no diagram: conditions in rows instead of boxes
    code: `import React from 'react';
import {createRoot} from 'react-dom/client';
import {QueryBuilder, formatQuery} from 'react-querybuilder';
import 'react-querybuilder/dist/query-builder.css';
${shared}
const h = React.createElement, columns = fields.map(name => ({name, label: name}));
let show;
function App() {
  const [query, setQuery] = React.useState({combinator: 'and', rules: []});
  show = setQuery;
  return h('div', null, h(QueryBuilder, {fields: columns, query, onQueryChange: setQuery}), h('pre', null, formatQuery(query, 'sql')));
}
createRoot(document.querySelector('#host')).render(h(App));
window.add = async count => {
  while (!show) await frame();
  const begin = performance.now();
  show({combinator: 'and', rules: [...Array(count).keys()].map(i => ({field: 'Column' + i % ${rows}, operator: '=', value: String(i)}))});
  await frame();
  return {untilPainted: performance.now() - begin};
};
begun();`,
  },
};
const names = onlyOurs ? ['zr-query-designer'] : Object.keys(pages);

// --- Putting the pages together ---

const files = new Map();
function makePages(hostHeight) {
  const css = `body { margin: 0; } #host { width: 1280px; height: ${hostHeight}px; position: relative; overflow: hidden; }
.table { width: 150px; background: #fff; border: 1px solid #777; font: 13px sans-serif; } .table b { display: block; background: #ddd; padding: 4px; }
.table label { display: block; height: 20px; } .drawflow .drawflow-node { width: auto; padding: 0; }`;
  for (const name of names) {
    const {code, body = '<div id="host"></div>', css: own = css} = pages[name], at = '/' + name.replace(/\W+/g, '-');
    files.set(`${at}.html`, `<!doctype html><meta charset="utf-8"><link rel="icon" href="data:,"><style>${own}</style><link rel="stylesheet" href="${at}.css">${body}<script type="module" src="${at}.js"></script>`);
    if (body.includes('zr-query')) {
      files.set(`${at}.js`, code);
      files.set(`${at}.css`, '');
      continue;
    }
    mkdirSync(join(compare, 'pages'), {recursive: true});
    const source = join(compare, `pages${at}.js`), bundle = join(compare, `made${at}`);
    writeFileSync(source, code);
    execFileSync(join(compare, 'node_modules/.bin/esbuild'), [source, '--bundle', '--minify', '--format=esm', '--define:process.env.NODE_ENV="production"',
      `--outfile=${bundle}.js`, '--log-level=error'], {stdio: 'inherit'});
    files.set(`${at}.js`, readFileSync(`${bundle}.js`));
    files.set(`${at}.css`, existsSync(`${bundle}.css`) ? readFileSync(`${bundle}.css`) : '');
  }
}

const types = {'.html': 'text/html', '.js': 'text/javascript', '.mjs': 'text/javascript', '.css': 'text/css', '.wasm': 'application/wasm'};
const sent = new Map();
const server = createServer((request, answer) => {
  const path = normalize(new URL(request.url, 'http://x').pathname);
  const found = path.startsWith('/zrqrybld/') ? readFileSync(join(folder, path.slice(10))) : files.get(path);
  if (found === undefined) return answer.writeHead(404).end();
  sent.set(path, Buffer.from(found));
  answer.writeHead(200, {'Content-Type': types[extname(path)], 'Cache-Control': 'max-age=3600'}).end(found);
});
const packed = bytes => brotliCompressSync(bytes, {params: {[constants.BROTLI_PARAM_QUALITY]: 11}}).length;

// --- Measuring ---

const middle = values => [...values].sort((a, b) => a - b)[values.length >> 1];
const high = values => [...values].sort((a, b) => a - b)[Math.floor(values.length * 0.95)];
const settled = 'html[data-ready]';

async function measure(browser, name) {
  const address = `http://127.0.0.1:${server.address().port}/${name.replace(/^\W+/, '-').replace(/\W+/g, '-')}.html`;
  const context = await browser.newContext({viewport: {width: 1280, height: 900}}), page = await context.newPage();
  page.on('pageerror', error => { console.error(`${name}: ${error.message}`); process.exitCode = 1; });
  sent.clear();
  const result = {name}, opens = [];
  for (let i = 0; i < 9; ++i) {
    await page.goto(address);
    await page.waitForSelector(settled);
    opens.push(await page.evaluate(() => firstPaint));
    if (i === 0) result.bytes = [...sent].filter(([path]) => !path.endsWith('.html')).reduce((sum, [path, bytes]) =>
      sum + (bytes.length && !(path.startsWith('/zr-query') && path.endsWith('.js')) ? packed(bytes) : 0), 0);
  }
  [result.cold, result.warm] = [opens[0], middle(opens.slice(3))];
  result.added = (await page.evaluate(count => add(count), boxes)).untilPainted;
  const client = await context.newCDPSession(page);
  await client.send('Performance.enable');
  const metrics = async () => Object.fromEntries((await client.send('Performance.getMetrics')).metrics.map(({name, value}) => [name, value]));
  if (await page.evaluate(() => typeof grip === 'function')) {
    const from = await page.evaluate(() => grip());
    await page.mouse.move(from.x, from.y);
    await page.mouse.down();
    await page.mouse.move(from.x + 10, from.y + 10);
    await page.evaluate(() => {
      window.frames = [];
      let last = performance.now();
      const tick = now => { frames.push(now - last); last = now; window.ticking = requestAnimationFrame(tick); };
      requestAnimationFrame(tick);
    });
    const before = await metrics(), moves = 200;
    for (let i = 0; i < moves; ++i) await page.mouse.move(from.x + 10 + i * 2, from.y + 10 + 60 * Math.sin(i / 12));
    const after = await metrics();
    const frames = await page.evaluate(() => { cancelAnimationFrame(ticking); return frames.slice(2); });
    if (process.env.PICTURES) await page.screenshot({path: join(process.env.PICTURES, `figures${name.replace(/\W+/g, '-')}.png`)});
    await page.mouse.up();
    Object.assign(result, {frame: middle(frames), slow: high(frames), late: frames.filter(ms => ms > 25).length / frames.length,
      move: 1000 * (after.TaskDuration - before.TaskDuration) / moves});
  }
  await client.send('HeapProfiler.collectGarbage');
  const {JSHeapUsedSize, Nodes} = await metrics();
  Object.assign(result, {heap: JSHeapUsedSize, nodes: Nodes, library: await page.evaluate(() => window.heap?.())});
  await context.close();
  return result;
}

async function measureOurs(browser) {
  const context = await browser.newContext({viewport: {width: 1280, height: 900}}), page = await context.newPage();
  await page.goto(`http://127.0.0.1:${server.address().port}/zr-query-designer.html`);
  await page.waitForSelector(settled);
  const painted = {};
  for (const count of [50, 300]) {
    painted[count] = await page.evaluate(async count => {
      await add(count);
      window.flushes = true;
      paints.length = 0;
      for (let i = 0; i < 40; ++i) {
        designer.setAttribute('theme', i % 2 ? 'light' : 'dark');
        await new Promise(done => requestAnimationFrame(() => requestAnimationFrame(done)));
      }
      return paints.slice(5);
    }, count);
  }
  // In a page whose pixels nobody has read: reading them makes a canvas slow for good.
  await page.reload();
  await page.waitForSelector(settled);
  const many = [];
  for (let i = 0; i < 3; ++i) many.push(await page.evaluate(() => add(1000)));
  const heap = await page.evaluate(() => heap());
  await context.close();
  return {painted, many, heap};
}

const ms = value => (value === undefined ? '-' : `${value < 10 ? value.toFixed(1) : Math.round(value)} ms`), kB = value => (value === undefined ? '-' : `${Math.round(value / 1000)} kB`);
const MB = value => (value === undefined ? '-' : `${(value / 1e6).toFixed(1)} MB`);

if (!onlyOurs && !existsSync(join(compare, 'node_modules/drawflow'))) {
  mkdirSync(compare, {recursive: true});
  execFileSync('npm', ['install', '--no-audit', '--no-fund', '--ignore-scripts', '--prefix', compare, ...others, ...tools], {stdio: ['ignore', 'ignore', 'inherit']});
}
makePages(440);
await new Promise(done => server.listen(0, '127.0.0.1', done));
const browser = await launchBrowser();
try {
  console.log(`${new Date().toISOString().slice(0, 10)}, ${cpus().length} × ${cpus()[0].model}, Chromium ${browser.version()} without a graphics card, ${boxes} boxes of ${rows} rows\n`);
  const {painted, many, heap} = await measureOurs(browser);
  for (const [count, all] of Object.entries(painted))
    console.log(`diagram of ${count} boxes painted: ${ms(middle(all.map(([a]) => a)))} in script, ${ms(middle(all.map(([, b]) => b)))} until its pixels are there (${all.length} paints)`);
  console.log(`1,000 tables added in one step: ${many.map(({took}) => ms(took)).join(', ')}; until painted ${many.map(({untilPainted}) => ms(untilPainted)).join(', ')}; ${many.at(-1).count} tables; heap of the library then ${MB(heap)}\n`);
  console.log('| | brotli | first paint, first time | first paint, from the cache | boxes added | frame while dragging, middle and 95th of 100 | frames over 25 ms | work for a move | heap of JavaScript, of WebAssembly | nodes |\n|---|---|---|---|---|---|---|---|---|---|');
  for (const name of names) {
    const r = await measure(browser, name);
    console.log(`| ${r.name} | ${kB(r.bytes)} | ${ms(r.cold)} | ${ms(r.warm)} | ${ms(r.added)} | ${r.frame ? `${ms(r.frame)}, ${ms(r.slow)}` : '-'} | ${r.frame ? `${Math.round(r.late * 100)} %` : '-'} | ${ms(r.move)} | ${MB(r.heap)}, ${MB(r.library)} | ${r.nodes} |`);
  }
} finally {
  await browser.close();
  server.close();
}
