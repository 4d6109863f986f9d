// The library by member names: objects of its classes, their properties, methods and events, in a page or in Node.
//
//   const library = await load();
//   const query = library.create('qbQueryBuilder');
//   query.SQLPane = library.create('qbSQLPane');
//
// A name that a class does not have, and whatever the library refuses, throws an error with a `number`.

import zrQryBld from './zrqrybld.mjs';

const EMPTY = 0, NULL = 1, MISSING = 2, BOOLEAN = 3, INT16 = 4, INT32 = 5, INT64 = 6, SINGLE = 7, DOUBLE = 8, DATE = 9,
  STRING = 10, OBJECT = 11, ARRAY = 12;
const GET = 1, LET = 2, SET = 4, CALL = 8, EVENT = 16;
const VALUE_SIZE = 16;
const MS_PER_DAY = 86400000;

const encoder = new TextEncoder();
const decoder = new TextDecoder();

/** What the library refuses: `number` is one of docs/automation.md, `message` says it in words. */
export class ZrError extends Error {
  constructor(number, description) {
    super(description || `error ${number}`);
    this.name = 'ZrError';
    this.number = number;
  }
}

// Dates are days since 30 December 1899, in no time zone: a JavaScript date is taken and given by its local parts.
const toDays = date => (date.getTime() - date.getTimezoneOffset() * 60000 - Date.UTC(1899, 11, 30)) / MS_PER_DAY;
function fromDays(days) {
  const date = new Date(Math.round(days * MS_PER_DAY) + Date.UTC(1899, 11, 30));
  return new Date(date.getUTCFullYear(), date.getUTCMonth(), date.getUTCDate(), date.getUTCHours(), date.getUTCMinutes(),
    date.getUTCSeconds(), date.getUTCMilliseconds());
}

// What a call needs of the WebAssembly memory, freed with it. Most calls need little: they share one piece.
class Scratch {
  constructor(module) {
    this.module = module;
    this.size = 65536;
    this.base = module._malloc(this.size);
    this.used = 0;
  }
  take(bytes) {
    const at = this.base + this.used;
    if (this.used + bytes <= this.size) {
      this.used += bytes + 7 & ~7;
      return at;
    }
    const more = this.module._malloc(bytes);
    if (!more) throw new ZrError(7, 'Out of memory.');
    this.extra.push(more);
    return more;
  }
  // Calls nest: a handler may call the library again.
  run(work) {
    const {used, extra} = this;
    this.extra = [];
    try {
      return work();
    } finally {
      for (const piece of this.extra) this.module._free(piece);
      this.used = used;
      this.extra = extra;
    }
  }
  extra = [];
  text(text) {
    const bytes = encoder.encode(text);
    const at = this.take(bytes.length + 1);
    this.module.HEAPU8.set(bytes, at);
    this.module.HEAPU8[at + bytes.length] = 0;
    return [at, bytes.length];
  }
}

class Library {
  constructor(module) {
    this.module = module;
    this.scratch = new Scratch(module);
    this.members = new Map();    // by class: its members by folded name
    this.names = new Map();      // where a name stands in the memory, so that it is written there once
    this.objects = new Map();    // by handle: a weak link to its JavaScript object
    this.listeners = new Map();  // by number
    this.sources = new Map();
    this.last = 0;
    this.released = new FinalizationRegistry(handle => {
      if (this.objects.get(handle)?.deref() === undefined) this.objects.delete(handle);
      this.module._zrq_release(handle);
    });
    module.caller = {
      event: (listener, values, count) => this.#event(listener, values, count),
      rows: (source, kind, catalog, schema, table) => this.#rows(source, kind, {catalog, schema, table}),
      ended: number => { this.listeners.delete(number); this.sources.delete(number); },
    };
  }

  /** The version of the library, for instance "2.1.220". */
  get version() { return this.module.UTF8ToString(this.module._zrq_version()); }

  /** A new object of a public class. */
  create(className) {
    return this.scratch.run(() => {
      const handle = this.scratch.take(8);
      this.#check(this.module._zrq_create(this.scratch.text(className)[0], handle));
      return this.object(this.#u64(handle));
    });
  }

  /**
   * A connection, not yet open, to tables that JavaScript tells of: an object with `rows(kind, wanted)`, which returns
   * the rows of docs/automation.md, as arrays; nothing for a kind that it does not know.
   */
  connection(name, source) {
    const number = ++this.last;
    this.sources.set(number, source);
    return this.scratch.run(() => {
      const handle = this.scratch.take(8);
      this.#check(this.module._zrw_connection(this.scratch.text(name)[0], number, handle));
      return this.object(this.#u64(handle));
    });
  }

  /** Named numbers by their enumeration: `constants.SQLSyntaxEnum.SQLSyntaxOracle`. */
  get constants() {
    const all = {};
    this.scratch.run(() => {
      const [enumeration, name, value] = [this.scratch.take(4), this.scratch.take(4), this.scratch.take(4)];
      for (let i = 0; this.module._zrq_constant_at(i, enumeration, name, value) === 0; ++i) {
        const [of, called] = [this.#pointed(enumeration), this.#pointed(name)];
        (all[of] ??= {})[called] = this.module.HEAP32[value >> 2];
      }
    });
    return Object.defineProperty(this, 'constants', {value: all}).constants;
  }

  /** The names of the public classes. */
  get classes() {
    const names = [];
    for (let i = 0, at; (at = this.module._zrq_class_at(i)) !== 0; ++i) names.push(this.module.UTF8ToString(at));
    return names;
  }

  /** The members of a class in interface order: name, type, kinds (bits), isDefault, arguments. */
  membersOf(className) {
    const list = [];
    this.scratch.run(() => {
      const name = this.scratch.text(className)[0], at = this.scratch.take(24);
      for (let i = 0; this.module._zrq_member_at(name, i, at) === 0; ++i) {
        const m = this.module.HEAPU32.subarray(at >> 2, (at >> 2) + 6), text = p => this.module.UTF8ToString(p);
        const argumentsOf = [];
        for (let a = 0; a < m[5]; ++a) {
          const g = this.module.HEAPU32.subarray((m[4] >> 2) + 4 * a, (m[4] >> 2) + 4 * a + 4);
          argumentsOf.push({name: text(g[0]), type: text(g[1]), optional: g[2] !== 0, byReference: g[3] !== 0});
        }
        list.push({name: text(m[0]), type: text(m[1]), kinds: m[2], isDefault: m[3] !== 0, arguments: argumentsOf});
      }
    });
    return list;
  }

  // --- Objects ---

  /** The JavaScript object of a handle that was counted for it; null for nothing. */
  object(handle) {
    if (handle === 0n) return null;
    const known = this.objects.get(handle)?.deref();
    if (known) {
      this.module._zrq_release(handle);
      return known;
    }
    const made = this.#wrap(handle);
    this.objects.set(handle, new WeakRef(made));
    this.released.register(made, handle);
    return made;
  }

  #wrap(handle) {
    const className = this.scratch.run(() => {
      const at = this.scratch.take(4);
      this.#check(this.module._zrq_class(handle, at));
      return this.#pointed(at);
    });
    let members = this.members.get(className);
    if (!members) {
      members = new Map(this.membersOf(className).map(m => [m.name.toLowerCase(), m]));
      this.members.set(className, members);
    }
    const library = this;
    const own = {
      /** Listens to an event; returns what stops it. The last argument writes a by-reference argument: (position, value). */
      on: (event, handler) => library.#subscribe(handle, event, handler),
      get: (name, ...values) => library.#call('_zrq_get', handle, name, values),
      let: (name, value, ...values) => library.#let(handle, name, values, value),
      call: (name, ...values) => library.#call('_zrq_call', handle, name, values),
      toString: () => className,
      [Symbol.toPrimitive]: () => className,
      [HANDLE]: handle,
    };
    const methods = new Map();  // one function for each method, however often it is asked for
    const proxy = new Proxy(own, {
      get(target, name) {
        if (typeof name === 'symbol') {
          if (name === Symbol.iterator && members.has('count') && members.has('item')) return () => library.#items(proxy);
          return target[name];
        }
        if (Object.hasOwn(target, name)) return target[name];
        const member = members.get(name.toLowerCase());
        if (!member) {
          if (name === 'then' || name === 'toJSON') return undefined;  // it is no promise
          throw new ZrError(438, `${className} has no member ${name}.`);
        }
        if (member.kinds & GET && member.arguments.length === 0) return library.#call('_zrq_get', handle, name, []);
        let method = methods.get(name);
        if (!method) {
          const how = member.kinds & CALL ? '_zrq_call' : '_zrq_get';
          method = (...values) => library.#call(how, handle, member.name, values);
          methods.set(name, method);
        }
        return method;
      },
      set(_, name, value) {
        if (!members.has(String(name).toLowerCase())) throw new ZrError(438, `${className} has no member ${String(name)}.`);
        library.#let(handle, name, [], value);
        return true;
      },
      has: (target, name) => typeof name === 'string' && (Object.hasOwn(target, name) || members.has(name.toLowerCase())),
    });
    return proxy;
  }

  *#items(collection) {
    for (let i = 1; i <= collection.Count; ++i) yield collection.Item(i);
  }

  #nameOf(name) {
    let at = this.names.get(name);
    if (at === undefined) {
      const bytes = encoder.encode(name);
      at = this.module._malloc(bytes.length + 1);
      this.module.HEAPU8.set(bytes, at);
      this.module.HEAPU8[at + bytes.length] = 0;
      this.names.set(name, at);
    }
    return at;
  }

  #call(how, handle, name, values) {
    return this.scratch.run(() => {
      const given = this.#writeAll(values), result = this.scratch.take(VALUE_SIZE);
      this.module.HEAP32[result >> 2] = EMPTY;
      const number = how === '_zrq_get'
        ? this.module._zrq_get(handle, this.#nameOf(name), given, values.length, result)
        : this.module._zrq_call(handle, this.#nameOf(name), given, values.length, result, 0);
      this.#check(number);
      const value = this.#read(result);
      this.module._zrq_clear(result);
      return value;
    });
  }

  #let(handle, name, values, value) {
    this.scratch.run(() => {
      const given = this.#writeAll(values), at = this.#writeAll([value]);
      this.#check(this.module._zrq_let(handle, this.#nameOf(String(name)), given, values.length, at));
    });
  }

  // --- Events ---

  #subscribe(handle, event, handler) {
    const number = ++this.last;
    this.listeners.set(number, handler);
    return this.scratch.run(() => {
      const at = this.scratch.take(8);
      const failed = this.module._zrw_subscribe(handle, this.#nameOf(event), number, at);
      if (failed) this.listeners.delete(number);
      this.#check(failed);
      const subscription = this.#u64(at);
      return () => this.module._zrq_unsubscribe(subscription);
    });
  }

  // No exception goes back into the library: what a handler throws is reported as an error of the page.
  #event(listener, values, count) {
    const handler = this.listeners.get(listener);
    if (!handler) return;
    const given = [];
    for (let i = 0; i < count; ++i) given.push(this.#read(values + VALUE_SIZE * i));
    const write = (position, value) =>
      this.scratch.run(() => this.#check(this.module._zrq_write(position, this.#writeAll([value]))));
    try {
      handler(...given, write);
    } catch (error) {
      (globalThis.reportError ?? (e => setTimeout(() => { throw e; })))(error);
    }
  }

  // --- Sources ---

  #rows(source, kind, wanted) {
    const fail = (number, text) => this.scratch.run(() => this.module._zrq_fail(number, this.scratch.text(text)[0]));
    try {
      const rows = this.sources.get(source)?.rows(kind, wanted);
      if (!rows) return fail(3251, 'The source does not tell this.');
      for (const row of rows) {
        const refused = this.scratch.run(() => this.module._zrq_row(this.#writeAll([...row]), row.length));
        if (refused) return refused;
      }
      return 0;
    } catch (error) {
      return fail(Number.isInteger(error?.number) ? error.number : 5, String(error?.message ?? error));
    }
  }

  // --- Values ---

  #writeAll(values) {
    const at = this.scratch.take(VALUE_SIZE * Math.max(values.length, 1));
    values.forEach((value, i) => this.#write(at + VALUE_SIZE * i, value));
    return at;
  }

  #write(at, value) {
    const put = (type, write) => {
      const {HEAP32} = this.module;
      HEAP32[at >> 2] = type;
      HEAP32.fill(0, (at >> 2) + 1, (at >> 2) + 4);
      write?.();
    };
    const integer = v => new DataView(this.module.HEAPU8.buffer).setBigInt64(at + 8, BigInt(v), true);
    switch (typeof value) {
      case 'undefined': return put(MISSING);
      case 'boolean': return put(BOOLEAN, () => { this.module.HEAP32[at + 8 >> 2] = value ? 1 : 0; });
      case 'bigint': return put(INT64, () => integer(value));
      case 'number':
        if (Number.isInteger(value) && value >= -(2 ** 31) && value < 2 ** 31) return put(INT32, () => integer(value));
        return put(DOUBLE, () => { this.module.HEAPF64[at + 8 >> 3] = value; });
      case 'string': {
        const [data, length] = this.scratch.text(value);
        return put(STRING, () => this.module.HEAPU32.set([data, length], at + 8 >> 2));
      }
    }
    if (value === null) return put(EMPTY);
    if (value instanceof Date) return put(DATE, () => { this.module.HEAPF64[at + 8 >> 3] = toDays(value); });
    if (Array.isArray(value)) {
      const items = this.#writeAll(value);
      return put(ARRAY, () => this.module.HEAPU32.set([items, value.length], at + 8 >> 2));
    }
    const handle = value[HANDLE];
    if (handle === undefined) throw new ZrError(13, 'A value is a text, a number, a date, an array or an object of the library.');
    put(OBJECT, () => integer(handle));
  }

  #read(at) {
    const {HEAP32, HEAPU32, HEAPF64, HEAPU8} = this.module;
    const integer = () => new DataView(HEAPU8.buffer).getBigInt64(at + 8, true);
    switch (HEAP32[at >> 2]) {
      case BOOLEAN: return HEAP32[at + 8 >> 2] !== 0;
      case INT16:
      case INT32: return HEAP32[at + 8 >> 2];
      case INT64: {
        const value = integer();
        return value >= BigInt(Number.MIN_SAFE_INTEGER) && value <= BigInt(Number.MAX_SAFE_INTEGER) ? Number(value) : value;
      }
      case SINGLE:
      case DOUBLE: return HEAPF64[at + 8 >> 3];
      case DATE: return fromDays(HEAPF64[at + 8 >> 3]);
      case STRING: {
        const [data, length] = HEAPU32.subarray(at + 8 >> 2, at + 16 >> 2);
        return decoder.decode(HEAPU8.subarray(data, data + length));
      }
      case OBJECT: {
        const handle = this.#u64(at + 8);
        if (handle !== 0n) this.module._zrq_retain(handle);  // the value's own is released with it
        return this.object(handle);
      }
      case ARRAY: {
        const [items, count] = HEAPU32.subarray(at + 8 >> 2, at + 16 >> 2);
        return Array.from({length: count}, (_, i) => this.#read(items + VALUE_SIZE * i));
      }
      default: return null;
    }
  }

  #u64(at) { return new DataView(this.module.HEAPU8.buffer).getBigUint64(at, true); }
  #pointed(at) { return this.module.UTF8ToString(this.module.HEAPU32[at >> 2]); }

  #check(number) {
    if (number === 0) return;
    const text = this.scratch.take(4);
    this.module._zrq_last_error(text);
    throw new ZrError(number, this.#pointed(text));
  }
}

const HANDLE = Symbol('handle');
let loaded;

/**
 * The library, loaded once. `options.wasm`: the bytes or the address of zrqrybld.wasm, where it does not stand beside
 * these modules.
 */
export const load = ({wasm} = {}) => loadFrom(zrQryBld, wasm ?? new URL('./zrqrybld.wasm', import.meta.url));

/** The same from a build of it and the bytes or the address of its WebAssembly: what is loaded first counts. */
export function loadFrom(build, place) {
  loaded ??= (async () => {
    const isAddress = typeof place === 'string' || place instanceof URL;
    const settings = {};
    if (!isAddress) settings.wasmBinary = place;
    else if (globalThis.process?.versions?.node && String(place).startsWith('file:')) {
      const {readFile} = await import('node:fs/promises');
      settings.wasmBinary = await readFile(new URL(place));
    } else settings.locateFile = () => String(place);
    return new Library(await build(settings));
  })().catch(error => {
    loaded = undefined;  // a later call tries again
    throw error;
  });
  return loaded;
}
