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
#include "zrqrybld/platform/while_alive.h"

namespace zrqrybld {
namespace {

constexpr auto kTypeAheadPause = std::chrono::seconds(1);

}  // namespace

// Whether what was typed before is still a part of what is typed now.
bool DiagramFinder::IsFresh() const {
  return typedFor_ == selection_.Revision() && std::chrono::steady_clock::now() - typedAt_ <= kTypeAheadPause;
}

bool DiagramFinder::TypeAhead(std::string_view text) {
  const Ref<qbEntity> entity = selection_.Entity();
  if (!entity) return false;
  if (!IsFresh()) typed_.clear();
  typedFor_ = selection_.Revision();
  typedAt_ = std::chrono::steady_clock::now();
  const bool begins = typed_.empty();
  const bool repeats = !begins && ReplaceAll(typed_, text, "").empty();
  typed_ += text;
  const std::size_t current = entity->EntityBox()->SelectedRow();
  // The first letter goes on to the next match, further ones stay on a row that still matches.
  if (GoToTyped(begins || current == 0 ? current : current - 1) || !repeats) return true;
  const std::string all = std::exchange(typed_, text);
  GoToTyped(current);
  typed_ = all;
  return true;
}

bool DiagramFinder::TakeBack() {
  if (!IsFresh() || typed_.empty()) return false;
  typed_ = FirstCharacters(typed_, CharacterCount(typed_) - 1);
  typedAt_ = std::chrono::steady_clock::now();
  return typed_.empty() || GoToTyped(0);
}

// The row that begins with what was typed, looked for behind this one.
bool DiagramFinder::GoToTyped(std::size_t after) {
  const qbEntityList& box = *selection_.Entity()->EntityBox();
  const std::size_t row = box.FindRow(typed_, after);
  return row != 0 && walk_.GoToRow(row);
}

// --- By a part of the name ---

// All tables and columns that hold the text in any letter case, in the order of the diagram.
std::vector<DiagramFinder::Place> DiagramFinder::Names(const std::string& part) const {
  std::vector<Place> found;
  const std::string wanted = FoldCase(part);
  if (wanted.empty()) return found;
  std::int32_t position = 0;
  for (const Ref<qbEntity>& entity : entities_) {
    ++position;
    const BoxRows& rows = entity->EntityBox()->Rows();
    for (std::size_t row = 0; row <= rows.Count(); ++row) {
      const std::string& text = row == 0 ? entity->Caption() : rows.At(row)->Text();
      if (FoldCase(text).find(wanted) != std::string::npos) found.push_back({position, row});
    }
  }
  return found;
}

DiagramFinder::Place DiagramFinder::Current() const {
  const Ref<qbEntity> entity = selection_.Entity();
  return entity ? Place{entity->Index(), entity->EntityBox()->SelectedRow()} : Place{};
}

FoundNames DiagramFinder::Find(const std::string& part, FindFrom from) {
  const std::vector<Place> names = Names(part);
  if (names.empty()) return {};
  const Place current = Current();
  auto name =
      from == FindFrom::Next ? std::ranges::upper_bound(names, current) : std::ranges::lower_bound(names, current);
  if (from == FindFrom::Previous) name = name == names.begin() ? names.end() - 1 : name - 1;
  if (name == names.end()) name = names.begin();
  const bool there = GoTo(*name);
  return {names.size(), there ? static_cast<std::size_t>(name - names.begin()) + 1 : 0};
}

bool DiagramFinder::GoTo(Place place) {
  const Ref<qbEntity> entity = entities_.Item(place.entity);
  selection_.Select(entity);
  if (selection_.Entity() != entity) return false;  // a listener has decided otherwise
  walk_.Show(*entity);
  if (place.row == 0) {
    entity->EntityBox()->SetSelectedRow(0);
  } else {
    walk_.GoToRow(place.row);
  }
  return true;
}

void DiagramFinder::AskAndFind() {
  const Ref<QueryContext> context = site_.Context();
  if (!context) return;
  bool isShown = false;
  site_.FindWanted.Raise(isShown);
  if (isShown) return;
  TextDialog dialog{context->source.Say(text::FindCaption), context->source.Say(text::FindLabel), sought_};
  dialog.problem = WhileAlive(site_.weak_from_this(), [this](const std::string& text) -> std::string {
    if (text.empty()) return " ";
    return Names(text).empty() ? Say(site_.Context(), text::FindNothing) : "";
  });
  context->source.GetToolkit().GetDialogs().AskText(std::move(dialog),
                                                    WhileAlive(site_.weak_from_this(), [this](const std::string& part) {
                                                      if (part.empty()) return;
                                                      sought_ = part;
                                                      Find(sought_, FindFrom::Next);
                                                    }));
}

}  // namespace zrqrybld
