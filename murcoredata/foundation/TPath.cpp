#include "murcoredata/foundation/TPath.h"

#include <QFileInfo>

#include <dlfcn.h>

TPath operator/(const TPath& a, const TPath& b)
{
    if (a.IsEmpty())
        return b;
    if (b.IsEmpty())
        return a;
    TString joined = a.m_path;
    const bool aEnds = joined.endsWith(u'/');
    const bool bStarts = b.m_path.startsWith(u'/');
    if (aEnds && bStarts)
        joined.truncate(joined.size() - 1);
    else if (!aEnds && !bStarts)
        joined += u'/';
    joined += b.m_path;
    return TPath(joined);
}

bool FileExists(const TPath& path)
{
    return !path.IsEmpty() && QFileInfo::exists(path.ToString().toQString());
}

TPath ModuleDirectory(const void* addressInModule)
{
    Dl_info info{};
    if (addressInModule == nullptr || dladdr(addressInModule, &info) == 0 || info.dli_fname == nullptr)
        return TPath();
    const QFileInfo file(QString::fromLocal8Bit(info.dli_fname));
    return TPath(TString(file.absolutePath()));
}
