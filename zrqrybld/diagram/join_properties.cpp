#include "zrqrybld/diagram/join_properties.h"

#include <algorithm>
#include <string_view>

#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_diagram.h"
#include "zrqrybld/diagram/entity.h"
#include "zrqrybld/host/context_link.h"
#include "zrqrybld/host/design_queries.h"
#include "zrqrybld/host/language_ids.h"
#include "zrqrybld/host/source_context.h"
#include "zrqrybld/platform/dialogs.h"
#include "zrqrybld/platform/toolkit.h"

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

Phrase DescribeJoin(const std::string& source, const std::string& target, JoinKind kind) {
  if (kind.IsFull()) {
    return {text::JoinFull, source, target};
  }
  if (kind.allOfTarget) return {text::JoinAllOf, target, source};
  if (kind.allOfSource) return {text::JoinAllOf, source, target};
  return {text::JoinInner, source, target};
}

std::string DescribeEnds(const qbRelationship& relationship) {
  const auto end = [](const Ref<qbEntity>& entity, const Ref<qbEntityItem>& item) {
    return (entity ? entity->Caption() : std::string()) + (item ? "." + item->Text() : std::string());
  };
  return end(relationship.Source(), relationship.SourceItem()) + " = " +
         end(relationship.Target(), relationship.TargetItem());
}

void SetJoinKind(qbRelationship& relationship, JoinKind kind) {
  relationship.SetItemData(kind.Bits());
  relationship.SetRightIndicator(kind.allOfTarget ? IndicatorImage : IndicatorNone);
  relationship.SetLeftIndicator(kind.allOfSource ? IndicatorImage : IndicatorNone);
}

bool EditJoin(QueryContext& context, qbRelationship& relationship) {
  const Ref<qbEntity> source = relationship.Source();
  const Ref<qbEntity> target = relationship.Target();
  if (!source || !target) return false;
  const auto text = [&](LanguageIDEnum id) {
    return NameTables(context.source.GetLanguageString(id), target->Caption(), source->Caption());
  };
  JoinDialog dialog;
  dialog.caption = text(LanguageJoinCaption);
  dialog.frame = text(LanguageJoinFrameCaption);
  dialog.allOfTable1 = text(LanguageJoinTable1);
  dialog.allOfTable2 = text(LanguageJoinTable2);
  dialog.acceptButton = text(LanguageJoinAcceptButton);
  dialog.cancelButton = text(LanguageJoinCancelButton);
  dialog.table1Checked = relationship.Kind().allOfTarget;
  dialog.table2Checked = relationship.Kind().allOfSource;
  dialog.table1 = target->Caption();
  dialog.table2 = source->Caption();
  dialog.describe = [&](bool all1, bool all2) {
    return context.source.Say(
        DescribeJoin(source->Caption(), target->Caption(), {.allOfTarget = all1, .allOfSource = all2}));
  };
  dialog.warning = [&](bool all1, bool all2) {
    return all1 && all2 && !context.design.HasFullJoin() ? context.source.Say(text::NoFullJoin) : std::string();
  };
  if (!context.source.GetToolkit().GetDialogs().ShowJoinProperties(dialog)) return false;
  SetJoinKind(relationship, {.allOfTarget = dialog.table1Checked, .allOfSource = dialog.table2Checked});
  return true;
}

}  // namespace zrqrybld
