// A new pane of each kind for a hub.
#pragma once

namespace zrqrybld {

class qbQueryBuilder;

namespace test {

void LinkPanes(qbQueryBuilder& hub);

}  // namespace test
}  // namespace zrqrybld
