// The designer in a real browser: what a person does with mouse, keys and fingers, and what a page does to the element.
//
//   node --test tests/web    PACKAGE: the package for npm, MODULES: a folder with playwright-core; PICTURES: where to keep some
import assert from 'node:assert/strict';
import {execFile} from 'node:child_process';
import {mkdir, mkdtemp, rm, symlink, writeFile} from 'node:fs/promises';
import {tmpdir} from 'node:os';
import {join} from 'node:path';
import {after, before, describe, test} from 'node:test';
import {pathToFileURL} from 'node:url';
import {promisify} from 'node:util';
import {folder, isFirefox, launchBrowser, openPage, servePages} from './browser.mjs';

let browser, page, server;

const sql = () => page.evaluate(() => designer.sql.replace(/\s+/g, ' ').trim());
const inPage = work => page.evaluate(work);
const picture = async name => { if (process.env.PICTURES) await page.screenshot({path: join(process.env.PICTURES, `${name}.png`)}); };

// Where an object stands, by its role and name as assistive technology hears them.
async function place(role, name, at = 0.5) {
  await page.waitForTimeout(200);  // the tree follows what is painted
  const found = await page.evaluate(([role, name]) => {
    for (const node of designer.shadowRoot.querySelectorAll(`.access [role=${role}]`)) {
      if (!node.getAttribute('aria-label').startsWith(name)) continue;
      const canvas = node.closest('.pane').querySelector('canvas').getBoundingClientRect();
      const [left, top, width, height] = node.dataset.bounds.split(' ').map(Number);
      return {x: canvas.left + left, y: canvas.top + top, width, height};
    }
    return null;
  }, [role, name]);
  assert.ok(found, `no ${role} "${name}"`);
  return {x: found.x + found.width * at, y: found.y + found.height / 2, ...{width: found.width}};
}

async function drag(from, to) {
  await page.mouse.move(from.x, from.y);
  await page.mouse.down();
  for (let i = 1; i <= 8; ++i) await page.mouse.move(from.x + (to.x - from.x) * i / 8, from.y + (to.y - from.y) * i / 8);
  await page.mouse.up();
}

async function twoTables() {
  await inPage(() => { query().AddTable('Customers'); query().AddTable('Orders'); });
}

before(async () => {
  server = await servePages();
  browser = await launchBrowser();
});
after(async () => {
  await browser?.close();
  server.close();
});

// Each test begins with a page of its own and ends without a fault that the page has seen.
function inBrowser(name, work, options) {
  test(name, {skip: isFirefox && options?.hasTouch && 'its driver has no fingers'}, async () => {
    page = await openPage(browser, server, options);
    try {
      await work();
      assert.deepEqual(await inPage(() => faults), []);
    } finally {
      await page.context().close();
    }
  });
}

describe('a person', () => {
  inBrowser('ticks, joins and drags with the mouse, and takes it back', async () => {
    await twoTables();
    const name = await place('option', 'Name', 0.05);
    await page.mouse.click(name.x, name.y);
    assert.equal(await sql(), 'SELECT Customers.Name FROM Customers, Orders');
    await drag(await place('option', 'CustomerID'), await place('option', 'Buyer'));
    assert.match(await sql(), /JOIN Orders ON Orders.Buyer = Customers.CustomerID/);
    const total = await place('option', 'Total');
    const canvas = await page.locator('#grid canvas').boundingBox();
    await drag(total, {x: canvas.x + 150, y: canvas.y + 60});
    assert.match(await sql(), /^SELECT Customers.Name, Orders.Total FROM/);
    await picture('designed');
    await page.keyboard.press('Control+z');
    assert.match(await sql(), /^SELECT Customers.Name FROM .*JOIN/);
    await page.locator('.tools button', {hasText: 'Undo'}).click();
    assert.doesNotMatch(await sql(), /JOIN/);
    await page.locator('.tools button', {hasText: 'Redo'}).click();
    assert.match(await sql(), /JOIN/);
  });

  inBrowser('ticks by keys, edits a cell, and takes from its list', async () => {
    await twoTables();
    await page.locator('#diagram canvas').focus();
    await page.keyboard.press('Tab');
    await page.keyboard.press('Enter');
    for (const key of ['ArrowDown', 'ArrowDown', 'Space']) await page.keyboard.press(key);
    assert.match(await sql(), /^SELECT \w+\.\w+ FROM/);
    const canvas = await page.locator('#grid canvas').boundingBox();
    const criteria = await page.evaluate(() => { query().GridPane.Grid.GotoRowCol(1, 'criteria'); return true; });
    assert.ok(criteria && canvas);
    await page.locator('#grid canvas').focus();
    await page.keyboard.type('> 5');
    assert.equal(await page.locator('#grid .editor:not([hidden])').inputValue(), '> 5');
    await page.keyboard.press('Enter');
    assert.match(await sql(), /WHERE .* > '?5'?/);
    await page.keyboard.press('F6');
    assert.equal(await inPage(() => designer.shadowRoot.activeElement.className), 'sql');
  });

  inBrowser('types a statement, which is read; a fault is marked where it stands', async () => {
    const text = page.locator('textarea.sql');
    await text.fill('SELECT Name FROM Customers WHERE CustomerID > 3');
    await page.keyboard.press('Control+Enter');
    assert.match(await sql(), /^SELECT Customers.Name FROM Customers WHERE/);
    assert.equal(await inPage(() => query().DiagramPane.Entities.Count), 1);
    assert.ok(await page.locator('.colors .role-keyword').count() >= 3);
    await text.fill('SELECT Name FRM Customers');
    await page.keyboard.press('Control+Enter');
    assert.ok(await page.locator('.colors .fault').count() === 1);
    assert.ok((await page.locator('.remarks').innerText()).length > 10);
    await picture('fault');
  });

  inBrowser('is offered what fits while typing a statement', async () => {
    await twoTables();
    await page.locator('textarea.sql').fill('SELECT Orders.');
    await page.keyboard.press('Control+Space');
    await page.locator('.list li', {hasText: 'Total'}).click();
    assert.match(await page.locator('textarea.sql').inputValue(), /Orders\.Total$/);
  });

  inBrowser('sees which brackets belong together beside the caret', async () => {
    const text = page.locator('textarea.sql');
    const rows = [  // | is the caret, no part of the text
      ['SELECT |(1 + (2))', '7 15'], ['SELECT (1 + (2))|', '15 7'], ['SELECT (1 + (2|))', '14 12'], ['SELECT |(1', '7 alone'],
      ["SELECT '|('", ''], ['SELECT 1 /* |( */', ''], ['SELECT "a|(" + (1)', ''], ['SELECT (1\n + 2|)', '14 7'], ['SELECT ("ä😀"|)', '13 7'], ['SELECT |1', ''],
    ];
    for (const [row, wanted] of rows) {
      await text.fill(row.replace('|', ''));
      const seen = await page.evaluate(async at => {
        const root = designer.shadowRoot, area = root.querySelector('textarea.sql');
        area.setSelectionRange(at, at);
        await new Promise(done => setTimeout(done, 60));
        const marks = [...root.querySelectorAll('.colors .bracket')].map(mark => {
          const before = document.createRange();
          before.selectNodeContents(root.querySelector('.colors'));
          before.setEndBefore(mark);
          return `${before.toString().length}${mark.classList.contains('alone') ? ' alone' : ''}`;
        });
        return {marks, text: root.querySelector('.colors').textContent === area.value + '\n'};
      }, row.indexOf('|'));
      assert.deepEqual(seen, {marks: wanted === '' ? [] : wanted.includes('alone') ? [wanted] : wanted.split(' ').sort((a, b) => a - b), text: true}, row);
    }
    await picture('brackets');
    await text.fill('SELECT (1)');
    assert.equal(await page.locator('.colors .bracket').count(), 2);
    await page.locator('#grid canvas').focus();
    assert.equal(await page.locator('.colors .bracket').count(), 0);
  });

  inBrowser('walks menus and windows by keys alone', async () => {
    await twoTables();
    const box = await place('listbox', 'Orders');
    await page.mouse.click(box.x, box.y);
    await page.keyboard.press('Shift+F10');
    await page.waitForSelector('.menu [role=menuitem]');
    await picture('menu');
    await page.keyboard.press('Escape');
    assert.equal(await page.locator('.menu').count(), 0);
    await page.keyboard.press('F2');
    await page.waitForSelector('dialog[open] input');
    await page.keyboard.type('Customers');  // taken
    await page.keyboard.press('Enter');
    assert.equal(await page.locator('dialog .problem:not([hidden])').count(), 1);
    await page.keyboard.press('Control+a');
    await page.keyboard.type('o & p');
    await page.keyboard.press('Enter');
    assert.deepEqual(await page.locator('dialog').allInnerTexts(), []);
    assert.equal(await inPage(() => query().DiagramPane.Entities.Item(2).Caption), 'o & p');
  });

  inBrowser('adds tables from a window, and sees names as they are', async () => {
    await page.locator('.tools button').first().click();
    await page.locator('dialog option', {hasText: '<img'}).click();
    await picture('tables');
    await page.keyboard.press('Enter');
    await page.keyboard.press('Escape');
    assert.equal(await inPage(() => query().DiagramPane.Entities.Count), 1);
    const row = await place('option', '<b>a</b>', 0.05);
    await page.mouse.click(row.x, row.y);
    assert.match(await sql(), /"<b>a<\/b>"/);
    assert.equal(await inPage(() => window.hacked ?? designer.shadowRoot.querySelectorAll('img, b').length), 0);
  });

  inBrowser('edits a join in its window', async () => {
    await inPage(() => {
      query().AllowJoinProperties = true;
      designer.sql = 'SELECT Customers.Name FROM Customers INNER JOIN Orders ON Customers.CustomerID = Orders.Buyer';
      query().ShowJoinProperties(query().DiagramPane.Entities.Item('Customers').Relationships.Item(1));
    });
    await page.waitForSelector('dialog.join');
    await picture('join');
    await page.locator('dialog.join input[type=checkbox]').first().check();
    await page.locator('dialog.join button.main').click();
    assert.match(await sql(), /(LEFT|RIGHT) (OUTER )?JOIN/);
    assert.equal(await inPage(() => query().UndoText), 'Edit join');
  });

  inBrowser('is offered what fits in windows, and shown what does not', async () => {
    await twoTables();
    await inPage(() => query().GridPane.Grid.GotoRowCol(1, 'column'));
    await page.locator('#grid canvas').focus();
    await page.keyboard.press('Control+F2');
    const text = page.locator('dialog.expression textarea.sql');
    await text.pressSequentially('1 + ');
    assert.equal(await page.locator('dialog .fault').count(), 1);
    assert.ok((await page.locator('dialog .remarks').innerText()).length > 10);
    await text.pressSequentially('Orders.');
    await page.locator('dialog .list li', {hasText: 'Total'}).waitFor();
    await picture('expression');
    const [below, written] = [await page.locator('dialog .list').boundingBox(), await text.boundingBox()];
    assert.ok(below.x > written.x + 40 && below.y > written.y + 15 && below.y < written.y + 60, JSON.stringify(below));
    await page.locator('dialog .list li', {hasText: 'Total'}).click();
    assert.equal(await page.locator('dialog .fault, dialog .remarks:not([hidden])').count(), 0);
    await page.keyboard.press('Control+Enter');
    assert.match(await sql(), /1 \+ Orders.Total/);
    await inPage(() => {
      query().AllowJoinProperties = true;
      designer.sql = 'SELECT Customers.Name FROM Customers INNER JOIN Orders ON Customers.CustomerID = Orders.Buyer';
      query().ShowJoinProperties(query().DiagramPane.Entities.Item('Customers').Relationships.Item(1));
    });
    await page.locator('dialog.join textarea.sql').pressSequentially('Orders.To');
    await picture('condition');
    await page.locator('dialog .list li', {hasText: 'Total'}).click();
    await page.keyboard.type(' > 5');
    await page.keyboard.press('Enter');
    assert.match(await sql(), /AND \(?Orders.Total > 5/);
  });

  inBrowser('builds an expression of pieces', async () => {
    await twoTables();
    await inPage(() => query().GridPane.Grid.GotoRowCol(1, 'column'));
    await page.locator('#grid canvas').focus();
    await page.keyboard.press('Control+F2');
    const box = page.locator('dialog.expression'), list = box.locator('select'), find = box.locator('input[type=search]');
    const text = box.locator('textarea.sql'), insert = box.locator('.pieces button'), values = box.locator('.values input');
    await text.fill('');
    assert.ok(await list.locator('optgroup').count() > 4);
    assert.ok(await insert.isDisabled());
    assert.equal(await list.getAttribute('aria-label'), 'Pieces');
    await find.fill('no such piece');
    assert.equal(await list.locator('option').count(), 0);
    assert.ok(await insert.isDisabled());
    await find.fill('coalesce');
    await picture('pieces');
    const values1 = await values.count();
    assert.ok(values1 > 0, 'its parameters');
    await values.first().fill('Orders.Total');
    await find.focus();
    await page.keyboard.press('Enter');
    assert.match(await text.inputValue(), /^COALESCE ?\(Orders\.Total/i);
    assert.ok(await text.evaluate(area => document.activeElement && area.selectionEnd > area.selectionStart), 'the next parameter');
    await page.keyboard.type('0');
    await text.evaluate(area => area.setSelectionRange(area.value.length, area.value.length));
    await find.fill('orders total');
    await find.press('ArrowDown');
    await page.keyboard.press('Enter');
    assert.match(await text.inputValue(), /\) Orders\.Total$/i);
    await page.keyboard.press('Control+z');
    assert.match(await text.inputValue(), /\)$/);
    await text.focus();
    await page.keyboard.press('Control+Enter');
    assert.match(await sql(), /COALESCE ?\(Orders\.Total/i);
    await inPage(() => query().GridPane.Grid.GotoRowCol(1, 'column'));
    await page.locator('#grid canvas').focus();
    await page.keyboard.press('Shift+F2');  // the zoom has no pieces
    assert.equal(await box.locator('.pieces').count(), 0);
    await page.keyboard.press('Escape');
  });

  inBrowser('copies and pastes rows of the grid', async () => {
    await twoTables();
    await inPage(() => { designer.sql = 'SELECT Orders.Total FROM Orders'; });
    await page.evaluate(() => navigator.clipboard.writeText('Buyer\tOrders'));
    await inPage(() => query().GridPane.Grid.GotoRowCol(2, 'column'));
    await page.locator('#grid canvas').focus();
    await page.keyboard.press('Escape');
    await page.keyboard.press('Control+v');
    await page.waitForTimeout(100);
    assert.match(await sql(), /Orders.Buyer/);
  });
});

describe('fingers', () => {
  inBrowser('tap a column, and hold it for its menu', async () => {
    await twoTables();
    const name = await place('option', 'Name', 0.05);
    await page.touchscreen.tap(name.x, name.y);
    assert.match(await sql(), /^SELECT Customers.Name/);
    await page.waitForTimeout(600);  // not the first of two
    for (const ticked of [false, true]) {
      await page.touchscreen.tap(name.x, name.y);
      assert.equal((await sql()).includes('Customers.Name'), ticked, 'a quick second tap is one, too');
    }
    const client = await page.context().newCDPSession(page), at = await place('option', 'CustomerID');
    await client.send('Input.dispatchTouchEvent', {type: 'touchStart', touchPoints: [{x: at.x, y: at.y}]});
    await page.waitForTimeout(800);
    await client.send('Input.dispatchTouchEvent', {type: 'touchEnd', touchPoints: []});
    await page.waitForSelector('.menu [role^=menuitem]');
  }, {hasTouch: true});
});

describe('fingers that move', () => {
  const touch = async (...moments) => {
    const client = await page.context().newCDPSession(page);
    const send = (type, points) => client.send('Input.dispatchTouchEvent', {type, touchPoints: points.map(({x, y}, id) => ({x, y, id}))});
    await send('touchStart', moments[0]);
    for (const points of moments.slice(1)) await send('touchMove', points);
    await send('touchEnd', []);
  };
  const between = (from, to) => Array.from({length: 9}, (_, i) => [{x: from.x + (to.x - from.x) * i / 8, y: from.y + (to.y - from.y) * i / 8}]);

  inBrowser('move a box, draw a join, and zoom by two', async () => {
    await twoTables();
    const title = async () => { const {x, y} = await place('listbox', 'Orders'); return {x, y: y - 40}; };
    const left = () => inPage(() => [query().DiagramPane.Entities.Item('Orders').Left, query().DiagramPane.Entities.Item('Orders').Top]);
    const [before, from] = [await left(), await title()];
    await touch(...between(from, {x: from.x + 60, y: from.y + 30}));
    const after = await left();
    assert.deepEqual(after.map((v, i) => Math.round((v - before[i]) / 15)), [60, 30]);
    await touch(...between(await place('option', 'CustomerID'), await place('option', 'Buyer')));
    assert.match(await sql(), /JOIN Orders ON Orders.Buyer = Customers.CustomerID/);
    const zoom = () => inPage(() => query().DiagramPane.Zoom), first = await zoom();
    const canvas = await page.locator('#diagram canvas').boundingBox(), at = {x: canvas.x + 500, y: canvas.y + 120};
    const pinch = (a, b) => touch(...Array.from({length: 9}, (_, i) => a + (b - a) * i / 8).map(by => [{x: at.x - by, y: at.y}, {x: at.x + by, y: at.y}]));
    await pinch(30, 120);
    const large = await zoom();
    assert.ok(large > first * 1.2, `${first} ${large}`);
    await pinch(120, 30);
    assert.ok(await zoom() < large / 1.2, String(await zoom()));
    assert.deepEqual((await left()).map(Math.round), after.map(Math.round), 'two fingers move no box');
  }, {hasTouch: true});
});

describe('the screen', () => {
  for (const [name, options] of [['dark', {colorScheme: 'dark'}], ['forced', {forcedColors: 'active'}],
    ['forced over dark', {forcedColors: 'active', colorScheme: 'dark'}], ['twice', {deviceScaleFactor: 2}]]) {
    inBrowser(`is painted for ${name}`, async () => {
      await twoTables();
      await page.waitForTimeout(200);
      const seen = await inPage(() => {
        const canvas = designer.shadowRoot.querySelector('#diagram canvas'), box = canvas.getBoundingClientRect();
        const [r, g, b] = canvas.getContext('2d').getImageData(4, 4, 1, 1).data;
        return {scale: canvas.width / box.width, light: (r + g + b) / 3, dark: matchMedia('(prefers-color-scheme: dark)').matches,
          forced: matchMedia('(forced-colors: active)').matches, key: getComputedStyle(designer).getPropertyValue('--role-key-icon').trim()};
      });
      const forced = name.startsWith('forced');
      assert.deepEqual([seen.dark && !seen.forced, seen.forced], [name === 'dark', forced]);
      assert.equal(seen.key === 'CanvasText', forced, seen.key);
      assert.equal(Math.round(seen.scale), options.deviceScaleFactor ?? 1);
      if (!forced) assert.equal(seen.light < 80, name === 'dark', JSON.stringify(seen));  // otherwise the system says
      await picture(name);
    }, options);
  }

  inBrowser('is a mirror from right to left', async () => {
    await twoTables();
    const before = await place('listbox', 'Customers');
    await inPage(() => { designer.dir = 'rtl'; });
    const {x} = await place('listbox', 'Customers');
    assert.ok(x > 500 && before.x < 500, `${before.x} ${x}`);
    const name = await place('option', 'Name', 0.95);
    await page.mouse.click(name.x, name.y);
    assert.match(await sql(), /^SELECT Customers.Name/);
    await picture('mirror');
  });

  inBrowser('is told to a screen reader', async () => {
    await twoTables();
    await inPage(() => { designer.sql = 'SELECT Customers.Name FROM Customers'; });
    await page.waitForTimeout(300);
    const tree = await inPage(() => [...designer.shadowRoot.querySelectorAll('#diagram .access [role=option]')]
      .map(node => `${node.getAttribute('aria-label').split(',')[0]} ${node.getAttribute('aria-checked')}`));
    assert.deepEqual(tree, ['all columns false', 'CustomerID false', 'Name true']);
    const cells = await page.locator('#grid .access [role=gridcell]').count();
    assert.ok(cells > 10, String(cells));
  });
});

describe('a page', () => {
  inBrowser('removes the element while a window is open, moves it, and puts it back', async () => {
    await twoTables();
    await inPage(() => query().DiagramPane.AskForAlias(query().DiagramPane.Entities.Item(1)));
    await page.waitForSelector('dialog[open]');
    await inPage(() => designer.remove());
    await page.waitForTimeout(100);
    assert.equal(await inPage(() => designer.query), null);
    await inPage(() => document.body.append(designer));
    await page.waitForFunction(() => designer.query?.DiagramPane.Entities.Count === 2);
    assert.equal(await inPage(() => designer.query.DiagramPane.Entities.Item(2).Items.Count), 4);
    await inPage(() => { const box = document.createElement('div'); document.body.append(box); box.append(designer); });
    await page.waitForTimeout(100);
    assert.equal(await inPage(() => designer.query.DiagramPane.Entities.Count), 2);
  });

  inBrowser('is told of changes once an action, and may remove the element then', async () => {
    await inPage(() => {
      window.told = [];
      designer.addEventListener('change', event => { told.push(event.detail.sql); if (told.length === 2) designer.remove(); });
    });
    await inPage(() => { designer.sql = 'SELECT Name FROM Customers'; });
    await inPage(() => { query().AddTable('Orders'); });
    await page.waitForTimeout(100);
    assert.equal(await inPage(() => told.length), 2);
  });

  inBrowser('hears of sources that fail, are late, or come out of order', async () => {
    const seen = await inPage(async () => {
      const errors = [];
      designer.addEventListener('error', event => { errors.push(event.detail.message); event.preventDefault(); });
      designer.connection = {schema: () => Promise.reject(new Error('no network'))};
      await designer.connected;
      designer.connection = {tables: [{name: ''}]};
      await designer.connected;
      const late = ms => ({schema: () => new Promise(done => setTimeout(() => done({tables: [{name: `T${ms}`}]}), ms))});
      designer.connection = late(150);
      const first = designer.connected;
      designer.connection = late(10);
      return {errors, which: [await designer.connected, await first], table: query().HasTable('T10')};
    });
    assert.deepEqual(seen, {errors: ['no network', 'tables[0] has no name.'], which: [true, false], table: true});
  });

  inBrowser('is not disturbed by a source that answers when nobody waits, twice, or not at all', async () => {
    const seen = await inPage(async () => {
      const errors = [], answers = [], made = document.createElement('zr-query-designer'), table = name => ({tables: [{name}]});
      made.addEventListener('error', event => { errors.push(event.detail.message); event.preventDefault(); });
      document.body.append(made);
      await made.ready;
      const tick = () => new Promise(done => setTimeout(done));
      const ask = async () => {
        const count = answers.length;
        made.connection = {schema: () => new Promise((done, fail) => answers.push({done, fail}))};
        const {connected} = made;
        while (answers.length === count) await tick();
        return {connected, ...answers[count]};
      };
      const which = [];
      // Twice: the first counts; what comes behind it is nothing.
      const twice = await ask();
      twice.done(table('First'));
      twice.done(table('Again'));
      twice.fail(new Error('again'));
      which.push(await twice.connected, made.query.HasTable('First'));
      // A late refusal of a source that another has replaced is nobody's.
      const late = await ask();
      made.connection = table('Newer');
      await made.connected;
      late.fail(new Error('late'));
      which.push(await late.connected, made.query.HasTable('Newer'));
      // The element has gone before the answer; put in again, it takes another source.
      for (const answer of ['done', 'fail']) {
        const gone = await ask();
        made.remove();
        await tick();
        await tick();
        gone[answer](answer === 'done' ? table('Late') : new Error('late'));
        which.push(await gone.connected);
        made.connection = table('Back');
        document.body.append(made);
        while (!made.query) await tick();
        await made.connected;
        which.push(made.query.HasTable('Back'));
      }
      // Rows that throw, and rows of nothing.
      made.connection = {rows() { throw new Error('no rows'); }};
      await made.connected;
      made.connection = {rows: () => null};
      which.push(await made.connected);
      made.remove();
      return {errors, which};
    });
    assert.deepEqual(seen.which, [true, true, false, true, false, true, false, true, true]);
    assert.deepEqual(seen.errors.filter(text => /again|late/.test(text)), []);
  });

  inBrowser('gives the memory of two hundred elements back', async () => {
    const grown = await inPage(async () => {
      const module = (await load()).module, round = async count => {
        for (let i = 0; i < count; ++i) {
          const made = document.createElement('zr-query-designer');
          document.body.append(made);
          await made.ready;
          made.connection = schema;
          await made.connected;
          made.sql = 'SELECT Name FROM Customers';
          made.remove();
          await new Promise(done => setTimeout(done));
        }
      };
      const used = () => { globalThis.gc?.(); return performance.memory?.usedJSHeapSize ?? 0; };  // what a browser tells
      await round(40);
      const before = module.HEAPU8.length, script = used();
      await round(160);
      return {by: module.HEAPU8.length - before, views: module.page.objects.size, script: used() - script};
    });
    assert.equal(grown.by, 0, 'bytes of the library');
    assert.ok(grown.script <= 1 << 20, `${grown.script} bytes of JavaScript`);
    assert.ok(grown.views <= 10, `${grown.views} objects`);
  });
});

test('the same package works in Node, without a page', async () => {
  const {load} = await import(pathToFileURL(join(folder, 'node.js')));
  const {connectionTo} = await import(pathToFileURL(join(folder, 'connection.js')));
  const library = await load(), query = library.create('qbQueryBuilder');
  for (const pane of ['Diagram', 'Grid', 'SQL']) query[`${pane}Pane`] = library.create(`qb${pane}Pane`);
  query.Connection = await connectionTo(library, {tables: [{name: 'Ärzte', columns: ['Name', 'seit']}]});
  let told = 0;
  const off = query.SQLPane.on('SQLChanged', () => ++told);
  query.SQLPane.ParseSQLStatement('select Name from "Ärzte" where seit > 2000');
  assert.match(query.SQLPane.SQLStatement, /SELECT\s+"?Ärzte"?\.Name\s+FROM/);
  assert.ok(told > 0);
  off();
  assert.deepEqual([...query.DiagramPane.Entities].map(entity => entity.Caption), ['Ärzte']);
  query.SQLPane.SQLSyntax = library.constants.SQLSyntaxEnum.SQLSyntaxOracle ?? 2;
  query.SQLPane.Refresh();
  assert.throws(() => query.SQLPane.ParseSQLStatement('select x frm y'), error => error.number === 40002);
  assert.throws(() => query.NoSuchMember, error => error.number === 438);
});

// Both of its builds, each in a process of its own, by the names that a program uses.
test('a program in Node gets the fast one, or by name the one of pages', async () => {
  const program = await mkdtemp(join(tmpdir(), 'zrqrybld-'));
  try {
    await mkdir(join(program, 'node_modules'));
    await symlink(folder, join(program, 'node_modules/zrqrybld'));
    const answers = [];
    for (const name of ['zrqrybld', 'zrqrybld/library.js']) {
      await writeFile(join(program, 'main.mjs'), `import {load} from '${name}';
        const library = await load(), query = library.create('qbQueryBuilder');
        for (const pane of ['DiagramPane', 'GridPane', 'SQLPane']) query[pane] = library.create('qb' + pane);
        query.SQLPane.ParseSQLStatement('select 1e-7 as a, x.b from x where b in (1.5, -2) order by 2');
        let number; try { query.SQLPane.ParseSQLStatement('select (') } catch (error) { number = error.number }
        console.log(JSON.stringify([import.meta.resolve('${name}').split('/').pop(), query.SQLPane.SQLStatement, number]));`);
      answers.push(JSON.parse((await promisify(execFile)(process.execPath, [join(program, 'main.mjs')])).stdout));
    }
    assert.deepEqual(answers.map(([module]) => module), ['node.js', 'library.js']);
    assert.match(answers[0][1], /1e-7.*ORDER BY/s);
    assert.equal(answers[0][2], 40002);
    assert.deepEqual(answers[0].slice(1), answers[1].slice(1));
  } finally {
    await rm(program, {recursive: true});
  }
});
