#include "tools/vxfile/report/Findings.h"

#include <utility>

#include "tools/vxfile/system/ExitStatus.h"

namespace vxfile {

void CFindings::Add(CFinding finding) {
    ++m_count;
    if (m_kept.size() < kMostKept) m_kept.push_back(std::move(finding));
}

int CFindings::Status() const {
    if (!m_usable) return kTrouble;
    return m_count == 0 ? kSound : kFindings;
}

}  // namespace vxfile
