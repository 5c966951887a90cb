#include "murcoredata/utility/CoreDataOptions.h"

#include "murcoredata/data/StringWithCollationCache.h"

void CoreDataOptions::SetStringPoolThreadLocalCacheSize(unsigned long size)
{
    StringWithCollationCache::SetStringPoolThreadLocalCacheSize(size);
}
