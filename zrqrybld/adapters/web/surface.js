// Surface: a control in a canvas element. It forwards what the user does, keeps what must be painted, and draws.

import {buttonBit, heldButtons, keyCode, shiftBits, typedText} from './keys.js';
import {readTheme} from './theme.js';

const CURSORS = ['default', 'wait', 'move', 'ew-resize', 'ns-resize', 'nwse-resize', 'nesw-resize', 'col-resize',
  'not-allowed', 'crosshair'];
const LINE_PIXELS = 33;      // of a wheel that counts pixels
const LONG_PRESS = 550;      // milliseconds
const DOUBLE_TAP = 400;
const STILL = 10;            // pixels a finger may tremble
const TICK = 50;
const MOST_MEASURED = 20000;

export class Surface {
  constructor(designer, number, host, label) {
    this.designer = designer;
    this.api = designer.api;
    this.number = number;
    this.host = host;
    this.dirty = null;
    this.touches = new Map();
    this.elided = new Map();
    const make = (name, className) => {
      const element = document.createElement(name);
      element.className = className;
      host.append(element);
      return element;
    };
    this.canvas = make('canvas', 'view');
    this.canvas.tabIndex = 0;
    this.canvas.setAttribute('role', 'application');
    this.canvas.setAttribute('aria-label', label);
    this.context = this.canvas.getContext('2d', {alpha: false});
    this.measuring = document.createElement('canvas').getContext('2d');
    this.bars = [make('div', 'bar horizontal'), make('div', 'bar vertical')];
    this.bars.forEach((bar, vertical) => {
      bar.append(document.createElement('div'));
      bar.hidden = true;
      bar.tabIndex = -1;
      bar.addEventListener('scroll', () => {
        const value = Math.round(vertical ? bar.scrollTop : Math.abs(bar.scrollLeft));
        if (!bar.waits && value !== bar.value) this.api.scroll(number, vertical, bar.value = value);
      });
    });
    this.access = make('div', 'access');
    this.readStyle();
    this.#listen();
    this.observer = new ResizeObserver(() => this.measure());
    this.observer.observe(host);
  }

  end() {
    this.observer.disconnect();
    clearInterval(this.timer);
    clearTimeout(this.pressing);
    cancelAnimationFrame(this.frame);
    cancelAnimationFrame(this.arranging);
    this.ended = true;
    // A canvas keeps its pixels until it is collected, however small its element has become.
    this.canvas.width = this.canvas.height = 0;
  }

  // --- Size, fonts, colours ---

  measure() {
    if (this.ended || !this.host.isConnected) return;
    const bar = vertical => (this.bars[vertical].hidden ? 0 : this.bars[vertical].getBoundingClientRect()[vertical ? 'width' : 'height']);
    const width = Math.max(0, this.host.clientWidth - bar(1)), height = Math.max(0, this.host.clientHeight - bar(0));
    const ratio = devicePixelRatio || 1, rightToLeft = getComputedStyle(this.host).direction === 'rtl';
    if (width === this.width && height === this.height && ratio === this.ratio && rightToLeft === this.rightToLeft) return;
    Object.assign(this, {width, height, ratio, rightToLeft});
    this.canvas.style.width = width + 'px';
    this.canvas.style.height = height + 'px';
    this.canvas.style.insetInlineStart = '0';
    this.canvas.width = Math.round(width * ratio);
    this.canvas.height = Math.round(height * ratio);
    this.api.resize(this.number, width, height, rightToLeft ? 1 : 0);
    this.invalidate(0, 0, width, height);
    this.paint();  // in the same frame: a canvas is empty after its size has changed
  }

  // Colours and font of the element; returns whether the font is another one.
  readStyle() {
    this.color = readTheme(this.host);
    const style = getComputedStyle(this.host), before = this.fontSize + this.fontFamily;
    this.fontSize = style.fontSize;
    this.fontFamily = style.fontFamily;
    this.fonts = new Map();
    this.elided.clear();
    if (this.width) this.invalidate(0, 0, this.width, this.height);
    return before !== this.fontSize + this.fontFamily;
  }

  // What the library writes as "inherit" is the element's own.
  font(css) {
    let font = this.fonts.get(css);
    if (!font) {
      const text = css.replace(/ ?inherit$/, ` ${this.fontFamily}`).replace(/^((?:italic |bold )*)inherit /, `$1${this.fontSize} `);
      this.context.font = text;
      const m = this.context.measureText('Hg');
      font = {text, ascent: m.fontBoundingBoxAscent, descent: m.fontBoundingBoxDescent, widths: new Map()};
      this.fonts.set(css, font);
    }
    return font;
  }

  textWidth(text, css) {
    const font = this.font(css);
    let width = font.widths.get(text);
    if (width === undefined) {
      // A context of its own, whose font is the last one that was asked for: to change it costs more than to measure.
      if (this.measuring.wanted !== font.text) this.measuring.font = this.measuring.wanted = font.text;
      ({width} = this.measuring.measureText(text));
      if (font.widths.size > MOST_MEASURED) font.widths.clear();
      font.widths.set(text, width);
    }
    return width;
  }

  lineHeight(css) {
    const {ascent, descent} = this.font(css);
    return ascent + descent;
  }

  // --- Painting ---

  invalidate(x, y, width, height) {
    if (this.ended) return;
    const area = {left: x - 1, top: y - 1, right: x + width + 1, bottom: y + height + 1};
    const {dirty} = this;
    this.dirty = dirty ? {left: Math.min(dirty.left, area.left), top: Math.min(dirty.top, area.top),
      right: Math.max(dirty.right, area.right), bottom: Math.max(dirty.bottom, area.bottom)} : area;
    this.frame ??= requestAnimationFrame(() => this.paint());
    this.designer.accessChanged(this);
  }

  paint() {
    cancelAnimationFrame(this.frame);
    this.frame = undefined;
    const {dirty, ratio, context} = this;
    this.dirty = null;
    if (!dirty || !this.width || !this.height) return;
    // Whole device pixels, so that no seam is left between what is painted now and what stays.
    const left = Math.max(0, Math.floor(dirty.left * ratio)), top = Math.max(0, Math.floor(dirty.top * ratio));
    const right = Math.min(this.canvas.width, Math.ceil(dirty.right * ratio));
    const bottom = Math.min(this.canvas.height, Math.ceil(dirty.bottom * ratio));
    if (right <= left || bottom <= top) return;
    context.save();
    context.setTransform(1, 0, 0, 1, 0, 0);
    context.beginPath();
    context.rect(left, top, right - left, bottom - top);
    context.clip();
    context.fillStyle = this.color(0);
    context.fillRect(left, top, right - left, bottom - top);
    this.#draw(context, ratio, () =>
      this.api.paint(this.number, left / ratio, top / ratio, (right - left) / ratio, (bottom - top) / ratio));
    context.restore();
  }

  #draw(context, ratio, paint) {
    const before = this.page.drawing;
    context.setTransform(ratio, 0, 0, ratio, 0, 0);
    this.page.drawing = {context, ratio, ratios: [], surface: this};
    try {
      paint();
    } finally {
      this.page.drawing = before;
    }
  }

  get page() { return this.designer.page; }

  // On the clipboard without a name, otherwise saved under it.
  picture(width, height, name) {
    const canvas = document.createElement('canvas'), ratio = Math.min(2, 8192 / Math.max(width, height));
    canvas.width = Math.ceil(width * ratio);
    canvas.height = Math.ceil(height * ratio);
    const context = canvas.getContext('2d');
    if (!context || !canvas.width) return false;
    this.#draw(context, ratio, () => this.api.paint_picture(this.number));
    const blob = new Promise((done, fail) => canvas.toBlob(b => (b ? done(b) : fail(new Error('no picture'))), 'image/png'));
    if (name) {
      blob.then(b => this.designer.download(name.replace(/^\//, ''), b));
      return true;
    }
    if (!navigator.clipboard?.write || !globalThis.ClipboardItem) return false;
    navigator.clipboard.write([new ClipboardItem({'image/png': blob})]).catch(() => {});
    return true;
  }

  // --- What the library asks ---

  // Told for each of many boxes that are added at once, and shown once: each look at a bar's place lays out the page anew.
  scrollBar(vertical, value, maximum, page, step) {
    Object.assign(this.bars[vertical], {value, step, maximum, whole: page + maximum, waits: true});
    this.arranging ??= requestAnimationFrame(() => this.#arrangeBars());
  }

  #arrangeBars() {
    this.arranging = undefined;
    let appears = false;
    for (const bar of this.bars.filter(({waits}) => waits)) {
      const vertical = bar === this.bars[1], inner = bar.firstChild.style, {maximum, value} = bar;
      appears ||= bar.hidden !== maximum <= 0;
      bar.hidden = maximum <= 0;
      // As long in relation to the bar's own length as the picture is to the view.
      if (vertical) inner.height = `calc(100% + ${maximum}px)`; else inner.width = `calc(100% + ${maximum}px)`;
      if (vertical) bar.scrollTop = value; else bar.scrollLeft = this.rightToLeft ? -value : value;
      bar.waits = false;
    }
    if (!appears) return;
    this.host.classList.toggle('both-bars', this.bars.every(bar => !bar.hidden));
    this.measure();
  }

  cursor(cursor) { this.canvas.style.cursor = CURSORS[cursor] ?? 'default'; }

  /** Whether a button or a finger is down on it. */
  isHeld() { return this.pointer !== undefined && this.canvas.hasPointerCapture(this.pointer); }

  capture(captured) {
    try {
      if (captured && this.pointer !== undefined) this.canvas.setPointerCapture(this.pointer);
    } catch {
      // The pointer has gone.
    }
  }

  focus() { this.canvas.focus({preventScroll: true}); }

  ticking(on) {
    clearInterval(this.timer);
    this.timer = on ? setInterval(() => this.api.tick(this.number), TICK) : undefined;
  }

  menu(x, y, fields) {
    const box = this.canvas.getBoundingClientRect();
    this.designer.openMenu(this, box.left + x, box.top + y, fields);
  }

  drag(text) { this.page.beginDrag(this, text); }

  // --- What the user does ---

  place(event) {
    const box = this.canvas.getBoundingClientRect();
    return [event.clientX - box.left, event.clientY - box.top];
  }

  #listen() {
    const {canvas, api, number} = this;
    const on = (name, listener, options) => canvas.addEventListener(name, listener, options);
    const mouse = (kind, button, event) => api.mouse(number, kind, button, shiftBits(event), ...this.place(event));
    on('pointerdown', event => {
      this.designer.closeMenu();
      this.pointer = event.pointerId;
      if (event.pointerType === 'touch') return this.#touchDown(event);
      canvas.setPointerCapture(event.pointerId);
      this.pressed = true;
    });
    // The second press of a double click is told as that alone; only this event knows which one it is.
    on('mousedown', event => {
      if (!this.pressed) return;  // a finger's
      this.pressed = false;
      const again = event.button === 0 && event.detail % 2 === 0;
      event.preventDefault();  // the control asks for the keyboard where it wants it: what the press opens keeps it
      mouse(again ? 3 : 0, buttonBit(event), event);
    });
    on('pointermove', event => {
      if (this.page.dragging) return;
      if (event.pointerType === 'touch') return this.#touchMove(event);
      mouse(1, heldButtons(event), event);
      this.#tip(event);
    });
    on('pointerup', event => {
      if (this.page.dragging) return;
      if (event.pointerType === 'touch') return this.#touchUp(event);
      mouse(2, buttonBit(event), event);
    });
    on('pointercancel', event => {
      this.touches.delete(event.pointerId);
      clearTimeout(this.pressing);
      api.key(number, 1, 27, 0, '');  // as Esc: nothing is done half
      mouse(2, 1, event);
    });
    on('pointerleave', () => api.mouse(number, 4, 0, 0, 0, 0));
    on('contextmenu', event => event.preventDefault());
    on('wheel', event => {
      event.preventDefault();
      const lines = event.deltaMode === 1 ? 1 : event.deltaMode === 2 ? 20 : 1 / LINE_PIXELS;
      api.wheel(number, shiftBits(event), ...this.place(event), event.deltaX * lines, event.deltaY * lines);
    }, {passive: false});
    on('keydown', event => this.#key(event));
    on('keyup', event => { api.key(number, 0, keyCode(event), shiftBits(event), ''); });
    on('focus', () => api.focus(number, 1));
    on('blur', () => { if (!this.designer.menuOpen) api.focus(number, 0); });
    // Texts from elsewhere: what they are is known only when they are dropped.
    on('dragover', event => { if (event.dataTransfer.types.includes('text/plain')) event.preventDefault(); });
    on('drop', event => {
      const text = event.dataTransfer.getData('text/plain');
      if (!text) return;
      event.preventDefault();
      event.stopPropagation();
      if (api.drag(number, 0, text, shiftBits(event), ...this.place(event))) {
        api.drag(number, 2, text, shiftBits(event), ...this.place(event));
      } else {
        api.drag(number, 1, '', 0, 0, 0);
      }
    });
  }

  #key(event) {
    if (event.isComposing) return;
    const code = keyCode(event), shift = shiftBits(event);
    if (shift === 2 && code === 86) {  // the text comes with the paste event, which the key itself leads to
      this.designer.pasteInto(this);
      return;
    }
    if (this.api.key(this.number, 1, code, shift, typedText(event))) {
      event.preventDefault();
      event.stopPropagation();
    }
  }

  paste(text) {
    this.api.clipboard(this.number, text);
    this.api.key(this.number, 1, 86, 2, '');
  }

  // --- Fingers: one is the mouse, held still it opens the menu; two scroll and zoom ---

  #touchDown(event) {
    event.preventDefault();
    this.touches.set(event.pointerId, {x: event.clientX, y: event.clientY});
    clearTimeout(this.pressing);
    if (this.touches.size === 1) {
      this.canvas.setPointerCapture(event.pointerId);
      const place = this.place(event), {tap} = this;
      const again = tap && event.timeStamp - tap.time < DOUBLE_TAP && Math.hypot(place[0] - tap.place[0], place[1] - tap.place[1]) < STILL;
      this.tap = again ? null : {place};
      this.api.mouse(this.number, again ? 3 : 0, 1, 0, ...place);  // as of a mouse: the second press is that alone
      this.start = event;
      this.pressing = setTimeout(() => this.#longPress(), LONG_PRESS);
    } else if (this.touches.size === 2) {
      this.api.key(this.number, 1, 27, 0, '');
      this.api.mouse(this.number, 2, 1, 0, ...this.place(this.start));
      this.two = this.#spread();
    }
  }

  #longPress() {
    const place = this.place(this.start);
    this.api.key(this.number, 1, 27, 0, '');
    this.api.mouse(this.number, 2, 1, 0, ...place);
    this.touches.clear();
    this.api.mouse(this.number, 0, 2, 0, ...place);
    this.api.mouse(this.number, 2, 2, 0, ...place);
  }

  #spread() {
    const [a, b] = this.touches.values();
    return {x: (a.x + b.x) / 2, y: (a.y + b.y) / 2, size: Math.hypot(a.x - b.x, a.y - b.y)};
  }

  #touchMove(event) {
    const touch = this.touches.get(event.pointerId);
    if (!touch) return;
    touch.x = event.clientX;
    touch.y = event.clientY;
    if (this.touches.size === 1) {
      if (Math.hypot(event.clientX - this.start.clientX, event.clientY - this.start.clientY) > STILL) clearTimeout(this.pressing);
      this.api.mouse(this.number, 1, 1, 0, ...this.place(event));
    } else if (this.touches.size === 2) {
      const now = this.#spread(), {two} = this, place = this.place({clientX: now.x, clientY: now.y});
      this.api.wheel(this.number, 0, ...place, (two.x - now.x) / LINE_PIXELS, (two.y - now.y) / LINE_PIXELS);
      const zoom = Math.log(two.size / Math.max(now.size, 1)) * 12;
      if (Math.abs(zoom) > 1) {
        this.api.wheel(this.number, 2, ...place, 0, zoom);
        two.size = now.size;
      }
      two.x = now.x;
      two.y = now.y;
    }
  }

  #touchUp(event) {
    clearTimeout(this.pressing);
    const single = this.touches.size === 1;
    if (!this.touches.delete(event.pointerId) || !single) return;
    const place = this.place(event);
    this.api.mouse(this.number, 2, 1, 0, ...place);
    if (this.tap) this.tap = {time: event.timeStamp, place};
  }

  #tip(event) {
    const tip = this.api.tip(this.number, ...this.place(event));
    if (this.canvas.title !== tip) this.canvas.title = tip;
  }
}

// --- Drawing: what page.h names, on the surface that is being painted ---

/** The functions of a canvas, for a page whose `drawing` is the surface in hand. */
export function drawingCalls(page) {
  const round = v => Math.round(v * page.drawing.ratio) / page.drawing.ratio;
  const rect = (x, y, w, h) => { const l = round(x), t = round(y); return [l, t, round(x + w) - l, round(y + h) - t]; };
  const color = ink => page.drawing.surface.color(ink);
  const path = (p, radius) => {
    const {context} = page.drawing;
    context.beginPath();
    context.moveTo(p[0], p[1]);
    for (let i = 2; i < p.length - 2; i += 2) {
      const room = Math.min(Math.hypot(p[i] - p[i - 2], p[i + 1] - p[i - 1]), Math.hypot(p[i + 2] - p[i], p[i + 3] - p[i + 1])) / 2;
      context.arcTo(p[i], p[i + 1], p[i + 2], p[i + 3], Math.min(radius, room));
    }
    context.lineTo(p[p.length - 2], p[p.length - 1]);
  };
  // A line of odd width is sharp only when its middle is the middle of a device pixel.
  const center = (v, width) => {
    const {ratio} = page.drawing, odd = Math.round(width * ratio) % 2 !== 0;
    return (odd ? Math.floor(v * ratio) + 0.5 : Math.round(v * ratio)) / ratio;
  };
  const sharp = (points, width) => {
    const p = points.slice();
    for (let i = 0; i + 3 < p.length; i += 2) {
      if (points[i] === points[i + 2]) p[i] = p[i + 2] = center(points[i], width);
      if (points[i + 1] === points[i + 3]) p[i + 1] = p[i + 3] = center(points[i + 1], width);
    }
    return p;
  };
  const strokeIt = (context, ink, width) => {
    context.strokeStyle = color(ink);
    context.lineWidth = width;
    context.lineJoin = 'round';
    context.stroke();
  };
  const calls = {
    fill(x, y, w, h, ink, radius) {
      const {context} = page.drawing, area = rect(x, y, w, h);
      context.fillStyle = color(ink);
      if (radius <= 0) return context.fillRect(...area);
      context.beginPath();
      context.roundRect(...area, radius);
      context.fill();
    },
    stroke(x, y, w, h, ink, line, radius) {
      const {context, ratio} = page.drawing, [l, t, width, height] = rect(x, y, w, h);
      const pen = Math.max(1, Math.round(line * ratio)) / ratio;
      context.strokeStyle = color(ink);
      context.lineWidth = pen;
      context.beginPath();
      context.roundRect(l + pen / 2, t + pen / 2, Math.max(0, width - pen), Math.max(0, height - pen), Math.max(0, radius - pen / 2));
      context.stroke();
    },
    lines(points, ink, width, radius) {
      const {context} = page.drawing;
      path(sharp(points, width), radius);
      strokeIt(context, ink, width);
    },
    // Between two points, as most lines are.
    line(x1, y1, x2, y2, ink, width) {
      const {context} = page.drawing;
      if (x1 === x2) x1 = x2 = center(x1, width);
      if (y1 === y2) y1 = y2 = center(y1, width);
      context.beginPath();
      context.moveTo(x1, y1);
      context.lineTo(x2, y2);
      strokeIt(context, ink, width);
    },
    polygon(points, ink) {
      const {context} = page.drawing;
      path(points, 0);
      context.closePath();
      context.fillStyle = color(ink);
      context.fill();
    },
    text(x, y, w, h, text, ink, css, alignment) {
      const {context, surface} = page.drawing, font = surface.font(css);
      context.font = font.text;
      context.fillStyle = color(ink);
      context.textBaseline = 'alphabetic';
      context.textAlign = 'left';
      const [shown, width, direction] = fitting(context, surface, text, css, w);
      context.direction = direction;
      const left = alignment === 0 ? x : alignment === 1 ? x + (w - width) / 2 : x + w - width;
      context.fillText(shown, left, round(y + (h + font.ascent - font.descent) / 2));
    },
    image(x, y, w, h, bytes, columns, rows) {
      const {context} = page.drawing, image = document.createElement('canvas'), data = new ImageData(columns, rows);
      for (let i = 0; i < bytes.length; i += 4) data.data.set([bytes[i + 2], bytes[i + 1], bytes[i], bytes[i + 3]], i);
      image.width = columns;
      image.height = rows;
      image.getContext('2d').putImageData(data, 0, 0);
      context.drawImage(image, ...rect(x, y, w, h));
    },
    part(part, x, y, w, h, flags) {
      const checked = flags & 1, mixed = flags & 2, hover = flags & 4, pressed = flags & 8, disabled = flags & 16;
      const {context} = page.drawing;
      if (part === 0) {  // check box
        const side = Math.min(w, h, 14), l = round(x + (w - side) / 2), t = round(y + (h - side) / 2);
        const on = (checked || mixed) && !disabled;
        calls.fill(l, t, side, side, on ? 20 : 2, 3);
        if (!on) calls.stroke(l, t, side, side, disabled ? 15 : hover ? 20 : 9, 1, 3);
        if (!checked && !mixed) return;
        context.strokeStyle = on ? color(2) : color(15);
        context.lineWidth = 2;
        context.beginPath();
        const at = (a, b) => [l + side * a, t + side * b];
        if (mixed) { context.moveTo(...at(0.25, 0.5)); context.lineTo(...at(0.75, 0.5)); }
        else { context.moveTo(...at(0.22, 0.52)); context.lineTo(...at(0.43, 0.72)); context.lineTo(...at(0.78, 0.28)); }
        context.stroke();
      } else if (part === 1 || part === 2) {  // headers
        calls.fill(x, y, w, h, pressed || hover ? 10 : 6, 0);
        calls.fill(x + w - 1, y, 1, h, 14, 0);
        calls.fill(x, y + h - 1, w, 1, 14, 0);
      } else if (part === 3) {  // drop button
        if (hover || pressed) calls.fill(x, y, w, h, 10, 2);
        const cx = x + w / 2, cy = y + h / 2;
        context.strokeStyle = color(disabled ? 15 : 9);
        context.lineWidth = 1.5;
        context.beginPath();
        context.moveTo(cx - 4, cy - 2);
        context.lineTo(cx, cy + 2);
        context.lineTo(cx + 4, cy - 2);
        context.stroke();
      } else {
        calls.stroke(x, y, w, h, 20, 2, 3);
      }
    },
    clip(x, y, w, h) {
      const {context, ratio, ratios} = page.drawing;
      ratios.push(ratio);
      context.save();
      context.beginPath();
      context.rect(...rect(x, y, Math.max(0, w), Math.max(0, h)));
      context.clip();
    },
    view(x, y, zoom) {
      const {drawing} = page;
      drawing.ratios.push(drawing.ratio);
      drawing.context.save();
      drawing.context.translate(round(x), round(y));
      drawing.context.scale(zoom, zoom);
      drawing.ratio *= zoom;
    },
    back() {
      const {drawing} = page;
      drawing.context.restore();
      drawing.ratio = drawing.ratios.pop();
    },
  };
  return calls;
}

// The text, elided at its end where it does not fit, its width, and which way it is read.
function fitting(context, surface, text, css, room) {
  const key = `${css}\n${Math.round(room * 4)}\n${text}`, known = surface.elided.get(key);
  if (known) return known;
  context.direction = /^[^\p{L}]*[\u0590-\u08ff\ufb1d-\ufefc]/u.test(text) ? 'rtl' : 'ltr';
  let result = [text, context.measureText(text).width];
  if (result[1] > room + 0.5) {
    const characters = [...text];
    let [fits, all] = [0, characters.length];
    while (fits < all) {
      const middle = Math.ceil((fits + all) / 2);
      if (context.measureText(characters.slice(0, middle).join('') + '…').width <= room) fits = middle; else all = middle - 1;
    }
    const shown = fits ? characters.slice(0, fits).join('').trimEnd() + '…' : '…';
    result = [shown, context.measureText(shown).width];
  }
  if (surface.elided.size > MOST_MEASURED) surface.elided.clear();
  result.push(context.direction);
  surface.elided.set(key, result);
  return result;
}
