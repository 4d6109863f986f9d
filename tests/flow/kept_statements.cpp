#include "tests/flow/kept_statements.h"

#include "tests/data_table.h"

namespace zrqrybld::test {

std::vector<std::string> KeptStatements() {
  std::vector<std::string> froms, wheres, statements;
  for (const Row& row : ReadRows("kept.txt")) {
    (row[0] == "from" ? froms : row[0] == "where" ? wheres : statements).push_back(row[1]);
  }
  for (const std::string& from : froms) {
    for (const std::string& where : wheres) {
      statements.push_back("SELECT c.CustomerID, o.OrderID, c.Country FROM " + from + "\nWHERE " + where);
    }
  }
  return statements;
}

}  // namespace zrqrybld::test
