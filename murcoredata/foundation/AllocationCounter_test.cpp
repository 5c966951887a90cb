#include "murcoredata/foundation/AllocationCounter_test.h"

#include <cstdlib>
#include <new>

namespace {
thread_local bool t_counting = false;
thread_local size_t t_allocations = 0;
} // namespace

void TestSupport::StartCountingAllocations()
{
    t_allocations = 0;
    t_counting = true;
}

size_t TestSupport::StopCountingAllocations()
{
    t_counting = false;
    return t_allocations;
}

void* operator new(std::size_t size)
{
    if (t_counting)
        ++t_allocations;
    if (void* p = std::malloc(size == 0 ? 1 : size))
        return p;
    throw std::bad_alloc();
}

void operator delete(void* p) noexcept
{
    std::free(p);
}

void operator delete(void* p, std::size_t) noexcept
{
    std::free(p);
}
