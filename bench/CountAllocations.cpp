// Preloaded into a program, it counts the heap allocations of the program and its libraries. Measure.h reads the count.
// It uses glibc's internal names of the allocation functions.
#include <cerrno>
#include <cstddef>

extern "C" {

void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);

static long g_allocations = 0;

long CountedAllocations() { return g_allocations; }

void* malloc(std::size_t size) {
    ++g_allocations;
    return __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size) {
    ++g_allocations;
    return __libc_calloc(count, size);
}

void* realloc(void* memory, std::size_t size) {
    ++g_allocations;
    return __libc_realloc(memory, size);
}

void* aligned_alloc(std::size_t alignment, std::size_t size) {
    ++g_allocations;
    return __libc_memalign(alignment, size);
}

int posix_memalign(void** memory, std::size_t alignment, std::size_t size) {
    *memory = aligned_alloc(alignment, size);
    return *memory != nullptr ? 0 : ENOMEM;
}
}
