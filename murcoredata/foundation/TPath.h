#pragma once

#include "murcoredata/foundation/TString.h"

/// A file path. `operator/` joins two paths with one '/'.
class MURCOREDATA_EXPORT TPath
{
public:
    TPath() = default;
    TPath(const char16_t* path) : m_path(path) {}
    TPath(const TString& path) : m_path(path) {}

    bool IsEmpty() const { return m_path.isEmpty(); }
    operator const TString&() const { return m_path; }
    const TString& ToString() const { return m_path; }

    friend TPath operator/(const TPath& a, const TPath& b);
    friend bool operator==(const TPath& a, const TPath& b) { return a.m_path == b.m_path; }

private:
    TString m_path;
};

MURCOREDATA_EXPORT TPath operator/(const TPath& a, const TPath& b);

/// Whether a file or folder exists at `path`.
MURCOREDATA_EXPORT bool FileExists(const TPath& path);

/// The folder of the loaded module (program or shared library) that holds `addressInModule`;
/// empty if no module holds it.
MURCOREDATA_EXPORT TPath ModuleDirectory(const void* addressInModule);
