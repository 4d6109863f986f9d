// Writes index.d.ts of the package: the classes as the library itself tells of them, and what the modules add by hand.
//
//   node make_types.mjs FOLDER    where the package has been put together
import {writeFile} from 'node:fs/promises';
import {pathToFileURL} from 'node:url';

const folder = process.argv[2];
const {load} = await import(pathToFileURL(`${folder}/library.js`));
const library = await load();
const [GET, LET, SET, CALL, EVENT] = [1, 2, 4, 8, 16];
const PLAIN = {'': 'void', String: 'string', Boolean: 'boolean', Long: 'number', Integer: 'number', LongLong: 'number | bigint',
  Single: 'number', Double: 'number', Color: 'number', Date: 'Date', Variant: 'any', Object: 'any'};
const classes = new Set(library.classes), enumerations = new Set(Object.keys(library.constants));

const typeOf = name => {
  if (name.endsWith('()')) return `${typeOf(name.slice(0, -2))}[]`;
  return PLAIN[name] ?? (classes.has(name) ? `${name} | null` : enumerations.has(name) ? name : 'any');
};
const argumentsOf = list => list.map(({name, type, optional}, i) =>
  `${name[0].toLowerCase()}${name.slice(1)}_${optional && list.slice(i).every(a => a.optional) ? '?' : ''}: ${typeOf(type)}`).join(', ');

function memberText({name, type, kinds, arguments: list}) {
  if (kinds & EVENT) return [];
  if (kinds & CALL) return [`  ${name}(${argumentsOf(list)}): ${typeOf(type)};`];
  if (list.length) return [`  ${name}(${argumentsOf(list)}): ${typeOf(type)};`];
  return [`  ${kinds & (LET | SET) ? '' : 'readonly '}${name}: ${typeOf(type)};`];
}

const lines = [`// Written by make_types.mjs from the members that the library tells. A name is found in any letter case when a program
// runs; here it is as docs/reference.md writes it.

export class ZrError extends Error { number: number; }

export interface ZrObject {
  on(event: string, handler: (...values: any[]) => void): () => void;
  get(name: string, ...values: any[]): any;
  let(name: string, value: any, ...values: any[]): void;
  call(name: string, ...values: any[]): any;
}
`];
for (const [name, values] of Object.entries(library.constants)) {
  lines.push(`export type ${name} = number;`, `interface ${name}Values {`, ...Object.entries(values).map(([n, v]) => `  ${n}: ${v};`), '}');
}
for (const name of library.classes) {
  const members = library.membersOf(name);
  lines.push(`export interface ${name} extends ZrObject {`, ...members.flatMap(memberText));
  for (const event of members.filter(member => member.kinds & EVENT)) {
    const given = argumentsOf(event.arguments);
    lines.push(`  on(event: '${event.name}', handler: (${given ? given.replaceAll('?:', ':') + ', ' : ''}write: (position: number, value: any) => void) => void): () => void;`);
  }
  if (members.some(m => m.name === 'Count') && members.some(m => m.name === 'Item')) {
    const item = members.find(m => m.name === 'Item');
    lines.push(`  [Symbol.iterator](): Iterator<${typeOf(item.type).replace(' | null', '')}>;`);
  }
  lines.push('}');
}
lines.push(`
interface Classes { ${library.classes.map(name => `${name}: ${name};`).join(' ')} }
export interface Library {
  readonly version: string;
  readonly classes: string[];
  readonly constants: { ${Object.keys(library.constants).map(name => `${name}: ${name}Values;`).join(' ')} };
  create<Name extends keyof Classes>(className: Name): Classes[Name];
  connection(name: string, source: RowSource): any;
}
export function load(options?: {wasm?: string | URL | ArrayBuffer | Uint8Array}): Promise<Library>;

export interface Column {
  name: string; type?: string | number; primaryKey?: boolean; nullable?: boolean; size?: number; precision?: number; scale?: number;
  description?: string; default?: string | number;
}
export interface Table {
  name: string; schema?: string; catalog?: string; type?: 'TABLE' | 'VIEW'; description?: string; columns?: (string | Column)[];
  primaryKey?: string | string[];
}
export interface ForeignKey { table: string; columns: string | string[]; references: string; to?: string | string[]; name?: string; }
export interface SchemaDocument {
  tables: (string | Table)[]; foreignKeys?: ForeignKey[]; quotes?: [string, string]; keywords?: string[];
}
export interface RowSource {
  rows(kind: number, wanted: {catalog: string | null; schema: string | null; table: string | null}): Iterable<any[]> | null;
}
export type Source = SchemaDocument | {schema(): SchemaDocument | Promise<SchemaDocument>} | RowSource | null;
export function schemaRows(document: SchemaDocument): RowSource;
export function fetched(address: string | URL, options?: RequestInit): {schema(): Promise<SchemaDocument>};
export function sqliteSource(database: any): {schema(): SchemaDocument};
export function sqliteRows(database: any, sql: string, limit?: number): {columns: string[]; rows: any[][]};

export class ZrQueryDesigner extends HTMLElement {
  readonly ready: Promise<ZrQueryDesigner>;
  readonly query: qbQueryBuilder | null;
  readonly connected: Promise<boolean> | undefined;
  sql: string;
  design: string;
  connection: Source | Promise<SchemaDocument> | undefined;
}
declare global { interface HTMLElementTagNameMap { 'zr-query-designer': ZrQueryDesigner; } }
`);
await writeFile(`${folder}/index.d.ts`, lines.join('\n'));
