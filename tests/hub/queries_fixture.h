// A designer for queries within queries, and what tests ask of it again and again.
#pragma once

#include <string>

#include "tests/hub_fixture.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/hub/queries.h"
#include "zrqrybld/sql/sql_pane.h"

namespace zrqrybld::test {

class QueriesTest : public HubTest {
 protected:
  QueriesTest() { Use(); }

  // What each query is, and to whom it belongs: "main, r:with main".
  static std::string Tree(qbQueryBuilder& hub) {
    const auto nameOf = [](const qbQuery& query) {
      return !query.Name().empty() ? query.Name() : query.Kind() == QueryMain ? "main" : "member";
    };
    std::string text;
    for (const Ref<qbQuery>& query : *hub.Queries()) {
      text += (text.empty() ? "" : ", ") + nameOf(*query);
      if (query->Kind() == QueryMain) continue;
      const char* const kinds[] = {"", ":from ", ":with ", ":member ", ":cell "};
      text += kinds[query->Kind()] + nameOf(*query->Parent());
    }
    return text;
  }
  std::string Tree() const { return Tree(*hub); }

  // On one line, with one blank for all white space.
  std::string Written() const {
    std::string line;
    for (const char c : sql->SQLStatement()) {
      const bool blank = c == ' ' || c == '\t' || c == '\r' || c == '\n';
      if (!blank) line += c;
      if (blank && !line.ends_with(' ')) line += ' ';
    }
    return line.substr(0, line.find_last_not_of(' ') + 1);
  }

  std::string Shown() const { return hub->Queries()->Current()->Name() + ": " + Captions(); }
};

}  // namespace zrqrybld::test
