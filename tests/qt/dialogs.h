// What the tests of windows open, and where those keep their settings meanwhile.
#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QLineEdit>
#include <QSettings>
#include <QTest>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "zrqrybld/adapters/qt/connection_window.h"
#include "zrqrybld/adapters/qt/join_window.h"
#include "zrqrybld/adapters/qt/qt_text.h"
#include "zrqrybld/adapters/qt/tables_window.h"

namespace zrqrybld {

/// Settings go into files of this folder, under the name of a program of their own.
inline void UseSettingsIn(const QString& folder) {
  QSettings::setDefaultFormat(QSettings::IniFormat);
  QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, folder);
  QCoreApplication::setOrganizationName(QStringLiteral("zrQryBld"));
  QCoreApplication::setApplicationName(QStringLiteral("test_qt"));
}

/// Four tables and a view; of more than three that are added the last one fails.
inline TablesDialog TestTables(std::function<void(const std::vector<std::string>&)> add) {
  return {.caption = "Tables",
          .tablesTab = "&Tables",
          .viewsTab = "&Views",
          .addButton = "&Add",
          .closeButton = "&Close",
          .tables = {"Customers", "Order Details", "Orders", "Größen"},
          .views = {"Order Totals"},
          .add = [add](const std::vector<std::string>& names, const TablesDialog::Progress& progress) {
            for (std::size_t i = 1; i <= names.size(); ++i) progress(i);
            add(names);
            return names.size() - (names.size() > 3 ? 1 : 0);
          }};
}

/// A join in a dialect that cannot return all rows of both tables.
inline JoinDialog TestJoin(const std::string& table1 = "Orders", const std::string& table2 = "Customers") {
  return {.caption = "Join Properties",
          .frame = "Include rows",
          .allOfTable1 = "Include all rows from " + table1,
          .allOfTable2 = "Include all rows from " + table2,
          .acceptButton = "&Accept",
          .cancelButton = "&Cancel",
          .table1 = table1,
          .table2 = table2,
          .describe =
              [=](bool all1, bool all2) {
                if (all1 && all2) return "All rows from " + table1 + " and all rows from " + table2 + ".";
                if (all1) return "All rows from " + table1 + ", and the matching rows from " + table2 + ".";
                if (all2) return "All rows from " + table2 + ", and the matching rows from " + table1 + ".";
                return "Only rows that match in both " + table1 + " and " + table2 + ".";
              },
          .warning =
              [](bool all1, bool all2) {
                return std::string(all1 && all2
                                       ? "This dialect cannot return all rows of both tables; the join is written "
                                         "without the rows that match nothing."
                                       : "");
              }};
}

}  // namespace zrqrybld
