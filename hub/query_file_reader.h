// Reads a query file into the designer.
//
// Files come from anywhere: sizes are bounded, and the first line that cannot be read ends the load with its number.
// Markers and keys count in any letter case; a byte-order mark and bare line feeds are accepted, unknown keys ignored.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "grid/grid_pane.h"
#include "hub/query_builder.h"

namespace zrqrybld {

/// The largest file that is read, in bytes.
inline constexpr std::size_t kLargestQueryFile = 64u << 20;

class QueryFileReader {
 public:
  /// What a file tells beside the design itself.
  struct Parameters {
    std::string sqlStatement;
    std::string connectionString;
  };

  /// Reads into `hub`, or with `parametersOnly` only what `Parameters` holds.
  QueryFileReader(qbQueryBuilder& hub, bool parametersOnly) : hub_(hub), parametersOnly_(parametersOnly) {}

  /// Reads the whole text. False when the connection it names cannot be opened: nothing behind it is read then. The
  /// parameters hold whatever was read, also when an error ends it; its description names the line.
  bool Read(std::string_view text);
  const Parameters& Found() const { return parameters_; }

 private:
  /// The lines of a section: keys as written, values to the end of their lines.
  class Section {
   public:
    void Clear();
    void Add(std::string_view key, std::string_view value) { lines_.emplace_back(key, value); }
    /// Finds the keys from now on. Error 457 for a key that stands there twice.
    void MakeIndex();
    const std::vector<std::pair<std::string_view, std::string_view>>& Lines() const { return lines_; }
    /// The value, or nullptr.
    const std::string_view* Find(std::string_view key) const;
    std::string Text(std::string_view key) const;

   private:
    std::vector<std::pair<std::string_view, std::string_view>> lines_;
    std::unordered_map<std::string, std::size_t> index_;  // by the key in capitals
  };

  bool ReadLine(std::string_view line);
  void ReadMarker(std::string_view marker);
  bool TakeConnection(std::string_view value);
  void TakeEntity();
  void TakeItem();
  void TakeRelationship();
  void TakeGridOptions();
  void TakeGrid();
  void TakeSQL();
  void ApplyPendingTicks();

  double RequireNumber(std::string_view key, double smallest, double largest) const;
  bool RequireBoolean(std::string_view key) const;
  Ref<qbEntity> RequireEntity(std::string_view key) const;
  void CopyProperties(qbProperties& properties) const;
  qbGridPane::LoadedCell CellOf(std::string_view key, std::string_view value) const;

  qbQueryBuilder& hub_;
  bool parametersOnly_;
  bool inSection_ = false;
  bool gridTaken_ = false;
  std::size_t entityCount_ = 0;
  std::unordered_set<const qbEntity*> schemaItems_;  // entities of this file that still have the source's columns
  Section section_;
  std::vector<Ref<qbEntityItem>> pendingTicks_;
  Parameters parameters_;
};

}  // namespace zrqrybld
