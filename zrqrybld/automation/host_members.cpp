// The members of the hub, its property bag and the helper class.
#include "zrqrybld/automation/binding.h"
#include "zrqrybld/automation/classes.h"
#include "zrqrybld/automation/property_bag.h"
#include "zrqrybld/automation/toolkit_object.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/relationships.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/host/catalogs.h"
#include "zrqrybld/host/data_types.h"
#include "zrqrybld/host/properties.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/hub/queries.h"
#include "zrqrybld/hub/utility.h"
#include "zrqrybld/platform/database.h"
#include "zrqrybld/sql/sql_pane.h"

namespace zrqrybld {
namespace {

using Hub = qbQueryBuilder;

/// Opens the connection and asks the source how it writes SQL. An open connection is closed first. When the argument
/// is Missing, the user builds a connection string, which is written back; "" when cancelled, and nothing is changed
/// then. No error leaves it: see `LastError`.
void ConnectTo(Hub& hub, Variant& connectionString) {
  if (connectionString.IsMissing()) {
    connectionString = hub.Connect();
  } else {
    hub.Connect(connectionString.Text());
  }
}

bool IsTrue(const Variant& argument) { return !argument.IsMissing() && argument.ToBoolean(); }

/// Saves the query to a file, which is replaced whole or not at all, or with `returnData` as text into `filename`.
/// Always False, also on success: a failure is error 75 with the system's reason.
bool SaveQueryTo(Hub& hub, Variant& filename, const Variant& returnData) {
  const std::string name = filename.Text();
  const bool asText = IsTrue(returnData);
  if (!asText) hub.SaveQuery(name);
  filename = asText ? hub.SaveQueryToText() : name;
  return false;
}

/// Replaces all captions by those of a language file. Always False, also on success: a failure is error 40000.
bool LoadLanguage(Hub& hub, const std::string& path) {
  hub.LoadLanguageFile(path);
  return false;
}

bool LoadQueryFrom(Hub& hub, const std::string& filename, const Variant& fileIsData, const Variant& parametersOnly,
                   Variant& sqlStatement, Variant& connectionString) {
  // What the file does not have stays as it was given.
  const auto given = [](const Variant& result) { return result.IsMissing() ? std::string() : result.Text(); };
  std::string statement = given(sqlStatement);
  std::string connection = given(connectionString);
  const bool result = hub.LoadQuery(filename, IsTrue(fileIsData), IsTrue(parametersOnly), &statement, &connection);
  sqlStatement = std::move(statement);
  connectionString = std::move(connection);
  return result;
}

std::string LastErrorText(const Hub& hub) { return hub.LastError() ? hub.Say(*hub.LastError()) : std::string(); }

void BeginNamedStep(Hub& hub, const std::string& name) { hub.BeginStep(name); }

constexpr Member kQueryBuilder[] = {
    Method<Hub, &Hub::AddTable>("AddTable", "TableName"),
    ReadWrite<Hub, &Hub::AllowJoinProperties, &Hub::SetAllowJoinProperties>("AllowJoinProperties"),
    Method<Hub, &Hub::AboutBox>("AboutBox"),
    Method<Hub, &ConnectTo>("Connect", "[ConnectionString]"),
    ReadWrite<Hub, &Hub::Connection, &Hub::SetConnection>("Connection"),
    ReadOnly<Hub, &Hub::DataTypes>("DataTypes"),
    ReadOnly<Hub, &Hub::DBFunctions>("DBFunctions"),
    ReadOnly<Hub, &Hub::DBKeywords>("DBKeywords"),
    ReadOnly<Hub, &Hub::DBOperators>("DBOperators"),
    ReadWrite<Hub, &Hub::DiagramPane, &Hub::SetDiagramPane>("DiagramPane"),
    Method<Hub, &Hub::Disconnect>("Disconnect"),
    ReadWrite<Hub, &Hub::GetTablesOnConnect, &Hub::SetGetTablesOnConnect>("GetTablesOnConnect"),
    ReadWrite<Hub, &Hub::GridPane, &Hub::SetGridPane>("GridPane"),
    Method<Hub, &LoadLanguage>("LoadLanguageFile", "Path"),
    Method<Hub, &LoadQueryFrom>("LoadQuery",
                                "Filename, [FileIsData], [ReturnParametersOnly], [SQLStatement], [ConnectionString]"),
    ReadOnly<Hub, &Hub::QuotedIdentifiers>("QuotedIdentifiers"),
    Method<Hub, &Hub::ShowJoinProperties>("ShowJoinProperties", "Relationship"),
    ReadOnly<Hub, &Hub::Properties>("Properties"),
    Method<Hub, &Hub::RefreshAutoJoins>("RefreshAutoJoins"),
    ReadOnly<Hub, &Hub::state>("state"),
    Method<Hub, &SaveQueryTo>("SaveQuery", "Filename, [ReturnData]"),
    Method<Hub, &Hub::SetLanguageString>("SetLanguageString", "ID, NewValue"),
    Method<Hub, &Hub::ShowTables>("ShowTables"),
    ReadWrite<Hub, &Hub::SQLPane, &Hub::SetSQLPane>("SQLPane"),
    ReadWrite<Hub, &Hub::ConnectOnLoad, &Hub::SetConnectOnLoad>("ConnectOnLoad"),
    ReadWrite<Hub, &Hub::DistinctRecords, &Hub::SetDistinctRecords>("DistinctRecords"),
    ReadWrite<Hub, &Hub::SelectTopRecords, &Hub::SetSelectTopRecords>("SelectTopRecords"),
    ReadWrite<Hub, &Hub::RetrieveFieldOrder, &Hub::SetRetrieveFieldOrder>("RetrieveFieldOrder"),
    ReadWrite<Hub, &Hub::SaveLoadEntityItems, &Hub::SetSaveLoadEntityItems>("SaveLoadEntityItems"),
    ReadWrite<Hub, &Hub::SaveConnectionString, &Hub::SetSaveConnectionString>("SaveConnectionString"),
    ReadWrite<Hub, &Hub::AliasMaxLen, &Hub::SetAliasMaxLen>("AliasMaxLen"),
    Raised<Hub, &Hub::Info>("Info", "Info, Parameters"),
    // Beyond the members above: what a host without a form needs.
    Method<Hub, &Hub::GetLanguageString>("GetLanguageString", "ID"),
    Method<Hub, &Hub::HasTable>("HasTable", "TableName"),
    ReadOnly<Hub, &LastErrorText>("LastErrorText"),
    Method<Hub, &Hub::CancelOperation>("CancelOperation"),
    Raised<Hub, &Hub::BeforeConnect>("BeforeConnect", "ConnectionString, FromFile, Cancel"),
    ReadOnly<Hub, &Hub::LoadRemarks>("LoadRemarks"),
    ReadWrite<Hub, &Hub::SavePassword, &Hub::SetSavePassword>("SavePassword"),
    ReadWrite<Hub, &Hub::SkipRecords, &Hub::SetSkipRecords>("SkipRecords"),
    ReadWrite<Hub, &Hub::AutoSyntax, &Hub::SetAutoSyntax>("AutoSyntax"),
    Method<Hub, &Hub::AskParameters>("AskParameters", "SQL"),
    Method<Hub, &Hub::QuoteIdentifier>("QuoteIdentifier", "Name"),
    Method<Hub, &Hub::AskAsJoin>("AskAsJoin", "Row, Column"),
    Method<Hub, &Hub::Undo>("Undo"),
    Method<Hub, &Hub::Redo>("Redo"),
    ReadOnly<Hub, &Hub::CanUndo>("CanUndo"),
    ReadOnly<Hub, &Hub::CanRedo>("CanRedo"),
    ReadOnly<Hub, &Hub::UndoText>("UndoText"),
    ReadOnly<Hub, &Hub::RedoText>("RedoText"),
    Method<Hub, &Hub::ClearHistory>("ClearHistory"),
    Method<Hub, &BeginNamedStep>("BeginStep", "Name"),
    Method<Hub, &Hub::EndStep>("EndStep"),
    Raised<Hub, &Hub::HistoryChanged>("HistoryChanged"),
    ReadOnly<Hub, &Hub::Queries>("Queries"),
    Raised<Hub, &Hub::QueriesChanged>("QueriesChanged"),
    Raised<Hub, &Hub::PropertyChanged>("PropertyChanged", "PropertyName"),
    Method<Hub, &Hub::InitProperties>("InitProperties"),
    Method<Hub, &ReadFrom<Hub>>("ReadProperties", "Bag"),
    Method<Hub, &WriteTo<Hub>>("WriteProperties", "Bag"),
};

constexpr Member kQueries[] = {
    ReadOnly<qbQueries, &qbQueries::Count>("Count"),
    ReadOnly<qbQueries, &qbQueries::Item>("Item", "Index"),
    Method<qbQueries, &qbQueries::Add>("Add", "Kind, [Name]"),
    Method<qbQueries, &qbQueries::AddSaved>("AddSaved", "Filename, [FileIsData]"),
    ReadWrite<qbQueries, &qbQueries::Current, &qbQueries::SetCurrent>("Current"),
    Method<qbQueries, &qbQueries::OpenInCell>("OpenInCell", "Row, Column, [Number]"),
    Method<qbQueries, &qbQueries::OpenInJoin>("OpenInJoin", "Relationship, [Number]"),
    Method<qbQueries, &qbQueries::AddInCell>("AddInCell", "Row, Column"),
};

constexpr Member kQuery[] = {
    ReadOnly<qbQuery, &qbQuery::Id>("Id"),
    ReadWrite<qbQuery, &qbQuery::Kind, &qbQuery::SetKind>("Kind"),
    ReadWrite<qbQuery, &qbQuery::Name, &qbQuery::SetName>("Name"),
    ReadWrite<qbQuery, &qbQuery::Operator, &qbQuery::SetOperator>("Operator"),
    ReadOnly<qbQuery, &qbQuery::Parent>("Parent"),
    ReadOnly<qbQuery, &qbQuery::SQLStatement>("SQLStatement"),
    Method<qbQuery, &qbQuery::Open>("Open"),
    Method<qbQuery, &qbQuery::Remove>("Remove"),
};

constexpr Member kProperties[] = {
    Method<qbProperties, &qbProperties::Add>("Add", "[Value], [Key], [Before], [After]"),
    Method<qbProperties, &qbProperties::Clear>("Clear"),
    ReadOnly<qbProperties, &qbProperties::Count>("Count"),
    Method<qbProperties, &qbProperties::Exists>("Exists", "Key"),
    ReadOnly<qbProperties, &qbProperties::Item>("Item", "Index"),
    Method<qbProperties, &qbProperties::Remove>("Remove", "Index"),
};

constexpr Member kProperty[] = {
    ReadOnly<qbProperty, &qbProperty::Key>("Key"),
    ReadWrite<qbProperty, &qbProperty::Value, &qbProperty::SetValue>("Value"),
};

constexpr Member kUtility[] = {
    Method<qbUtility, &qbUtility::GetAvailableDSNs>("GetAvailableDSNs", "[DriverName]"),
    Method<qbUtility, &qbUtility::RemoveQuotedIdentifiers>("RemoveQuotedIdentifiers", "QueryBuilder, Expression"),
};

constexpr Member kPropertyBag[] = {
    Method<PropertyBag, &PropertyBag::ReadProperty>("ReadProperty", "Name, [Default]"),
    Method<PropertyBag, &PropertyBag::WriteProperty>("WriteProperty", "Name, Value, [Default]"),
    ReadOnly<PropertyBag, &PropertyBag::Names>("Names"),
};

const ClassInfo kClasses[] = {
    {"qbQueryBuilder", kQueryBuilder, "",
     [] { return Ref<Object>(Hub::Create(ToolkitObject::Instance()->Services())); }},
    {"qbQueries", kQueries, "Item"},
    {"qbQuery", kQuery, "Name"},
    {"qbProperties", kProperties, "Item", [] { return Ref<Object>(std::make_shared<qbProperties>()); }},
    {"qbProperty", kProperty, "Value"},
    {"qbUtility", kUtility, "", [] { return Ref<Object>(qbUtility::Create(ToolkitObject::Instance()->Services())); }},
    {"PropertyBag", kPropertyBag, "", [] { return Ref<Object>(std::make_shared<PropertyBag>()); }},
};

}  // namespace

std::span<const ClassInfo> HostClasses() { return kClasses; }

}  // namespace zrqrybld
