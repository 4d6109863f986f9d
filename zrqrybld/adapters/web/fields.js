// Lists of texts as one text, as fields.h writes them: each with its length in UTF-8 bytes before it.
const encoder = new TextEncoder();
const decoder = new TextDecoder();

export function pack(fields) {
  let text = '';
  for (const field of fields) text += encoder.encode(field).length + ':' + field;
  return text;
}

const isAscii = text => /^[\x00-\x7f]*$/.test(text);

export function unpack(text) {
  return isAscii(text) ? unpackLetters(text) : unpackBytes(text);
}

// Where each letter is one byte nothing has to be translated.
function unpackLetters(text) {
  const fields = [];
  for (let at = 0; at < text.length;) {
    const begin = text.indexOf(':', at) + 1;
    if (begin === 0) break;
    at = begin + Number(text.slice(at, begin - 1));
    fields.push(text.slice(begin, at));
  }
  return fields;
}

function unpackBytes(text) {
  const bytes = encoder.encode(text), fields = [];
  for (let at = 0; at < bytes.length;) {
    const colon = bytes.indexOf(58, at);
    if (colon < 0) break;
    const length = Number(decoder.decode(bytes.subarray(at, colon)));
    fields.push(decoder.decode(bytes.subarray(colon + 1, colon + 1 + length)));
    at = colon + 1 + length;
  }
  return fields;
}
