// Queries that stand in cells of the grid and in the conditions of joins: how they are shown as designs, and how what
// is changed there is written back.
//
// The text of the cell says what such a query is. It is one of the queries only while it, or one that belongs to it, is
// shown: what it says is then written into the cell at the end of each step. Whoever leaves it leaves the text; only
// where its boxes stood is remembered for the next time.
#include <algorithm>
#include <utility>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/scoped_value.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_queries.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/entity.h"
#include "zrqrybld/diagram/relationship.h"
#include "zrqrybld/diagram/relationships.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/grid/row_cells.h"
#include "zrqrybld/host/step_context.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/hub/hub_parts.h"
#include "zrqrybld/hub/read_queries.h"
#include "zrqrybld/hub/statement_loader.h"
#include "zrqrybld/sql/inner_queries.h"
#include "zrqrybld/sql/outer_queries.h"
#include "zrqrybld/sql/query_outline.h"
#include "zrqrybld/sql/query_text.h"
#include "zrqrybld/sql/same_words.h"
#include "zrqrybld/sql/statement_printer.h"
#include "zrqrybld/sql/syntax_error.h"

namespace zrqrybld {
namespace {

constexpr std::size_t kMostLeft = 50;

const GridCell* CellOf(const SharedRowContent& row, std::size_t column) {
  return row && column >= 1 && column <= row->cells.size() ? &row->cells[column - 1] : nullptr;
}

const JoinState* JoinOf(const Design& design, const JoinPlace& place) {
  if (place.table >= design.entities.size()) return nullptr;
  const std::vector<JoinState>& joins = design.entities[place.table]->joins;
  return place.join < joins.size() ? &joins[place.join] : nullptr;
}

// What the cell, or the condition, says; none when there is no such place.
std::optional<std::string> TextAt(const Design& design, const QueryCell& cell) {
  if (cell.join) {
    const JoinState* join = JoinOf(design, *cell.join);
    return join ? std::optional(join->facts.condition) : std::nullopt;
  }
  if (cell.row >= design.rows.size()) return std::nullopt;
  const GridCell* found = CellOf(design.rows[cell.row], cell.column);
  return found ? found->value.Text() : std::string();
}

// Where the query stands in the cell's text; none when that has become another.
std::optional<InnerQueryPlace> PlaceIn(const std::string& text, const QueryCell& cell) {
  const std::vector<InnerQueryPlace> places = InnerQueriesIn(text);
  if (cell.number >= places.size()) return std::nullopt;
  const InnerQueryPlace place = places[cell.number];
  if (std::string_view(text).substr(place.begin, place.end - place.begin) != cell.text) return std::nullopt;
  return place;
}

bool Stands(const Design& design, const QueryCell& cell) {
  const std::optional<std::string> text = TextAt(design, cell);
  if (!text) return false;
  if (cell.text.empty()) return InnerQueriesIn(*text).size() == cell.number;
  return PlaceIn(*text, cell).has_value();
}

// The cell's text with the query in it.
std::optional<std::string> WithQuery(const std::string& text, const QueryCell& cell, const std::string& query) {
  if (cell.text.empty()) {
    const std::string before(TrimWhite(text));
    return (before.empty() ? "IN " : before + " ") + "(" + query + ")";
  }
  const std::optional<InnerQueryPlace> place = PlaceIn(text, cell);
  if (!place) return std::nullopt;
  return text.substr(0, place->begin) + query + text.substr(place->end);
}

void SetText(Design& design, const QueryCell& cell, const std::string& text) {
  if (cell.join) {
    std::shared_ptr<const EntityState>& table = design.entities[cell.join->table];
    EntityState changed = *table;
    changed.joins[cell.join->join].facts.condition = text;
    table = std::make_shared<const EntityState>(std::move(changed));
    return;
  }
  SharedRowContent& row = design.rows[cell.row];
  RowContent content = row ? *row : RowContent();
  if (content.cells.size() < cell.column) content.cells.resize(cell.column);
  content.cells[cell.column - 1].value = text;
  content.cells[cell.column - 1].hint = nullptr;
  row = std::make_shared<const RowContent>(std::move(content));
}

// The joins of the snapshot are those of the design, one table's after another's; its rows are those that name a
// column.
void SetText(QuerySnapshot& snapshot, const Design& design, const QueryCell& cell, const std::string& text) {
  if (cell.join) {
    std::size_t at = cell.join->join;
    for (std::size_t table = 0; table < cell.join->table; ++table) at += design.entities[table]->joins.size();
    if (at < snapshot.joins.size()) snapshot.joins[at].condition = text;
    return;
  }
  const auto names = [](const SharedRowContent& row) {
    const GridCell* column = CellOf(row, kColumnColumn);
    return column && !column->value.IsBlank();
  };
  const auto end = design.rows.begin() + static_cast<std::ptrdiff_t>(cell.row);
  const auto at = static_cast<std::size_t>(std::count_if(design.rows.begin(), end, names));
  if (!names(*end) || at >= snapshot.rows.size()) return;
  if (cell.column == kColumnColumn) {
    snapshot.rows[at].column = text;
    return;
  }
  std::vector<std::string>& criteria = snapshot.rows[at].criteria;
  const std::size_t criterion = cell.column - kColumnCriteria;
  if (criteria.size() <= criterion) criteria.resize(criterion + 1);
  criteria[criterion] = text;
}

// What the row is about, for a title.
std::string AboutRow(const RowReader& row) {
  constexpr std::size_t kLongest = 40;
  if (!row.IsBlank(kColumnTable) || row.IsBlank(kColumnAlias)) {
    const std::string column = row.Text(kColumnColumn);
    const std::string shortened = ShortWithQueries(column);
    return std::string(FirstCharacters(shortened.empty() ? column : shortened, kLongest));
  }
  return row.Text(kColumnAlias);
}

bool HoldsQueries(std::int32_t column) { return column == kColumnColumn || column >= kColumnCriteria; }

// The cell as it is now. Error 9 for one that there is not, or that holds no queries.
QueryCell CellNow(const qbQueryBuilder& hub, std::int32_t row, std::int32_t column, std::string& text) {
  const Ref<qbGridPane> grid = hub.GridPane();
  if (!grid || row < 1 || row > grid->RowCount() || !HoldsQueries(column) || column > grid->ColumnCount()) {
    ThrowNoSuchItem();
  }
  const RowReader reader(grid->Grid()->Rows()->At(static_cast<std::size_t>(row)));
  text = reader.Text(static_cast<std::size_t>(column));
  QueryCell cell;
  cell.row = static_cast<std::size_t>(row) - 1;
  cell.column = static_cast<std::size_t>(column);
  cell.about = AboutRow(reader);
  return cell;
}

std::optional<JoinPlace> PlaceOf(const qbQueryBuilder& hub, const Ref<qbRelationship>& join) {
  JoinPlace place;
  const Ref<qbEntities> tables = hub.Entities();
  if (!tables) return std::nullopt;
  for (const Ref<qbEntity>& table : *tables) {
    place.join = 0;
    for (const Ref<qbRelationship>& one : *table->Relationships()) {
      if (one == join) return place;
      ++place.join;
    }
    ++place.table;
  }
  return std::nullopt;
}

// The place of the join, as it is now. Error 9 for one that is none of the diagram's.
QueryCell CellOfJoin(const qbQueryBuilder& hub, const Ref<qbRelationship>& join) {
  QueryCell cell;
  cell.join = PlaceOf(hub, join);
  if (!cell.join) ThrowNoSuchItem();
  cell.about = join->Source()->Caption() + " – " + join->Target()->Caption();
  return cell;
}

ReadQueries ReadCell(qbQueryBuilder& hub, const QueryCell& cell, const QuerySurroundings& around) {
  try {
    ReadQueries read(hub, cell.text, around);
    RequireWritable(hub, read.Main());
    return read;
  } catch (const SyntaxError& error) {
    throw Error(ErrorParsingText, {text::CellQueryNotShown, error.Cause()});
  }
}

}  // namespace

// --- What stands around ---

std::shared_ptr<const OuterQueries> qbQueryBuilder::Outer() const { return OuterOf(parts_->querySet.shown); }

// A query in FROM, in WITH or behind UNION sees what the one sees that it belongs to, but not that itself.
std::shared_ptr<const OuterQueries> qbQueryBuilder::OuterOf(std::int32_t id) const {
  const QuerySet& set = parts_->querySet;
  const StoredQuery* query = set.Find(id);
  while (query && query->kind != QueryMain && query->kind != QueryInCell) query = set.Find(query->parent);
  if (!query || query->kind == QueryMain) return nullptr;
  if (query->parent == set.shown) return std::make_shared<OuterQueries>(Snapshot());
  const StoredQuery* parent = set.Find(query->parent);
  return parent && parent->snapshot ? std::make_shared<OuterQueries>(*parent->snapshot) : nullptr;
}

// The queries of WITH that one within the shown query can name; nearer ones come first.
std::vector<std::pair<std::string, std::vector<QueryColumn>>> qbQueryBuilder::CommonTables() const {
  std::vector<std::pair<std::string, std::vector<QueryColumn>>> tables;
  for (const StoredQuery* query : parts_->querySet.Nameable(parts_->querySet.shown)) {
    if (query->kind != QueryCommonTable) continue;
    tables.emplace_back(query->name, query->columns ? *query->columns : std::vector<QueryColumn>());
  }
  return tables;
}

// --- Showing one ---

std::int32_t qbQueryBuilder::ShowQueryInCell(std::int32_t row, std::int32_t column, std::int32_t number) {
  RequireIdle();
  const Ref<Object> alive = shared_from_this();  // a listener may let go of it
  MakeIdle();
  std::string text;
  const QueryCell cell = CellNow(*this, row, column, text);
  return ShowInner(cell, text, number);
}

std::int32_t qbQueryBuilder::ShowQueryInJoin(const Ref<qbRelationship>& join, std::int32_t number) {
  if (!join) ThrowObjectRemoved();
  RequireIdle();
  const Ref<Object> alive = shared_from_this();
  MakeIdle();
  const QueryCell cell = CellOfJoin(*this, join);
  const std::string condition = join->Condition();  // the join goes when another query is shown
  return ShowInner(cell, condition, number);
}

// The query of that number in the text, which stands in the cell.
std::int32_t qbQueryBuilder::ShowInner(QueryCell cell, const std::string& text, std::int32_t number) {
  const std::vector<InnerQueryPlace> places = InnerQueriesIn(text);
  if (number < 1 || static_cast<std::size_t>(number) > places.size()) ThrowNoSuchItem();
  cell.number = static_cast<std::size_t>(number) - 1;
  cell.text = text.substr(places[cell.number].begin, places[cell.number].end - places[cell.number].begin);
  if (const std::int32_t left = ShowLeft(cell)) return left;
  ReadQueries read = ReadCell(*this, cell, {CommonTables(), std::make_shared<OuterQueries>(Snapshot())});
  StoredQuery& facts = read.Main().facts;
  facts.kind = QueryInCell;
  facts.parent = parts_->querySet.shown;
  facts.cell = std::move(cell);
  const StepScope step(RefTo(*this), kStepShowQuery);
  AddRead(read.Main());
  const std::int32_t id = read.Main().facts.id;
  LoadCell(id, read.Main());
  return id;
}

// The first query of the shown one's cells and joins that says the same; false when none does.
bool qbQueryBuilder::ShowInnerLike(const std::string& query) {
  const std::vector<Token> words = WordsOf(query);
  const auto numberIn = [&](const std::string& text) {
    std::int32_t number = 0;
    for (const InnerQueryPlace& place : InnerQueriesIn(text)) {
      ++number;
      const std::string inner = text.substr(place.begin, place.end - place.begin);
      if (SameWords(query, words, inner, WordsOf(inner))) return number;
    }
    return 0;
  };
  const Ref<qbGridPane> grid = GridPane();
  for (std::int32_t row = 1; grid && row <= grid->RowCount(); ++row) {
    const RowReader reader(grid->Grid()->Rows()->At(static_cast<std::size_t>(row)));
    for (std::int32_t column = 1; column <= grid->ColumnCount(); ++column) {
      if (!HoldsQueries(column)) continue;
      const std::int32_t number = numberIn(reader.Text(static_cast<std::size_t>(column)));
      if (number == 0) continue;
      ShowQueryInCell(row, column, number);
      return true;
    }
  }
  const Ref<qbEntities> tables = Entities();
  if (!tables) return false;
  for (const Ref<qbEntity>& table : *tables) {
    for (const Ref<qbRelationship>& join : *table->Relationships()) {
      const std::int32_t number = numberIn(join->Condition());
      if (number == 0) continue;
      const Ref<qbRelationship> found = join;  // the list of joins goes when another query is shown
      ShowQueryInJoin(found, number);
      return true;
    }
  }
  return false;
}

bool qbQueryBuilder::ShowQueryAt(std::int32_t id, const std::string& text, std::size_t caret) {
  const Ref<Object> alive = shared_from_this();
  bool found = id != parts_->querySet.shown && ShowQuery(id);
  std::string query = text;
  while (true) {
    const std::vector<InnerQueryPlace> places = InnerQueriesIn(query);
    const auto place = std::ranges::find_if(
        places, [&](const InnerQueryPlace& each) { return each.begin <= caret && caret <= each.end; });
    if (place == places.end()) return found;
    caret -= place->begin;
    query = query.substr(place->begin, place->end - place->begin);
    if (!ShowInnerLike(query)) return found;
    found = true;
  }
}

// The queries that were read stand among the others, still without a design.
void qbQueryBuilder::AddRead(ReadQuery& read) {
  read.facts.id = parts_->querySet.Add(read.facts);
  for (ReadQuery& inner : read.inner) {
    inner.facts.parent = read.facts.id;
    AddRead(inner);
  }
}

// The panes are filled as by a typed statement, but nothing of the design has changed by it. Where it fails the query
// goes again, and what it stands in is shown.
void qbQueryBuilder::LoadCell(std::int32_t id, ReadQuery& read) {
  const std::int32_t parent = parts_->querySet.shown;
  const ScopedValue travelling(travelling_, true);
  try {
    const StateScope loading(*this, InfoParsingSQL);
    WholeOrNothing(RefTo(*this), [&] { LoadOneQuery(read); });
    SwitchTo(id);
    KnowShown(TakeDesign());
    if (StoredQuery* shown = parts_->querySet.Find(id)) shown->cell.written = OnLine(id);
  } catch (...) {
    SwitchTo(parent);
    throw;
  }
}

std::int32_t qbQueryBuilder::AddQueryInCell(std::int32_t row, std::int32_t column) {
  RequireIdle();
  const Ref<Object> alive = shared_from_this();
  MakeIdle();
  std::string text;
  StoredQuery query;
  query.cell = CellNow(*this, row, column, text);
  if (column < kColumnCriteria || query.cell.about.empty()) ThrowNoSuchItem();
  query.cell.number = InnerQueriesIn(text).size();
  query.kind = QueryInCell;
  query.parent = parts_->querySet.shown;
  if (parts_->querySet.queries.size() >= static_cast<std::size_t>(kMostQueries)) {
    throw Error(ErrorInvalidCall, {text::TooManyQueries, kMostQueries});
  }
  const std::int32_t id = parts_->querySet.Add(std::move(query));
  SwitchTo(id);
  return id;
}

// --- Writing it back ---

// "" for a query that the dialect cannot write, and for one that outputs nothing: no server would take it.
std::string qbQueryBuilder::OnLine(std::int32_t id) const {
  const QueryTree tree = TreeOf(id);
  if (std::ranges::none_of(tree.query.rows, &SnapshotRow::output)) return {};
  return std::string(TrimWhite(OnOneLine(GenerateQuery(tree, CurrentDialect(), parts_->querySet.shown).text)));
}

// The queries as they were before the step that ends.
QuerySet qbQueryBuilder::QueriesKnown() const {
  QuerySet before = parts_->querySet;
  before.Find(before.shown)->design = std::make_shared<const Design>(parts_->history.Known());
  return before;
}

// What cannot be written leaves the cell as it is.
void qbQueryBuilder::WriteIntoCell(std::int32_t id) {
  QuerySet& set = parts_->querySet;
  StoredQuery& query = *set.Find(id);
  StoredQuery* outer = set.Find(query.parent);
  if (!outer || !outer->design || !Stands(*outer->design, query.cell)) return;
  std::string written = OnLine(id);
  if (written.empty() || written == query.cell.written) return;
  const std::optional<std::string> text = WithQuery(*TextAt(*outer->design, query.cell), query.cell, written);
  if (!text) return;
  Design changed = *outer->design;
  SetText(changed, query.cell, *text);
  if (outer->snapshot) {
    QuerySnapshot snapshot = *outer->snapshot;
    SetText(snapshot, changed, query.cell, *text);
    outer->snapshot = std::make_shared<const QuerySnapshot>(std::move(snapshot));
  }
  outer->design = std::make_shared<const Design>(std::move(changed));
  query.cell.text = query.cell.written = std::move(written);
}

// From the shown query outwards: what is written into one cell changes what is written into the next.
void qbQueryBuilder::WriteIntoCells() {
  const QuerySet& set = parts_->querySet;
  for (const StoredQuery* query = &set.Shown(); query && query->kind != QueryMain; query = set.Find(query->parent)) {
    if (query->kind == QueryInCell) WriteIntoCell(query->id);
  }
}

// --- Leaving it ---

// The query itself, or where a listener has taken the cell away that it stands in, what still stands around it.
std::int32_t qbQueryBuilder::Standing(std::int32_t id) const {
  const QuerySet& set = parts_->querySet;
  std::int32_t standing = id;
  for (const StoredQuery* query = set.Find(id); query && query->kind != QueryMain; query = set.Find(query->parent)) {
    const StoredQuery* outer = set.Find(query->parent);
    const bool isLost = query->kind == QueryInCell && outer && outer->design && !Stands(*outer->design, query->cell);
    if (isLost) standing = query->parent;
  }
  return standing;
}

void qbQueryBuilder::LeaveCells() {
  QuerySet& set = parts_->querySet;
  std::vector<std::int32_t> left;
  for (const StoredQuery& query : set.queries) {
    if (query.kind == QueryInCell && !set.IsWithin(set.shown, query.id)) left.push_back(query.id);
  }
  for (const std::int32_t id : left) {
    if (!set.Find(id)) continue;  // it belonged to another one
    Parts::LeftQuery kept{&CurrentDialect(), {}};
    for (const StoredQuery& query : set.queries) {
      if (set.IsWithin(query.id, id)) kept.queries.push_back(query);
    }
    if (parts_->left.size() == kMostLeft) parts_->left.erase(parts_->left.begin());
    if (!kept.queries.front().cell.text.empty()) parts_->left.push_back(std::move(kept));
    set.Remove(id);
    queriesChanged_ = true;
  }
}

// A query that was shown before and whose text is the same stands as it stood: its id, or 0 when there is none.
std::int32_t qbQueryBuilder::ShowLeft(const QueryCell& cell) {
  QuerySet& set = parts_->querySet;
  const auto found = std::ranges::find_if(parts_->left, [&](const Parts::LeftQuery& left) {
    const StoredQuery& query = left.queries.front();
    return left.dialect == &CurrentDialect() && query.parent == set.shown && query.cell.text == cell.text;
  });
  if (found == parts_->left.end()) return 0;
  Parts::LeftQuery left = std::move(*found);
  parts_->left.erase(found);
  StoredQuery& query = left.queries.front();
  if (set.Find(query.id)) return 0;
  const std::string written = std::move(query.cell.written);
  query.cell = cell;
  query.cell.written = written;
  for (StoredQuery& each : left.queries) set.Insert(std::move(each));
  SwitchTo(query.id);
  return set.shown;
}

}  // namespace zrqrybld
