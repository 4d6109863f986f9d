// A whole designer without a window over a source that is written down in the test.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "tests/error_of.h"
#include "tests/fakes/fake_connection.h"
#include "zrqrybld/base/object.h"
#include "zrqrybld/base/variant.h"

namespace zrqrybld {

class HeadlessToolkit;
class qbDiagramPane;
class qbEntity;
class qbEntityItem;
class qbGridPane;
class qbQueryBuilder;
class qbSQLPane;

namespace test {

struct Designer {
  Designer();
  void Use();
  Ref<qbEntityItem> Item(const std::string& table, const std::string& column) const;
  void Tick(const std::string& table, const std::string& column, bool checked = true) const;
  std::string Cell(std::int32_t row, const std::string& key) const;
  void Set(std::int32_t row, const std::string& key, Variant value) const;
  /// The rows that name a table or a column: "table.column", "-" in front when they are not output, ":" and
  /// the sort number behind.
  std::string Rows() const;
  /// The ticked columns of all boxes: "table.column".
  std::string Ticked() const;
  bool LastRowIsEmpty() const;
  /// The statement on one line: line ends and TABs taken out.
  std::string Sql() const;
  /// How often the statement changed while the action ran.
  int Changes(const std::function<void()>& action) const;
  /// All joins: "source.column>target.column", in the order of the diagram.
  std::string Joins() const;
  std::string Captions() const;
  static std::string Items(const qbEntity& entity);

  Ref<FakeConnection> source = std::make_shared<FakeConnection>();
  std::shared_ptr<HeadlessToolkit> toolkit;
  Ref<qbQueryBuilder> hub;
  Ref<qbDiagramPane> diagram;
  Ref<qbGridPane> grid;
  Ref<qbSQLPane> sql;
};

class HubTest : public testing::Test, protected Designer {};

}  // namespace test
}  // namespace zrqrybld
