#include "diagram/join_properties.h"

#include <algorithm>
#include <string_view>

#include "base/text.h"
#include "diagram/entity.h"

namespace zrqrybld {
namespace {

// The text with the tables' captions in the places of their markers; a marker in a caption is a part of its name.
std::string NameTables(std::string_view text, const std::string& table1, const std::string& table2) {
  constexpr std::string_view kTable1 = "%TABLE1%";
  constexpr std::string_view kTable2 = "%TABLE2%";
  std::string named;
  while (true) {
    const std::size_t first = FindNoCase(text, kTable1);
    const std::size_t second = FindNoCase(text, kTable2);
    const std::size_t at = std::min(first, second);
    if (at == std::string_view::npos) return named.append(text);
    named.append(text.substr(0, at)).append(first < second ? table1 : table2);
    text.remove_prefix(at + kTable1.size());
  }
}

}  // namespace

std::string DescribeJoin(const std::string& source, const std::string& target, std::int32_t kind) {
  switch (kind & (JoinAllOfTarget | JoinAllOfSource)) {
    case JoinAllOfTarget:
      return "All rows from " + target + ", and the matching rows from " + source + ".";
    case JoinAllOfSource:
      return "All rows from " + source + ", and the matching rows from " + target + ".";
    case JoinAllOfTarget | JoinAllOfSource:
      return "All rows from " + source + " and all rows from " + target + ", put together where they match.";
    default:
      return "Only rows that match in both " + source + " and " + target + ".";
  }
}

std::string DescribeEnds(const qbRelationship& relationship) {
  const auto end = [](const Ref<qbEntity>& entity, const Ref<qbEntityItem>& item) {
    return (entity ? entity->Caption() : std::string()) + (item ? "." + item->Text() : std::string());
  };
  return end(relationship.Source(), relationship.SourceItem()) + " = " +
         end(relationship.Target(), relationship.TargetItem());
}

void SetJoinKind(qbRelationship& relationship, std::int32_t kind) {
  relationship.SetItemData(kind);
  relationship.SetRightIndicator((kind & JoinAllOfTarget) != 0 ? IndicatorImage : IndicatorNone);
  relationship.SetLeftIndicator((kind & JoinAllOfSource) != 0 ? IndicatorImage : IndicatorNone);
}

bool EditJoin(QueryContext& context, qbRelationship& relationship) {
  const Ref<qbEntity> source = relationship.Source();
  const Ref<qbEntity> target = relationship.Target();
  if (!source || !target) return false;
  const auto text = [&](LanguageIDEnum id) {
    return NameTables(context.GetLanguageString(id), target->Caption(), source->Caption());
  };
  JoinDialog dialog;
  dialog.caption = text(LanguageJoinCaption);
  dialog.frame = text(LanguageJoinFrameCaption);
  dialog.allOfTable1 = text(LanguageJoinTable1);
  dialog.allOfTable2 = text(LanguageJoinTable2);
  dialog.acceptButton = text(LanguageJoinAcceptButton);
  dialog.cancelButton = text(LanguageJoinCancelButton);
  dialog.table1Checked = (relationship.Kind() & JoinAllOfTarget) != 0;
  dialog.table2Checked = (relationship.Kind() & JoinAllOfSource) != 0;
  dialog.table1 = target->Caption();
  dialog.table2 = source->Caption();
  const auto kindOf = [](bool all1, bool all2) { return (all1 ? JoinAllOfTarget : 0) | (all2 ? JoinAllOfSource : 0); };
  dialog.describe = [&](bool all1, bool all2) {
    return DescribeJoin(source->Caption(), target->Caption(), kindOf(all1, all2));
  };
  dialog.warning = [&](bool all1, bool all2) {
    return all1 && all2 && !context.HasFullJoin()
               ? std::string(
                     "The SQL dialect in use cannot keep all rows of both tables; only matching rows come back.")
               : std::string();
  };
  if (!context.GetToolkit().GetDialogs().ShowJoinProperties(dialog)) return false;
  SetJoinKind(relationship, kindOf(dialog.table1Checked, dialog.table2Checked));
  return true;
}

}  // namespace zrqrybld
