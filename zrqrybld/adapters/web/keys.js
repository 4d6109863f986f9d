// Keys and buttons as the library counts them.
const CODES = {
  Backspace: 8, Tab: 9, Enter: 13, Escape: 27, ' ': 32, PageUp: 33, PageDown: 34, End: 35, Home: 36, ArrowLeft: 37,
  ArrowUp: 38, ArrowRight: 39, ArrowDown: 40, Insert: 45, Delete: 46, ContextMenu: 93, '+': 107, '-': 109,
};

/** The code of a key: letters and digits by what they are, or by their place where the keyboard writes others. */
export function keyCode(event) {
  const {key, code} = event;
  if (Object.hasOwn(CODES, key)) return CODES[key];
  const f = /^F(\d{1,2})$/.exec(key);
  if (f) return 111 + Number(f[1]);
  if (/^[a-z0-9]$/i.test(key)) return key.toUpperCase().charCodeAt(0);
  const place = event.ctrlKey || event.metaKey ? /^(?:Key|Digit)([A-Z0-9])$/.exec(code) : null;
  return place ? place[1].charCodeAt(0) : 0;
}

/** Shift 1, Ctrl 2 (also Command), Alt 4. */
export const shiftBits = event =>
  (event.shiftKey ? 1 : 0) | (event.ctrlKey || event.metaKey ? 2 : 0) | (event.altKey ? 4 : 0);

/** What the key types; a command key types nothing, but AltGr, which says Ctrl and Alt, does. */
export function typedText(event) {
  const command = (event.ctrlKey || event.metaKey) !== event.altKey;
  return !command && [...event.key].length === 1 ? event.key : '';
}

export const buttonBit = event => [1, 4, 2][event.button] ?? 0;
export const heldButtons = event => event.buttons & 7;
