// The page that the tests drive: one designer over a small schema.
import {load} from '/zrqrybld/library.js';
import '/zrqrybld/element.js';

window.faults = [];
addEventListener('error', event => { if (event.message) faults.push(event.message); });
addEventListener('unhandledrejection', event => faults.push(String(event.reason)));

window.schema = {
  tables: [
    {name: 'Customers', columns: [{name: 'CustomerID', type: 'integer', primaryKey: true}, {name: 'Name', type: 'varchar(40)'}]},
    {name: 'Orders', columns: [{name: 'OrderID', type: 'integer', primaryKey: true}, {name: 'Buyer', type: 'integer'}, {name: 'Total', type: 'numeric'}]},
    {name: '<img src=x onerror=window.hacked=1>', columns: [{name: '<b>a</b>', type: 'text'}]},
  ],
};
window.designer = document.querySelector('zr-query-designer');
window.load = load;
await designer.ready;
designer.connection = schema;
await designer.connected;
window.query = () => designer.query;
designer.query.GridPane.ShowGroupBy = false;
designer.query.SQLPane.SQLSyntax = 7;  // SQLite: joins as joins, names in double quotes
document.documentElement.dataset.ready = 'yes';
