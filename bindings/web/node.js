// The library in Node: the same as library.js, of a WebAssembly that is larger and faster.

import zrQryBld from './zrqrybld-node.mjs';
import {loadFrom} from './library.js';

export {ZrError} from './library.js';

/** As in library.js; `options.wasm` is zrqrybld-node.wasm here. */
export const load = ({wasm} = {}) => loadFrom(zrQryBld, wasm ?? new URL('./zrqrybld-node.wasm', import.meta.url));
