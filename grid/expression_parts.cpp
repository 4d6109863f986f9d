#include "grid/expression_parts.h"

#include <utility>

#include "base/text.h"
#include "diagram/entities.h"
#include "sql/source_rules.h"

namespace zrqrybld {
namespace {

ExpressionGroup Columns(const QueryContext& context) {
  ExpressionGroup group{"Columns", {}};
  const Ref<qbEntities> entities = context.Entities();
  const NameRules rules = CurrentNameRules(context);
  for (std::int32_t i = 1; entities && i <= entities->Count(); ++i) {
    const qbEntity& entity = *entities->Item(i);
    const std::string& caption = entity.Caption();
    const bool ownName = entity.TagVariant().Text() == caption;
    const SqlText table =
        ownName ? RenderQualified(SplitName(caption, rules), rules) : QuoteWhenNeeded(Identifier(caption), rules);
    for (std::int32_t j = 1; j <= entity.Items()->Count(); ++j) {
      const std::string column = entity.Items()->Item(j)->Text();
      if (column == "*") continue;
      group.parts.push_back(
          {caption + "." + column, table.Text() + "." + QuoteWhenNeeded(Identifier(column), rules).Text(), ""});
    }
  }
  return group;
}

// Entries that have a syntax are inserted by it.
template <class Catalog>
ExpressionGroup Entries(std::string name, const Catalog& catalog) {
  ExpressionGroup group{std::move(name), {}};
  for (std::int32_t i = 1; i <= catalog.Count(); ++i) {
    const auto& entry = *catalog.Item(i);
    std::string insert = entry.Name();
    if constexpr (requires { entry.Syntax(); }) {
      if (!entry.Syntax().empty()) insert = entry.Syntax();
    }
    group.parts.push_back({entry.Name(), std::move(insert), entry.Description()});
  }
  return group;
}

}  // namespace

std::vector<ExpressionGroup> ExpressionParts(const QueryContext& context) {
  std::vector<ExpressionGroup> groups;
  groups.push_back(Columns(context));
  groups.push_back(Entries("Functions", *context.DBFunctions()));
  groups.push_back(Entries("Operators", *context.DBOperators()));
  groups.push_back(Entries("Keywords", *context.DBKeywords()));
  std::erase_if(groups, [](const ExpressionGroup& group) { return group.parts.empty(); });
  return groups;
}

}  // namespace zrqrybld
