// What the public classes and enumerations are called outside.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace zrqrybld {

class Type;
class Object;
class Connection;
class Image;
class ImageList;
class StringCollection;
class qbDBFunction;
class qbDBFunctions;
class qbDBKeyword;
class qbDBKeywords;
class qbDBOperator;
class qbDBOperators;
class qbDataType;
class qbDataTypes;
class qbDiagramPane;
class qbEntities;
class qbEntity;
class qbEntityItem;
class qbEntityItems;
class qbGridPane;
class qbJoin;
class qbJoinTable;
class qbJoinTables;
class qbJoins;
class qbParameter;
class qbParameters;
class qbProperties;
class qbProperty;
class qbQueries;
class qbQuery;
class qbQueryBuilder;
class qbRelationship;
class qbRelationships;
class qbSQLPane;
class qbUtility;
class qbWholeJoin;
class qbWholeJoins;
class zrGrid;
class zrGridColumn;
class zrGridColumns;
class zrGridComboItem;
class zrGridComboItems;
class zrGridRow;
class zrGridRows;
class zrSimpleCombo;
enum ConnectionStateEnum : std::int32_t;
enum DateFormatEnum : std::int32_t;
enum FieldOrderEnum : std::int32_t;
enum JoinComparisonEnum : std::int32_t;
enum JoinExistenceEnum : std::int32_t;
enum JoinTypeEnum : std::uint8_t;
enum LanguageIDEnum : std::int32_t;
enum OLEDropModeEnum : std::int32_t;
enum QueryKindEnum : std::int32_t;
enum QueryOperatorEnum : std::int32_t;
enum QueryBuilderErrorEnum : std::int32_t;
enum QueryBuilderInfoEnum : std::int32_t;
enum RelationshipIndicatorStyle : std::int32_t;
enum SQLOperatorEnum : std::int32_t;
enum SQLSyntaxEnum : std::int32_t;

/// The name of a class or enumeration outside; "" when it is not public.
template <class T>
inline constexpr std::string_view kPublicName{};

#define ZRQRYBLD_PUBLIC_AS(Type, Name) \
  template <>                          \
  inline constexpr std::string_view kPublicName<Type> = Name
// One line a type: the name outside is the name here.
#define ZRQRYBLD_PUBLIC(Type) ZRQRYBLD_PUBLIC_AS(Type, #Type)

ZRQRYBLD_PUBLIC(Object);
ZRQRYBLD_PUBLIC(Connection);
ZRQRYBLD_PUBLIC(Image);
ZRQRYBLD_PUBLIC(ImageList);
ZRQRYBLD_PUBLIC(StringCollection);
ZRQRYBLD_PUBLIC(qbDBFunction);
ZRQRYBLD_PUBLIC(qbDBFunctions);
ZRQRYBLD_PUBLIC(qbDBKeyword);
ZRQRYBLD_PUBLIC(qbDBKeywords);
ZRQRYBLD_PUBLIC(qbDBOperator);
ZRQRYBLD_PUBLIC(qbDBOperators);
ZRQRYBLD_PUBLIC(qbDataType);
ZRQRYBLD_PUBLIC(qbDataTypes);
ZRQRYBLD_PUBLIC(qbDiagramPane);
ZRQRYBLD_PUBLIC(qbEntities);
ZRQRYBLD_PUBLIC(qbEntity);
ZRQRYBLD_PUBLIC(qbEntityItem);
ZRQRYBLD_PUBLIC(qbEntityItems);
ZRQRYBLD_PUBLIC(qbGridPane);
ZRQRYBLD_PUBLIC(qbJoin);
ZRQRYBLD_PUBLIC(qbJoinTable);
ZRQRYBLD_PUBLIC(qbJoinTables);
ZRQRYBLD_PUBLIC(qbJoins);
ZRQRYBLD_PUBLIC(qbParameter);
ZRQRYBLD_PUBLIC(qbParameters);
ZRQRYBLD_PUBLIC(qbProperties);
ZRQRYBLD_PUBLIC(qbProperty);
ZRQRYBLD_PUBLIC(qbQueries);
ZRQRYBLD_PUBLIC(qbQuery);
ZRQRYBLD_PUBLIC(qbQueryBuilder);
ZRQRYBLD_PUBLIC(qbRelationship);
ZRQRYBLD_PUBLIC(qbRelationships);
ZRQRYBLD_PUBLIC(qbSQLPane);
ZRQRYBLD_PUBLIC(qbUtility);
ZRQRYBLD_PUBLIC(qbWholeJoin);
ZRQRYBLD_PUBLIC(qbWholeJoins);
ZRQRYBLD_PUBLIC(zrGrid);
ZRQRYBLD_PUBLIC(zrGridColumn);
ZRQRYBLD_PUBLIC(zrGridColumns);
ZRQRYBLD_PUBLIC(zrGridComboItem);
ZRQRYBLD_PUBLIC(zrGridComboItems);
ZRQRYBLD_PUBLIC(zrGridRow);
ZRQRYBLD_PUBLIC(zrGridRows);
ZRQRYBLD_PUBLIC(zrSimpleCombo);
ZRQRYBLD_PUBLIC(ConnectionStateEnum);
ZRQRYBLD_PUBLIC(DateFormatEnum);
ZRQRYBLD_PUBLIC(FieldOrderEnum);
ZRQRYBLD_PUBLIC(JoinComparisonEnum);
ZRQRYBLD_PUBLIC(JoinExistenceEnum);
ZRQRYBLD_PUBLIC(JoinTypeEnum);
ZRQRYBLD_PUBLIC(LanguageIDEnum);
ZRQRYBLD_PUBLIC(OLEDropModeEnum);
ZRQRYBLD_PUBLIC(QueryBuilderErrorEnum);
ZRQRYBLD_PUBLIC(QueryBuilderInfoEnum);
ZRQRYBLD_PUBLIC(QueryKindEnum);
ZRQRYBLD_PUBLIC(QueryOperatorEnum);
ZRQRYBLD_PUBLIC(RelationshipIndicatorStyle);
ZRQRYBLD_PUBLIC(SQLOperatorEnum);
ZRQRYBLD_PUBLIC(SQLSyntaxEnum);

/// One name of an enumeration.
struct EnumerationMember {
  std::string_view name;
  std::int32_t value;
};

/// An enumeration that is known outside.
struct Enumeration {
  std::string_view name;
  std::span<const EnumerationMember> members;
};

/// All of them, by name.
std::span<const Enumeration> Enumerations();

/// Whether the enumeration has a member with this value. An enumeration that is not known here has all values.
bool IsEnumerationValue(std::string_view enumeration, std::int32_t value);

}  // namespace zrqrybld
