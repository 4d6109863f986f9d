#include "zrqrybld/adapters/odbc/odbc_types.h"

#include <sql.h>
#include <sqlext.h>
#include <sqlucode.h>

#include <algorithm>
#include <iterator>

namespace zrqrybld::odbc {
namespace {

// Types that one server's drivers have added; other headers do not name them.
constexpr std::int16_t kXml = -152;
constexpr std::int16_t kTimeWithFraction = -154;
constexpr std::int16_t kTimeStampWithZone = -155;

constexpr TypeFacts kTypes[] = {
    {SQL_WVARCHAR, DataTypeCode::VarWChar, false, false, true},  // first: it stands for what is not known
    {SQL_BIT, DataTypeCode::Boolean, false, true},
    {SQL_TINYINT, DataTypeCode::TinyInt, false, true},
    {SQL_SMALLINT, DataTypeCode::SmallInt, false, true},
    {SQL_INTEGER, DataTypeCode::Integer, false, true},
    {SQL_BIGINT, DataTypeCode::BigInt, false, true},
    {SQL_REAL, DataTypeCode::Single, false, true},
    {SQL_FLOAT, DataTypeCode::Double, false, true},
    {SQL_DOUBLE, DataTypeCode::Double, false, true},
    {SQL_NUMERIC, DataTypeCode::Numeric, false, true, false, true},
    {SQL_DECIMAL, DataTypeCode::Numeric, false, true, false, true},
    {SQL_CHAR, DataTypeCode::Char, false, true, true},
    {SQL_VARCHAR, DataTypeCode::VarChar, false, false, true},
    {SQL_LONGVARCHAR, DataTypeCode::LongVarChar, true, false, true},
    {SQL_WCHAR, DataTypeCode::WChar, false, true, true},
    {SQL_WLONGVARCHAR, DataTypeCode::LongVarWChar, true, false, true},
    {SQL_BINARY, DataTypeCode::Binary, false, true, true},
    {SQL_VARBINARY, DataTypeCode::VarBinary, false, false, true},
    {SQL_LONGVARBINARY, DataTypeCode::LongVarBinary, true, false, true},
    {SQL_TYPE_DATE, DataTypeCode::DbDate, false, true},
    {SQL_TYPE_TIME, DataTypeCode::DbTime, false, true},
    {SQL_TYPE_TIMESTAMP, DataTypeCode::DbTimeStamp, false, true},
    // Drivers of ODBC 2 number their dates in another way.
    {SQL_DATE, DataTypeCode::DbDate, false, true},
    {SQL_TIME, DataTypeCode::DbTime, false, true},
    {SQL_TIMESTAMP, DataTypeCode::DbTimeStamp, false, true},
    {SQL_GUID, DataTypeCode::Guid, false, true},
    {kXml, DataTypeCode::LongVarWChar, true, false, true},
    {kTimeWithFraction, DataTypeCode::DbTime, false, true},
    {kTimeStampWithZone, DataTypeCode::DbTimeStamp, false, true},
};

}  // namespace

const TypeFacts& FactsOf(std::int32_t odbcType) {
  const auto* found =
      std::ranges::find(kTypes, odbcType, [](const TypeFacts& row) { return std::int32_t{row.odbcType}; });
  return found != std::end(kTypes) ? *found : kTypes[0];
}

DataTypeCode CodeOf(const TypeFacts& facts, bool isUnsigned) {
  return facts.odbcType == SQL_TINYINT && isUnsigned ? DataTypeCode::UnsignedTinyInt : facts.code;
}

}  // namespace zrqrybld::odbc
