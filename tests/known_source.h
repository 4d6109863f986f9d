// A designer over a source that the tables of suggestions name.
#pragma once

#include <memory>

#include "tests/fakes/fake_connection.h"
#include "zrqrybld/base/object.h"

namespace zrqrybld {

class qbDiagramPane;
class qbQueryBuilder;

namespace test {

struct KnownSource {
  KnownSource();

  Ref<FakeConnection> source = std::make_shared<FakeConnection>();
  Ref<qbQueryBuilder> hub;
  Ref<qbDiagramPane> diagram;
};

}  // namespace test
}  // namespace zrqrybld
