#include "host/language.h"

#include <cmath>
#include <fstream>
#include <optional>
#include <utility>
#include <vector>

#include "base/error.h"
#include "base/text.h"

namespace zrqrybld {
namespace {

struct DefaultText {
  LanguageIDEnum id;
  std::string_view text;
};
constexpr DefaultText kDefaults[] = {
    {LanguageGridColumn, "Column"},
    {LanguageGridAlias, "Alias"},
    {LanguageGridTable, "Table"},
    {LanguageGridSortType, "Sort Type"},
    {LanguageGridSortOrder, "Sort Order"},
    {LanguageGridGroupBy, "Group By"},
    {LanguageGridCriteria, "Criteria"},
    {LanguageGridOr, "Or..."},
    {LanguageGridOutput, "Output"},
    {LanguageTableCaption, "Tables"},
    {LanguageTableTables, "&Tables"},
    {LanguageTableViews, "&Views"},
    {LanguageTableAddButton, "&Add"},
    {LanguageTableCloseButton, "&Close"},
    {LanguageJoinCaption, "Join Properties"},
    {LanguageJoinFrameCaption, "Include rows"},
    {LanguageJoinTable1, "Include all rows from %Table1%"},
    {LanguageJoinTable2, "Include all rows from %Table2%"},
    {LanguageJoinAcceptButton, "&Accept"},
    {LanguageJoinCancelButton, "&Cancel"},
    {LanguageExprBuildCaption, "Expression Builder"},
    {LanguageExprBuildGridParamName, "Parameter Name"},
    {LanguageExprBuildGridParamValue, "Parameter Value"},
    {LanguageExprBuildAcceptButton, "&Accept"},
    {LanguageExprBuildCancelButton, "&Cancel"},
    {LanguageExprBuildToolTipClearExpr, "Clear Expression"},
    {LanguageExprBuildToolTipInsert, "Insert Keyword/Function/Operator"},
    {LanguageZoomExprCaption, "Zoom Expression"},
    {LanguageZoomExprAcceptButton, "&Accept"},
    {LanguageZoomExprCancelButton, "&Cancel"},
    {LanguageParametersCaption, "Query Parameters"},
    {LanguageParametersStatement, "&Statement with these values"},
    {LanguageParametersAcceptButton, "&Accept"},
    {LanguageParametersCancelButton, "&Cancel"},
};

// A caption is a line; a file with longer ones is none of ours.
constexpr std::size_t kLongestLine = std::size_t{64} * 1024;

[[noreturn]] void ThrowInvalidFile() {
  throw Error(ErrorInvalidResFile, "An error occured while loading the language file.");
}

// An id is a whole number of 16 bits; blanks around it do not matter.
std::optional<std::int32_t> ReadId(std::string_view text) {
  const std::optional<double> number = ParseNumber(TrimWhite(text));
  if (!number || std::nearbyint(*number) != *number || *number < -32768 || *number > 32767) return std::nullopt;
  return static_cast<std::int32_t>(*number);
}

}  // namespace

std::string_view DefaultLanguageString(std::int32_t id) {
  for (const DefaultText& row : kDefaults) {
    if (row.id == id) return row.text;
  }
  return {};
}

std::string LanguageTable::Get(std::int32_t id) const {
  const auto found = texts_.find(id);
  return found == texts_.end() || found->second.empty() ? std::string(DefaultLanguageString(id)) : found->second;
}

void LanguageTable::Set(std::int32_t id, std::string text) { texts_.insert_or_assign(id, std::move(text)); }

void LanguageTable::Load(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) {
    texts_.clear();
    ThrowInvalidFile();
  }
  Load(file);
}

void LanguageTable::Load(std::istream& input) {
  texts_.clear();
  std::vector<char> buffer(kLongestLine);
  bool first = true;
  while (input.getline(buffer.data(), static_cast<std::streamsize>(buffer.size())) || input.gcount() > 0) {
    if (input.fail() && !input.eof()) ThrowInvalidFile();  // a line beyond the longest
    std::string_view line(buffer.data());
    if (std::exchange(first, false) && line.starts_with("\xEF\xBB\xBF")) line.remove_prefix(3);
    if (line.ends_with('\r')) line.remove_suffix(1);
    const std::string_view trimmed = Trim(line);
    if (trimmed.empty() || trimmed.front() == '\'') continue;
    const std::size_t equals = line.find('=');
    const std::optional<std::int32_t> id =
        equals == std::string_view::npos ? std::nullopt : ReadId(line.substr(0, equals));
    if (!id || !texts_.try_emplace(*id, line.substr(equals + 1)).second) ThrowInvalidFile();
  }
  if (input.bad()) ThrowInvalidFile();
}

}  // namespace zrqrybld
