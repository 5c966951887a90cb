#include "murcoredata/foundation/THash.h"

#include <xxhash.h>

unsigned int THash32(const void* data, size_t byteCount, unsigned int seed) noexcept
{
    return XXH32(data, byteCount, seed);
}

THash128Value THash128(const void* data, size_t byteCount, unsigned int seed1, unsigned int seed2) noexcept
{
    const XXH128_hash_t h = XXH3_128bits_withSeed(data, byteCount, (uint64_t(seed2) << 32) | seed1);
    return THash128Value{h.low64, h.high64};
}
