// DesignReports: what a pane tells the others, and asks of them, through the hub.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "zrqrybld/base/export.h"
#include "zrqrybld/base/object.h"

namespace zrqrybld {

class qbRelationship;
struct SQLDiagnostic;

class ZRQRYBLD_API DesignReports {
 public:
  DesignReports() = default;
  DesignReports(const DesignReports&) = delete;
  DesignReports& operator=(const DesignReports&) = delete;
  virtual ~DesignReports() = default;

  // --- What has happened ---

  /// A column was ticked or unticked in its box.
  virtual void ItemChecked(const std::string& entityCaption, const std::string& itemText, bool checked) = 0;
  /// A column that is ticked has got another text.
  virtual void ItemRenamed(const std::string& entityCaption, const std::string& before, const std::string& after) = 0;
  /// A table of the source has come into the diagram with its columns.
  virtual void TableAdded(const std::string& caption) = 0;
  /// An entity has left the diagram.
  virtual void EntityRemoved(const std::string& caption) = 0;
  /// An entity has got another caption.
  virtual void EntityRenamed(const std::string& oldCaption, const std::string& newCaption) = 0;
  /// The diagram was emptied.
  virtual void DiagramCleared() = 0;
  /// The user has double-clicked a join.
  virtual void RelationshipActivated(const Ref<qbRelationship>& relationship) = 0;
  /// Another dialect is in use.
  virtual void DialectChanged() = 0;
  /// Another word is written for LIKE from now on; criteria follow.
  virtual void LikeOperatorChanged(const std::string& before) = 0;

  // --- What the user wants ---

  /// The user asks for the table picker.
  virtual void RequestTables() = 0;
  /// Puts the column into the result, once more where it is there already.
  virtual void OutputColumnAgain(const std::string& entityCaption, const std::string& column) = 0;
  /// Sorts by the column ("Ascending" or "Descending"), or no more (""). The column gets a row where it has none.
  virtual void SortByColumn(const std::string& entityCaption, const std::string& column, const std::string& type) = 0;
  /// Groups by the column or aggregates it: one of the grouping choices by name. The query groups from then on.
  virtual void GroupColumn(const std::string& entityCaption, const std::string& column, const std::string& choice) = 0;
  /// Takes the user to the cell where the column's criterion is typed.
  virtual void GoToCriterion(const std::string& entityCaption, const std::string& column) = 0;
  /// Shows a query that the shown one can name like a table. False when there is none with this name.
  virtual bool OpenQuery(const std::string& name) = 0;
  /// Shows the first query that stands in a cell of the grid. False when the cell holds none.
  virtual bool OpenQueryInCell(std::int32_t row, std::int32_t column) = 0;
  /// The same for the condition of a join.
  virtual bool OpenQueryInJoin(const Ref<qbRelationship>& join) = 0;
  /// Shows the query with the id or, where its text has a query of its own at the caret, in bytes, that one. False when
  /// there is none, and when it is shown already.
  virtual bool ShowQueryAt(std::int32_t id, const std::string& text, std::size_t caret) = 0;
  /// Shows the query that the shown one belongs to. False for the main query.
  virtual bool LeaveQuery() = 0;
  /// Does what a remark of the statement generated last offers.
  virtual void CureRemark(const SQLDiagnostic& remark) = 0;
  /// Makes the query what the statement says. SyntaxError for a text that cannot be read or shown: nothing has changed
  /// then. Errors of the data source while tables are added leave what was done.
  virtual void LoadStatement(const std::string& sql) = 0;
};

}  // namespace zrqrybld
