// The tables that the windows of the desktop play (tests/data/keys.txt, diagram_gestures.txt, tasks.txt), played in a page
// by real keys and a real mouse: one list, two drivers. What is other in a page stands in `differences`, with its reason.
//
//   ONLY=Ctrl+J node --test tests/web/scenarios.test.mjs    ONLY: rows that hold this text; BROWSER=firefox: in Firefox
import assert from 'node:assert/strict';
import {readFileSync} from 'node:fs';
import {join} from 'node:path';
import {after, before, describe, test} from 'node:test';
import {pathToFileURL} from 'node:url';
import {folder, isFirefox, keyOf, launchBrowser, need, openPage, root, servePages} from './browser.mjs';

const rows = 'running and printing a query, its rows, files and menus above are the page\'s own';
const differences = [
  [/pane=rows|F5|sql \| F6 F6|diagram \| Shift\+F6/, rows],
  [/find=|names=|Ctrl\+F|kill:|Alt\+[QV]/, `${rows}, and so is finding`],
  [/^sql \| (Ctrl\+Z|Ctrl\+End type:x|Shift\+F10)/, 'undo and the menu of the text are the browser\'s own'],
  [/over hello|drop hello|a row out of the pane|lose/, 'a browser lets no program drag from outside; dragging from within has its own test'],
  [/cursor=/, 'a cursor is a style here; its own test looks at it'],
  [/joins=[^;|]*:\d/, 'the kind of a join is no member by name; the tasks look at it in the statement'],
  [/copied=/, 'the browser keeps pictures from the clipboard of a test'],
  [/A typo by its message/, 'which words the arrow keys leap over is the browser\'s own'],
  [/notes=/, 'what boxes note of the grid is no member by name'],
  ...isFirefox ? [
    [/\bMenu\b/, 'its driver has no such key; Shift+F10 is the same'],
    [/line:|double /, 'its driver tells each press as the first of a click'],
  ] : [],
];

const read = name => readFileSync(join(root, 'tests/data', name), 'utf8').split('\n')
  .map((text, i) => ({text, place: `${name}:${i + 1}`})).filter(({text}) => text.trim() && !text.startsWith('#'))
  .map(({text, place}) => ({place, text, cells: text.split('|').map(cell => cell.trim())}));

const splitState = text => (text ?? '').split(';').map(part => part.trim()).filter(Boolean);

let browser, server, page, schema;

before(async () => {
  const sql = await need('sql.js')({wasmBinary: readFileSync(need.resolve('sql.js/dist/sql-wasm.wasm'))});
  const database = new sql.Database();
  database.run(readFileSync(join(root, 'samples/store.sql'), 'utf8'));
  schema = (await import(pathToFileURL(join(folder, 'sqlite.js')))).sqliteSchema(database);
  server = await servePages();
  browser = await launchBrowser();
  page = await openPage(browser, server, {viewport: {width: 1280, height: 900}});
});
after(async () => {
  await browser?.close();
  server?.close();
});

// A designer of its own for each row, over the sample database.
async function begin(tables, columns = []) {
  await page.evaluate(async ([source, tables, columns]) => {
    designer.remove();
    document.body.replaceChildren(window.designer = document.createElement('zr-query-designer'));
    designer.style.height = '880px';
    await designer.ready;
    designer.connection = source;
    await designer.connected;
    const query = designer.query;
    query.SQLPane.SQLSyntax = 7;
    query.AllowJoinProperties = true;
    query.GridPane.ShowGroupBy = false;
    query.SQLPane.KeepTypedText = true;
    query.DiagramPane.OLEDropMode = 1;
    if (!tables.length) return;
    // By the window, which joins what it adds.
    query.ShowTables();
    const box = designer.shadowRoot.querySelector('dialog.tables'), list = box.querySelector('select');
    [...list.options].forEach(option => { option.selected = tables.includes(option.value); });
    box.querySelector('form').requestSubmit();
    box.querySelector('.buttons button:not(.main)').click();
    columns.forEach(([table, column]) => { query.DiagramPane.Entities.Item(table).Items.Item(column).Checked = true; });
    const customers = query.DiagramPane.Entities.Item('Customers');
    window.first = ['Left', 'Top', 'Width', 'Height'].map(name => customers[name]);
  }, [schema, tables, columns]);
}

const focus = pane => page.locator(pane === 'sql' ? 'textarea.sql' : `#${pane} canvas`).focus();

const state = () => page.evaluate(() => {
  const {shadowRoot: root, query} = designer, active = root.activeElement, diagram = query.DiagramPane, grid = query.GridPane.Grid;
  const yes = flag => (flag ? 'yes' : 'no'), chosen = diagram.SelectedObject, table = String(chosen) === 'qbEntity' ? chosen : null;
  const entities = [...diagram.Entities], joins = entities.flatMap(entity => [...entity.Relationships]);
  const editor = root.querySelector('#grid .editor:not([hidden])'), list = root.querySelector('.list');
  const menu = root.querySelector('.menu'), open = root.querySelector('dialog[open]');
  const boxOf = (name, role) => {
    const node = [...root.querySelectorAll(`.access [role=${role}]`)].find(n => n.getAttribute('aria-label').startsWith(name));
    if (!node) return null;
    const canvas = node.closest('.pane').querySelector('canvas').getBoundingClientRect(), [x, y, w, h] = node.dataset.bounds.split(' ').map(Number);
    return new DOMRect(canvas.left + x, canvas.top + y, w, h);
  };
  const at = () => {
    const {left, top} = menu.getBoundingClientRect(), box = table && boxOf(table.Caption, 'listbox');
    if (box && left >= box.left && left <= box.right + 30 && top >= box.top && top <= box.bottom + 30) return 'table';
    const id = root.querySelector('#grid canvas').getAttribute('aria-activedescendant'), cell = id && root.getElementById(id);
    if (!grid.Row || !cell) return 'nothing';
    const canvas = root.querySelector('#grid canvas').getBoundingClientRect(), [x, y, , h] = cell.dataset.bounds.split(' ').map(Number);
    return Math.abs(left - canvas.left - x) < 3 && Math.abs(top - canvas.top - y - h) < 3 ? 'cell' : 'elsewhere';
  };
  const rows = [];
  for (let row = 1; row <= query.GridPane.RowCount; ++row) {
    const value = column => query.GridPane.get('Value', row, column);
    if (value('column')) rows.push(`${value('output') === true ? '' : '-'}${value('table')}.${value('column')}`);
  }
  const customers = entities.find(entity => entity.Caption === 'Customers'), by = customers && window.first
    ? ['Left', 'Top', 'Width', 'Height'].map((name, i) => Math.round((customers[name] - window.first[i]) / 15)) : [];
  const bars = [...root.querySelectorAll('#diagram .bar')], diagramAt = bars.map(bar => Math.round(bar.scrollLeft || bar.scrollTop));
  const itemOf = (entity, index) => `${entity.Caption}.${entity.Items.Item(index).Text}`;
  const nameOf = join => `${itemOf(join.Source, join.SourceItemIndex)}>${itemOf(join.Target, join.TargetItemIndex)}`;
  const all = {
    pane: ['diagram', 'grid', 'sql'].find(id => root.getElementById(id).contains(active)) ?? 'none',
    editing: yes(editor),
    selected: table ? table.Caption : chosen ? 'join' : '-',
    row: table?.SelectedItem ? table.SelectedItem.Text : '-',
    tables: entities.map(entity => entity.Caption).join(' '),
    joins: joins.length,
    kind: /(LEFT|RIGHT|FULL) /.test(designer.sql) ? 'not 0' : '0',
    moved: by.slice(0, 2).join(), sized: by.slice(2).join(),
    zoom: Math.round(diagram.Zoom * 100) / 100,
    scroll: yes(diagramAt.some(value => value > 0)),
    grid: rows.join(' '),
    cell: `${grid.Row},${grid.Column ? grid.Columns.Item(grid.Column).Key : ''}`,
    alias: query.GridPane.get('Value', 1, 'alias') ?? '',
    undo: query.UndoText, redo: query.RedoText,
    edited: yes(root.querySelector('textarea.sql').value.trim() !== query.SQLPane.SQLStatement.replaceAll('\r', '').trim()),
    menu: menu?.querySelector('[role^=menuitem] span').textContent.replace('…', '...'),
    at: menu ? at() : undefined,
    dialog: open?.querySelector('h2')?.textContent ?? (open ? 'message' : undefined),
    list: editor && list ? 'open' : 'closed',
    suggestions: !editor && list ? 'open' : 'closed',
  };
  const isChosen = entity => [...root.querySelectorAll('#diagram .access [role=listbox][aria-selected=true]')]
    .some(node => node.getAttribute('aria-label').split(',')[0] === entity.Caption);
  const selected = () => (chosen && !table ? 'a join' : entities.filter(entity => isChosen(entity) || String(entity.Caption) === table?.Caption)
    .map(entity => entity.Caption + (entity.SelectedItem ? `.${entity.SelectedItem.Text}` : '')).join(' + '));
  const gestures = {
    tables: entities.map(entity => entity.Caption).join(', '),
    joins: joins.map(nameOf).join(' '),
    selected: selected(),
    grid: all.grid, zoom: String(Math.round(diagram.Zoom * 100)), scrolled: [...diagramAt, 0, 0].slice(0, 2).join(),
  };
  for (const entity of entities) {
    for (const name of ['Left', 'Top', 'Width', 'Height']) gestures[`${entity.Caption} ${name.toLowerCase()}`] = Math.round(entity[name] / 15);
  }
  return {all, gestures};
});

// Where something stands in the window, by its role and name as assistive technology hears them.
async function place(role, name, number = 0) {
  await page.waitForTimeout(180);  // the tree follows what is painted
  const found = await page.evaluate(([role, name, number]) => {
    const fits = node => name === '' || node.getAttribute('aria-label').split(/[,:]/)[0] === name;
    const [box, item] = name.includes('.') ? name.split('.') : [name];
    const root = designer.shadowRoot, all = [...root.querySelectorAll(`#${role === 'gridcell' ? 'grid' : 'diagram'} .access [role=${item ? 'listbox' : role}]`)];
    let node = item ? all.find(n => n.getAttribute('aria-label').split(',')[0] === box) : all.filter(fits)[number];
    if (node && item) node = [...node.querySelectorAll('[role=option]')].find(n => n.getAttribute('aria-label').split(',')[0] === (item === '*' ? 'all columns' : item));
    if (!node) return null;
    const canvas = node.closest('.pane').querySelector('canvas').getBoundingClientRect(), [x, y, width, height] = node.dataset.bounds.split(' ').map(Number);
    return {x: canvas.left + x, y: canvas.top + y, width, height};
  }, [role, name, number]);
  assert.ok(found, `no ${role} "${name}"`);
  return found;
}
const middle = ({x, y, width, height}) => ({x: x + width / 2, y: y + height / 2});
const tickOf = ({x, y, height}) => ({x: x + 12, y: y + height / 2});
const canvasOf = id => page.locator(`#${id} canvas`).boundingBox();

async function dragTo(from, ...points) {
  await page.mouse.move(from.x, from.y);
  await page.mouse.down();
  for (const {x, y} of points) await page.mouse.move(x, y, {steps: 3});
  await page.mouse.up();
}

// --- Keys and tasks ---

async function send(key) {
  const [, what, rest] = /^(type|tick|menu|cell|line|drag|wheel|press|release):(.*)$/.exec(key) ?? [];
  const name = rest?.replaceAll('_', ' '), center = middle(await canvasOf('diagram'));
  if (!what) return page.keyboard.press(keyOf(key));
  if (what === 'type') return page.keyboard.type(name);
  if (what === 'press') return page.keyboard.down(rest);
  if (what === 'release') return page.keyboard.up(rest);
  if (what === 'wheel') {
    await page.mouse.move(center.x, center.y);
    await page.keyboard.down(keyOf(rest));
    await page.mouse.wheel(0, rest === 'Ctrl' ? -100 : 100);
    await page.keyboard.up(keyOf(rest));
  } else if (what === 'tick') {
    const at = tickOf(await place('option', name));
    await page.mouse.click(at.x, at.y);
  } else if (what === 'menu') {
    const at = middle(await place('option', name));
    await page.mouse.click(at.x, at.y, {button: 'right'});
  } else if (what === 'cell') {
    const [row, column] = rest.split('.'), canvas = await canvasOf('grid');
    await page.evaluate(([row, column]) => designer.query.GridPane.Grid.GotoRowCol(row, column), [+row, column]);
    await page.waitForTimeout(200);
    const box = await page.evaluate(() => {
      const root = designer.shadowRoot, node = root.getElementById(root.querySelector('#grid canvas').getAttribute('aria-activedescendant'));
      return node.dataset.bounds.split(' ').map(Number);
    });
    await page.mouse.click(canvas.x + box[0] + box[2] / 2, canvas.y + box[1] + box[3] / 2);
  } else if (what === 'line') {
    const at = middle(await place('img', ''));
    await page.mouse.dblclick(at.x, at.y);
  } else if (rest.startsWith('>')) {
    const [from, to] = await Promise.all(name.slice(1).split('>').map(one => place('option', one))).then(all => all.map(middle));
    await dragTo(from, {x: from.x + 12, y: from.y}, to);
  } else {
    const [x, y] = rest.split(',').map(Number);
    await dragTo(center, {x: center.x + x, y: center.y + y});
  }
}

async function play(keys) {
  let seen;
  for (const key of keys.split(/\s+/).filter(Boolean)) {
    if (key === '?') {
      await page.waitForTimeout(180);
      seen = (await state()).all;
    } else {
      await send(key);
    }
  }
  return seen ?? (await state()).all;
}

function expectState(wanted, seen) {
  for (const part of splitState(wanted)) {
    const [name, value] = [part.slice(0, part.indexOf('=')), part.slice(part.indexOf('=') + 1)];
    assert.equal(String(seen[name] ?? ''), value, name);
  }
}

const rowTest = (row, name, work) => {
  if (process.env.ONLY && !row.text.includes(process.env.ONLY)) return;
  const why = differences.find(([pattern]) => pattern.test(row.text))?.[1];
  test(`${row.place} ${name}`, {skip: why ?? false, timeout: 60000}, async () => {
    await work();
    assert.deepEqual(await page.evaluate(() => faults.splice(0)), []);
  });
};

describe('keys', () => {
  for (const row of read('keys.txt')) {
    const [pane, keys, wanted] = row.cells;
    rowTest(row, `${pane} ${keys}`, async () => {
      await begin(['Customers', 'Order', 'Order Lines'], [['Customers', 'City'], ['Order', 'OrderID']]);
      await focus(pane);
      expectState(wanted, await play(keys));
    });
  }
});

describe('tasks', () => {
  for (const row of read('tasks.txt')) {
    const [name, acts, , statement] = row.cells;
    rowTest(row, name, async () => {
      await begin([]);
      await focus('diagram');
      await play(acts.replace(/^\S+/, ''));
      const sql = await page.evaluate(() => designer.sql);
      assert.equal(sql.replaceAll('\r\n', ' ').replaceAll('\t', ''), statement);
    });
  }
});

// --- Gestures of the diagram ---

async function spot(text, pointer) {
  const canvas = await canvasOf('diagram');
  const given = /^(\+?)(-?\d+),(-?\d+)$/.exec(text);
  if (given) return {x: (given[1] ? pointer.x : canvas.x) + +given[2], y: (given[1] ? pointer.y : canvas.y) + +given[3]};
  if (text === 'empty') return {x: canvas.x + canvas.width - 20, y: canvas.y + canvas.height - 20};
  if (text.startsWith('line ')) return middle(await place('img', '', +text.slice(5) - 1));
  const [, table, edge, tick] = /^([\w ]+?(?:\.[\w* ]+)?)([-/>_]?)(!?)$/.exec(text);
  if (table.includes('.')) return (tick ? tickOf : middle)(await place('option', table));
  const {x, y, width, height} = await place('listbox', table);
  if (edge === '-') return {x: x + width - 16, y: y + 14};
  if (edge === '>') return {x: x + width - 1, y: y + height / 2};
  if (edge === '_') return {x: x + width / 2, y: y + height - 1};
  if (edge === '/') return {x: x + width - 1, y: y + height - 1};
  return {x: x + width / 2, y: y + 10};
}

// A mouse stays in the window where its driver holds it there.
const onScreen = ({x, y}) => (isFirefox ? {x: Math.min(Math.max(x, 0), 1279), y: Math.min(Math.max(y, 0), 899)} : {x, y});

// What is selected is told in the order of the tree.
const inOrder = text => String(text).split(' + ').sort().join(' + ');

async function choose(path, pointer) {
  await page.mouse.click(pointer.x, pointer.y, {button: 'right'});
  for (const name of path.split(' > ')) {
    const entry = page.locator('.menu').last().locator('[role^=menuitem]').filter({has: page.locator('span', {hasText: new RegExp(`^${name}`)})}).first();
    await entry.evaluate(node => node.focus());
    await page.keyboard.press('Enter');
  }
}

async function gesture(step, pointer) {
  const [, what, given] = /^(\w+) ?(.*)$/.exec(step), [, held, rest] = /^((?:(?:Ctrl|Shift|Alt)\+)*)(.*)$/.exec(given);
  const modifiers = held.split('+').filter(Boolean).map(keyOf), button = what.startsWith('mid') ? 'middle' : 'left';
  if (what === 'picture') return pointer;
  if (what === 'type') await page.keyboard.type(rest);
  else if (what === 'wait') await page.waitForTimeout(300);
  else if (what === 'key') await page.keyboard.press(keyOf(given));
  else if (what === 'hold') await page.keyboard.down(keyOf(given));
  else if (what === 'let') await page.keyboard.up(keyOf(given));
  else if (what === 'choose') await choose(given, pointer);
  else {
    const [, turns, where] = what === 'wheel' ? /^(-?\d+) (.*)$/.exec(rest) : [, 0, rest];
    if (where) pointer = onScreen(await spot(where, pointer));
    if (where) await page.mouse.move(pointer.x, pointer.y, {steps: what === 'move' ? 2 : 1});
    for (const key of modifiers) await page.keyboard.down(key);
    if (what === 'wheel') await page.mouse.wheel(0, 100 * turns);
    if (what.endsWith('press')) await page.mouse.down({button});
    if (what.endsWith('release')) await page.mouse.up({button});
    if (what === 'click') await page.mouse.click(pointer.x, pointer.y);
    if (what === 'double') await page.mouse.dblclick(pointer.x, pointer.y);
    for (const key of modifiers) await page.keyboard.up(key);
  }
  return pointer;
}

describe('gestures', () => {
  for (const row of read('diagram_gestures.txt')) {
    const [name, steps, wanted] = row.cells;
    rowTest(row, name, async () => {
      await begin(['Customers', 'Order', 'Order Lines']);
      await focus('diagram');
      // While a button is held the tree waits.
      await page.waitForFunction(() => designer.shadowRoot.querySelectorAll('#diagram .access [role=listbox]').length === designer.query.DiagramPane.Entities.Count);
      const before = (await state()).gestures;
      let pointer = {x: 0, y: 0};
      for (const step of splitState(steps)) pointer = await gesture(step, pointer);
      await page.mouse.up();
      await page.waitForTimeout(180);  // what is selected is told behind what is painted
      const {gestures: seen} = await state();
      for (const part of splitState(wanted)) {
        const [, what, more, value] = /^([^=+]+)(\+?)=(.*)$/.exec(part);
        const is = seen[what] ?? '', meant = more ? before[what] + +value : value;
        if (what.endsWith('height')) assert.ok(Math.abs(is - meant) <= (isFirefox ? 3 : 1), `${part}: ${is}`);  // fonts differ
        else assert.equal(inOrder(is), inOrder(meant), part);
      }
    });
  }
});
