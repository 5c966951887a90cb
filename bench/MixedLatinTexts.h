#pragma once

// Texts for the comparison benchmarks: 4 to 16 mixed-case Latin letters, a third of them
// accented. Three texts in four share a two-letter prefix with their neighbours, so that
// comparisons look past the first letter, as they do in sorted data. And the raw ICU
// collator they are measured against.

#include <unicode/ucol.h>

#include <cstddef>
#include <random>
#include <string>
#include <vector>

struct MixedLatinTexts
{
    std::u16string buffer;               // the texts, NUL-terminated, one after another
    std::vector<const char16_t*> texts;  // the start of each
};

inline MixedLatinTexts MakeMixedLatinTexts(size_t count, std::mt19937& random)
{
    static const char16_t letters[] = u"abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ"
                                      u"\u00E0\u00E1\u00E2\u00E4\u00E5\u00E7\u00E8\u00E9\u00EA\u00EB\u00EC\u00ED"
                                      u"\u00EE\u00EF\u00F1\u00F2\u00F3\u00F4\u00F6\u00F9\u00FA\u00FB\u00FC\u00FF"
                                      u"\u00C0\u00C1\u00C4\u00C5\u00C7\u00C8\u00C9\u00D1\u00D6\u00DC";
    const size_t letterCount = sizeof letters / sizeof letters[0] - 1;
    std::uniform_int_distribution<size_t> letter(0, letterCount - 1);
    std::uniform_int_distribution<int> length(4, 16);
    MixedLatinTexts out;
    std::vector<size_t> offsets;
    offsets.reserve(count);
    for (size_t i = 0; i < count; ++i) {
        offsets.push_back(out.buffer.size());
        const int n = length(random);
        for (int k = 0; k < n; ++k)
            out.buffer.push_back(k < 2 && (i % 4) != 0 ? letters[(i / 64 + size_t(k)) % 26] : letters[letter(random)]);
        out.buffer.push_back(0);
    }
    out.texts.reserve(count);
    for (size_t offset : offsets)
        out.texts.push_back(out.buffer.data() + offset);
    return out;
}

/// ICU's own collator for "LEN_RUS" (en_US, tertiary), opened and closed by hand.
struct RawCollator
{
    UCollator* handle;
    RawCollator()
    {
        UErrorCode status = U_ZERO_ERROR;
        handle = ucol_open("en_US", &status);
    }
    ~RawCollator() { ucol_close(handle); }
};
