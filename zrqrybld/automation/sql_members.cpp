// The members of the SQL pane and of run-time parameters.
#include "zrqrybld/automation/binding.h"
#include "zrqrybld/automation/classes.h"
#include "zrqrybld/automation/property_bag.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/sql/sql_pane.h"

namespace zrqrybld {
namespace {

using Pane = qbSQLPane;

/// Makes the designer's query what the statement says, and then writes the statement anew. True when that was done.
/// Error 40002 otherwise, with the place in the text when it cannot be read; nothing has changed then, but the
/// designer's `state` stays `InfoParsingSQL`. Also without a hub, and for a dialect whose statements are not read.
bool ParseStatement(Pane& pane, const std::string& sql) {
  pane.ParseSQLStatement(sql);
  return true;
}

constexpr Member kPane[] = {
    Method<Pane, &Pane::AddWhereClause>("AddWhereClause", "[OrExpression], [AndExpression]"),
    ReadOnly<Pane, &Pane::Cartesian>("Cartesian"),
    ReadOnly<Pane, &Pane::IsSqlOnly>("IsSqlOnly"),
    ReadWrite<Pane, &Pane::KeepTypedText, &Pane::SetKeepTypedText>("KeepTypedText"),
    ReadWrite<Pane, &Pane::LikeOperator, &Pane::SetLikeOperator>("LikeOperator"),
    ReadWrite<Pane, &Pane::Locked, &Pane::SetLocked>("Locked"),
    Method<Pane, &Pane::ParseParameters>("ParseParameters"),
    Method<Pane, &ParseStatement>("ParseSQLStatement", "SQL"),
    ReadOnly<Pane, &Pane::PlainStatement>("PlainStatement"),
    ReadOnly<Pane, &Pane::QueryBuilder>("QueryBuilder"),
    Method<Pane, &Pane::Refresh>("Refresh"),
    ReadWrite<Pane, &Pane::SQLStatement, &Pane::SetSQLStatement>("SQLStatement"),
    ReadWrite<Pane, &Pane::SQLSyntax, &Pane::SetSQLSyntax>("SQLSyntax"),
    Raised<Pane, &Pane::SQLChanged>("SQLChanged"),
    Raised<Pane, &Pane::KeyUp>("KeyUp", "KeyCode, Shift"),
    Raised<Pane, &Pane::KeyDown>("KeyDown", "KeyCode, Shift"),
    Raised<Pane, &Pane::KeyPress>("KeyPress", "KeyAscii"),
    Raised<Pane, &Pane::ParseParameter>("ParseParameter", "Parameter, Cancel"),
    Raised<Pane, &Pane::PropertyChanged>("PropertyChanged", "PropertyName"),
    // Beyond the members above: what there is to say about the statement, and what a host without a form needs.
    ReadOnly<Pane, &Pane::Remarks>("Remarks"),
    ReadOnly<Pane, &Pane::Joins>("Joins"),
    ReadOnly<Pane, &Pane::Cures>("Cures"),
    Method<Pane, &Pane::CureRemark>("CureRemark", "Index"),
    Method<Pane, &Pane::OpenQueryAtCaret>("OpenQueryAtCaret"),
    Method<Pane, &ReadFrom<Pane>>("ReadProperties", "Bag"),
    Method<Pane, &WriteTo<Pane>>("WriteProperties", "Bag"),
};

constexpr Member kJoins[] = {
    Method<qbJoins, &qbJoins::Add>("Add", "Caption, [Before], [After]"),
    Method<qbJoins, &qbJoins::Clear>("Clear"),
    ReadOnly<qbJoins, &qbJoins::Count>("Count"),
    ReadOnly<qbJoins, &qbJoins::Item>("Item", "Index"),
    Method<qbJoins, &qbJoins::Remove>("Remove", "Index"),
};

constexpr Member kJoin[] = {
    ReadOnly<qbJoin, &qbJoin::Caption>("Caption"),
    ReadOnly<qbJoin, &qbJoin::JoinTables>("JoinTables"),
};

constexpr Member kJoinTables[] = {
    Method<qbJoinTables, &qbJoinTables::Add>("Add", "LeftTable, LeftField, RightTable, RightField"),
    Method<qbJoinTables, &qbJoinTables::Clear>("Clear"),
    ReadOnly<qbJoinTables, &qbJoinTables::Count>("Count"),
    ReadOnly<qbJoinTables, &qbJoinTables::Item>("Item", "Index"),
    Method<qbJoinTables, &qbJoinTables::Remove>("Remove", "Index"),
};

constexpr Member kJoinTable[] = {
    Field<qbJoinTable, &qbJoinTable::LeftTable>("LeftTable"),
    Field<qbJoinTable, &qbJoinTable::LeftField>("LeftField"),
    Field<qbJoinTable, &qbJoinTable::RightTable>("RightTable"),
    Field<qbJoinTable, &qbJoinTable::RightField>("RightField"),
    Field<qbJoinTable, &qbJoinTable::JoinType>("JoinType"),
};

constexpr Member kParameters[] = {
    Method<qbParameters, &qbParameters::Clear>("Clear"),
    ReadOnly<qbParameters, &qbParameters::Count>("Count"),
    ReadOnly<qbParameters, &qbParameters::Item>("Item", "Index"),
    Method<qbParameters, &qbParameters::Remove>("Remove", "Index"),
    ReadOnly<qbParameters, &qbParameters::QueryBuilder>("QueryBuilder"),
};

constexpr Member kParameter[] = {
    Field<qbParameter, &qbParameter::Prompt>("Prompt"),
    Field<qbParameter, &qbParameter::Default>("Default"),
    Field<qbParameter, &qbParameter::Value>("Value"),
    Field<qbParameter, &qbParameter::Name>("Name"),
    Field<qbParameter, &qbParameter::DataType>("DataType"),
    Field<qbParameter, &qbParameter::QuotePrefix>("QuotePrefix"),
    Field<qbParameter, &qbParameter::QuoteSuffix>("QuoteSuffix"),
    Method<qbParameter, &qbParameter::FormatPrompt>("FormatPrompt"),
};

const ClassInfo kClasses[] = {
    {"qbSQLPane", kPane, "", [] { return Ref<Object>(Pane::Create()); }},
    {"qbJoins", kJoins, "Item", [] { return Ref<Object>(std::make_shared<qbJoins>()); }},
    {"qbJoin", kJoin, "Caption"},
    {"qbJoinTables", kJoinTables, "Item"},
    {"qbJoinTable", kJoinTable, ""},
    {"qbParameters", kParameters, "Item", [] { return Ref<Object>(std::make_shared<qbParameters>(nullptr)); }},
    {"qbParameter", kParameter, ""},
};

}  // namespace

std::span<const ClassInfo> SqlClasses() { return kClasses; }

}  // namespace zrqrybld
