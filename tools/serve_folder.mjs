// Serves a folder to this machine alone: what ./run --web shows.
//
//   node serve_folder.mjs FOLDER [PORT]
import {createReadStream} from 'node:fs';
import {stat} from 'node:fs/promises';
import {createServer} from 'node:http';
import {extname, join, normalize, resolve} from 'node:path';

const types = {'.html': 'text/html; charset=utf-8', '.js': 'text/javascript', '.mjs': 'text/javascript', '.css': 'text/css',
  '.wasm': 'application/wasm', '.sql': 'text/plain; charset=utf-8', '.json': 'application/json'};
const folder = resolve(process.argv[2]), port = Number(process.argv[3] ?? 8017);

createServer(async (request, answer) => {
  try {
    const path = decodeURIComponent(new URL(request.url, 'http://x').pathname);
    // Normalised from the root, so that no ".." leads out of the folder.
    const file = join(folder, normalize('/' + path), path.endsWith('/') ? 'index.html' : '');
    if (!(await stat(file)).isFile()) throw new Error('no file');
    answer.writeHead(200, {'Content-Type': types[extname(file)] ?? 'application/octet-stream', 'Cache-Control': 'no-cache'});
    createReadStream(file).pipe(answer);
  } catch {
    answer.writeHead(404).end('Not found');
  }
}).listen(port, '127.0.0.1', () => console.log(`The designer: http://127.0.0.1:${port}/ (Ctrl+C ends it)`));
