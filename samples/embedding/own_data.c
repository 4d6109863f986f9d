/* One's own data from C: two tables that stand in this file, and a query designed over them. */
#include <stdio.h>
#include <string.h>

#include <zrqrybld/zrqrybld.h>

static zrq_value text(const char* words) {
  zrq_value value = {ZRQ_STRING, 0, {0}};
  value.as.text.data = words;
  value.as.text.length = strlen(words);
  return value;
}
static zrq_value number(int64_t whole) {
  zrq_value value = {ZRQ_INT32, 0, {0}};
  value.as.integer = whole;
  return value;
}
static zrq_value object(zrq_handle handle) {
  zrq_value value = {ZRQ_OBJECT, 0, {0}};
  value.as.object = handle;
  return value;
}

/* --- The data: what the library asks for, and the rows it gets --- */

struct column {
  const char* table;
  const char* name;
  int type; /* 3 a whole number, 202 a text, 133 a date */
  int in_key;
};
static const struct column kColumns[] = {{"Planet", "Name", 202, 1},  {"Planet", "Mass", 5, 0},
                                         {"Moon", "Name", 202, 1},    {"Moon", "Planet", 202, 0},
                                         {"Moon", "Found on", 133, 0}};
static const size_t kColumnCount = sizeof kColumns / sizeof *kColumns;

/* All columns, or those of the primary keys. Rows that are not wanted are passed over by the library. */
static int32_t columns(int only_keys) {
  const zrq_value none = {ZRQ_NULL, 0, {0}};
  size_t i, position = 0;
  int32_t error = 0;
  for (i = 0; i < kColumnCount && error == 0; ++i) {
    const struct column* column = &kColumns[i];
    position = i > 0 && strcmp(column->table, kColumns[i - 1].table) == 0 ? position + 1 : 1;
    if (only_keys) {
      const zrq_value key[] = {none, none, text(column->table), text(column->name), number(1)};
      if (column->in_key) error = zrq_row(key, 5);
    } else {
      const zrq_value row[] = {none, none, text(column->table), text(column->name), number((int64_t)position),
                               none, none, none, none, number(column->type)};
      error = zrq_row(row, 10);
    }
  }
  return error;
}

static int32_t rows(void* context, void* session, int32_t kind, const zrq_wanted* wanted) {
  const zrq_value none = {ZRQ_NULL, 0, {0}};
  (void)context, (void)session, (void)wanted;
  switch (kind) {
    case ZRQ_TABLES: {
      const zrq_value planet[] = {none, none, text("Planet"), text("TABLE")};
      const zrq_value moon[] = {none, none, text("Moon"), text("TABLE")};
      const int32_t error = zrq_row(planet, 4);
      return error != 0 ? error : zrq_row(moon, 4);
    }
    case ZRQ_COLUMNS:
      return columns(0);
    case ZRQ_PRIMARY_KEYS:
      return columns(1);
    case ZRQ_FOREIGN_KEYS: {
      const zrq_value key[] = {none, none, text("Planet"), text("Name"), none, none, text("Moon"), text("Planet")};
      return zrq_row(key, 8);
    }
    case ZRQ_LITERALS: {
      const zrq_value speaks[] = {text("SOURCE_NAME"), text("PostgreSQL")};
      return zrq_row(speaks, 2);
    }
    default:
      return zrq_fail(3251, "The planets know no such thing.");
  }
}

/* --- The query --- */

static int failed(const char* what) {
  const char* description = "";
  const int32_t error = zrq_last_error(&description);
  fprintf(stderr, "%s: error %d: %s\n", what, (int)error, description);
  return 1;
}

/* An object and a value that this program holds end with it: nothing here is released one by one. */
int main(void) {
  zrq_provider planets = {sizeof(zrq_provider), "Planets", NULL, rows, NULL, NULL};
  zrq_handle designer = 0, connection = 0;
  zrq_value value, result, found, arguments[1];
  static const char* const kPanes[][2] = {
      {"DiagramPane", "qbDiagramPane"}, {"GridPane", "qbGridPane"}, {"SQLPane", "qbSQLPane"}};
  static const char* const kTables[][2] = {{"Planet", "Mass"}, {"Moon", "Found on"}};
  size_t i;

  if (zrq_create("qbQueryBuilder", &designer) != 0) return failed("the designer");
  for (i = 0; i < 3; ++i) {
    zrq_handle pane = 0;
    if (zrq_create(kPanes[i][1], &pane) != 0) return failed(kPanes[i][1]);
    value = object(pane);
    if (zrq_let(designer, kPanes[i][0], NULL, 0, &value) != 0) return failed(kPanes[i][0]);
    if (i == 1) {
      const zrq_value no = {ZRQ_BOOLEAN, 0, {0}};
      if (zrq_let(pane, "ShowGroupBy", NULL, 0, &no) != 0) return failed("ShowGroupBy");
    }
  }

  value = number(1);
  if (zrq_let(designer, "AutoSyntax", NULL, 0, &value) != 0) return failed("AutoSyntax");
  if (zrq_connection(&planets, NULL, &connection) != 0) return failed("the provider");
  if (zrq_call(connection, "Open", NULL, 0, NULL, NULL) != 0) return failed("Open");
  value = object(connection);
  if (zrq_let(designer, "Connection", NULL, 0, &value) != 0) return failed("Connection");

  for (i = 0; i < 2; ++i) {
    arguments[0] = text(kTables[i][0]);
    if (zrq_call(designer, "AddTable", arguments, 1, &result, NULL) != 0) return failed(kTables[i][0]);
    if (zrq_get(result.as.object, "Items", NULL, 0, &found) != 0) return failed("Items");
    arguments[0] = text(kTables[i][1]);
    if (zrq_get(found.as.object, "Item", arguments, 1, &value) != 0) return failed(kTables[i][1]);
    arguments[0] = number(1);
    if (zrq_let(value.as.object, "Checked", NULL, 0, arguments) != 0) return failed("Checked");
  }
  if (zrq_call(designer, "RefreshAutoJoins", NULL, 0, NULL, NULL) != 0) return failed("the joins");

  if (zrq_get(designer, "SQLPane", NULL, 0, &value) != 0) return failed("SQLPane");
  if (zrq_get(value.as.object, "SQLStatement", NULL, 0, &result) != 0) return failed("SQLStatement");
  printf("%s\n", result.as.text.data);
  zrq_clear(&result);
  return 0;
}
