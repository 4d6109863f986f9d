// What the designer was asked to do on the command line.
#pragma once

#include <QString>
#include <QStringList>
#include <span>

namespace zrqrybld {

struct DesignerOptions {
  QString query;  ///< a query file, which brings its own connection
  QString save;   ///< the file to save the query to; empty for none
  QString database;
  QString connection;         ///< a connection string, instead of a database file
  QStringList tables;         ///< to add, in this order
  QStringList ticks;          ///< TABLE.COLUMN, in this order
  QString language;           ///< a language file; empty for the built-in captions
  QString syntax;             ///< a dialect's name; empty for the first one
  QString theme;              ///< a theme's key; empty for the one chosen last
  QString parseSql;           ///< a file with a statement to begin with; empty for none
  bool connectSaved = false;  ///< connect as the query file says
  bool printSql = false;
  bool measureStart = false;  ///< say how long the start took and end
  QString screenshot;         ///< the picture file; empty for none

  /// Whether the designer does its work and ends, without waiting for a user.
  bool IsScript() const { return printSql || !save.isEmpty() || !screenshot.isEmpty(); }
};

/// Whether the command line asks for something to be printed that needs no display.
bool OnlyPrints(std::span<const char* const> arguments);

/// Reads the command line. With --help, --version or one of --list-... it prints them and ends the program; a wrong
/// option ends it with status 2 and a message.
DesignerOptions ReadCommandLine(const QStringList& arguments);

}  // namespace zrqrybld
