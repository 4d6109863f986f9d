// The members of the SQL pane.
#include "automation/binding.h"
#include "automation/classes.h"

namespace zrqrybld {
namespace {

using Pane = qbSQLPane;

constexpr Member kPane[] = {
    Method<Pane, &Pane::AddWhereClause>("AddWhereClause", "[OrExpression], [AndExpression]"),
    ReadOnly<Pane, &Pane::Cartesian>("Cartesian"),
    ReadWrite<Pane, &Pane::LikeOperator, &Pane::SetLikeOperator>("LikeOperator"),
    ReadWrite<Pane, &Pane::Locked, &Pane::SetLocked>("Locked"),
    ReadOnly<Pane, &Pane::QueryBuilder>("QueryBuilder"),
    Method<Pane, &Pane::Refresh>("Refresh"),
    ReadWrite<Pane, &Pane::SQLStatement, &Pane::SetSQLStatement>("SQLStatement"),
    ReadWrite<Pane, &Pane::SQLSyntax, &Pane::SetSQLSyntax>("SQLSyntax"),
    Raised<Pane, &Pane::SQLChanged>("SQLChanged"),
    Raised<Pane, &Pane::KeyUp>("KeyUp", "KeyCode, Shift"),
    Raised<Pane, &Pane::KeyDown>("KeyDown", "KeyCode, Shift"),
    Raised<Pane, &Pane::KeyPress>("KeyPress", "KeyAscii"),
    // Beyond the members above: what there is to say about the statement.
    ReadOnly<Pane, &Pane::Remarks>("Remarks"),
};

const ClassInfo kClasses[] = {
    {"qbSQLPane", kPane, "", [] { return Ref<Object>(Pane::Create()); }},
};

}  // namespace

std::span<const ClassInfo> SqlClasses() { return kClasses; }

}  // namespace zrqrybld
