#include <utility>

#include "capi/Inspection.h"
#include "tools/vxfile/report/Progress.h"

namespace vxfileio::capi {

namespace {

thread_local const CCallbacks* runningCallbacks = nullptr;

}  // namespace

CRunningCheck::CRunningCheck(const CCallbacks& callbacks) : m_before(std::exchange(runningCallbacks, &callbacks)) {}
CRunningCheck::~CRunningCheck() { runningCallbacks = m_before; }

}  // namespace vxfileio::capi

// The checks of vxfile report their progress to this class. In the program it draws a bar; here it calls the caller.
namespace vxfile {

CProgress::CProgress(std::string_view title, std::int64_t total)
    : m_title(title), m_total(total), m_enabled(vxfileio::capi::runningCallbacks != nullptr) {}

CProgress::~CProgress() = default;

void CProgress::Reach(std::int64_t done) {
    constexpr std::uint32_t kCallsPerReport = 256;
    if (m_enabled && m_calls++ % kCallsPerReport == 0) vxfileio::capi::runningCallbacks->Reach(done, m_total);
}

}  // namespace vxfile
