#pragma once

#include "murcoredata/foundation/TString.h"

#include <memory>

class QSettings;

/// A persistent key/value store of the user's settings (QSettings, INI format, user scope),
/// addressed by a group number, a domain and a key space. The library reads and writes
/// group 37 only. Safe from any thread; each object is used by one thread at a time.
class MURCOREDATA_EXPORT TSettings
{
public:
    enum Group : int
    {
        CoreData = 37,
    };

    TSettings(int group, const TString& domain, const TString& keySpace);
    ~TSettings();
    TSettings(const TSettings&) = delete;
    TSettings& operator=(const TSettings&) = delete;

    bool ValueExists(const TString& key) const;
    TString GetStringValue(const TString& key, const TString& defaultValue = TString()) const;
    void SetStringValue(const TString& key, const TString& value);
    void RemoveValue(const TString& key);

    /// The library's own store of a group (domain and key space "murcoredata").
    static TString GetStringValue(int group, const TString& key, const TString& defaultValue = TString());
    static void SetStringValue(int group, const TString& key, const TString& value);

    /// Moves the store of every `TSettings` under `folder`, for tests and portable installs.
    static void SetStorageDirectory(const TString& folder);

private:
    std::unique_ptr<QSettings> m_settings;
};
