#include "zrqrybld/diagram/diagram_finder.h"

#include <optional>
#include <utility>

#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_diagram.h"
#include "zrqrybld/diagram/diagram_selection.h"
#include "zrqrybld/diagram/diagram_site.h"
#include "zrqrybld/diagram/diagram_walk.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/host/context_link.h"
#include "zrqrybld/host/source_context.h"
#include "zrqrybld/platform/dialogs.h"
#include "zrqrybld/platform/toolkit.h"

namespace zrqrybld {
namespace {

constexpr auto kTypeAheadPause = std::chrono::seconds(1);

}  // namespace

bool DiagramFinder::TypeAhead(std::string_view text) {
  const Ref<qbEntity> entity = selection_.Entity();
  if (!entity) return false;
  const auto now = std::chrono::steady_clock::now();
  const bool goesOn = std::exchange(typedFor_, selection_.Revision()) == selection_.Revision();
  if (!goesOn || now - typedAt_ > kTypeAheadPause) typed_.clear();
  typedAt_ = now;
  const bool begins = typed_.empty();
  typed_ += text;
  const qbEntityList& box = *entity->EntityBox();
  // The first letter goes on to the next match, further ones stay on a row that still matches.
  const std::size_t after = begins || box.SelectedRow() == 0 ? box.SelectedRow() : box.SelectedRow() - 1;
  const std::size_t row = box.FindRow(typed_, after);
  if (row != 0) walk_.GoToRow(row);
  return true;
}

// The next caption or row behind the current one that holds the text in any letter case, from the beginning again
// behind the last one.
DiagramFinder::Place DiagramFinder::FindName(const std::string& part) const {
  const std::string wanted = FoldCase(part);
  const Ref<qbEntity> current = selection_.Entity();
  const std::size_t currentRow = current ? current->EntityBox()->SelectedRow() : 0;
  Place first;
  bool behind = current == nullptr;
  for (const Ref<qbEntity>& entity : entities_) {
    const BoxRows& rows = entity->EntityBox()->Rows();
    for (std::size_t row = 0; row <= rows.Count(); ++row) {
      const std::string& text = row == 0 ? entity->Caption() : rows.At(row)->Text();
      if (FoldCase(text).find(wanted) != std::string::npos) {
        if (behind) return {entity, row};
        if (!first.entity) first = {entity, row};
      }
      behind = behind || (entity == current && row == currentRow);
    }
  }
  return first;
}

void DiagramFinder::AskAndFind() {
  const Ref<QueryContext> context = site_.Context();
  if (!context) return;
  TextDialog dialog{context->source.Say(text::FindCaption), context->source.Say(text::FindLabel), sought_};
  dialog.problem = [this, context](const std::string& text) -> std::string {
    if (text.empty()) return " ";
    return FindName(text).entity ? "" : Say(context, text::FindNothing);
  };
  const std::optional<std::string> part = context->source.GetToolkit().GetDialogs().ShowTextPrompt(dialog);
  if (!part || part->empty()) return;
  sought_ = *part;
  const Place found = FindName(sought_);
  if (!found.entity) return;
  selection_.Select(found.entity);
  if (selection_.Entity() != found.entity) return;  // a listener has decided otherwise
  walk_.Show(*found.entity);
  if (found.row != 0) walk_.GoToRow(found.row);
}

}  // namespace zrqrybld
