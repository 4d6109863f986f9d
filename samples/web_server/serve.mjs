// Serves a page with the designer to this machine alone and, with a database, that database's tables and rows by the
// protocol of docs/web.md: to who has the token, only for reading, within limits.
//
//   node serve.mjs FOLDER [PORT] [--database postgres://role@host/name]
//
// MODULES: the folder whose node_modules holds pg and pg-cursor; the current one without it.
import {createReadStream} from 'node:fs';
import {stat} from 'node:fs/promises';
import {createServer} from 'node:http';
import {randomBytes, timingSafeEqual} from 'node:crypto';
import {extname, join, normalize, resolve} from 'node:path';
import {parseArgs} from 'node:util';

const {values: {database}, positionals: [given = '.', port = '8017']} =
  parseArgs({allowPositionals: true, options: {database: {type: 'string'}}});
const folder = resolve(given);
const types = {'.html': 'text/html; charset=utf-8', '.js': 'text/javascript', '.mjs': 'text/javascript', '.css': 'text/css',
  '.wasm': 'application/wasm', '.sql': 'text/plain; charset=utf-8', '.json': 'application/json'};
const LONGEST_QUESTION = 1 << 20, MOST_AT_ONCE = 16;

async function serveFile(path, answer) {
  try {
    // Normalised from the root, so that no ".." leads out of the folder.
    const file = join(folder, normalize('/' + decodeURIComponent(path)), path.endsWith('/') ? 'index.html' : '');
    if (!(await stat(file)).isFile()) throw new Error('no file');
    answer.writeHead(200, {'Content-Type': types[extname(file)] ?? 'application/octet-stream', 'Cache-Control': 'no-cache'});
    createReadStream(file).pipe(answer);
  } catch {
    answer.writeHead(404).end('Not found');
  }
}

// What a question is refused with.
class Refusal extends Error {
  constructor(status, message) {
    super(message);
    this.status = status;
  }
}

async function questionOf(request) {
  if (request.method !== 'POST') throw new Refusal(405, 'Rows are asked for by POST.');
  // A page of another origin cannot send this type without asking first, which is never allowed.
  if (request.headers['content-type'] !== 'application/json') throw new Refusal(415, 'A question is application/json.');
  const parts = [];
  let size = 0;
  for await (const part of request) {
    // What is too long is read to its end and thrown away: so the answer arrives.
    if ((size += part.length) <= LONGEST_QUESTION) parts.push(part);
  }
  if (size > LONGEST_QUESTION) throw new Refusal(413, 'The question is too long.');
  let asked;
  try {
    asked = JSON.parse(Buffer.concat(parts).toString());
  } catch {
    throw new Refusal(400, 'The question is no JSON.');
  }
  const {sql, limit = 1000} = asked ?? {};
  if (typeof sql !== 'string' || !Number.isInteger(limit) || limit < 1) throw new Refusal(400, 'A question has "sql" and may have "limit".');
  return {sql, limit};
}

function checkWhoAsks(request, token, hosts) {
  // A name that somebody else has pointed at this machine is not its own.
  if (!hosts.includes(request.headers.host)) throw new Refusal(403, 'This is another server.');
  const shown = Buffer.from(String(request.headers.authorization ?? '')), wanted = Buffer.from(`Bearer ${token}`);
  if (shown.length !== wanted.length || !timingSafeEqual(shown, wanted)) throw new Refusal(401, 'The token is missing or wrong.');
}

const source = database === undefined ? null : await (await import('./postgresql.mjs')).openDatabase(database);
const token = randomBytes(24).toString('base64url');
let asking = 0;

async function answerQuestion(path, request) {
  checkWhoAsks(request, token, [`127.0.0.1:${server.address().port}`, `localhost:${server.address().port}`]);
  if (asking >= MOST_AT_ONCE) throw new Refusal(503, 'Too many questions at once.');
  ++asking;
  try {
    return path === '/schema' ? await source.schema() : await source.rows(await questionOf(request));
  } finally {
    --asking;
  }
}

const server = createServer(async (request, answer) => {
  const path = new URL(request.url, 'http://x').pathname;
  if (!source || (path !== '/schema' && path !== '/rows')) return serveFile(path, answer);
  let status = 200, said;
  try {
    said = await answerQuestion(path, request);
  } catch (error) {
    // What the database says of a statement has a code; the rest is not for the page.
    const known = error instanceof Refusal || error.code?.length === 5;
    if (!known) console.error(error.message);
    status = error.status ?? (known ? 400 : 502);
    said = {error: known ? error.message : 'The database cannot be asked.', ...(error.position && {position: Number(error.position)})};
  }
  answer.writeHead(status, {'Content-Type': 'application/json', 'Cache-Control': 'no-store'}).end(JSON.stringify(said));
}).listen(Number(port), '127.0.0.1', () => {
  const address = `http://127.0.0.1:${server.address().port}/${source ? `#token=${token}` : ''}`;
  console.log(`The designer: ${address} (Ctrl+C ends it)`);
});
