// QueryContext: what the panes share, and whom they tell.
//
// The hub derives from it. A pane holds a weak link to its context; through it the pane reaches the
// catalogs, the connection, the language strings and the model in use, and reports what has
// happened in it. Reports are direct calls that the hub overrides, never subscriptions to a public
// event, so that public events come in one order, which the hub alone decides.
#pragma once

#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/event.h"
#include "zrqrybld/base/export.h"
#include "zrqrybld/base/object.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/base/variant.h"
#include "zrqrybld/host/catalogs.h"
#include "zrqrybld/host/data_types.h"
#include "zrqrybld/host/foreign_keys.h"
#include "zrqrybld/host/language.h"
#include "zrqrybld/host/properties.h"
#include "zrqrybld/host/step_names.h"
#include "zrqrybld/platform/database.h"
#include "zrqrybld/platform/toolkit.h"

namespace zrqrybld {

class qbEntities;
class qbEntity;
class qbQueryBuilder;
class qbRelationship;
class SchemaCache;
struct CriteriaContext;
struct Dialect;
struct QuerySnapshot;

/// What the designer is busy with, and what the event `Info` reports.
enum QueryBuilderInfoEnum : std::int32_t {
  InfoDone = 0,
  InfoRetrieveConnectionInfo = 1,
  InfoTableAdded = 2,
  InfoRelationshipAdded = 3,
  InfoRetrieveTableInfo = 4,
  InfoSavingQuery = 5,
  InfoLoadingQuery = 6,
  InfoTableRemoved = 7,
  InfoAddTables = 8,
  InfoParsingSQL = 9,
  InfoSavingDetail = 10,
};

/// The order in which a table's columns are listed.
enum FieldOrderEnum : std::int32_t {
  FieldOrderDefault = 0,  ///< as the provider returns them
  FieldOrderOrdinal = 1,  ///< by their ordinal position
};

/// What the grid says about a column of the diagram.
struct ColumnUse {
  std::string sortType;  ///< "Ascending", "Descending" or ""
  std::string groupBy;   ///< the text of its "group_by" cell
};

/// A table of the data source with its columns, as far as they were read on connecting.
struct SourceTable {
  std::string name;
  std::vector<std::string> columns;
};

class ZRQRYBLD_API QueryContext : public Object {
 public:
  // --- What is shared ---

  Toolkit& GetToolkit() const { return *toolkit_; }

  /// The hub itself, for a pane's `QueryBuilder`.
  virtual Ref<qbQueryBuilder> Hub() = 0;

  /// The connection; an empty one is made on first use.
  Ref<zrqrybld::Connection> Connection();
  bool IsConnected() const { return connection_ && connection_->IsOpen(); }

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

  /// The text with this number, "" for a number that nobody has; never an error.
  std::string GetLanguageString(std::int32_t id) const { return language_->Get(id); }

  /// The language strings as a language, for whoever outlives the designer.
  std::shared_ptr<const TextSource> Texts() const { return language_; }
  /// What is said, in the designer's language.
  std::string Say(const Phrase& phrase) const { return phrase.In(*language_); }
  /// What a failure says, in the designer's language.
  std::string Say(const std::exception& failure) const { return PhraseOf(failure).In(*language_); }
  /// The language strings have changed.
  Event<> TextsChanged;

  /// The longest alias in characters; 0 means no limit.
  virtual std::int16_t AliasMaxLen() const = 0;
  virtual FieldOrderEnum RetrieveFieldOrder() const = 0;

  /// The diagram's tables; nothing when no diagram is linked.
  virtual Ref<qbEntities> Entities() const = 0;

  /// The dialect in use; the generic one when no SQL pane is linked.
  virtual const Dialect& CurrentDialect() const = 0;
  /// Whether it can say "all rows of both tables". Without an SQL pane nothing speaks against that.
  virtual bool HasFullJoin() const = 0;
  /// Another dialect is in use.
  virtual void DialectChanged() = 0;
  /// Another word is written for LIKE from now on; criteria follow.
  virtual void LikeOperatorChanged(const std::string& before) = 0;

  /// The grid's date format; the default one when no grid is linked.
  virtual std::string DateFormat() const = 0;

  /// How criteria are read and values written; what depends on a column is left open.
  virtual CriteriaContext CriteriaRules() const = 0;

  /// The designed query as it is now.
  virtual QuerySnapshot Snapshot() const = 0;

  /// What the grid says about a column; empty texts when it has no row there, nothing when no grid is linked.
  virtual std::optional<ColumnUse> UseOfColumn(const std::string& entityCaption, const std::string& column) const = 0;
  /// Sorts by the column ("Ascending" or "Descending"), or no more (""). The column gets a row where it has none.
  virtual void SortByColumn(const std::string& entityCaption, const std::string& column, const std::string& type) = 0;
  /// Groups by the column or aggregates it: one of the grouping choices by name. The query groups from then on.
  virtual void GroupColumn(const std::string& entityCaption, const std::string& column, const std::string& choice) = 0;
  /// Takes the user to the cell where the column's criterion is typed.
  virtual void GoToCriterion(const std::string& entityCaption, const std::string& column) = 0;

  /// Whether the properties of a join may be shown.
  virtual bool CanEditJoins() const = 0;

  /// Makes the query what the statement says. SyntaxError for a text that cannot be read or shown: nothing has changed
  /// then. Errors of the data source while tables are added leave what was done.
  virtual void LoadStatement(const std::string& sql) = 0;

  /// What the expression tools know of the source; never nothing.
  virtual std::shared_ptr<SchemaCache> Schema() = 0;

  // --- State, progress, steps ---

  /// What the designer is busy with; `InfoDone` when idle.
  QueryBuilderInfoEnum state() const { return state_; }
  void SetState(QueryBuilderInfoEnum value) {
    state_ = value;
    stateIsLeft_ = false;
  }
  /// The operation has failed: its state stays, for whoever asks, up to the next change.
  void LeaveState() { stateIsLeft_ = true; }
  /// Ends what a failed operation has left.
  void TakeBackState() {
    if (stateIsLeft_) SetState(InfoDone);
  }

  /// Progress: what happened, and the thing it happened to. Both may be changed by a handler.
  Event<QueryBuilderInfoEnum&, Variant&> Info;
  void RaiseInfo(QueryBuilderInfoEnum info, Variant parameters = {});

  /// Runs a long operation as a step, with `state` at `operation`. The outermost one ends with `Info`: `InfoDone` and
  /// the operation's number, after `state` is back and the statement is written; on errors too.
  void RunOperation(const StepName& step, QueryBuilderInfoEnum operation, const std::function<void()>& work,
                    const std::string& about = {});

  /// Begins a step of the user's or the application's, which can be undone as a whole. Steps nest, and the outermost
  /// one counts. `about` is what the step is about, for its name.
  void BeginStep(const StepName& name, const std::string& about = {});
  /// Ends it. Error 5 when none has begun.
  void EndStep();
  /// Memory has run out in the step that goes on: at its end the query is made what it was before it.
  void TakeStepBack() { takesStepBack_ = stepDepth_ > 0; }

  // --- Whom the panes tell ---

  /// Something that the statement depends on has changed. The statement is written once, at the end of
  /// the outermost step; not while the designer is busy. Without a step the change is one by itself.
  void QueryChanged();

  /// The set of entities, their order or their captions have changed, from this position on. The list of tables follows
  /// once, at the end of the outermost step.
  void EntitiesChanged(std::int32_t from);

  /// A column was ticked or unticked in its box.
  virtual void ItemChecked(const std::string& entityCaption, const std::string& itemText, bool checked) = 0;
  /// A column that is ticked has got another text.
  virtual void ItemRenamed(const std::string& entityCaption, const std::string& before, const std::string& after) = 0;
  /// An entity has left the diagram.
  virtual void EntityRemoved(const std::string& caption) = 0;
  /// An entity has got another caption.
  virtual void EntityRenamed(const std::string& oldCaption, const std::string& newCaption) = 0;
  /// The diagram was emptied.
  virtual void DiagramCleared() = 0;
  /// The user asks for the table picker.
  virtual void RequestTables() = 0;
  /// The user has double-clicked a join.
  virtual void RelationshipActivated(const Ref<qbRelationship>& relationship) = 0;

  // --- For connection handling ---

  /// The tables that were read on connecting; empty when they were not asked for.
  std::vector<SourceTable>& SourceTables() { return sourceTables_; }
  /// What the source has told about its foreign keys since it was connected.
  zrqrybld::ForeignKeys& ForeignKeys() { return foreignKeys_; }
  /// Replaces the words that the source itself reserves.
  void SetSourceWords(const std::vector<std::string>& words);

 protected:
  explicit QueryContext(std::shared_ptr<Toolkit> toolkit);

  /// Writes the statement anew.
  virtual void RefreshStatement() = 0;

  /// Fills the list of tables anew; what stands before the position is as it was.
  virtual void RefreshTableList(std::int32_t from) = 0;

  // --- Steps, for whoever remembers them ---

  /// The outermost step begins.
  virtual void StepBegins(const StepLabel&) {}
  /// It is to be taken back; it goes on while that is done. Done again when the next step begins, when memory runs out
  /// in it.
  virtual void StepFailed() {}
  /// Its changes are complete; the statement is written next, when `writes` says so.
  virtual void StepMade(const StepLabel&, [[maybe_unused]] bool writes) {}
  /// The statement is written, too, and the designer is idle.
  virtual void StepEnded() {}

  /// Whether a step is going on, or what it has changed is being told.
  bool InStep() const { return stepDepth_ > 0 || stepEnding_; }

  LanguageTable& Language() { return *language_; }
  void StoreConnection(Ref<zrqrybld::Connection> connection) {
    connection_ = std::move(connection);
    foreignKeys_.Clear();
  }

 private:
  std::shared_ptr<Toolkit> toolkit_;
  Ref<zrqrybld::Connection> connection_;
  Ref<qbProperties> properties_ = std::make_shared<qbProperties>();
  Ref<qbDataTypes> dataTypes_ = std::make_shared<qbDataTypes>();
  Ref<qbDBFunctions> functions_ = std::make_shared<qbDBFunctions>();
  Ref<qbDBKeywords> keywords_ = std::make_shared<qbDBKeywords>();
  Ref<qbDBOperators> operators_ = std::make_shared<qbDBOperators>();
  Ref<StringCollection> quotedIdentifiers_ = std::make_shared<StringCollection>();
  std::shared_ptr<LanguageTable> language_ = std::make_shared<LanguageTable>();
  std::vector<SourceTable> sourceTables_;
  zrqrybld::ForeignKeys foreignKeys_;
  WordSet sourceWords_;  // case-folded
  // Made anew when a catalog has changed: every generated statement asks for them.
  mutable std::shared_ptr<const WordSet> reservedWords_;
  mutable std::uint64_t reservedWordsRevision_ = 0;
  QueryBuilderInfoEnum state_ = InfoDone;
  bool stateIsLeft_ = false;
  int stepDepth_ = 0;
  bool takesStepBack_ = false;
  bool stepEnding_ = false;
  StepLabel step_;
  bool changed_ = false;
  std::optional<std::int32_t> entitiesChangedFrom_;
};

/// What is said in the designer's language, in English where there is no designer.
inline std::string Say(const Ref<QueryContext>& context, const Phrase& phrase) {
  return context ? context->Say(phrase) : phrase.English();
}

/// A named step for the length of a scope.
class [[nodiscard]] StepScope {
 public:
  StepScope(Ref<QueryContext> context, const StepName& name, const std::string& about = {})
      : context_(std::move(context)) {
    if (context_) context_->BeginStep(name, about);
  }
  StepScope(const StepScope&) = delete;
  StepScope& operator=(const StepScope&) = delete;
  ~StepScope() noexcept(false) {
    if (!context_) return;
    if (std::uncaught_exceptions() == exceptions_) {
      context_->EndStep();
      return;
    }
    try {
      context_->EndStep();
    } catch (...) {
      // The step ends because of an error; that error goes on, not one from writing the statement.
    }
  }

 private:
  Ref<QueryContext> context_;
  int exceptions_ = std::uncaught_exceptions();
};

/// Runs a part of a step. When memory runs out in it, the error goes on and the step is taken back at its end: what is
/// half done is not left in the design.
template <class Work>
decltype(auto) WholeOrNothing(const Ref<QueryContext>& context, Work work) {
  try {
    return work();
  } catch (const std::bad_alloc&) {
    if (context) context->TakeStepBack();
    throw;
  }
}

/// Says what the designer is busy with for the length of a scope. Only the outermost operation sets the
/// state, and it sets it back, also when an error ends it.
class [[nodiscard]] StateScope {
 public:
  StateScope(QueryContext& context, QueryBuilderInfoEnum value)
      : context_(context), outermost_(context.state() == InfoDone) {
    if (outermost_) context_.SetState(value);
  }
  StateScope(const StateScope&) = delete;
  StateScope& operator=(const StateScope&) = delete;
  ~StateScope() {
    if (outermost_) context_.SetState(InfoDone);
  }

 private:
  QueryContext& context_;
  bool outermost_;
};

}  // namespace zrqrybld
