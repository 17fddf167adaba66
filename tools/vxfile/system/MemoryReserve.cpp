#include "tools/vxfile/system/MemoryReserve.h"

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <memory>
#include <new>

#include "tools/vxfile/system/ExitStatus.h"

namespace vxfile {

namespace {

/// Enough to destroy a document of 80,000 recordings. Parts are smaller if there is less memory.
constexpr std::size_t kMostOfPart = std::size_t{4} << 20;
constexpr std::size_t kLeastOfPart = std::size_t{256} << 10;

struct CFree {
    void operator()(void* memory) const { std::free(memory); }
};

using CReserve = std::unique_ptr<void, CFree>;

CReserve g_firstPart;
CReserve g_secondPart;
bool g_isShort = false;

void PutBy(CReserve& part) {
    for (std::size_t size = kMostOfPart; !part && size >= kLeastOfPart; size /= 2)
        part.reset(std::malloc(size));
}

[[noreturn]] void Refuse() {
    g_firstPart.reset();
    g_secondPart.reset();
    throw std::bad_alloc();
}

void FreeReserve() {
    g_isShort = true;
    if (!g_firstPart) Refuse();
    g_firstPart.reset();
}

/// Copying a growing document may use up the whole reserve before anything can fail.
[[noreturn]] void EndWithoutMemory() {
    try {
        if (const auto failure = std::current_exception()) std::rethrow_exception(failure);
    } catch (const std::bad_alloc&) {
        static_cast<void>(std::fprintf(stderr, "vxfile: %s\n", kNoMemory));
        std::_Exit(kTrouble);
    } catch (...) {  // a fault of the program
        std::abort();
    }
    std::abort();
}

}  // namespace

void KeepMemoryReserve() {
    g_isShort = false;
    std::set_new_handler(FreeReserve);
    std::set_terminate(EndWithoutMemory);
    PutBy(g_firstPart);
    PutBy(g_secondPart);
}

void CheckMemory() {
    if (g_isShort) Refuse();
}

}  // namespace vxfile
