#pragma once

// The letter tables of the collator-name grammar (CollatorName.h), for the name writers and
// the collator's self-check; not for other callers.
//
// Both tables are indexed directly by the enumeration value (the value table by value plus
// one), and each entry holds its own value as a check: a slot for a value without a letter
// stays zero, so a look-up that lands there finds another value and fails. The tables are
// constant data, ready before any code runs.

#include "murcoredata/data/ICUCollator.h"

#include <array>

namespace CollatorNameTables {

struct AttrEntry
{
    int32_t enumVal;
    char16_t letter;
    /// The value at which the attribute needs no part.
    int32_t defaultValue;
};

struct ValueEntry
{
    int32_t value;
    char16_t letter;
};

constexpr int s_attrCount = ICUCollator::IgnoreDigits + 1;
constexpr int s_valueCount = MurICU::UCOL_UPPER_FIRST + 2;

constexpr std::array<AttrEntry, s_attrCount> MakeAttrTable()
{
    std::array<AttrEntry, s_attrCount> table{};
    const AttrEntry rows[] = {
        {ICUCollator::FrenchCollation, u'F', MurICU::UCOL_DEFAULT},
        {ICUCollator::AlternateHandling, u'A', MurICU::UCOL_DEFAULT},
        {ICUCollator::CaseFirst, u'C', MurICU::UCOL_DEFAULT},
        {ICUCollator::CaseLevel, u'E', MurICU::UCOL_DEFAULT},
        {ICUCollator::NormalizationMode, u'N', MurICU::UCOL_DEFAULT},
        {ICUCollator::Strength, u'S', MurICU::UCOL_TERTIARY},
        {ICUCollator::HiraganaQuaternaryMode, u'H', MurICU::UCOL_DEFAULT},
        {ICUCollator::NumericCollation, u'I', MurICU::UCOL_DEFAULT},
        {ICUCollator::WordSort, u'W', MurICU::UCOL_OFF},
        {ICUCollator::IgnoreDigits, u'X', MurICU::UCOL_OFF},
    };
    for (const AttrEntry& row : rows)
        table[size_t(row.enumVal)] = row;
    return table;
}

constexpr std::array<ValueEntry, s_valueCount> MakeValueTable()
{
    std::array<ValueEntry, s_valueCount> table{};
    const ValueEntry rows[] = {
        {MurICU::UCOL_DEFAULT, u'D'},      {MurICU::UCOL_PRIMARY, u'1'},    {MurICU::UCOL_SECONDARY, u'2'},
        {MurICU::UCOL_TERTIARY, u'3'},     {MurICU::UCOL_QUATERNARY, u'4'}, {MurICU::UCOL_IDENTICAL, u'I'},
        {MurICU::UCOL_OFF, u'X'},          {MurICU::UCOL_ON, u'O'},         {MurICU::UCOL_SHIFTED, u'S'},
        {MurICU::UCOL_NON_IGNORABLE, u'N'}, {MurICU::UCOL_LOWER_FIRST, u'L'}, {MurICU::UCOL_UPPER_FIRST, u'U'},
    };
    for (const ValueEntry& row : rows)
        table[size_t(row.value + 1)] = row;
    return table;
}

constexpr std::array<AttrEntry, s_attrCount> s_attrTable = MakeAttrTable();
constexpr std::array<ValueEntry, s_valueCount> s_valueTable = MakeValueTable();

/// The entry of an attribute, or null for a number without a letter (8, out of range).
inline const AttrEntry* FindAttr(int32_t attr)
{
    if (attr < 0 || attr >= s_attrCount)
        return nullptr;
    const AttrEntry& a = s_attrTable[size_t(attr)];
    return a.enumVal == attr && a.letter != 0 ? &a : nullptr;
}

/// The entry of a value, or null for a number without a letter.
inline const ValueEntry* FindValue(int32_t value)
{
    if (value < -1 || value + 1 >= s_valueCount)
        return nullptr;
    const ValueEntry& v = s_valueTable[size_t(value + 1)];
    return v.value == value && v.letter != 0 ? &v : nullptr;
}

} // namespace CollatorNameTables
