// qbQueryBuilder: the hub of a query designer.
//
// It owns what the panes share and the options of the query, links the panes and keeps them in step,
// and offers the operations that act on the whole query. It draws nothing itself.
#pragma once

#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/event.h"
#include "zrqrybld/base/export.h"
#include "zrqrybld/base/object.h"
#include "zrqrybld/base/phrase.h"
#include "zrqrybld/base/variant.h"
#include "zrqrybld/host/context_link.h"
#include "zrqrybld/host/designer_values.h"
#include "zrqrybld/host/step_names.h"
#include "zrqrybld/hub/hub_options.h"
#include "zrqrybld/sql/query_kind.h"

// Who uses a pane includes its header; hub/query_builder.h brings an application all of them.
namespace zrqrybld {

class BoxRow;
class Connection;
class History;
class OuterQueries;
class PropertyStore;
class QueryFileReader;
class SchemaCache;
class StringCollection;
class Toolkit;
class qbDBFunction;
class qbDBFunctions;
class qbDBKeyword;
class qbDBKeywords;
class qbDBOperators;
class qbDataTypes;
class qbDiagramPane;
class qbEntities;
class qbEntity;
class qbGridPane;
class qbProperties;
class qbQueries;
class qbRelationship;
class qbSQLPane;
enum class ConnectionOrigin : std::uint8_t;
struct CriteriaContext;
struct SQLDiagnostic;
struct Design;
struct DesignChange;
struct DesignOptions;
struct Dialect;
struct ExtraConditions;
struct GeneratedQuery;
struct InnerQueryInFile;
struct QueryCell;
struct QueryColumn;
struct QuerySet;
struct QuerySnapshot;
struct QueryTree;
struct ReadQuery;
struct StepLabel;
struct StoredQuery;

class ZRQRYBLD_API qbQueryBuilder final : public Object, public QueryContext {
 public:
  /// A hub on the services of `toolkit`; without one it is headless.
  static Ref<qbQueryBuilder> Create(std::shared_ptr<Toolkit> toolkit = nullptr);
  ~qbQueryBuilder() override;
  std::string_view TypeName() const override { return "qbQueryBuilder"; }

  // --- For the form that stores the control's design-time properties ---

  /// A property was set: its key. The container marks it as changed.
  Event<std::string_view> PropertyChanged;
  /// The control is placed on a form for the first time.
  void InitProperties();
  /// Takes the options from a stored form. A missing key has the default of stored forms, which for
  /// "GetTablesOnConnect" and "SaveConnectionString" is True, other than that of a newly placed control. A value of
  /// the wrong kind counts as missing.
  void ReadProperties(const PropertyStore& store);
  /// Stores the options; those equal to the default of stored forms are left out, except "AllowJoinProperties".
  void WriteProperties(PropertyStore& store) const;

  // --- Public members, in interface order ---

  /// Adds a table of the data source to the diagram; quotes around its name are taken off. It draws no
  /// joins: call `RefreshAutoJoins` after the last table. Nothing when a listener prevents it or no diagram
  /// is linked; error 40004 when the source fails.
  Ref<qbEntity> AddTable(const std::string& tableName);

  /// Whether a double-click on a join opens its properties.
  bool AllowJoinProperties() const { return options_.allowJoinProperties; }
  void SetAllowJoinProperties(bool allow);

  /// Shows what this library is.
  void AboutBox();

  /// Opens the connection and asks the source how it writes SQL. An open connection is closed first. No error leaves
  /// it: see `LastError`.
  void Connect(const std::string& connectionString);
  /// The same with a connection string that the user builds, and that is returned; "" when cancelled, and nothing is
  /// changed then.
  std::string Connect();
  /// The same for a string that the application got from elsewhere. One that may not be opened (see `RefusalOf`)
  /// leaves an open connection as it is.
  void Connect(const std::string& connectionString, ConnectionOrigin origin);

  /// A connection is about to be opened: its string, with its password, whether that came with a query file, and
  /// whether the connection is to be left out, which then fails with error 3706. Also before a test of a connection.
  Event<const std::string&, bool, bool&> BeforeConnect;

  /// Why a string may not be opened, none when it may: what `JudgeConnection` says of where it comes from, a person's
  /// answer where only they can say, and the listeners of `BeforeConnect`. For applications that open it themselves.
  std::optional<Error> RefusalOf(const std::string& connectionString, ConnectionOrigin origin);

  /// Why the last `Connect` failed; none when it succeeded.
  const std::optional<Error>& LastError() const { return lastError_; }

  /// Puts another connection into use. An open one is asked at once how its source writes SQL.
  void SetConnection(const Ref<zrqrybld::Connection>& connection);

  /// The pane of tables and joins, or nothing. Linking another lets go of the one before; its tables are in use
  /// at once.
  Ref<qbDiagramPane> DiagramPane() const { return diagramPane_; }
  void SetDiagramPane(const Ref<qbDiagramPane>& pane);

  /// Closes the connection. Error 3704 when it is not open.
  void Disconnect();

  /// Whether connecting also reads the tables and columns of the whole source.
  bool GetTablesOnConnect() const { return options_.getTablesOnConnect; }
  void SetGetTablesOnConnect(bool get);

  /// The pane of query columns, or nothing. Linking another lets go of the one before.
  Ref<qbGridPane> GridPane() const { return gridPane_; }
  void SetGridPane(const Ref<qbGridPane>& pane);

  /// Reads a saved query, a file or with `fileIsData` its text, into what is there: nothing is cleared. Names the
  /// file's statement and connection string in the two results, where given; with `returnParametersOnly` that is all.
  /// A result stays as it is when the file does not have it, and has it even when an error ends the load later.
  /// True, or False when the saved connection cannot be opened, or may not be, as one that came with a file (see
  /// `LastError`). Error 40003 when the query cannot be read; what was read until then stays.
  bool LoadQuery(const std::string& filename, bool fileIsData = false, bool returnParametersOnly = false,
                 std::string* sqlStatement = nullptr, std::string* connectionString = nullptr);

  /// What the last `LoadQuery` passed over, a sentence each with its line: text that stands in no section, a section
  /// without an end, unknown sections and keys, bytes that are no UTF-8. A file that says nothing of the kind is read
  /// completely; one that does loses this when it is written anew. Empty at first.
  const std::vector<std::string>& LoadRemarks() const { return loadRemarks_; }

  /// Replaces all captions by those of a language file. Error 40000 when it cannot be read.
  void LoadLanguageFile(const std::string& path);

  /// Saves the query to a file, which is replaced whole or not at all. Error 75 with the system's reason when that
  /// fails.
  void SaveQuery(const std::string& filename);
  /// The query as the text of such a file, without a line end at its end.
  std::string SaveQueryToText();

  /// Lets the user edit the whole join of a relationship; whether it was accepted: `ItemData` holds the kind then.
  bool ShowJoinProperties(const Ref<qbRelationship>& relationship);

  /// Draws the joins that the source's foreign keys name between the tables of the diagram.
  void RefreshAutoJoins();

  /// Ends what an operation that failed has left behind: `state` is `InfoDone` again. The next change of the query, and
  /// `Refresh` of the SQL pane, do so by themselves.
  void CancelOperation();

  /// Replaces one caption; "" brings the built-in text back.
  void SetLanguageString(std::int32_t id, const std::string& newValue);

  /// Lets the user pick tables of the source.
  void ShowTables();

  /// The pane of the statement, or nothing. Linking another lets go of the one before; its text follows at the
  /// next change of the query.
  Ref<qbSQLPane> SQLPane() const { return sqlPane_; }
  void SetSQLPane(const Ref<qbSQLPane>& pane);

  /// Whether loading a query also connects with the connection string saved in it; True at first.
  bool ConnectOnLoad() const { return options_.connectOnLoad; }
  void SetConnectOnLoad(bool connect);

  /// SELECT DISTINCT.
  bool DistinctRecords() const { return options_.distinctRecords; }
  void SetDistinctRecords(bool distinct);

  /// The row limit: "", a number, or a number up to 100 followed by "%". Anything else is error 40005 and
  /// changes nothing.
  const std::string& SelectTopRecords() const { return options_.selectTopRecords; }
  void SetSelectTopRecords(const std::string& value);

  /// How many rows are passed over before the first that is wanted; 0 at first. Only some dialects can say so. Error
  /// 40005 for a negative number.
  std::int32_t SkipRecords() const { return options_.skipRecords; }
  void SetSkipRecords(std::int32_t rows);

  /// Whether connecting chooses the dialect that the source speaks; False at first. A source that is not known, and a
  /// query file with a dialect of its own, keep theirs.
  bool AutoSyntax() const { return options_.autoSyntax; }
  void SetAutoSyntax(bool follow);

  /// The order of the columns of tables that are added from now on; those in the diagram keep theirs.
  FieldOrderEnum RetrieveFieldOrder() const { return options_.retrieveFieldOrder; }
  void SetRetrieveFieldOrder(FieldOrderEnum order);

  /// Whether a saved query carries the columns of its tables; False at first.
  bool SaveLoadEntityItems() const { return options_.saveLoadEntityItems; }
  void SetSaveLoadEntityItems(bool save);

  /// Whether a saved query carries the connection string; False at first.
  bool SaveConnectionString() const { return options_.saveConnectionString; }
  void SetSaveConnectionString(bool save);

  /// Whether a saved connection string keeps its passwords; False at first. This is not stored with the options.
  bool SavePassword() const { return savePassword_; }
  void SetSavePassword(bool save) { savePassword_ = save; }

  /// The longest alias in characters that is typed into the grid or written into the statement; 0 means no limit. What
  /// is longer for another reason is cut in the statement, with a remark. Error 40005 for a negative number.
  std::int16_t AliasMaxLen() const { return options_.aliasMaxLen; }
  void SetAliasMaxLen(std::int16_t characters);

  // --- What the panes share ---

  /// The services of the outside, data source providers among them.
  Toolkit& GetToolkit() const;

  /// The connection; an empty one is made on first use. Another that is open is asked how its source writes SQL.
  Ref<zrqrybld::Connection> Connection();
  bool IsConnected() const;

  /// Facts about the data source and whatever the application keeps here; always holds "_QBDSFLAGS".
  const Ref<qbProperties>& Properties() const;
  /// The data source's types.
  const Ref<qbDataTypes>& DataTypes() const;
  /// The functions, aggregates and grouping choices that the designer offers.
  const Ref<qbDBFunctions>& DBFunctions() const;
  /// The words with a meaning in SQL; names equal to one are quoted.
  const Ref<qbDBKeywords>& DBKeywords() const;
  /// The operators that the designer offers.
  const Ref<qbDBOperators>& DBOperators() const;
  /// Texts whose presence in a name forces it into quotes.
  const Ref<StringCollection>& QuotedIdentifiers() const;
  /// The tables that were read on connecting; empty when they were not asked for.
  std::vector<SourceTable>& SourceTables();

  /// The text with this number, "" for a number that nobody has; never an error.
  std::string GetLanguageString(std::int32_t id) const;
  /// The language strings as a language, for whoever outlives the designer.
  std::shared_ptr<const TextSource> Texts() const;
  /// What is said, in the designer's language.
  std::string Say(const Phrase& phrase) const;
  /// What a failure says, in the designer's language.
  std::string Say(const std::exception& failure) const;
  /// The language strings have changed.
  Event<> TextsChanged;

  // --- State, progress, steps ---

  /// What the designer is busy with; `InfoDone` when idle.
  QueryBuilderInfoEnum state() const;
  void SetState(QueryBuilderInfoEnum value);

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

  /// Something that the statement depends on has changed: it is written once, at the end of the outermost step.
  void QueryChanged();
  /// The set of entities, their order or their captions have changed, from this position on.
  void EntitiesChanged(std::int32_t from);

  /// Makes the table that a criterion asks by IN (SELECT ...) or NOT IN one of the diagram, with a join that only asks
  /// whether it has a row: a step. `row` and `column` name the criterion's cell, the column by position or key. Error 5
  /// with the reason where the statement would not mean the same: NOT IN needs columns that cannot be Null.
  void AskAsJoin(std::int32_t row, const Variant& column);

  // --- Undo ---

  /// Takes the last step back: what the user, or the application between `BeginStep` and `EndStep`, has changed in the
  /// diagram, the grid and the options of the query. Selection, scrolling and zoom are no steps. The data source is not
  /// asked, and no listener of the diagram or the grid is asked or told, but of a selected object that goes; the
  /// statement is written once. A statement that was typed and not applied stays, and one that the step has written
  /// over comes back. False when there is no step. Error 5 while a step is going on or being told of, as in most
  /// events.
  bool Undo() { return Travel(true); }
  /// Makes the step again that was undone last; as `Undo`.
  bool Redo() { return Travel(false); }
  /// Whether there is a step to undo.
  bool CanUndo() const;
  /// Whether there is a step to redo.
  bool CanRedo() const;
  /// What would be undone, for a menu: "Add table Orders". "" when there is nothing.
  std::string UndoText() const;
  /// What would be redone, for a menu. "" when there is nothing.
  std::string RedoText() const;
  /// What can be undone or redone is something else now. The statement is written already.
  Event<> HistoryChanged;
  /// Forgets all steps, as after opening a document. Error 5 while a step is going on.
  void ClearHistory();
  /// The steps themselves: how many, how large, and by which clock.
  History& Steps();

  // --- The queries of the statement ---

  /// The queries that the statement is made of: the main one, those in WITH and in FROM, and the members of UNION and
  /// its like. Members of the query act on the one that the panes show.
  Ref<qbQueries> Queries();
  /// The queries, their names or kinds are others now, or the panes show another.
  Event<> QueriesChanged;

  // --- For host applications ---

  /// Whether the source has a table or view with this name, quotes taken off. Error 3704 when the connection is
  /// closed, otherwise the source's own errors.
  bool HasTable(const std::string& tableName);

  /// Lets the user build a connection string, with the data sources of all providers to choose from. "" when cancelled.
  /// Nothing is connected.
  std::string PromptForConnection();
  /// The same for toolkits whose windows do not wait: `accepted` is called when the user has accepted one.
  void AskForConnection(std::function<void(const std::string& connectionString)> accepted);

  /// A question about the data source and its answer, Empty when it has none.
  struct DataSourceQuestion {
    std::string question;  ///< "IS_RESERVEDWORD:" and a word, "QUOTE_PREFIX" or "QUOTE_SUFFIX"
    Variant answer;
  };
  /// Fills in the answers. A reserved word is answered with a Boolean, a quote with the source's own or, without a
  /// source, the double quote. Other questions stay unanswered.
  void QueryDataSource(std::vector<DataSourceQuestion>& questions) const;

  /// The name as it stands in SQL text: in quotes when it needs them.
  std::string QuoteIdentifier(const std::string& name) const;

  /// The statement with a value in the place of every ?PARAM marker, as literals of the dialect: the user is asked for
  /// them in one dialog. "" when it is cancelled; errors as for `zrqrybld::AskParameters`.
  std::string AskParameters(const std::string& sql);

  /// The values that were given for parameters last, by name or prompt, case-folded; see hub/parameter_form.h.
  std::unordered_map<std::string, std::string>& RememberedValues() { return rememberedValues_; }

  /// The dialect that the source in use speaks, by what it says of itself; nullptr without one, or when it is not
  /// known.
  const Dialect* SourceDialect() const;
  /// Changes to that dialect, as a step. False when there is none.
  bool FollowSource();

  // --- What the panes ask and tell: see host/design_queries.h and host/design_reports.h ---

  /// The hub itself.
  Ref<qbQueryBuilder> Hub() { return RefTo(*this); }
  /// The diagram's tables; nothing when no diagram is linked.
  Ref<qbEntities> Entities() const;
  /// The dialect in use; the generic one when no SQL pane is linked.
  const Dialect& CurrentDialect() const;
  /// Whether it can say "all rows of both tables".
  bool HasFullJoin() const;
  /// Another dialect, or another word for LIKE, is in use.
  void DialectChanged();
  void LikeOperatorChanged(const std::string& before);
  /// The grid's date format, and how criteria are read and values written.
  std::string DateFormat() const;
  CriteriaContext CriteriaRules() const;
  /// The query that the panes show, as it is now.
  QuerySnapshot Snapshot() const;
  /// The statement of all queries; none for a single one.
  std::optional<GeneratedQuery> WholeStatement(const ExtraConditions& extra) const;
  /// The columns of a query that the one shown can name like a table; none when there is none with this name.
  std::optional<std::vector<QueryColumn>> ColumnsOfQuery(const std::string& name) const;

  // --- What `Queries` does ---

  /// All of them, with the one that is shown.
  const QuerySet& QueriesNow() const;
  /// The text of one, with those that belong to it; "" where the dialect cannot say it.
  std::string StatementOf(std::int32_t id) const;
  /// Calls back with a designer whose panes show the query: this one, or one without a window that holds a copy.
  void VisitQuery(std::int32_t id, const std::function<void(qbQueryBuilder&)>& visit);
  /// Shows the query in the panes; no step. False when there is none with this id; error 5 while a step is going on.
  bool ShowQuery(std::int32_t id);
  /// The same for a query in a cell of the grid, by row, column and number from 1: its id. See `qbQueries::OpenInCell`.
  std::int32_t ShowQueryInCell(std::int32_t row, std::int32_t column, std::int32_t number);
  /// The same for a query in the condition of a join. See `qbQueries::OpenInJoin`.
  std::int32_t ShowQueryInJoin(const Ref<qbRelationship>& join, std::int32_t number);
  /// Shows the query with the id or, where its text has a query of its own at the caret, in bytes, that one. False when
  /// there is none, and when it is shown already.
  bool ShowQueryAt(std::int32_t id, const std::string& text, std::size_t caret);
  /// Shows an empty one: its id. See `qbQueries::AddInCell`.
  std::int32_t AddQueryInCell(std::int32_t row, std::int32_t column);
  /// What the shown query may name of those around it; nothing for one that stands alone.
  std::shared_ptr<const OuterQueries> Outer() const;
  /// Adds a query to the one that is shown: its id. It gets a name that is free.
  std::int32_t AddQuery(QueryKindEnum kind, const std::string& name);
  /// Adds what a query file holds as a query in FROM: its id. See `qbQueries::AddSaved`.
  std::int32_t AddSavedQuery(const std::string& filename, bool fileIsData);
  void RemoveQuery(std::int32_t id);
  void RenameQuery(std::int32_t id, const std::string& name);
  void SetQueryKind(std::int32_t id, QueryKindEnum kind);
  void SetQueryOperator(std::int32_t id, QueryOperatorEnum combined);
  /// Makes the query what the statement says.
  void LoadStatement(const std::string& sql);
  void CureRemark(const SQLDiagnostic& remark);
  /// What the expression tools know of the source; never nothing.
  std::shared_ptr<SchemaCache> Schema();
  /// What the grid says about a column, and what a column's menu does in it.
  std::optional<ColumnUse> UseOfColumn(const std::string& entityCaption, const std::string& column) const;
  void SortByColumn(const std::string& entityCaption, const std::string& column, const std::string& type);
  void GroupColumn(const std::string& entityCaption, const std::string& column, const std::string& choice);
  void GoToCriterion(const std::string& entityCaption, const std::string& column);

  /// What has happened in the diagram; the grid follows.
  void ItemChecked(const std::string& entityCaption, const std::string& itemText, bool checked);
  void ItemRenamed(const std::string& entityCaption, const std::string& before, const std::string& after);
  void TableAdded(const std::string& caption);
  void EntityRemoved(const std::string& caption);
  void EntityRenamed(const std::string& oldCaption, const std::string& newCaption);
  void DiagramCleared();
  void RelationshipActivated(const Ref<qbRelationship>& relationship);

 private:
  struct Parts;  // the four of the context, and the history: hub/hub_parts.h

  explicit qbQueryBuilder(std::unique_ptr<Parts> parts);
  void RefreshStatement();
  void RefreshTableList(std::int32_t from);
  void StepBegins(const StepLabel& step);
  void StepFailed();
  void StepMade(const StepLabel& step, bool writes);
  void StepEnded();
  void NoteColumns();
  std::int32_t RowOfColumn(const std::string& entityCaption, const std::string& column) const;
  std::int32_t MakeRowOfColumn(const std::string& entityCaption, const std::string& column, bool output);
  std::string TryConnection(const std::string& connectionString);
  void ApplyTexts();
  DesignOptions CurrentOptions() const;
  void TakeTables(DesignChange& change, bool withTicks) const;
  DesignChange CurrentChange() const;
  template <class Pane>
  void Link(Ref<Pane>& place, const Ref<Pane>& pane, void (qbQueryBuilder::*set)(const Ref<Pane>&));
  QueryTree TreeOf(std::int32_t id) const;
  std::vector<QueryColumn> OutputsOfShown(const QuerySnapshot& snapshot) const;
  Design TakeDesign() const;
  void StoreShown();
  void RequireStill() const;
  void PutIntoPanes(const StoredQuery& query);
  void TouchQueries();
  void SwitchTo(std::int32_t id);
  std::shared_ptr<const OuterQueries> OuterOf(std::int32_t id) const;
  std::string OnLine(std::int32_t id) const;
  QuerySet QueriesKnown() const;
  void AddRead(ReadQuery& read);
  std::int32_t AddDerived(ReadQuery& read);
  std::vector<std::pair<std::string, std::vector<QueryColumn>>> CommonTables() const;
  void RequireIdle() const;
  void MakeIdle();
  void LoadCell(std::int32_t id, ReadQuery& read);
  std::int32_t ShowInner(QueryCell cell, const std::string& text, std::int32_t number);
  bool ShowInnerLike(const std::string& query);
  std::int32_t ShowLeft(const QueryCell& cell);
  std::int32_t Standing(std::int32_t id) const;
  void WriteIntoCell(std::int32_t id);
  void WriteIntoCells();
  void LeaveCells();
  void AddCells(GeneratedQuery& whole) const;
  void FollowQueries();
  void KnowShown(Design design);
  bool ShowsKnown() const;
  void DropUnnamedQueries();
  void DropInnerQueries();
  void ForEachOther(const std::function<void()>& work);
  void LoadQueries(ReadQuery& main);
  bool ReadWithInner(QueryFileReader& reader, std::string_view text, const std::vector<InnerQueryInFile>& inner);
  void LoadOneQuery(ReadQuery& read);
  void RestoreQueries(const QuerySet& now, const QuerySet& then);
  void OutputTicked();
  void RememberAll();
  bool Travel(bool back);
  void EndStepless();
  void TakeBack();
  void Restore(const Design& now, const Design& then);
  void RestoreOptions(const DesignOptions& options);

  template <auto Field, class T>
  bool Store(const T& value);

  std::unique_ptr<Parts> parts_;
  Ref<qbDiagramPane> diagramPane_;
  Ref<qbGridPane> gridPane_;
  EventConnection gridMenu_;  // what the hub puts into it
  Ref<qbSQLPane> sqlPane_;
  std::shared_ptr<SchemaCache> schema_;
  std::optional<Error> lastError_;
  std::string confirmedConnection_;  // the string that a person was warned of last, and wanted
  std::vector<std::string> loadRemarks_;
  bool historyLost_ = false;          // memory ran out while a step was noted: what is known is not what is there
  bool takesBack_ = false;            // the design is not what is known, and is to be made that
  bool historyChanged_ = false;       // and nobody was told yet
  bool queriesChanged_ = false;       // and nobody was told yet
  bool loadsQueries_ = false;         // a statement is read into them
  Ref<qbQueries> queries_;            // made when somebody asks
  bool travelling_ = false;           // a step is being undone or redone
  std::optional<std::string> typed_;  // what was typed and not applied when the step began
  std::unordered_map<std::string, std::string> rememberedValues_;
  std::vector<WeakRef<BoxRow>> noted_;               // rows of boxes that show what the grid does with them
  std::vector<Ref<qbDBFunction>> dialectFunctions_;  // those that came with the dialect
  std::vector<Ref<qbDBKeyword>> dialectKeywords_;    // and its words
  HubOptions options_;
  bool savePassword_ = false;
};

}  // namespace zrqrybld
