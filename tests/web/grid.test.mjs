// The grid's table that the windows of the desktop play (tests/data/grid_gestures.txt), played in a page by real keys and a
// real mouse: one list, two drivers. What is other in a page stands in `differences`, with its reason, and is left out; the
// rest of such a scenario is played all the same.
//
//   ONLY=combo node --test tests/web/grid.test.mjs    ONLY: scenarios whose title holds this; BROWSER=firefox: in Firefox
import assert from 'node:assert/strict';
import {readFileSync} from 'node:fs';
import {join} from 'node:path';
import {after, before, describe, test} from 'node:test';
import {isFirefox, keyOf, launchBrowser, openPage, root, servePages} from './browser.mjs';

// By what is done, or by what is asked.
const differences = {
  actions: [
    [/^picture /, 'pictures of a page have their own test'],
    [/^(over|away) /, 'a browser lets no program drag from outside: a text is dropped by an event that the test makes'],
    ...isFirefox ? [[/^key Menu/, 'its driver has no such key'], [/^dclick /, 'its driver tells each press as the first of a click']] : [],
  ],
  // From here to the end of the scenario, which builds upon it.
  rest: isFirefox ? [[/^clipboard /, 'its driver does not hand it the clipboard']] : [],
  answers: [
    [/^cursor$/, 'a cursor is a style here; its own test looks at it'],
    [/^bar$/, 'where a text would go in is only drawn'],
    [/^selection$/, 'which rows are selected is no member by name; what the keys then do with them is looked at'],
    [/^hint:|^editor$/, 'neither hints nor that a cell is edited without a text to type into are members by name'],
  ],
};
// That rows were moved is no event by name: it is left out of what is expected, and the rows themselves are looked at.
const told = text => text.replace(/M\d+,\d+,\d+ ?/, '').trim();
const differs = (list, text) => list.some(([pattern]) => pattern.test(text));

// A row "--- title" begins a scenario.
function scenarios() {
  const found = [];
  readFileSync(join(root, 'tests/data/grid_gestures.txt'), 'utf8').split('\n').forEach((text, i) => {
    if (!text.trim() || text.startsWith('#')) return;
    if (text.startsWith('---')) return found.push({title: text.slice(3).trim(), steps: []});
    const [act, ...checks] = text.split('|').map(cell => cell.trim());
    found.at(-1).steps.push({place: `grid_gestures.txt:${i + 1} ${act}`, act, checks});
  });
  return found;
}

let browser, server, page;

before(async () => {
  server = await servePages();
  browser = await launchBrowser();
  page = await openPage(browser, server, {viewport: {width: 1000, height: 800}});
});
after(async () => {
  await browser?.close();
  server?.close();
});

// A designer of its own for each scenario, whose grid is as large as the desktop's, and something else for the keyboard.
async function begin() {
  await page.evaluate(async () => {
    const other = Object.assign(document.createElement('input'), {id: 'other'});
    document.body.replaceChildren(window.designer = document.createElement('zr-query-designer'), other);
    designer.style.height = '740px';
    await designer.ready;
    designer.connection = {
      tables: [
        {name: 'Customers', columns: ['CustomerID', 'Name'].map(name => ({name, type: 'integer'}))},
        {name: 'Orders', columns: ['OrderID', 'CustomerID', 'Total'].map(name => ({name, type: 'integer', primaryKey: name === 'OrderID'}))},
      ],
    };
    await designer.connected;
    const {query} = designer, pane = query.GridPane, {Grid} = pane;
    pane.ShowGroupBy = false;
    Grid.Columns.Item('column').Width = 1500;  // the element begins with a wider one
    for (const table of ['Orders', 'Customers']) query.AddTable(table);
    window.log = [];
    window.links = [];
    window.statements = 0;
    const notes = (sign, of, name) => links.push(of.on(name, (row, column) => { log.push(`${sign}${row},${column}`); }));
    notes('r', Grid, 'RowColChange');
    notes('e', Grid, 'BeforeEdit');
    notes('a', Grid, 'AfterEdit');
    notes('c', pane, 'AfterChange');
    notes('m', Grid, 'ShowContextMenu');
    notes('D', Grid, 'AfterDelete');
    notes('I', Grid, 'AfterInsert');
    notes('d', Grid, 'BeforeDropDown');
    Grid.on('DblClick', () => { log.push('x'); });
    Grid.on('MouseUp', () => { log.push('u'); });
    query.SQLPane.on('SQLChanged', () => { ++window.statements; });
  });
  await page.locator('#grid canvas').focus();
}

// Where the grid's parts stand in the window; the tree of assistive technology follows what is painted.
async function parts() {
  await page.waitForTimeout(180);
  return page.evaluate(() => {
    const {left, top} = designer.shadowRoot.querySelector('#grid canvas').getBoundingClientRect();
    const all = role => [...designer.shadowRoot.querySelectorAll(`#grid .access [role=${role}]`)].map(node => {
      const [x, y, width, height] = node.dataset.bounds.split(' ').map(Number);
      return [node.getAttribute('aria-label'), {x: left + x, y: top + y, width, height}];
    });
    return {left, top, columns: all('columnheader'), rows: all('rowheader').map(([name, box]) => [Number(/\d+/.exec(name)), box])};
  });
}
async function cellBox(row, key) {
  const {columns, rows} = await parts();
  const caption = await page.evaluate(key => designer.query.GridPane.Grid.Columns.Item(key).Caption, key);
  const across = columns.find(([name]) => name === caption)?.[1], down = rows.find(([number]) => number === +row)?.[1];
  assert.ok(across && down, `the cell ${row} ${key} (${caption}) is not there`);
  return {x: across.x, y: down.y, width: across.width, height: down.height};
}
const middle = ({x, y, width, height}) => ({x: x + width / 2, y: y + height / 2});
const rowHeader = async row => {
  const {left} = await parts(), {y} = middle(await cellBox(row, 'column'));
  return {x: left + 8, y};
};
const currentBox = async () => cellBox(...await page.evaluate(() => {
  const {Grid} = designer.query.GridPane;
  return [Grid.Row, Grid.Columns.Item(Grid.Column).Key];
}));

async function drag(from, to) {
  await page.mouse.move(from.x, from.y);
  await page.mouse.down();
  await page.mouse.move(Math.max(to.x, 0), to.y, {steps: 4});  // a driver may hold the mouse in the window
  await page.mouse.up();
}
const dropped = (kind, row, text) => cellBox(row, 'alias').then(box => page.evaluate(([kind, {x, y}, text]) => {
  const dataTransfer = new DataTransfer(), canvas = designer.shadowRoot.querySelector('#grid canvas');
  dataTransfer.setData('text/plain', text);
  canvas.dispatchEvent(new DragEvent(kind, {dataTransfer, clientX: x, clientY: y, bubbles: true, cancelable: true}));
}, [kind, middle(box), text]));
const set = (what, value) => page.evaluate(([what, value]) => {
  const [of, name] = what.split('.');
  (of === 'grid' ? designer.query.GridPane.Grid : designer.query.GridPane)[name] = value;
}, [what, value]);

const actions = {
  click: async (row, key) => { const at = middle(await cellBox(row, key)); await page.mouse.click(at.x, at.y); },
  rclick: async (row, key) => { const at = middle(await cellBox(row, key)); await page.mouse.click(at.x, at.y, {button: 'right'}); },
  dclick: async (row, key) => { const at = middle(await cellBox(row, key)); await page.mouse.dblclick(at.x, at.y); },
  header: async (row, held) => {
    const at = await rowHeader(row);
    if (held) await page.keyboard.down(held);
    await page.mouse.click(at.x, at.y);
    if (held) await page.keyboard.up(held);
  },
  drag: async (from, to) => drag(await rowHeader(from), await rowHeader(to)),
  edge: async (key, by) => {
    const edge = async () => { const box = await cellBox(1, key), {top} = await parts(); return {x: box.x + box.width - 2, y: top + 8}; };
    const from = await edge();
    if (+by) await drag(from, {x: from.x + +by, y: from.y});
    const to = await edge();
    await page.mouse.move(to.x, to.y);
  },
  allbox: async () => { const box = await cellBox(1, 'output'), {top} = await parts(); await page.mouse.click(box.x + 12, top + 12); },
  button: async () => {
    const box = await currentBox(), editor = await page.locator('#grid .editor:not([hidden])').boundingBox({timeout: 300}).catch(() => null);
    await page.mouse.click(Math.max(box.x + box.width - 8, editor ? editor.x + editor.width + 12 : 0), middle(box).y);
  },
  keys: async text => { for (const key of text) await page.keyboard.type(key); },
  key: name => page.keyboard.press(keyOf(name)),
  pick: async text => page.locator('.list [role=option]').filter({hasText: text}).click(),
  leave: () => page.locator('#other').focus(),
  drop: (row, text) => dropped('drop', row, text),
  wheel: async turns => {
    const canvas = await page.locator('#grid canvas').boundingBox(), {x, y} = middle(canvas);
    await page.mouse.move(x, y);
    await page.mouse.wheel(0, 100 * turns);
  },
  more: count => page.evaluate(count => { for (; count > 0; --count) designer.query.GridPane.Grid.Rows.Add(); }, +count),
  tick: of => page.evaluate(([table, column]) => { designer.query.DiagramPane.Entities.Item(table).Items.Item(column).Checked = true; }, of.split('.')),
  clipboard: text => page.evaluate(text => navigator.clipboard.writeText(text), text.replaceAll('\\t', '\t').replaceAll('\\n', '\n')),
  lock: () => set('pane.LockTables', true),
  norows: () => set('grid.AllowRowInsert', false),
  nosize: () => set('grid.AllowColumnResize', false),
  custom: () => set('pane.CustomContextMenu', true),
  refuse: () => page.evaluate(() => {
    links.push(designer.query.GridPane.Grid.on('BeforeDropDown', (...given) => given.at(-1)(2, true)));
  }),
};

async function answers() {
  await page.waitForTimeout(60);
  return page.evaluate(() => {
    const {shadowRoot: shadow, query} = designer, pane = query.GridPane, {Grid} = pane, value = (row, key) => String(pane.get('Value', row, key) ?? '');
    const editor = shadow.querySelector('#grid .editor:not([hidden])'), active = shadow.activeElement, list = shadow.querySelector('.list');
    const text = node => [...node.childNodes].filter(child => child.nodeName !== 'SMALL').map(child => child.textContent).join('').trim();
    const rows = [], ticked = [];
    for (let row = 1; row <= pane.RowCount; ++row) {
      if (!value(row, 'table') && !value(row, 'column')) continue;
      rows.push(`${pane.get('Value', row, 'output') === true ? '' : '-'}${value(row, 'table')}.${value(row, 'column')}${value(row, 'sort_order') && ':'}${value(row, 'sort_order')}`);
    }
    for (const entity of query.DiagramPane.Entities) {
      for (const item of entity.Items) if (item.Checked) ticked.push(`${entity.Caption}.${item.Text}`);
    }
    const bar = shadow.querySelector('#grid .bar.vertical');
    const at = box => { const {left, top, right, bottom} = box.getBoundingClientRect(); return {left, top, right, bottom}; };
    return {
      log: log.join(' '), rows: rows.join(' '), ticked: ticked.join(' '), changes: String(statements),
      sql: query.SQLPane.SQLStatement.replaceAll('\r\n', '').replaceAll('\t', ''), count: String(pane.RowCount), current: `${Grid.Row},${Grid.Column}`,
      menu: shadow.querySelector('.menu [role^=menuitem] span')?.textContent ?? '',
      focus: !shadow.getElementById('grid').contains(active) ? 'other' : editor && active === editor ? 'text' : 'grid',
      text: editor ? editor.value : 'no editor',
      selected: editor ? editor.value.slice(editor.selectionStart, editor.selectionEnd) : 'no editor',
      top: bar.scrollTop > 0 ? '1' : '0', popup: list ? [...list.children].map(text).join(' ') : '',
      highlighted: list?.querySelector('.on') ? text(list.querySelector('.on')) : '',
      messages: shadow.querySelector('dialog.message p')?.textContent ?? '',
      boxes: {editor: editor && at(editor), list: list && at(list)},
    };
  });
}
const ofCell = (name, row, key) => page.evaluate(([name, row, key]) => {
  const pane = designer.query.GridPane;
  return String((name === 'cell' ? pane.get('Value', row, key) : pane.Grid.Columns.Item(key).Width) ?? '');
}, [name, row, key]);

async function answer(question, seen) {
  const [name, of = ''] = question.split(':'), [row, key] = of.split(' ');
  if (name === 'cell') return ofCell(name, +row, key);
  if (name === 'width') return ofCell(name, 0, of);
  if (name !== 'incell' && name !== 'covers') return seen[name];
  const {editor, list} = seen.boxes, box = await currentBox().catch(() => null);  // none when it is scrolled away
  const inside = box && editor && editor.top >= box.y && editor.top < box.y + 4 && editor.left >= box.x;
  if (name === 'incell') return inside ? 'yes' : 'no';
  if (!list) return 'no list';
  return list.left < box.x + box.width - 3 && list.right > box.x + 3 && list.top < box.y + box.height - 3 && list.bottom > box.y + 3 ? 'yes' : 'no';
}

async function play({place, act, checks}) {
  await page.evaluate(() => { log.length = 0; window.statements = 0; designer.shadowRoot.querySelector('dialog.message[open] button')?.click(); });
  for (const step of act.split('; ')) {
    const [what, ...given] = step.split(' ').map(word => word.replaceAll('~', ' '));
    assert.ok(actions[what], `${place}: nobody knows ${what}`);
    await actions[what](...what === 'clipboard' ? [given.join(' ')] : given);
  }
  if (!checks.length) return;
  const seen = await answers();
  for (const check of checks) {
    const question = check.slice(0, check.indexOf('='));
    if (!differs(differences.answers, question)) {
      const meant = check.slice(check.indexOf('=') + 1);
      assert.equal(await answer(question, seen), question === 'log' ? told(meant) : meant, `${place} | ${question}`);
    };
  }
}

describe('the grid', () => {
  for (const {title, steps} of scenarios()) {
    if (process.env.ONLY && !title.includes(process.env.ONLY)) continue;
    const end = steps.findIndex(step => differs(differences.rest, step.act));
    const played = steps.slice(0, end < 0 ? steps.length : end).filter(step => !differs(differences.actions, step.act));
    const skip = !played.some(step => step.checks.length > 0) && 'nothing is asked in it';
    test(title, {skip, timeout: 120000}, async () => {
      await begin();
      for (const step of played) await play(step);
      assert.deepEqual(await page.evaluate(() => faults.splice(0)), []);
    });
  }
});
