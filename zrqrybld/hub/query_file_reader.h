// Reads a query file into the designer.
//
// Files come from anywhere: sizes are bounded, and the first line that cannot be read ends the load with its number.
// Markers and keys count in any letter case; a byte-order mark and bare line feeds are accepted. What it does not know
// it passes over, and remarks on.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/sql/sql_syntax.h"

namespace zrqrybld {

/// The largest file that is read, in bytes.
inline constexpr std::size_t kLargestQueryFile = 64u << 20;

/// A query within the query, as a file has it.
struct InnerQueryInFile {
  std::int32_t id = 0;
  std::int32_t parent = 0;
  QueryKindEnum kind = QueryDerivedTable;
  QueryOperatorEnum combined = QueryUnion;
  std::string name;
  std::vector<std::string> columnNames;
  std::string text;      ///< its own sections
  std::size_t line = 0;  ///< the line of the file before the first of them
};

class QueryFileReader {
 public:
  /// What a file tells beside the design itself.
  struct Parameters {
    bool only = false;                    ///< nothing else is read
    std::string* sqlStatement = nullptr;  ///< both are set as soon as they are met, where they are asked for
    std::string* connectionString = nullptr;
    SQLSyntaxEnum* syntax = nullptr;  ///< the dialect that the statement is written in
  };

  /// Reads into `hub`; what is passed over is said in `remarks`.
  QueryFileReader(qbQueryBuilder& hub, const Parameters& parameters, std::vector<std::string>& remarks)
      : hub_(hub), parameters_(parameters), remarks_(remarks) {}

  /// The queries within the query, each behind the one that it belongs to. The description of an error names the line.
  static std::vector<InnerQueryInFile> FindInner(std::string_view text);

  /// What is done before the first section is read, when the connection is open.
  void BeforeSections(std::function<void()> work) { beforeSections_ = std::move(work); }
  /// The lines of the text are those of a file from this one on.
  void BehindLine(std::size_t line) { line_ = line; }

  /// Reads the whole text. False when the connection it names cannot be opened: nothing behind it is read then. The
  /// description of an error names the line.
  bool Read(std::string_view text);

  /// The text that its user had typed and not applied; "" where there was none.
  std::string NotApplied() const { return applied_ ? std::string() : typed_; }

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

    /// The line of the marker that begins it.
    std::size_t line = 0;

   private:
    std::vector<std::pair<std::string_view, std::string_view>> lines_;
    std::unordered_map<std::string, std::size_t> index_;  // by the key in capitals
  };

  struct SectionKind;
  static const SectionKind* KindOf(std::string_view name);

  bool ReadLine(std::string_view line);
  void ReadMarker(std::string_view marker);
  void Begin(std::string_view name);
  void End(std::string_view name);
  void PassOverMarker();
  void Remark(std::size_t line, TextId what, std::string_view about = {});
  void RemarkUnknownKeys();
  void RemarkOpenSection();
  bool TakeConnection(std::string_view value);
  void TakeEntity();
  void TakeHeight(qbEntity& entity) const;
  void TakeItem();
  void TakeRelationship();
  void TakeGridOptions();
  void TakeGrid();
  void TakeSortNulls(const std::string& value);
  void TakeSQL();
  void TakeTyped();
  void PassOver() {}
  void ApplyPendingTicks();
  void KeepTyped() const;

  double RequireNumber(std::string_view key, double smallest, double largest) const;
  bool RequireBoolean(std::string_view key) const;
  Ref<qbEntity> RequireEntity(std::string_view key) const;
  Variant RequireItemIndex(std::string_view key, const qbEntity& entity) const;
  void CopyProperties(qbProperties& properties) const;
  qbGridPane::LoadedCell CellOf(std::string_view key, std::string_view value) const;

  qbQueryBuilder& hub_;
  Parameters parameters_;
  std::vector<std::string>& remarks_;
  std::size_t line_ = 0;  // the one that is read
  bool anySection_ = false;
  const SectionKind* open_ = nullptr;   // the section that is read, of those that are known
  std::optional<std::size_t> unknown_;  // the line where a section begins that is not known
  bool encodingRemarked_ = false;
  bool gridTaken_ = false;
  std::size_t entityCount_ = 0;
  std::size_t joinCount_ = 0;
  std::unordered_set<const qbEntity*> schemaItems_;  // entities of this file that still have the source's columns
  Section section_;
  std::vector<Ref<qbEntityItem>> pendingTicks_;
  std::string typed_;  // the statement as the user has written it
  bool applied_ = true;
  std::function<void()> beforeSections_;
};

}  // namespace zrqrybld
