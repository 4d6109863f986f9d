// DiagramFinder: finds tables and columns of a diagram by what the user types.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>

#include "zrqrybld/base/object.h"

namespace zrqrybld {

class DiagramSelection;
class DiagramSite;
class DiagramWalk;
class qbEntities;
class qbEntity;

class DiagramFinder {
 public:
  DiagramFinder(DiagramSite& site, qbEntities& entities, DiagramSelection& selection, DiagramWalk& walk)
      : site_(site), entities_(entities), selection_(selection), walk_(walk) {}

  /// Goes to the row of the selected entity that begins so; what is typed within a second is one word. Returns whether
  /// there is an entity.
  bool TypeAhead(std::string_view text);
  /// Lets the user look for a table or column by a part of its name; the next one behind the current one is selected.
  /// Nothing happens while the pane is not linked.
  void AskAndFind();

 private:
  // A table and one of its rows; row 0 is its caption.
  struct Place {
    Ref<qbEntity> entity;
    std::size_t row = 0;
  };

  Place FindName(const std::string& part) const;

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
