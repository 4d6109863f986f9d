// DiagramFinder: finds tables and columns of a diagram by what the user types.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "zrqrybld/diagram/diagram_site.h"

namespace zrqrybld {

class DiagramSelection;
class DiagramWalk;
class qbEntities;

class DiagramFinder {
 public:
  DiagramFinder(DiagramSite& site, qbEntities& entities, DiagramSelection& selection, DiagramWalk& walk)
      : site_(site), entities_(entities), selection_(selection), walk_(walk) {}

  /// Goes to the row of the selected entity that begins so; what is typed within a second is one word,
  /// and the same letter again and again goes on to the next row that begins with it. Returns whether there is an
  /// entity.
  bool TypeAhead(std::string_view text);
  /// Takes the last letter back that was typed within a second. Returns whether there is one.
  bool TakeBack();
  /// Lets the user look for a table or column by a part of its name, where the application shows nothing for it in a
  /// dialog; the next one behind the current one is selected. Nothing happens while the pane is not linked.
  void AskAndFind();
  /// Selects the name that holds the text, from the current one on; see `qbDiagramPane::FindName`.
  FoundNames Find(const std::string& part, FindFrom from);

 private:
  // A table, by its position from 1, and one of its rows; row 0 is its caption.
  struct Place {
    std::int32_t entity = 0;
    std::size_t row = 0;
    friend auto operator<=>(const Place&, const Place&) = default;
  };

  bool GoToTyped(std::size_t after);
  bool IsFresh() const;
  std::vector<Place> Names(const std::string& part) const;
  Place Current() const;
  bool GoTo(Place place);

  DiagramSite& site_;
  qbEntities& entities_;
  DiagramSelection& selection_;
  DiagramWalk& walk_;
  std::string typed_;
  std::chrono::steady_clock::time_point typedAt_;
  std::uint64_t typedFor_ = 0;  // the selection's revision then: another object begins another word
  std::string sought_;          // by name, last
};

}  // namespace zrqrybld
