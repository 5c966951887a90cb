#include "murcoredata/data/ICUCollatorPool.h"

#include "murcoredata/data/CoreICUUtils.h"

#include <oneapi/tbb/concurrent_unordered_map.h>
#include <unicode/uloc.h>

#include <algorithm>
#include <map>
#include <mutex>

namespace {

//===--------------------------------------------------------------------===//
// The thread's collators
//===--------------------------------------------------------------------===//

struct ThreadCollators;

// The last pool this thread was served, with its collator: a comparison loop over one
// collation never reaches the map. Constant-initialised, so reading it costs no guard, and in
// the initial-exec model, so that it is one load from the thread pointer rather than a call
// into the dynamic linker: 16 bytes of static TLS, which the loader reserves even for a
// library that is opened late.
struct LastServed
{
    const ICUCollatorPool* pool;
    ICUCollator* collator;
};
thread_local LastServed t_last __attribute__((tls_model("initial-exec"))) = {nullptr, nullptr};

// This thread's map while it lives.
thread_local ThreadCollators* t_current = nullptr;

// One collator per pool this thread has used; the map is the collators' only owner, and
// they go when the thread ends.
struct ThreadCollators
{
    std::map<const ICUCollatorPool*, std::shared_ptr<ICUCollator>> collators;

    ThreadCollators() { t_current = this; }
    ~ThreadCollators()
    {
        t_current = nullptr;
        t_last = {nullptr, nullptr};
    }
};

ThreadCollators& CurrentThreadCollators()
{
    thread_local ThreadCollators t_collators;
    return t_collators;
}

// Drops this thread's collator of a pool that is going away, so that a later pool at the
// same address is not served the old one's collator.
void ForgetThreadCollator(const ICUCollatorPool* pool)
{
    if (t_last.pool == pool)
        t_last = {nullptr, nullptr};
    if (ThreadCollators* current = t_current)
        current->collators.erase(pool);
}

//===--------------------------------------------------------------------===//
// The registry
//===--------------------------------------------------------------------===//

struct ICUIDHash
{
    size_t operator()(const ICUCollator::Id& id) const
    {
        // The string hash of the name (THash32, seed 0xDEADBEEF) with the flags folded in.
        return THashCombine32(uint32_t(std::hash<TString>()(id.first)), id.second);
    }
};

using Registry = tbb::concurrent_unordered_map<ICUCollator::Id, std::shared_ptr<ICUCollatorPool>, ICUIDHash,
                                               std::equal_to<ICUCollator::Id>>;

Registry& GetRegistry()
{
    static const std::unique_ptr<Registry> s_registry = [] {
        auto registry = std::make_unique<Registry>(8, ICUIDHash(), std::equal_to<ICUCollator::Id>());
        registry->max_load_factor(4.0f);
        return registry;
    }();
    return *s_registry;
}

// One of ICU's display-name getters into 1024 code units, in the default display locale.
using DisplayGetter = int32_t (*)(const char*, const char*, UChar*, int32_t, UErrorCode*);

TString GetDisplayName(DisplayGetter getter, const std::string& locale, const TString& context)
{
    char16_t buffer[1024];
    UErrorCode status = U_ZERO_ERROR;
    const int32_t length = getter(locale.c_str(), nullptr, buffer, 1024, &status);
    if (U_FAILURE(status))
        CoreICUUtils::ThrowICUException(status, context);
    return TString(buffer, std::min<int32_t>(length, 1024));
}

} // namespace

ICUCollatorPool* ICUCollatorPool::Factory(ICUCollator::Id id)
{
    static std::once_flag s_initialized;
    Registry& registry = GetRegistry();
    std::call_once(s_initialized, &ICUCollator::Initialize);

    const auto found = registry.find(id);
    if (found != registry.end())
        return found->second.get();

    // Built with no lock held: two threads may build one key at once. The first insertion
    // stays for good; the loser's pool goes at the end of this scope, on the thread that
    // built it, together with that thread's collator of it.
    auto fresh = std::make_shared<ICUCollatorPool>(id);
    const auto inserted = registry.insert(Registry::value_type(std::move(id), fresh));
    return inserted.first->second.get();
}

ICUCollatorPool::ICUCollatorPool(ICUCollator::Id id)
    : m_id(std::move(id)), m_spec(std::make_unique<CollationSpec>(CollationSpec::Parse(m_id.first)))
{
    try {
        // Opening ICU on this thread first: a bad locale or rule fails before anything else.
        ICUCollator* collator = AcquireICUCollator();

        const std::string& locale = m_spec->locale;
        m_name = m_id.first;
        m_lcid = ICUCollator::LCIDFromLocale(locale, LocaleIds::UserDefault);
        m_isWindowsSpecific = locale.find("_WIN") != std::string::npos;
        m_hasWordSort = std::find(m_spec->attributes.begin(), m_spec->attributes.end(),
                                  std::make_pair(ICUCollator::WordSort, MurICU::UCOL_ON)) != m_spec->attributes.end();
        m_displayLanguage = GetDisplayName(&uloc_getDisplayLanguage, locale, m_id.first);
        m_displayCountry = GetDisplayName(&uloc_getDisplayCountry, locale, m_id.first);
        m_localeString = TString::fromUtf8(locale.c_str());

        char language[11];
        UErrorCode status = U_ZERO_ERROR;
        const int32_t length = uloc_getLanguage(locale.c_str(), language, int32_t(sizeof language), &status);
        if (U_FAILURE(status))
            CoreICUUtils::ThrowICUException(status, m_localeString);
        m_language = TString::fromUtf8(language, std::min<int32_t>(length, int32_t(sizeof language)));

        ICUColAttributeValue strength, alternate;
        collator->GetAttribute(MurICU::UCOL_STRENGTH, strength);
        collator->GetAttribute(MurICU::UCOL_ALTERNATE_HANDLING, alternate);
        const cmpFlags shifted = alternate == MurICU::UCOL_SHIFTED ? CmpFlags::IgnoreSymbols : 0;
        switch (strength) {
        case MurICU::UCOL_PRIMARY:
            m_cmpFlags = CmpFlags::IgnoreCase | CmpFlags::IgnoreNonSpace | shifted;
            break;
        case MurICU::UCOL_SECONDARY:
            m_cmpFlags = CmpFlags::IgnoreCase | shifted;
            break;
        case MurICU::UCOL_TERTIARY:
            m_cmpFlags = shifted;
            break;
        default:
            m_cmpFlags = 0;
            break;
        }
        if (m_isWindowsSpecific)
            m_cmpFlags |= CmpFlags::WindowsSpecific;
        m_caseSensitive = int32_t(strength) > 1;
    } catch (...) {
        ForgetThreadCollator(this);
        throw;
    }
}

ICUCollatorPool::~ICUCollatorPool()
{
    ForgetThreadCollator(this);
}

// Both acquisitions test the last-served pair themselves: the virtual one is the hot path of
// every comparison, and a call from one exported function to another would go through the
// dynamic linker's table.
ICUCollator* ICUCollatorPool::AcquireICUCollator()
{
    const LastServed last = t_last;
    return last.pool == this ? last.collator : AcquireFromThreadMap();
}

Collator* ICUCollatorPool::AcquireCollator()
{
    const LastServed last = t_last;
    return last.pool == this ? last.collator : AcquireFromThreadMap();
}

ICUCollator* ICUCollatorPool::AcquireFromThreadMap()
{
    std::shared_ptr<ICUCollator>& slot = CurrentThreadCollators().collators[this];
    if (!slot)
        slot = std::make_shared<ICUCollator>(this, m_id, *m_spec);
    t_last = {this, slot.get()};
    return t_last.collator;
}
