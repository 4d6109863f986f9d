// What a script or the command line asks of a query, with what goes wrong as a message.
#pragma once

#include <QString>
#include <QStringList>

namespace zrqrybld {

class qbQueryBuilder;

/// Adds tables and draws their joins. Returns messages about those that could not be added.
QStringList AddTables(qbQueryBuilder& hub, const QStringList& names);

/// Ticks a column, given as TABLE.COLUMN. Returns an error message, empty on success.
QString TickColumn(const qbQueryBuilder& hub, const QString& name);

/// Makes the query that of the statement in a file. Returns an error message, empty on success.
QString ParseFile(qbQueryBuilder& hub, const QString& file);

/// Shows the main query, and removes all others.
void LeaveMainQueryOnly(qbQueryBuilder& hub);

/// The statement, with line feeds.
QString StatementOf(const qbQueryBuilder& hub);

}  // namespace zrqrybld
