#include "murcoredata/foundation/THash.h"
#include "murcoredata/foundation/TString.h"

#include <gtest/gtest.h>

// Hashes are stored with documents and compared across processes: these values pin the
// algorithm. A failure here means stored state would no longer match, not a test to update.

TEST(THash, ThirtyTwoBitValuesArePinned)
{
    // Reference vectors of XXH32.
    EXPECT_EQ(THash32("", 0, 0), 0x02CC5D05u);
    EXPECT_EQ(THash32("abc", 3, 0), 0x32D153FFu);
    EXPECT_EQ(THash32(nullptr, 0, 0), 0x02CC5D05u);
    // The library's seed over the UTF-16 bytes of a text.
    const TString text(u"Sales");
    EXPECT_EQ(THash32(text.constData(), size_t(text.lengthInBytes()), 0xDEADBEEFu), 0x6B633277u);
    EXPECT_EQ(THash32("", 0, 0xDEADBEEFu), 0xC372C6CBu);
}

TEST(THash, OneHundredTwentyEightBitValuesArePinned)
{
    // XXH3 128 of the empty input with seed 0.
    const THash128Value empty = THash128("", 0, 0, 0);
    EXPECT_EQ(empty.high, 0x99AA06D3014798D8ull);
    EXPECT_EQ(empty.low, 0x6001C324468D497Full);
    const THash128Value a = THash128("abc", 3, 0xDEADBEEFu, 0xCAFEBABEu);
    const THash128Value b = THash128("abc", 3, 0xCAFEBABEu, 0xDEADBEEFu);
    EXPECT_NE(a, b); // both seeds count, in their order
    EXPECT_EQ(a.low, 0x484C1C734E8C1810ull);
    EXPECT_EQ(a.high, 0x47FE9560A265E42Eull);
}

TEST(THash, CombineFoldsInOrder)
{
    EXPECT_EQ(THashCombine32(0u, 0u), 0x9E3779B9u);
    EXPECT_EQ(THashCombine32(0xDEADBEEFu, 1u), 0xDEADBEEFu ^ (1u + 0x9E3779B9u + (0xDEADBEEFu << 6) + (0xDEADBEEFu >> 2)));
    EXPECT_NE(THashCombine32(1u, 2u), THashCombine32(2u, 1u));
    EXPECT_EQ(THashCombine(0ull, 0ull), 0x9E3779B97F4A7C15ull);
    EXPECT_NE(THashCombine(1ull, 2ull), THashCombine(2ull, 1ull));
}
