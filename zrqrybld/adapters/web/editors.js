// What is typed into: the editor of a cell, the lists that open below, and the SQL text.

import {buttonBit, heldButtons, keyCode, shiftBits, typedText} from './keys.js';
import {roleName} from './theme.js';
import {unpack} from './fields.js';

/** The input element over a cell. */
export class Editor {
  constructor(surface, number) {
    this.surface = surface;
    this.api = surface.api;
    const input = this.input = document.createElement('input');
    input.className = 'editor';
    input.hidden = true;
    input.spellcheck = false;
    input.autocomplete = 'off';
    input.dir = 'ltr';  // SQL is read from left to right everywhere
    const {api} = this;
    input.addEventListener('input', () => api.editor_changed(number));
    input.addEventListener('keydown', event => {
      if (event.isComposing) return;
      event.stopPropagation();
      if (api.editor_key(number, 1, keyCode(event), shiftBits(event), typedText(event))) event.preventDefault();
      else this.surface.designer.onKey(event);  // F6 leads out of a cell, too
    });
    input.addEventListener('keyup', event => {
      event.stopPropagation();
      if (!event.isComposing) api.editor_key(number, 0, keyCode(event), shiftBits(event), '');
    });
    input.addEventListener('blur', () => { if (!input.hidden && !this.quiet) api.editor_left(number); });
    const mouse = (kind, button, event) =>
      api.editor_mouse(number, kind, button, shiftBits(event), event.offsetX, event.offsetY);
    input.addEventListener('pointerdown', event => mouse(0, buttonBit(event), event));
    input.addEventListener('pointermove', event => mouse(1, heldButtons(event), event));
    input.addEventListener('pointerup', event => mouse(2, buttonBit(event), event));
    input.addEventListener('dblclick', event => mouse(3, 1, event));
    surface.host.append(input);
  }
  // Removing what has the focus tells that it has gone: nobody is left to hear it.
  end() {
    this.quiet = true;
    const focused = this.focused();
    this.input.remove();
    if (focused) this.surface.focus();
  }
  place(x, y, width, height) {
    Object.assign(this.input.style, {left: x + 'px', top: y + 'px', width: width + 'px', height: height + 'px'});
  }
  show(visible, name) {
    const focused = this.focused();
    this.quiet = !visible;
    this.input.hidden = !visible;
    if (visible) this.input.setAttribute('aria-label', name);
    if (!visible && focused) this.surface.focus();
    this.quiet = false;
  }
  font(css) { this.input.style.font = this.surface.font(css).text; }
  limit(characters) { this.input.maxLength = characters > 0 ? characters : 32767; }
  set(text) { this.input.value = text; }
  text() { return this.input.value; }
  start() { return this.input.selectionStart ?? 0; }
  selected() { return (this.input.selectionEnd ?? 0) - this.start(); }
  select(start, length) {
    const {value} = this.input, from = Math.max(0, Math.min(start, value.length));
    this.input.setSelectionRange(from, Math.min(value.length, from + Math.max(0, length)), 'backward');
  }
  replace(text) { this.input.setRangeText(text, this.input.selectionStart, this.input.selectionEnd, 'end'); }
  focus() { this.input.focus({preventScroll: true}); }
  focused() { return this.input.getRootNode().activeElement === this.input; }
}

/** The list that is open below a part of a surface; the keyboard stays where it is. */
export class List {
  constructor(designer, number, host, [x, y, width, height], entries, highlighted) {
    this.number = number;
    const box = host.getBoundingClientRect();
    const list = this.element = document.createElement('ul');
    list.className = 'list';
    list.setAttribute('role', 'listbox');
    unpack(entries).forEach((packed, index) => {
      const [text, detail] = unpack(packed), item = document.createElement('li');
      item.setAttribute('role', 'option');
      item.textContent = text || ' ';
      if (detail) {
        const quiet = document.createElement('small');
        quiet.textContent = detail;
        item.append(quiet);
      }
      item.addEventListener('pointerenter', () => {
        this.highlight(index, false);
        designer.api.list_pointed(number, index);
      });
      item.addEventListener('pointerdown', event => event.preventDefault());  // the editor keeps the keyboard
      item.addEventListener('click', () => designer.api.list_chosen(number, index));
      list.append(item);
    });
    (host.closest?.('dialog') ?? designer.root).append(list);  // what is outside of an open window is behind it
    list.style.minWidth = Math.max(width, 60) + 'px';
    const {offsetHeight, offsetWidth} = list, below = box.top + y + height;
    const above = box.top + y - offsetHeight;
    list.style.top = (below + offsetHeight > innerHeight && above >= 0 ? above : below) + 'px';
    list.style.left = Math.max(0, Math.min(box.left + x, innerWidth - offsetWidth)) + 'px';
    this.highlight(highlighted, true);
  }
  highlight(index, scroll) {
    const {children} = this.element;
    this.element.querySelector('.on')?.classList.remove('on');
    const item = children[index];
    if (!item) return;
    item.classList.add('on');
    if (scroll) item.scrollIntoView({block: 'nearest'});
  }
  close() { this.element.remove(); }
}

/**
 * SQL text: a text area, with its own colours seen through it from behind. In a window `takes` says what accepts it;
 * there is one line where `single` says so.
 */
export class Area {
  constructor(designer, number, host, label, {takes, single} = {}) {
    this.designer = designer;
    this.api = designer.api;
    this.number = number;
    this.host = host;
    this.marks = [0, 0];
    this.brackets = '';
    const make = (name, className) => {
      const element = document.createElement(name);
      element.className = className;
      return element;
    };
    this.behind = make('pre', 'colors');
    this.behind.setAttribute('aria-hidden', 'true');
    const text = this.text = make('textarea', 'sql');
    text.setAttribute('aria-label', label);
    text.spellcheck = false;
    text.wrap = 'off';
    text.autocapitalize = 'off';
    const frame = make('div', 'sql-frame');
    frame.append(this.behind, text);
    this.said = make('div', 'remarks');
    this.said.setAttribute('role', 'status');
    host.append(frame, this.said);

    text.addEventListener('input', event => {
      this.marks = [0, 0];
      const typed = event.inputType === 'insertText' && (event.data?.length ?? 0) === 1;
      if (single && text.value.includes('\n')) {
        const {selectionEnd} = text;
        text.value = text.value.replaceAll('\n', ' ');
        text.setSelectionRange(selectionEnd, selectionEnd);
      }
      this.#tell(typed);
    });
    text.addEventListener('keydown', event => {
      if (event.isComposing) return;
      event.stopPropagation();
      this.#selected();
      if (this.api.area_key(number, 1, keyCode(event), shiftBits(event), typedText(event))) event.preventDefault();
      else if (!takes) this.designer.onKey(event);
      else if (event.key === 'Enter' && (single || event.ctrlKey || event.metaKey)) {
        event.preventDefault();
        takes();
      }
    });
    text.addEventListener('keyup', event => this.api.area_key(number, 0, keyCode(event), shiftBits(event), ''));
    text.addEventListener('focus', () => this.api.area_focus(number, 1));
    text.addEventListener('blur', event => {
      this.#pair('');
      // A window or a button beside the text is not another part of the page.
      if (document.hasFocus() && !this.host.contains(event.relatedTarget) && (takes || !designer.dialogOpen)) this.api.area_focus(number, 0);
    });
    text.addEventListener('scroll', () => this.#follow());
    this.onSelection = () => { if (this.#focused()) this.#selected(); };
    // Some browsers tell the text, which is in a shadow tree and so is not heard outside of it; others the document alone.
    text.addEventListener('selectionchange', this.onSelection);
    document.addEventListener('selectionchange', this.onSelection);
  }
  end() { document.removeEventListener('selectionchange', this.onSelection); }
  closest(selector) { return this.host.closest(selector); }
  /** What a window begins with. */
  begin(text) {
    this.text.value = text.replaceAll('\r', '');
    this.#tell(false);
  }

  #focused() { return this.text.getRootNode().activeElement === this.text; }
  #selected() {
    const {selectionStart, selectionEnd} = this.text;
    this.api.area_selected(this.number, selectionStart, selectionEnd - selectionStart);
    this.#pair(this.api.area_brackets(this.number));
  }
  #tell(typed) {
    const {value, selectionStart, selectionEnd} = this.text;
    this.api.area_input(this.number, value, selectionStart, selectionEnd - selectionStart, typed ? 1 : 0);
    this.brackets = this.#focused() ? this.api.area_brackets(this.number) : '';
    this.#color();
  }
  // The bracket beside the caret and its partner, or that it has none, while the text has the keyboard.
  #pair(places) {
    if (this.brackets === places) return;
    this.brackets = places;
    this.#color();
  }
  #follow() {
    this.behind.scrollTop = this.text.scrollTop;
    this.behind.scrollLeft = this.text.scrollLeft;
  }

  // Pieces are text nodes and spans with a class: whatever the statement holds stays text.
  #color() {
    const {value} = this.text, [fault, length] = this.marks, nodes = [];
    const numbers = this.api.area_colors(this.number).split(' ');
    let at = 0;
    const plain = to => { if (to > at) nodes.push(document.createTextNode(value.slice(at, to))); at = Math.max(at, to); };
    for (let i = 0; i + 2 < numbers.length; i += 3) {
      const [start, size, role] = [+numbers[i], +numbers[i + 1], +numbers[i + 2]];
      plain(start);
      const span = document.createElement('span');
      span.className = 'role-' + roleName(role);
      span.textContent = value.slice(start, start + size);
      nodes.push(span);
      at = start + size;
    }
    plain(value.length);
    nodes.push(document.createTextNode('\n'));
    this.behind.replaceChildren(...nodes);
    if (length > 0) this.#mark(fault, length, 'fault');
    const places = this.brackets ? this.brackets.split(' ') : [];
    for (const place of places) this.#mark(+place, 1, places.length > 1 ? 'bracket' : 'bracket alone');
    this.#follow();
  }
  #rangeOf(start, length) {
    const range = document.createRange(), walk = document.createTreeWalker(this.behind, NodeFilter.SHOW_TEXT);
    let passed = 0, begun = false;
    for (let node; (node = walk.nextNode());) {
      const end = passed + node.length;
      if (!begun && start < end) { range.setStart(node, start - passed); begun = true; }
      if (begun && start + length <= end) { range.setEnd(node, start + length - passed); return range; }
      passed = end;
    }
    return begun ? range : null;
  }
  #mark(start, length, className) {
    const range = this.#rangeOf(start, length);
    if (!range) return;
    const mark = document.createElement('span');
    mark.className = className;
    mark.append(range.extractContents());
    range.insertNode(mark);
  }

  // --- What the library asks ---

  set(text) {
    const {value, selectionStart, scrollTop, scrollLeft} = this.text;
    if (value === text) return this.#color();
    this.marks = [0, 0];
    this.brackets = '';
    this.text.value = text;
    const at = Math.min(selectionStart, text.length);
    this.text.setSelectionRange(at, at);
    Object.assign(this.text, {scrollTop, scrollLeft});
    this.#color();
  }
  readOnly(on) { this.text.readOnly = on; }
  remarks(fields) {
    this.sentences = unpack(fields);
    this.#say();
  }
  commands(fields) {
    this.buttons = unpack(fields);
    this.#say();
  }
  #say() {
    const parts = (this.sentences ?? []).map(sentence => {
      const said = document.createElement('p');
      said.textContent = sentence;
      return said;
    });
    (this.buttons ?? []).forEach((caption, index) => {
      const button = document.createElement('button');
      button.type = 'button';
      button.textContent = caption.replace(/&(.)/g, '$1');
      button.addEventListener('click', () => this.api.area_command(this.number, index));
      parts.push(button);
    });
    this.said.replaceChildren(...parts);
    this.said.hidden = parts.length === 0;
  }
  fault(start, length) {
    this.marks = [start, length];
    this.#color();
    this.behind.querySelector('.fault')?.scrollIntoView({block: 'nearest'});
    this.text.scrollTop = this.behind.scrollTop;
  }
  select(start, length) { this.text.setSelectionRange(start, start + length); }
  // By the browser's own editing, so that its undo knows of it.
  replace(start, length, text) {
    this.text.focus();
    this.text.setSelectionRange(start, start + length);
    const before = this.text.value;
    const done = text ? document.execCommand('insertText', false, text) : document.execCommand('delete');
    if (done && this.text.value !== before) return;
    this.text.setRangeText(text, start, start + length, 'end');
    this.#tell(false);
  }
  // Where a character stands, for a list below it.
  placeOf(character) {
    // Behind the last character of a line there is nothing that has a place: it is the right edge of that one.
    const box = this.host.getBoundingClientRect(), at = Math.max(0, character);
    const placeOf = start => this.#rangeOf(start, 1)?.getBoundingClientRect();
    const here = placeOf(at), place = here?.height || at === 0 ? here : placeOf(at - 1);
    const x = place === here ? place?.left : place?.right;
    return place?.height ? [x - box.left, place.top - box.top, 0, place.height] : [0, 0, 0, 20];
  }
  focus() { this.text.focus(); }
  getBoundingClientRect() { return this.host.getBoundingClientRect(); }
}
