// The members of the vocabulary and of the data source's types.
#include "zrqrybld/automation/binding.h"
#include "zrqrybld/automation/classes.h"
#include "zrqrybld/host/catalogs.h"
#include "zrqrybld/host/data_types.h"

namespace zrqrybld {
namespace {

constexpr Member kKeyword[] = {
    ReadWrite<qbDBKeyword, &qbDBKeyword::Name, &qbDBKeyword::SetName>("Name"),
    ReadWrite<qbDBKeyword, &qbDBKeyword::Description, &qbDBKeyword::SetDescription>("Description"),
};

constexpr Member kKeywords[] = {
    Method<qbDBKeywords, &qbDBKeywords::Add>("Add", "Name, [Description]"),
    Method<qbDBKeywords, &qbDBKeywords::Clear>("Clear"),
    ReadOnly<qbDBKeywords, &qbDBKeywords::Count>("Count"),
    ReadOnly<qbDBKeywords, &qbDBKeywords::Item>("Item", "Index"),
    Method<qbDBKeywords, &qbDBKeywords::Remove>("Remove", "Index"),
};

constexpr Member kOperator[] = {
    ReadWrite<qbDBOperator, &qbDBOperator::Name, &qbDBOperator::SetName>("Name"),
    ReadWrite<qbDBOperator, &qbDBOperator::Syntax, &qbDBOperator::SetSyntax>("Syntax"),
    ReadWrite<qbDBOperator, &qbDBOperator::Description, &qbDBOperator::SetDescription>("Description"),
    ReadWrite<qbDBOperator, &qbDBOperator::Flags, &qbDBOperator::SetFlags>("Flags"),
};

constexpr Member kOperators[] = {
    Method<qbDBOperators, &qbDBOperators::Add>("Add", "Name, [Syntax], [Description]"),
    Method<qbDBOperators, &qbDBOperators::Clear>("Clear"),
    ReadOnly<qbDBOperators, &qbDBOperators::Count>("Count"),
    ReadOnly<qbDBOperators, &qbDBOperators::Item>("Item", "Index"),
    Method<qbDBOperators, &qbDBOperators::Remove>("Remove", "Index"),
};

constexpr Member kFunction[] = {
    ReadWrite<qbDBFunction, &qbDBFunction::Name, &qbDBFunction::SetName>("Name"),
    ReadWrite<qbDBFunction, &qbDBFunction::Syntax, &qbDBFunction::SetSyntax>("Syntax"),
    ReadWrite<qbDBFunction, &qbDBFunction::ShortDescription, &qbDBFunction::SetShortDescription>("ShortDescription"),
    ReadWrite<qbDBFunction, &qbDBFunction::Description, &qbDBFunction::SetDescription>("Description"),
    ReadWrite<qbDBFunction, &qbDBFunction::Flags, &qbDBFunction::SetFlags>("Flags"),
};

constexpr Member kFunctions[] = {
    Method<qbDBFunctions, &qbDBFunctions::Add>("Add", "Name, [Syntax], [Description], [ShortDescription], [Flags]"),
    Method<qbDBFunctions, &qbDBFunctions::Clear>("Clear"),
    ReadOnly<qbDBFunctions, &qbDBFunctions::Count>("Count"),
    Method<qbDBFunctions, &qbDBFunctions::Find>("Find", "[ShortDescription], [Description], [Syntax]"),
    ReadOnly<qbDBFunctions, &qbDBFunctions::Item>("Item", "Index"),
    Method<qbDBFunctions, &qbDBFunctions::Remove>("Remove", "Index"),
};

constexpr Member kDataType[] = {
    Field<qbDataType, &qbDataType::Name>("Name"),
    Field<qbDataType, &qbDataType::Indicator>("Indicator"),
    Field<qbDataType, &qbDataType::PrefixLetters>("PrefixLetters"),
    Field<qbDataType, &qbDataType::SuffixLetters>("SuffixLetters"),
    Field<qbDataType, &qbDataType::IsLong>("IsLong"),
};

constexpr Member kDataTypes[] = {
    Method<qbDataTypes, &qbDataTypes::Add>("Add", "[Name], [Indicator], [PrefixLetters], [SuffixLetters]"),
    Method<qbDataTypes, &qbDataTypes::Clear>("Clear"),
    ReadOnly<qbDataTypes, &qbDataTypes::Count>("Count"),
    Method<qbDataTypes, &qbDataTypes::FindByIndicator>("FindByIndicator", "Indicator"),
    Method<qbDataTypes, &qbDataTypes::FindByIndicatorLong>("FindByIndicatorLong", "Indicator, IsLong"),
    ReadOnly<qbDataTypes, &qbDataTypes::Item>("Item", "Index"),
    Method<qbDataTypes, &qbDataTypes::Remove>("Remove", "Index"),
};

// The texts whose presence in a name forces it into quotes.
constexpr Member kStrings[] = {
    Method<StringCollection, &StringCollection::Add>("Add", "Text"),
    Method<StringCollection, &StringCollection::Clear>("Clear"),
    ReadOnly<StringCollection, &StringCollection::Count>("Count"),
    ReadOnly<StringCollection, &StringCollection::Item>("Item", "Index"),
    Method<StringCollection, &StringCollection::Remove>("Remove", "Index"),
};

template <class T>
Ref<Object> Make() {
  return std::make_shared<T>();
}

const ClassInfo kClasses[] = {
    {"qbDBKeyword", kKeyword, "Name"},
    {"qbDBKeywords", kKeywords, "Item", &Make<qbDBKeywords>},
    {"qbDBOperator", kOperator, "Name"},
    {"qbDBOperators", kOperators, "Item", &Make<qbDBOperators>},
    {"qbDBFunction", kFunction, "Name"},
    {"qbDBFunctions", kFunctions, "Item", &Make<qbDBFunctions>},
    {"qbDataType", kDataType, "Name"},
    {"qbDataTypes", kDataTypes, "Item", &Make<qbDataTypes>},
    {"StringCollection", kStrings, "Item", &Make<StringCollection>},
};

}  // namespace

std::span<const ClassInfo> CatalogClasses() { return kClasses; }

}  // namespace zrqrybld
