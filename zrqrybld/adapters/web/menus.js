// Menus: lists of buttons that arrow keys, access keys and the pointer walk through.
import {unpack} from './fields.js';

const ENABLED = 1, CHECKED = 2, OPENS = 4;

/** A text whose ampersand marks the access key: what is shown, and the key. */
export function withAccessKey(text) {
  let key = '', shown = '';
  for (let i = 0; i < text.length; ++i) {
    if (text[i] === '&' && i + 1 < text.length) {
      if (text[++i] !== '&') key ||= text[i].toLowerCase();
    }
    shown += text[i];
  }
  return [shown, key];
}

/** Opens a menu at a place of the window. `chosen(number, shortcut)` and then `closed()` are called. */
export class OpenMenu {
  constructor(root, x, y, fields, chosen, closed) {
    this.root = root;
    this.closed = closed;
    this.chosen = chosen;
    this.levels = [];
    this.mirrored = getComputedStyle(root.host).direction === 'rtl';
    const entries = unpack(fields).map((packed, number) => {
      const [depth, text, shortcut, flags] = unpack(packed);
      return {number, depth: +depth, text, shortcut, flags: +flags, entries: []};
    });
    const open = [{entries: []}];
    for (const entry of entries) {
      open.length = entry.depth + 1;
      open[entry.depth].entries.push(entry);
      open.push(entry);
    }
    this.before = root.activeElement;
    this.onDown = event => { if (!event.composedPath().some(e => e.classList?.contains('menu'))) this.close(); };
    addEventListener('pointerdown', this.onDown, true);
    this.#show(open[0].entries, x, y, null);
  }

  #show(entries, x, y, owner) {
    const menu = document.createElement('div');
    menu.className = 'menu';
    menu.setAttribute('role', 'menu');
    const level = this.levels.length;
    entries.forEach(entry => {
      const item = document.createElement('div');
      if (!entry.text) {
        item.setAttribute('role', 'separator');
        menu.append(item);
        return;
      }
      const [shown, key] = withAccessKey(entry.text);
      const enabled = (entry.flags & ENABLED) !== 0, opens = (entry.flags & OPENS) !== 0;
      item.setAttribute('role', entry.flags & CHECKED ? 'menuitemcheckbox' : 'menuitem');
      if (entry.flags & CHECKED) item.setAttribute('aria-checked', 'true');
      if (!enabled) item.setAttribute('aria-disabled', 'true');
      if (opens) item.setAttribute('aria-haspopup', 'menu');
      item.tabIndex = -1;
      item.dataset.key = key;
      const text = document.createElement('span'), shortcut = document.createElement('kbd');
      text.textContent = shown;
      text.dir = 'auto';
      shortcut.textContent = opens ? (this.mirrored ? '◂' : '▸') : entry.shortcut;
      item.append(text, shortcut);
      const open = () => {
        const box = item.getBoundingClientRect();
        if (this.levels[level + 1]?.owner === item) return;
        this.#closeFrom(level + 1);
        this.#show(entry.entries, this.mirrored ? box.left + 2 : box.right - 2, box.top - 4, item);
      };
      item.run = () => {
        if (!enabled) return;
        if (opens) return open();
        this.close();
        this.chosen(entry.number, entry.shortcut);
      };
      item.open = enabled && opens ? open : null;
      item.addEventListener('click', () => item.run());
      // Not for a pointer that only rests where the menu has opened.
      item.addEventListener('pointermove', event => {
        if (!event.movementX && !event.movementY || this.root.activeElement === item) return;
        item.focus();
        if (item.open) item.open(); else this.#closeFrom(level + 1);
      });
      menu.append(item);
    });
    menu.addEventListener('keydown', event => this.#key(event, level));
    this.root.append(menu);
    this.levels.push({menu, owner});
    // Beside its owner on the other side, or moved, where the window ends.
    const {offsetWidth, offsetHeight} = menu, beside = owner?.getBoundingClientRect(), wanted = this.mirrored ? x - offsetWidth : x;
    const other = this.mirrored ? (beside ? beside.right - 2 : 0) : beside ? beside.left - offsetWidth + 2 : innerWidth - offsetWidth;
    menu.style.left = Math.max(0, wanted < 0 || wanted + offsetWidth > innerWidth ? other : wanted) + 'px';
    menu.style.top = Math.max(0, Math.min(y, innerHeight - offsetHeight)) + 'px';
    this.#items(level)[0]?.focus();
  }

  #items(level) { return [...this.levels[level].menu.querySelectorAll('[role^=menuitem]')]; }

  #closeFrom(level) {
    for (const {menu} of this.levels.splice(level)) menu.remove();
  }

  #key(event, level) {
    const items = this.#items(level), at = items.indexOf(this.root.activeElement), {key} = event;
    event.preventDefault();
    event.stopPropagation();
    const [into, back] = this.mirrored ? ['ArrowLeft', 'ArrowRight'] : ['ArrowRight', 'ArrowLeft'];
    const go = to => items[(to + items.length) % items.length]?.focus();
    if (key === 'ArrowDown') go(at + 1);
    else if (key === 'ArrowUp') go(at < 0 ? items.length - 1 : at - 1);
    else if (key === 'Home') go(0);
    else if (key === 'End') go(items.length - 1);
    else if (key === 'Enter' || key === ' ') items[at]?.run();
    else if (key === into && items[at]?.open) items[at].open();
    else if (key === back && level > 0 || key === 'Escape') {
      const {owner} = this.levels[level];
      if (level === 0) return this.close();
      this.#closeFrom(level);
      owner.focus();
    } else if (key === 'Tab') this.close();
    else if (key.length === 1) {
      const letter = key.toLowerCase(), marked = items.filter(item => item.dataset.key === letter);
      if (marked.length === 1) return marked[0].run();
      const next = [...items.slice(at + 1), ...items.slice(0, at + 1)];
      next.find(item => item.dataset.key === letter || item.textContent.toLowerCase().startsWith(letter))?.focus();
    }
  }

  close() {
    if (!this.levels.length) return;
    removeEventListener('pointerdown', this.onDown, true);
    this.#closeFrom(0);
    this.closed();
    this.before?.focus?.({preventScroll: true});
  }
}
