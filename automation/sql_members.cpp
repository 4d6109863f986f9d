// The members of the SQL pane.
#include "automation/binding.h"
#include "automation/classes.h"

namespace zrqrybld {
namespace {

using Pane = qbSQLPane;

constexpr Member kPane[] = {
    Method<Pane, &Pane::AddWhereClause>("AddWhereClause", "[OrExpression], [AndExpression]"),
    ReadOnly<Pane, &Pane::Cartesian>("Cartesian"),
    ReadOnly<Pane, &Pane::QueryBuilder>("QueryBuilder"),
    Method<Pane, &Pane::Refresh>("Refresh"),
    ReadWrite<Pane, &Pane::SQLStatement, &Pane::SetSQLStatement>("SQLStatement"),
    ReadWrite<Pane, &Pane::SQLSyntax, &Pane::SetSQLSyntax>("SQLSyntax"),
    Raised<Pane, &Pane::SQLChanged>("SQLChanged"),
};

const ClassInfo kClasses[] = {
    {"qbSQLPane", kPane, "", [] { return Ref<Object>(Pane::Create()); }},
};

}  // namespace

std::span<const ClassInfo> SqlClasses() { return kClasses; }

}  // namespace zrqrybld
