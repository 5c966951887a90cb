#pragma once

// The document vocabulary of values: the names under which the types of `DataValue` are
// written in XML documents, and the template that holds such enumeration tables.

#include "murcoredata/data/DataValue.h"
#include "murcoredata/foundation/Export.h"
#include "murcoredata/foundation/TString.h"

#include <initializer_list>
#include <map>
#include <utility>
#include <vector>

namespace Implementation {

/// Throws the exception of an enumerator that has no text in its table
/// ("XML enumerated value cannot be encoded.").
[[noreturn]] MURCOREDATA_EXPORT void ThrowXMLEnumEncodingException();
/// Throws the exception of a text that names no enumerator of its table
/// ("XML enumerated value cannot be decoded.").
[[noreturn]] MURCOREDATA_EXPORT void ThrowXMLEnumDecodingException();

/// A table between the enumerators of `Enum` and their document texts: an ordered map,
/// plus a default enumerator for decoders that must answer something for an unknown text.
///
/// Tables are static objects filled at load time. A look-up from another static initialiser
/// may run before the table is filled; it then finds the map empty and fails like any
/// other missing key, instead of reading a half-made map.
template <typename Enum, typename Text = TString>
class EnumXMLEncodingBase
{
public:
    using Map = std::map<Enum, Text>;

    EnumXMLEncodingBase(std::initializer_list<typename Map::value_type> rows, Enum defaultValue)
        : m_map(rows), m_default(defaultValue)
    {
    }

    /// The text of `value`; throws (`ThrowXMLEnumEncodingException`) when it has none.
    const Text& Encode(Enum value) const
    {
        const Text* text = Find(value);
        if (text == nullptr)
            ThrowXMLEnumEncodingException();
        return *text;
    }

    /// The text of `value`, or null.
    const Text* Find(Enum value) const
    {
        if (m_map.empty())
            return nullptr;
        const auto it = m_map.find(value);
        return it == m_map.end() ? nullptr : &it->second;
    }

    /// The enumerator whose text is `text`; throws (`ThrowXMLEnumDecodingException`) when
    /// there is none.
    Enum Decode(const Text& text) const
    {
        Enum value = m_default;
        if (!TryDecode(text, value))
            ThrowXMLEnumDecodingException();
        return value;
    }

    /// The enumerator whose text is `text`, or the default enumerator.
    Enum DecodeOrDefault(const Text& text) const
    {
        Enum value = m_default;
        return TryDecode(text, value) ? value : m_default;
    }

    /// Sets `value` and answers true when some enumerator has the text `text`; texts
    /// compare exactly.
    [[nodiscard]] bool TryDecode(const Text& text, Enum& value) const
    {
        for (const auto& row : m_map) {
            if (row.second == text) {
                value = row.first;
                return true;
            }
        }
        return false;
    }

    Enum GetDefault() const { return m_default; }

    /// The enumerators of the table in ascending order.
    std::vector<Enum> GetKeys() const
    {
        std::vector<Enum> keys;
        keys.reserve(m_map.size());
        for (const auto& row : m_map)
            keys.push_back(row.first);
        return keys;
    }

    const Map& GetMap() const { return m_map; }

private:
    Map m_map;
    Enum m_default;
};

} // namespace Implementation

/// Writes values in the text form of XML documents. For now this holds the names of the
/// types; the rendering of values joins it.
class MURCOREDATA_EXPORT DataValueFormatter
{
public:
    /// The XML names of the twelve `DataType` values ("integer" ... "table"); decoding
    /// falls back to `DataType::Unknown`.
    using DataTypeEncodings = Implementation::EnumXMLEncodingBase<DataType, TString>;

    static const DataTypeEncodings sDataTypeEncodings;
};
