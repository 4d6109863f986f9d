#include "diagram/auto_joins.h"

#include <string>
#include <unordered_map>
#include <vector>

#include "base/error.h"
#include "base/text.h"
#include "diagram/relationships.h"
#include "diagram/source_names.h"
#include "sql/source_rules.h"

namespace zrqrybld {
namespace {

// An entity and its place in the diagram when the pass begins: listeners may change the diagram meanwhile.
struct Candidate {
  Ref<qbEntity> entity;
  std::int32_t position;
};

// The entities of the diagram by the table they show.
class EntitiesByTable {
 public:
  EntitiesByTable(const std::vector<Candidate>& candidates, const NameRules& rules) {
    for (const Candidate& candidate : candidates) {
      const std::vector<Identifier> name = SourceName(*candidate.entity, rules);
      const std::string schema = name.size() > 1 ? name[name.size() - 2].Name() : std::string();
      byTable_[Key(schema, name.back().Name())].push_back(candidate);
    }
  }

  // In the order of the diagram.
  const std::vector<Candidate>& Find(std::string_view schema, std::string_view table) const {
    static const std::vector<Candidate> kNone;
    const auto found = byTable_.find(Key(schema, table));
    return found == byTable_.end() ? kNone : found->second;
  }

 private:
  static std::string Key(std::string_view schema, std::string_view table) {
    return FoldCase(schema) + '\n' + FoldCase(table);
  }
  std::unordered_map<std::string, std::vector<Candidate>> byTable_;
};

void Join(QueryContext& context, const Ref<qbEntity>& child, const Ref<qbEntity>& parent,
          const std::string& childColumn, const std::string& parentColumn) {
  const Ref<qbEntityItem> from = child->Items()->Item(childColumn);
  const Ref<qbEntityItem> to = parent->Items()->Item(parentColumn);
  if (!from || !to) return;
  const Variant fromIndex = from->Index();
  const Variant toIndex = to->Index();
  if (child->Relationships()->Exists(child, parent, fromIndex, toIndex)) return;
  const Ref<qbRelationship> join = child->Relationships()->Add(parent);
  join->SetSourceItemIndex(fromIndex);
  join->SetTargetItemIndex(toIndex);
  context.RaiseInfo(InfoRelationshipAdded, Ref<Object>(join));
}

// An entity that a listener has removed has no items left to join.
void JoinToParents(const Ref<QueryContext>& context, const NameRules& rules, const EntitiesByTable& byTable,
                   const Candidate& child) {
  const std::vector<Identifier> name = SourceName(*child.entity, rules);
  if (name.back().Empty()) return;  // to a source that means any table
  SchemaRestrictions table;
  table.table = name.back().Name();
  if (name.size() > 1) table.schema = name[name.size() - 2].Name();
  const auto rows = context->Connection()->OpenSchema(SchemaKind::ForeignKeys, table);
  for (; !rows->Eof(); rows->MoveNext()) {
    const std::string parentSchema = rows->Text("PK_TABLE_SCHEMA");
    const std::string parentTable = rows->Text("PK_TABLE_NAME");
    const bool referencesItself = EqualsNoCase(parentTable, rows->Text("FK_TABLE_NAME")) &&
                                  EqualsNoCase(parentSchema, rows->Text("FK_TABLE_SCHEMA"));
    for (const Candidate& parent : byTable.Find(parentSchema, parentTable)) {
      if (referencesItself && parent.position <= child.position) continue;
      Join(*context, child.entity, parent.entity, rows->Text("FK_COLUMN_NAME"), rows->Text("PK_COLUMN_NAME"));
    }
  }
}

}  // namespace

void RefreshRelationships(const Ref<QueryContext>& context) {
  const Ref<qbEntities> entities = context->Entities();
  if (!entities || !context->IsConnected()) return;
  const StepScope step(context, "Automatic joins");
  const NameRules rules = CurrentNameRules(*context);
  std::vector<Candidate> candidates;
  for (std::int32_t i = 1; i <= entities->Count(); ++i) candidates.push_back({entities->Item(i), i});
  const EntitiesByTable byTable(candidates, rules);
  try {
    for (const Candidate& child : candidates) JoinToParents(context, rules, byTable, child);
  } catch (const Error& error) {
    if (error.Number() != ErrorSchemaNotSupported) throw;
  }
}

}  // namespace zrqrybld
