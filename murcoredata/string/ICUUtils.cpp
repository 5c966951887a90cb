#include "murcoredata/string/ICUUtils.h"

#include "murcoredata/core/LanguageUtils.h"
#include "murcoredata/foundation/InitOnce.h"
#include "murcoredata/foundation/MurErrorsError.h"

#include <unicode/ubrk.h>
#include <unicode/uclean.h>
#include <unicode/ucnv.h>
#include <unicode/ucurr.h>
#include <unicode/uloc.h>
#include <unicode/ustring.h>
#include <unicode/utext.h>

#include <memory>
#include <type_traits>

static_assert(std::is_same<UChar, char16_t>::value, "TString's code units go to ICU as they are");

// ICU's error codes end in this file. Every function turns a failure into its documented
// answer (empty text, 0, or the input unchanged); none of them throws for bad input.

namespace {

/// Text up to this many code units is case-mapped in a buffer on the stack.
constexpr int32_t s_stackUnits = 256;

struct BreakIteratorCloser
{
    void operator()(UBreakIterator* iterator) const { ubrk_close(iterator); }
};
struct UTextCloser
{
    void operator()(UText* text) const { utext_close(text); }
};

/// One part of a locale name through an `uloc_get...` function into a buffer of ICU's size
/// for that part. A part that does not fit (an over-long name) reads as absent.
template <int32_t Capacity>
TString LocalePart(const TString& locale,
                   int32_t (*getPart)(const char* localeID, char* part, int32_t capacity, UErrorCode* status))
{
    const std::string name = locale.toStdString();
    char part[Capacity + 1] = {};
    UErrorCode status = U_ZERO_ERROR;
    const int32_t length = getPart(name.c_str(), part, Capacity, &status);
    if (U_FAILURE(status) || length <= 0 || length > Capacity)
        return TString();
    return TString::fromUtf8(part, length);
}

/// UTF-16 text from an ICU function that writes `(dest, capacity, &status)` and returns the
/// full length: a stack buffer first, the heap when the text is longer. Empty on failure.
template <typename Fill>
TString ReadUChars(Fill fill)
{
    UChar buffer[s_stackUnits];
    UErrorCode status = U_ZERO_ERROR;
    int32_t length = fill(buffer, s_stackUnits, &status);
    if (status == U_BUFFER_OVERFLOW_ERROR && length > 0) {
        std::unique_ptr<UChar[]> heap(new UChar[size_t(length) + 1]);
        status = U_ZERO_ERROR;
        length = fill(heap.get(), length + 1, &status);
        if (U_FAILURE(status) || length < 0)
            return TString();
        return TString(heap.get(), length);
    }
    if (U_FAILURE(status) || length < 0 || length > s_stackUnits)
        return TString();
    return TString(buffer, length);
}

/// The two-call case mapping of `StrToUpper` and `StrFoldCase`. `map` has the shape
/// `(dest, capacity, src, srcLength, &status)` and returns the length of the mapped text.
template <typename Map>
TString MapCase(const TString& text, Map map)
{
    const UChar* source = text.constData();
    const int32_t sourceLength = text.length();
    UErrorCode status = U_ZERO_ERROR;
    const int32_t length = map(nullptr, 0, source, sourceLength, &status);
    if (length < 1)
        return text;

    // Short text fits the zero-filled stack buffer with room for the terminating zero, so ICU
    // is given the exact length; longer text takes a zero-filled heap array.
    UChar stackBuffer[s_stackUnits] = {};
    std::unique_ptr<UChar[]> heap;
    UChar* dest = stackBuffer;
    int32_t capacity = length;
    if (length > s_stackUnits - 1) {
        heap.reset(new UChar[size_t(length) + 1]());
        dest = heap.get();
        capacity = length + 1;
    }
    status = U_ZERO_ERROR;
    map(dest, capacity, source, sourceLength, &status);
    if (U_FAILURE(status))
        return text;
    return TString(dest, -1);
}

} // namespace

//===--------------------------------------------------------------------===//
// Lifetime
//===--------------------------------------------------------------------===//

void ICUUtils::Initialize()
{
    static InitOnceSlot slot;
    InitOnce(
        slot,
        [](InitOnceSlot&, void*) {
            // A failure here (no ICU data) shows later as empty answers, which is all any
            // caller could be told now.
            UErrorCode status = U_ZERO_ERROR;
            u_init(&status);
            LanguageUtils::InitializeLanguageMap();
            (void)LanguageUtilsInternal::GetSupportedLanguageTable();
            (void)LanguageUtils::GetDefaultLanguage();
        },
        nullptr, [](InitOnceSlot&) -> void* { return nullptr; });
}

void ICUUtils::Cleanup()
{
    u_cleanup();
}

//===--------------------------------------------------------------------===//
// Words
//===--------------------------------------------------------------------===//

int ICUUtils::CountWords(const TString& text, const std::string& locale)
{
    const std::string utf8 = text.toStdString();
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<UText, UTextCloser> utext(utext_openUTF8(nullptr, utf8.c_str(), -1, &status));
    std::unique_ptr<UBreakIterator, BreakIteratorCloser> words(
        ubrk_open(UBRK_WORD, locale.c_str(), nullptr, 0, &status));
    // ICU refuses some names (over-long ones) with a null iterator, which `ubrk_setUText`
    // would use regardless of the status: check before going on.
    if (U_FAILURE(status) || utext == nullptr || words == nullptr)
        return 0;
    ubrk_setUText(words.get(), utext.get(), &status);
    if (U_FAILURE(status))
        return 0;

    // Each boundary closes the segment before it; only segments that are words carry a
    // non-zero rule status (white space and punctuation have 0).
    int count = 0;
    for (int32_t boundary = ubrk_next(words.get()); boundary != UBRK_DONE; boundary = ubrk_next(words.get()))
        if (ubrk_getRuleStatus(words.get()) != 0)
            ++count;
    return count;
}

//===--------------------------------------------------------------------===//
// Locale names
//===--------------------------------------------------------------------===//

TString ICUUtils::GetDisplayName(lcid localeId, lcid displayLcid)
{
    const std::string locale = LanguageUtils::GetLocaleNarrowStr(localeId);
    const std::string display = LanguageUtils::GetLocaleNarrowStr(displayLcid);
    return ReadUChars([&](UChar* dest, int32_t capacity, UErrorCode* status) {
        return uloc_getDisplayName(locale.c_str(), display.c_str(), dest, capacity, status);
    });
}

lcid ICUUtils::GetLCID(const TString& locale)
{
    return uloc_getLCID(locale.toStdString().c_str());
}

lcid ICUUtils::GetDefaultLCID()
{
    return uloc_getLCID(uloc_getDefault());
}

TString ICUUtils::GetCountryName(const TString& locale)
{
    return LocalePart<ULOC_COUNTRY_CAPACITY>(locale, &uloc_getCountry);
}

TString ICUUtils::GetCountryNameISO3(const TString& locale)
{
    const char* iso3 = uloc_getISO3Country(locale.toStdString().c_str());
    return iso3 != nullptr ? TString::fromUtf8(iso3).toUpper() : TString();
}

TString ICUUtils::GetLanguageName(const TString& locale)
{
    return LocalePart<ULOC_LANG_CAPACITY>(locale, &uloc_getLanguage);
}

TString ICUUtils::GetCurrencyCode(const TString& locale)
{
    UChar code[4] = {};
    UErrorCode status = U_ZERO_ERROR;
    const int32_t length = ucurr_forLocale(locale.toStdString().c_str(), code, 4, &status);
    if (U_FAILURE(status) || length != 3)
        return TString();
    return TString(code, 3);
}

//===--------------------------------------------------------------------===//
// Case
//===--------------------------------------------------------------------===//

TString ICUUtils::StrToUpper(const TString& text, const char* locale)
{
    return MapCase(text, [locale](UChar* dest, int32_t capacity, const UChar* src, int32_t srcLength,
                                  UErrorCode* status) {
        return u_strToUpper(dest, capacity, src, srcLength, locale, status);
    });
}

TString ICUUtils::StrFoldCase(const TString& text, bool excludeSpecialI)
{
    const uint32_t options = excludeSpecialI ? U_FOLD_CASE_EXCLUDE_SPECIAL_I : U_FOLD_CASE_DEFAULT;
    return MapCase(text, [options](UChar* dest, int32_t capacity, const UChar* src, int32_t srcLength,
                                   UErrorCode* status) {
        return u_strFoldCase(dest, capacity, src, srcLength, options, status);
    });
}

//===--------------------------------------------------------------------===//
// Character sets
//===--------------------------------------------------------------------===//

TString ICUUtils::TryGetIanaCharactersetName(const char* name)
{
    if (name == nullptr)
        return TString();
    UErrorCode status = U_ZERO_ERROR;
    const char* standard = ucnv_getStandardName(name, "IANA", &status);
    return TString::fromLocal8Bit(standard != nullptr && U_SUCCESS(status) ? standard : name);
}

TString ICUUtils::TryGetIanaCharactersetName(CodePage codePage)
{
    const char* name = nullptr;
    switch (codePage) {
    case OemUnitedStates:
        name = "windows-437";
        break;
    case WindowsLatin1:
        name = "windows-1252";
        break;
    }
    if (name == nullptr)
        MUR_LOGIC_FAIL("false", LogicAssert_0xCFFFF092);

    UErrorCode status = U_ZERO_ERROR;
    const char* canonical = ucnv_getCanonicalName(name, "WINDOWS", &status);
    if (canonical == nullptr || U_FAILURE(status))
        return TString();
    status = U_ZERO_ERROR;
    const char* standard = ucnv_getStandardName(canonical, "IANA", &status);
    return TString::fromLocal8Bit(standard != nullptr && U_SUCCESS(status) ? standard : canonical);
}

int ICUUtils::CountAvailableConverters()
{
    return ucnv_countAvailable();
}

TString ICUUtils::GetAvailableConverterName(int index)
{
    const char* name = ucnv_getAvailableName(index);
    return name != nullptr ? TString::fromLocal8Bit(name) : TString();
}
