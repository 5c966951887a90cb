#pragma once

// The pool of one ICU collator identity: a collator name and the caller's comparison flags.
//
// Pools are made on first demand by `Factory` and kept in a process-wide lock-free map for
// the life of the process. A pool parses its name once (CollationSpec::Parse), reads what it
// needs from ICU once, and gives every thread an `ICUCollator` of its own from a
// thread-local map. After warm-up a comparison costs that thread-local look-up and ICU's
// compare: no lock, no count, no allocation.

#include "murcoredata/data/ICUCollator.h"

#include <memory>

class MURCOREDATA_EXPORT ICUCollatorPool final : public CollatorPool
{
public:
    /// The pool of the key, made if needed. Safe from any thread without a lock on the
    /// look-up; threads that race to make one key get the same pool. A name ICU or the
    /// reader rejects throws, and nothing is registered. The pointer is valid until exit.
    static ICUCollatorPool* Factory(ICUCollator::Id id);

    /// Parses the name and fills the fields; opens this thread's collator first, so that a
    /// bad locale or rule fails before anything else. Pools are normally made by `Factory`.
    explicit ICUCollatorPool(ICUCollator::Id id);
    /// Drops this thread's collator of the pool; other threads' entries are left alone (a
    /// pool of the registry is destroyed only at exit).
    ~ICUCollatorPool() override;
    ICUCollatorPool(const ICUCollatorPool&) = delete;
    ICUCollatorPool& operator=(const ICUCollatorPool&) = delete;

    /// The calling thread's collator, made on its first use. If making it throws, the next
    /// call tries again.
    ICUCollator* AcquireICUCollator();

    /// The same as `AcquireICUCollator`.
    Collator* AcquireCollator() override;
    const TString& GetName() const override { return m_name; }
    /// Strength above secondary; case level plays no part.
    bool IsCaseSensitive() const override { return m_caseSensitive; }
    const TString& GetLanguage() const override { return m_language; }
    lcid GetLCID() const override { return m_lcid; }
    const TString& GetLocaleString() const override { return m_localeString; }
    /// In the process's default ICU locale at the time the pool was made.
    const TString& GetDisplayCountry() const override { return m_displayCountry; }
    const TString& GetDisplayLanguage() const override { return m_displayLanguage; }
    /// The caller's flags of the key with those the collator implies: strength primary 3,
    /// secondary 1, tertiary 0, each plus 4 when shifted; the top bit when Windows-specific.
    cmpFlags GetCmpFlags() const override { return m_id.second | m_cmpFlags; }
    bool HasWordSort() const override { return m_hasWordSort; }
    /// The locale contains "_WIN".
    bool IsWindowsSpecific() const override { return m_isWindowsSpecific; }

    const ICUCollator::Id& GetID() const { return m_id; }
    const CollationSpec& GetSpec() const { return *m_spec; }

private:
    ICUCollator* AcquireFromThreadMap();

    ICUCollator::Id m_id;
    std::unique_ptr<CollationSpec> m_spec;
    TString m_name;
    bool m_caseSensitive = false;
    TString m_language;
    lcid m_lcid = 0;
    TString m_localeString;
    TString m_displayCountry;
    TString m_displayLanguage;
    cmpFlags m_cmpFlags = 0;
    bool m_hasWordSort = false;
    bool m_isWindowsSpecific = false;
};
