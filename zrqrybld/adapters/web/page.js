// Page: what the library asks of a page, and the designers on it. One for each loaded library.

import {Area, Editor, List} from './editors.js';
import {OpenMenu} from './menus.js';
import {Surface, drawingCalls} from './surface.js';
import {Window} from './windows.js';
import {pack, unpack} from './fields.js';

const ROLES = ['group', 'listbox', 'option', 'img', 'img', 'grid', 'columnheader', 'rowheader', 'gridcell'];
const [SELECTED, CHECKABLE, CHECKED, MIXED, EXPANDABLE, EXPANDED, INVALID] = [2, 4, 8, 16, 32, 64, 256];
const CURRENT = 1 << 16;
const ACCESS_DELAY = 150;

// Captions of the language table that windows without their own use.
const CAPTIONS = {close: 104, accept: 204, cancel: 205};

const encoder = new TextEncoder();
const gone = new Proxy({}, {get: () => () => 0});  // somebody whom the page has removed

export class Page {
  constructor(module) {
    this.module = module;
    this.objects = new Map();
    this.lists = new Map();
    this.api = callsOf(module);
    Object.assign(this, drawingCalls(this));
    module.page = this;
    addEventListener('pointermove', event => this.#dragTo(event), true);
    addEventListener('pointerup', event => this.#dragEnds(event, true), true);
    addEventListener('pointercancel', event => this.#dragEnds(event, false), true);
    addEventListener('keydown', event => { if (event.key === 'Escape' && this.dragging) this.#dragEnds(event, false); }, true);
    this.#watchStyle();
  }

  of(number) { return this.objects.get(number) ?? gone; }

  // A text for the library, which frees it.
  give(text) {
    const bytes = encoder.encode(text || ''), at = this.module._malloc(bytes.length + 1);
    if (!at) return 0;
    this.module.HEAPU8.set(bytes, at);
    this.module.HEAPU8[at + bytes.length] = 0;
    return at;
  }

  editorMake(number, surface) {
    const host = this.objects.get(surface);
    if (!host) return;
    const editor = new Editor(host, number), end = editor.end.bind(editor);
    editor.end = () => { this.objects.delete(number); end(); };
    this.objects.set(number, editor);
  }

  listOpen(number, owner, place, entries, highlighted) {
    this.listClose(number);
    const host = this.objects.get(owner);
    if (!host) return;
    this.lists.set(number, new List(host.designer, number, host.canvas ?? host, place, entries, highlighted));
  }
  listClose(number) {
    this.lists.get(number)?.close();
    this.lists.delete(number);
  }
  listHighlight(number, index) { this.lists.get(number)?.highlight(index, true); }

  copy(text) {
    if (navigator.clipboard?.writeText) {
      navigator.clipboard.writeText(text).catch(() => {});
    } else {
      const once = event => { event.clipboardData.setData('text/plain', text); event.preventDefault(); };
      document.addEventListener('copy', once, {once: true});
      document.execCommand('copy');
      document.removeEventListener('copy', once);
    }
  }

  // --- A text that is dragged from one surface to another ---

  beginDrag(surface, text) { this.dragging = {surface, text, over: null, may: false}; }

  #surfaceAt(event) {
    for (const object of this.objects.values()) {
      if (!(object instanceof Surface)) continue;
      const box = object.canvas.getBoundingClientRect();
      if (event.clientX >= box.left && event.clientX < box.right && event.clientY >= box.top && event.clientY < box.bottom) return object;
    }
    return null;
  }
  #dragTo(event) {
    const {dragging} = this;
    if (!dragging) return;
    const over = this.#surfaceAt(event);
    if (dragging.over && dragging.over !== over) this.api.drag(dragging.over.number, 1, '', 0, 0, 0);
    dragging.over = over;
    dragging.may = over ? this.api.drag(over.number, 0, dragging.text, 0, ...over.place(event)) !== 0 : false;
    dragging.surface.canvas.style.cursor = dragging.may ? 'copy' : 'not-allowed';
  }
  #dragEnds(event, drops) {
    const {dragging} = this;
    if (!dragging) return;
    if (drops) this.#dragTo(event);
    this.dragging = null;
    dragging.surface.canvas.style.cursor = '';
    if (dragging.over && drops && dragging.may) {
      this.api.drag(dragging.over.number, 2, dragging.text, 0, ...dragging.over.place(event));
    } else if (dragging.over) {
      this.api.drag(dragging.over.number, 1, '', 0, 0, 0);
    }
    event.stopPropagation();
  }

  // Colours, fonts and the screen's scale may change while the page is open.
  #watchStyle() {
    const again = () => this.restyle();
    for (const query of ['(prefers-color-scheme: dark)', '(forced-colors: active)', '(prefers-contrast: more)']) {
      matchMedia(query).addEventListener('change', again);
    }
    const scale = () => {
      const watch = matchMedia(`(resolution: ${devicePixelRatio}dppx)`);
      watch.addEventListener('change', () => {
        for (const object of this.objects.values()) if (object instanceof Surface) object.measure();
        scale();
      }, {once: true});
    };
    scale();
    document.fonts?.addEventListener('loadingdone', again);
  }
  restyle() {
    for (const object of this.objects.values()) {
      if (object instanceof Surface && object.readStyle()) this.api.font(object.number);
    }
  }
}

// The functions of exports.cpp: texts are written before the call, and taken behind it.
function callsOf(module) {
  const decoder = new TextDecoder();
  const taken = at => {
    if (!at) return '';
    const end = module.HEAPU8.indexOf(0, at), text = decoder.decode(module.HEAPU8.subarray(at, end));
    module._free(at);
    return text;
  };
  const calls = {};
  for (const name of Object.keys(module)) {
    if (!name.startsWith('_zrw_')) continue;
    const call = module[name], short = name.slice(5);
    const gives = ['ask', 'caption', 'words', 'tip', 'accessible', 'area_colors', 'area_brackets', 'take_file'].includes(short);
    calls[short] = (...values) => {
      const texts = [];
      const passed = values.map(value => {
        if (typeof value !== 'string') return value;
        const bytes = encoder.encode(value), at = module._malloc(bytes.length + 1);
        if (!at) throw new RangeError('Out of memory.');
        module.HEAPU8.set(bytes, at);
        module.HEAPU8[at + bytes.length] = 0;
        texts.push(at);
        return at;
      });
      try {
        const result = call(...passed);
        return gives ? taken(result) : result;
      } finally {
        texts.forEach(at => module._free(at));
      }
    };
  }
  return calls;
}

/** A designer in a shadow root, over elements that its owner has laid out. */
export class Designer {
  constructor(page, root, {diagram, grid, sql}, told) {
    this.page = page;
    this.api = page.api;
    this.root = root;
    this.told = told;
    this.windows = [];
    this.texts = {};  // what the windows say beside what they are given
    this.number = this.api.new();
    if (!this.number) throw new RangeError('Out of memory.');
    const [first, second, third] = [0, 1, 2].map(which => this.api.part(this.number, which));
    page.objects.set(this.number, this);
    this.diagram = new Surface(this, first, diagram, diagram.getAttribute('aria-label') ?? '');
    this.grid = new Surface(this, second, grid, grid.getAttribute('aria-label') ?? '');
    this.area = new Area(this, third, sql, sql.getAttribute('aria-label') ?? '');
    page.objects.set(first, this.diagram).set(second, this.grid).set(third, this.area);
    this.api.start(this.number);
    this.diagram.measure();
    this.grid.measure();
    this.onPaste = event => {
      const surface = this.pasting;
      if (!surface || root.activeElement !== surface.canvas) return;
      this.pasting = null;
      event.preventDefault();
      surface.paste(event.clipboardData.getData('text/plain'));
    };
    document.addEventListener('paste', this.onPaste);
  }

  /** The handle of its qbQueryBuilder, counted once more. */
  handle() { return this.api.handle(this.number); }

  // Not inside a call of the library: whoever listens may remove the element while one goes on.
  end() {
    this.closeMenu();
    for (const window of this.windows.splice(0)) window.remove();
    document.removeEventListener('paste', this.onPaste);
    clearTimeout(this.accessing);
    this.api.end(this.number);
    for (const part of [this.diagram, this.grid, this.area]) {
      part.end();
      this.page.objects.delete(part.number);
    }
    this.page.objects.delete(this.number);
    this.diagram.host.replaceChildren();
    this.grid.host.replaceChildren();
    this.area.host.replaceChildren();
  }

  get accept() { return this.api.caption(this.number, CAPTIONS.accept); }
  get close() { return this.api.caption(this.number, CAPTIONS.close); }
  get cancel() { return this.api.caption(this.number, CAPTIONS.cancel); }
  get dialogOpen() { return this.windows.length > 0; }

  pasteInto(surface) { this.pasting = surface; }
  onKey(event) { this.told.key?.(event); }

  // --- What the library asks ---

  dialog(number, kind, fields) {
    this.closeMenu();
    this.windows.push(new Window(this, number, kind, fields));
  }
  windowClosed(window) { this.windows = this.windows.filter(other => other !== window); }
  confirm(text) { return globalThis.confirm(text); }
  busy(on) { this.root.host?.toggleAttribute('busy', on); }
  failed(text) { this.told.failed(text); }
  /** Shows a message about what has failed. */
  say(text) { this.dialog(0, 'message', pack([text, '2'])); }
  saved(path) {
    const text = this.page.api.take_file(path);
    if (text !== '') this.download(path.slice(1), new Blob([text]));  // a picture went its own way
  }
  download(name, blob) {
    const link = Object.assign(document.createElement('a'), {href: URL.createObjectURL(blob), download: name});
    link.click();
    setTimeout(() => URL.revokeObjectURL(link.href), 10000);
  }
  changed(what) { this.told.changed?.(what); }

  openMenu(surface, x, y, fields) {
    this.closeMenu();
    this.menuOpen = new OpenMenu(this.root, x, y, fields, async (entry, shortcut) => {
      // What is pasted must be asked for before the entry runs.
      if (shortcut === 'Ctrl+V') {
        try {
          this.api.clipboard(surface.number, await navigator.clipboard.readText());
        } catch {
          return;  // the user does not let the page read it
        }
      }
      this.api.menu(surface.number, entry);
    }, () => { this.menuOpen = null; });
  }
  closeMenu() { this.menuOpen?.close(); }

  // --- Assistive technology: the tree of each surface as elements, changed only where it differs ---

  accessChanged(surface) {
    surface.accessWanted = true;
    this.accessing ??= setTimeout(() => {
      this.accessing = undefined;
      for (const part of [this.diagram, this.grid]) {
        if (!part.accessWanted) continue;
        if (part.isHeld()) this.accessChanged(part);  // who drags sees it; what comes of it is told afterwards
        else this.#updateAccess(part);
      }
    }, ACCESS_DELAY);
  }

  #updateAccess(surface) {
    surface.accessWanted = false;
    const parents = [surface.access], used = [0];
    let active = '';
    // Children beyond those that this pass has used have gone.
    const end = depth => {
      while (parents.length > depth) {
        const parent = parents.pop(), count = used.pop();
        while (parent.childElementCount > count) parent.lastElementChild.remove();
      }
    };
    unpack(this.api.accessible(surface.number)).forEach((packed, place) => {
      const depth = Number(packed.slice(packed.indexOf(':') + 1, packed.indexOf(':') + 1 + parseInt(packed)));
      end(depth + 1);
      const parent = parents[depth], index = used[depth]++;
      const node = parent.children[index] ?? parent.appendChild(this.#newAccess(surface, depth));
      node.place = place;
      if (node.told !== packed) this.#tell(surface, node, packed);
      if (node.isCurrent) active = node.id;
      parents.push(node);
      used.push(0);
    });
    end(0);
    if (active) surface.canvas.setAttribute('aria-activedescendant', active);
    else surface.canvas.removeAttribute('aria-activedescendant');
  }

  #newAccess(surface, depth) {
    const node = document.createElement('div');
    node.id = `a${surface.number}-${depth}-${Math.random().toString(36).slice(2)}`;
    node.addEventListener('click', event => {
      event.stopPropagation();
      this.api.perform(surface.number, node.place, +node.dataset.role === 2 ? 2 : 0);
    });
    return node;
  }

  #tell(surface, node, packed) {
    const [, role, name, description, flagsText, bounds] = unpack(packed), flags = +flagsText;
    const set = (attribute, value) => {
      if (value === null) node.removeAttribute(attribute);
      else if (node.getAttribute(attribute) !== value) node.setAttribute(attribute, value);
    };
    node.told = packed;
    node.isCurrent = (flags & CURRENT) !== 0;
    node.dataset.bounds = bounds;
    node.dataset.role = role;
    set('role', ROLES[+role]);
    set('aria-label', name);
    set('aria-description', description || null);
    set('aria-checked', flags & CHECKABLE ? (flags & MIXED ? 'mixed' : String((flags & CHECKED) !== 0)) : null);
    set('aria-selected', flags & SELECTED ? 'true' : null);
    set('aria-expanded', flags & EXPANDABLE ? String((flags & EXPANDED) !== 0) : null);
    set('aria-invalid', flags & INVALID ? 'true' : null);
    if (node.place === 0) surface.canvas.setAttribute('aria-label', name);
  }
}
