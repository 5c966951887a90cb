#pragma once

// Tuple: the shared, counted list of values behind a `DataValue` of type Tuple.
//
// A tuple is built, filled and then shared; once shared it is read only, but for its cached
// hash. A null element is a null member (`Tuple(3)` has three Unknown nulls), never a null
// tuple: a tuple value always points at a tuple.
//
// Hash: 0xDEADBEEF folded with the hash of each member in order,
//     h = THashCombine32(member.Hash(), h),
// cached after the first call (0 means "not yet"; a tuple whose true hash is 0 is hashed
// again at each call). Equality compares the two hashes first, so comparing two tuples
// fills both caches. Order: the shorter tuple is less whatever its members; tuples of one
// size are ordered member by member.

#include "murcoredata/data/DataValue.h"
#include "murcoredata/foundation/Export.h"
#include "murcoredata/foundation/RefCnt.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <vector>

class MURCOREDATA_EXPORT Tuple : public RefCntObject
{
public:
    //===------------------------------------------------------------------===//
    // Construction
    //===------------------------------------------------------------------===//

    /// No members.
    Tuple() = default;
    /// `count` default values: Unknown nulls.
    explicit Tuple(unsigned int count);
    explicit Tuple(const std::vector<DataValue>& values);
    explicit Tuple(std::vector<DataValue>&& values) noexcept;
    /// One member, moved in.
    explicit Tuple(DataValue&& value);
    /// The members and the cached hash; the copy starts unshared.
    Tuple(const Tuple& other);
    Tuple& operator=(const Tuple&) = delete;
    ~Tuple() override;

    //===------------------------------------------------------------------===//
    // Members
    //===------------------------------------------------------------------===//

    unsigned int GetSize() const noexcept { return static_cast<unsigned int>(m_values.size()); }
    const std::vector<DataValue>& GetValues() const noexcept { return m_values; }
    /// An index at or above the size is a logic error.
    const DataValue& GetDataValue(unsigned int index) const;
    /// Replaces one member and forgets the cached hash. An index at or above the size is a
    /// logic error. Not for a tuple other threads are reading.
    void SetDataValue(unsigned int idx, const DataValue& value);

    //===------------------------------------------------------------------===//
    // Hash, visiting, size
    //===------------------------------------------------------------------===//

    /// See the top of this file. Threads that race on the first call store the same number.
    uint32_t Hash() const;
    /// Visits each member in order with the same inspector: it sees the members, not a tuple.
    void Accept(DataValueInspector& inspector) const;
    /// 48 for the tuple and 16 per member; what strings and other objects hold is not counted.
    size_t EstimateTotalSizeInBytes() const noexcept { return 48 + 16 * m_values.size(); }

private:
    std::vector<DataValue> m_values;
    // 0: not computed. Relaxed: the number depends only on the members, which are fixed
    // before the tuple is shared, so racing threads store the same value.
    mutable std::atomic<uint32_t> m_hash{0};
};

/// Hashes equal (computing and caching both hashes), then the same size, then member-wise
/// `operator==` of `DataValue`.
MURCOREDATA_EXPORT bool operator==(const Tuple& a, const Tuple& b);
inline bool operator!=(const Tuple& a, const Tuple& b)
{
    return !(a == b);
}
/// Size first; then the first member that is less in either direction decides.
MURCOREDATA_EXPORT bool operator<(const Tuple& a, const Tuple& b);

/// The members through `operator<<` of `DataValue`, joined by ",".
MURCOREDATA_EXPORT std::ostream& operator<<(std::ostream& out, const Tuple& tuple);
/// The tuples joined by ","; a null element is reported as a null dereference.
MURCOREDATA_EXPORT std::ostream& operator<<(std::ostream& out, const std::vector<RefCntPtr<Tuple, RefCntObject>>& tuples);
/// Equal sizes and equal tuples, element by element; a null element is reported as a null
/// dereference.
MURCOREDATA_EXPORT bool operator==(const std::vector<RefCntPtr<Tuple, RefCntObject>>& a,
                                   const std::vector<RefCntPtr<Tuple, RefCntObject>>& b);
