#include "zrqrybld/hub/query_file_writer.h"

#include <functional>
#include <unordered_set>
#include <vector>

#include "zrqrybld/base/text.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/relationships.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/hub/query_set.h"
#include "zrqrybld/platform/connection_string.h"
#include "zrqrybld/platform/database.h"
#include "zrqrybld/sql/sql_pane.h"
#include "zrqrybld/sql/typed_statement.h"

namespace zrqrybld {
namespace {

constexpr std::string_view kIndent = "    ";

std::string_view BooleanText(bool value) { return value ? "True" : "False"; }

// A value runs to the end of its line: what breaks lines becomes a blank, CR LF one.
void AppendOnOneLine(std::string& text, std::string_view value) {
  for (std::size_t i = 0; i < value.size(); ++i) {
    if (value[i] == '\n' && i > 0 && value[i - 1] == '\r') continue;
    text += value[i] == '\r' || value[i] == '\n' ? ' ' : value[i];
  }
}

void ForEachEntity(qbQueryBuilder& hub, const std::function<void(const Ref<qbEntity>&)>& write) {
  const Ref<qbEntities> entities = hub.Entities();
  if (!entities) return;
  for (const Ref<qbEntity>& entity : *entities) write(entity);  // a listener of the progress may take some away
}

}  // namespace

std::string QueryFileWriter::Write() {
  text_.clear();
  Marker("Version=" + std::string(kQueryFileVersion));
  if (hub_.SaveConnectionString()) {
    const std::string connection = hub_.Connection()->ConnectionString();
    Marker("ConnectionString=");
    text_.resize(text_.size() - 2);
    AppendOnOneLine(text_, hub_.SavePassword() ? connection : ConnectionString(connection).WithoutPassword());
    text_ += "\r\n";
  }
  const std::vector<StoredQuery>& queries = hub_.QueriesNow().queries;
  hub_.VisitQuery(queries.front().id, [this](qbQueryBuilder& main) {
    QueryFileWriter writer(main);
    writer.text_ = std::move(text_);
    text_ = writer.Sections(&hub_);
  });
  for (std::size_t i = 1; i < queries.size(); ++i) {
    if (!hub_.QueriesNow().StandsInCell(queries[i].id)) WriteInner(queries[i]);  // the cell says it
  }
  text_.resize(text_.size() - 2);
  return std::move(text_);
}

// The statement is that of `whole`; what belongs to another has none of its own.
std::string QueryFileWriter::Sections(qbQueryBuilder* whole) {
  FindCaptions();
  ForEachEntity(hub_, [this](const Ref<qbEntity>& entity) { WriteEntity(entity); });
  if (hub_.SaveLoadEntityItems()) {
    ForEachEntity(hub_, [this](const Ref<qbEntity>& entity) {
      const std::string caption = entity->Caption();
      for (const Ref<qbEntityItem>& item : *entity->Items()) WriteItem(caption, item);
    });
  }
  ForEachEntity(hub_, [this](const Ref<qbEntity>& entity) {
    for (const Ref<qbRelationship>& join : *entity->Relationships()) WriteRelationship(join);
  });
  WriteGridOptions();
  WriteGrid();
  const Ref<qbSQLPane> pane = whole ? whole->SQLPane() : hub_.SQLPane();
  WriteSQL(pane ? *pane : *qbSQLPane::Create(), whole != nullptr);
  return std::move(text_);
}

// Its own sections stand in it line by line, so that who does not know queries in queries passes over them as one.
void QueryFileWriter::WriteInner(const StoredQuery& query) {
  Marker("Begin InnerQuery");
  Number("Id", query.id);
  Number("Parent", query.parent);
  Number("Kind", query.kind);
  if (query.kind == QueryMember) Number("Operator", query.combined);
  Line("Name", query.name);
  int number = 0;
  for (const std::string& column : query.columnNames) Line("Column" + std::to_string(++number), column);
  if (number > 0) Number("ColumnCount", number);
  std::string sections;
  hub_.VisitQuery(query.id, [&](qbQueryBuilder& inner) { sections = QueryFileWriter(inner).Sections(nullptr); });
  number = 0;
  for (const std::string_view line : Split(sections, "\r\n")) Line("Line" + std::to_string(++number), line);
  Number("LineCount", number);
  Marker("End InnerQuery");
}

// On one line two captions may be the same: the later one gets a number there, for a file names tables by them.
void QueryFileWriter::FindCaptions() {
  std::unordered_set<std::string> taken;
  std::vector<std::string> broken;
  ForEachEntity(hub_, [&](const Ref<qbEntity>& entity) {
    const std::string caption = entity->Caption();
    if (caption.find_first_of("\r\n") == std::string::npos) {
      taken.insert(caption);
    } else {
      broken.push_back(caption);
    }
  });
  captions_.clear();
  for (const std::string& caption : broken) {
    std::string line;
    AppendOnOneLine(line, caption);
    std::string unique = line;
    for (int number = 2; !taken.insert(unique).second; ++number) unique = line + " " + std::to_string(number);
    captions_.emplace(caption, unique);
  }
}

const std::string& QueryFileWriter::InFile(const std::string& caption) const {
  const auto found = captions_.find(caption);
  return found == captions_.end() ? caption : found->second;
}

// A sort type that says where Nulls come is written as the one without, which every reader knows; see `SortNulls`.
std::string QueryFileWriter::InFile(std::size_t column, const std::string& cell) const {
  if (column == kColumnTable) return InFile(cell);
  const SortWord sort = column == kColumnSortType ? ReadSort(cell) : SortWord{};
  return sort.nulls == NullsPlace::Usual ? cell : std::string(TextOf(sort.direction));
}

// "2 first, 5 last": the rows that say where Nulls come.
std::string QueryFileWriter::SortNulls() const {
  std::string text;
  const std::int32_t rows = hub_.GridPane() ? hub_.GridPane()->RowCount() : 0;
  for (std::int32_t row = 1; row <= rows; ++row) {
    const NullsPlace nulls = ReadSort(hub_.GridPane()->Value(row, kColumnSortType).Text()).nulls;
    if (nulls == NullsPlace::Usual) continue;
    text += (text.empty() ? "" : ", ") + std::to_string(row) + (nulls == NullsPlace::First ? " first" : " last");
  }
  return text;
}

// --- Lines ---

void QueryFileWriter::Marker(std::string_view text) {
  text_ += text;
  text_ += "\r\n";
}

void QueryFileWriter::Line(std::string_view key, std::string_view value) {
  text_ += kIndent;
  text_ += key;
  text_ += '=';
  AppendOnOneLine(text_, value);
  text_ += "\r\n";
}

void QueryFileWriter::Number(std::string_view key, double value) { Line(key, NumberText(value)); }

void QueryFileWriter::WriteProperties(const qbProperties& properties) {
  int number = 0;
  for (const Ref<qbProperty>& property : properties) {
    const std::string name = "Property" + std::to_string(++number);
    Line(name + "Key", property->Key());
    Line(name + "Value", property->Value().Text());
  }
  Number("PropertyCount", properties.Count());
}

// --- The diagram ---

void QueryFileWriter::WriteEntity(const Ref<qbEntity>& entity) {
  Announce(entity);
  if (!entity->EntityBox()) return;  // a listener has removed it
  Marker("Begin Entity");
  Line("Caption", InFile(entity->Caption()));
  Line("TagVariant", entity->TagVariant().Text());
  Number("Top", entity->Top());
  Number("Left", entity->Left());
  Number("Width", entity->Width());
  Number("Height", entity->Height());
  WriteProperties(*entity->Properties());
  Marker("End Entity");
}

void QueryFileWriter::WriteItem(const std::string& caption, const Ref<qbEntityItem>& item) {
  Announce(item);
  Marker("Begin EntityItem");
  Line("EntityIndex", InFile(caption));
  Line("Bold", BooleanText(item->Bold()));
  Line("Checked", BooleanText(item->Checked()));
  Number("Color", static_cast<std::int32_t>(item->Color().value));  // signed, as applications give it
  Number("Index", item->Index());
  Line("Key", item->Key());
  Line("SmallIcon", item->SmallIcon().Text());
  Line("Text", item->Text());
  Line("ToolTipText", item->ToolTipText());
  WriteProperties(*item->Properties());
  Marker("End EntityItem");
}

void QueryFileWriter::WriteRelationship(const Ref<qbRelationship>& relationship) {
  Announce(relationship);
  const Ref<qbEntity> source = relationship->Source();
  const Ref<qbEntity> target = relationship->Target();
  if (!source || !target) return;
  Marker("Begin Relationship");
  Line("ItemData", relationship->ItemData().Text());
  Number("LeftIndicator", relationship->LeftIndicator());
  Number("RightIndicator", relationship->RightIndicator());
  Line("Source", InFile(source->Caption()));
  Line("SourceItemIndex", relationship->SourceItemIndex().Text());
  Line("Target", InFile(target->Caption()));
  Line("TargetItemIndex", relationship->TargetItemIndex().Text());
  if (relationship->Comparison() != JoinEqual) Number("Comparison", relationship->Comparison());
  if (!relationship->Condition().empty()) Line("Condition", relationship->Condition());
  if (relationship->GroupLevel() != 0) Number("GroupLevel", relationship->GroupLevel());
  if (relationship->Existence() != JoinReturnsRows) Number("Existence", relationship->Existence());
  Marker("End Relationship");
}

// --- Grid and statement ---

void QueryFileWriter::WriteGridOptions() {
  const Ref<qbGridPane> grid = hub_.GridPane() ? hub_.GridPane() : qbGridPane::Create();
  Announce(grid);
  Marker("Begin GridPaneData");
  Line("DateFormat", grid->DateFormat());
  Number("DateFormatStyle", grid->DateFormatStyle());
  Line("ShowGroupBy", BooleanText(grid->ShowGroupBy()));
  Marker("End GridPaneData");
}

void QueryFileWriter::WriteGrid() {
  Marker("Begin GridData");
  if (hub_.GridPane()) {
    const zrGrid& grid = *hub_.GridPane()->Grid();
    std::vector<std::string> keys;
    for (std::int32_t column = 1; column <= grid.Columns()->Count(); ++column) {
      keys.push_back(grid.Columns()->Item(column)->Key());
    }
    for (std::int32_t row = 1; row <= grid.Rows()->Count(); ++row) {
      const zrGridRow& cells = grid.Rows()->At(static_cast<std::size_t>(row));
      for (std::size_t column = 1; column <= keys.size(); ++column) {
        const Variant& value = cells.ValueAt(column);
        if (value.IsBlank()) continue;
        const std::string text = value.Text();
        Line(keys[column - 1] + "," + std::to_string(row), InFile(column, text));
      }
    }
  }
  Marker("End GridData");
}

void QueryFileWriter::WriteSQL(qbSQLPane& pane, bool withStatement) {
  Announce(RefTo(pane));
  Marker("Begin SQLData");
  Line("SelectTopRecords", hub_.SelectTopRecords());
  if (hub_.SkipRecords() > 0) Number("SkipRecords", hub_.SkipRecords());
  if (const std::string nulls = SortNulls(); !nulls.empty()) Line("SortNulls", nulls);
  Line("DistinctRecords", BooleanText(hub_.DistinctRecords()));
  Line("LikeOperator", pane.LikeOperator());
  Line("Locked", BooleanText(pane.Locked()));
  Number("SQLSyntax", pane.SQLSyntax());
  if (withStatement) Line("SQLStatement", pane.PlainStatement());
  Marker("End SQLData");
  if (!withStatement) return;
  if (pane.KeepTypedText() && pane.IsEdited()) {
    WriteTyped(pane.SQLStatement(), false);
  } else if (pane.Typed()) {
    WriteTyped(pane.Typed()->text, true);
  }
}

// Line by line, for a value ends with its line.
void QueryFileWriter::WriteTyped(const std::string& typed, bool applied) {
  Marker("Begin TypedStatement");
  if (!applied) Line("Applied", BooleanText(false));
  int number = 0;
  for (const std::string_view line : Split(typed, "\r\n")) Line("Line" + std::to_string(++number), line);
  Number("LineCount", number);
  Marker("End TypedStatement");
}

}  // namespace zrqrybld
