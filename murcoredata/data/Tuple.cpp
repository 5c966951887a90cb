#include "murcoredata/data/Tuple.h"

#include "murcoredata/foundation/MurErrorsError.h"
#include "murcoredata/foundation/MurvaneError.h"
#include "murcoredata/foundation/THash.h"

#include <ostream>

Tuple::Tuple(unsigned int count) : m_values(count)
{
}

Tuple::Tuple(const std::vector<DataValue>& values) : m_values(values)
{
}

Tuple::Tuple(std::vector<DataValue>&& values) noexcept : m_values(std::move(values))
{
}

Tuple::Tuple(DataValue&& value)
{
    m_values.push_back(std::move(value));
}

Tuple::Tuple(const Tuple& other)
    : RefCntObject(other), m_values(other.m_values), m_hash(other.m_hash.load(std::memory_order_relaxed))
{
}

Tuple::~Tuple() = default;

const DataValue& Tuple::GetDataValue(unsigned int index) const
{
    MUR_LOGIC_ASSERT(size_t(index) < m_values.size(), LogicAssert_0xC28664A1);
    return m_values[index];
}

void Tuple::SetDataValue(unsigned int idx, const DataValue& value)
{
    MUR_LOGIC_ASSERT(size_t(idx) < m_values.size(), LogicAssert_0x5E2C5F16);
    m_hash.store(0, std::memory_order_relaxed);
    m_values[idx] = value;
}

uint32_t Tuple::Hash() const
{
    uint32_t hash = m_hash.load(std::memory_order_relaxed);
    if (hash != 0)
        return hash;
    hash = 0xDEADBEEFu;
    for (const DataValue& member : m_values)
        hash = THashCombine32(member.Hash(), hash);
    m_hash.store(hash, std::memory_order_relaxed);
    return hash;
}

void Tuple::Accept(DataValueInspector& inspector) const
{
    for (const DataValue& member : m_values)
        member.Accept(inspector);
}

bool operator==(const Tuple& a, const Tuple& b)
{
    // Both hashes first: a tuple that is compared once is usually compared again, and the
    // hash rejects most unequal pairs without a member-wise walk.
    const uint32_t hashA = a.Hash();
    const uint32_t hashB = b.Hash();
    if (hashA != hashB)
        return false;
    const std::vector<DataValue>& valuesA = a.GetValues();
    const std::vector<DataValue>& valuesB = b.GetValues();
    if (valuesA.size() != valuesB.size())
        return false;
    for (size_t i = 0; i < valuesA.size(); ++i)
        if (valuesA[i] != valuesB[i])
            return false;
    return true;
}

bool operator<(const Tuple& a, const Tuple& b)
{
    const std::vector<DataValue>& valuesA = a.GetValues();
    const std::vector<DataValue>& valuesB = b.GetValues();
    if (valuesA.size() != valuesB.size())
        return valuesA.size() < valuesB.size();
    for (size_t i = 0; i < valuesA.size(); ++i) {
        if (valuesA[i] < valuesB[i])
            return true;
        if (valuesB[i] < valuesA[i])
            return false;
    }
    return false;
}

std::ostream& operator<<(std::ostream& out, const Tuple& tuple)
{
    bool first = true;
    for (const DataValue& member : tuple.GetValues()) {
        if (!first)
            out << ',';
        out << member;
        first = false;
    }
    return out;
}

std::ostream& operator<<(std::ostream& out, const std::vector<RefCntPtr<Tuple, RefCntObject>>& tuples)
{
    bool first = true;
    for (const RefCntPtr<Tuple, RefCntObject>& tuple : tuples) {
        if (!first)
            out << ',';
        out << *tuple;
        first = false;
    }
    return out;
}

bool operator==(const std::vector<RefCntPtr<Tuple, RefCntObject>>& a,
                const std::vector<RefCntPtr<Tuple, RefCntObject>>& b)
{
    if (a.size() != b.size())
        return false;
    for (size_t i = 0; i < a.size(); ++i)
        if (*a[i] != *b[i])
            return false;
    return true;
}
