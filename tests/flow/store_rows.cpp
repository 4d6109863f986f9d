#include "tests/flow/store_rows.h"

#include <sqlite3.h>

#include <algorithm>
#include <stdexcept>

namespace zrqrybld::test {
namespace {

Cell CellOf(sqlite3_stmt* statement, int column) {
  switch (sqlite3_column_type(statement, column)) {
    case SQLITE_INTEGER:
      return static_cast<std::int64_t>(sqlite3_column_int64(statement, column));
    case SQLITE_FLOAT:
      return sqlite3_column_double(statement, column);
    case SQLITE_NULL:
      return {};
    default:
      return std::string(reinterpret_cast<const char*>(sqlite3_column_text(statement, column)),
                         static_cast<std::size_t>(sqlite3_column_bytes(statement, column)));
  }
}

}  // namespace

std::string ToText(const Row& row) {
  std::string text;
  for (const Cell& cell : row) {
    if (!text.empty()) text += '|';
    if (const auto* whole = std::get_if<std::int64_t>(&cell)) text += std::to_string(*whole);
    if (const auto* number = std::get_if<double>(&cell)) text += std::to_string(*number);
    if (const auto* string = std::get_if<std::string>(&cell)) text += "'" + *string + "'";
    if (cell.index() == 0) text += "null";
  }
  return text;
}

void Digest::Add(const Row& row) {
  std::uint64_t hash = 0;
  for (const Cell& cell : row) hash = (hash ^ std::hash<Cell>()(cell)) * 0x9E3779B97F4A7C15u + cell.index();
  ++count_;
  sum_ += hash ^ (hash >> 29);
}

std::string Digest::Text() const { return std::to_string(count_) + " rows, " + std::to_string(sum_); }

std::size_t StoredTable::ColumnAt(const std::string& name) const {
  const auto at = std::ranges::find(columns, name);
  if (at == columns.end()) throw std::runtime_error("no column " + name);
  return static_cast<std::size_t>(at - columns.begin());
}

// --- The file ---

Store::Store() {
  if (sqlite3_open_v2(ZRQRYBLD_SAMPLE_DB, &database_, SQLITE_OPEN_READONLY, nullptr) != SQLITE_OK) {
    throw std::runtime_error(sqlite3_errmsg(database_));
  }
}

Store::~Store() { sqlite3_close(database_); }

template <class Use>
void Store::ForEachRow(const std::string& sql, Use&& use) const {
  sqlite3_stmt* statement = nullptr;
  const char* rest = nullptr;
  if (sqlite3_prepare_v2(database_, sql.c_str(), -1, &statement, &rest) != SQLITE_OK || *rest != '\0') {
    throw std::runtime_error(std::string(sqlite3_errmsg(database_)) + " in:\n" + sql);
  }
  Row row(static_cast<std::size_t>(sqlite3_column_count(statement)));
  int result = SQLITE_ROW;
  while ((result = sqlite3_step(statement)) == SQLITE_ROW) {
    for (std::size_t i = 0; i < row.size(); ++i) row[i] = CellOf(statement, static_cast<int>(i));
    use(row);
  }
  sqlite3_finalize(statement);
  if (result != SQLITE_DONE) throw std::runtime_error(std::string(sqlite3_errmsg(database_)) + " in:\n" + sql);
}

std::vector<Row> Store::Run(const std::string& sql) const {
  std::vector<Row> rows;
  ForEachRow(sql, [&](const Row& row) { rows.push_back(row); });
  return rows;
}

std::string Store::RunToDigest(const std::string& sql) const {
  Digest digest;
  ForEachRow(sql, [&](const Row& row) { digest.Add(row); });
  return digest.Text();
}

const std::map<Row, std::vector<std::size_t>>& Store::Index(const std::string& name,
                                                            const std::vector<std::size_t>& columns) {
  const auto [index, isNew] = indexes_.try_emplace({name, columns});
  if (!isNew) return index->second;
  const StoredTable& table = Table(name);
  for (std::size_t position = 0; position < table.rows.size(); ++position) {
    Row values;
    for (const std::size_t column : columns) values.push_back(table.rows[position][column]);
    const bool hasNull = std::ranges::any_of(values, [](const Cell& cell) { return cell.index() == 0; });
    if (!hasNull) index->second[values].push_back(position);
  }
  return index->second;
}

const StoredTable& Store::Table(const std::string& name) {
  const auto known = tables_.find(name);
  if (known != tables_.end()) return known->second;
  StoredTable& table = tables_[name];
  for (const Row& row : Run("SELECT name FROM pragma_table_xinfo('" + name + "') ORDER BY cid")) {
    table.columns.push_back(std::get<std::string>(row.at(0)));
  }
  table.rows = Run("SELECT * FROM \"" + name + "\"");
  return table;
}

// --- Designs ---

const std::vector<ForeignKeyColumn>& StoreForeignKeys() {
  static const std::vector<ForeignKeyColumn> kKeys = {
      {"Customers", "Währung", "Währungen", "Kürzel"},        {"Employees", "ReportsTo", "Employees", "EmployeeID"},
      {"Order", "CustomerID", "Customers", "CustomerID"},     {"Order", "EmployeeID", "Employees", "EmployeeID"},
      {"Order Lines", "OrderID", "Order", "OrderID"},         {"Order Lines", "ProductID", "Products", "ProductID"},
      {"Products", "CategoryID", "Categories", "CategoryID"}, {"Products", "SupplierID", "Suppliers", "SupplierID"},
      {"Shipments", "CarrierID", "carriers", "carrier_id"},   {"Shipments", "OrderID", "Order Lines", "OrderID"},
      {"Shipments", "LineNo", "Order Lines", "LineNo"},
  };
  return kKeys;
}

std::vector<Design::Table> WithCaptions(const std::vector<std::string>& names) {
  std::vector<Design::Table> tables;
  std::map<std::string, int> copies;
  for (const std::string& name : names) {
    const int copy = copies[name]++;
    tables.push_back({copy == 0 ? name : name + std::to_string(copy), name});
  }
  return tables;
}

std::vector<Design::Join> JoinsByForeignKeys(const std::vector<Design::Table>& tables) {
  std::vector<Design::Join> joins;
  for (const ForeignKeyColumn& key : StoreForeignKeys()) {
    const bool withinOneTable = std::string_view(key.childTable) == key.parentTable;
    for (std::size_t child = 0; child < tables.size(); ++child) {
      if (tables[child].name != key.childTable) continue;
      for (std::size_t parent = withinOneTable ? child + 1 : 0; parent < tables.size(); ++parent) {
        if (tables[parent].name == key.parentTable) joins.push_back({child, key.childColumn, parent, key.parentColumn});
      }
    }
  }
  return joins;
}

bool IsConnected(const Design& design) {
  std::vector<bool> reached(design.tables.size(), false);
  reached[0] = true;
  for (std::size_t round = 0; round < design.tables.size(); ++round) {
    for (const Design::Join& join : design.joins) {
      if (reached[join.left] || reached[join.right]) reached[join.left] = reached[join.right] = true;
    }
  }
  return std::ranges::all_of(reached, [](bool value) { return value; });
}

}  // namespace zrqrybld::test
