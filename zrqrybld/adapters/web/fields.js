// Lists of texts as one text, as fields.h writes them: each with its length in UTF-8 bytes before it.
const encoder = new TextEncoder();
const decoder = new TextDecoder();

export function pack(fields) {
  let text = '';
  for (const field of fields) text += encoder.encode(field).length + ':' + field;
  return text;
}

export function unpack(text) {
  const bytes = encoder.encode(text), fields = [];
  for (let at = 0; at < bytes.length;) {
    const colon = bytes.indexOf(58, at);
    const length = Number(decoder.decode(bytes.subarray(at, colon)));
    fields.push(decoder.decode(bytes.subarray(colon + 1, colon + 1 + length)));
    at = colon + 1 + length;
  }
  return fields;
}
