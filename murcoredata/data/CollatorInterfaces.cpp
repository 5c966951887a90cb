#include "murcoredata/data/CollatorInterfaces.h"

// The destructors are the key functions: the type information of both interfaces lives in
// the library once, so that `dynamic_cast` between engines agrees across modules.
Collator::~Collator() = default;
CollatorPool::~CollatorPool() = default;
