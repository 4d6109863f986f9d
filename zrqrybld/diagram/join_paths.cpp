#include "zrqrybld/diagram/join_paths.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "zrqrybld/base/text.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/entity.h"
#include "zrqrybld/diagram/source_names.h"
#include "zrqrybld/host/design_queries.h"
#include "zrqrybld/host/source_context.h"
#include "zrqrybld/sql/source_rules.h"

namespace zrqrybld {
namespace {

constexpr std::size_t kMostPaths = 12;
constexpr std::size_t kMostTables = 200;

// A table that was reached, and the tables of the step before it, which are nearer to the wanted one.
struct Reached {
  SourceTableName table;
  std::vector<std::string> nearer;  // folded names
};
using Reach = std::unordered_map<std::string, Reached>;

// A source that tells foreign keys by table is asked about each, for a way may lead over tables that nobody has named.
void AskAboutAll(QueryContext& context) {
  Connection& connection = *context.source.Connection();
  if (connection.KnowsWholeSource(SchemaKind::ForeignKeys)) return;
  std::vector<SourceTableName> tables;
  const auto rows = connection.OpenSchema(SchemaKind::Tables);
  for (; !rows->Eof() && tables.size() < kMostTables; rows->MoveNext()) {
    if (EqualsNoCase(rows->Text("TABLE_TYPE"), "TABLE")) {
      tables.push_back({rows->Text("TABLE_SCHEMA"), rows->Text("TABLE_NAME")});
    }
  }
  for (const SourceTableName& table : tables) context.source.ForeignKeys().Of(connection, table);
}

std::vector<SourceTableName> NeighboursOf(QueryContext& context, const SourceTableName& table) {
  std::vector<SourceTableName> found;
  Connection& connection = *context.source.Connection();
  for (const ForeignKeyPair& pair : context.source.ForeignKeys().Of(connection, table)) found.push_back(pair.parent);
  for (const ForeignKeyPair& pair : context.source.ForeignKeys().To(connection, table)) found.push_back(pair.child);
  return found;
}

// Walks from a reached table to the wanted one, every way.
void CollectPaths(const Reach& reach, const std::string& at, const NameRules& rules, const JoinPath& path,
                  std::vector<JoinPath>& paths) {
  for (const std::string& next : reach.at(at).nearer) {
    if (paths.size() == kMostPaths) return;
    JoinPath longer = path;
    const SourceTableName& table = reach.at(next).table;
    longer.tables.push_back(QualifiedText(table.schema, table.table, rules));
    if (reach.at(next).nearer.empty()) {
      paths.push_back(std::move(longer));
    } else {
      CollectPaths(reach, next, rules, longer, paths);
    }
  }
}

}  // namespace

std::vector<JoinPath> PathsTo(QueryContext& context, const SourceTableName& table) {
  const Ref<qbEntities> entities = context.design.Entities();
  if (!entities || entities->Count() == 0 || !context.source.IsConnected()) return {};
  const NameRules rules = CurrentNameRules(context);
  std::unordered_map<std::string, std::string> captions;  // of the diagram's tables, by folded name
  for (const Ref<qbEntity>& entity : *entities) {
    captions.try_emplace(FoldedName(TableInSource(*entity, rules)), entity->Caption());
  }
  const std::string wanted = FoldedName(table);
  if (captions.contains(wanted)) return {};

  AskAboutAll(context);
  Reach reach{{wanted, {table, {}}}};
  std::vector<std::string> step{wanted};
  std::vector<std::string> met;  // tables of the diagram
  while (!step.empty() && met.empty() && reach.size() <= kMostTables) {
    Reach next;
    for (const std::string& name : step) {
      std::unordered_set<std::string> seen;  // several columns may link two tables
      for (const SourceTableName& neighbour : NeighboursOf(context, reach.at(name).table)) {
        std::string folded = FoldedName(neighbour);
        if (reach.contains(folded) || !seen.insert(folded).second) continue;
        Reached& reached = next.try_emplace(std::move(folded), Reached{neighbour, {}}).first->second;
        reached.nearer.push_back(name);
      }
    }
    step.clear();
    for (auto& [name, reached] : next) {
      if (captions.contains(name)) met.push_back(name);
      step.push_back(name);
      reach.emplace(name, std::move(reached));
    }
  }
  std::vector<JoinPath> paths;
  std::ranges::sort(met);
  for (const std::string& name : met) CollectPaths(reach, name, rules, {captions.at(name), {}}, paths);
  std::ranges::sort(paths, {}, [](const JoinPath& path) { return std::pair(path.from, path.tables); });
  return paths;
}

}  // namespace zrqrybld
