// What callbacks.cpp and the C++ library ask of JavaScript. Handed to the linker; `Module` is the loaded library.
mergeInto(LibraryManager.library, {
  zrj_event: function(listener, values, count) { return Module.caller.event(listener, values, count); },
  zrj_rows: function(source, kind, catalog, schema, table) { return Module.caller.rows(source, kind, ...[catalog, schema, table].map(text => text ? UTF8ToString(text) : null)); },
  zrj_ended: function(number) { return Module.caller.ended(number); },

  // A number as std::to_chars writes it: with the fewest digits that are read as the same number, plain where that is
  // no longer than with an exponent. Returns the length.
  zrj_number_text: function(value, isSingle, plainOnly, at) {
    const sign = value < 0 || Object.is(value, -0) ? '-' : '';
    const magnitude = Math.abs(value);
    if (!(magnitude < Infinity)) return stringToUTF8(magnitude ? sign + 'inf' : 'nan', at, 8);
    let shortest = magnitude.toExponential();
    for (let more = 0; isSingle && more < 9; ++more) {
      shortest = magnitude.toExponential(more);
      if (Math.fround(shortest) == magnitude) break;
    }
    const [mantissa, exponent] = shortest.split('e');
    const digits = mantissa.replace('.', '');
    const power = Number(exponent);
    // From here on every digit before the point counts as it is, not as a zero.
    const exactFrom = 2 ** 53;
    const plain = magnitude >= exactFrom ? BigInt(magnitude).toString()
      : power < 0 ? '0.' + '0'.repeat(-power - 1) + digits
        : digits.length > power + 1 ? digits.slice(0, power + 1) + '.' + digits.slice(power + 1)
          : digits.padEnd(power + 1, '0');
    const scientific = mantissa + 'e' + exponent[0] + exponent.slice(1).padStart(2, '0');
    return stringToUTF8(sign + (plainOnly || plain.length <= scientific.length ? plain : scientific), at, 400);
  },

  // Reads a number as std::from_chars does. Returns its length: 0 when there is none, -1 when it is beyond all doubles.
  zrj_number: function(text, length, value) {
    const found = /^-?(\d+\.?\d*|\.\d+)(e[+-]?\d+)?/i.exec(UTF8ToString(text, length));
    if (!found) return 0;
    const number = Number(found[0]);
    if (!isFinite(number) || number == 0 && /[1-9]/.test(found[1])) return -1;
    HEAPF64[value >> 3] = number;
    return found[0].length;
  },
});
