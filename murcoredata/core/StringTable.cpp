#include "murcoredata/core/StringTable.h"

#include "murcoredata/gen-strings/StringTableInternal.h"

#include <atomic>

namespace CoreData {

namespace {
std::atomic<const IStringTranslator*> s_translator{nullptr};
} // namespace

IStringTranslator::~IStringTranslator() = default;

void SetStringTranslator(const IStringTranslator* translator)
{
    s_translator.store(translator, std::memory_order_release);
}

TString LookupEnglishTStr(StringId id)
{
    return TString::fromUtf8(LookupStringValue_Internal(id));
}

TString LookupStringKey(StringId id)
{
    return TString::fromUtf8(LookupStringKey_Internal(id));
}

TString LookupTStr(StringId id)
{
    TString english = LookupEnglishTStr(id);
    if (const IStringTranslator* translator = s_translator.load(std::memory_order_acquire)) {
        TString translated;
        if (!english.isEmpty() && translator->Translate(id, LookupStringKey(id), english, translated))
            return translated;
    }
    return english;
}

TFormatString LookupTFmtStr(StringId id)
{
    return TFormatString(LookupTStr(id));
}

} // namespace CoreData
