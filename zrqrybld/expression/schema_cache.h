// SchemaCache: what the expression tools know of the data source, read once and remembered.
//
// The hub owns it. The list of tables is read by `Refresh`, which editors call when they get the keyboard, not while
// one types; the columns and foreign keys of a table when that table is used for the first time.
#pragma once

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "zrqrybld/base/object.h"
#include "zrqrybld/expression/source_facts.h"
#include "zrqrybld/expression/vocabulary.h"

namespace zrqrybld {

class Connection;
class Variant;
class qbEntity;
struct QueryContext;
struct QuerySnapshot;

/// The words of the catalogs as they are now.
Vocabulary ReadVocabulary(const QueryContext& context);

/// The ?PARAM markers of a designed query, as they are written there.
std::vector<std::string> QueryMarkers(const QuerySnapshot& query);

/// Puts parameters that are in use before the marker's pattern, each once.
void AddMarkers(Vocabulary& words, const std::vector<std::string>& markers, const std::string& description);

class SchemaCache final : public SourceFacts {
 public:
  /// The context must outlive the cache.
  explicit SchemaCache(QueryContext& context) : context_(context) {}

  /// Looks at the diagram's tables as they are now, and reads the list of the source's tables when another source is
  /// connected. A source that cannot answer has no tables; it is not asked again.
  void Refresh();

  /// Forgets everything: the source has changed.
  void Clear();

  const std::vector<const TableFacts*>& Tables() const override { return listed_; }
  const std::vector<QueryTableFacts>& QueryTables() const override { return queryTables_; }
  const TableFacts* Find(const std::vector<std::string>& parts) override;

  /// Whether the source says that a column of one of its tables may be Null. Of each table it is asked once.
  bool MayBeNull(const std::vector<std::string>& table, const std::string& column);

  /// Somebody has taken the suggestion with this name.
  void NoteTaken(const std::string& name);
  /// The names of those that were taken last, the latest first.
  const std::vector<std::string>& Recent() const { return recent_; }

 private:
  struct Known : TableFacts {
    bool read = false;  // the source was asked for its columns and foreign keys
  };
  // What an entity looked like when its facts were taken.
  struct TakenEntity {
    WeakRef<qbEntity> entity;
    std::int32_t items = 0;
    TableFacts facts;
  };

  void FollowSource();
  Known* FindInSource(const std::vector<std::string>& parts);
  void ReadTables();
  void TakeKnownColumns();
  void TakeQueryTables();
  void TakeOuterTables();
  TakenEntity& Taken(const Ref<qbEntity>& entity);
  void Read(Known& table);
  void ReadColumns(Known& table);
  void ReadForeignKeys(Known& table);
  std::string TypeName(const Variant& type, bool isLong) const;

  QueryContext& context_;
  WeakRef<Connection> source_;  // whose tables these are
  std::string sourceText_;      // its connection string when they were read
  std::vector<std::unique_ptr<Known>> tables_;
  std::unordered_map<std::string, std::vector<Known*>> byName_;  // by the name, case-folded
  std::vector<const TableFacts*> listed_;
  std::unordered_map<const qbEntity*, TakenEntity> entities_;
  std::vector<QueryTableFacts> queryTables_;
  std::vector<std::string> recent_;
  std::vector<std::unique_ptr<TableFacts>> outer_;  // of queries around
};

}  // namespace zrqrybld
