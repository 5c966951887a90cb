#pragma once

#include "murcoredata/foundation/Export.h"

#include <cstddef>
#include <cstdint>

// Hashes whose values are stored and compared across processes, so the algorithms are fixed:
//
//   THash32(data, n, seed)        = XXH32(data, n, seed)                       (xxHash 0.8)
//   THash128(data, n, s1, s2)     = XXH3_128bits_withSeed(data, n, (uint64(s2) << 32) | s1)
//   THashCombine32(a, b)          = a ^ (b + 0x9E3779B9 + (a << 6) + (a >> 2))        (mod 2^32)
//   THashCombine(a, b)            = a ^ (b + 0x9E3779B97F4A7C15 + (a << 12) + (a >> 4)) (mod 2^64)
//
// Changing any of them changes stored hashes; the tests pin sample outputs.

/// 128 bits of hash, low half first.
struct THash128Value
{
    uint64_t low = 0;
    uint64_t high = 0;
    friend bool operator==(const THash128Value& a, const THash128Value& b) { return a.low == b.low && a.high == b.high; }
    friend bool operator!=(const THash128Value& a, const THash128Value& b) { return !(a == b); }
};

MURCOREDATA_EXPORT unsigned int THash32(const void* data, size_t byteCount, unsigned int seed) noexcept;
MURCOREDATA_EXPORT THash128Value THash128(const void* data, size_t byteCount, unsigned int seed1, unsigned int seed2) noexcept;

/// Folds `b` into `a`; not symmetric, so the order of the arguments is part of the result.
inline constexpr uint32_t THashCombine32(uint32_t a, uint32_t b) noexcept
{
    return a ^ (b + 0x9E3779B9u + (a << 6) + (a >> 2));
}

inline constexpr uint64_t THashCombine(uint64_t a, uint64_t b) noexcept
{
    return a ^ (b + 0x9E3779B97F4A7C15ull + (a << 12) + (a >> 4));
}
