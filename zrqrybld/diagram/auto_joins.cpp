#include "zrqrybld/diagram/auto_joins.h"

#include <algorithm>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "zrqrybld/base/text.h"
#include "zrqrybld/diagram/relationships.h"
#include "zrqrybld/diagram/source_names.h"
#include "zrqrybld/host/foreign_keys.h"
#include "zrqrybld/host/query_context.h"
#include "zrqrybld/platform/database.h"
#include "zrqrybld/sql/source_rules.h"

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
      byTable_[FoldedName(TableInSource(*candidate.entity, rules))].push_back(candidate);
    }
  }

  // In the order of the diagram.
  const std::vector<Candidate>& Find(const SourceTableName& table) const {
    static const std::vector<Candidate> kNone;
    const auto found = byTable_.find(FoldedName(table));
    return found == byTable_.end() ? kNone : found->second;
  }

 private:
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
  context.steps.RaiseInfo(InfoRelationshipAdded, Ref<Object>(join));
}

// An entity that a listener has removed has no items left to join.
void JoinToParents(const Ref<QueryContext>& context, const NameRules& rules, const EntitiesByTable& byTable,
                   const Candidate& child) {
  const SourceTableName table = TableInSource(*child.entity, rules);
  if (table.table.empty()) return;  // to a source that means any table
  // A copy: a listener may connect to another source, or begin another pass, which forgets the answers.
  const std::vector<ForeignKeyPair> pairs = context->source.ForeignKeys().Of(*context->source.Connection(), table);
  for (const ForeignKeyPair& pair : pairs) {
    const bool referencesItself = FoldedName(pair.parent) == FoldedName(pair.child);
    for (const Candidate& parent : byTable.Find(pair.parent)) {
      if (referencesItself && parent.position <= child.position) continue;
      Join(*context, child.entity, parent.entity, pair.childColumn, pair.parentColumn);
    }
  }
}

}  // namespace

void RefreshRelationships(const Ref<QueryContext>& context) {
  const Ref<qbEntities> entities = context->design.Entities();
  if (!entities || !context->source.IsConnected()) return;
  const StepScope step(context, kStepAutomaticJoins);
  context->source.ForeignKeys().Clear();  // a table may have been made, or got a key, since the last pass
  const NameRules rules = CurrentNameRules(*context);
  std::vector<Candidate> candidates;
  for (const Ref<qbEntity>& entity : *entities) candidates.push_back({entity, entity->Index()});
  const EntitiesByTable byTable(candidates, rules);
  for (const Candidate& child : candidates) JoinToParents(context, rules, byTable, child);
}

std::vector<std::string> RelatedTables(QueryContext& context, const qbEntity& entity) {
  const Ref<qbEntities> entities = context.design.Entities();
  if (!entities || !context.source.IsConnected()) return {};
  const NameRules rules = CurrentNameRules(context);
  const SourceTableName table = TableInSource(entity, rules);
  if (table.table.empty()) return {};
  std::vector<SourceTableName> related;
  Connection& connection = *context.source.Connection();
  for (const ForeignKeyPair& pair : context.source.ForeignKeys().Of(connection, table)) related.push_back(pair.parent);
  for (const ForeignKeyPair& pair : context.source.ForeignKeys().To(connection, table)) related.push_back(pair.child);
  std::unordered_set<std::string> known;
  for (const Ref<qbEntity>& one : *entities) known.insert(FoldedName(TableInSource(*one, rules)));
  std::vector<std::string> names;
  for (const SourceTableName& one : related) {
    if (known.insert(FoldedName(one)).second) names.push_back(QualifiedText(one.schema, one.table, rules));
  }
  std::ranges::sort(names);
  return names;
}

}  // namespace zrqrybld
