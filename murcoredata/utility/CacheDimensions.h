#pragma once

#include "murcoredata/foundation/MurErrorsError.h"

#include <cstddef>

/// The cost of a cache entry, the total in use or a capacity, along N independent axes.
/// A cache is over capacity when any axis is.
template <size_t N>
struct CacheDimensions
{
    unsigned long m_dimensions[N] = {};

    CacheDimensions() = default;
    /// With one axis a plain number is a cost.
    template <size_t M = N, typename = std::enable_if_t<M == 1>>
    CacheDimensions(unsigned long value)
    {
        m_dimensions[0] = value;
    }

    CacheDimensions& operator+=(const CacheDimensions& rhs)
    {
        for (size_t i = 0; i < N; ++i)
            m_dimensions[i] += rhs.m_dimensions[i];
        return *this;
    }

    /// Going below zero on an axis is a programmer's mistake.
    CacheDimensions& operator-=(const CacheDimensions& rhs)
    {
        for (size_t i = 0; i < N; ++i) {
            MUR_LOGIC_ASSERT(m_dimensions[i] >= rhs.m_dimensions[i], LogicAssert_0x2D8C440D);
            m_dimensions[i] -= rhs.m_dimensions[i];
        }
        return *this;
    }

    friend CacheDimensions operator+(CacheDimensions a, const CacheDimensions& b) { return a += b; }
    friend CacheDimensions operator-(CacheDimensions a, const CacheDimensions& b) { return a -= b; }

    /// True when any axis of `a` exceeds that of `b`.
    friend bool Exceeds(const CacheDimensions& a, const CacheDimensions& b)
    {
        for (size_t i = 0; i < N; ++i)
            if (a.m_dimensions[i] > b.m_dimensions[i])
                return true;
        return false;
    }

    bool IsZero() const
    {
        for (size_t i = 0; i < N; ++i)
            if (m_dimensions[i] != 0)
                return false;
        return true;
    }

    friend bool operator==(const CacheDimensions& a, const CacheDimensions& b)
    {
        for (size_t i = 0; i < N; ++i)
            if (a.m_dimensions[i] != b.m_dimensions[i])
                return false;
        return true;
    }
    friend bool operator!=(const CacheDimensions& a, const CacheDimensions& b) { return !(a == b); }
};
