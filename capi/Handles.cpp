#include "capi/Handles.h"

#include <array>
#include <bit>
#include <mutex>
#include <utility>
#include <vector>

#include "capi/Interface.h"

namespace vxfileio::capi {

/// The place of a handle. It is used again after the handle is closed, and never freed.
struct CSlot {
    static constexpr std::uintptr_t kFree = 0;

    /// The handle that has the place; `kBusy` is added while a call uses it.
    std::atomic<std::uintptr_t> owner = kFree;
    std::unique_ptr<CObject> object;
    std::uintptr_t uses = 0;  ///< How many handles have had the place. Part of the handle, so that no two are equal.
};

namespace {

/// A handle is `uses`, then the number of the slot plus one, then a bit for `kBusy`.
constexpr std::uintptr_t kBusy = 1;
constexpr unsigned kSlotShift = 1;
constexpr unsigned kSlotBits = 20;
constexpr unsigned kUsesShift = kSlotShift + kSlotBits;
constexpr std::size_t kMostSlots = (std::size_t{1} << kSlotBits) - 1;
constexpr std::size_t kChunk = 1024;

/// All slots. Looking one up takes no lock.
class CSlots {
 public:
    /// Returns the slot of a handle; null if it can't be a handle.
    CSlot* Find(std::uintptr_t handle) noexcept {
        const std::size_t number = ((handle >> kSlotShift) & kMostSlots) - 1;  // 0 becomes a huge number
        if ((handle & kBusy) != 0 || number >= kMostSlots) return nullptr;
        CSlot* const chunk = m_chunks[number / kChunk].load(std::memory_order_acquire);
        return chunk == nullptr ? nullptr : chunk + number % kChunk;
    }

    std::uintptr_t Add(std::unique_ptr<CObject> object) {
        const std::lock_guard lock(m_mutex);
        const std::size_t number = TakeNumber();
        CSlot& slot = m_chunks[number / kChunk].load(std::memory_order_relaxed)[number % kChunk];
        ++slot.uses;
        const std::uintptr_t handle = slot.uses << kUsesShift | (number + 1) << kSlotShift;
        slot.object = std::move(object);
        slot.owner.store(handle, std::memory_order_release);
        return handle;
    }

    /// Makes a slot free. There is room to note it: `TakeNumber` made it.
    void Free(std::uintptr_t handle) noexcept {
        const std::lock_guard lock(m_mutex);
        m_free.push_back(((handle >> kSlotShift) & kMostSlots) - 1);
    }

 private:
    std::size_t TakeNumber() {
        if (m_free.empty()) AddChunk();
        const std::size_t number = m_free.back();
        m_free.pop_back();
        return number;
    }

    void AddChunk() {
        const std::size_t begin = m_count;
        if (begin + kChunk > kMostSlots) throw std::bad_alloc();
        m_free.reserve(begin + kChunk);
        m_chunks[begin / kChunk].store(new CSlot[kChunk], std::memory_order_release);
        m_count += kChunk;
        for (std::size_t i = kChunk; i > 0; --i)
            m_free.push_back(begin + i - 1);
    }

    std::mutex m_mutex;
    std::array<std::atomic<CSlot*>, kMostSlots / kChunk + 1> m_chunks{};
    std::vector<std::size_t> m_free;
    std::size_t m_count = 0;
};

/// Never destroyed: programs may close handles while they end.
CSlots& Slots() {
    static auto* const slots = new CSlots;
    return *slots;
}

}  // namespace

void* MakeHandle(std::unique_ptr<CObject> object) noexcept {
    try {
        return std::bit_cast<void*>(Slots().Add(std::move(object)));
    } catch (...) {
        return nullptr;
    }
}

CBorrowed::CBorrowed(const void* handle) noexcept : m_handle(reinterpret_cast<std::uintptr_t>(handle)) {
    CSlot* const slot = Slots().Find(m_handle);
    std::uintptr_t owner = m_handle;
    if (slot != nullptr && slot->owner.compare_exchange_strong(owner, m_handle | kBusy, std::memory_order_acquire)) {
        m_slot = slot;
        m_code = VX_OK;
    } else {
        m_code = slot != nullptr && owner == (m_handle | kBusy) ? VX_ERROR_BUSY : VX_ERROR_HANDLE;
    }
}

CBorrowed::~CBorrowed() {
    if (m_slot != nullptr) m_slot->owner.store(m_handle, std::memory_order_release);
}

CObject& CBorrowed::Object() const noexcept { return *m_slot->object; }

void CBorrowed::Destroy() noexcept {
    m_slot->object.reset();
    m_slot->owner.store(CSlot::kFree, std::memory_order_release);
    m_slot = nullptr;
    Slots().Free(m_handle);
}

}  // namespace vxfileio::capi
