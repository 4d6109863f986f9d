// Numbers as text in a page, where JavaScript writes and reads them: as the native library's std::to_chars and
// std::from_chars do, whose answers these are.
import assert from 'node:assert/strict';
import {readFileSync} from 'node:fs';
import {join} from 'node:path';
import {test} from 'node:test';
import {runInNewContext} from 'node:vm';
import {root} from './browser.mjs';

const world = {
  LibraryManager: {library: {}}, HEAPF64: new Float64Array(1), written: '', given: '',
  mergeInto: (library, functions) => Object.assign(library, functions),
  stringToUTF8: text => { world.written = text; return text.length; },
  UTF8ToString: (text, length) => world.given.slice(0, length),
};
runInNewContext(readFileSync(join(root, 'bindings/web/imports/callbacks.js'), 'utf8'), world);
const {zrj_number_text: write, zrj_number: read} = world.LibraryManager.library;

test('numbers are written with the fewest digits', () => {
  const rows = [[0, '0'], [-0, '-0'], [0.1, '0.1'], [1 / 3, '0.3333333333333333'], [100, '100'], [-2.5, '-2.5'], [1e15, '1e+15'], [123456789012345, '123456789012345'],
    [1234567890123456, '1234567890123456'], [123456789012345680000, '123456789012345683968'], [1e22, '1e+22'], [9.5e-6, '9.5e-06'], [1e-7, '1e-07'],
    [5e-324, '5e-324'], [Number.MAX_VALUE, '1.7976931348623157e+308'], [-1e100, '-1e+100'], [Infinity, 'inf'], [-Infinity, '-inf'], [NaN, 'nan']];
  for (const [value, text] of rows) {
    assert.equal(write(value, 0, 0, 0), text.length, text);
    assert.equal(world.written, text);
  }
  for (const [value, text] of [[0.1, '0.1'], [16777217, '16777216'], [3.4028235e38, '3.4028235e+38'], [1e-45, '1e-45'], [1e20, '1e+20']]) {
    write(Math.fround(value), 1, 0, 0);
    assert.equal(world.written, text);
  }
  for (const [value, text] of [[1e-5, '0.00001'], [1e5, '100000'], [1e22, '10000000000000000000000']]) {
    write(value, 0, 1, 0);
    assert.equal(world.written, text);
  }
});

test('numbers are read as far as they go', () => {
  for (const [text, length, value] of [['.5', 2, 0.5], ['5.', 2, 5], ['1e5', 3, 1e5], ['1e', 1, 1], ['0x10', 1, 0], ['12 months', 2, 12], ['-7', 2, -7], ['0e9', 3, 0]]) {
    world.given = text;
    assert.equal(read(text, text.length, 0), length, text);
    assert.equal(world.HEAPF64[0], value, text);
  }
  for (const [text, answer] of [['-', 0], ['+3', 0], [' 3', 0], ['inf', 0], ['1e999', -1], ['-1e999', -1], ['1e-999', -1]]) {
    world.given = text;
    assert.equal(read(text, text.length, 0), answer, text);
  }
});
