// Writes a designed query as a query file: sections of key=value lines, in an order that is always the same.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>

#include "zrqrybld/hub/hub.h"

namespace zrqrybld {

class qbEntity;
class qbEntityItem;
class qbProperties;
class qbRelationship;
class qbSQLPane;
struct StoredQuery;

/// The release that wrote a file, as it says in its first line.
inline constexpr std::string_view kQueryFileVersion = "2.1.220";

class QueryFileWriter {
 public:
  /// Writes the query that `hub` holds now. A pane that is not linked counts as a new one.
  explicit QueryFileWriter(qbQueryBuilder& hub) : hub_(hub) {}

  /// The file's text, without a line end at its end. Raises `Info` before each section.
  std::string Write();

 private:
  std::string Sections(qbQueryBuilder* whole);
  void WriteInner(const StoredQuery& query);
  void FindCaptions();
  const std::string& InFile(const std::string& caption) const;
  std::string InFile(std::size_t column, const std::string& cell) const;
  std::string SortNulls() const;
  void WriteEntity(const Ref<qbEntity>& entity);
  void WriteItem(const std::string& caption, const Ref<qbEntityItem>& item);
  void WriteRelationship(const Ref<qbRelationship>& relationship);
  void WriteProperties(const qbProperties& properties);
  void WriteGridOptions();
  void WriteGrid();
  void WriteSQL(qbSQLPane& pane, bool withStatement);
  void WriteTyped(const std::string& typed, bool applied);

  void Marker(std::string_view text);
  void Line(std::string_view key, std::string_view value);
  void Number(std::string_view key, double value);
  void Announce(Ref<Object> object) { hub_.RaiseInfo(InfoSavingDetail, Variant(std::move(object))); }

  qbQueryBuilder& hub_;
  std::unordered_map<std::string, std::string> captions_;  // those with line breaks, as the file has them
  std::string text_;
};

}  // namespace zrqrybld
