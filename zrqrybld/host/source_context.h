// SourceContext: the services, the connection and its facts, the catalogs and the language of a designer.
#pragma once

#include <cstdint>
#include <exception>
#include <memory>
#include <string>
#include <vector>

#include "zrqrybld/base/export.h"
#include "zrqrybld/base/object.h"
#include "zrqrybld/base/phrase.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/host/catalogs.h"
#include "zrqrybld/host/data_types.h"
#include "zrqrybld/host/designer_values.h"
#include "zrqrybld/host/properties.h"

namespace zrqrybld {

class Connection;
class ForeignKeys;
class LanguageTable;
class Toolkit;
struct QueryContext;

class ZRQRYBLD_API SourceContext {
 public:
  explicit SourceContext(std::shared_ptr<Toolkit> toolkit);
  SourceContext(const SourceContext&) = delete;
  SourceContext& operator=(const SourceContext&) = delete;
  ~SourceContext();

  Toolkit& GetToolkit() const { return *toolkit_; }

  /// The connection; an empty one is made on first use.
  Ref<zrqrybld::Connection> Connection();
  bool IsConnected() const;
  /// Puts another connection into use.
  void StoreConnection(Ref<zrqrybld::Connection> connection);

  /// Facts about the data source and whatever the application keeps here; always holds "_QBDSFLAGS".
  const Ref<qbProperties>& Properties() const { return properties_; }
  /// The data source's types.
  const Ref<qbDataTypes>& DataTypes() const { return dataTypes_; }
  /// The functions, aggregates and grouping choices that the designer offers.
  const Ref<qbDBFunctions>& DBFunctions() const { return functions_; }
  /// The words with a meaning in SQL; names equal to one are quoted.
  const Ref<qbDBKeywords>& DBKeywords() const { return keywords_; }
  /// The operators that the designer offers.
  const Ref<qbDBOperators>& DBOperators() const { return operators_; }
  /// Texts whose presence in a name forces it into quotes.
  const Ref<StringCollection>& QuotedIdentifiers() const { return quotedIdentifiers_; }

  /// The words with a meaning in SQL, case-folded: the names of keywords and functions, and what the source reserves.
  std::shared_ptr<const WordSet> ReservedWords() const;
  /// Replaces the words that the source itself reserves.
  void SetSourceWords(const std::vector<std::string>& words);

  /// The text with this number, "" for a number that nobody has; never an error.
  std::string GetLanguageString(std::int32_t id) const;
  /// The language strings as a language, for whoever outlives the designer.
  std::shared_ptr<const TextSource> Texts() const;
  LanguageTable& Language() { return *language_; }
  /// What is said, in the designer's language.
  std::string Say(const Phrase& phrase) const;
  /// What a failure says, in the designer's language.
  std::string Say(const std::exception& failure) const;

  /// The tables that were read on connecting; empty when they were not asked for.
  std::vector<SourceTable>& SourceTables() { return sourceTables_; }
  /// What the source has told about its foreign keys since it was connected.
  zrqrybld::ForeignKeys& ForeignKeys() { return *foreignKeys_; }

 private:
  std::shared_ptr<Toolkit> toolkit_;
  Ref<zrqrybld::Connection> connection_;
  Ref<qbProperties> properties_ = std::make_shared<qbProperties>();
  Ref<qbDataTypes> dataTypes_ = std::make_shared<qbDataTypes>();
  Ref<qbDBFunctions> functions_ = std::make_shared<qbDBFunctions>();
  Ref<qbDBKeywords> keywords_ = std::make_shared<qbDBKeywords>();
  Ref<qbDBOperators> operators_ = std::make_shared<qbDBOperators>();
  Ref<StringCollection> quotedIdentifiers_ = std::make_shared<StringCollection>();
  std::shared_ptr<LanguageTable> language_;
  std::vector<SourceTable> sourceTables_;
  std::unique_ptr<zrqrybld::ForeignKeys> foreignKeys_;
  WordSet sourceWords_;  // case-folded
  // Made anew when a catalog has changed: every generated statement asks for them.
  mutable std::shared_ptr<const WordSet> reservedWords_;
  mutable std::uint64_t reservedWordsRevision_ = 0;
};

/// What is said in the designer's language, in English where there is no designer.
std::string Say(const Ref<QueryContext>& context, const Phrase& phrase);

}  // namespace zrqrybld
