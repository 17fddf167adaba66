#include "tests/support/AllocationCount.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::size_t> g_allocations{0};
std::atomic<std::size_t> g_bytes{0};
std::atomic<std::size_t> g_freed{0};
std::atomic<std::size_t> g_failing{0};  ///< The number of the allocation that fails.

void Free(void* memory) {
    if (memory != nullptr) ++g_freed;
    std::free(memory);
}

}  // namespace

void* operator new(std::size_t size) {
    g_bytes += size;
    if (++g_allocations == g_failing) {
        ++g_freed;  // a failed allocation doesn't count as unfreed
        throw std::bad_alloc();
    }
    if (void* const memory = std::malloc(size == 0 ? 1 : size)) return memory;
    throw std::bad_alloc();
}
void* operator new[](std::size_t size) { return operator new(size); }
// Stable sorts use this. Without it, the address sanitizer's own operator would be called.
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept try {
    return operator new(size);
} catch (const std::bad_alloc&) {
    return nullptr;
}
void operator delete(void* memory) noexcept { Free(memory); }
void operator delete[](void* memory) noexcept { Free(memory); }
void operator delete(void* memory, std::size_t /*size*/) noexcept { Free(memory); }
void operator delete[](void* memory, std::size_t /*size*/) noexcept { Free(memory); }

std::size_t AllocationCount() { return g_allocations; }

std::size_t AllocatedBytes() { return g_bytes; }

std::size_t LiveAllocations() { return g_allocations - g_freed; }

void FailAllocation(std::size_t count) { g_failing = count == 0 ? 0 : g_allocations + count; }
