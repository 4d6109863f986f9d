// The windows that the library asks for, as dialog elements: each gets its texts, asks the library while it is open, and
// tells what was chosen. Names are always text, never markup.
import {Area} from './editors.js';
import {pack, unpack} from './fields.js';
import {withAccessKey} from './menus.js';

function element(name, properties = {}, ...children) {
  const made = Object.assign(document.createElement(name), properties);
  made.append(...children);
  return made;
}

// A caption whose ampersand marks the access key: Alt and the key go to what it names.
function labelled(control, caption, first = true) {
  const [shown, key] = withAccessKey(caption);
  if (key) control.accessKey = key;
  const label = element('label', {className: 'field'});
  if (first) label.append(shown, control); else label.append(control, shown);
  return label;
}

function button(caption, properties = {}) {
  const [shown, key] = withAccessKey(caption);
  return element('button', {type: 'button', textContent: shown, accessKey: key, ...properties});
}

const select = (texts, chosen) => {
  const made = element('select');
  texts.forEach((text, i) => made.append(element('option', {value: String(i), textContent: text, selected: i === chosen})));
  return made;
};

/** A window of the designer; `ask(what, fields)` and `answer(accepted, fields)` reach the library. */
export class Window {
  constructor(designer, number, kind, fields) {
    this.designer = designer;
    this.ask = (what, list) => designer.api.ask(designer.number, number, what, pack(list));
    this.number = number;
    this.box = element('dialog', {className: `window ${kind}`});
    this.form = element('form', {method: 'dialog'});
    this.problem = element('p', {className: 'problem', hidden: true});
    this.problem.setAttribute('role', 'alert');
    this.box.append(this.form);
    this.areas = [];
    this.fields = () => [];
    this.check = () => '';
    const build = this[kind];
    if (build) build.call(this, unpack(fields)); else this.message([kind, '2']);
    this.form.addEventListener('submit', event => {
      event.preventDefault();
      this.#accept();
    });
    this.box.addEventListener('cancel', event => {
      event.preventDefault();
      if (!this.stays) this.close(false);
    });
    this.box.addEventListener('keydown', event => event.stopPropagation());
    this.before = designer.root.activeElement;
    designer.root.append(this.box);
    this.box.showModal();
    (this.first ?? this.box.querySelector('input, select, textarea, button'))?.focus();
    this.begins?.();
    this.opened?.();
  }

  #accept() {
    const problem = this.check();
    this.problem.hidden = !problem.trim();
    this.problem.textContent = problem;
    if (!problem) this.close(true);
  }

  close(accepted) {
    const fields = accepted ? this.fields() : [];
    this.remove();
    this.designer.windowClosed(this);
    this.before?.focus?.({preventScroll: true});
    this.designer.api.answer(this.designer.number, this.number, accepted ? 1 : 0, pack(fields));
  }
  remove() {
    for (const area of this.areas) {
      area.end();
      this.designer.page.objects.delete(area.number);
    }
    this.box.close();
    this.box.remove();
  }

  title(text) {
    const heading = element('h2', {textContent: text, id: `w${this.number}`});
    this.box.setAttribute('aria-labelledby', heading.id);
    this.form.append(heading);
  }
  buttons(accept, cancel) {
    const row = element('div', {className: 'buttons'}, button(accept, {type: 'submit', className: 'main'}));
    if (cancel) {
      const no = button(cancel);
      no.addEventListener('click', () => this.close(false));
      row.append(no);
    }
    this.form.append(this.problem, row);
  }

  // A text with predictive text, and with its fault marked.
  typed(number, text, caption, single) {
    const host = element('div', {className: single ? 'code one-line' : 'code'}), [shown, key] = withAccessKey(caption);
    const area = new Area(this.designer, +number, host, shown, {takes: () => this.form.requestSubmit(), single});
    area.text.accessKey = key;
    this.areas.push(area);
    this.designer.page.objects.set(area.number, area);
    this.begins = () => area.begin(text);
    return area;
  }

  // --- The kinds ---

  message([text, icon]) {
    this.box.setAttribute('role', 'alertdialog');
    this.form.append(element('p', {className: `said icon${icon}`, textContent: text.replaceAll('\r', '')}));
    this.buttons(this.designer.close);
  }

  text([caption, label, text]) {
    this.title(caption);
    const input = element('input', {value: text, spellcheck: false, autocomplete: 'off'});
    this.form.append(labelled(input, label));
    this.check = () => this.ask('problem', [input.value]);
    this.fields = () => [input.value];
    this.buttons(this.designer.accept, this.designer.cancel);
    this.first = input;
    this.opened = () => input.select();
  }

  save([caption, fileName, kinds]) {
    this.title(caption);
    const all = unpack(kinds).map(unpack), input = element('input', {value: fileName, spellcheck: false});
    const kind = select(all.map(([name, extension]) => `${name} (.${extension})`), 0);
    kind.setAttribute('aria-label', caption);
    input.setAttribute('aria-label', caption);
    this.form.append(input, kind);
    const typed = () => all.some(([, extension]) => input.value.toLowerCase().endsWith('.' + extension));
    this.check = () => (input.value.trim() ? '' : ' ');
    this.fields = () => [typed() ? input.value : `${input.value}.${all[kind.selectedIndex][1]}`];
    this.buttons(this.designer.accept, this.designer.cancel);
  }

  connection([sources]) {
    const names = unpack(sources), input = element('input', {spellcheck: false, autocomplete: 'off'});
    input.setAttribute('list', `sources${this.number}`);
    this.form.append(labelled(input, this.designer.texts.source ?? ''), element('datalist', {id: `sources${this.number}`}, ...names.map(value => element('option', {value}))));
    this.check = () => (input.value ? this.ask('test', [input.value]) : ' ');
    this.fields = () => [input.value];
    this.buttons(this.designer.accept, this.designer.cancel);
  }

  tables([caption, tablesTab, viewsTab, addButton, closeButton, tables, views]) {
    this.title(caption);
    const list = element('select', {multiple: true, size: 12}), find = element('input', {type: 'search', spellcheck: false});
    list.setAttribute('aria-label', caption);
    find.setAttribute('aria-label', this.designer.texts.filter ?? '');
    find.placeholder = this.designer.texts.filter ?? '';
    const lists = [unpack(tables), unpack(views)], tabs = element('div', {className: 'tabs'});
    tabs.setAttribute('role', 'tablist');
    let current = 0;
    const fill = () => {
      const part = find.value.toLowerCase();
      list.replaceChildren(...lists[current].filter(name => name.toLowerCase().includes(part))
        .map(name => element('option', {value: name, textContent: name})));
      if (list.options.length) list.selectedIndex = 0;
    };
    [tablesTab, viewsTab].forEach((text, i) => {
      const tab = button(text);
      tab.setAttribute('role', 'tab');
      tab.addEventListener('click', () => {
        current = i;
        [...tabs.children].forEach((t, n) => t.setAttribute('aria-selected', String(n === i)));
        fill();
        list.focus();
      });
      tab.setAttribute('aria-selected', String(i === 0));
      tabs.append(tab);
    });
    const add = () => {
      const names = [...list.selectedOptions].map(option => option.value);
      if (names.length) this.ask('add', names);
    };
    find.addEventListener('input', fill);
    find.addEventListener('keydown', event => { if (event.key === 'ArrowDown') { list.focus(); event.preventDefault(); } });
    list.addEventListener('dblclick', add);
    this.form.append(tabs, find, list);
    // Enter adds and leaves the window open for the next one.
    this.form.addEventListener('submit', event => { event.preventDefault(); event.stopImmediatePropagation(); add(); });
    this.buttons(addButton, closeButton);
    list.addEventListener('keydown', event => { if (event.key === 'Enter') { event.preventDefault(); add(); } });
    fill();
    this.first = list.options.length ? list : find;
  }

  join([caption, frame, all1, all2, accept, cancel, checked1, checked2, table1, table2, columns1, columns2, comparisons, pairs, condition, text]) {
    this.title(caption);
    this.stays = true;  // it is closed by its two buttons alone
    const {texts} = this.designer, names1 = unpack(columns1), names2 = unpack(columns2), signs = unpack(comparisons);
    const rows = element('div', {className: 'pairs'}), list = [];
    const addPair = ([a, sign, b, turned, origin]) => {
      const first = select(names1, +a), comparison = select(signs, +sign), second = select(names2, +b), away = button('✕');
      first.setAttribute('aria-label', table1);
      comparison.setAttribute('aria-label', caption);
      second.setAttribute('aria-label', table2);
      away.setAttribute('aria-label', withAccessKey(texts.removePair ?? '')[0]);
      away.title = away.getAttribute('aria-label');
      const row = element('div', {className: 'pair'}, first, comparison, second, away);
      const entry = () => pack([first.value, comparison.value, second.value, turned, origin].map(String));
      list.push(entry);
      away.addEventListener('click', () => { list.splice(list.indexOf(entry), 1); row.remove(); say(); });
      row.addEventListener('change', say);
      rows.append(row);
    };
    const one = element('input', {type: 'checkbox', checked: !!checked1}), two = element('input', {type: 'checkbox', checked: !!checked2});
    const asks = this.typed(text, condition, texts.condition ?? '', true);
    const said = element('p', {className: 'quiet'});
    said.setAttribute('role', 'status');
    const choice = () => [one.checked ? '1' : '', two.checked ? '1' : ''];
    const all = () => [...choice(), pack(list.map(entry => entry())), asks.text.value];
    const say = () => {
      const warning = this.ask('warning', choice());
      said.textContent = warning || this.ask('describe', choice());
      said.classList.toggle('warning', !!warning);
    };
    unpack(pairs).forEach(pair => addPair(unpack(pair)));
    const more = button(texts.addPair ?? '+', {className: 'more'});
    more.addEventListener('click', () => addPair([0, 0, 0, '', 0]));
    one.addEventListener('change', say);
    two.addEventListener('change', say);
    this.form.append(element('div', {className: 'heads'}, element('b', {textContent: table1}), element('b', {textContent: table2})),
      rows, more, element('div', {className: 'field'}, withAccessKey(texts.condition ?? '')[0], asks.host),
      element('fieldset', {}, element('legend', {textContent: frame}), plainLabel(one, all1, table1, table2), plainLabel(two, all2, table1, table2)), said);
    this.check = () => this.ask('warning', choice()) || this.ask('problem', all());
    this.fields = all;
    this.buttons(accept, cancel);
    this.first = one;
    say();
  }

  expression([caption, text, accept, cancel, number, groups, insert]) {
    this.title(caption);
    const area = this.typed(number, text, caption, false);
    this.form.append(area.host);
    if (groups) {
      area.host.classList.add('beside');
      this.#pieces(unpack(groups), insert);
    }
    this.fields = () => [area.text.value];
    this.buttons(accept, cancel);
    this.first = area.text;
  }

  // What an expression can be built from, by groups: columns, functions, operators, words. Enter or a double click inserts.
  #pieces(groups, insert) {
    const {texts} = this.designer, find = element('input', {type: 'search', spellcheck: false, placeholder: texts.search ?? ''});
    const list = element('select', {size: 9}), hint = element('p', {className: 'quiet', textContent: texts.choose ?? ''});
    const values = element('div', {className: 'values'}), add = button(insert), options = [];
    find.setAttribute('aria-label', find.placeholder);
    list.setAttribute('aria-label', texts.pieces ?? '');
    hint.setAttribute('role', 'status');
    const shown = groups.map((packed, g) => {
      const [name, ...parts] = unpack(packed), group = element('optgroup', {label: name});
      parts.forEach((part, p) => {
        const [text, written, told] = unpack(part), option = element('option', {textContent: text, title: told});
        options.push({option, group, g, p, written, told});
      });
      return group;
    });
    const choose = () => {
      const chosen = options.find(({option}) => option.selected && option.parentElement);
      add.disabled = !chosen;
      hint.textContent = chosen ? [chosen.written, chosen.told].filter(Boolean).join(' — ') : texts.choose ?? '';
      values.replaceChildren(...unpack(this.ask('choose', chosen ? [chosen.g, chosen.p] : [-1, -1])).map((name, i) => {
        const value = element('input', {spellcheck: false, autocomplete: 'off'});
        value.addEventListener('input', () => this.ask('set', [i, value.value]));
        return labelled(value, name.replaceAll('&', '&&'));
      }));
    };
    const search = () => {
      const found = new Set(unpack(this.ask('find', [find.value.trim()])).map(Number));
      shown.forEach(group => group.replaceChildren());
      options.forEach((entry, i) => { if (found.has(i)) entry.group.append(entry.option); });
      list.replaceChildren(...shown.filter(group => group.children.length));
      list.selectedIndex = find.value.trim() && found.size ? 0 : -1;
      choose();
    };
    const write = () => { if (!add.disabled) this.ask('insert', []); };
    const takes = (control, key, act) => control.addEventListener('keydown', event => {
      if (event.key !== key || event.ctrlKey || event.altKey || event.metaKey) return;
      event.preventDefault();
      act();
    });
    find.addEventListener('input', search);
    takes(find, 'ArrowDown', () => { if (list.selectedIndex < 0) list.selectedIndex = 0; choose(); list.focus(); });
    list.addEventListener('change', choose);
    list.addEventListener('dblclick', write);
    for (const control of [find, list, values]) takes(control, 'Enter', write);
    add.addEventListener('click', write);
    this.form.append(find, element('div', {className: 'pieces'}, list, element('div', {}, hint, values, add)));
    search();
  }

  parameters([caption, statementLabel, accept, cancel, fields]) {
    this.title(caption);
    const inputs = unpack(fields).map(packed => {
      const [prompt, typeName, fallback, value] = unpack(packed);
      const input = element('input', {value, placeholder: fallback || typeName, spellcheck: false, autocomplete: 'off'});
      this.form.append(element('label', {className: 'field'}, prompt, input));
      input.addEventListener('input', () => show());
      return input;
    });
    const statement = element('textarea', {readOnly: true, rows: 6, cols: 60, className: 'code'});
    const show = () => { statement.value = this.ask('statement', this.fields()); };
    this.form.append(labelled(statement, statementLabel));
    this.fields = () => inputs.map(input => input.value);
    this.check = () => {
      for (const [i, input] of inputs.entries()) {
        const problem = this.ask('problem', [String(i), input.value]);
        if (problem) { input.focus(); return problem; }
      }
      return '';
    };
    this.buttons(accept, cancel);
    show();
  }
}

// A caption whose ampersand may be one of a table's name.
function plainLabel(control, caption, ...names) {
  let text = caption, kept = [];
  names.forEach((name, i) => { if (name) { text = text.replaceAll(name, `\u0001${i}\u0002`); kept[i] = name; } });
  const [shown, key] = withAccessKey(text);
  if (key) control.accessKey = key;
  return element('label', {className: 'choice'}, control, shown.replace(/\u0001(\d)\u0002/g, (_, i) => kept[i]));
}
