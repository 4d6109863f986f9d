// <zr-query-designer>: the whole designer as one element.
//
//   import 'zrqrybld';
//   const designer = document.querySelector('zr-query-designer');
//   designer.connection = {tables: [{name: 'Orders', columns: [{name: 'OrderID', type: 'integer', primaryKey: true}]}]};
//   designer.addEventListener('change', () => console.log(designer.sql));

import {load} from './library.js';
import {connectionTo} from './connection.js';
import {Designer, Page} from './page.js';
import {unpack} from './fields.js';
import {style} from './style.js';
import {withAccessKey} from './menus.js';

const [STATEMENT, HISTORY, TEXTS, SQL_ONLY] = [1, 2, 3, 4];
const [ADD, UNDO, REDO, GROUP, ARRANGE] = [0, 1, 2, 3, 4];
const COMMANDS = 7;  // that the page has words for
const FEWEST = 48;  // pixels of a pane

let page;  // one for all elements: they share the library and its memory

export class ZrQueryDesigner extends HTMLElement {
  static observedAttributes = ['theme', 'dir', 'language'];

  #designer = null;
  #query = null;
  #started = null;
  #given;          // the connection that was asked for
  #asked = 0;      // which of several that were asked for
  #waiting = [];   // what to do when the designer is there
  #kept = '';      // the design while the element is out of the page
  #told = false;
  #history = false;

  constructor() {
    super();
    this.attachShadow({mode: 'open'});
    this.ready = new Promise(done => { this.#started = done; });
  }

  connectedCallback() {
    clearTimeout(this.ending);
    if (!this.#designer && !this.loading) this.#begin();
  }

  // Moving an element takes it out and puts it in again: only one that stays out gives its memory back.
  disconnectedCallback() {
    this.ending = setTimeout(() => this.#end());
  }

  attributeChangedCallback() {
    if (this.#designer) queueMicrotask(() => { page.restyle(); this.#designer?.diagram.measure(); this.#designer?.grid.measure(); });
  }

  // --- What a page uses ---

  /** Resolves with the element when it can be used. */
  ready;

  /** The qbQueryBuilder by its member names; null until `ready`, and while the element is out of the page. */
  get query() { return this.#query; }

  /** The statement. Setting it makes the design what it says; what cannot be read throws, and nothing is changed. */
  get sql() { return this.#query?.SQLPane.SQLStatement ?? ''; }
  set sql(text) {
    this.#kept = '';
    this.#soon(() => { if (text) this.#query.SQLPane.ParseSQLStatement(String(text)); else this.#query.DiagramPane.Clear(); });
  }

  /** The whole design as text, as query files hold it: with places, joins and options. */
  get design() {
    if (!this.#query || this.#kept) return this.#kept;
    this.#query.SaveQuery('/design');
    return page.api.take_file('/design');
  }
  set design(text) {
    this.#kept = '';
    this.#soon(() => this.#query.LoadQuery(String(text), true));
  }

  /**
   * Where tables and columns come from: a schema document, an object with `schema()` (a promise is waited for), or
   * nothing. The latest that was set counts, whichever answers first. A source that fails is told by `error`.
   */
  get connection() { return this.#given; }
  set connection(source) {
    this.#given = source;
    const asked = ++this.#asked;
    this.connected = (async () => {
      await this.ready;
      const made = await connectionTo(page.library, source);
      if (asked !== this.#asked || !this.#query) return false;
      this.#query.Connection = made;
      return true;
    })().catch(error => {
      if (asked === this.#asked && this.#query) this.#failed(error.message);  // put in again, the element asks again
      return false;
    });
  }

  /** Gives the keyboard to the diagram. */
  focus() { this.#designer?.diagram.focus(); }

  // --- Beginning and ending ---

  async #begin() {
    this.loading = true;
    try {
      if (!page) {
        const library = await load();
        page ??= Object.assign(new Page(library.module), {library});
      }
    } catch (error) {
      this.loading = false;
      this.#failed(error.message);
      return;
    }
    this.loading = false;
    if (!this.isConnected || this.#designer) return;
    const parts = this.#layOut();
    this.#designer = new Designer(page, this.shadowRoot, parts, {
      changed: what => this.#changed(what),
      failed: text => this.#failed(text),
      key: event => this.#key(event),
    });
    this.#query = page.library.object(this.#designer.handle());
    this.shadowRoot.addEventListener('keydown', this.#onKey = event => this.#key(event));
    this.#texts();
    this.#buttons();
    for (const work of this.#waiting.splice(0)) this.#try(work);
    this.#started(this);
    if (this.#given && !this.connected) this.connection = this.#given;
    if (this.#kept) this.#bringBack();
  }

  // The design that the element had when it was taken out: its columns are the source's, so that comes first.
  async #bringBack() {
    await this.connected;
    const design = this.#kept;
    if (!design || !this.#query) return;
    this.#kept = '';
    this.#try(() => this.#query.LoadQuery(design, true));
  }
  #onKey;

  #end() {
    if (this.isConnected || !this.#designer) return;
    try {
      this.#kept ||= this.design;
    } catch {
      this.#kept = '';
    }
    this.shadowRoot.removeEventListener('keydown', this.#onKey);
    this.#query = null;
    this.connected = undefined;
    this.#designer.end();
    this.#designer = null;
    this.shadowRoot.replaceChildren();
  }

  #soon(work) {
    if (this.#query) work(); else this.#waiting.push(work);
  }
  #try(work) {
    try {
      work();
    } catch (error) {
      this.#failed(error.message);
    }
  }

  #layOut() {
    const make = (name, className, ...children) => {
      const element = document.createElement(name);
      element.className = className;
      element.append(...children);
      return element;
    };
    const panes = ['diagram', 'grid', 'sql'].map(name => Object.assign(make('section', `pane ${name}`), {id: name}));
    this.tools = make('div', 'tools');
    this.tools.setAttribute('role', 'toolbar');
    const slot = Object.assign(document.createElement('slot'), {name: 'tools'});
    const sheet = new CSSStyleSheet();
    sheet.replaceSync(style);
    this.shadowRoot.adoptedStyleSheets = [sheet];
    this.shadowRoot.replaceChildren(make('div', 'bar-of-tools', this.tools, slot), panes[0], this.#splitter(panes[0], panes[1]), panes[1],
      this.#splitter(panes[1], panes[2]), panes[2]);
    this.panes = panes;
    return {diagram: panes[0], grid: panes[1], sql: panes[2]};
  }

  // Between two panes: dragged, or moved by the arrow keys.
  #splitter(above, below) {
    const bar = document.createElement('div');
    bar.className = 'splitter';
    bar.tabIndex = 0;
    bar.setAttribute('role', 'separator');
    bar.setAttribute('aria-orientation', 'horizontal');
    const move = dy => {
      const [a, b] = [above, below].map(pane => pane.getBoundingClientRect().height), by = Math.max(FEWEST - a, Math.min(dy, b - FEWEST));
      const all = this.panes.map(pane => pane.getBoundingClientRect().height);
      this.panes.forEach((pane, i) => { pane.style.flex = `${all[i] + (pane === above ? by : pane === below ? -by : 0)} 1 0`; });
      bar.setAttribute('aria-valuenow', String(Math.round(100 * (a + by) / (a + b))));
    };
    bar.addEventListener('pointerdown', event => { bar.setPointerCapture(event.pointerId); this.from = event.clientY; });
    bar.addEventListener('pointermove', event => {
      if (!bar.hasPointerCapture(event.pointerId)) return;
      move(event.clientY - this.from);
      this.from = event.clientY;
    });
    bar.addEventListener('keydown', event => {
      if (event.key !== 'ArrowUp' && event.key !== 'ArrowDown') return;
      event.preventDefault();
      event.stopPropagation();
      move(event.key === 'ArrowUp' ? -16 : 16);
    });
    return bar;
  }

  // --- Tools and texts ---

  #texts() {
    const words = unpack(page.api.words(this.#designer.number));
    const [sqlName, addPair, removePair, pairs, condition, filter, source, search, pieces, choose] = words.slice(COMMANDS);
    Object.assign(this.#designer.texts, {addPair, removePair, pairs, condition, filter, source, search, pieces, choose});
    this.words = words.slice(0, COMMANDS).map(packed => {
      const [text, key] = unpack(packed);
      return [withAccessKey(text)[0].replace(/(…|\.\.\.)$/, ''), key];
    });
    this.#designer.area.text.setAttribute('aria-label', sqlName);
    const actions = [
      [ADD, () => this.#query.ShowTables()],
      [UNDO, () => this.#query.Undo()],
      [REDO, () => this.#query.Redo()],
      [GROUP, () => { this.#query.GridPane.ShowGroupBy = !this.#query.GridPane.ShowGroupBy; }],
      [ARRANGE, () => this.#query.DiagramPane.Arrange()],
    ];
    this.tools.replaceChildren(...actions.map(([word, run]) => {
      const button = document.createElement('button'), [text, key] = this.words[word];
      button.type = 'button';
      button.textContent = text;
      button.title = key ? `${text} (${key})` : text;
      button.addEventListener('click', () => { this.#try(run); this.#buttons(); });
      return button;
    }));
  }

  #buttons() {
    const {children} = this.tools, query = this.#query;
    if (!query) return;
    children[UNDO].disabled = !query.CanUndo;
    children[REDO].disabled = !query.CanRedo;
    children[UNDO].title = query.UndoText ? `${this.words[UNDO][0]}: ${query.UndoText} (${this.words[UNDO][1]})` : this.words[UNDO][0];
    children[REDO].title = query.RedoText ? `${this.words[REDO][0]}: ${query.RedoText} (${this.words[REDO][1]})` : this.words[REDO][0];
    children[GROUP].setAttribute('aria-pressed', String(query.GridPane.ShowGroupBy));
  }

  // F6 goes round the panes; undo and redo are the designer's own outside of editors.
  #key(event) {
    const shift = event.shiftKey, command = (event.ctrlKey || event.metaKey) && !event.altKey;
    if (event.key === 'F6') {
      const stops = [this.#designer.diagram, this.#designer.grid, this.#designer.area];
      const at = this.panes.findIndex(pane => pane.contains(this.shadowRoot.activeElement));
      stops[(at + (shift ? -1 : 1) + (at < 0 && shift ? 1 : 0) + 3) % 3].focus();
    } else if (command && !this.shadowRoot.activeElement?.matches('input, textarea') && /^[zy]$/i.test(event.key)) {
      const redo = shift || /y/i.test(event.key);
      this.#try(() => (redo ? this.#query.Redo() : this.#query.Undo()));
    } else if (event.key === 'F7') {
      this.#try(() => this.#query.ShowTables());
    } else {
      return;
    }
    event.preventDefault();
    event.stopPropagation();
  }

  // --- What happens ---

  // Told once for all that one action changes, behind the library's own call.
  #changed(what) {
    if (what === HISTORY && !this.#history) {
      this.#history = true;
      queueMicrotask(() => { this.#history = false; this.#buttons(); });
    }
    if (what === TEXTS) queueMicrotask(() => { if (this.#query) { this.#texts(); this.#buttons(); } });
    if (what === SQL_ONLY) queueMicrotask(() => { if (this.#query) this.toggleAttribute('sql-only', this.#query.SQLPane.IsSqlOnly); });
    if (what !== STATEMENT || this.#told) return;
    this.#told = true;
    queueMicrotask(() => {
      this.#told = false;
      if (this.#query) this.dispatchEvent(new CustomEvent('change', {detail: {sql: this.sql}}));
    });
  }

  // A window says it, unless the page has taken the message upon itself.
  #failed(message) {
    const shows = this.dispatchEvent(new CustomEvent('error', {detail: {message}, cancelable: true}));
    if (shows) this.#designer?.say(message);
  }
}

customElements.define('zr-query-designer', ZrQueryDesigner);
