// How long a statement takes by member name in Node, for docs/web.md: two statements in turn are read and designed, and
// written anew. Processor time; the first round is before the engine has translated what is used most.
//
//   node tests/web/statements.mjs        after ./test web, which builds the package; COUNT: 2000; MODULE: node.js, or
//                                        library.js for what a page loads
import {join} from 'node:path';
import {pathToFileURL} from 'node:url';
import {folder} from './browser.mjs';

const {load} = await import(pathToFileURL(join(folder, process.env.MODULE ?? 'node.js')));
const library = await load(), query = library.create('qbQueryBuilder'), count = +(process.env.COUNT ?? 2000);
for (const pane of ['DiagramPane', 'GridPane', 'SQLPane']) query[pane] = library.create('qb' + pane);
const pane = query.SQLPane, joined = 'FROM Customers INNER JOIN Orders ON Customers.CustomerID = Orders.CustomerID';
const statements = [`SELECT Customers.Name ${joined}`, `SELECT Customers.City ${joined} WHERE Customers.City = 'Bern'`];

const each = (times, work) => {
  const begin = process.cpuUsage();
  for (let i = 0; i < times; ++i) work(i);
  const {user, system} = process.cpuUsage(begin);
  return (user + system) / times;
};
for (let round = 1; round <= 4; ++round) {
  const designed = each(count, i => pane.ParseSQLStatement(statements[i % 2])), asked = each(count * 10, () => query.SelectTopRecords);
  console.log(`round ${round}: ${designed.toFixed(0)} µs a statement; ${asked.toFixed(2)} µs a property that is read`);
}
if (!/Bern/.test(pane.SQLStatement)) throw new Error('the last statement was not designed');
