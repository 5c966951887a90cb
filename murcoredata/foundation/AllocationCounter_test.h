#pragma once

// Test support: counts the operator-new allocations that a piece of code makes on the
// calling thread. The counting operator new is defined once for the whole test binary
// (AllocationCounter_test.cpp); other threads and other tests are not affected. Memory
// from malloc (Qt's string buffers) is not counted.

#include <cstddef>

namespace TestSupport {

void StartCountingAllocations();
/// Stops counting and returns the count since the start.
size_t StopCountingAllocations();

template <typename F>
size_t CountAllocations(F&& f)
{
    StartCountingAllocations();
    f();
    return StopCountingAllocations();
}

} // namespace TestSupport
