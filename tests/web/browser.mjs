// What the tests of pages share: where things are, the pages, and the browser.
import {createServer} from 'node:http';
import {readFile} from 'node:fs/promises';
import {createRequire} from 'node:module';
import {extname, join, normalize} from 'node:path';
import {pathToFileURL} from 'node:url';

export const root = new URL('../../', import.meta.url).pathname;
export const modules = process.env.MODULES ?? join(root, 'build/node/');
export const folder = process.env.PACKAGE ?? join(root, 'build/wasm/npm');
export const need = createRequire(pathToFileURL(join(modules, '/')));

const {chromium, firefox} = need('playwright-core');

/** What the tests run in: BROWSER=firefox takes Firefox as it is installed, by WebDriver BiDi. */
export const isFirefox = process.env.BROWSER === 'firefox';

const launchFirefox = preferences => firefox.launch({channel: 'moz-firefox', executablePath: process.env.FIREFOX ?? '/usr/bin/firefox-esr',
  firefoxUserPrefs: preferences});
const launchChromium = () => chromium.launch({ignoreDefaultArgs: ['--hide-scrollbars'],
  executablePath: process.env.CHROMIUM ?? '/usr/bin/chromium', args: ['--no-sandbox', '--disable-gpu', '--disable-quic', '--no-first-run',
    '--disable-background-networking', '--js-flags=--expose-gc', '--enable-precise-memory-info', '--disable-component-update', '--disable-sync']});
export const launchBrowser = () => (isFirefox ? launchFirefox({}) : launchChromium());

const names = {Up: 'ArrowUp', Down: 'ArrowDown', Left: 'ArrowLeft', Right: 'ArrowRight', Esc: 'Escape', Return: 'Enter', Del: 'Delete',
  Menu: 'ContextMenu', Ctrl: 'Control'};
/** A key of the tables as the browser's driver calls it: "Ctrl+Up". */
export const keyOf = text => text.replace(/[^+]+/g, name => names[name] ?? (name.length === 1 ? name.toLowerCase() : name));

const types = {'.html': 'text/html', '.js': 'text/javascript', '.mjs': 'text/javascript', '.css': 'text/css', '.wasm': 'application/wasm'};
// As strict as the package promises to live with.
const policy = "default-src 'self'; script-src 'self' 'wasm-unsafe-eval'; style-src 'self'; img-src 'self'";

/** Serves the pages of this folder and the package; its address is that of `page.html`. */
export async function servePages() {
  const server = createServer(async (request, answer) => {
    const path = normalize(new URL(request.url, 'http://x').pathname);
    const file = path.startsWith('/zrqrybld/') ? join(folder, path.slice(10)) : join(root, 'tests/web', path);
    try {
      const bytes = await readFile(file);
      answer.writeHead(200, {'Content-Type': types[extname(file)] ?? 'text/plain', 'Content-Security-Policy': policy}).end(bytes);
    } catch {
      answer.writeHead(404).end();
    }
  });
  await new Promise(done => server.listen(0, '127.0.0.1', done));
  return Object.assign(server, {page: `http://127.0.0.1:${server.address().port}/page.html`});
}

// Its driver cannot say what the system prefers: such pages have a Firefox of their own, which is told when it begins.
async function firefoxContext(browser, {colorScheme, forcedColors, ...options}) {
  if (!colorScheme && !forcedColors) return browser.newContext(options);
  const own = await launchFirefox({'ui.systemUsesDarkTheme': colorScheme === 'dark' ? 1 : 0, 'layout.css.prefers-color-scheme.content-override': colorScheme === 'dark' ? 0 : 1,
    ...forcedColors && {'browser.display.document_color_use': 2}});
  const context = await own.newContext(options);
  context.on('close', () => own.close());
  return context;
}

/** A page with one designer, ready to be used. */
export async function openPage(browser, server, options = {}) {
  const wanted = {viewport: {width: 1000, height: 700}, ...options};
  const context = isFirefox ? await firefoxContext(browser, wanted) : await browser.newContext({permissions: ['clipboard-read', 'clipboard-write'], ...wanted});
  const opened = await context.newPage();
  await opened.goto(server.page);
  await opened.waitForSelector('html[data-ready]');
  return opened;
}
