// The suite's program. With --print-kinds it prints what each source answers, for the documentation.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <iostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/providers/sources.h"
#include "tests/schema_text.h"
#include "zrqrybld/base/error.h"
#include "zrqrybld/platform/schema_fields.h"

namespace zrqrybld {
namespace {

void PrintKinds(bool rows) {
  constexpr std::pair<SchemaKind, const char*> kKinds[] = {{SchemaKind::Tables, "tables"},
                                                           {SchemaKind::Columns, "columns"},
                                                           {SchemaKind::PrimaryKeys, "primary keys"},
                                                           {SchemaKind::ForeignKeys, "foreign keys"},
                                                           {SchemaKind::ProviderTypes, "types"},
                                                           {SchemaKind::Literals, "literals"}};
  for (const std::string& name : test::SourceNames()) {
    const test::Source& source = test::GetSource(name);
    std::cout << "== " << name << '\n';
    if (!source.missing.empty()) {
      std::cout << source.missing << '\n';
      continue;
    }
    const std::unique_ptr<Session> session = source.Open();
    for (const auto& [kind, title] : kKinds) {
      try {
        const std::unique_ptr<RowSet> set = session->OpenSchema(kind, {});
        std::vector<std::string_view> fields;
        for (std::size_t i = 0; i < set->FieldCount(); ++i) fields.push_back(set->FieldName(i));
        const std::string text = test::Dump(*set, fields);
        std::cout << title << ": " << std::count(text.begin(), text.end(), '\n') << " rows\n";
        if (rows) std::cout << text;
      } catch (const Error& error) {
        std::cout << title << ": error " << error.Number() << ' ' << error.Description() << '\n';
      }
    }
    std::cout << "keywords: " << session->Keywords().size() << '\n';
  }
}

}  // namespace
}  // namespace zrqrybld

int main(int argc, char** argv) {
  for (int i = 1; i < argc; ++i) {
    if (std::strcmp(argv[i], "--print-kinds") == 0 || std::strcmp(argv[i], "--print-rows") == 0) {
      zrqrybld::PrintKinds(std::strcmp(argv[i], "--print-rows") == 0);
      return 0;
    }
  }
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
